// Carries points along geodesics from real places on WGS 84 and prints where they
// arrive, with the forward azimuth at the end point; then projects places with
// grids of the shipped catalogue, named as a host program names them.
#include "catalogue/KvCartSetup.h"
#include "catalogue/KvEllipsoid.h"
#include "coordsys/KvMapProjection.h"
#include "geodesy/KvDatumShift.h"
#include "geodesy/KvVincenty.h"
#include "interface/KvCart.h"
#include "projections/KvGeographical.h"

#include <cstdio>
#include <memory>

namespace {

struct Walk
{
    const char* from;
    double lon, lat; // degrees
    double azimuth;  // degrees clockwise from north
    double distance; // metres
};

} // namespace

int main()
{
    const CKvEllipsoid wgs84("WGS 84", "WE", 6378137.0, 298.257223563);
    const CKvVincenty geodesic(wgs84);
    const CKvGeographical longLat("LONG/LAT", wgs84);

    const Walk walks[] = {
        {"Greenwich observatory, due east 100 km", -0.0014, 51.4778, 90.0, 100000.0},
        {"Oslo city hall, south-west 500 km", 10.7337, 59.9120, 225.0, 500000.0},
        {"Cape Town, towards Perth 8 700 km", 18.4241, -33.9249, 128.0, 8700000.0},
        {"Quito on the equator, due north 1 000 km", -78.4678, -0.1807, 0.0, 1000000.0},
        {"Tromsø, over the pole 4 000 km", 18.9553, 69.6492, 0.0, 4000000.0},
    };

    std::printf("Ellipsoid %s: a = %.3f m, 1/f = %.9f, b = %.4f m, e = %.12f\n\n", wgs84.GetName().c_str(),
                wgs84.GetMajor(), wgs84.GetInvFlatness(), wgs84.GetMinor(), wgs84.GetEccentricity());
    for (const Walk& w : walks) {
        double lon2 = 0.0, lat2 = 0.0, azimuth2 = 0.0;
        geodesic.GetPoint(w.lon, w.lat, w.azimuth, w.distance, lon2, lat2, azimuth2);
        double x = 0.0, y = 0.0;
        longLat.Geo2Proj(lon2, lat2, &x, &y);
        std::printf("%-45s -> lon %14.9f  lat %13.9f  azimuth %13.9f\n", w.from, x, y, azimuth2);
    }

    double x1, y1, x2, y2;
    longLat.GetDefaultArea(&x1, &y1, &x2, &y2);
    std::printf("\nDefault area of %s: (%g, %g) to (%g, %g)\n", longLat.GetName(), x1, y1, x2, y2);

    // The ED50 to WGS 84 shift published for the North Sea (EPSG:1133).
    const double ed50[7] = {-87.0, -98.0, -121.0, 0.0, 0.0, 0.0, 0.0};
    const CKvDatumShift shift(ed50);
    std::printf("ED50 -> WGS 84: %s shift (%.0f, %.0f, %.0f) m\n\n", shift.GetTypeAsText(), shift[0], shift[1],
                shift[2]);

    // The catalogue: the shipped files, and no user directory of our own to write to.
    CARTSETUPLINUX(KVCART_DATA_DIR, "/nonexistent-user-directory/");
    struct Place
    {
        const char* grid;
        const char* place;
        double lon, lat;
    };
    const Place places[] = {
        {"UTM-32", "Frankfurt cathedral", 8.6853, 50.1106},
        {"British National Grid", "Greenwich observatory", -0.0014, 51.4778},
        {"RD New", "Amsterdam Dam square", 4.8932, 52.3731},
        {"LAEA Europe", "Vienna St. Stephen's", 16.3731, 48.2085},
        {"S-JTSK / Krovak East North", "Prague castle", 14.4005, 50.0906},
        {"UPS North", "North Cape", 25.7837, 71.1685},
        {"NAD83 / California zone 3", "Golden Gate Bridge", -122.4783, 37.8199},
    };
    for (const Place& p : places) {
        CKvMapProjData* definition = CKvMapProjection::MapProjection(p.grid);
        std::unique_ptr<CKvProjection> engine(definition != nullptr ? definition->CreateProjection() : nullptr);
        if (!engine) {
            std::printf("%-28s not in the catalogue\n", p.grid);
            continue;
        }
        double x, y, lon, lat;
        engine->Geo2Proj(p.lon, p.lat, &x, &y);
        engine->Proj2Geo(x, y, &lon, &lat);
        std::printf("%-28s %-24s x %14.3f  y %14.3f  convergence %8.4f  back %.9f %.9f\n", p.grid, p.place, x, y,
                    engine->GetConvergence(p.lon, p.lat), lon, lat);
    }
    return 0;
}
