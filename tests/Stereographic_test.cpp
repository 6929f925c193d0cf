// The stereographic family and the Lambert grids with a pole for false origin,
// against PROJ (tools/make_stereographic_vectors.py wrote the vectors): the
// oblique stereographic on either pole, the Belgian Lambert grids and the
// registry's polar stereographic systems; the origins the engines report.
#include "catalogue/KvCassiniSoldnerProjection.h"
#include "coordsys/KvMapProjection.h"
#include "projections/KvCassiniSoldner.h"
#include "projections/KvLambert1SP.h"
#include "projections/KvLambert2SP.h"
#include "projections/KvLambertAzimuthalEqualArea.h"
#include "projections/KvPolarStereographic.h"
#include "projections/KvStereographic.h"
#include "projections/KvStereographicNorthPole.h"
#include "projections/KvStereographicSouthPole.h"
#include "wkt/KvPRJParser.h"

#include "TestSupport.h"

#include <cmath>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();

const CKvEllipsoid kWgs84("WGS 84", "WE", 6378137.0, 298.257223563);
const CKvEllipsoid kGrs80("GRS 1980", "RF", 6378137.0, 298.257222101);
const CKvEllipsoid kBessel("Bessel 1841", "BR", 6377397.155, 299.1528128);
const CKvEllipsoid kIntl("International 1924", "IN", 6378388.0, 297.0);
const CKvEllipsoid kSphere("Sphere", "", 6371229.0, 0.0);

struct SPoint
{
    double lon, lat, x, y, convergence;
};

struct SCase
{
    std::string engine, label;
    double a = 0.0, invf = 0.0;
    std::vector<double> params;
    std::vector<SPoint> points;
};

const std::vector<SCase>& Cases()
{
    static const std::vector<SCase> cases = [] {
        std::vector<SCase> all;
        std::ifstream in(std::string(KVCART_TEST_DATA_DIR) + "stereographic_vectors.txt");
        std::string line;
        while (std::getline(in, line)) {
            if (line.empty() || line[0] == '#')
                continue;
            std::istringstream fields(line);
            if (line.compare(0, 5, "CASE ") == 0) {
                std::string tag;
                SCase c;
                fields >> tag >> c.engine >> c.label >> c.a >> c.invf;
                for (double v; fields >> v;)
                    c.params.push_back(v);
                all.push_back(c);
            } else if (!all.empty()) {
                SPoint p{0, 0, 0, 0, kNaN};
                fields >> p.lon >> p.lat >> p.x >> p.y;
                if (!(fields >> p.convergence))
                    p.convergence = kNaN;
                all.back().points.push_back(p);
            }
        }
        return all;
    }();
    return cases;
}

std::unique_ptr<CKvProjection> MakeEngine(const SCase& c)
{
    const CKvEllipsoid e(c.label, "", c.a, c.invf);
    const std::vector<double>& p = c.params;
    if (c.engine == "sterea")
        return std::make_unique<CKvStereographic>(c.label, p[0], p[1], p[2], p[3], p[4], e);
    if (c.engine == "lcc2")
        return std::make_unique<CKvLambert2SP>(c.label, p[0], p[1], p[2], p[3], p[4], p[5], e);
    if (c.engine == "stere")
        return std::make_unique<CKvPolarStereographic>(c.label, p[0], p[1], p[2], p[3], p[4], e);
    if (c.engine == "sterenp")
        return std::make_unique<CKvStereographicNorthPole>(c.label, p[0], p[1], p[2], p[3], e);
    if (c.engine == "stereps")
        return std::make_unique<CKvStereographicSouthPole>(c.label, p[0], p[1], p[2], p[3], e);
    return nullptr;
}

double AngleDifference(double a, double b)
{
    return std::fabs(std::remainder(a - b, 360.0));
}

struct SWorst
{
    double forward = 0.0, inverse = 0.0, roundTrip = 0.0, convergence = 0.0;
    size_t points = 0;
};

// A non-finite error is the worst of all (std::max would drop a NaN).
void Worse(double& current, double error)
{
    current = std::isfinite(error) ? std::max(current, error) : HUGE_VAL;
}

