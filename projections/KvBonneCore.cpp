#include "projections/KvBonneCore.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
} // namespace

CKvBonneCore::CKvBonneCore(double a, double e2, double phi0)
    : m_a(a), m_e2(e2), m_meridian(CKvConformalLatitude::MakeMeridian(a, e2))
{
    m_usable = a > 0.0 && std::isfinite(a) && e2 >= 0.0 && e2 < 1.0 && std::fabs(phi0) <= kPi / 2.0 && phi0 != 0.0;
    if (!m_usable) {
        m_C = m_M0 = m_Mp = std::nan("");
        return;
    }
    double s, c;
    CKvMathKernel::SinCosAny(phi0, s, c);
    // At a pole cos phi0 comes out as 6e-17, not 0: Werner's apex on the pole.
    if (std::fabs(phi0) == kPi / 2.0)
        c = 0.0;
    m_C = a * c / std::sqrt(1.0 - e2 * s * s) / s;
    m_M0 = CKvConformalLatitude::MeridianDistance(m_meridian, phi0);
    m_Mp = CKvConformalLatitude::MeridianDistance(m_meridian, kPi / 2.0);
    m_sign = phi0 > 0.0 ? 1.0 : -1.0;
}

void CKvBonneCore::Forward(double phi, double dLambda, double* x, double* y) const
{
    double s, c;
    CKvMathKernel::SinCosAny(phi, s, c);
    if (std::fabs(phi) == kPi / 2.0)
        c = 0.0;
    const double m = c / std::sqrt(1.0 - m_e2 * s * s);
    const double M = CKvConformalLatitude::MeridianDistance(m_meridian, phi, 2.0 * s * c, (c - s) * (c + s));
    const double rho = m_C + m_M0 - M;
    // At the apex itself (rho = 0, the pole of a Werner map) T has no value
    // and the point is the apex.
    const double T = rho != 0.0 ? m_a * m * dLambda / rho : 0.0;
    double sT, cT;
    CKvMathKernel::SinCosAny(T, sT, cT);
    *x = rho * sT;
    *y = m_C - rho * cT;
}

bool CKvBonneCore::Inverse(double x, double y, double* phi, double* dLambda) const
{
    const double dy = m_C - y;
    // x^2 + dy^2 overflows only for grid points far beyond the map, which the
    // meridian distance's check below refuses all the same.
    const double rho = m_sign * std::sqrt(x * x + dy * dy);
    const double M = m_C + m_M0 - rho;
    if (!(std::fabs(M) <= m_Mp * (1.0 + 1e-15))) {
        *phi = *dLambda = std::nan("");
        return false;
    }
    // On the sphere M = a phi: the latitude needs no footpoint series.
    const double footpoint = m_e2 == 0.0 ? M / m_a : CKvConformalLatitude::MeridianLatitude(m_meridian, M);
    const double p = std::fmax(-kPi / 2.0, std::fmin(kPi / 2.0, footpoint));
    double s, c;
    CKvMathKernel::SinCosAny(p, s, c);
    const double am = m_e2 == 0.0 ? m_a * c : m_a * c / std::sqrt(1.0 - m_e2 * s * s);
    double d = 0.0;
    // On a pole (m = 0) every longitude is the point: the central meridian's.
    if (std::fabs(M) < m_Mp * (1.0 - 1e-15)) {
        const double angle = m_sign > 0.0 ? std::atan2(x, dy) : std::atan2(-x, -dy);
        d = rho * angle / am;
    }
    if (!(std::fabs(d) <= kPi * (1.0 + 1e-12))) {
        *phi = *dLambda = std::nan("");
        return false;
    }
    *phi = p;
    *dLambda = d;
    return true;
}

void CKvBonneCore::MeridianDerivative(double phi, double dLambda, double* dx, double* dy) const
{
    double s, c;
    CKvMathKernel::SinCosAny(phi, s, c);
    if (std::fabs(phi) == kPi / 2.0)
        c = 0.0;
    const double w2 = 1.0 - m_e2 * s * s, w = std::sqrt(w2);
    const double m = c / w;
    const double dm = -(1.0 - m_e2) * s / (w2 * w);
    const double radius = m_a * (1.0 - m_e2) / (w2 * w); // dM/dphi
    const double M = CKvConformalLatitude::MeridianDistance(m_meridian, phi, 2.0 * s * c, (c - s) * (c + s));
    const double rho = m_C + m_M0 - M;
    const double dRho = -radius;
    if (rho == 0.0) {
        // The apex of a Werner map: a m / rho tends to 1 towards it, so that the
        // meridian meets it at the angle T = +-(lambda - lambda0).
        const double T = m_sign * dLambda;
        *dx = dRho * std::sin(T);
        *dy = -dRho * std::cos(T);
        return;
    }
    const double T = m_a * m * dLambda / rho;
    const double dT = m_a * dLambda * (dm * rho - m * dRho) / (rho * rho);
    double sT, cT;
    CKvMathKernel::SinCosAny(T, sT, cT);
    *dx = dRho * sT + rho * cT * dT;
    *dy = -dRho * cT + rho * sT * dT;
}
