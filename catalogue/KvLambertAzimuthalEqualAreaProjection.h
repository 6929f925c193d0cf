#ifndef KVCART_CATALOGUE_KVLAMBERTAZIMUTHALEQUALAREAPROJECTION_H
#define KVCART_CATALOGUE_KVLAMBERTAZIMUTHALEQUALAREAPROJECTION_H

#include "catalogue/KvMapProjData.h"

// Lambert azimuthal equal-area about a centre point.
class CKvLambertAzimuthalEqualAreaProjection : public CKvMapProjData
{
public:
    static const STypeInfo TypeInfo;

    CKvLambertAzimuthalEqualAreaProjection();
    CKvLambertAzimuthalEqualAreaProjection(const std::string& name, const std::string& branch,
                                           const std::string& ellipsoidID);
    CKvLambertAzimuthalEqualAreaProjection(const std::string& name, const std::string& branch,
                                           const std::string& ellipsoidID, double centre, double originLatitude,
                                           double falseEasting, double falseNorthing);
    // parameters: 4 values in stored order, or null for zeros
    CKvLambertAzimuthalEqualAreaProjection(const std::string& name, const std::string& branch,
                                           const std::string& ellipsoidID, const double* parameters);

    CKvProjection* CreateProjection() const override;

    double GetCentre() const { return _param(0); }
    void SetCentre(double value) { _setParam(0, value); }
    double GetOriginLatitude() const { return _param(1); }
    void SetOriginLatitude(double value) { _setParam(1, value); }
    double GetFalseEasting() const { return _param(2); }
    void SetFalseEasting(double value) { _setParam(2, value); }
    double GetFalseNorthing() const { return _param(3); }
    void SetFalseNorthing(double value) { _setParam(3, value); }
};

#endif
