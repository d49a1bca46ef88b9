#!/usr/bin/python3
"""Tests of cauce's headless commands (perfil, canal, tubo, curva, informe), run as a user runs them.

Form1's numbers are checked against the screen driven through "cauce guion"; a reach's numbers against
the desktop's "Calcular el tramo" are in tests/app/tst_session.cpp. The outputs are read back with
independent parsers (csv, json, openpyxl, pdftotext).

Environment: CAUCE (the program), CAUCE_EXAMPLES (the bundled example workbooks), CAUCE_WITH_GUI (1 when
the program draws PNG and PDF). Every test works in a scratch folder of its own, with CAUCE_DATOS
pointing into it.
"""
import csv
import io
import json
import os
import pty
import select
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest

import openpyxl

CAUCE = os.environ.get("CAUCE", "cauce")
EXAMPLES = os.environ.get("CAUCE_EXAMPLES", os.path.join(os.path.dirname(__file__), "..", "..", "examples"))
WITH_GUI = os.environ.get("CAUCE_WITH_GUI") == "1"

class Scratch(unittest.TestCase):
    """A scratch folder with copies of the example workbooks and its own data folder."""

    def setUp(self):
        self.dir = tempfile.mkdtemp(prefix="cauce-cli-")
        for name in ("Rios.xlsx", "Ormandi.xlsx"):
            shutil.copy(os.path.join(EXAMPLES, name), os.path.join(self.dir, name))
        self.env = dict(os.environ, CAUCE_DATOS=os.path.join(self.dir, "datos"), LC_ALL="C.UTF-8")

    def tearDown(self):
        shutil.rmtree(self.dir, ignore_errors=True)

    def path(self, name):
        return os.path.join(self.dir, name)

    def run_cauce(self, *args, stdin=None):
        return subprocess.run([CAUCE, *args], cwd=self.dir, env=self.env, input=stdin, capture_output=True,
                              text=True, timeout=300)

    def ok(self, *args, stdin=None):
        r = self.run_cauce(*args, stdin=stdin)
        self.assertEqual(r.returncode, 0, "cauce %s\n%s%s" % (" ".join(args), r.stdout, r.stderr))
        return r.stdout

    def guion(self, lines):
        """Runs a driver script; returns the JSON objects of its "mostrar" lines."""
        r = self.run_cauce("guion", stdin="\n".join(lines) + "\n")
        self.assertEqual(r.returncode, 0, r.stderr)
        return [json.loads(line) for line in r.stdout.splitlines()]


def sheet_rows(path, sheet):
    """The sheet's records as dicts by header, read by openpyxl."""
    ws = openpyxl.load_workbook(path, data_only=True)[sheet]
    rows = list(ws.iter_rows(values_only=True))
    head = rows[0]
    return [dict(zip(head, r)) for r in rows[1:] if any(v is not None for v in r)]


def same(value, shown):
    """A value of the JSON output against the text the screen shows: the same number, or the same text."""
    try:
        return value == float(shown)
    except ValueError:
        return value == shown


