#ifndef KVCART_CATALOGUE_KVSTEREOGRAPHICSNYDERPROJECTION_H
#define KVCART_CATALOGUE_KVSTEREOGRAPHICSNYDERPROJECTION_H

#include "catalogue/KvMapProjData.h"

// Snyder's stereographic on the ellipsoid (the conformal latitude projected from
// the origin's), what ESRI calls "Stereographic"; the same parameters as the
// oblique (double) stereographic, a different method.
class CKvStereographicSnyderProjection : public CKvMapProjData
{
public:
    static const STypeInfo TypeInfo;

    CKvStereographicSnyderProjection();
    CKvStereographicSnyderProjection(const std::string& name, const std::string& branch,
                                     const std::string& ellipsoidID);
    CKvStereographicSnyderProjection(const std::string& name, const std::string& branch,
                                     const std::string& ellipsoidID, double scale, double centre,
                                     double originLatitude, double falseEasting, double falseNorthing);
    // parameters: 5 values in stored order, or null for zeros
    CKvStereographicSnyderProjection(const std::string& name, const std::string& branch,
                                     const std::string& ellipsoidID, const double* parameters);

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
