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
    // The isometric latitude of a latitude within IsometricKernelLimit of the
    // equator, for an eccentricity within the series' reach (e <=
    // CKvMathKernel::EccentricSinhLimit), by the inline kernels alone: the same
    // operations in a scalar call and in a vectorized loop, so that both give
    // the same bits. atanh(sin phi) is its series near the equator (where the
    // logarithm's argument would be close to 1), else half the logarithm of
    // (1 + s) / (1 - s); e atanh(e sin phi) is the short series.
    static constexpr double IsometricKernelLimit = 1.5533430342749532; // 89 degrees
    static KVCART_ALWAYS_INLINE double IsometricKernel(double phi, double e)
    {
        const double s = CKvMathKernel::SinHalfPi(phi);
        // Both evaluated, one chosen: the logarithm's table look-ups may not
        // depend on a condition in a vectorized loop.
        const double series = CKvMathKernel::AtanhSmall(s);
        const double logs = 0.5 * CKvMathKernel::Log((1.0 + s) / (1.0 - s));
        const double atanhS = std::fabs(s) < 0.1 ? series : logs;
        return atanhS - e * CKvMathKernel::AtanhSmall(e * s);
    }

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
    // The geodetic latitude (radians) of the isometric latitude psi, |psi| <=
    // LatitudeKernelLimit, for an inverse with series, by the inline kernels:
    // tan chi = sinh psi (its series for small psi, where the exponentials would
    // cancel, else from one exponential), chi = atan(tan chi), and Karney's
    // series from chi to phi with sin 2chi and cos 2chi from tan chi.
    static constexpr double LatitudeKernelLimit = 30.0;
    static KVCART_ALWAYS_INLINE double LatitudeKernel(const SInverse& inverse, double psi)
    {
        const double E = CKvMathKernel::Exp(psi);
        const double tanChi = std::fabs(psi) < 0.5 ? CKvMathKernel::SinhSmall(psi) : (E - 1.0 / E) / 2.0;
        const double t2 = tanChi * tanChi, inv = 1.0 / (1.0 + t2);
        return CKvMathKernel::Atan(tanChi) + SeriesCorrection(inverse, 2.0 * tanChi * inv, (1.0 - t2) * inv);
    }

    // phi in radians from tan chi, by the series or by Tau.
    static double Latitude(const SInverse& inverse, double tanChi);

    // The authalic latitude beta of the equal-area projections (Snyder, eqs. 3-11
    // and 3-12), through
    //   q(phi) = (1 - e^2) (sin phi / (1 - e^2 sin^2 phi) + atanh(e sin phi) / e),
    //   sin beta = q(phi) / q(pi/2),
    // and back from q: Snyder's series in e^2 (eq. 3-18), whose truncation leaves
    // up to 1.5e-8 degree, then one Newton step on q itself with
    //   dq/dphi = 2 (1 - e^2) cos phi / (1 - e^2 sin^2 phi)^2
    // (the iteration of Snyder's eq. 3-16), which squares that error away: the
    // latitude then gives back its own q to rounding, so that a point carried
    // back and forth through the forward formulas stays where it is.
    struct SAuthalic
    {
        double e = 0.0, e2 = 0.0;
        double qPole = 0.0; // q(pi/2)
        double poly[3] = {0, 0, 0}; // the series as sin 2beta times a polynomial in cos 2beta
    };
    static SAuthalic MakeAuthalic(double e);
    // The radius of the sphere of the ellipsoid's area, R_A = a sqrt(q(pi/2) / 2)
    // (Snyder, eq. 3-13): a for a sphere. ESRI's and PROJ's radius for the world
    // maps drawn on a sphere only (Miller, Van der Grinten) when the text names
    // an ellipsoid.
    static double AuthalicRadius(double a, double e);
    // q from sin phi; atanh by its series for the eccentricities of the earth.
    static double AuthalicQ(const SAuthalic& authalic, double sinPhi)
    {
        const double e = authalic.e, es = e * sinPhi;
        const double atanhES = e <= CKvMathKernel::EccentricSinhLimit ? CKvMathKernel::AtanhSmall(es) : std::atanh(es);
        return (1.0 - authalic.e2) * (sinPhi / (1.0 - es * es) + atanhES / e);
    }
    // phi in radians from q. A q beyond +-q(pi/2) by rounding alone is taken on
    // the pole; further beyond, or NaN, gives NaN.
    static double AuthalicLatitude(const SAuthalic& authalic, double q);

    // The inline kernel of q, for 0 < e <= CKvMathKernel::EccentricSinhLimit
    // (the same operations in a scalar call and in a vectorized loop). With z = e
    // sin phi, atanh(z) / e = sin phi (1 + z^2/3 + z^4/5 + ...), so that
    //   q w = (1 - e^2) sin phi (1 + w P(z^2)), w = 1 - z^2, P = 1 + z^2/3 + z^4/5 + ...,
    // P to z^16 (the first term left out below 6e-20 relatively for z^2 <= 0.01):
    // no division by e, and q one quotient.
    static KVCART_ALWAYS_INLINE double AuthalicSeriesP(double z2)
    {
        static constexpr double Series[8] = {1.0 / 3,  1.0 / 5,  1.0 / 7,  1.0 / 9,
                                             1.0 / 11, 1.0 / 13, 1.0 / 15, 1.0 / 17};
        return 1.0 + z2 * CKvMathKernel::Estrin<8>(z2, Series);
    }
    static KVCART_ALWAYS_INLINE double AuthalicQKernel(const SAuthalic& authalic, double sinPhi)
    {
        const double z2 = authalic.e2 * sinPhi * sinPhi;
        return (1.0 - authalic.e2) * sinPhi * (1.0 / (1.0 - z2) + AuthalicSeriesP(z2));
    }

    // The geodetic latitude (radians) of the authalic latitude whose sine is
    // sinBeta, |sinBeta| <= 1, for 0 < e <= CKvMathKernel::EccentricSinhLimit,
    // by the inline kernels: AuthalicLatitude's series and Newton step on q,
    // taken from the sine itself (the equal-area projections hold sin beta, and
    // q / q_P would divide it again), beta = atan2(sin beta, cos beta). phi -
    // beta stays below e^2 / 3 < SinCosSmallLimit, so that the sine and cosine
    // of phi are always those of beta turned by the correction. At the poles,
    // where q and its derivative both vanish from the step, no step is taken.
    // Beyond +-1 and NaN give NaN.
    static KVCART_ALWAYS_INLINE double AuthalicLatitudeKernel(const SAuthalic& authalic, double sinBeta)
    {
        const double cosBeta = std::sqrt((1.0 - sinBeta) * (1.0 + sinBeta));
        const double sin2Beta = 2.0 * sinBeta * cosBeta, cos2Beta = (cosBeta - sinBeta) * (cosBeta + sinBeta);
        const double delta =
            sin2Beta * (authalic.poly[0] + cos2Beta * (authalic.poly[1] + cos2Beta * authalic.poly[2]));
        const double phi = CKvMathKernel::Atan2(sinBeta, cosBeta) + delta;
        double sd, cd;
        CKvMathKernel::SinCosSmall(delta, sd, cd);
        const double s = sinBeta * cd + cosBeta * sd, c = cosBeta * cd - sinBeta * sd;
        const double w = 1.0 - authalic.e2 * s * s;
        const double step =
            (authalic.qPole * sinBeta - AuthalicQKernel(authalic, s)) * (w * w) / (2.0 * (1.0 - authalic.e2) * c);
        return phi + (std::fabs(step) <= 1e-3 ? step : 0.0);
    }

    // The geodetic latitude from the authalic one in closed form: Karney's
    // Fourier series in the third flattening n ("On auxiliary latitudes",
    // Survey Review 56, 2024, the geographic latitude from the authalic one),
    //   phi = beta + sum_{k=1..6} c_k sin 2k beta,   c_k = O(n^k),
    // to n^6. The terms left out are O(n^7) with coefficients of a few units:
    // below 10 n^7 < 7e-18 rad for e <= CKvMathKernel::EccentricSinhLimit = 0.1
    // (n <= 0.00252; long double puts the whole error there below 6e-18), which
    // covers every terrestrial ellipsoid. As for the conformal series, the sum
    // is kept as sin 2beta times a polynomial in cos 2beta. series is false
    // beyond that eccentricity (and for a sphere, where phi = beta).
    struct SAuthalicInverse
    {
        bool series = false;
        double poly[6] = {0, 0, 0, 0, 0, 0};
    };
    static SAuthalicInverse MakeAuthalicInverse(double e);
    // The geodetic latitude (radians) of the authalic latitude whose sine is
    // sinBeta, |sinBeta| <= 1, for an inverse with series, by the inline
    // kernels: beta = atan2(sin beta, cos beta), sin 2beta and cos 2beta from
    // the sine and cosine, and the series; no Newton step, one division. The
    // poles give +-pi/2 (sin 2beta = 0); beyond +-1 and NaN give NaN.
    static KVCART_ALWAYS_INLINE double AuthalicLatitudeSeries(const SAuthalicInverse& inverse, double sinBeta)
    {
        const double cosBeta = std::sqrt((1.0 - sinBeta) * (1.0 + sinBeta));
        const double sin2Beta = 2.0 * sinBeta * cosBeta, cos2Beta = (cosBeta - sinBeta) * (cosBeta + sinBeta);
        return CKvMathKernel::Atan2(sinBeta, cosBeta) + sin2Beta * CKvMathKernel::Estrin<6>(cos2Beta, inverse.poly);
    }

    // The meridian distance M(phi) = a (m0 phi + sum b_k sin 2k phi), and the
    // footpoint latitude of a distance (Snyder, eqs. 7-19 and 3-26: the rectifying
    // latitude mu = M / (a m0) and a series in e1 = n to n^4), which misses M by
    // up to 5e-9 degree; MeridianLatitude removes that with one Newton step on M,
    // dM/dphi being the meridian's radius of curvature a (1 - e^2) / (1 - e^2
    // sin^2 phi)^(3/2). M is either Helmert's series in the third flattening n to
    // n^4 (0.1 micrometre from the integral), or the series in e^2 to e^6 of
    // IOGP Guidance Note 7-2 and Snyder's eq. 3-21 (up to 1 mm from it), by which
    // the Cassini-Soldner method is defined. The sums of multiple angles are kept
    // as sin 2x times a polynomial in cos 2x (sin 2kx = sin 2x U_{k-1}(cos 2x)),
    // one sine and cosine for each.
    struct SMeridian
    {
        double a = 0.0, e2 = 0.0;
        double m0 = 0.0;                    // the rectifying latitude's scale
        double distance[4] = {0, 0, 0, 0};  // M / a - m0 phi, over sin 2phi
        double footpoint[4] = {0, 0, 0, 0}; // phi - mu, over sin 2mu
    };
    static SMeridian MakeMeridian(double a, double e2);   // Helmert's series
    static SMeridian MakeMeridianE6(double a, double e2); // the guidance note's
    // M from phi and the sine and cosine of 2 phi.
    static KVCART_ALWAYS_INLINE double MeridianDistance(const SMeridian& meridian, double phi, double sin2Phi,
                                                        double cos2Phi)
    {
        return meridian.a * (meridian.m0 * phi + sin2Phi * CKvMathKernel::Estrin<4>(cos2Phi, meridian.distance));
    }
    static double MeridianDistance(const SMeridian& meridian, double phi);
    // The footpoint latitude of M by the series alone, and polished by Newton's step.
    static double FootpointLatitude(const SMeridian& meridian, double distance);
    static double MeridianLatitude(const SMeridian& meridian, double distance);
    // MeridianLatitude by the inline kernels, for a distance within a quarter
    // meridian (|mu| <= pi/2) and e^2 <= 0.01: the footpoint's correction is then
    // below 3n/2 <= 0.004, and the sine and cosine of 2phi are always those of
    // 2mu turned by it. The Newton step divides once.
    static KVCART_ALWAYS_INLINE double MeridianLatitudeKernel(const SMeridian& meridian, double distance)
    {
        const double mu = distance / (meridian.a * meridian.m0);
        double s2Mu, c2Mu, v2Mu;
        CKvMathKernel::SinCos(2.0 * mu, s2Mu, c2Mu, v2Mu);
        const double delta = s2Mu * CKvMathKernel::Estrin<4>(c2Mu, meridian.footpoint);
        const double phi = mu + delta;
        double sd, cd;
        CKvMathKernel::SinCosSmall(2.0 * delta, sd, cd);
        const double s = s2Mu * cd + c2Mu * sd, c = c2Mu * cd - s2Mu * sd;
        // sin^2 phi = (1 - cos 2phi) / 2; the meridian's radius of curvature
        // a (1 - e^2) / w^(3/2) multiplied out of the step's denominator.
        const double w = 1.0 - meridian.e2 * (1.0 - c) / 2.0;
        return phi + (distance - MeridianDistance(meridian, phi, s, c)) * (w * std::sqrt(w)) /
                         (meridian.a * (1.0 - meridian.e2));
    }

    // The footpoint latitude as the exact inverse of a meridian series itself, in
    // closed form: with mu = M / (a m0), the difference phi(mu) - mu is odd and
    // of period pi, phi = mu + sum d_k sin 2k mu, and d_k = O(n^k). The d_k are
    // the Fourier coefficients of that inverse, taken in MakeMeridianInverse from
    // 64 samples of it (Newton's method to convergence, long double), the trig
    // polynomial being exact up to aliasing from d_58 on. Six terms are kept as
    // sin 2mu times a polynomial in cos 2mu; the coefficients d_7 to d_12 are
    // computed too and the series used only if their sum stays below
    // MeridianSeriesTail rad (with d_k shrinking by about n per order, what
    // follows is smaller still): about 1e-19 rad for the earth's ellipsoids,
    // no Newton step needed, and the latitude gives back the series' own M to
    // rounding.
    static constexpr double MeridianSeriesTail = 1e-17;
    struct SMeridianInverse
    {
        double muPerDistance = 0.0; // 1 / (a m0)
        double poly[6] = {0, 0, 0, 0, 0, 0};
        bool series = false; // whether the terms left out stay below MeridianSeriesTail
    };
    static SMeridianInverse MakeMeridianInverse(const SMeridian& meridian);
    // The latitude (radians) of the rectifying latitude mu, |mu| <= pi/2, by the
    // inline kernels: sin mu and cos mu without reduction (their errors reach phi
    // only through the correction, below 0.004 of them), those of 2mu from them.
    // Beyond pi/2 the value is meaningless; the callers flag such points.
    static KVCART_ALWAYS_INLINE double MeridianLatitudeSeries(const SMeridianInverse& inverse, double mu)
    {
        double s, c;
        CKvMathKernel::SinCosHalfPi(mu, s, c);
        const double s2Mu = 2.0 * s * c, c2Mu = (c - s) * (c + s);
        return mu + s2Mu * CKvMathKernel::Estrin<6>(c2Mu, inverse.poly);
    }
    // MeridianLatitudeKernel with the sine and cosine of the latitude, under the
    // same conditions, for the inverses that go on with them: the sine and
    // cosine of mu (|mu| <= pi/2, no reduction) turned by the footpoint's
    // correction (below 0.004: SinCosSmall) are phi's, sin 2phi and cos 2phi
    // follow from them. The Newton step is below 1e-10 rad there (the series
    // misses M by at most 5e-9 degree), so that s + c step and c - s step are
    // the sine and cosine after it (the terms left out below 1e-20).
    static KVCART_ALWAYS_INLINE double MeridianLatitudeSinCos(const SMeridian& meridian, double distance,
                                                              double& sinPhi, double& cosPhi)
    {
        const double mu = distance / (meridian.a * meridian.m0);
        double sMu, cMu;
        CKvMathKernel::SinCosHalfPi(mu, sMu, cMu);
        const double delta = 2.0 * sMu * cMu * CKvMathKernel::Estrin<4>((cMu - sMu) * (cMu + sMu), meridian.footpoint);
        const double phi = mu + delta;
        double sd, cd;
        CKvMathKernel::SinCosSmall(delta, sd, cd);
        const double s = sMu * cd + cMu * sd, c = cMu * cd - sMu * sd;
        const double w = 1.0 - meridian.e2 * s * s;
        const double step = (distance - MeridianDistance(meridian, phi, 2.0 * s * c, (c - s) * (c + s))) *
                            (w * std::sqrt(w)) / (meridian.a * (1.0 - meridian.e2));
        sinPhi = s + c * step;
        cosPhi = c - s * step;
        return phi + step;
    }

private:
    // From m0 and the coefficients b_1..b_4 of sin 2k phi in M / a.
    static SMeridian _makeMeridian(double a, double e2, double m0, const double* b);
};

#endif
