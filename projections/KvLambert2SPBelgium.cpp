#include "projections/KvLambert2SPBelgium.h"

#include "projections/KvAngle.h"
#include "projections/KvLambertConic.h"

#include <cmath>
#include <limits>

std::string CKvLambert2SPBelgium::Problem(const double* parameters)
{
    for (int i = 0; i < 6; ++i)
        if (!std::isfinite(parameters[i]))
            return "a parameter is not a finite number";
    const double phi1 = parameters[0], phi2 = parameters[1], latF = parameters[3];
    if (!(std::fabs(phi1) < 90.0 && std::fabs(phi2) < 90.0) || !(std::fabs(latF) <= 90.0 + 1e-9))
        return "a standard parallel lies on or beyond a pole, or the false origin beyond one";
    // Parallels symmetric about the equator make a cylinder (n = 0), no cone to turn.
    if (phi1 == -phi2)
        return "the standard parallels lie symmetrically about the equator: no cone";
    return "";
}

CKvLambert2SP CKvLambert2SPBelgium::_cone(const std::string& name, const double* parameters,
                                          const CKvEllipsoid& ellipsoid, bool usable)
{
    if (!usable)
        return CKvLambert2SP(name, parameters[0], parameters[1], std::nan(""), parameters[3], std::nan(""),
                             std::nan(""), ellipsoid);
    // The cone constant depends on the parallels alone, so an engine about the
    // given meridian yields it, and the turned engine follows.
    const CKvLambert2SP unturned(name, parameters[0], parameters[1], parameters[2], parameters[3], parameters[4],
                                 parameters[5], ellipsoid);
    return CKvLambert2SP(name, parameters[0], parameters[1],
                         TurnedMeridian(parameters[2], unturned.GetConeConstant()), parameters[3], parameters[4],
                         parameters[5], ellipsoid);
}

CKvLambert2SPBelgium::CKvLambert2SPBelgium(const std::string& name, const double* parameters,
                                           const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid),
      m_cone(_cone(name, parameters, ellipsoid, Problem(parameters).empty() && _a() > 0.0 && std::isfinite(_a()))),
      m_lonF(parameters[2]), m_latF(CKvAngle::SnapToPole(parameters[3])), m_phi1(parameters[0]),
      m_phi2(parameters[1]), m_FE(parameters[4]), m_FN(parameters[5]),
      m_apexPole(m_cone.GetConeConstant() < 0.0 ? -90.0 : 90.0),
      m_lonTurned(TurnedMeridian(parameters[2], m_cone.GetConeConstant()))
{
    const double n = m_cone.GetConeConstant();
    m_sign = n < 0.0 ? -1.0 : 1.0;
    m_cosEdge = std::cos(CKvAngle::Pi * std::fabs(n));
    if (!(Problem(parameters).empty() && _a() > 0.0 && std::isfinite(_a())))
        m_FE = m_FN = m_lonTurned = std::nan("");
    m_sphere = CKvLambertConic::MakeSphereCone(m_cone.GetCone(), m_cosEdge);
}

double CKvLambert2SPBelgium::GetConvergence(double lon, double lat) const
{
    // theta - alpha = n (lambda - lambdaF) - alpha: the turned cone's n (lambda
    // - lambdaF - alpha / n).
    if (!CKvAngle::IsPoint(lon, lat))
        return std::nan("");
    return m_cone.GetConeConstant() *
           CKvAngle::LongitudeDifferenceDegrees(CKvAngle::ReduceLongitudeDegrees(lon), m_lonTurned);
}

void CKvLambert2SPBelgium::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    // On the sphere, a longitude within [-180, 180] (as ReduceLongitudeDegrees
    // leaves it) and a latitude off the poles: the cone's path for the sphere.
    if (m_sphere.fast && CKvLambertConic::ForwardSphere(m_sphere, lon, lat, *x, *y))
        return;
    // The pole the cone opens away from lies at infinity; the other is the
    // apex, set there exactly.
    if (!CKvAngle::IsPoint(lon, lat) || lat == -m_apexPole) {
        *x = *y = std::nan("");
        return;
    }
    if (lat == m_apexPole) {
        *x = m_FE + 0.0 * m_cone.GetApexRadius();
        *y = m_FN + m_cone.GetApexRadius();
        return;
    }
    // A longitude is a point of the earth: 540 is 180.
    m_cone.Geo2Proj(CKvAngle::ReduceLongitudeDegrees(lon), lat, x, y);
}

