// The worked examples of IOGP Guidance Note 7-2 ("Coordinate Conversions and
// Transformations including Formulas"), reproduced to the millimetre, through the
// shipped catalogue where the grid is shipped; and the behaviour of the engines
// that those examples do not show.
#include "coordsys/KvMapProjection.h"
#include "projections/KvCassiniSoldner.h"
#include "projections/KvHotineCore.h"
#include "projections/KvKrovak.h"
#include "projections/KvLambertAzimuthalEqualArea.h"
#include "projections/KvNewZealandMapGrid.h"
#include "projections/KvObliqueMercator.h"
#include "projections/KvPolarStereographic.h"
#include "projections/KvStereographic.h"
#include "projections/KvStereographicNorthPole.h"
#include "projections/KvStereographicSouthPole.h"
#include "wkt/KvPRJParser.h"

#include "TestSupport.h"

#include <cmath>
#include <gtest/gtest.h>
#include <memory>

namespace {

double Dms(double d, double m, double s)
{
    return d < 0 ? d - m / 60 - s / 3600 : d + m / 60 + s / 3600;
}

std::unique_ptr<CKvProjection> Catalogue(const char* name)
{
    kvtest::ShippedCatalogue();
    CKvMapProjData* definition = CKvMapProjection::MapProjection(name);
    EXPECT_NE(definition, nullptr) << name;
    return std::unique_ptr<CKvProjection>(definition != nullptr ? definition->CreateProjection() : nullptr);
}

void ExpectExample(const CKvProjection& engine, double lon, double lat, double x, double y)
{
    double px, py, backLon, backLat;
    engine.Geo2Proj(lon, lat, &px, &py);
    EXPECT_NEAR(px, x, 0.005) << engine.GetName();
    EXPECT_NEAR(py, y, 0.005) << engine.GetName();
    engine.Proj2Geo(x, y, &backLon, &backLat);
    EXPECT_NEAR(backLon, lon, 1e-7) << engine.GetName(); // the published figures have centimetres
    EXPECT_NEAR(backLat, lat, 1e-7) << engine.GetName();
}

const CKvEllipsoid kWgs84("WGS 84", "WE", 6378137.0, 298.257223563);

} // namespace

TEST(PublishedExamples, ShippedGrids)
{
    // Oblique stereographic, Amersfoort / RD New.
    ExpectExample(*Catalogue("RD New"), 6.0, 53.0, 196105.283, 557057.739);
    // Polar stereographic variant A, WGS 84 / UPS North.
    ExpectExample(*Catalogue("UPS North"), 44.0, 73.0, 3320416.747, 632668.431);
    // Lambert azimuthal equal-area, ETRS89-extended / LAEA Europe.
    ExpectExample(*Catalogue("LAEA Europe"), 5.0, 50.0, 3962799.451, 2999718.853);
    // Krovak, S-JTSK: southing and westing in the classic form, and the east/north form.
    const double lon = Dms(16, 50, 59.179), lat = Dms(50, 12, 32.442);
    ExpectExample(*Catalogue("S-JTSK / Krovak"), lon, lat, 1050538.63, 568991.00);
    ExpectExample(*Catalogue("S-JTSK / Krovak East North"), lon, lat, -568991.00, -1050538.63);
}

TEST(PublishedExamples, GridsOfTheSameMethods)
{
    // Polar stereographic variant B, WGS 84 / Australian Antarctic Polar Stereographic.
    const CKvStereographicSouthPole antarctic("Australian Antarctic", -71.0, 70.0, 6000000, 6000000, kWgs84);
    ExpectExample(antarctic, 120.0, -75.0, 7255380.79, 7053389.56);
    // Cassini-Soldner, Trinidad 1903 / Trinidad Grid, in Clarke's links on Clarke 1858
    // (a = 20926348 ft = 31706587.88 links, b = 20855233 ft).
    const CKvEllipsoid clarke1858("Clarke 1858", "", 20926348.0 / 0.66, 20926348.0 / (20926348.0 - 20855233.0));
    const CKvCassiniSoldner trinidad("Trinidad", Dms(-61, 20, 0), Dms(10, 26, 30), 430000, 325000, clarke1858);
    ExpectExample(trinidad, Dms(-62, 0, 0), 10.0, 66644.94, 82536.22);
    // Hotine variant B with its own grid angle, Timbalai 1948 / RSO Borneo (m).
    const double deg = M_PI / 180;
    const CKvHotineCore borneo(6377298.556, CKvEllipsoid("", "", 6377298.556, 300.8017).GetEccentricity(), 0.99984,
                               115 * deg, 4 * deg, Dms(53, 18, 56.9537) * deg, Dms(53, 7, 48.3685) * deg, true,
                               590476.87, 442857.65);
    double x, y, l, p;
    borneo.Forward(Dms(115, 48, 19.8196) * deg, Dms(5, 23, 14.1129) * deg, &x, &y);
    EXPECT_NEAR(x, 679245.73, 0.005);
    EXPECT_NEAR(y, 596562.78, 0.005);
    borneo.Inverse(679245.73, 596562.78, &l, &p);
    EXPECT_NEAR(l / deg, Dms(115, 48, 19.8196), 1e-7);
    EXPECT_NEAR(p / deg, Dms(5, 23, 14.1129), 1e-7);
}

