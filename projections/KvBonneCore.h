#ifndef KVCART_PROJECTIONS_KVBONNECORE_H
#define KVCART_PROJECTIONS_KVBONNECORE_H

#include "projections/KvConformalLatitude.h"
#include "projections/KvMathKernel.h"

#include <cmath>

// The mathematics of the Bonne projection (IOGP Guidance Note 7-2, methods 9827
// and 9828; Snyder pp. 138-140), shared by the north and the south orientated
// grids, which differ only in the direction of their axes. The parallels are
// concentric circles about the apex of the cone tangent at phi0, spaced at their
// true meridian distances; every parallel keeps its true length:
//   m = cos phi / sqrt(1 - e^2 sin^2 phi),   rho = a m0 / sin phi0 + M0 - M,
//   T = a m (lambda - lambda0) / rho,
//   x = rho sin T,   y = a m0 / sin phi0 - rho cos T,
// and back, rho = +-sqrt(x^2 + (a m0 / sin phi0 - y)^2) with the sign of phi0,
// phi the latitude of the meridian distance a m0 / sin phi0 + M0 - rho, and
// lambda - lambda0 = rho atan2(x, a m0 / sin phi0 - y) / (a m) (both arguments
// negated for a southern phi0). On the sphere e = 0. phi0 = 0 has its apex at
// infinity (the limit is the sinusoidal projection) and makes no map here, as
// in PROJ; phi0 = +-90 degrees is Werner's projection.
class CKvBonneCore
{
public:
    CKvBonneCore() = default;
    // a, e^2, phi0 in radians. Usable() is false for a figure that is none or a
    // phi0 that is 0, beyond the poles or not a number.
    CKvBonneCore(double a, double e2, double phi0);
    bool Usable() const { return m_usable; }

    // x, y of the method (false origin not added, x east, y north) for phi and
    // lambda - lambda0 in radians, the latter within [-pi, pi]. The sphere's
    // formulas inline, so that the engines' calls keep them in registers.
    void Forward(double phi, double dLambda, double* x, double* y) const
    {
        if (!m_sphere) {
            _forwardEllipsoid(phi, dLambda, x, y);
            return;
        }
        // On the sphere M = a phi and m = cos phi (SinCosHalfPi's cosine; 0 on
        // the poles): no series, no root, no sine of phi.
        constexpr double HalfPiHi = 1.5707963267948966, HalfPiLo = 6.123233995736766e-17;
        const double c0 = CKvMathKernel::SinHalfPi((HalfPiHi - std::fabs(phi)) + HalfPiLo);
        const double c = std::fabs(phi) == HalfPiHi ? 0.0 : c0;
        const double M = m_a * phi;
        const double rho = m_C + m_M0 - M;
        // T = a cos phi (lambda - lambda0) / rho, |T| <= pi (see
        // _forwardEllipsoid); the apex (rho = 0) is the point itself.
        const double T = rho != 0.0 ? m_a * c * dLambda / rho : 0.0;
        // sin T and 1 - cos T from the half angle, |T / 2| <= pi/2: 2 sin cos
        // and 2 sin^2 of T / 2, a few units in the last place with no
        // reduction, no quadrant and no branch (a world map's T falls on either
        // side of pi/4 as the points come).
        double sh, ch;
        CKvMathKernel::SinCosHalfPi(0.5 * T, sh, ch);
        *x = rho * (2.0 * sh * ch);
        *y = (M - m_M0) + rho * (2.0 * sh * sh);
    }
    // phi and lambda - lambda0 in radians; false (with NaN) off the map: a
    // meridian distance beyond a pole, a longitude beyond 180 degrees from the
    // central meridian, or a grid point that is not finite.
    bool Inverse(double x, double y, double* phi, double* dLambda) const
    {
        if (m_sphere) {
            // On the sphere M = a phi: the latitude needs no footpoint series,
            // and only its cosine (a m = a cos phi). Off the poles and within
            // the sheet this is the whole inverse; the rest in _inverseGeneral.
            constexpr double HalfPiHi = 1.5707963267948966, HalfPiLo = 6.123233995736766e-17;
            const double dy = m_C - y;
            const double rho = m_sign * std::sqrt(x * x + dy * dy);
            const double M = m_C + m_M0 - rho;
            const double p = M * m_invA;
            const double c = CKvMathKernel::SinHalfPi((HalfPiHi - std::fabs(p)) + HalfPiLo);
            const double d = rho * CKvMathKernel::Atan2(m_sign * x, m_sign * dy) / (m_a * c);
            if ((std::fabs(M) < m_edgeLimit) & (std::fabs(d) <= 3.141592653589793 * (1.0 + 1e-12))) {
                *phi = p;
                *dLambda = d;
                return true;
            }
        }
        return _inverseGeneral(x, y, phi, dLambda);
    }
    // dx/dphi and dy/dphi along the meridian.
    void MeridianDerivative(double phi, double dLambda, double* dx, double* dy) const;
    // The meridian distance of the poles and the cone's apex distance a m0 / sin phi0.
    double PoleDistance() const { return m_Mp; }
    double Apex() const { return m_C; }

private:
    void _forwardEllipsoid(double phi, double dLambda, double* x, double* y) const;
    bool _inverseGeneral(double x, double y, double* phi, double* dLambda) const;

    bool m_usable = false;
    double m_a = 0.0, m_e2 = 0.0;
    double m_C = 0.0;    // a m0 / sin phi0
    double m_M0 = 0.0;   // meridian distance of phi0
    double m_Mp = 0.0;   // meridian distance of the pole
    double m_sign = 1.0; // the sign of phi0
    bool m_kernel = false; // the footpoint by the inline kernel (e^2 <= 0.01)
    bool m_sphere = false; // e = 0: M = a phi, m = cos phi, no series
    double m_invA = 0.0;   // 1 / a
    double m_poleLimit = 0.0, m_edgeLimit = 0.0; // m_Mp (1 -+ 1e-15), the inverse's bounds on |M|
    CKvConformalLatitude::SMeridian m_meridian;
};

#endif
