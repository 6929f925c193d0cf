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
#include "projections/KvPolarStereographic.h"
#include "projections/KvRectifiedSkewOrthomorphic.h"
#include "projections/KvRotatedLongitudeLatitude.h"
#include "projections/KvStereographic.h"
#include "projections/KvStereographicNorthPole.h"
#include "projections/KvTransverseMercator.h"
#include "projections/KvTransverseMercatorJHS.h"

#include <benchmark/benchmark.h>
#include <memory>
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
    state.SetItemsProcessed(state.iterations() * kPoints);
    state.counters["ns/point"] = benchmark::Counter(static_cast<double>(state.iterations() * kPoints),
                                                    benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
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
    state.SetItemsProcessed(state.iterations() * kPoints);
    state.counters["ns/point"] = benchmark::Counter(static_cast<double>(state.iterations() * kPoints),
                                                    benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

struct Engine
{
    const char* name;
    CKvProjection* engine;
    double lon0, lat0;
};

const std::vector<Engine>& Engines()
{
    static const std::vector<Engine> engines = {
        {"TransverseMercatorJHS/UTM32", new CKvTransverseMercatorJHS("UTM-32", 0.9996, 9, 0, 500000, 0, kWgs84), 9, 50},
        {"TransverseMercator/UTM32", new CKvTransverseMercator("UTM-32", 0.9996, 9, 0, 500000, 0, kWgs84), 9, 50},
        {"Lambert1SP", new CKvLambert1SP("l1", 0.99987742, 2.337229167, 46.8, 600000, 2200000, kWgs84), 2.3, 46.8},
        {"Lambert2SP/Lambert93", new CKvLambert2SP("l93", 49, 44, 3, 46.5, 700000, 6600000, kGrs80), 3, 46.5},
        {"Mercator1SP", new CKvMercator1SP("m1", 1.0, 0, 0, 0, kWgs84), 0, 30},
        {"Mercator2SP", new CKvMercator2SP("m2", 42, 51, 0, 0, kWgs84), 51, 42},
        {"AlbersEqualArea/ellipsoid", new CKvAlbersEqualArea("aea", 29.5, 45.5, -96, 23, 0, 0, kGrs80), -96, 38},
        {"AlbersEqualArea/sphere", new CKvAlbersEqualArea("aea", 29.5, 45.5, -96, 23, 0, 0, kSphere), -96, 38},
        {"EquidistantConic/ellipsoid", new CKvEquidistantConic("eqdc", 33, 45, -96, 39, 0, 0, kGrs80), -96, 39},
        {"EquidistantConic/sphere", new CKvEquidistantConic("eqdc", 33, 45, -96, 39, 0, 0, kSphere), -96, 39},
        {"RotatedLongitudeLatitude", new CKvRotatedLongitudeLatitude("rot", 10, -40, 0, kSphere), 10, 50},
        {"Stereographic/RDNew",
         new CKvStereographic("rd", 0.9999079, 5.38763888888889, 52.15616055555555, 155000, 463000, kBessel), 5.4,
         52.2},
        {"PolarStereographic/UPSNorth", new CKvPolarStereographic("ups", 0.994, 0, 90, 2000000, 2000000, kWgs84), 0,
         85},
        {"StereographicNorthPole", new CKvStereographicNorthPole("np", 70, -45, 0, 0, kWgs84), -45, 80},
        {"HotineObliqueMercator",
         new CKvHotineObliqueMercator("mi", 0.9996, -86, 45.3091666666667, 337.25556, 2546731.496, -4354009.816,
                                      kGrs80),
         -86, 45},
        {"ObliqueMercator/LV03",
         new CKvObliqueMercator("lv03", 1, 7.43958333333333, 46.9524055555556, 90, 600000, 200000, kBessel), 7.4, 46.9},
        {"RectifiedSkewOrthomorphic",
         new CKvRectifiedSkewOrthomorphic("rso", 0.99984, 102.25, 4, 323.0257905, 323.130102361111, 804670.24, 0,
                                          kGrs80),
         102, 4},
        {"Krovak", new CKvKrovak("k", 0.9999, 78.5, 24.8333333333333, 49.5, 30.2881397527778, 90, -1, 1, 0, 0, kBessel),
         17, 49.5},
        {"NewZealandMapGrid", new CKvNewZealandMapGrid("nz", 173, -41, 2510000, 6023150, kIntl), 173, -41},
        {"LambertAzimuthalEqualArea/ellipsoid",
         new CKvLambertAzimuthalEqualArea("laea", 10, 52, 4321000, 3210000, kGrs80), 10, 52},
        {"LambertAzimuthalEqualArea/sphere", new CKvLambertAzimuthalEqualArea("laea", 10, 52, 0, 0, kSphere), 10, 52},
        {"CassiniSoldner/ellipsoid", new CKvCassiniSoldner("cass", 13.6, 52.4, 40000, 10000, kBessel), 13.6, 52.4},
        {"CassiniSoldner/sphere", new CKvCassiniSoldner("cass", 13.6, 52.4, 40000, 10000, kSphere), 13.6, 52.4},
    };
    return engines;
}

const bool kRegistered = [] {
    for (const Engine& e : Engines()) {
        benchmark::RegisterBenchmark((std::string(e.name) + "/forward").c_str(), Forward, e.engine, e.lon0, e.lat0);
        benchmark::RegisterBenchmark((std::string(e.name) + "/inverse").c_str(), Inverse, e.engine, e.lon0, e.lat0);
    }
    return true;
}();

} // namespace
