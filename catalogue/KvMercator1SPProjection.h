#ifndef KVCART_CATALOGUE_KVMERCATOR1SPPROJECTION_H
#define KVCART_CATALOGUE_KVMERCATOR1SPPROJECTION_H

#include "catalogue/KvMapProjData.h"

// Mercator with the scale on the equator. The default's scale is 0, as catalogues have it.
class CKvMercator1SPProjection : public CKvMapProjData
{
public:
    static const STypeInfo TypeInfo;

    CKvMercator1SPProjection();
    CKvMercator1SPProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID);
    CKvMercator1SPProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID,
                             double scale, double centre, double falseEasting, double falseNorthing);
    // parameters: 4 values in stored order, or null for zeros
    CKvMercator1SPProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID,
                             const double* parameters);

    CKvProjection* CreateProjection() const override;

    double GetScale() const { return _param(0); }
    void SetScale(double value) { _setParam(0, value); }
    double GetCentre() const { return _param(1); }
    void SetCentre(double value) { _setParam(1, value); }
    double GetFalseEasting() const { return _param(2); }
    void SetFalseEasting(double value) { _setParam(2, value); }
    double GetFalseNorthing() const { return _param(3); }
    void SetFalseNorthing(double value) { _setParam(3, value); }
};

#endif
