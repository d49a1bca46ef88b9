#!/usr/bin/python3
"""Screenshots of the five screens of the real desktop on a 1366x768 screen, each after its computation.

Usage: screenshots.py CAUCE FOLDER (scripts/screenshots.sh builds cauce and writes docs/form1..5.png).
The desktop runs under Xvfb with the accessibility bus, on scratch copies of the example workbooks, and
is driven with mouse clicks and keys: Form2, Form3 and Form4 with "Calcular el tramo" (F5) from the
depth typed in their box, Form1 and Form5 with their own buttons ("Yn?", "(Y?)") on the first record.
"""
import os
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "app"))
import atspi_session  # noqa: E402

F5 = 0xFFC2


def Reach(d, window, depth_box, depth, result):
    d.Type(d.Find(window, depth_box), depth)
    d.Key(F5)
    atspi_session.WaitFor(lambda: d.Text(d.Find(window, result)), message="F5 no calculó " + window.name)


def Button(d, window, name):
    d.Click(d.Find(window, name, d.pyatspi.ROLE_PUSH_BUTTON))


def Form1(d, w):
    # A trapezoidal channel (the button clears the boxes) with banks 1 m high and a flood zone it
    # overflows into.
    Button(d, w, "TRAPEZOIDAL")
    atspi_session.WaitFor(lambda: d.Text(d.Find(w, "Base (m)")) == "")
    for box, text in (("Rugosidad, canal principal", "0.015"), ("Pendiente (m/m)", "0.001"), ("Base (m)", "2"),
                      ("Talud (H:V)", "1.5"), ("Altura (opcional) (m)", "1"), ("Ancho zona (m)", "20"),
                      ("Rugosidad, zona inundable", "0.04"), ("Caudal Q (m³/s)", "15")):
        d.Type(d.Find(w, box), text)
    Button(d, w, "Yn?")
    # The boxes' names take the column headers the computation writes ("Profundidad Yn, Canal (m)").
    atspi_session.WaitFor(lambda: d.Text(d.Find(w, "Profundidad Yn", start=True)), message="Form1 no calculó Yn")


def Form5(d, w):
    Button(d, w, "(Y?)")
    atspi_session.WaitFor(lambda: d.Text(d.Find(w, "Froude")), message="Form5 no calculó la sección")


SCREENS = (
    ("Form2", lambda d, w: Reach(d, w, "Yinicial (m)", "2.2", "Z agua m, sección 1 (m)")),
    ("Form4", lambda d, w: Reach(d, w, "Yinicial (m)", "1.2", "Z agua m, sección 1 (m)")),
    ("Form3", lambda d, w: Reach(d, w, "Yfinal (m)", "2.5", "Yn final (m)")),
    ("Form1", Form1),
    ("Form5", Form5),
)


def main():
    cauce, folder = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
    missing = atspi_session.Missing()
    if missing:
        sys.exit("Falta " + ", ".join(missing) + ": bash scripts/instalar-dependencias.sh lo instala.")
    atspi_session.Run()
    with atspi_session.Desktop(cauce) as d:
        first = d.Window("Cauce - ")
        for name, compute in SCREENS:
            item = d.pyatspi.findDescendant(first, lambda o: o is not None and o.name.startswith(name + ": ")
                                            and o.getRole() == d.pyatspi.ROLE_MENU_ITEM)
            window = d.Window(item.name.split(": ", 1)[1]) if name == "Form2" else None
            if window is None:
                item.queryAction().doAction(0)  # Pantallas > FormN
                window = d.Window(item.name.split(": ", 1)[1])
            compute(d, window)
            time.sleep(1)  # the last paint reaches the screen
            path = os.path.join(folder, name.lower() + ".png")
            d.Grab(window, path)
            print(path)


if __name__ == "__main__":
    main()
