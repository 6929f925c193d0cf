#ifndef KVCART_PROJECTIONS_KVNATURALEARTH_H
#define KVCART_PROJECTIONS_KVNATURALEARTH_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Natural Earth (B. Savric, B. Jenny, T. Patterson, D. Petrovic, L. Hurni, "A
// polynomial equation for the Natural Earth projection", Cartography and
// Geographic Information Science 38, 2011): a pseudocylindrical projection of
// two polynomials in the latitude, on the sphere of the ellipsoid's semi-major
// axis (as ESRI:54077 and PROJ's natearth compute it),
//   x = FE + R lambda (A0 + A1 phi^2 + A2 phi^4 + A3 phi^10 + A4 phi^12),
//   y = FN + R (B0 phi + B1 phi^3 + B2 phi^7 + B3 phi^9 + B4 phi^11).
// The inverse solves the second polynomial by Newton's method.
class CKvNaturalEarth : public CKvEngine<CKvNaturalEarth, CKvMethodProjection<CKvNaturalEarth>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // parameters: central meridian (degrees), false easting, false northing
    // (metres); any value that is not finite gives an engine whose every answer
    // is NaN.
    CKvNaturalEarth(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    // Longitudes are reduced to within 180 degrees of the central meridian.
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    // NaN outside the map's outline (beyond the pole lines or the outer meridians).
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    // From the polynomials' derivatives: atan of lambda l'(phi) / m'(phi).
    double GetConvergence(double lon, double lat) const override;
    // The whole map: 180 degrees either side of the central meridian, pole to pole.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    double m_lon0, m_FE, m_FN;
    double m_R; // the sphere's radius, the semi-major axis (NaN: no map)
    double m_invR; // 1 / m_R
};

#endif
