#include "projections/KvLambert1SP.h"
#include "projections/KvAngle.h"

#include "projections/KvConformalLatitude.h"
#include "projections/KvLambertConic.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
} // namespace

CKvLambert1SP::CKvLambert1SP(const CKvLambert1SPProjection* definition) : CKvEngine(*definition)
{
    _init(definition->GetScale(), definition->GetOriginLongitude(), definition->GetOriginLatitude(),
          definition->GetFalseEasting(), definition->GetFalseNorthing());
}

CKvLambert1SP::CKvLambert1SP(const std::string& name, double k0, double lambda0, double phi0, double falseEasting,
                             double falseNorthing, const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid)
{
    _init(k0, lambda0, phi0, falseEasting, falseNorthing);
}

void CKvLambert1SP::_init(double k0, double lambda0, double phi0, double falseEasting, double falseNorthing)
{
    m_lon0 = lambda0;
    m_lat0 = phi0;
    m_lambda0 = lambda0 * kDeg;
    m_phi0 = phi0 * kDeg;
    m_FE = falseEasting;
    m_FN = falseNorthing;
    m_k0 = k0;
    const double s = std::sin(m_phi0);
    m_nu0 = _a() / std::sqrt(1.0 - _e2() * s * s);
    m_n = s;
    m_nDeg = m_n * kDeg;
    m_cotPhi0 = 1.0 / std::tan(m_phi0);
    // The guidance note's F t0^n folded into the radius of the origin parallel.
    m_r0 = m_k0 * m_nu0 * m_cotPhi0;
    m_C0 = CKvLambertConic::C(_e(), m_phi0);
    m_T0 = CKvLambertConic::T(m_phi0) * m_C0;
    m_inverse = CKvConformalLatitude::MakeInverse(_e());
    m_lnT = std::log(m_T0);
    // An origin on a pole (or a rounding beyond it) makes no cone: n = 1 is the
    // plane of the polar stereographic, whose engine that is. No map, as in PROJ.
    if (std::fabs(CKvAngle::SnapToPole(phi0)) == 90.0)
        m_r0 = std::nan("");
    m_cone = CKvLambertConic::MakeCone(_e(), m_n, m_r0, m_lnT, m_r0, m_FE, m_FN, m_lon0, m_inverse);
}

void CKvLambert1SP::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (m_cone.fastForward && CKvLambertConic::Forward(m_cone, lon, lat, *x, *y))
        return;
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    const double phi = lat * kDeg;
    // t / t1 = exp(-(psi - psi1)), psi the isometric latitude: one exponential
    // in place of a tangent and two powers.
    const double rho = m_r0 * std::exp(-m_n * (CKvConformalLatitude::Isometric(phi, _e()) + m_lnT));
    const double theta = m_nDeg * CKvAngle::LongitudeDifferenceDegrees(lon, m_lon0);
    double sinTheta, cosTheta;
    CKvMathKernel::SinCosAny(theta, sinTheta, cosTheta);
    *x = m_FE + rho * sinTheta;
    *y = m_FN + m_r0 - rho * cosTheta;
}

void CKvLambert1SP::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    if (m_cone.fastInverse && CKvLambertConic::Inverse(m_cone, x, y, *lon, *lat))
        return;
    const double dx = x - m_FE;
    const double dy = m_r0 - (y - m_FN);
    // (dx, dy) = rho (sin theta, cos theta), rho of the sign of n: on a cone
    // opening southwards both turn round. Every theta of the sheet, up to n times
    // half a turn, comes back; the apex (0, 0) is the pole, theta 0.
    const double sign = m_n >= 0.0 ? 1.0 : -1.0;
    const double rho = sign * std::sqrt(dx * dx + dy * dy);
    const double theta = rho == 0.0 ? 0.0 : std::atan2(sign * dx, sign * dy);
    const double Q = std::pow(rho / m_r0, 1.0 / m_n);
    *lat = CKvLambertConic::InverseLatitude(m_inverse, m_T0 * Q) / kDeg;
    *lon = CKvAngle::InverseLongitudeDegrees((theta / m_n + m_lambda0) / kDeg);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

void CKvLambert1SP::Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat,
                            std::size_t latStride, double* x, std::size_t xStride, double* y, std::size_t yStride) const
{
    CKvLambertConic::ForwardBatch(m_cone, *this, n, lon, lonStride, lat, latStride, x, xStride, y, yStride);
}

void CKvLambert1SP::Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                            double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const
{
    CKvLambertConic::InverseBatch(m_cone, *this, n, x, xStride, y, yStride, lon, lonStride, lat, latStride);
}

void CKvLambert1SP::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = m_lat0;
}

void CKvLambert1SP::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    double lon, lat;
    GetOrigin(&lon, &lat);
    _boxAround(lon, lat, false, x1, y1, x2, y2);
}
