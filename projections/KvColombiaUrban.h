#ifndef KVCART_PROJECTIONS_KVCOLOMBIAURBAN_H
#define KVCART_PROJECTIONS_KVCOLOMBIAURBAN_H

#include "catalogue/KvMethodProjection.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Colombia Urban (IOGP Guidance Note 7-2, EPSG method 1052): the urban grids of
// the Colombian department capitals, a plane through the origin at the city's
// mean height h0, so that grid distances are ground distances there. Forward:
//   E = FE + A nu cos(phi) dLambda
//   N = FN + G rho0 [(phi - phi0) + B (nu cos(phi) dLambda)^2]
// with A = 1 + h0 / nu0, B = tan(phi0) / (2 rho0 nu0), G = 1 + h0 / rhoM, rhoM the
// meridian radius at the mid-latitude (phi0 + phi) / 2. The guidance note's
// reverse,
//   phi = phi0 + (N - FN) / D - B ((E - FE) / C)^2
//   lambda = lambda0 + (E - FE) / (C nu cos(phi))
// with C = 1 + h0 / a and D = rho0 (1 + h0 / (a (1 - e^2))), stands in for the
// forward's own radii and misses its inverse by up to a millimetre across a city
// and by tens of metres at the antipode; here it only starts the exact inverse
// (see Proj2Geo), so that every point goes there and back.
//
// Parameters: latitude and longitude of the natural origin, false easting and
// northing, projection plane origin height (metres).
class CKvColombiaUrban : public CKvEngine<CKvColombiaUrban, CKvMethodProjection<CKvColombiaUrban>>
{
public:
    static const CKvMapProjData::STypeInfo TypeInfo;

    CKvColombiaUrban(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    double GetConvergence(double lon, double lat) const override;
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;

private:
    double m_lon0, m_lat0; // the origin in degrees, as given
    double m_lambda0, m_phi0, m_FE, m_FN, m_h0;
    double m_rho0, m_A, m_B, m_C, m_D;
    double m_sin0, m_cos0; // of phi0
    double m_q;            // h0 / (a (1 - e^2)): G = 1 + q w^(3/2), w = 1 - e^2 sin^2(phiM)
    double m_invA, m_invC, m_invD, m_invRho0;
    bool m_smallQ;         // |q| <= 1e-3: the inverse's quotients by their series
    bool m_valid;
};

#endif
