#ifndef KVCART_PROJECTIONS_KVALBERSEQUALAREASPHERE_H
#define KVCART_PROJECTIONS_KVALBERSEQUALAREASPHERE_H

#include "projections/KvConicVariant.h"

#include <cstddef>

// Albers conic equal-area on the sphere (Snyder, eqs. 14-1 to 14-8).
class CKvAlbersEqualAreaSphere final : public CKvConicVariantT<CKvAlbersEqualAreaSphere>
{
    friend class CKvConicVariantT<CKvAlbersEqualAreaSphere>;

public:
    CKvAlbersEqualAreaSphere(double phi1, double phi2, double lambda0, double phi0, double falseEasting,
                             double falseNorthing, const CKvEllipsoid& ellipsoid);
    KVCART_DECLARE_CONIC_FAST_CALLS(CKvAlbersEqualAreaSphere)

    // The figures of the fast paths (the inline kernels, in the single-point
    // calls and the vectorized batch loops alike):
    //   rho = (a / n) sqrt(C - 2n sin phi), sin phi = C / 2n - rho^2 n / 2a^2.
    struct SFigures : SFastFigures
    {
        double C = 0.0, twoN = 0.0, aOverN = 0.0;
        double sinPhiApex = 0.0, sinPhiPerRho2 = 0.0;
    };

private:
    double _rho(double phi) const override;
    double _latitude(double rho) const override;
    bool _signedRho() const override { return false; }

    double m_C;
    SFigures m_fast;
};

#endif
