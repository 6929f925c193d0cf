#include "projections/KvLambertConic.h"

#include <cmath>

namespace {
constexpr double kQuarterPi = 0.7853981633974483;
constexpr double kHalfPi = 1.5707963267948966;
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

double CKvLambertConic::InverseLatitude(double e, double target)
{
    double phi = kHalfPi - 2.0 * std::atan(target);
    double next = phi;
    for (int i = 0; i < 100; ++i) {
        next = kHalfPi - 2.0 * std::atan(target / C(e, phi));
        if (std::fabs(next - phi) < 1e-12)
            break;
        phi = next;
    }
    return next;
}
