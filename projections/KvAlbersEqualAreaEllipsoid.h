#ifndef KVCART_PROJECTIONS_KVALBERSEQUALAREAELLIPSOID_H
#define KVCART_PROJECTIONS_KVALBERSEQUALAREAELLIPSOID_H

#include "projections/KvConformalLatitude.h"
#include "projections/KvConicVariant.h"

// Albers conic equal-area on the ellipsoid (IOGP Guidance Note 7-2, method 9822;
// Snyder, eqs. 14-9 to 14-21). The inverse goes through q, the authalic latitude's
// function, back to geodetic latitude (CKvConformalLatitude::AuthalicLatitude).
class CKvAlbersEqualAreaEllipsoid final : public CKvConicVariantT<CKvAlbersEqualAreaEllipsoid>
{
    friend class CKvConicVariantT<CKvAlbersEqualAreaEllipsoid>;

public:
    CKvAlbersEqualAreaEllipsoid(double phi1, double phi2, double lambda0, double phi0, double falseEasting,
                                double falseNorthing, const CKvEllipsoid& ellipsoid);
    CKvVariant* Clone() const override { return new CKvAlbersEqualAreaEllipsoid(*this); }

private:
    double _rho(double phi) const override;
    double _latitude(double rho) const override;
    bool _signedRho() const override { return false; }
    double _q(double phi) const;

    CKvConformalLatitude::SAuthalic m_authalic; // q of a latitude and back
    double m_C;
};

#endif
