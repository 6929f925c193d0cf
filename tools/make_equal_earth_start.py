#!/usr/bin/env python3
"""The starting polynomial of the Equal Earth inverse (projections/KvEqualEarth.cpp).

The inverse solves P(theta) = Y for the parametric angle theta, P(theta) =
theta (A1 + A2 theta^2 + theta^6 (A3 + A4 theta^2)) (Savric, Patterson and
Jenny, 2019), with theta within [0, pi/3]. P' stays above 1.13 there, so that
theta / Y is analytic in Y^2; it is interpolated at Chebyshev nodes of Y^2 and
written in powers of x = 2 Y^2 / Y_max^2 - 1. The roots are taken to 40
digits (mpmath), and the start's largest error over a dense grid is printed
for the comment beside the constants.

Usage: /usr/bin/python3 tools/make_equal_earth_start.py
"""
import mpmath as mm
import numpy as np
from numpy.polynomial import chebyshev as C, polynomial as P

mm.mp.dps = 40
A1, A2, A3, A4 = mm.mpf("1.340264"), mm.mpf("-0.081106"), mm.mpf("0.000893"), mm.mpf("0.003796")
NODES, DEGREE = 200, 9


def northing(t):
    t2 = t * t
    return t * (A1 + A2 * t2 + t2 ** 3 * (A3 + A4 * t2))


def theta_of_y(y):
    y = mm.mpf(y)
    return float(mm.findroot(lambda t: northing(t) - y, y / A1))


top = float(northing(mm.pi / 3))
x = np.cos(np.pi * (np.arange(NODES) + 0.5) / NODES)
z = np.sqrt((x + 1.0) * top * top / 2.0)
coefficients = C.cheb2poly(C.chebfit(x, [theta_of_y(q) / q for q in z], DEGREE))
grid = np.linspace(top * 1e-4, top, 4001)
worst = max(abs(q * P.polyval(q * q * 2.0 / (top * top) - 1.0, coefficients) - theta_of_y(q)) for q in grid)
print(f"// largest error in theta (rad): {worst:.2g}")
print(f"constexpr double kStartScale = {2.0 / (top * top)!r};")
print(f"constexpr double kStart[{len(coefficients)}] = {{" + ", ".join(repr(c) for c in coefficients) + "};")
