#include "projections/KvPolarStereographicCore.h"

#include "projections/KvConformalLatitude.h"

#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kHalfPi = kPi / 2; // 90 degrees as the engines convert them

double EccentricityTerm(double e)
{
    return std::sqrt(std::pow(1.0 + e, 1.0 + e) * std::pow(1.0 - e, 1.0 - e));
}

} // namespace

CKvPolarStereographicCore CKvPolarStereographicCore::AtPole(double a, double e, int pole, double k0, double lambda0,
                                                            double falseEasting, double falseNorthing)
{
    CKvPolarStereographicCore core;
    core.m_a = a;
    core.m_e = e;
    core.m_pole = pole >= 0 ? 1 : -1;
    core.m_k0 = k0;
    core.m_lambda0 = lambda0;
    core.m_FE = falseEasting;
    core.m_FN = falseNorthing;
    core.m_scaleTerm = 2.0 * a * k0 / EccentricityTerm(e);
    // No map on a figure that is none (an unknown ellipsoid, a <= 0, e >= 1) or with
    // a scale that is not positive: NaN for every point rather than the false
    // origin (a = 0) or a mirrored map.
    if (!(a > 0.0 && std::isfinite(a) && e >= 0.0 && e < 1.0 && k0 > 0.0 && std::isfinite(k0)))
        core.m_scaleTerm = std::nan("");
    return core;
}

CKvPolarStereographicCore CKvPolarStereographicCore::OnParallel(double a, double e, double phiC, double scale,
                                                                double lambda0, double falseEasting,
                                                                double falseNorthing)
{
    const int pole = phiC < 0.0 ? -1 : 1;
    const double phi = pole * phiC; // the parallel seen from its own pole
    double k0 = 1.0;
    if (!(std::fabs(phiC) <= kPi / 2 + 1e-15)) {
        k0 = std::nan(""); // a parallel beyond the pole
    } else if (std::fabs(phi - kPi / 2) > 1e-15) {
        const double s = std::sin(phi);
        const double mc = std::cos(phi) / std::sqrt(1.0 - e * e * s * s);
        k0 = mc * EccentricityTerm(e) / (2.0 * CKvConformalLatitude::T(phi, e));
    }
    return AtPole(a, e, pole, k0 * scale, lambda0, falseEasting, falseNorthing);
}

void CKvPolarStereographicCore::Forward(double lambda, double phi, double* x, double* y) const
{
    // The other pole lies at infinity; t there would be the tangent of the rounded
    // right angle, a made-up 1.6e16.
    if (m_pole * phi <= -kHalfPi) {
        *x = *y = std::nan("");
        return;
    }
    const double rho = m_scaleTerm * CKvConformalLatitude::T(m_pole * phi, m_e);
    const double dLambda = lambda - m_lambda0;
    *x = m_FE + rho * std::sin(dLambda);
    *y = m_FN - m_pole * rho * std::cos(dLambda);
}

void CKvPolarStereographicCore::Inverse(double x, double y, double* lambda, double* phi) const
{
    const double dx = x - m_FE, dy = y - m_FN;
    const double t = std::sqrt(dx * dx + dy * dy) / m_scaleTerm;
    // chi = pi/2 - 2 atan t, so tan chi = (1/t - t) / 2; then geodetic from conformal.
    const double tanChi = (1.0 / t - t) / 2.0;
    *phi = m_pole * std::atan(CKvConformalLatitude::Tau(tanChi, m_e));
    *lambda = m_lambda0 + std::atan2(dx, -m_pole * dy);
}

double CKvPolarStereographicCore::Convergence(double lambda) const
{
    return m_pole * std::remainder(lambda - m_lambda0, 2.0 * kPi);
}
