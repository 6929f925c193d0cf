#include "projections/KvLambertConic.h"

#include "projections/KvConformalLatitude.h"

#include <cmath>

namespace {
constexpr double kQuarterPi = 0.7853981633974483;
} // namespace

double CKvLambertConic::T(double phi)
{
    return std::tan(kQuarterPi - phi / 2.0);
}

double CKvLambertConic::C(double e, double phi)
{
    const double s = e * std::sin(phi);
    return std::pow((1.0 + s) / (1.0 - s), e / 2.0);
}

double CKvLambertConic::InverseLatitude(const CKvConformalLatitude::SInverse& inverse, double target)
{
    // t(phi) c(phi) = exp(-psi) with psi the isometric latitude, and sinh psi is the
    // tangent of the conformal latitude; the geodetic latitude follows from it by
    // Karney's series (or Newton's method on the same equation for figures beyond
    // the series' reach, the root the guidance note's iteration converges to).
    const double tanChi = (1.0 / target - target) / 2.0; // sinh(-ln target)
    return CKvConformalLatitude::Latitude(inverse, tanChi);
}
