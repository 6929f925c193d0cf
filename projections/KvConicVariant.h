#ifndef KVCART_PROJECTIONS_KVCONICVARIANT_H
#define KVCART_PROJECTIONS_KVCONICVARIANT_H

#include "projections/KvVariant.h"

// What the sphere and ellipsoid variants of the conic engines share: the cone
// (constant n, radius rho0 of the origin parallel) and the mapping between the
// polar coordinates (rho, theta) on it and the grid. Each variant supplies the
// radius of a latitude and its inverse. Angles are held in radians.
class CKvConicVariant : public CKvVariant
{
public:
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    void GetOrigin(double* x, double* y) const override;
    // A box of 3 degrees around the origin, latitudes clamped at the poles.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;
    bool GetAnonymousEllipsoid(CKvEllipsoid& ellipsoid) const override;

protected:
    // Parallels, central meridian and origin latitude in degrees; FE and FN in metres.
    CKvConicVariant(double phi1, double phi2, double lambda0, double phi0, double falseEasting, double falseNorthing,
                    const CKvEllipsoid& ellipsoid);

    // The cone's radius of latitude phi, and the latitude of a radius.
    virtual double _rho(double phi) const = 0;
    virtual double _latitude(double rho) const = 0;
    // Whether the inverse takes rho negative on a cone that opens southwards.
    virtual bool _signedRho() const = 0;
    // Called by the variant's constructor once n is known.
    void _setCone(double n, double rho0)
    {
        m_n = n;
        m_rho0 = rho0;
    }

    double m_a, m_invF;
    double m_phi1, m_phi2, m_lambda0, m_phi0, m_FE, m_FN;
    double m_n = 0.0, m_rho0 = 0.0;
};

#endif
