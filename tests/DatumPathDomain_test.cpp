// The datum path never invents a point: a latitude off the ellipsoid, a
// longitude that is no number, a height the geocentric step cannot carry, or
// geocentric coordinates of no point give NaN in the geographical engine, the
// transverse Mercator's convergence, the geocentric conversions and every
// datum converter, through C++, the batch loops, the C interface and the
// program; the poles and the rest of the domain keep their values.
#include "ProgramRun.h"

#include "coordsys/KvMapProjection.h"
#include "geodesy/KvDatumConverter.h"
#include "interface/KvCart.h"
#include "projections/KvTransverseMercator.h"
#include "projections/KvTransverseMercatorJHS.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();
const double kWgs84A = 6378137.0;
const double kWgs84B = 6356752.314245179;

const char kSjtsk[] =
    "GEOGCS[\"S-JTSK\",DATUM[\"S-JTSK\",SPHEROID[\"Bessel 1841\",6377397.155,299.1528128],TOWGS84[570.8,85.7,462.8,"
    "4.998,1.587,5.261,3.56]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]]";
const char kEd50Utm32[] =
    "PROJCS[\"ED50 / UTM zone 32N\",GEOGCS[\"ED50\",DATUM[\"ED50\",SPHEROID[\"International "
    "1924\",6378388,297],TOWGS84[-87,-98,-121,0,0,0,0]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],"
    "PROJECTION[\"Transverse_Mercator\"],PARAMETER[\"latitude_of_origin\",0],PARAMETER[\"central_meridian\",9],"
    "PARAMETER[\"scale_factor\",0.9996],PARAMETER[\"false_easting\",500000],PARAMETER[\"false_northing\",0],"
    "UNIT[\"metre\",1]]";

std::string Wgs84()
{
    return CKvMapProjection::IDtoProjectionString(CKvMapProjection::eWgs84Geographic);
}

bool AllNaN(double a, double b)
{
    return std::isnan(a) && std::isnan(b);
}

bool AllNaN(double a, double b, double c)
{
    return std::isnan(a) && std::isnan(b) && std::isnan(c);
}

// Latitudes off the ellipsoid, longitudes that are no number, heights the
// geocentric step cannot carry (from a quarter of the semi-major axis below
// the ellipsoid to 1e12 m above it).
const double kBadLatitudes[] = {91.0, -91.0, 90.000000001, -90.000000001, 180.0, 1e308, -1e308, kInf, -kInf, kNaN};
const double kBadLongitudes[] = {kNaN, kInf, -kInf};
const double kBadHeights[] = {1e308, -1e308, kInf, -kInf, kNaN, 1.0000001e12, -0.26 * kWgs84A, -kWgs84A, -1e7};
// Values that are a point's: the poles, longitudes beyond +-180, heights far out.
const double kLongitudes[] = {-0.5, 540.0, -540.0, 180.0, -1e308};
const double kLatitudes[] = {51.5, 90.0, -90.0, 0.0};
const double kHeights[] = {0.0, -1.5e6, 9.9e11};

} // namespace

TEST(DatumPathDomain, GeographicalEngineAnswersNaNOffTheEllipsoid)
{
    kvtest::ShippedCatalogue();
    for (const std::string& text : {std::string("LONG/LAT"), Wgs84()}) {
        SCOPED_TRACE(text);
        const CKvMapProjection system(text);
        ASSERT_TRUE(system.IsGeographical()) << text;
        std::vector<double> lons, lats;
        for (double lat : kBadLatitudes)
            for (double lon : kLongitudes) {
                kvtest::ExpectForwardNaN(system, lon, lat);
                kvtest::ExpectInverseNaN(system, lon, lat);
                lons.push_back(lon);
                lats.push_back(lat);
            }
        for (double lon : kBadLongitudes)
            for (double lat : kLatitudes) {
                kvtest::ExpectForwardNaN(system, lon, lat);
                lons.push_back(lon);
                lats.push_back(lat);
            }
        // Longitudes are not reduced nor checked: 540 is a longitude; the poles are points.
        for (double lon : kLongitudes)
            for (double lat : kLatitudes) {
                double x = 0, y = 0, lo = 0, la = 0;
                system.Geo2Proj(lon, lat, &x, &y);
                system.Proj2Geo(lon, lat, &lo, &la);
                EXPECT_EQ(x, lon);
                EXPECT_EQ(y, lat);
                EXPECT_EQ(lo, lon);
                EXPECT_EQ(la, lat);
            }
        std::vector<double> x(lons.size()), y(lons.size());
        system.Geo2Proj(lons.size(), lons.data(), lats.data(), x.data(), y.data());
        for (size_t i = 0; i < x.size(); ++i)
            EXPECT_TRUE(AllNaN(x[i], y[i])) << text << " batch " << lons[i] << " " << lats[i];
    }
}

