#!/usr/bin/python3
"""Generates the example workbooks bundled with Cauce: Rios.xlsx and Ormandi.xlsx.

Run with Debian's python3-openpyxl:  /usr/bin/python3 examples/generar_libros.py
The files are written beside this script, byte for byte the same on every run (fixed dates).

Rios.xlsx
  Persecc   a natural reach of 12 sections (Form2): a mild upper reach, a steep rapid, a mild lower
            reach whose section 10 overflows its banks into the flood zone.
  Percanal  a prismatic concrete channel of 6 sections entered as two-level trapezoids (Form4), with
            a steeper chute in the middle; its slope column is "So".
  Zorvena   natural sections for the uniform-flow screen (Form5).
  Canales   prismatic channels for the uniform-flow screen of channels (Form1).
Ormandi.xlsx
  "secciones "  a reach of the Rio Negro (Form3) with the bed's grain size for the scour.
Every profile record carries the whole reach's chainage and the empty profile columns that the
profile run fills (type, water-surface elevation, velocity, scour).
"""
import datetime
import io
import os
import zipfile

import openpyxl
from openpyxl.styles import Alignment, Font, PatternFill

HERE = os.path.dirname(os.path.abspath(__file__))
FIXED = datetime.datetime(2024, 1, 1, 0, 0, 0)
HEAD_FONT = Font(bold=True)
HEAD_FILL = PatternFill("solid", fgColor="DDEBF7")

LEVELS = 15


def level_columns():
    return [f"z{j}" for j in range(1, LEVELS + 1)] + [f"t{j}" for j in range(1, LEVELS + 1)]


def section(bed, depths, widths):
    """Levels of a section: elevations from the bed elevation and depths above it, and top widths."""
    assert len(depths) == len(widths) and depths[0] == 0
    assert all(b > a for a, b in zip(depths, depths[1:])), "elevations rise"
    assert all(b >= a for a, b in zip(widths, widths[1:])), "widths do not narrow upwards"
    z = [round(bed + d, 2) for d in depths]
    return z, list(widths)


def level_values(z, t):
    zs = z + [None] * (LEVELS - len(z))
    ts = t + [None] * (LEVELS - len(t))
    return zs + ts


def write_sheet(ws, header, rows, widths=None):
    ws.append(header)
    for cell in ws[1]:
        cell.font = HEAD_FONT
        cell.fill = HEAD_FILL
        cell.alignment = Alignment(horizontal="center")
    for row in rows:
        ws.append([row.get(h) for h in header])
    ws.freeze_panes = "A2"
    for col in range(1, len(header) + 1):
        letter = openpyxl.utils.get_column_letter(col)
        ws.column_dimensions[letter].width = (widths or {}).get(header[col - 1], 9)


def profile_header(slope, extra=()):
    return (["SecId", "No# secciones"] + level_columns() +
            ["Rugosidad", slope, "Caudal", "Ancho Zi", "Rugosidad Zi"] + list(extra))


def reach_rows(sections, slope, n, q, flood_width, flood_n, chainage_columns=True, extra=None):
    """One record per section; every record holds the reach's chainage and empty profile columns."""
    count = len(sections)
    rows = []
    for k, s in enumerate(sections, start=1):
        z, t = section(s["bed"], s["d"], s["t"])
        r = {"SecId": k, "No# secciones": count, "Rugosidad": n, slope: s["s"], "Caudal": q,
             "Ancho Zi": s.get("B", flood_width), "Rugosidad Zi": flood_n}
        r.update(zip(level_columns(), level_values(z, t)))
        if chainage_columns:
            for j, other in enumerate(sections, start=1):
                r[f"Abscisa{j}"] = other["x"]
        if extra:
            r.update(extra(k, s))
        rows.append(r)
    return rows


def profile_columns(*names):
    cols = []
    for name in names:
        cols += [f"{name}{j}" for j in range(1, LEVELS + 1)]
    return cols


