#!/usr/bin/python3
"""The cubic pieces of the Robinson projection, as projections/KvRobinson.cpp holds them.

Robinson (1974) tabulated the length of each parallel (PLEN, the equator's = 1)
and its distance from the equator (PDFE, the pole's = 1) every 5 degrees of
latitude; the projection between the tabulated parallels is an interpolation.
This script fits the cubic spline through each column over 0..90 degrees with the
conditions the map's symmetry gives at the equator (PLEN is even: slope 0; PDFE
is odd: curvature 0) and the not-a-knot condition at the pole, and writes each
piece c0 + c1 t + c2 t^2 + c3 t^3 (t in degrees from the piece's lower parallel)
to six significant figures, the form in which the table has been in use for
decades (the engine holds them in single precision, as that table does, so
that maps agree with it to the micrometre). The last row holds the pole's own
values.

Usage: /usr/bin/python3 tools/make_robinson_table.py   (prints the C++ rows)
"""

import numpy as np

PLEN = [1.0000, 0.9986, 0.9954, 0.9900, 0.9822, 0.9730, 0.9600, 0.9427, 0.9216, 0.8962,
        0.8679, 0.8350, 0.7986, 0.7597, 0.7186, 0.6732, 0.6213, 0.5722, 0.5322]
PDFE = [0.0000, 0.0620, 0.1240, 0.1860, 0.2480, 0.3100, 0.3720, 0.4340, 0.4958, 0.5571,
        0.6176, 0.6769, 0.7346, 0.7903, 0.8435, 0.8936, 0.9394, 0.9761, 1.0000]
STEP = 5.0


def spline(values, start):
    """Piecewise cubic coefficients (one row per interval). start: 'slope' or
    'curvature' (set to 0 at the equator); not-a-knot at the pole."""
    n = len(values) - 1
    size = 4 * n
    rows, rhs = [], []

    def row():
        return np.zeros(size)

    h = STEP
    for i in range(n):
        r = row(); r[4 * i] = 1; rows.append(r); rhs.append(values[i])
        r = row(); r[4 * i:4 * i + 4] = [1, h, h * h, h ** 3]; rows.append(r); rhs.append(values[i + 1])
    for i in range(n - 1):
        r = row(); r[4 * i + 1:4 * i + 4] = [1, 2 * h, 3 * h * h]; r[4 * (i + 1) + 1] = -1
        rows.append(r); rhs.append(0.0)
        r = row(); r[4 * i + 2:4 * i + 4] = [2, 6 * h]; r[4 * (i + 1) + 2] = -2
        rows.append(r); rhs.append(0.0)
    r = row()
    if start == 'slope':
        r[1] = 1
    else:
        r[2] = 1
    rows.append(r); rhs.append(0.0)
    r = row(); r[4 * (n - 2) + 3] = 1; r[4 * (n - 1) + 3] = -1
    rows.append(r); rhs.append(0.0)
    return np.linalg.solve(np.array(rows), np.array(rhs)).reshape(n, 4)


def six(value):
    # What is left of an exact zero by the solution's rounding (below 1e-15) is 0.
    if abs(value) < 1e-15:
        value = 0.0
    text = '%.6g' % value
    return text if ('e' in text or '.' in text) else text + '.0'


def emit(name, values, start):
    pieces = spline(values, start)
    print('const float %s[19][4] = {' % name)
    for piece in pieces:
        print('    {%s},' % ', '.join(six(c) + 'f' for c in piece))
    print('    {%sf, 0.0f, 0.0f, 0.0f},' % six(values[-1]))
    print('};')


if __name__ == '__main__':
    emit('kLength', PLEN, 'slope')
    emit('kDistance', PDFE, 'curvature')