// Every case of one engine against its reference: forward (metres), inverse of the
// reference's grid point and round trip (degrees; the longitude of a pole means
// nothing), and the convergence where the reference has one.
SWorst CheckEngine(const std::string& engine, double forwardBound, double inverseBound, double convergenceBound = 0.0)
{
    SWorst worst;
    int count = 0;
    for (const SCase& c : Cases()) {
        if (c.engine != engine)
            continue;
        ++count;
        const std::unique_ptr<CKvProjection> e = MakeEngine(c);
        SWorst one;
        for (const SPoint& p : c.points) {
            double x, y, lon, lat, lon2, lat2;
            e->Geo2Proj(p.lon, p.lat, &x, &y);
            Worse(one.forward, std::hypot(x - p.x, y - p.y));
            const bool pole = std::fabs(p.lat) == 90.0;
            e->Proj2Geo(p.x, p.y, &lon, &lat);
            Worse(one.inverse, std::max(pole ? 0.0 : AngleDifference(lon, p.lon), std::fabs(lat - p.lat)));
            e->Proj2Geo(x, y, &lon2, &lat2);
            Worse(one.roundTrip, std::max(pole ? 0.0 : AngleDifference(lon2, p.lon), std::fabs(lat2 - p.lat)));
            if (std::isfinite(p.convergence) && !pole)
                Worse(one.convergence, AngleDifference(e->GetConvergence(p.lon, p.lat), p.convergence));
            ++one.points;
        }
        EXPECT_LE(one.forward, forwardBound) << engine << " " << c.label;
        EXPECT_LE(one.inverse, inverseBound) << engine << " " << c.label;
        EXPECT_LE(one.roundTrip, inverseBound) << engine << " " << c.label;
        EXPECT_LE(one.convergence, convergenceBound) << engine << " " << c.label;
        Worse(worst.forward, one.forward);
        Worse(worst.inverse, one.inverse);
        Worse(worst.roundTrip, one.roundTrip);
        Worse(worst.convergence, one.convergence);
        worst.points += one.points;
    }
    EXPECT_GT(count, 0) << engine;
    std::printf("[ measured ] %-8s %zu points: forward %.3g m, inverse %.3g deg, round trip %.3g deg, "
                "convergence %.3g deg\n",
                engine.c_str(), worst.points, worst.forward, worst.inverse, worst.roundTrip, worst.convergence);
    return worst;
}

} // namespace

TEST(StereographicVectors, EveryFamilyIsThere)
{
    size_t points = 0;
    for (const SCase& c : Cases()) {
        EXPECT_GT(c.points.size(), 50u) << c.label;
        points += c.points.size();
    }
    EXPECT_EQ(Cases().size(), 27u);
    EXPECT_GT(points, 10000u);
}

// The oblique (double) stereographic on either pole, GRS 80, k = 1, no false origin,
// also with the latitude of origin a rounding beyond the pole as a WKT degree of
// 16 digits makes it (it put every point of the map at the origin).
TEST(ObliqueStereographic, OriginOnEitherPole)
{
    CheckEngine("sterea", 1e-3, 1e-9);
    for (double lat0 : {90.0, std::nextafter(90.0, 91.0), 90.00000000000001})
        for (int pole : {1, -1}) {
            const CKvStereographic engine("pole", 1.0, 0.0, pole * lat0, 0.0, 0.0, kGrs80);
            double x, y, lon, lat;
            engine.Geo2Proj(0.0, pole * 89.0, &x, &y);
            EXPECT_NEAR(x, 0.0, 1e-6) << lat0;
            EXPECT_NEAR(y, -pole * 111696.700, 1e-3) << lat0; // PROJ sterea
            engine.Proj2Geo(x, y, &lon, &lat);
            EXPECT_NEAR(lat, pole * 89.0, 1e-11);
            EXPECT_NEAR(lon, 0.0, 1e-11);
            engine.GetOrigin(&lon, &lat);
            EXPECT_EQ(lat, pole * 90.0) << "the origin is the pole itself";
        }
    // The same through WKT, whose degree of 16 digits made the latitude 90.00000000000001.
    const std::string wkt = "PROJCS[\"Polar sterea\",GEOGCS[\"GCS_GRS_1980\",DATUM[\"D_GRS_1980\","
                            "SPHEROID[\"GRS_1980\",6378137.0,298.257222101]],PRIMEM[\"Greenwich\",0.0],"
                            "UNIT[\"Degree\",0.0174532925199433]],PROJECTION[\"Double_Stereographic\"],"
                            "PARAMETER[\"False_Easting\",0.0],PARAMETER[\"False_Northing\",0.0],"
                            "PARAMETER[\"Central_Meridian\",0.0],PARAMETER[\"Scale_Factor\",1.0],"
                            "PARAMETER[\"Latitude_Of_Origin\",90.0],UNIT[\"Meter\",1.0]]";
    const CKvMapProjection system(wkt);
    ASSERT_NE(system.GetProjection(), nullptr) << system.GetMessage();
    double x, y;
    system.Geo2Proj(0.0, 89.0, &x, &y);
    EXPECT_NEAR(x, 0.0, 1e-6);
    EXPECT_NEAR(y, -111696.700, 1e-3);
    system.Geo2Proj(45.0, 60.0, &x, &y);
    EXPECT_GT(std::hypot(x, y), 3e6);
}

