// Forward and inverse of every engine, in nanoseconds per point, over a fixed
// set of points inside each engine's default area.
#include "projections/KvAlbersEqualArea.h"
#include "projections/KvCassiniSoldner.h"
#include "projections/KvEquidistantConic.h"
#include "projections/KvHotineObliqueMercator.h"
#include "projections/KvKrovak.h"
#include "projections/KvLambert1SP.h"
#include "projections/KvLambert2SP.h"
#include "projections/KvLambertAzimuthalEqualArea.h"
#include "projections/KvMercator1SP.h"
#include "projections/KvMercator2SP.h"
#include "projections/KvNewZealandMapGrid.h"
#include "projections/KvObliqueMercator.h"
#include "projections/KvPseudoMercator.h"
#include "projections/KvPolarStereographic.h"
#include "projections/KvRectifiedSkewOrthomorphic.h"
#include "projections/KvRotatedLongitudeLatitude.h"
#include "projections/KvStereographic.h"
#include "projections/KvStereographicNorthPole.h"
#include "projections/KvTransverseMercator.h"
#include "projections/KvTransverseMercatorJHS.h"

#include "BenchSupport.h"

#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace {

const CKvEllipsoid kWgs84("WGS 84", "WE", 6378137.0, 298.257223563);
const CKvEllipsoid kGrs80("GRS 1980", "RF", 6378137.0, 298.257222101);
const CKvEllipsoid kSphere("Sphere", "XY", 6371229.0, 0.0);
const CKvEllipsoid kBessel("Bessel 1841", "BR", 6377397.155, 299.1528128);
const CKvEllipsoid kIntl("International 1924", "IN", 6378388.0, 297.0);
constexpr int kPoints = 1024;

struct Points
{
    std::vector<double> lon, lat, x, y;
};

// Points spread over 6 x 6 degrees around (lon0, lat0), and their projections.
Points MakePoints(const CKvProjection& engine, double lon0, double lat0)
{
    Points p;
    for (int i = 0; i < kPoints; ++i) {
        p.lon.push_back(lon0 - 3.0 + 6.0 * ((i * 37) % kPoints) / kPoints);
        p.lat.push_back(lat0 - 3.0 + 6.0 * ((i * 61) % kPoints) / kPoints);
        double x, y;
        engine.Geo2Proj(p.lon.back(), p.lat.back(), &x, &y);
        p.x.push_back(x);
        p.y.push_back(y);
    }
    return p;
}

void Forward(benchmark::State& state, const CKvProjection* engine, double lon0, double lat0)
{
    const Points p = MakePoints(*engine, lon0, lat0);
    for (auto _ : state)
        for (int i = 0; i < kPoints; ++i) {
            double x, y;
            engine->Geo2Proj(p.lon[i], p.lat[i], &x, &y);
            benchmark::DoNotOptimize(x);
            benchmark::DoNotOptimize(y);
        }
    kvbench::CountPoints(state, kPoints);
}

void Inverse(benchmark::State& state, const CKvProjection* engine, double lon0, double lat0)
{
    const Points p = MakePoints(*engine, lon0, lat0);
    for (auto _ : state)
        for (int i = 0; i < kPoints; ++i) {
            double lon, lat;
            engine->Proj2Geo(p.x[i], p.y[i], &lon, &lat);
            benchmark::DoNotOptimize(lon);
            benchmark::DoNotOptimize(lat);
        }
    kvbench::CountPoints(state, kPoints);
}

// The engine's batch form over the same points: one call for the whole array.
void BatchForward(benchmark::State& state, const CKvProjection* engine, double lon0, double lat0)
{
    const Points p = MakePoints(*engine, lon0, lat0);
    std::vector<double> x(kPoints), y(kPoints);
    for (auto _ : state) {
        engine->Geo2Proj(kPoints, p.lon.data(), p.lat.data(), x.data(), y.data());
        benchmark::DoNotOptimize(x.data());
        benchmark::DoNotOptimize(y.data());
        benchmark::ClobberMemory();
    }
    kvbench::CountPoints(state, kPoints);
}

void BatchInverse(benchmark::State& state, const CKvProjection* engine, double lon0, double lat0)
{
    const Points p = MakePoints(*engine, lon0, lat0);
    std::vector<double> lon(kPoints), lat(kPoints);
    for (auto _ : state) {
        engine->Proj2Geo(kPoints, p.x.data(), p.y.data(), lon.data(), lat.data());
        benchmark::DoNotOptimize(lon.data());
        benchmark::DoNotOptimize(lat.data());
        benchmark::ClobberMemory();
    }
    kvbench::CountPoints(state, kPoints);
}

struct Engine
{
    const char* name;
    CKvProjection* engine;
    double lon0, lat0;
    const char* proj; // the same projection for PROJ, or null where it has none to compare
};

