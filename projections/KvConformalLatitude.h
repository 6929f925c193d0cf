#ifndef KVCART_PROJECTIONS_KVCONFORMALLATITUDE_H
#define KVCART_PROJECTIONS_KVCONFORMALLATITUDE_H

#include "projections/KvMathKernel.h"

// The conformal latitude chi of a geodetic latitude phi, through their tangents
// (C. F. F. Karney, "Transverse Mercator with an accuracy of a few nanometers",
// J. Geodesy 85, 2011, eqs. 7-9 and 19-21):
//   tan chi = tan phi sqrt(1 + s^2) - s sqrt(1 + tan^2 phi), s = sinh(e atanh(e sin phi)),
// which is sinh of the isometric latitude asinh(tan phi) - e atanh(e sin phi).
// Square roots are taken as sqrt(1 + x^2) rather than hypot: the tangents here stay
// far below the range where that could overflow, and hypot is several times slower.
class CKvConformalLatitude
{
public:
    // t = tan(pi/4 - phi/2) ((1 + e sin phi) / (1 - e sin phi))^(e/2) = exp(-psi), with
    // psi the isometric latitude: the radius function of the conformal conics and
    // azimuthals (IOGP Guidance Note 7-2's t).
    static double T(double phi, double e);
    // psi = asinh(tan phi) - e atanh(e sin phi) = -ln T(phi, e), the isometric
    // latitude: away from the poles as atanh(sin phi) - e atanh(e sin phi), one
    // logarithm (or a series near the equator) and a short series; near them, and for eccentricities beyond the
    // series, as asinh(tan phi) - e atanh(e sin phi).
    static double Isometric(double phi, double e);
    // sin chi = tanh psi and cos chi = sech psi for the latitude chi whose isometric
    // latitude is psi (a conformal sphere's latitude from its isometric latitude),
    // from sinh and cosh: by the series of sinh for small psi (no cancellation near
    // the equator), else from one exponential; where cosh overflows, the pole.
    static KVCART_ALWAYS_INLINE void SinCosFromIsometric(double psi, double& sinChi, double& cosChi)
    {
        double sinhPsi, coshPsi;
        if (std::fabs(psi) < 0.5) {
            sinhPsi = CKvMathKernel::SinhSmall(psi);
            coshPsi = std::sqrt(1.0 + sinhPsi * sinhPsi);
        } else {
            const double E = std::exp(psi);
            sinhPsi = (E - 1.0 / E) / 2.0;
            coshPsi = (E + 1.0 / E) / 2.0;
        }
        sinChi = std::isfinite(coshPsi) ? sinhPsi / coshPsi : (psi > 0.0 ? 1.0 : -1.0);
        cosChi = 1.0 / coshPsi;
    }
    // tan chi from tan phi.
    static double TauPrime(double tau, double e);
    // tan phi from tan chi, by Newton's method on the equation above: the same root
    // that a fixed-point iteration reaches, in two or three steps to full precision.
    static double Tau(double tauPrime, double e);

    // The geodetic latitude from the conformal one in closed form: Karney (2011),
    // phi = chi + sum_k d_k sin 2k chi to n^6, whose error is about 200 n^7 rad,
    // below 1.2e-16 rad for n <= SeriesLimit, which covers every terrestrial
    // ellipsoid. The sum is kept as sin 2chi times a polynomial in cos 2chi
    // (sin 2k chi = sin 2chi U_{k-1}(cos 2chi), Chebyshev's U), one short
    // polynomial with no further sine.
    static constexpr double SeriesLimit = 0.0025;
    struct SInverse
    {
        double e = 0.0;
        bool series = false; // false: Newton's method on the exact equation
        double poly[6] = {0, 0, 0, 0, 0, 0};
    };
    static SInverse MakeInverse(double e);
    // phi - chi from sin 2chi and cos 2chi, for an inverse with series (inline, for
    // the vectorized loops).
    static KVCART_ALWAYS_INLINE double SeriesCorrection(const SInverse& inverse, double sin2Chi, double cos2Chi)
    {
        return sin2Chi * CKvMathKernel::Estrin<6>(cos2Chi, inverse.poly);
    }
    // phi in radians from tan chi, by the series or by Tau.
    static double Latitude(const SInverse& inverse, double tanChi);
};

#endif
