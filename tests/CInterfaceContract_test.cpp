// What the C interface promises a careless or concurrent host: the UTM zone of
// any longitude, arguments left NULL, the string rule of every string function,
// and the C++ texts that hosts keep a pointer to, one buffer per thread.
#include "TestSupport.h"

#include "coordsys/KvMapProjection.h"
#include "interface/KvCart.h"

#include <cmath>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace {

const char kUtm32[] =
    "PROJCS[\"WGS 84 / UTM zone 32N\",GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\",6378137,"
    "298.257223563]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],PROJECTION["
    "\"Transverse_Mercator\"],PARAMETER[\"latitude_of_origin\",0],PARAMETER[\"central_meridian\",9],"
    "PARAMETER[\"scale_factor\",0.9996],PARAMETER[\"false_easting\",500000],PARAMETER[\"false_northing\",0],"
    "UNIT[\"metre\",1]]";

std::string Zone(double lon)
{
    char buffer[16] = "unset";
    int status = -2;
    S_LONGITUDETOUTMZONE(buffer, 15, &status, lon);
    return status == 0 ? std::string(buffer) : "status " + std::to_string(status);
}

using StringFunction = std::function<void(char*, int, int*)>;

} // namespace

// Zone n spans [6n - 186, 6n - 180) degrees: each zone's western meridian is
// its own, so the antimeridian, 180 as well as -180, is the western edge of
// zone 1. Every finite longitude is first brought onto the globe.
TEST(CInterfaceContract, EveryLongitudeHasAZoneOfOneToSixty)
{
    kvtest::ShippedCatalogue();
    const double inf = std::numeric_limits<double>::infinity();
    const std::pair<double, const char*> zones[] = {
        {9.5, "UTM-32"},        {6.0, "UTM-32"},          {5.999999999999999, "UTM-31"}, {-0.5, "UTM-30"},
        {-0.0, "UTM-31"},       {-180.0, "UTM-1"},        {180.0, "UTM-1"},              {179.99999999999997, "UTM-60"},
        {174.0, "UTM-60"},      {-174.00000000000003, "UTM-1"}, {540.0, "UTM-1"},        {-540.0, "UTM-1"},
        {359.9, "UTM-30"},      {-359.9, "UTM-31"},       {366.0, "UTM-32"},             {-186.0, "UTM-60"},
        {3600000009.5, "UTM-32"}, {-3600000009.5, "UTM-29"}};
    for (const auto& zone : zones)
        EXPECT_EQ(Zone(zone.first), zone.second) << zone.first;
    // Far beyond any turn a longitude is still one meridian (the remainder is
    // exact), so it still has a zone.
    for (double far : {1e308, -1e308, 1e17, std::numeric_limits<double>::max()}) {
        const std::string zone = Zone(far);
        ASSERT_EQ(zone.compare(0, 4, "UTM-"), 0) << far;
        const int number = std::atoi(zone.c_str() + 4);
        EXPECT_TRUE(number >= 1 && number <= 60) << far << ": " << zone;
    }
    for (double none : {std::nan(""), inf, -inf})
        EXPECT_EQ(Zone(none), "") << none;
    // The C++ texts say the same.
    EXPECT_STREQ(CKvMapProjection::LongitudeToUTMZone(180.0), "UTM-1");
    EXPECT_EQ(CKvMapProjection::UTMZoneName(359.9), "UTM-30");
    EXPECT_EQ(CKvMapProjection::UTMZoneName(std::nan("")), "");
}

