#!/usr/bin/env python3
"""Independent check of the numbers in the form1_* driver scripts' expected screens.

The .json files were written from a model of Form1's rules (its fixed-point iterations to 0.0001,
the 1 mm marches of the conduit, the 2.5 mm march over the banks, the bank-full top width kept in
single precision), never from Cauce's output. This script re-derives the key numbers from first
principles and checks the stored expectations against them:
  - trapezoid, rectangle and triangle: normal depth by bisection of Manning's equation, critical
    depth by the closed forms ((q^2/g)^(1/3), (2 Q^2/(g z^2))^(1/5)) or a bisection of Q^2 T = g A^3;
  - depths over the banks: bisection of channel plus flood-zone discharge (within the 2.5 mm grid);
  - the conduit: Qlleno = 0.3117 / n D^(8/3) sqrt(S), Qm = 1.076 Qlleno, normal and critical depths
    by bisection on the exact circle (within the 1 mm marches' one-step reporting);
  - discharges computed directly (Q ?) must equal the exact formula once rounded, and sit more than
    1e-6 away from a rounding boundary of their pattern.

Usage: python3 tests/guiones/form1_referencia.py   (prints "ok" or stops at the first mismatch)
"""
import json
import math
import os
from decimal import Decimal, ROUND_HALF_UP

HERE = os.path.dirname(os.path.abspath(__file__))
G = 9.81


def load(name):
    with open(os.path.join(HERE, name + ".json"), encoding="utf-8") as f:
        return [json.loads(line) for line in f if line.strip()]


def bisect(f, lo, hi):
    assert f(lo) < 0 < f(hi), (f(lo), f(hi))
    for _ in range(200):
        mid = (lo + hi) / 2
        lo, hi = (mid, hi) if f(mid) < 0 else (lo, mid)
    return (lo + hi) / 2


def manning(n, s, a, p):
    return math.sqrt(s) / n * a ** (5 / 3) / p ** (2 / 3)


def near(shown, exact, slack=2e-4):
    """A rounded iteration result: within half a unit of its last digit plus the iteration's slack."""
    decimals = len(shown.split(".")[1]) if "." in shown else 0
    assert abs(float(shown) - exact) <= 0.5 * 10 ** -decimals + slack + 1e-12, (shown, exact)


def same(shown, exact):
    """A direct formula: rounds to exactly what is shown, clear of the rounding boundary."""
    decimals = len(shown.split(".")[1])
    frac = Decimal(exact).scaleb(decimals) % 1
    assert abs(frac - Decimal("0.5")) > Decimal("1e-6"), ("near a rounding boundary", exact)
    d = Decimal(exact).quantize(Decimal(1).scaleb(-decimals), rounding=ROUND_HALF_UP)
    assert f"{d:.{decimals}f}" == shown, (shown, exact)


def trap(b, z):
    return lambda y: ((b + z * y) * y, b + 2 * y * math.sqrt(1 + z * z), b + 2 * z * y)


def normal(geo, n, s, q):
    return bisect(lambda y: manning(n, s, *geo(y)[:2]) - q, 1e-6, 50)


def critical(geo, q, top=50):
    return bisect(lambda y: G * geo(y)[0] ** 3 - q * q * geo(y)[2], 1e-6, top)


def trapezoids():
    t = load("form1_trapecio")
    for line, (b, z, n, s, q) in {0: (3, 1.5, 0.015, 0.0008, 10), 2: (2, 0, 0.015, 0.001, 2),
                                  3: (0, 2, 0.013, 0.002, 1.5), 4: (2, 1, 0.02, 0.001, 5)}.items():
        geo = trap(b, z)
        near(t[line]["Text9"], normal(geo, n, s, q))
        near(t[line]["Text12"], critical(geo, q))
    near(t[2]["Text12"], (2 * 2 / (G * 2 * 2)) ** (1 / 3))           # rectangle, closed form
    near(t[3]["Text12"], (2 * 1.5 ** 2 / (G * 2 * 2)) ** (1 / 5))    # triangle, closed form
    same(t[1]["Text8"], manning(0.015, 0.0008, *trap(3, 1.5)(1.2)[:2]))
    same(t[4]["Text14"], manning(0.02, 0.001, *trap(2, 1)(1.5)[:2]))  # Q lleno
    same(t[6]["Text8"], manning(0.02, 0.001, *trap(2, 1)(0.75)[:2]))


