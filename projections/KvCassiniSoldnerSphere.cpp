#include "projections/KvCassiniSoldnerSphere.h"
#include "projections/KvAngle.h"
#include "projections/KvBatch.h"

#include <cmath>

namespace {
constexpr double kDeg = 3.141592653589793 / 180.0;
constexpr double kToDegrees = 180.0 / 3.141592653589793;

// atan2 by atan of the quotient where the second argument is positive, the
// common case, where it is as exact and faster.
double Atan2(double y, double x)
{
    return x > 0.0 ? std::atan(y / x) : std::atan2(y, x);
}

KVCART_DEFINE_BLOCK_LOOP(ForwardBlock, CKvCassiniSoldnerSphere::SFigures, CKvCassiniSoldnerSphere::Forward)
KVCART_DEFINE_BLOCK_LOOP(InverseBlock, CKvCassiniSoldnerSphere::SFigures, CKvCassiniSoldnerSphere::Inverse)
} // namespace

CKvCassiniSoldnerSphere::CKvCassiniSoldnerSphere(double lambda0, double phi0, double falseEasting, double falseNorthing,
                                                 const CKvEllipsoid& ellipsoid)
    : CKvPointVariant(lambda0, phi0, falseEasting, falseNorthing, ellipsoid)
{
    SFigures& f = m_fast;
    f.a = m_a;
    f.invA = 1.0 / m_a;
    f.FE = m_FE;
    f.FN = m_FN;
    f.lambda0 = m_lambda0;
    f.phi0 = m_phi0;
    f.fast = m_a > 0.0 && std::isfinite(m_a) && std::isfinite(m_FE) && std::isfinite(m_FN) &&
             std::isfinite(m_lambda0) && std::isfinite(m_phi0);
}

void CKvCassiniSoldnerSphere::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (m_fast.fast && Forward(m_fast, lon, lat, *x, *y))
        return;
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    const double phi = lat * kDeg, dl = CKvAngle::ReduceLongitude(lon * kDeg - m_lambda0);
    const double sinPhi = std::sin(phi), cosPhi = std::cos(phi), sdl = std::sin(dl), cdl = std::cos(dl);
    *x = m_FE + m_a * std::asin(cosPhi * sdl);
    *y = m_FN + m_a * (Atan2(sinPhi, cosPhi * cdl) - m_phi0);
}

void CKvCassiniSoldnerSphere::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    if (m_fast.fast && Inverse(m_fast, x, y, *lon, *lat))
        return;
    const double xr = (x - m_FE) / m_a;
    const double D = (y - m_FN) / m_a + m_phi0;
    const double sinX = std::sin(xr), cosX = std::cos(xr), sinD = std::sin(D), cosD = std::cos(D);
    *lat = std::asin(sinD * cosX) * kToDegrees;
    const double turn = std::copysign(1.0, cosX);
    *lon = CKvAngle::ReduceLongitudeDegrees((m_lambda0 + Atan2(sinX * turn, std::fabs(cosX) * cosD)) * kToDegrees);
}

void CKvCassiniSoldnerSphere::Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat,
                                       std::size_t latStride, double* x, std::size_t xStride, double* y,
                                       std::size_t yStride) const
{
    CKvBatch::ForEachFastBlock(ForwardBlock, m_fast, m_fast.fast, n,
                               lon, lonStride, lat, latStride, x, xStride, y, yStride,
                               [this](double a, double b, double* u, double* v) {
                                   CKvCassiniSoldnerSphere::Geo2Proj(a, b, u, v);
                               });
}

void CKvCassiniSoldnerSphere::Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y,
                                       std::size_t yStride, double* lon, std::size_t lonStride, double* lat,
                                       std::size_t latStride) const
{
    CKvBatch::ForEachFastBlock(InverseBlock, m_fast, m_fast.fast, n,
                               x, xStride, y, yStride, lon, lonStride, lat, latStride,
                               [this](double a, double b, double* u, double* v) {
                                   CKvCassiniSoldnerSphere::Proj2Geo(a, b, u, v);
                               });
}
