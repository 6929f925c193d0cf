#ifndef KVCART_PROJECTIONS_KVLAMBERTCONIC_H
#define KVCART_PROJECTIONS_KVLAMBERTCONIC_H

#include "projections/KvConformalLatitude.h"
#include "projections/KvMathKernel.h"

#include <cmath>
#include <cstddef>

class CKvProjection;

// The functions of latitude that both Lambert conformal conic engines use
// (IOGP Guidance Note 7-2, methods 9801 and 9802).
class CKvLambertConic
{
public:
    // t(phi) = tan(pi/4 - phi/2)
    static double T(double phi);
    // c(phi) = ((1 + e sin phi) / (1 - e sin phi))^(e/2); t(phi) * c(phi) is the
    // guidance note's t of the ellipsoid.
    static double C(double e, double phi);
    // The latitude whose t(phi) * c(phi) equals target.
    static double InverseLatitude(const CKvConformalLatitude::SInverse& inverse, double target);
    // Whether the grid offset (dx, dy) from the apex, dy towards the apex
    // (r0 - (N - FN)), lies in the wedge beyond the sheet, more than half a turn
    // of longitude (pi |n|) from the central meridian: the image of no point.
    // sign: that of n; cosEdge: cos(pi n). A hair of slack keeps the sheet's
    // own edges.
    static bool BeyondSheet(double dx, double dy, double sign, double cosEdge)
    {
        return sign * dy < (cosEdge - 1e-12) * std::sqrt(dx * dx + dy * dy);
    }

    // The figures of one cone for its fast path, which both engines share:
    //   rho = K exp(-n (psi + lnT)), theta = n (lon - lon0),
    //   x = FE + rho sin theta, y = FN + rOrigin - rho cos theta,
    // psi the isometric latitude, lnT the logarithm of the guidance note's t at
    // the parallel where rho = K.
    struct SCone
    {
        double e = 0.0, n = 0.0, nDeg = 0.0, sign = 1.0;
        double K = 0.0, lnT = 0.0, rOrigin = 0.0;
        double invK = 0.0, invN = 0.0; // 1 / K and 1 / n: the inverse multiplies
        double FE = 0.0, FN = 0.0, lon0 = 0.0, lambda0 = 0.0;
        CKvConformalLatitude::SInverse inverse;
        bool fastForward = false, fastInverse = false;
    };
    // Whether the fast paths hold for these figures: an eccentricity within the
    // series' reach, a cone (0 < |n| <= 1) of finite radii, and for the inverse
    // Karney's series.
    static SCone MakeCone(double e, double n, double K, double lnT, double rOrigin, double FE, double FN, double lon0,
                          const CKvConformalLatitude::SInverse& inverse);

    // One point of the fast path, the same operations in the single-point calls
    // and in the vectorized blocks (the math kernels, and values chosen rather
    // than branches), so that both give the same bits. false: the point is
    // beyond the path (within a degree of a pole, a longitude difference to be
    // reduced, out of the sheet or not finite), and the engine's general
    // formulas take it.
    //
    // Forward: rho from the isometric latitude psi.
    static KVCART_ALWAYS_INLINE bool Forward(const SCone& cone, double lon, double lat, double& x, double& y)
    {
        constexpr double Deg = 3.141592653589793 / 180.0;
        const double phi = lat * Deg;
        const double psi = CKvConformalLatitude::IsometricKernel(phi, cone.e);
        const double rho = cone.K * CKvMathKernel::Exp(-cone.n * (psi + cone.lnT));
        const double d = lon - cone.lon0;
        double sinTheta, cosTheta, vTheta;
        CKvMathKernel::SinCos(cone.nDeg * d, sinTheta, cosTheta, vTheta);
        x = cone.FE + rho * sinTheta;
        y = cone.FN + cone.rOrigin - rho * cosTheta;
        return (std::fabs(phi) < CKvConformalLatitude::IsometricKernelLimit) & (std::fabs(d) <= 180.0);
    }

    // Inverse: (dx, dy) = rho (sin theta, cos theta) from the apex, psi = -(lnT +
    // ln(rho / K) / n), and the latitude from psi. theta is
    // atan(dx / dy) within a quarter turn of the central meridian (rho and dy of
    // the sign of n); beyond it, and at the apex, the general formulas' atan2.
    static KVCART_ALWAYS_INLINE bool Inverse(const SCone& cone, double x, double y, double& lon, double& lat)
    {
        constexpr double Deg = 3.141592653589793 / 180.0;
        const double dx = x - cone.FE;
        const double dy = cone.rOrigin - (y - cone.FN);
        const double q = cone.sign * std::sqrt(dx * dx + dy * dy) * cone.invK;
        const double psi = -(cone.lnT + CKvMathKernel::Log(q) * cone.invN);
        const double phi = CKvConformalLatitude::LatitudeKernel(cone.inverse, psi);
        const double theta = CKvMathKernel::Atan(dx / dy);
        lon = (theta * cone.invN + cone.lambda0) * (1.0 / Deg);
        lat = phi * (1.0 / Deg);
        return (cone.sign * dy > 0.0) & (q >= 1e-300) & (q <= 1e300) & (std::fabs(psi) <= CKvConformalLatitude::LatitudeKernelLimit) &
               (std::fabs(lon) <= 180.0) & (std::fabs(lat) <= 90.0);
    }

