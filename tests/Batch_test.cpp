// Batch transforms against single-point calls, and the transverse Mercator fast
// path against a long-double evaluation of the JHS formulas.
#include "TestSupport.h"

#include "catalogue/KvEllipsoid.h"
#include "coordsys/KvMapProjection.h"
#include "geodesy/KvDatumConverter.h"
#include "geodesy/KvGeocentric.h"
#include "interface/KvCart.h"
#include "projections/KvAlbersEqualArea.h"
#include "projections/KvCassiniSoldner.h"
#include "projections/KvEquidistantConic.h"
#include "projections/KvLambertAzimuthalEqualArea.h"
#include "projections/KvMathKernel.h"
#include "projections/KvTransverseMercatorJHS.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

namespace {

// Equal bits, or NaN in both.
bool Same(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

struct Cloud
{
    std::vector<double> lon, lat;
};

Cloud MakeCloud(double lon0, double lonSpan, double latMin, double latMax, std::size_t n, unsigned seed)
{
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> u(0.0, 1.0);
    Cloud c;
    for (std::size_t i = 0; i < n; ++i) {
        c.lon.push_back(lon0 + lonSpan * (2.0 * u(random) - 1.0));
        c.lat.push_back(latMin + (latMax - latMin) * u(random));
    }
    return c;
}

// Forward and inverse of every point of the cloud in one batch and one by one.
// Forward and inverse of every point of the cloud in one batch and one by one:
// the same bits, vectorized loops included (their kernels are the scalar
// formulas' own, and any point beyond their reach runs the single-point path).
// TSystem: a CKvMapProjection or an engine; name: what a failure names.
template <class TSystem> void ExpectBatchMatchesSingle(const TSystem& system, const Cloud& c, const char* name)
{
    const std::size_t n = c.lon.size();
    std::vector<double> x(n), y(n), lon(n), lat(n);
    system.Geo2Proj(n, c.lon.data(), c.lat.data(), x.data(), y.data());
    system.Proj2Geo(n, x.data(), y.data(), lon.data(), lat.data());
    for (std::size_t i = 0; i < n; ++i) {
        double sx, sy, slon, slat;
        system.Geo2Proj(c.lon[i], c.lat[i], &sx, &sy);
        system.Proj2Geo(x[i], y[i], &slon, &slat);
        ASSERT_TRUE(Same(x[i], sx) && Same(y[i], sy) && Same(lon[i], slon) && Same(lat[i], slat))
            << name << " point " << i << ": " << c.lon[i] << " " << c.lat[i];
    }
}

} // namespace

TEST(Batch, AgreesWithSinglePointCalls)
{
    kvtest::ShippedCatalogue();
    ExpectBatchMatchesSingle(CKvMapProjection(kvtest::kLambert93NorthEast), MakeCloud(3, 6, 41, 52, 1000, 1), "Lambert-93 (N, E)");
    ExpectBatchMatchesSingle(CKvMapProjection("RD New"), MakeCloud(5.4, 3, 50, 54, 1000, 2), "RD New");
    ExpectBatchMatchesSingle(CKvMapProjection("World Mercator"), MakeCloud(0, 180, -80, 84, 1000, 3), "World Mercator");
    ExpectBatchMatchesSingle(CKvMapProjection("LONG/LAT"), MakeCloud(0, 180, -90, 90, 100, 4), "LONG/LAT");
    // The transverse Mercator within 10, 30 and 180 degrees of its meridian and to
    // the poles, where the vectorized fast path, its exceptions and the general
    // path all run.
    ExpectBatchMatchesSingle(CKvMapProjection("UTM-32"), MakeCloud(9, 10, -90, 90, 20000, 5), "UTM-32");
    ExpectBatchMatchesSingle(CKvMapProjection("UTM-32"), MakeCloud(9, 30, -90, 90, 5000, 10), "UTM-32");
    ExpectBatchMatchesSingle(CKvMapProjection("UTM-32"), MakeCloud(9, 180, -90, 90, 2000, 6), "UTM-32");
}

TEST(Batch, EveryEngineFamilyRunsItsOwnLoop)
{
    kvtest::ShippedCatalogue();
    // The other families of the catalogue, each over its neighbourhood and beyond.
    for (const char* name : {"Conus Albers", "LAEA Europe", "Soldner Berlin", "USA Contiguous Equidistant Conic",
                             "S-JTSK / Krovak", "Michigan Oblique Mercator", "Swiss LV03", "RSO Malaya", "UPS North",
                             "Antarctic Polar Stereographic", "New Zealand Map Grid", "COSMO-EU Rotated Pole",
                             "Caspian Sea Mercator", "British National Grid"}) {
        const CKvMapProjection system(name);
        ASSERT_NE(system.GetProjection(), nullptr) << name;
        double lon0, lat0;
        system.GetOrigin(&lon0, &lat0);
        ExpectBatchMatchesSingle(system, MakeCloud(lon0, 8, std::fmax(lat0 - 8, -90), std::fmin(lat0 + 8, 90), 300, 11),
                                 name);
        ExpectBatchMatchesSingle(system, MakeCloud(lon0, 180, -90, 90, 300, 12), name);
    }
    // The sphere variants, engines made directly.
    const CKvEllipsoid sphere("Sphere", "XY", 6371229.0, 0.0);
    const CKvLambertAzimuthalEqualArea laea("laea", 10, 52, 0, 0, sphere);
    const CKvCassiniSoldner cassini("cass", 13.6, 52.4, 40000, 10000, sphere);
    const CKvAlbersEqualArea albers("aea", 29.5, 45.5, -96, 23, 0, 0, sphere);
    const CKvEquidistantConic eqdc("eqdc", 33, 45, -96, 39, 0, 0, sphere);
    for (const CKvProjection* engine : {static_cast<const CKvProjection*>(&laea), static_cast<const CKvProjection*>(&cassini),
                                        static_cast<const CKvProjection*>(&albers), static_cast<const CKvProjection*>(&eqdc)})
        ExpectBatchMatchesSingle(*engine, MakeCloud(0, 180, -90, 90, 400, 13), engine->GetName());
}

TEST(Batch, StridesInPlaceAndEdgeCounts)
{
    kvtest::ShippedCatalogue();
    const CKvMapProjection utm("UTM-32");
    // Interleaved records {lon, lat, h} as a host keeps them: strides of 24 bytes.
    struct Record
    {
        double lon, lat, h;
    };
    std::vector<Record> records;
    const Cloud c = MakeCloud(9, 4, 40, 60, 150, 7);
    for (std::size_t i = 0; i < c.lon.size(); ++i)
        records.push_back({c.lon[i], c.lat[i], 100.0 + i});
    std::vector<double> x(records.size()), y(records.size());
    utm.Geo2Proj(records.size(), &records[0].lon, sizeof(Record), &records[0].lat, sizeof(Record), x.data(),
                 sizeof(double), y.data(), sizeof(double));
    std::vector<double> ex(records.size()), ey(records.size());
    utm.Geo2Proj(records.size(), c.lon.data(), c.lat.data(), ex.data(), ey.data());
    EXPECT_EQ(x, ex);
    EXPECT_EQ(y, ey);

    // In place: the records become grid coordinates and then come back.
    utm.Geo2Proj(records.size(), &records[0].lon, sizeof(Record), &records[0].lat, sizeof(Record), &records[0].lon,
                 sizeof(Record), &records[0].lat, sizeof(Record));
    for (std::size_t i = 0; i < records.size(); ++i) {
        EXPECT_EQ(records[i].lon, ex[i]);
        EXPECT_EQ(records[i].lat, ey[i]);
        EXPECT_EQ(records[i].h, 100.0 + i); // the third member is never touched
    }
    utm.Proj2Geo(records.size(), &records[0].lon, sizeof(Record), &records[0].lat, sizeof(Record), &records[0].lon,
                 sizeof(Record), &records[0].lat, sizeof(Record));
    for (std::size_t i = 0; i < records.size(); ++i) {
        EXPECT_NEAR(records[i].lon, c.lon[i], 1e-11);
        EXPECT_NEAR(records[i].lat, c.lat[i], 1e-11);
    }

    // n = 0 touches nothing (null pointers included); n = 1 is the single call.
    utm.Geo2Proj(0, nullptr, nullptr, nullptr, nullptr);
    double one[2] = {10.5, 52.0}, single[2];
    utm.Geo2Proj(10.5, 52.0, &single[0], &single[1]);
    utm.Geo2Proj(1, &one[0], &one[1], &one[0], &one[1]);
    EXPECT_NEAR(one[0], single[0], 1e-9);
    EXPECT_NEAR(one[1], single[1], 1e-9);

    // Axes declared northing/easting are swapped in the batch as in single calls,
    // in place too.
    const CKvMapProjection lambert(kvtest::kLambert93NorthEast);
    double nx[2] = {2.35, -1.0}, ny[2] = {48.85, 43.0}, sx, sy;
    lambert.Geo2Proj(2.35, 48.85, &sx, &sy);
    lambert.Geo2Proj(2, nx, ny, nx, ny);
    EXPECT_EQ(nx[0], sx);
    EXPECT_EQ(ny[0], sy);
    lambert.Proj2Geo(2, nx, ny, nx, ny);
    EXPECT_NEAR(nx[0], 2.35, 1e-11);
    EXPECT_NEAR(ny[1], 43.0, 1e-11);

    // An unresolved system leaves the outputs of the inverse untouched, as a single call does.
    const CKvMapProjection none("no such system");
    double out[2] = {7.0, 8.0};
    none.Proj2Geo(1, &ex[0], &ey[0], &out[0], &out[1]);
    EXPECT_EQ(out[0], 7.0);
    EXPECT_EQ(out[1], 8.0);
}

TEST(Batch, BadPointsStayConfinedToThemselves)
{
    kvtest::ShippedCatalogue();
    const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
    for (const char* name : {"UTM-32", "RD New", "World Mercator"}) {
        const CKvMapProjection system(name);
        double x0, y0;
        system.GetOrigin(&x0, &y0);
        std::vector<double> lon(200, x0 + 0.5), lat(200, 52.0);
        lon[3] = nan;
        lat[70] = nan;
        lat[71] = 91.0;
        lon[130] = inf;
        lat[199] = -inf;
        std::vector<double> x(200), y(200);
        system.Geo2Proj(lon.size(), lon.data(), lat.data(), x.data(), y.data());
        double gx, gy;
        system.Geo2Proj(x0 + 0.5, 52.0, &gx, &gy);
        for (std::size_t i = 0; i < lon.size(); ++i) {
            double sx, sy;
            system.Geo2Proj(lon[i], lat[i], &sx, &sy);
            if (i == 3 || i == 70 || i == 71 || i == 130 || i == 199) {
                EXPECT_EQ(std::isnan(x[i]), std::isnan(sx)) << name << " " << i;
                EXPECT_FALSE(std::isfinite(x[i]) && std::isfinite(y[i])) << name << " " << i;
            } else {
                EXPECT_NEAR(x[i], gx, 1e-9) << name << " " << i;
                EXPECT_NEAR(y[i], gy, 1e-9) << name << " " << i;
            }
        }
        // The inverse of the same array, with its bad entries.
        std::vector<double> blon(200), blat(200);
        system.Proj2Geo(x.size(), x.data(), y.data(), blon.data(), blat.data());
        for (std::size_t i : {std::size_t(2), std::size_t(69), std::size_t(72), std::size_t(198)}) {
            EXPECT_NEAR(blon[i], x0 + 0.5, 1e-11) << name << " " << i;
            EXPECT_NEAR(blat[i], 52.0, 1e-11) << name << " " << i;
        }
        EXPECT_TRUE(std::isnan(blat[70]));
    }
}

TEST(Batch, CInterfaceAndDatumConverter)
{
    kvtest::ShippedCatalogue();
    KVMP_HANDLE utm = nullptr;
    int status = -1;
    C_KVMP_CREATE("UTM-31", &utm, &status);
    ASSERT_EQ(status, 0);
    const Cloud c = MakeCloud(3, 3, 43, 51, 300, 8);
    std::vector<double> x(c.lon.size()), y(c.lon.size()), lon(c.lon.size()), lat(c.lon.size());
    C_KVMP_GEO2PROJ_N(utm, c.lon.size(), c.lon.data(), c.lat.data(), x.data(), y.data());
    C_KVMP_PROJ2GEO_N(utm, x.size(), x.data(), y.data(), lon.data(), lat.data());
    for (std::size_t i = 0; i < c.lon.size(); ++i) {
        double sx, sy;
        C_KVMP_GEO2PROJ(utm, c.lon[i], c.lat[i], &sx, &sy);
        EXPECT_EQ(x[i], sx);
        EXPECT_EQ(y[i], sy);
        EXPECT_NEAR(lon[i], c.lon[i], 1e-11);
        EXPECT_NEAR(lat[i], c.lat[i], 1e-11);
    }
    C_KVMP_DESTROY(&utm, &status);

    // UTM 31 on WGS 84 to UTM 31 on ED50 (International 1924) through
    // geocentric coordinates and the shift: in place with and without
    // heights, against the single-point conversion.
    KVDC_HANDLE converter = nullptr;
    C_KVDC_CREATE("UTM-31", kvtest::kEd50Utm31, &converter, &status);
    ASSERT_EQ(status, 0);
    C_KVDC_SETCONVERSIONTYPE(converter, 0);
    ASSERT_EQ(C_KVDC_GETBYPASSXYZ(converter), 0);
    std::vector<double> bx = x, by = y, hx = x, hy = y, h(x.size(), 250.0);
    C_KVDC_CONVERTXY_N(converter, bx.size(), bx.data(), by.data());
    C_KVDC_CONVERTXYH_N(converter, hx.size(), hx.data(), hy.data(), h.data());
    for (std::size_t i = 0; i < x.size(); ++i) {
        double sx = x[i], sy = y[i], tx = x[i], ty = y[i], th = 250.0;
        C_KVDC_CONVERTXY(converter, &sx, &sy);
        C_KVDC_CONVERTXYH(converter, &tx, &ty, &th);
        EXPECT_NEAR(bx[i], sx, 1e-8) << i;
        EXPECT_NEAR(by[i], sy, 1e-8) << i;
        EXPECT_NEAR(hx[i], tx, 1e-8) << i;
        EXPECT_NEAR(hy[i], ty, 1e-8) << i;
        EXPECT_NEAR(h[i], th, 1e-8) << i;
    }
    C_KVDC_CONVERTXY_N(converter, 0, nullptr, nullptr);
    C_KVDC_DESTROY(&converter, &status);
}

namespace {

// ED50 / UTM 31N with the three-parameter shift of its WKT.

// Points of a region and of the whole globe, mixed, heights from -500 to
// 9000 m, and every few points one that the geocentric step must not take as
// it takes the others: off the domain (NaN, infinities, 1e308, latitude 91,
// heights -1e7 and 1e13), the poles, the antimeridian, a longitude of 540.
struct DatumCloud
{
    std::vector<double> x, y, h;
};
DatumCloud MakeDatumCloud(double lon0, double lat0, unsigned seed)
{
    const double inf = std::numeric_limits<double>::infinity(), nan = std::nan("");
    const double odd[][3] = {{nan, 50, 0},     {3, nan, 0},         {3, 50, nan},      {inf, 50, 0},
                             {-inf, 50, 0},    {3, inf, 0},         {3, 50, inf},      {3, 50, -inf},
                             {1e308, 50, 0},   {3, 1e308, 0},       {3, 91, 0},        {3, -91, 0},
                             {3, 50, -1e7},    {3, 50, 1e13},       {3, 90, 0},        {3, -90, 100},
                             {180, 50, 0},     {-180, -50, 0},      {179.99999, 0, 0}, {-179.99999, 10, 0},
                             {540, 50, 0},     {-540, 50, 0},       {0, 89.9999999, 0}, {3, 50, 1e12}};
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> u(0.0, 1.0);
    DatumCloud c;
    std::size_t next = 0;
    for (std::size_t i = 0; i < 450; ++i) {
        if (i % 7 == 3 && next < sizeof odd / sizeof odd[0]) {
            c.x.push_back(odd[next][0]);
            c.y.push_back(odd[next][1]);
            c.h.push_back(odd[next][2]);
            ++next;
            continue;
        }
        const bool global = i % 2 == 0;
        c.x.push_back(global ? 360.0 * u(random) - 180.0 : lon0 + 8.0 * u(random) - 4.0);
        c.y.push_back(global ? 180.0 * u(random) - 90.0 : lat0 + 8.0 * u(random) - 4.0);
        c.h.push_back(9500.0 * u(random) - 500.0);
    }
    return c;
}

// The converter's n-point calls, both ways, with and without heights, against
// its single calls: the same bits. Projected inputs are the cloud's points
// projected by the system read (the odd ones kept as they are).
void ExpectConverterBatchMatchesSingle(const CKvDatumConverter& converter, const DatumCloud& cloud, const char* name)
{
    for (const bool forward : {true, false}) {
        const CKvDatumConverter::ETypeOfConversion type = converter.GetConversionType();
        const bool sourceProjected = type == CKvDatumConverter::eProjToProj || type == CKvDatumConverter::eProjToGeo;
        const bool targetProjected = type == CKvDatumConverter::eProjToProj || type == CKvDatumConverter::eGeoToProj;
        const CKvMapProjection* read = converter.GetMapProjection(forward);
        const std::size_t n = cloud.x.size();
        std::vector<double> x = cloud.x, y = cloud.y;
        if (forward ? sourceProjected : targetProjected)
            for (std::size_t i = 0; i < n; ++i)
                if (i % 7 != 3)
                    read->Geo2Proj(cloud.x[i], cloud.y[i], &x[i], &y[i]);
        std::vector<double> bx = x, by = y, hx = x, hy = y, h = cloud.h;
        if (forward) {
            converter.Convert(n, bx.data(), by.data());
            converter.Convert(n, hx.data(), hy.data(), h.data());
        } else {
            converter.InvConvert(n, bx.data(), by.data());
            converter.InvConvert(n, hx.data(), hy.data(), h.data());
        }
        std::size_t shifted = 0;
        for (std::size_t i = 0; i < n; ++i) {
            double sx = x[i], sy = y[i], tx = x[i], ty = y[i], th = cloud.h[i];
            if (forward) {
                converter.Convert(sx, sy);
                converter.Convert(tx, ty, th);
            } else {
                converter.InvConvert(sx, sy);
                converter.InvConvert(tx, ty, th);
            }
            ASSERT_TRUE(Same(bx[i], sx) && Same(by[i], sy) && Same(hx[i], tx) && Same(hy[i], ty) && Same(h[i], th))
                << name << " type " << type << (forward ? " forward" : " inverse") << " point " << i << ": " << x[i]
                << " " << y[i] << " " << cloud.h[i];
            shifted += std::isfinite(th) && th != cloud.h[i];
        }
        // The step ran: the heights change from one datum to the other.
        EXPECT_GT(shifted, n / 3) << name << (forward ? " forward" : " inverse");
    }
}

} // namespace

TEST(Batch, DatumConverterGeocentricStepAgreesWithSinglePointCalls)
{
    kvtest::ShippedCatalogue();
    struct Case
    {
        const char* source;
        const char* target;
        double lon0, lat0;
        CKvCartDef::ETypeOfDatumShift sourceShift, targetShift;
    };
    const Case cases[] = {
        {"UTM-31", kvtest::kEd50Utm31, 3.0, 47.0, CKvCartDef::eNoDatumShift, CKvCartDef::eThreeParameters},
        {"UTM-30", kvtest::kOsgbGrid, -2.0, 54.0, CKvCartDef::eNoDatumShift, CKvCartDef::eSevenParameters},
        {kvtest::kEd50Utm31, kvtest::kOsgbGrid, 0.0, 51.0, CKvCartDef::eThreeParameters, CKvCartDef::eSevenParameters},
    };
    unsigned seed = 40;
    for (const Case& c : cases) {
        CKvDatumConverter converter(c.source, c.target);
        ASSERT_EQ(converter.GetShiftType(true), c.sourceShift) << c.target;
        ASSERT_EQ(converter.GetShiftType(false), c.targetShift) << c.target;
        ASSERT_FALSE(converter.GetBypassXYZ()) << c.target;
        const DatumCloud cloud = MakeDatumCloud(c.lon0, c.lat0, ++seed);
        for (const auto type : {CKvDatumConverter::eProjToProj, CKvDatumConverter::eProjToGeo,
                                CKvDatumConverter::eGeoToProj, CKvDatumConverter::eGeoToGeo}) {
            converter.SetConversionType(type);
            ExpectConverterBatchMatchesSingle(converter, cloud, c.target);
        }
    }
}

// The kernels' step against CKvGeocentric's own conversions (libm's sines,
// cosines and atan2) and the public shift on points all over the globe: the
// same point to 1 micrometre on the ground and in height, wherever the two
// give one; NaN where the general step gives NaN.
TEST(Batch, DatumConverterKernelStepKeepsTheGeneralConversion)
{
    kvtest::ShippedCatalogue();
    CKvDatumConverter converter("LONG/LAT", kvtest::kOsgbGrid);
    converter.SetConversionType(CKvDatumConverter::eGeoToGeo);
    CKvEllipsoid wgs84, airy;
    wgs84.SetParams(6378137.0, 298.257223563);
    airy.SetParams(6377563.396, 299.3249646);
    const CKvGeocentric from(wgs84), to(airy);
    const DatumCloud cloud = MakeDatumCloud(-2.0, 54.0, 77);
    const std::size_t n = cloud.x.size();
    std::vector<double> lon = cloud.x, lat = cloud.y, h = cloud.h;
    converter.Convert(n, lon.data(), lat.data(), h.data());
    constexpr double metresPerDegree = 6378137.0 * CKvAngle::Pi / 180.0;
    for (std::size_t i = 0; i < n; ++i) {
        double X, Y, Z, rlon, rlat, rh;
        from.Forward(cloud.x[i], cloud.y[i], cloud.h[i], X, Y, Z);
        converter.DatumShift(X, Y, Z);
        to.Inverse(X, Y, Z, rlon, rlat, rh);
        if (std::isnan(rlat)) {
            EXPECT_TRUE(std::isnan(lon[i]) && std::isnan(lat[i]) && std::isnan(h[i])) << i;
            continue;
        }
        const double dLon = std::remainder(lon[i] - rlon, 360.0);
        EXPECT_LE(std::fabs(lat[i] - rlat) * metresPerDegree, 1e-6) << i << ": " << cloud.x[i] << " " << cloud.y[i];
        EXPECT_LE(std::fabs(dLon) * std::cos(rlat * CKvAngle::Pi / 180.0) * metresPerDegree, 1e-6)
            << i << ": " << cloud.x[i] << " " << cloud.y[i];
        EXPECT_NEAR(h[i], rh, 1e-6) << i;
    }
    // The antimeridian, however written, is one meridian and gives one point.
    std::vector<double> meridian = {180.0, -180.0, 540.0, -540.0, 900.0}, parallel(5, 50.0), height(5, 10.0);
    converter.Convert(meridian.size(), meridian.data(), parallel.data(), height.data());
    for (std::size_t i = 1; i < meridian.size(); ++i) {
        EXPECT_EQ(meridian[i], meridian[0]) << i;
        EXPECT_EQ(parallel[i], parallel[0]) << i;
        EXPECT_EQ(height[i], height[0]) << i;
    }
    EXPECT_LE(std::fabs(meridian[0]), 180.0);
}

namespace {

// The JHS 154 transverse Mercator (IOGP Guidance Note 7-2) in long double,
// as the guidance writes it: an independent check of the fast double path.
struct JhsReference
{
    using L = long double;
    L a, n, e, B, k0, lambda0, h[4], hp[4];

