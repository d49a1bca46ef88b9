#!/usr/bin/env python3
"""Expected screens of the form1_* driver scripts (prismatic channels and circular conduits).

Written from the screen's rules, not from Cauce's output: a small model of Form1's boxes and of the
values it keeps between clicks works each "Yn?" and "Q ?" in plain Python floats (IEEE doubles, the
same libm), with the bank-full top width rounded to single precision as the screen keeps it.

Independent checks made before anything is written:
  - the trapezoidal normal depth against a bisection of Manning's equation, and the critical depth
    against the closed forms (rectangle (q^2/g)^(1/3), triangle (2 Q^2/(g z^2))^(1/5)) or a
    bisection of Q^2 T = g A^3, both to the iterations' 0.0001 tolerance;
  - the conduit's full discharge against the textbook Q = 0.3117 / n D^(8/3) sqrt(S), its maximum
    against Qm / Qlleno = 1.076, and the 1 mm marches of the normal and critical depths against
    bisections on the exact circle (pi, 2/3), within their grid and one-step reporting;
  - the flood-zone march against a bisection of the channel plus flood-zone discharge, within its
    2.5 mm grid;
  - no number shown sits within 1e-6 of a rounding boundary of its pattern.

Usage: python3 tests/guiones/form1_referencia.py   (rewrites the form1_*.guion and .json files here)
"""
import json
import math
import os
import struct
from decimal import Decimal, ROUND_HALF_UP

HERE = os.path.dirname(os.path.abspath(__file__))
WRAP = " " * 98


def single(x):
    return struct.unpack("f", struct.pack("f", x))[0]


def fmt(x, decimals):
    assert math.isfinite(x)
    # The screen rounds to 15 significant digits first: a sum that lands on a half there is rounded
    # up whatever its last bits; anything else must keep clear of the half.
    digits15 = Decimal(format(abs(x), ".14e"))
    frac = digits15.scaleb(decimals) % 1
    assert frac == Decimal("0.5") or abs(frac - Decimal("0.5")) > Decimal("1e-6"), ("near a rounding boundary", x)
    d = digits15.quantize(Decimal(1).scaleb(-decimals), rounding=ROUND_HALF_UP)
    out = f"{d:.{decimals}f}"
    return "-" + out if x < 0 and d != 0 else out


def bisect(f, lo, hi):
    assert f(lo) < 0 < f(hi), (f(lo), f(hi))
    for _ in range(200):
        mid = (lo + hi) / 2
        if f(mid) < 0:
            lo = mid
        else:
            hi = mid
    return (lo + hi) / 2


def val(text):
    try:
        return float(text)
    except ValueError:
        return 0.0  # every box these scripts type is a plain number, a blank or a word


class Stop(Exception):
    pass


