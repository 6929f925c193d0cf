#include "geodesy/KvVincenty.h"

#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace {

constexpr double kDeg = 3.141592653589793 / 180.0;

} // namespace

// Reference values from GeographicLib's GeodSolve (tools/make_geodesic_vectors.py).
TEST(KvVincenty, DirectProblemAgreesWithGeographicLib)
{
    std::ifstream in(KVCART_TEST_DATA_DIR "geodesic_direct.txt");
    ASSERT_TRUE(in) << "reference vectors missing";
    const CKvVincenty wgs84(CKvEllipsoid("WGS 84", "WE", 6378137.0, 298.257223563));
    const CKvVincenty sphere(CKvEllipsoid("Sphere", "XY", 6371229.0, 0.0));

    int count = 0;
    double worstPosition = 0.0, worstAzimuth = 0.0;
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#')
            continue;
        std::istringstream fields(line);
        std::string figure;
        double lat1, lon1, azi1, s12, lat2, lon2, azi2;
        ASSERT_TRUE(fields >> figure >> lat1 >> lon1 >> azi1 >> s12 >> lat2 >> lon2 >> azi2) << line;
        const CKvVincenty& geodesic = figure == "SPHERE" ? sphere : wgs84;
        ASSERT_TRUE(figure == "SPHERE" || figure == "WGS84") << line;

        double lon = 0.0, lat = 0.0, azimuth = 0.0;
        geodesic.GetPoint(lon1, lat1, azi1, s12, lon, lat, azimuth);

        // Position error in metres: north and east components on a 6378 km sphere,
        // plenty accurate for errors of millimetres.
        const double north = (lat - lat2) * kDeg * 6378137.0;
        const double east = std::remainder(lon - lon2, 360.0) * kDeg * 6378137.0 * std::cos(lat2 * kDeg);
        const double position = std::hypot(north, east);
        const double azimuthError = std::fabs(std::remainder(azimuth - azi2, 360.0));
        EXPECT_LT(position, 1e-3) << line;
        EXPECT_LT(azimuthError, 1e-8) << line;
        worstPosition = std::max(worstPosition, position);
        worstAzimuth = std::max(worstAzimuth, azimuthError);
        ++count;
    }
    EXPECT_EQ(count, 620);
    std::printf("[ measured ] %d geodesics: worst position %.3g m, worst azimuth %.3g deg\n", count, worstPosition,
                worstAzimuth);
}

TEST(KvVincenty, BoundaryCases)
{
    const CKvVincenty wgs84(CKvEllipsoid("WGS 84", "WE", 6378137.0, 298.257223563));
    double lon, lat, azimuth;

    wgs84.GetPoint(10.0, 45.0, 30.0, 0.0, lon, lat, azimuth);
    EXPECT_NEAR(lon, 10.0, 1e-12);
    EXPECT_NEAR(lat, 45.0, 1e-12);
    EXPECT_NEAR(azimuth, 30.0, 1e-12);

    // No normalisation of the end longitude.
    wgs84.GetPoint(179.0, 0.0, 90.0, 300000.0, lon, lat, azimuth);
    EXPECT_GT(lon, 180.0);
    EXPECT_NEAR(lon, 179.0 + 300000.0 / (6378137.0 * kDeg), 1e-9); // along the equator

    // Along a meridian the longitude does not change and the azimuth stays north.
    wgs84.GetPoint(-78.5, -0.2, 0.0, 1000000.0, lon, lat, azimuth);
    EXPECT_EQ(lon, -78.5);
    EXPECT_NEAR(azimuth, 0.0, 1e-12);

    // On a sphere B = 0: the result is the spherical great circle in closed form.
    const double R = 6371229.0;
    const CKvVincenty sphere(CKvEllipsoid("Sphere", "XY", R, 0.0));
    EXPECT_EQ(sphere.PolyA(0.0), 1.0);
    EXPECT_EQ(sphere.PolyB(0.0), 0.0);
    const double lat1 = 40.0 * kDeg, az1 = 60.0 * kDeg, d = 5000000.0 / R;
    const double lat2 = std::asin(std::sin(lat1) * std::cos(d) + std::cos(lat1) * std::sin(d) * std::cos(az1));
    const double dlon =
        std::atan2(std::sin(az1) * std::sin(d) * std::cos(lat1), std::cos(d) - std::sin(lat1) * std::sin(lat2));
    sphere.GetPoint(5.0, 40.0, 60.0, 5000000.0, lon, lat, azimuth);
    EXPECT_NEAR(lat, lat2 / kDeg, 1e-11);
    EXPECT_NEAR(lon, 5.0 + dlon / kDeg, 1e-11);

    // The inverse problem is not offered: outputs stay as the caller set them.
    double distance = -1.0, a1 = -2.0, a2 = -3.0;
    wgs84.GetDistance(0.0, 0.0, 1.0, 1.0, distance, a1, a2);
    EXPECT_EQ(distance, -1.0);
    EXPECT_EQ(a1, -2.0);
    EXPECT_EQ(a2, -3.0);
}
