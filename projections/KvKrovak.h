#ifndef KVCART_PROJECTIONS_KVKROVAK_H
#define KVCART_PROJECTIONS_KVKROVAK_H

#include "catalogue/KvKrovakProjection.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvMathKernel.h"
#include "projections/KvProjectionEngine.h"

#include <cmath>
#include <cstddef>
#include <string>

// Krovak oblique conformal conic (IOGP Guidance Note 7-2, method 9819): the
// Gaussian sphere, an oblique cone about the point (azimuth of its axis) and the
// pseudo standard parallel. The method's own axes point south (X) and west (Y).
// They are turned into the output axes by the axis scales and the XY-plane
// rotation theta (counter-clockwise):
//   (p, q) = (xScale * X, yScale * Y)
//   x = p cos theta - q sin theta + FE,  y = p sin theta + q cos theta + FN
// so scales (1, 1) with rotation 0 give the classic (southing, westing) pair, and
// (-1, 1) with rotation 90 give (easting, northing) = (-Y, -X).
//
// The guidance note's tangents of half-angles raised to powers are isometric
// latitudes, scaled and shifted: tan(pi/4 + U/2) = t0 exp(B psi) with psi the
// ellipsoid's isometric latitude, and tan(pi/4 + T/2) = (r0 / r)^(1/n) tan(pi/4 +
// phiP/2). The engine works on those: sine and cosine of a latitude from its
// isometric latitude with one exponential, the oblique rotation on the unit
// vector (so that cos T and cos U come from sums of squares, not from 1 - sin^2),
// the radius as rTerm ((1 - sin T) / cos T)^n, and the inverse's geodetic
// latitude from the isometric one by Karney's series instead of the guidance
// note's iteration.
class CKvKrovak : public CKvEngine<CKvKrovak, CKvKrovakProjection>
{
public:
    explicit CKvKrovak(const CKvKrovakProjection* definition);
    // In the order of the definition: scale at the pseudo parallel, pseudo parallel,
    // centre longitude and latitude, azimuth, XY-plane rotation (degrees), X and Y
    // scales, FE, FN.
    CKvKrovak(const std::string& name, double kp, double pseudoParallel, double centerLongitude, double centerLatitude,
              double azimuth, double xyPlaneRotation, double xScale, double yScale, double falseEasting,
              double falseNorthing, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    // The batch forms run the fast path on blocks of points in vectorized loops
    // (the same kernels, so the same bits as the single-point calls); a point
    // beyond it goes through the single-point call.
    void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat, std::size_t latStride,
                  double* x, std::size_t xStride, double* y, std::size_t yStride) const override;
    void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                  double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const override;
    void GetOrigin(double* x, double* y) const override;
    double GetConvergence(double lon, double lat) const override { return _numericConvergence(lon, lat); }
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

    // The figures of the fast path: those of the general formulas, with the
    // divisions by the axis scales turned into products.
    struct SFigures
    {
        double e = 0.0, B = 0.0, invB = 0.0, lnT0 = 0.0, lambda0 = 0.0;
        double sinAlpha = 0.0, cosAlpha = 0.0;
        double n = 0.0, invN = 0.0, rTerm = 0.0, invR0 = 0.0, lnTanP = 0.0;
        double xScale = 0.0, yScale = 0.0, invXScale = 0.0, invYScale = 0.0, sinRot = 0.0, cosRot = 0.0;
        double FE = 0.0, FN = 0.0;
        CKvConformalLatitude::SInverse inverse;
        // Finite figures of a cone (0 < n <= 1), an eccentricity within the
        // kernels' series, and for the inverse Karney's series.
        bool fastForward = false, fastInverse = false;
    };

    // One point of the fast path, the general formulas' operations on the math
    // kernels with values chosen rather than branches, so that the single-point
    // calls and the vectorized blocks give the same bits; degrees. false: the
    // point is beyond the path and the general formulas take it.
    //
    // Forward: the ellipsoid's isometric latitude by its kernel, the cone's
    // radius rTerm cot^n(pi/4 + T/2) as rTerm exp(n ln cot). Beyond the path:
    // within a degree of a pole, a longitude difference beyond half a turn, the
    // cone's apex (cot 0) and the point opposite it (cot infinite), NaN.
    static KVCART_ALWAYS_INLINE bool Forward(const SFigures& f, double lon, double lat, double& x, double& y)
    {
        constexpr double Deg = 3.141592653589793 / 180.0;
        const double phi = lat * Deg;
        double sinU, cosU;
        _sinCosFromIsometric(f.lnT0 + f.B * CKvConformalLatitude::IsometricKernel(phi, f.e), sinU, cosU);
        const double dl = lon * Deg - f.lambda0;
        double sinV, cosV, vV;
        CKvMathKernel::SinCos(-f.B * dl, sinV, cosV, vV);
        const double sinT = f.cosAlpha * sinU + f.sinAlpha * cosU * cosV;
        const double cosTcosD = f.cosAlpha * cosU * cosV - f.sinAlpha * sinU;
        const double cosTsinD = cosU * sinV;
        const double cosT = std::sqrt(cosTcosD * cosTcosD + cosTsinD * cosTsinD);
        const double D = CKvMathKernel::Atan2(cosTsinD, std::fabs(cosTcosD));
        // cot = cos T / (1 + sin T) = (1 - sin T) / cos T, each where it does not
        // cancel: one quotient of the chosen terms.
        const bool north = sinT >= 0.0;
        const double cotangent = (north ? cosT : 1.0 - sinT) / (north ? 1.0 + sinT : cosT);
        const double r = f.rTerm * CKvMathKernel::Exp(f.n * CKvMathKernel::Log(cotangent));
        double sinTheta, cosTheta, vTheta;
        CKvMathKernel::SinCos(f.n * D, sinTheta, cosTheta, vTheta);
        const double p = f.xScale * r * cosTheta; // southing
        const double q = f.yScale * r * sinTheta; // westing
        x = p * f.cosRot - q * f.sinRot + f.FE;
        y = p * f.sinRot + q * f.cosRot + f.FN;
        return (std::fabs(phi) < CKvConformalLatitude::IsometricKernelLimit) & (std::fabs(dl) <= 3.141592653589793) &
               (cotangent >= 1e-300) & (cotangent <= 1e300);
    }