# ----------------------------------------------------------------------------------------------
# The screen.
class Form1:
    def __init__(self):
        self.c = {f"Text{i}": "" for i in list(range(1, 25)) + [26, 27]}
        self.c.update({f"Label{i}": "" for i in range(3, 22)})
        self.c.update({"Label17": "SELECCIONE EL TIPO DE CANAL", "Command1": "TRAPEZOIDAL", "Command2": "CIRCULAR",
                       "Command4": "", "Command5": "", "Command6": "", "Command7": "", "Picture1": "",
                       "Label23": "ZORVENA EN FLUJO UNIFORME", "Command3": "Salir", "Data1": "Canales"})
        self.c.update({"Label3": "Base", "Label4": "Talud", "Label5": "Altura (opcional)", "Label6": "Ancho zona",
                       "Label7": "Rugosidad", "Label15": "CANAL PRINCIPAL", "Label16": "ZONA INUNDABLE  (opcional)"})
        # Values kept between clicks.
        self.Yc = 0.0
        self.Qb = 0.0
        self.Ab = self.Pb = self.Tb = 0.0
        self.error = None

    def click(self, name):
        self.error = None
        if self.c[name] == "":
            return
        try:
            getattr(self, name)()
        except Stop:
            pass

    def fault(self, message):
        self.error = message
        raise Stop

    def v(self, name):
        return val(self.c[name])

    # --- layouts ---
    def inicial1(self):
        for i in range(1, 10):
            self.c[f"Text{i}"] = ""

    def inicial2(self):
        for i in list(range(10, 25)) + [26, 27]:
            self.c[f"Text{i}"] = ""
        for i in range(18, 22):
            self.c[f"Label{i}"] = ""

    def Command1(self):
        self.c.update({"Command1": "TRAPEZOIDAL", "Command2": "Cr"})
        self.inicial1()
        self.inicial2()
        self.c.update({"Picture1": "Ctrape1.wmf",
                       "Label17": "Entre los datos del CANAL PRINCIPAL y la ZONA INUNDABLE y oprima:" + WRAP
                       + "Yn? para calcular Ynormal" + WRAP + "Q? para calcular el Caudal",
                       "Label3": "Base", "Label4": "Talud", "Label5": "Altura (opcional)", "Label6": "Ancho zona",
                       "Label7": "Rugosidad", "Label14": "", "Label15": "CANAL PRINCIPAL",
                       "Label16": "ZONA INUNDABLE  (opcional)",
                       "Command4": "Yn?", "Command5": "Q ?", "Command6": "", "Command7": ""})

    def Command2(self):
        self.c.update({"Command2": "CIRCULAR", "Command1": "Tp"})
        self.inicial1()
        self.inicial2()
        self.c.update({"Picture1": "circulo.wmf",
                       "Label17": "Registre los datos del canal y luego:" + WRAP
                       + "Yn? para calcular Ynormal, Q? para calcular el CAUDAL.", "Label3": "Diametro"})
        for i in (4, 5, 6, 7, 14, 15, 16):
            self.c[f"Label{i}"] = ""
        self.c.update({"Command4": "", "Command5": "", "Command6": "Yn?", "Command7": "Q ?"})

    # --- trapezoidal family ---
    def datos(self):
        self.n, self.S, self.b, self.z = (self.v(f"Text{i}") for i in (1, 2, 3, 4))
        self.h, self.Bz, self.nz = (self.v(f"Text{i}") for i in (5, 6, 7))
        cap, pic = "TRAPEZOIDAL", "Ctrape1.wmf"
        if self.b == 0:
            cap, pic = "TRIANGULAR", "Ctrian1.wmf"
        if self.z == 0:
            cap, pic = "RECTANGULAR", "Crectg1.wmf"
        self.c.update({"Command1": cap, "Picture1": pic})

    def lleno(self):
        b, z, h = self.b, self.z, self.h
        self.c["Label14"] = "Q lleno"
        self.Ab = (b + h * z) * h
        self.Pb = b + 2 * h * math.sqrt(1 + z * z)
        self.Tb = single(b + h * z * 2)
        if self.S < 0:
            self.fault("Pendiente negativa: no hay flujo uniforme con esta pendiente (revise la Pendiente)")
        if self.n == 0:
            self.fault("Falta la Rugosidad: no se puede calcular el caudal a banca llena (revise la Rugosidad)")
        self.Qb = math.sqrt(self.S) / self.n * self.Ab ** (5 / 3) / self.Pb ** (2 / 3)
        self.c["Text14"] = fmt(self.Qb, 3)

    def critica(self, q):
        b, z = self.b, self.z
        y, ch = 1.0, 1.0
        while ch > 0.0001:
            t = b + y * z * 2
            w = b + z * y
            nxt = (q / math.sqrt(9.81)) ** (2 / 3) * t ** (1 / 3) / w
            ch = abs(nxt - y)
            y = nxt
        # Independent: Q^2 T = g A^3.
        if z == 0:
            exact = (q * q / (9.81 * b * b)) ** (1 / 3)
        elif b == 0:
            exact = (2 * q * q / (9.81 * z * z)) ** (1 / 5)
        else:
            exact = bisect(lambda yy: 9.81 * ((b + z * yy) * yy) ** 3 - q * q * (b + 2 * z * yy), 1e-6, 50)
        assert abs(y - exact) < 2e-4, (y, exact)
        self.Yc = y
        self.c.update({"Text12": fmt(y, 2), "Text13": fmt(q / (y * w), 2)})

    def Command4(self):  # "Yn?"
        self.inicial2()
        self.datos()
        if self.b + self.z == 0:
            self.c["Label21"] = "Por favor defina los valores de la Sección Transversal."
            return
        self.c["Label17"] = ("Dado el Caudal calcule Ynormal:" + WRAP
                             + "Incluya el valor del CAUDAL (m3/s ) en la casilla correspondiente y luego oprima Yn?")
        if self.h > 0:
            self.lleno()
        self.Q = self.v("Text8")
        if self.h == 0:
            self.c["Text5"] = "Sin límite"
            self.Qb = self.Q + 1
        if self.Q == 0:
            return
        if self.n == 0:
            self.c["Label21"] = "Falta la Rugosidad"
            return
        if self.S <= 0:
            self.c["Label21"] = "No hay pendiente. No hay Yn"
            return
        if self.Q > self.Qb:
            self.qdesbord()
            return
        self.critica(self.Q)
        self.normal()
        if self.h == 0:
            self.c["Text14"] = ""

    def normal(self):
        n, S, b, z, Q = self.n, self.S, self.b, self.z, self.Q
        y, ch = 1.0, 1.0
        while ch > 0.0001:
            p = b + y * 2 * math.sqrt(1 + z * z)
            if p == 0:
                p = 0.0001
            w = b + y * z
            if w == 0:
                w = 1
            nxt = (n * Q / math.sqrt(S)) ** 0.6 * p ** 0.4 / w
            ch = abs(y - nxt)
            y = nxt
        exact = bisect(lambda yy: manning(n, S, (b + z * yy) * yy, b + 2 * yy * math.sqrt(1 + z * z)) - Q, 1e-6, 50)
        assert abs(y - exact) < 2e-4, (y, exact)
        self.Yn = y
        a = (b + y * z) * y
        vn = Q / a
        t = b + y * z * 2
        f = vn / math.sqrt(9.81 * (a / t))
        self.c.update({"Text9": fmt(y, 2), "Text10": fmt(t, 2), "Text26": fmt(f, 3), "Text11": fmt(vn, 2)})

    def Command5(self):  # "Q ?"
        self.c["Label17"] = ("DADO Yn CALCULE EL CAUDAL." + WRAP
                             + "Incluya el valor de la Profundidad Yn en la casilla correspondiente y luego oprima Q?")
        self.inicial2()
        self.datos()
        for bad, message in ((self.b + self.z == 0, "Por favor defina los valores de la Sección Transversal."),
                             (self.n == 0, "Falta la Rugosidad"), (self.S <= 0, "No hay pendiente. No hay Yn")):
            if bad:
                self.c["Label21"] = message
                return
        if self.h == 0:
            self.c["Text5"] = "Sin límite"
        if self.h > 0:
            self.lleno()
        self.Yn = self.v("Text9")
        if self.Yn == 0:
            return
        n, S, b, z, y = self.n, self.S, self.b, self.z, self.Yn
        if y <= self.h or self.h == 0:
            a = (b + z * y) * y
            p = b + 2 * y * math.sqrt(1 + z * z)
            q = math.sqrt(S) * (a / p) ** (2 / 3) * a / n
            assert abs(q - manning(n, S, a, p)) < 1e-12 * q
            vn = q / a
            t = b + y * z * 2
            self.Q = q
            self.c.update({"Text11": fmt(vn, 2), "Text10": fmt(t, 2), "Text26": fmt(vn / math.sqrt(9.81 * a / t), 3),
                           "Text8": fmt(q, 3)})
            self.critica(q)
            return
        self.d = y - self.h
        if self.Bz == 0 or self.nz == 0:
            self.c["Label21"] = ("Por favor incluya en las casillas correspondientes los valores de:  "
                                 "Ancho de zona inundable y Rugosidad.")
            return
        self.qdesbord2(self.d)
        self.Q = self.Qt
        self.c["Text8"] = fmt(self.Q, 3)
        self.qdesbord3()

    # --- flood zone ---
    def qdesbord2(self, d):
        S, n, nz = self.S, self.n, self.nz
        self.Am = self.Ab + d * (self.Tb + d)
        self.Qm = math.sqrt(S) * self.Am ** (5 / 3) / (n * self.Pb ** (2 / 3))
        self.Wf = self.Bz - self.Tb
        self.Af = self.Wf * d
        pf = self.Wf + 2 * math.sqrt(2) * d
        qf = math.sqrt(S) * self.Af ** (5 / 3) / (nz * pf ** (2 / 3))
        self.Qt = self.Qm + qf

    def qdesbord(self):
        d, self.Qt = 0.0, self.Qb
        if self.Bz == 0 or self.nz == 0:
            self.c["Label21"] = ("Por favor incluya en las casillas correspondientes los valores de:  "
                                 "Ancho de zona inundable y Rugosidad.")
            return
        while self.Qt < self.Q:
            d = d + 0.0025
            self.qdesbord2(d)
        # Independent: the depth over the banks at which both carry Q, within the 2.5 mm grid.
        def total(dd):
            am = self.Ab + dd * (self.Tb + dd)
            wf = self.Bz - self.Tb
            return manning(self.n, self.S, am, self.Pb) + (manning(self.nz, self.S, wf * dd, wf + 2 * math.sqrt(2) * dd)
                                                           if wf > 0 else 0) - self.Q
        exact = bisect(total, 1e-9, 100)
        assert d - 0.0025 - 1e-9 < exact <= d + 1e-9, (d, exact)
        self.d = d
        self.Yn = self.h + d
        self.qdesbord3()

    def qdesbord3(self):
        self.c.update({"Label18": "Canal", "Label19": "Canal principal", "Label20": "Planicie inundable",
                       "Label21": "HAY DESBORDAMIENTO"})
        pic = "Ctrapez.wmf"
        if self.b == 0:
            pic = "Ctrian.wmf"
        if self.z == 0:
            pic = "Crectg.wmf"
        self.c["Picture1"] = pic
        Q, d = self.Q, self.d
        qm = min(self.Qm, Q)
        vf = 0.0 if self.Af == 0 else (Q - qm) / self.Af
        tm = self.Tb + 2 * d
        vm = qm / self.Am
        self.c.update({
            "Text9": fmt(self.Yn, 2), "Text16": fmt(self.Am, 2), "Text20": fmt(self.Af, 2), "Text15": fmt(qm, 3),
            "Text19": fmt(Q - qm, 3), "Text6": fmt(self.Bz, 2), "Text7": fmt(self.nz, 3),
            "Text11": fmt(Q / (self.Am + self.Af), 2), "Text18": fmt(vm, 2), "Text22": fmt(vf, 2),
            "Text10": fmt(self.Bz + 2 * d, 2), "Text17": fmt(tm, 2), "Text21": fmt(self.Bz - self.Tb, 2),
            "Text27": fmt(vm / math.sqrt(9.81 * self.Am / tm), 3),
            "Text23": fmt(0.0 if self.Af == 0 else vf / math.sqrt(9.81 * self.Af / self.Wf), 2)})
        if (Q / self.Ab) / math.sqrt(9.81 * self.Ab / self.Tb) > 1:
            self.c["Text12"] = "Yc > h "
        else:
            self.critica(Q)
        self.c["Text26"] = "Fr < 1" if self.Yc < self.Yn else "Fr > 1"

    # --- circular conduit ---
    def conduit_data(self):
        self.n = self.v("Text1")
        if self.n == 0:
            self.c["Label21"] = "Falta la Rugosidad"
            return False
        self.S = self.v("Text2")
        if self.S == 0:
            self.c["Label21"] = "Falta la pendiente"
            return False
        self.D = self.v("Text3")
        if self.D == 0:
            self.c["Label21"] = "Falta el diámetro"
            return False
        return True

    def geometria(self, y):
        D = self.D
        x = 1 - 2 * y / D
        s2 = 1 - x * x
        if s2 <= 0:
            s2 = 0.0001
        s = math.sqrt(s2)
        if x == 0:
            alpha = 1.5708
        else:
            alpha = math.atan(s / x)
            if alpha < 0:
                alpha = alpha + 3.1416
        self.A = (alpha - math.sin(alpha) * math.cos(alpha)) * (D * D) / 4
        self.P = D * alpha
        self.T = D * math.sin(alpha)
        if y == D:
            return self.Qlleno
        if self.S < 0:
            self.fault("Pendiente negativa: no hay flujo uniforme con esta pendiente (revise la Pendiente)")
        return math.sqrt(self.S) / self.n * self.A ** (5 / 3) / self.P ** (2 / 3)

    def full(self):
        D = self.D
        af = 3.1416 * (D * D) / 4
        rf = D / 4
        if self.S < 0:
            self.fault("Pendiente negativa: no hay flujo uniforme con esta pendiente (revise la Pendiente)")
        self.Qlleno = math.sqrt(self.S) * rf ** 0.66667 * af / self.n
        textbook = 0.3117 / self.n * D ** (8 / 3) * math.sqrt(self.S)
        assert abs(self.Qlleno / textbook - 1) < 2e-4, (self.Qlleno, textbook)
        return af

    def maximo(self):
        af = self.full()
        self.Vlleno = self.Qlleno / af
        self.Qm = self.geometria(0.94 * self.D)
        assert abs(self.Qm / self.Qlleno - 1.076) < 0.001
        self.c.update({"Label4": "Q lleno", "Label5": "Q Máximo", "Label14": "Q/Qlleno", "Label6": "Yn/D",
                       "Label7": "Vn/Vlleno", "Text4": fmt(self.Qlleno, 3), "Text5": fmt(self.Qm, 3)})

    def final(self):
        D, Q, A, T, Yn = self.D, self.Q, self.A, self.T, self.Yn
        vn = Q / A
        f = vn / math.sqrt(9.81 * A / T)
        pic = "circulo.wmf"
        if Yn > 0.3 * D:
            pic = "circulo2.wmf"
        if Yn > 0.5 * D:
            pic = "circulo3.wmf"
        self.c.update({"Text14": fmt(Q / self.Qlleno, 2), "Text9": fmt(Yn, 2), "Picture1": pic,
                       "Text6": fmt(Yn / D, 2), "Text7": fmt(vn / self.Vlleno, 2), "Text11": fmt(vn, 2),
                       "Text10": fmt(T, 2), "Text26": fmt(f, 3)})
        # Critical depth: climb while supercritical, then go down while subcritical, 1 mm a step.
        y = Yn
        while f > 1:
            self.geometria(y)
            vc = Q / self.A
            f = vc / math.sqrt(9.81 * self.A / self.T)
            y = y + 0.001
        if y == D:
            y = D - 0.005
        while f <= 1:
            self.geometria(y)
            vc = Q / self.A
            f = vc / math.sqrt(9.81 * self.A / self.T)
            y = y - 0.001
        exact = bisect(lambda yy: 1 - circle_froude(Q, D, yy), 1e-6, 0.99 * D)  # Froude falls with depth
        assert exact - 0.002 - 1e-4 < y <= exact - 0.001 + 1e-4, (y, exact)
        self.c.update({"Text12": fmt(y, 2), "Text13": fmt(vc, 2)})

    def Command6(self):  # "Yn?"
        if not self.conduit_data():
            return
        self.c["Label17"] = ("Dado el Caudal calcule Ynormal:" + WRAP
                             + "Incluya el valor del CAUDAL (m3/s ) en la casilla correspondiente y luego oprima Yn?")
        self.Q = self.v("Text8")
        self.maximo()
        if self.Q == 0:
            self.c["Label21"] = "Falta el caudal"
            return
        if self.Q > self.Qm:
            self.c["Label21"] = "El Caudal no puede ser mayor que Qm. Disminuya el Caudal y oprima Yn?"
            return
        self.c["Label21"] = ""
        y, qc = 0.001, 0.0
        if self.Q >= self.Qlleno / 2:
            y, qc = self.D / 2, self.Qlleno / 2
        while qc < self.Q:
            qc = self.geometria(y)
            y = y + 0.001
        # Independent: the exact circle's normal depth lies between the last two depths evaluated.
        exact = bisect(lambda yy: circle_discharge(self.n, self.S, self.D, yy) - self.Q, 1e-6, 0.938 * self.D)
        assert y - 0.002 - 1e-4 < exact <= y - 0.001 + 1e-4, (y, exact)
        self.Yn = y
        self.final()

    def Command7(self):  # "Q ?"
        self.c["Label17"] = ("Dado Ynormal calcule el caudal:" + WRAP
                             + "Incluya el valor de Yn en la casilla correspondiente y luego oprima Q?")
        if not self.conduit_data():
            return
        self.Yn = self.v("Text9")
        if self.Yn == 0:
            self.c["Label21"] = " Falta la Profundidad Yn"
            return
        if self.Yn == self.D:
            self.c["Label21"] = "Tubo lleno"
            af = self.full()
            self.Q = self.Qlleno
            self.c.update({"Text8": fmt(self.Q, 3), "Text11": fmt(self.Q / af, 2), "Text26": "0.000"})
            for i in (4, 6, 7, 14):
                self.c[f"Label{i}"] = ""
                self.c[f"Text{i}"] = ""
            return
        if self.Yn > self.D:
            self.c["Label21"] = "Yn debe ser menor que el diámetro. Disminuya el valor de Yn "
            return
        self.maximo()
        self.Q = self.geometria(self.Yn)
        exact = circle_discharge(self.n, self.S, self.D, self.Yn)
        assert abs(self.Q / exact - 1) < 1e-4, (self.Q, exact)
        self.c["Text8"] = fmt(self.Q, 3)
        self.final()


