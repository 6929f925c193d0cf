#ifndef KVCART_CATALOGUE_KVPSEUDOMERCATORPROJECTION_H
#define KVCART_CATALOGUE_KVPSEUDOMERCATORPROJECTION_H

#include "catalogue/KvMapProjData.h"

// Popular Visualisation Pseudo Mercator (EPSG method 1024, Web Mercator): the
// spherical Mercator of the ellipsoid's semi-major axis on geodetic latitudes,
// with the parameters of the registry: the longitude and latitude of the natural
// origin (the latitude is the equator) and the false origin.
class CKvPseudoMercatorProjection : public CKvMapProjData
{
public:
    static const STypeInfo TypeInfo;

    CKvPseudoMercatorProjection();
    CKvPseudoMercatorProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID);
    CKvPseudoMercatorProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID,
                                double centre, double originLatitude, double falseEasting, double falseNorthing);
    // parameters: 4 values in stored order, or null for zeros
    CKvPseudoMercatorProjection(const std::string& name, const std::string& branch, const std::string& ellipsoidID,
                                const double* parameters);

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
