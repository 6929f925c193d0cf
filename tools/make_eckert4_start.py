#!/usr/bin/env python3
"""The polar start of the Eckert IV forward (projections/KvEckertIV.cpp).

Near the poles (sin phi > 0.9) the forward solves, for w = pi/2 - |theta|,
  w - sin w cos w + 4 sin^2(w / 2) = C = (2 + pi/2) (1 - sin phi),
whose left side is w^2 (1 + 2w/3 + ...): w / r is analytic in r = sqrt(C).
It is interpolated at Chebyshev nodes of r and written in powers of
x = 2 r / r_max - 1; the roots are taken to 40 digits (mpmath), and the
start's largest relative error over a dense grid is printed for the comment
beside the constants.

Usage: /usr/bin/python3 tools/make_eckert4_start.py
"""
import mpmath as mm
import numpy as np
from numpy.polynomial import chebyshev as C, polynomial as P

mm.mp.dps = 40
LIMIT = 0.9
NODES, DEGREE = 200, 9
CP = 2 + mm.pi / 2


def w_of_r(r):
    c = mm.mpf(r) ** 2
    return float(mm.findroot(lambda w: w - mm.sin(w) * mm.cos(w) + 4 * mm.sin(w / 2) ** 2 - c, mm.mpf(r)))


top = float(mm.sqrt(CP * (1 - LIMIT)))
x = np.cos(np.pi * (np.arange(NODES) + 0.5) / NODES)
r = (x + 1.0) * top / 2.0
coefficients = C.cheb2poly(C.chebfit(x, [w_of_r(q) / q for q in r], DEGREE))
grid = np.linspace(top * 1e-4, top, 4001)
worst = max(abs(q * P.polyval(2.0 * q / top - 1.0, coefficients) / w_of_r(q) - 1.0) for q in grid)
print(f"// largest relative error in w: {worst:.2g}")
print(f"constexpr double kPoleScale = {2.0 / top!r};")
print(f"constexpr double kPole[{len(coefficients)}] = {{" + ", ".join(repr(c) for c in coefficients) + "};")
