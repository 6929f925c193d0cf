#ifndef KVCART_PROJECTIONS_KVPOINTVARIANT_H
#define KVCART_PROJECTIONS_KVPOINTVARIANT_H

#include "projections/KvVariant.h"

// What the variants of the engines defined by one origin point share: the origin,
// the false origin, the figure, the default area and the anonymous ellipsoid.
// Angles are held in radians.
class CKvPointVariant : public CKvVariant
{
public:
    void GetOrigin(double* x, double* y) const override;
    // A box of 3 degrees around the origin, clamped at the poles and at +-180.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;
    bool GetAnonymousEllipsoid(CKvEllipsoid& ellipsoid) const override;

protected:
    // Longitude and latitude of the origin in degrees; FE and FN in metres.
    CKvPointVariant(double lambda0, double phi0, double falseEasting, double falseNorthing,
                    const CKvEllipsoid& ellipsoid);

    double m_a, m_invF, m_e, m_e2;
    double m_lon0, m_lat0; // the origin in degrees, as given
    double m_lambda0, m_phi0, m_FE, m_FN;
};

#endif
