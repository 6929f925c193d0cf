// The stereographic family and the Lambert grids with a pole for false origin,
// against PROJ (tools/make_stereographic_vectors.py wrote the vectors): Snyder's
// ellipsoidal stereographic at every kind of origin, the oblique stereographic on
// either pole, the Belgian Lambert grids and the registry's polar stereographic
// systems; then the edges of the Snyder engine's domain and its catalogue type.
#include "catalogue/KvCassiniSoldnerProjection.h"
#include "catalogue/KvMapProjectionList.h"
#include "catalogue/KvStereographicSnyderProjection.h"
#include "coordsys/KvMapProjection.h"
#include "paramfile/Gxr.h"
#include "projections/KvCassiniSoldner.h"
#include "projections/KvLambert1SP.h"
#include "projections/KvLambert2SP.h"
#include "projections/KvLambertAzimuthalEqualArea.h"
#include "projections/KvPolarStereographic.h"
#include "projections/KvStereographic.h"
#include "projections/KvStereographicNorthPole.h"
#include "projections/KvStereographicSnyder.h"
#include "projections/KvStereographicSouthPole.h"
#include "wkt/KvPRJParser.h"

#include "TestSupport.h"

#include <cmath>
#include <cstdint>
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
const double kInf = std::numeric_limits<double>::infinity();

const CKvEllipsoid kWgs84("WGS 84", "WE", 6378137.0, 298.257223563);
const CKvEllipsoid kGrs80("GRS 1980", "RF", 6378137.0, 298.257222101);
const CKvEllipsoid kBessel("Bessel 1841", "BR", 6377397.155, 299.1528128);
const CKvEllipsoid kIntl("International 1924", "IN", 6378388.0, 297.0);
const CKvEllipsoid kSphere("Sphere", "", 6371229.0, 0.0);

// The Dutch RD parameters, on Bessel.
constexpr double kRdK0 = 0.9999079, kRdLon0 = 5.38763888888889, kRdLat0 = 52.1561605555556;

using SCase = kvtest::VectorCase;

const std::vector<SCase>& Cases()
{
    static const std::vector<SCase> cases =
        kvtest::LoadVectorCases(std::string(KVCART_TEST_DATA_DIR) + "stereographic_vectors.txt");
    return cases;
}