class PasoEstandarTest(Scratch):
    """cauce perfil --metodo: the standard-step profile and the warnings beside the screen's profile."""

    def both(self, *args):
        return json.loads(self.ok("perfil", *args, "--metodo", "ambos", "--formato", "json"))[0]

    def standard(self, reach):
        return {p["seccion"]: p["estandar"] for p in reach["perfil"]}

    def test_bundled_reaches_show_the_jump_regimes_and_warnings(self):
        # Persecc from 2.2 m: a steep reach between sections 4 and 8 that the screen steps as S1/S2,
        # the jump between sections 7 and 8, and the screen's levels high on sections 1 to 7.
        reach = self.both("Rios.xlsx", "--y-inicial", "2.2")
        est = self.standard(reach)
        self.assertEqual([est[k]["regimen"] for k in (5, 6, 7)], ["supercrítico"] * 3)
        self.assertEqual(est[12]["y"], 2.2)
        self.assertTrue(580 < reach["resalto"]["abscisa"] < 660)
        self.assertLess(reach["resalto"]["y1"], reach["resalto"]["y2"])
        avisos = "\n".join(reach["avisos"])
        for expected in ('"Abscisa9"', "Sección 6 (S2)", "Sección 3 (M2)", "Sección 10: el perfil por pasos fijos "
                         "evaluó la sección por encima de su nivel más alto"):
            self.assertIn(expected, avisos)

    def test_the_screens_profile_alone_is_unchanged_and_options_tell_their_mistakes(self):
        default = self.ok("perfil", "Rios.xlsx", "--y-inicial", "1.8")
        self.assertEqual(self.ok("perfil", "Rios.xlsx", "--y-inicial", "1.8", "--metodo", "legado"), default)
        only = self.ok("perfil", "Rios.xlsx", "--y-inicial", "1.8", "--metodo", "estandar", "--formato", "csv")
        rows = list(csv.DictReader(io.StringIO(only)))
        self.assertTrue(all(r["z_agua_m"] == "" and r["z_agua_estandar_m"] for r in rows))
        for args, word in ((["--metodo", "otro"], "--metodo"), (["--contraccion", "-1", "--metodo", "ambos"], "--contraccion"),
                           (["--expansion", "0.5"], "--metodo estandar o ambos"), (["--metodo", "ambos", "--y-aguas-arriba", "0"], "--y-aguas-arriba")):
            r = self.run_cauce("perfil", "Rios.xlsx", "--y-inicial", "2.2", *args)
            self.assertEqual(r.returncode, 2, args)
            self.assertIn(word, r.stderr)

    def test_bad_chainages_are_told_by_section_without_a_table(self):
        wb = openpyxl.load_workbook(self.path("Rios.xlsx"))
        ws = wb["Persecc"]
        column = [c.value for c in ws[1]].index("Abscisa3") + 1
        ws.cell(row=13, column=column, value=50)  # the record of section 12 holds the chainages
        wb.save(self.path("abscisas.xlsx"))
        r = self.run_cauce("perfil", "abscisas.xlsx", "--y-inicial", "2.2", "--metodo", "ambos", "--formato", "json")
        self.assertEqual(r.returncode, 1)
        self.assertIn("La sección 3 (abscisa 50.00 m) no está aguas abajo de la sección 2", r.stderr)
        reach = json.loads(r.stdout)[0]
        self.assertTrue(all("estandar" not in p for p in reach["perfil"]))
        self.assertEqual(len(reach["perfil"]), 12)  # the screen's own table is still there


class PerfilTest(Scratch):
    """cauce perfil over several workbooks (its numbers against the screens: tests/app/tst_session.cpp)."""

    def test_several_workbooks_in_one_call(self):
        for k in range(3):
            shutil.copy(self.path("Rios.xlsx"), self.path("tramo-%d.xlsx" % k))
        books = ["tramo-0.xlsx", "tramo-1.xlsx", "tramo-2.xlsx"]
        out = json.loads(self.ok("perfil", *books, "--y-inicial", "1.8", "--formato", "json"))
        self.assertEqual([r["libro"] for r in out], books)
        self.assertEqual(out[0]["perfil"], out[2]["perfil"])
        self.assertEqual(out[0]["secciones"], out[1]["secciones"])
        # One that cannot be read does not stop the others, and the call says it failed.
        r = self.run_cauce("perfil", "tramo-0.xlsx", "falta.xlsx", "tramo-1.xlsx", "--y-inicial", "1.8",
                           "--formato", "json")
        self.assertEqual(r.returncode, 1)
        reaches = json.loads(r.stdout)
        self.assertEqual(len(reaches), 3)
        self.assertIn("No se encuentra el libro", reaches[1]["error"])
        self.assertEqual(reaches[2]["perfil"], out[0]["perfil"])
        self.assertIn("falta.xlsx", r.stderr)
        # A profile screen and the scour screen, each from its own depth.
        out = json.loads(self.ok("perfil", "Rios.xlsx", "Ormandi.xlsx", "--y-inicial", "1.8", "--y-final", "2.5",
                                 "--formato", "json"))
        self.assertEqual([(r["pantalla"], r["tirante"]["nombre"], r["tirante"]["valor"]) for r in out],
                         [("Form2", "Y inicial", 1.8), ("Form3", "Y final", 2.5)])


