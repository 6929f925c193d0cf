#include "projections/KvCassiniSoldnerSphere.h"
#include "projections/KvAngle.h"

#include <cmath>

namespace {
constexpr double kDeg = 3.141592653589793 / 180.0;
} // namespace

CKvCassiniSoldnerSphere::CKvCassiniSoldnerSphere(double lambda0, double phi0, double falseEasting, double falseNorthing,
                                                 const CKvEllipsoid& ellipsoid)
    : CKvVariantLoops(lambda0, phi0, falseEasting, falseNorthing, ellipsoid)
{
}

void CKvCassiniSoldnerSphere::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    const double phi = lat * kDeg, dl = CKvAngle::ReduceLongitude(lon * kDeg - m_lambda0);
    *x = m_FE + m_a * std::asin(std::cos(phi) * std::sin(dl));
    *y = m_FN + m_a * (std::atan2(std::tan(phi), std::cos(dl)) - m_phi0);
}

void CKvCassiniSoldnerSphere::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double xr = (x - m_FE) / m_a;
    const double D = (y - m_FN) / m_a + m_phi0;
    *lat = std::asin(std::sin(D) * std::cos(xr)) / kDeg;
    *lon = CKvAngle::ReduceLongitudeDegrees((m_lambda0 + std::atan2(std::tan(xr), std::cos(D))) / kDeg);
}
