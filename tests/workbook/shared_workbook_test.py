#!/usr/bin/python3
"""A workbook shared by two Cauce processes and by LibreOffice, as users share one.

  shared_workbook_test.py -v GuionesTest       two "cauce guion" save one workbook at the same instant
  shared_workbook_test.py -v LibreOfficeTest   LibreOffice (headless, driven through python3-uno) as the
                                          other program: its workbook edited by Cauce, its lock
                                          honoured, Cauce's lock seen by it
Environment and scratch folders: as tests/cli/cli_test.py (CAUCE, CAUCE_EXAMPLES).
"""
import json
import os
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

import openpyxl

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "cli"))
from cli_test import CAUCE, EXAMPLES, Scratch, sheet_rows  # noqa: E402


def caudal(path, record):
    return sheet_rows(path, "Persecc")[record - 1]["Caudal"]


def cells(path):
    """Every cell that holds something (a formula as its text), by sheet and coordinate."""
    return {(ws.title, c.coordinate): c.value for ws in openpyxl.load_workbook(path) for row in ws.iter_rows()
            for c in row if c.value is not None}


class GuionesTest(Scratch):
    """Each process types its edit and waits; both get the end of their script at once and save."""

    def race(self, a, b):
        procs = []
        for script in (a, b):
            p = subprocess.Popen([CAUCE, "guion"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                 stderr=subprocess.PIPE, text=True, cwd=self.dir, env=self.env)
            p.stdin.write(script)
            p.stdin.flush()
            procs.append(p)
        # Both have read their workbook (and shown it) before either saves.
        for p in procs:
            p.stdin.write("mostrar\n")
            p.stdin.flush()
            p.stdout.readline()
        for p in procs:
            p.stdin.write("registro 2\n")
            p.stdin.close()
        return [(p.wait(timeout=60), p.stderr.read()) for p in procs]

    def test_same_cell_one_save_refused_and_the_file_holds_the_other(self):
        results = self.race("pantalla Form2\nlibro Rios.xlsx\nescribir Text95 111\n",
                            "pantalla Form2\nlibro Rios.xlsx\nescribir Text95 222\n")
        statuses = sorted(r[0] for r in results)
        self.assertEqual(statuses, [0, 1], results)
        saved, refused = (111, 222) if results[0][0] == 0 else (222, 111)
        err = [r[1] for r in results if r[0] == 1][0]
        self.assertIn(f'en la hoja "Persecc", registro 1, columna "Caudal", otro programa guardó {saved} y en '
                      f'Cauce se escribió {refused}', err)
        self.assertEqual(caudal(self.path("Rios.xlsx"), 1), saved)


class LibreOfficeTest(Scratch):
    """One LibreOffice for the whole class: starting it costs seconds."""

    @classmethod
    def setUpClass(cls):
        import uno  # noqa: F401  (python3-uno)
        cls.profile = tempfile.mkdtemp(prefix="cauce-lo-perfil-")
        pipe = "cauce" + str(os.getpid())
        cls.office = subprocess.Popen(
            ["soffice", "--headless", "--invisible", "--norestore", "--nologo", "--nodefault",
             "-env:UserInstallation=file://" + cls.profile, f"--accept=pipe,name={pipe};urp;"],
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        local = uno.getComponentContext()
        resolver = local.ServiceManager.createInstanceWithContext("com.sun.star.bridge.UnoUrlResolver", local)
        deadline = time.time() + 240
        while True:
            try:
                ctx = resolver.resolve(f"uno:pipe,name={pipe};urp;StarOffice.ComponentContext")
                break
            except Exception:
                if time.time() > deadline or cls.office.poll() is not None:
                    raise
                time.sleep(0.25)
        cls.desktop = ctx.ServiceManager.createInstanceWithContext("com.sun.star.frame.Desktop", ctx)

    @classmethod
    def tearDownClass(cls):
        try:
            cls.desktop.terminate()
        except Exception:
            pass
        try:
            cls.office.wait(timeout=30)
        except subprocess.TimeoutExpired:
            cls.office.kill()
        shutil.rmtree(cls.profile, ignore_errors=True)

    def load(self, path):
        import uno
        from com.sun.star.beans import PropertyValue
        hidden = PropertyValue(Name="Hidden", Value=True)
        return self.desktop.loadComponentFromURL(uno.systemPathToFileUrl(path), "_blank", 0, (hidden,))

    def save_as_xlsx(self, doc, path):
        import uno
        from com.sun.star.beans import PropertyValue
        xlsx = PropertyValue(Name="FilterName", Value="Calc MS Excel 2007 XML")
        doc.storeToURL(uno.systemPathToFileUrl(path), (xlsx,))

    def test_libreoffice_workbook_edited_by_cauce_recalculates_and_keeps_the_rest(self):
        book = self.path("Rios.xlsx")
        # A workbook made by LibreOffice: the example's sheets, a sheet "Resumen" summing the
        # discharge column, and a record whose discharge is a formula.
        doc = self.load(os.path.join(EXAMPLES, "Rios.xlsx"))
        sheets = doc.Sheets
        ws = openpyxl.load_workbook(book)["Persecc"]
        column = [c.value for c in ws[1]].index("Caudal")
        discharges = [ws.cell(r, column + 1).value or 0 for r in range(2, 14)]
        sheets.insertNewByName("Resumen", sheets.Count)
        letter = openpyxl.utils.get_column_letter(column + 1)
        sheets.getByName("Resumen").getCellByPosition(0, 0).setFormula(f"=SUM(Persecc.{letter}2:{letter}13)")
        sheets.getByName("Persecc").getCellByPosition(column, 3).setFormula(f"={letter}2")
        self.save_as_xlsx(doc, book)
        doc.close(True)
        first, third = discharges[0], discharges[2]
        before = cells(book)

        # Cauce changes the first record's discharge; the record fed by a formula says so.
        r = self.run_cauce("guion", stdin="pantalla Form2\nlibro Rios.xlsx\nregistro 3\nmostrar\nregistro 1\n"
                           f"escribir Text95 {first + 7}\nregistro 2\n")
        self.assertEqual(r.returncode, 0, r.stderr)
        self.assertEqual(json.loads(r.stdout.splitlines()[0])["Text95"], format(first, "g"))

        # LibreOffice with its default settings shows the recomputed results.
        doc = self.load(book)
        try:
            got = doc.Sheets.getByName("Resumen").getCellByPosition(0, 0).getValue()
            fed = doc.Sheets.getByName("Persecc").getCellByPosition(column, 3)
            self.assertEqual(got, sum(discharges) - first - third + 2 * (first + 7))
            self.assertEqual(fed.getValue(), first + 7)
            self.assertEqual(fed.getFormula(), f"={letter}2")
        finally:
            doc.close(True)
        # Cauce shows the formula's value from the cells as they are now, and says when an edit
        # replaces it.
        r = self.run_cauce("guion", stdin="pantalla Form2\nlibro Rios.xlsx\nregistro 3\nmostrar\n"
                           "escribir Text95 50\nregistro 1\nmostrar\n")
        self.assertEqual(r.returncode, 0, r.stderr)
        shown, moved = (json.loads(line) for line in r.stdout.splitlines())
        self.assertEqual(shown["Text95"], format(first + 7, "g"))
        self.assertIn(f"Se reemplazó la fórmula ={letter}2 de la hoja \"Persecc\" (registro 3, columna \"Caudal\") "
                      "por el valor 50.", moved["aviso"])
        self.assertEqual(caudal(book, 3), 50)
        # Both edits kept, nothing else changed.
        before.update({("Persecc", f"{letter}2"): first + 7, ("Persecc", f"{letter}4"): 50})
        self.assertEqual(cells(book), before)

    def test_locks_both_ways(self):
        book = self.path("Rios.xlsx")
        lock = self.path(".~lock.Rios.xlsx#")

        # LibreOffice holds the workbook: Cauce reads it, says who holds it, saves nothing.
        doc = self.load(book)
        try:
            with open(lock, encoding="utf-8") as f:
                theirs = f.read()
            self.assertTrue(theirs.endswith(";"), theirs)
            original = self.read("Rios.xlsx")
            r = self.run_cauce("guion", stdin="pantalla Form2\nlibro Rios.xlsx\nmostrar\nescribir Text95 5\n"
                               "registro 2\n")
            self.assertEqual(r.returncode, 1)
            self.assertIn("está abierto para edición por", json.loads(r.stdout)["aviso"])
            self.assertIn("Sus cambios no se guardaron", r.stderr)
            self.assertEqual(self.read("Rios.xlsx"), original)
            self.assertEqual(open(lock, encoding="utf-8").read(), theirs)
        finally:
            doc.close(True)
        self.assertFalse(os.path.exists(lock))

        # Cauce holds it (a script waiting on its input): LibreOffice opens it read-only.
        p = subprocess.Popen([CAUCE, "guion"], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                             cwd=self.dir, env=self.env)
        try:
            p.stdin.write("pantalla Form2\nlibro Rios.xlsx\nmostrar\n")
            p.stdin.flush()
            p.stdout.readline()
            self.assertTrue(os.path.exists(lock))
            # Headless, with nobody to ask, LibreOffice does not open a locked file for editing.
            doc = self.load(book)
            self.assertTrue(doc is None or doc.isReadonly())
            if doc is not None:
                doc.close(True)
        finally:
            p.stdin.close()
            p.wait(timeout=30)
        self.assertFalse(os.path.exists(lock))
        doc = self.load(book)
        try:
            self.assertFalse(doc.isReadonly())
        finally:
            doc.close(True)


if __name__ == "__main__":
    unittest.main()
