#ifndef KVCART_PROJECTIONS_KVPOLARSTEREOGRAPHICC_H
#define KVCART_PROJECTIONS_KVPOLARSTEREOGRAPHICC_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvPolarStereographicEngine.h"

#include <string>

// Polar Stereographic (variant C), EPSG method 9830 (IOGP Guidance Note 7-2):
// true scale on the standard parallel phiF as in variant B, with the false
// origin where that parallel meets the longitude of origin rather than at the
// pole,
//   E = EF + rho sin(lambda - lambda0),   N = NF -+ rhoF +- rho cos(lambda - lambda0),
// rhoF = a mF the radius of the standard parallel, the upper signs about the
// south pole. It is variant B with the false northing NF -+ rhoF, so
// CKvPolarStereographicCore draws it.
class CKvPolarStereographicC
    : public CKvPolarStereographicEngine<CKvPolarStereographicC, CKvMethodProjection<CKvPolarStereographicC>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    // parameters: latitude of the standard parallel (its sign chooses the
    // pole), longitude of origin (degrees), easting and northing at the false
    // origin (metres). GetOrigin gives the false origin, on the standard parallel.
    CKvPolarStereographicC(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    // The core's inverse; a radius beyond every parallel (the other pole, at
    // infinity) gives NaN.
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    using CKvPolarStereographicEngine::Proj2Geo;

    // Why a set of parameters makes no map, "" when it does.
    static std::string Problem(const double* parameters);

private:
    double m_pole; // 1 north, -1 south
};

#endif
