#include "catalogue/KvStereographicSouthPoleProjection.h"

#include "projections/KvStereographicSouthPole.h"
#include "wkt/KvPRJParser.h"

const CKvMapProjData::STypeInfo CKvStereographicSouthPoleProjection::TypeInfo = {
    eStereographicSouthPole,
    "STEREOGRAPHIC_SOUTH_POLE_PROJECTION",
    nullptr,
    "Stereographic south pole",
    "Stereographic_South_Pole",
    4,
    {
        {"Parallel_1", "First parallel:", eAngle, &CKvPRJParser::SetStandardParallel1},
        {"Centre", "Central meridian:", eAngle, &CKvPRJParser::SetCentralMeridian},
        {"Feast", "False easting:", eLength, &CKvPRJParser::SetFalseEasting},
        {"Fnorth", "False northing:", eLength, &CKvPRJParser::SetFalseNorthing},
    },
    "Default Stereographic South Pole",
    "WE",
    {-60.0, 0.0, 0.0, 0.0},
};

CKvStereographicSouthPoleProjection::CKvStereographicSouthPoleProjection()
    : CKvMapProjData(TypeInfo, std::string(), std::string(), std::string(), nullptr)
{
}

CKvStereographicSouthPoleProjection::CKvStereographicSouthPoleProjection(const std::string& name,
                                                                         const std::string& branch,
                                                                         const std::string& ellipsoidID)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
}

CKvStereographicSouthPoleProjection::CKvStereographicSouthPoleProjection(const std::string& name,
                                                                         const std::string& branch,
                                                                         const std::string& ellipsoidID,
                                                                         double parallel1, double centre,
                                                                         double falseEasting, double falseNorthing)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
    const double values[] = {parallel1, centre, falseEasting, falseNorthing};
    SetParameters(values);
}

CKvStereographicSouthPoleProjection::CKvStereographicSouthPoleProjection(const std::string& name,
                                                                         const std::string& branch,
                                                                         const std::string& ellipsoidID,
                                                                         const double* parameters)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, parameters)
{
}

CKvProjection* CKvStereographicSouthPoleProjection::CreateProjection() const
{
    return new CKvStereographicSouthPole(this);
}
