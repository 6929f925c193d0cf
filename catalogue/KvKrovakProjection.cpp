#include "catalogue/KvKrovakProjection.h"

#include "projections/KvKrovak.h"
#include "wkt/KvPRJParser.h"

const CKvMapProjData::STypeInfo CKvKrovakProjection::TypeInfo = {
    eKrovak,
    "KROVAK_OBLIQUE_CONFORMAL_CONIC",
    nullptr,
    "Krovak oblique conformal conic",
    "Krovak",
    10,
    {
        {"Scale_At_Pseudo_Parallel", "Scale at pseudo parallel:", eDimensionless, &CKvPRJParser::SetScaleFactor},
        {"Pseudo_Parallel", "Pseudo parallel:", eAngle, &CKvPRJParser::SetPseudoParallel},
        {"Center_Longitude", "Longitude of center:", eAngle, &CKvPRJParser::SetLongitudeOfCenter},
        {"Center_Latitude", "Latitude of center:", eAngle, &CKvPRJParser::SetLatitudeOfCenter},
        {"Azimuth", "Azimuth:", eAngle, &CKvPRJParser::SetAzimuth},
        {"XY_Plane_Rotation", "XY plane rotation:", eAngle, &CKvPRJParser::SetXYPlaneRotation},
        {"X_Scale", "X scale:", eDimensionless, &CKvPRJParser::SetXScale},
        {"Y_Scale", "Y scale:", eDimensionless, &CKvPRJParser::SetYScale},
        {"Feast", "False easting:", eLength, &CKvPRJParser::SetFalseEasting},
        {"Fnorth", "False northing:", eLength, &CKvPRJParser::SetFalseNorthing},
    },
    "Default Krovak Oblique Conformal Conic",
    "BR",
    {0.9999, 0.0, 0.0, 0.0, 0.0, 0.0, 1.0, 1.0, 500000.0, 0.0},
};

CKvKrovakProjection::CKvKrovakProjection()
    : CKvMapProjData(TypeInfo, std::string(), std::string(), std::string(), nullptr)
{
}

CKvKrovakProjection::CKvKrovakProjection(const std::string& name, const std::string& branch,
                                         const std::string& ellipsoidID)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
}

CKvKrovakProjection::CKvKrovakProjection(const std::string& name, const std::string& branch,
                                         const std::string& ellipsoidID, double scaleAtPseudoParallel,
                                         double pseudoParallel, double centerLongitude, double centerLatitude,
                                         double azimuth, double xYPlaneRotation, double xScale, double yScale,
                                         double falseEasting, double falseNorthing)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
    const double values[] = {scaleAtPseudoParallel, pseudoParallel, centerLongitude, centerLatitude, azimuth,
                             xYPlaneRotation,       xScale,         yScale,          falseEasting,   falseNorthing};
    SetParameters(values);
}

CKvKrovakProjection::CKvKrovakProjection(const std::string& name, const std::string& branch,
                                         const std::string& ellipsoidID, const double* parameters)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, parameters)
{
}

CKvProjection* CKvKrovakProjection::CreateProjection() const
{
    return new CKvKrovak(this);
}