class FormatosTest(Scratch):
    """CSV and JSON read by Python's own parsers; the text table for people."""

    def test_csv_and_json_parse(self):
        out = self.ok("perfil", "Rios.xlsx", "--y-inicial", "1.8", "--formato", "csv")
        rows = list(csv.reader(io.StringIO(out)))
        head = rows[0]
        self.assertEqual(head[:5], ["libro", "hoja", "pantalla", "registro", "seccion"])
        self.assertTrue(all(len(r) == len(head) for r in rows))
        self.assertEqual([int(r[4]) for r in rows[1:]], list(range(1, 13)))
        reach = json.loads(self.ok("perfil", "Ormandi.xlsx", "--y-final", "2.5", "--formato", "json"))[0]
        self.assertEqual((reach["hoja"], reach["pantalla"], reach["n_secciones"]), ("secciones ", "Form3", 10))
        self.assertTrue(all(isinstance(p["z_agua"], float) and isinstance(p["ysoc"], float) for p in reach["perfil"]))

    def test_a_section_without_discharge(self):
        wb = openpyxl.load_workbook(self.path("Rios.xlsx"))
        wb["Persecc"]["AI2"] = 0  # record 1, column "Caudal": no discharge, the screen computes nothing
        wb.save(self.path("sin-caudal.xlsx"))
        out = self.ok("perfil", "sin-caudal.xlsx", "--y-inicial", "1.8", "--formato", "csv")
        rows = list(csv.DictReader(io.StringIO(out)))
        self.assertEqual(rows[0]["yn_m"], "")
        self.assertIn("Sin caudal", rows[0]["aviso"])

    def test_text_for_people(self):
        out = self.ok("perfil", "Rios.xlsx", "--y-inicial", "1.8")
        for part in ("Resultados por sección", "Perfil de la superficie del agua", "Y inicial: 1.8 m"):
            self.assertIn(part, out)
        out = self.ok("canal", "--base", "2", "--talud", "1", "--rugosidad", "0.015", "--pendiente", "0.001",
                      "--altura", "1", "--ancho-zona", "20", "--rugosidad-zona", "0.035", "--caudal", "15")
        self.assertIn("Mensaje: HAY DESBORDAMIENTO", out)


class GuardarTest(Scratch):
    """--guardar writes the table into the record of the last section, as the screen's binding does."""

    def test_save_writes_the_table_of_the_last_record(self):
        before = sheet_rows(self.path("Rios.xlsx"), "Persecc")
        out = json.loads(self.ok("perfil", "Rios.xlsx", "--y-inicial", "1.8", "--guardar", "--formato", "json"))
        self.assertTrue(out[0]["guardado"])
        after = sheet_rows(self.path("Rios.xlsx"), "Persecc")
        last = max(range(len(before)), key=lambda k: before[k]["SecId"])
        for p in out[0]["perfil"]:
            j = p["seccion"]
            self.assertEqual(after[last]["Tipo%d" % j], p["tipo"])
            self.assertAlmostEqual(after[last]["Za%d" % j], p["z_agua"], places=9)
        for k in range(len(before)):
            if k != last:
                self.assertEqual(before[k], after[k], "registro %d" % (k + 1))

    def test_without_save_the_workbook_is_untouched(self):
        with open(self.path("Rios.xlsx"), "rb") as f:
            original = f.read()
        self.ok("perfil", "Rios.xlsx", "--y-inicial", "1.8")
        with open(self.path("Rios.xlsx"), "rb") as f:
            self.assertEqual(f.read(), original)


