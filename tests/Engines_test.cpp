#include "catalogue/KvLambert2SPProjection.h"
#include "catalogue/KvTransverseMercatorProjection.h"
#include "coordsys/KvMapProjection.h"
#include "projections/KvAlbersEqualArea.h"
#include "projections/KvAngle.h"
#include "projections/KvEquidistantConic.h"
#include "projections/KvLambert1SP.h"
#include "projections/KvLambert2SP.h"
#include "projections/KvMercator1SP.h"
#include "projections/KvMercator2SP.h"
#include "projections/KvRotatedLongitudeLatitude.h"
#include "projections/KvTransverseMercator.h"
#include "projections/KvTransverseMercatorJHS.h"
#include "wkt/KvPRJParser.h"

#include "TestSupport.h"

#include <cmath>
#include <gtest/gtest.h>
#include <memory>

namespace {

const CKvEllipsoid kWgs84("WGS 84", "WE", 6378137.0, 298.257223563);
const CKvEllipsoid kGrs80("GRS 1980", "RF", 6378137.0, 298.257222101);
const CKvEllipsoid kSphere("Sphere", "XY", 6371229.0, 0.0);

struct Area
{
    double x1, y1, x2, y2;
};

Area DefaultArea(const CKvProjection& engine)
{
    Area a{};
    engine.GetDefaultArea(&a.x1, &a.y1, &a.x2, &a.y2);
    return a;
}

void ExpectProjects(const CKvProjection& engine, double lon, double lat, double x, double y, double tol = 1e-6)
{
    SCOPED_TRACE(engine.GetName());
    kvtest::ExpectForward(engine, lon, lat, x, y, tol);
}

} // namespace

TEST(TransverseMercator, LocalGridsNamesAndLongitudeWrapping)
{
    for (bool complexSeries : {false, true}) {
        const auto make = [complexSeries](const char* name) -> std::unique_ptr<CKvProjection> {
            if (complexSeries)
                return std::make_unique<CKvTransverseMercator>(name, 0.9996, 9, 0, 500000, 0, kWgs84);
            return std::make_unique<CKvTransverseMercatorJHS>(name, 0.9996, 9, 0, 500000, 0, kWgs84);
        };
        const std::unique_ptr<CKvProjection> local = make(" NON-UTM "), unnamed = make("");
        EXPECT_TRUE(local->IsLocal());
        ExpectProjects(*local, 1234.5, -678.25, 1234.5, -678.25, 0.0);
        double lon, lat;
        local->Proj2Geo(10.0, 20.0, &lon, &lat);
        EXPECT_EQ(lon, 10.0);
        EXPECT_EQ(lat, 20.0);
        EXPECT_EQ(local->GetConvergence(12.0, 50.0), 0.0);
        const Area area = DefaultArea(*local);
        EXPECT_EQ(area.x1, 0.0);
        EXPECT_EQ(area.y2, 10000.0);
        // An empty name is the local grid's name, and makes the engine local.
        EXPECT_STREQ(unnamed->GetName(), "NON-UTM");
        EXPECT_TRUE(unnamed->IsLocal());
    }

    const CKvTransverseMercatorJHS utm("UTM-32", 0.9996, 9, 0, 500000, 0, kWgs84);
    EXPECT_FALSE(utm.IsLocal());
    double x1, y1;
    utm.Geo2Proj(-1.0, 50.0, &x1, &y1);
    ExpectProjects(utm, 9.0 + 350.0, 50.0, x1, y1); // the same as 10 degrees west
    // Origin on the central meridian maps to the false origin; GetOrigin in degrees.
    ExpectProjects(utm, 9.0, 0.0, 500000.0, 0.0);
    utm.GetOrigin(&x1, &y1);
    EXPECT_EQ(x1, 9.0);
    EXPECT_EQ(y1, 0.0);
}