# --- Persecc: 12 sections, 38 m3/s ----------------------------------------------------------------
# Mild upper reach (S = 0.0015), a rapid (S = 0.025), mild lower reach (S = 0.001). Beds fall by the
# slope times the distance; section 10 has low banks and a 70 m flood plain.
WIDE = ([0, 0.4, 1.0, 1.8, 2.6, 3.3], [6.0, 10.0, 16.0, 22.0, 28.0, 34.0])
PERSECC = [
    {"x": 0, "bed": 120.00, "s": 0.0015, "d": WIDE[0], "t": [6.5, 10.5, 16.0, 22.5, 28.0, 35.0]},
    {"x": 100, "bed": 119.85, "s": 0.0015, "d": WIDE[0], "t": WIDE[1]},
    {"x": 200, "bed": 119.70, "s": 0.0015, "d": [0, 0.5, 1.1, 1.9, 2.7, 3.4], "t": [5.5, 9.5, 15.0, 21.0, 27.5, 33.0]},
    {"x": 320, "bed": 119.52, "s": 0.0015, "d": WIDE[0], "t": [6.0, 9.0, 14.0, 20.0, 26.0, 31.0]},
    {"x": 420, "bed": 117.02, "s": 0.025, "d": [0, 0.3, 0.8, 1.5, 2.3], "t": [6.0, 9.0, 13.0, 17.0, 21.0]},
    {"x": 500, "bed": 115.02, "s": 0.025, "d": [0, 0.3, 0.8, 1.5, 2.3], "t": [5.5, 8.5, 12.5, 16.5, 20.0]},
    {"x": 580, "bed": 113.02, "s": 0.025, "d": [0, 0.35, 0.9, 1.6, 2.4], "t": [6.0, 9.5, 13.5, 17.5, 21.5]},
    {"x": 660, "bed": 111.02, "s": 0.025, "d": [0, 0.3, 0.8, 1.5, 2.3], "t": [6.5, 9.5, 13.5, 17.5, 22.0]},
    {"x": 780, "bed": 110.90, "s": 0.001, "d": WIDE[0], "t": [7.0, 11.0, 17.0, 23.0, 29.0, 35.0]},
    {"x": 900, "bed": 110.78, "s": 0.001, "d": [0, 0.4, 0.9, 1.4], "t": [8.0, 14.0, 20.0, 26.0], "B": 70.0},
    {"x": 1000, "bed": 110.68, "s": 0.001, "d": WIDE[0], "t": [6.5, 10.5, 16.5, 22.5, 28.5, 34.0]},
    {"x": 1100, "bed": 110.58, "s": 0.001, "d": WIDE[0], "t": WIDE[1]},
]

# --- Percanal: a concrete trapezoid, bottom 3 m, side slopes 1.5:1, 2 m deep; 12 m3/s ----------------
PERCANAL = [
    {"x": 0, "bed": 50.00, "s": 0.0008},
    {"x": 150, "bed": 49.88, "s": 0.0008},
    {"x": 300, "bed": 49.76, "s": 0.0008},
    {"x": 400, "bed": 49.26, "s": 0.005},
    {"x": 500, "bed": 48.76, "s": 0.005},
    {"x": 650, "bed": 48.64, "s": 0.0008},
]
for s in PERCANAL:
    s["d"], s["t"] = [0, 2.0], [3.0, 9.0]

# --- Zorvena: natural sections in uniform flow ---------------------------------------------------
ZORVENA = [
    {"x": 0, "bed": 245.30, "s": 0.002, "d": [0, 0.5, 1.2, 2.0, 2.8], "t": [4.0, 8.0, 13.0, 19.0, 24.0], "q": 25.0},
    {"x": 0, "bed": 98.40, "s": 0.0006, "d": [0, 0.6, 1.5, 2.5, 3.5, 4.2], "t": [10.0, 18.0, 28.0, 38.0, 46.0, 52.0], "q": 120.0},
    {"x": 0, "bed": 512.75, "s": 0.012, "d": [0, 0.3, 0.8, 1.4], "t": [3.0, 6.0, 9.0, 12.0], "q": 18.0},
    {"x": 0, "bed": 33.10, "s": 0.0009, "d": [0, 0.5, 1.1, 1.6], "t": [6.0, 11.0, 16.0, 20.0], "q": 40.0, "B": 60.0},
]

# --- Canales: prismatic channels (Form1) -----------------------------------------------------------
CANALES = [
    {"Rugosidad": 0.015, "Pendiente": 0.001, "Base": 2.0, "Talud": 1.5},
    {"Rugosidad": 0.013, "Pendiente": 0.002, "Base": 3.0, "Talud": 0},
    {"Rugosidad": 0.02, "Pendiente": 0.005, "Base": 0, "Talud": 2.0},
    {"Rugosidad": 0.025, "Pendiente": 0.0005, "Base": 4.0, "Talud": 2.0},
]