    JhsReference(double a_, double invF, double k0_, double lon0) : a(a_), k0(k0_)
    {
        const L f = 1.0L / invF;
        n = f / (2 - f);
        e = std::sqrt(f * (2 - f));
        B = a / (1 + n) * (1 + n * n / 4 + n * n * n * n / 64);
        lambda0 = lon0 * kDeg;
        h[0] = n / 2 - 2 * n * n / 3 + 5 * n * n * n / 16 + 41 * n * n * n * n / 180;
        h[1] = 13 * n * n / 48 - 3 * n * n * n / 5 + 557 * n * n * n * n / 1440;
        h[2] = 61 * n * n * n / 240 - 103 * n * n * n * n / 140;
        h[3] = 49561 * n * n * n * n / 161280;
        hp[0] = n / 2 - 2 * n * n / 3 + 37 * n * n * n / 96 - n * n * n * n / 360;
        hp[1] = n * n / 48 + n * n * n / 15 - 437 * n * n * n * n / 1440;
        hp[2] = 17 * n * n * n / 480 - 37 * n * n * n * n / 840;
        hp[3] = 4397 * n * n * n * n / 161280;
    }
    static constexpr L kDeg = 3.14159265358979323846264338327950288L / 180;

    void Forward(double lon, double lat, L& x, L& y) const
    {
        const L phi = lat * kDeg, dl = lon * kDeg - lambda0;
        const L Q = std::asinh(std::tan(phi)) - e * std::atanh(e * std::sin(phi));
        const L beta = std::atan(std::sinh(Q));
        const L eta0 = std::atanh(std::cos(beta) * std::sin(dl));
        const L xi0 = std::asin(std::sin(beta) * std::cosh(eta0));
        L xi = xi0, eta = eta0;
        for (int k = 1; k <= 4; ++k) {
            xi += h[k - 1] * std::sin(2 * k * xi0) * std::cosh(2 * k * eta0);
            eta += h[k - 1] * std::cos(2 * k * xi0) * std::sinh(2 * k * eta0);
        }
        x = 500000 + k0 * B * eta;
        y = k0 * B * xi;
    }

