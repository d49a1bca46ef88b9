#!/usr/bin/python3
"""Workbooks made and checked by an independent reader and writer (openpyxl, xlwt) for the tests.

Usage: workbooks.py ORDEN RUTA ...; the orders are the functions named in COMMANDS at the end. "verificar
ORIGINAL NUEVO CAMBIOS" checks that NUEVO is ORIGINAL with exactly the changes listed in the JSON file
CAMBIOS, all else equal; it prints what differs and exits 1.
"""
import json
import sys

import openpyxl
from openpyxl.styles import Border, Font, PatternFill, Side
from openpyxl.workbook.defined_name import DefinedName

HEADER = ["SecId", "No# secciones", "z1", "t1", "z2", "t2", "z3", "t3", "Rugosidad", "Si", "Caudal",
          "Ancho Zi", "Rugosidad Zi", "Abscisa1", "Abscisa2", "Abscisa3", "Abscisa9", "Tipo1", "Za1",
          "Notas", "Doble"]
RECORDS = [
    [1, 3, 100.0, 2.0, 101.5, 6.0, 103.0, 10.0, 0.03, 0.002, 12.5, 30.0, 0.05, 0, 80, 175.5, 400, None, None,
     "aguas arriba", None],
    [2, 3, 99.84, 2.5, 101.3, 6.5, 102.8, 11.0, 0.03, 0.002, 12.5, 30.0, 0.05, 0, 80, 175.5, 400, None, None,
     "puente", None],
    [3, 3, 99.65, 2.0, 101.1, 6.0, 102.6, 10.5, 0.03, 0.002, 12.5, 30.0, 0.05, 0, 80, 175.5, 400, None, None,
     None, None],
]


def create(path):
    wb = openpyxl.Workbook()
    cover = wb.active
    cover.title = "Portada"
    cover["A1"] = "Estudio hidráulico del río"
    cover["A1"].font = Font(bold=True, size=14)
    cover.merge_cells("A1:D1")
    cover["A3"] = "Fecha"
    cover["B3"] = "2024-03-15"
    cover["A4"] = "Verificado"
    cover["B4"] = True
    cover.column_dimensions["A"].width = 24

    ws = wb.create_sheet("Persecc")
    ws.append(HEADER)
    for c in ws[1]:
        c.font = Font(bold=True, color="FFFFFF")
        c.fill = PatternFill("solid", fgColor="1F4E78")
    for r in RECORDS:
        ws.append(r)
    thin = Side(style="thin")
    for row in ws.iter_rows(min_row=2, max_row=4):
        for c in row:
            c.border = Border(left=thin, right=thin, top=thin, bottom=thin)
    col = {h: i + 1 for i, h in enumerate(HEADER)}
    for r in range(2, 5):
        ws.cell(r, col["Rugosidad"]).number_format = "0.000"
        # A formula in a bound column: left alone unless its box is edited.
        ws.cell(r, col["Doble"]).value = f"={openpyxl.utils.get_column_letter(col['Caudal'])}{r}*2"
    ws.column_dimensions["C"].width = 11.5
    ws.freeze_panes = "C2"

    summary = wb.create_sheet("Resumen")
    summary["A1"] = "Caudal total"
    q = openpyxl.utils.get_column_letter(col["Caudal"])
    summary["B1"] = f"=SUM(Persecc!{q}2:{q}4)"
    summary["A2"] = "Secciones"
    summary["B2"] = "=COUNT(Persecc!A2:A4)"
    summary["B1"].number_format = "0.00"
    wb.defined_names.append(DefinedName("Caudales", attr_text=f"Persecc!${q}$2:${q}$4"))
    wb.save(path)


def create_xls(path):
    import xlwt
    book = xlwt.Workbook(encoding="utf-8")
    notes = book.add_sheet("Notas")
    notes.write(0, 0, "Libro antiguo del río")
    ws = book.add_sheet("Persecc")
    for j, h in enumerate(HEADER):
        ws.write(0, j, h)
    for i, r in enumerate(RECORDS, start=1):
        for j, v in enumerate(r):
            if v is not None:
                ws.write(i, j, v)
    book.save(path)


