#!/usr/bin/python3
"""cauce libro (a reach's workbook from nothing, records added, deleted, renumbered), the project data
of cauce informe, and CSV with ";" and the decimal comma, run as a user runs them and read back with
openpyxl, LibreOffice, pdftotext and Python's csv reader.

Environment: as cli_test.py (CAUCE, CAUCE_EXAMPLES, CAUCE_WITH_GUI).
"""
import csv
import io
import os
import shutil
import subprocess
import sys
import unittest
import zipfile

import openpyxl

sys.path.insert(0, os.path.dirname(__file__))
from cli_test import EXAMPLES, WITH_GUI, Scratch, sheet_rows  # noqa: E402


def column(path, name, sheet="Persecc"):
    return [r[name] for r in sheet_rows(path, sheet)]


class LibroTest(Scratch):
    """A new workbook holds every screen's sheet with the columns the screens bind; records move."""

    SHEETS = ["Canales", "Persecc", "secciones ", "Percanal", "Zorvena"]

    def test_new_workbook_has_every_screen_sheet(self):
        self.ok("libro", "nuevo", "tramo.xlsx")
        self.assertEqual(openpyxl.load_workbook(self.path("tramo.xlsx")).sheetnames, self.SHEETS)
        self.assertEqual(column(self.path("tramo.xlsx"), "No# secciones"), [1])
        # Every screen opens it with one record and says nothing of missing columns.
        for form in ("Form1", "Form2", "Form3", "Form4", "Form5"):
            out = self.guion(["pantalla %s" % form, "libro tramo.xlsx", "mostrar"])[-1]
            self.assertNotIn("aviso", out, form)
            self.assertEqual(out.get("registro"), "1 de 1", form)

    def test_opens_in_libreoffice(self):
        if not shutil.which("soffice"):
            self.skipTest("sin LibreOffice")
        self.ok("libro", "nuevo", "tramo.xlsx")
        out = os.path.join(self.dir, "csv")
        r = subprocess.run(["soffice", "--headless", "-env:UserInstallation=file://%s/lo" % self.dir,
                            "--convert-to", "csv:Text - txt - csv (StarCalc):44,34,76,1,,0,false,true,false,false,false,-1",
                            "--outdir", out, self.path("tramo.xlsx")], capture_output=True, text=True, timeout=240)
        self.assertEqual(r.returncode, 0, r.stderr)
        made = sorted(os.listdir(out))
        self.assertEqual(len(made), len(self.SHEETS), made)
        persecc = next(f for f in made if "Persecc" in f)
        with open(os.path.join(out, persecc), encoding="utf-8") as f:
            header, first = list(csv.reader(f))[:2]
        self.assertEqual(header[:3], ["SecId", "No# secciones", "z1"])
        self.assertEqual(first[:2], ["1", "1"])

    def test_add_delete_renumber(self):
        self.ok("libro", "nuevo", "tramo.xlsx")
        wb = openpyxl.load_workbook(self.path("tramo.xlsx"))
        ws = wb["Persecc"]
        header = [c.value for c in ws[1]]
        ws.cell(2, header.index("Caudal") + 1, 38)  # the reach's discharge: copied to a new record
        ws.cell(2, header.index("z1") + 1, 120)     # the section's own: not copied
        wb.save(self.path("tramo.xlsx"))

        self.ok("libro", "agregar", "tramo.xlsx", "--hoja", "Persecc")            # at the end: record 2
        self.ok("libro", "agregar", "tramo.xlsx", "--hoja", "Persecc", "--despues", "0")  # a new first
        p = self.path("tramo.xlsx")
        self.assertEqual(column(p, "Caudal"), [38, 38, 38])
        self.assertEqual(column(p, "z1"), [None, 120, None])
        self.ok("libro", "renumerar", "tramo.xlsx")  # the first profile sheet: Persecc
        self.assertEqual(column(p, "SecId"), [1, 2, 3])
        self.assertEqual(column(p, "No# secciones"), [3, 3, 3])
        self.ok("libro", "eliminar", "tramo.xlsx", "--hoja", "Persecc", "--registro", "1")
        self.assertEqual(column(p, "z1"), [120, None])
        # Other sheets are untouched.
        self.assertEqual(column(p, "No# secciones", "Percanal"), [1])

    def test_bad_requests_change_nothing(self):
        self.ok("libro", "nuevo", "tramo.xlsx")
        before = {name: self.read(name) for name in ("tramo.xlsx", "Rios.xlsx")}
        cases = [
            # A new workbook never replaces a file, nor makes a folder.
            (["nuevo", "Rios.xlsx"], "ya existe: elija otro nombre"),
            (["nuevo", "no-hay/tramo.xlsx"], "cauce libro nuevo: "),
            (["eliminar", "tramo.xlsx", "--hoja", "Persecc", "--registro", "1"], "un solo registro"),
            (["agregar", "tramo.xlsx", "--hoja", "Persecc", "--despues", "4"], "no existe"),
            (["agregar", "tramo.xlsx", "--hoja", "Hoja9"], "no tiene la hoja"),
            (["renumerar", "tramo.xlsx", "--hoja", "Canales"], "no hay nada que renumerar"),
            (["agregar", "no-hay.xlsx"], "no-hay.xlsx"),
        ]
        for args, message in cases:
            r = self.run_cauce("libro", *args)
            self.assertEqual(r.returncode, 1, (args, r.stderr))
            self.assertIn(message, r.stderr, args)
        self.assertEqual({name: self.read(name) for name in before}, before)
        self.assertFalse(os.path.exists(self.path("no-hay")))
        self.assertEqual(self.run_cauce("libro").returncode, 2)