TEST(TransverseMercator, OriginLatitudeAreasConvergenceAndScale)
{
    // A latitude of origin at the pole: the origin maps onto the false northing.
    const CKvTransverseMercatorJHS polar("polar", 1.0, 0, 90.0, 0, 0, kWgs84);
    ExpectProjects(polar, 0.0, 90.0, 0.0, 0.0, 1e-6);
    const CKvTransverseMercatorJHS bng("BNG", 0.9996012717, -2, 49, 400000, -100000, kWgs84);
    ExpectProjects(bng, -2.0, 49.0, 400000.0, -100000.0, 1e-6);
    const CKvTransverseMercator bngComplex("BNG", 0.9996012717, -2, 49, 400000, -100000, kWgs84);
    ExpectProjects(bngComplex, -2.0, 49.0, 400000.0, -100000.0, 1e-6);

    // The complex engine mirrors the southern hemisphere.
    const CKvTransverseMercator utm("UTM-33", 0.9996, 15, 0, 500000, 1000, kWgs84);
    double xn, yn, xs, ys;
    utm.Geo2Proj(17.0, 35.0, &xn, &yn);
    utm.Geo2Proj(17.0, -35.0, &xs, &ys);
    EXPECT_NEAR(xn, xs, 1e-9);
    EXPECT_NEAR(yn - 1000, -(ys - 1000), 1e-6);

    // Default areas: 3 degrees around the origin, clamped at the pole.
    const CKvTransverseMercatorJHS north("north", 1.0, 0, 89, 0, 0, kWgs84);
    const Area area = DefaultArea(north);
    ExpectProjects(north, -3.0, 86.0, area.x1, area.y1);
    ExpectProjects(north, 3.0, 90.0, area.x2, area.y2);

    // The series convergence agrees with the direction of grid north measured on
    // the map, and vanishes on the central meridian and the equator.
    const CKvTransverseMercatorJHS zone("UTM-32", 0.9996, 9, 0, 500000, 0, kWgs84);
    EXPECT_EQ(zone.GetConvergence(9.0, 50.0), 0.0);
    EXPECT_EQ(zone.GetConvergence(12.0, 0.0), 0.0);
    for (double lon : {6.0, 10.5, 12.0})
        for (double lat : {-60.0, 20.0, 55.0}) {
            double x1, y1, x2, y2;
            zone.Geo2Proj(lon, lat, &x1, &y1);
            zone.Geo2Proj(lon, lat + 1e-6, &x2, &y2);
            const double measured = std::atan2(x1 - x2, y2 - y1) * 180 / M_PI;
            EXPECT_NEAR(zone.GetConvergence(lon, lat), measured, 2e-6) << lon << "," << lat;
        }
    // Scale: k0 on the central meridian, growing away from it.
    EXPECT_DOUBLE_EQ(zone.GetScaleFactor(9.0, 45.0), 0.9996);
    EXPECT_GT(zone.GetScaleFactor(12.0, 45.0), zone.GetScaleFactor(10.0, 45.0));
    // Near the central meridian the series agrees with the scale measured on the
    // map: grid distance of a short step east over its length on the ellipsoid.
    for (double lat : {0.0, 30.0, 60.0}) {
        const double lon = 10.0, step = 1e-5;
        double xa, ya, xb, yb;
        zone.Geo2Proj(lon, lat, &xa, &ya);
        zone.Geo2Proj(lon + step, lat, &xb, &yb);
        const double phi = lat * M_PI / 180, e2 = 0.00669437999014;
        const double N = 6378137.0 / std::sqrt(1 - e2 * std::sin(phi) * std::sin(phi));
        const double measured = std::hypot(xb - xa, yb - ya) / (N * std::cos(phi) * step * M_PI / 180);
        EXPECT_NEAR(zone.GetScaleFactor(lon + step / 2, lat), measured, 1e-6) << lat;
    }

    // No ellipsoid in the catalogue: offsets collapse forward, the inverse is not finite.
    kvtest::ShippedCatalogue();
    const CKvTransverseMercatorProjection orphan("orphan", "", "??", 1.0, 0, 0, 100, 200);
    const CKvTransverseMercatorJHS none(&orphan);
    ExpectProjects(none, 3.0, 40.0, 100.0, 200.0, 0.0);
    double lon, lat;
    none.Proj2Geo(150.0, 250.0, &lon, &lat);
    EXPECT_FALSE(std::isfinite(lon) && std::isfinite(lat));
    CKvEllipsoid figure;
    EXPECT_FALSE(none.GetAnonymousEllipsoid(figure));
}