def flood_total(b, z, h, bz, n, nz, s, tb=None):
    ab, pb, t = trap(b, z)(h)
    tb = t if tb is None else tb
    wf = bz - tb

    def q(d):
        channel = manning(n, s, ab + d * (tb + d), pb)
        return channel + (manning(nz, s, wf * d, wf + 2 * math.sqrt(2) * d) if wf > 0 else 0)
    return q


def floods():
    d = load("form1_desborde")
    for line, (b, z, h, bz, n, nz, s, q) in {0: (2, 1, 1, 20, 0.02, 0.04, 0.001, 15),
                                             5: (2.045, 0.4, 1, 10, 0.015, 0.03, 0.001, 8),
                                             7: (0, 1.5, 0.8, 12, 0.014, 0.05, 0.0015, 3)}.items():
        total = flood_total(b, z, h, bz, n, nz, s)
        over = bisect(lambda dd: total(dd) - q, 1e-9, 100)
        near(d[line]["Text9"], h + over + 0.00125, slack=0.00125)  # the march stops within 2.5 mm above
    same(d[1]["Text8"], flood_total(2, 1, 1, 20, 0.02, 0.04, 0.001)(0.3))
    assert d[5]["Text21"] == "7.15"  # 10 - Tb with Tb = 2.845 held in single precision (2.845000029)
    assert d[6]["Text12"] == "Yc > h "  # Q 1.5 fills 1 x 0.3 at Froude > 1
    ab, _, tb = trap(1, 0)(0.3)
    assert (1.5 / ab) / math.sqrt(G * ab / tb) > 1


def circle(D):
    def geo(y):
        th = 2 * math.acos(1 - 2 * y / D)
        return D * D / 8 * (th - math.sin(th)), D * th / 2, D * math.sin(th / 2)
    return geo


def conduits():
    c, f = load("form1_circular"), load("form1_circular_faltas")
    for line, (D, n, s, q) in {0: (1, 0.013, 0.001, 0.5), 1: (1, 0.013, 0.001, 0.1), 2: (0.5, 0.013, 0.05, 0.1)}.items():
        qfull = 0.3117 / n * D ** (8 / 3) * math.sqrt(s)
        near(c[line]["Text4"], qfull, slack=2e-4 * qfull)
        near(c[line]["Text5"], 1.076 * qfull, slack=1e-3 * qfull)
        geo = circle(D)
        # Both marches report 1 mm past the last depth evaluated: normal above, critical below.
        near(c[line]["Text9"], bisect(lambda y: manning(n, s, *geo(y)[:2]) - q, 1e-6, 0.938 * D) + 0.0015, 6e-4)
        near(c[line]["Text12"], critical(geo, q, 0.99 * D) - 0.0015, 6e-4)
    assert c[2]["Text26"] > "1"  # steep: supercritical at the normal depth
    for line, y in ((3, 0.12), (4, 0.4)):
        exact = manning(0.013, 0.001, *circle(1)(y)[:2])
        near(c[line]["Text8"], exact, slack=1e-4 * exact)  # the screen's circle uses pi = 3.1416
    near(c[5]["Text8"], 0.3117 / 0.013 * math.sqrt(0.001), slack=2e-4)  # Yn = D: Tubo lleno
    qm = 1.076 * 0.3117 / 0.013 * math.sqrt(0.001)
    assert f[6]["Label21"].startswith("El Caudal no puede") and abs(qm - 0.8155) < 0.0006  # 0.816 refused
    assert f[7]["Label21"] == "" and f[7]["Text8"] == "0.815"                              # 0.815 computed


if __name__ == "__main__":
    trapezoids()
    floods()
    conduits()
    print("ok")
