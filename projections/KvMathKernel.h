#ifndef KVCART_PROJECTIONS_KVMATHKERNEL_H
#define KVCART_PROJECTIONS_KVMATHKERNEL_H

#include "projections/KvMathTables.h"

#include <cmath>
#include <cstdint>
#include <cstring>

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
    // c[0] + c[1] w + ... + c[N-1] w^(N-1) by Estrin's scheme: halves split by
    // powers w^(2^k), so that the dependency chain is log2 N multiply-adds long
    // instead of N (Horner), for the scalar path's latency.
    // w^H for H a power of two, by squaring.
    template <int H> static KVCART_ALWAYS_INLINE double Power(double w)
    {
        if constexpr (H == 1) {
            return w;
        } else {
            const double half = Power<H / 2>(w);
            return half * half;
        }
    }

    template <int N> static KVCART_ALWAYS_INLINE double Estrin(double w, const double* c)
    {
        if constexpr (N == 1) {
            return c[0];
        } else {
            constexpr int H = N > 8 ? 8 : N > 4 ? 4 : N > 2 ? 2 : 1;
            return Estrin<H>(w, c) + Power<H>(w) * Estrin<N - H>(w, c + H);
        }
    }

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
        static constexpr double SinSeries[8] = {-1.0 / 6,         1.0 / 120,          -1.0 / 5040,
                                                  1.0 / 362880,      -1.0 / 39916800,    1.0 / 6227020800,
                                                  -1.0 / 1307674368000, 1.0 / 355687428096000};
        static constexpr double VersineSeries[8] = {0.5,              -1.0 / 24,          1.0 / 720,
                                                      -1.0 / 40320,     1.0 / 3628800,      -1.0 / 479001600,
                                                      1.0 / 87178291200, -1.0 / 20922789888000};
        const double sr = r + r * r2 * Estrin<8>(r2, SinSeries);
        const double vr = r2 * Estrin<8>(r2, VersineSeries);
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

    // sin x for |x| <= pi/2 (a latitude) by its Taylor series to x^21, whose
    // remainder is below 1.3e-18 there: no reduction of the argument, which
    // shortens the chain that most forward formulas start with. Beyond pi/2 the
    // value is meaningless; the callers flag such points.
    static KVCART_ALWAYS_INLINE double SinHalfPi(double x)
    {
        static constexpr double Series[10] = {-1.0 / 6,
                                              1.0 / 120,
                                              -1.0 / 5040,
                                              1.0 / 362880,
                                              -1.0 / 39916800,
                                              1.0 / 6227020800,
                                              -1.0 / 1307674368000,
                                              1.0 / 355687428096000,
                                              -1.0 / 121645100408832000,
                                              1.0 / 51090942171709440000.0};
        const double x2 = x * x;
        return x + x * x2 * Estrin<10>(x2, Series);
    }

    // sin x and 1 - cos x for |x| <= pi/4 by SinCos's own series (to x^17 and
    // x^16, below half an ulp there) without its reduction and quadrant logic:
    // the same bits as SinCos within pi/4, for the angles known to be small.
    static KVCART_ALWAYS_INLINE void SinVersineQuarterPi(double x, double& s, double& versine)
    {
        static constexpr double SinSeries[8] = {-1.0 / 6,         1.0 / 120,          -1.0 / 5040,
                                                1.0 / 362880,     -1.0 / 39916800,    1.0 / 6227020800,
                                                -1.0 / 1307674368000, 1.0 / 355687428096000};
        static constexpr double VersineSeries[8] = {0.5,              -1.0 / 24,          1.0 / 720,
                                                    -1.0 / 40320,     1.0 / 3628800,      -1.0 / 479001600,
                                                    1.0 / 87178291200, -1.0 / 20922789888000};
        const double x2 = x * x;
        s = x + x * x2 * Estrin<8>(x2, SinSeries);
        versine = x2 * Estrin<8>(x2, VersineSeries);
    }

    // sin x and cos x for |x| <= pi/2 (a latitude, an angle within a quarter
    // turn) with no reduction: SinHalfPi of x and of pi/2 - |x|, pi/2 in two
    // parts, so that the cosine keeps its relative precision up to the poles
    // (the difference is exact from |x| >= pi/4 on, Sterbenz; below, its
    // rounding moves the cosine by at most 0.8e-16). Two short polynomials
    // and no quadrant logic: cheaper than SinCos. Beyond pi/2 the values are
    // meaningless; the callers flag such points.
    static KVCART_ALWAYS_INLINE void SinCosHalfPi(double x, double& s, double& c)
    {
        constexpr double HalfPiHi = 1.5707963267948966, HalfPiLo = 6.123233995736766e-17;
        s = SinHalfPi(x);
        c = SinHalfPi((HalfPiHi - std::fabs(x)) + HalfPiLo);
    }

    // sin x and cos x for any x: the kernel within its range, libm beyond it
    // (and for NaN and infinities, which give NaN either way).
    static KVCART_ALWAYS_INLINE void SinCosAny(double x, double& s, double& c)
    {
        if (std::fabs(x) <= SinCosLimit) {
            double versine;
            SinCos(x, s, c, versine);
        } else {
            s = std::sin(x);
            c = std::cos(x);
        }
    }

    // sinh x for |x| <= 0.5 by its Taylor series to x^17 (remainder below 1e-20
    // relative).
    static KVCART_ALWAYS_INLINE double SinhSmall(double x)
    {
        static constexpr double Series[8] = {1.0 / 6,          1.0 / 120,           1.0 / 5040,
                                             1.0 / 362880,     1.0 / 39916800,      1.0 / 6227020800,
                                             1.0 / 1307674368000, 1.0 / 355687428096000};
        const double x2 = x * x;
        return x + x * x2 * Estrin<8>(x2, Series);
    }

    // The coefficients c[j], j < EccentricSinhTerms, of z^(2j) in sinh(e atanh z) / z,
    // for |z| <= e <= EccentricSinhLimit: the series of atanh times e, composed with
    // sinh to its ninth power (u = e atanh z <= 0.011 there), cut after z^15; the
    // terms left out are below 1e-17 relative (z^2 <= 0.01). This is the sinh of
    // the eccentricity part of the isometric latitude, the one step that would
    // make the conformal latitude cost transcendental calls; as a single series
    // it is one short polynomial.
    static constexpr int EccentricSinhTerms = 8;
    static void EccentricSinhSeries(double e, double* c)
    {
        constexpr int Degree = 22; // powers z^0 .. z^21
        double u[Degree] = {}, power[Degree] = {}, sum[Degree] = {};
        for (int k = 1; k < Degree; k += 2)
            u[k] = e / k;
        for (int k = 0; k < Degree; ++k)
            power[k] = sum[k] = u[k];
        const double factor[4] = {1.0 / 6, 1.0 / 120, 1.0 / 5040, 1.0 / 362880};
        for (int term = 0; term < 4; ++term) {
            // power *= u^2, truncated at z^21
            for (int pass = 0; pass < 2; ++pass) {
                double next[Degree] = {};
                for (int i = 0; i < Degree; ++i)
                    for (int j = 0; i + j < Degree; ++j)
                        next[i + j] += power[i] * u[j];
                for (int k = 0; k < Degree; ++k)
                    power[k] = next[k];
            }
            for (int k = 0; k < Degree; ++k)
                sum[k] += factor[term] * power[k];
        }
        for (int j = 0; j < EccentricSinhTerms; ++j)
            c[j] = sum[2 * j + 1];
    }

    // Small-argument series, with libm (or the general path) beyond them: atan t
    // for |t| <= AtanSmallLimit (to t^15, remainder below 1e-19 relative), asinh x
    // and asin x for |x| <= 0.1 (to x^17, below 2e-18 relative).
    static constexpr double AtanSmallLimit = 0.05;
    static constexpr double AsinSmallLimit = 0.1;
    // atan t for |t| <= AtanTinyLimit, to t^7 (remainder below 1e-20 relative):
    // the shorter chain for the small corrections that dominate in practice.
    static constexpr double AtanTinyLimit = 0.005;
    static KVCART_ALWAYS_INLINE double AtanTiny(double t)
    {
        const double t2 = t * t;
        return t + t * t2 * (-1.0 / 3 + t2 * (1.0 / 5 - t2 * (1.0 / 7)));
    }
    static KVCART_ALWAYS_INLINE double AtanSmall(double t)
    {
        static constexpr double Series[7] = {-1.0 / 3, 1.0 / 5, -1.0 / 7, 1.0 / 9, -1.0 / 11, 1.0 / 13, -1.0 / 15};
        const double t2 = t * t;
        return t + t * t2 * Estrin<7>(t2, Series);
    }
    // atanh z for |z| <= 0.1 (to z^21, remainder below 1e-21 relative).
    static KVCART_ALWAYS_INLINE double AtanhSmall(double z)
    {
        static constexpr double Series[10] = {1.0 / 3,  1.0 / 5,  1.0 / 7,  1.0 / 9,  1.0 / 11,
                                              1.0 / 13, 1.0 / 15, 1.0 / 17, 1.0 / 19, 1.0 / 21};
        const double z2 = z * z;
        return z + z * z2 * Estrin<10>(z2, Series);
    }
    // AtanTiny or AtanSmall by the size of t: both evaluated, one chosen, so that
    // the vector loops and the scalar calls give the same bits.
    static KVCART_ALWAYS_INLINE double AtanSeries(double t)
    {
        const double tiny = AtanTiny(t), small = AtanSmall(t);
        return std::fabs(t) <= AtanTinyLimit ? tiny : small;
    }
    // atan w for |w| <= AtanQuarterLimit by its series to w^25 (the first term
    // left out, w^27 / 27, below 8.3e-18 relative): Atan's last step alone, for
    // the callers that reduce the argument themselves (a direction turned by a
    // known angle), with no comparison and no choice of case.
    static constexpr double AtanQuarterLimit = 0.25;
    static KVCART_ALWAYS_INLINE double AtanQuarter(double w)
    {
        static constexpr double Series[12] = {-1.0 / 3,  1.0 / 5,  -1.0 / 7,  1.0 / 9,  -1.0 / 11, 1.0 / 13,
                                              -1.0 / 15, 1.0 / 17, -1.0 / 19, 1.0 / 21, -1.0 / 23, 1.0 / 25};
        const double w2 = w * w;
        return w + w * w2 * Estrin<12>(w2, Series);
    }
    static KVCART_ALWAYS_INLINE double AsinhSmall(double x)
    {
        static constexpr double Series[8] = {-1.0 / 6,    3.0 / 40,     -5.0 / 112,     35.0 / 1152,
                                             -63.0 / 2816, 231.0 / 13312, -143.0 / 10240, 6435.0 / 557056};
        const double x2 = x * x;
        return x + x * x2 * Estrin<8>(x2, Series);
    }
    static KVCART_ALWAYS_INLINE double AsinSmall(double x)
    {
        static constexpr double Series[8] = {1.0 / 6,    3.0 / 40,     5.0 / 112,     35.0 / 1152,
                                             63.0 / 2816, 231.0 / 13312, 143.0 / 10240, 6435.0 / 557056};
        const double x2 = x * x;
        return x + x * x2 * Estrin<8>(x2, Series);
    }

    // sin x and cos x for |x| <= SinCosSmallLimit by their Taylor series to x^7 and
    // x^6 (remainders below 1e-20): the sine and cosine of a latitude turned by a
    // small series correction, from those of the angle it corrects (addition
    // formulas), in place of a full evaluation.
    static constexpr double SinCosSmallLimit = 0.01;
    static KVCART_ALWAYS_INLINE void SinCosSmall(double x, double& s, double& c)
    {
        const double x2 = x * x;
        s = x - x * x2 * (1.0 / 6 - x2 * (1.0 / 120 - x2 * (1.0 / 5040)));
        c = 1.0 - x2 * (0.5 - x2 * (1.0 / 24 - x2 * (1.0 / 720)));
    }

    // Eccentricities up to this size may use EccentricSinhSeries.
    static constexpr double EccentricSinhLimit = 0.1;

    // exp x for |x| <= ExpLimit, by the tables of 2^(j/64) (Tang's method):
    // x = (64 m + j) ln2 / 64 + r with |r| <= ln2 / 128 (ln2 / 64 in two parts,
    // the first of 32 significant bits, so that k ln2hi / 64 is exact), e^r - 1 by
    // its Taylor series to r^6 (remainder below 2e-20), and
    //   e^x = 2^m (2^(j/64) + 2^(j/64) (e^r - 1)),
    // 2^m set in the exponent field: within one unit in the last place. The
    // integer k never leaves the floating-point registers as an integer
    // conversion: it is read from the bits of x 64 / ln2 + 1.5 * 2^52, which keeps
    // the loop free of conversions that the vector units lack and of any
    // undefined conversion of a lane that is out of range (such a lane gives a
    // meaningless value, which its caller flags).
    static constexpr double ExpLimit = 700.0;
    static KVCART_ALWAYS_INLINE double Exp(double x)
    {
        double t, q;
        _expParts(x, t, q);
        return t + t * q;
    }

    // e^x - 1 for |x| <= ExpLimit: Exp's reduction and tables, the last step
    // taken as (t - 1) + t (p + rel) with t = 2^m 2^(j/64). t - 1 is exact for
    // t in [1/2, 2] (Sterbenz) and is 0 for |x| < ln2 / 128, where the result is
    // the series p = e^x - 1 itself: no cancellation near 0, within two units in
    // the last place. A meaningless value beyond ExpLimit, which callers flag.
    static KVCART_ALWAYS_INLINE double ExpM1(double x)
    {
        double t, q;
        _expParts(x, t, q);
        return (t - 1.0) + t * q;
    }

    // ln x for positive normal x (zero, negatives, subnormals, infinities and NaN
    // are for the caller to flag), by a table of 128 buckets (Tang's method): x =
    // 2^k m with m in [S, 2S), S = 0.709 near sqrt(1/2), read off the bits of x;
    // c the centre of m's bucket, whose logarithm the table holds in two parts,
    //   ln x = k ln2 + ln c + ln(1 + r), r = (m - c) / c, |r| < 2^-8,
    // m - c exact (Sterbenz), r one rounding from the table's 1 / c, and ln(1 + r)
    // by its series to r^7 (remainder below 2^-59 relative). Near x = 1 (k = 0,
    // c = 1) the result is the series alone, to its full relative precision. No
    // division.
    static KVCART_ALWAYS_INLINE double Log(double x)
    {
        constexpr int Shift = 52 - SKvMathTables::LogBits;
        constexpr double Ln2Hi = 0.6931471803691238;
        constexpr double Ln2Lo = 1.9082149292705877e-10;
        constexpr std::uint64_t Split = SKvMathTables::LogSplit;
        constexpr std::uint64_t One = 0x3ff0000000000000u;
        constexpr std::uint64_t Mantissa = 0x000fffffffffffffu;
        static constexpr double Series[6] = {-1.0 / 2, 1.0 / 3, -1.0 / 4, 1.0 / 5, -1.0 / 6, 1.0 / 7};
        // Offset so that the mantissas from S on carry into the next exponent:
        // the exponent field is then k + 1023, and the mantissa, offset back, m.
        const std::uint64_t ix = _bits(x) + (One - Split);
        const std::uint64_t field = ix & Mantissa;
        const std::uint64_t j = field >> Shift;
        const double m = _double(field + Split);
        // k + 1023 as a double through the bits of 2^52 + (k + 1023).
        const double k = (_double((ix >> 52) | 0x4330000000000000u) - 4503599627370496.0) - 1023.0;
        const double r = (m - SKvMathTables::LogCentre[j]) * SKvMathTables::LogInverse[j];
        const double p = r + r * r * Estrin<6>(r, Series);
        return (k * Ln2Hi + SKvMathTables::LogHi[j]) + ((k * Ln2Lo + SKvMathTables::LogLo[j]) + p);
    }

    // atan t for any t (NaN gives NaN): the argument a = |t| taken about the
    // nearest of tan 0, 1/2, 1, 2 and infinity,
    // atan a = c + atan((a - tan c) / (1 + a tan c)), and for c = pi/2 - c' the
    // same about 1 / a, so that the last argument w stays within 1/4, where the
    // series to w^25 falls below 1e-17 relative. Each case is one quotient of
    // exact (or once rounded) terms, chosen as values rather than by branches, so
    // that the vector loops keep no branch and one division.
    static KVCART_ALWAYS_INLINE double Atan(double t)
    {
        constexpr double HalfPi = 1.5707963267948966;
        constexpr double QuarterPi = 0.7853981633974483;
        constexpr double AtanHalf = 0.4636476090008061;
        static constexpr double Series[12] = {-1.0 / 3,  1.0 / 5,  -1.0 / 7,  1.0 / 9,  -1.0 / 11, 1.0 / 13,
                                              -1.0 / 15, 1.0 / 17, -1.0 / 19, 1.0 / 21, -1.0 / 23, 1.0 / 25};
        const double a = std::fabs(t);
        // About 0: a; about 1/2: (2a - 1) / (2 + a); about 1: (a - 1) / (a + 1);
        // about 2: atan a = pi/2 - atan(1/2) - w with w = (2 - a) / (2a + 1); about
        // infinity: pi/2 - atan(1 / a). The differences 2a - 1, a - 1 and 2 - a
        // are exact where they are taken.
        const bool c1 = a > 0.25, c2 = a > 0.75, c3 = a > 4.0 / 3, c4 = a > 4.0;
        const double num = c4 ? 1.0 : c3 ? 2.0 - a : c2 ? a - 1.0 : c1 ? 2.0 * a - 1.0 : a;
        const double den = c4 ? a : c3 ? 2.0 * a + 1.0 : c2 ? a + 1.0 : c1 ? 2.0 + a : 1.0;
        const double w = num / den, w2 = w * w;
        const double aw = w + w * w2 * Estrin<12>(w2, Series);
        const bool reflected = c3;
        const double base = c4 ? 0.0 : c3 ? AtanHalf : c2 ? QuarterPi : c1 ? AtanHalf : 0.0;
        const double v = reflected ? HalfPi - (base + aw) : base + aw;
        return std::copysign(v, t);
    }

    // atan2(y, x), the direction of (x, y) in [-pi, pi]: Atan's reductions taken
    // on a = |y| and b = |x| rather than on their quotient, about tan c = 0, 1/2,
    // 1 and 2, w = (a - b tan c) / (b + a tan c), and about infinity b / a: one
    // quotient with no rounding of y / x before it. The angle of the first
    // quadrant turns to pi minus itself for x < 0 (and -0) and takes the sign of
    // y, so that the signed zeros come out as libm's. NaN gives NaN; both
    // infinite give NaN (no direction), and magnitudes beyond 1e307 (whose
    // multiples overflow) a meaningless value: the callers flag them.
    static KVCART_ALWAYS_INLINE double Atan2(double y, double x)
    {
        constexpr double Pi = 3.141592653589793;
        constexpr double HalfPi = 1.5707963267948966;
        constexpr double QuarterPi = 0.7853981633974483;
        constexpr double AtanHalf = 0.4636476090008061;
        static constexpr double Series[12] = {-1.0 / 3,  1.0 / 5,  -1.0 / 7,  1.0 / 9,  -1.0 / 11, 1.0 / 13,
                                              -1.0 / 15, 1.0 / 17, -1.0 / 19, 1.0 / 21, -1.0 / 23, 1.0 / 25};
        const double a = std::fabs(y), b = std::fabs(x);
        // a / b beyond 1/4, 3/4, 4/3 and 4.
        const bool c1 = 4.0 * a > b, c2 = 4.0 * a > 3.0 * b, c3 = 3.0 * a > 4.0 * b, c4 = a > 4.0 * b;
        const double num = c4 ? b : c3 ? 2.0 * b - a : c2 ? a - b : c1 ? 2.0 * a - b : a;
        const double den = c4 ? a : c3 ? 2.0 * a + b : c2 ? a + b : c1 ? 2.0 * b + a : b;
        // den is 0 only for a = b = 0, where num is 0 too: the angle 0.
        const double w = num / (den == 0.0 ? 1.0 : den), w2 = w * w;
        const double aw = w + w * w2 * Estrin<12>(w2, Series);
        const double base = c4 ? 0.0 : c3 ? AtanHalf : c2 ? QuarterPi : c1 ? AtanHalf : 0.0;
        const double angle = c3 ? HalfPi - (base + aw) : base + aw;
        const double turned = std::copysign(1.0, x) < 0.0 ? Pi - angle : angle;
        return std::copysign(turned, y);
    }

    // atan(a / b) for 0 <= a <= b, b > 0 (an angle within an eighth turn given
    // as the sides of its triangle): Atan2's reductions about tan c = 0, 1/2 and
    // 1 alone, which are all that such a quotient needs, with no turn into
    // another quadrant. w = (2a - b) / (2b + a) or (a - b) / (a + b), whose
    // differences are exact (Sterbenz), stays within 2/9, where the series to
    // w^25 falls below 1e-17 relative: one quotient, no rounding of a / b
    // before it. NaN gives NaN.
    static KVCART_ALWAYS_INLINE double AtanUnit(double a, double b)
    {
        constexpr double QuarterPi = 0.7853981633974483;
        constexpr double AtanHalf = 0.4636476090008061;
        static constexpr double Series[12] = {-1.0 / 3,  1.0 / 5,  -1.0 / 7,  1.0 / 9,  -1.0 / 11, 1.0 / 13,
                                              -1.0 / 15, 1.0 / 17, -1.0 / 19, 1.0 / 21, -1.0 / 23, 1.0 / 25};
        const bool c1 = 4.0 * a > b, c2 = 4.0 * a > 3.0 * b;
        const double num = c2 ? a - b : c1 ? 2.0 * a - b : a;
        const double den = c2 ? a + b : c1 ? 2.0 * b + a : b;
        const double w = num / den, w2 = w * w;
        const double base = c2 ? QuarterPi : c1 ? AtanHalf : 0.0;
        return base + (w + w * w2 * Estrin<12>(w2, Series));
    }

    // asin x for |x| <= 1 as atan2(x, sqrt(1 - x^2)), the root's argument taken
    // as (1 - x)(1 + x), whose factors are exact from |x| >= 1/2 on (Sterbenz), so
    // that no cancellation is left near the poles: within a few units in the last
    // place, one division. +-1 give +-pi/2; beyond them, and NaN, NaN.
    static KVCART_ALWAYS_INLINE double Asin(double x)
    {
        return Atan2(x, std::sqrt((1.0 - x) * (1.0 + x)));
    }

