#include "projections/KvStereographic.h"

#include "projections/KvAngle.h"
#include "projections/KvBatch.h"
#include "projections/KvMathKernel.h"

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

double CKvStereographic::_psi(double phi) const
{
    // The isometric latitude, atanh(sin phi) - e atanh(e sin phi), with the first
    // term as asinh(tan phi), which keeps its precision up to the poles.
    return std::asinh(std::tan(phi)) - _e() * std::atanh(_e() * std::sin(phi));
}

// The same for a point: by the shared fast form away from the poles.
double CKvStereographic::_psiPoint(double phi) const
{
    return CKvConformalLatitude::Isometric(phi, _e());
}

void CKvStereographic::_init(double k0, double centralMeridian, double originLatitude, double falseEasting,
                             double falseNorthing)
{
    // An origin a rounding beyond a pole is the pole: beyond it the tangent in the
    // isometric latitude of the origin changes sign, and with it the constant c,
    // which put every point of the map at the origin.
    originLatitude = CKvAngle::SnapToPole(originLatitude);
    m_lon0 = centralMeridian;
    m_lat0 = originLatitude;
    m_k0 = k0;
    m_lambda0 = centralMeridian * kDeg;
    // No map for an origin off the ellipsoid, a figure that is none (an unknown
    // ellipsoid, a < 0, e >= 1) or a scale that is not positive: every constant
    // below becomes NaN, and so does every point.
    const bool usable = CKvAngle::IsLatitude(originLatitude) && _a() > 0.0 && std::isfinite(_a()) && _e() < 1.0 &&
                        k0 > 0.0 && std::isfinite(k0);
    m_phi0 = usable ? originLatitude * kDeg : std::nan("");
    m_FE = falseEasting;
    m_FN = falseNorthing;
    const double e = _e(), e2 = _e2(), s0 = std::sin(m_phi0), c0 = std::cos(m_phi0);
    // The conformal sphere of the guidance note (method 9809): radius sqrt(rho0 nu0),
    // longitudes scaled by n, and its latitude chi with sin chi = (w - 1) / (w + 1),
    // w = c exp(2 n psi) for the isometric latitude psi; that is chi = gd(n psi + ln(c) / 2).
    const double rho0 = _a() * (1.0 - e2) / std::pow(1.0 - e2 * s0 * s0, 1.5);
    const double nu0 = _a() / std::sqrt(1.0 - e2 * s0 * s0);
    m_R = std::sqrt(rho0 * nu0);
    const double q = e2 * c0 * c0 * c0 * c0 / (1.0 - e2);
    m_n = std::sqrt(1.0 + q);
    m_sinChi0 = s0 / m_n;
    m_cosChi0 = std::sqrt((1.0 - m_sinChi0) * (1.0 + m_sinChi0));
    m_chi0 = std::asin(m_sinChi0);
    // c makes the origin's conformal latitude asin(sin phi0 / n):
    // ln(c) / 2 = atanh(sin phi0 / n) - n psi0, with n - sin phi0 written so that it
    // keeps its precision at the poles. There the value tends to +-e atanh(e), the
    // polar stereographic's constant, which stands in where the terms overflow.
    const double nMinusS0 = q / (m_n + 1.0) + c0 * c0 / (1.0 + s0);
    m_halfLnC = 0.5 * std::log((m_n + s0) / nMinusS0) - m_n * _psi(m_phi0);
    if (!std::isfinite(m_halfLnC) && usable)
        m_halfLnC = (s0 < 0.0 ? -e : e) * std::atanh(e);
    m_twoRk0 = 2.0 * m_R * m_k0;
    m_inverse = CKvConformalLatitude::MakeInverse(e);

    SFigures& f = m_fast;
    f.e = e;
    f.n = m_n;
    f.nDeg = m_n * kDeg;
    f.invN = 1.0 / m_n;
    f.halfLnC = m_halfLnC;
    f.sinChi0 = m_sinChi0;
    f.cosChi0 = m_cosChi0;
    // 1 +- sin chi0 as cos^2 chi0 / (1 -+ sin chi0) on the side where the
    // difference would cancel.
    const double cos2Chi0 = m_cosChi0 * m_cosChi0;
    f.onePlusSinChi0 = m_sinChi0 < 0.0 ? cos2Chi0 / (1.0 - m_sinChi0) : 1.0 + m_sinChi0;
    f.oneMinusSinChi0 = m_sinChi0 > 0.0 ? cos2Chi0 / (1.0 + m_sinChi0) : 1.0 - m_sinChi0;
    f.twoRk0 = m_twoRk0;
    f.invTwoRk0 = 1.0 / m_twoRk0;
    f.invTwoRk0Sq = f.invTwoRk0 * f.invTwoRk0;
    f.FE = m_FE;
    f.FN = m_FN;
    f.lon0 = m_lon0;
    f.lambda0 = m_lambda0;
    f.inverse = m_inverse;
    // The kernels' reach: an eccentricity within the isometric latitude's
    // series, and finite constants (an unusable definition has NaN ones).
    const bool figures = usable && e <= CKvMathKernel::EccentricSinhLimit && std::isfinite(m_n) &&
                         std::isfinite(m_halfLnC) && std::isfinite(m_sinChi0) && std::isfinite(m_cosChi0) &&
                         m_twoRk0 > 0.0 && std::isfinite(m_twoRk0) && std::isfinite(m_FE) && std::isfinite(m_FN) &&
                         std::isfinite(m_lon0) && std::isfinite(m_lambda0);
    f.fastForward = figures;
    f.fastInverse = figures && m_inverse.series;
}

