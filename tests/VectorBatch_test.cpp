// The vectorized batch loops of the engines against their single-point calls:
// the same bits for every point, the points beyond a loop's fast path (poles,
// longitudes to be reduced, points off the map, NaN, infinities, huge values)
// among ordinary ones in every block, contiguous, strided and in place.
#include "TestSupport.h"

#include "catalogue/KvEllipsoid.h"
#include "coordsys/KvMapProjection.h"
#include "projections/KvAlbersEqualArea.h"
#include "projections/KvEquidistantConic.h"
#include "projections/KvHotineObliqueMercator.h"
#include "projections/KvLambert1SP.h"
#include "projections/KvLambertAzimuthalEqualArea.h"
#include "projections/KvMathKernel.h"
#include "projections/KvLambert2SP.h"
#include "projections/KvMercator1SP.h"
#include "projections/KvMercator2SP.h"
#include "projections/KvObliqueMercator.h"
#include "projections/KvPseudoMercator.h"
#include "projections/KvRectifiedSkewOrthomorphic.h"
#include "projections/KvCassiniSoldner.h"
#include "projections/KvKrovak.h"
#include "projections/KvPolarStereographic.h"
#include "projections/KvPolarStereographicC.h"
#include "projections/KvStereographicNorthPole.h"
#include "projections/KvStereographicSouthPole.h"
#include "projections/KvStereographic.h"
#include "projections/KvTransverseMercator.h"
#include "projections/KvTransverseMercatorZoned.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

