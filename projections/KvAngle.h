#ifndef KVCART_PROJECTIONS_KVANGLE_H
#define KVCART_PROJECTIONS_KVANGLE_H

#include "catalogue/KvFloatCompareRel.h"

#include <cmath>

// Angle reductions that the engines share.
class CKvAngle
{
public:
    static constexpr double Pi = 3.141592653589793;

    // A longitude difference in radians brought into [-pi, pi], so that a point
    // given as 180 and as -180 lands on the same meridian of the map. Differences
    // already in range are returned as they are, bit for bit. The reduction is
    // one remainder, exact for every finite double and bounded in time (a loop
    // adding 2 pi never ends for 1e17); a non-finite difference gives NaN.
    static double ReduceLongitude(double dLambda)
    {
        if (std::fabs(dLambda) <= Pi)
            return dLambda;
        // Within a turn and a half the remainder is one subtraction of 2 pi:
        // exact (Sterbenz: the difference lies within a factor 2 of 2 pi), the
        // same bits as remainder's exact result with its quotient 1, and far
        // cheaper. Below 9 (< 3 pi) no tie between quotients 1 and 2 can occur.
        if (std::fabs(dLambda) < 9.0)
            return dLambda - std::copysign(2.0 * Pi, dLambda);
        if (!std::isfinite(dLambda))
            return std::nan("");
        return std::remainder(dLambda, 2.0 * Pi);
    }

    // The same for degrees, into [-180, 180].
    static double ReduceLongitudeDegrees(double dLon)
    {
        if (std::fabs(dLon) <= 180.0)
            return dLon;
        if (std::fabs(dLon) < 540.0)
            return dLon - std::copysign(360.0, dLon); // exact, as above
        if (!std::isfinite(dLon))
            return std::nan("");
        return std::remainder(dLon, 360.0);
    }

    // ReduceLongitudeDegrees for a difference within a turn and a half, |dLon| <
    // 540 (lon - lon0 of a longitude and a meridian within [-180, 180]): the same
    // bits from its one exact subtraction alone, with none of its other tests,
    // for the fast paths that have checked the range already.
    static double ReduceNearLongitudeDegrees(double dLon)
    {
        return std::fabs(dLon) <= 180.0 ? dLon : dLon - std::copysign(360.0, dLon);
    }

    // A latitude (of an origin, a parallel) within rounding of a pole, relatively
    // 1e-12 as CKvFloatCompareRel judges, set exactly on the pole; any other value
    // as it is. A degree written with 16 digits (0.0174532925199433 rad) turns 90
    // into 90.00000000000001, a hair beyond the pole, where the tangent of the
    // latitude changes sign and formulas meant for the pole turn to the other one.
    static double SnapToPole(double latDegrees)
    {
        if (CKvFloatCompareRel::Close(latDegrees, 90.0))
            return 90.0;
        if (CKvFloatCompareRel::Close(latDegrees, -90.0))
            return -90.0;
        return latDegrees;
    }

    // The longitude difference lon - lon0, in degrees, of the engines that let a
    // host draw a line on across the antimeridian (the Lambert conformal conics,
    // Mercator, Albers and the equidistant conic). A longitude within [-180, 180]
    // is a point of the earth: its difference from the origin is brought into
    // [-180, 180] as in every other engine, so that 170 W seen from an origin at
    // 150 E lies 40 degrees east of it, not 320 degrees west; a difference of
    // exactly +-180 keeps its sign, so that a world map from -180 to 180 spans the
    // whole width. A longitude beyond +-180 is a line carried on past the
    // antimeridian (181, 182, ...) and is used as it comes: lon0 + 360 lies a
    // whole turn further east. Differences that need no reduction are lon - lon0
    // bit for bit; NaN stays NaN.
    static double LongitudeDifferenceDegrees(double lon, double lon0)
    {
        const double d = lon - lon0;
        if (std::fabs(d) <= 180.0)
            return d;
        return _reduceOnTheEarth(d, lon);
    }

