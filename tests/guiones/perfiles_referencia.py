#!/usr/bin/env python3
"""Expected profile tables of the form2_perfil_* and form4_perfil_* driver scripts.

Written from the screen's rules, not from Cauce's output: each reach is a chain of one-band sections
(rectangle, trapezoid or triangle entered as two levels), and this script works each section's
"(Y?)" (level table, the 1 mm normal-depth march, the 1 mm critical-depth march, Za and V) and then
the profile run with its 5 mm direct steps, in plain Python floats (IEEE doubles, the same libm pow).

Independent checks made before anything is written:
  - Yn against a bisection of Manning's equation and Yc against the closed form (rectangle) or a
    bisection of Fr = 1, both within the marches' 1 mm grid and their one-step reporting;
  - every profile type against those exact depths (M: Yn >= Yc; M1 at or above Yn; S1 above Yc);
  - every M1 and S1 step that ends on the reach length against an accurate integration of the
    gradually-varied-flow equation dy/dx = (S0 - Sf) / (1 - Fr^2) over the same length (RK4);
  - no shown value sits within 1e-6 of a rounding boundary of "0.00", and no reach length is met
    by the accumulated distance to within 1e-6 (so the table does not hang on a last digit).

Usage: python3 tests/guiones/perfiles_referencia.py   (rewrites the .guion and .json files here)
"""
import json
import math
import os
from decimal import Decimal, ROUND_HALF_UP

HERE = os.path.dirname(os.path.abspath(__file__))
G2 = 19.62


# ----------------------------------------------------------------------------------------------
# One section: bed elevation z1, bottom width t1, bank at z2 with top width t2 (one band).
class Section:
    def __init__(self, z1, t1, height, t2, n, s0, q, x):
        self.z1, self.t1, self.z2, self.t2 = z1, t1, z1 + height, t2
        self.n, self.s0, self.q, self.x = n, s0, q, x
        # Level tables.
        dy = (self.z2 - self.z1) - 0.0
        assert dy > 0
        self.m = ((t2 - t1) / 2) / dy
        assert self.m >= 0
        self.acum2 = 0.0 + dy * (t1 + self.m * dy)
        self.pcum2 = t1 + 2 * dy * math.sqrt(1 + self.m * self.m)
        self.qlleno = (math.sqrt(s0) * (self.acum2 ** (5.0 / 3.0) / n)) / self.pcum2 ** (2.0 / 3.0)
        assert q < self.qlleno, "the reaches stay within the banks"
        self.normal_depth()
        self.critical_depth()
        self.za = self.yn + self.z1
        self.v = q / self.a

    def normal_depth(self):
        h, qcalc = 0.001, 0.0
        while qcalc < self.q:
            self.a = 0.0 + h * (self.t1 + self.m * h)
            p = self.t1 + 2 * h * math.sqrt(1 + self.m * self.m)
            qcalc = math.sqrt(self.s0) * ((self.a ** (5.0 / 3.0) / p ** (2.0 / 3.0)) / self.n)
            h = h + 0.001
        self.yn = 0.0 + h

    def critical_depth(self):
        q = self.q
        fr = (q / self.acum2) / math.sqrt(9.81 * self.acum2 / self.t2)
        assert fr <= 1, "the bank level is subcritical: band 2"
        h = self.z2 - self.z1
        while fr < 1:
            a = 0.0 + h * (self.t1 + self.m * h)
            t = self.t1 + 2 * self.m * h
            fr = (q / a) / math.sqrt(9.81 * a / t)
            h = h - 0.001
        self.yc = 0.0 + h

    # Geometry at depth y, as the screen's Area forms it from the water-surface elevation.
    def area(self, y):
        assert (y + self.z1) - self.z2 <= 0, "the march stays within the banks"
        hb = (y + self.z1) - self.z1
        a = 0.0 + hb * (self.t1 + self.m * hb)
        p = self.t1 + 2 * hb * math.sqrt(1 + self.m * self.m)
        return a, p

    def evaluate(self, y):
        a, p = self.area(y)
        v = self.q / a
        r = a / p
        sf = ((self.n * self.n) * (v * v)) / r ** (4.0 / 3.0)
        e = y + v * v / G2
        return v, sf, e

    # Exact depths, for the independent checks.
    def exact_geometry(self, y):
        return y * (self.t1 + self.m * y), self.t1 + 2 * y * math.sqrt(1 + self.m * self.m), self.t1 + 2 * self.m * y

    def yn_exact(self):
        def f(y):
            a, p, _ = self.exact_geometry(y)
            return math.sqrt(self.s0) / self.n * a ** (5 / 3) / p ** (2 / 3) - self.q
        return bisect(f, 1e-6, self.z2 - self.z1)

    def yc_exact(self):
        if self.t1 == self.t2:  # rectangle: yc = (q^2 / g)^(1/3)
            return ((self.q / self.t1) ** 2 / 9.81) ** (1 / 3)
        def f(y):
            a, _, t = self.exact_geometry(y)
            return 1 - self.q ** 2 * t / (9.81 * a ** 3)
        return bisect(f, 1e-6, self.z2 - self.z1)


