#ifndef KVCART_PROJECTIONS_KVPOLARSTEREOGRAPHICCORE_H
#define KVCART_PROJECTIONS_KVPOLARSTEREOGRAPHICCORE_H

#include "projections/KvConformalLatitude.h"
#include "projections/KvMathKernel.h"

// Polar stereographic on the ellipsoid about one pole (IOGP Guidance Note 7-2,
// methods 9810 and 9829), shared by the polar engines. The south pole is handled
// as the mirror image of the north pole. Angles in radians.
//
// The guidance note's
//   t = tan(pi/4 - phi/2) ((1 + e sin phi) / (1 - e sin phi))^(e/2),  rho = 2 a k0 t / sqrt((1+e)^(1+e) (1-e)^(1-e))
// is taken with h = pi/4 - phi/2, the half co-latitude: tan h from the sine and
// cosine of h (the inline kernel), sin phi = cos 2h from the same two, and the
// eccentricity factor as one polynomial in e sin phi for the eccentricities of
// the earth (pow beyond them). The inverse takes t from the radius, the
// conformal latitude chi = pi/2 - 2 atan t, and the geodetic latitude by
// Karney's series in the third flattening (CKvConformalLatitude::SeriesCorrection),
// sin 2chi and cos 2chi being rational in t; no iteration. Figures beyond the
// series keep Newton's method on the conformal latitude (CKvConformalLatitude::Tau).
class CKvPolarStereographicCore
{
public:
    CKvPolarStereographicCore() = default;
    // Variant A: the scale k0 at the pole (north when pole > 0).
    static CKvPolarStereographicCore AtPole(double a, double e, int pole, double k0, double lambda0,
                                            double falseEasting, double falseNorthing);
    // Variant B: true scale on the standard parallel phiC, on the pole of its sign
    // (north for 0); scale multiplies the scale that results.
    static CKvPolarStereographicCore OnParallel(double a, double e, double phiC, double scale, double lambda0,
                                                double falseEasting, double falseNorthing);

    void Forward(double lambda, double phi, double* x, double* y) const;
    void Inverse(double x, double y, double* lambda, double* phi) const;
    // Grid convergence in radians: the longitude difference, of the pole's sign.
    double Convergence(double lambda) const;
    // The scale factor at the pole.
    double ScaleAtPole() const { return m_k0; }
    int Pole() const { return m_pole; }

private:
    // The general formulas, for a figure beyond the series and for the points the
    // closed forms leave out (t not finite or huge, NaN).
    void _inverseGeneral(double dx, double dy, double* lambda, double* phi) const;

    double m_a = 0.0, m_e = 0.0;
    int m_pole = 1;
    double m_sign = 1.0; // m_pole as a double
    double m_k0 = 0.0;
    double m_lambda0 = 0.0, m_FE = 0.0, m_FN = 0.0;
    double m_scaleTerm = 0.0; // 2 a k0 / sqrt((1+e)^(1+e) (1-e)^(1-e))
    static constexpr int kExpTerms = 16;
    bool m_expSeries = false; // e within CKvMathKernel::EccentricSinhLimit
    double m_exp[kExpTerms] = {}; // ((1 + z) / (1 - z))^(e/2) = sum m_exp[k] z^k
    CKvConformalLatitude::SInverse m_inverse; // conformal to geodetic latitude
};

#endif