def manning(n, s, a, p):
    return math.sqrt(s) / n * a ** (5 / 3) / p ** (2 / 3)


# The exact circle: central angle theta = 2 acos(1 - 2 y / D).
def circle(D, y):
    theta = 2 * math.acos(1 - 2 * y / D)
    return D * D / 8 * (theta - math.sin(theta)), D * theta / 2, D * math.sin(theta / 2)


def circle_discharge(n, s, D, y):
    a, p, _ = circle(D, y)
    return manning(n, s, a, p)


def circle_froude(q, D, y):
    a, _, t = circle(D, y)
    return (q / a) / math.sqrt(9.81 * a / t)


# ----------------------------------------------------------------------------------------------
# Scripts: lines of the driver with the keys each "mostrar" checks.
class Script:
    def __init__(self, name, header):
        self.name, self.lines, self.expected = name, ["# " + l if l else "#" for l in header], []
        self.screen = None

    def note(self, *text):
        self.lines += ["# " + t for t in text]

    def open(self):
        self.lines.append("pantalla Form1")
        self.screen = Form1()

    def type(self, **boxes):
        for name, text in boxes.items():
            self.lines.append(f"escribir {name} {text}".rstrip())
            self.screen.c[name] = str(text)

    def click(self, name):
        self.lines.append(f"oprimir {name}")
        self.screen.click(name)

    def show(self, *keys):
        self.lines.append("mostrar")
        line = {k: self.screen.c[k] for k in keys}
        if self.screen.error:
            line["error"] = self.screen.error
        self.expected.append(line)

    def write(self):
        with open(os.path.join(HERE, self.name + ".guion"), "w", encoding="utf-8") as f:
            f.write("\n".join(self.lines) + "\n")
        with open(os.path.join(HERE, self.name + ".json"), "w", encoding="utf-8") as f:
            f.write("".join(json.dumps(e, ensure_ascii=False) + "\n" for e in self.expected))


