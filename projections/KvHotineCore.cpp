#include "projections/KvHotineCore.h"
#include "projections/KvAngle.h"

#include "projections/KvConformalLatitude.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;

} // namespace

CKvHotineCore::CKvHotineCore(double a, double e, double kc, double lambdaC, double phiC, double alphaC, double gammaC,
                             bool variantB, double falseEasting, double falseNorthing)
    : m_e(e), m_FE(falseEasting), m_FN(falseNorthing)
{
    const double e2 = e * e, s = std::sin(phiC), c = std::cos(phiC);
    const double sign = phiC < 0.0 ? -1.0 : 1.0;
    m_B = std::sqrt(1.0 + e2 * c * c * c * c / (1.0 - e2));
    m_A = a * m_B * kc * std::sqrt(1.0 - e2) / (1.0 - e2 * s * s);
    const double t0 = CKvConformalLatitude::T(phiC, e);
    double D = m_B * std::sqrt(1.0 - e2) / (c * std::sqrt(1.0 - e2 * s * s));
    if (D < 1.0)
        D = 1.0;
    const double F = D + std::sqrt(D * D - 1.0) * sign;
    m_H = F * std::pow(t0, m_B);
    const double G = (F - 1.0 / F) / 2.0;
    const double gamma0 = std::asin(std::sin(alphaC) / D);
    m_sinGamma0 = std::sin(gamma0);
    m_cosGamma0 = std::cos(gamma0);
    m_sinGammaC = std::sin(gammaC);
    m_cosGammaC = std::cos(gammaC);
    // With a centre line due east or west, G tan(gamma0) is 1 in exact arithmetic;
    // rounding may take it just past 1, so it is clamped like D above.
    m_lambda0 = lambdaC - std::asin(std::fmax(-1.0, std::fmin(1.0, G * std::tan(gamma0)))) / m_B;
    if (variantB) {
        // A centre line running due east or west meets the natural origin at infinity
        // along u; there the guidance note takes u of the centre as A (lambdaC - lambda0).
        if (std::fabs(std::fabs(alphaC) - kPi / 2) < 1e-12)
            m_uc = m_A * (lambdaC - m_lambda0);
        else
            // The magnitude: an azimuth beyond +-90 degrees runs the centre line the
            // other way, which cos(alphaC) < 0 would turn into a sign of u (as PROJ).
            m_uc = std::fabs((m_A / m_B) * std::atan(std::sqrt(D * D - 1.0) / std::cos(alphaC))) * sign;
    }
}

void CKvHotineCore::Forward(double lambda, double phi, double* x, double* y) const
{
    const double dl = m_B * CKvAngle::ReduceLongitude(lambda - m_lambda0);
    double U, u;
    if (std::fabs(std::fabs(phi) - kPi / 2) > 1e-10) {
        const double Q = m_H / std::pow(CKvConformalLatitude::T(phi, m_e), m_B);
        const double S = (Q - 1.0 / Q) / 2.0, Tq = (Q + 1.0 / Q) / 2.0;
        const double V = std::sin(dl);
        U = (-V * m_cosGamma0 + S * m_sinGamma0) / Tq;
        u = m_A * std::atan2(S * m_cosGamma0 + V * m_sinGamma0, std::cos(dl)) / m_B - m_uc;
    } else {
        // At a pole Q is infinite: U tends to +-sin(gamma0) and u to (A/B) phi,
        // whatever the longitude (a NaN longitude stays no point).
        U = (phi < 0.0 ? -m_sinGamma0 : m_sinGamma0) + 0.0 * dl;
        u = m_A * phi / m_B - m_uc;
    }
    const double v = m_A * std::log((1.0 - U) / (1.0 + U)) / (2.0 * m_B);
    *x = v * m_cosGammaC + u * m_sinGammaC + m_FE;
    *y = u * m_cosGammaC - v * m_sinGammaC + m_FN;
}

void CKvHotineCore::Inverse(double x, double y, double* lambda, double* phi) const
{
    const double dx = x - m_FE, dy = y - m_FN;
    const double v = dx * m_cosGammaC - dy * m_sinGammaC;
    const double u = dy * m_cosGammaC + dx * m_sinGammaC + m_uc;
    const double Q = std::exp(-m_B * v / m_A);
    const double S = (Q - 1.0 / Q) / 2.0, Tq = (Q + 1.0 / Q) / 2.0;
    const double bu = m_B * u / m_A;
    const double V = std::sin(bu);
    const double U = (V * m_cosGamma0 + S * m_sinGamma0) / Tq;
    if (std::fabs(std::fabs(U) - 1.0) < 1e-10) {
        // The poles: the isometric latitude is infinite there.
        *phi = U < 0.0 ? -kPi / 2 : kPi / 2;
        *lambda = m_lambda0;
        return;
    }
    const double t = std::pow(m_H / std::sqrt((1.0 + U) / (1.0 - U)), 1.0 / m_B);
    // chi = pi/2 - 2 atan t; then geodetic from conformal latitude.
    *phi = std::atan(CKvConformalLatitude::Tau((1.0 / t - t) / 2.0, m_e));
    *lambda = m_lambda0 - std::atan2(S * m_cosGamma0 - V * m_sinGamma0, std::cos(bu)) / m_B;
}
