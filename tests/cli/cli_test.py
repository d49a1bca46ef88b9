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
import shutil
import subprocess
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

    def read(self, name):
        with open(self.path(name), "rb") as f:
            return f.read()

    def edited(self, name, change):
        """A copy of Rios.xlsx named name, its sheet Persecc passed through change(ws) by openpyxl."""
        wb = openpyxl.load_workbook(self.path("Rios.xlsx"))
        change(wb["Persecc"])
        wb.save(self.path(name))


def sheet_rows(path, sheet):
    """The sheet's records as dicts by header, read by openpyxl."""
    ws = openpyxl.load_workbook(path, data_only=True)[sheet]
    rows = list(ws.iter_rows(values_only=True))
    head = rows[0]
    return [dict(zip(head, r)) for r in rows[1:] if any(v is not None for v in r)]


def results(out):
    """The rows of cauce canal's JSON output by name."""
    return {r["nombre"]: r["valores"] for r in json.loads(out)["resultados"]}


def same(value, shown):
    """A value of the JSON output against the text the screen shows: the same number, or the same text."""
    try:
        return value == float(shown)
    except ValueError:
        return value == shown


class PasoEstandarTest(Scratch):
    """cauce perfil --metodo: the standard-step profile and the warnings beside the screen's profile."""

    def test_bundled_reach_shows_the_warnings(self):
        # Persecc from 2.2 m (its regimes and jump: StandardStepNatural in tests/unit).
        reach = json.loads(self.ok("perfil", "Rios.xlsx", "--y-inicial", "2.2", "--metodo", "ambos", "--formato",
                                   "json"))[0]
        self.assertEqual(reach["perfil"][-1]["estandar"]["y"], 2.2)
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


class PerfilTest(Scratch):
    """cauce perfil over several workbooks (its numbers against the screens: tests/app/tst_session.cpp)."""

    def test_several_workbooks_in_one_call(self):
        for k in range(2):
            shutil.copy(self.path("Rios.xlsx"), self.path("tramo-%d.xlsx" % k))
        r = self.run_cauce("perfil", "tramo-0.xlsx", "--y-inicial", "1.8", "--formato", "json")
        self.assertEqual(r.stderr, "")  # no progress when standard error is not a terminal
        out = json.loads(r.stdout)
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
    """A section without discharge (the CSV's shape: SeparadorTest in workbook_command_test.py)."""

    def test_a_section_without_discharge(self):
        # Record 1, column AI ("Caudal"): no discharge, the screen computes nothing.
        self.edited("sin-caudal.xlsx", lambda ws: ws.cell(row=2, column=35, value=0))
        out = self.ok("perfil", "sin-caudal.xlsx", "--y-inicial", "1.8", "--formato", "csv")
        rows = list(csv.DictReader(io.StringIO(out)))
        self.assertEqual(rows[0]["yn_m"], "")
        self.assertIn("Sin caudal", rows[0]["aviso"])

class GuardarTest(Scratch):
    """--guardar writes the table into the record of the last section, as the screen's binding does."""

    def test_save_writes_the_table_of_the_last_record_and_only_then(self):
        original = self.read("Rios.xlsx")
        self.ok("perfil", "Rios.xlsx", "--y-inicial", "1.8")
        self.assertEqual(self.read("Rios.xlsx"), original)
        before = sheet_rows(self.path("Rios.xlsx"), "Persecc")
        out = json.loads(self.ok("perfil", "Rios.xlsx", "--y-inicial", "1.8", "--guardar", "--formato", "json"))
        self.assertTrue(out[0]["guardado"])
        after = sheet_rows(self.path("Rios.xlsx"), "Persecc")
        last = max(range(len(before)), key=lambda k: before[k]["SecId"])
        for p in out[0]["perfil"]:
            j = p["seccion"]
            self.assertEqual(after[last]["Tipo%d" % j], p["tipo"])
            self.assertAlmostEqual(after[last]["Za%d" % j], p["z_agua"], places=9)
        self.assertEqual(before[:last] + before[last + 1:], after[:last] + after[last + 1:])  # the other records