std::unique_ptr<CKvProjection> MakeEngine(const SCase& c)
{
    const CKvEllipsoid e(c.label, "", c.a, c.invf);
    const std::vector<double>& p = c.params;
    if (c.engine == "snyder")
        return std::make_unique<CKvStereographicSnyder>(c.label, p[0], p[1], p[2], p[3], p[4], e);
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

// Every case of one engine against its reference: forward (metres), inverse of the
// reference's grid point and round trip (degrees), and the convergence where the
// reference has one.
kvtest::CaseErrors CheckEngine(const std::string& engine, double forwardBound, double inverseBound,
                               double convergenceBound = 0.0)
{
    kvtest::CaseErrors worst;
    int count = 0;
    for (const SCase& c : Cases()) {
        if (c.engine != engine)
            continue;
        ++count;
        const kvtest::CaseErrors one = kvtest::MeasureCase(*MakeEngine(c), c);
        EXPECT_LE(one.forward, forwardBound) << engine << " " << c.label;
        EXPECT_LE(one.inverse, inverseBound) << engine << " " << c.label;
        EXPECT_LE(one.roundTrip, inverseBound) << engine << " " << c.label;
        EXPECT_LE(one.convergence, convergenceBound) << engine << " " << c.label;
        worst.Add(one);
    }
    EXPECT_GT(count, 0) << engine;
    std::printf("[ measured ] %-8s %zu points: forward %.3g m, inverse %.3g deg, round trip %.3g deg, "
                "convergence %.3g deg\n",
                engine.c_str(), worst.points, worst.forward, worst.inverse, worst.roundTrip, worst.convergence);
    return worst;
}

// A deterministic stream of numbers in [0, 1).
class CUniform
{
public:
    explicit CUniform(std::uint64_t seed) : m_state(seed) {}
    double Next()
    {
        m_state = m_state * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<double>(m_state >> 11) / 9007199254740992.0;
    }

private:
    std::uint64_t m_state;
};

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

// Snyder's stereographic (PROJ's stere) at oblique origins (the Dutch RD parameters,
// 46 N, 30 S), on the equator, on both poles and on a sphere: within 1 mm out to
// 120 degrees of longitude from the origin; the convergence within PROJ's own
// numerical differentiation.
TEST(StereographicSnyder, AgainstProjAtEveryOrigin)
{
    const kvtest::CaseErrors worst = CheckEngine("snyder", 1e-3, 1e-9, 1e-6);
    EXPECT_LE(worst.roundTrip, 1e-11);
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
        SCOPED_TRACE(lat0);
        kvtest::ExpectForward(lb72, 4.3675, 50.8, 150000.953, 165443.906, 1e-3); // PROJ, EPSG:31370
        kvtest::ExpectInverse(lb72, 150000.953, 165443.906, 4.3675, 50.8, 1e-8);
        // The false origin is the pole, and back.
        double lon, lat;
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
    const CKvLambert2SP farPole("far", 51.16666723333333, 49.8333339, 4.367486666666666, -90.0, 150000.013, 5400088.438,
                                kIntl);
    double x, y;
    farPole.Geo2Proj(4.3675, 50.8, &x, &y);
    EXPECT_TRUE(std::isnan(y));
    // One standard parallel on a pole is no cone (the polar stereographic): PROJ
    // refuses it, and the engine gives NaN rather than infinities.
    for (double lat0 : {90.0, 90.00000000000001, -90.0}) {
        const CKvLambert1SP polar("1sp", 0.994, 0.0, lat0, 2000000.0, 2000000.0, kWgs84);
        kvtest::ExpectForwardNaN(polar, 10.0, std::copysign(80.0, lat0));
        kvtest::ExpectInverseNaN(polar, 2000000.0, 1000000.0);
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
        const kvtest::CaseErrors worst = kvtest::MeasureCase(system, c);
        // The 15-digit parameters of the text against the registry's own.
        EXPECT_LE(worst.forward, 1e-3) << c.label;
        EXPECT_LE(worst.inverse, 1e-9) << c.label;
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

TEST(PolarStereographic, Edges)
{
    // The other pole lies at infinity.
    const CKvPolarStereographic ups("ups", 0.994, 0.0, 90.0, 2000000.0, 2000000.0, kWgs84);
    kvtest::ExpectForwardNaN(ups, 0.0, -90.0);
    double x, y, ox, oy;
    ups.Geo2Proj(0.0, -89.0, &x, &y);
    EXPECT_TRUE(std::isfinite(x) && std::isfinite(y));
    kvtest::ExpectForwardNaN(CKvStereographicSouthPole("south", -71.0, 0.0, 0.0, 0.0, kWgs84), 30.0, 90.0);
    // A unit rounding beyond the pole is the pole.
    const CKvPolarStereographic over("over", 0.994, 0.0, 90.00000000000001, 2000000.0, 2000000.0, kWgs84);
    ups.Geo2Proj(30.0, 80.0, &x, &y);
    over.Geo2Proj(30.0, 80.0, &ox, &oy);
    EXPECT_EQ(ox, x);
    EXPECT_EQ(oy, y);
}

// 1 000 random points within 60 degrees of each origin: geographic to grid and back
// to 1e-11 degree, grid to geographic and back to 6 mm (far less in fact).
TEST(StereographicSnyder, RoundTrips)
{
    struct SOrigin
    {
        double k0, lon0, lat0;
        const CKvEllipsoid* figure;
    };
    const SOrigin origins[] = {{kRdK0, kRdLon0, kRdLat0, &kBessel}, {0.9999, 10.0, 46.0, &kWgs84},
                               {1.0, 25.0, -30.0, &kGrs80},         {1.0, -60.0, 0.0, &kWgs84},
                               {0.994, 0.0, 90.0, &kWgs84},         {0.97276901289, 70.0, -90.0, &kGrs80},
                               {0.9999, 5.0, 52.0, &kSphere}};
    for (const SOrigin& o : origins) {
        const CKvStereographicSnyder engine("trip", o.k0, o.lon0, o.lat0, 150000.0, 450000.0, *o.figure);
        CUniform random(12345);
        double worstAngle = 0.0, worstGround = 0.0, worstGrid = 0.0;
        for (int i = 0; i < 1000; ++i) {
            const double lat = std::max(-90.0, std::min(90.0, o.lat0 + (2.0 * random.Next() - 1.0) * 60.0));
            const double lon = o.lon0 + (2.0 * random.Next() - 1.0) * 60.0;
            double x, y, lon2, lat2, x2, y2;
            engine.Geo2Proj(lon, lat, &x, &y);
            engine.Proj2Geo(x, y, &lon2, &lat2);
            const double dLon = std::fabs(lat) == 90.0 ? 0.0 : AngleDifference(lon2, lon);
            kvtest::CaseErrors::Worse(worstAngle, std::max(dLon, std::fabs(lat2 - lat)));
            kvtest::CaseErrors::Worse(
                worstGround, 6.4e6 * (std::hypot(dLon * std::cos(lat * 3.141592653589793 / 180.0), lat2 - lat) *
                                      3.141592653589793 / 180.0));
            engine.Geo2Proj(lon2, lat2, &x2, &y2);
            kvtest::CaseErrors::Worse(worstGrid, std::hypot(x2 - x, y2 - y));
        }
        EXPECT_LE(worstAngle, 1e-11) << o.lat0;
        EXPECT_LE(worstGround, 6e-3) << o.lat0;
        EXPECT_LE(worstGrid, 6e-3) << o.lat0;
    }
}

// The batch loop is the single calls, bit for bit, bad points included, in place too.
TEST(StereographicSnyder, BatchIsTheSingleCalls)
{
    const CKvStereographicSnyder rd("rd", kRdK0, kRdLon0, kRdLat0, 155000.0, 463000.0, kBessel);
    std::vector<double> lon, lat;
    CUniform random(7);
    for (int i = 0; i < 300; ++i) {
        lon.push_back(-180.0 + 360.0 * random.Next());
        lat.push_back(-90.0 + 180.0 * random.Next());
    }
    for (double bad : {kNaN, kInf, 91.0}) {
        lon.push_back(5.0);
        lat.push_back(bad);
    }
    lon.push_back(kRdLon0 - 180.0);
    lat.push_back(-kRdLat0);
    const size_t n = lon.size();
    std::vector<double> x(n), y(n), backLon(n), backLat(n);
    rd.Geo2Proj(n, lon.data(), lat.data(), x.data(), y.data());
    rd.Proj2Geo(n, x.data(), y.data(), backLon.data(), backLat.data());
    const auto same = [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); };
    std::vector<double> u = lon, v = lat;
    rd.Geo2Proj(n, u.data(), v.data(), u.data(), v.data());
    for (size_t i = 0; i < n; ++i) {
        double xi, yi, loni, lati;
        rd.Geo2Proj(lon[i], lat[i], &xi, &yi);
        rd.Proj2Geo(x[i], y[i], &loni, &lati);
        EXPECT_TRUE(same(xi, x[i]) && same(yi, y[i]) && same(loni, backLon[i]) && same(lati, backLat[i])) << i;
        EXPECT_TRUE(same(u[i], x[i]) && same(v[i], y[i])) << "in place " << i;
    }
}

TEST(StereographicSnyder, EdgesOfTheDomain)
{
    const CKvStereographicSnyder rd("rd", kRdK0, kRdLon0, kRdLat0, 155000.0, 463000.0, kBessel);
    double x, y, lon, lat;
    // The origin is the false origin, and back, exactly where it can be.
    kvtest::ExpectForward(rd, kRdLon0, kRdLat0, 155000.0, 463000.0, 1e-9);
    kvtest::ExpectInverse(rd, 155000.0, 463000.0, kRdLon0, kRdLat0, 1e-13);
    // The antipode of the origin lies at infinity: NaN, forward, for its convergence
    // and for grid points beyond any finite image.
    kvtest::ExpectForwardNaN(rd, kRdLon0 - 180.0, -kRdLat0);
    EXPECT_TRUE(std::isnan(rd.GetConvergence(kRdLon0 + 180.0, -kRdLat0)));
    kvtest::ExpectInverseNaN(rd, 1e15, 1e15);
    // A point a degree from the antipode still maps, far out, and back.
    rd.Geo2Proj(kRdLon0 - 180.0, -kRdLat0 + 1.0, &x, &y);
    ASSERT_TRUE(std::isfinite(x) && std::isfinite(y));
    EXPECT_GT(std::hypot(x - 155000.0, y - 463000.0), 1e9);
    rd.Proj2Geo(x, y, &lon, &lat);
    EXPECT_NEAR(lat, -kRdLat0 + 1.0, 1e-9);
    // The poles map to finite points, and back.
    for (double pole : {90.0, -90.0}) {
        rd.Geo2Proj(123.0, pole, &x, &y);
        ASSERT_TRUE(std::isfinite(x) && std::isfinite(y)) << pole;
        rd.Proj2Geo(x, y, &lon, &lat);
        EXPECT_NEAR(lat, pole, 1e-11);
    }
    // Longitudes: 180 and -180 are one meridian, 540 is 180, a difference brought
    // into +-180 from the central meridian.
    rd.Geo2Proj(180.0, 10.0, &x, &y);
    kvtest::ExpectForward(rd, -180.0, 10.0, x, y, 1e-6);
    kvtest::ExpectForward(rd, 540.0, 10.0, x, y, 1e-6);
    rd.Geo2Proj(kRdLon0 + 2.0, 50.0, &x, &y);
    kvtest::ExpectForward(rd, kRdLon0 + 2.0 + 720.0, 50.0, x, y, 1e-6);
    rd.Proj2Geo(-4e7, 1e6, &lon, &lat);
    EXPECT_LE(std::fabs(lon), 180.0);
    // Not a point: NaN, infinities, latitudes beyond a pole, grid points of 1e308.
    for (double bad : {kNaN, kInf, -kInf, 1e308, -1e308, 90.000001, -91.0}) {
        kvtest::ExpectForwardNaN(rd, 5.0, bad);
        EXPECT_TRUE(std::isnan(rd.GetConvergence(5.0, bad))) << bad;
        if (!std::isfinite(bad))
            kvtest::ExpectForwardNaN(rd, bad, 50.0);
        if (std::fabs(bad) > 1e6) {
            kvtest::ExpectInverseNaN(rd, bad, 463000.0);
            kvtest::ExpectInverseNaN(rd, 155000.0, bad);
        }
    }
}

TEST(StereographicSnyder, PolesAndSphere)
{
    // On a pole it is the polar stereographic with k0 at the pole (variant A): the
    // same map as the polar engine, to the nanometre.
    for (double pole : {90.0, -90.0}) {
        const CKvStereographicSnyder snyder("snyder", 0.994, 15.0, pole, 2000000.0, 2000000.0, kWgs84);
        const CKvPolarStereographic polar("polar", 0.994, 15.0, pole, 2000000.0, 2000000.0, kWgs84);
        for (double lat = 0.0; lat <= 90.0; lat += 7.5)
            for (double lon = -180.0; lon < 180.0; lon += 22.5) {
                double x1, y1, x2, y2;
                snyder.Geo2Proj(lon, std::copysign(lat, pole), &x1, &y1);
                polar.Geo2Proj(lon, std::copysign(lat, pole), &x2, &y2);
                EXPECT_NEAR(x1, x2, 1e-6) << lon << " " << lat;
                EXPECT_NEAR(y1, y2, 1e-6) << lon << " " << lat;
                EXPECT_NEAR(snyder.GetConvergence(lon, std::copysign(lat, pole)),
                            polar.GetConvergence(lon, std::copysign(lat, pole)), 1e-9);
            }
        // The other pole is the antipode.
        double x, y;
        snyder.Geo2Proj(0.0, -pole, &x, &y);
        EXPECT_TRUE(std::isnan(x) && std::isnan(y));
    }
    // On a sphere the conformal latitude is the latitude: the spherical formulas
    // (Snyder eqs. 21-2 to 21-4), here against the scale along the meridian at the
    // origin, k0, and the radius of a point 90 degrees away, 2 R k0.
    const CKvStereographicSnyder sphere("sphere", 0.9999, 5.0, 52.0, 0.0, 0.0, kSphere);
    double x, y;
    sphere.Geo2Proj(5.0, 52.0 + 1e-4, &x, &y);
    EXPECT_NEAR(y / (6371229.0 * 1e-4 * 3.141592653589793 / 180.0), 0.9999, 1e-9);
    sphere.Geo2Proj(5.0, -38.0, &x, &y);
    EXPECT_NEAR(-y, 2.0 * 6371229.0 * 0.9999, 1e-6);
    // The convergence is that of the numerical step the other engines take, and 0 on
    // the central meridian.
    const CKvStereographicSnyder rd("rd", kRdK0, kRdLon0, kRdLat0, 155000.0, 463000.0, kBessel);
    EXPECT_EQ(rd.GetConvergence(kRdLon0, 40.0), 0.0);
    for (double lon : {-10.0, 0.0, 8.0, 30.0})
        for (double lat : {-20.0, 30.0, 52.0, 70.0}) {
            double x1, y1, x2, y2;
            rd.Geo2Proj(lon, lat, &x1, &y1);
            rd.Geo2Proj(lon, lat + 1e-6, &x2, &y2);
            EXPECT_NEAR(rd.GetConvergence(lon, lat), std::atan2(x1 - x2, y2 - y1) * 180.0 / 3.141592653589793, 1e-6);
        }
}

// No map of parameters the family cannot draw: no figure, an eccentricity of 1,
// no scale or a negative one, an origin or a parallel beyond the pole, an origin
// that is no number, a definition whose ellipsoid the catalogue does not hold.
// Every answer is NaN: forward on either hemisphere, inverse, convergence.
TEST(StereographicFamily, UnusableParametersGiveNaN)
{
    const CKvEllipsoid unknown("unknown", "", 0.0, 0.0);
    const CKvEllipsoid flat("flat", "", 6378137.0, 1.0); // e = 1
    const CKvStereographicSnyderProjection orphan("orphan", "", "??", 1.0, 5.0, 52.0, 0.0, 0.0);
    std::vector<std::unique_ptr<CKvProjection>> engines;
    engines.emplace_back(new CKvStereographic("sterea a0", 1.0, 5.0, 52.0, 1000.0, 2000.0, unknown));
    engines.emplace_back(new CKvStereographic("sterea lat95", 1.0, 5.0, 95.0, 1000.0, 2000.0, kBessel));
    engines.emplace_back(new CKvStereographic("sterea k0", 0.0, 5.0, 52.0, 1000.0, 2000.0, kBessel));
    engines.emplace_back(new CKvPolarStereographic("polar a0", 0.994, 0.0, 90.0, 2000000.0, 2000000.0, unknown));
    engines.emplace_back(new CKvPolarStereographic("polar e1", 0.994, 0.0, 90.0, 2000000.0, 2000000.0, flat));
    engines.emplace_back(new CKvPolarStereographic("polar k0", 0.0, 0.0, 90.0, 2000000.0, 2000000.0, kWgs84));
    engines.emplace_back(new CKvPolarStereographic("polar k-", -0.994, 0.0, -90.0, 2000000.0, 2000000.0, kWgs84));
    engines.emplace_back(new CKvPolarStereographic("polar 95", 1.0, 0.0, 95.0, 0.0, 0.0, kWgs84));
    engines.emplace_back(new CKvStereographicNorthPole("np a0", 70.0, -45.0, 0.0, 0.0, unknown));
    engines.emplace_back(new CKvStereographicNorthPole("np95", 95.0, -45.0, 0.0, 0.0, kWgs84));
    engines.emplace_back(new CKvStereographicSouthPole("sp a0", -71.0, 0.0, 0.0, 0.0, unknown));
    engines.emplace_back(new CKvStereographicSnyder("snyder a0", 1.0, 5.0, 52.0, 0.0, 0.0, unknown));
    engines.emplace_back(new CKvStereographicSnyder("snyder e1", 1.0, 5.0, 52.0, 0.0, 0.0, flat));
    engines.emplace_back(new CKvStereographicSnyder("snyder k0", 0.0, 5.0, 52.0, 0.0, 0.0, kBessel));
    engines.emplace_back(new CKvStereographicSnyder("snyder k-", -1.0, 5.0, 52.0, 0.0, 0.0, kBessel));
    engines.emplace_back(new CKvStereographicSnyder("snyder kNaN", kNaN, 5.0, 52.0, 0.0, 0.0, kBessel));
    engines.emplace_back(new CKvStereographicSnyder("snyder lat95", 1.0, 5.0, 95.0, 0.0, 0.0, kBessel));
    engines.emplace_back(new CKvStereographicSnyder("snyder latNaN", 1.0, 5.0, kNaN, 0.0, 0.0, kBessel));
    engines.emplace_back(new CKvStereographicSnyder("snyder lat1e308", 1.0, 5.0, 1e308, 0.0, 0.0, kBessel));
    engines.emplace_back(new CKvStereographicSnyder("snyder lonInf", 1.0, kInf, 52.0, 0.0, 0.0, kBessel));
    engines.emplace_back(new CKvStereographicSnyder(&orphan));
    for (const auto& engine : engines) {
        SCOPED_TRACE(engine->GetName());
        for (const double lat : {52.0, 80.0, -80.0})
            kvtest::ExpectForwardNaN(*engine, lat == 52.0 ? 5.5 : 10.0, lat);
        kvtest::ExpectInverseNaN(*engine, 1000.0, 2000.0);
        kvtest::ExpectInverseNaN(*engine, 100000.0, 100000.0);
        // No map, no grid: the convergence is NaN too, the polar forms' included
        // (theirs is the longitude's alone on a usable map).
        EXPECT_TRUE(std::isnan(engine->GetConvergence(5.5, 52.5)));
        EXPECT_TRUE(std::isnan(engine->GetConvergence(10.0, -80.0)));
    }
}

// The origin comes back in the degrees it was given, not converted to radians and
// back (15 would come back as 14.999999999999998, -30 as -29.999999999999996).
TEST(StereographicFamily, OriginInTheDegreesGiven)
{
    const CKvEllipsoid& e = kWgs84;
    std::vector<std::unique_ptr<CKvProjection>> engines;
    engines.emplace_back(new CKvStereographic("sterea", 1.0, 15.0, -30.0, 0.0, 0.0, e));
    engines.emplace_back(new CKvStereographicSnyder("stere", 1.0, 15.0, -30.0, 0.0, 0.0, e));
    engines.emplace_back(new CKvLambertAzimuthalEqualArea("laea", 15.0, -30.0, 0.0, 0.0, e));
    engines.emplace_back(new CKvLambertAzimuthalEqualArea("laea sphere", 15.0, -30.0, 0.0, 0.0, kSphere));
    engines.emplace_back(new CKvCassiniSoldner("cass", 15.0, -30.0, 0.0, 0.0, e));
    engines.emplace_back(new CKvCassiniSoldner("cass sphere", 15.0, -30.0, 0.0, 0.0, kSphere));
    // The polar forms: their latitude of true scale, or the pole.
    engines.emplace_back(new CKvPolarStereographic("polar", 1.0, 15.0, -71.0, 0.0, 0.0, e));
    engines.emplace_back(new CKvStereographicNorthPole("north", 70.0, 15.0, 0.0, 0.0, e));
    engines.emplace_back(new CKvStereographicSouthPole("south", -71.0, 15.0, 0.0, 0.0, e));
    const double expectedLat[] = {-30.0, -30.0, -30.0, -30.0, -30.0, -30.0, -71.0, 90.0, -90.0};
    for (size_t i = 0; i < engines.size(); ++i) {
        double lon, lat;
        engines[i]->GetOrigin(&lon, &lat);
        EXPECT_EQ(lon, 15.0) << engines[i]->GetName();
        EXPECT_EQ(lat, expectedLat[i]) << engines[i]->GetName();
    }
    // A default area of 3 degrees about the origin, which it contains.
    const CKvStereographicSnyder rd("rd", kRdK0, kRdLon0, kRdLat0, 155000.0, 463000.0, kBessel);
    double x1, y1, x2, y2;
    rd.GetDefaultArea(&x1, &y1, &x2, &y2);
    EXPECT_LT(x1, 155000.0 - 150000.0);
    EXPECT_GT(x2, 155000.0 + 150000.0);
    EXPECT_LT(y1, 463000.0 - 300000.0);
    EXPECT_GT(y2, 463000.0 + 300000.0);
    EXPECT_LT(x2 - x1, 500000.0);
}

// The new definition type 23 (its index, default definition, section and file
// form: KvMapProjData's tests): the engine its definition makes, and its record,
// ESRI's "Stereographic" with its own type.
TEST(StereographicSnyder, CatalogueTypeAndItsRecord)
{
    using D = CKvMapProjData;
    EXPECT_TRUE(D::IsEquivalent(1, D::eStereographicSnyder));
    EXPECT_FALSE(D::IsEquivalent(2, D::eStereographicSnyder));
    EXPECT_EQ(
        std::unique_ptr<D>(D::CreateDefaultParameterProjection(D::eStereographicSnyder))->GetProjectionTypeTitle(),
        "Stereographic (Snyder)");
    kvtest::ShippedCatalogue(); // the ellipsoid BR
    auto* definition = new CKvStereographicSnyderProjection("Snyder test grid", "Tests", "BR", kRdK0, kRdLon0, kRdLat0,
                                                            155000.0, 463000.0);
    CKvMapProjection::AddMapProjection(definition);
    {
        const std::unique_ptr<CKvProjection> engine(definition->CreateProjection());
        ASSERT_NE(dynamic_cast<CKvStereographicSnyder*>(engine.get()), nullptr);
        const CKvStereographicSnyder byValue("RD Snyder", kRdK0, kRdLon0, kRdLat0, 155000.0, 463000.0, kBessel);
        double x1, y1, x2, y2;
        engine->Geo2Proj(6.5, 53.0, &x1, &y1);
        byValue.Geo2Proj(6.5, 53.0, &x2, &y2);
        EXPECT_TRUE(x1 == x2 && y1 == y2);
        const CKvPRJParser record(engine.get());
        EXPECT_EQ(record.GetProjectionType(), CKvMapProjData::eStereographicSnyder);
        EXPECT_EQ(record.GetProjectionTypeName(), "Stereographic");
        EXPECT_EQ(record.GetScaleFactor(), kRdK0);
        EXPECT_EQ(record.GetCentralMeridian(), kRdLon0);
        EXPECT_EQ(record.GetLatitudeOfOrigin(), kRdLat0);
        EXPECT_EQ(record.GetFalseEasting(), 155000.0);
        EXPECT_EQ(record.GetFalseNorthing(), 463000.0);
        CString name;
        double a, invf;
        record.GetEllipsoid(name, a, invf);
        EXPECT_EQ(a, 6377397.155);
        EXPECT_EQ(invf, 299.1528128);
    }
    CKvMapProjection::DeleteMapProjection(definition);
}