TEST(DatumPathDomain, TransverseMercatorConvergenceIsNaNOffTheEllipsoid)
{
    const CKvEllipsoid wgs84("WGS 84", "WE", kWgs84A, 298.257223563);
    const CKvTransverseMercatorJHS jhs("UTM 32 JHS", 0.9996, 9.0, 0.0, 500000.0, 0.0, wgs84);
    const CKvTransverseMercator series("UTM 32 series", 0.9996, 9.0, 0.0, 500000.0, 0.0, wgs84);
    for (const CKvProjection* engine :
         {static_cast<const CKvProjection*>(&jhs), static_cast<const CKvProjection*>(&series)}) {
        for (double lat : kBadLatitudes)
            for (double lon : {0.0, 9.0, 12.0, 540.0})
                EXPECT_TRUE(std::isnan(engine->GetConvergence(lon, lat)))
                    << engine->GetName() << " at " << lon << " " << lat << ": " << engine->GetConvergence(lon, lat);
        // The poles are the edge of the domain, and on it: the meridians meet
        // there, and the convergence is the longitude difference itself.
        EXPECT_NEAR(engine->GetConvergence(12.0, 90.0), 3.0, 1e-12);
        EXPECT_NEAR(engine->GetConvergence(12.0, -90.0), -3.0, 1e-12);
        EXPECT_NEAR(engine->GetConvergence(3.0, 90.0), -6.0, 1e-12);
    }
    // Through the C interface on a catalogue zone.
    kvtest::ShippedCatalogue();
    KVMP_HANDLE utm = nullptr;
    int status = -1;
    C_KVMP_CREATE("UTM-32", &utm, &status);
    ASSERT_EQ(status, 0);
    EXPECT_TRUE(std::isnan(C_KVMP_GETCONVERGENCE(utm, 0.0, 91.0)));
    EXPECT_TRUE(std::isnan(C_KVMP_GETCONVERGENCE(utm, 0.0, 1e308)));
    EXPECT_TRUE(std::isfinite(C_KVMP_GETCONVERGENCE(utm, 0.0, 90.0)));
    C_KVMP_DESTROY(&utm, &status);
}

