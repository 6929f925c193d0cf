#ifndef KVCART_PROJECTIONS_KVLAMBERTCONIC_H
#define KVCART_PROJECTIONS_KVLAMBERTCONIC_H

#include "projections/KvConformalLatitude.h"

#include <cmath>

// The functions of latitude that both Lambert conformal conic engines use
// (IOGP Guidance Note 7-2, methods 9801 and 9802).
class CKvLambertConic
{
public:
    // t(phi) = tan(pi/4 - phi/2)
    static double T(double phi);
    // c(phi) = ((1 + e sin phi) / (1 - e sin phi))^(e/2); t(phi) * c(phi) is the
    // guidance note's t of the ellipsoid.
    static double C(double e, double phi);
    // The latitude whose t(phi) * c(phi) equals target.
    static double InverseLatitude(const CKvConformalLatitude::SInverse& inverse, double target);
    // Whether the grid offset (dx, dy) from the apex, dy towards the apex
    // (r0 - (N - FN)), lies in the wedge beyond the sheet, more than half a turn
    // of longitude (pi |n|) from the central meridian: the image of no point.
    // sign: that of n; cosEdge: cos(pi n). A hair of slack keeps the sheet's
    // own edges.
    static bool BeyondSheet(double dx, double dy, double sign, double cosEdge)
    {
        return sign * dy < (cosEdge - 1e-12) * std::sqrt(dx * dx + dy * dy);
    }
};

#endif
