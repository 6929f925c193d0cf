#include "projections/KvStereographic.h"
#include "projections/KvAngle.h"

#include "projections/KvConformalLatitude.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
} // namespace

CKvStereographic::CKvStereographic(const CKvStereographicProjection* definition) : CKvEngine(*definition)
{
    _init(definition->GetScale(), definition->GetCentre(), definition->GetOriginLatitude(),
          definition->GetFalseEasting(), definition->GetFalseNorthing());
}

CKvStereographic::CKvStereographic(const std::string& name, double k0, double centralMeridian, double originLatitude,
                                   double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid)
{
    _init(k0, centralMeridian, originLatitude, falseEasting, falseNorthing);
}

double CKvStereographic::_w(double phi) const
{
    const double s = std::sin(phi), es = _e() * s;
    return std::pow((1.0 + s) / (1.0 - s) * std::pow((1.0 - es) / (1.0 + es), _e()), m_n);
}

void CKvStereographic::_init(double k0, double centralMeridian, double originLatitude, double falseEasting,
                             double falseNorthing)
{
    m_k0 = k0;
    m_lambda0 = centralMeridian * kDeg;
    m_phi0 = originLatitude * kDeg;
    m_FE = falseEasting;
    m_FN = falseNorthing;
    const double e2 = _e2(), s0 = std::sin(m_phi0), c0 = std::cos(m_phi0);
    // The conformal sphere: radius sqrt(rho0 nu0), longitudes scaled by n.
    const double rho0 = _a() * (1.0 - e2) / std::pow(1.0 - e2 * s0 * s0, 1.5);
    const double nu0 = _a() / std::sqrt(1.0 - e2 * s0 * s0);
    m_R = std::sqrt(rho0 * nu0);
    m_n = std::sqrt(1.0 + e2 * c0 * c0 * c0 * c0 / (1.0 - e2));
    m_c = 1.0;
    const double w1 = _w(m_phi0);
    const double sinChi00 = (w1 - 1.0) / (w1 + 1.0);
    m_c = (m_n + s0) * (1.0 - sinChi00) / ((m_n - s0) * (1.0 + sinChi00));
    const double w2 = m_c * w1;
    m_chi0 = std::asin((w2 - 1.0) / (w2 + 1.0));
    m_sinChi0 = std::sin(m_chi0);
    m_cosChi0 = std::cos(m_chi0);
    m_g = 2.0 * m_R * m_k0 * std::tan(kPi / 4 - m_chi0 / 2);
    m_h = 4.0 * m_R * m_k0 * std::tan(m_chi0) + m_g;
}

void CKvStereographic::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    const double dLambda = m_n * (lon * kDeg - m_lambda0); // conformal longitude from the origin's
    const double w = m_c * _w(lat * kDeg);
    const double sinChi = (w - 1.0) / (w + 1.0);
    const double cosChi = std::sqrt(1.0 - sinChi * sinChi);
    const double B = 1.0 + sinChi * m_sinChi0 + cosChi * m_cosChi0 * std::cos(dLambda);
    *x = m_FE + 2.0 * m_R * m_k0 * cosChi * std::sin(dLambda) / B;
    *y = m_FN + 2.0 * m_R * m_k0 * (sinChi * m_cosChi0 - cosChi * m_sinChi0 * std::cos(dLambda)) / B;
}

void CKvStereographic::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double dE = x - m_FE, dN = y - m_FN;
    const double i = std::atan(dE / (m_h + dN));
    const double j = std::atan(dE / (m_g - dN)) - i;
    const double chi = m_chi0 + 2.0 * std::atan((dN - dE * std::tan(j / 2)) / (2.0 * m_R * m_k0));
    const double dLambda = j + 2.0 * i;
    *lon = (dLambda / m_n + m_lambda0) / kDeg;
    // From the conformal sphere's latitude to the ellipsoid: its isometric latitude
    // psi = ln((1 + sin chi) / (c (1 - sin chi))) / (2n), whose sinh is the tangent of
    // the conformal latitude; the geodetic latitude by Newton's method.
    const double s = std::sin(chi);
    const double psi = 0.5 * std::log((1.0 + s) / (m_c * (1.0 - s))) / m_n;
    const double phi = std::atan(CKvConformalLatitude::Tau(std::sinh(psi), _e()));
    *lat = phi / kDeg;
    *lon = CKvAngle::ReduceLongitudeDegrees(*lon);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

void CKvStereographic::GetOrigin(double* x, double* y) const
{
    *x = m_lambda0 / kDeg;
    *y = m_phi0 / kDeg;
}

void CKvStereographic::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    _boxAround(m_lambda0 / kDeg, m_phi0 / kDeg, true, x1, y1, x2, y2);
}
