#ifndef KVCART_PROJECTIONS_KVCASSINISOLDNERELLIPSOID_H
#define KVCART_PROJECTIONS_KVCASSINISOLDNERELLIPSOID_H

#include "projections/KvConformalLatitude.h"
#include "projections/KvMathKernel.h"
#include "projections/KvPointVariant.h"

#include <cmath>
#include <cstddef>

// Cassini-Soldner on the ellipsoid (IOGP Guidance Note 7-2, method 9806): series
// in the longitude difference around the central meridian, with the meridian
// distance and footpoint latitude series of CKvConformalLatitude::SMeridian. The
// forward series defines the grid; the inverse series is polished on it by
// Newton's method.
class CKvCassiniSoldnerEllipsoid final : public CKvPointVariant
{
public:
    using CKvProjInterface::Geo2Proj;
    using CKvProjInterface::Proj2Geo;
    CKvCassiniSoldnerEllipsoid(double lambda0, double phi0, double falseEasting, double falseNorthing,
                               const CKvEllipsoid& ellipsoid);
    CKvVariant* Clone() const override { return new CKvCassiniSoldnerEllipsoid(*this); }
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    // Blocks of points through the fast path in vectorized loops, the rest
    // through the single-point calls.
    void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat, std::size_t latStride,
                  double* x, std::size_t xStride, double* y, std::size_t yStride) const override;
    void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                  double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const override;

    struct SFigures
    {
        double a = 0.0, invA = 0.0, e2 = 0.0, ep2 = 0.0; // ep2: e'^2 = e^2 / (1 - e^2)
        double invAm0 = 0.0; // 1 / (a m0), the rectifying latitude per metre
        double M0 = 0.0, FE = 0.0, FN = 0.0, lambda0 = 0.0;
        double lon0 = 0.0; // the central meridian in degrees
        CKvConformalLatitude::SMeridian meridian; // meridian distance and back
        bool fast = false;
    };

    // The forward series at phi (with its sine s and cosine c) and the
    // longitude difference dLambda (radians); with jacobian, also dx/dphi,
    // dx/dlambda, dy/dphi, dy/dlambda in that order. Inline, the same
    // operations in the general formulas and in the fast path. The series'
    // factorials are taken as reciprocals: products in place of divisions.
    static KVCART_ALWAYS_INLINE void Grid(const SFigures& f, double phi, double s, double c, double dLambda, double& x,
                                          double& y, double* jacobian)
    {
        const double t = s / c;
        const double A = dLambda * c;
        const double T = t * t;
        const double C = f.ep2 * c * c;
        const double w = 1.0 - f.e2 * s * s;
        const double nu = f.a / std::sqrt(w);
        const double A2 = A * A;
        const double K5 = 8.0 - T + 8.0 * C, K4 = 5.0 - T + 6.0 * C;
        const double X = A - T * A * A2 * (1.0 / 6) - K5 * T * A * A2 * A2 * (1.0 / 120);
        const double P = A2 * 0.5 + K4 * A2 * A2 * (1.0 / 24);
        // sin 2phi and cos 2phi for the meridian distance from sin phi and cos phi.
        const double M = CKvConformalLatitude::MeridianDistance(f.meridian, phi, 2.0 * s * c, (c - s) * (c + s));
        x = f.FE + nu * X;
        y = f.FN + M - f.M0 + nu * t * P;
        if (jacobian == nullptr)
            return;
        // Partial derivatives of x and y by phi and by dLambda, through A = dLambda
        // cos phi, T = tan^2 phi, C = e'^2 cos^2 phi and nu, with dA/dphi = -A t,
        // dT/dphi = 2t (1 + T), dC/dphi = -2 C t, dnu/dphi = nu e^2 s c / w, and dM/dphi
        // the meridian's radius of curvature.
        const double dA = -A * t, dT = 2.0 * t * (1.0 + T), dC = -2.0 * C * t;
        const double invW = 1.0 / w;
        const double dNu = nu * f.e2 * s * c * invW;
        const double radius = nu * (1.0 - f.e2) * invW;
        const double XA = 1.0 - T * A2 * 0.5 - K5 * T * A2 * A2 * (1.0 / 24);
        const double XT = -A * A2 * (1.0 / 6) - (K5 - T) * A * A2 * A2 * (1.0 / 120);
        const double XC = -T * A * A2 * A2 * (1.0 / 15);
        const double PA = A + K4 * A * A2 * (1.0 / 6);
        const double PT = -A2 * A2 * (1.0 / 24);
        const double PC = A2 * A2 * 0.25;
        jacobian[0] = dNu * X + nu * (XA * dA + XT * dT + XC * dC); // dx/dphi
        jacobian[1] = nu * XA * c;                                  // dx/dlambda
        jacobian[2] = radius + (dNu * t + nu * (1.0 + T)) * P + nu * t * (PA * dA + PT * dT + PC * dC); // dy/dphi
        jacobian[3] = nu * t * PA * c;                                                                  // dy/dlambda
    }

    // The whole turn that brings an angle d (degrees) within [-180, 180] when
    // it lies within a turn and a half (lon - lon0 of a longitude and a
    // meridian within [-180, 180]), chosen rather than branched on: +-360 or
    // 0; a longitude plus it is ReduceLongitudeDegrees's, the same bits. NaN
    // gives 0.
    static KVCART_ALWAYS_INLINE double Turn(double d)
    {
        return (d > 180.0 ? -360.0 : 0.0) + (d < -180.0 ? 360.0 : 0.0);
    }

    // The latitude up to which the fast path goes: beyond it tan phi grows
    // without bound, and the general formulas take the point.
    static constexpr double FastLatitudeLimit = 1.5690509975429023; // 89.9 degrees

    // One point of the fast path, the same operations in the single-point calls
    // and in the vectorized blocks (the math kernels, and values chosen rather
    // than branches), so that both give the same bits. false: the point is
    // beyond the path (near a pole, a longitude difference to be reduced, not
    // finite), and the general formulas take it.
    // The longitude is first brought within a half turn of the central
    // meridian, so that a grid across the antimeridian keeps the path.
    static KVCART_ALWAYS_INLINE bool Forward(const SFigures& f, double lon, double lat, double& x, double& y)
    {
        double s;
        return Forward(f, lon + Turn(lon - f.lon0), lat, x, y, s);
    }
    // The same, giving also the sine of the latitude.
    static KVCART_ALWAYS_INLINE bool Forward(const SFigures& f, double lon, double lat, double& x, double& y,
                                             double& sinPhi)
    {
        constexpr double Deg = 3.141592653589793 / 180.0;
        constexpr double Pi = 3.141592653589793;
        const double phi = lat * Deg, dLambda = lon * Deg - f.lambda0;
        // Within a quarter turn on the path: the sine's series at phi and at
        // its complement, no reduction.
        double c;
        CKvMathKernel::SinCosHalfPi(phi, sinPhi, c);
        Grid(f, phi, sinPhi, c, dLambda, x, y, nullptr);
        return (std::fabs(phi) < FastLatitudeLimit) & (std::fabs(dLambda) <= Pi);
    }

    // Inverse: the footpoint latitude, the guidance note's inverse series, and
    // one of the general formulas' Newton steps on the forward series. false:
    // a point whose step is above 1e-7 rad (far from the central meridian, where
    // the general formulas take further steps), near a pole, a longitude to be
    // reduced, or not finite.
    static KVCART_ALWAYS_INLINE bool Inverse(const SFigures& f, double x, double y, double& lon, double& lat)
    {
        constexpr double Deg = 3.141592653589793 / 180.0;
        double phi, dLambda;
        const double step = InverseSeries(f, x, y, phi, dLambda);
        lat = phi * (1.0 / Deg);
        const double east = (f.lambda0 + dLambda) * (1.0 / Deg);
        lon = east + Turn(east);
        return (step <= 1e-7) & (std::fabs(phi) < FastLatitudeLimit) & (std::fabs(lon) <= 180.0);
    }

    // The inverse series from the footpoint latitude and one Newton step,
    // giving phi and dLambda (radians) and the size of the step |dphi| +
    // |dlambda| (NaN or infinite where the step is not finite: the caller then
    // leaves the point to the general formulas).
    static KVCART_ALWAYS_INLINE double InverseSeries(const SFigures& f, double x, double y, double& phi,
                                                      double& dLambda)
    {
        double phiS, lambdaS;
        SeriesStart(f, x, y, phiS, lambdaS);
        double sp, cp, vp;
        CKvMathKernel::SinCos(phiS, sp, cp, vp);
        double gx, gy, J[4];
        Grid(f, phiS, sp, cp, lambdaS, gx, gy, J);
        const double rx = x - gx, ry = y - gy;
        const double invDet = 1.0 / (J[0] * J[3] - J[1] * J[2]);
        const double dPhi = (rx * J[3] - ry * J[1]) * invDet, dL = (ry * J[0] - rx * J[2]) * invDet;
        phi = phiS + dPhi;
        dLambda = lambdaS + dL;
        return std::fabs(dPhi) + std::fabs(dL);
    }

    // The guidance note's inverse series from the footpoint latitude of the
    // northing, phiS and lambdaS (radians), before any Newton step: within
    // 5e-7 degree of the forward series' point 6 degrees from the central
    // meridian.
    static KVCART_ALWAYS_INLINE void SeriesStart(const SFigures& f, double x, double y, double& phiS, double& lambdaS)
    {
        const double mu = (f.M0 + (y - f.FN)) * f.invAm0;
        double s2Mu, c2Mu, v2Mu;
        CKvMathKernel::SinCos(2.0 * mu, s2Mu, c2Mu, v2Mu);
        const double phi1 = mu + s2Mu * CKvMathKernel::Estrin<4>(c2Mu, f.meridian.footpoint);
        double s, c, v;
        CKvMathKernel::SinCos(phi1, s, c, v);
        const double invC = 1.0 / c;
        const double t = s * invC, T = t * t;
        const double w = 1.0 - f.e2 * s * s;
        // D = (x - FE) / nu, and nu / rho = w / (1 - e^2) = w (1 + e'^2).
        const double D = (x - f.FE) * std::sqrt(w) * f.invA, D2 = D * D;
        phiS = phi1 - t * w * (1.0 + f.ep2) * (D2 * 0.5 - (1.0 + 3.0 * T) * D2 * D2 * (1.0 / 24));
        lambdaS = (D - T * D * D2 * (1.0 / 3) + (1.0 + 3.0 * T) * T * D * D2 * D2 * (1.0 / 15)) * invC;
    }

    // The figures of the engine of that origin (degrees) on that ellipsoid.
    static SFigures MakeFigures(double lambda0, double phi0, double falseEasting, double falseNorthing,
                                const CKvEllipsoid& ellipsoid);

private:
    SFigures m_fast;
};

#endif
