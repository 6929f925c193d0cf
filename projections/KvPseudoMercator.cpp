#include "projections/KvPseudoMercator.h"

#include "projections/KvAngle.h"
#include "projections/KvConformalLatitude.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
} // namespace

CKvPseudoMercator::CKvPseudoMercator(const CKvPseudoMercatorProjection* definition) : CKvEngine(*definition)
{
    _init(definition->GetCentre(), definition->GetOriginLatitude(), definition->GetFalseEasting(),
          definition->GetFalseNorthing());
}

CKvPseudoMercator::CKvPseudoMercator(const std::string& name, double centralMeridian, double originLatitude,
                                     double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid)
{
    _init(centralMeridian, originLatitude, falseEasting, falseNorthing);
}

void CKvPseudoMercator::_init(double centralMeridian, double originLatitude, double falseEasting,
                              double falseNorthing)
{
    m_lon0 = centralMeridian;
    m_lat0 = originLatitude;
    m_FE = falseEasting;
    m_FN = falseNorthing;
    // The guidance note's formulas count northings from the equator: a latitude
    // of natural origin elsewhere is no parameter of this method (EPSG:3857 and
    // every other use give 0), and no map is made of it rather than a map that
    // silently ignores it. Nor of a figure that is none or an origin that is not
    // a number.
    const double a = _a();
    const bool usable = a > 0.0 && std::isfinite(a) && originLatitude == 0.0 && std::isfinite(centralMeridian) &&
                        std::isfinite(falseEasting) && std::isfinite(falseNorthing);
    m_R = usable ? a : std::nan("");
    m_RDeg = m_R * kDeg;
    m_fast = CKvMercatorCore::MakeFigures(0.0, m_R, m_FE, m_FN, m_lon0);
}

void CKvPseudoMercator::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (m_fast.fastForward && CKvMercatorCore::ForwardPoint(m_fast, lon, lat, *x, *y))
        return;
    if (!CKvAngle::IsPoint(lon, lat)) {
        *x = *y = std::nan("");
        return;
    }
    *x = m_FE + m_RDeg * CKvAngle::LongitudeDifferenceDegrees(lon, m_lon0);
    // ln tan(pi/4 + phi/2) is the isometric latitude of the sphere, atanh(sin phi).
    // It grows without bound towards the poles, where the rounded right angle
    // would otherwise give a finite northing of some 2.4e8 m.
    if (std::fabs(lat) == 90.0) {
        *y = m_FN + m_R * std::copysign(HUGE_VAL, lat);
        return;
    }
    *y = m_FN + m_R * CKvConformalLatitude::Isometric(lat * kDeg, 0.0);
}

void CKvPseudoMercator::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    if (m_fast.fastInverse && CKvMercatorCore::InversePoint(m_fast, x, y, *lon, *lat))
        return;
    // pi/2 - 2 atan(exp(-t)), t = (N - FN) / a, is the Gudermannian of t, taken as
    // atan(sinh t): no cancellation near the equator, and the pole (sinh
    // overflowing) for a northing too far for the map to tell from it.
    *lat = std::atan(std::sinh((y - m_FN) / m_R)) / kDeg;
    *lon = CKvAngle::InverseLongitudeDegrees((x - m_FE) / m_RDeg + m_lon0);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

void CKvPseudoMercator::Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat,
                                 std::size_t latStride, double* x, std::size_t xStride, double* y,
                                 std::size_t yStride) const
{
    CKvMercatorCore::ForwardBatch(m_fast, *this, n, lon, lonStride, lat, latStride, x, xStride, y, yStride);
}

void CKvPseudoMercator::Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y,
                                 std::size_t yStride, double* lon, std::size_t lonStride, double* lat,
                                 std::size_t latStride) const
{
    CKvMercatorCore::InverseBatch(m_fast, *this, n, x, xStride, y, yStride, lon, lonStride, lat, latStride);
}

void CKvPseudoMercator::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = m_lat0;
}

double CKvPseudoMercator::GetConvergence(double lon, double lat) const
{
    return CKvAngle::IsPoint(lon, lat) && m_R == m_R ? 0.0 : std::nan("");
}

void CKvPseudoMercator::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    const double half = kPi * m_R;
    *x1 = m_FE - half;
    *y1 = m_FN - half;
    *x2 = m_FE + half;
    *y2 = m_FN + half;
}

void CKvPseudoMercator::GetScaleFactors(double lon, double lat, double* meridian, double* parallel) const
{
    if (!CKvAngle::IsPoint(lon, lat) || !(m_R == m_R)) {
        *meridian = *parallel = std::nan("");
        return;
    }
    if (std::fabs(lat) == 90.0) {
        *meridian = *parallel = HUGE_VAL;
        return;
    }
    const double phi = lat * kDeg;
    const double s = std::sin(phi), c = std::cos(phi);
    const double e2 = _e2();
    const double w = 1.0 - e2 * s * s;
    *parallel = std::sqrt(w) / c;
    *meridian = w * std::sqrt(w) / ((1.0 - e2) * c);
}
