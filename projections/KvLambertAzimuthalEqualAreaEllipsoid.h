#ifndef KVCART_PROJECTIONS_KVLAMBERTAZIMUTHALEQUALAREAELLIPSOID_H
#define KVCART_PROJECTIONS_KVLAMBERTAZIMUTHALEQUALAREAELLIPSOID_H

#include "projections/KvConformalLatitude.h"
#include "projections/KvPointVariant.h"

// Lambert azimuthal equal-area on the ellipsoid (IOGP Guidance Note 7-2, method
// 9820), oblique and polar aspects, through the authalic latitude. The authalic
// latitude is carried as its sine q / q_P and cosine, and the arc from the centre
// of the inverse as the sine of its half, rho / 2R_q: the only inverse
// trigonometric functions are the longitude's atan2 and the latitude's asin.
class CKvLambertAzimuthalEqualAreaEllipsoid final : public CKvVariantLoops<CKvLambertAzimuthalEqualAreaEllipsoid, CKvPointVariant>
{
public:
    using CKvProjInterface::Geo2Proj;
    using CKvProjInterface::Proj2Geo;
    CKvLambertAzimuthalEqualAreaEllipsoid(double lambda0, double phi0, double falseEasting, double falseNorthing,
                                          const CKvEllipsoid& ellipsoid);
    CKvVariant* Clone() const override { return new CKvLambertAzimuthalEqualAreaEllipsoid(*this); }
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;

private:
    CKvConformalLatitude::SAuthalic m_authalic; // q of a latitude and back
    int m_pole; // 1 or -1 for the polar aspects, 0 for the oblique one
    double m_qP, m_sinBeta0, m_cosBeta0, m_Rq, m_D;
    // Products and reciprocals of the above, for the per-point formulas.
    double m_invQP, m_RqD, m_RqOverD, m_D2, m_invD2, m_inv4Rq2, m_invRq, m_invA2qP, m_DRqCosBeta0, m_D2SinBeta0;
};

#endif