    // The longitude an inverse of those engines gives back, brought into
    // [-180, 180]. One beyond +-180 by rounding alone (up to 1e-9 degree) is set
    // on +-180 of its own side rather than turned to the other, so that a point
    // given as -180 comes back on the western edge of the map it came from.
    static double InverseLongitudeDegrees(double lon)
    {
        if (std::fabs(lon) <= 180.0)
            return lon;
        if (std::fabs(lon) <= 180.0 + 1e-9)
            return lon > 0.0 ? 180.0 : -180.0;
        return ReduceLongitudeDegrees(lon);
    }

    // The longitude an inverse gives for a difference dLon (degrees) from the
    // central meridian lon0 of a world map whose edges are the antimeridian of
    // its centre and whose forward reduces lon - lon0 into [-180, 180]. A point
    // on an edge (dLon within 1e-9 degree of +-180) lies on both edges, and a
    // longitude within [-180, 180] would come back on one of them only when the
    // centre is off Greenwich: there the answer is lon0 +- 180 as it stands
    // (lon0 = 15: 195 on the eastern edge, -165 on the western), whose
    // difference from lon0 brings the point back on the edge it came from.
    // Elsewhere InverseLongitudeDegrees(lon0 + dLon).
    static double EdgeInverseLongitudeDegrees(double dLon, double lon0)
    {
        if (std::fabs(dLon) >= 180.0 - 1e-9 && std::fabs(dLon) <= 180.0 + 1e-9)
            return lon0 + (dLon > 0.0 ? 180.0 : -180.0);
        return InverseLongitudeDegrees(lon0 + dLon);
    }

    // 1 + cos c, c the arc from an azimuthal projection's centre, below which a
    // point is the antipode of the centre within rounding (some 30 cm): its image
    // is the whole boundary circle, no one point, and the engines give NaN. The
    // sum has rounding errors of a few units of 1e-16, which could otherwise turn
    // the antipode itself into a finite point in any direction.
    static constexpr double AntipodeLimit = 1e-15;

private:
    // The rare case of LongitudeDifferenceDegrees, out of the line of the engines'
    // forward formulas.
#if defined(__GNUC__)
    __attribute__((noinline, cold))
#endif
    static double _reduceOnTheEarth(double d, double lon)
    {
        return std::fabs(lon) <= 180.0 ? ReduceLongitudeDegrees(d) : d;
    }

public:
    // A latitude outside [-90, 90] degrees (or not a number) has no point on the
    // ellipsoid: the engines answer it with NaN, as PROJ does.
    static bool IsLatitude(double latDegrees) { return std::fabs(latDegrees) <= 90.0; }

    // A point of the ellipsoid: such a latitude and a finite longitude of any
    // size (540 is a longitude; NaN and infinities are none).
    static bool IsPoint(double lonDegrees, double latDegrees)
    {
        return IsLatitude(latDegrees) && std::isfinite(lonDegrees);
    }

    // The forward guard of the engines: a latitude off the ellipsoid gives NaN
    // for both coordinates, and false.
    static bool GuardForward(double latDegrees, double* x, double* y)
    {
        if (IsLatitude(latDegrees))
            return true;
        *x = *y = std::nan("");
        return false;
    }

    // The inverse guard, after the formulas: a grid point that is not finite, or
    // whose latitude comes out beyond a pole, lies outside the projection's image
    // and gets NaN for both (the formulas' limits at infinity are no answer); a
    // pole overshot by rounding alone is set on the pole.
    static void GuardInverse(double x, double y, double* lonDegrees, double* latDegrees)
    {
        if (!std::isfinite(x) || !std::isfinite(y)) {
            *lonDegrees = *latDegrees = std::nan("");
            return;
        }
        const double lat = *latDegrees;
        if (std::fabs(lat) <= 90.0)
            return;
        if (std::fabs(lat) <= 90.0 + 1e-9) {
            *latDegrees = lat > 0.0 ? 90.0 : -90.0;
            return;
        }
        *lonDegrees = *latDegrees = std::nan("");
    }
};

#endif
