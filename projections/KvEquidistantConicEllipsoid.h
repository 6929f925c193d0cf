#ifndef KVCART_PROJECTIONS_KVEQUIDISTANTCONICELLIPSOID_H
#define KVCART_PROJECTIONS_KVEQUIDISTANTCONICELLIPSOID_H

#include "projections/KvConformalLatitude.h"
#include "projections/KvConicVariant.h"

#include <cstddef>

// Equidistant conic on the ellipsoid (Snyder, eqs. 16-5 to 16-11): the radius
// grows with the meridian distance, taken by Helmert's series (to 0.1 micrometre)
// and inverted through the rectifying latitude: on the fast path by the inverse
// series of that same M (CKvConformalLatitude::MeridianLatitudeSeries), in the
// general formulas by the footpoint series and Newton's step (MeridianLatitude).
class CKvEquidistantConicEllipsoid final : public CKvConicVariantT<CKvEquidistantConicEllipsoid>
{
    friend class CKvConicVariantT<CKvEquidistantConicEllipsoid>;

public:
    CKvEquidistantConicEllipsoid(double phi1, double phi2, double lambda0, double phi0, double falseEasting,
                                 double falseNorthing, const CKvEllipsoid& ellipsoid);
    KVCART_DECLARE_CONIC_FAST_CALLS(CKvEquidistantConicEllipsoid)

    // The figures of the fast paths (the inline kernels, in the single-point
    // calls and the vectorized batch loops alike): rho = a G - M(phi), and
    // back through the rectifying latitude (aG - rho) / (a m0).
    struct SFigures : SFastFigures
    {
        CKvConformalLatitude::SMeridian meridian;
        CKvConformalLatitude::SMeridianInverse footpoint;
        double aG = 0.0;
    };

private:
    double _rho(double phi) const override { return m_a * m_G - _meridian(phi); }
    double _latitude(double rho) const override;
    bool _signedRho() const override { return true; }
    double _meridian(double phi) const;

    CKvConformalLatitude::SMeridian m_meridian; // meridian distance and back
    double m_G;
    SFigures m_fast;
};

#endif