def create_xml(path, prefix="", change=None):
    """A package written by hand, its parts passed through change(parts) when given."""
    import zipfile
    p = prefix + ":" if prefix else ""
    ns = f'xmlns{":" + prefix if prefix else ""}="http://schemas.openxmlformats.org/spreadsheetml/2006/main"'
    rel = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
    decl = '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n'
    parts = {
        "[Content_Types].xml": decl +
        '<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">'
        '<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
        '<Default Extension="xml" ContentType="application/xml"/>'
        '<Override PartName="/xl/workbook.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml"/>'
        '<Override PartName="/xl/worksheets/sheet1.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml"/>'
        '<Override PartName="/xl/sharedStrings.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.sharedStrings+xml"/>'
        '<Override PartName="/xl/calcChain.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.calcChain+xml"/>'
        '<Override PartName="/xl/styles.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.styles+xml"/>'
        '</Types>',
        "_rels/.rels": decl +
        '<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">'
        f'<Relationship Id="rId1" Type="{rel}/officeDocument" Target="xl/workbook.xml"/></Relationships>',
        "xl/workbook.xml": decl +
        f'<{p}workbook {ns} xmlns:r="{rel}"><{p}sheets>'
        f'<{p}sheet name="Persecc" sheetId="1" r:id="rId1"/></{p}sheets><{p}calcPr calcId="191029"/></{p}workbook>',
        "xl/_rels/workbook.xml.rels": decl +
        '<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">'
        f'<Relationship Id="rId1" Type="{rel}/worksheet" Target="/xl/worksheets/sheet1.xml"/>'
        f'<Relationship Id="rId2" Type="{rel}/sharedStrings" Target="sharedStrings.xml"/>'
        f'<Relationship Id="rId3" Type="{rel}/calcChain" Target="calcChain.xml"/>'
        f'<Relationship Id="rId4" Type="{rel}/styles" Target="styles.xml"/></Relationships>',
        "xl/styles.xml": decl +
        f'<{p}styleSheet {ns}><{p}numFmts count="1"><{p}numFmt numFmtId="164" formatCode="0.000"/></{p}numFmts>'
        f'<{p}fonts count="1"><{p}font><{p}sz val="11"/><{p}name val="Calibri"/></{p}font></{p}fonts>'
        f'<{p}fills count="2"><{p}fill><{p}patternFill patternType="none"/></{p}fill>'
        f'<{p}fill><{p}patternFill patternType="gray125"/></{p}fill></{p}fills>'
        f'<{p}borders count="1"><{p}border><{p}left/><{p}right/><{p}top/><{p}bottom/><{p}diagonal/></{p}border></{p}borders>'
        f'<{p}cellStyleXfs count="1"><{p}xf numFmtId="0" fontId="0" fillId="0" borderId="0"/></{p}cellStyleXfs>'
        f'<{p}cellXfs count="2"><{p}xf numFmtId="0" fontId="0" fillId="0" borderId="0" xfId="0"/>'
        f'<{p}xf numFmtId="164" fontId="0" fillId="0" borderId="0" xfId="0" applyNumberFormat="1"/></{p}cellXfs>'
        f'<{p}cellStyles count="1"><{p}cellStyle name="Normal" xfId="0" builtinId="0"/></{p}cellStyles>'
        f'</{p}styleSheet>',
        "xl/sharedStrings.xml": decl +
        f'<{p}sst {ns} count="6" uniqueCount="5">'
        f'<{p}si><{p}t>SecId</{p}t></{p}si>'
        f'<{p}si><{p}t>Caudal</{p}t></{p}si>'
        f'<{p}si><{p}r><{p}rPr><{p}b/></{p}rPr><{p}t>Rugo</{p}t></{p}r><{p}r><{p}t>sidad</{p}t></{p}r>'
        f'<{p}rPh sb="0" eb="1"><{p}t>ルビ</{p}t></{p}rPh></{p}si>'
        f'<{p}si><{p}t xml:space="preserve"> río  </{p}t></{p}si>'
        f'<{p}si><{p}t>línea_x000D_\nnueva</{p}t></{p}si>'
        f'</{p}sst>',
        # Row 1: header. Row 2: numbers, a shared string with spaces, a boolean, an error. Row 3 has no
        # cell references (cells follow one another), a formula with a string result, an inline string.
        # E2 holds the text of a shared formula that E4 uses too; calcChain lists E2..E4 and F3.
        "xl/worksheets/sheet1.xml": decl +
        f'<{p}worksheet {ns}><{p}dimension ref="A1:G4"/><{p}sheetData>'
        f'<{p}row r="1"><{p}c r="A1" t="s"><{p}v>0</{p}v></{p}c><{p}c r="B1" t="s"><{p}v>2</{p}v></{p}c>'
        f'<{p}c r="C1" t="s"><{p}v>1</{p}v></{p}c><{p}c r="D1" t="inlineStr"><{p}is><{p}t>Nota</{p}t></{p}is></{p}c>'
        f'<{p}c r="E1" t="inlineStr"><{p}is><{p}t>Doble</{p}t></{p}is></{p}c>'
        f'<{p}c r="F1" t="inlineStr"><{p}is><{p}t>Texto</{p}t></{p}is></{p}c>'
        f'<{p}c r="G1" t="inlineStr"><{p}is><{p}t>Extra</{p}t></{p}is></{p}c></{p}row>'
        f'<{p}row r="2"><{p}c r="A2"><{p}v>1</{p}v></{p}c><{p}c r="B2" s="1"><{p}v>0.035000000000000003</{p}v></{p}c>'
        f'<{p}c r="C2"><{p}v>12.5</{p}v></{p}c><{p}c r="D2" t="s"><{p}v>3</{p}v></{p}c>'
        f'<{p}c r="E2"><{p}f t="shared" ref="E2:E4" si="0">C2*2</{p}f><{p}v>25</{p}v></{p}c>'
        f'<{p}c r="F2" t="b"><{p}v>1</{p}v></{p}c></{p}row>'
        f'<{p}row><{p}c><{p}v>2</{p}v></{p}c><{p}c><{p}v>-2.5</{p}v></{p}c><{p}c><{p}v>1E-3</{p}v></{p}c>'
        f'<{p}c t="s"><{p}v>4</{p}v></{p}c><{p}c><{p}f>C3*2</{p}f><{p}v>0.002</{p}v></{p}c>'
        f'<{p}c t="str"><{p}f>"Q="&amp;C3</{p}f><{p}v>Q=0.001</{p}v></{p}c></{p}row>'
        f'<{p}row r="4"><{p}c r="A4"><{p}v>3</{p}v></{p}c><{p}c r="C4"><{p}v>100</{p}v></{p}c>'
        f'<{p}c r="D4" t="e"><{p}v>#DIV/0!</{p}v></{p}c>'
        f'<{p}c r="E4"><{p}f t="shared" si="0"/><{p}v>200</{p}v></{p}c>'
        f'<{p}c r="F4" t="inlineStr"><{p}is><{p}r><{p}t>ca</{p}t></{p}r><{p}r><{p}t>ñón</{p}t></{p}r></{p}is></{p}c></{p}row>'
        f'</{p}sheetData></{p}worksheet>',
        "xl/calcChain.xml": decl +
        f'<{p}calcChain {ns}><{p}c r="E2" i="1"/><{p}c r="E3"/><{p}c r="F3"/><{p}c r="E4"/></{p}calcChain>',
    }
    if change:
        change(parts)
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as z:
        for name, text in parts.items():
            z.writestr(name, text.encode("utf-8"))