TRAP_RESULTS = ("Text9", "Text10", "Text11", "Text26", "Text12", "Text13", "Text14", "Label14", "Label21")
FLOOD_RESULTS = ("Label18", "Label19", "Label20", "Label21", "Picture1", "Text8", "Text9", "Text15", "Text16",
                 "Text17", "Text18", "Text19", "Text20", "Text21", "Text22", "Text23", "Text27", "Text10",
                 "Text11", "Text12", "Text13", "Text14", "Text26", "Text6", "Text7")
CONDUIT_RESULTS = ("Label4", "Label5", "Label6", "Label7", "Label14", "Text4", "Text5", "Text6", "Text7",
                   "Text8", "Text9", "Text10", "Text11", "Text12", "Text13", "Text14", "Text26", "Picture1",
                   "Label21")


def apertura():
    s = Script("form1_apertura", [
        "Form1 as it opens, and its two layouts. The screen asks for the family; Yn? and Q ? have no",
        "caption (and do nothing) until a type button sets a layout. Choosing a type clears the data",
        "boxes, and the other layout's buttons, blank, do nothing."])
    s.open()
    s.show("Label23", "Label17", "Label21", "Command1", "Command2", "Command3", "Command4", "Command5", "Command6",
           "Command7", "Data1", "Picture1")
    s.type(Text1="0.015", Text2="0.001", Text3="2", Text8="1")
    s.click("Command4")
    s.show("Text9", "Label21", "Text1")
    s.click("Command1")
    s.show("Command1", "Command2", "Command4", "Command5", "Command6", "Command7", "Picture1", "Label17",
           "Label3", "Label4", "Label5", "Label6", "Label7", "Label14", "Label15", "Label16",
           "Text1", "Text2", "Text3", "Text8")
    s.type(Text1="0.015", Text2="0.001", Text3="2", Text4="1", Text8="3")
    s.click("Command6")
    s.show("Text9", "Label21")
    s.click("Command2")
    s.show("Command1", "Command2", "Command4", "Command5", "Command6", "Command7", "Picture1", "Label17",
           "Label3", "Label4", "Label5", "Label6", "Label7", "Label14", "Label15", "Label16",
           "Text1", "Text2", "Text3", "Text4", "Text8")
    s.type(Text1="0.015", Text2="0.001", Text3="2", Text4="1", Text8="3")
    s.click("Command4")
    s.click("Command5")
    s.show("Text9", "Text8", "Label21", "Text10")
    s.note("Back to the trapezoidal family from its short caption.")
    s.click("Command1")
    s.show("Command1", "Command2", "Label3", "Label4", "Text1", "Command6")
    s.write()