TEST(ObliqueStereographic, UnusableParametersGiveNaN)
{
    const CKvEllipsoid unknown("unknown", "", 0.0, 0.0);
    const CKvStereographic noFigure("none", 1.0, 5.0, 52.0, 1000.0, 2000.0, unknown);
    const CKvStereographic beyondPole("beyond", 1.0, 5.0, 95.0, 1000.0, 2000.0, kBessel);
    const CKvStereographic noScale("scale", 0.0, 5.0, 52.0, 1000.0, 2000.0, kBessel);
    for (const CKvStereographic* engine : {&noFigure, &beyondPole, &noScale}) {
        double x, y, lon, lat;
        engine->Geo2Proj(5.0, 52.0, &x, &y);
        EXPECT_TRUE(std::isnan(x) && std::isnan(y)) << engine->GetName();
        engine->Proj2Geo(1000.0, 2000.0, &lon, &lat);
        EXPECT_TRUE(std::isnan(lon) && std::isnan(lat)) << engine->GetName();
    }
}

// Belgian Lambert 72 and Belge Lambert 50 count from the north pole; with the
// latitude of the false origin a rounding beyond 90 (a WKT degree of 16 digits)
// the northing and the inverse were NaN. The mirror image about the equator
// counts from the south pole.
TEST(LambertPoleOrigin, BelgianGridsAndTheirMirror)
{
    CheckEngine("lcc2", 1e-3, 1e-9);
    for (double lat0 : {90.0, 90.00000000000001}) {
        const CKvLambert2SP lb72("BD72 / Belgian Lambert 72", 51.16666723333333, 49.8333339, 4.367486666666666, lat0,
                                 150000.013, 5400088.438, kIntl);
        double x, y, lon, lat;
        lb72.Geo2Proj(4.3675, 50.8, &x, &y);
        EXPECT_NEAR(x, 150000.953, 1e-3) << lat0; // PROJ, EPSG:31370
        EXPECT_NEAR(y, 165443.906, 1e-3) << lat0;
        lb72.Proj2Geo(150000.953, 165443.906, &lon, &lat);
        EXPECT_NEAR(lon, 4.3675, 1e-8) << lat0;
        EXPECT_NEAR(lat, 50.8, 1e-8) << lat0;
        // The false origin is the pole, and back.
        lb72.Proj2Geo(150000.013, 5400088.438, &lon, &lat);
        EXPECT_EQ(lat, 90.0);
        EXPECT_NEAR(lon, 4.367486666666666, 1e-12);
    }
    // On the south pole, the apex of a southern cone.
    const CKvLambert2SP south("south", -51.16666723333333, -49.8333339, 4.367486666666666, -90.00000000000001,
                              150000.013, 5400088.438, kIntl);
    double lon, lat;
    south.Proj2Geo(150000.013, 5400088.438, &lon, &lat);
    EXPECT_EQ(lat, -90.0);
    // A false origin on the other pole lies at infinity: no grid.
    const CKvLambert2SP farPole("far", 51.16666723333333, 49.8333339, 4.367486666666666, -90.0, 150000.013,
                                5400088.438, kIntl);
    double x, y;
    farPole.Geo2Proj(4.3675, 50.8, &x, &y);
    EXPECT_TRUE(std::isnan(y));
    // One standard parallel on a pole is no cone (the polar stereographic): PROJ
    // refuses it, and the engine gives NaN rather than infinities.
    for (double lat0 : {90.0, 90.00000000000001, -90.0}) {
        const CKvLambert1SP polar("1sp", 0.994, 0.0, lat0, 2000000.0, 2000000.0, kWgs84);
        polar.Geo2Proj(10.0, std::copysign(80.0, lat0), &x, &y);
        EXPECT_TRUE(std::isnan(x) && std::isnan(y)) << lat0 << ": " << x << ", " << y;
        polar.Proj2Geo(2000000.0, 1000000.0, &lon, &lat);
        EXPECT_TRUE(std::isnan(lon) && std::isnan(lat)) << lat0;
    }
}

