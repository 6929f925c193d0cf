#ifndef KVCART_PROJECTIONS_KVHOTINECORE_H
#define KVCART_PROJECTIONS_KVHOTINECORE_H

// Hotine oblique Mercator on the ellipsoid (IOGP Guidance Note 7-2, methods 9812
// and 9815): the conformal mapping onto the "aposphere" and the skew (u, v)
// coordinates along the centre line, then a rotation by the rectified grid angle.
// Variant A counts u from the natural origin, where the centre line meets the
// aposphere's equator; variant B from the projection centre. Angles in radians.
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
    double m_sinGamma0 = 0.0, m_cosGamma0 = 0.0;
    double m_sinGammaC = 0.0, m_cosGammaC = 0.0;
    double m_lambda0 = 0.0;
    double m_uc = 0.0; // u of the projection centre, subtracted in variant B
    double m_FE = 0.0, m_FN = 0.0;
};

#endif
