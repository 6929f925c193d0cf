#include "catalogue/KvLambertAzimuthalEqualAreaProjection.h"

#include "projections/KvLambertAzimuthalEqualArea.h"
#include "wkt/KvPRJParser.h"

const CKvMapProjData::STypeInfo CKvLambertAzimuthalEqualAreaProjection::TypeInfo = {
    eLambertAzimuthalEqualArea,
    "LAMBERT_AZIMUTHAL_EQUAL_AREA_PROJECTION",
    nullptr,
    "Lambert azimuthal equal area",
    "Lambert_Azimuthal_Equal_Area",
    4,
    {
        {"Centre", "Central meridian:", eAngle, &CKvPRJParser::SetCentralMeridian},
        {"Origin_Latitude", "Latitude origin:", eAngle, &CKvPRJParser::SetLatitudeOfOrigin},
        {"Feast", "False easting:", eLength, &CKvPRJParser::SetFalseEasting},
        {"Fnorth", "False northing:", eLength, &CKvPRJParser::SetFalseNorthing},
    },
    "Default Lambert Azimuthal Equal Area",
    "WE",
    {0.0, 0.0, 500000.0, 0.0},
};

CKvLambertAzimuthalEqualAreaProjection::CKvLambertAzimuthalEqualAreaProjection()
    : CKvMapProjData(TypeInfo, std::string(), std::string(), std::string(), nullptr)
{
}

CKvLambertAzimuthalEqualAreaProjection::CKvLambertAzimuthalEqualAreaProjection(const std::string& name,
                                                                               const std::string& branch,
                                                                               const std::string& ellipsoidID)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
}

CKvLambertAzimuthalEqualAreaProjection::CKvLambertAzimuthalEqualAreaProjection(
    const std::string& name, const std::string& branch, const std::string& ellipsoidID, double centre,
    double originLatitude, double falseEasting, double falseNorthing)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
    const double values[] = {centre, originLatitude, falseEasting, falseNorthing};
    SetParameters(values);
}

CKvLambertAzimuthalEqualAreaProjection::CKvLambertAzimuthalEqualAreaProjection(const std::string& name,
                                                                               const std::string& branch,
                                                                               const std::string& ellipsoidID,
                                                                               const double* parameters)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, parameters)
{
}

CKvProjection* CKvLambertAzimuthalEqualAreaProjection::CreateProjection() const
{
    return new CKvLambertAzimuthalEqualArea(this);
}
