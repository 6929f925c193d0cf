// The EPSG registry: "EPSG:n" and "ESRI:n" against PROJ's coordinates of every
// system of the registry file (tools/make_epsg_registry.py), through the same
// Helmert from WGS 84, and the look-up's own rules.
#include "TestSupport.h"

#include "catalogue/KvEpsgRegistry.h"
#include "geodesy/KvDatumConverter.h"
#include "projections/KvProjection.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <thread>
#include <unistd.h>

namespace {

struct RegistryPoint
{
    double lon, lat, x, y;
};

// "R auth code lon lat x y" records, grouped by "auth:code".
std::map<std::string, std::vector<RegistryPoint>> LoadRegistryVectors()
{
    std::map<std::string, std::vector<RegistryPoint>> systems;
    std::ifstream in(KVCART_EPSG_REGISTRY_VECTORS);
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#')
            continue;
        const std::vector<std::string> f = kvtest::TabFields(line);
        if (f.size() != 7 || f[0] != "R")
            continue;
        systems[f[1] + ":" + f[2]].push_back({std::stod(f[3]), std::stod(f[4]), std::stod(f[5]), std::stod(f[6])});
    }
    return systems;
}

class EpsgRegistryTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { kvtest::ShippedCatalogue(); }
};

// Every system the registry gives against PROJ: the datum step from WGS 84 and
// the projection together, 1 mm (1e-8 degrees for geographic systems). Systems
// the library refuses are counted by reason; none may give other numbers.
TEST_F(EpsgRegistryTest, EverySystemGivesProjsCoordinatesThroughItsHelmert)
{
    const auto systems = LoadRegistryVectors();
    ASSERT_GT(systems.size(), 6000u);
    CKvMapProjection wgs84("EPSG:4326");
    ASSERT_NE(wgs84.GetProjection(), nullptr) << wgs84.GetMessage();

    std::map<std::string, int> refused; // reason -> systems
    int right = 0, wrong = 0, epsgProjectedRight = 0, withoutShift = 0;
    std::string firstWrong;
    for (const auto& [key, points] : systems) {
        CKvMapProjection target(key);
        if (target.GetProjection() == nullptr) {
            const std::string& m = target.GetMessage();
            ++refused[m.substr(m.find(": ") == std::string::npos ? 0 : m.find(": ") + 2)];
            continue;
        }
        CKvDatumConverter converter(&wgs84, &target);
        // A datum without a known transformation to WGS 84 is converted without
        // a shift, with a warning; PROJ's ballpark keeps latitude and
        // longitude, so only the projection is compared for those.
        CKvEpsgRegistry::SEntry entry;
        ASSERT_TRUE(CKvEpsgRegistry::Instance().Find(key.substr(0, 4), std::stoi(key.substr(5)), entry));
        if (!entry.hasShift) {
            converter.BypassXYZ();
            ++withoutShift;
        }
        bool ok = true;
        const bool geographic = target.IsGeographical();
        for (const RegistryPoint& p : points) {
            double x = p.lon, y = p.lat;
            converter.Convert(x, y);
            const double tol = geographic ? 1e-8 : 1e-3;
            if (!(std::fabs(x - p.x) <= tol && std::fabs(y - p.y) <= tol)) {
                if (ok && firstWrong.size() < 2000) {
                    char buffer[256];
                    std::snprintf(buffer, sizeof buffer, "%s at %.9g %.9g: %.6f %.6f, PROJ %.6f %.6f\n", key.c_str(),
                                  p.lon, p.lat, x, y, p.x, p.y);
                    firstWrong += buffer;
                }
                ok = false;
            }
        }
        ok ? ++right : ++wrong;
        if (ok && key.compare(0, 5, "EPSG:") == 0 && !geographic)
            ++epsgProjectedRight;
    }
    std::string refusals;
    int refusedCount = 0;
    for (const auto& [reason, n] : refused) {
        refusals += std::to_string(n) + "  " + reason + "\n";
        refusedCount += n;
    }
    EXPECT_EQ(wrong, 0) << firstWrong;
    std::printf("registry: %d right (EPSG projected %d; %d without a known datum shift), %d wrong, %d refused:\n%s",
                right, epsgProjectedRight, withoutShift, wrong, refusedCount, refusals.c_str());
    // The count the README gives; refusals are methods the library lacks.
    EXPECT_GE(epsgProjectedRight, 4900);
}

