#include "catalogue/KvTransverseMercatorProjection.h"

#include "projections/KvTransverseMercatorJHS.h"
#include "wkt/KvPRJParser.h"

const CKvMapProjData::STypeInfo CKvTransverseMercatorProjection::TypeInfo = {
    eTransverseMercator,
    "UTM_PROJECTION",
    nullptr,
    "Transverse mercator",
    "Transverse_Mercator",
    5,
    {
        {"Scale", "Scale:", eDimensionless, &CKvPRJParser::SetScaleFactor},
        {"Centre", "Central meridian:", eAngle, &CKvPRJParser::SetCentralMeridian},
        {"Origin_Latitude", "Latitude origin:", eAngle, &CKvPRJParser::SetLatitudeOfOrigin},
        {"Feast", "False easting:", eLength, &CKvPRJParser::SetFalseEasting},
        {"Fnorth", "False northing:", eLength, &CKvPRJParser::SetFalseNorthing},
    },
    "Default Transverse Mercator",
    "WE",
    {0.9996, 0.0, 0.0, 500000.0, 0.0},
};

CKvTransverseMercatorProjection::CKvTransverseMercatorProjection()
    : CKvMapProjData(TypeInfo, std::string(), std::string(), std::string(), nullptr)
{
}

CKvTransverseMercatorProjection::CKvTransverseMercatorProjection(const std::string& name, const std::string& branch,
                                                                 const std::string& ellipsoidID)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
}

CKvTransverseMercatorProjection::CKvTransverseMercatorProjection(const std::string& name, const std::string& branch,
                                                                 const std::string& ellipsoidID, double scale,
                                                                 double centre, double originLatitude,
                                                                 double falseEasting, double falseNorthing)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
    const double values[] = {scale, centre, originLatitude, falseEasting, falseNorthing};
    SetParameters(values);
}

CKvTransverseMercatorProjection::CKvTransverseMercatorProjection(const std::string& name, const std::string& branch,
                                                                 const std::string& ellipsoidID,
                                                                 const double* parameters)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, parameters)
{
}

CKvProjection* CKvTransverseMercatorProjection::CreateProjection() const
{
    // Deliberately the JHS engine, not the complex-series one.
    return new CKvTransverseMercatorJHS(this);
}