    // Inverse: T's isometric latitude from ln(r / r0), U's from its sine and
    // cosine, and the geodetic latitude from the ellipsoid's isometric latitude
    // by LatitudeKernel (Karney's series). Beyond the path: the apex (r = 0),
    // radii beyond 1e300 r0 or not finite, the Gaussian sphere's poles, an
    // isometric latitude beyond the kernel's reach, a longitude beyond +-180.
    static KVCART_ALWAYS_INLINE bool Inverse(const SFigures& f, double x, double y, double& lon, double& lat)
    {
        constexpr double Deg = 3.141592653589793 / 180.0;
        const double dx = x - f.FE, dy = y - f.FN;
        const double X = (dx * f.cosRot + dy * f.sinRot) * f.invXScale;  // southing
        const double Y = (-dx * f.sinRot + dy * f.cosRot) * f.invYScale; // westing
        const double q = std::sqrt(X * X + Y * Y) * f.invR0;
        const double D = CKvMathKernel::Atan2(Y, X) * f.invN;
        const double w = f.lnTanP - CKvMathKernel::Log(q) * f.invN;
        double sinT, cosT;
        _sinCosFromIsometric(w, sinT, cosT);
        double sinD, cosD, vD;
        CKvMathKernel::SinCos(D, sinD, cosD, vD);
        const double sinU = f.cosAlpha * sinT - f.sinAlpha * cosT * cosD;
        const double cosUcosV = f.cosAlpha * cosT * cosD + f.sinAlpha * sinT;
        const double cosUsinV = cosT * sinD;
        const double cosU = std::sqrt(cosUcosV * cosUcosV + cosUsinV * cosUsinV);
        const double V = CKvMathKernel::Atan2(cosUsinV, std::fabs(cosUcosV));
        lon = (f.lambda0 - V * f.invB) * (1.0 / Deg);
        // U's isometric latitude, ln((1 + |sin U|) / cos U) of the sign of sin U,
        // where the quotient does not cancel.
        const double quotient = (1.0 + std::fabs(sinU)) / cosU;
        const double lnQuotient = CKvMathKernel::Log(quotient);
        const double isometricU = sinU >= 0.0 ? lnQuotient : -lnQuotient;
        const double psi = (isometricU - f.lnT0) * f.invB;
        lat = CKvConformalLatitude::LatitudeKernel(f.inverse, psi) * (1.0 / Deg);
        return (q >= 1e-300) & (q <= 1e300) & (std::fabs(w) <= 300.0) & (quotient <= 1e300) &
               (std::fabs(psi) <= CKvConformalLatitude::LatitudeKernelLimit) & (std::fabs(lon) <= 180.0) &
               (std::fabs(lat) <= 90.0);
    }

private:
    // sin and cos of the latitude whose isometric latitude is w, |w| <= 300 (tanh
    // and sech): with E = exp w, sinh w = (E^2 - 1) / 2E, or the series of sinh
    // for |w| < 0.5, where the difference would cancel, and cosh w = (E^2 + 1) /
    // 2E; the 2E cancels from both quotients.
    static KVCART_ALWAYS_INLINE void _sinCosFromIsometric(double w, double& s, double& c)
    {
        const double E = CKvMathKernel::Exp(w), E2 = E * E, m = 2.0 * E;
        const double Sm = std::fabs(w) < 0.5 ? m * CKvMathKernel::SinhSmall(w) : E2 - 1.0;
        const double inv = 1.0 / (E2 + 1.0);
        s = Sm * inv;
        c = m * inv;
    }

    void _init(double kp, double pseudoParallel, double centerLongitude, double centerLatitude, double azimuth,
               double xyPlaneRotation, double xScale, double yScale, double falseEasting, double falseNorthing);

    double m_lambda0, m_phiC, m_alphaC, m_phiP;
    double m_lonC, m_latC; // the centre in degrees, as given
    double m_B, m_n, m_rTerm; // rTerm = r0 tan^n(pi/4 + phiP/2)
    double m_lnT0;            // the Gaussian sphere's isometric latitude less B times the ellipsoid's
    double m_invB, m_invN, m_invR0;
    double m_lnTanP; // ln tan(pi/4 + phiP/2), the cone's isometric latitude of the pseudo parallel
    double m_sinAlpha, m_cosAlpha;
    CKvConformalLatitude::SInverse m_inverse; // conformal to geodetic latitude
    SFigures m_fast;                          // the same figures for the fast path
    double m_xScale, m_yScale, m_sinRot, m_cosRot, m_FE, m_FN;
};

#endif