class UniformeTest(Scratch):
    """cauce canal shows what Form1 shows for the same boxes."""

    def test_channel_matches_the_screen(self):
        option_of = {"Text1": "--rugosidad", "Text2": "--pendiente", "Text3": "--base", "Text4": "--talud",
                     "Text5": "--altura", "Text6": "--ancho-zona", "Text7": "--rugosidad-zona", "Text8": "--caudal",
                     "Text9": "--tirante"}
        box_of = {"Caudal Q": "Text8", "Profundidad Yn": "Text9", "Ancho T": "Text10", "Velocidad Vn": "Text11",
                  "Froude": "Text26", "Y critica Yc": "Text12", "V critica Vc": "Text13"}
        cases = [  # boxes typed on Form1, button
            ({"Text1": "0.013", "Text2": "0.002", "Text3": "3", "Text4": "0", "Text9": "0.8"}, "Command5"),
            ({"Text1": "0.015", "Text2": "0.001", "Text3": "2", "Text4": "1", "Text5": "1", "Text6": "20",
              "Text7": "0.035", "Text8": "15"}, "Command4"),
        ]
        for boxes, button in cases:
            with self.subTest(boxes=boxes):
                typed = ["escribir %s %s" % (b, v) for b, v in boxes.items()]
                shown = self.guion(["pantalla Form1", "oprimir Command1", *typed, "oprimir " + button, "mostrar"])[0]
                options = [word for box, v in boxes.items() for word in (option_of[box], v)]
                text = self.ok("canal", *options, "--formato", "json")
                values = results(text)
                out = json.loads(text)
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
            single = results(self.ok("canal", *channel, "--caudal", r["caudal_m3s"], "--formato", "json"))
            self.assertEqual(float(r["yn_m"]), single["Profundidad Yn"][0])

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
        self.assertTrue(self.read("curva.png").startswith(b"\x89PNG\r\n\x1a\n"))
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
        pdf = subprocess.run(["pdftotext", "-layout", self.path("informe.pdf"), "-"], capture_output=True,
                             text=True).stdout
        for heading in ("Informe de cálculo hidráulico", "Datos de entrada", "Resultados por sección",
                        "Perfil de la superficie del agua", "Perfil longitudinal", "Secciones transversales",
                        "Sección 12 (registro 12)", "Y inicial en la sección 12: 1.8 m",
                        "5. Perfil por paso estándar y avisos", "Aviso sobre el perfil de la pantalla"):
            self.assertIn(heading, pdf)
        reach = json.loads(self.ok("perfil", "Rios.xlsx", "--y-inicial", "1.8", "--formato", "json"))[0]
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

    def test_bad_command_lines(self):
        channel = ["--base", "2", "--talud", "1", "--rugosidad", "0.015", "--pendiente", "0.001"]
        cases = [  # arguments, exit status, part of the message
            (["perfil", "Rios.xlsx"], 2, "falta el tirante"),
            (["perfil", "Rios.xlsx", "--y-inicial", "1,8"], 2, "el separador decimal es el punto"),
            (["perfil", "Rios.xlsx", "--y-inicial", "1", "--formato", "xml"], 2, "formato desconocido"),
            (["perfil", "Rios.xlsx", "--y-inicial", "1", "--hoja", "Hoja1"], 2, "no es una hoja de perfiles"),
            (["perfil", "Rios.xlsx", "--y-inicial", "1", "--color"], 2, "Argumento no reconocido: --color"),
            (["perfil", "Ormandi.xlsx", "--y-inicial", "1"], 1, "necesita --y-final"),
            (["canal", *channel], 2, "dé --caudal"),
            (["canal", *channel, "--caudal", "1", "--tirante", "1"], 2, "uno de los dos"),
            (["canal", "--base", "dos", "--caudal", "1"], 2, "--base: \"dos\" no es un número"),
            (["curva", "--desde", "1", "--hasta", "2", "--paso", "1"], 2, "diga de qué sección"),
            (["curva", *channel, "--desde", "5", "--hasta", "1", "--paso", "1"], 2, "es menor que --desde"),
            (["curva", *channel, "--diametro", "1", "--desde", "1", "--hasta", "2", "--paso", "1"], 2, "elija canal o"),
            (["curva", "Rios.xlsx", "--registro", "99", "--desde", "1", "--hasta", "2", "--paso", "1"], 1,
             "El registro 99 no existe"),
            (["informe", "Rios.xlsx", "--y-inicial", "1.8"], 2, "falta -o"),
        ]
        for args, status, message in cases:
            with self.subTest(args=args):
                r = self.run_cauce(*args)
                self.assertEqual(r.returncode, status, r.stdout + r.stderr)
                self.assertIn(message, r.stderr)
                self.assertNotIn(" is required", r.stderr)  # nothing left in English

    def test_every_command_has_its_help_in_spanish(self):
        for command in ("perfil", "canal", "tubo", "curva", "informe", "libro", "seccion"):
            out = self.ok(command, "--help")
            self.assertIn("Uso: cauce " + command, out)
            self.assertNotIn("Options", out)

    def test_section_table_errors_are_reported(self):
        # Record 2 with an elevation that does not rise: the screen says so and the call fails.
        self.edited("cotas.xlsx", lambda ws: ws.cell(row=3, column=5, value=119.0))
        r = self.run_cauce("perfil", "cotas.xlsx", "--y-inicial", "1.8", "--formato", "json")
        self.assertEqual(r.returncode, 1)
        sections = json.loads(r.stdout)[0]["secciones"]
        # The records after it are not blamed for it.
        self.assertEqual([s["aviso"] for s in sections[1:3]], ["Revise las cotas Zi. Hay un error", None])
        self.assertIn("registro 2 (sección 2): Revise las cotas Zi. Hay un error", r.stderr)

    def test_a_reach_without_its_last_section(self):
        self.edited("sin-ultima.xlsx", lambda ws: ws.delete_rows(13))  # the record of section 12
        r = self.run_cauce("perfil", "sin-ultima.xlsx", "--y-inicial", "1.8")
        self.assertEqual(r.returncode, 1)
        self.assertIn("Ningún registro tiene el número de sección igual al número de secciones", r.stderr)

    def test_a_fault_in_a_section_is_told_and_the_run_goes_on(self):
        # Record 3 numbered 60 in a reach of 70: beyond the screen's arrays (0..50), its click faults;
        # the other sections are still computed, and the profile, missing a section, cannot be.
        self.edited("indice.xlsx", lambda ws: (ws.cell(row=4, column=1, value=60), ws.cell(row=4, column=2, value=70)))
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


if __name__ == "__main__":
    unittest.main()
