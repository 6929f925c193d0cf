#ifndef KVCART_PROJECTIONS_KVEQUIDISTANTCONICSPHERE_H
#define KVCART_PROJECTIONS_KVEQUIDISTANTCONICSPHERE_H

#include "projections/KvConicVariant.h"

#include <cstddef>

// Equidistant conic on the sphere (Snyder, eqs. 16-1 to 16-4).
class CKvEquidistantConicSphere final : public CKvConicVariantT<CKvEquidistantConicSphere>
{
    friend class CKvConicVariantT<CKvEquidistantConicSphere>;

public:
    CKvEquidistantConicSphere(double phi1, double phi2, double lambda0, double phi0, double falseEasting,
                              double falseNorthing, const CKvEllipsoid& ellipsoid);
    KVCART_DECLARE_CONIC_FAST_CALLS(CKvEquidistantConicSphere)

    // The figures of the fast paths (the inline kernels, in the single-point
    // calls and the vectorized batch loops alike): rho = a (G - phi), and
    // back in degrees, G 180 / pi - rho 180 / (pi a) with the sign of n.
    struct SFigures : SFastFigures
    {
        double a = 0.0, G = 0.0;
        double GDegrees = 0.0, degreesPerDistance = 0.0;
    };

private:
    double _rho(double phi) const override { return m_a * (m_G - phi); }
    double _latitude(double rho) const override { return m_G - rho / m_a; }
    bool _signedRho() const override { return true; }

    double m_G;
    SFigures m_fast;
};

#endif