def put(path, sheet, record, column, value):
    wb = openpyxl.load_workbook(path)
    ws = wb[sheet]
    header = [c.value for c in ws[1]]
    ws.cell(1 + int(record), header.index(column) + 1).value = json.loads(value)
    wb.save(path)


def create_bomb(path):
    """A sheet that expands to 200 MB."""
    head = ('<?xml version="1.0" encoding="UTF-8"?><worksheet '
            'xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><sheetData>')
    create_xml(path, change=lambda parts: parts.update(
        {"xl/worksheets/sheet1.xml": head + " " * (200 << 20) + "</sheetData></worksheet>"}))


def create_entities(path):
    """A document type declaring nested entities in xl/workbook.xml."""
    lol = '<!ENTITY lol "lol">' + "".join(
        f'<!ENTITY lol{i} "{("&lol" + (str(i - 1) if i > 1 else "") + ";") * 10}">' for i in range(1, 10))
    create_xml(path, change=lambda parts: parts.update({"xl/workbook.xml": parts["xl/workbook.xml"].replace(
        "?>\n", f"?>\n<!DOCTYPE workbook [{lol}]>", 1).replace('name="Persecc"', 'name="&lol9;"')}))


def formulas(path, sheet):
    ws = openpyxl.load_workbook(path)[sheet]
    print(json.dumps({c.coordinate: c.value for row in ws.iter_rows() for c in row if c.data_type == "f"}))


def cells(ws):
    return {c.coordinate: c.value for row in ws.iter_rows() for c in row if c.value is not None}


def style(c):
    return (c.font.b, c.font.color.rgb if c.font.color else None, c.fill.fill_type,
            c.fill.fgColor.rgb if c.fill.fgColor is not None else None, c.number_format, c.border.left.style)


