#include "projections/KvLambertWestOrientated.h"

#include "projections/KvAngle.h"
#include "projections/KvLambertConic.h"

#include <cmath>
#include <limits>

std::string CKvLambertWestOrientated::Problem(const double* parameters)
{
    const double k0 = parameters[0], lon0 = parameters[1], lat0 = parameters[2];
    if (!(k0 > 0.0 && std::isfinite(k0)))
        return "the scale factor at the natural origin is not a positive number";
    if (!std::isfinite(lon0) || !std::isfinite(parameters[3]) || !std::isfinite(parameters[4]))
        return "a parameter is not a finite number";
    // On the equator the cone opens into a cylinder (n = sin phi0 = 0), on a pole
    // it closes into the polar stereographic plane.
    if (!(std::fabs(lat0) < 90.0) || lat0 == 0.0 || std::fabs(CKvAngle::SnapToPole(lat0)) == 90.0)
        return "the latitude of the natural origin must lie between the equator and a pole";
    return "";
}

CKvLambertWestOrientated::CKvLambertWestOrientated(const std::string& name, const double* parameters,
                                                   const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid),
      // An unusable set gives the cone a scale of NaN, and with it every answer.
      m_cone(name,
             Problem(parameters).empty() && _a() > 0.0 && std::isfinite(_a()) ? parameters[0] : std::nan(""),
             0.0, parameters[2], 0.0, parameters[4], ellipsoid),
      m_FE(parameters[3]), m_FN(parameters[4]), m_lon0(parameters[1]),
      m_apexPole(parameters[2] < 0.0 ? -90.0 : 90.0), m_sign(parameters[2] < 0.0 ? -1.0 : 1.0)
{
    // n = sin phi0, the cone constant of one parallel (NaN with the cone).
    m_n = std::sin(parameters[2] * CKvAngle::Pi / 180.0) + 0.0 * m_cone.GetApexRadius();
    m_cosEdge = std::cos(CKvAngle::Pi * std::fabs(m_n));
    // The eastward cone's central meridian is 0: the sphere's path sees the
    // longitude difference that Geo2Proj hands the cone.
    m_sphere = CKvLambertConic::MakeSphereCone(m_cone.GetCone(), m_cosEdge);
    m_sphere.fast = m_sphere.fast && std::fabs(m_lon0) <= 180.0 && std::isfinite(m_FE);
}

void CKvLambertWestOrientated::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    // The pole the cone opens away from lies at infinity; the other is the
    // apex, set there exactly (the tangent of the rounded right angle would
    // leave it up to a few hundred metres short on a flat cone).
    double east; // r sin theta, eastwards from the central meridian
    // On the sphere, a longitude within [-180, 180] (as ReduceLongitudeDegrees
    // leaves it) and a latitude off the poles: the cone's path for the sphere.
    if (m_sphere.fast && std::fabs(lon) <= 180.0 &&
        CKvLambertConic::ForwardSphere(m_sphere, CKvAngle::ReduceNearLongitudeDegrees(lon - m_lon0), lat, east, *y)) {
        *x = m_FE - east;
        return;
    }
    if (!CKvAngle::IsPoint(lon, lat) || lat == -m_apexPole) {
        *x = *y = std::nan("");
        return;
    }
    if (lat == m_apexPole) {
        east = 0.0 * m_cone.GetApexRadius();
        *y = m_FN + m_cone.GetApexRadius();
    } else {
        // A longitude is a point of the earth: 540 is 180.
        m_cone.Geo2Proj(CKvAngle::LongitudeDifferenceDegrees(CKvAngle::ReduceLongitudeDegrees(lon), m_lon0), lat,
                        &east, y);
    }
    *x = m_FE - east;
}

