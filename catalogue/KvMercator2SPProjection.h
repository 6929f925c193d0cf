#ifndef KVCART_CATALOGUE_KVMERCATOR2SPPROJECTION_H
#define KVCART_CATALOGUE_KVMERCATOR2SPPROJECTION_H

#include "catalogue/KvMapProjData.h"

// Mercator with a standard parallel of true scale. Older catalogues call the section MERCATOR_PROJECTION.
class CKvMercator2SPProjection : public CKvMapProjData
{
public:
    static const STypeInfo TypeInfo;

    CKvMercator2SPProjection();
    CKvMercator2SPProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID);
    CKvMercator2SPProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID,
                             double parallel1, double centre, double falseEasting, double falseNorthing);
    // parameters: 4 values in stored order, or null for zeros
    CKvMercator2SPProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID,
                             const double* parameters);

    CKvProjection* CreateProjection() const override;

    double GetParallel1() const { return _param(0); }
    void SetParallel1(double value) { _setParam(0, value); }
    double GetCentre() const { return _param(1); }
    void SetCentre(double value) { _setParam(1, value); }
    double GetFalseEasting() const { return _param(2); }
    void SetFalseEasting(double value) { _setParam(2, value); }
    double GetFalseNorthing() const { return _param(3); }
    void SetFalseNorthing(double value) { _setParam(3, value); }
};

#endif
