#include "projections/KvPolarStereographicC.h"

#include "projections/KvAngle.h"

#include <cmath>
#include <limits>

std::string CKvPolarStereographicC::Problem(const double* parameters)
{
    for (int i = 0; i < 4; ++i)
        if (!std::isfinite(parameters[i]))
            return "a parameter is not a finite number";
    const double phiF = CKvAngle::SnapToPole(parameters[0]);
    // The parallel's sign names the pole; the equator names none.
    if (!(std::fabs(phiF) <= 90.0) || phiF == 0.0)
        return "the standard parallel must lie between the equator and a pole";
    return "";
}

CKvPolarStereographicC::CKvPolarStereographicC(const std::string& name, const double* parameters,
                                               const CKvEllipsoid& ellipsoid)
    : CKvPolarStereographicEngine(name.c_str(), ellipsoid)
{
    const bool usable = Problem(parameters).empty();
    const double phiF = usable ? CKvAngle::SnapToPole(parameters[0]) * kDeg : std::nan("");
    const double lambda0 = parameters[1] * kDeg, EF = parameters[2], NF = parameters[3];
    // The false origin drawn by variant B without false northing lies at
    // -+rhoF; variant C puts NF there.
    const CKvPolarStereographicCore unshifted =
        CKvPolarStereographicCore::OnParallel(_a(), _e(), phiF, 1.0, lambda0, EF, 0.0);
    double xF, yF;
    unshifted.Forward(lambda0, phiF, &xF, &yF);
    _setCore(CKvPolarStereographicCore::OnParallel(_a(), _e(), phiF, 1.0, lambda0, EF, NF - yF), parameters[1],
             parameters[0]);
    m_pole = parameters[0] < 0.0 ? -1.0 : 1.0;
}

void CKvPolarStereographicC::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    CKvPolarStereographicEngine::Proj2Geo(x, y, lon, lat);
    if (*lat == -90.0 * m_pole)
        *lon = *lat = std::nan("");
}

// The method's names and parameters: GDAL writes the EPSG name and EPSG's
// parameter names. No PROJ string from the parameters alone: PROJ's stere
// (variant B) draws the grid only with the false northing moved by rhoF.
const CKvMapProjData::STypeInfo CKvPolarStereographicC::TypeInfo = {
    CKvMapProjData::ePolarStereographicC,
    "POLAR_STEREOGRAPHIC_C_PROJECTION",
    nullptr,
    "Polar Stereographic (variant C)",
    "Polar_Stereographic_(variant_C)",
    4,
    {
        {"Parallel_1", "Standard parallel:", CKvMapProjData::eAngle, nullptr,
         {"Standard_Parallel_1", "Latitude of standard parallel", "latitude_of_origin"}, "lat_ts", false,
         std::numeric_limits<double>::quiet_NaN()},
        {"Centre", "Longitude of origin:", CKvMapProjData::eAngle, nullptr,
         {"Central_Meridian", "Longitude of origin", "central_meridian"}, "lon_0", true, 0.0},
        {"Feast", "Easting at false origin:", CKvMapProjData::eLength, nullptr,
         {"False_Easting", "Easting at false origin", "false_easting"}, "x_0", false, 0.0},
        {"Fnorth", "Northing at false origin:", CKvMapProjData::eLength, nullptr,
         {"False_Northing", "Northing at false origin", "false_northing"}, "y_0", false, 0.0},
    },
    "Default Polar Stereographic C",
    "WE",
    {-67.0, 140.0, 300000.0, 200000.0},
    9830,
    "Polar_Stereographic_(variant_C)",
    {"Polar Stereographic (variant C)"},
    nullptr,
    &CKvPolarStereographicC::Problem,
};
