#ifndef KVCART_CATALOGUE_KVGEOGRAPHICALPROJECTION_H
#define KVCART_CATALOGUE_KVGEOGRAPHICALPROJECTION_H

#include "catalogue/KvMapProjData.h"

// Longitude/latitude on an ellipsoid: no projection parameters.
class CKvGeographicalProjection : public CKvMapProjData
{
public:
    static const STypeInfo TypeInfo;

    CKvGeographicalProjection();
    CKvGeographicalProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID);

    CKvProjection* CreateProjection() const override;
};

#endif
