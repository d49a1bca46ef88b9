#!/usr/bin/python3
"""Writes the seed corpora of the workbook fuzz targets (run once; the files are in the repository).

  corpus/workbook/      small valid workbooks: openpyxl's .xlsx, an .xlsx written part by part as Excel
                        writes it (tests/workbook/workbooks.py crear-xml), a legacy .xls written by xlwt
  corpus/workbook_xml/  the XML parts of such workbooks as workbook_xml_fuzz reads them: "@@ name" lines,
                        each followed by the part's text (styles, themes and document properties left
                        out: the reader never opens them)
"""
import io
import os
import sys
import zipfile

import openpyxl
import xlwt

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "tests", "workbook"))
import workbooks  # noqa: E402

READ_PARTS = ("[Content_Types].xml", "_rels/.rels", "xl/workbook.xml", "xl/_rels/workbook.xml.rels",
              "xl/sharedStrings.xml", "xl/calcChain.xml")


def openpyxl_book():
    wb = openpyxl.Workbook()
    ws = wb.active
    ws.title = "Persecc"
    ws.append(["SecId", "No# secciones", "z1", "t1", "Rugosidad", "Si", "Caudal"])
    ws.append([1, 2, 100.0, 2.0, 0.03, 0.002, 12.5])
    ws.append([2, 2, 99.8, "=D2*1.5", 0.03, True, None])
    wb.create_sheet("Notas")["A1"] = "río"
    out = io.BytesIO()
    wb.save(out)
    return out.getvalue()


def excel_book(prefix=""):
    path = os.path.join(HERE, "corpus", "_tmp.xlsx")
    workbooks.create_xml(path, prefix)
    with open(path, "rb") as f:
        data = f.read()
    os.remove(path)
    return data


def xls_book():
    book = xlwt.Workbook(encoding="utf-8")
    ws = book.add_sheet("Persecc")
    for j, h in enumerate(["SecId", "z1", "t1", "Caudal", "Notas"]):
        ws.write(0, j, h)
    ws.write(1, 0, 1)
    ws.write(1, 1, 100.25)
    ws.write(1, 2, 2)
    ws.write(1, 3, 12.5)
    ws.write(1, 4, "aguas arriba")
    book.add_sheet("Vacía")
    out = io.BytesIO()
    book.save(out)
    return out.getvalue()


def parts_text(xlsx):
    with zipfile.ZipFile(io.BytesIO(xlsx)) as z:
        names = [n for n in z.namelist() if n in READ_PARTS or n.startswith("xl/worksheets/sheet")]
        return b"".join(b"@@ " + n.encode() + b"\n" + z.read(n) + b"\n" for n in names)


def write(folder, name, data):
    os.makedirs(os.path.join(HERE, "corpus", folder), exist_ok=True)
    with open(os.path.join(HERE, "corpus", folder, name), "wb") as f:
        f.write(data)


def main():
    books = {"openpyxl": openpyxl_book(), "excel": excel_book(), "excel_prefijo": excel_book("x")}
    for name, data in books.items():
        write("workbook", name + ".xlsx", data)
        write("workbook_xml", name, parts_text(data))
    write("workbook", "xlwt.xls", xls_book())


if __name__ == "__main__":
    main()