TEST(PolarStereographic, ScalesConvergenceAndAreas)
{
    // Variant B: the scale at the pole implied by the standard parallel; at the pole itself it is 1.
    const CKvStereographicNorthPole nsidc("NSIDC", 70.0, -45.0, 0, 0, kWgs84);
    double derived[1] = {0.0};
    nsidc.GetDerivedParameters(derived);
    EXPECT_NEAR(derived[0], 0.9698581903, 1e-9);
    // The same parallel written with the other sign is taken on the engine's own pole.
    const CKvStereographicNorthPole negative("negative", -70.0, -45.0, 0, 0, kWgs84);
    double x1, y1, x2, y2;
    nsidc.Geo2Proj(10.0, 75.0, &x1, &y1);
    negative.Geo2Proj(10.0, 75.0, &x2, &y2);
    EXPECT_EQ(x1, x2);
    EXPECT_EQ(y1, y2);
    const CKvPolarStereographic parallelAtPole("pole", 1.0, 0.0, 90.0, 0, 0, kWgs84);
    parallelAtPole.GetDerivedParameters(derived);
    EXPECT_EQ(derived[0], 1.0);
    // A latitude of origin off the pole is a standard parallel; the scale multiplies.
    const CKvPolarStereographic onParallel("parallel", 1.0, -45.0, 70.0, 0, 0, kWgs84);
    onParallel.Geo2Proj(10.0, 75.0, &x2, &y2);
    EXPECT_NEAR(x1, x2, 1e-6);
    EXPECT_NEAR(y1, y2, 1e-6);

    // The closed-form convergence is the direction of grid north measured on the map.
    for (const CKvProjection* engine :
         {static_cast<const CKvProjection*>(&nsidc), static_cast<const CKvProjection*>(&onParallel)}) {
        for (double lon : {-170.0, -45.0, 30.0, 135.0}) {
            double xa, ya, xb, yb;
            engine->Geo2Proj(lon, 80.0, &xa, &ya);
            engine->Geo2Proj(lon, 80.0 + 1e-6, &xb, &yb);
            const double measured = std::atan2(xa - xb, yb - ya) * 180 / M_PI;
            EXPECT_NEAR(std::remainder(engine->GetConvergence(lon, 80.0) - measured, 360.0), 0.0, 1e-5) << lon;
        }
    }
    const CKvStereographicSouthPole south("south", -71.0, 0.0, 0, 0, kWgs84);
    double xa, ya, xb, yb;
    south.Geo2Proj(60.0, -80.0, &xa, &ya);
    south.Geo2Proj(60.0, -80.0 + 1e-6, &xb, &yb);
    EXPECT_NEAR(south.GetConvergence(60.0, -80.0), std::atan2(xa - xb, yb - ya) * 180 / M_PI, 1e-5);

    // Default area: 3 degrees around the origin, clamped at the pole.
    const CKvPolarStereographic ups("UPS", 0.994, 0.0, 90.0, 2000000, 2000000, kWgs84);
    double a[4];
    ups.GetDefaultArea(&a[0], &a[1], &a[2], &a[3]);
    double px, py;
    ups.Geo2Proj(-3.0, 87.0, &px, &py);
    EXPECT_NEAR(a[0], px, 1e-6);
    EXPECT_NEAR(a[1], py, 1e-6);
    EXPECT_NEAR(a[2], 2000000.0, 1e-6) << "the upper corner is the pole";
}