// The generic "UTM" of a site grid names the zone of its origin's longitude:
// a grid at the antimeridian is one of zone 1, and transforms.
TEST(CInterfaceContract, SiteGridsOnTheAntimeridianHaveAZone)
{
    kvtest::ShippedCatalogue();
    struct Case
    {
        double lon0;
        const char* zone;
        double lon, lat, x, y;
    };
    // PROJ: echo LON LAT | cs2cs +proj=longlat +ellps=WGS84 +to +proj=utm +zone=N +ellps=WGS84
    const Case cases[] = {{180.0, "UTM-1", 180.0, 50.0, 285015.763265, 5542944.018649},
                          {540.0, "UTM-1", -180.0, 50.0, 285015.763265, 5542944.018649},
                          {-180.0, "UTM-1", 180.0, 50.0, 285015.763265, 5542944.018649},
                          {179.5, "UTM-60", 179.5, 50.0, 679157.864191, 5541625.749826},
                          {359.9, "UTM-30", -0.1, 50.0, 707819.174676, 5542661.166994}};
    for (const Case& c : cases) {
        KVC_HANDLE grid = nullptr;
        int status = -2;
        C_KVC_CREATE("UTM", c.lon0, 50.0, 0.0, &grid, &status);
        ASSERT_EQ(status, 0) << c.lon0;
        char name[16] = "";
        C_KVC_GETPROJECTIONNAME(grid, name, 15, &status);
        EXPECT_STREQ(name, c.zone) << c.lon0;
        double x = 0.0, y = 0.0;
        C_KVC_GEO2PROJ(grid, c.lon, c.lat, &x, &y);
        EXPECT_NEAR(x, c.x, 1e-6) << c.lon0;
        EXPECT_NEAR(y, c.y, 1e-6) << c.lon0;
        C_KVC_DESTROY(&grid, &status);
        EXPECT_EQ(status, 0);
    }
    // No zone, no grid; the handle is left as it was.
    for (double none : {std::nan(""), std::numeric_limits<double>::infinity()}) {
        KVC_HANDLE grid = nullptr;
        int status = -2;
        C_KVC_CREATE("UTM", none, 50.0, 0.0, &grid, &status);
        EXPECT_EQ(status, -1) << none;
        EXPECT_EQ(grid, nullptr);
    }
}

// NULL where a pointer is expected: a NULL status makes the call do nothing, a
// NULL handle pointer or handle is refused with -1, a NULL buffer learns the
// length. Nothing crashes and nothing leaks (the sanitizer build checks).
TEST(CInterfaceContract, NullArgumentsAreRefused)
{
    kvtest::ShippedCatalogue();
    int status = -2;
    C_KVMP_CREATE("UTM-32", nullptr, &status);
    EXPECT_EQ(status, -1);
    status = -2;
    C_KVC_CREATE("UTM", 9.5, 50.0, 0.0, nullptr, &status);
    EXPECT_EQ(status, -1);
    status = -2;
    C_KVDC_CREATE("LONG/LAT", "UTM-32", nullptr, &status);
    EXPECT_EQ(status, -1);

    KVMP_HANDLE system = nullptr;
    KVC_HANDLE grid = nullptr;
    KVDC_HANDLE converter = nullptr;
    C_KVMP_CREATE("UTM-32", &system, nullptr);
    C_KVC_CREATE("UTM", 9.5, 50.0, 0.0, &grid, nullptr);
    C_KVDC_CREATE("LONG/LAT", "UTM-32", &converter, nullptr);
    EXPECT_EQ(system, nullptr);
    EXPECT_EQ(grid, nullptr);
    EXPECT_EQ(converter, nullptr);

    status = -2;
    C_KVMP_DESTROY(nullptr, &status);
    EXPECT_EQ(status, -1);
    status = -2;
    C_KVC_DESTROY(nullptr, &status);
    EXPECT_EQ(status, -1);
    status = -2;
    C_KVDC_DESTROY(nullptr, &status);
    EXPECT_EQ(status, -1);
    C_KVMP_DESTROY(nullptr, nullptr);
    C_KVC_DESTROY(nullptr, nullptr);
    C_KVDC_DESTROY(nullptr, nullptr);

    C_KVMP_CREATE("UTM-32", &system, &status);
    C_KVC_CREATE("UTM", 9.5, 50.0, 0.0, &grid, &status);
    C_KVDC_CREATE("LONG/LAT", "UTM-32", &converter, &status);
    ASSERT_TRUE(system != nullptr && grid != nullptr && converter != nullptr);
    // A NULL status: the object stays.
    C_KVMP_DESTROY(&system, nullptr);
    C_KVC_DESTROY(&grid, nullptr);
    C_KVDC_DESTROY(&converter, nullptr);
    ASSERT_TRUE(system != nullptr && grid != nullptr && converter != nullptr);

    char buffer[8] = "unset";
    C_KVMP_GETNAME(system, buffer, 7, nullptr);
    C_KVC_GETPROJECTIONNAME(grid, buffer, 7, nullptr);
    EXPECT_STREQ(buffer, "unset");
    // A NULL handle has no text; a NULL buffer learns the length, whatever size says.
    status = -2;
    C_KVMP_GETNAME(nullptr, buffer, 7, &status);
    EXPECT_EQ(status, -1);
    status = -2;
    C_KVC_GETPROJECTIONNAME(nullptr, buffer, 7, &status);
    EXPECT_EQ(status, -1);
    EXPECT_EQ(C_KVC_GETPROJECTION(nullptr), nullptr);
    C_KVMP_GETNAME(system, nullptr, 7, &status);
    EXPECT_EQ(status, 6);
    C_KVC_GETPROJECTIONSTRING(grid, nullptr, 100, &status);
    EXPECT_EQ(status, 6);
    EXPECT_STREQ(buffer, "unset");

    // The string functions without handle, and the origin, with a NULL status.
    S_PROJECTIONSHORTNAME(kUtm32, buffer, 7, nullptr);
    S_LONGITUDETOUTMZONE(buffer, 7, nullptr, 9.5);
    S_GETGOOGLEMAPPROJECTIONSTRING(buffer, 7, nullptr);
    C_KVMP_GETLASTERROR(buffer, 7, nullptr);
    CARTGETERRORLINUX(buffer, 7, nullptr);
    C_KVC_CONVERT2PROJ4("UTM-32", nullptr, 0, buffer, 7, nullptr);
    C_KVC_CONVERT2PROJ("UTM", nullptr, 0, buffer, 7, nullptr);
    EXPECT_STREQ(buffer, "unset");
    double x = 1.0, y = 2.0;
    S_PROJECTIONORIGIN("UTM-32", &x, &y, nullptr);
    EXPECT_EQ(x, 1.0);
    status = -2;
    S_PROJECTIONORIGIN("UTM-32", nullptr, nullptr, &status);
    EXPECT_EQ(status, -1);

    C_KVMP_DESTROY(&system, &status);
    C_KVC_DESTROY(&grid, &status);
    C_KVDC_DESTROY(&converter, &status);
    EXPECT_TRUE(system == nullptr && grid == nullptr && converter == nullptr);
}