def trapecio():
    s = Script("form1_trapecio", [
        "Yn? and Q ? of the trapezoidal family within the banks. Normal depths agree with a bisection of",
        "Manning's equation and critical depths with the closed forms or a bisection of Q^2 T = g A^3,",
        "to the iterations' 0.0001 (form1_referencia.py)."])
    s.open()
    s.click("Command1")
    s.note("Trapezoid b 3, z 1.5, n 0.015, S 0.0008, Q 10, no bank height: Sin límite, no Q lleno.")
    s.type(Text1="0.015", Text2="0.0008", Text3="3", Text4="1.5", Text8="10")
    s.click("Command4")
    s.show("Command1", "Picture1", "Text5", "Label17", *TRAP_RESULTS)
    s.note("Q ? at that depth typed as 1.2 m.")
    s.type(Text9="1.2")
    s.click("Command5")
    s.show("Command1", "Label17", "Text5", "Text8", "Text10", "Text11", "Text26", "Text12", "Text13", "Label21")
    s.note("Rectangle b 2, z 0, Q 2: Yc = (Q^2 / (9.81 b^2))^(1/3) = 0.467 m.")
    s.type(Text1="0.015", Text2="0.001", Text3="2", Text4="0", Text5="", Text8="2")
    s.click("Command4")
    s.show("Command1", "Picture1", *TRAP_RESULTS)
    s.note("Triangle b 0, z 2, n 0.013, S 0.002, Q 1.5: Yc = (2 Q^2 / (9.81 z^2))^(1/5).")
    s.type(Text3="0", Text4="2", Text1="0.013", Text2="0.002", Text8="1.5")
    s.click("Command4")
    s.show("Command1", "Picture1", *TRAP_RESULTS)
    s.note("Bank height 1.5 m (b 2, z 1, n 0.02, S 0.001): Q lleno shown, Q 5 fits within the banks.")
    s.type(Text1="0.02", Text2="0.001", Text3="2", Text4="1", Text5="1.5", Text8="5")
    s.click("Command4")
    s.show("Command1", "Picture1", "Text5", *TRAP_RESULTS)
    s.note("Q ? at the bank height itself stays within the banks; then below it.")
    s.type(Text9="1.5")
    s.click("Command5")
    s.show("Text8", "Text10", "Text11", "Text26", "Text12", "Text13", "Text14", "Label14", "Label21")
    s.type(Text9="0.75")
    s.click("Command5")
    s.show("Text8", "Text10", "Text11", "Text26", "Text12", "Text13", "Text14", "Label21")
    s.write()


