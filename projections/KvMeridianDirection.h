#ifndef KVCART_PROJECTIONS_KVMERIDIANDIRECTION_H
#define KVCART_PROJECTIONS_KVMERIDIANDIRECTION_H

#include "projections/KvAngle.h"

#include <cmath>

// The grid convergence of an engine whose meridians have no handy derivative
// (the geodesic azimuthal equidistant, the series of the modified one,
// Laborde's complex series): the direction of the meridian on the map from
// differences of the forward along it, in degrees clockwise from grid north to
// true north. A step of 1e-4 degree (some 11 m) with central differences, or
// the one-sided second-order differences within a step of a pole, leaves an
// error near 1e-10 degree: truncation of order h^2 and rounding of the grid
// coordinates over the step's length.
class CKvMeridianDirection
{
public:
    static constexpr double Step = 1e-4; // degrees

    template <class TEngine> static double Convergence(const TEngine& engine, double lon, double lat)
    {
        if (!CKvAngle::IsPoint(lon, lat))
            return std::nan("");
        double x0, y0, x1, y1, x2, y2;
        double dx, dy;
        if (lat + Step <= 90.0 && lat - Step >= -90.0) {
            engine.TEngine::Geo2Proj(lon, lat - Step, &x1, &y1);
            engine.TEngine::Geo2Proj(lon, lat + Step, &x2, &y2);
            dx = x2 - x1;
            dy = y2 - y1;
        } else {
            // f'(0) h = (3 f(0) - 4 f(-h) + f(-2h)) / 2, h pointing away from the pole.
            const double h = lat > 0.0 ? -Step : Step;
            engine.TEngine::Geo2Proj(lon, lat, &x0, &y0);
            engine.TEngine::Geo2Proj(lon, lat + h, &x1, &y1);
            engine.TEngine::Geo2Proj(lon, lat + 2.0 * h, &x2, &y2);
            const double sign = lat > 0.0 ? 1.0 : -1.0; // northwards
            dx = sign * (3.0 * x0 - 4.0 * x1 + x2);
            dy = sign * (3.0 * y0 - 4.0 * y1 + y2);
        }
        // Grid south is +180, not -180, whichever sign the zero of dx has.
        const double gamma = std::atan2(-dx, dy) * 180.0 / CKvAngle::Pi;
        return gamma == -180.0 ? 180.0 : gamma;
    }
};

#endif
