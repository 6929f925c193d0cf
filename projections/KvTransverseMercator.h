#ifndef KVCART_PROJECTIONS_KVTRANSVERSEMERCATOR_H
#define KVCART_PROJECTIONS_KVTRANSVERSEMERCATOR_H

#include "catalogue/KvTransverseMercatorProjection.h"
#include "projections/KvMathKernel.h"
#include "projections/KvProjectionEngine.h"
#include "projections/KvTransverseMercatorSeries.h"

#include <cmath>
#include <cstddef>
#include <string>

// Transverse Mercator in the complex Gauss-Krüger formulation (Poder and
// Engsager): geodetic to Gaussian latitude by a trigonometric series, Krüger's
// series to n^4 summed as a complex Clenshaw sum. A complete alternative to the
// JHS engine; the library's definitions create the JHS one.
//
// Points within a quarter turn of the central meridian take a fast path on
// the inline kernels, with no transcendental call of libm: the large angles u
// (the spherical northing) and chi (the Gaussian latitude back) as the input
// angle plus a small one whose tangent has no cancellation, atanh and the
// arctangents of those small angles by their series, the sums of multiple
// angles as sin 2x times a polynomial in cos 2x. Points beyond it (the poles'
// neighbourhood in the inverse, far from the central meridian, not finite) take
// the general formulas.
class CKvTransverseMercator : public CKvEngine<CKvTransverseMercator, CKvTransverseMercatorProjection>
{
public:
    explicit CKvTransverseMercator(const CKvTransverseMercatorProjection* definition);
    CKvTransverseMercator(const std::string& name, double k0, double centralMeridian, double originLatitude,
                          double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    // Blocks of points through the fast path in vectorized loops (the same
    // bits as the single-point calls), the rest through the single-point calls.
    void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat, std::size_t latStride,
                  double* x, std::size_t xStride, double* y, std::size_t yStride) const override;
    void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                  double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const override;
    void GetOrigin(double* x, double* y) const override;
    bool IsLocal() const override { return m_bLocal; }
    double GetConvergence(double lon, double lat) const override;
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;
    double GetScaleFactor(double lon, double lat) const;

    // The figures of the fast path.
    struct SFigures
    {
        double lambda0 = 0.0;              // degrees
        double R = 0.0, invR = 0.0;        // the rectifying radius times k0, and its reciprocal
        double FE = 0.0, FN = 0.0, y0 = 0.0; // y0: the northing of the origin's parallel
        double cbg[4] = {0, 0, 0, 0};      // geodetic to Gaussian latitude, over sin 2phi in cos 2phi
        double cgb[4] = {0, 0, 0, 0};      // and back, over sin 2chi in cos 2chi
        double gtu[4] = {0, 0, 0, 0};      // Krueger's series, over sin 2(u + iv) in cos 2(u + iv)
        double gut[4] = {0, 0, 0, 0};      // and its inverse
        bool fast = false;
    };

    // CKvMathKernel::AtanSeries, the short series within its reach: both
    // evaluated in the vectorized loops, one in the single-point calls.
    template <bool Vector> static KVCART_ALWAYS_INLINE double AtanSeries(double t)
    {
        if constexpr (Vector)
            return CKvMathKernel::AtanSeries(t);
        return std::fabs(t) <= CKvMathKernel::AtanTinyLimit ? CKvMathKernel::AtanTiny(t) : CKvMathKernel::AtanSmall(t);
    }

