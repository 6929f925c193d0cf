#ifndef KVCART_PROJECTIONS_KVHOTINECORE_H
#define KVCART_PROJECTIONS_KVHOTINECORE_H

#include "projections/KvConformalLatitude.h"
#include "projections/KvMathKernel.h"

#include <cmath>
#include <cstddef>

class CKvProjection;

// Hotine oblique Mercator on the ellipsoid (IOGP Guidance Note 7-2, methods 9812
// and 9815): the conformal mapping onto the "aposphere" and the skew (u, v)
// coordinates along the centre line, then a rotation by the rectified grid angle.
// Variant A counts u from the natural origin, where the centre line meets the
// aposphere's equator; variant B from the projection centre. Angles in radians.
// Per point both ways are closed-form: the forward takes the guidance note's
// Q = H / t^B from sin phi and cos phi with one logarithm (or its series) and a
// short series of exp; the inverse's t gives the conformal latitude, from which
// Karney's series gives the geodetic one, in place of an iteration.
//
// The fast path (FastForward, FastInverse, in degrees) is the same formulas on
// the inline kernels alone, with no branch, for the points of the map proper:
// the single-point calls and the vectorized blocks run the same operations and
// give the same bits. The general formulas (Forward, Inverse) take the rest:
// the poles, the map's far edges, longitudes to be reduced, points not finite.
class CKvHotineCore
{
public:
    struct SFigures
    {
        double e = 0.0, B = 0.0, lnH = 0.0;
        double AoverB = 0.0, BoverA = 0.0, invB = 0.0;
        double BDeg = 0.0, invBDeg = 0.0; // B and 1 / B per degree
        double halfBDeg = 0.0;            // B / 2 per degree
        double lon0 = 0.0;                // lambda0 in degrees
        double uc = 0.0, FE = 0.0, FN = 0.0;
        double sinGamma0 = 0.0, cosGamma0 = 0.0, sinGammaC = 0.0, cosGammaC = 0.0;
        // The direction of the projection centre on the aposphere, B uc / A,
        // and u of the centre in the variant's count (0 in variant B).
        double sinThetaC = 0.0, cosThetaC = 1.0, uOffset = 0.0;
        CKvConformalLatitude::SInverse inverse;
        bool fastForward = false, fastInverse = false;
    };

    CKvHotineCore() = default;
    CKvHotineCore(double a, double e, double kc, double lambdaC, double phiC, double alphaC, double gammaC,
                  bool variantB, double falseEasting, double falseNorthing);

    // The general formulas, radians.
    void Forward(double lambda, double phi, double* x, double* y) const;
    void Inverse(double x, double y, double* lambda, double* phi) const;

    const SFigures& Fast() const { return m_fast; }

    // Within this distance of 1, |U| is a pole of the aposphere to the inverse.
    static constexpr double PoleU = 1e-10;
    // |w| = |B v / A| up to which exp(2w) stays finite (some 2000 earth radii
    // across the centre line, far beyond any map), and |ln Q| the same.
    static constexpr double WLimit = 300.0;