private:
    static KVCART_ALWAYS_INLINE std::uint64_t _bits(double x)
    {
        std::uint64_t b;
        std::memcpy(&b, &x, sizeof b);
        return b;
    }
    static KVCART_ALWAYS_INLINE double _double(std::uint64_t b)
    {
        double x;
        std::memcpy(&x, &b, sizeof x);
        return x;
    }

    // Exp's reduction and tables: e^x = t (1 + q), t = 2^m 2^(j/64) and q =
    // e^r - 1 + rel_j, x = (64 m + j) ln2 / 64 + r, |r| <= ln2 / 128.
    static KVCART_ALWAYS_INLINE void _expParts(double x, double& t, double& q)
    {
        constexpr int Bits = SKvMathTables::ExpBits;
        constexpr double Scale = 92.332482616893657;             // 64 / ln 2
        constexpr double Ln2Hi = 0.6931471803691238 / (1 << Bits); // 0x3fe62e42fee00000 / 64
        constexpr double Ln2Lo = 1.9082149292705877e-10 / (1 << Bits);
        constexpr double Round = 6755399441055744.0; // 1.5 * 2^52
        static constexpr double Series[5] = {1.0 / 2, 1.0 / 6, 1.0 / 24, 1.0 / 120, 1.0 / 720};
        const double shifted = x * Scale + Round;
        const double k = shifted - Round;
        const double r = (x - k * Ln2Hi) - k * Ln2Lo;
        const double p = r + r * r * Estrin<5>(r, Series);
        // The low bits of shifted hold k = 64 m + j (offset by 2^51, a multiple of
        // 64): j is the last six, and m + 1023 shifted into the exponent field is
        // 2^m (the higher bits fall off the left end).
        const std::uint64_t bits = _bits(shifted);
        const std::uint64_t j = bits & ((1u << Bits) - 1);
        const std::uint64_t scale = ((bits >> Bits) + 1023u) << 52;
        t = SKvMathTables::ExpHi[j] * _double(scale);
        q = p + SKvMathTables::ExpRel[j];
    }

};

#endif
