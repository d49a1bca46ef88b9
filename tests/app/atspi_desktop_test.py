#!/usr/bin/python3
"""The real desktop driven through the accessibility bus, as a screen reader and its user drive it.

cauce starts on Form2 over a scratch copy of the example workbook Rios; the test finds the boxes by the
names a screen reader says, types with real key events, presses F5 ("Calcular el tramo") and reads the
results, which must be the numbers `cauce perfil` gives for the same reach. A data box changed after
the computation marks the results "desactualizado" in their accessible description.

Usage: atspi_desktop_test.py CAUCE EXAMPLES. Exit status 77 (skipped) when a package is missing.
"""
import json
import os
import shutil
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import atspi_session  # noqa: E402

F5 = 0xFFC2
FORM2 = "Cauce - Perfiles en cauces naturales"


def Expected(cauce, examples, depth):
    """What the command line computes for the same reach, on a copy of its own."""
    with tempfile.TemporaryDirectory(prefix="cauce-atspi-cli-") as scratch:
        shutil.copy(os.path.join(examples, "Rios.xlsx"), scratch)
        out = subprocess.run([cauce, "perfil", "Rios.xlsx", "--y-inicial", depth, "--formato", "json"],
                             cwd=scratch, capture_output=True, text=True, timeout=120,
                             env=dict(os.environ, CAUCE_DATOS=scratch + "/datos", TMPDIR=scratch), check=True)
        return json.loads(out.stdout)[0]


def Check(condition, what):
    if not condition:
        raise AssertionError(what)


def main():
    cauce, examples = sys.argv[1], sys.argv[2]
    missing = atspi_session.Missing()
    if missing:
        print("Se omite: falta " + ", ".join(missing) + " (scripts/instalar-dependencias.sh lo instala).")
        return 77
    atspi_session.Run()
    expected = Expected(cauce, examples, "1.8")

    with atspi_session.Desktop(cauce) as d:
        window = d.Window(FORM2)
        Check(d.Find(window, "Caudal (m³/s)").description == "Text95", "Caudal sin su nombre Text95")
        # A comma typed as the decimal separator enters as a point.
        d.Type(d.Find(window, "Yinicial (m)"), "1,8", shows="1.8")
        d.Key(F5)

        # The reach replaces the screen's controls: look them up again once the profile is there.
        atspi_session.WaitFor(lambda: d.Text(d.Find(window, "Z agua m, sección 1 (m)")),
                              message="F5 no calculó el perfil")
        boxes = d.Boxes(window)
        rows = [[d.Text(boxes[name % row["seccion"]]) for name in
                 ("Perfil Tipo, sección %d", "Z agua m, sección %d (m)", "V media m/s, sección %d (m/s)")]
                for row in expected["perfil"]]
        for row, (tipo, z, v) in zip(expected["perfil"], rows):
            Check((tipo, float(z), float(v)) == (row["tipo"], row["z_agua"], row["v_media"]),
                  "sección %d: %s %s %s, la línea de órdenes da %s" % (row["seccion"], tipo, z, v, row))
        yn, z1 = boxes["Yn final (m)"], boxes["Z agua m, sección 1 (m)"]
        Check("desactualizado" not in yn.description, "un resultado recién calculado se dice desactualizado")

        # A datum changed after the computation: the results say they are out of date, and keep their
        # numbers until the next computation.
        before = d.Text(z1)
        d.Type(boxes["Rugosidad"], "0.04")
        atspi_session.WaitFor(lambda: all("desactualizado" in box.description for box in (yn, z1)),
                              message="los resultados no se dicen desactualizados tras cambiar la rugosidad")
        Check(d.Text(z1) == before, "el resultado desactualizado cambió")
    print("ok: Form2 por el bus de accesibilidad, %d secciones" % len(rows))
    return 0


if __name__ == "__main__":
    sys.exit(main())
