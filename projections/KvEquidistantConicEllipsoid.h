#ifndef KVCART_PROJECTIONS_KVEQUIDISTANTCONICELLIPSOID_H
#define KVCART_PROJECTIONS_KVEQUIDISTANTCONICELLIPSOID_H

#include "projections/KvConformalLatitude.h"
#include "projections/KvConicVariant.h"

// Equidistant conic on the ellipsoid (Snyder, eqs. 16-5 to 16-11): the radius
// grows with the meridian distance, taken by Helmert's series (to 0.1 micrometre)
// and inverted through the rectifying latitude (CKvConformalLatitude::MeridianLatitude).
class CKvEquidistantConicEllipsoid final : public CKvConicVariantT<CKvEquidistantConicEllipsoid>
{
    friend class CKvConicVariantT<CKvEquidistantConicEllipsoid>;

public:
    CKvEquidistantConicEllipsoid(double phi1, double phi2, double lambda0, double phi0, double falseEasting,
                                 double falseNorthing, const CKvEllipsoid& ellipsoid);
    CKvVariant* Clone() const override { return new CKvEquidistantConicEllipsoid(*this); }

private:
    double _rho(double phi) const override { return m_a * m_G - _meridian(phi); }
    double _latitude(double rho) const override;
    bool _signedRho() const override { return true; }
    double _meridian(double phi) const;

    CKvConformalLatitude::SMeridian m_meridian; // meridian distance and back
    double m_G;
};

#endif