class UniformeTest(Scratch):
    """cauce canal shows what Form1 shows for the same boxes."""

    def form1(self, layout, boxes, button):
        lines = ["pantalla Form1", "oprimir " + layout]
        lines += ["escribir %s %s" % (b, v) for b, v in boxes]
        lines += ["oprimir " + button, "mostrar"]
        return self.guion(lines)[0]

    def results(self, out):
        return {r["nombre"]: r["valores"] for r in json.loads(out)["resultados"]}

    def test_channel_matches_the_screen(self):
        option_of = {"Text1": "--rugosidad", "Text2": "--pendiente", "Text3": "--base", "Text4": "--talud",
                     "Text5": "--altura", "Text6": "--ancho-zona", "Text7": "--rugosidad-zona", "Text8": "--caudal",
                     "Text9": "--tirante"}
        box_of = {"Caudal Q": "Text8", "Profundidad Yn": "Text9", "Ancho T": "Text10", "Velocidad Vn": "Text11",
                  "Froude": "Text26", "Y critica Yc": "Text12", "V critica Vc": "Text13"}
        cases = [  # boxes typed on Form1, button
            ({"Text1": "0.015", "Text2": "0.001", "Text3": "2", "Text4": "1.5", "Text8": "5"}, "Command4"),
            ({"Text1": "0.013", "Text2": "0.002", "Text3": "3", "Text4": "0", "Text9": "0.8"}, "Command5"),
            ({"Text1": "0.015", "Text2": "0.001", "Text3": "2", "Text4": "1", "Text5": "1", "Text6": "20",
              "Text7": "0.035", "Text8": "15"}, "Command4"),
        ]
        for boxes, button in cases:
            with self.subTest(boxes=boxes):
                shown = self.form1("Command1", boxes.items(), button)
                options = [word for box, v in boxes.items() for word in (option_of[box], v)]
                out = json.loads(self.ok("canal", *options, "--formato", "json"))
                values = self.results(json.dumps(out))
                self.assertEqual(out["seccion"], shown["Command1"])
                self.assertEqual(out["mensaje"] or "", shown["Label21"])
                for name, box in box_of.items():
                    if shown[box] == "":
                        self.assertNotIn(name, values)
                    else:
                        self.assertTrue(same(values[name][0], shown[box]), (name, values[name], shown[box]))

class CurvaTest(Scratch):
    """cauce curva: the same numbers as single computations, rising with the discharge."""

    def test_channel_curve_matches_single_computations(self):
        channel = ["--base", "2", "--talud", "1.5", "--rugosidad", "0.015", "--pendiente", "0.001"]
        out = self.ok("curva", *channel, "--desde", "0.5", "--hasta", "6", "--paso", "0.5", "--formato", "csv")
        rows = list(csv.DictReader(io.StringIO(out)))
        self.assertEqual([r["caudal_m3s"] for r in rows], [str(k * 0.5).rstrip("0").rstrip(".") for k in range(1, 13)])
        depths = [float(r["yn_m"]) for r in rows]
        self.assertEqual(depths, sorted(depths))
        for r in rows[::4]:
            single = self.results(self.ok("canal", *channel, "--caudal", r["caudal_m3s"], "--formato", "json"))
            self.assertEqual(float(r["yn_m"]), single["Profundidad Yn"][0])

    results = UniformeTest.results

    def test_record_curve_uses_the_section_of_the_record(self):
        # At the record's own discharge the curve gives the depth "(Y?)" gives on the profile screen.
        out = self.ok("curva", "Rios.xlsx", "--hoja", "Persecc", "--registro", "3", "--desde", "28", "--hasta", "48",
                      "--paso", "10", "--formato", "csv")
        rows = {r["caudal_m3s"]: r for r in csv.DictReader(io.StringIO(out))}
        reach = json.loads(self.ok("perfil", "Rios.xlsx", "--y-inicial", "1.8", "--formato", "json"))[0]
        third = next(s for s in reach["secciones"] if s["registro"] == 3)
        self.assertEqual(float(rows["38"]["yn_m"]), third["yn"])
        self.assertEqual(float(rows["38"]["yc_m"]), third["yc"])

    def test_conduit_above_maximum_is_told(self):
        out = self.ok("curva", "--diametro", "0.9", "--rugosidad", "0.013", "--pendiente", "0.002", "--desde", "0.8",
                      "--hasta", "1", "--paso", "0.1", "--formato", "csv")
        rows = list(csv.DictReader(io.StringIO(out)))
        self.assertEqual(rows[0]["aviso"], "")
        self.assertEqual(rows[-1]["yn_m"], "")
        self.assertIn("no puede ser mayor que Qm", rows[-1]["aviso"])

    def test_png(self):
        r = self.run_cauce("curva", "--base", "2", "--talud", "1.5", "--rugosidad", "0.015", "--pendiente", "0.001",
                           "--desde", "1", "--hasta", "10", "--paso", "1", "--png", "curva.png")
        if not WITH_GUI:
            self.assertEqual(r.returncode, 2)
            self.assertIn("sin la aplicación de escritorio", r.stderr)
            self.assertFalse(os.path.exists(self.path("curva.png")))
            return
        self.assertEqual(r.returncode, 0, r.stderr)
        with open(self.path("curva.png"), "rb") as f:
            head = f.read(24)
        self.assertEqual(head[:8], b"\x89PNG\r\n\x1a\n")
        self.assertEqual(struct.unpack(">II", head[16:24]), (1000, 680))
        self.assertEqual([f for f in os.listdir(self.dir) if f.endswith(".tmp")], [])