TEST(LambertConformalConic, ConesBranchesAndAreas)
{
    // Equal parallels are the tangent cone: the 1SP engine at that latitude with k0 = 1.
    const CKvLambert2SP tangent("tangent", 45, 45, 3, 45, 1000, 2000, kGrs80);
    const CKvLambert1SP oneParallel("one", 1.0, 3, 45, 1000, 2000, kGrs80);
    for (double lon : {-5.0, 3.0, 11.0})
        for (double lat : {38.0, 45.0, 52.0}) {
            double x, y;
            oneParallel.Geo2Proj(lon, lat, &x, &y);
            ExpectProjects(tangent, lon, lat, x, y);
        }

    // The inverse's two branches: west of the meridian (cosine form) and just past
    // theta = 0.1 rad east of it (sine form) both invert exactly.
    const CKvLambert2SP l93("Lambert-93", 49, 44, 3, 46.5, 700000, 6600000, kGrs80);
    for (double lon : {-4.0, 3.0, 3.0 + 0.1 / std::sin(46.5 * M_PI / 180) * 180 / M_PI + 0.01, 10.0}) {
        double x, y;
        l93.Geo2Proj(lon, 47.0, &x, &y);
        kvtest::ExpectInverse(l93, x, y, lon, 47.0, 1e-10);
    }
    EXPECT_NEAR(l93.GetConvergence(3.0, 46.0), 0.0, 1e-12);
    // On a conformal cone the convergence is n (lon - lon0); Lambert-93's cone
    // constant is published by IGN as n = 0.7256077650532670.
    EXPECT_NEAR(l93.GetConvergence(8.0, 46.0), 5.0 * 0.7256077650532670, 1e-6);

    // A false origin at the pole centres the default area on the mean parallel.
    const CKvLambert2SP polarOrigin("polar", 60, 70, 0, 90, 0, 0, kWgs84);
    const Area area = DefaultArea(polarOrigin);
    ExpectProjects(polarOrigin, -3.0, 62.0, area.x1, area.y1);
    double x, y;
    polarOrigin.GetOrigin(&x, &y);
    EXPECT_EQ(y, 90.0);
}

TEST(Mercator, ScalesDerivedParametersAndAreas)
{
    const CKvMercator2SP equator("eq", 0.0, 0.0, 0, 0, kWgs84);
    EXPECT_DOUBLE_EQ(equator.GetScale(), 1.0);
    const CKvMercator2SP north("n", 60.0, 0.0, 0, 0, kWgs84), south("s", -60.0, 0.0, 0, 0, kWgs84);
    EXPECT_EQ(north.GetScale(), south.GetScale());
    double derived[1] = {-1.0};
    north.GetDerivedParameters(derived);
    EXPECT_EQ(derived[0], north.GetScale());
    const CKvMercator1SP world("World Mercator", 1.0, 0.0, 0, 0, kWgs84);
    derived[0] = -1.0;
    world.GetDerivedParameters(derived);
    EXPECT_EQ(derived[0], 0.0);

    // No wrapping: one turn east is a full equator further.
    double x0, y0, x1, y1;
    world.Geo2Proj(0.0, 10.0, &x0, &y0);
    world.Geo2Proj(360.0, 10.0, &x1, &y1);
    EXPECT_NEAR(x1 - x0, 2 * M_PI * 6378137.0, 1e-6);
    EXPECT_NEAR(world.GetConvergence(40.0, 30.0), 0.0, 1e-9);

    Area area = DefaultArea(world);
    world.Geo2Proj(-180.0, -60.0, &x0, &y0);
    EXPECT_EQ(area.x1, x0);
    EXPECT_EQ(area.y1, y0);
    const CKvMercator1SP shifted("shifted", 1.0, 10.0, 0, 0, kWgs84);
    area = DefaultArea(shifted);
    shifted.Geo2Proj(7.0, -3.0, &x0, &y0);
    EXPECT_EQ(area.x1, x0);
    EXPECT_EQ(area.y1, y0);

    // The figure is always handed out, even a zero one.
    const CKvMercator1SP none("none", 1.0, 0.0, 0, 0, CKvEllipsoid("", "", 0.0, 0.0));
    CKvEllipsoid figure;
    EXPECT_TRUE(none.GetAnonymousEllipsoid(figure));
    EXPECT_EQ(figure.GetMajor(), 0.0);
}

