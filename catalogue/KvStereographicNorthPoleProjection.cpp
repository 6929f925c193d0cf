#include "catalogue/KvStereographicNorthPoleProjection.h"

#include "projections/KvStereographicNorthPole.h"
#include "wkt/KvPRJParser.h"

const CKvMapProjData::STypeInfo CKvStereographicNorthPoleProjection::TypeInfo = {
    eStereographicNorthPole,
    "STEREOGRAPHIC_NORTH_POLE_PROJECTION",
    nullptr,
    "Stereographic north pole",
    "Stereographic_North_Pole",
    4,
    {
        {"Parallel_1", "First parallel:", eAngle, &CKvPRJParser::SetStandardParallel1},
        {"Centre", "Central meridian:", eAngle, &CKvPRJParser::SetCentralMeridian},
        {"Feast", "False easting:", eLength, &CKvPRJParser::SetFalseEasting},
        {"Fnorth", "False northing:", eLength, &CKvPRJParser::SetFalseNorthing},
    },
    "Default Stereographic North Pole",
    "WE",
    {60.0, 0.0, 0.0, 0.0},
};

CKvStereographicNorthPoleProjection::CKvStereographicNorthPoleProjection()
    : CKvMapProjData(TypeInfo, std::string(), std::string(), std::string(), nullptr)
{
}

CKvStereographicNorthPoleProjection::CKvStereographicNorthPoleProjection(const std::string& name,
                                                                         const std::string& branch,
                                                                         const std::string& ellipsoidID)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
}

CKvStereographicNorthPoleProjection::CKvStereographicNorthPoleProjection(const std::string& name,
                                                                         const std::string& branch,
                                                                         const std::string& ellipsoidID,
                                                                         double parallel1, double centre,
                                                                         double falseEasting, double falseNorthing)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
    const double values[] = {parallel1, centre, falseEasting, falseNorthing};
    SetParameters(values);
}

CKvStereographicNorthPoleProjection::CKvStereographicNorthPoleProjection(const std::string& name,
                                                                         const std::string& branch,
                                                                         const std::string& ellipsoidID,
                                                                         const double* parameters)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, parameters)
{
}

CKvProjection* CKvStereographicNorthPoleProjection::CreateProjection() const
{
    return new CKvStereographicNorthPole(this);
}