class InformeTest(Scratch):
    """cauce informe writes a PDF that opens and whose text reads back in Spanish, with the numbers."""

    def test_report_reads_back(self):
        r = self.run_cauce("informe", "Rios.xlsx", "--y-inicial", "1.8", "-o", "informe.pdf")
        if not WITH_GUI:
            self.assertEqual(r.returncode, 2)
            self.assertIn("sin la aplicación de escritorio", r.stderr)
            return
        self.assertEqual(r.returncode, 0, r.stderr)
        info = subprocess.run(["pdfinfo", self.path("informe.pdf")], capture_output=True, text=True)
        self.assertEqual(info.returncode, 0, info.stderr)
        pages = int(next(l for l in info.stdout.splitlines() if l.startswith("Pages:")).split()[1])
        self.assertGreaterEqual(pages, 3)
        pdf = subprocess.run(["pdftotext", "-layout", self.path("informe.pdf"), "-"], capture_output=True,
                             text=True).stdout
        for heading in ("Informe de cálculo hidráulico", "Datos de entrada", "Resultados por sección",
                        "Perfil de la superficie del agua", "Perfil longitudinal", "Secciones transversales",
                        "Sección 12 (registro 12)", "Y inicial en la sección 12: 1.8 m",
                        "5. Perfil por paso estándar y avisos", "Aviso sobre el perfil de la pantalla"):
            self.assertIn(heading, pdf)
        reach = json.loads(self.ok("perfil", "Rios.xlsx", "--y-inicial", "1.8", "--formato", "json"))[0]
        lines = pdf.splitlines()
        for p in reach["perfil"]:
            # The table row: section, chainage, type, elevation and velocity as the screen shows them.
            cells = [str(p["seccion"]), "%.2f" % p["abscisa"], p["tipo"], "%.2f" % p["z_agua"], "%.2f" % p["v_media"]]
            # Then the depth, Froude number, specific energy and friction slope the report adds.
            row = next((l.split() for l in lines if l.split()[:3] == cells[:3] and l.split()[4:6] == cells[3:]),
                       None)
            self.assertIsNotNone(row, "fila del perfil %s" % cells)
            y, fr, e, sf = (float(row[k]) for k in (3, 6, 7, 8))
            self.assertTrue(e > y > 0 and fr > 0 and sf > 0, row)
        for s in reach["secciones"]:
            self.assertRegex(pdf, r"Yn %.2f m\s+Yc %.2f m" % (s["yn"], s["yc"]))

    def test_nothing_is_left_when_it_cannot_be_written(self):
        if not WITH_GUI:
            self.skipTest("sin la aplicación de escritorio")
        r = self.run_cauce("informe", "Rios.xlsx", "--y-inicial", "1.8", "-o", "no-hay/informe.pdf")
        self.assertEqual(r.returncode, 1)
        self.assertIn("no existe la carpeta", r.stderr)
        r = self.run_cauce("informe", "falta.xlsx", "--y-inicial", "1.8", "-o", "informe.pdf")
        self.assertEqual(r.returncode, 1)
        self.assertFalse(os.path.exists(self.path("informe.pdf")))
        self.assertEqual([f for f in os.listdir(self.dir) if f.endswith(".tmp")], [])


