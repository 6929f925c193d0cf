#ifndef KVCART_CATALOGUE_KVOBLIQUEMERCATORPROJECTION_H
#define KVCART_CATALOGUE_KVOBLIQUEMERCATORPROJECTION_H

#include "catalogue/KvMapProjData.h"

// Hotine oblique Mercator with the false origin at the projection centre.
class CKvObliqueMercatorProjection : public CKvMapProjData
{
public:
    static const STypeInfo TypeInfo;

    CKvObliqueMercatorProjection();
    CKvObliqueMercatorProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID);
    CKvObliqueMercatorProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID,
                                 double scale, double centerLongitude, double centerLatitude, double azimuth,
                                 double falseEasting, double falseNorthing);
    // parameters: 6 values in stored order, or null for zeros
    CKvObliqueMercatorProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID,
                                 const double* parameters);

    CKvProjection* CreateProjection() const override;

    double GetScale() const { return _param(0); }
    void SetScale(double value) { _setParam(0, value); }
    double GetCenterLongitude() const { return _param(1); }
    void SetCenterLongitude(double value) { _setParam(1, value); }
    double GetCenterLatitude() const { return _param(2); }
    void SetCenterLatitude(double value) { _setParam(2, value); }
    double GetAzimuth() const { return _param(3); }
    void SetAzimuth(double value) { _setParam(3, value); }
    double GetFalseEasting() const { return _param(4); }
    void SetFalseEasting(double value) { _setParam(4, value); }
    double GetFalseNorthing() const { return _param(5); }
    void SetFalseNorthing(double value) { _setParam(5, value); }
};

#endif
