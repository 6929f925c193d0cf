#ifndef KVCART_PROJECTIONS_KVALBERSEQUALAREASPHERE_H
#define KVCART_PROJECTIONS_KVALBERSEQUALAREASPHERE_H

#include "projections/KvConicVariant.h"

// Albers conic equal-area on the sphere (Snyder, eqs. 14-1 to 14-8).
class CKvAlbersEqualAreaSphere final : public CKvConicVariantT<CKvAlbersEqualAreaSphere>
{
    friend class CKvConicVariantT<CKvAlbersEqualAreaSphere>;

public:
    CKvAlbersEqualAreaSphere(double phi1, double phi2, double lambda0, double phi0, double falseEasting,
                             double falseNorthing, const CKvEllipsoid& ellipsoid);
    CKvVariant* Clone() const override { return new CKvAlbersEqualAreaSphere(*this); }

private:
    double _rho(double phi) const override;
    double _latitude(double rho) const override;
    bool _signedRho() const override { return false; }

    double m_C;
};

#endif
