#ifndef KVCART_CATALOGUE_KVCASSINISOLDNERPROJECTION_H
#define KVCART_CATALOGUE_KVCASSINISOLDNERPROJECTION_H

#include "catalogue/KvMapProjData.h"

// Cassini-Soldner, the transverse equidistant cylindrical projection.
class CKvCassiniSoldnerProjection : public CKvMapProjData
{
public:
    static const STypeInfo TypeInfo;

    CKvCassiniSoldnerProjection();
    CKvCassiniSoldnerProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID);
    CKvCassiniSoldnerProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID,
                                double centralMeridian, double originLatitude, double falseEasting,
                                double falseNorthing);
    // parameters: 4 values in stored order, or null for zeros
    CKvCassiniSoldnerProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID,
                                const double* parameters);

    CKvProjection* CreateProjection() const override;

    double GetCentralMeridian() const { return _param(0); }
    void SetCentralMeridian(double value) { _setParam(0, value); }
    double GetOriginLatitude() const { return _param(1); }
    void SetOriginLatitude(double value) { _setParam(1, value); }
    double GetFalseEasting() const { return _param(2); }
    void SetFalseEasting(double value) { _setParam(2, value); }
    double GetFalseNorthing() const { return _param(3); }
    void SetFalseNorthing(double value) { _setParam(3, value); }
};

#endif