TEST_F(EpsgRegistryTest, CodesAreReadInEveryWrittenForm)
{
    std::string authority;
    int code = 0;
    EXPECT_TRUE(CKvEpsgRegistry::ParseCode("EPSG:27700", authority, code));
    EXPECT_EQ(authority, "EPSG");
    EXPECT_EQ(code, 27700);
    EXPECT_TRUE(CKvEpsgRegistry::ParseCode("  epsg:4326\t", authority, code));
    EXPECT_EQ(code, 4326);
    EXPECT_TRUE(CKvEpsgRegistry::ParseCode("Esri:102100", authority, code));
    EXPECT_EQ(authority, "ESRI");
    for (const char* bad : {"EPSG:", "EPSG", "EPSG:27700x", "EPSG: 27700", "EPSG:-1", "EPSG:+5", "EPSG:1e3",
                            "EPSG:1234567890", "IGNF:LAMB93", "27700", "", "EPSG:27700 27700"}) {
        EXPECT_FALSE(CKvEpsgRegistry::ParseCode(bad, authority, code)) << bad;
    }
    EXPECT_FALSE(CKvEpsgRegistry::ParseCode(nullptr, authority, code));
}

TEST_F(EpsgRegistryTest, ASystemCarriesItsAreaAndItsShift)
{
    CKvMapProjection bng("epsg:27700");
    ASSERT_NE(bng.GetProjection(), nullptr) << bng.GetMessage();
    EXPECT_EQ(bng.GetRegistryCode(), "EPSG:27700");
    EXPECT_EQ(bng.GetRegistryName(), "OSGB36 / British National Grid");
    double w, s, e, n;
    ASSERT_TRUE(bng.GetAreaOfUse(w, s, e, n));
    EXPECT_NEAR(w, -9.0, 1e-9);
    EXPECT_NEAR(n, 61.01, 1e-9);
    EXPECT_TRUE(kvtest::Contains(bng.GetDatumShiftSource(), "EPSG:1314"));
    CKvDatumShift shift;
    bng.GetDatumShift(shift);
    EXPECT_NEAR(shift.GetParameters()[0], 446.448, 1e-9);
    EXPECT_TRUE(bng.IsInAreaOfUse(-2.0, 54.0, 0.0));
    EXPECT_FALSE(bng.IsInAreaOfUse(10.0, 54.0, 1.0));
    EXPECT_FALSE(bng.IsInAreaOfUse(std::nan(""), 54.0, 1.0));

    // The C interface gives the same box, and none for a WKT or catalogue system.
    KVMP_HANDLE handle = nullptr;
    int status = -1;
    C_KVMP_CREATE("EPSG:27700", &handle, &status);
    ASSERT_EQ(status, 0);
    double cw = 0, cs = 0, ce = 0, cn = 0;
    EXPECT_EQ(C_KVMP_GETAREAOFUSE(handle, &cw, &cs, &ce, &cn), 0);
    EXPECT_EQ(cw, w);
    EXPECT_EQ(cn, n);
    EXPECT_EQ(C_KVMP_GETAREAOFUSE(handle, &cw, &cs, nullptr, &cn), -1);
    C_KVMP_DESTROY(&handle, &status);
    C_KVMP_CREATE("UTM-32", &handle, &status);
    ASSERT_EQ(status, 0);
    EXPECT_EQ(C_KVMP_GETAREAOFUSE(handle, &cw, &cs, &ce, &cn), -1);
    C_KVMP_DESTROY(&handle, &status);
    EXPECT_EQ(C_KVMP_GETAREAOFUSE(nullptr, &cw, &cs, &ce, &cn), -1);

    // A copy keeps what the registry said.
    const CKvMapProjection copy(bng);
    EXPECT_EQ(copy.GetRegistryCode(), "EPSG:27700");
    EXPECT_TRUE(copy.GetAreaOfUse(w, s, e, n));

    // Amersfoort's Helmert is a coordinate-frame one: its rotations change sign.
    CKvMapProjection rd("EPSG:28992");
    ASSERT_NE(rd.GetProjection(), nullptr) << rd.GetMessage();
    rd.GetDatumShift(shift);
    EXPECT_NEAR(shift.GetParameters()[3], -0.398957388243134, 1e-12);
    EXPECT_TRUE(kvtest::Contains(rd.GetDatumShiftSource(), "coordinate-frame"));

    // A catalogue name keeps meaning what the catalogue says.
    CKvMapProjection utm("UTM-32");
    EXPECT_TRUE(utm.GetRegistryCode().empty());
    EXPECT_FALSE(utm.GetAreaOfUse(w, s, e, n));
    EXPECT_TRUE(utm.IsInAreaOfUse(100.0, 0.0, 0.0));
}

