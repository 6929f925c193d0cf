#ifndef KVCART_PROJECTIONS_KVSTEREOGRAPHIC_H
#define KVCART_PROJECTIONS_KVSTEREOGRAPHIC_H

#include "catalogue/KvStereographicProjection.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Oblique stereographic on the conformal sphere: the "double" stereographic of
// the Netherlands and New Brunswick (IOGP Guidance Note 7-2, method 9809).
class CKvStereographic : public CKvEngine<CKvStereographic, CKvStereographicProjection>
{
public:
    explicit CKvStereographic(const CKvStereographicProjection* definition);
    // scale at the origin, central meridian, latitude of origin (degrees), FE, FN.
    CKvStereographic(const std::string& name, double k0, double centralMeridian, double originLatitude,
                     double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    double GetConvergence(double lon, double lat) const override { return _numericConvergence(lon, lat); }
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    void _init(double k0, double centralMeridian, double originLatitude, double falseEasting, double falseNorthing);
    double _psi(double phi) const; // the isometric latitude
    double _psiPoint(double phi) const; // the same, by the shared fast form

    double m_lon0, m_lat0; // the origin in degrees, as given
    double m_k0, m_lambda0, m_phi0, m_FE, m_FN;
    double m_R, m_n, m_halfLnC, m_chi0, m_sinChi0, m_cosChi0;
    double m_twoRk0;
    CKvConformalLatitude::SInverse m_inverse; // conformal to geodetic latitude
};

#endif
