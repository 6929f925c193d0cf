#include "projections/KvConformalLatitude.h"

#include <cmath>

double CKvConformalLatitude::T(double phi, double e)
{
    const double es = e * std::sin(phi);
    return std::tan(0.7853981633974483 - phi / 2) * std::pow((1.0 + es) / (1.0 - es), e / 2);
}

double CKvConformalLatitude::Isometric(double phi, double e)
{
    if (std::fabs(phi) < 1.5533430342749532 && e >= 0.0 && e <= CKvMathKernel::EccentricSinhLimit) { // 89 degrees
        double s, c, versine;
        CKvMathKernel::SinCos(phi, s, c, versine);
        // atanh(sin phi): its series near the equator, where the logarithm's
        // argument would be close to 1, else 0.5 ln((1 + s) / (1 - s)).
        const double atanhS =
            std::fabs(s) < 0.1 ? CKvMathKernel::AtanhSmall(s) : 0.5 * std::log((1.0 + s) / (1.0 - s));
        return atanhS - e * CKvMathKernel::AtanhSmall(e * s);
    }
    // asinh(tan phi) keeps its precision up to the poles, where tan phi of the
    // rounded right angle is large but finite.
    return std::asinh(std::tan(phi)) - e * std::atanh(e * std::sin(phi));
}

double CKvConformalLatitude::TauPrime(double tau, double e)
{
    const double tau1 = std::sqrt(1.0 + tau * tau);
    const double sig = std::sinh(e * std::atanh(e * tau / tau1));
    return std::sqrt(1.0 + sig * sig) * tau - sig * tau1;
}

double CKvConformalLatitude::Tau(double tauPrime, double e)
{
    if (!std::isfinite(tauPrime))
        return tauPrime; // the poles (and NaN) map to themselves
    const double e2m = 1.0 - e * e;
    const double tolerance = std::sqrt(2.220446049250313e-16) / 10.0;
    double tau = tauPrime / e2m; // a start within the eccentricity's reach of the root
    for (int i = 0; i < 10; ++i) {
        const double tau1 = std::sqrt(1.0 + tau * tau);
        const double sig = std::sinh(e * std::atanh(e * tau / tau1));
        const double taupa = std::sqrt(1.0 + sig * sig) * tau - sig * tau1;
        const double dtau =
            (tauPrime - taupa) * (1.0 + e2m * tau * tau) / (e2m * tau1 * std::sqrt(1.0 + taupa * taupa));
        tau += dtau;
        if (!(std::fabs(dtau) >= tolerance * std::fmax(1.0, std::fabs(tau))))
            break;
    }
    return tau;
}

CKvConformalLatitude::SInverse CKvConformalLatitude::MakeInverse(double e)
{
    SInverse inverse;
    inverse.e = e;
    const double f = e * e / (1.0 + std::sqrt(1.0 - e * e)); // 1 - sqrt(1 - e^2), without cancellation
    const double n = f / (2.0 - f);
    if (!(e >= 0.0 && e < 1.0 && n <= SeriesLimit))
        return inverse;
    double d[6];
    d[0] = n * (2.0 + n * (-2.0 / 3 + n * (-2.0 + n * (116.0 / 45 + n * (26.0 / 45 + n * (-2854.0 / 675))))));
    d[1] = n * n * (7.0 / 3 + n * (-8.0 / 5 + n * (-227.0 / 45 + n * (2704.0 / 315 + n * (2323.0 / 945)))));
    d[2] = n * n * n * (56.0 / 15 + n * (-136.0 / 35 + n * (-1262.0 / 105 + n * (73814.0 / 2835))));
    d[3] = n * n * n * n * (4279.0 / 630 + n * (-332.0 / 35 + n * (-399572.0 / 14175)));
    d[4] = n * n * n * n * n * (4174.0 / 315 + n * (-144838.0 / 6237));
    d[5] = n * n * n * n * n * n * (601676.0 / 22275);
    inverse.poly[0] = d[0] - d[2] + d[4];
    inverse.poly[1] = 2.0 * d[1] - 4.0 * d[3] + 6.0 * d[5];
    inverse.poly[2] = 4.0 * d[2] - 12.0 * d[4];
    inverse.poly[3] = 8.0 * d[3] - 32.0 * d[5];
    inverse.poly[4] = 16.0 * d[4];
    inverse.poly[5] = 32.0 * d[5];
    inverse.series = true;
    return inverse;
}

double CKvConformalLatitude::Latitude(const SInverse& inverse, double tanChi)
{
    if (!inverse.series)
        return std::atan(Tau(tanChi, inverse.e));
    const double chi = std::atan(tanChi);
    if (!(std::fabs(tanChi) <= 1e150))
        return chi; // the poles (sin 2chi = 0) and NaN
    const double t2 = tanChi * tanChi, inv = 1.0 / (1.0 + t2);
    return chi + SeriesCorrection(inverse, 2.0 * tanChi * inv, (1.0 - t2) * inv);
}