TEST_F(EpsgRegistryTest, AreaAcrossTheAntimeridian)
{
    // Fiji 1986 / Fiji Map Grid lies across 180 (176.81 E to 178.15 W).
    CKvMapProjection fiji("EPSG:3460");
    ASSERT_NE(fiji.GetProjection(), nullptr) << fiji.GetMessage();
    double w, s, e, n;
    ASSERT_TRUE(fiji.GetAreaOfUse(w, s, e, n));
    ASSERT_GT(w, e);
    EXPECT_TRUE(fiji.IsInAreaOfUse(-179.5, -17.0, 0.0));
    EXPECT_TRUE(fiji.IsInAreaOfUse(178.0, -17.0, 0.0));
    EXPECT_TRUE(fiji.IsInAreaOfUse(180.5, -17.0, 0.0));
    EXPECT_FALSE(fiji.IsInAreaOfUse(175.0, -17.0, 1.0));
    EXPECT_FALSE(fiji.IsInAreaOfUse(0.0, -17.0, 1.0));
}

TEST_F(EpsgRegistryTest, UnknownAndRefusedCodesSayWhy)
{
    CKvMapProjection none("EPSG:1");
    EXPECT_EQ(none.GetProjection(), nullptr);
    EXPECT_TRUE(kvtest::Contains(none.GetMessage(), "EPSG:1 is not"));
    EXPECT_EQ(CKvMapProjection::GetLastMessage(), none.GetMessage());
    EXPECT_STREQ(none.GetProjectionString(), "");

    // A method the registry uses that the library does not have.
    CKvMapProjection aitoff("ESRI:54043");
    EXPECT_EQ(aitoff.GetProjection(), nullptr);
    EXPECT_TRUE(kvtest::Contains(aitoff.GetMessage(), "ESRI:54043 (World_Aitoff)"));
    EXPECT_TRUE(kvtest::Contains(aitoff.GetMessage(), "projection \"Aitoff\" is not supported"));

    // A bare code, or a registry name, suggests the registry's system.
    // (A system the catalogue holds is suggested by its catalogue name.)
    EXPECT_TRUE(kvtest::Contains(CKvMapProjection("31467").GetMessage(),
                                 "did you mean \"DHDN / 3-degree Gauss-Kruger zone 3\" (EPSG:31467)?"));
    EXPECT_TRUE(kvtest::Contains(CKvMapProjection("2193").GetMessage(),
                                 "did you mean \"New Zealand Transverse Mercator 2000\" (EPSG:2193)?"));
    EXPECT_TRUE(kvtest::Contains(CKvMapProjection("DHDN / 3-degree Gauss-Kruger zon 3").GetMessage(),
                                 "did you mean \"DHDN / 3-degree Gauss-Kruger zone 3\" (EPSG:31467)"));

    // The static resolution says the same and leaves no engine.
    CKvProjectionInfo info;
    std::string message;
    EXPECT_EQ(CKvMapProjection::GetProjection("EPSG:1", &info, &message), nullptr);
    EXPECT_TRUE(kvtest::Contains(message, "not"));
    CKvProjection* engine = CKvMapProjection::GetProjection(" EPSG:2193 ", &info, &message);
    ASSERT_NE(engine, nullptr) << message;
    CKvProjection::Release(engine);
}

TEST_F(EpsgRegistryTest, TheEpsgReadingHoldsWhateverTheProcessWideSetting)
{
    const bool before = CKvMapProjection::GetEpsgReading();
    CKvMapProjection::SetEpsgReading(false);
    // South-orientated transverse Mercator: westing and southing in the registry.
    CKvMapProjection lo("EPSG:2046");
    CKvMapProjection::SetEpsgReading(before);
    ASSERT_NE(lo.GetProjection(), nullptr) << lo.GetMessage();
    double x = 0, y = 0;
    lo.Geo2Proj(16.0, -34.0, &x, &y);
    EXPECT_GT(y, 3.0e6); // southing, positive in the south
    EXPECT_TRUE(lo.GetMessage().empty()) << lo.GetMessage();
}

