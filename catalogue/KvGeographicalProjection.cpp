#include "catalogue/KvGeographicalProjection.h"

#include "projections/KvGeographical.h"
#include "wkt/KvPRJParser.h"

const CKvMapProjData::STypeInfo CKvGeographicalProjection::TypeInfo = {
    eGeographical,
    "GEOGRAPHICAL_PROJECTION",
    nullptr,
    "Geographical",
    "Geographical",
    0,
    {},
    "Default Geographical",
    "WE",
    {},
};

CKvGeographicalProjection::CKvGeographicalProjection()
    : CKvMapProjData(TypeInfo, std::string(), std::string(), std::string(), nullptr)
{
}

CKvGeographicalProjection::CKvGeographicalProjection(const std::string& name, const std::string& branch,
                                                     const std::string& ellipsoidID)
    : CKvMapProjData(TypeInfo, name, branch, ellipsoidID, nullptr)
{
}

CKvProjection* CKvGeographicalProjection::CreateProjection() const
{
    return new CKvGeographical(this);
}
