#ifndef KVCART_PROJECTIONS_KVHOTINECORE_H
#define KVCART_PROJECTIONS_KVHOTINECORE_H

#include "projections/KvConformalLatitude.h"

// Hotine oblique Mercator on the ellipsoid (IOGP Guidance Note 7-2, methods 9812
// and 9815): the conformal mapping onto the "aposphere" and the skew (u, v)
// coordinates along the centre line, then a rotation by the rectified grid angle.
// Variant A counts u from the natural origin, where the centre line meets the
// aposphere's equator; variant B from the projection centre. Angles in radians.
// Per point both ways are closed-form: the forward takes the guidance note's
// Q = H / t^B from sin phi and cos phi with one logarithm (or its series) and a
// short series of exp; the inverse's t gives the conformal latitude, from which
// Karney's series gives the geodetic one, in place of an iteration.
class CKvHotineCore
{
public:
    CKvHotineCore() = default;
    CKvHotineCore(double a, double e, double kc, double lambdaC, double phiC, double alphaC, double gammaC,
                  bool variantB, double falseEasting, double falseNorthing);

    void Forward(double lambda, double phi, double* x, double* y) const;
    void Inverse(double x, double y, double* lambda, double* phi) const;

private:
    double m_e = 0.0;
    double m_B = 0.0, m_A = 0.0, m_H = 0.0;
    double m_lnH = 0.0; // ln H, the aposphere's shift of the isometric latitude
    double m_AoverB = 0.0, m_BoverA = 0.0, m_invB = 0.0;
    double m_Bm1 = 0.0, m_Be = 0.0; // B - 1 and B e, the exponents of the forward's Q
    bool m_smallE = true;           // e within the reach of the atanh series
    double m_lnPLimit = 0.25;       // |sin phi| up to which ln P is a series
    double m_phiC = 0.0, m_sinPhiC = 0.0, m_cosPhiC = 1.0;
    CKvConformalLatitude::SInverse m_inverse; // conformal to geodetic latitude
    double m_sinGamma0 = 0.0, m_cosGamma0 = 0.0;
    double m_sinGammaC = 0.0, m_cosGammaC = 0.0;
    double m_lambda0 = 0.0;
    double m_uc = 0.0; // u of the projection centre, subtracted in variant B
    double m_FE = 0.0, m_FN = 0.0;
};

#endif
