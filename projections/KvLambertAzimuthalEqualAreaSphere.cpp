#include "projections/KvLambertAzimuthalEqualAreaSphere.h"
#include "projections/KvAngle.h"

#include <cmath>

namespace {
constexpr double kDeg = 3.141592653589793 / 180.0;
} // namespace

CKvLambertAzimuthalEqualAreaSphere::CKvLambertAzimuthalEqualAreaSphere(double lambda0, double phi0, double falseEasting,
                                                                       double falseNorthing,
                                                                       const CKvEllipsoid& ellipsoid)
    : CKvVariantLoops(lambda0, phi0, falseEasting, falseNorthing, ellipsoid), m_sinPhi0(std::sin(m_phi0)),
      m_cosPhi0(std::cos(m_phi0))
{
}

void CKvLambertAzimuthalEqualAreaSphere::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    const double phi = lat * kDeg, dl = CKvAngle::ReduceLongitude(lon * kDeg - m_lambda0);
    const double s = std::sin(phi), c = std::cos(phi), cdl = std::cos(dl);
    // 1 + cos of the arc from the centre; at the antipode k' is infinite.
    const double sum = 1.0 + m_sinPhi0 * s + m_cosPhi0 * c * cdl;
    if (!(sum > CKvAngle::AntipodeLimit)) {
        *x = *y = std::nan("");
        return;
    }
    const double k = std::sqrt(2.0 / sum);
    *x = m_FE + m_a * k * c * std::sin(dl);
    *y = m_FN + m_a * k * (m_cosPhi0 * s - m_sinPhi0 * c * cdl);
}

void CKvLambertAzimuthalEqualAreaSphere::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double dx = x - m_FE, dy = y - m_FN;
    const double rho = std::sqrt(dx * dx + dy * dy);
    if (rho == 0.0) {
        GetOrigin(lon, lat);
        return;
    }
    const double c = 2.0 * std::asin(rho / (2.0 * m_a));
    const double sc = std::sin(c), cc = std::cos(c);
    *lat = std::asin(cc * m_sinPhi0 + dy * sc * m_cosPhi0 / rho) / kDeg;
    *lon = CKvAngle::ReduceLongitudeDegrees((m_lambda0 + std::atan2(dx * sc, rho * m_cosPhi0 * cc - dy * m_sinPhi0 * sc)) / kDeg);
}