TEST(Antimeridian, LongitudeDifferenceAndTheLongitudeBack)
{
    // Within [-180, 180]: a point of the earth, its difference reduced.
    EXPECT_DOUBLE_EQ(CKvAngle::LongitudeDifferenceDegrees(-164.655, 150.0), 45.345);
    EXPECT_DOUBLE_EQ(CKvAngle::LongitudeDifferenceDegrees(173.0, -154.0), -33.0);
    EXPECT_EQ(CKvAngle::LongitudeDifferenceDegrees(12.5, 10.0), 2.5); // nothing to reduce: as it is
    // Exactly half a turn keeps its sign: -180 and 180 are the west and east edges.
    EXPECT_EQ(CKvAngle::LongitudeDifferenceDegrees(-180.0, 0.0), -180.0);
    EXPECT_EQ(CKvAngle::LongitudeDifferenceDegrees(180.0, 0.0), 180.0);
    EXPECT_EQ(CKvAngle::LongitudeDifferenceDegrees(26.0, -154.0), 180.0);
    EXPECT_EQ(CKvAngle::LongitudeDifferenceDegrees(-178.0, 2.0), -180.0);
    // Beyond +-180: a line carried on, unreduced.
    EXPECT_EQ(CKvAngle::LongitudeDifferenceDegrees(181.0, 150.0), 31.0);
    EXPECT_EQ(CKvAngle::LongitudeDifferenceDegrees(-181.0, 150.0), -331.0);
    EXPECT_EQ(CKvAngle::LongitudeDifferenceDegrees(510.0, 150.0), 360.0);
    EXPECT_TRUE(std::isnan(CKvAngle::LongitudeDifferenceDegrees(NAN, 0.0)));
    EXPECT_TRUE(std::isnan(CKvAngle::LongitudeDifferenceDegrees(10.0, NAN)));
    EXPECT_FALSE(std::isfinite(CKvAngle::LongitudeDifferenceDegrees(HUGE_VAL, 0.0)));

    // The longitude back: within [-180, 180]; an overshoot of +-180 by rounding stays on its side.
    EXPECT_EQ(CKvAngle::InverseLongitudeDegrees(-180.00000000000003), -180.0);
    EXPECT_EQ(CKvAngle::InverseLongitudeDegrees(180.00000000000003), 180.0);
    EXPECT_EQ(CKvAngle::InverseLongitudeDegrees(195.345), -164.655);
    EXPECT_EQ(CKvAngle::InverseLongitudeDegrees(-200.0), 160.0);
    EXPECT_EQ(CKvAngle::InverseLongitudeDegrees(179.5), 179.5);
    EXPECT_TRUE(std::isnan(CKvAngle::InverseLongitudeDegrees(NAN)));
}