def trapecio_faltas():
    s = Script("form1_trapecio_faltas", [
        "Messages of the trapezoidal family, in the order of their checks; a zero discharge or depth does",
        "nothing. With a bank height, Yn? computes the bank-full discharge before it checks the roughness",
        "and the slope: a zero roughness or a negative slope stop there with a fault that names it."])
    s.open()
    s.click("Command1")
    s.note("b = z = 0 reads RECTANGULAR, and both buttons refuse the section.")
    s.type(Text1="0.015", Text2="0.001", Text3="0", Text4="0", Text8="2", Text9="1")
    s.click("Command4")
    s.show("Command1", "Picture1", "Label21", "Label17", "Text9", "Text5")
    s.click("Command5")
    s.show("Command1", "Label21", "Label17", "Text8")
    s.note("No roughness; then no slope, zero and negative, without a bank height.")
    s.type(Text1="", Text3="2", Text4="1")
    s.click("Command4")
    s.show("Command1", "Label21", "Text5", "Text9")
    s.click("Command5")
    s.show("Label21", "Text8", "Text5")
    s.type(Text1="0.015", Text2="0")
    s.click("Command4")
    s.show("Label21", "Text9")
    s.type(Text2="-0.001")
    s.click("Command4")
    s.show("Label21", "Text9")
    s.click("Command5")
    s.show("Label21", "Text8")
    s.note("Zero discharge and zero depth: nothing, no message.")
    s.type(Text2="0.001", Text8="0", Text9="", Text5="")
    s.click("Command4")
    s.show("Label21", "Text9", "Text12", "Text5")
    s.click("Command5")
    s.show("Label21", "Text8", "Text12")
    s.note("With a bank height: Yn? meets the bank-full discharge first.")
    s.type(Text5="1.5", Text8="3", Text1="0")
    s.click("Command4")
    s.show("Label21", "Label14", "Text14", "Text9")
    s.type(Text1="0.015", Text2="-0.001")
    s.click("Command4")
    s.show("Label21", "Label14", "Text14", "Text9")
    s.note("Q ? checks first: the messages, no fault.")
    s.type(Text1="0", Text9="1")
    s.click("Command5")
    s.show("Label21", "Label14", "Text14", "Text8")
    s.type(Text1="0.015")
    s.click("Command5")
    s.show("Label21", "Label14", "Text14", "Text8")
    s.write()