void CKvLambertWestOrientated::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    // On the sphere the cone's path, off the poles and within the sheet; the
    // longitude reduced as InverseLongitudeDegrees does, by its one exact
    // subtraction wherever that is its answer (a sheet across the
    // antimeridian).
    if (m_sphere.fast) {
        double east;
        if (CKvLambertConic::InverseSphere(m_sphere, m_FE - x, y, east, *lat)) {
            const double l = m_lon0 + east;
            if ((std::fabs(l) <= 180.0) | (std::fabs(l) > 180.0 + 1e-9)) {
                *lon = CKvAngle::ReduceNearLongitudeDegrees(l);
                return;
            }
        }
    }
    // theta' = atan2(FE - W, r0 - (N - FN)): the eastward cone at FE - W.
    const double dx = m_FE - x, dy = m_cone.GetApexRadius() - (y - m_FN);
    m_cone.Proj2Geo(m_FE - x, y, lon, lat);
    *lon = CKvAngle::InverseLongitudeDegrees(m_lon0 + *lon);
    // The wedge beyond half a turn of longitude either side of the central
    // meridian is the image of no point, nor is the pole at infinity.
    if (CKvLambertConic::BeyondSheet(dx, dy, m_sign, m_cosEdge) || *lat == -m_apexPole)
        *lon = *lat = std::nan("");
    CKvAngle::GuardInverse(x, y, lon, lat);
}

void CKvLambertWestOrientated::GetOrigin(double* x, double* y) const
{
    double lon;
    m_cone.GetOrigin(&lon, y);
    *x = m_lon0;
}

double CKvLambertWestOrientated::GetConvergence(double lon, double lat) const
{
    // The northing axis is the 1SP grid's, so grid north and the angle from it
    // to true north are the eastward cone's, n (lambda - lambda0): the mirror
    // image of the first axis turns no meridian.
    if (!CKvAngle::IsPoint(lon, lat))
        return std::nan("");
    // The longitude difference the forward formulas take.
    return m_n * CKvAngle::LongitudeDifferenceDegrees(CKvAngle::ReduceLongitudeDegrees(lon), m_lon0);
}

void CKvLambertWestOrientated::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    double lon, lat;
    GetOrigin(&lon, &lat);
    _boxAround(lon, lat, false, x1, y1, x2, y2);
}

// The method's names and parameters. Neither ESRI nor OGC names it; GDAL writes
// the EPSG name and EPSG's parameter names, which are read under every form.
// No PROJ string from the parameters alone: PROJ's lcc draws the grid with
// +lat_1 = +lat_0 and +axis=wnu only when x_0 is the negated false easting.
const CKvMapProjData::STypeInfo CKvLambertWestOrientated::TypeInfo = {
    CKvMapProjData::eLambertWestOrientated,
    "LAMBERT_WEST_ORIENTATED_PROJECTION",
    nullptr,
    "Lambert Conic Conformal (West Orientated)",
    "Lambert_Conic_Conformal_(West_Orientated)",
    5,
    {
        {"Scale", "Scale:", CKvMapProjData::eDimensionless, nullptr,
         {"Scale_Factor", "Scale factor at natural origin", "scale_factor"}, "k_0", false, 1.0},
        {"Origin_Longitude", "Central meridian:", CKvMapProjData::eAngle, nullptr,
         {"Central_Meridian", "Longitude of natural origin", "central_meridian"}, "lon_0", true, 0.0},
        {"Origin_Latitude", "Latitude origin:", CKvMapProjData::eAngle, nullptr,
         {"Latitude_Of_Origin", "Latitude of natural origin", "latitude_of_origin"}, "lat_0", false,
         std::numeric_limits<double>::quiet_NaN()},
        {"Feast", "False easting (westing):", CKvMapProjData::eLength, nullptr,
         {"False_Easting", "False easting", "false_easting"}, "x_0", false, 0.0},
        {"Fnorth", "False northing:", CKvMapProjData::eLength, nullptr,
         {"False_Northing", "False northing", "false_northing"}, "y_0", false, 0.0},
    },
    "Default Lambert West Orientated",
    "WE",
    {1.0, -19.022125, 65.0, 0.0, 0.0},
    9826,
    "Lambert_Conic_Conformal_(West_Orientated)",
    {"Lambert Conic Conformal (West Orientated)"},
    nullptr,
    &CKvLambertWestOrientated::Problem,
    {"WEST", "NORTH"},
};
