#include "projections/KvCassiniSoldnerEllipsoid.h"
#include "projections/KvAngle.h"
#include "projections/KvBatch.h"

#include <cmath>

namespace {
constexpr double kDeg = 3.141592653589793 / 180.0;

KVCART_DEFINE_BLOCK_LOOP(ForwardBlock, CKvCassiniSoldnerEllipsoid::SFigures, CKvCassiniSoldnerEllipsoid::Forward)
KVCART_DEFINE_BLOCK_LOOP(InverseBlock, CKvCassiniSoldnerEllipsoid::SFigures, CKvCassiniSoldnerEllipsoid::Inverse)
} // namespace

CKvCassiniSoldnerEllipsoid::CKvCassiniSoldnerEllipsoid(double lambda0, double phi0, double falseEasting,
                                                       double falseNorthing, const CKvEllipsoid& ellipsoid)
    : CKvPointVariant(lambda0, phi0, falseEasting, falseNorthing, ellipsoid),
      m_fast(MakeFigures(lambda0, phi0, falseEasting, falseNorthing, ellipsoid))
{
}

CKvCassiniSoldnerEllipsoid::SFigures CKvCassiniSoldnerEllipsoid::MakeFigures(double lambda0, double phi0,
                                                                             double falseEasting, double falseNorthing,
                                                                             const CKvEllipsoid& ellipsoid)
{
    SFigures f;
    const double a = ellipsoid.GetMajor(), e = ellipsoid.GetEccentricity(), e2 = e * e;
    f.a = a;
    f.e2 = e2;
    f.ep2 = e2 / (1.0 - e2);
    f.meridian = CKvConformalLatitude::MakeMeridianE6(a, e2);
    f.M0 = CKvConformalLatitude::MeridianDistance(f.meridian, phi0 * kDeg);
    f.invA = 1.0 / a;
    f.invAm0 = 1.0 / (f.meridian.a * f.meridian.m0);
    f.FE = falseEasting;
    f.FN = falseNorthing;
    f.lambda0 = lambda0 * kDeg;
    f.lon0 = lambda0;
    // The kernels' reach: finite figures of an ellipsoid (the series in e^2 are
    // those of the earth's), an origin whose meridian distance is finite.
    f.fast = a > 0.0 && std::isfinite(a) && e2 >= 0.0 && e2 < 0.1 && std::isfinite(f.M0) &&
             std::isfinite(falseEasting) && std::isfinite(falseNorthing) && std::isfinite(f.lambda0);
    return f;
}

void CKvCassiniSoldnerEllipsoid::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (m_fast.fast && Forward(m_fast, lon, lat, *x, *y))
        return;
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    const double phi = lat * kDeg;
    double s, c;
    CKvMathKernel::SinCosAny(phi, s, c);
    Grid(m_fast, phi, s, c, CKvAngle::ReduceLongitude(lon * kDeg - m_lambda0), *x, *y, nullptr);
}

void CKvCassiniSoldnerEllipsoid::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    if (m_fast.fast && Inverse(m_fast, x, y, *lon, *lat))
        return;
    // The guidance note's inverse series from the footpoint latitude.
    const SFigures& f = m_fast;
    const double phi1 = CKvConformalLatitude::FootpointLatitude(f.meridian, f.M0 + (y - m_FN));
    double s, c;
    CKvMathKernel::SinCosAny(phi1, s, c);
    const double invC = 1.0 / c;
    const double t = s * invC, T = t * t;
    const double w = 1.0 - m_e2 * s * s;
    // D = (x - FE) / nu, and nu / rho = w / (1 - e^2) = w (1 + e'^2).
    const double D = (x - m_FE) * std::sqrt(w) * f.invA, D2 = D * D;
    double phi = phi1 - t * w * (1.0 + f.ep2) * (D2 * 0.5 - (1.0 + 3.0 * T) * D2 * D2 * (1.0 / 24));
    double dLambda = (D - T * D * D2 * (1.0 / 3) + (1.0 + 3.0 * T) * T * D * D2 * D2 * (1.0 / 15)) * invC;
    // The inverse series misses the forward series, which defines the grid, by
    // 3e-8 degree 2 degrees from the central meridian and by 5e-7 degree 6 degrees
    // from it. Newton's steps on the forward with its exact Jacobian remove that:
    // one squares the error down to rounding within the usual reach of a Cassini
    // grid; a second is taken only after a step above 1e-7 rad, far from the
    // central meridian. Three at most, so that every call ends.
    for (int i = 0; i < 3; ++i) {
        double sp, cp, gx, gy, J[4];
        CKvMathKernel::SinCosAny(phi, sp, cp);
        Grid(f, phi, sp, cp, dLambda, gx, gy, J);
        const double rx = x - gx, ry = y - gy;
        const double invDet = 1.0 / (J[0] * J[3] - J[1] * J[2]);
        const double dPhi = (rx * J[3] - ry * J[1]) * invDet, dL = (ry * J[0] - rx * J[2]) * invDet;
        if (!(std::isfinite(dPhi) && std::isfinite(dL)))
            break;
        phi += dPhi;
        dLambda += dL;
        if (!(std::fabs(dPhi) + std::fabs(dL) > 1e-7))
            break;
    }
    *lat = phi / kDeg;
    *lon = CKvAngle::ReduceLongitudeDegrees((m_lambda0 + dLambda) / kDeg);
}

void CKvCassiniSoldnerEllipsoid::Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat,
                                          std::size_t latStride, double* x, std::size_t xStride, double* y,
                                          std::size_t yStride) const
{
    CKvBatch::ForEachFastBlock(ForwardBlock, m_fast, m_fast.fast, n,
                               lon, lonStride, lat, latStride, x, xStride, y, yStride,
                               [this](double a, double b, double* u, double* v) {
                                   CKvCassiniSoldnerEllipsoid::Geo2Proj(a, b, u, v);
                               });
}

void CKvCassiniSoldnerEllipsoid::Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y,
                                          std::size_t yStride, double* lon, std::size_t lonStride, double* lat,
                                          std::size_t latStride) const
{
    CKvBatch::ForEachFastBlock(InverseBlock, m_fast, m_fast.fast, n,
                               x, xStride, y, yStride, lon, lonStride, lat, latStride,
                               [this](double a, double b, double* u, double* v) {
                                   CKvCassiniSoldnerEllipsoid::Proj2Geo(a, b, u, v);
                               });
}
