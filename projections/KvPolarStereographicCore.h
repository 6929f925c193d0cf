#ifndef KVCART_PROJECTIONS_KVPOLARSTEREOGRAPHICCORE_H
#define KVCART_PROJECTIONS_KVPOLARSTEREOGRAPHICCORE_H

// Polar stereographic on the ellipsoid about one pole (IOGP Guidance Note 7-2,
// methods 9810 and 9829), shared by the polar engines. The south pole is handled
// as the mirror image of the north pole. Angles in radians.
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
    double m_a = 0.0, m_e = 0.0;
    int m_pole = 1;
    double m_k0 = 0.0;
    double m_lambda0 = 0.0, m_FE = 0.0, m_FN = 0.0;
    double m_scaleTerm = 0.0; // 2 a k0 / sqrt((1+e)^(1+e) (1-e)^(1-e))
};

#endif
