#ifndef KVCART_PROJECTIONS_KVEQUIDISTANTCONICELLIPSOID_H
#define KVCART_PROJECTIONS_KVEQUIDISTANTCONICELLIPSOID_H

#include "projections/KvConicVariant.h"

// Equidistant conic on the ellipsoid (Snyder, eqs. 16-5 to 16-11): the radius
// grows with the meridian distance, inverted through the rectifying latitude.
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

    double m_e2;
    double m_M[4]; // meridian distance series
    double m_F[4]; // footpoint latitude series
    double m_G;
};

#endif