// Every string function keeps the rule: with len the text's length, len > size
// reports len and leaves the buffer alone; otherwise the text and its
// terminator are copied (size + 1 bytes) and 0 is reported. Size 0 therefore
// learns the length, and len + 1 bytes with size = len take the text.
TEST(CInterfaceContract, EveryStringFunctionKeepsTheRule)
{
    kvtest::ShippedCatalogue();
    KVMP_HANDLE system = nullptr;
    KVC_HANDLE grid = nullptr;
    int status = -2;
    C_KVMP_CREATE(kUtm32, &system, &status);
    C_KVC_CREATE("UTM", 9.5, 50.0, 0.0, &grid, &status);
    ASSERT_TRUE(system != nullptr && grid != nullptr);
    const std::vector<std::pair<const char*, StringFunction>> functions = {
        {"S_PROJECTIONSHORTNAME", [](char* b, int n, int* s) { S_PROJECTIONSHORTNAME(kUtm32, b, n, s); }},
        {"S_LONGITUDETOUTMZONE", [](char* b, int n, int* s) { S_LONGITUDETOUTMZONE(b, n, s, 9.5); }},
        {"S_GETGOOGLEMAPPROJECTIONSTRING", [](char* b, int n, int* s) { S_GETGOOGLEMAPPROJECTIONSTRING(b, n, s); }},
        {"C_KVMP_GETNAME", [&](char* b, int n, int* s) { C_KVMP_GETNAME(system, b, n, s); }},
        {"C_KVMP_GETPROJECTIONSTRING", [&](char* b, int n, int* s) { C_KVMP_GETPROJECTIONSTRING(system, b, n, s); }},
        {"C_KVC_GETPROJECTIONNAME", [&](char* b, int n, int* s) { C_KVC_GETPROJECTIONNAME(grid, b, n, s); }},
        {"C_KVC_GETPROJECTIONSTRING", [&](char* b, int n, int* s) { C_KVC_GETPROJECTIONSTRING(grid, b, n, s); }},
        {"C_KVC_CONVERT2PROJ4", [](char* b, int n, int* s) { C_KVC_CONVERT2PROJ4(kUtm32, nullptr, 0, b, n, s); }},
        {"C_KVC_CONVERT2PROJ", [](char* b, int n, int* s) { C_KVC_CONVERT2PROJ(kUtm32, nullptr, 0, b, n, s); }},
        {"C_KVMP_GETLASTERROR", [](char* b, int n, int* s) {
             KVMP_HANDLE unknown = nullptr;
             int ignored = 0;
             C_KVMP_CREATE("No such grid", &unknown, &ignored);
             C_KVMP_DESTROY(&unknown, &ignored);
             C_KVMP_GETLASTERROR(b, n, s);
         }},
        {"CARTGETERRORLINUX", [](char* b, int n, int* s) {
             // The shipped catalogue reads cleanly: the empty text.
             CARTGETERRORLINUX(b, n, s);
         }},
    };
    for (const auto& function : functions) {
        SCOPED_TRACE(function.first);
        std::vector<char> probe(4, '#');
        int length = -2;
        function.second(probe.data(), 0, &length);
        ASSERT_GE(length, 0);
        if (length == 0) {
            EXPECT_EQ(probe[0], '\0'); // the empty text fits size 0: its terminator is written
            EXPECT_EQ(probe[1], '#');
            continue;
        }
        EXPECT_EQ(probe[0], '#');
        std::vector<char> buffer(static_cast<size_t>(length) + 2, '#');
        function.second(buffer.data(), length - 1, &status);
        EXPECT_EQ(status, length);
        EXPECT_EQ(buffer[0], '#');
        function.second(buffer.data(), -5, &status);
        EXPECT_EQ(status, length);
        function.second(buffer.data(), length, &status);
        EXPECT_EQ(status, 0);
        EXPECT_EQ(std::strlen(buffer.data()), static_cast<size_t>(length));
        EXPECT_EQ(buffer[static_cast<size_t>(length) + 1], '#'); // exactly len + 1 bytes written
    }
    C_KVMP_DESTROY(&system, &status);
    C_KVC_DESTROY(&grid, &status);
}

