#!/usr/bin/env python3
"""The start table of the Winkel Tripel inverse (projections/KvWinkelTripel.cpp), modelled.

The constructor solves the inverse at the nodes of a uniform grid over the
quarter X >= 0, Y >= 0 of the unit map (X = 2x/R, Y = 2y/R; the inverse is odd
in X and in Y), row by row outwards from the central meridian, and keeps each
node's phi and lambda with their derivatives (the inverse of the Jacobian; the
cross derivative from the neighbours along Y). Between the nodes the start is
bicubic Hermite interpolation; Newton's method then runs from it with the
engine's stop (a step below 3e-8 rad). Nodes without a root near the sphere's
range (|lambda| > 1.25 pi or |phi| > 0.6 pi) are left out and their cells give
no start: the closed-form start then, as after a table start that does not
settle within STEPS.

This script does the same in numpy (libm in place of the engine's kernels) and
prints, over a grid of the whole map, the start's error and the number of steps
from it and from the closed-form start, for the figures in the engine's comment.

Usage: /usr/bin/python3 tools/make_winkel_tripel_start.py [phi1 ...] [--step DEG]
"""
import sys

import numpy as np

PI = np.pi
CELLS_X, CELLS_Y, STEPS, MAX_STEPS, STEP_LIMIT = 24, 16, 6, 24, 3e-8


def unit(phi, lam, cp1):
    """The unit map (2x, 2y on R = 1) and its Jacobian {X_phi, X_lambda, Y_phi, Y_lambda}."""
    s, c, S, C = np.sin(phi), np.cos(phi), np.sin(lam / 2), np.cos(lam / 2)
    ca = c * C
    sa = np.sqrt(s * s + c * c * S * S)
    al = np.arctan2(sa, ca)
    with np.errstate(all="ignore"):
        f = np.where(sa > 0, al / np.where(sa > 0, sa, 1), 1.0)
        g = np.where(sa > 1e-4, (1 - f * ca) / np.where(sa > 0, sa * sa, 1), 1 / 3)
    X, Y = 2 * c * S * f + lam * cp1, s * f + phi
    return X, Y, (2 * S * s * (g * c * C - f), c * (C * f + g * c * S * S) + cp1, c * f + g * s * s * C + 1,
                  0.5 * g * s * c * S)


def newton(X, Y, phi, lam, cp1, steps):
    """The engine's iteration: the steps taken, and whether it settled within range."""
    n, done, bad = np.zeros(X.shape, int), np.zeros(X.shape, bool), np.zeros(X.shape, bool)
    with np.errstate(all="ignore"):
        for _ in range(steps):
            fx, fy, J = unit(phi, lam, cp1)
            fx, fy = fx - X, fy - Y
            det = J[0] * J[3] - J[1] * J[2]
            dp, dl = (J[1] * fy - J[3] * fx) / det, (J[2] * fx - J[0] * fy) / det
            act = ~done & ~bad
            phi, lam = np.where(act, phi + dp, phi), np.where(act, lam + dl, lam)
            n += act
            bad |= act & (~np.isfinite(dp) | ~np.isfinite(dl) | (np.abs(phi) > PI) | (np.abs(lam) > 2 * PI))
            done |= act & ~bad & (np.abs(dp) <= STEP_LIMIT) & (np.abs(dl) <= STEP_LIMIT)
    return phi, lam, n, done


def table(cp1):
    hx, hy = PI * (1 + cp1) / CELLS_X, PI / CELLS_Y
    P, L = np.full((CELLS_X + 1, CELLS_Y + 1), np.nan), np.full((CELLS_X + 1, CELLS_Y + 1), np.nan)
    for j in range(CELLS_Y + 1):
        phi, lam = j * hy / 2, 0.0
        for i in range(CELLS_X + 1):
            p, l, _, ok = newton(np.array([i * hx]), np.array([j * hy]), np.array([phi]), np.array([lam]), cp1,
                                 MAX_STEPS)
            if ok[0] and abs(l[0]) <= 1.25 * PI and abs(p[0]) <= 0.6 * PI:
                phi, lam = P[i, j], L[i, j] = p[0], l[0]
    _, _, J = unit(P, L, cp1)
    det = J[0] * J[3] - J[1] * J[2]
    Px, Py, Lx, Ly = J[3] / det * hx, -J[1] / det * hy, -J[2] / det * hx, J[0] / det * hy
    Pxy, Lxy = np.empty_like(Px), np.empty_like(Lx)
    for D, F, at_zero in ((Pxy, Px, Px[:, 1]), (Lxy, Lx, 0.0)):
        D[:, 1:-1] = 0.5 * (F[:, 2:] - F[:, :-2])
        D[:, 0], D[:, -1] = at_zero, F[:, -1] - F[:, -2]
    return hx, hy, (P, Px, Py, Pxy), (L, Lx, Ly, Lxy)