def bisect(f, lo, hi):
    assert f(lo) < 0 < f(hi)
    for _ in range(200):
        mid = (lo + hi) / 2
        if f(mid) < 0:
            lo = mid
        else:
            hi = mid
    return (lo + hi) / 2


# ----------------------------------------------------------------------------------------------
# The profile run.
class Run:
    def __init__(self, sections, y_start, chainage_boxes):
        self.s = {i + 1: sec for i, sec in enumerate(sections)}
        self.N = len(sections)
        self.ysec = {self.N: y_start}
        self.zw = {i: sec.za for i, sec in self.s.items()}
        self.vsec = {i: sec.v for i, sec in self.s.items()}
        self.tipo = {}
        xs = chainage_boxes + [0.0] * (15 - len(chainage_boxes))
        self.L = {j: xs[j - 1] - xs[j - 2] for j in range(2, 16)}
        self.L[1] = 0.0  # never set
        self.stops = []  # (k, how, y_start, y_end) of each march, for the checks
        self.margins = []
        self.zw[self.N] = y_start + self.s[self.N].z1
        for k in range(self.N, 0, -1):
            sec = self.s[k]
            self.y = self.ysec[k]
            self.zw[k] = self.ysec[k] + sec.z1
            if sec.yn < sec.yc:
                if self.ysec[k] > sec.yc:
                    self.tipo[k] = "S1"
                    self.march(k, -0.005, sec.yc + 0.02, sec.yc, sec.s0, store=False)
                if self.ysec[k] <= sec.yc:
                    self.ysec[k - 1] = sec.yc
                    self.tipo[k] = "S2"
            if sec.yn >= sec.yc:
                if self.ysec[k] >= sec.yn:
                    self.tipo[k] = "M1"
                    self.march(k, -0.005, sec.yn, sec.yn, sec.s0, store=True)
                if self.ysec[k] < sec.yn:
                    self.tipo[k] = "M2"
                    if self.ysec[k] <= sec.yc + 0.02:
                        self.y = sec.yc + 0.02
                        self.zw[k] = self.y + sec.z1
                    self.march(k, 0.005, sec.yn, sec.yn, 0.0, store=True)  # S0(0): never computed, 0

    def march(self, k, dy, limit, stop_depth, s0, store):
        sec, L, d, y0 = self.s[k], self.L[k], 0.0, self.y
        while True:
            if L > 0:
                self.margins.append(d - L)
            if d >= L:
                self.ysec[k - 1] = self.y
                self.stops.append((k, "distance", y0, self.y))
                return
            vs, sfs, es = sec.evaluate(self.y)
            if store:
                self.vsec[k] = vs
            self.y = self.y + dy
            if (self.y <= limit) if dy < 0 else (self.y >= limit):
                self.ysec[k - 1] = stop_depth
                self.stops.append((k, "limit", y0, stop_depth))
                return
            ve, sfe, ee = sec.evaluate(self.y)
            sfm = (sfs + sfe) / 2
            dx = abs((ee - es) / (s0 - sfm))
            d = d + dx


def gvf_upstream(sec, y, length, steps=4000):
    """Depth a distance `length` upstream of depth y, by RK4 on dy/dx = (S0 - Sf) / (1 - Fr^2)."""
    def slope(y):
        a, p, t = sec.exact_geometry(y)
        v = sec.q / a
        sf = sec.n ** 2 * v ** 2 / (a / p) ** (4 / 3)
        fr2 = sec.q ** 2 * t / (9.81 * a ** 3)
        return (sec.s0 - sf) / (1 - fr2)
    h = -length / steps  # marching upstream: x decreases
    for _ in range(steps):
        k1 = slope(y)
        k2 = slope(y + h * k1 / 2)
        k3 = slope(y + h * k2 / 2)
        k4 = slope(y + h * k3)
        y = y + h * (k1 + 2 * k2 + 2 * k3 + k4) / 6
    return y