// A host that never named its catalogue directory gets no registry at all: a
// file of the registry's name in the working directory is not read, whatever
// it holds. (The helper program sets up no catalogue.)
TEST(EpsgRegistryFile, NoCatalogueDirectoryReadsNoFileOfTheWorkingDirectory)
{
    const kvtest::TempDir dir;
    ASSERT_FALSE(dir.Path().empty());
    kvtest::WriteFile(dir.File("epsg_registry.txt"),
                      kvtest::ReadFile(std::string(KVCART_SHIPPED_DATA_DIR) + "epsg_registry.txt"));
    // ESRI's .prj of EPSG:27700 names its datum without a shift: the registry,
    // were it read, would add OSGB 1936's.
    kvtest::WriteFile(dir.File("in.txt"),
                      "bng\tPROJCS[\"British_National_Grid\",GEOGCS[\"GCS_OSGB_1936\",DATUM[\"D_OSGB_1936\","
                      "SPHEROID[\"Airy_1830\",6377563.396,299.3249646]],PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\","
                      "0.0174532925199433]],PROJECTION[\"Transverse_Mercator\"],PARAMETER[\"False_Easting\",400000.0],"
                      "PARAMETER[\"False_Northing\",-100000.0],PARAMETER[\"Central_Meridian\",-2.0],"
                      "PARAMETER[\"Scale_Factor\",0.9996012717],PARAMETER[\"Latitude_Of_Origin\",49.0],"
                      "UNIT[\"Meter\",1.0]]\n");
    const std::string command = "cd '" + dir.Path() + "' && '" + KVCART_WKT_TRANSLATE + "' --proj < in.txt > out.txt";
    ASSERT_EQ(std::system(command.c_str()), 0);
    const std::string out = kvtest::ReadFile(dir.File("out.txt"));
    EXPECT_TRUE(kvtest::Contains(out, "+proj=tmerc"));
    EXPECT_FALSE(kvtest::Contains(out, "+towgs84"));
}

TEST(EpsgRegistryFile, AMissingOrDamagedFileIsReportedNotGuessed)
{
    kvtest::ShippedCatalogue();
    CKvEpsgRegistry& registry = CKvEpsgRegistry::Instance();
    const std::string shipped = std::string(KVCART_SHIPPED_DATA_DIR) + "epsg_registry.txt";

    registry.UseFile("/nonexistent/epsg_registry.txt");
    CKvMapProjection missing("EPSG:27700");
    EXPECT_EQ(missing.GetProjection(), nullptr);
    EXPECT_TRUE(kvtest::Contains(missing.GetMessage(), "cannot be read"));

    char name[] = "/tmp/kvcart-registry-XXXXXX";
    const int fd = mkstemp(name);
    ASSERT_GE(fd, 0);
    close(fd);
    {
        std::ofstream damaged(name);
        damaged << "# test\nS\t0\tEPSG:1\tx\t1\t3\t1\t2\t3\t0\t0\t0\t0\ttranslations\t-\t-\n"
                << "W\t0\tGEOGCS[\"x\",DATUM[\"x\",SPHEROID[\"x\",6378137,298.257223563]],PRIMEM[\"G\",0],"
                   "UNIT[\"degree\",0.0174532925199433]]\n"
                << "G\tEPSG\t4999\tx\t-1\t-1\t1\t1\t0\t-\t@0\n"
                << "P\tEPSG\tnotanumber\n";
    }
    registry.UseFile(name);
    CKvMapProjection damaged("EPSG:4999");
    EXPECT_EQ(damaged.GetProjection(), nullptr);
    EXPECT_TRUE(kvtest::Contains(damaged.GetMessage(), "damaged at line 5"));

    {
        std::ofstream good(name);
        good << "# test\nS\t0\tEPSG:1\tx\t1\t3\t1\t2\t3\t0\t0\t0\t0\ttranslations\t-\t-\n"
             << "W\t0\tGEOGCS[\"x\",DATUM[\"x\",SPHEROID[\"x\",6378137,298.257223563]],PRIMEM[\"G\",0],"
                "UNIT[\"degree\",0.0174532925199433]]\n"
             << "G\tEPSG\t4999\tx\t-1\t-1\t1\t1\t0\t-\t@0\n"
             << "G\tEPSG\t4998\ty\t-1\t-1\t1\t1\t0\t-\t@0\n"; // a file out of key order is sorted
    }
    registry.UseFile(name);
    CKvMapProjection small("EPSG:4999");
    ASSERT_NE(small.GetProjection(), nullptr) << small.GetMessage();
    EXPECT_NE(CKvMapProjection("EPSG:4998").GetProjection(), nullptr);
    CKvDatumShift shift;
    small.GetDatumShift(shift);
    EXPECT_EQ(shift.GetParameters()[2], 3.0);
    std::remove(name);
    registry.UseFile(shipped);
}

TEST(EpsgRegistryFile, LookUpsFromManyThreadsAgree)
{
    kvtest::ShippedCatalogue();
    const char* codes[] = {"EPSG:27700", "EPSG:2154", "EPSG:28992", "EPSG:32633", "EPSG:4277", "ESRI:102001"};
    std::vector<std::thread> threads;
    std::vector<std::string> failures(4);
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t, &codes, &failures] {
            for (int i = 0; i < 50; ++i) {
                const char* code = codes[(i + t) % 6];
                CKvMapProjection system(code);
                if (system.GetProjection() == nullptr || system.GetRegistryCode() != code)
                    failures[t] = code;
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    for (const auto& f : failures)
        EXPECT_TRUE(f.empty()) << f;
}

} // namespace