    void Inverse(L x, L y, L& lon, L& lat) const
    {
        const L eta = (x - 500000) / (B * k0), xi = y / (B * k0);
        L xi0 = xi, eta0 = eta;
        for (int k = 1; k <= 4; ++k) {
            xi0 -= hp[k - 1] * std::sin(2 * k * xi) * std::cosh(2 * k * eta);
            eta0 -= hp[k - 1] * std::cos(2 * k * xi) * std::sinh(2 * k * eta);
        }
        const L beta = std::asin(std::sin(xi0) / std::cosh(eta0));
        const L Q = std::asinh(std::tan(beta));
        L Qp = Q + e * std::atanh(e * std::tanh(Q));
        for (int i = 0; i < 30; ++i)
            Qp = Q + e * std::atanh(e * std::tanh(Qp));
        lat = std::atan(std::sinh(Qp)) / kDeg;
        lon = (lambda0 + std::asin(std::tanh(eta0) / std::cos(beta))) / kDeg;
    }
};

} // namespace

TEST(Batch, TransverseMercatorFastPathKeepsTheJhsFormulas)
{
    const CKvEllipsoid wgs84("WGS 84", "WE", 6378137.0, 298.257223563);
    const CKvTransverseMercatorJHS engine("UTM-32", 0.9996, 9.0, 0.0, 500000.0, 0.0, wgs84);
    const JhsReference reference(6378137.0, 298.257223563, 0.9996, 9.0);
    const Cloud c = MakeCloud(9, 12, -84, 84, 20000, 9);
    std::vector<double> x(c.lon.size()), y(c.lon.size()), lon(c.lon.size()), lat(c.lon.size());
    engine.Geo2Proj(c.lon.size(), c.lon.data(), c.lat.data(), x.data(), y.data());
    double worstX = 0, worstY = 0, worstLon = 0, worstLat = 0;
    for (std::size_t i = 0; i < c.lon.size(); ++i) {
        double sx, sy, slon, slat;
        engine.Geo2Proj(c.lon[i], c.lat[i], &sx, &sy);
        engine.Proj2Geo(sx, sy, &slon, &slat);
        long double rx, ry, rlon, rlat;
        reference.Forward(c.lon[i], c.lat[i], rx, ry);
        reference.Inverse(sx, sy, rlon, rlat);
        worstX = std::fmax(worstX, std::fabs(static_cast<double>(sx - rx)));
        worstY = std::fmax(worstY, std::fabs(static_cast<double>(sy - ry)));
        worstLon = std::fmax(worstLon, std::fabs(static_cast<double>(slon - rlon)));
        worstLat = std::fmax(worstLat, std::fabs(static_cast<double>(slat - rlat)));
        ASSERT_EQ(x[i], sx);
        ASSERT_EQ(y[i], sy);
    }
    // The general path (the JHS steps in double) stands at 4.7e-9 m in northing
    // from this evaluation on the same points: the rounding of northings of up to
    // 9 300 km and the guidance's own arrangement of the series.
    EXPECT_LE(worstX, 5e-9);
    EXPECT_LE(worstY, 5e-9);
    EXPECT_LE(worstLon, 1e-12);
    EXPECT_LE(worstLat, 1e-12);
}

TEST(Batch, MathKernelsAgainstLibm)
{
    // sin, cos and 1 - cos over the whole reduction range that the engines use,
    // and the quadrant boundaries.
    double worst = 0.0;
    for (int i = -200000; i <= 200000; ++i) {
        const double x = i * 1.6e-4 + 1e-7 * (i % 7);
        double s, c, v;
        CKvMathKernel::SinCos(x, s, c, v);
        worst = std::fmax(worst, std::fmax(std::fabs(s - std::sin(x)), std::fabs(c - std::cos(x))));
        ASSERT_NEAR(v, 1.0 - std::cos(x), 4e-16 + 1e-15 * std::fabs(1.0 - std::cos(x))) << x;
    }
    EXPECT_LE(worst, 3.4e-16);
    for (double x : {0.0, -0.0, 1e-300, 3.141592653589793 / 4, 1.5707963267948966, 3.141592653589793, 9e4}) {
        double s, c, v;
        CKvMathKernel::SinCos(x, s, c, v);
        EXPECT_NEAR(s, std::sin(x), 2.3e-16) << x;
        EXPECT_NEAR(c, std::cos(x), 2.3e-16) << x;
    }
    // The versine keeps its relative precision near zero, where 1 - cos has none.
    double s, c, v;
    CKvMathKernel::SinCos(1e-5, s, c, v);
    EXPECT_NEAR(v, 2.0 * std::sin(0.5e-5) * std::sin(0.5e-5), 1e-26);
    for (double x = -0.5; x <= 0.5; x += 0.001)
        ASSERT_NEAR(CKvMathKernel::SinhSmall(x), std::sinh(x), 2.3e-16 * std::fmax(1.0, std::fabs(std::sinh(x))));
    for (double e : {0.0818191908426215, 0.1, 0.0}) {
        double c[CKvMathKernel::EccentricSinhTerms];
        CKvMathKernel::EccentricSinhSeries(e, c);
        for (double z = -e; z <= e; z += e / 200 + 1e-3)
            ASSERT_NEAR(z * CKvMathKernel::Estrin<CKvMathKernel::EccentricSinhTerms>(z * z, c), std::sinh(e * std::atanh(z)),
                        4.5e-16 * std::fabs(z) * e) << e << " " << z;
    }
    // The small-argument series of the scalar path.
    for (double t = -0.05; t <= 0.05; t += 0.0007) {
        ASSERT_NEAR(CKvMathKernel::AtanSmall(t), std::atan(t), 2.3e-16 * std::fabs(t)) << t;
        ASSERT_NEAR(CKvMathKernel::AtanSeries(t), std::atan(t), 2.3e-16 * std::fabs(t)) << t;
    }
    for (double t = -0.005; t <= 0.005; t += 0.00007)
        ASSERT_NEAR(CKvMathKernel::AtanTiny(t), std::atan(t), 2.3e-16 * std::fabs(t)) << t;
    for (double x = -0.1; x <= 0.1; x += 0.0013) {
        ASSERT_NEAR(CKvMathKernel::AsinhSmall(x), std::asinh(x), 2.3e-16 * std::fabs(x)) << x;
        ASSERT_NEAR(CKvMathKernel::AsinSmall(x), std::asin(x), 2.3e-16 * std::fabs(x)) << x;
    }
}

TEST(Batch, ExpLogSinAtanKernelsAgainstLibm)
{
    // exp over its whole stated range, the reduction's boundaries (odd multiples
    // of ln 2 / 128, where the table's entry changes) among the points: relative
    // error.
    double worst = 0.0;
    for (int i = -70000; i <= 70000; ++i) {
        const double x = i * 0.01 + 1e-9 * (i % 11);
        worst = std::fmax(worst, std::fabs(CKvMathKernel::Exp(x) - std::exp(x)) / std::exp(x));
    }
    for (int k = -129263; k <= 129263; k += 2)
        for (double x : {std::nextafter(k * 0.0054152123481245725, 0.0), k * 0.0054152123481245725})
            if (std::fabs(x) <= CKvMathKernel::ExpLimit)
                worst = std::fmax(worst, std::fabs(CKvMathKernel::Exp(x) - std::exp(x)) / std::exp(x));
    EXPECT_LE(worst, 4.5e-16);
    EXPECT_EQ(CKvMathKernel::Exp(0.0), 1.0);
    EXPECT_NEAR(CKvMathKernel::Exp(-CKvMathKernel::ExpLimit) / std::exp(-CKvMathKernel::ExpLimit), 1.0, 4.5e-16);

    // ln x from the smallest normal number to the largest, the mantissas about
    // 0.709 where the exponent changes, the table's bucket edges about 1, and
    // near 1, where ln x is small.
    worst = 0.0;
    std::mt19937_64 random(14);
    std::uniform_real_distribution<double> u(0.5, 2.0);
    for (int i = 0; i < 200000; ++i) {
        const double x = std::ldexp(u(random), i % 2044 - 1021);
        worst = std::fmax(worst, std::fabs(CKvMathKernel::Log(x) - std::log(x)) / std::fabs(std::log(x)));
    }
    for (double x : {0.70710678118654746, 0.70710678118654757, 0.708984375, 1.41796875, 1.0 - 1.0 / 512,
                     1.0 + 1.0 / 256, 1.0 + 1e-15, 1.0 - 1e-15, 1.0 + 1e-6, 0.999, 2.2250738585072014e-308,
                     1.7976931348623157e308})
        for (double y : {std::nextafter(x, 0.0), x, std::nextafter(x, 2.0 * x)})
            worst = std::fmax(worst, std::fabs(CKvMathKernel::Log(y) - std::log(y)) / std::fabs(std::log(y)));
    EXPECT_LE(worst, 4.5e-16);
    EXPECT_EQ(CKvMathKernel::Log(1.0), 0.0);

    // sin over a half turn about 0, from the smallest angles to the poles.
    worst = 0.0;
    for (int i = -200000; i <= 200000; ++i) {
        const double x = i * (1.5707963267948966 / 200000);
        if (x != 0.0)
            worst = std::fmax(worst, std::fabs(CKvMathKernel::SinHalfPi(x) - std::sin(x)) / std::fabs(std::sin(x)));
    }
    for (double x : {1e-300, 1e-8, 1.5707963267948966})
        worst = std::fmax(worst, std::fabs(CKvMathKernel::SinHalfPi(x) - std::sin(x)) / std::sin(x));
    EXPECT_LE(worst, 4.5e-16);

    // sin and versine within an eighth turn: SinCos's bits there, and within
    // an ulp of long double.
    worst = 0.0;
    for (int i = -100000; i <= 100000; ++i) {
        const double x = i * (0.7853981633974483 / 100000) - 1e-9 * (i % 3);
        double s, v, ks, kc, kv;
        CKvMathKernel::SinVersineQuarterPi(x, s, v);
        CKvMathKernel::SinCos(x, ks, kc, kv);
        if (x != 0.0) {
            EXPECT_TRUE(s == ks && v == kv) << x;
            worst = std::fmax(worst, static_cast<double>(std::fabs((s - std::sin(static_cast<long double>(x))) /
                                                                   std::sin(static_cast<long double>(x)))));
        }
    }
    EXPECT_LE(worst, 4.5e-16);

    // sin and cos within a quarter turn with no reduction: the cosine relative
    // to long double up to the poles (the last double below pi/2 and pi/2 itself
    // among the points), where the complement's two parts keep it.
    worst = 0.0;
    for (int i = -200000; i <= 200000; ++i) {
        const double x = i * (1.5707963267948966 / 200000) + 1e-9 * (i % 5);
        for (double y : {x, std::nextafter(1.5707963267948966, 0.0), -1.5707963267948966, 1e-300}) {
            double s, c;
            CKvMathKernel::SinCosHalfPi(y, s, c);
            const long double ls = std::sin(static_cast<long double>(y)), lc = std::cos(static_cast<long double>(y));
            if (std::fabs(y) <= 1.5707963267948966 && ls != 0.0L)
                worst = std::fmax(worst, static_cast<double>(std::fmax(std::fabs((s - ls) / ls), std::fabs((c - lc) / lc))));
        }
    }
    EXPECT_LE(worst, 4.5e-16);

    // atan at every scale and sign, and at the reduction's boundaries 1/4, 3/4,
    // 1, 4/3 and 4; infinities give the right angles, NaN stays NaN.
    worst = 0.0;
    for (int i = 0; i < 200000; ++i) {
        const double t = (i % 2 ? -1.0 : 1.0) * std::ldexp(u(random), i % 80 - 40);
        worst = std::fmax(worst, std::fabs(CKvMathKernel::Atan(t) - std::atan(t)) / std::fabs(std::atan(t)));
    }
    for (double t : {0.25, 0.75, 1.0, 4.0 / 3, 4.0, 1e-300, 1e300}) {
        for (double s : {std::nextafter(t, 0.0), t, std::nextafter(t, 10.0), -t})
            worst = std::fmax(worst, std::fabs(CKvMathKernel::Atan(s) - std::atan(s)) / std::fabs(std::atan(s)));
    }
    EXPECT_LE(worst, 4.5e-16);
    EXPECT_EQ(CKvMathKernel::Atan(std::numeric_limits<double>::infinity()), 1.5707963267948966);
    EXPECT_EQ(CKvMathKernel::Atan(-std::numeric_limits<double>::infinity()), -1.5707963267948966);
    EXPECT_TRUE(std::signbit(CKvMathKernel::Atan(-0.0)));
    EXPECT_TRUE(std::isnan(CKvMathKernel::Atan(std::numeric_limits<double>::quiet_NaN())));
}

// atan2 by the inline kernel against long double in every octant, across the
// reduction's boundaries (|y| / |x| about 1/4, 3/4, 4/3, 4), at every scale; the
// signed zeros and the infinities as libm gives them.
TEST(Batch, Atan2KernelAgainstLongDouble)
{
    std::mt19937_64 random(15);
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    double worst = 0.0;
    auto check = [&worst](double y, double x) {
        const long double exact = std::atan2(static_cast<long double>(y), static_cast<long double>(x));
        worst = std::fmax(worst, static_cast<double>(std::fabs(CKvMathKernel::Atan2(y, x) - exact) /
                                                     std::fmax(std::fabs(exact), 1e-300L)));
    };
    for (int i = 0; i < 200000; ++i) {
        const double scale = std::ldexp(1.0, i % 600 - 300);
        check(u(random) * scale, u(random) * std::ldexp(scale, i % 7 - 3));
    }
    for (double r : {0.25, 0.75, 4.0 / 3, 4.0, 1.0})
        for (double sy : {1.0, -1.0})
            for (double sx : {1.0, -1.0})
                for (double y : {std::nextafter(r, 0.0), r, std::nextafter(r, 10.0)})
                    check(sy * y * 1e5, sx * 1e5);
    EXPECT_LE(worst, 4.5e-16);
    // The series alone, over its whole reach and at its end.
    worst = 0.0;
    for (int i = -100000; i <= 100000; ++i) {
        const double w = i * (CKvMathKernel::AtanQuarterLimit / 100000) - (i % 3) * 1e-12;
        const long double exact = std::atan(static_cast<long double>(w));
        if (w != 0.0)
            worst = std::fmax(worst, static_cast<double>(std::fabs((CKvMathKernel::AtanQuarter(w) - exact) / exact)));
    }
    EXPECT_LE(worst, 4.5e-16);
    const double inf = std::numeric_limits<double>::infinity();
    for (double y : {0.0, -0.0, 1.0, -1.0, inf, -inf, 1e-310})
        for (double x : {0.0, -0.0, 1.0, -1.0, inf, -inf, 1e-310})
            if (!(std::isinf(x) && std::isinf(y))) {
                const double k = CKvMathKernel::Atan2(y, x), l = std::atan2(y, x);
                EXPECT_TRUE(k == l && std::signbit(k) == std::signbit(l)) << y << " " << x << ": " << k << " " << l;
            }
    EXPECT_TRUE(std::isnan(CKvMathKernel::Atan2(std::numeric_limits<double>::quiet_NaN(), 1.0)));
    EXPECT_TRUE(std::isnan(CKvMathKernel::Atan2(1.0, std::numeric_limits<double>::quiet_NaN())));
}

// The authalic q by the inline kernel against the general function in long
// double terms (Snyder's eq. 3-12), for the earth's eccentricities and the
// largest the kernel takes, from the equator to the poles.
TEST(Batch, AuthalicQKernelAgainstLongDouble)
{
    for (double e : {0.0818191910428158, 0.0822688893, 0.1}) {
        const CKvConformalLatitude::SAuthalic authalic = CKvConformalLatitude::MakeAuthalic(e);
        double worst = 0.0;
        for (int i = -9000; i <= 9000; ++i) {
            const double s = std::sin(i * 0.01 * 3.141592653589793 / 180.0);
            const long double es = static_cast<long double>(e) * s, e2 = static_cast<long double>(e) * e;
            const long double q = (1.0L - e2) * (s / (1.0L - es * es) + std::atanh(es) / e);
            if (q != 0.0L)
                worst = std::fmax(
                    worst, static_cast<double>(std::fabs((CKvConformalLatitude::AuthalicQKernel(authalic, s) - q) / q)));
        }
        EXPECT_LE(worst, 6e-16) << e;
        EXPECT_EQ(CKvConformalLatitude::AuthalicQKernel(authalic, 0.0), 0.0);
    }
}

// The inverse kernels: asin against libm over [-1, 1] up to the ends; the
// geodetic latitude of an authalic sine that long double q (Snyder's eq. 3-12)
// gives for a known latitude, and of a meridian distance from Helmert's series,
// back to that latitude; the poles, and beyond them NaN.
TEST(Batch, AsinAndLatitudeKernelsGiveTheLatitudeBack)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    double worst = 0.0;
    for (int i = -100000; i <= 100000; ++i) {
        const double x = i * 1e-5, y = 1.0 - std::ldexp(1.0, -(std::abs(i) % 53)) * (i < 0 ? -1.0 : 1.0);
        for (double t : {x, y, -y})
            if (t != 0.0)
                worst = std::fmax(worst, std::fabs(CKvMathKernel::Asin(t) - std::asin(t)) / std::fabs(std::asin(t)));
    }
    EXPECT_LE(worst, 4.5e-16);
    EXPECT_EQ(CKvMathKernel::Asin(1.0), 1.5707963267948966);
    EXPECT_EQ(CKvMathKernel::Asin(-1.0), -1.5707963267948966);
    EXPECT_TRUE(std::isnan(CKvMathKernel::Asin(1.0 + 1e-15)) && std::isnan(CKvMathKernel::Asin(nan)));

