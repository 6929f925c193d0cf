#ifndef KVCART_CATALOGUE_KVSTEREOGRAPHICPROJECTION_H
#define KVCART_CATALOGUE_KVSTEREOGRAPHICPROJECTION_H

#include "catalogue/KvMapProjData.h"

// Oblique stereographic on the conformal sphere.
class CKvStereographicProjection : public CKvMapProjData
{
public:
    static const STypeInfo TypeInfo;

    CKvStereographicProjection();
    CKvStereographicProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID);
    CKvStereographicProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID,
                               double scale, double centre, double originLatitude, double falseEasting,
                               double falseNorthing);
    // parameters: 5 values in stored order, or null for zeros
    CKvStereographicProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID,
                               const double* parameters);

    CKvProjection* CreateProjection() const override;

    double GetScale() const { return _param(0); }
    void SetScale(double value) { _setParam(0, value); }
    double GetCentre() const { return _param(1); }
    void SetCentre(double value) { _setParam(1, value); }
    double GetOriginLatitude() const { return _param(2); }
    void SetOriginLatitude(double value) { _setParam(2, value); }
    double GetFalseEasting() const { return _param(3); }
    void SetFalseEasting(double value) { _setParam(3, value); }
    double GetFalseNorthing() const { return _param(4); }
    void SetFalseNorthing(double value) { _setParam(4, value); }
};

#endif
