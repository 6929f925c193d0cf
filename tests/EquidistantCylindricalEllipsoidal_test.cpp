// The ellipsoidal form of the Equidistant Cylindrical (EPSG method 1028), which
// no text selects yet (the descriptor's form is PROJ's spherical eqc, checked in
// tests/data/method_vectors_worldb.txt): IOGP Guidance Note 7-2's example for
// EPSG:4087 both ways, the meridian quadrant of WGS 84 at the poles, round
// trips over the whole map, and the outline.
#include "projections/KvEquidistantCylindrical.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

const CKvEllipsoid& Wgs84()
{
    static const CKvEllipsoid wgs84("WGS 84", "WE", 6378137.0, 298.257223563);
    return wgs84;
}

CKvEquidistantCylindrical Ellipsoidal(double lon0, double phi1, double phi0, double fe, double fn)
{
    const double parameters[5] = {lon0, phi1, phi0, fe, fn};
    return CKvEquidistantCylindrical("test", parameters, Wgs84(), CKvEquidistantCylindrical::eEllipsoidal);
}

TEST(EquidistantCylindricalEllipsoidal, GuidanceNoteExample)
{
    // GN 7-2, Equidistant Cylindrical: WGS 84 / World Equidistant Cylindrical,
    // 55 N 10 E gives E = 1 113 194.91 m, N = 6 097 230.31 m (PROJ's spherical
    // eqc gives N = 6 122 571.99 m for the same point).
    const CKvEquidistantCylindrical engine = Ellipsoidal(0.0, 0.0, 0.0, 0.0, 0.0);
    double x = 0, y = 0, lon = 0, lat = 0;
    engine.Geo2Proj(10.0, 55.0, &x, &y);
    EXPECT_NEAR(x, 1113194.91, 0.01);
    EXPECT_NEAR(y, 6097230.31, 0.01);
    engine.Proj2Geo(1113194.91, 6097230.31, &lon, &lat);
    EXPECT_NEAR(lon, 10.0, 1e-7);
    EXPECT_NEAR(lat, 55.0, 1e-7);
}

TEST(EquidistantCylindricalEllipsoidal, PolesAtTheMeridianQuadrant)
{
    // The quadrant of WGS 84's meridian, 10 001 965.7293 m (GeographicLib's
    // geodesic from the equator to the pole, through pyproj's Geod), against
    // R pi/2 = 10 018 754.17 m of the spherical form.
    const CKvEquidistantCylindrical engine = Ellipsoidal(0.0, 0.0, 0.0, 0.0, 0.0);
    double x = 0, y = 0, lon = 0, lat = 0;
    engine.Geo2Proj(0.0, 90.0, &x, &y);
    EXPECT_NEAR(y, 10001965.7293, 1e-4);
    engine.Geo2Proj(0.0, -90.0, &x, &y);
    EXPECT_NEAR(y, -10001965.7293, 1e-4);
    engine.Proj2Geo(0.0, 10001965.7293, &lon, &lat);
    EXPECT_NEAR(lat, 90.0, 1e-9);
    // Beyond the poles' northing and the map's width: no point.
    engine.Proj2Geo(0.0, 10001966.0, &lon, &lat);
    EXPECT_TRUE(std::isnan(lon) && std::isnan(lat));
    engine.Proj2Geo(20037509.0, 0.0, &lon, &lat);
    EXPECT_TRUE(std::isnan(lon) && std::isnan(lat));
}

TEST(EquidistantCylindricalEllipsoidal, RoundTripsWithOriginAndParallel)
{
    const CKvEquidistantCylindrical engine = Ellipsoidal(-60.0, 30.0, 10.0, 200000.0, 50000.0);
    double worst = 0.0;
    for (double lat = -90.0; lat <= 90.0; lat += 2.5) {
        for (double lon = -239.5; lon <= 119.5; lon += 7.0) {
            double x = 0, y = 0, lon2 = 0, lat2 = 0;
            engine.Geo2Proj(lon, lat, &x, &y);
            engine.Proj2Geo(x, y, &lon2, &lat2);
            ASSERT_TRUE(std::isfinite(lon2) && std::isfinite(lat2)) << lon << " " << lat;
            worst = std::max(worst, std::fabs(lat2 - lat));
            if (std::fabs(lat) < 90.0)
                worst = std::max(worst, std::fabs(std::remainder(lon2 - lon, 360.0)));
        }
    }
    EXPECT_LT(worst, 1e-11);
    // The origin maps to the false origin; the standard parallel is true to
    // scale: a degree along it is nu1 cos phi1 pi / 180.
    double x = 0, y = 0, x2 = 0, y2 = 0;
    engine.Geo2Proj(-60.0, 10.0, &x, &y);
    EXPECT_NEAR(x, 200000.0, 1e-6);
    EXPECT_NEAR(y, 50000.0, 1e-6);
    engine.Geo2Proj(-59.0, 10.0, &x2, &y2);
    const double s1 = std::sin(30.0 * 3.141592653589793 / 180.0);
    const double nu1 = 6378137.0 / std::sqrt(1.0 - Wgs84().GetEccentricity() * Wgs84().GetEccentricity() * s1 * s1);
    EXPECT_NEAR(x2 - x, nu1 * std::cos(30.0 * 3.141592653589793 / 180.0) * 3.141592653589793 / 180.0, 1e-6);
}

TEST(EquidistantCylindricalEllipsoidal, SphereGivesTheSphericalForm)
{
    const CKvEllipsoid sphere("Sphere", "SPH", 6371000.0, 0.0);
    const double parameters[5] = {15.0, 45.0, -5.0, 100.0, 200.0};
    const CKvEquidistantCylindrical a("a", parameters, sphere, CKvEquidistantCylindrical::eEllipsoidal);
    const CKvEquidistantCylindrical b("b", parameters, sphere, CKvEquidistantCylindrical::eSpherical);
    for (double lat = -90.0; lat <= 90.0; lat += 15.0) {
        double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
        a.Geo2Proj(100.0, lat, &x1, &y1);
        b.Geo2Proj(100.0, lat, &x2, &y2);
        EXPECT_NEAR(x1, x2, 1e-6);
        EXPECT_NEAR(y1, y2, 1e-6);
    }
}

} // namespace
