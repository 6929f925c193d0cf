// The zones of the UTM/UPS grid: which zone a point lies in (against
// GeographicLib's GeoConvert, which applies the military grid's rules on its
// own), the exceptions at their exact edges, and the southern UTM zones and the
// UPS zones of the catalogue against PROJ on EPSG:327zz, 32661 and 32761
// (tests/data/utm_zone_vectors.txt, tools/make_utm_zone_vectors.py).
#include "TestSupport.h"

#include "catalogue/KvMapProjectionList.h"
#include "catalogue/KvTransverseMercatorProjection.h"
#include "coordsys/KvMapProjection.h"
#include "interface/KvCart.h"

#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace {

struct ZonePoint
{
    double lon = 0.0, lat = 0.0;
    std::string zone; // GeographicLib's: "32n", "33s", "n", "s"
};

struct GridPoint
{
    std::string name;
    double lon = 0.0, lat = 0.0, e = 0.0, n = 0.0;
};

void LoadVectors(std::vector<ZonePoint>& zones, std::vector<GridPoint>& grid)
{
    std::ifstream in(KVCART_TEST_DATA_DIR "utm_zone_vectors.txt");
    for (std::string line; std::getline(in, line);) {
        std::istringstream fields(line);
        std::string tag;
        fields >> tag;
        if (tag == "Z") {
            ZonePoint p;
            fields >> p.lon >> p.lat >> p.zone;
            zones.push_back(p);
        } else if (tag == "C") {
            GridPoint p;
            fields >> p.name >> p.lon >> p.lat >> p.e >> p.n;
            for (char& c : p.name)
                if (c == '_')
                    c = ' ';
            grid.push_back(p);
        }
    }
}

// The catalogue name and EPSG code of GeographicLib's zone.
void Expected(const std::string& zone, std::string& name, int& code)
{
    const char hemisphere = zone.back();
    if (zone.size() == 1) {
        name = hemisphere == 'n' ? "UPS North" : "UPS South";
        code = hemisphere == 'n' ? 32661 : 32761;
        return;
    }
    const int number = std::stoi(zone.substr(0, zone.size() - 1));
    name = "UTM-" + std::to_string(number) + (hemisphere == 's' ? "S" : "");
    code = (hemisphere == 's' ? 32700 : 32600) + number;
}

std::string Zone(double lon, double lat)
{
    std::string name;
    int code = -1;
    CKvMapProjection::UTMZoneName(lon, lat, name, code);
    return name;
}

} // namespace

TEST(UtmZones, EveryPointInTheZoneGeographicLibGivesIt)
{
    kvtest::ShippedCatalogue();
    std::vector<ZonePoint> zones;
    std::vector<GridPoint> grid;
    LoadVectors(zones, grid);
    ASSERT_GT(zones.size(), 6000u);
    std::map<std::string, int> codes;
    for (const ZonePoint& p : zones) {
        std::string expectedName, name;
        int expectedCode = 0, code = 0;
        Expected(p.zone, expectedName, expectedCode);
        ASSERT_TRUE(CKvMapProjection::UTMZoneName(p.lon, p.lat, name, code)) << p.lon << " " << p.lat;
        EXPECT_EQ(name, expectedName) << p.lon << " " << p.lat;
        EXPECT_EQ(code, expectedCode) << p.lon << " " << p.lat;
        // The same through the C interface.
        char buffer[32] = "";
        int status = -2, cCode = 0;
        S_POINTTOUTMZONE(buffer, sizeof buffer - 1, &status, p.lon, p.lat, &cCode);
        EXPECT_EQ(status, 0);
        EXPECT_EQ(buffer, expectedName);
        EXPECT_EQ(cCode, expectedCode);
        codes[name] = code;
    }
    // All 120 UTM zones and both UPS zones occur (32X, 34X, 36X are simply
    // never given, their numbers still occur further south).
    EXPECT_EQ(codes.size(), 122u);
    // Each name is a catalogue system whose EPSG code is the one given with it.
    for (const auto& [name, code] : codes) {
        const CKvMapProjData* definition = CKvMapProjection::FindMapProjectionDefinition(name.c_str());
        ASSERT_NE(definition, nullptr) << name;
        EXPECT_EQ(definition->GetEpsgCode(), code) << name;
        EXPECT_FALSE(definition->CanDelete()) << name;
    }
}

