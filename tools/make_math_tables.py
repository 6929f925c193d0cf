#!/usr/bin/env python3
"""Writes projections/KvMathTables.h: the tables of the exponential and
logarithm kernels of projections/KvMathKernel.h, computed to 50 digits with
Python's decimal module and rounded once to double.

    tools/make_math_tables.py > projections/KvMathTables.h

Exp: 2^(j/64) for j = 0..63, as a double, and the rest relative to it:
2^(j/64) = hi (1 + rel).
Log: the mantissas m, offset so that 1 is the centre of a bucket, fall into
128 buckets by the top seven bits of the offset mantissa field; each bucket j
has its centre c_j (an exact double), the double nearest 1/c_j, and ln c_j as
hi + lo.
"""
import struct
from decimal import Decimal, getcontext

getcontext().prec = 50

ONE = 0x3FF0000000000000
MANTISSA_BITS = 52
LOG_BITS = 7          # 128 buckets
EXP_BITS = 6          # 64 entries
SHIFT = MANTISSA_BITS - LOG_BITS
# The split S: one minus 74.5 buckets, so that 1 is the centre of bucket 74 and
# the mantissas run over [S, 2S), S = 0.7090 near sqrt(1/2).
SPLIT = ONE - (149 << (SHIFT - 1))


def double(bits):
    return struct.unpack('<d', struct.pack('<Q', bits))[0]


def split(value):
    hi = float(value)
    lo = float(value - Decimal(hi))
    return hi, lo


def fmt(values):
    out = []
    for i in range(0, len(values), 3):
        out.append('        ' + ' '.join(f'{v!r},' for v in values[i:i + 3]))
    return '\n'.join(out)


def main():
    ln2 = Decimal(2).ln()
    exp_hi, exp_rel = [], []
    for j in range(1 << EXP_BITS):
        value = (ln2 * j / (1 << EXP_BITS)).exp()
        hi = float(value)
        exp_hi.append(hi)
        exp_rel.append(float((value - Decimal(hi)) / Decimal(hi)))
    centre, inverse, log_hi, log_lo = [], [], [], []
    for j in range(1 << LOG_BITS):
        c = double(SPLIT + ((2 * j + 1) << (SHIFT - 1)))
        centre.append(c)
        inverse.append(float(1 / Decimal(c)))
        hi, lo = split(Decimal(c).ln())
        log_hi.append(hi)
        log_lo.append(lo)
    assert centre[74] == 1.0 and log_hi[74] == 0.0
    print(f'''#ifndef KVCART_PROJECTIONS_KVMATHTABLES_H
#define KVCART_PROJECTIONS_KVMATHTABLES_H

#include <cstdint>

// Written by tools/make_math_tables.py (50-digit decimal arithmetic, each
// value rounded once to double); do not edit.
struct SKvMathTables
{{
    // 2^(j/64) = ExpHi[j] (1 + ExpRel[j]).
    static constexpr int ExpBits = {EXP_BITS};
    static constexpr double ExpHi[{1 << EXP_BITS}] = {{
{fmt(exp_hi)}
    }};
    static constexpr double ExpRel[{1 << EXP_BITS}] = {{
{fmt(exp_rel)}
    }};
    // The logarithm's buckets: mantissas m in [LogSplit, 2 LogSplit) (as bits),
    // bucket j = the top {LOG_BITS} bits of the field of m's bits minus LogSplit's.
    static constexpr int LogBits = {LOG_BITS};
    static constexpr std::uint64_t LogSplit = 0x{SPLIT:016x}u;
    static constexpr double LogCentre[{1 << LOG_BITS}] = {{
{fmt(centre)}
    }};
    static constexpr double LogInverse[{1 << LOG_BITS}] = {{
{fmt(inverse)}
    }};
    static constexpr double LogHi[{1 << LOG_BITS}] = {{
{fmt(log_hi)}
    }};
    static constexpr double LogLo[{1 << LOG_BITS}] = {{
{fmt(log_lo)}
    }};
}};

#endif''')


if __name__ == '__main__':
    main()
