#ifndef KVCART_PROJECTIONS_KVMATHKERNEL_H
#define KVCART_PROJECTIONS_KVMATHKERNEL_H

#include <cmath>

// The kernels and the per-point formulas built on them must be inlined into the
// vectorized loops, whatever the compiler's size heuristics would choose.
#if defined(__GNUC__)
#define KVCART_ALWAYS_INLINE __attribute__((always_inline)) inline
#else
#define KVCART_ALWAYS_INLINE inline
#endif

// Inline polynomial kernels for the hot engines. They are plain arithmetic with
// no branch, so that the compiler evaluates them the same way in a scalar call
// and in a vectorized batch loop: the per-point and the batch results then agree
// bit for bit wherever only these kernels are involved. They are accurate to
// about one unit in the last place over the ranges they state.
class CKvMathKernel
{
public:
    // Arguments up to this size are reduced exactly enough by the three-part
    // Cody-Waite split of pi/2 below (the quadrant number stays under 2^17, so
    // k * P1, with P1 of 33 significant bits, is exact).
    static constexpr double SinCosLimit = 1.0e5;

    // sin x, cos x and 1 - cos x for |x| <= SinCosLimit. The reduced argument
    // r = x - k pi/2 lies in [-pi/4, pi/4], where the Taylor series to r^17 and
    // r^16 fall below half an ulp; 1 - cos x is taken from its own series in the
    // first quadrant, where 1 - cos would cancel.
    static KVCART_ALWAYS_INLINE void SinCos(double x, double& s, double& c, double& versine)
    {
        constexpr double TwoOverPi = 0.63661977236758134; // 2 / pi
        constexpr double P1 = 1.5707963267341256;         // pi/2 in three parts
        constexpr double P2 = 6.077100506303966e-11;
        constexpr double P3 = 2.0222662487959506e-21;
        constexpr double Round = 6755399441055744.0; // 1.5 * 2^52: rounds to an integer
        const double k = (x * TwoOverPi + Round) - Round;
        const double r = ((x - k * P1) - k * P2) - k * P3;
        const double r2 = r * r;
        const double sr =
            r + r * r2 *
                    (-1.0 / 6 +
                     r2 * (1.0 / 120 +
                           r2 * (-1.0 / 5040 +
                                 r2 * (1.0 / 362880 +
                                       r2 * (-1.0 / 39916800 +
                                             r2 * (1.0 / 6227020800 +
                                                   r2 * (-1.0 / 1307674368000 + r2 * (1.0 / 355687428096000))))))));
        const double vr =
            r2 * (0.5 +
                  r2 * (-1.0 / 24 +
                        r2 * (1.0 / 720 +
                              r2 * (-1.0 / 40320 +
                                    r2 * (1.0 / 3628800 +
                                          r2 * (-1.0 / 479001600 +
                                                r2 * (1.0 / 87178291200 + r2 * (-1.0 / 20922789888000))))))));
        const double cr = 1.0 - vr;
        // The quadrant k mod 4, as q = k - 4 round(k / 4) in {-2, -1, 0, 1, 2}. The
        // choices below are products with exact 0, 1 and -1 rather than selects, so
        // that no branch can appear in a vector loop; every product and sum of
        // them is exact.
        const double q = k - 4.0 * ((k * 0.25 + Round) - Round);
        const double aq = std::fabs(q);
        const double odd = static_cast<double>(aq == 1.0);
        const double even = 1.0 - odd;
        const double signSin = 1.0 - 2.0 * static_cast<double>((aq == 2.0) | (q == -1.0));
        const double signCos = 1.0 - 2.0 * static_cast<double>((aq == 2.0) | (q == 1.0));
        s = signSin * (sr * even + cr * odd);
        c = signCos * (cr * even + sr * odd);
        const double first = static_cast<double>(q == 0.0);
        versine = vr * first + (1.0 - c) * (1.0 - first);
    }

    // sinh x for |x| <= 0.5 by its Taylor series to x^17 (remainder below 1e-20
    // relative).
    static KVCART_ALWAYS_INLINE double SinhSmall(double x)
    {
        const double x2 = x * x;
        return x + x * x2 *
                       (1.0 / 6 +
                        x2 * (1.0 / 120 +
                              x2 * (1.0 / 5040 +
                                    x2 * (1.0 / 362880 +
                                          x2 * (1.0 / 39916800 +
                                                x2 * (1.0 / 6227020800 +
                                                      x2 * (1.0 / 1307674368000 + x2 * (1.0 / 355687428096000))))))));
    }

    // sinh(e atanh(e sin phi)), from z = e sin phi with |z| <= 0.1 and e <= 0.1:
    // atanh by its series to z^19 and sinh of the product (at most 0.01) to its
    // fifth-order term, both with remainders below 1e-19 relative. This is the
    // sinh of the eccentricity part of the isometric latitude, the one step that
    // makes the conformal latitude cost transcendental calls.
    static KVCART_ALWAYS_INLINE double EccentricSinh(double z, double e)
    {
        const double z2 = z * z;
        const double atanh =
            z + z * z2 *
                    (1.0 / 3 +
                     z2 * (1.0 / 5 +
                           z2 * (1.0 / 7 +
                                 z2 * (1.0 / 9 +
                                       z2 * (1.0 / 11 +
                                             z2 * (1.0 / 13 + z2 * (1.0 / 15 + z2 * (1.0 / 17 + z2 * (1.0 / 19)))))))));
        const double u = e * atanh;
        const double u2 = u * u;
        return u + u * u2 * (1.0 / 6 + u2 * (1.0 / 120 + u2 * (1.0 / 5040)));
    }

    // Eccentricities up to this size may use EccentricSinh.
    static constexpr double EccentricSinhLimit = 0.1;

    // sum over k = 1..N of c[k-1] sin(2k t), by Clenshaw's recurrence from
    // sin 2t and cos 2t.
    template <int N> static KVCART_ALWAYS_INLINE double ClenshawSin(const double* c, double s2, double c2)
    {
        const double twoCos = 2.0 * c2;
        double b1 = 0.0, b2 = 0.0;
#pragma GCC unroll 8
        for (int k = N - 1; k >= 0; --k) {
            const double b0 = twoCos * b1 - b2 + c[k];
            b2 = b1;
            b1 = b0;
        }
        return b1 * s2;
    }
};

#endif
