#!/usr/bin/python3
"""Tests of "cauce seccion": the level table of a section from its survey points, run as a user runs it,
its outputs read back with csv and json, the record it writes with openpyxl and through Form2.

Environment: as cli_test.py (CAUCE, CAUCE_EXAMPLES).
"""
import csv
import io
import json
import os
import sys
import unittest

sys.path.insert(0, os.path.dirname(__file__))
from cli_test import Scratch, sheet_rows  # noqa: E402

# A bar in mid-channel: its stack is known exactly (two V's side by side up to the bar's crest).
ISLOTE = "abscisa;cota\n0;105\n2;100\n4;103\n6;100\n8;105\n"
ISLOTE_NIVELES = [(100, 0), (103, 6.4), (105, 8)]


class Seccion(Scratch):
    def setUp(self):
        super().setUp()
        self.write("islote.csv", ISLOTE)

    def write(self, name, text):
        with open(self.path(name), "w", encoding="utf-8") as f:
            f.write(text)

    def test_formats(self):
        j = json.loads(self.ok("seccion", "islote.csv", "--formato", "json"))
        self.assertEqual([(n["z"], n["t"]) for n in j["niveles"]], ISLOTE_NIVELES)
        self.assertLess(j["error_area"], 1e-9)
        self.assertEqual(len(j["avisos"]), 1)

        # CSV: the table, a blank line, then the figures and the warnings.
        table, _, rest = self.ok("seccion", "islote.csv", "--formato", "csv").partition("\n\n")
        rows = list(csv.DictReader(io.StringIO(table)))
        self.assertEqual([(float(r["z"]), float(r["t"])) for r in rows], ISLOTE_NIVELES)
        figures = list(csv.reader(io.StringIO(rest)))
        self.assertEqual([f[0] for f in figures], ["error_area", "error_perimetro", "aviso"])

        # Tab-separated with decimal commas on the standard input, as pasted from a spreadsheet.
        pasted = "0\t105,5\t\n2,5\t100\t\n5\t105,5\t\n"
        j = json.loads(self.ok("seccion", "-", "--formato", "json", stdin=pasted))
        self.assertEqual([(n["z"], n["t"]) for n in j["niveles"]], [(100, 0), (105.5, 5)])

    def test_writes_the_record_and_the_screen_reads_it(self):
        before = sheet_rows(self.path("Rios.xlsx"), "Persecc")
        self.ok("seccion", "islote.csv", "--libro", "Rios.xlsx", "--hoja", "Persecc", "--registro", "3")
        after = sheet_rows(self.path("Rios.xlsx"), "Persecc")
        levels = ["%s%d" % (c, j) for j in range(1, 16) for c in "zt"]
        for k, (old, new) in enumerate(zip(before, after)):
            for name in old:
                if k != 2 or name not in levels:
                    self.assertEqual(old[name], new[name], "registro %d, columna %s" % (k + 1, name))
        self.assertEqual([(after[2]["z%d" % j], after[2]["t%d" % j]) for j in range(1, 16)],
                         ISLOTE_NIVELES + [(None, None)] * 12)

        # Form2 shows the record's levels in its level table and computes the section from them.
        script = "pantalla Form2\nlibro Rios.xlsx\nregistro 3\nmostrar\n"
        shown = json.loads(self.ok("guion", stdin=script).splitlines()[-1])
        self.assertEqual([shown["Text%d" % k] for k in range(1, 9)], ["100", "0", "103", "6.4", "105", "8", "", ""])

    def test_refusals(self):
        original = self.read("Rios.xlsx")
        self.write("malo.csv", "0;105\n5;cien\n10;105\n")
        self.write("cero.csv", "0;5\n5;0\n10;5\n")
        cases = [
            # (arguments, exit status, message)
            (["malo.csv"], 1, "malo.csv: Línea 2: «5;cien» no son dos números (abscisa y cota)."),
            (["no-existe.csv"], 1, "No se puede leer el archivo de puntos no-existe.csv."),
            (["islote.csv", "--libro", "Rios.xlsx", "--hoja", "Persecc", "--registro", "40"], 1,
             'El registro 40 no existe: la hoja "Persecc" tiene 12 registros.'),
            (["islote.csv", "--libro", "Rios.xlsx", "--hoja", "Canales", "--registro", "1"], 1,
             'La hoja "Canales" no tiene la tabla de niveles (columnas z1..z15 y t1..t15); no se escribió nada.'),
            (["cero.csv", "--libro", "Rios.xlsx", "--hoja", "Persecc", "--registro", "1"], 1,
             "un nivel tiene la cota 0"),
            (["islote.csv", "--niveles", "16"], 2, '--niveles: "16" no es un número de niveles de 2 a 15'),
            (["islote.csv", "--registro", "2"], 2, "--hoja y --registro piden --libro"),
            ([], 2, "falta el archivo de PUNTOS"),
        ]
        for args, status, message in cases:
            with self.subTest(args=args):
                r = self.run_cauce("seccion", *args)
                self.assertEqual(r.returncode, status, r.stderr)
                self.assertIn(message, r.stderr)
                self.assertEqual(r.stdout, "")
        self.assertEqual(self.read("Rios.xlsx"), original)


if __name__ == "__main__":
    unittest.main()
