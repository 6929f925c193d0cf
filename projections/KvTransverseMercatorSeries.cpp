#include "projections/KvTransverseMercatorSeries.h"

#include <cmath>

double CKvTransverseMercatorSeries::SumSin(const double* h, double x)
{
    const double s1 = std::sin(2.0 * x), c1 = std::cos(2.0 * x);
    double s = s1, c = c1, sum = h[0] * s1;
    for (int k = 1; k < 4; ++k) {
        const double next = s * c1 + c * s1;
        c = c * c1 - s * s1;
        s = next;
        sum += h[k] * s;
    }
    return sum;
}

void CKvTransverseMercatorSeries::Apply(const double* h, double xi, double eta, double sign, double& outXi,
                                        double& outEta)
{
    Apply(h, xi, eta, std::sin(2.0 * xi), std::cos(2.0 * xi), std::sinh(2.0 * eta), std::cosh(2.0 * eta), sign, outXi,
          outEta);
}

namespace {
// e'^2 cos^2 phi, written as (1 - e^2 sin^2 phi) / (1 - e^2) - 1.
double SecondEccentricityTerm(double scaledA, double scaledB, double phi)
{
    const double e2 = (scaledA * scaledA - scaledB * scaledB) / (scaledA * scaledA);
    const double s = std::sin(phi);
    return (1.0 - e2 * s * s) / (1.0 - e2) - 1.0;
}
} // namespace

double CKvTransverseMercatorSeries::Convergence(double scaledA, double scaledB, double dLambda, double phi)
{
    const double c = SecondEccentricityTerm(scaledA, scaledB, phi);
    const double s = std::sin(phi), co = std::cos(phi), t = std::tan(phi);
    const double l2 = dLambda * dLambda;
    const double gamma =
        dLambda * s *
        (1.0 + l2 * co * co * (1.0 + 3.0 * c + 2.0 * c * c) / 3.0 + l2 * l2 * co * co * co * co * (2.0 - t * t) / 15.0);
    return gamma * 180.0 / 3.141592653589793;
}

double CKvTransverseMercatorSeries::ScaleFactor(double k0, double scaledA, double scaledB, double dLambda, double phi)
{
    const double c = SecondEccentricityTerm(scaledA, scaledB, phi);
    const double A = dLambda * std::cos(phi);
    const double t = std::tan(phi), tc = std::tan(c * phi);
    const double A2 = A * A;
    return k0 * (1.0 + A2 * ((1.0 + c) / 2.0 + A2 * (5.0 - 4.0 * t * t - 28.0 * tc * tc + 14.0 * c)));
}