class ProyectoTest(Scratch):
    """The report's project data: given for one report, or kept in the workbook with --guardar."""

    def pdf(self, name):
        return subprocess.run(["pdftotext", self.path(name), "-"], capture_output=True, text=True).stdout

    def test_project_fields_travel_with_the_workbook(self):
        if not WITH_GUI:
            self.skipTest("sin la aplicación de escritorio")
        self.ok("informe", "Rios.xlsx", "--y-inicial", "1.8", "-o", "a.pdf", "--proyecto", "Canal Sur",
                "--cliente", "Municipio", "--autor", "Ana Pérez", "--reviso", "Luis Mora")
        text = self.pdf("a.pdf")
        for s in ("Proyecto: Canal Sur", "Cliente: Municipio", "Autor: Ana Pérez", "Revisó: Luis Mora",
                  "Métodos", "Manning", "0.005 m", "Página 1 de", "Libro: Rios.xlsx"):
            self.assertIn(s, text)
        self.assertNotIn(self.dir, text)  # the file's name only, never the machine's folders
        pages = text.count("Página ")
        self.assertIn("Página %d de %d" % (pages, pages), text)
        # Not stored without --guardar.
        self.ok("informe", "Rios.xlsx", "--y-inicial", "1.8", "-o", "b.pdf")
        self.assertIn("Proyecto: —", self.pdf("b.pdf"))
        self.ok("informe", "Rios.xlsx", "--y-inicial", "1.8", "-o", "c.pdf", "--proyecto", "Canal Sur",
                "--guardar")
        self.ok("informe", "Rios.xlsx", "--y-inicial", "1.8", "-o", "d.pdf", "--autor", "Otro")
        text = self.pdf("d.pdf")
        self.assertIn("Proyecto: Canal Sur", text)
        self.assertIn("Autor: Otro", text)
        with zipfile.ZipFile(self.path("Rios.xlsx")) as z:  # a custom property other programs show
            self.assertIn('name="Proyecto"><vt:lpwstr>Canal Sur</vt:lpwstr>', z.read("docProps/custom.xml").decode())
        # The workbook's sheets are as they were.
        self.assertEqual(sheet_rows(self.path("Rios.xlsx"), "Persecc"),
                         sheet_rows(os.path.join(EXAMPLES, "Rios.xlsx"), "Persecc"))


class SeparadorTest(Scratch):
    """cauce perfil --formato csv --separador ";" writes decimal commas that a Spanish spreadsheet reads."""

    def test_semicolon_and_comma(self):
        point = list(csv.reader(io.StringIO(self.ok("perfil", "Rios.xlsx", "--y-inicial", "1.8",
                                                    "--formato", "csv"))))
        comma = list(csv.reader(io.StringIO(self.ok("perfil", "Rios.xlsx", "--y-inicial", "1.8", "--formato",
                                                    "csv", "--separador", ";")), delimiter=";"))
        self.assertEqual(point[0], comma[0])
        self.assertEqual(len(point), len(comma))
        # One row per section, in order, each with every column.
        self.assertEqual([r[point[0].index("seccion")] for r in point[1:]], [str(k) for k in range(1, 13)])
        self.assertEqual({len(r) for r in point}, {len(point[0])})
        for a, b in zip(point[1:], comma[1:]):
            # Numbers change their point for a comma, texts (the workbook's name) stay.
            self.assertEqual([x.replace(".", ",") if x.replace(".", "").isdigit() else x for x in a], b)
        r = self.run_cauce("perfil", "Rios.xlsx", "--y-inicial", "1.8", "--formato", "csv", "--separador", "|")
        self.assertEqual(r.returncode, 2)
        self.assertIn("--separador", r.stderr)


if __name__ == "__main__":
    unittest.main()