# --- Ormandi: the Rio Negro, 10 sections, 85 m3/s, gravel bed ------------------------------------
ORMANDI = [
    {"x": 0, "bed": 212.40, "s": 0.002, "d": [0, 0.5, 1.2, 2.1, 3.0, 3.8], "t": [9.0, 15.0, 23.0, 31.0, 38.0, 44.0], "dm": 32},
    {"x": 150, "bed": 212.10, "s": 0.002, "d": [0, 0.5, 1.2, 2.1, 3.0, 3.8], "t": [8.5, 14.0, 22.0, 30.0, 37.0, 43.0], "dm": 30},
    {"x": 300, "bed": 211.80, "s": 0.002, "d": [0, 0.6, 1.3, 2.2, 3.1, 3.9], "t": [9.0, 15.0, 22.5, 30.5, 38.0, 45.0], "dm": 30},
    {"x": 450, "bed": 211.50, "s": 0.002, "d": [0, 0.5, 1.2, 2.1, 3.0, 3.8], "t": [10.0, 16.0, 24.0, 32.0, 39.0, 46.0], "dm": 28},
    {"x": 600, "bed": 211.20, "s": 0.002, "d": [0, 0.5, 1.1, 2.0, 2.9, 3.7], "t": [9.5, 15.5, 23.0, 31.0, 38.0, 45.0], "dm": 27},
    {"x": 750, "bed": 210.90, "s": 0.002, "d": [0, 0.5, 1.2, 2.1, 3.0, 3.8], "t": [9.0, 15.0, 23.0, 31.0, 38.0, 44.0], "dm": 25},
    {"x": 900, "bed": 210.60, "s": 0.002, "d": [0, 0.5, 1.2, 2.1, 3.0, 3.8], "t": [8.0, 14.0, 21.0, 29.0, 36.0, 42.0], "dm": 25},
    {"x": 1050, "bed": 210.30, "s": 0.002, "d": [0, 0.6, 1.3, 2.2, 3.1, 3.9], "t": [9.0, 15.0, 23.0, 31.0, 38.0, 44.0], "dm": 22},
    {"x": 1200, "bed": 210.00, "s": 0.002, "d": [0, 0.5, 1.2, 2.1, 3.0, 3.8], "t": [10.0, 16.0, 24.0, 32.0, 40.0, 46.0], "dm": 20},
    {"x": 1350, "bed": 209.70, "s": 0.002, "d": [0, 0.5, 1.2, 2.1, 3.0, 3.8], "t": [9.0, 15.0, 23.0, 31.0, 38.0, 44.0], "dm": 20},
]


def rios():
    wb = openpyxl.Workbook()
    ws = wb.active
    ws.title = "Persecc"
    header = profile_header("Si", [f"Abscisa{j}" for j in range(1, LEVELS + 1)] + profile_columns("Tipo", "Za", "V"))
    write_sheet(ws, header, reach_rows(PERSECC, "Si", 0.035, 38.0, 40.0, 0.05), {"No# secciones": 13})

    ws = wb.create_sheet("Percanal")
    header = profile_header("So", [f"Abscisa{j}" for j in range(1, LEVELS + 1)] + profile_columns("Tipo", "Za", "V"))
    write_sheet(ws, header, reach_rows(PERCANAL, "So", 0.015, 12.0, 9.0, 0.015), {"No# secciones": 13})

    ws = wb.create_sheet("Zorvena")
    header = profile_header("Si", [f"Abscisa{j}" for j in range(1, LEVELS + 1)] + profile_columns("Tipo", "Za", "V"))
    rows = []
    for k, s in enumerate(ZORVENA, start=1):
        z, t = section(s["bed"], s["d"], s["t"])
        r = {"SecId": k, "No# secciones": len(ZORVENA), "Rugosidad": 0.035, "Si": s["s"], "Caudal": s["q"],
             "Ancho Zi": s.get("B", s["t"][-1]), "Rugosidad Zi": 0.05}
        r.update(zip(level_columns(), level_values(z, t)))
        rows.append(r)
    write_sheet(ws, header, rows, {"No# secciones": 13})

    ws = wb.create_sheet("Canales")
    write_sheet(ws, ["Rugosidad", "Pendiente", "Base", "Talud"], CANALES, {"Rugosidad": 11, "Pendiente": 11})
    return wb


def ormandi():
    wb = openpyxl.Workbook()
    ws = wb.active
    ws.title = "secciones "
    header = profile_header("Si", ["Abscisa", "Darrastre"] + profile_columns("Za", "V") + [f"Ys{j}" for j in range(1, 39)])
    rows = reach_rows(ORMANDI, "Si", 0.032, 85.0, 44.0, 0.045, chainage_columns=False,
                      extra=lambda k, s: {"Abscisa": s["x"], "Darrastre": s["dm"]})
    write_sheet(ws, header, rows, {"No# secciones": 13})
    return wb


def save(wb, name):
    """Saves with fixed dates, so that the same data always give the same bytes."""
    wb.properties.creator = "Cauce"
    wb.properties.created = FIXED
    wb.properties.modified = FIXED
    buf = io.BytesIO()
    wb.save(buf)
    out = io.BytesIO()
    with zipfile.ZipFile(buf) as src, zipfile.ZipFile(out, "w", zipfile.ZIP_DEFLATED) as dst:
        for info in src.infolist():
            fixed = zipfile.ZipInfo(info.filename, date_time=FIXED.timetuple()[:6])
            fixed.compress_type = zipfile.ZIP_DEFLATED
            fixed.external_attr = 0o644 << 16
            dst.writestr(fixed, src.read(info.filename))
    with open(os.path.join(HERE, name), "wb") as f:
        f.write(out.getvalue())


if __name__ == "__main__":
    save(rios(), "Rios.xlsx")
    save(ormandi(), "Ormandi.xlsx")
    print("Rios.xlsx y Ormandi.xlsx escritos en", HERE)
