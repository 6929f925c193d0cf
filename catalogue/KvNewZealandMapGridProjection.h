#ifndef KVCART_CATALOGUE_KVNEWZEALANDMAPGRIDPROJECTION_H
#define KVCART_CATALOGUE_KVNEWZEALANDMAPGRIDPROJECTION_H

#include "catalogue/KvMapProjData.h"

// The New Zealand Map Grid. The default's misspelt name is kept: catalogues refer to it.
class CKvNewZealandMapGridProjection : public CKvMapProjData
{
public:
    static const STypeInfo TypeInfo;

    CKvNewZealandMapGridProjection();
    CKvNewZealandMapGridProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID);
    CKvNewZealandMapGridProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID,
                                   double originLongitude, double originLatitude, double falseEasting,
                                   double falseNorthing);
    // parameters: 4 values in stored order, or null for zeros
    CKvNewZealandMapGridProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID,
                                   const double* parameters);

    CKvProjection* CreateProjection() const override;

    double GetOriginLongitude() const { return _param(0); }
    void SetOriginLongitude(double value) { _setParam(0, value); }
    double GetOriginLatitude() const { return _param(1); }
    void SetOriginLatitude(double value) { _setParam(1, value); }
    double GetFalseEasting() const { return _param(2); }
    void SetFalseEasting(double value) { _setParam(2, value); }
    double GetFalseNorthing() const { return _param(3); }
    void SetFalseNorthing(double value) { _setParam(3, value); }
};

#endif
