#!/usr/bin/env python3
"""The starting polynomials of the Natural Earth inverse (projections/KvNaturalEarth.cpp).

The inverse solves N(phi) = Y for the latitude, N(phi) = phi (B0 + B1 phi^2 +
phi^6 (B2 + B3 phi^2 + B4 phi^4)) (Savric, Jenny, Patterson, Petrovic and
Hurni, 2011), with phi within [0, pi/2]. N' stays above 0.12 there but
vanishes at phi_c = 1.588, just beyond the pole, where N has its maximum Y_c:
phi(Y) has a square-root branch point at Y_c, 0.0011 beyond the poles'
northing, and no polynomial in Y converges fast near it. Two pieces:
  |Y| <= SPLIT: phi / Y as a polynomial in x = 2 Y^2 / SPLIT^2 - 1,
  |Y| >  SPLIT: phi as a polynomial in x = (2 s - s0 - s1) / (s1 - s0),
                s = sqrt(Y_c - |Y|), s in [s0, s1] over the piece,
in which phi is analytic. Both are interpolated at Chebyshev nodes from roots
taken to 40 digits (mpmath); the largest errors over dense grids are printed
for the comment beside the constants.

Usage: /usr/bin/python3 tools/make_natural_earth_start.py
"""
import mpmath as mm
import numpy as np
from numpy.polynomial import chebyshev as C, polynomial as P

mm.mp.dps = 40
B0, B1, B2, B3, B4 = (mm.mpf(v) for v in ("1.007226", "0.015085", "-0.044475", "0.028874", "-0.005916"))
NODES, SPLIT, LOW_DEGREE, HIGH_DEGREE = 120, 1.15, 12, 12


def northing(phi):
    p = phi * phi
    return phi * (B0 + p * (B1 + p * p * (B2 + p * (B3 + p * B4))))


def phi_of_y(y):
    return mm.findroot(lambda t: northing(t) - mm.mpf(y), (mm.mpf(0), mm.pi / 2), solver="anderson")


phi_c = mm.findroot(lambda t: mm.diff(northing, t), 1.585)
y_c, top = northing(phi_c), northing(mm.pi / 2)
nodes = np.cos(np.pi * (np.arange(NODES) + 0.5) / NODES)

z = np.sqrt((nodes + 1.0) * SPLIT * SPLIT / 2.0)
low = C.cheb2poly(C.chebfit(nodes, [float(phi_of_y(q) / q) for q in z], LOW_DEGREE))
grid = np.linspace(SPLIT * 1e-4, SPLIT, 3001)
low_worst = max(abs(q * P.polyval(q * q * 2.0 / (SPLIT * SPLIT) - 1.0, low) - float(phi_of_y(q))) for q in grid)

s0, s1 = mm.sqrt(y_c - top), mm.sqrt(y_c - SPLIT)
s = [s0 + (mm.mpf(t) + 1) / 2 * (s1 - s0) for t in nodes]
high = C.cheb2poly(C.chebfit(nodes, [float(phi_of_y(y_c - q * q)) for q in s], HIGH_DEGREE))
scale, shift = float(2 / (s1 - s0)), float((s0 + s1) / (s1 - s0))
grid = np.linspace(SPLIT, float(top), 3001)
high_worst = max(abs(P.polyval(float(mm.sqrt(y_c - q)) * scale - shift, high) - float(phi_of_y(q))) for q in grid)

print(f"// largest errors in phi (rad): {low_worst:.2g} below the split, {high_worst:.2g} above")
print(f"constexpr double kSplit = {SPLIT!r}, kLowScale = {2.0 / (SPLIT * SPLIT)!r};")
print(f"constexpr double kLow[{len(low)}] = {{" + ", ".join(repr(c) for c in low) + "};")
print(f"constexpr double kYc = {float(y_c)!r}, kHighScale = {scale!r}, kHighShift = {shift!r};")
print(f"constexpr double kHigh[{len(high)}] = {{" + ", ".join(repr(c) for c in high) + "};")