const std::vector<Engine>& Engines()
{
    static const std::vector<Engine> engines = {
        {"TransverseMercatorJHS/UTM32", new CKvTransverseMercatorJHS("UTM-32", 0.9996, 9, 0, 500000, 0, kWgs84), 9, 50, "+proj=utm +zone=32 +ellps=WGS84"},
        {"TransverseMercator/UTM32", new CKvTransverseMercator("UTM-32", 0.9996, 9, 0, 500000, 0, kWgs84), 9, 50, "+proj=utm +zone=32 +ellps=WGS84"},
        {"Lambert1SP", new CKvLambert1SP("l1", 0.99987742, 2.337229167, 46.8, 600000, 2200000, kWgs84), 2.3, 46.8, "+proj=lcc +lat_1=46.8 +lat_0=46.8 +lon_0=2.337229167 +k_0=0.99987742 +x_0=600000 +y_0=2200000 +ellps=WGS84"},
        {"Lambert2SP/Lambert93", new CKvLambert2SP("l93", 49, 44, 3, 46.5, 700000, 6600000, kGrs80), 3, 46.5, "+proj=lcc +lat_1=49 +lat_2=44 +lat_0=46.5 +lon_0=3 +x_0=700000 +y_0=6600000 +ellps=GRS80"},
        {"Mercator1SP", new CKvMercator1SP("m1", 1.0, 0, 0, 0, kWgs84), 0, 30, "+proj=merc +ellps=WGS84"},
        {"Mercator2SP", new CKvMercator2SP("m2", 42, 51, 0, 0, kWgs84), 51, 42, "+proj=merc +lat_ts=42 +lon_0=51 +ellps=WGS84"},
        {"PseudoMercator", new CKvPseudoMercator("webmerc", 0, 0, 0, 0, kWgs84), 10, 50, "+proj=webmerc +ellps=WGS84"},
        {"AlbersEqualArea/ellipsoid", new CKvAlbersEqualArea("aea", 29.5, 45.5, -96, 23, 0, 0, kGrs80), -96, 38, "+proj=aea +lat_1=29.5 +lat_2=45.5 +lat_0=23 +lon_0=-96 +ellps=GRS80"},
        {"AlbersEqualArea/sphere", new CKvAlbersEqualArea("aea", 29.5, 45.5, -96, 23, 0, 0, kSphere), -96, 38, "+proj=aea +lat_1=29.5 +lat_2=45.5 +lat_0=23 +lon_0=-96 +R=6371229"},
        {"EquidistantConic/ellipsoid", new CKvEquidistantConic("eqdc", 33, 45, -96, 39, 0, 0, kGrs80), -96, 39, "+proj=eqdc +lat_1=33 +lat_2=45 +lat_0=39 +lon_0=-96 +ellps=GRS80"},
        {"EquidistantConic/sphere", new CKvEquidistantConic("eqdc", 33, 45, -96, 39, 0, 0, kSphere), -96, 39, "+proj=eqdc +lat_1=33 +lat_2=45 +lat_0=39 +lon_0=-96 +R=6371229"},
        {"RotatedLongitudeLatitude", new CKvRotatedLongitudeLatitude("rot", 10, -40, 0, kSphere), 10, 50, nullptr},
        {"Stereographic/RDNew",
         new CKvStereographic("rd", 0.9999079, 5.38763888888889, 52.15616055555555, 155000, 463000, kBessel), 5.4,
         52.2, "+proj=sterea +lat_0=52.15616055555555 +lon_0=5.38763888888889 +k=0.9999079 +x_0=155000 +y_0=463000 +ellps=bessel"},
        {"PolarStereographic/UPSNorth", new CKvPolarStereographic("ups", 0.994, 0, 90, 2000000, 2000000, kWgs84), 0,
         85, "+proj=stere +lat_0=90 +lon_0=0 +k=0.994 +x_0=2000000 +y_0=2000000 +ellps=WGS84"},
        {"StereographicNorthPole", new CKvStereographicNorthPole("np", 70, -45, 0, 0, kWgs84), -45, 80, "+proj=stere +lat_0=90 +lat_ts=70 +lon_0=-45 +ellps=WGS84"},
        {"HotineObliqueMercator",
         new CKvHotineObliqueMercator("mi", 0.9996, -86, 45.3091666666667, 337.25556, 2546731.496, -4354009.816,
                                      kGrs80),
         -86, 45, "+proj=omerc +no_uoff +lat_0=45.3091666666667 +lonc=-86 +alpha=337.25556 +k=0.9996 +x_0=2546731.496 +y_0=-4354009.816 +ellps=GRS80"},
        {"ObliqueMercator/LV03",
         new CKvObliqueMercator("lv03", 1, 7.43958333333333, 46.9524055555556, 90, 600000, 200000, kBessel), 7.4, 46.9, "+proj=somerc +lat_0=46.9524055555556 +lon_0=7.43958333333333 +k_0=1 +x_0=600000 +y_0=200000 +ellps=bessel"},
        {"RectifiedSkewOrthomorphic",
         new CKvRectifiedSkewOrthomorphic("rso", 0.99984, 102.25, 4, 323.0257905, 323.130102361111, 804670.24, 0,
                                          kGrs80),
         102, 4, "+proj=omerc +no_uoff +lat_0=4 +lonc=102.25 +alpha=323.0257905 +gamma=323.130102361111 +k=0.99984 +x_0=804670.24 +y_0=0 +ellps=GRS80"},
        {"Krovak", new CKvKrovak("k", 0.9999, 78.5, 24.8333333333333, 49.5, 30.2881397527778, 90, -1, 1, 0, 0, kBessel),
         17, 49.5, "+proj=krovak +lat_0=49.5 +lon_0=24.8333333333333 +alpha=30.2881397527778 +k=0.9999 +x_0=0 +y_0=0 +ellps=bessel"},
        {"NewZealandMapGrid", new CKvNewZealandMapGrid("nz", 173, -41, 2510000, 6023150, kIntl), 173, -41, "+proj=nzmg +lat_0=-41 +lon_0=173 +x_0=2510000 +y_0=6023150 +ellps=intl"},
        {"LambertAzimuthalEqualArea/ellipsoid",
         new CKvLambertAzimuthalEqualArea("laea", 10, 52, 4321000, 3210000, kGrs80), 10, 52, "+proj=laea +lat_0=52 +lon_0=10 +x_0=4321000 +y_0=3210000 +ellps=GRS80"},
        {"LambertAzimuthalEqualArea/sphere", new CKvLambertAzimuthalEqualArea("laea", 10, 52, 0, 0, kSphere), 10, 52, "+proj=laea +lat_0=52 +lon_0=10 +R=6371229"},
        {"CassiniSoldner/ellipsoid", new CKvCassiniSoldner("cass", 13.6, 52.4, 40000, 10000, kBessel), 13.6, 52.4, "+proj=cass +lat_0=52.4 +lon_0=13.6 +x_0=40000 +y_0=10000 +ellps=bessel"},
        {"CassiniSoldner/sphere", new CKvCassiniSoldner("cass", 13.6, 52.4, 40000, 10000, kSphere), 13.6, 52.4, "+proj=cass +lat_0=52.4 +lon_0=13.6 +x_0=40000 +y_0=10000 +R=6371229"},
    };
    return engines;
}

