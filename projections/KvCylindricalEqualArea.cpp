#include "projections/KvCylindricalEqualArea.h"

#include "projections/KvAngle.h"

#include <cmath>
#include <string>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;

std::string Problem(const double* parameters)
{
    for (int i = 0; i < 4; ++i)
        if (!std::isfinite(parameters[i]))
            return "a parameter is not a finite number";
    if (!(std::fabs(CKvAngle::SnapToPole(parameters[1])) < 90.0))
        return "the standard parallel lies on or beyond a pole";
    return "";
}
} // namespace

CKvCylindricalEqualArea::CKvCylindricalEqualArea(const std::string& name, const double* parameters,
                                                 const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid), m_lon0(parameters[0]), m_FE(parameters[2]), m_FN(parameters[3])
{
    const double a = _a(), e = _e();
    const bool usable = a > 0.0 && std::isfinite(a) && e >= 0.0 && e < 1.0 && Problem(parameters).empty();
    const double phi1 = parameters[1] * kDeg;
    const double s1 = std::sin(phi1);
    const double k0 = std::cos(phi1) / std::sqrt(1.0 - _e2() * s1 * s1);
    // On a sphere q = 2 sin phi: the ellipsoid's q divides by e.
    m_sphere = e == 0.0;
    m_authalic = CKvConformalLatitude::MakeAuthalic(m_sphere ? 0.1 : e);
    if (m_sphere)
        m_authalic.qPole = 2.0;
    m_xPerDegree = usable ? a * k0 * kDeg : std::nan("");
    m_yPerQ = usable ? a / (2.0 * k0) : std::nan("");
    m_authalicInverse = CKvConformalLatitude::MakeAuthalicInverse(m_sphere ? 0.0 : e);
    m_degreePerX = 1.0 / m_xPerDegree;
    m_sinBetaPerY = 1.0 / (m_yPerQ * m_authalic.qPole);
}

void CKvCylindricalEqualArea::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::IsPoint(lon, lat)) {
        *x = *y = std::nan("");
        return;
    }
    *x = m_FE + m_xPerDegree * CKvAngle::LongitudeDifferenceDegrees(lon, m_lon0);
    // The poles exactly: q(pi/2), not the q of the rounded right angle.
    const double sinPhi = std::fabs(lat) == 90.0 ? std::copysign(1.0, lat) : std::sin(lat * kDeg);
    *y = m_FN + m_yPerQ * (m_sphere ? 2.0 * sinPhi : CKvConformalLatitude::AuthalicQ(m_authalic, sinPhi));
}

void CKvCylindricalEqualArea::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const double dLon = (x - m_FE) * m_degreePerX;
    // sin beta = q / q(pi/2): beyond +-1 by rounding alone the pole, further
    // beyond (or NaN) no latitude, as is a point beyond the map's width.
    double sinBeta = (y - m_FN) * m_sinBetaPerY;
    if (!(std::fabs(dLon) <= 180.0 + 1e-9) || !(std::fabs(sinBeta) <= 1.0 + 1e-15)) {
        *lon = *lat = std::nan("");
        return;
    }
    sinBeta = sinBeta > 1.0 ? 1.0 : sinBeta < -1.0 ? -1.0 : sinBeta;
    // On the sphere asin(sin beta) by libm (a third faster here than the
    // kernel's atan2 of the sine and the cosine, whose cases the scalar code
    // takes as branches); on the earth's ellipsoids Karney's series from beta
    // to phi (within 1e-17 rad, no iteration) by the inline kernels; beyond
    // their eccentricity the general function.
    const double phi = m_sphere ? std::asin(sinBeta)
                       : m_authalicInverse.series
                           ? CKvConformalLatitude::AuthalicLatitudeSeries(m_authalicInverse, sinBeta)
                           : CKvConformalLatitude::AuthalicLatitude(m_authalic, sinBeta * m_authalic.qPole);
    const double latDeg = phi * (1.0 / kDeg);
    *lat = latDeg > 90.0 ? 90.0 : latDeg < -90.0 ? -90.0 : latDeg;
    *lon = CKvAngle::InverseLongitudeDegrees(dLon + m_lon0);
    CKvAngle::GuardInverse(x, y, lon, lat);
}

void CKvCylindricalEqualArea::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = 0.0;
}

double CKvCylindricalEqualArea::GetConvergence(double lon, double lat) const
{
    return CKvAngle::IsPoint(lon, lat) && m_xPerDegree == m_xPerDegree ? 0.0 : std::nan("");
}

void CKvCylindricalEqualArea::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    const double halfHeight = m_yPerQ * m_authalic.qPole;
    *x1 = m_FE - 180.0 * m_xPerDegree;
    *x2 = m_FE + 180.0 * m_xPerDegree;
    *y1 = m_FN - halfHeight;
    *y2 = m_FN + halfHeight;
}

// EPSG's own name and parameters (method 9835), ESRI's and GDAL's
// "Cylindrical_Equal_Area" and PROJ's cea.
const CKvMapProjData::STypeInfo CKvCylindricalEqualArea::TypeInfo = {
    CKvMapProjData::eCylindricalEqualArea,
    "CYLINDRICAL_EQUAL_AREA_PROJECTION",
    nullptr,
    "Cylindrical Equal Area",
    "Cylindrical_Equal_Area",
    4,
    {
        {"Centre", "Central meridian:", CKvMapProjData::eAngle, nullptr,
         {"Central_Meridian", "central_meridian", "Longitude_Of_Center", "Longitude of natural origin"}, "lon_0", true,
         0.0},
        {"Parallel_1", "Standard parallel:", CKvMapProjData::eAngle, nullptr,
         {"Standard_Parallel_1", "standard_parallel_1", "Latitude of 1st standard parallel"}, "lat_ts", false, 0.0},
        {"Feast", "False easting:", CKvMapProjData::eLength, nullptr, {"False_Easting", "false_easting", "False easting"},
         "x_0", false, 0.0},
        {"Fnorth", "False northing:", CKvMapProjData::eLength, nullptr,
         {"False_Northing", "false_northing", "False northing"}, "y_0", false, 0.0},
    },
    "Default Cylindrical Equal Area",
    "WE",
    {0.0, 0.0, 0.0, 0.0},
    9835,
    "Cylindrical_Equal_Area",
    {"Lambert Cylindrical Equal Area", "Lambert_Cylindrical_Equal_Area", "Behrmann"},
    "+proj=cea",
    &Problem,
};