// The C++ texts returned as pointers stay valid until the same thread's next
// call: another thread's calls leave them alone.
TEST(CInterfaceContract, StaticTextsBelongToTheirThread)
{
    kvtest::ShippedCatalogue();
    const char* name = CKvMapProjection::ShortName(kUtm32);
    const char* zone = CKvMapProjection::LongitudeToUTMZone(9.5);
    long count = 0, otherCount = 0;
    const char* special = CKvMapProjection::EnumMapProjections(12, &count);
    const char* ellipsoids = CKvMapProjection::EnumEllipsoids(CKvEllipsoidList::eSystem, &count);
    const std::string ellipsoidsBefore = ellipsoids;
    std::thread other([&otherCount] {
        CKvMapProjection::ShortName("PROJCS[\"Another thread's name, longer than the first\"]");
        CKvMapProjection::LongitudeToUTMZone(-170.0);
        CKvMapProjection::EnumMapProjections(1, &otherCount);
        CKvMapProjection::EnumEllipsoids(CKvEllipsoidList::eCustom, &otherCount);
    });
    other.join();
    EXPECT_STREQ(name, "WGS 84 / UTM zone 32N");
    EXPECT_STREQ(zone, "UTM-32");
    EXPECT_STREQ(special, "LONG/LAT;NON-UTM;");
    EXPECT_EQ(ellipsoids, ellipsoidsBefore);
    // The std::string forms are the same texts.
    EXPECT_EQ(CKvMapProjection::ShortNameText(kUtm32), "WGS 84 / UTM zone 32N");
    EXPECT_EQ(CKvMapProjection::MapProjectionListing(12, &count), "LONG/LAT;NON-UTM;");
    EXPECT_EQ(count, 2);
    EXPECT_EQ(CKvMapProjection::EllipsoidListing(CKvEllipsoidList::eSystem, &count), ellipsoidsBefore);
}
