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
    // Grid convergence in degrees from the series in the longitude difference
    // dLambda (radians) at latitude phi (radians), for axes a and b scaled by k0.
    static double Convergence(double scaledA, double scaledB, double dLambda, double phi);
    // Point scale factor by the series the catalogue has always used (kept as is:
    // its fourth-order term has no division by 24 and takes tan of c * phi).
    static double ScaleFactor(double k0, double scaledA, double scaledB, double dLambda, double phi);
};

#endif
