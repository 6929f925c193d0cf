#include "projections/KvEquidistantCylindrical.h"

#include "projections/KvAngle.h"

#include <cmath>
#include <string>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
} // namespace

std::string CKvEquidistantCylindrical::Problem(const double* parameters)
{
    for (int i = 0; i < 5; ++i)
        if (!std::isfinite(parameters[i]))
            return "a parameter is not a finite number";
    if (!(std::fabs(CKvAngle::SnapToPole(parameters[1])) < 90.0))
        return "the standard parallel lies on or beyond a pole";
    if (std::fabs(parameters[2]) > 90.0)
        return "the latitude of origin lies beyond a pole";
    return "";
}

CKvEquidistantCylindrical::CKvEquidistantCylindrical(const std::string& name, const double* parameters,
                                                     const CKvEllipsoid& ellipsoid)
    : CKvEquidistantCylindrical(name, parameters, ellipsoid, eSpherical)
{
}

CKvEquidistantCylindrical::CKvEquidistantCylindrical(const std::string& name, const double* parameters,
                                                     const CKvEllipsoid& ellipsoid, EForm form)
    : CKvEngine(name.c_str(), ellipsoid), m_form(form), m_lon0(parameters[0]), m_lat0(parameters[2]),
      m_FE(parameters[3]), m_FN(parameters[4])
{
    const double a = _a();
    const bool usable = a > 0.0 && std::isfinite(a) && _e2() < 1.0 && Problem(parameters).empty();
    const double phi1 = parameters[1] * kDeg;
    m_R = a;
    // On a sphere the meridian distance is R phi in either form, with no series
    // to sum or invert.
    m_byRadius = form == eSpherical || _e2() == 0.0;
    m_meridian = CKvConformalLatitude::MakeMeridian(a, form == eEllipsoidal ? _e2() : 0.0);
    double perRadian = a * std::cos(phi1);
    if (form == eEllipsoidal) {
        const double s1 = std::sin(phi1);
        perRadian /= std::sqrt(1.0 - _e2() * s1 * s1);
    }
    m_xPerDegree = usable ? perRadian * kDeg : std::nan("");
    m_originNorthing = 0.0;
    m_originNorthing = _northing(CKvAngle::SnapToPole(m_lat0) * kDeg);
    m_poleNorthing = _northing(kPi / 2.0);
}

double CKvEquidistantCylindrical::_northing(double phi) const
{
    if (m_byRadius)
        return m_R * phi - m_originNorthing;
    return CKvConformalLatitude::MeridianDistance(m_meridian, phi) - m_originNorthing;
}

void CKvEquidistantCylindrical::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::IsPoint(lon, lat) || !(m_xPerDegree == m_xPerDegree)) {
        *x = *y = std::nan("");
        return;
    }
    *x = m_FE + m_xPerDegree * CKvAngle::LongitudeDifferenceDegrees(lon, m_lon0);
    *y = m_FN + _northing(lat * kDeg);
}

void CKvEquidistantCylindrical::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    *lon = *lat = std::nan("");
    const double dLon = (x - m_FE) / m_xPerDegree;
    const double distance = y - m_FN + m_originNorthing; // from the equator
    const double pole = m_poleNorthing + m_originNorthing;
    // Beyond the map's width or the poles' northing there is no point.
    if (!(std::fabs(dLon) <= 180.0 + 1e-9) || !(std::fabs(distance) <= pole * (1.0 + 1e-15)))
        return;
    const double phi = m_byRadius ? distance / m_R : CKvConformalLatitude::MeridianLatitude(m_meridian, distance);
    *lat = std::fmax(-90.0, std::fmin(90.0, phi / kDeg));
    *lon = CKvAngle::InverseLongitudeDegrees(dLon + m_lon0);
}

void CKvEquidistantCylindrical::GetOrigin(double* x, double* y) const
{
    *x = m_lon0;
    *y = m_lat0;
}

double CKvEquidistantCylindrical::GetConvergence(double lon, double lat) const
{
    return CKvAngle::IsPoint(lon, lat) && m_xPerDegree == m_xPerDegree ? 0.0 : std::nan("");
}

void CKvEquidistantCylindrical::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    *x1 = m_FE - 180.0 * m_xPerDegree;
    *x2 = m_FE + 180.0 * m_xPerDegree;
    *y1 = m_FN + _northing(-kPi / 2.0);
    *y2 = m_FN + m_poleNorthing;
}

// ESRI's Equidistant_Cylindrical and Plate_Carree (no standard parallel:
// the equator), GDAL's Equirectangular and PROJ's eqc; the registry's
// spherical method 1029. PROJ reads GDAL's latitude_of_origin as lat_0 and
// ignores ESRI's Latitude_Of_Origin.
const CKvMapProjData::STypeInfo CKvEquidistantCylindrical::TypeInfo = {
    CKvMapProjData::eEquidistantCylindrical,
    "EQUIDISTANT_CYLINDRICAL_PROJECTION",
    nullptr,
    "Equidistant Cylindrical",
    "Equidistant_Cylindrical",
    5,
    {
        {"Centre", "Central meridian:", CKvMapProjData::eAngle, nullptr,
         {"Central_Meridian", "central_meridian", "Longitude_Of_Center", "Longitude of natural origin"}, "lon_0", true,
         0.0},
        {"Parallel_1", "Standard parallel:", CKvMapProjData::eAngle, nullptr,
         {"Standard_Parallel_1", "standard_parallel_1", "Latitude of 1st standard parallel"}, "lat_ts", false, 0.0},
        {"Origin_Latitude", "Latitude of origin:", CKvMapProjData::eAngle, nullptr,
         {"Latitude_Of_Origin", "latitude_of_origin"}, "lat_0", false, 0.0},
        {"Feast", "False easting:", CKvMapProjData::eLength, nullptr, {"False_Easting", "false_easting", "False easting"},
         "x_0", false, 0.0},
        {"Fnorth", "False northing:", CKvMapProjData::eLength, nullptr,
         {"False_Northing", "false_northing", "False northing"}, "y_0", false, 0.0},
    },
    "Default Equidistant Cylindrical",
    "WE",
    {0.0, 0.0, 0.0, 0.0, 0.0},
    1029,
    "Equirectangular",
    {"Plate_Carree", "Equidistant Cylindrical (Spherical)"},
    "+proj=eqc",
    &Problem,
};
