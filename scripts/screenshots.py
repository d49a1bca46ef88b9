#!/usr/bin/python3
"""Screenshots of the five screens of the real desktop on a 1366x768 screen, each after its computation.

Usage: screenshots.py CAUCE FOLDER (scripts/screenshots.sh builds cauce and writes docs/form1..5.png).
The desktop runs under Xvfb with the accessibility bus, on scratch copies of the example workbooks, and
is driven with mouse clicks and keys: Form2, Form3 and Form4 with "Calcular el tramo" (F5) from the
depth typed in their box, Form1 and Form5 with their own buttons ("Yn?" on a channel typed in, "(Y?)" on
the first record).
"""
import ctypes
import os
import struct
import sys
import time
import zlib

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "app"))
import atspi_session  # noqa: E402

F5 = 0xFFC2


class _XImage(ctypes.Structure):
    _fields_ = [(name, ctypes.c_int) for name in ("width", "height", "xoffset", "format")] + \
        [("data", ctypes.c_void_p)] + \
        [(name, ctypes.c_int) for name in ("byte_order", "bitmap_unit", "bitmap_bit_order", "bitmap_pad",
                                           "depth", "bytes_per_line", "bits_per_pixel")]


def ScreenPixels(x, y, w, h):
    """The RGB rows of a rectangle of the X screen (a 24-bit one, as SCREEN sets it up)."""
    x11 = ctypes.CDLL("libX11.so.6")
    x11.XOpenDisplay.restype = ctypes.c_void_p
    x11.XDefaultRootWindow.restype = ctypes.c_ulong
    x11.XDefaultRootWindow.argtypes = [ctypes.c_void_p]
    x11.XGetImage.restype = ctypes.POINTER(_XImage)
    x11.XGetImage.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_int, ctypes.c_uint,
                              ctypes.c_uint, ctypes.c_ulong, ctypes.c_int]
    x11.XCloseDisplay.argtypes = [ctypes.c_void_p]
    display = x11.XOpenDisplay(None)
    image = x11.XGetImage(display, x11.XDefaultRootWindow(display), x, y, w, h, 0xFFFFFFFF, 2).contents
    if image.bits_per_pixel != 32 or image.byte_order != 0:
        raise RuntimeError("la pantalla virtual no es de 24 bits")
    data = ctypes.string_at(image.data, image.bytes_per_line * h)
    rows = []
    for r in range(h):
        src = data[r * image.bytes_per_line:r * image.bytes_per_line + 4 * w]
        row = bytearray(3 * w)
        row[0::3], row[1::3], row[2::3] = src[2::4], src[1::4], src[0::4]
        rows.append(bytes(row))
    x11.XCloseDisplay(display)
    return rows


def SavePng(path, w, h, rows):
    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))
    raw = b"".join(b"\0" + row for row in rows)
    with open(path, "wb") as f:
        f.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", w, h, 8, 2, 0, 0, 0)) +
                chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b""))


def Grab(d, window, path):
    """Saves the window as it is on the screen."""
    x, y, w, h = window.queryComponent().getExtents(d.pyatspi.DESKTOP_COORDS)
    SavePng(path, w, h, ScreenPixels(x, y, w, h))


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
    for box, text in (("Rugosidad, canal principal", "0.015"), ("Pendiente (m/m)", "0.001"),
                      ("Base (m)", "2"), ("Talud (H:V)", "1.5"), ("Altura (opcional) (m)", "1"),
                      ("Ancho zona (m)", "20"), ("Rugosidad, zona inundable", "0.04"),
                      ("Caudal Q (m³/s)", "15")):
        d.Type(d.Find(w, box), text)
    Button(d, w, "Yn?")
    # The boxes' names take the column headers the computation writes ("Profundidad Yn, Canal (m)").
    atspi_session.WaitFor(lambda: d.Text(d.Find(w, "Profundidad Yn", start=True)),
                          message="Form1 no calculó Yn")


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
            Grab(d, window, path)
            print(path)


if __name__ == "__main__":
    main()
