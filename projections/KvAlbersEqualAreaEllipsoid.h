#ifndef KVCART_PROJECTIONS_KVALBERSEQUALAREAELLIPSOID_H
#define KVCART_PROJECTIONS_KVALBERSEQUALAREAELLIPSOID_H

#include "projections/KvConformalLatitude.h"
#include "projections/KvConicVariant.h"

#include <cstddef>

// Albers conic equal-area on the ellipsoid (IOGP Guidance Note 7-2, method 9822;
// Snyder, eqs. 14-9 to 14-21). The inverse goes through q, the authalic latitude's
// function, back to geodetic latitude (CKvConformalLatitude::AuthalicLatitude).
class CKvAlbersEqualAreaEllipsoid final : public CKvConicVariantT<CKvAlbersEqualAreaEllipsoid>
{
    friend class CKvConicVariantT<CKvAlbersEqualAreaEllipsoid>;

public:
    CKvAlbersEqualAreaEllipsoid(double phi1, double phi2, double lambda0, double phi0, double falseEasting,
                                double falseNorthing, const CKvEllipsoid& ellipsoid);
    KVCART_DECLARE_CONIC_FAST_CALLS(CKvAlbersEqualAreaEllipsoid)

    // The figures of the fast paths (the inline kernels, in the single-point
    // calls and the vectorized batch loops alike):
    //   rho = (a / n) sqrt(C - n q), sin beta = q / q_P = C / (n q_P) - rho^2 n / (a^2 q_P).
    struct SFigures : SFastFigures
    {
        CKvConformalLatitude::SAuthalic authalic;
        double C = 0.0, aOverN = 0.0;
        double sinBetaApex = 0.0, sinBetaPerRho2 = 0.0;
    };

private:
    double _rho(double phi) const override;
    double _latitude(double rho) const override;
    bool _signedRho() const override { return false; }
    double _q(double phi) const;

    CKvConformalLatitude::SAuthalic m_authalic; // q of a latitude and back
    double m_C;
    SFigures m_fast;
};

#endif