// Geodetic to geocentric and back: a finite answer is always the point's (its
// geocentric coordinates come back from it), anything else is NaN in every
// output.
TEST(DatumPathDomain, GeocentricConversionsGiveThePointOrNaN)
{
    const CKvMapProjection wgs84(Wgs84());
    double X, Y, Z, lon, lat, h;
    for (double latitude : kBadLatitudes)
        for (double longitude : kLongitudes) {
            wgs84.Geo2XYZ(longitude, latitude, 0.0, &X, &Y, &Z);
            EXPECT_TRUE(AllNaN(X, Y, Z)) << longitude << " " << latitude;
        }
    for (double longitude : kBadLongitudes) {
        wgs84.Geo2XYZ(longitude, 45.0, 0.0, &X, &Y, &Z);
        EXPECT_TRUE(AllNaN(X, Y, Z)) << longitude;
    }
    for (double height : kBadHeights) {
        wgs84.Geo2XYZ(10.0, 45.0, height, &X, &Y, &Z);
        EXPECT_TRUE(AllNaN(X, Y, Z)) << height;
    }
    for (double longitude : kLongitudes)
        for (double latitude : kLatitudes)
            for (double height : kHeights) {
                wgs84.Geo2XYZ(longitude, latitude, height, &X, &Y, &Z);
                ASSERT_TRUE(std::isfinite(X) && std::isfinite(Y) && std::isfinite(Z));
                wgs84.XYZ2Geo(X, Y, Z, &lon, &lat, &h);
                EXPECT_NEAR(lat, latitude, 1e-9) << longitude << " " << latitude << " " << height;
                EXPECT_NEAR(h, height, 1e-4 + 1e-15 * std::fabs(height));
            }

    // The polar axis is the poles, north and south, at |Z| - b; the centre and
    // the points beyond reach are no point.
    for (double sign : {1.0, -1.0})
        for (double height : {0.0, 100.0, -1000.0, 1e9}) {
            wgs84.XYZ2Geo(0.0, 0.0, sign * (kWgs84B + height), &lon, &lat, &h);
            EXPECT_EQ(lat, sign * 90.0) << sign << " " << height;
            EXPECT_NEAR(h, height, 1e-6 * (1.0 + std::fabs(height) * 1e-9)) << sign << " " << height;
            EXPECT_EQ(lon, 0.0);
        }
    const double values[] = {kNaN, kInf, -kInf, 1e308, -1e308, 1e200, 0.0, 1.0, -1.0, 4e6, -4e6, 6.4e6, 1e12};
    int finite = 0;
    for (double x : values)
        for (double y : values)
            for (double z : values) {
                wgs84.XYZ2Geo(x, y, z, &lon, &lat, &h);
                const bool all = std::isfinite(lon) && std::isfinite(lat) && std::isfinite(h);
                EXPECT_TRUE(all || AllNaN(lon, lat, h)) << x << " " << y << " " << z;
                if (!all)
                    continue;
                ++finite;
                ASSERT_TRUE(std::fabs(lat) <= 90.0);
                double x2, y2, z2;
                wgs84.Geo2XYZ(lon, lat, h, &x2, &y2, &z2);
                const double scale = 1e-4 + 1e-15 * std::hypot(x, y, z);
                EXPECT_NEAR(x2, x, scale) << x << " " << y << " " << z;
                EXPECT_NEAR(y2, y, scale) << x << " " << y << " " << z;
                EXPECT_NEAR(z2, z, scale) << x << " " << y << " " << z;
            }
    EXPECT_GT(finite, 30);
    wgs84.XYZ2Geo(0.0, 0.0, kInf, &lon, &lat, &h);
    EXPECT_TRUE(AllNaN(lon, lat, h)) << lon << " " << lat << " " << h;
    wgs84.XYZ2Geo(0.0, 0.0, 0.0, &lon, &lat, &h);
    EXPECT_TRUE(AllNaN(lon, lat, h));

    // A system without an ellipsoid has no geocentric coordinates.
    kvtest::ShippedCatalogue();
    const CKvMapProjection longLat("LONG/LAT");
    longLat.Geo2XYZ(10.0, 50.0, 0.0, &X, &Y, &Z);
    EXPECT_TRUE(AllNaN(X, Y, Z));
    longLat.XYZ2Geo(4e6, 7e5, 4.9e6, &lon, &lat, &h);
    EXPECT_TRUE(AllNaN(lon, lat, h));
}