def fmt(x):
    d = Decimal(repr(float("%.15g" % x)))
    out = str(d.quantize(Decimal("0.01"), rounding=ROUND_HALF_UP))
    return "0.00" if out == "-0.00" else out


def near_boundary(x):
    scaled = abs(x) * 100
    return abs(scaled - math.floor(scaled) - 0.5) < 1e-4


def check(run, name):
    for k, sec in run.s.items():
        yn, yc = sec.yn_exact(), sec.yc_exact()
        # The normal depth is reported one step above the first 1 mm grid depth that carries Q; the
        # critical depth one step below the first grid depth that is not supercritical.
        assert yn + 0.0009 <= sec.yn + 1e-9 <= yn + 0.0021, (name, k, sec.yn, yn)
        assert yc - 0.0021 <= sec.yc - 1e-9 <= yc - 0.0009 + 2e-9, (name, k, sec.yc, yc)
        t = run.tipo[k]
        mild = yn >= yc
        assert t[0] == ("M" if mild else "S"), (name, k, t)
        y = run.ysec[k]
        assert t[1] == ("1" if y > (yn if mild else yc) else "2"), (name, k, t, y)
    for k, how, y0, y1 in run.stops:
        if how == "distance" and run.L[k] > 0 and run.tipo[k] in ("M1", "S1"):
            exact = gvf_upstream(run.s[k], y0, run.L[k])
            assert abs(exact - y1) < 0.01, (name, k, y0, y1, exact)
    assert all(abs(m) > 1e-6 for m in run.margins), (name, run.margins)
    for j in range(1, 16):
        for x in (run.zw.get(j, 0.0), run.vsec.get(j, 0.0)):
            assert not near_boundary(x), (name, j, x)


# ----------------------------------------------------------------------------------------------
def write(name, form, caption, sections, y_start, chainages, header, instruction):
    run = Run(sections, y_start, chainages)
    check(run, name)
    N = len(sections)
    lines = ["# " + l for l in header] + [
        "# Expected values: tests/guiones/perfiles_referencia.py (worked from the screen's rules).",
        "pantalla " + form]
    for i, sec in enumerate(sections, start=1):
        lines += [
            "escribir Text61 %d" % N, "escribir Text62 %d" % i,
            "escribir Text1 %r" % sec.z1, "escribir Text2 %r" % sec.t1,
            "escribir Text3 %r" % sec.z2, "escribir Text4 %r" % sec.t2,
            "escribir Text93 %r" % sec.n, "escribir Text94 %r" % sec.s0, "escribir Text95 %r" % sec.q,
            "oprimir Command2"]
    lines.append("mostrar")
    for j, x in enumerate(chainages, start=1):
        lines.append("escribir Text%d %r" % (29 + 2 * j, x))
    lines += ["escribir Text98 %r" % y_start, "oprimir Command1", "mostrar"]
    with open(os.path.join(HERE, name + ".guion"), "w") as f:
        f.write("\n".join(lines) + "\n")

    last = run.s[N]
    before = {"Command1": "Perfiles", "Command2": "", "Label32": "", "Text99": fmt(last.yn), "Text100": fmt(last.yc),
              "Text32": "", "Text63": "", "Text78": ""}
    after = {"Command1": "Perfiles", "Label32": "Yinicial", "Data1": caption, "Label25": instruction}
    for j in range(1, 16):
        after["Text%d" % (30 + 2 * j)] = run.tipo.get(j, "")
        after["Text%d" % (62 + j)] = fmt(run.zw.get(j, 0.0))
        after["Text%d" % (77 + j)] = fmt(run.vsec.get(j, 0.0))
    with open(os.path.join(HERE, name + ".json"), "w") as f:
        f.write(json.dumps(before, ensure_ascii=False) + "\n" + json.dumps(after, ensure_ascii=False) + "\n")
    print(name, " ".join("%s %s %s" % (run.tipo[k], fmt(run.zw[k]), fmt(run.vsec[k])) for k in range(1, N + 1)))


FORM2 = ("FLUJO EN CAUCES NATURALES" + " " * 98 +
         "Oprima (Y?) para calcular la Profundidad Normal y las características hidráulicas del cauce.")
FORM4 = ("PERFILES LONGITUDINALES EN ZORVENA PRISMATICOS DE SECCION TRAPEZOIDAL, RECTANGULAR O TRIANGULAR." +
         " " * 98 + "Oprima (Y?) para calcular la Profundidad Normal y las características hidráulicas del canal.")