def interpolate(hx, hy, node, X, Y):
    tx, ty = np.abs(X) / hx, np.abs(Y) / hy
    i, j = np.minimum(tx.astype(int), CELLS_X - 1), np.minimum(ty.astype(int), CELLS_Y - 1)
    u, v = tx - i, ty - j
    hu = ((1 + 2 * u) * (1 - u) ** 2, u * (1 - u) ** 2, u * u * (3 - 2 * u), -u * u * (1 - u))
    hv = ((1 + 2 * v) * (1 - v) ** 2, v * (1 - v) ** 2, v * v * (3 - 2 * v), -v * v * (1 - v))
    F, Fx, Fy, Fxy = node
    r = 0
    for a, b in ((0, 0), (1, 0), (0, 1), (1, 1)):
        I, K = i + a, j + b
        r = r + (hu[2 * a] * (hv[2 * b] * F[I, K] + hv[2 * b + 1] * Fy[I, K]) +
                 hu[2 * a + 1] * (hv[2 * b] * Fx[I, K] + hv[2 * b + 1] * Fxy[I, K]))
    return r


def measure(phi1, step):
    cp1 = np.cos(np.radians(phi1))
    hx, hy, P, L = table(cp1)
    lon, lat = np.radians(np.arange(-180, 180 + step / 2, step)), np.radians(np.arange(-90, 90 + step / 2, step))
    LO, LA = (a.ravel() for a in np.meshgrid(lon, lat))
    X, Y, _ = unit(LA, LO, cp1)
    p0 = np.sign(Y) * interpolate(hx, hy, P, X, Y)
    l0 = np.clip(np.sign(X) * interpolate(hx, hy, L, X, Y), -PI, PI)
    usable = np.isfinite(p0) & np.isfinite(l0)
    err = np.maximum(np.abs(p0 - LA), np.abs(l0 - LO))[usable]
    closed = (Y / 2, np.clip(X / (np.cos(Y / 2) + cp1), -PI, PI))
    p, l, n, ok = newton(X, Y, np.where(usable, p0, closed[0]), np.where(usable, l0, closed[1]), cp1, STEPS)
    ok &= np.abs(l) <= PI + 1e-9
    p2, l2, n2, ok2 = newton(X, Y, closed[0], closed[1], cp1, MAX_STEPS)
    steps = n + np.where(ok, 0, n2)
    p, l = np.where(ok, p, p2), np.where(ok, l, l2)
    final = np.maximum(np.abs(p - LA), np.abs(l - LO))[ok | ok2]
    print(f"phi1 {phi1}: {(~usable).sum()} of {X.size} points without a table start; start error "
          f"max {err.max():.3g} rad, above 1.2e-4 for {(err > 1.2e-4).sum()}")
    print(f"  steps from the table {np.bincount(steps).tolist()} (mean {steps.mean():.3f}), "
          f"restarted {(~ok).sum()}; from the closed form mean {n2.mean():.3f}; "
          f"settled {(ok | ok2).sum()} (closed form alone {ok2.sum()}), worst error {final.max():.3g} rad")


if __name__ == "__main__":
    args, step = sys.argv[1:], 0.5
    if "--step" in args:
        k = args.index("--step")
        step = float(args[k + 1])
        del args[k:k + 2]
    for phi1 in [float(a) for a in args] or [50.467, 0.0, -30.0, 80.0, 89.9]:
        measure(phi1, step)
