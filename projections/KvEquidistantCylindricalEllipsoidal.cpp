#include "projections/KvEquidistantCylindricalEllipsoidal.h"

CKvEquidistantCylindricalEllipsoidal::CKvEquidistantCylindricalEllipsoidal(const std::string& name,
                                                                           const double* parameters,
                                                                           const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid),
      m_map(name, parameters, ellipsoid, CKvEquidistantCylindrical::eEllipsoidal)
{
}

// The method's names and parameters: ESRI's name of the ellipsoidal form and
// the registry's, which GDAL's WKT 1 cannot write (OGC WKT 1 has no form) and
// PROJ cannot compute (no PROJ string).
const CKvMapProjData::STypeInfo CKvEquidistantCylindricalEllipsoidal::TypeInfo = {
    CKvMapProjData::eEquidistantCylindricalEllipsoidal,
    "EQUIDISTANT_CYLINDRICAL_ELLIPSOIDAL_PROJECTION",
    nullptr,
    "Equidistant Cylindrical (ellipsoidal)",
    "Equidistant_Cylindrical_Ellipsoidal",
    5,
    {
        {"Centre", "Central meridian:", CKvMapProjData::eAngle, nullptr,
         {"Central_Meridian", "central_meridian", "Longitude_Of_Center", "Longitude of natural origin"}, "lon_0", true,
         0.0},
        {"Parallel_1", "Standard parallel:", CKvMapProjData::eAngle, nullptr,
         {"Standard_Parallel_1", "standard_parallel_1", "Latitude of 1st standard parallel"}, "lat_ts", false, 0.0},
        {"Origin_Latitude", "Latitude of origin:", CKvMapProjData::eAngle, nullptr,
         {"Latitude_Of_Origin", "latitude_of_origin", "Latitude of natural origin"}, "lat_0", false, 0.0},
        {"Feast", "False easting:", CKvMapProjData::eLength, nullptr, {"False_Easting", "false_easting", "False easting"},
         "x_0", false, 0.0},
        {"Fnorth", "False northing:", CKvMapProjData::eLength, nullptr,
         {"False_Northing", "false_northing", "False northing"}, "y_0", false, 0.0},
    },
    "Default Equidistant Cylindrical (ellipsoidal)",
    "WE",
    {0.0, 0.0, 0.0, 0.0, 0.0},
    1028,
    nullptr,
    {"Equidistant Cylindrical"},
    nullptr,
    &CKvEquidistantCylindrical::Problem,
};
