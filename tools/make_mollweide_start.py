#!/usr/bin/env python3
"""The starting polynomials of the Mollweide forward (projections/KvMollweide.cpp).

The auxiliary angle theta of a latitude phi solves 2 theta + sin 2 theta =
pi sin phi. Away from the poles (sin phi <= 0.9) theta / phi is analytic in
phi^2; near them v = pi - 2 |theta| solves v - sin v = C, C = pi (1 - sin phi),
and v / r is analytic in r^2, r = (6 C)^(1/3). Each quotient is interpolated
at Chebyshev nodes of the squared variable and written in powers of
x = 2 z^2 / z_max^2 - 1; the roots are taken to 40 digits (mpmath), and the
largest error of the start over a dense grid is printed for the comment
beside the constants.

Usage: /usr/bin/python3 tools/make_mollweide_start.py
"""
import mpmath as mm
import numpy as np
from numpy.polynomial import chebyshev as C, polynomial as P

mm.mp.dps = 40
LIMIT = 0.9  # sin phi of the border between the two starts
NODES = 200


def theta_of_phi(phi):
    k = mm.pi * mm.sin(mm.mpf(phi))
    u = mm.findroot(lambda u: u + mm.sin(u) - k, k / 2)
    return float(u / 2)


def v_of_r(r):
    c = mm.mpf(r) ** 3 / 6
    return float(mm.findroot(lambda v: v - mm.sin(v) - c, mm.mpf(r)))


def fit(function, top, degree, relative):
    x = np.cos(np.pi * (np.arange(NODES) + 0.5) / NODES)
    z = np.sqrt((x + 1.0) * top * top / 2.0)
    coefficients = C.cheb2poly(C.chebfit(x, [function(q) / q for q in z], degree))
    grid = np.linspace(top * 1e-3, top, 4001)
    exact = np.array([function(q) for q in grid])
    start = grid * P.polyval(grid * grid * 2.0 / (top * top) - 1.0, coefficients)
    error = np.abs(start - exact)
    worst = (error / exact).max() if relative else error.max()
    return 2.0 / (top * top), coefficients, worst


def show(name, scale, coefficients, worst, what):
    print(f"// {what}: {worst:.2g}")
    print(f"constexpr double {name}Scale = {scale!r};")
    print(f"constexpr double {name}[{len(coefficients)}] = {{" + ", ".join(repr(c) for c in coefficients) + "};")


show("kTheta", *fit(theta_of_phi, float(mm.asin(LIMIT)), 9, False), "largest error in theta (rad)")
show("kPole", *fit(v_of_r, float(mm.cbrt(6 * mm.pi * (1 - LIMIT))), 5, True), "largest relative error in v")
