#ifndef KVCART_PROJECTIONS_KVSTEREOGRAPHIC_H
#define KVCART_PROJECTIONS_KVSTEREOGRAPHIC_H

#include "catalogue/KvStereographicProjection.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvMathKernel.h"
#include "projections/KvProjectionEngine.h"

#include <cmath>
#include <cstddef>
#include <string>

// Oblique stereographic on the conformal sphere: the "double" stereographic of
// the Netherlands and New Brunswick (IOGP Guidance Note 7-2, method 9809).
class CKvStereographic : public CKvEngine<CKvStereographic, CKvStereographicProjection>
{
public:
    explicit CKvStereographic(const CKvStereographicProjection* definition);
    // scale at the origin, central meridian, latitude of origin (degrees), FE, FN.
    CKvStereographic(const std::string& name, double k0, double centralMeridian, double originLatitude,
                     double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    // Blocks of points through the fast path in vectorized loops, the rest
    // through the single-point calls.
    void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat, std::size_t latStride,
                  double* x, std::size_t xStride, double* y, std::size_t yStride) const override;
    void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                  double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const override;
    void GetOrigin(double* x, double* y) const override;
    double GetConvergence(double lon, double lat) const override { return _numericConvergence(lon, lat); }
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

    // The figures of the fast path: the conformal sphere's constants, made once.
    struct SFigures
    {
        double e = 0.0, n = 0.0, nDeg = 0.0, invN = 0.0, halfLnC = 0.0;
        double sinChi0 = 0.0, cosChi0 = 0.0, onePlusSinChi0 = 0.0, oneMinusSinChi0 = 0.0, twoRk0 = 0.0, invTwoRk0 = 0.0, invTwoRk0Sq = 0.0;
        double FE = 0.0, FN = 0.0, lon0 = 0.0, lambda0 = 0.0;
        CKvConformalLatitude::SInverse inverse;
        bool fastForward = false, fastInverse = false;
    };

    // One point of the fast path, the same operations in the single-point calls
    // and in the vectorized blocks (the math kernels, and values chosen rather
    // than branches), so that both give the same bits. false: the point is
    // beyond the path, and the general formulas take it.
    //
    // Forward: the conformal sphere's isometric latitude t = n psi + ln(c) / 2,
    // and with E = exp t, sin chi = tanh t = (E^2 - 1) / (E^2 + 1) and cos chi =
    // sech t = 2E / (E^2 + 1). The guidance note's
    //   B = 1 + sin chi sin chi0 + cos chi cos chi0 cos dl
    // times E^2 + 1 is D = E^2 (1 + sin chi0) + (1 - sin chi0) + 2E cos chi0 cos dl,
    // and x and y are 2 R k0 over D times 2E sin dl and (E^2 - 1) cos chi0 - 2E
    // sin chi0 cos dl: one division for the whole point. Near the equator E^2 - 1
    // loses its relative precision, not its absolute one (some 2e-16, a
    // nanometre on the grid). Beyond the path: within a degree of a pole, a
    // longitude difference to be reduced, a point within some 0.1 degree of the
    // origin's antipode (where B vanishes), or not finite.
    static KVCART_ALWAYS_INLINE bool Forward(const SFigures& f, double lon, double lat, double& x, double& y)
    {
        constexpr double Deg = 3.141592653589793 / 180.0;
        const double phi = lat * Deg;
        const double d = lon - f.lon0;
        const double t = f.n * CKvConformalLatitude::IsometricKernel(phi, f.e) + f.halfLnC;
        const double E = CKvMathKernel::Exp(t), E2 = E * E, twoE = 2.0 * E;
        double sinDl, cosDl, vDl;
        CKvMathKernel::SinCos(f.nDeg * d, sinDl, cosDl, vDl);
        const double D = E2 * f.onePlusSinChi0 + f.oneMinusSinChi0 + twoE * f.cosChi0 * cosDl;
        const double k = f.twoRk0 / D;
        x = f.FE + k * (twoE * sinDl);
        y = f.FN + k * ((E2 - 1.0) * f.cosChi0 - twoE * f.sinChi0 * cosDl);
        return (std::fabs(phi) < CKvConformalLatitude::IsometricKernelLimit) & (std::fabs(d) <= 180.0) &
               (D > 1e-6 * (E2 + 1.0));
    }

    // Inverse: the point on the conformal sphere as a unit vector p in the frame
    // of the origin's meridian, its isometric latitude asinh(tan chi) (the series
    // of asinh near the equator, else a logarithm), the ellipsoid's from it and
    // the geodetic latitude by Karney's series; the longitude is atan(py / px)
    // turned by half a turn where px < 0 (atan2's quadrants). Beyond the path:
    // within some 1e-8 rad of the conformal sphere's poles, a latitude or
    // longitude to be brought into range, or not finite.
    static KVCART_ALWAYS_INLINE bool Inverse(const SFigures& f, double x, double y, double& lon, double& lat)
    {
        constexpr double Deg = 3.141592653589793 / 180.0;
        constexpr double Pi = 3.141592653589793;
        const double dE = x - f.FE, dN = y - f.FN;
        const double tHalf2 = (dE * dE + dN * dN) * f.invTwoRk0Sq;
        const double inv = 1.0 / (1.0 + tHalf2);
        const double cosC = (1.0 - tHalf2) * inv;
        const double sinCPerRho = 2.0 * f.invTwoRk0 * inv;
        const double px = cosC * f.cosChi0 - sinCPerRho * dN * f.sinChi0;
        const double py = sinCPerRho * dE;
        const double pz = cosC * f.sinChi0 + sinCPerRho * dN * f.cosChi0;
        const double tanChi = pz / std::sqrt(px * px + py * py);
        const double a = std::fabs(tanChi);
        const double series = CKvMathKernel::AsinhSmall(tanChi);
        const double logs = std::copysign(CKvMathKernel::Log(a + std::sqrt(1.0 + a * a)), tanChi);
        const double psi = ((a < CKvMathKernel::AsinSmallLimit ? series : logs) - f.halfLnC) * f.invN;
        const double phi = CKvConformalLatitude::LatitudeKernel(f.inverse, psi);
        const double theta = CKvMathKernel::Atan(py / px) + (px < 0.0 ? std::copysign(Pi, py) : 0.0);
        lon = (f.lambda0 + theta * f.invN) * (1.0 / Deg);
        lat = phi * (1.0 / Deg);
        return (a < 1e8) & (std::fabs(psi) <= CKvConformalLatitude::LatitudeKernelLimit) & (std::fabs(lon) <= 180.0) &
               (std::fabs(lat) <= 90.0);
    }

private:
    void _init(double k0, double centralMeridian, double originLatitude, double falseEasting, double falseNorthing);
    double _psi(double phi) const; // the isometric latitude
    double _psiPoint(double phi) const; // the same, by the shared fast form

    double m_lon0, m_lat0; // the origin in degrees, as given
    double m_k0, m_lambda0, m_phi0, m_FE, m_FN;
    double m_R, m_n, m_halfLnC, m_chi0, m_sinChi0, m_cosChi0;
    double m_twoRk0;
    CKvConformalLatitude::SInverse m_inverse; // conformal to geodetic latitude
    SFigures m_fast;
};

#endif
