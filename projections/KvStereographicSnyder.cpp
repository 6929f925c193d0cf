#include "projections/KvStereographicSnyder.h"

#include "projections/KvAngle.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvMathKernel.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;

// The map's denominator 1 + cos c, c the angular distance from the origin on the
// conformal sphere (eq. 21-27), vanishes at the antipode of the origin. Below this
// bound (within about 1.4e-5 rad of the antipode, 90 m on the earth, where the
// coordinates pass 1e12 m) its rounding, a few 1e-16, would leave fewer than six
// significant digits: no map there, in either direction.
constexpr double kNearAntipode = 1e-10;
} // namespace

CKvStereographicSnyder::CKvStereographicSnyder(const CKvStereographicSnyderProjection* definition)
    : CKvEngine(*definition)
{
    _init(definition->GetScale(), definition->GetCentre(), definition->GetOriginLatitude(),
          definition->GetFalseEasting(), definition->GetFalseNorthing());
}

CKvStereographicSnyder::CKvStereographicSnyder(const std::string& name, double k0, double centralMeridian,
                                               double originLatitude, double falseEasting, double falseNorthing,
                                               const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid)
{
    _init(k0, centralMeridian, originLatitude, falseEasting, falseNorthing);
}

void CKvStereographicSnyder::_init(double k0, double centralMeridian, double originLatitude, double falseEasting,
                                   double falseNorthing)
{
    // An origin a rounding beyond a pole is the pole.
    originLatitude = CKvAngle::SnapToPole(originLatitude);
    m_lon0 = centralMeridian;
    m_lat0 = originLatitude;
    m_FE = falseEasting;
    m_FN = falseNorthing;
    const double a = _a(), e = _e();
    m_inverse = CKvConformalLatitude::MakeInverse(e);
    // No map for an origin off the ellipsoid, a figure that is none (an unknown
    // ellipsoid, a <= 0, e >= 1) or a scale that is not positive: the constants are
    // NaN, and so is every point.
    if (!(CKvAngle::IsLatitude(originLatitude) && std::isfinite(centralMeridian) && a > 0.0 && std::isfinite(a) &&
          e < 1.0 && k0 > 0.0 && std::isfinite(k0))) {
        m_sinChi1 = m_cosChi1 = m_K = std::nan("");
        return;
    }
    if (std::fabs(originLatitude) == 90.0) {
        // The polar aspect: chi1 is the pole, and m1 / cos chi1 takes its limit
        // 1 / sqrt((1 + e)^(1 + e) (1 - e)^(1 - e)), so that the formulas below are
        // eqs. 21-33 and 21-34 with k0 at the pole.
        m_sinChi1 = originLatitude > 0.0 ? 1.0 : -1.0;
        m_cosChi1 = 0.0;
        m_K = 2.0 * a * k0 / std::sqrt(std::pow(1.0 + e, 1.0 + e) * std::pow(1.0 - e, 1.0 - e));
        return;
    }
    const double phi1 = originLatitude * kDeg;
    const double s1 = std::sin(phi1);
    CKvConformalLatitude::SinCosFromIsometric(CKvConformalLatitude::Isometric(phi1, e), m_sinChi1, m_cosChi1);
    const double m1 = std::cos(phi1) / std::sqrt(1.0 - e * e * s1 * s1); // eq. 14-15
    m_K = 2.0 * a * k0 * m1 / m_cosChi1;
}

void CKvStereographicSnyder::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    const double dLambda = CKvAngle::ReduceLongitudeDegrees(lon - m_lon0) * kDeg;
    // The conformal latitude chi of the point (eq. 3-1) through its isometric latitude.
    double sinChi, cosChi;
    CKvConformalLatitude::SinCosFromIsometric(CKvConformalLatitude::Isometric(lat * kDeg, _e()), sinChi, cosChi);
    double sinDl, cosDl;
    CKvMathKernel::SinCosAny(dLambda, sinDl, cosDl);
    // Eqs. 21-24, 21-25 and 21-27: A = 2 a k0 m1 / (cos chi1 B).
    const double B = 1.0 + m_sinChi1 * sinChi + m_cosChi1 * cosChi * cosDl;
    if (!(B >= kNearAntipode)) {
        *x = *y = std::nan("");
        return;
    }
    const double A = m_K / B;
    *x = m_FE + A * cosChi * sinDl;
    *y = m_FN + A * (m_cosChi1 * sinChi - m_sinChi1 * cosChi * cosDl);
}

void CKvStereographicSnyder::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    // The point on the conformal sphere as a unit vector in the frame of the origin's
    // meridian: at angular distance c from the origin, tan(c / 2) = rho / K (eq.
    // 21-38), in the direction of (dE, dN); sin(c) / rho is taken as a whole, so that
    // the origin needs no case of its own. Then the conformal latitude and the
    // longitude from the vector (in place of eqs. 21-36 and 21-37, which need the
    // quadrant and the pole told apart), and the geodetic latitude from the
    // conformal one.
    const double dE = x - m_FE, dN = y - m_FN;
    const double tHalf2 = (dE * dE + dN * dN) / (m_K * m_K);
    if (!(2.0 / (1.0 + tHalf2) >= kNearAntipode)) { // 1 + cos c, as in the forward
        *lon = *lat = std::nan("");
        return;
    }
    const double cosC = (1.0 - tHalf2) / (1.0 + tHalf2);
    const double sinCPerRho = 2.0 / (m_K * (1.0 + tHalf2));
    const double px = cosC * m_cosChi1 - sinCPerRho * dN * m_sinChi1;
    const double py = sinCPerRho * dE;
    const double pz = cosC * m_sinChi1 + sinCPerRho * dN * m_cosChi1;
    // |p| = 1, so hypot's overflow guard is not needed; at a pole tan chi is infinite.
    *lat = CKvConformalLatitude::Latitude(m_inverse, pz / std::sqrt(px * px + py * py)) / kDeg;
    *lon = CKvAngle::ReduceLongitudeDegrees(m_lon0 + std::atan2(py, px) / kDeg);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

double CKvStereographicSnyder::GetConvergence(double lon, double lat) const
{
    if (!CKvAngle::IsLatitude(lat))
        return std::nan("");
    // The map keeps the angles of the conformal sphere, whose meridians and north are
    // the ellipsoid's: the convergence is that of the stereographic of the sphere at
    // the conformal latitudes,
    //   tan gamma = sin dl (sin chi1 + sin chi) / (cos chi1 cos chi + (1 + sin chi1 sin chi) cos dl),
    // the longitude difference itself about the north pole, its negative about the south.
    const double dLambda = CKvAngle::ReduceLongitudeDegrees(lon - m_lon0) * kDeg;
    double sinChi, cosChi;
    CKvConformalLatitude::SinCosFromIsometric(CKvConformalLatitude::Isometric(lat * kDeg, _e()), sinChi, cosChi);
    double sinDl, cosDl;
    CKvMathKernel::SinCosAny(dLambda, sinDl, cosDl);
    if (!(1.0 + m_sinChi1 * sinChi + m_cosChi1 * cosChi * cosDl >= kNearAntipode)) // also no map at all
        return std::nan("");
    return std::atan2(sinDl * (m_sinChi1 + sinChi), m_cosChi1 * cosChi + (1.0 + m_sinChi1 * sinChi) * cosDl) / kDeg;
}

void CKvStereographicSnyder::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = m_lat0;
}

void CKvStereographicSnyder::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    _boxAround(m_lon0, m_lat0, true, x1, y1, x2, y2);
}