    // false: a latitude within a degree of a pole or not finite, a longitude
    // difference beyond +-180 degrees or not finite, a point on the aposphere
    // 90 degrees from the centre line or more than a quarter radian from the
    // centre along it (the general formulas take those).
    static KVCART_ALWAYS_INLINE bool FastForward(const SFigures& f, double lon, double lat, double& x, double& y)
    {
        constexpr double Deg = 3.141592653589793 / 180.0;
        const double phi = lat * Deg;
        const double d = lon - f.lon0;
        // Q = H / t^B of the guidance note is exp(ln H + B psi), psi the
        // isometric latitude, by the table exponential: ln Q = ln F + B (psi -
        // psi of the centre) is a few units below 89 degrees, and its rounding,
        // some 1e-15, moves the grid by nanometres. S and T of the guidance note,
        // (Q - 1/Q) / 2 and (Q + 1/Q) / 2, as Sm / m and Tm / m with m = 2Q > 0:
        // one division for U, none for the arctangent, which m does not change.
        // psi = atanh(sin phi) - e atanh(e sin phi), the first term always by
        // the logarithm: added to ln H, it needs no relative precision near the
        // equator (CKvConformalLatitude::IsometricKernel's series), only the
        // absolute one of the logarithm's quotient, some 2e-16.
        const double s = CKvMathKernel::SinHalfPi(phi);
        const double psi = 0.5 * CKvMathKernel::Log((1.0 + s) / (1.0 - s)) - f.e * CKvMathKernel::AtanhSmall(f.e * s);
        const double lnQ = f.lnH + f.B * psi;
        const double Q = CKvMathKernel::Exp(lnQ);
        const double Q2 = Q * Q, m = 2.0 * Q;
        const double Sm = Q2 - 1.0, Tm = Q2 + 1.0;
        // sin and cos of B dl from its half, within a quarter turn (B times a
        // half turn at most, B <= 1 / sqrt(1 - e^2) < 1.006 on the path: the
        // sine's series holds a little beyond pi/2, its remainder under 1.5e-18)
        // by the kernel without reduction: no quadrant logic.
        double sHalf, cHalf;
        CKvMathKernel::SinCosHalfPi(f.halfBDeg * d, sHalf, cHalf);
        const double V = 2.0 * sHalf * cHalf, cosDl = (cHalf - sHalf) * (cHalf + sHalf);
        const double mV = m * V;
        // |U| < 1 as |Um| < Tm (Tm > 0): no division for U itself.
        const double Um = Sm * f.sinGamma0 - mV * f.cosGamma0;
        // u = (A / B) atan2(Sm cos gamma0 + mV sin gamma0, m cos B dl), the
        // direction turned back by the centre's, thetaC: the angle left is
        // small on the map (a quarter radian is some 1600 km along the centre
        // line), its arctangent one series with no choice of case, and u
        // counted from the centre needs no difference of large terms.
        const double ys = Sm * f.cosGamma0 + mV * f.sinGamma0, xs = m * cosDl;
        const double yr = ys * f.cosThetaC - xs * f.sinThetaC, xr = xs * f.cosThetaC + ys * f.sinThetaC;
        const double w = yr / xr;
        const double u = f.AoverB * CKvMathKernel::AtanQuarter(w) + f.uOffset;
        const double v = -f.AoverB * AtanhUKernel(Um, Tm);
        x = v * f.cosGammaC + u * f.sinGammaC + f.FE;
        y = u * f.cosGammaC - v * f.sinGammaC + f.FN;
        return (std::fabs(phi) < CKvConformalLatitude::IsometricKernelLimit) & (std::fabs(d) <= 180.0) &
               (std::fabs(lnQ) <= WLimit) & (std::fabs(Um) < Tm) & (xr > 0.0) &
               (std::fabs(w) <= CKvMathKernel::AtanQuarterLimit);
    }