def reach(kind, slopes, spacing=100.0, q=6.0, n=0.015, z_end=100.0012):
    """Sections 1..len(slopes), upstream to downstream, 'spacing' apart; the bed falls with each slope."""
    xs = [spacing * i for i in range(len(slopes))]
    z = [z_end]
    for i in range(len(slopes) - 1, 0, -1):
        z.insert(0, round(z[0] + slopes[i] * spacing, 6))
    secs = []
    for i, s0 in enumerate(slopes):
        if kind == "rect":
            secs.append(Section(z[i], 3.0, 3.0, 3.0, n, s0, q, xs[i]))
        elif kind == "trap":  # bottom 2 m, sides 1.5:1, 2.5 m deep
            secs.append(Section(z[i], 2.0, 2.5, 9.5, n, s0, q, xs[i]))
        elif kind == "tri":  # V-shaped, sides 2:1, 3 m deep
            secs.append(Section(z[i], 0.0, 3.0, 12.0, n, s0, q, xs[i]))
    return secs, xs


def main():
    mild5, x5 = reach("rect", [0.001] * 5)
    write("form2_perfil_m1", "Form2", "Perfiles en cauces", mild5, 2.0, x5,
          ["Five rectangular sections (3 m wide, n 0.015, S0 0.001, Q 6 m3/s; Yn about 1.23 m,",
           "Yc about 0.74 m), 100 m apart; 2 m at the last section: M1 all the way up."], FORM2)
    write("form2_perfil_m2", "Form2", "Perfiles en cauces", mild5, 0.9, x5,
          ["The same reach with 0.9 m at the last section (between Yc + 0.02 and Yn): M2 rising upstream,",
           "its distance taken with the bed slope of element 0 (0)."], FORM2)
    write("form2_perfil_m2_elevado", "Form2", "Perfiles en cauces", mild5, 0.5, x5,
          ["The same reach with 0.5 m at the last section (below Yc + 0.02): the M2 march starts from",
           "Yc + 0.02 and the last section's water-surface elevation shows that raised depth."], FORM2)
    steep4, xs4 = reach("rect", [0.02] * 4)
    write("form2_perfil_s1", "Form2", "Perfiles en cauces", steep4, 1.2, xs4,
          ["Four steep rectangular sections (S0 0.02: Yn about 0.48 m below Yc about 0.74 m) with 1.2 m at",
           "the last: S1 falling upstream to critical depth, then S2; steep sections keep the velocity of",
           "\"(Y?)\"."], FORM2)
    write("form2_perfil_s2", "Form2", "Perfiles en cauces", steep4, 0.6, xs4,
          ["The steep reach with 0.6 m (below Yc) at the last section: S2 everywhere, no stepping."], FORM2)
    mixed, xm = reach("rect", [0.001, 0.001, 0.02, 0.02, 0.001, 0.001], spacing=60.0)
    write("form2_perfil_mixto", "Form2", "Perfiles en cauces", mixed, 0.9, xm,
          ["Mild, steep, mild: sections 1-2 and 5-6 at S0 0.001, 3-4 at 0.02, 60 m apart, 0.9 m at the last.",
           "M2, S1 down to critical depth, S2, then M2 started from Yc + 0.02 (raised)."], FORM2)
    fifteen, x15 = reach("rect", [0.001] * 5 + [0.02] * 5 + [0.001] * 5, spacing=80.0)
    write("form2_perfil_quince", "Form2", "Perfiles en cauces", fifteen, 1.6, x15,
          ["Fifteen sections, 80 m apart: five mild, five steep, five mild; 1.6 m at the last."], FORM2)
    trap, xt = reach("trap", [0.0008] * 4, spacing=150.0, q=10.0, n=0.02)
    write("form4_perfil_trapecio", "Form4", "Perfiles de zorvena", trap, 2.2, xt,
          ["Form4: a trapezoidal channel (bottom 2 m, sides 1.5:1, n 0.02, S0 0.0008, Q 10 m3/s) as two",
           "levels per section, four sections 150 m apart, 2.2 m at the last: M1."], FORM4)
    tri, xr = reach("tri", [0.015] * 3, spacing=25.0, q=8.0, n=0.014)
    write("form4_perfil_triangulo", "Form4", "Perfiles de zorvena", tri, 2.0, xr,
          ["Form4: a V-shaped channel (sides 2:1, bottom width 0, n 0.014, S0 0.015, Q 8 m3/s), three",
           "sections 25 m apart, 2 m at the last: S1 twice, the second down to critical depth, then S2."], FORM4)


if __name__ == "__main__":
    main()