TEST(Antimeridian, EnginesTakeTheEarthReducedAndLinesCarriedOnUnreduced)
{
    const CKvLambert1SP fiji("fiji", 0.9999, 178.0, -17.0, 2000000, 4000000, kWgs84);
    const CKvLambert2SP alaska10("alaska10", 53.0 + 5.0 / 6.0, 51.0 + 5.0 / 6.0, -176.0, 51.0, 1000000, 0, kGrs80);
    const CKvMercator1SP pdc("pdc", 1.0, 150.0, 0, 0, kWgs84);
    const CKvMercator2SP merc41("merc41", -41.0, 100.0, 0, 0, kWgs84);
    const CKvAlbersEqualArea alaska("alaska", 55, 65, -154, 50, 0, 0, kGrs80);
    const CKvAlbersEqualArea alaskaSphere("alaskaSphere", 55, 65, -154, 50, 0, 0, kSphere);
    const CKvEquidistantConic eqdc("eqdc", 40, 60, 178, 50, 0, 0, kGrs80);
    const CKvEquidistantConic eqdcSphere("eqdcSphere", 40, 60, 178, 50, 0, 0, kSphere);
    const CKvProjection* engines[] = {&fiji, &alaska10, &pdc, &merc41, &alaska, &alaskaSphere, &eqdc, &eqdcSphere};
    for (const CKvProjection* engine : engines) {
        double lon0, lat0;
        engine->GetOrigin(&lon0, &lat0);
        const double lat = lat0 != 0.0 ? lat0 : -30.0;
        // 180 and -180 are the same meridian, bit for bit.
        double xe, ye, xw, yw;
        engine->Geo2Proj(180.0, lat, &xe, &ye);
        engine->Geo2Proj(-180.0, lat, &xw, &yw);
        EXPECT_EQ(xe, xw) << engine->GetName();
        EXPECT_EQ(ye, yw) << engine->GetName();
        // Points near the antimeridian on either side come back within [-180, 180].
        for (double lon : {170.0, 179.0, 179.999, -179.999, -179.0, -170.0}) {
            double x, y, backLon, backLat;
            engine->Geo2Proj(lon, lat, &x, &y);
            engine->Proj2Geo(x, y, &backLon, &backLat);
            EXPECT_NEAR(backLon, lon, 1e-10) << engine->GetName() << " at " << lon;
            EXPECT_NEAR(backLat, lat, 1e-10) << engine->GetName() << " at " << lon;
        }
        // A line carried on from the origin's side past the antimeridian runs on
        // without a jump, in even steps, and its points come back reduced.
        const double side = lon0 > 0.0 ? 1.0 : -1.0;
        double previous[2] = {NAN, NAN}, step[2] = {NAN, NAN};
        for (int i = -3; i <= 3; ++i) {
            const double lon = side * (180.0 + 0.5 * i);
            double x, y, backLon, backLat;
            engine->Geo2Proj(lon, lat, &x, &y);
            if (i > -3) {
                const double dx = x - previous[0], dy = y - previous[1];
                if (i > -2) {
                    const double tolerance = 0.02 * std::hypot(step[0], step[1]) + 1.0;
                    EXPECT_NEAR(dx, step[0], tolerance) << engine->GetName() << " at " << lon;
                    EXPECT_NEAR(dy, step[1], tolerance) << engine->GetName() << " at " << lon;
                }
                step[0] = dx;
                step[1] = dy;
            }
            previous[0] = x;
            previous[1] = y;
            engine->Proj2Geo(x, y, &backLon, &backLat);
            EXPECT_NEAR(backLon, std::remainder(lon, 360.0), 1e-10) << engine->GetName() << " at " << lon;
            EXPECT_LE(std::fabs(backLon), 180.0);
        }
    }

    // World Mercator: -180 and 180 are the two edges, the world's width apart,
    // and each comes back on its own side; lon0 + 360 is one turn further east.
    const CKvMercator1SP world("world", 1.0, 0.0, 0, 0, kWgs84);
    double x1, y1, x2, y2, lon, lat;
    world.Geo2Proj(-180.0, 0.0, &x1, &y1);
    world.Geo2Proj(180.0, 0.0, &x2, &y2);
    EXPECT_NEAR(x1, -M_PI * 6378137.0, 1e-6);
    EXPECT_NEAR(x2, M_PI * 6378137.0, 1e-6);
    world.Proj2Geo(x1, y1, &lon, &lat);
    EXPECT_NEAR(lon, -180.0, 1e-12);
    world.Proj2Geo(x2, y2, &lon, &lat);
    EXPECT_NEAR(lon, 180.0, 1e-12);
    const Area area = DefaultArea(world);
    EXPECT_NEAR(area.x2 - area.x1, 2 * M_PI * 6378137.0, 1e-6);
}