// Every converter between systems of different datums, every conversion type,
// both directions, single calls, the batch loop and the C interface: a
// geographical input off the ellipsoid, or a height the geocentric step cannot
// carry, gives NaN in every output; the rest of the domain gives numbers.
TEST(DatumPathDomain, DatumConvertersGiveNaNForEveryPointOffTheDomain)
{
    kvtest::ShippedCatalogue();
    const std::string wgs84 = Wgs84();
    const std::pair<std::string, std::string> pairs[] = {
        {wgs84, kvtest::kOsgbGrid}, {"LONG/LAT", kvtest::kOsgbGrid}, {kEd50Utm32, wgs84}, {kSjtsk, kEd50Utm32},
        {wgs84, "UTM-32"},          {"LONG/LAT", "UTM-32"}, // bypassed: no geocentric step, heights pass untouched
    };
    struct SPoint
    {
        double lon, lat, h;
        bool bad, badHeight;
    };
    std::vector<SPoint> points;
    for (double lat : kBadLatitudes)
        for (double lon : kLongitudes)
            points.push_back({lon, lat, 0.0, true, false});
    for (double lon : kBadLongitudes)
        for (double lat : kLatitudes)
            points.push_back({lon, lat, 10.0, true, false});
    for (double h : kBadHeights)
        points.push_back({-0.5, 51.5, h, false, true});
    for (double lon : kLongitudes)
        for (double lat : {51.5, 52.0, 90.0, -90.0})
            for (double h : {0.0, -1e6, 1e9})
                points.push_back({lon, lat, h, false, false});

    int checked = 0;
    for (const auto& [source, target] : pairs)
        for (int direction = 0; direction < 2; ++direction) {
            const std::string& from = direction == 0 ? source : target;
            const std::string& to = direction == 0 ? target : source;
            KVDC_HANDLE handle = nullptr;
            int status = -1;
            C_KVDC_CREATE(from.c_str(), to.c_str(), &handle, &status);
            ASSERT_EQ(status, 0);
            const bool bypassed = C_KVDC_GETBYPASSXYZ(handle) != 0;
            // Geographical input: types 2 and 3 forward, 1 and 3 in reverse; and
            // types 0 and 1 when the source's own coordinates are degrees.
            for (int type = 0; type < 4; ++type) {
                C_KVDC_SETCONVERSIONTYPE(handle, type);
                const bool geoSource = type >= 2 || handle->GetMapProjection(true)->IsGeographical();
                if (!geoSource)
                    continue;
                std::vector<double> xs, ys, hs;
                for (const SPoint& p : points) {
                    xs.push_back(p.lon);
                    ys.push_back(p.lat);
                    hs.push_back(p.h);
                }
                std::vector<double> bx = xs, by = ys, bh = hs;
                C_KVDC_CONVERTXYH_N(handle, bx.size(), bx.data(), by.data(), bh.data());
                for (size_t i = 0; i < points.size(); ++i) {
                    const SPoint& p = points[i];
                    double x = p.lon, y = p.lat, h = p.h;
                    C_KVDC_CONVERTXYH(handle, &x, &y, &h);
                    double cx = p.lon, cy = p.lat, ch = p.h;
                    handle->Convert(cx, cy, ch);
                    EXPECT_TRUE((x == cx || std::isnan(x + cx)) && (y == cy || std::isnan(y + cy)));
                    EXPECT_TRUE((bx[i] == x || std::isnan(bx[i] + x)) && (by[i] == y || std::isnan(by[i] + y)));
                    const std::string where = from.substr(0, 24) + " -> " + to.substr(0, 24) + " type " +
                                              std::to_string(type) + " at " + std::to_string(p.lon) + " " +
                                              std::to_string(p.lat) + " " + std::to_string(p.h);
                    ++checked;
                    if (p.bad) {
                        EXPECT_TRUE(AllNaN(x, y)) << where << " gives " << x << " " << y;
                        if (!bypassed) {
                            EXPECT_TRUE(std::isnan(h)) << where;
                        }
                    } else if (p.badHeight && !bypassed) {
                        EXPECT_TRUE(AllNaN(x, y, h)) << where << " gives " << x << " " << y << " " << h;
                    } else if (!p.badHeight && std::fabs(p.lat) < 90.0 && std::fabs(p.lon) <= 540.0 &&
                               std::fabs(p.h) < 1e6) {
                        // Points of the domain near the grids: numbers.
                        EXPECT_TRUE(std::isfinite(x) && std::isfinite(y)) << where;
                    }
                }
                // The reverse direction reads the target's degrees with types 1 and 3.
                if (type % 2 == 1 || handle->GetMapProjection(false)->IsGeographical()) {
                    for (const SPoint& p : points) {
                        if (!p.bad && !(p.badHeight && !bypassed))
                            continue;
                        double x = p.lon, y = p.lat, h = p.h;
                        C_KVDC_INVCONVERTXYH(handle, &x, &y, &h);
                        EXPECT_TRUE(AllNaN(x, y)) << "reverse " << type << " at " << p.lon << " " << p.lat << " " << p.h
                                                  << " gives " << x << " " << y;
                    }
                }
            }
            C_KVDC_DESTROY(&handle, &status);
        }
    EXPECT_GT(checked, 1000);
}

// The program writes "* *" for such a point and names its line.
TEST(DatumPathDomain, ProgramMarksPointsOffTheEllipsoid)
{
    kvtest::TempDir dir;
    const kvtest::SRun run = kvtest::Kvcart(dir, {"transform", "WGS 84 Geographic", "British National Grid"},
                                            "10 91\n-0.1281 128.492\n-0.1281 51.508\n10 -90.5 3\n");
    EXPECT_NE(run.status, 0);
    const std::vector<std::string> written = run.OutLines();
    ASSERT_EQ(written.size(), 4u) << run.out;
    EXPECT_EQ(written[0], "* *");
    EXPECT_EQ(written[1], "* *");
    EXPECT_NE(written[2].find("180"), std::string::npos) << written[2];
    EXPECT_EQ(written[3], "* *");
    for (const char* line : {":1:", ":2:", ":4:"})
        EXPECT_NE(run.err.find(line), std::string::npos) << line << " in " << run.err;
    EXPECT_EQ(run.err.find(":3:"), std::string::npos) << run.err;
}
