#include "projections/KvConformalLatitude.h"

#include <cmath>

double CKvConformalLatitude::T(double phi, double e)
{
    const double es = e * std::sin(phi);
    return std::tan(0.7853981633974483 - phi / 2) * std::pow((1.0 + es) / (1.0 - es), e / 2);
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