TEST(KrovakAndNewZealandMapGrid, AxisFormsRoundTripsAndDegenerateInput)
{
    const CKvEllipsoid bessel("Bessel 1841", "BR", 6377397.155, 299.1528128);
    const CKvKrovak classic("classic", 0.9999, 78.5, Dms(24, 50, 0), 49.5, 30.28813975277778, 0, 1, 1, 0, 0, bessel);
    const CKvKrovak turned("turned", 0.9999, 78.5, Dms(24, 50, 0), 49.5, 30.28813975277778, 90, -1, 1, 100, 200,
                           bessel);
    // The east/north form is (-westing, -southing), then the false origin.
    double xs, yw, e, n;
    classic.Geo2Proj(14.4, 50.1, &xs, &yw);
    turned.Geo2Proj(14.4, 50.1, &e, &n);
    EXPECT_NEAR(e, -yw + 100, 1e-6);
    EXPECT_NEAR(n, -xs + 200, 1e-6);
    for (double lon = 12.0; lon <= 19.0; lon += 0.5)
        for (double lat = 48.5; lat <= 51.0; lat += 0.5) {
            double x, y, l, p;
            turned.Geo2Proj(lon, lat, &x, &y);
            turned.Proj2Geo(x, y, &l, &p);
            EXPECT_NEAR(l, lon, 1e-10);
            EXPECT_NEAR(p, lat, 1e-10);
        }

    const CKvNewZealandMapGrid nzmg("NZMG", 173.0, -41.0, 2510000, 6023150,
                                    CKvEllipsoid("International 1924", "IN", 6378388.0, 297.0));
    double x, y;
    nzmg.Geo2Proj(173.0, -41.0, &x, &y);
    EXPECT_NEAR(x, 2510000.0, 1e-6);
    EXPECT_NEAR(y, 6023150.0, 1e-6);
    // The inverse is exact to the forward's polynomial (Newton's method on it), over
    // the islands and on a ring 10 to 12 degrees out, where the polynomial
    // inverse starts far enough off to need a third step.
    for (double lon = 166.0; lon <= 179.0; lon += 1.0)
        for (double lat = -47.0; lat <= -34.0; lat += 1.0) {
            double l, p;
            nzmg.Geo2Proj(lon, lat, &x, &y);
            nzmg.Proj2Geo(x, y, &l, &p);
            EXPECT_NEAR(l, lon, 1e-12);
            EXPECT_NEAR(p, lat, 1e-12);
        }
    for (double lon = 161.0; lon <= 185.0; lon += 2.0)
        for (double lat : {-53.0, -51.0, -31.0, -29.0}) {
            double l, p;
            nzmg.Geo2Proj(lon, lat, &x, &y);
            nzmg.Proj2Geo(x, y, &l, &p);
            EXPECT_NEAR(std::remainder(l - lon, 360.0), 0.0, 1e-11); // 181 comes back as -179
            EXPECT_NEAR(p, lat, 1e-11);
        }

    // Points the formulas cannot map give non-finite numbers, not a crash.
    const CKvLambertAzimuthalEqualArea laea("laea", 10.0, 52.0, 0, 0, kWgs84);
    laea.Geo2Proj(-170.0, -52.0, &x, &y); // the antipode of the centre
    EXPECT_FALSE(std::isfinite(x) && std::isfinite(y));
    // The poles' images come back on the poles, on every aspect of the sphere,
    // where the sine of the latitude can round beyond 1.
    const CKvEllipsoid sphere("Sphere", "XY", 6371229.0, 0.0);
    for (double lat0 : {52.0, 0.0, -30.0}) {
        const CKvLambertAzimuthalEqualArea onSphere("laea", 10.0, lat0, 0, 0, sphere);
        for (double lon = -180.0; lon <= 180.0; lon += 7.0)
            for (double pole : {90.0, -90.0}) {
                double l, p;
                onSphere.Geo2Proj(lon, pole, &x, &y);
                onSphere.Proj2Geo(x, y, &l, &p);
                EXPECT_NEAR(p, pole, 1e-9) << lat0 << " " << lon;
            }
    }
    // Near the pole of a polar aspect the radius a sqrt(q_P - q) is a difference
    // of nearly equal numbers, which left centimetres at 1e-6 degree from the
    // pole. GeographicLib, ConicProj -a 90 90 -e 6378137 1/298.257222101 -p 9 on
    // GRS 80 (Albers with both parallels on the pole is this projection); the
    // south pole's aspect is its mirror image.
    const CKvEllipsoid grs80("GRS 1980", "RF", 6378137.0, 298.257222101);
    const CKvLambertAzimuthalEqualArea north("laea", 0.0, 90.0, 0, 0, grs80), south("laea", 0.0, -90.0, 0, 0, grs80);
    const struct
    {
        double lon, lat, x, y;
    } nearPole[3] = {{30.0, 89.9999, 5.584698978, -9.672982375},
                     {-120.0, 89.999999, -0.096729824, 0.055846990},
                     {135.0, 89.99, 789.795702570, 789.795702570}};
    for (const auto& c : nearPole) {
        north.Geo2Proj(c.lon, c.lat, &x, &y);
        EXPECT_NEAR(x, c.x, 1e-8) << c.lat;
        EXPECT_NEAR(y, c.y, 1e-8) << c.lat;
        south.Geo2Proj(c.lon, -c.lat, &x, &y);
        EXPECT_NEAR(x, c.x, 1e-8) << -c.lat;
        EXPECT_NEAR(y, -c.y, 1e-8) << -c.lat;
    }
}