def desborde():
    s = Script("form1_desborde", [
        "The trapezoidal family over its banks. Yn? marches the depth over the banks in 2.5 mm steps;",
        "a bisection of the channel plus flood-zone discharge lies within the last step",
        "(form1_referencia.py). The flood zone's share is the remainder Q - Qm."])
    s.open()
    s.click("Command1")
    s.note("b 2, z 1, bank height 1 (Tb 4), n 0.02, S 0.001, flood zone 20 m wide, nz 0.04, Q 15. Q 15 in",
           "the bank-full area (3 m2, 4 m wide) is supercritical: Text12 reads 'Yc > h ', and with no",
           "critical depth computed yet on this screen the regime reads Fr < 1.")
    s.type(Text1="0.02", Text2="0.001", Text3="2", Text4="1", Text5="1", Text6="20", Text7="0.04", Text8="15")
    s.click("Command4")
    s.show("Command1", "Label14", *FLOOD_RESULTS)
    s.note("Q ? with the water 0.3 m over the banks.")
    s.type(Text9="1.3")
    s.click("Command5")
    s.show(*FLOOD_RESULTS)
    s.note("A flood zone as wide as the channel (Bz = Tb = 4): no area, its velocity reads 0.00.")
    s.type(Text6="4", Text8="6")
    s.click("Command4")
    s.show(*FLOOD_RESULTS)
    s.note("Flood-zone width or roughness missing: the message, for Yn? and for Q ?.")
    s.type(Text6="0", Text8="15")
    s.click("Command4")
    s.show("Label21", "Text9", "Text14", "Label18")
    s.type(Text6="20", Text7="", Text9="1.3")
    s.click("Command5")
    s.show("Label21", "Text8", "Text14", "Label18")
    s.note("The top width at the banks is single precision: b 2.045, z 0.4, h 1 give Tb 2.845 rounded up",
           "in single precision, so Bz - Tb = 10 - 2.845000029 shows 7.15 (in double it would show 7.16).")
    s.type(Text1="0.015", Text2="0.001", Text3="2.045", Text4="0.4", Text5="1", Text6="10", Text7="0.03",
           Text8="8")
    s.click("Command4")
    s.show(*FLOOD_RESULTS)
    s.note("Rectangle b 1, bank height 0.3, steep (S 0.02): the whole discharge in the bank-full area is",
           "supercritical, so Text12 reads 'Yc > h ' and the regime compares the last critical depth computed.")
    s.type(Text1="0.015", Text2="0.02", Text3="1", Text4="0", Text5="0.3", Text6="5", Text7="0.035", Text8="1.5")
    s.click("Command4")
    s.show(*FLOOD_RESULTS)
    s.note("Triangle b 0, z 1.5, bank height 0.8 with a flood zone: figure Ctrian.")
    s.type(Text1="0.014", Text2="0.0015", Text3="0", Text4="1.5", Text5="0.8", Text6="12", Text7="0.05", Text8="3")
    s.click("Command4")
    s.show(*FLOOD_RESULTS)
    s.write()


