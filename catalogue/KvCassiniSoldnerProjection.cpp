#include "catalogue/KvCassiniSoldnerProjection.h"

#include "projections/KvCassiniSoldner.h"
#include "wkt/KvPRJParser.h"

const CKvMapProjData::STypeInfo CKvCassiniSoldnerProjection::TypeInfo = {
    eCassiniSoldner,
    "CASSINI_SOLDNER_PROJECTION",
    nullptr,
    "Cassini-Soldner",
    "Cassini_Soldner",
    4,
    {
        {"Central_Meridian", "Central Meridian:", eAngle, &CKvPRJParser::SetCentralMeridian},
        {"Origin_Latitude", "Latitude origin:", eAngle, &CKvPRJParser::SetLatitudeOfOrigin},
        {"Feast", "False easting:", eLength, &CKvPRJParser::SetFalseEasting},
        {"Fnorth", "False northing:", eLength, &CKvPRJParser::SetFalseNorthing},
    },
    "Default Cassini-Soldner",
    "WE",
    {0.0, 0.0, 0.0, 0.0},
};

CKvCassiniSoldnerProjection::CKvCassiniSoldnerProjection()
    : CKvMapProjData(TypeInfo, std::string(), std::string(), std::string(), nullptr)
{
}

CKvCassiniSoldnerProjection::CKvCassiniSoldnerProjection(const std::string& name, const std::string& branch,
                                                         const std::string& ellipsoidID)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
}

CKvCassiniSoldnerProjection::CKvCassiniSoldnerProjection(const std::string& name, const std::string& branch,
                                                         const std::string& ellipsoidID, double centralMeridian,
                                                         double originLatitude, double falseEasting,
                                                         double falseNorthing)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
    const double values[] = {centralMeridian, originLatitude, falseEasting, falseNorthing};
    SetParameters(values);
}

CKvCassiniSoldnerProjection::CKvCassiniSoldnerProjection(const std::string& name, const std::string& branch,
                                                         const std::string& ellipsoidID, const double* parameters)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, parameters)
{
}

CKvProjection* CKvCassiniSoldnerProjection::CreateProjection() const
{
    return new CKvCassiniSoldner(this);
}