// The WKT that GDAL writes for EPSG:31370 and EPSG:21500 (the latter on the
// Brussels meridian), read as a host reads a .prj file.
TEST(LambertPoleOrigin, BelgianGridsFromWkt)
{
    const std::string lb72 =
        "PROJCS[\"BD72 / Belgian Lambert 72\",GEOGCS[\"BD72\",DATUM[\"Reseau_National_Belge_1972\","
        "SPHEROID[\"International 1924\",6378388,297]],PRIMEM[\"Greenwich\",0],"
        "UNIT[\"degree\",0.0174532925199433]],PROJECTION[\"Lambert_Conformal_Conic_2SP\"],"
        "PARAMETER[\"latitude_of_origin\",90],PARAMETER[\"central_meridian\",4.36748666666667],"
        "PARAMETER[\"standard_parallel_1\",51.1666672333333],PARAMETER[\"standard_parallel_2\",49.8333339],"
        "PARAMETER[\"false_easting\",150000.013],PARAMETER[\"false_northing\",5400088.438],UNIT[\"metre\",1]]";
    const std::string lb50 =
        "PROJCS[\"BD50 (Brussels) / Belge Lambert 50\",GEOGCS[\"BD50 (Brussels)\","
        "DATUM[\"Reseau_National_Belge_1950_Brussels\",SPHEROID[\"International 1924\",6378388,297]],"
        "PRIMEM[\"Brussels\",4.367975],UNIT[\"degree\",0.0174532925199433]],"
        "PROJECTION[\"Lambert_Conformal_Conic_2SP\"],PARAMETER[\"latitude_of_origin\",90],"
        "PARAMETER[\"central_meridian\",0],PARAMETER[\"standard_parallel_1\",49.8333333333333],"
        "PARAMETER[\"standard_parallel_2\",51.1666666666667],PARAMETER[\"false_easting\",150000],"
        "PARAMETER[\"false_northing\",5400000],UNIT[\"metre\",1]]";
    for (const SCase& c : Cases()) {
        const bool is72 = c.label == "EPSG31370", is50 = c.label == "EPSG21500";
        if (!is72 && !is50)
            continue;
        const CKvMapProjection system(is72 ? lb72 : lb50);
        ASSERT_NE(system.GetProjection(), nullptr) << c.label << system.GetMessage();
        double worst = 0.0, worstInverse = 0.0;
        for (const SPoint& p : c.points) {
            double x, y, lon, lat;
            system.Geo2Proj(p.lon, p.lat, &x, &y);
            Worse(worst, std::hypot(x - p.x, y - p.y));
            system.Proj2Geo(p.x, p.y, &lon, &lat);
            Worse(worstInverse, std::max(AngleDifference(lon, p.lon), std::fabs(lat - p.lat)));
        }
        // The 15-digit parameters of the text against the registry's own.
        EXPECT_LE(worst, 1e-3) << c.label;
        EXPECT_LE(worstInverse, 1e-9) << c.label;
    }
}

// EPSG 5041, 5042, 32661, 32761 (UPS, variant A), 3031, 3413, 3976 (variant B) by
// the registry's definitions, from the equator to the pole.
TEST(PolarStereographic, RegistrySystemsAgainstProj)
{
    CheckEngine("stere", 1e-3, 1e-9);
    CheckEngine("sterenp", 1e-3, 1e-9);
    CheckEngine("stereps", 1e-3, 1e-9);
}

