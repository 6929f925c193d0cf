#ifndef KVCART_PROJECTIONS_KVTRANSVERSEMERCATORSERIES_H
#define KVCART_PROJECTIONS_KVTRANSVERSEMERCATORSERIES_H

#include "projections/KvMathKernel.h"

// What the two transverse Mercator engines share: Krüger's trigonometric series
// in (xi, eta) and the closed-form convergence and scale of a point.
class CKvTransverseMercatorSeries
{
public:
    // sum over k = 1..4 of h[k-1] sin(2k x)
    static double SumSin(const double* h, double x);
    // outXi = xi + sign * sum h[k-1] sin(2k xi) cosh(2k eta),
    // outEta = eta + sign * sum h[k-1] cos(2k xi) sinh(2k eta); the multiple angles
    // come from one evaluation of sin, cos, sinh and cosh by the addition formulas.
    static void Apply(const double* h, double xi, double eta, double sign, double& outXi, double& outEta);
    // The same, given sin 2xi, cos 2xi, sinh 2eta and cosh 2eta already. Inline, for
    // the vectorized batch loops.
    KVCART_ALWAYS_INLINE static void Apply(const double* h, double xi, double eta, double s1, double c1, double sh1, double ch1,
                      double sign, double& outXi, double& outEta)
    {
        double s = s1, c = c1, sh = sh1, ch = ch1;
        double sumXi = h[0] * s * ch, sumEta = h[0] * c * sh;
#pragma GCC unroll 4
        for (int k = 1; k < 4; ++k) {
            const double sNext = s * c1 + c * s1;
            c = c * c1 - s * s1;
            s = sNext;
            const double shNext = sh * ch1 + ch * sh1;
            ch = ch * ch1 + sh * sh1;
            sh = shNext;
            sumXi += h[k] * s * ch;
            sumEta += h[k] * c * sh;
        }
        outXi = xi + sign * sumXi;
        outEta = eta + sign * sumEta;
    }
    // Apply's sums from the same double angles, with z = 2xi + 2i eta, as the
    // complex sin z times a cubic in cos z (sin kz = sin z U_{k-1}(cos z),
    // Chebyshev's U), by Estrin's scheme: some 30 fewer operations than the
    // recurrence of the multiple angles. The coefficients fall by the third
    // flattening from one to the next, so nothing cancels. poly from h by
    // ChebyshevFromSines.
    static void ChebyshevFromSines(const double* h, double* poly)
    {
        poly[0] = h[0] - h[2];
        poly[1] = 2.0 * h[1] - 4.0 * h[3];
        poly[2] = 4.0 * h[2];
        poly[3] = 8.0 * h[3];
    }
    KVCART_ALWAYS_INLINE static void ApplyChebyshev(const double* poly, double xi, double eta, double s1, double c1,
                                                    double sh1, double ch1, double sign, double& outXi,
                                                    double& outEta)
    {
        double sumXi, sumEta;
        ChebyshevSum(poly, s1, c1, sh1, ch1, sumXi, sumEta);
        outXi = xi + sign * sumXi;
        outEta = eta + sign * sumEta;
    }
    // The complex sum itself, sin z (poly[0] + poly[1] cos z + poly[2] cos^2 z +
    // poly[3] cos^3 z) for z = U + iV from sin U, cos U, sinh V and cosh V: the
    // real part to sumU, the imaginary to sumV.
    KVCART_ALWAYS_INLINE static void ChebyshevSum(const double* poly, double sinU, double cosU, double sinhV,
                                                  double coshV, double& sumU, double& sumV)
    {
        // cos z = cos U cosh V - i sin U sinh V, sin z = sin U cosh V + i cos U sinh V
        const double cr = cosU * coshV, ci = -sinU * sinhV;
        const double sr = sinU * coshV, si = cosU * sinhV;
        const double c2r = (cr - ci) * (cr + ci), c2i = 2.0 * cr * ci;
        const double lr = poly[0] + poly[1] * cr, li = poly[1] * ci;
        const double hr = poly[2] + poly[3] * cr, hi = poly[3] * ci;
        const double pr = lr + (c2r * hr - c2i * hi), pi = li + (c2r * hi + c2i * hr);
        sumU = sr * pr - si * pi;
        sumV = sr * pi + si * pr;
    }
    // Grid convergence in degrees from the series in the longitude difference
    // dLambda (radians) at latitude phi (radians), for axes a and b scaled by k0.
    static double Convergence(double scaledA, double scaledB, double dLambda, double phi);
    // Point scale factor by the series the catalogue has always used (kept as is:
    // its fourth-order term has no division by 24 and takes tan of c * phi).
    static double ScaleFactor(double k0, double scaledA, double scaledB, double dLambda, double phi);
};

#endif