    // false: a grid point not finite, beyond the aposphere's poles or near them,
    // so far across the centre line that exp(-B v / A) leaves the kernel's
    // range, or whose longitude is to be brought into [-180, 180].
    static KVCART_ALWAYS_INLINE bool FastInverse(const SFigures& f, double x, double y, double& lon, double& lat)
    {
        constexpr double Deg = 3.141592653589793 / 180.0;
        const double dx = x - f.FE, dy = y - f.FN;
        const double v = dx * f.cosGammaC - dy * f.sinGammaC;
        const double u = dy * f.cosGammaC + dx * f.sinGammaC + f.uc;
        // S and T of the guidance note, sinh and cosh of w = -B v / A, as Sm / m
        // and Tm / m with m = 2 exp(w) > 0: Sm = exp(2w) - 1, or m times the
        // series of sinh for |w| < 0.5, where the difference would cancel, and
        // Tm = exp(2w) + 1. No division for them, none for the arctangent,
        // which m does not change.
        const double w = -f.BoverA * v;
        const double E = CKvMathKernel::Exp(w), E2 = E * E, m = 2.0 * E;
        const double Sm = std::fabs(w) < 0.5 ? m * CKvMathKernel::SinhSmall(w) : E2 - 1.0;
        const double Tm = E2 + 1.0;
        const double Bu = f.BoverA * u;
        double V, cosBu, versine;
        CKvMathKernel::SinCos(Bu, V, cosBu, versine);
        const double mV = m * V;
        const double Um = mV * f.cosGamma0 + Sm * f.sinGamma0, U = Um / Tm;
        // The isometric latitude psi = (atanh U - ln H) / B, and the geodetic
        // latitude from it by Karney's series.
        const double psi = (AtanhUKernel(Um, Tm) - f.lnH) * f.invB;
        lat = CKvConformalLatitude::LatitudeKernel(f.inverse, psi) * (1.0 / Deg);
        lon = f.lon0 - CKvMathKernel::Atan2(Sm * f.cosGamma0 - mV * f.sinGamma0, m * cosBu) * f.invBDeg;
        return (std::fabs(w) <= WLimit) & (std::fabs(Bu) <= CKvMathKernel::SinCosLimit) &
               (std::fabs(U) < 1.0 - PoleU) & (std::fabs(psi) <= CKvConformalLatitude::LatitudeKernelLimit) &
               (std::fabs(lon) <= 180.0) & (std::fabs(lat) <= 90.0);
    }

    // The batch forms of an engine on these figures. Strided arrays as CKvBatch
    // takes them.
    static void ForwardBatch(const SFigures& f, const CKvProjection& engine, std::size_t n, const double* lon,
                             std::size_t lonStride, const double* lat, std::size_t latStride, double* x,
                             std::size_t xStride, double* y, std::size_t yStride);
    static void InverseBatch(const SFigures& f, const CKvProjection& engine, std::size_t n, const double* x,
                             std::size_t xStride, const double* y, std::size_t yStride, double* lon,
                             std::size_t lonStride, double* lat, std::size_t latStride);

private:
    // atanh U = 0.5 ln((Tm + Um) / (Tm - Um)) for |U| < 1, U = Um / Tm, by the
    // table logarithm, its quotient taken beside U's rather than after it. No
    // series near U = 0, where the logarithm keeps only an absolute precision:
    // the quotient's rounding, under 2 units of 1e-16, moves v = -(A / B) atanh U
    // by some 1e-9 m and the inverse's latitude by some 1e-16 rad, and the
    // series would add one more polynomial to both chains.
    static KVCART_ALWAYS_INLINE double AtanhUKernel(double Um, double Tm)
    {
        return 0.5 * CKvMathKernel::Log((Tm + Um) / (Tm - Um));
    }

    SFigures m_fast;
    double m_e = 0.0;
    double m_B = 0.0, m_A = 0.0, m_H = 0.0;
    double m_lnH = 0.0; // ln H, the aposphere's shift of the isometric latitude
    double m_AoverB = 0.0, m_BoverA = 0.0, m_invB = 0.0;
    double m_Bm1 = 0.0, m_Be = 0.0; // B - 1 and B e, the exponents of the forward's Q
    bool m_smallE = true;           // e within the reach of the atanh series
    double m_lnPLimit = 0.25;       // |sin phi| up to which ln P is a series
    double m_phiC = 0.0, m_sinPhiC = 0.0, m_cosPhiC = 1.0;
    CKvConformalLatitude::SInverse m_inverse; // conformal to geodetic latitude
    double m_sinGamma0 = 0.0, m_cosGamma0 = 0.0;
    double m_sinGammaC = 0.0, m_cosGammaC = 0.0;
    double m_lambda0 = 0.0;
    double m_uc = 0.0; // u of the projection centre, subtracted in variant B
    double m_FE = 0.0, m_FN = 0.0;
};

#endif