#ifdef KVCART_BENCH_WITH_PROJ
// PROJ's proj_trans on the same points, for the table beside each engine.
void ProjEngine(benchmark::State& state, const Engine* e, PJ_DIRECTION direction)
{
    const Points p = MakePoints(*e->engine, e->lon0, e->lat0);
    const kvbench::CProj proj(e->proj);
    if (proj.Get() == nullptr) {
        state.SkipWithError("PROJ could not make the projection");
        return;
    }
    // The same projection, or no comparison: the first point must agree to 1 mm.
    const PJ_COORD check =
        proj_trans(proj.Get(), PJ_FWD, proj_coord(proj_torad(p.lon[0]), proj_torad(p.lat[0]), 0, 0));
    if (!(std::fabs(check.xy.x - p.x[0]) < 1e-3 && std::fabs(check.xy.y - p.y[0]) < 1e-3)) {
        state.SkipWithError("PROJ's definition gives other coordinates");
        return;
    }
    kvbench::TimeProjTrans(state, proj.Get(), direction, p.lon, p.lat, p.x, p.y);
}
#endif

const bool kRegistered = [] {
    for (const Engine& e : Engines()) {
        benchmark::RegisterBenchmark((std::string(e.name) + "/forward").c_str(), Forward, e.engine, e.lon0, e.lat0);
        benchmark::RegisterBenchmark((std::string(e.name) + "/inverse").c_str(), Inverse, e.engine, e.lon0, e.lat0);
        benchmark::RegisterBenchmark((std::string(e.name) + "/batch-forward").c_str(), BatchForward, e.engine, e.lon0,
                                     e.lat0);
        benchmark::RegisterBenchmark((std::string(e.name) + "/batch-inverse").c_str(), BatchInverse, e.engine, e.lon0,
                                     e.lat0);
#ifdef KVCART_BENCH_WITH_PROJ
        if (e.proj != nullptr) {
            benchmark::RegisterBenchmark((std::string(e.name) + "/proj-forward").c_str(), ProjEngine, &e, PJ_FWD);
            benchmark::RegisterBenchmark((std::string(e.name) + "/proj-inverse").c_str(), ProjEngine, &e, PJ_INV);
        }
#endif
    }
    return true;
}();

} // namespace
