#ifndef KVCART_PROJECTIONS_KVSTEREOGRAPHICSNYDER_H
#define KVCART_PROJECTIONS_KVSTEREOGRAPHICSNYDER_H

#include "catalogue/KvStereographicSnyderProjection.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Stereographic on the ellipsoid after Snyder (Map Projections - A Working Manual,
// USGS Professional Paper 1395, 1987, pp. 160-161, eqs. 21-24 to 21-27 with the
// conformal latitude of eq. 3-1): the conformal latitude chi is projected
// stereographically from the conformal latitude chi1 of the origin, longitudes as
// they are, with the scale k0 at the origin. It is not the double stereographic of
// EPSG method 9809 (CKvStereographic), whose conformal sphere has its own
// longitudes and radius; the two differ by decimetres a few degrees out. With the
// origin on a pole it is the polar stereographic with the scale k0 at the pole
// (eqs. 21-33 and 21-34).
class CKvStereographicSnyder : public CKvEngine<CKvStereographicSnyder, CKvStereographicSnyderProjection>
{
public:
    explicit CKvStereographicSnyder(const CKvStereographicSnyderProjection* definition);
    // scale at the origin, central meridian, latitude of origin (degrees), FE, FN.
    CKvStereographicSnyder(const std::string& name, double k0, double centralMeridian, double originLatitude,
                           double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    double GetConvergence(double lon, double lat) const override;
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    void _init(double k0, double centralMeridian, double originLatitude, double falseEasting, double falseNorthing);

    double m_lon0, m_lat0; // the origin in degrees, as given
    double m_FE, m_FN;
    double m_sinChi1, m_cosChi1; // the conformal latitude of the origin
    double m_K;                  // 2 a k0 m1 / cos chi1: twice the conformal sphere's radius, scaled
    CKvConformalLatitude::SInverse m_inverse; // conformal to geodetic latitude
};

#endif
