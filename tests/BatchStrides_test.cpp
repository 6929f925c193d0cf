// Strides as PROJ's proj_trans_generic takes them, beyond the plain forward
// ones: a negative stride (written as the size_t it converts to) walks an
// array from its last element back to its first, a stride of zero repeats one
// value. Every kind of batch loop of the library runs here: the per-point loop,
// the transverse Mercator's vectorized blocks, the blocks that bring axes
// round in the coordinate-system object, and those of the sphere variants.
#include "TestSupport.h"

#include "coordsys/KvMapProjection.h"
#include "projections/KvCassiniSoldner.h"
#include "projections/KvLambertAzimuthalEqualArea.h"

#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <vector>

namespace {

bool Same(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

// The stride that steps back by one element of the given size.
std::size_t Backwards(std::size_t size)
{
    return static_cast<std::size_t>(-static_cast<std::ptrdiff_t>(size));
}

// A host's interleaved record; the third member must never be touched.
struct Record
{
    double a, b, tag;
};

// 2 full blocks of the vectorized loops and a partial one, a point off the
// ellipsoid, NaN and a longitude beyond the antimeridian among them.
std::vector<double> Longitudes(double lon0)
{
    std::vector<double> lon;
    for (int i = 0; i < 150; ++i)
        lon.push_back(lon0 - 3.0 + 0.04 * i);
    lon[17] = std::nan("");
    lon[99] = lon0 + 540.0;
    return lon;
}

std::vector<double> Latitudes(double lat0)
{
    std::vector<double> lat;
    for (int i = 0; i < 150; ++i)
        lat.push_back(lat0 - 2.0 + 0.027 * i);
    lat[70] = 95.0;
    return lat;
}

// The points read backwards (from the last element of reversed arrays, and of
// reversed records, written in place) give what the plain forward batch gives,
// in both directions.
template <class TSystem> void ExpectBackwardsAsForwards(const TSystem& system, double lon0, double lat0, const char* name)
{
    const std::vector<double> lon = Longitudes(lon0), lat = Latitudes(lat0);
    const std::size_t n = lon.size(), last = n - 1;
    std::vector<double> x(n), y(n), lonBack(n), latBack(n);
    system.Geo2Proj(n, lon.data(), sizeof(double), lat.data(), sizeof(double), x.data(), sizeof(double), y.data(),
                    sizeof(double));
    system.Proj2Geo(n, x.data(), sizeof(double), y.data(), sizeof(double), lonBack.data(), sizeof(double),
                    latBack.data(), sizeof(double));

    std::vector<double> rlon(lon.rbegin(), lon.rend()), rlat(lat.rbegin(), lat.rend()), rx(n), ry(n), rlonBack(n),
        rlatBack(n);
    const std::size_t back = Backwards(sizeof(double));
    system.Geo2Proj(n, &rlon[last], back, &rlat[last], back, &rx[last], back, &ry[last], back);
    system.Proj2Geo(n, &rx[last], back, &ry[last], back, &rlonBack[last], back, &rlatBack[last], back);
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t r = last - i;
        ASSERT_TRUE(Same(rx[r], x[i]) && Same(ry[r], y[i])) << name << " forward, point " << i;
        ASSERT_TRUE(Same(rlonBack[r], lonBack[i]) && Same(rlatBack[r], latBack[i])) << name << " inverse, point " << i;
    }

    std::vector<Record> records(n);
    for (std::size_t i = 0; i < n; ++i)
        records[last - i] = {lon[i], lat[i], 0.5 * static_cast<double>(i)};
    const std::size_t recordBack = Backwards(sizeof(Record));
    Record& end = records[last];
    system.Geo2Proj(n, &end.a, recordBack, &end.b, recordBack, &end.a, recordBack, &end.b, recordBack);
    for (std::size_t i = 0; i < n; ++i)
        ASSERT_TRUE(Same(records[last - i].a, x[i]) && Same(records[last - i].b, y[i])) << name << " in place, " << i;
    system.Proj2Geo(n, &end.a, recordBack, &end.b, recordBack, &end.a, recordBack, &end.b, recordBack);
    for (std::size_t i = 0; i < n; ++i) {
        const Record& record = records[last - i];
        ASSERT_TRUE(Same(record.a, lonBack[i]) && Same(record.b, latBack[i])) << name << " in place back, " << i;
        ASSERT_EQ(record.tag, 0.5 * static_cast<double>(i)) << name;
    }

    // One latitude for every longitude: a stride of zero.
    std::vector<double> zx(n), zy(n);
    const double parallel = lat0 + 0.25;
    system.Geo2Proj(n, lon.data(), sizeof(double), &parallel, 0, zx.data(), sizeof(double), zy.data(),
                    sizeof(double));
    for (std::size_t i = 0; i < n; ++i) {
        double sx, sy;
        system.Geo2Proj(lon[i], parallel, &sx, &sy);
        ASSERT_TRUE(Same(zx[i], sx) && Same(zy[i], sy)) << name << " zero stride, point " << i;
    }
}

} // namespace

TEST(BatchStrides, BackwardsAndRepeatedPointsInEveryLoop)
{
    kvtest::ShippedCatalogue();
    // The transverse Mercator's blocks; a per-point loop (Albers); the
    // coordinate-system object's blocks around an engine with other axes.
    for (const char* text : {"UTM-32", "Conus Albers", kvtest::kLambert93NorthEast}) {
        const CKvMapProjection system(text);
        ASSERT_NE(system.GetProjection(), nullptr) << text;
        double lon0 = 0.0, lat0 = 0.0;
        system.GetProjection()->GetOrigin(&lon0, &lat0);
        ExpectBackwardsAsForwards(system, lon0, lat0 + 5.0, text);
    }
    // The sphere variants' blocks, on the engines themselves.
    const CKvEllipsoid sphere("Sphere", "XY", 6371229.0, 0.0);
    ExpectBackwardsAsForwards(CKvLambertAzimuthalEqualArea("laea", 10, 52, 0, 0, sphere), 10.0, 52.0, "laea");
    ExpectBackwardsAsForwards(CKvCassiniSoldner("cass", 13.6, 52.4, 40000, 10000, sphere), 13.6, 52.4, "cass");
}
