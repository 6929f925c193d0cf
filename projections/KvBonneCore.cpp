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
    m_kernel = e2 <= 0.01;
    m_sphere = e2 == 0.0;
    m_invA = 1.0 / a;
    m_poleLimit = m_Mp * (1.0 + 1e-15);
    m_edgeLimit = m_Mp * (1.0 - 1e-15);
}

void CKvBonneCore::_forwardEllipsoid(double phi, double dLambda, double* x, double* y) const
{
    // |phi| <= pi/2 (the engines refuse other latitudes): its sine and cosine
    // need no reduction of the argument.
    double s, c;
    CKvMathKernel::SinCosHalfPi(phi, s, c);
    if (std::fabs(phi) == kPi / 2.0)
        c = 0.0;
    const double M = CKvConformalLatitude::MeridianDistance(m_meridian, phi, 2.0 * s * c, (c - s) * (c + s));
    const double rho = m_C + m_M0 - M;
    // T = a m (lambda - lambda0) / rho with m = cos phi / sqrt(1 - e^2 sin^2 phi),
    // one quotient. rho - a m falls with phi (d rho / dphi is minus the
    // meridian's radius of curvature, d(a m) / dphi that radius times -sin phi)
    // down to rho >= 0 at the far pole, so rho >= a m and |T| <= |lambda -
    // lambda0| <= pi: within the sine kernel's range. At the apex itself (rho =
    // 0, the pole of a Werner map) T has no value and the point is the apex.
    const double den = rho * std::sqrt(1.0 - m_e2 * s * s);
    const double T = rho != 0.0 ? m_a * c * dLambda / den : 0.0;
    // Within pi/4 (every map but the far reaches of a world map) the sine and
    // 1 - cos T need no reduction; y = M - M0 + rho (1 - cos T) keeps its
    // precision where the cone's radius is large.
    double sT, vT;
    if (std::fabs(T) <= kPi / 4.0) {
        CKvMathKernel::SinVersineQuarterPi(T, sT, vT);
    } else {
        double cT;
        CKvMathKernel::SinCos(T, sT, cT, vT);
    }
    *x = rho * sT;
    *y = (M - m_M0) + rho * vT;
}

bool CKvBonneCore::_inverseGeneral(double x, double y, double* phi, double* dLambda) const
{
    const double dy = m_C - y;
    // x^2 + dy^2 overflows only for grid points far beyond the map, which the
    // meridian distance's check below refuses all the same.
    const double rho = m_sign * std::sqrt(x * x + dy * dy);
    const double M = m_C + m_M0 - rho;
    if (!(std::fabs(M) <= m_poleLimit)) {
        *phi = *dLambda = std::nan("");
        return false;
    }
    // For the earth's figures the footpoint, its Newton step and the
    // latitude's sine and cosine come from the inline kernel.
    double footpoint, s, c;
    if (m_sphere) {
        footpoint = M * m_invA;
        CKvMathKernel::SinCosHalfPi(footpoint, s, c);
    } else if (m_kernel) {
        footpoint = CKvConformalLatitude::MeridianLatitudeSinCos(m_meridian, M, s, c);
    } else {
        footpoint = CKvConformalLatitude::MeridianLatitude(m_meridian, M);
        CKvMathKernel::SinCosAny(footpoint, s, c);
    }
    // Rounding may carry the footpoint a hair beyond a pole (M was checked finite).
    const double p = footpoint > kPi / 2.0 ? kPi / 2.0 : footpoint < -kPi / 2.0 ? -kPi / 2.0 : footpoint;
    double d = 0.0;
    // On a pole (m = 0) every longitude is the point: the central meridian's.
    // Elsewhere rho is bounded by the check of M above, within Atan2's range;
    // lambda - lambda0 = rho angle / (a m), a m = a cos phi / sqrt(1 - e^2 sin^2 phi).
    if (std::fabs(M) < m_edgeLimit)
        d = rho * CKvMathKernel::Atan2(m_sign * x, m_sign * dy) * std::sqrt(1.0 - m_e2 * s * s) / (m_a * c);
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
