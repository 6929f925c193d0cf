#ifndef KVCART_PROJECTIONS_KVAZIMUTHALEQUIDISTANT_H
#define KVCART_PROJECTIONS_KVAZIMUTHALEQUIDISTANT_H

#include "catalogue/KvMethodProjection.h"
#include "geodesy/KvGeodesic.h"
#include "projections/KvConformalLatitude.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Azimuthal Equidistant: every point at its true distance from the centre, in
// its true direction. On the ellipsoid that is the shortest geodesic from the
// centre (Karney, "Algorithms for geodesics", J. Geodesy 87, 2013, and
// "Geodesics on an ellipsoid of revolution", 2011, sect. 8: the exact
// azimuthal equidistant projection, as PROJ's aeqd computes it):
//   x = s12 sin alpha1,   y = s12 cos alpha1,
// s12 and alpha1 from the inverse geodesic problem (CKvGeodesic::Inverse), and
// back by the direct problem (CKvGeodesic::Direct) along alpha1 = atan2(x, y)
// for s12 = hypot(x, y). On the sphere Snyder's closed forms (eqs. 25-2, 20-14,
// 20-15). On the ellipsoid's polar aspect the geodesics from the centre are the
// meridians: alpha1 is the longitude difference (pi - dlambda from the north
// pole) and s12 the meridian arc from the pole (Snyder, eqs. 25-16 to 25-19,
// with M of Helmert's series), so no geodesic is solved there. The map covers the earth once out to the centre's antipode; a grid
// point beyond the reach of shortest geodesics (on the sphere, a radius beyond
// pi R; on the ellipsoid, past the antipodal cut) is none, NaN. On the sphere
// the antipode's image is the whole boundary circle, NaN as well; on the
// ellipsoid its image is the end of the geodesic that the inverse problem
// chooses of the two shortest (the one leaving the centre northward).
class CKvAzimuthalEquidistant : public CKvEngine<CKvAzimuthalEquidistant, CKvMethodProjection<CKvAzimuthalEquidistant>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // parameters: longitude and latitude of the centre (degrees), false easting,
    // false northing (metres). A centre beyond the poles, a figure that is none
    // or flattened beyond 1/10, or a parameter that is not finite gives an engine
    // whose every answer is NaN.
    CKvAzimuthalEquidistant(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    // From the meridian's direction on the map; degrees, grid north to true north.
    double GetConvergence(double lon, double lat) const override;
    // The whole map: the disk of radius pi a about the false origin.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    double m_lon0, m_lat0, m_FE, m_FN;
    double m_sinPhi0, m_cosPhi0;
    bool m_sphere;
    double m_R;        // the sphere's radius, or the semi-major axis (NaN: no map)
    double m_invR;     // 1 / R
    double m_farthest; // beyond this radius the inverse checks that the geodesic is the shortest
    // The polar aspect on the ellipsoid: the meridian arc from the pole.
    bool m_polar;
    double m_poleSign; // +1 about the north pole, -1 about the south
    double m_Mp;       // the quarter meridian
    CKvConformalLatitude::SMeridian m_meridian;
    bool m_meridianKernel; // e^2 <= 0.01: the inline footpoint latitude holds
    CKvGeodesic m_geodesic;
};

#endif
