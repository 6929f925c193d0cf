#include "projections/KvLambert2SP.h"
#include "projections/KvAngle.h"

#include "catalogue/KvFloatCompareRel.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvLambertConic.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
} // namespace

CKvLambert2SP::CKvLambert2SP(const CKvLambert2SPProjection* definition) : CKvEngine(*definition)
{
    _init(definition->GetParallel1(), definition->GetParallel2(), definition->GetOriginLongitude(),
          definition->GetOriginLatitude(), definition->GetFalseEasting(), definition->GetFalseNorthing(), 1.0);
}

CKvLambert2SP::CKvLambert2SP(const std::string& name, double phi1, double phi2, double lambdaF, double phiF,
                             double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid,
                             double scale)
    : CKvEngine(name.c_str(), ellipsoid)
{
    _init(phi1, phi2, lambdaF, phiF, falseEasting, falseNorthing, scale);
}

void CKvLambert2SP::_init(double phi1, double phi2, double lambdaF, double phiF, double falseEasting,
                          double falseNorthing, double scale)
{
    m_phi1 = phi1 * kDeg;
    m_phi2 = phi2 * kDeg;
    m_lon0 = lambdaF;
    m_lambdaF = lambdaF * kDeg;
    // A false origin a rounding beyond the pole (a degree written with 16 digits
    // makes 90 of 90.00000000000001) is the pole: beyond it t(phiF) turns negative.
    phiF = CKvAngle::SnapToPole(phiF);
    m_phiF = phiF * kDeg;
    m_lat0 = phiF;
    m_FE = falseEasting;
    m_FN = falseNorthing;
    const double e = _e(), e2 = _e2(), a = _a();
    const double s1 = std::sin(m_phi1), s2 = std::sin(m_phi2);
    m_nu1 = a / std::sqrt(1.0 - e2 * s1 * s1);
    m_nu2 = a / std::sqrt(1.0 - e2 * s2 * s2);
    m_C1 = CKvLambertConic::C(e, m_phi1);
    m_C2 = CKvLambertConic::C(e, m_phi2);
    m_CF = CKvLambertConic::C(e, m_phiF);
    const double m1 = m_nu1 * std::cos(m_phi1) / a, m2 = m_nu2 * std::cos(m_phi2) / a;
    m_T1 = m_C1 * CKvLambertConic::T(m_phi1);
    m_inverse = CKvConformalLatitude::MakeInverse(_e());
    m_lnT = std::log(m_T1);
    const double T2 = m_C2 * CKvLambertConic::T(m_phi2);
    // Equal parallels make the tangent cone.
    m_n = m_phi1 == m_phi2 ? s1 : (std::log(m1) - std::log(m2)) / (std::log(m_T1) - std::log(T2));
    m_nDeg = m_n * kDeg;
    m_K = scale * m_nu1 * std::cos(m_phi1) / m_n;
    const double TF = m_CF * CKvLambertConic::T(m_phiF);
    m_rF = m_K * std::pow(TF / m_T1, m_n);
    // A false origin on a pole (the Belgian grids): on the cone's apex rF is 0, which
    // t of the south pole, the tangent of the rounded right angle, only approaches;
    // the other pole lies at infinity on the map, and no grid counts from there.
    if (std::fabs(phiF) == 90.0)
        m_rF = phiF * m_n > 0.0 ? 0.0 : std::nan("");
    m_cone = CKvLambertConic::MakeCone(_e(), m_n, m_K, m_lnT, m_rF, m_FE, m_FN, m_lon0, m_inverse);
}

void CKvLambert2SP::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (m_cone.fastForward && CKvLambertConic::Forward(m_cone, lon, lat, *x, *y))
        return;
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    const double phi = lat * kDeg;
    // t / t1 = exp(-(psi - psi1)), psi the isometric latitude: one exponential
    // in place of a tangent and two powers.
    const double rho = m_K * std::exp(-m_n * (CKvConformalLatitude::Isometric(phi, _e()) + m_lnT));
    const double theta = m_nDeg * CKvAngle::LongitudeDifferenceDegrees(lon, m_lon0);
    double sinTheta, cosTheta;
    CKvMathKernel::SinCosAny(theta, sinTheta, cosTheta);
    *x = m_FE + rho * sinTheta;
    *y = m_FN + m_rF - rho * cosTheta;
}

void CKvLambert2SP::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    if (m_cone.fastInverse && CKvLambertConic::Inverse(m_cone, x, y, *lon, *lat))
        return;
    const double dx = x - m_FE;
    const double dy = m_rF - (y - m_FN);
    // (dx, dy) = rho (sin theta, cos theta), rho of the sign of n: on a cone
    // opening southwards both turn round. Every theta of the sheet, up to n times
    // half a turn, comes back; the apex (0, 0) is the pole, theta 0.
    const double sign = m_n >= 0.0 ? 1.0 : -1.0;
    const double rho = sign * std::sqrt(dx * dx + dy * dy);
    const double theta = rho == 0.0 ? 0.0 : std::atan2(sign * dx, sign * dy);
    const double Q = std::pow(rho / m_K, 1.0 / m_n); // rho n / (nu1 cos phi1), K folded in at construction
    *lat = CKvLambertConic::InverseLatitude(m_inverse, m_T1 * Q) / kDeg;
    *lon = CKvAngle::InverseLongitudeDegrees((theta / m_n + m_lambdaF) / kDeg);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

void CKvLambert2SP::Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat,
                            std::size_t latStride, double* x, std::size_t xStride, double* y, std::size_t yStride) const
{
    CKvLambertConic::ForwardBatch(m_cone, *this, n, lon, lonStride, lat, latStride, x, xStride, y, yStride);
}

void CKvLambert2SP::Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                            double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const
{
    CKvLambertConic::InverseBatch(m_cone, *this, n, x, xStride, y, yStride, lon, lonStride, lat, latStride);
}

void CKvLambert2SP::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = m_lat0;
}

void CKvLambert2SP::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    double lon, lat;
    GetOrigin(&lon, &lat);
    // A false origin at a pole centres the box on the mean standard parallel.
    if (CKvFloatCompareRel::Close(lat, 90.0) || CKvFloatCompareRel::Close(lat, -90.0))
        lat = (m_phi1 + m_phi2) / 2.0 / kDeg;
    _boxAround(lon, lat, false, x1, y1, x2, y2);
}