class ErroresTest(Scratch):
    """Bad options and bad data: a Spanish message and a non-zero exit status, nothing half done."""

    def bad_book(self, name, change):
        wb = openpyxl.load_workbook(self.path("Rios.xlsx"))
        change(wb["Persecc"])
        wb.save(self.path(name))

    def test_bad_command_lines(self):
        channel = ["--base", "2", "--talud", "1", "--rugosidad", "0.015", "--pendiente", "0.001"]
        cases = [  # arguments, exit status, part of the message
            (["perfil"], 2, "Falta LIBRO"),
            (["perfil", "Rios.xlsx"], 2, "falta el tirante"),
            (["perfil", "Rios.xlsx", "--y-inicial", "1,8"], 2, "el separador decimal es el punto"),
            (["perfil", "Rios.xlsx", "--y-inicial"], 2, "le falta su valor"),
            (["perfil", "Rios.xlsx", "--y-inicial", "1", "--formato", "xml"], 2, "formato desconocido"),
            (["perfil", "Rios.xlsx", "--y-inicial", "1", "--hoja", "Hoja1"], 2, "no es una hoja de perfiles"),
            (["perfil", "Rios.xlsx", "--y-inicial", "1", "--color"], 2, "Argumento no reconocido: --color"),
            (["perfil", "falta.xlsx", "--y-inicial", "1"], 1, "No se encuentra el libro"),
            (["perfil", "Ormandi.xlsx", "--y-inicial", "1"], 1, "necesita --y-final"),
            (["canal", *channel], 2, "dé --caudal"),
            (["canal", *channel, "--caudal", "1", "--tirante", "1"], 2, "uno de los dos"),
            (["canal", "--base", "dos", "--caudal", "1"], 2, "--base: \"dos\" no es un número"),
            (["canal", "--base", "-2", "--caudal", "1"], 2, "no puede ser negativo"),
            (["curva", "--desde", "1", "--hasta", "2", "--paso", "1"], 2, "diga de qué sección"),
            (["curva", *channel, "--desde", "5", "--hasta", "1", "--paso", "1"], 2, "es menor que --desde"),
            (["curva", *channel, "--diametro", "1", "--desde", "1", "--hasta", "2", "--paso", "1"], 2, "elija canal o"),
            (["curva", "Rios.xlsx", "--desde", "1", "--hasta", "2", "--paso", "1"], 2, "falta --registro"),
            (["curva", "Rios.xlsx", "--registro", "99", "--desde", "1", "--hasta", "2", "--paso", "1"], 1,
             "El registro 99 no existe"),
            (["informe", "Rios.xlsx", "--y-inicial", "1.8"], 2, "falta -o"),
            (["bailar"], 2, "cauce --help"),
        ]
        for args, status, message in cases:
            with self.subTest(args=args):
                r = self.run_cauce(*args)
                self.assertEqual(r.returncode, status, r.stdout + r.stderr)
                self.assertIn(message, r.stderr)
                self.assertNotIn("Traceback", r.stderr)
                self.assertNotIn(" is required", r.stderr)  # nothing left in English

    def test_every_command_has_spanish_help_with_an_example(self):
        for command in ("perfil", "canal", "tubo", "curva", "informe"):
            with self.subTest(command=command):
                out = self.ok(command, "--help")
                self.assertIn("Uso: cauce " + command, out)
                self.assertIn("Opciones:", out)
                self.assertIn("Ejemplo", out)
                self.assertIn("  cauce " + command + " ", out)
                self.assertNotIn("Options", out)
        self.assertIn("Órdenes:", self.ok("--help"))

    def test_section_table_errors_are_reported(self):
        # Record 2 with an elevation that does not rise: the screen says so and the call fails.
        self.bad_book("cotas.xlsx", lambda ws: ws.cell(row=3, column=5, value=119.0))
        r = self.run_cauce("perfil", "cotas.xlsx", "--y-inicial", "1.8", "--formato", "json")
        self.assertEqual(r.returncode, 1)
        second = json.loads(r.stdout)[0]["secciones"][1]
        self.assertEqual(second["aviso"], "Revise las cotas Zi. Hay un error")
        self.assertIn("registro 2 (sección 2): Revise las cotas Zi. Hay un error", r.stderr)
        # The records after it are not blamed for it.
        self.assertIsNone(json.loads(r.stdout)[0]["secciones"][2]["aviso"])

    def test_a_reach_without_its_last_section(self):
        self.bad_book("sin-ultima.xlsx", lambda ws: ws.delete_rows(13))  # the record of section 12
        r = self.run_cauce("perfil", "sin-ultima.xlsx", "--y-inicial", "1.8")
        self.assertEqual(r.returncode, 1)
        self.assertIn("Ningún registro tiene el número de sección igual al número de secciones", r.stderr)

    def test_a_fault_in_a_section_is_told_and_the_run_goes_on(self):
        # Record 3 numbered 60 in a reach of 70: beyond the screen's arrays (0..50), its click faults;
        # the other sections are still computed, and the profile, missing a section, cannot be.
        def renumber(ws):
            ws.cell(row=4, column=1, value=60)
            ws.cell(row=4, column=2, value=70)
        self.bad_book("indice.xlsx", renumber)
        r = self.run_cauce("perfil", "indice.xlsx", "--y-inicial", "1.8", "--formato", "json")
        self.assertEqual(r.returncode, 1)
        reach = json.loads(r.stdout)[0]
        third = reach["secciones"][2]
        self.assertEqual((third["registro"], third["seccion"], third["yn"]), (3, 60, None))
        self.assertIn("60 no está entre 0 y 50", third["error"])
        self.assertEqual([s["registro"] for s in reach["secciones"] if s["yn"] is not None],
                         [1, 2, 4, 5, 6, 7, 8, 9, 10, 11, 12])
        self.assertIn("El cálculo del perfil se detuvo", reach["error"])
        self.assertIn("registro 3 (sección 60)", r.stderr)

    def test_a_section_beyond_the_last_is_left_out(self):
        self.bad_book("fuera.xlsx", lambda ws: ws.cell(row=4, column=1, value=60))
        r = self.run_cauce("perfil", "fuera.xlsx", "--y-inicial", "1.8", "--formato", "json")
        reach = json.loads(r.stdout)[0]
        self.assertEqual(reach["avisos"], ["El registro 3 (sección 60) no se calcula: el tramo termina en la "
                                           "sección 12, que activa \"Perfiles\"."])
        self.assertEqual(reach["secciones"][-1]["registro"], 12)


