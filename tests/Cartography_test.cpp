// Local site grids on a projection: the generic UTM zone, orientation, round
// trips, and a rotated grid checked against geodesics (Vincenty).
#include "TestSupport.h"

#include "coordsys/KvCartography.h"
#include "coordsys/KvMapProjection.h"

#include <cmath>
#include <gtest/gtest.h>
#include <stdexcept>

TEST(Cartography, ZoneOfTheOriginAndRoundTrips)
{
    kvtest::ShippedCatalogue();
    EXPECT_STREQ(CKvCartography("UTM", 9.5, 50.0, 0.0).GetProjectionName(), "UTM-32");
    EXPECT_STREQ(CKvCartography("UTM", -180.0, 0.0, 0.0).GetProjectionName(), "UTM-1");
    // The antimeridian is the western edge of zone 1, whichever sign it is
    // given with; longitudes beyond it are brought onto the globe first.
    EXPECT_STREQ(CKvCartography("UTM", 180.0, 0.0, 0.0).GetProjectionName(), "UTM-1");
    EXPECT_STREQ(CKvCartography("UTM", 359.9, 0.0, 0.0).GetProjectionName(), "UTM-30");
    // -3e10 = -83333333 turns - 120: 120 W, the western edge of zone 11.
    EXPECT_STREQ(CKvCartography("UTM", -3e10, 0.0, 0.0).GetProjectionName(), "UTM-11");
    EXPECT_THROW(CKvCartography(" UTM", 9.5, 50.0, 0.0), std::out_of_range);
    // An origin on no meridian leaves the generic name, which cannot be used.
    for (double lon0 : {double(NAN), double(INFINITY), -double(INFINITY)})
        EXPECT_THROW(CKvCartography("UTM", lon0, 0.0, 0.0), std::out_of_range) << lon0;

    const CKvCartography grid("UTM-32", 9.0, 50.0, 90.0); // on the central meridian: no convergence
    double X0 = 0, Y0 = 0, X = 0, Y = 0;
    grid.Geo2Proj(9.0, 50.0, &X0, &Y0);
    grid.Xy2Proj(0.0, 1.0, &X, &Y); // the grid's y axis points east
    EXPECT_NEAR(X, X0 + 1.0, 1e-9);
    EXPECT_NEAR(Y, Y0, 1e-9);
    EXPECT_NEAR(grid.GetTrueNorth(0.0, 0.0), 90.0, 1e-12);

    const CKvCartography skewed("UTM-32", 10.7, 51.3, -37.5);
    EXPECT_NEAR(skewed.GetTrueNorth(0.0, 0.0), -37.5, 1e-12);
    EXPECT_NEAR(skewed.GetProjectionNorth(), -37.5 - skewed.GetProjection()->GetConvergence(10.7, 51.3), 1e-12);
    for (double x : {-25000.0, 0.0, 1234.5}) {
        for (double y : {-800.0, 0.0, 40000.0}) {
            double px = 0, py = 0, lon = 0, lat = 0, bx = 0, by = 0;
            skewed.Xy2Proj(x, y, &px, &py);
            skewed.Proj2Xy(px, py, &bx, &by);
            EXPECT_NEAR(bx, x, 1e-9);
            EXPECT_NEAR(by, y, 1e-9);
            skewed.Xy2Geo(x, y, &lon, &lat);
            skewed.Geo2Xy(lon, lat, &bx, &by);
            EXPECT_NEAR(bx, x, 1e-6);
            EXPECT_NEAR(by, y, 1e-6);
        }
    }

    // Copies rebuild the projection from its string; the grid is the same.
    CKvCartography copy(skewed);
    CKvCartography assigned("LONG/LAT", 0, 0, 0);
    assigned = copy;
    double ax = 0, ay = 0, bx = 0, by = 0;
    skewed.Geo2Xy(11.0, 51.0, &ax, &ay);
    assigned.Geo2Xy(11.0, 51.0, &bx, &by);
    EXPECT_EQ(ax, bx);
    EXPECT_EQ(ay, by);
    const CKvCartography fromObject(*skewed.GetProjection(), 10.7, 51.3, -37.5);
    fromObject.Geo2Xy(11.0, 51.0, &bx, &by);
    EXPECT_EQ(ax, bx);

    // Another grid's projected coordinates: only the projections take part.
    const CKvCartography other("UTM-33", 10.7, 51.3, 12.0);
    double X33 = 0, Y33 = 0, X32 = 0, Y32 = 0, Xd = 0, Yd = 0;
    other.Geo2Proj(11.0, 51.0, &X33, &Y33);
    skewed.Geo2Proj(11.0, 51.0, &X32, &Y32);
    skewed.ConvertFrom(other, X33, Y33, &Xd, &Yd);
    EXPECT_NEAR(Xd, X32, 1e-6);
    EXPECT_NEAR(Yd, Y32, 1e-6);

    double xr = 0, yr = 0;
    CKvCartography::_csysrot(1.0, 0.0, 90.0, &xr, &yr);
    EXPECT_NEAR(xr, 0.0, 1e-15);
    EXPECT_NEAR(yr, -1.0, 1e-15);
}

TEST(Cartography, RotatedGridFollowsGeodesics)
{
    kvtest::ShippedCatalogue();
    // A grid whose y axis points 30 degrees east of true north, 1.5 degrees off
    // the central meridian, where the convergence is about 1.15 degrees. A point
    // one kilometre away along the geodesic of azimuth 30 must lie on the y
    // axis, one of azimuth 120 on the x axis, both at the projection's point
    // scale (to the millimetre over a kilometre).
    const double lon0 = 10.5, lat0 = 50.0, orientation = 30.0;
    const CKvCartography grid("UTM-32", lon0, lat0, orientation);
    const CKvMapProjection& utm = *grid.GetProjection();
    const double lambda = (lon0 - 9.0) * M_PI / 180.0, phi = lat0 * M_PI / 180.0;
    const double ep2 = 0.00673949674227643; // WGS 84 second eccentricity squared
    const double l2 = lambda * lambda * std::cos(phi) * std::cos(phi);
    // Point scale of the transverse Mercator, Snyder (8-11), to the terms that matter here.
    const double k = 0.9996 * (1.0 + (1.0 + ep2 * std::cos(phi) * std::cos(phi)) * l2 / 2.0);
    for (double azimuth : {30.0, 120.0, 210.0}) {
        double lon = 0, lat = 0, back = 0;
        ASSERT_TRUE(utm.GetPoint(lon0, lat0, azimuth, 1000.0, lon, lat, back));
        double x = 0, y = 0;
        grid.Geo2Xy(lon, lat, &x, &y);
        const double along = (azimuth - orientation) * M_PI / 180.0;
        EXPECT_NEAR(x, 1000.0 * k * std::sin(along), 5e-3) << azimuth;
        EXPECT_NEAR(y, 1000.0 * k * std::cos(along), 5e-3) << azimuth;
    }
}
