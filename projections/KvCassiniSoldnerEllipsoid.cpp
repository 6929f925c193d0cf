#include "projections/KvCassiniSoldnerEllipsoid.h"
#include "projections/KvAngle.h"

#include "catalogue/KvMapProjData.h"

#include <cmath>

namespace {
constexpr double kDeg = 3.141592653589793 / 180.0;
} // namespace

CKvCassiniSoldnerEllipsoid::CKvCassiniSoldnerEllipsoid(double lambda0, double phi0, double falseEasting,
                                                       double falseNorthing, const CKvEllipsoid& ellipsoid)
    : CKvVariantLoops(lambda0, phi0, falseEasting, falseNorthing, ellipsoid)
{
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eCassiniSoldner, true, m_e2, m_M);
    CKvMapProjData::ComputeFourierCoefficients(CKvMapProjData::eCassiniSoldner, false, m_e2, m_F);
    m_M0 = _meridian(m_phi0);
}

double CKvCassiniSoldnerEllipsoid::_meridian(double phi) const
{
    return m_a * (m_M[0] * phi - m_M[1] * std::sin(2 * phi) + m_M[2] * std::sin(4 * phi) - m_M[3] * std::sin(6 * phi));
}

void CKvCassiniSoldnerEllipsoid::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    const double phi = lat * kDeg;
    const double s = std::sin(phi), c = std::cos(phi), t = std::tan(phi);
    const double A = CKvAngle::ReduceLongitude(lon * kDeg - m_lambda0) * c;
    const double T = t * t;
    const double C = m_e2 * c * c / (1.0 - m_e2);
    const double nu = m_a / std::sqrt(1.0 - m_e2 * s * s);
    const double A2 = A * A;
    const double X = A - T * A * A2 / 6.0 - (8.0 - T + 8.0 * C) * T * A * A2 * A2 / 120.0;
    const double Y = _meridian(phi) - m_M0 + nu * t * (A2 / 2.0 + (5.0 - T + 6.0 * C) * A2 * A2 / 24.0);
    *x = m_FE + nu * X;
    *y = m_FN + Y;
}

void CKvCassiniSoldnerEllipsoid::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double M1 = m_M0 + (y - m_FN);
    const double mu = M1 / (m_a * m_M[0]);
    const double phi1 = mu + m_F[0] * std::sin(2 * mu) + m_F[1] * std::sin(4 * mu) + m_F[2] * std::sin(6 * mu) +
                        m_F[3] * std::sin(8 * mu);
    const double s = std::sin(phi1), t = std::tan(phi1);
    const double T = t * t;
    const double w = 1.0 - m_e2 * s * s;
    const double nu = m_a / std::sqrt(w);
    const double rho = m_a * (1.0 - m_e2) / (w * std::sqrt(w));
    const double D = (x - m_FE) / nu, D2 = D * D;
    *lat = (phi1 - (nu * t / rho) * (D2 / 2.0 - (1.0 + 3.0 * T) * D2 * D2 / 24.0)) / kDeg;
    *lon = CKvAngle::ReduceLongitudeDegrees(
        (m_lambda0 + (D - T * D * D2 / 3.0 + (1.0 + 3.0 * T) * T * D * D2 * D2 / 15.0) / std::cos(phi1)) / kDeg);
}