// The edges of the exceptions, exactly on them and a hair (2^-20 degree, about
// 10 cm) beside them: each zone and band holds its western and southern edge;
// the parallels 84 N and 80 S are UTM's (as EPSG's extents of its zones), UPS
// begins beyond them. GeographicLib gives 84 N itself to UPS; that parallel is
// the one difference, stated here.
TEST(UtmZones, ExceptionsAtTheirExactEdges)
{
    const double h = 1.0 / 1048576.0;
    struct Case
    {
        double lon, lat;
        const char* zone;
    };
    const Case cases[] = {
        // Band V, 56 N up to 64 N: 31 ends at 3 E, 32 reaches 12 E.
        {3.0, 56.0, "UTM-32"},
        {3.0 - h, 56.0, "UTM-31"},
        {3.0, 56.0 - h, "UTM-31"},
        {3.0, 64.0 - h, "UTM-32"},
        {3.0, 64.0, "UTM-31"},
        {0.0, 60.0, "UTM-31"},
        {12.0 - h, 60.0, "UTM-32"},
        {12.0, 60.0, "UTM-33"},
        {-h, 60.0, "UTM-30"},
        // Band X, 72 N to 84 N: 31, 33, 35, 37 over 0-9, 9-21, 21-33, 33-42 E.
        {7.0, 72.0 - h, "UTM-32"},
        {7.0, 72.0, "UTM-31"},
        {9.0 - h, 72.0, "UTM-31"},
        {9.0, 72.0, "UTM-33"},
        {21.0 - h, 80.0, "UTM-33"},
        {21.0, 80.0, "UTM-35"},
        {33.0 - h, 80.0, "UTM-35"},
        {33.0, 80.0, "UTM-37"},
        {42.0 - h, 80.0, "UTM-37"},
        {42.0, 80.0, "UTM-38"},
        {-h, 80.0, "UTM-30"},
        {0.0, 80.0, "UTM-31"},
        {9.0, 84.0, "UTM-33"},
        {42.0 - h, 84.0, "UTM-37"},
        {0.0, 84.0, "UTM-31"},
        {0.0, 84.0 + 1e-12, "UPS North"},
        {150.0, 84.0, "UTM-56"},
        {0.0, 90.0, "UPS North"},
        // The south: 80 S is UTM's.
        {5.0, -80.0, "UTM-31S"},
        {5.0, -80.0 - 1e-12, "UPS South"},
        {5.0, -90.0, "UPS South"},
        {5.0, -56.0, "UTM-31S"},
        {5.0, -72.0, "UTM-31S"},
        {10.0, -60.0, "UTM-32S"},
        // The equator is northern, also given as -0.
        {0.0, 0.0, "UTM-31"},
        {0.0, -0.0, "UTM-31"},
        {0.0, -1e-300, "UTM-31S"},
        // The antimeridian: zone 1 holds it, 60 ends just west of it.
        {180.0, 10.0, "UTM-1"},
        {-180.0, -10.0, "UTM-1S"},
        {180.0 - 1e-9, 10.0, "UTM-60"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Zone(c.lon, c.lat), c.zone) << c.lon << " " << c.lat;
}

// Longitudes of any size are brought onto the globe by an exact remainder
// before the zone is chosen, the exceptions included; the zone then agrees with
// the longitude-only function everywhere outside the exceptions.
TEST(UtmZones, LongitudesOfAnySize)
{
    EXPECT_EQ(Zone(540.0, 10.0), "UTM-1") << "540 is 180, zone 1";
    EXPECT_EQ(Zone(-540.0, 10.0), "UTM-1");
    EXPECT_EQ(Zone(369.5, 47.5), "UTM-32");
    EXPECT_EQ(Zone(363.0, 60.0), "UTM-32") << "band V's exception after the reduction";
    EXPECT_EQ(Zone(-345.0, 75.0), "UTM-33") << "15 E in band X";
    EXPECT_EQ(Zone(720.0, 75.0), "UTM-31");
    EXPECT_EQ(Zone(1e17 + 1.5 * 64, 10.0), Zone(std::fmod(1e17 + 1.5 * 64, 360.0), 10.0));
    EXPECT_EQ(Zone(-1e300, -10.0), CKvMapProjection::UTMZoneName(-1e300) + "S");
    EXPECT_EQ(Zone(std::numeric_limits<double>::max(), 1.0),
              CKvMapProjection::UTMZoneName(std::numeric_limits<double>::max()));
    for (double lon = -720.0; lon <= 720.0; lon += 0.37) {
        EXPECT_EQ(Zone(lon, 40.0), CKvMapProjection::UTMZoneName(lon)) << lon;
        EXPECT_EQ(Zone(lon, -40.0), CKvMapProjection::UTMZoneName(lon) + "S") << lon;
    }
}

// A point that is no point of the earth has no zone, and says why.
TEST(UtmZones, NoZoneForWhatIsNoPoint)
{
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    struct Case
    {
        double lon, lat;
        const char* reason;
    };
    const Case cases[] = {
        {nan, 10.0, "longitude"},         {inf, 10.0, "longitude"},  {-inf, 10.0, "longitude"},
        {10.0, nan, "latitude"},          {10.0, inf, "latitude"},   {10.0, -inf, "latitude"},
        {10.0, 90.0 + 1e-13, "latitude"}, {10.0, -91.0, "latitude"}, {10.0, 1e308, "latitude"},
        {nan, nan, "longitude"},
    };
    for (const Case& c : cases) {
        std::string name = "before", reason;
        int code = 7;
        EXPECT_FALSE(CKvMapProjection::UTMZoneName(c.lon, c.lat, name, code, &reason)) << c.lon << " " << c.lat;
        EXPECT_EQ(name, "");
        EXPECT_EQ(code, 0);
        EXPECT_NE(reason.find(c.reason), std::string::npos) << reason;

        char buffer[16] = "untouched";
        int status = 0, cCode = 5;
        S_POINTTOUTMZONE(buffer, sizeof buffer - 1, &status, c.lon, c.lat, &cCode);
        EXPECT_EQ(status, -1);
        EXPECT_STREQ(buffer, "untouched");
        EXPECT_EQ(cCode, 0);
    }
    // A reason is cleared by a point that has a zone.
    std::string name, reason = "stale";
    int code = 0;
    EXPECT_TRUE(CKvMapProjection::UTMZoneName(10.0, 90.0, name, code, &reason));
    EXPECT_EQ(reason, "");

    // The C interface's string rule and NULL arguments.
    char small[4] = "abc";
    int status = 0, cCode = 0;
    S_POINTTOUTMZONE(small, 3, &status, 15.0, -20.0, &cCode);
    EXPECT_EQ(status, 7) << "UTM-33S has 7 characters";
    EXPECT_STREQ(small, "abc");
    S_POINTTOUTMZONE(nullptr, 100, &status, 15.0, -20.0, nullptr);
    EXPECT_EQ(status, 7);
    char exact[8];
    S_POINTTOUTMZONE(exact, 7, &status, 15.0, -20.0, nullptr);
    EXPECT_EQ(status, 0);
    EXPECT_STREQ(exact, "UTM-33S");
    S_POINTTOUTMZONE(exact, 7, nullptr, 15.0, -20.0, &cCode); // no status: nothing done
}

// The southern zones and UPS against PROJ on the EPSG systems, both ways.
TEST(UtmZones, SouthernZonesAndUpsAgainstProj)
{
    kvtest::ShippedCatalogue();
    std::vector<ZonePoint> zones;
    std::vector<GridPoint> grid;
    LoadVectors(zones, grid);
    ASSERT_GT(grid.size(), 2000u);
    std::map<std::string, std::unique_ptr<CKvMapProjection>> systems;
    double worst = 0.0, worstBack = 0.0;
    std::set<std::string> seen;
    for (const GridPoint& p : grid) {
        auto& system = systems[p.name];
        if (!system) {
            system.reset(new CKvMapProjection(p.name));
            ASSERT_NE(system->GetProjection(), nullptr) << p.name;
        }
        seen.insert(p.name);
        double e = NAN, n = NAN;
        system->Geo2Proj(p.lon, p.lat, &e, &n);
        const double d = std::hypot(e - p.e, n - p.n);
        EXPECT_LT(d, 1e-3) << p.name << " " << p.lon << " " << p.lat << ": " << e << " " << n;
        worst = std::max(worst, d);
        double lon = NAN, lat = NAN;
        system->Proj2Geo(p.e, p.n, &lon, &lat);
        const bool pole = std::fabs(p.lat) == 90.0;
        EXPECT_NEAR(lat, p.lat, 1e-9) << p.name << " " << p.lon << " " << p.lat;
        if (!pole) {
            const double dLon = std::fabs(std::remainder(lon - p.lon, 360.0));
            EXPECT_LT(dLon, 1e-9) << p.name << " " << p.lon << " " << p.lat;
            worstBack = std::max(worstBack, dLon);
        }
    }
    EXPECT_EQ(seen.size(), 62u);
    // The northern name keeps its meaning: the same projection, false northing 0.
    double e = NAN, n = NAN, eS = NAN, nS = NAN;
    CKvMapProjection("UTM-34").Geo2Proj(18.4241, -33.9249, &e, &n);
    CKvMapProjection("UTM-34S").Geo2Proj(18.4241, -33.9249, &eS, &nS);
    EXPECT_EQ(e, eS);
    EXPECT_EQ(n + 10000000.0, nS);
    std::printf("[ measured ] %zu points of UTM-1S...60S and UPS: worst %.3g mm from PROJ, back %.2g deg\n",
                grid.size(), worst * 1e3, worstBack);
}

// The generated zones are the catalogue's own: never written to the user's
// file, listed once even where a shipped file names them too.
TEST(UtmZones, GeneratedEntriesStayOutOfTheUsersFile)
{
    kvtest::TempDir dir;
    CKvMapProjectionList list;
    list.InitMapProjections(KVCART_SHIPPED_DATA_DIR, dir.Path());
    std::map<std::string, int> count;
    for (auto it = list.GetIteratorBegin(); it != list.GetIteratorEnd(); ++it)
        ++count[(*it)->GetName()];
    for (const char* name : {"UTM-1", "UTM-1S", "UTM-60S", "UPS North", "UPS South"})
        EXPECT_EQ(count[name], 1) << name;
    const CKvMapProjData* ups = list.GetMapProjection("UPS South");
    ASSERT_NE(ups, nullptr);
    EXPECT_EQ(ups->GetProjectionType(), CKvMapProjData::ePolarStereographic);
    EXPECT_EQ(ups->GetEpsgCode(), 32761);
    EXPECT_EQ(list.GetSourceLine(ups), 0) << "made in memory, not read from a file";
    const auto* south = dynamic_cast<const CKvTransverseMercatorProjection*>(list.GetMapProjection("UTM-33S"));
    ASSERT_NE(south, nullptr);
    EXPECT_EQ(south->GetCentre(), 15.0);
    EXPECT_EQ(south->GetFalseNorthing(), 10000000.0);
    EXPECT_FALSE(south->CanDelete());
    EXPECT_FALSE(south->CanEdit());

    auto* own = new CKvTransverseMercatorProjection("My grid", "Projects", "WE", 1.0, 10.0, 0.0, 1000.0, 0.0);
    own->SetPermissions(true, true);
    list.AddMapProjection(own);
    std::string message;
    const std::string path = dir.File("custom_projection.gxr");
    ASSERT_TRUE(list.WriteBackCustom(path, message)) << message;
    const std::string written = kvtest::ReadFile(path);
    EXPECT_NE(written.find("My grid"), std::string::npos);
    for (const char* name : {"UTM-", "UPS", "LONG/LAT", "NON-UTM"})
        EXPECT_EQ(written.find(name), std::string::npos) << name << " in\n" << written;
}

// A user's own definition named like a built-in zone (made before the southern
// zones were built in) is kept in the file and said to be unused; the name
// finds the built-in zone.
TEST(UtmZones, AUsersDefinitionOfABuiltInNameIsKeptAndReported)
{
    kvtest::TempDir dir;
    const std::string path = dir.File("custom_projection.gxr");
    kvtest::WriteFile(path, "TARGET MAP_PROJECTION_DEFINITION\n"
                            "  SECTION UTM_PROJECTION\n"
                            "    Projection_Name \"UTM-33S\"\n    Branch_Name \"Mine\"\n    Ellipsoid \"WE\"\n"
                            "    Scale 0.9996\n    Centre 15\n    Origin_Latitude 0\n    Feast 500000\n    Fnorth 0\n"
                            "  END_SECTION\n"
                            "END_TARGET\n");
    CKvMapProjectionList list;
    list.InitMapProjections(dir.Path() + "no-system/", dir.Path());
    EXPECT_NE(list.GetProblems().find(path + ":2: the name 'UTM-33S' is that of a built-in system"), std::string::npos)
        << list.GetProblems();
    const auto* found = dynamic_cast<const CKvTransverseMercatorProjection*>(list.GetMapProjection("UTM-33S"));
    ASSERT_NE(found, nullptr);
    EXPECT_FALSE(found->CanDelete());
    EXPECT_EQ(found->GetFalseNorthing(), 10000000.0);

    auto* own = new CKvTransverseMercatorProjection("Another grid", "Projects", "WE", 1.0, 10.0, 0.0, 0.0, 0.0);
    own->SetPermissions(true, true);
    list.AddMapProjection(own);
    std::string message;
    ASSERT_TRUE(list.WriteBackCustom(path, message)) << message;
    const std::string written = kvtest::ReadFile(path);
    EXPECT_NE(written.find("\"Mine\""), std::string::npos) << written;
    EXPECT_NE(written.find("Another grid"), std::string::npos) << written;
}
