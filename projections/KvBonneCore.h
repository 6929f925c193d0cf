#ifndef KVCART_PROJECTIONS_KVBONNECORE_H
#define KVCART_PROJECTIONS_KVBONNECORE_H

#include "projections/KvConformalLatitude.h"

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
    // lambda - lambda0 in radians, the latter within [-pi, pi].
    void Forward(double phi, double dLambda, double* x, double* y) const;
    // phi and lambda - lambda0 in radians; false (with NaN) off the map: a
    // meridian distance beyond a pole, a longitude beyond 180 degrees from the
    // central meridian, or a grid point that is not finite.
    bool Inverse(double x, double y, double* phi, double* dLambda) const;
    // dx/dphi and dy/dphi along the meridian.
    void MeridianDerivative(double phi, double dLambda, double* dx, double* dy) const;
    // The meridian distance of the poles and the cone's apex distance a m0 / sin phi0.
    double PoleDistance() const { return m_Mp; }
    double Apex() const { return m_C; }

private:
    bool m_usable = false;
    double m_a = 0.0, m_e2 = 0.0;
    double m_C = 0.0;    // a m0 / sin phi0
    double m_M0 = 0.0;   // meridian distance of phi0
    double m_Mp = 0.0;   // meridian distance of the pole
    double m_sign = 1.0; // the sign of phi0
    bool m_kernel = false; // the footpoint by the inline kernel (e^2 <= 0.01)
    CKvConformalLatitude::SMeridian m_meridian;
};

#endif