    // One point of the fast path, the same operations in the single-point calls
    // and in the vectorized blocks (the math kernels, values chosen rather than
    // branches), so that both give the same bits; false: the point is beyond
    // the path and the general formulas take it.
    //
    // Forward. With chi the Gaussian latitude and dl the longitude from the
    // central meridian, the sphere's u = atan2(sin chi, cos dl cos chi) is chi
    // plus the angle whose tangent is
    //   sin chi cos chi (1 - cos dl) / (1 - cos^2 chi (1 - cos dl)),
    // small near the central meridian and free of cancellation (1 - cos dl is
    // the kernel's own versine), and v = atanh(w), w = sin dl cos chi, by its
    // series (or half the logarithm of (1 + w) / (1 - w) beyond it). Krueger's
    // sum needs the double angles of u and v, which come from the same
    // components over 1 - w^2 (= sin^2 chi + cos^2 dl cos^2 chi), one quotient.
    //
    // Vector: the form for the vectorized loops, which evaluates both branches
    // of a choice; the single-point form takes one. Both give the same bits.
    template <bool Vector>
    static KVCART_ALWAYS_INLINE bool Forward(const SFigures& f, double lon, double lat, double& x, double& y)
    {
        constexpr double Deg = 3.141592653589793 / 180.0;
        constexpr double HalfPi = 1.5707963267948966;
        // The southern hemisphere by symmetry: |lat|, and the northing mirrored.
        const double phi = std::fabs(lat) * Deg;
        double sinPhi, cosPhi;
        CKvMathKernel::SinCosHalfPi(phi, sinPhi, cosPhi);
        // chi = phi + delta, and its sine and cosine by turning phi's through delta.
        const double delta = (2.0 * sinPhi * cosPhi) *
                             CKvMathKernel::Estrin<4>((cosPhi - sinPhi) * (cosPhi + sinPhi), f.cbg);
        double sinD, cosD;
        CKvMathKernel::SinCosSmall(delta, sinD, cosD);
        const double sinChi = sinPhi * cosD + cosPhi * sinD, cosChi = cosPhi * cosD - sinPhi * sinD;
        const double dLambda = (lon - f.lambda0) * Deg;
        // |dl| < pi/2 on the path; sin is odd. 1 - cos dl enters u as a term of
        // its own, where its absolute error is what counts.
        double sinL, cosL;
        CKvMathKernel::SinCosHalfPi(std::fabs(dLambda), sinL, cosL);
        sinL = std::copysign(sinL, dLambda);
        const double vL = 1.0 - cosL;
        const double t = sinChi * cosChi * vL / (1.0 - cosChi * cosChi * vL);
        const double u = phi + (delta + AtanSeries<Vector>(t));
        const double w = sinL * cosChi;
        // atanh w: the series within its reach (|w| <= 0.1), else the
        // logarithm. In the vectorized loop both are evaluated and one chosen
        // (the logarithm's table look-ups may not depend on a condition there).
        const bool series = std::fabs(w) <= 0.1;
        double v;
        if constexpr (Vector) {
            const double a = CKvMathKernel::AtanhSmall(w), b = 0.5 * CKvMathKernel::Log((1.0 + w) / (1.0 - w));
            v = series ? a : b;
        } else {
            v = series ? CKvMathKernel::AtanhSmall(w) : 0.5 * CKvMathKernel::Log((1.0 + w) / (1.0 - w));
        }
        const double den = cosL * cosChi, inv = 1.0 / ((1.0 - w) * (1.0 + w));
        double du, dv;
        CKvTransverseMercatorSeries::ChebyshevSum(f.gtu, 2.0 * sinChi * den * inv, (den - sinChi) * (den + sinChi) * inv, 2.0 * w * inv,
                      (1.0 + w * w) * inv, du, dv);
        const double yP = f.R * (u + du);
        x = f.FE + f.R * (v + dv);
        y = (f.FN + (lat < 0.0 ? -yP : yP)) - f.y0;
        return (std::fabs(lat) <= 90.0) & (std::fabs(dLambda) < HalfPi) &
               (std::fabs(delta) <= CKvMathKernel::SinCosSmallLimit) &
               (std::fabs(t) <= CKvMathKernel::AtanSmallLimit) & (std::fabs(w) <= 0.9);
    }