TEST(EngineCatalogue, EveryTypeCreatesAnEngineThatDescribesItself)
{
    kvtest::ShippedCatalogue();
    const char* wktNames[21] = {"",
                                "Transverse_Mercator",
                                "Lambert_Conformal_Conic_2SP",
                                "Lambert_Conformal_Conic_1SP",
                                "Double_Stereographic",
                                "New_Zealand_Map_Grid",
                                "Hotine_Oblique_Mercator_Azimuth_Natural_Origin",
                                "Hotine_Oblique_Mercator_Azimuth_Center",
                                "Rectified_Skew_Orthomorphic_Natural_Origin",
                                "Rotated_Longitude_Latitude",
                                "Mercator_2SP",
                                "Mercator_1SP",
                                "Stereographic_North_Pole",
                                "Stereographic_South_Pole",
                                "Geographical",
                                "Krovak",
                                "Albers_Conic_Equal_Area",
                                "Lambert_Azimuthal_Equal_Area",
                                "Cassini_Soldner",
                                "Equidistant_Conic",
                                "Polar_Stereographic"};
    CKvCartSetup* setup = CKvCartSetup::Instance();
    for (auto it = setup->GetMapProjectionList().GetIteratorBegin();
         it != setup->GetMapProjectionList().GetIteratorEnd(); ++it) {
        const CKvMapProjData* definition = *it;
        std::unique_ptr<CKvProjection> engine(definition->CreateProjection());
        ASSERT_NE(engine, nullptr) << definition->GetName();
        if (definition->GetEllipsoidID().empty())
            continue; // the built-in LONG/LAT and NON-UTM
        const CKvPRJParser record(engine.get());
        EXPECT_EQ(record.GetProjectionType(), definition->GetProjectionType()) << definition->GetName();
        EXPECT_EQ(record.GetProjectionTypeName(), wktNames[definition->GetProjectionType()]) << definition->GetName();
        // The origin of every grid projects to finite coordinates, and back.
        double lon, lat, x, y, backLon, backLat;
        engine->GetOrigin(&lon, &lat);
        if (std::fabs(lat) >= 90.0 || definition->GetProjectionType() == CKvMapProjData::eRotatedLongitudeLatitude)
            lat = std::fabs(lat) >= 90.0 ? std::copysign(85.0, lat) : 10.0;
        engine->Geo2Proj(lon + 0.5, lat, &x, &y);
        ASSERT_TRUE(std::isfinite(x) && std::isfinite(y)) << definition->GetName();
        engine->Proj2Geo(x, y, &backLon, &backLat);
        EXPECT_NEAR(std::remainder(backLon - (lon + 0.5), 360.0), 0.0, 1e-7) << definition->GetName();
        EXPECT_NEAR(backLat, lat, 1e-7) << definition->GetName();
        // A clone behaves as the original.
        std::unique_ptr<CKvProjection> copy(engine->Clone());
        double cx, cy;
        copy->Geo2Proj(lon + 0.5, lat, &cx, &cy);
        EXPECT_EQ(cx, x);
        EXPECT_EQ(cy, y);
    }
}

TEST(ObliqueMercator, CentreLineDueEastStaysFiniteForEveryRounding)
{
    // Swiss LV03's centre line runs due east; the origin longitude must not turn
    // into NaN however the centre's longitude was rounded when it was written.
    const CKvEllipsoid bessel("Bessel 1841", "BR", 6377397.155, 299.1528128);
    for (double lonC : {7.43958333333333, 7.439583333333333, Dms(7, 26, 22.5), 7.4395833})
        for (double latC : {46.9524055555556, Dms(46, 57, 8.66)}) {
            const CKvObliqueMercator lv03("LV03", 1.0, lonC, latC, 90.0, 600000, 200000, bessel);
            double x, y, lon, lat;
            lv03.Geo2Proj(8.5, 47.1, &x, &y);
            EXPECT_NEAR(x, 680488.49, 0.5) << lonC;
            EXPECT_NEAR(y, 216950.77, 0.5) << lonC;
            lv03.Proj2Geo(x, y, &lon, &lat);
            EXPECT_NEAR(lon, 8.5, 1e-10);
            EXPECT_NEAR(lat, 47.1, 1e-10);
        }
}