class ProgresoTest(Scratch):
    """Progress goes to standard error only when it is a terminal."""

    def run_with_terminal(self, *args):
        master, slave = pty.openpty()
        proc = subprocess.Popen([CAUCE, *args], cwd=self.dir, env=self.env, stdout=subprocess.PIPE, stderr=slave)
        os.close(slave)
        seen, chunk = b"", b"-"
        while chunk and select.select([master], [], [], 60)[0]:
            try:
                chunk = os.read(master, 4096)
            except OSError:  # the other end closed
                chunk = b""
            seen += chunk
        out, _ = proc.communicate(timeout=60)
        os.close(master)
        return proc.returncode, out.decode(), seen.decode(errors="replace")

    def test_progress_on_a_terminal_only(self):
        shutil.copy(self.path("Rios.xlsx"), self.path("otro.xlsx"))
        status, out, err = self.run_with_terminal("perfil", "Rios.xlsx", "otro.xlsx", "--y-inicial", "1.8",
                                                  "--formato", "csv")
        self.assertEqual(status, 0)
        self.assertIn("perfil: 1/2", err)
        self.assertNotIn("\x1b", out)
        self.assertEqual(len(list(csv.DictReader(io.StringIO(out)))), 24)
        r = self.run_cauce("perfil", "Rios.xlsx", "otro.xlsx", "--y-inicial", "1.8", "--formato", "csv")
        self.assertEqual(r.stderr, "")


if __name__ == "__main__":
    unittest.main()