def circular():
    s = Script("form1_circular", [
        "The circular conduit. Full discharge as the textbook Q = 0.3117 / n D^(8/3) sqrt(S), maximum",
        "Qm = 1.076 Qlleno at 0.94 D; normal and critical depths by 1 mm marches, reported one step past",
        "the last depth evaluated, against bisections on the exact circle (form1_referencia.py)."])
    s.open()
    s.click("Command2")
    s.note("D 1, n 0.013, S 0.001, Q 0.5: above Qlleno / 2, the march starts half full.")
    s.type(Text1="0.013", Text2="0.001", Text3="1", Text8="0.5")
    s.click("Command6")
    s.show("Label17", *CONDUIT_RESULTS)
    s.note("A small discharge walks up from 1 mm: Q 0.1, subcritical, a quarter full: figure circulo.")
    s.type(Text8="0.1")
    s.click("Command6")
    s.show(*CONDUIT_RESULTS)
    s.note("Steep (S 0.05), D 0.5, Q 0.1: supercritical at the normal depth, the critical march climbs.")
    s.type(Text2="0.05", Text3="0.5")
    s.click("Command6")
    s.show(*CONDUIT_RESULTS)
    s.note("Q ? at 0.12 m: figure circulo; at 0.4 m: circulo2.")
    s.type(Text2="0.001", Text3="1", Text9="0.12")
    s.click("Command7")
    s.show("Label17", *CONDUIT_RESULTS)
    s.type(Text9="0.4")
    s.click("Command7")
    s.show(*CONDUIT_RESULTS)
    s.note("Yn = D: Tubo lleno, the full-conduit discharge and velocity, Froude 0; the ratios are blanked",
           "and the other results stay as they were.")
    s.type(Text9="1")
    s.click("Command7")
    s.show(*CONDUIT_RESULTS)
    s.note("Yn > D: the message with its trailing blank, nothing computed.")
    s.type(Text9="1.2")
    s.click("Command7")
    s.show(*CONDUIT_RESULTS)
    s.write()
    return s


def circular_faltas():
    s = Script("form1_circular_faltas", [
        "Messages of the conduit in the order of their checks. Only a zero slope is refused: a negative",
        "one stops at the full-conduit discharge with a fault that names it. Q just above Qm is",
        "refused, just below it is computed. Q ? leaves the message line as it was."])
    s.open()
    s.click("Command2")
    s.type(Text8="0.5", Text9="0.4")
    s.click("Command6")
    s.show("Label21", "Label17", "Text4")
    s.type(Text1="0.013")
    s.click("Command6")
    s.show("Label21")
    s.type(Text2="0.001")
    s.click("Command7")
    s.show("Label21", "Label17")
    s.type(Text3="1", Text8="")
    s.click("Command6")
    s.show("Label21", "Text4", "Text5", "Label4", "Label5", "Text9")
    s.note("Q ? after a message: the message stays.")
    s.click("Command7")
    s.show("Label21", "Text8", "Text9", "Picture1")
    s.type(Text9="0")
    s.click("Command7")
    s.show("Label21")
    scr = s.screen
    qm = scr.Qm
    above = math.ceil(qm * 1000) / 1000
    assert above > qm
    below = math.floor(qm * 1000) / 1000
    s.note(f"Qm is {qm:.6f}: {above:.3f} is refused, {below:.3f} is computed near 0.94 D.")
    s.type(Text8=f"{above:.3f}")
    s.click("Command6")
    s.show("Label21", "Text5", "Text9")
    s.type(Text8=f"{below:.3f}")
    s.click("Command6")
    s.show("Label21", *CONDUIT_RESULTS)
    s.note("Negative slope: the fault at the full-conduit discharge.")
    s.type(Text2="-0.001")
    s.click("Command6")
    s.show("Label21", "Text4")
    s.write()


def main():
    apertura()
    trapecio()
    trapecio_faltas()
    desborde()
    circular()
    circular_faltas()


if __name__ == "__main__":
    main()
