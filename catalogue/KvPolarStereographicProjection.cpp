#include "catalogue/KvPolarStereographicProjection.h"

#include "projections/KvPolarStereographic.h"
#include "wkt/KvPRJParser.h"

const CKvMapProjData::STypeInfo CKvPolarStereographicProjection::TypeInfo = {
    ePolarStereographic,
    "POLAR_STEREOGRAPHIC_PROJECTION",
    nullptr,
    "Polar stereographic",
    "Polar_Stereographic",
    5,
    {
        {"Scale", "Scale:", eDimensionless, &CKvPRJParser::SetScaleFactor},
        {"Centre", "Central meridian:", eAngle, &CKvPRJParser::SetCentralMeridian},
        {"Origin_Latitude", "Latitude origin:", eAngle, &CKvPRJParser::SetLatitudeOfOrigin},
        {"Feast", "False easting:", eLength, &CKvPRJParser::SetFalseEasting},
        {"Fnorth", "False northing:", eLength, &CKvPRJParser::SetFalseNorthing},
    },
    "Default Polar Stereographic",
    "WE",
    {1.0, 0.0, 0.0, 500000.0, 0.0},
};

CKvPolarStereographicProjection::CKvPolarStereographicProjection()
    : CKvMapProjData(TypeInfo, std::string(), std::string(), std::string(), nullptr)
{
}

CKvPolarStereographicProjection::CKvPolarStereographicProjection(const std::string& name, const std::string& branch,
                                                                 const std::string& ellipsoidID)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
}

CKvPolarStereographicProjection::CKvPolarStereographicProjection(const std::string& name, const std::string& branch,
                                                                 const std::string& ellipsoidID, double scale,
                                                                 double centre, double originLatitude,
                                                                 double falseEasting, double falseNorthing)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
    const double values[] = {scale, centre, originLatitude, falseEasting, falseNorthing};
    SetParameters(values);
}

CKvPolarStereographicProjection::CKvPolarStereographicProjection(const std::string& name, const std::string& branch,
                                                                 const std::string& ellipsoidID,
                                                                 const double* parameters)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, parameters)
{
}

CKvProjection* CKvPolarStereographicProjection::CreateProjection() const
{
    return new CKvPolarStereographic(this);
}