    // The cone on the sphere (e = 0), for the engines that turn a cone's grid
    // (the west orientated and the Belgian): there the isometric latitude is
    // atanh(sin phi), t = tan(pi/4 - phi/2) = sqrt((1 - sin phi) / (1 + sin phi)),
    // and the cone's rho = K exp(-n (psi + lnT)) is
    //   rho = Ks exp(n/2 (ln(1 - sin phi) - ln(1 + sin phi))),   Ks = K exp(-n lnT),
    // two logarithms side by side (no quotient before them), one exponential
    // and no series of the eccentricity; back, with t = (rho / Ks)^(1/n),
    //   phi = pi/2 - 2 atan t,
    // one exponential and one arc tangent in place of the conformal latitude's
    // sinh, reciprocals and series. Both keep the ellipsoid's path's accuracy:
    // 1 -+ sin phi are exact from |phi| >= 30 degrees on (Sterbenz), and the
    // latitude's error is a few units of 1e-16 rad, as that of psi there.
    struct SSphereCone
    {
        double halfN = 0.0, nDeg = 0.0, sign = 1.0, invN = 0.0;
        double Ks = 0.0, invKs = 0.0;
        double north = 0.0; // FN + rOrigin
        double rOrigin = 0.0, FE = 0.0, FN = 0.0, lon0 = 0.0, lambda0 = 0.0;
        double cosEdge = 0.0; // cos(pi n), the sheet's edge
        bool fast = false;
    };
    // From a cone's figures (e = 0 for the path to be taken) and the engine's
    // cos(pi n).
    static SSphereCone MakeSphereCone(const SCone& cone, double cosEdge);

    // Forward for a longitude within [-180, 180] and a latitude within
    // IsometricKernelLimit; lon - lon0 reduced by one exact subtraction (the
    // general formulas' LongitudeDifferenceDegrees, the same bits). false: the
    // point is beyond the path and the engine's general formulas take it.
    static KVCART_ALWAYS_INLINE bool ForwardSphere(const SSphereCone& cone, double lon, double lat, double& x,
                                                  double& y)
    {
        constexpr double Deg = 3.141592653589793 / 180.0;
        const double phi = lat * Deg;
        const double s = CKvMathKernel::SinHalfPi(phi);
        const double twoLnT = CKvMathKernel::Log(1.0 - s) - CKvMathKernel::Log(1.0 + s);
        const double rho = cone.Ks * CKvMathKernel::Exp(cone.halfN * twoLnT);
        const double d = lon - cone.lon0;
        const double dLon = std::fabs(d) <= 180.0 ? d : d - std::copysign(360.0, d);
        // |theta| = |n (lambda - lambda0)| <= pi: sin theta = 2 sin cos and 1 -
        // cos theta = 2 sin^2 of theta / 2, with no reduction and no quadrant.
        double sh, ch;
        CKvMathKernel::SinCosHalfPi(0.5 * cone.nDeg * dLon, sh, ch);
        x = cone.FE + rho * (2.0 * sh * ch);
        y = (cone.north - rho) + rho * (2.0 * sh * sh);
        return (std::fabs(phi) < CKvConformalLatitude::IsometricKernelLimit) & (std::fabs(lon) <= 180.0);
    }

    // Inverse: (dx, dy) = rho (sin theta, cos theta) from the apex, theta =
    // atan(dx / dy) within a quarter turn of the central meridian. false: the
    // apex and the far pole's neighbourhood, beyond a quarter turn, off the
    // sheet, a longitude beyond 180 degrees, or not finite.
    static KVCART_ALWAYS_INLINE bool InverseSphere(const SSphereCone& cone, double x, double y, double& lon,
                                                  double& lat)
    {
        constexpr double Deg = 3.141592653589793 / 180.0;
        constexpr double HalfPi = 1.5707963267948966;
        const double dx = x - cone.FE;
        const double dy = cone.rOrigin - (y - cone.FN);
        const double r = std::sqrt(dx * dx + dy * dy);
        const double q = cone.sign * r * cone.invKs;
        const double lnT = CKvMathKernel::Log(q) * cone.invN;
        const double phi = HalfPi - 2.0 * CKvMathKernel::Atan(CKvMathKernel::Exp(lnT));
        const double theta = CKvMathKernel::Atan(dx / dy);
        lon = (theta * cone.invN + cone.lambda0) * (1.0 / Deg);
        lat = phi * (1.0 / Deg);
        return (cone.sign * dy > 0.0) & (q >= 1e-300) & (q <= 1e300) & (std::fabs(lnT) <= 30.0) &
               (cone.sign * dy >= (cone.cosEdge - 1e-12) * r) & (std::fabs(lon) <= 180.0) & (std::fabs(lat) <= 90.0);
    }

    // The batch forms of an engine on this cone: blocks of points through the fast
    // path in vectorized loops, and the points beyond it through the engine's
    // single-point call. Strided arrays as CKvBatch takes them.
    static void ForwardBatch(const SCone& cone, const CKvProjection& engine, std::size_t n, const double* lon,
                             std::size_t lonStride, const double* lat, std::size_t latStride, double* x,
                             std::size_t xStride, double* y, std::size_t yStride);
    static void InverseBatch(const SCone& cone, const CKvProjection& engine, std::size_t n, const double* x,
                             std::size_t xStride, const double* y, std::size_t yStride, double* lon,
                             std::size_t lonStride, double* lat, std::size_t latStride);
};

#endif
