#include "projections/KvLambertAzimuthalEqualAreaEllipsoid.h"
#include "projections/KvAngle.h"

#include "catalogue/KvFloatCompareRel.h"

#include <cmath>

namespace {
constexpr double kDeg = 3.141592653589793 / 180.0;
} // namespace

CKvLambertAzimuthalEqualAreaEllipsoid::CKvLambertAzimuthalEqualAreaEllipsoid(double lambda0, double phi0,
                                                                             double falseEasting, double falseNorthing,
                                                                             const CKvEllipsoid& ellipsoid)
    : CKvVariantLoops(lambda0, phi0, falseEasting, falseNorthing, ellipsoid),
      m_authalic(CKvConformalLatitude::MakeAuthalic(m_e))
{
    m_pole = CKvFloatCompareRel::Close(phi0, 90.0) ? 1 : (CKvFloatCompareRel::Close(phi0, -90.0) ? -1 : 0);
    m_qP = m_authalic.qPole;
    m_beta0 = std::asin(_q(m_phi0) / m_qP);
    m_sinBeta0 = std::sin(m_beta0);
    m_cosBeta0 = std::cos(m_beta0);
    m_Rq = m_a * std::sqrt(m_qP / 2.0);
    const double s0 = std::sin(m_phi0);
    m_D = m_a * (std::cos(m_phi0) / std::sqrt(1.0 - m_e2 * s0 * s0)) / (m_Rq * m_cosBeta0);
}

double CKvLambertAzimuthalEqualAreaEllipsoid::_q(double phi) const
{
    return CKvConformalLatitude::AuthalicQ(m_authalic, std::sin(phi));
}

void CKvLambertAzimuthalEqualAreaEllipsoid::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    const double phi = lat * kDeg, dl = CKvAngle::ReduceLongitude(lon * kDeg - m_lambda0);
    const double q = _q(phi);
    if (m_pole != 0) {
        const double rho = m_a * std::sqrt(m_qP - m_pole * q);
        *x = m_FE + rho * std::sin(dl);
        *y = m_FN - m_pole * rho * std::cos(dl);
        return;
    }
    const double beta = std::asin(q / m_qP);
    const double sb = std::sin(beta), cb = std::cos(beta), cdl = std::cos(dl);
    // 1 + cos of the arc from the centre on the authalic sphere.
    const double sum = 1.0 + m_sinBeta0 * sb + m_cosBeta0 * cb * cdl;
    if (!(sum > CKvAngle::AntipodeLimit)) {
        *x = *y = std::nan("");
        return;
    }
    const double B = m_Rq * std::sqrt(2.0 / sum);
    *x = m_FE + B * m_D * cb * std::sin(dl);
    *y = m_FN + (B / m_D) * (m_cosBeta0 * sb - m_sinBeta0 * cb * cdl);
}

void CKvLambertAzimuthalEqualAreaEllipsoid::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double dx = x - m_FE, dy = y - m_FN;
    if (m_pole != 0) {
        const double rho = std::sqrt(dx * dx + dy * dy);
        // q = qP - rho^2 / a^2 towards the pole of the origin.
        *lat = CKvConformalLatitude::AuthalicLatitude(m_authalic, m_pole * (m_qP - rho * rho / (m_a * m_a))) / kDeg;
        *lon = CKvAngle::ReduceLongitudeDegrees((m_lambda0 + std::atan2(dx, -m_pole * dy)) / kDeg);
        return;
    }
    const double rho = std::sqrt(dx * dx / (m_D * m_D) + m_D * m_D * dy * dy);
    if (rho == 0.0) {
        GetOrigin(lon, lat);
        return;
    }
    const double C = 2.0 * std::asin(rho / (2.0 * m_Rq));
    const double sc = std::sin(C), cc = std::cos(C);
    const double sinBeta = cc * m_sinBeta0 + m_D * dy * sc * m_cosBeta0 / rho;
    *lat = CKvConformalLatitude::AuthalicLatitude(m_authalic, m_qP * sinBeta) / kDeg;
    *lon = CKvAngle::ReduceLongitudeDegrees(
        (m_lambda0 + std::atan2(dx * sc, m_D * rho * m_cosBeta0 * cc - m_D * m_D * dy * m_sinBeta0 * sc)) / kDeg);
}