TEST(ConicVariants, SelectionCloningAndDegenerateCases)
{
    const CKvAlbersEqualArea onSphere("a", 29.5, 45.5, -96, 23, 100, 200, kSphere);
    const CKvAlbersEqualArea onEllipsoid("a", 29.5, 45.5, -96, 23, 100, 200, kGrs80);
    EXPECT_EQ(onSphere.GetVariant(), CKvAlbersEqualArea::eSphereVariant);
    EXPECT_EQ(onEllipsoid.GetVariant(), CKvAlbersEqualArea::eEllipsoidVariant);
    ExpectProjects(onSphere, -96.0, 23.0, 100.0, 200.0);
    ExpectProjects(onEllipsoid, -96.0, 23.0, 100.0, 200.0);
    const CKvEquidistantConic eqdc("e", 33, 45, -96, 39, 100, 200, kGrs80);
    ExpectProjects(eqdc, -96.0, 39.0, 100.0, 200.0);

    // Equal parallels of the equidistant conic: n = sin(phi1), no division by zero.
    const CKvEquidistantConic tangent("t", 40, 40, 0, 40, 0, 0, kSphere);
    double x, y;
    tangent.Geo2Proj(10.0, 40.0, &x, &y);
    EXPECT_TRUE(std::isfinite(x) && std::isfinite(y));
    // On the tangent parallel the sphere's arc is R cos(phi1) times the longitude.
    EXPECT_NEAR(std::atan2(x, 6371229.0 * std::cos(40 * M_PI / 180) / std::sin(40 * M_PI / 180) - y),
                std::sin(40 * M_PI / 180) * 10 * M_PI / 180, 1e-12);

    // A clone owns its own variant.
    CKvProjection* copy = onEllipsoid.Clone();
    double cx, cy, ox, oy;
    copy->Geo2Proj(-80.0, 40.0, &cx, &cy);
    onEllipsoid.Geo2Proj(-80.0, 40.0, &ox, &oy);
    EXPECT_EQ(cx, ox);
    EXPECT_EQ(cy, oy);
    CKvEllipsoid figure;
    EXPECT_TRUE(copy->GetAnonymousEllipsoid(figure));
    EXPECT_TRUE(figure.IsEquivalent(kGrs80));
    copy->free();

    // Albers with opposite parallels has n = 0: not finite, not a crash.
    const CKvAlbersEqualArea opposite("o", 30, -30, 0, 0, 0, 0, kWgs84);
    opposite.Geo2Proj(5.0, 5.0, &x, &y);
    EXPECT_FALSE(std::isfinite(x) && std::isfinite(y));
}

TEST(ConicVariants, DefinitionWithoutKnownEllipsoidAnswersNaN)
{
    kvtest::ShippedCatalogue();
    CKvAlbersEqualAreaProjection unknown("u", "", "??", 29.5, 45.5, -96, 23, 0, 0);
    std::unique_ptr<CKvProjection> engine(unknown.CreateProjection());
    auto* albers = dynamic_cast<CKvAlbersEqualArea*>(engine.get());
    ASSERT_NE(albers, nullptr);
    EXPECT_EQ(albers->GetVariant(), CKvAlbersEqualArea::eNoVariant);
    // No figure, no point: every answer is NaN, never what the caller's variables held.
    kvtest::ExpectForwardNaN(*engine, -96.0, 23.0);
    kvtest::ExpectInverseNaN(*engine, 0.0, 0.0);
    EXPECT_TRUE(std::isnan(engine->GetConvergence(-96.0, 23.0)));
    Area area = DefaultArea(*engine);
    EXPECT_EQ(area.x1, 0.0);
    EXPECT_EQ(area.y2, 0.0);
    CKvEllipsoid figure;
    EXPECT_FALSE(engine->GetAnonymousEllipsoid(figure));

    CKvEquidistantConicProjection sphere("s", "", "XY", 33, 45, -96, 39, 0, 0);
    std::unique_ptr<CKvProjection> onSphere(sphere.CreateProjection());
    EXPECT_EQ(dynamic_cast<CKvEquidistantConic*>(onSphere.get())->GetVariant(), CKvEquidistantConic::eSphereVariant);
}