namespace {

KVCART_DEFINE_BLOCK_LOOP(ForwardBlock, CKvStereographic::SFigures, CKvStereographic::Forward)
KVCART_DEFINE_BLOCK_LOOP(InverseBlock, CKvStereographic::SFigures, CKvStereographic::Inverse)

} // namespace

void CKvStereographic::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (m_fast.fastForward && Forward(m_fast, lon, lat, *x, *y))
        return;
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    const double dLambda = m_n * CKvAngle::ReduceLongitude(lon * kDeg - m_lambda0); // conformal longitude
    // The conformal sphere's isometric latitude, and from it sin chi and cos chi.
    const double t = m_n * _psiPoint(lat * kDeg) + m_halfLnC;
    double sinChi, cosChi;
    CKvConformalLatitude::SinCosFromIsometric(t, sinChi, cosChi);
    double sinDl, cosDl;
    CKvMathKernel::SinCosAny(dLambda, sinDl, cosDl);
    const double B = 1.0 + sinChi * m_sinChi0 + cosChi * m_cosChi0 * cosDl;
    *x = m_FE + m_twoRk0 * cosChi * sinDl / B;
    *y = m_FN + m_twoRk0 * (sinChi * m_cosChi0 - cosChi * m_sinChi0 * cosDl) / B;
}

void CKvStereographic::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    if (m_fast.fastInverse && Inverse(m_fast, x, y, *lon, *lat))
        return;
    // The point on the conformal sphere as a unit vector in the frame of the origin's
    // meridian: at angular distance c from the origin, with tan(c / 2) = rho / 2 R k0,
    // towards (dE, dN). sin(c) / rho is taken as a whole so that the origin itself
    // needs no special case.
    const double dE = x - m_FE, dN = y - m_FN;
    const double tHalf2 = (dE * dE + dN * dN) / (m_twoRk0 * m_twoRk0);
    const double cosC = (1.0 - tHalf2) / (1.0 + tHalf2);
    const double sinCPerRho = 2.0 / (m_twoRk0 * (1.0 + tHalf2));
    const double px = cosC * m_cosChi0 - sinCPerRho * dN * m_sinChi0;
    const double py = sinCPerRho * dE;
    const double pz = cosC * m_sinChi0 + sinCPerRho * dN * m_cosChi0;
    // Back through the conformal sphere: its isometric latitude asinh(tan chi), then
    // the ellipsoid's, whose sinh is the tangent of the conformal latitude; the
    // geodetic latitude by Newton's method.
    // |p| = 1, so hypot's overflow guard is not needed.
    const double psi = (std::asinh(pz / std::sqrt(px * px + py * py)) - m_halfLnC) / m_n;
    *lat = CKvConformalLatitude::Latitude(m_inverse, std::sinh(psi)) / kDeg;
    *lon = CKvAngle::ReduceLongitudeDegrees((m_lambda0 + std::atan2(py, px) / m_n) / kDeg);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

void CKvStereographic::Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat,
                                std::size_t latStride, double* x, std::size_t xStride, double* y,
                                std::size_t yStride) const
{
    CKvBatch::ForEachFastBlock(ForwardBlock, m_fast, m_fast.fastForward, n,
                               lon, lonStride, lat, latStride, x, xStride, y, yStride,
                               [this](double a, double b, double* u, double* v) {
                                   CKvStereographic::Geo2Proj(a, b, u, v);
                               });
}

void CKvStereographic::Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y,
                                std::size_t yStride, double* lon, std::size_t lonStride, double* lat,
                                std::size_t latStride) const
{
    CKvBatch::ForEachFastBlock(InverseBlock, m_fast, m_fast.fastInverse, n,
                               x, xStride, y, yStride, lon, lonStride, lat, latStride,
                               [this](double a, double b, double* u, double* v) {
                                   CKvStereographic::Proj2Geo(a, b, u, v);
                               });
}

void CKvStereographic::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = m_lat0;
}

void CKvStereographic::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    _boxAround(m_lon0, m_lat0, true, x1, y1, x2, y2);
}