void CKvLambert2SPBelgium::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    // On the sphere the cone's path, off the poles and within the sheet.
    if (m_sphere.fast && CKvLambertConic::InverseSphere(m_sphere, x, y, *lon, *lat))
        return;
    const double dx = x - m_FE, dy = m_cone.GetApexRadius() - (y - m_FN);
    m_cone.Proj2Geo(x, y, lon, lat);
    // The wedge beyond half a turn of longitude either side of the turned
    // central meridian is the image of no point, nor is the pole at infinity.
    if (CKvLambertConic::BeyondSheet(dx, dy, m_sign, m_cosEdge) || *lat == -m_apexPole)
        *lon = *lat = std::nan("");
}

void CKvLambert2SPBelgium::GetOrigin(double* x, double* y) const
{
    *x = m_lonF;
    *y = m_latF;
}

void CKvLambert2SPBelgium::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    // A false origin at a pole (the Belgian grid's) centres the box on the mean
    // standard parallel.
    double lat = m_latF;
    if (std::fabs(lat) == 90.0)
        lat = (m_phi1 + m_phi2) / 2.0;
    _boxAround(m_lonF, lat, false, x1, y1, x2, y2);
}

// The method's names and parameters: GDAL's and the OGC's
// Lambert_Conformal_Conic_2SP_Belgium with the 2SP parameters. No PROJ string
// from the parameters alone: PROJ's lcc draws the grid only about the turned
// meridian lambdaF + alpha / n, which its own reading of the method leaves out.
const CKvMapProjData::STypeInfo CKvLambert2SPBelgium::TypeInfo = {
    CKvMapProjData::eLambert2SPBelgium,
    "LAMBERT_CONIC_2SP_BELGIUM_PROJECTION",
    nullptr,
    "Lambert Conic Conformal (2SP Belgium)",
    "Lambert_Conformal_Conic_2SP_Belgium",
    6,
    {
        {"Parallel_1", "First parallel:", CKvMapProjData::eAngle, nullptr,
         {"Standard_Parallel_1", "standard_parallel_1", "Latitude of 1st standard parallel"}, "lat_1", false,
         std::numeric_limits<double>::quiet_NaN()},
        {"Parallel_2", "Second parallel:", CKvMapProjData::eAngle, nullptr,
         {"Standard_Parallel_2", "standard_parallel_2", "Latitude of 2nd standard parallel"}, "lat_2", false,
         std::numeric_limits<double>::quiet_NaN()},
        {"Origin_Longitude", "Longitude origin:", CKvMapProjData::eAngle, nullptr,
         {"Central_Meridian", "central_meridian", "Longitude of false origin"}, "lon_0", true, 0.0},
        {"Origin_Latitude", "Latitude origin:", CKvMapProjData::eAngle, nullptr,
         {"Latitude_Of_Origin", "latitude_of_origin", "Latitude of false origin"}, "lat_0", false,
         std::numeric_limits<double>::quiet_NaN()},
        {"Feast", "False easting:", CKvMapProjData::eLength, nullptr,
         {"False_Easting", "false_easting", "Easting at false origin"}, "x_0", false, 0.0},
        {"Fnorth", "False northing:", CKvMapProjData::eLength, nullptr,
         {"False_Northing", "false_northing", "Northing at false origin"}, "y_0", false, 0.0},
    },
    "Default Lambert 2SP Belgium",
    "WE",
    {49.8333333333333, 51.1666666666667, 4.35693972222222, 90.0, 150000.01256, 5400088.4378},
    9803,
    "Lambert_Conformal_Conic_2SP_Belgium",
    {"Lambert Conic Conformal (2SP Belgium)"},
    nullptr,
    &CKvLambert2SPBelgium::Problem,
};
