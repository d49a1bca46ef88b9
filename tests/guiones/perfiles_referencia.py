#!/usr/bin/env python3
"""Independent check of the profile tables in the form2_perfil_* and form4_perfil_* driver scripts.

The .json files were written from a model of the screen's rules (the 1 mm normal- and critical-depth
marches of "(Y?)", then the 5 mm direct steps of the profile run), never from Cauce's output. This
script reads each script's reach (one-band sections: rectangle, trapezoid or V) and checks the stored
tables against first principles:
  - Yn and Yc shown by "(Y?)" against a bisection of Manning's equation and of Fr = 1, within the
    marches' 1 mm grid and their one-step reporting;
  - every profile type against those exact depths (M when Yn >= Yc; 1 above, 2 below the reference);
  - every M1 and S1 stretch against an accurate integration (RK4) of the gradually-varied-flow
    equation dy/dx = (S0 - Sf) / (1 - Fr^2) over the same length, started at the depth shown
    downstream; an M1 that reaches Yn hands Yn upstream, an S1 that reaches Yc + 0.02 hands Yc;
  - steep sections keep the velocity of "(Y?)".
When the tables were written, no shown value sat within 1e-6 of a rounding boundary of "0.00" and no
reach length was met by the accumulated distance to within 1e-6 (a table that does not hang on a
last digit).

Usage: python3 tests/guiones/perfiles_referencia.py   (prints "ok" or stops at the first mismatch)
"""
import json
import math
import os

HERE = os.path.dirname(os.path.abspath(__file__))
G = 9.81
SCRIPTS = ("form2_perfil_m1", "form2_perfil_s1", "form2_perfil_mixto", "form2_perfil_quince", "form4_perfil_trapecio",
           "form4_perfil_triangulo")


def bisect(f, lo, hi):
    assert f(lo) < 0 < f(hi)
    for _ in range(200):
        mid = (lo + hi) / 2
        lo, hi = (mid, hi) if f(mid) < 0 else (lo, mid)
    return (lo + hi) / 2


class Section:
    def __init__(self, box):
        self.z1, self.t1, self.h = box["Text1"], box["Text2"], box["Text3"] - box["Text1"]
        self.m = (box["Text4"] - self.t1) / 2 / self.h
        self.n, self.s0, self.q = box["Text93"], box["Text94"], box["Text95"]
        self.yn = bisect(lambda y: math.sqrt(self.s0) / self.n * self.a(y) ** (5 / 3) / self.p(y) ** (2 / 3) - self.q,
                         1e-6, self.h)
        self.yc = bisect(lambda y: 1 - self.q ** 2 * self.t(y) / (G * self.a(y) ** 3), 1e-6, self.h)

    def a(self, y):
        return y * (self.t1 + self.m * y)

    def p(self, y):
        return self.t1 + 2 * y * math.sqrt(1 + self.m * self.m)

    def t(self, y):
        return self.t1 + 2 * self.m * y

    def upstream(self, y, length, floor, steps=4000):
        """Depth `length` upstream of y by RK4 on the GVF equation; None once it falls to `floor`."""
        def slope(y):
            sf = self.n ** 2 * (self.q / self.a(y)) ** 2 / (self.a(y) / self.p(y)) ** (4 / 3)
            return (self.s0 - sf) / (1 - self.q ** 2 * self.t(y) / (G * self.a(y) ** 3))
        h = -length / steps
        for _ in range(steps):
            k1 = slope(y)
            k2 = slope(y + h * k1 / 2)
            k3 = slope(y + h * k2 / 2)
            k4 = slope(y + h * k3)
            y = y + h * (k1 + 2 * k2 + 2 * k3 + k4) / 6
            if y <= floor:
                return None
        return y


def read(name):
    """The script's sections, chainages, and each profile run: its start depth and the table shown."""
    sections, box, starts = [], {}, []
    with open(os.path.join(HERE, name + ".guion"), encoding="utf-8") as f:
        for line in f:
            words = line.split()
            if words[:2] == ["escribir", "Text98"]:
                starts.append(float(words[2]))
            elif words[:1] == ["escribir"]:
                box[words[1]] = float(words[2])
            elif words == ["oprimir", "Command2"]:
                sections.append(Section(box))
                box = {}
    with open(os.path.join(HERE, name + ".json"), encoding="utf-8") as f:
        before, *after = (json.loads(line) for line in f)
    assert len(after) == len(starts), (name, len(after), len(starts))
    chainage = [box["Text%d" % (29 + 2 * j)] for j in range(1, len(sections) + 1)]
    return sections, chainage, before, list(zip(starts, after))


def near(shown, exact, slack):
    assert abs(float(shown) - exact) <= 0.005 + slack, (shown, exact)


def check(name):
    secs, x, before, runs = read(name)
    last = secs[-1]
    # "(Y?)" reports the normal depth 1 mm above its march's last depth, the critical depth 1 mm below.
    near(before["Text99"], last.yn + 0.0015, 6e-4)
    near(before["Text100"], last.yc - 0.0015, 6e-4)
    for y_start, after in runs:
        check_run(name, secs, x, y_start, after)


def check_run(name, secs, x, y_start, after):
    last = secs[-1]
    depth = {k: float(after["Text%d" % (62 + k)]) - s.z1 for k, s in enumerate(secs, start=1)}
    kind = {k: after["Text%d" % (30 + 2 * k)] for k in depth}
    N = len(secs)
    raised = kind[N] == "M2" and y_start <= last.yc + 0.02  # the M2 march starts at Yc + 0.02
    near(depth[N] + last.z1, (last.yc + 0.02 - 0.0015 if raised else y_start) + last.z1, 6e-4)
    for k, s in enumerate(secs, start=1):
        mild = s.yn >= s.yc
        assert kind[k][0] == ("M" if mild else "S"), (name, k, kind[k])
        ref = s.yn if mild else s.yc
        if abs(depth[k] - ref) > 0.01:
            assert kind[k][1] == ("1" if depth[k] > ref else "2"), (name, k, kind[k], depth[k])
        if not mild:
            near(after["Text%d" % (77 + k)], s.q / s.a(s.yn + 0.0005), 0.006)  # A at the last depth marched
        if k > 1 and kind[k] in ("M1", "S1"):
            up = s.upstream(depth[k], x[k - 1] - x[k - 2], s.yn if mild else s.yc + 0.02)
            near(depth[k - 1], (s.yn if mild else s.yc) if up is None else up, 0.01)


if __name__ == "__main__":
    for script in SCRIPTS:
        check(script)
    print("ok")
