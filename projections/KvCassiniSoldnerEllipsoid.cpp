#include "projections/KvCassiniSoldnerEllipsoid.h"
#include "projections/KvAngle.h"

#include <cmath>

namespace {
constexpr double kDeg = 3.141592653589793 / 180.0;
} // namespace

CKvCassiniSoldnerEllipsoid::CKvCassiniSoldnerEllipsoid(double lambda0, double phi0, double falseEasting,
                                                       double falseNorthing, const CKvEllipsoid& ellipsoid)
    : CKvVariantLoops(lambda0, phi0, falseEasting, falseNorthing, ellipsoid),
      m_meridian(CKvConformalLatitude::MakeMeridianE6(m_a, m_e2))
{
    m_M0 = CKvConformalLatitude::MeridianDistance(m_meridian, m_phi0);
    m_ep2 = m_e2 / (1.0 - m_e2);
}

void CKvCassiniSoldnerEllipsoid::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    _grid(lat * kDeg, CKvAngle::ReduceLongitude(lon * kDeg - m_lambda0), x, y, nullptr);
}

void CKvCassiniSoldnerEllipsoid::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    // The guidance note's inverse series from the footpoint latitude.
    const double phi1 = CKvConformalLatitude::FootpointLatitude(m_meridian, m_M0 + (y - m_FN));
    double s, c;
    CKvMathKernel::SinCosAny(phi1, s, c);
    const double invC = 1.0 / c;
    const double t = s * invC, T = t * t;
    const double w = 1.0 - m_e2 * s * s;
    // D = (x - FE) / nu, and nu / rho = w / (1 - e^2) = w (1 + e'^2).
    const double D = (x - m_FE) * std::sqrt(w) / m_a, D2 = D * D;
    double phi = phi1 - t * w * (1.0 + m_ep2) * (D2 / 2.0 - (1.0 + 3.0 * T) * D2 * D2 / 24.0);
    double dLambda = (D - T * D * D2 / 3.0 + (1.0 + 3.0 * T) * T * D * D2 * D2 / 15.0) * invC;
    // The inverse series misses the forward series, which defines the grid, by
    // 3e-8 degree 2 degrees from the central meridian and by 5e-7 degree 6 degrees
    // from it. Newton's steps on the forward with its exact Jacobian remove that:
    // one squares the error down to rounding within the usual reach of a Cassini
    // grid; a second is taken only after a step above 1e-7 rad, far from the
    // central meridian. Three at most, so that every call ends.
    for (int i = 0; i < 3; ++i) {
        double gx, gy, J[4];
        _grid(phi, dLambda, &gx, &gy, J);
        const double rx = x - gx, ry = y - gy;
        const double invDet = 1.0 / (J[0] * J[3] - J[1] * J[2]);
        const double dPhi = (rx * J[3] - ry * J[1]) * invDet, dL = (ry * J[0] - rx * J[2]) * invDet;
        if (!(std::isfinite(dPhi) && std::isfinite(dL)))
            break;
        phi += dPhi;
        dLambda += dL;
        if (!(std::fabs(dPhi) + std::fabs(dL) > 1e-7))
            break;
    }
    *lat = phi / kDeg;
    *lon = CKvAngle::ReduceLongitudeDegrees((m_lambda0 + dLambda) / kDeg);
}

void CKvCassiniSoldnerEllipsoid::_grid(double phi, double dLambda, double* x, double* y, double* jacobian) const
{
    double s, c;
    CKvMathKernel::SinCosAny(phi, s, c);
    const double t = s / c;
    const double A = dLambda * c;
    const double T = t * t;
    const double C = m_ep2 * c * c;
    const double w = 1.0 - m_e2 * s * s;
    const double nu = m_a / std::sqrt(w);
    const double A2 = A * A;
    const double K5 = 8.0 - T + 8.0 * C, K4 = 5.0 - T + 6.0 * C;
    const double X = A - T * A * A2 / 6.0 - K5 * T * A * A2 * A2 / 120.0;
    const double P = A2 / 2.0 + K4 * A2 * A2 / 24.0;
    // sin 2phi and cos 2phi for the meridian distance from sin phi and cos phi.
    const double M = CKvConformalLatitude::MeridianDistance(m_meridian, phi, 2.0 * s * c, (c - s) * (c + s));
    *x = m_FE + nu * X;
    *y = m_FN + M - m_M0 + nu * t * P;
    if (jacobian == nullptr)
        return;
    // Partial derivatives of x and y by phi and by dLambda, through A = dLambda
    // cos phi, T = tan^2 phi, C = e'^2 cos^2 phi and nu, with dA/dphi = -A t,
    // dT/dphi = 2t (1 + T), dC/dphi = -2 C t, dnu/dphi = nu e^2 s c / w, and dM/dphi
    // the meridian's radius of curvature.
    const double dA = -A * t, dT = 2.0 * t * (1.0 + T), dC = -2.0 * C * t;
    const double invW = 1.0 / w;
    const double dNu = nu * m_e2 * s * c * invW;
    const double radius = nu * (1.0 - m_e2) * invW;
    const double XA = 1.0 - T * A2 / 2.0 - K5 * T * A2 * A2 / 24.0;
    const double XT = -A * A2 / 6.0 - (K5 - T) * A * A2 * A2 / 120.0;
    const double XC = -T * A * A2 * A2 / 15.0;
    const double PA = A + K4 * A * A2 / 6.0;
    const double PT = -A2 * A2 / 24.0;
    const double PC = A2 * A2 / 4.0;
    jacobian[0] = dNu * X + nu * (XA * dA + XT * dT + XC * dC); // dx/dphi
    jacobian[1] = nu * XA * c;                                  // dx/dlambda
    jacobian[2] = radius + (dNu * t + nu * (1.0 + T)) * P + nu * t * (PA * dA + PT * dT + PC * dC); // dy/dphi
    jacobian[3] = nu * t * PA * c;                                                                  // dy/dlambda
}