def verify(original, new, changes_file):
    with open(changes_file, encoding="utf-8") as f:
        changes = json.load(f)
    a = openpyxl.load_workbook(original)
    b = openpyxl.load_workbook(new)
    problems = []
    if a.sheetnames != b.sheetnames:
        problems.append(f"hojas {a.sheetnames} != {b.sheetnames}")
    expected = {}
    for ch in changes:
        ws = a[ch["hoja"]]
        header = [c.value for c in ws[1]]
        coord = ws.cell(1 + ch["registro"], header.index(ch["columna"]) + 1).coordinate
        expected[(ch["hoja"], coord)] = ch["valor"]
    for name in a.sheetnames:
        wa, wb_ = a[name], b[name]
        ca, cb = cells(wa), cells(wb_)
        for coord in sorted(set(ca) | set(cb) | {c for (sheet, c) in expected if sheet == name}):
            want = expected.get((name, coord), ca.get(coord))
            got = cb.get(coord)
            if want != got or type(want) != type(got):
                problems.append(f"{name}!{coord}: se esperaba {want!r}, hay {got!r}")
        for row in wa.iter_rows():
            for c in row:
                if style(c) != style(wb_[c.coordinate]):
                    problems.append(f"{name}!{c.coordinate}: estilo {style(c)} != {style(wb_[c.coordinate])}")
        for what, of in (("celdas combinadas", lambda ws: ws.merged_cells.ranges),
                         ("paneles", lambda ws: ws.freeze_panes),
                         ("anchos", lambda ws: {k: v.width for k, v in ws.column_dimensions.items()})):
            if of(wa) != of(wb_):
                problems.append(f"{name}: {what} {of(wa)} != {of(wb_)}")
    if [(d.name, d.attr_text) for d in a.defined_names.definedName] != \
            [(d.name, d.attr_text) for d in b.defined_names.definedName]:
        problems.append("nombres definidos distintos")
    for p in problems:
        print(p)
    return 1 if problems else 0


def xls_by_libreoffice(path, case):
    import os, subprocess, tempfile
    from openpyxl.chart import LineChart, Reference
    wb = openpyxl.Workbook()
    ws = wb.active
    ws.title = "Persecc"
    ws.append(["Seccion", "Caudal", "Nota"])
    for i in range(1, 4):
        ws.append([i, 10.5 * i, "tramo %d" % i])
    if case == "grafico":
        chart = LineChart()
        chart.add_data(Reference(ws, min_col=2, min_row=1, max_row=4), titles_from_data=True)
        ws.add_chart(chart, "E2")
    elif case == "texto-largo":
        ws["C3"] = "larga " + "x" * 20000
    elif case == "formulas":
        ws["D1"] = "Doble"
        ws["D2"] = "=B2*2"
        ws["E2"] = '=C2&" fin"'
    notes = wb.create_sheet("Notas")
    notes["A1"] = "fin"
    with tempfile.TemporaryDirectory() as tmp:
        src = os.path.join(tmp, os.path.splitext(os.path.basename(path))[0] + ".xlsx")
        wb.save(src)
        # Its own profile folder: a LibreOffice the user has open does not take the conversion over.
        subprocess.run(["soffice", "-env:UserInstallation=file://" + os.path.join(tmp, "perfil"), "--headless",
                        "--convert-to", "xls", "--outdir", tmp, src], check=True, capture_output=True, timeout=300)
        os.replace(os.path.join(tmp, os.path.basename(src)[:-5] + ".xls"), path)


def read(path, sheet):
    ws = openpyxl.load_workbook(path)[sheet]
    print(json.dumps([[c.value for c in row] for row in ws.iter_rows()], ensure_ascii=False, default=str))


def empty_sheet(path, sheet):
    wb = openpyxl.load_workbook(path)
    wb.create_sheet(sheet)
    wb.save(path)


if __name__ == "__main__":
    COMMANDS = {"crear": create, "crear-xls": create_xls, "xls-libreoffice": xls_by_libreoffice, "verificar": verify,
                "crear-xml": create_xml, "formulas": formulas, "poner": put, "hoja-vacia": empty_sheet,
                "crear-bomba": create_bomb, "crear-entidades": create_entities, "leer": read}
    if len(sys.argv) < 2 or sys.argv[1] not in COMMANDS:
        sys.exit(f"orden desconocida: {' '.join(sys.argv[1:2])}")
    sys.exit(COMMANDS[sys.argv[1]](*sys.argv[2:]))