namespace {

const double kNan = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();
const CKvEllipsoid kGrs80("GRS 1980", "RF", 6378137.0, 298.257222101);
const CKvEllipsoid kWgs84("WGS 84", "WE", 6378137.0, 298.257223563);
const CKvEllipsoid kClarke1880("Clarke 1880 (IGN)", "CE", 6378249.2, 293.4660212936269);
const CKvEllipsoid kSphere("Sphere", "XY", 6371229.0, 0.0);

// Equal bits, or NaN in both.
bool Same(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

using GridPoints = std::vector<std::array<double, 2>>;

// Every check of one engine. lon0, lat0: the centre of its map; special: grid
// points the engine's own geometry makes special (an apex, an edge), beyond
// the ones every engine gets.
void ExpectLoopsMatchSingleCalls(const CKvProjection& engine, double lon0, double lat0, const GridPoints& special,
                                 const char* name, unsigned seed)
{
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    const double badLon[] = {kNan, kInf, -kInf, 540, -540, 180, -180, 181, -179.9999999, 1e308, -1e308, 1e-310, 360};
    const double badLat[] = {kNan, kInf, -kInf, 90, -90, 89, -89, 88.9999999, 89.0000001, -0.0, 90.0000001, 1e308,
                             1e-310};

    // Points the whole world over and near the centre, with the exceptional
    // inputs spread across the blocks, and the antimeridian of the centre on
    // both sides: forward in one batch and one by one, and the batch's results
    // back, both ways.
    for (double span : {180.0, 8.0}) {
        std::vector<double> lon, lat;
        for (int i = 0; i < 700; ++i) {
            lon.push_back(lon0 + span * u(random));
            lat.push_back(span > 90 ? 90.0 * u(random) : std::fmax(-90.0, std::fmin(90.0, lat0 + span * u(random))));
        }
        for (std::size_t i = 0; i < lon.size(); i += 7)
            lon[i] = badLon[(i / 7) % (sizeof badLon / sizeof badLon[0])];
        for (std::size_t i = 3; i < lat.size(); i += 11)
            lat[i] = badLat[(i / 11) % (sizeof badLat / sizeof badLat[0])];
        for (double d : {180.0, -180.0, std::nextafter(180.0, 200.0), std::nextafter(-180.0, -200.0)}) {
            lon.push_back(lon0 + d);
            lat.push_back(lat0);
        }
        const std::size_t n = lon.size();
        std::vector<double> x(n), y(n), backLon(n), backLat(n);
        engine.Geo2Proj(n, lon.data(), lat.data(), x.data(), y.data());
        engine.Proj2Geo(n, x.data(), y.data(), backLon.data(), backLat.data());
        for (std::size_t i = 0; i < n; ++i) {
            double sx, sy, slon, slat;
            engine.Geo2Proj(lon[i], lat[i], &sx, &sy);
            engine.Proj2Geo(x[i], y[i], &slon, &slat);
            ASSERT_TRUE(Same(x[i], sx) && Same(y[i], sy)) << name << " forward " << lon[i] << " " << lat[i];
            ASSERT_TRUE(Same(backLon[i], slon) && Same(backLat[i], slat)) << name << " inverse " << x[i] << " " << y[i];
        }

        // In place on contiguous arrays, and back.
        std::vector<double> a = lon, b = lat;
        engine.Geo2Proj(n, a.data(), b.data(), a.data(), b.data());
        for (std::size_t i = 0; i < n; ++i)
            ASSERT_TRUE(Same(a[i], x[i]) && Same(b[i], y[i])) << name << " in place " << i;
        engine.Proj2Geo(n, a.data(), b.data(), a.data(), b.data());
        for (std::size_t i = 0; i < n; ++i)
            ASSERT_TRUE(Same(a[i], backLon[i]) && Same(b[i], backLat[i])) << name << " in place back " << i;
    }

    // Grid points about the centre's image out to 3000 km, far beyond, and not
    // finite, with the engine's own special points.
    double cx = 0.0, cy = 0.0;
    engine.Geo2Proj(lon0, lat0, &cx, &cy);
    if (!std::isfinite(cx) || !std::isfinite(cy))
        cx = cy = 0.0;
    GridPoints grid;
    for (int i = 0; i < 600; ++i)
        grid.push_back({cx + 3e6 * u(random), cy + 3e6 * u(random)});
    GridPoints every = {{cx, cy},     {-0.0, 0.0},  {cx + 3e7, cy}, {cx, cy - 3e7}, {1e308, cy},
                        {cx, -1e308}, {kNan, cy},   {cx, kNan},     {kInf, cy},     {cx, -kInf},
                        {cx, 1e-300}, {1e-300, cy}, {cx + 1e7, cy + 1e7}};
    every.insert(every.end(), special.begin(), special.end());
    for (std::size_t i = 0; i < every.size(); ++i)
        grid[(i * 31) % grid.size()] = every[i];
    std::vector<double> x, y;
    for (const auto& p : grid) {
        x.push_back(p[0]);
        y.push_back(p[1]);
    }
    std::vector<double> lon(x.size()), lat(x.size());
    engine.Proj2Geo(x.size(), x.data(), y.data(), lon.data(), lat.data());
    for (std::size_t i = 0; i < x.size(); ++i) {
        double slon, slat;
        engine.Proj2Geo(x[i], y[i], &slon, &slat);
        ASSERT_TRUE(Same(lon[i], slon) && Same(lat[i], slat)) << name << " grid point " << x[i] << " " << y[i];
    }

    // Strided and in place: records {lon, lat, h} become grid coordinates and
    // come back, the same bits as the single-point calls, h untouched.
    struct Record
    {
        double lon, lat, h;
    };
    std::vector<Record> records;
    for (int i = 0; i < 300; ++i)
        records.push_back({lon0 + 15.0 * u(random), std::fmax(-90.0, std::fmin(90.0, lat0 + 15.0 * u(random))), 0.5 * i});
    records[5].lat = kNan;
    records[77].lon = 540;
    records[128].lat = 90;
    const std::vector<Record> given = records;
    engine.Geo2Proj(records.size(), &records[0].lon, sizeof(Record), &records[0].lat, sizeof(Record), &records[0].lon,
                    sizeof(Record), &records[0].lat, sizeof(Record));
    std::vector<Record> projected = records;
    for (std::size_t i = 0; i < records.size(); ++i) {
        double sx, sy;
        engine.Geo2Proj(given[i].lon, given[i].lat, &sx, &sy);
        ASSERT_TRUE(Same(records[i].lon, sx) && Same(records[i].lat, sy)) << name << " record " << i;
        ASSERT_EQ(records[i].h, 0.5 * i);
    }
    engine.Proj2Geo(records.size(), &records[0].lon, sizeof(Record), &records[0].lat, sizeof(Record), &records[0].lon,
                    sizeof(Record), &records[0].lat, sizeof(Record));
    for (std::size_t i = 0; i < records.size(); ++i) {
        double slon, slat;
        engine.Proj2Geo(projected[i].lon, projected[i].lat, &slon, &slat);
        ASSERT_TRUE(Same(records[i].lon, slon) && Same(records[i].lat, slat)) << name << " record back " << i;
    }
}

} // namespace

TEST(VectorBatch, LambertConics)
{
    const CKvLambert2SP lambert93("l93", 49, 44, 3, 46.5, 700000, 6600000, kGrs80);
    const CKvLambert1SP lambertII("l2e", 0.99987742, 2.337229167, 46.8, 600000, 2200000, kClarke1880);
    // A cone that opens southwards (n < 0), and a steep one whose sheet reaches
    // more than a quarter turn either side of its central meridian.
    const CKvLambert2SP south("south", -30, -40, 25, -35, 500000, 10000000, kGrs80);
    const CKvLambert1SP steep("steep", 1.0, -45, 80, 0, 0, kGrs80);
    struct Case
    {
        const CKvProjection& engine;
        double lon0, lat0, FE, FN, apex; // apex: the radius of the origin's parallel
        const char* name;
    } cases[] = {{lambert93, 3, 46.5, 700000, 6600000, lambert93.GetApexRadius(), "Lambert-93"},
                 {lambertII, 2.337229167, 46.8, 600000, 2200000, lambertII.GetApexRadius(), "Lambert II"},
                 {south, 25, -35, 500000, 10000000, south.GetApexRadius(), "southern cone"},
                 {steep, -45, 80, 0, 0, steep.GetApexRadius(), "steep cone"}};
    unsigned seed = 20;
    for (const Case& k : cases) {
        // The apex and its neighbourhood, points beyond it and off the sheet.
        const double ay = k.FN + k.apex;
        const GridPoints apex = {{k.FE, ay},       {k.FE + 1e-9, ay},      {k.FE, ay + 1e-9},
                                 {k.FE, ay - 1e-9}, {k.FE, ay + 1e6},       {k.FE + 1e6, ay + 1e5},
                                 {k.FE - 1e6, ay}, {k.FE, ay + 1e-300},    {k.FE + 1e7, k.FN}};
        ExpectLoopsMatchSingleCalls(k.engine, k.lon0, k.lat0, apex, k.name, ++seed);
    }
    // Through a coordinate system with north/east axes.
    const CKvMapProjection lambert93NorthEast(kvtest::kLambert93NorthEast);
    ASSERT_NE(lambert93NorthEast.GetProjection(), nullptr);
    ExpectLoopsMatchSingleCalls(*lambert93NorthEast.GetProjection(), 3, 46.5, {}, "Lambert-93 (N, E)", 30);
}

TEST(VectorBatch, Mercators)
{
    const CKvMercator1SP world("world", 1.0, 0, 0, 0, kWgs84);
    const CKvMercator1SP scaled("scaled", 0.997, 110, 3900000, 900000, kGrs80);
    const CKvMercator2SP pulkovo("m2", 42, 51, 0, 0, kWgs84);
    const CKvMercator1SP sphere("sphere", 1.0, -60, 0, 0, kSphere);
    const CKvPseudoMercator web("web", 0, 0, 0, 0, kWgs84);
    const CKvPseudoMercator pacific("pacific", 150, 0, 1000, -2000, kGrs80);
    // The web map's edges: the square's corners and a northing beyond its reach.
    const double edge = 20037508.342789244;
    const GridPoints square = {{edge, edge}, {-edge, -edge}, {edge, 1e9}, {0, 2.0e8}, {0, -2.0e8}};
    ExpectLoopsMatchSingleCalls(world, 0, 0, square, "World Mercator", 40);
    ExpectLoopsMatchSingleCalls(scaled, 110, 0, {}, "Mercator, scaled", 41);
    ExpectLoopsMatchSingleCalls(pulkovo, 51, 42, {}, "Mercator 2SP", 42);
    ExpectLoopsMatchSingleCalls(sphere, -60, 0, {}, "Mercator, sphere", 43);
    ExpectLoopsMatchSingleCalls(web, 0, 0, square, "Pseudo-Mercator", 44);
    // A figure beyond the kernels' eccentricity (1/f = 10): the batch runs the
    // single-point formulas, and still gives their bits.
    const CKvMercator1SP flat("flat", 1.0, 0, 0, 0, CKvEllipsoid("flat", "FL", 6378137.0, 10.0));
    ExpectLoopsMatchSingleCalls(flat, 0, 0, {}, "Mercator, 1/f = 10", 46);
    ExpectLoopsMatchSingleCalls(pacific, 150, 0, square, "Pseudo-Mercator, 150 E", 45);
}

// The kernels of the sphere's inverse and of the polar inverse, against long
// double: e^x - 1 over Exp's whole range, the table's boundaries (odd
// multiples of ln 2 / 128) and the tiny arguments where 1 + x rounds to 1,
// relative error; atan(a / b) over ratios within [0, 1] at every scale, the
// reductions' edges b/4 and 3b/4, the ends 0 and 1.
TEST(VectorBatch, ExpM1AndAtanUnitKernelsAgainstLongDouble)
{
    double worst = 0.0;
    auto expm1Error = [&worst](double x) {
        const long double r = std::expm1(static_cast<long double>(x));
        worst = std::fmax(worst, static_cast<double>(std::fabs((CKvMathKernel::ExpM1(x) - r) / r)));
    };
    for (int i = -70000; i <= 70000; ++i)
        if (i != 0)
            expm1Error(i * 0.01 + 1e-9 * (i % 11));
    for (int k = -129263; k <= 129263; k += 2)
        for (double x : {std::nextafter(k * 0.0054152123481245725, 0.0), k * 0.0054152123481245725})
            if (std::fabs(x) <= CKvMathKernel::ExpLimit)
                expm1Error(x);
    for (double x : {1e-300, 1e-17, 1e-8, 0.0054, 0.3, 0.6931471805599453, 1.0, 30.0})
        for (double y : {x, -x})
            expm1Error(y);
    EXPECT_LE(worst, 4.5e-16);
    EXPECT_EQ(CKvMathKernel::ExpM1(0.0), 0.0);

    worst = 0.0;
    std::mt19937_64 random(70);
    std::uniform_real_distribution<double> u(0.0, 1.0);
    for (int i = 0; i < 400000; ++i) {
        const double b = std::ldexp(1.0 + u(random), i % 1200 - 600);
        const double edges[] = {u(random), 0.25, std::nextafter(0.25, 1.0), 0.75, std::nextafter(0.75, 1.0), 1.0};
        const double a = b * edges[i % 6];
        const long double r = std::atan2(static_cast<long double>(a), static_cast<long double>(b));
        worst = std::fmax(worst, static_cast<double>(std::fabs((CKvMathKernel::AtanUnit(a, b) - r) / r)));
    }
    EXPECT_LE(worst, 4.5e-16);
    EXPECT_EQ(CKvMathKernel::AtanUnit(0.0, 3.0), 0.0);
    EXPECT_TRUE(std::isnan(CKvMathKernel::AtanUnit(kNan, 1.0)) && std::isnan(CKvMathKernel::AtanUnit(0.5, kNan)));
}

TEST(VectorBatch, ObliqueStereographic)
{
    const CKvEllipsoid bessel("Bessel 1841", "BR", 6377397.155, 299.1528128);
    const CKvStereographic rdNew("rd", 0.9999079, 5.38763888888889, 52.15616055555555, 155000, 463000, bessel);
    const CKvStereographic newBrunswick("nb", 0.999912, -66.5, 46.5, 2500000, 7500000, kGrs80);
    const CKvStereographic south("south", 1.0, 147, -42, 500000, 1000000, kGrs80);
    const CKvStereographic sphere("sphere", 1.0, -100, 30, 0, 0, kSphere);
    // An origin on the equator, and one on a pole (the polar aspect of the
    // conformal sphere).
    const CKvStereographic equator("equator", 1.0, 20, 0, 0, 0, kWgs84);
    const CKvStereographic pole("pole", 0.994, 0, 90, 2000000, 2000000, kWgs84);
    // Grid points about the origin's antipode, whose image is at infinity, and
    // far out on the plane.
    const GridPoints far = {{155000 + 2e9, 463000}, {155000, 463000 - 5e10}, {1e154, 1e154}, {-3e13, 2e13}};
    ExpectLoopsMatchSingleCalls(rdNew, 5.38763888888889, 52.15616055555555, far, "RD New", 50);
    ExpectLoopsMatchSingleCalls(newBrunswick, -66.5, 46.5, {}, "New Brunswick", 51);
    ExpectLoopsMatchSingleCalls(south, 147, -42, far, "southern stereographic", 52);
    ExpectLoopsMatchSingleCalls(sphere, -100, 30, {}, "stereographic, sphere", 53);
    ExpectLoopsMatchSingleCalls(equator, 20, 0, far, "stereographic, equator", 54);
    ExpectLoopsMatchSingleCalls(pole, 0, 90, {{2000000, 2000000}, {2000000, 2000000 + 1e-9}}, "stereographic, pole", 55);
}

TEST(VectorBatch, LambertAzimuthalEqualArea)
{
    // ETRS89-LAEA (the guidance note's example), an equatorial and a southern
    // aspect, the sphere, and a polar aspect, which keeps the general formulas.
    const CKvLambertAzimuthalEqualArea etrs("etrs", 10, 52, 4321000, 3210000, kGrs80);
    const CKvLambertAzimuthalEqualArea equator("equator", -70, 0, 0, 0, kWgs84);
    const CKvLambertAzimuthalEqualArea south("south", 147, -33, 500000, 1000000, kGrs80);
    const CKvLambertAzimuthalEqualArea sphere("sphere", 10, 52, 0, 0, kSphere);
    const CKvLambertAzimuthalEqualArea sphereSouth("sphere south", -100, -80, 0, 0, kSphere);
    const CKvLambertAzimuthalEqualArea polar("polar", 0, 90, 0, 0, kWgs84);
    // The boundary circle (the antipode's image, 2 R_q from the centre) and
    // just within and beyond it, and the far half of the azimuths.
    const double r = 2.0 * 6371007.2;
    const GridPoints circle = {{r, 0}, {0, -r}, {0.999999 * r, 0}, {0, 1.000001 * r}, {-0.7 * r, 0.7 * r},
                               {-0.5 * r, -0.1 * r}, {1e-9, 0}, {-1e-9, -1e-9}};
    ExpectLoopsMatchSingleCalls(etrs, 10, 52, {}, "ETRS89-LAEA", 50);
    ExpectLoopsMatchSingleCalls(equator, -70, 0, circle, "LAEA, equatorial", 51);
    ExpectLoopsMatchSingleCalls(south, 147, -33, {}, "LAEA, southern", 52);
    ExpectLoopsMatchSingleCalls(sphere, 10, 52, circle, "LAEA, sphere", 53);
    ExpectLoopsMatchSingleCalls(sphereSouth, -100, -80, circle, "LAEA, sphere near the south pole", 54);
    ExpectLoopsMatchSingleCalls(polar, 0, 90, circle, "LAEA, north polar", 55);
}

TEST(VectorBatch, AlbersEqualArea)
{
    // Conus Albers, a southern cone (n < 0, the Australian Albers), parallels
    // near a pole, Clarke 1880, and the sphere, northern and southern. Grid
    // points north of the map, beyond a quarter turn about the apex.
    const CKvAlbersEqualArea conus("conus", 29.5, 45.5, -96, 23, 0, 0, kGrs80);
    const CKvAlbersEqualArea australia("australia", -18, -36, 132, 0, 0, 0, kGrs80);
    const CKvAlbersEqualArea arctic("arctic", 60, 89, 20, 75, 500000, 0, kWgs84);
    const CKvAlbersEqualArea clarke("clarke", 10, 30, 20, 0, 0, 0, kClarke1880);
    const CKvAlbersEqualArea sphere("sphere", 29.5, 45.5, -96, 23, 0, 0, kSphere);
    const CKvAlbersEqualArea sphereSouth("sphere south", -50, -70, -60, -60, 1e6, 1e6, kSphere);
    const GridPoints north = {{0, 2e7}, {3e7, 3e7}, {-3e7, 1.5e7}, {0, -3e7}};
    ExpectLoopsMatchSingleCalls(conus, -96, 23, north, "Conus Albers", 70);
    ExpectLoopsMatchSingleCalls(australia, 132, -27, north, "Albers, southern", 71);
    ExpectLoopsMatchSingleCalls(arctic, 20, 75, north, "Albers, arctic", 72);
    ExpectLoopsMatchSingleCalls(clarke, 20, 0, north, "Albers, Clarke 1880", 73);
    ExpectLoopsMatchSingleCalls(sphere, -96, 23, north, "Albers, sphere", 74);
    ExpectLoopsMatchSingleCalls(sphereSouth, -60, -60, north, "Albers, southern sphere", 75);
}

TEST(VectorBatch, EquidistantConic)
{
    // The contiguous USA's, a southern cone, a tangent cone (equal parallels),
    // Clarke 1880, and the sphere, northern and southern. Grid points beyond
    // the poles' radii and about the apex.
    const CKvEquidistantConic usa("usa", 33, 45, -96, 39, 0, 0, kGrs80);
    const CKvEquidistantConic south("south", -20, -40, 25, -30, 1e6, 1e7, kWgs84);
    const CKvEquidistantConic tangent("tangent", 50, 50, 10, 50, 0, 0, kGrs80);
    const CKvEquidistantConic clarke("clarke", 10, 30, 20, 0, 0, 0, kClarke1880);
    const CKvEquidistantConic sphere("sphere", 33, 45, -96, 39, 0, 0, kSphere);
    const CKvEquidistantConic sphereSouth("sphere south", -50, -70, -60, -60, 1e6, 1e6, kSphere);
    const GridPoints far = {{0, 2e7}, {3e7, 3e7}, {-3e7, 1.5e7}, {0, -3e7}, {0, 9e6}, {0, -9e6}};
    ExpectLoopsMatchSingleCalls(usa, -96, 39, far, "USA equidistant conic", 80);
    ExpectLoopsMatchSingleCalls(south, 25, -30, far, "equidistant conic, southern", 81);
    ExpectLoopsMatchSingleCalls(tangent, 10, 50, far, "equidistant conic, tangent", 82);
    ExpectLoopsMatchSingleCalls(clarke, 20, 0, far, "equidistant conic, Clarke 1880", 83);
    ExpectLoopsMatchSingleCalls(sphere, -96, 39, far, "equidistant conic, sphere", 84);
    ExpectLoopsMatchSingleCalls(sphereSouth, -60, -60, far, "equidistant conic, southern sphere", 85);
}

TEST(VectorBatch, HotineObliqueMercators)
{
    const CKvEllipsoid everest("Everest 1830 (1967)", "EE", 6377298.556, 300.8017);
    const CKvEllipsoid bessel("Bessel 1841", "BR", 6377397.155, 299.1528128);
    const CKvEllipsoid clarke1866("Clarke 1866", "CC", 6378206.4, 294.9786982);
    // The guidance note's Borneo examples (variants A and B, and the grid
    // rotated apart from the azimuth), the Swiss grid (a centre line due east,
    // whose natural origin lies at infinity along it), Alaska zone 1, a southern
    // centre, a sphere, and a centre line due north near the pole.
    const CKvRectifiedSkewOrthomorphic borneoA("borneo A", 0.99984, 115, 4, 53.31582047222222, 53.13010236111111,
                                               590476.87, 442857.65, everest);
    const CKvObliqueMercator borneoB("borneo B", 0.99984, 115, 4, 53.31582047222222, 590476.87, 442857.65, everest);
    const CKvObliqueMercator lv03("lv03", 1, 7.43958333333333, 46.9524055555556, 90, 600000, 200000, bessel);
    const CKvHotineObliqueMercator alaska("alaska", 0.9999, -133.6666666666667, 57, 323.1301023611111, 5000000,
                                          -5000000, clarke1866);
    const CKvHotineObliqueMercator south("south", 0.9996, 147, -38, 30, 400000, 5000000, kGrs80);
    const CKvObliqueMercator sphere("sphere", 1, -70, 20, 120, 0, 0, kSphere);
    const CKvRectifiedSkewOrthomorphic polar("polar", 1, 10, 80, 0, 10, 0, 0, kWgs84);
    struct Case
    {
        const CKvProjection& engine;
        double lon0, lat0, gamma, FE, FN; // gamma: the grid angle, degrees
        const char* name;
    } cases[] = {{borneoA, 115, 4, 53.13010236111111, 590476.87, 442857.65, "Borneo, variant A"},
                 {borneoB, 115, 4, 53.31582047222222, 590476.87, 442857.65, "Borneo, variant B"},
                 {lv03, 7.43958333333333, 46.9524055555556, 90, 600000, 200000, "LV03"},
                 {alaska, -133.6666666666667, 57, 323.1301023611111, 5000000, -5000000, "Alaska zone 1"},
                 {south, 147, -38, 30, 400000, 5000000, "southern centre"},
                 {sphere, -70, 20, 120, 0, 0, "sphere"},
                 {polar, 10, 80, 10, 0, 0, "centre line due north"}};
    unsigned seed = 50;
    for (const Case& k : cases) {
        // Across the centre line to the aposphere's poles (|U| -> 1 some 7.5e7 m
        // out, infinite v) and beyond exp's reach, and along it beyond the sine's.
        const double c = std::cos(k.gamma * 3.141592653589793 / 180), s = std::sin(k.gamma * 3.141592653589793 / 180);
        GridPoints special;
        for (double t : {7.0e7, 7.45e7, 7.5e7, -7.5e7, 8e7, 5e9, -5e9})
            special.push_back({k.FE + t * c, k.FN - t * s});
        for (double t : {3.2e7, 6.4e11, -1e12})
            special.push_back({k.FE + t * s, k.FN + t * c});
        ExpectLoopsMatchSingleCalls(k.engine, k.lon0, k.lat0, special, k.name, ++seed);
    }
}

TEST(VectorBatch, CassiniSoldner)
{
    const CKvEllipsoid bessel("Bessel 1841", "BR", 6377397.155, 299.1528128);
    const CKvEllipsoid clarke1858("Clarke 1858", "CC", 6378293.645208759, 294.2606763692654);
    const CKvCassiniSoldner soldner("soldner", 13.6, 52.4, 40000, 10000, bessel);
    const CKvCassiniSoldner trinidad("trinidad", -61.33333333333333, 10.441666666666666, 86501.46392052, 65379.0134283,
                                     clarke1858);
    const CKvCassiniSoldner south("south", 147, -42, 500000, 1000000, kGrs80);
    const CKvCassiniSoldner equator("equator", 20, 0, 0, 0, kWgs84);
    const CKvCassiniSoldner sphere("sphere", 13.6, 52.4, 40000, 10000, kSphere);
    const CKvCassiniSoldner sphereSouth("sphere south", -70, -60, 0, 0, kSphere);
    // A meridian next to the antimeridian: the points beyond it take the short
    // paths too, longitudes turned by a whole turn.
    const CKvCassiniSoldner pacific("pacific", 179.5, -17, 0, 0, kWgs84);
    // Grid points far east of the central meridian (the inverse's Newton steps
    // grow, and beyond a quarter turn the sphere's longitude turns round), and
    // beyond the poles' northings.
    const GridPoints far = {{9e6, 0}, {-9e6, 1e6}, {2.1e7, 0}, {0, 1.2e7}, {0, -2.5e7}, {1e5, 4e7}};
    ExpectLoopsMatchSingleCalls(soldner, 13.6, 52.4, far, "Cassini-Soldner, Bessel", 60);
    ExpectLoopsMatchSingleCalls(trinidad, -61.33333333333333, 10.441666666666666, {}, "Cassini-Soldner, Trinidad", 61);
    ExpectLoopsMatchSingleCalls(south, 147, -42, far, "Cassini-Soldner, southern", 62);
    ExpectLoopsMatchSingleCalls(equator, 20, 0, far, "Cassini-Soldner, equator", 63);
    ExpectLoopsMatchSingleCalls(sphere, 13.6, 52.4, far, "Cassini-Soldner, sphere", 64);
    ExpectLoopsMatchSingleCalls(sphereSouth, -70, -60, far, "Cassini-Soldner, southern sphere", 65);
    ExpectLoopsMatchSingleCalls(pacific, 179.5, -17, far, "Cassini-Soldner, across the antimeridian", 66);
}

TEST(VectorBatch, PolarStereographic)
{
    const CKvEllipsoid intl("International 1924", "IN", 6378388.0, 297.0);
    const CKvEllipsoid flattened("flat", "XX", 6378137.0, 10.0); // e = 0.44, beyond the kernels' series
    // Variant A (UPS north and south, one with its central meridian near the
    // antimeridian, where the inverse's longitude takes a turn), variant B
    // (EPSG's example, the NSIDC north, a southern one), variant C (Terre
    // Adelie), a sphere, and a figure beyond the series.
    const CKvPolarStereographic upsNorth("ups n", 0.994, 0, 90, 2000000, 2000000, kWgs84);
    const CKvPolarStereographic upsSouth("ups s", 0.994, 0, -90, 2000000, 2000000, kWgs84);
    const CKvPolarStereographic pacific("pacific", 0.97, 170, 90, 0, 0, kGrs80);
    const CKvPolarStereographic variantB("b", 1.0, 70, -71, 6000000, 6000000, kWgs84);
    const CKvStereographicNorthPole nsidc("nsidc", 70, -45, 0, 0, kWgs84);
    const CKvStereographicSouthPole south("south", -71, -170, 0, 0, kWgs84);
    const double petrels[] = {-67, 140, 300000, 200000};
    const CKvPolarStereographicC adelie("adelie", petrels, intl);
    const CKvPolarStereographic sphere("sphere", 1.0, -100, 90, 0, 0, kSphere);
    const CKvPolarStereographic flat("flat", 0.994, 0, 90, 0, 0, flattened);
    // The pole and a hair off it (the longitude turns about it), and points far
    // enough out to lie on the other pole, at infinity, by rounding.
    const GridPoints pole = {{2000000, 2000000}, {2000000, 2000000 + 1e-9}, {2000000 - 1e-300, 2000000},
                             {2000000 + 3e22, 2000000}, {0, -4e17}, {0, 0}, {-1e-9, 0}};
    ExpectLoopsMatchSingleCalls(upsNorth, 0, 90, pole, "UPS north", 70);
    ExpectLoopsMatchSingleCalls(upsSouth, 0, -90, pole, "UPS south", 71);
    ExpectLoopsMatchSingleCalls(pacific, 170, 80, pole, "polar, 170 E", 72);
    ExpectLoopsMatchSingleCalls(variantB, 70, -71, pole, "polar variant B", 73);
    ExpectLoopsMatchSingleCalls(nsidc, -45, 70, pole, "NSIDC north", 74);
    ExpectLoopsMatchSingleCalls(south, -170, -71, pole, "polar south, 170 W", 75);
    ExpectLoopsMatchSingleCalls(adelie, 140, -67, {{300000, 200000 - 2299363.487830594}, {300000, 1e22}}, "Terre Adelie", 76);
    ExpectLoopsMatchSingleCalls(sphere, -100, 80, pole, "polar, sphere", 77);
    ExpectLoopsMatchSingleCalls(flat, 0, 80, pole, "polar, 1/f = 10", 78);
}

TEST(VectorBatch, Krovak)
{
    const CKvEllipsoid bessel("Bessel 1841", "BR", 6377397.155, 299.1528128);
    const double lon0 = 24.833333333333333, alpha = 30.28813975277778;
    // The method's own axes (southing, westing), S-JTSK east-north, turned with
    // a false origin, a sphere, and a cone about another centre and azimuth.
    const CKvKrovak classic("classic", 0.9999, 78.5, lon0, 49.5, alpha, 0, 1, 1, 0, 0, bessel);
    const CKvKrovak eastNorth("east-north", 0.9999, 78.5, lon0, 49.5, alpha, 90, -1, 1, 0, 0, bessel);
    const CKvKrovak turned("turned", 0.9999, 78.5, lon0, 49.5, alpha, 30, -1, 1, 100, 200, kGrs80);
    const CKvKrovak sphere("sphere", 1.0, 78.5, lon0, 49.5, alpha, 0, 1, 1, 0, 0, kSphere);
    const CKvKrovak other("other", 0.9996, 60, -100, 30, 20, 0, 1, 1, 500000, 0, kWgs84);
    // The cone's apex (the false origin) and a hair off it, and points far out.
    const GridPoints apex = {{0, 0}, {1e-9, 0}, {0, -1e-300}, {100, 200}, {500000, 0}, {3e13, -2e13}, {-1e154, 0}};
    ExpectLoopsMatchSingleCalls(classic, lon0, 49.5, apex, "Krovak", 80);
    ExpectLoopsMatchSingleCalls(eastNorth, lon0, 49.5, apex, "Krovak east-north", 81);
    ExpectLoopsMatchSingleCalls(turned, 15, 50, apex, "Krovak turned", 82);
    ExpectLoopsMatchSingleCalls(sphere, lon0, 49.5, apex, "Krovak, sphere", 83);
    ExpectLoopsMatchSingleCalls(other, -100, 30, apex, "Krovak, other cone", 84);
}

TEST(VectorBatch, TransverseMercators)
{
    // The complex series: UTM, a grid with its origin off the equator (British
    // National Grid), the southern hemisphere with a false northing, a sphere,
    // and an origin at the pole; grid points at the poles' northings and a
    // quarter turn east.
    const CKvTransverseMercator utm("UTM-32", 0.9996, 9, 0, 500000, 0, kWgs84);
    const CKvTransverseMercator bng("BNG", 0.9996012717, -2, 49, 400000, -100000, kClarke1880);
    const CKvTransverseMercator south("UTM-33S", 0.9996, 15, 0, 500000, 10000000, kGrs80);
    const CKvTransverseMercator sphere("sphere", 1, -70, 20, 0, 0, kSphere);
    const CKvTransverseMercator polar("polar", 1, 0, 90, 0, 0, kWgs84);
    const GridPoints special = {{500000, 9997964.943}, {500000, -9997964.943}, {500000, 1e7}, {1.5e7, 0}};
    ExpectLoopsMatchSingleCalls(utm, 9, 50, special, "UTM, complex series", 90);
    ExpectLoopsMatchSingleCalls(bng, -2, 54, special, "British National Grid, complex series", 91);
    ExpectLoopsMatchSingleCalls(south, 15, -35, special, "southern UTM, complex series", 92);
    ExpectLoopsMatchSingleCalls(sphere, -70, 20, special, "sphere, complex series", 93);
    ExpectLoopsMatchSingleCalls(polar, 0, 89, special, "polar origin, complex series", 94);

    // The zoned grid (WGS 84 / UTM grid system, and 3-degree zones on the
    // International ellipsoid): the zones' batches, with eastings on the edges
    // between zones and beyond the first and the last.
    const double utmGrid[] = {0, -180, 6, 0.9996, 500000, 0};
    const double threeDegrees[] = {0, 0, 3, 1, 500000, 0};
    const CKvTransverseMercatorZoned zoned("UTM grid", utmGrid, kWgs84);
    const CKvTransverseMercatorZoned zoned3("3 degree zones", threeDegrees, CKvEllipsoid("Intl", "IN", 6378388, 297));
    const GridPoints edges = {{1e6, 5e6}, {31e6, -5e6}, {61e6, 0}, {60.9e6, 0}, {0.9e6, 0}, {31500000, 9997964.943}};
    ExpectLoopsMatchSingleCalls(zoned, 9, 50, edges, "UTM grid system", 95);
    ExpectLoopsMatchSingleCalls(zoned3, 13.5, 50, edges, "3-degree zoned grid", 96);
}