TEST(RotatedLongitudeLatitude, PolesOriginAndIdentity)
{
    const CKvRotatedLongitudeLatitude identity("identity", 0, -90, 0, kSphere);
    EXPECT_TRUE(identity.IsGeographical());
    ExpectProjects(identity, 37.5, -12.25, 37.5, -12.25, 1e-12);

    const CKvRotatedLongitudeLatitude cosmo("COSMO-EU", 10, -40, 0, kSphere);
    double x, y;
    cosmo.Geo2Proj(10.0, -40.0, &x, &y);
    EXPECT_NEAR(y, -90.0, 1e-9) << "the grid's south pole";
    cosmo.Geo2Proj(-170.0, 40.0, &x, &y);
    EXPECT_NEAR(y, 90.0, 1e-9) << "the grid's north pole";
    cosmo.GetOrigin(&x, &y);
    EXPECT_EQ(x, 10.0);
    EXPECT_EQ(y, 50.0);

    // The rotation angle shifts the rotated longitude only, without wrapping.
    const CKvRotatedLongitudeLatitude turned("turned", 10, -40, 200, kSphere);
    double x0, y0;
    cosmo.Geo2Proj(20.0, 50.0, &x0, &y0);
    turned.Geo2Proj(20.0, 50.0, &x, &y);
    EXPECT_NEAR(x, x0 - 200.0, 1e-9);
    EXPECT_NEAR(y, y0, 1e-12);

    // The two rotations are each other's inverse.
    const CMatrix product = cosmo.GetForwardRotation() * cosmo.GetInverseRotation();
    for (int k = 0; k < 3; ++k)
        for (int j = 0; j < 3; ++j)
            EXPECT_NEAR(product(j, k), j == k ? 1.0 : 0.0, 1e-15);

    // On the sphere the round trip is exact to rounding. On an ellipsoid a turned
    // surface vector no longer lies on the surface and its height is dropped, so
    // the round trip is only good to about 1e-4 degree: rotated grids belong on spheres.
    const CKvRotatedLongitudeLatitude onWgs("w", 10, -40, 5, kWgs84);
    for (double lat = -70; lat <= 70; lat += 35) {
        double lon, back;
        cosmo.Geo2Proj(25.0, lat, &x, &y);
        cosmo.Proj2Geo(x, y, &lon, &back);
        EXPECT_NEAR(lon, 25.0, 1e-12);
        EXPECT_NEAR(back, lat, 1e-12);
        onWgs.Geo2Proj(25.0, lat, &x, &y);
        onWgs.Proj2Geo(x, y, &lon, &back);
        EXPECT_NEAR(lon, 25.0, 5e-4);
        EXPECT_NEAR(back, lat, 5e-4);
    }
}

// (Every catalogue entry's record type and WKT name: EngineExamples' tests.)
TEST(EngineCatalogue, DefinitionsCreateTheirEnginesAndEnginesDescribeThemselves)
{
    kvtest::ShippedCatalogue();
    for (const char* name : {"UTM-32", "Lambert-93", "Jamaica National Grid", "Caspian Sea Mercator", "World Mercator",
                             "Conus Albers", "USA Contiguous Equidistant Conic", "COSMO-EU Rotated Pole"}) {
        CKvMapProjData* definition = CKvMapProjection::MapProjection(name);
        ASSERT_NE(definition, nullptr) << name;
        std::unique_ptr<CKvProjection> engine(definition->CreateProjection());
        ASSERT_NE(engine, nullptr) << name;
        EXPECT_STREQ(engine->GetName(), name);
        CKvEllipsoid figure;
        EXPECT_TRUE(engine->GetAnonymousEllipsoid(figure)) << name;
        const CKvPRJParser fromEngine(engine.get()), fromDefinition(definition);
        EXPECT_EQ(fromEngine.GetFalseEasting(), fromDefinition.GetFalseEasting()) << name;
        EXPECT_EQ(fromEngine.GetCentralMeridian(), fromDefinition.GetCentralMeridian()) << name;
        EXPECT_EQ(fromEngine.GetStandardParallel1(), fromDefinition.GetStandardParallel1()) << name;
    }
    // UTM-32 through the catalogue is the JHS engine on WGS 84.
    std::unique_ptr<CKvProjection> utm(CKvMapProjection::MapProjection("UTM-32")->CreateProjection());
    ASSERT_NE(dynamic_cast<CKvTransverseMercatorJHS*>(utm.get()), nullptr);
    ExpectProjects(*utm, 9.0, 0.0, 500000.0, 0.0);
    auto* jhs = dynamic_cast<CKvTransverseMercatorJHS*>(utm.get());
    CKvTransverseMercatorProjection copy;
    ASSERT_TRUE(jhs->GetMapProjection(copy));
    EXPECT_EQ(copy.GetCentre(), 9.0);
    // The built-in NON-UTM definition makes a local grid.
    std::unique_ptr<CKvProjection> local(CKvMapProjection::MapProjection("NON-UTM")->CreateProjection());
    EXPECT_TRUE(local->IsLocal());
}