    // Beyond the earth's eccentricities the left-out terms of the inverse series
    // grow past its bound, and it says so.
    EXPECT_FALSE(CKvConformalLatitude::MakeMeridianInverse(CKvConformalLatitude::MakeMeridian(1.0, 0.25)).series);
    EXPECT_FALSE(CKvConformalLatitude::MakeAuthalicInverse(0.2).series);
    constexpr long double Deg = 3.14159265358979323846264338327950288L / 180;
    for (double e : {0.0818191910428158, 0.0822688893, 0.1}) {
        const CKvConformalLatitude::SAuthalic authalic = CKvConformalLatitude::MakeAuthalic(e);
        const CKvConformalLatitude::SAuthalicInverse authalicInverse = CKvConformalLatitude::MakeAuthalicInverse(e);
        EXPECT_TRUE(authalicInverse.series) << e;
        const CKvConformalLatitude::SMeridian meridian = CKvConformalLatitude::MakeMeridian(6378137.0, e * e);
        const long double le = e;
        auto q = [le](long double s) { return (1 - le * le) * (s / (1 - le * le * s * s) + std::atanh(le * s) / le); };
        double worstBeta = 0.0, worstM = 0.0;
        // The inverse series of the same M, with no Newton step.
        const CKvConformalLatitude::SMeridianInverse inverse = CKvConformalLatitude::MakeMeridianInverse(meridian);
        EXPECT_TRUE(inverse.series) << e;
        double worstSeries = 0.0;
        for (int i = -8990; i <= 8990; ++i) {
            const long double phi = i * 0.01L * Deg;
            const double sinBeta = static_cast<double>(q(std::sin(phi)) / q(1.0L));
            const double back = CKvConformalLatitude::AuthalicLatitudeKernel(authalic, sinBeta);
            // A rounding of sin beta moves phi by up to 1.1e-16 / cos beta: the
            // error is weighed by the cosine.
            worstBeta = std::fmax(worstBeta, static_cast<double>(std::fabs(back - phi) * std::cos(phi)));
            // Karney's series from beta to phi, with no Newton step.
            worstBeta = std::fmax(worstBeta, static_cast<double>(std::fabs(CKvConformalLatitude::AuthalicLatitudeSeries(
                                                                               authalicInverse, sinBeta) - phi) *
                                                                 std::cos(phi)));
            const double m = CKvConformalLatitude::MeridianDistance(meridian, static_cast<double>(phi));
            worstSeries = std::fmax(worstSeries, static_cast<double>(std::fabs(
                CKvConformalLatitude::MeridianLatitudeSeries(inverse, m * inverse.muPerDistance) - phi)));
            worstM = std::fmax(worstM, static_cast<double>(std::fabs(
                                           CKvConformalLatitude::MeridianLatitudeKernel(meridian, m) - phi)));
            // The variant that gives the latitude's sine and cosine with it.
            double sinPhi, cosPhi;
            const double phiSC = CKvConformalLatitude::MeridianLatitudeSinCos(meridian, m, sinPhi, cosPhi);
            worstM = std::fmax(worstM, static_cast<double>(std::fmax(
                                           std::fabs(phiSC - phi), std::fmax(std::fabs(sinPhi - std::sin(phi)),
                                                                             std::fabs(cosPhi - std::cos(phi))))));
        }
        EXPECT_LE(worstBeta, 8e-16) << e;
        EXPECT_LE(worstM, 1e-15) << e;
        // The roundings of M (3e-16 rad at 1e7 m) and of mu, no more.
        EXPECT_LE(worstSeries, 7e-16) << e;
        EXPECT_EQ(CKvConformalLatitude::AuthalicLatitudeKernel(authalic, 0.0), 0.0);
        EXPECT_NEAR(CKvConformalLatitude::AuthalicLatitudeKernel(authalic, 1.0), 1.5707963267948966, 1e-16);
        EXPECT_NEAR(CKvConformalLatitude::AuthalicLatitudeKernel(authalic, -1.0), -1.5707963267948966, 1e-16);
        EXPECT_TRUE(std::isnan(CKvConformalLatitude::AuthalicLatitudeKernel(authalic, 1.0 + 1e-15)));
        EXPECT_TRUE(std::isnan(CKvConformalLatitude::AuthalicLatitudeKernel(authalic, nan)));
        EXPECT_EQ(CKvConformalLatitude::AuthalicLatitudeSeries(authalicInverse, 0.0), 0.0);
        EXPECT_EQ(CKvConformalLatitude::AuthalicLatitudeSeries(authalicInverse, 1.0), 1.5707963267948966);
        EXPECT_EQ(CKvConformalLatitude::AuthalicLatitudeSeries(authalicInverse, -1.0), -1.5707963267948966);
        EXPECT_TRUE(std::isnan(CKvConformalLatitude::AuthalicLatitudeSeries(authalicInverse, 1.0 + 1e-15)));
        EXPECT_TRUE(std::isnan(CKvConformalLatitude::AuthalicLatitudeSeries(authalicInverse, nan)));
        const double quarter = CKvConformalLatitude::MeridianDistance(meridian, 1.5707963267948966);
        EXPECT_NEAR(CKvConformalLatitude::MeridianLatitudeKernel(meridian, quarter), 1.5707963267948966, 1e-15);
        EXPECT_TRUE(std::isnan(CKvConformalLatitude::MeridianLatitudeKernel(meridian, nan)));
        EXPECT_NEAR(CKvConformalLatitude::MeridianLatitudeSeries(inverse, -quarter * inverse.muPerDistance),
                    -1.5707963267948966, 4.5e-16);
        EXPECT_TRUE(std::isnan(CKvConformalLatitude::MeridianLatitudeSeries(inverse, nan)));
        double sinPole, cosPole;
        EXPECT_NEAR(CKvConformalLatitude::MeridianLatitudeSinCos(meridian, -quarter, sinPole, cosPole),
                    -1.5707963267948966, 1e-15);
        EXPECT_NEAR(sinPole, -1.0, 4.5e-16);
        EXPECT_NEAR(cosPole, 0.0, 1e-15);
        EXPECT_TRUE(std::isnan(CKvConformalLatitude::MeridianLatitudeSinCos(meridian, nan, sinPole, cosPole)));
    }
}