TEST(PolarStereographic, EdgesAndUnusableParameters)
{
    double x, y, lon, lat;
    // The other pole lies at infinity.
    const CKvPolarStereographic ups("ups", 0.994, 0.0, 90.0, 2000000.0, 2000000.0, kWgs84);
    ups.Geo2Proj(0.0, -90.0, &x, &y);
    EXPECT_TRUE(std::isnan(x) && std::isnan(y));
    ups.Geo2Proj(0.0, -89.0, &x, &y);
    EXPECT_TRUE(std::isfinite(x) && std::isfinite(y));
    const CKvStereographicSouthPole antarctic("south", -71.0, 0.0, 0.0, 0.0, kWgs84);
    antarctic.Geo2Proj(30.0, 90.0, &x, &y);
    EXPECT_TRUE(std::isnan(x) && std::isnan(y));
    // A unit rounding beyond the pole is the pole.
    const CKvPolarStereographic over("over", 0.994, 0.0, 90.00000000000001, 2000000.0, 2000000.0, kWgs84);
    double ox, oy;
    ups.Geo2Proj(30.0, 80.0, &x, &y);
    over.Geo2Proj(30.0, 80.0, &ox, &oy);
    EXPECT_EQ(ox, x);
    EXPECT_EQ(oy, y);
    // No figure, no scale, a parallel beyond the pole: no map.
    const CKvEllipsoid unknown("unknown", "", 0.0, 0.0);
    const CKvEllipsoid flat("flat", "", 6378137.0, 1.0); // e = 1
    std::vector<std::unique_ptr<CKvProjection>> unusable;
    unusable.emplace_back(new CKvPolarStereographic("a0", 0.994, 0.0, 90.0, 2000000.0, 2000000.0, unknown));
    unusable.emplace_back(new CKvPolarStereographic("e1", 0.994, 0.0, 90.0, 2000000.0, 2000000.0, flat));
    unusable.emplace_back(new CKvPolarStereographic("k0", 0.0, 0.0, 90.0, 2000000.0, 2000000.0, kWgs84));
    unusable.emplace_back(new CKvPolarStereographic("k-", -0.994, 0.0, -90.0, 2000000.0, 2000000.0, kWgs84));
    unusable.emplace_back(new CKvPolarStereographic("95", 1.0, 0.0, 95.0, 0.0, 0.0, kWgs84));
    unusable.emplace_back(new CKvStereographicNorthPole("np", 70.0, -45.0, 0.0, 0.0, unknown));
    unusable.emplace_back(new CKvStereographicNorthPole("np95", 95.0, -45.0, 0.0, 0.0, kWgs84));
    unusable.emplace_back(new CKvStereographicSouthPole("sp", -71.0, 0.0, 0.0, 0.0, unknown));
    for (const auto& engine : unusable) {
        engine->Geo2Proj(10.0, std::string(engine->GetName()) == "k-" ? -80.0 : 80.0, &x, &y);
        EXPECT_TRUE(std::isnan(x) && std::isnan(y)) << engine->GetName() << ": " << x << ", " << y;
        engine->Proj2Geo(100000.0, 100000.0, &lon, &lat);
        EXPECT_TRUE(std::isnan(lon) && std::isnan(lat)) << engine->GetName() << ": " << lon << ", " << lat;
    }
}

// The origin comes back in the degrees it was given, not converted to radians and
// back (15 would come back as 14.999999999999998, -30 as -29.999999999999996).
TEST(StereographicFamily, OriginInTheDegreesGiven)
{
    const CKvEllipsoid& e = kWgs84;
    std::vector<std::unique_ptr<CKvProjection>> engines;
    engines.emplace_back(new CKvStereographic("sterea", 1.0, 15.0, -30.0, 0.0, 0.0, e));
    engines.emplace_back(new CKvLambertAzimuthalEqualArea("laea", 15.0, -30.0, 0.0, 0.0, e));
    engines.emplace_back(new CKvLambertAzimuthalEqualArea("laea sphere", 15.0, -30.0, 0.0, 0.0, kSphere));
    engines.emplace_back(new CKvCassiniSoldner("cass", 15.0, -30.0, 0.0, 0.0, e));
    engines.emplace_back(new CKvCassiniSoldner("cass sphere", 15.0, -30.0, 0.0, 0.0, kSphere));
    for (const auto& engine : engines) {
        double lon, lat;
        engine->GetOrigin(&lon, &lat);
        EXPECT_EQ(lon, 15.0) << engine->GetName();
        EXPECT_EQ(lat, -30.0) << engine->GetName();
    }
    const CKvPolarStereographic polar("polar", 1.0, 15.0, -71.0, 0.0, 0.0, e);
    const CKvStereographicNorthPole north("north", 70.0, 15.0, 0.0, 0.0, e);
    const CKvStereographicSouthPole south("south", -71.0, 15.0, 0.0, 0.0, e);
    double lon, lat;
    polar.GetOrigin(&lon, &lat);
    EXPECT_EQ(lon, 15.0);
    EXPECT_EQ(lat, -71.0);
    north.GetOrigin(&lon, &lat);
    EXPECT_EQ(lon, 15.0);
    EXPECT_EQ(lat, 90.0);
    south.GetOrigin(&lon, &lat);
    EXPECT_EQ(lon, 15.0);
    EXPECT_EQ(lat, -90.0);
}