    // Inverse. Krueger's inverse sum from the double angles of u0 and v0 (one
    // sine and cosine, one sinh), then sin u and cos u by turning u0's through
    // the small du; dl = atan2(sinh v, cos u), and the Gaussian latitude chi =
    // atan2(sin u cos dl, cos u) as u plus the angle whose tangent is
    //   -sin u sinh^2 v / (cos u (1 + sinh^2 v) + h),  h = sqrt(sinh^2 v + cos^2 u),
    // with sin 2chi = 2 h sin u / (1 + sinh^2 v) and cos 2chi = (h^2 - sin^2 u) /
    // (1 + sinh^2 v). The latitude series back, then the general formulas' one
    // fixed-point step onto the forward's own series.
    template <bool Vector>
    static KVCART_ALWAYS_INLINE bool Inverse(const SFigures& f, double x, double y, double& lon, double& lat)
    {
        constexpr double Rad = 180.0 / 3.141592653589793;
        constexpr double QuarterMeridian = 10000000.0; // the northing ranges of the general formulas
        constexpr double HalfPi = 1.5707963267948966;
        const double dy = (y + f.y0) - f.FN;
        const double u0 = std::fabs(dy) * f.invR, v0 = (x - f.FE) * f.invR;
        double su, cu;
        CKvMathKernel::SinCosHalfPi(u0, su, cu);
        const double sh0 = CKvMathKernel::SinhSmall(v0), ch0 = std::sqrt(1.0 + sh0 * sh0);
        double du, dv;
        CKvTransverseMercatorSeries::ChebyshevSum(f.gut, 2.0 * su * cu, (cu - su) * (cu + su), 2.0 * sh0 * ch0, 1.0 + 2.0 * sh0 * sh0, du, dv);
        double sd, cd;
        CKvMathKernel::SinCosSmall(du, sd, cd);
        const double sinU = su * cd + cu * sd, cosU = cu * cd - su * sd;
        // sinh v = sinh(v0 + dv) by the addition formula, sinh dv and cosh dv - 1
        // by their series to dv^5 and dv^4 (the terms left out are below 2e-22
        // relatively and 2e-21 for |dv| <= 0.001).
        const double dv2 = dv * dv;
        const double sinhV = sh0 + (ch0 * (dv + dv * dv2 * (1.0 / 6 + dv2 * (1.0 / 120))) +
                                    sh0 * (dv2 * (0.5 + dv2 * (1.0 / 24))));
        const double s2 = sinhV * sinhV, h = std::sqrt(s2 + cosU * cosU);
        // dl = 2 atan(sin dl / (1 + cos dl)), sin dl = sinh v / h and cos dl =
        // cos u / h. AtanSmall's series to t^15 leaves t^16 / 17 relatively, below
        // 6e-18 for |t| <= 0.1 (dl up to 11 degrees).
        const double tl = sinhV / (h + cosU);
        const double dLambda = 2.0 * CKvMathKernel::AtanSmall(tl);
        const double t = -sinU * s2 / (cosU * (1.0 + s2) + h);
        // cos 2chi from cos 2u and sinh^2 v, so that its polynomial need not wait
        // for the square root.
        const double inv = 1.0 / (1.0 + s2);
        const double sin2Chi = 2.0 * sinU * h * inv, cos2Chi = (s2 + (cosU - sinU) * (cosU + sinU)) * inv;
        // phi1 = chi + delta by the series back; phi = chi - (the forward's
        // series at phi1), sin 2phi1 and cos 2phi1 by turning 2chi's through 2 delta.
        const double delta = sin2Chi * CKvMathKernel::Estrin<4>(cos2Chi, f.cgb);
        double s2d, c2d;
        CKvMathKernel::SinCosSmall(2.0 * delta, s2d, c2d);
        const double sin2Phi = sin2Chi * c2d + cos2Chi * s2d, cos2Phi = cos2Chi * c2d - sin2Chi * s2d;
        const double phi = u0 + ((du + AtanSeries<Vector>(t)) - sin2Phi * CKvMathKernel::Estrin<4>(cos2Phi, f.cbg));
        lat = dy >= 0.0 ? phi * Rad : -(phi * Rad);
        lon = f.lambda0 + dLambda * Rad;
        return (std::fabs(dy) < QuarterMeridian) & (u0 <= HalfPi) & (std::fabs(v0) <= 0.49) &
               (std::fabs(du) <= CKvMathKernel::SinCosSmallLimit) & (std::fabs(dv) <= 0.001) & (cosU > 0.0) &
               (std::fabs(t) <= CKvMathKernel::AtanSmallLimit) & (std::fabs(tl) <= 0.1) &
               (std::fabs(2.0 * delta) <= CKvMathKernel::SinCosSmallLimit);
    }

private:
    void _init(double k0, double centralMeridian, double originLatitude, double falseEasting, double falseNorthing);
    void _Coeffs();
    // sum over k = 1..count of c[k] sin(k x), by Clenshaw's recurrence, from
    // sin x and cos x
    static double _Csin(const double* c, int count, double sinX, double cosX);
    void _Geo2Proj(double lon, double lat, double X0, double Y0, double* x, double* y) const;
    void _Proj2Geo(double x, double y, double X0, double Y0, double* lon, double* lat) const;
    double _radius() const;

    double m_a, m_b, m_k0, m_f, m_FE, m_FN;
    double m_lambda0, m_phi0; // degrees
    double m_n, m_Q;
    double m_y0; // the northing of the origin's parallel, FN aside
    double m_cbg[5], m_cgb[5], m_gtu[5], m_gut[5]; // elements 1..4 used
    SFigures m_fast;
    bool m_bLocal;
};

#endif
