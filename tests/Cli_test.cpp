// The kvcart program run as a user runs it: arguments, standard input or
// files, standard output and error, the exit status. Reference coordinates come
// from PROJ (cs2cs, geod) on the same points.
#include "ProgramRun.h"
#include "tools/kvcart/KvPointStream.h"

#include "geodesy/KvDatumConverter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <vector>

using kvtest::Kvcart;
using kvtest::Quote;
using kvtest::Shell;
using kvtest::SRun;

TEST(Cli, TransformKeepsEveryLineAlignedAndMarksWhatItCannotRead)
{
    kvtest::TempDir dir;
    const std::string input = "# header: lon lat\n"
                              "\n"
                              "9.5 47.5\n"
                              "9.5,47.5,100,Zurich\n"
                              "9.5\t47.5 Zurich lake\r\n"
                              "abc 47.5\n"
                              "9.5\n"
                              "9.5 1e400\n"
                              "nan 47.5\n"
                              "9.5 47.5x\n"
                              "9.5 95 beyond the pole\n"
                              "  9.5   47.5   \n";
    const SRun run = Kvcart(dir, {"transform", "LONG/LAT", "UTM-32"}, input);
    EXPECT_EQ(run.status, 1);
    const std::vector<std::string> lines = run.OutLines();
    ASSERT_EQ(lines.size(), 12u);
    EXPECT_EQ(lines[0], "# header: lon lat");
    EXPECT_EQ(lines[1], "");
    // cs2cs +proj=utm +zone=32 +datum=WGS84: 537656.6740 5260850.8753
    EXPECT_EQ(lines[2], "537656.6740 5260850.8753");
    EXPECT_EQ(lines[3], "537656.6740,5260850.8753,100.0000,Zurich");
    EXPECT_EQ(lines[4], "537656.6740\t5260850.8753 Zurich lake\r");
    for (int i : {5, 6, 7, 8, 9})
        EXPECT_EQ(lines[i], "* *") << i;
    EXPECT_EQ(lines[10], "* * beyond the pole");
    EXPECT_EQ(lines[11], "537656.6740   5260850.8753   ");
    for (const char* message :
         {"stdin:6: expected a coordinate, found 'abc'", "stdin:7: only one coordinate", "stdin:8: number out of range",
          "stdin:9: not a finite number 'nan'", "stdin:10: expected a number, found '47.5x'",
          "stdin:11: the point cannot be converted", "6 lines could not be converted"})
        EXPECT_TRUE(kvtest::Contains(run.err, message));

    // Files in turn, "-" for standard input; a missing file is reported and the rest done.
    kvtest::WriteFile(dir.File("a.txt"), "9.5 47.5\n");
    const SRun files =
        Kvcart(dir, {"transform", "LONG/LAT", "UTM-32", "a.txt", "-", "missing.txt", "a.txt"}, std::string("9 0\n"));
    EXPECT_EQ(files.status, 1);
    EXPECT_EQ(files.out, "537656.6740 5260850.8753\n500000.0000 0.0000\n537656.6740 5260850.8753\n");
    EXPECT_TRUE(kvtest::Contains(files.err, "cannot open 'missing.txt'"));

    // Inverse, and the precision option.
    const SRun back = Kvcart(dir, {"transform", "LONG/LAT", "UTM-32", "--inverse", "--precision", "6"},
                             std::string("537656.6740 5260850.8753\n"));
    EXPECT_EQ(back.status, 0);
    EXPECT_EQ(back.out, "9.500000 47.500000\n");
}

TEST(Cli, BadSystemsAndOptionsStopBeforeAnyPointIsRead)
{
    kvtest::TempDir dir;
    const std::string points = "9.5 47.5\n";
    const struct
    {
        std::vector<std::string> args;
        const char* message;
    } cases[] = {
        {{"transform", "LONG/LAT", "Nowhere Grid"}, "unknown coordinate system 'Nowhere Grid'"},
        {{"transform", "UTM", "LONG/LAT"}, "'UTM' names no zone"},
        {{"transform", "LONG/LAT", "@missing.prj"}, "cannot read 'missing.prj'"},
        {{"transform", "LONG/LAT", "UTM-32", "--precision", "18"}, "--precision takes a whole number"},
        {{"transform", "LONG/LAT", "UTM-32", "--towgs84-to", "1,2"}, "--towgs84-to takes 3 or 7 numbers"},
        {{"transform", "LONG/LAT", "UTM-32", "--towgs84-to", "1,2,x"}, "--towgs84-to takes 3 or 7 numbers"},
        {{"transform", "LONG/LAT"}, "missing arguments"},
        {{"transform", "LONG/LAT", "UTM-32", "--frobnicate"}, "unknown option '--frobnicate'"},
        {{"transform", "LONG/LAT", "UTM-32", "--type", "1"}, "'--type' does not apply to transform"},
        {{"zone", "east"}, "longitude 'east' is not a finite number"},
        {{"geod", "0", "91", "0", "1"}, "outside -90..90"},
        {{"geod", "--inverse", "0", "0", "10", "-90.5"}, "latitude '-90.5' is outside -90..90"},
        {{"geod", "--inverse", "0", "0", "inf", "1"}, "longitude 'inf' is not a finite number"},
        {{"geod", "--inverse", "0", "0", "1"}, "missing arguments"},
        {{"reproject"}, "unknown command 'reproject'"},
        {{"list", "--catalogue", "no-such-dir"}, "holds no catalogue"},
        {{}, "Usage: kvcart COMMAND"},
    };
    for (const auto& c : cases) {
        const SRun run = Kvcart(dir, c.args, points);
        EXPECT_EQ(run.status, 2) << c.message;
        EXPECT_TRUE(kvtest::Contains(run.err + run.out, c.message));
        if (!c.args.empty() && c.args[0] == "transform") {
            EXPECT_EQ(run.out, "") << c.message;
        }
    }
}

TEST(Cli, PrjFilesAndDatumShiftsMatchProj)
{
    kvtest::TempDir dir;
    kvtest::WriteFile(dir.File("bng.prj"), std::string(kvtest::kOsgbGrid) + "\r\n");
    // cs2cs EPSG:4326 EPSG:27700 (Helmert, no grid): 530006.22 180446.28, 318217.99 176508.92
    const std::string places = "-0.12810 51.50800 Trafalgar Square\n-3.17910 51.48160 Cardiff\n";
    const char* expected = "530006.22 180446.28 Trafalgar Square\n318217.99 176508.92 Cardiff\n";
    const SRun prj = Kvcart(dir, {"transform", "LONG/LAT", "@bng.prj", "--precision", "2"}, places);
    EXPECT_EQ(prj.status, 0) << prj.err;
    EXPECT_EQ(prj.out, expected);
    const SRun option = Kvcart(dir,
                               {"transform", "LONG/LAT", "British National Grid", "--precision", "2", "--towgs84-to",
                                "446.448,-125.157,542.06,0.15,0.247,0.842,-20.489"},
                               places);
    EXPECT_EQ(option.out, expected) << option.err;
    // Without a shift the latitude and longitude are kept across the change of ellipsoid.
    const SRun bypass =
        Kvcart(dir, {"transform", "LONG/LAT", "@bng.prj", "--precision", "2", "--bypass-datum"}, places);
    const SRun plain =
        Kvcart(dir, {"transform", "LONG/LAT", "British National Grid", "--precision", "2", "--bypass-datum"}, places);
    EXPECT_EQ(bypass.out, plain.out);
    EXPECT_NE(bypass.out, expected);

    // Back to WGS 84: the transposed rotation leaves about a millimetre (2e-8 degrees).
    const SRun there = Kvcart(dir, {"transform", "LONG/LAT", "@bng.prj", "--precision", "6"}, places);
    const SRun back = Kvcart(dir, {"transform", "LONG/LAT", "@bng.prj", "--inverse", "--precision", "10"}, there.out);
    double lon = 0, lat = 0;
    ASSERT_EQ(std::sscanf(back.out.c_str(), "%lf %lf", &lon, &lat), 2) << back.err;
    EXPECT_NEAR(lon, -0.1281, 2e-8);
    EXPECT_NEAR(lat, 51.508, 2e-8);

    // Geographical to geographical with a 3-parameter shift on the source.
    const SRun geo =
        Kvcart(dir, {"transform", "LONG/LAT", "LONG/LAT", "--towgs84-from", "100,0,0"}, std::string("0 0 0\n"));
    EXPECT_EQ(geo.out, "0.000000000 0.000000000 100.0000\n");

    const SRun proj4 = Kvcart(dir, {"proj4", "@bng.prj"});
    EXPECT_EQ(proj4.status, 0);
    EXPECT_TRUE(kvtest::Contains(proj4.out, "+proj=tmerc +lat_0=49 +lon_0=-2 +k=0.9996012717"));
    EXPECT_TRUE(kvtest::Contains(proj4.out, "+towgs84=446.448,-125.157,542.0"));
}

TEST(Cli, DescribesSystemsAndAnswersTheSmallQuestions)
{
    kvtest::TempDir dir;
    const SRun info = Kvcart(dir, {"info", "UTM-32"});
    EXPECT_EQ(info.status, 0);
    for (const char* line :
         {"Name:          UTM-32\n", "Projection:    Transverse mercator\n", "0.9996\n", "500000 Meter\n",
          "Ellipsoid:     WGS 84 (a = 6378137 m, 1/f = 298.257223563)\n",
          "Origin:        longitude 9, latitude 0; grid 500000.000 0.000\n", "Axes:          east, north\n",
          "Datum shift:   none\n", "    PROJECTION[\"Transverse_Mercator\"],\n", "PROJ.4:        +proj=tmerc"})
        EXPECT_TRUE(kvtest::Contains(info.out, line));
    const SRun wkt = Kvcart(dir, {"info", kvtest::kOsgbGrid});
    EXPECT_TRUE(kvtest::Contains(wkt.out, "Datum shift:   446.448,-125.157,542.06,0.15,0.247,0.842,-20.489 to WGS 84"));

    const SRun branch = Kvcart(dir, {"list", "--branch", "OSGB 1936"});
    EXPECT_EQ(branch.OutLines().size(), 1u);
    EXPECT_EQ(branch.out.rfind("British National Grid ", 0), 0u);
    const SRun geographic = Kvcart(dir, {"list", "--type", "4"});
    EXPECT_EQ(geographic.out.rfind("LONG/LAT ", 0), 0u);
    EXPECT_EQ(geographic.OutLines().size(), 1u);
    const SRun all = Kvcart(dir, {"list"});
    EXPECT_GT(all.OutLines().size(), 300u); // 60 UTM zones, the state planes, the national grids
    const SRun ellipsoids = Kvcart(dir, {"ellipsoids", "--system"});
    EXPECT_TRUE(kvtest::Contains(ellipsoids.out, "WE   6378137        298.257223563    WGS 84\n"));

    const std::pair<const char*, const char*> zones[] = {{"9.5", "UTM-32\n"}, {"-180", "UTM-1\n"},
                                                         {"180", "UTM-1\n"},  {"179.99", "UTM-60\n"},
                                                         {"540", "UTM-1\n"},  {"-0.0", "UTM-31\n"}};
    for (const auto& z : zones)
        EXPECT_EQ(Kvcart(dir, {"zone", z.first}).out, z.second) << z.first;

    // geod +ellps=WGS84 on 48.85 2.35 45 100000: 49.481723219 3.325817860, back azimuth -134.261671854
    const SRun geod = Kvcart(dir, {"geod", "2.35", "48.85", "45", "100000"});
    EXPECT_EQ(geod.out, "3.325817860 49.481723219 45.738328146\n");
    // Across the antimeridian the longitude comes back into -180..180.
    const SRun across = Kvcart(dir, {"geod", "179.9", "0", "90", "50000"});
    double lon = 0;
    ASSERT_EQ(std::sscanf(across.out.c_str(), "%lf", &lon), 1);
    EXPECT_NEAR(lon, -179.65083, 1e-4);
    // The inverse problem. GeodSolve -i: 344429.171783997 m, -29.96692550310267, -31.87038712995245 on
    // WGS 84; on Airy 1830 (-e 6377563.396 1/299.3249646) 968857.386151295 m, 9.10126142630937,
    // 11.24463993788251; across the antimeridian 6641073.444108329 m, 1.00550553691377 twice.
    EXPECT_EQ(Kvcart(dir, {"geod", "--inverse", "2.35", "48.85", "-0.1275", "51.507"}).out,
              "344429.171784 -29.966925503 -31.870387130\n");
    EXPECT_EQ(
        Kvcart(dir, {"geod", "--inverse", "-5.7", "50.07", "-3.07", "58.64", "--cs", "British National Grid"}).out,
        "968857.386151 9.101261426 11.244639938\n");
    EXPECT_EQ(Kvcart(dir, {"geod", "--inverse", "179.5", "-30", "540.5", "30"}).out,
              "6641073.444108 1.005505537 1.005505537\n");
    const SRun noEllipsoid = Kvcart(dir, {"geod", "--inverse", "0", "0", "1", "1", "--cs", "NON-UTM"});
    EXPECT_EQ(noEllipsoid.status, 1);
    EXPECT_TRUE(kvtest::Contains(noEllipsoid.err, "has no ellipsoid"));

    for (const char* command :
         {"transform", "info", "proj4", "wkt", "list", "ellipsoids", "zone", "geod", "check", "add", "remove"}) {
        const SRun help = Kvcart(dir, {command, "--help"});
        EXPECT_EQ(help.status, 0);
        EXPECT_EQ(help.out.rfind(std::string("Usage: kvcart ") + command, 0), 0u) << command;
    }
    EXPECT_EQ(Kvcart(dir, {"--version"}).out.rfind("kvcart ", 0), 0u);
}

TEST(Cli, CatalogueAndUserDirectoryOptions)
{
    kvtest::TempDir dir;
    // A catalogue directory of one's own, with a grid the shipped one lacks.
    std::system(("mkdir -p " + Quote(dir.File("cat")) + " && cp " + Quote(KVCART_SHIPPED_DATA_DIR) + "*.gxr " +
                 Quote(dir.File("cat/")))
                    .c_str());
    const std::string grid = "TARGET MAP_PROJECTION_DEFINITION\n"
                             "  SECTION UTM_PROJECTION\n"
                             "    Projection_Name \"Test Grid\"\n    Branch_Name \"Tests\"\n    Ellipsoid \"WE\"\n"
                             "    Scale 1\n    Centre 10\n    Origin_Latitude 0\n    Feast 0\n    Fnorth 0\n"
                             "  END_SECTION\nEND_TARGET\n";
    kvtest::WriteFile(dir.File("cat/map_projection.gxr"), grid);
    const std::string point = "10 0\n";
    EXPECT_EQ(Kvcart(dir, {"transform", "LONG/LAT", "Test Grid", "--catalogue", "cat"}, point).out, "0.0000 0.0000\n");
    EXPECT_EQ(Kvcart(dir, {"transform", "LONG/LAT", "Test Grid"}, point).status, 2);

    // The user directory: --user-dir, else $XDG_CONFIG_HOME/kvcart/.
    std::system(("mkdir -p " + Quote(dir.File("mine")) + " " + Quote(dir.File("config/kvcart"))).c_str());
    kvtest::WriteFile(dir.File("mine/custom_projection.gxr"), grid);
    EXPECT_EQ(Kvcart(dir, {"transform", "LONG/LAT", "Test Grid", "--user-dir", "mine"}, point).out, "0.0000 0.0000\n");
    kvtest::WriteFile(dir.File("config/kvcart/custom_projection.gxr"), grid);
    const SRun listed = Kvcart(dir, {"list", "--branch", "Tests"});
    EXPECT_EQ(listed.out.find("Test Grid"), 0u);
    EXPECT_TRUE(kvtest::Contains(listed.out, "[user]"));
}

TEST(Cli, UserCatalogueEditsSurviveTheNextRunAndLoseNothing)
{
    kvtest::TempDir dir;
    kvtest::WriteFile(dir.File("bng.prj"), kvtest::kOsgbGrid);
    // The user's file already holds a comment and a section this library does not know.
    std::system(("mkdir -p " + Quote(dir.File("config/kvcart"))).c_str());
    const std::string own = "TARGET MAP_PROJECTION_DEFINITION\n"
                            "  SECTION FUTURE_PROJECTION\n    Projection_Name \"Later\"\n  END_SECTION\n"
                            "END_TARGET\n";
    kvtest::WriteFile(dir.File("config/kvcart/custom_projection.gxr"), own);

    SRun add = Kvcart(dir, {"add", "My BNG", "@bng.prj", "--branch", "Mine"});
    EXPECT_EQ(add.status, 0) << add.err;
    EXPECT_FALSE(kvtest::Contains(add.err, "datum shift"));
    const std::string saved = kvtest::ReadFile(dir.File("config/kvcart/custom_projection.gxr"));
    EXPECT_TRUE(kvtest::Contains(saved, "SECTION FUTURE_PROJECTION"));
    EXPECT_TRUE(kvtest::Contains(saved, "\"My BNG\""));

    // A second run knows the name and converts as the WKT does, with its shift.
    const std::string point = "-0.1281 51.508\n";
    const SRun byName = Kvcart(dir, {"transform", "LONG/LAT", "My BNG"}, point);
    const SRun byWkt = Kvcart(dir, {"transform", "LONG/LAT", "@bng.prj"}, point);
    EXPECT_EQ(byName.status, 0) << byName.err;
    EXPECT_EQ(byName.out, byWkt.out);
    EXPECT_EQ(Kvcart(dir, {"list", "--branch", "Mine"}).out.rfind("My BNG ", 0), 0u);

    // Copies of catalogue systems; duplicates, shipped entries and built-in names are refused.
    EXPECT_EQ(Kvcart(dir, {"add", "Zone 32 copy", "UTM-32"}).status, 0);
    EXPECT_EQ(Kvcart(dir, {"transform", "LONG/LAT", "Zone 32 copy"}, std::string("9 0\n")).out, "500000.0000 0.0000\n");
    EXPECT_EQ(Kvcart(dir, {"add", "My BNG", "UTM-32"}).status, 1);
    EXPECT_EQ(Kvcart(dir, {"add", "Plain", "LONG/LAT"}).status, 1);
    const SRun shipped = Kvcart(dir, {"remove", "UTM-32"});
    EXPECT_EQ(shipped.status, 1);
    EXPECT_TRUE(kvtest::Contains(shipped.err, "cannot be removed"));

    // Ellipsoids: added, used, not removable while used.
    EXPECT_EQ(Kvcart(dir, {"add", "--ellipsoid", "XS", "Test sphere", "6371000", "0"}).status, 0);
    EXPECT_EQ(Kvcart(dir, {"add", "--ellipsoid", "XS", "Again", "6371000", "0"}).status, 1);
    EXPECT_EQ(Kvcart(dir, {"ellipsoids", "--custom"}).out, "XS   6371000        0                Test sphere\n");
    const std::string sphereGrid =
        "PROJCS[\"S\",GEOGCS[\"S\",DATUM[\"S\",SPHEROID[\"Test sphere\",6371000,0]],PRIMEM[\"Greenwich\",0],"
        "UNIT[\"degree\",0.0174532925199433]],PROJECTION[\"Mercator_1SP\"],PARAMETER[\"central_meridian\",0],"
        "PARAMETER[\"scale_factor\",1],PARAMETER[\"false_easting\",0],PARAMETER[\"false_northing\",0],"
        "UNIT[\"metre\",1]]";
    EXPECT_EQ(Kvcart(dir, {"add", "Sphere Mercator", sphereGrid}).status, 0);
    EXPECT_EQ(Kvcart(dir, {"remove", "--ellipsoid", "XS"}).status, 1);
    EXPECT_EQ(Kvcart(dir, {"remove", "Sphere Mercator"}).status, 0);
    EXPECT_EQ(Kvcart(dir, {"remove", "--ellipsoid", "XS"}).status, 0);
    EXPECT_EQ(Kvcart(dir, {"ellipsoids", "--custom"}).out, "");

    EXPECT_EQ(Kvcart(dir, {"remove", "My BNG"}).status, 0);
    EXPECT_EQ(Kvcart(dir, {"transform", "LONG/LAT", "My BNG"}, point).status, 2);
    EXPECT_TRUE(kvtest::Contains(kvtest::ReadFile(dir.File("config/kvcart/custom_projection.gxr")),
                                 "SECTION FUTURE_PROJECTION"));

    // A user file that does not read is never written over: the edit goes to a rescue file.
    const std::string broken = "TARGET MAP_PROJECTION_DEFINITION\n  SECTION UTM_PROJECTION\n";
    kvtest::WriteFile(dir.File("config/kvcart/custom_projection.gxr"), broken);
    const SRun refused = Kvcart(dir, {"add", "Another", "UTM-33"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(kvtest::Contains(refused.err, "was not written"));
    EXPECT_EQ(kvtest::ReadFile(dir.File("config/kvcart/custom_projection.gxr")), broken);
    EXPECT_TRUE(
        kvtest::Contains(kvtest::ReadFile(dir.File("config/kvcart/custom_projection.unsaved.gxr")), "\"Another\""));
}

TEST(Cli, CheckReportsEveryProblemWithItsLine)
{
    kvtest::TempDir dir;
    for (const char* shipped : {"ellipsoid.gxr", "map_projection.gxr", "state_plane_nad83.gxr"}) {
        const SRun ok = Kvcart(dir, {"check", std::string(KVCART_SHIPPED_DATA_DIR) + shipped});
        EXPECT_EQ(ok.status, 0) << shipped << ok.out;
        EXPECT_TRUE(kvtest::Contains(ok.out, "no problems"));
    }
    const std::string section = "  SECTION UTM_PROJECTION\n"                 // +0
                                "    Projection_Name \"%s\"\n"               // +1
                                "    Ellipsoid \"%s\"\n"                     // +2
                                "    Scale 0.9996\n    Centre 9\n"           // +3, +4
                                "    Origin_Latitude %s\n    Feast 500000\n" // +5, +6
                                "  END_SECTION\n";                           // +7
    const auto make = [&section](const char* name, const char* ellipsoid, const char* latitude) {
        char text[512];
        std::snprintf(text, sizeof text, section.c_str(), name, ellipsoid, latitude);
        return std::string(text);
    };
    const std::string file = "TARGET MAP_PROJECTION_DEFINITION\n" // line 1
                             + make("A", "ZZ", "0")               // 2: unknown ellipsoid
                             + make("A", "WE", "0")               // 10: duplicate name
                             + make("B", "WE", "95")              // 18: unusable parameters
                             + "  SECTION UTM_PROJECTION\n    Projection_Name \"C\"\n    Bogus 3\n  END_SECTION\n" +
                             "  SECTION UTM_PROJECTION\n    Projection_Name \"D\"\n    Scale \"x\"\n  END_SECTION\n" +
                             "END_TARGET\n";
    kvtest::WriteFile(dir.File("bad.gxr"), file);
    const SRun bad = Kvcart(dir, {"check", "bad.gxr"});
    EXPECT_EQ(bad.status, 1);
    const std::vector<std::string> lines = bad.OutLines();
    ASSERT_EQ(lines.size(), 5u) << bad.out;
    EXPECT_EQ(lines[0], "bad.gxr:2: ellipsoid 'ZZ' is not in the catalogue");
    EXPECT_EQ(lines[1], "bad.gxr:10: the name 'A' is also used on line 2");
    EXPECT_EQ(lines[2].rfind("bad.gxr:18: the parameters do not make a usable", 0), 0u);
    EXPECT_EQ(lines[3], "bad.gxr:28: keyword 'Bogus' is not known in section 'UTM_PROJECTION'");
    EXPECT_EQ(lines[4].rfind("bad.gxr:32: keyword 'Scale' takes a number", 0), 0u);

    kvtest::WriteFile(dir.File("ell.gxr"), "TARGET ELLIPSOID_DEFINITION\n"
                                           "  SECTION REF_ELLIPSOID\n    Ellipsoid_Name \"Flat\"\n    ID_Code \"F1\"\n"
                                           "    Semi_Major_Axis -1\n    Inverse_Flatness 300\n  END_SECTION\n"
                                           "END_TARGET\n");
    const SRun ellipsoid = Kvcart(dir, {"check", "ell.gxr"});
    EXPECT_EQ(ellipsoid.status, 1);
    EXPECT_EQ(ellipsoid.out, "ell.gxr:2: Semi_Major_Axis must be a positive length\n");

    kvtest::WriteFile(dir.File("cut.gxr"), "TARGET MAP_PROJECTION_DEFINITION\n  SECTION UTM_PROJECTION\n");
    const SRun cut = Kvcart(dir, {"check", "cut.gxr"});
    EXPECT_EQ(cut.status, 1);
    EXPECT_TRUE(kvtest::Contains(cut.out, "cut.gxr:2:"));
    EXPECT_EQ(Kvcart(dir, {"check", "absent.gxr"}).status, 1);
}

// The line converter on its own, under a comma-decimal locale: numbers are
// read and written in the C locale whatever the host program set.
TEST(Cli, PointLinesStayInTheCLocale)
{
    kvtest::ShippedCatalogue();
    kvtest::CommaLocale comma;
    CKvDatumConverter converter("LONG/LAT", "UTM-32");
    converter.SetConversionType(CKvDatumConverter::eGeoToProj);
    CKvPointStream stream(converter, false, 3, 2);
    std::string out, problem;
    const std::string line = "9.5 47.5 100 tail";
    EXPECT_TRUE(stream.ConvertLine(line.data(), line.size(), out, problem));
    EXPECT_EQ(out, "537656.674 5260850.875 100.00 tail");
}

TEST(Cli, ReadsPrjFilesByTheRegistryAndSaysWhyItRefusesOne)
{
    const kvtest::TempDir dir;
    // EPSG:2046 as GDAL writes its .prj (ESRI form): westing/southing in the
    // registry, easting/northing by the library's established reading (PROJ:
    // 53858.5029 2535220.4668 at 14.475 -22.915).
    kvtest::WriteFile(
        dir.File("lo15.prj"),
        "PROJCS[\"Hartebeesthoek94_Lo15\",GEOGCS[\"GCS_Hartebeesthoek_1994\",DATUM[\"D_Hartebeesthoek_"
        "1994\",SPHEROID[\"WGS_1984\",6378137.0,298.257223563]],PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\","
        "0.0174532925199433]],PROJECTION[\"Transverse_Mercator_South_Orientated\"],PARAMETER[\"latitude_"
        "of_origin\",0.0],PARAMETER[\"central_meridian\",15.0],PARAMETER[\"scale_factor\",1.0],PARAMETER["
        "\"false_easting\",0.0],PARAMETER[\"false_northing\",0.0],UNIT[\"Meter\",1.0]]\n");
    const SRun epsg = Kvcart(dir, {"transform", "LONG/LAT", "@lo15.prj"}, std::string("14.475 -22.915\n"));
    EXPECT_EQ(epsg.status, 0) << epsg.err;
    EXPECT_EQ(epsg.out, "53858.5029 2535220.4668\n");
    EXPECT_EQ(epsg.err, "");
    const SRun compatible =
        Kvcart(dir, {"transform", "--compatible-reading", "LONG/LAT", "@lo15.prj"}, std::string("14.475 -22.915\n"));
    EXPECT_EQ(compatible.status, 0);
    EXPECT_EQ(compatible.out, "-53858.5029 -2535220.4668\n");
    // The established reading also says which datum shift it leaves out: an ESRI
    // text names its datum but carries none.
    EXPECT_EQ(compatible.err, "kvcart: warning: lo15.prj: its datum \"D_Hartebeesthoek_1994\" has no TOWGS84 and is "
                              "read without a shift to WGS 84; the registry's is EPSG:1505 Hartebeesthoek94 to WGS 84 "
                              "(1), accuracy 1 m (as EPSG:4148)\n"
                              "kvcart: warning: lo15.prj: Transverse_Mercator_South_Orientated read as plain "
                              "transverse Mercator: coordinates are easting/northing (the registry's are "
                              "westing/southing)\n");
    const SRun info = Kvcart(dir, {"info", "--compatible-reading", "@lo15.prj"});
    EXPECT_TRUE(kvtest::Contains(info.out, "Warning:       Transverse_Mercator_South_Orientated read as plain"));
    EXPECT_TRUE(kvtest::Contains(info.out, "Reading:       compatible"));

    // A method the library lacks: the file and the reason, exit status 2.
    kvtest::WriteFile(dir.File("parcels.prj"),
                      "PROJCS[\"World_Aitoff\",GEOGCS[\"GCS_WGS_1984\",DATUM[\"D_WGS_1984\","
                      "SPHEROID[\"WGS_1984\",6378137.0,298.257223563]],PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\","
                      "0.0174532925199433]],PROJECTION[\"Aitoff\"],PARAMETER[\"False_Easting\",0.0],"
                      "PARAMETER[\"False_Northing\",0.0],PARAMETER[\"Central_Meridian\",0.0],UNIT[\"Meter\",1.0]]");
    const SRun refused = Kvcart(dir, {"transform", "LONG/LAT", "@parcels.prj"}, std::string("1 1\n"));
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.out, "");
    EXPECT_EQ(refused.err.substr(0, refused.err.find('\n')),
              "kvcart: parcels.prj: projection \"Aitoff\" is not supported");
}

// GDAL's .prj of EPSG:3857 (OGC WKT 1 with its spherical PROJ4 EXTENSION): Web
// Mercator by the registry's reading (PROJ: cs2cs +proj=webmerc), the Mercator of
// its SPHEROID with the warning by the established one (PROJ: +proj=merc); a pole
// lies outside the map.
TEST(Cli, WebMercatorPrjFileByBothReadings)
{
    const kvtest::TempDir dir;
    kvtest::WriteFile(
        dir.File("3857.prj"),
        "PROJCS[\"WGS 84 / Pseudo-Mercator\",GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\","
        "6378137,298.257223563]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],"
        "PROJECTION[\"Mercator_1SP\"],PARAMETER[\"central_meridian\",0],PARAMETER[\"scale_factor\",1],"
        "PARAMETER[\"false_easting\",0],PARAMETER[\"false_northing\",0],UNIT[\"metre\",1],AXIS["
        "\"Easting\",EAST],AXIS[\"Northing\",NORTH],EXTENSION[\"PROJ4\",\"+proj=merc +a=6378137 "
        "+b=6378137 +lat_ts=0 +lon_0=0 +x_0=0 +y_0=0 +k=1 +units=m +nadgrids=@null +wktext +no_defs\"]]\n");
    const SRun epsg = Kvcart(dir, {"transform", "LONG/LAT", "@3857.prj"}, std::string("-70 -34 Chile\n0 90\n"));
    EXPECT_EQ(epsg.status, 1);
    EXPECT_EQ(epsg.out, "-7792364.3555 -4028802.0261 Chile\n* *\n");
    EXPECT_TRUE(kvtest::Contains(epsg.err, "stdin:2: the point cannot be converted"));
    const SRun compatible =
        Kvcart(dir, {"transform", "--compatible-reading", "LONG/LAT", "@3857.prj"}, std::string("-70 -34\n"));
    EXPECT_EQ(compatible.status, 0);
    EXPECT_EQ(compatible.out, "-7792364.3555 -4004909.1095\n");
    EXPECT_TRUE(kvtest::Contains(compatible.err, "the EPSG reading gives Web Mercator"));
    const SRun proj = Kvcart(dir, {"proj4", "@3857.prj"});
    EXPECT_EQ(proj.out, "+proj=webmerc +lat_0=0 +lon_0=0 +x_0=0 +y_0=0 +a=6378137 +rf=298.257223563 +units=m "
                        "+no_defs +type=crs\n");
}

TEST(Cli, Proj4WritesWhatProjReadsAsTheSameSystem)
{
    const kvtest::TempDir dir;
    // Swiss LV03 in the catalogue: Hotine variant B, no grid angle. PROJ takes
    // the centre as +lonc; the established text's +lon_0 and +gamma=-1e-35 put
    // LV95's grid elsewhere. Its datum, CH1903, has the registry's shift
    // (EPSG:1766, CH1903 to WGS 84 (2)), as cs2cs applies it for EPSG:21781.
    const SRun proj = Kvcart(dir, {"proj4", "Swiss LV03"});
    EXPECT_EQ(proj.status, 0);
    EXPECT_EQ(proj.out, "+proj=omerc +lat_0=46.95240555555556 +lonc=7.439583333333333 +alpha=90 +k=1 +x_0=600000 "
                        "+y_0=200000 +a=6377397.155 +rf=299.1528128 +towgs84=674.374,15.056,405.346,0,0,0,0 "
                        "+units=m +no_defs +type=crs\n");
    const SRun legacy = Kvcart(dir, {"proj4", "--legacy", "Swiss LV03"});
    EXPECT_EQ(legacy.status, 0);
    EXPECT_TRUE(kvtest::Contains(legacy.out, "+lon_0=7.439583333333333 +alpha=90 +gamma=-1e-35"));
    EXPECT_TRUE(kvtest::Contains(legacy.out, "no_defs <>"));
    const SRun local = Kvcart(dir, {"proj4", "NON-UTM"});
    EXPECT_EQ(local.status, 1);
    EXPECT_TRUE(kvtest::Contains(local.err, "has no PROJ string"));
}

namespace {

// The numbers of a line read back in the C locale, "* *" giving none.
std::vector<double> Numbers(const std::string& line)
{
    std::vector<double> values;
    std::istringstream in(line);
    for (double value = 0; in >> value;)
        values.push_back(value);
    return values;
}

} // namespace

// A decimal comma is read where the line's field separator leaves no doubt (a
// semicolon or a tab after the first coordinate) and written back as it came;
// where a comma between digits could be either a decimal comma or a separator,
// the line is refused with the reason instead of read one way or the other.
// Reference: cs2cs EPSG:4326 EPSG:32632 on 47.5 9.5, 47.5 9, -0.5 9.5.
TEST(Cli, DecimalCommasAreReadWhereCertainAndRefusedWhereNot)
{
    kvtest::TempDir dir;
    const std::string input = "9,5;47,5;Zurich\n"
                              "9,5\t47,5\tZurich\n"
                              "9 ; 47,5 ; 100,25\n"
                              "9,5;-0,5\n"
                              "9.5;47.5;Zurich\n"
                              "9.5,47.5,Zurich\n"
                              "9.5\t47.5 Zurich lake\n"
                              "9,5 47,5\n"
                              "9.5 47,5 Zurich\n"
                              "9.5 47.5 100,5\n"
                              "9 47,100\n"
                              "9,5 Zurich\n"
                              "9.5\t47.5\t1,234\tZurich\n"
                              "9,5;47.5;Zurich\n";
    const SRun run = Kvcart(dir, {"transform", "LONG/LAT", "UTM-32"}, input);
    EXPECT_EQ(run.status, 1);
    const std::vector<std::string> lines = run.OutLines();
    ASSERT_EQ(lines.size(), 14u) << run.out;
    EXPECT_EQ(lines[0], "537656,6740;5260850,8753;Zurich");
    EXPECT_EQ(lines[1], "537656,6740\t5260850,8753\tZurich");
    EXPECT_EQ(lines[2], "500000,0000 ; 5260729,7331 ; 100,2500");
    EXPECT_EQ(lines[3], "555636,0880;-55267,1556");
    EXPECT_EQ(lines[4], "537656.6740;5260850.8753;Zurich");
    EXPECT_EQ(lines[5], "537656.6740,5260850.8753,Zurich");
    EXPECT_EQ(lines[6], "537656.6740\t5260850.8753 Zurich lake");
    EXPECT_EQ(lines[7], "* *");
    EXPECT_EQ(lines[8], "* * Zurich");
    EXPECT_EQ(lines[9], "* *");
    EXPECT_EQ(lines[10], "* *");
    EXPECT_EQ(lines[11], "* *");
    EXPECT_EQ(lines[12], "* *\tZurich");
    EXPECT_EQ(lines[13], "* *;Zurich");
    for (const char* message : {"stdin:8: decimal commas and a comma separator cannot both be read: '9,5'",
                                "stdin:9: decimal commas and a comma separator cannot both be read: '47,5'",
                                "stdin:10: decimal commas and a comma separator cannot both be read: '100,5'",
                                "stdin:11: decimal commas and a comma separator cannot both be read: '47,100'",
                                "stdin:12: decimal commas and a comma separator cannot both be read: '9,5'",
                                "stdin:13: decimal points and decimal commas cannot both be read: '47.5' and '1,234'",
                                "stdin:14: decimal points and decimal commas cannot both be read: '47.5' and '9,5'",
                                "7 lines could not be converted"})
        EXPECT_TRUE(kvtest::Contains(run.err, message));
    EXPECT_TRUE(kvtest::Contains(run.err, "';' or a tab"));

    // Back again, in the same form.
    const SRun back = Kvcart(dir, {"transform", "LONG/LAT", "UTM-32", "--inverse", "--precision", "6"},
                             std::string("537656,6740;5260850,8753;Zurich\n"));
    EXPECT_EQ(back.status, 0) << back.err;
    EXPECT_EQ(back.out, "9,500000;47,500000;Zurich\n");
}

// Whatever cannot be read keeps the text after its coordinates, as a point
// outside the domain does, so that names and identifiers stay with their line.
TEST(Cli, UnreadableLinesKeepTheirTrailingText)
{
    kvtest::TempDir dir;
    const std::string input = "abc,51.5,Trafalgar Square\n"
                              "9.5 1e400 Zurich lake\n"
                              "9.5 47.5 1e400 Zurich\n"
                              "nan 47.5 Zurich\n"
                              "9.5 47.5x Zurich\n"
                              "9.5\n";
    const SRun run = Kvcart(dir, {"transform", "LONG/LAT", "UTM-32"}, input);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "* *,Trafalgar Square\n* * Zurich lake\n* * Zurich\n* * Zurich\n* * Zurich\n* *\n");
    EXPECT_TRUE(kvtest::Contains(run.err, "stdin:3: number out of range '1e400'"));
}

TEST(Cli, ByteOrderMarksAndHeaderLines)
{
    kvtest::TempDir dir;
    const std::string bom = "\xEF\xBB\xBF";
    const SRun marked = Kvcart(dir, {"transform", "LONG/LAT", "UTM-32"}, bom + "9.5 47.5\n");
    EXPECT_EQ(marked.status, 0) << marked.err;
    EXPECT_EQ(marked.out, "537656.6740 5260850.8753\n");
    EXPECT_EQ(marked.err, "");

    // A header is named as a likely one, and --skip-header copies it through,
    // in every input.
    const std::string csv = bom + "lon;lat;name\r\n9,5;47,5;Zurich\r\n";
    const SRun header = Kvcart(dir, {"transform", "LONG/LAT", "UTM-32"}, csv);
    EXPECT_EQ(header.status, 1);
    EXPECT_EQ(header.out, "* *;name\r\n537656,6740;5260850,8753;Zurich\r\n");
    EXPECT_TRUE(
        kvtest::Contains(header.err, "stdin:1: line 1 holds no coordinates; if it is a header, use --skip-header 1"));
    kvtest::WriteFile(dir.File("a.csv"), csv);
    const SRun skipped = Kvcart(dir, {"transform", "LONG/LAT", "UTM-32", "--skip-header", "1", "a.csv", "-"}, csv);
    EXPECT_EQ(skipped.status, 0) << skipped.err;
    EXPECT_EQ(skipped.out, "lon;lat;name\r\n537656,6740;5260850,8753;Zurich\r\n"
                           "lon;lat;name\r\n537656,6740;5260850,8753;Zurich\r\n");

    // The first line with something to read is the one named; later lines
    // without numbers are plain errors.
    const SRun late = Kvcart(dir, {"transform", "LONG/LAT", "UTM-32"}, std::string("# exported\nX Y\n9.5 47.5\nX Y\n"));
    EXPECT_EQ(late.OutLines(), (std::vector<std::string>{"# exported", "* *", "537656.6740 5260850.8753", "* *"}));
    EXPECT_TRUE(
        kvtest::Contains(late.err, "stdin:2: line 2 holds no coordinates; if it is a header, use --skip-header 2"));
    EXPECT_TRUE(kvtest::Contains(late.err, "stdin:4: expected a coordinate, found 'X'"));
    EXPECT_FALSE(kvtest::Contains(late.err, "--skip-header 4"));

    const SRun more = Kvcart(dir, {"transform", "LONG/LAT", "UTM-32", "--skip-header", "5"}, std::string("a\nb\n"));
    EXPECT_EQ(more.status, 0);
    EXPECT_EQ(more.out, "a\nb\n");
    for (const char* wrong : {"x", "-1", "1.5"}) {
        const SRun bad = Kvcart(dir, {"transform", "LONG/LAT", "UTM-32", "--skip-header", wrong}, csv);
        EXPECT_EQ(bad.status, 2) << wrong;
        EXPECT_TRUE(kvtest::Contains(bad.err, "--skip-header takes a whole number"));
    }
}

// Messages quote what they could not read with control bytes and invalid UTF-8
// escaped, so that they neither hide nor act on the terminal; a NUL byte does
// not end them.
TEST(Cli, MessagesEscapeControlBytesAndInvalidUtf8)
{
    kvtest::TempDir dir;
    const std::string input = "ab\x01"
                              "c 47.5\n"
                              "9.5 47.5" +
                              std::string(1, '\0') +
                              "x tail\n"
                              "\x1b[31mred 47.5\n"
                              "\xff\xfe 47.5\n"
                              "Z\xc3\xbcrich 47.5\n"
                              "\xc3 47.5\n"
                              "\xed\xa0\x80 47.5\n"
                              "\xc2\x9b"
                              "2J 47.5\n"
                              "back\\slash 47.5\n";
    const SRun run = Kvcart(dir, {"transform", "LONG/LAT", "UTM-32"}, input);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.OutLines().size(), 9u);
    for (const char* message :
         {"stdin:1: expected a coordinate, found 'ab\\x01c'\n", "stdin:2: expected a number, found '47.5\\x00x'\n",
          "stdin:3: expected a coordinate, found '\\x1b[31mred'\n",
          "stdin:4: expected a coordinate, found '\\xff\\xfe'\n",
          "stdin:5: expected a coordinate, found 'Z\xc3\xbcrich'\n", "stdin:6: expected a coordinate, found '\\xc3'\n",
          "stdin:7: expected a coordinate, found '\\xed\\xa0\\x80'\n",
          "stdin:8: expected a coordinate, found '\\xc2\\x9b2J'\n",
          "stdin:9: expected a coordinate, found 'back\\\\slash'\n"})
        EXPECT_TRUE(kvtest::Contains(run.err, message));
    for (size_t i = 0; i < run.err.size(); ++i) {
        const unsigned char c = static_cast<unsigned char>(run.err[i]);
        const bool umlaut =
            run.err.compare(i, 2, "\xc3\xbc") == 0 || (i > 0 && run.err.compare(i - 1, 2, "\xc3\xbc") == 0);
        EXPECT_TRUE((c >= 0x20 && c < 0x7f) || c == '\n' || umlaut) << "byte " << i << ": " << static_cast<int>(c);
    }
    const SRun missing = Kvcart(dir, {"transform", "LONG/LAT", "UTM-32", "no\x1bname.txt"});
    EXPECT_TRUE(kvtest::Contains(missing.err, "cannot open 'no\\x1bname.txt'"));
}

// Projected coordinates are read and written in the system's own linear unit,
// US survey feet for the NAD27 state planes of the catalogue and for a WKT
// whose UNIT says so; --metres keeps the engines' metres. Heights stay in
// metres, as cs2cs keeps them.
// Reference (LONG/LAT read as NAD27 with --bypass-datum, since the catalogue
// name's NAD27 shift makes it WGS 84 otherwise):
// cs2cs EPSG:4267 EPSG:26729 on 32.5 -85.5 100 gives 602772.3875
// 727652.6721 100; cs2cs EPSG:26729 EPSG:26730 on that point gives 1116669.7427
// 915089.5282; cs2cs EPSG:4269 EPSG:2264 on 35.5 -79 gives 2000000.0000
// 636902.6808.
TEST(Cli, ProjectedCoordinatesAreInTheSystemsOwnUnit)
{
    kvtest::TempDir dir;
    const auto expectNear = [](const std::string& line, std::vector<double> expected, double tolerance) {
        const std::vector<double> values = Numbers(line);
        ASSERT_EQ(values.size(), expected.size()) << line;
        for (size_t i = 0; i < values.size(); ++i)
            EXPECT_NEAR(values[i], expected[i], tolerance) << line;
    };
    const SRun feet = Kvcart(dir, {"transform", "LONG/LAT", "NAD27 / Alabama East", "--bypass-datum"},
                             std::string("-85.5 32.5 100\n"));
    EXPECT_EQ(feet.status, 0) << feet.err;
    expectNear(feet.out, {602772.3875, 727652.6721, 100.0}, 2e-4);
    const SRun metres = Kvcart(dir, {"transform", "LONG/LAT", "NAD27 / Alabama East", "--metres", "--bypass-datum"},
                               std::string("-85.5 32.5 100\n"));
    expectNear(metres.out, {602772.3875 * 1200 / 3937, 727652.6721 * 1200 / 3937, 100.0}, 2e-4);
    const SRun back = Kvcart(
        dir, {"transform", "LONG/LAT", "NAD27 / Alabama East", "--inverse", "--precision", "10", "--bypass-datum"},
        std::string("602772.3875 727652.6721\n"));
    expectNear(back.out, {-85.5, 32.5}, 1e-9);
    const SRun across = Kvcart(dir, {"transform", "NAD27 / Alabama East", "NAD27 / Alabama West"},
                               std::string("602772.3875 727652.6721\n"));
    expectNear(across.out, {1116669.7427, 915089.5282}, 2e-4);

    kvtest::WriteFile(dir.File("nc.prj"),
                      "PROJCS[\"NAD83 / North Carolina (ftUS)\",GEOGCS[\"NAD83\",DATUM[\"North_American_Datum_1983\","
                      "SPHEROID[\"GRS 1980\",6378137,298.257222101]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\","
                      "0.0174532925199433]],PROJECTION[\"Lambert_Conformal_Conic_2SP\"],PARAMETER[\"latitude_of_"
                      "origin\",33.75],PARAMETER[\"central_meridian\",-79],PARAMETER[\"standard_parallel_1\","
                      "36.1666666666667],PARAMETER[\"standard_parallel_2\",34.3333333333333],PARAMETER[\"false_"
                      "easting\",2000000],PARAMETER[\"false_northing\",0],UNIT[\"US survey foot\",0.3048006096012192],"
                      "AXIS[\"Easting\",EAST],AXIS[\"Northing\",NORTH]]");
    const SRun wkt = Kvcart(dir, {"transform", "LONG/LAT", "@nc.prj"}, std::string("-79 35.5\n"));
    EXPECT_EQ(wkt.status, 0) << wkt.err;
    expectNear(wkt.out, {2000000.0, 636902.6808}, 2e-4);
    // A metre system is untouched by the option.
    EXPECT_EQ(Kvcart(dir, {"transform", "LONG/LAT", "UTM-32", "--metres"}, std::string("9.5 47.5\n")).out,
              "537656.6740 5260850.8753\n");
}

// A line too long to hold is an error with its line number; the lines around
// it are converted and nothing is dropped, however little memory there is.
TEST(Cli, LinesTooLongToHoldAreMarkedAndTheRestConverted)
{
    kvtest::TempDir dir;
    const std::string point = "9.5 47.5 Zurich\n";
    const std::string converted = "537656.6740 5260850.8753 Zurich";
    std::string fits = "9.5 47.5 ";
    fits.resize(1 << 20, 'a');
    kvtest::WriteFile(dir.File("long.txt"), point + std::string((1 << 20) + 1, '1') + "\n" + fits + "\n" + point);
    const SRun run = Kvcart(dir, {"transform", "LONG/LAT", "UTM-32", "long.txt"});
    EXPECT_EQ(run.status, 1);
    const std::vector<std::string> lines = run.OutLines();
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], converted);
    EXPECT_EQ(lines[1], "* *");
    EXPECT_EQ(lines[2].substr(0, 26), "537656.6740 5260850.8753 a");
    EXPECT_EQ(lines[2].size(), (1u << 20) + 16u);
    EXPECT_EQ(lines[3], converted);
    EXPECT_TRUE(kvtest::Contains(run.err, "long.txt:2: line 2 is longer than 1048576 bytes"));
    EXPECT_TRUE(kvtest::Contains(run.err, "1 line could not be converted"));

    // A 60 MB line from a pipe under a 30 MB and a 100 MB address-space limit:
    // more than the program may hold. AddressSanitizer reserves far more address
    // space than any such limit, so there the same input runs without one.
#if defined(__SANITIZE_ADDRESS__)
    const bool limited = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
    const bool limited = false;
#else
    const bool limited = true;
#endif
#else
    const bool limited = true;
#endif
    kvtest::WriteFile(dir.File("generate.sh"), "printf '9.5 47.5 Zurich\\n'; head -c 60000000 /dev/zero | tr '\\0' 1; "
                                               "printf '\\n9.5 47.5 Zurich\\n'\n");
    for (const char* limit : {"30000", "100000"}) {
        const std::string pipe = "sh generate.sh | \"$0\" transform LONG/LAT UTM-32";
        const SRun big = Shell(dir, "sh -c '" + (limited ? "ulimit -v " + std::string(limit) + "; " : std::string()) +
                                        pipe + "' " + Quote(KVCART_CLI));
        EXPECT_EQ(big.status, 1) << limit << "\n" << big.err;
        EXPECT_EQ(big.out, converted + "\n* *\n" + converted + "\n") << limit;
        EXPECT_TRUE(kvtest::Contains(big.err, "stdin:2: line 2 is longer than 1048576 bytes"));
    }
}

namespace {

// A stream that gives its text and then fails to read, as a failing disk does.
struct SFailingSource
{
    std::string text;
    size_t at = 0;
};

ssize_t ReadThenFail(void* cookie, char* buffer, size_t size)
{
    SFailingSource* source = static_cast<SFailingSource*>(cookie);
    if (source->at == source->text.size()) {
        errno = EIO;
        return -1;
    }
    const size_t n = std::min(size, source->text.size() - source->at);
    std::memcpy(buffer, source->text.data() + source->at, n);
    source->at += n;
    return static_cast<ssize_t>(n);
}

} // namespace

// A read error after some lines: those lines are written first, then the
// error with where it happened.
TEST(PointStream, AReadErrorComesAfterTheLinesReadBeforeIt)
{
    kvtest::ShippedCatalogue();
    CKvDatumConverter converter("LONG/LAT", "UTM-32");
    converter.SetConversionType(CKvDatumConverter::eGeoToProj);
    CKvPointStream stream(converter, false, 4, 4);
    SFailingSource source;
    source.text = "9.5 47.5\n9.5 47.5 Zurich\n9.5 47.";
    cookie_io_functions_t functions = {ReadThenFail, nullptr, nullptr, nullptr};
    FILE* in = fopencookie(&source, "r", functions);
    ASSERT_NE(in, nullptr);
    char* text = nullptr;
    size_t size = 0;
    FILE* both = open_memstream(&text, &size);
    ASSERT_NE(both, nullptr);
    EXPECT_EQ(stream.Run(in, "disk.txt", both, both), -1);
    std::fclose(in);
    std::fclose(both);
    const std::string written(text, size);
    std::free(text);
    EXPECT_EQ(written, "537656.6740 5260850.8753\n537656.6740 5260850.8753 Zurich\n"
                       "kvcart: disk.txt: cannot read after line 2: Input/output error\n");
}

// The unit factors apply to projected input and output alone, and the line
// converter reads the same rules as the program.
TEST(PointStream, UnitsApplyToProjectedSidesOnly)
{
    kvtest::ShippedCatalogue();
    CKvDatumConverter converter("LONG/LAT", "UTM-32");
    converter.SetConversionType(CKvDatumConverter::eGeoToProj);
    CKvPointStream plain(converter, false, 6, 4), forward(converter, false, 6, 4);
    forward.SetUnits(1.0, 0.5);
    std::string metres, halves, problem;
    const std::string line = "9,5;47,5;100";
    EXPECT_TRUE(plain.ConvertLine(line.data(), line.size(), metres, problem)) << problem;
    EXPECT_TRUE(forward.ConvertLine(line.data(), line.size(), halves, problem)) << problem;
    std::replace(metres.begin(), metres.end(), ',', '.');
    std::replace(halves.begin(), halves.end(), ',', '.');
    std::replace(metres.begin(), metres.end(), ';', ' ');
    std::replace(halves.begin(), halves.end(), ';', ' ');
    const std::vector<double> m = Numbers(metres), h = Numbers(halves);
    ASSERT_EQ(m.size(), 3u);
    ASSERT_EQ(h.size(), 3u);
    EXPECT_NEAR(h[0], 2 * m[0], 2e-6);
    EXPECT_NEAR(h[1], 2 * m[1], 2e-6);
    EXPECT_EQ(h[2], 100.0); // a height is in metres
    // The inverse reads its grid input in the unit, and writes degrees.
    CKvPointStream inverse(converter, true, 6, 4);
    inverse.SetUnits(1.0, 0.5);
    const std::string grid = "1075313.348 10521701.7506";
    std::string out;
    EXPECT_TRUE(inverse.ConvertLine(grid.data(), grid.size(), out, problem)) << problem;
    EXPECT_EQ(out, "9.500000 47.500000");
}

// The unit the program applies is the one the library reports as the grid's own
// (GetLinearUnit): a catalogue definition with its false origin in US survey
// feet is a system in feet, as EPSG defines the NAD27 state planes; the NAD83
// ones of the catalogue are in metres. GetUnit keeps describing the engine's
// own WKT, in metres.
TEST(Cli, TheCatalogueReportsTheUnitOfItsStatePlanes)
{
    kvtest::ShippedCatalogue();
    double factor = 0.0;
    char name[CKvProjectionInfo::UnitNameSize] = "";
    const CKvMapProjection feet("NAD27 / Alabama East");
    ASSERT_NE(feet.GetProjection(), nullptr);
    EXPECT_EQ(feet.GetLinearUnit(), 1200.0 / 3937.0);
    EXPECT_TRUE(feet.GetUnit(CKvMapProjection::eProjUnit, &factor, name));
    EXPECT_STREQ(name, "Meter");
    EXPECT_EQ(factor, 1.0);
    const CKvMapProjection copy(feet);
    EXPECT_EQ(copy.GetLinearUnit(), 1200.0 / 3937.0);
    const CKvMapProjection metres("NAD83 / Alabama East");
    ASSERT_NE(metres.GetProjection(), nullptr);
    EXPECT_EQ(metres.GetLinearUnit(), 1.0);
    EXPECT_EQ(CKvMapProjection("LONG/LAT").GetLinearUnit(), 0.0);

    // The same through the C interface; geographical systems have none.
    const struct
    {
        const char* system;
        double factor;
        int status;
    } cases[] = {{"NAD27 / Alabama East", 1200.0 / 3937.0, 0},
                 {"NAD83 / Alabama East", 1.0, 0},
                 {"LONG/LAT", 1.0, -1},
                 {"GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\",6378137,298.257223563]],"
                  "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]]",
                  1.0, -1}};
    for (const auto& c : cases) {
        KVMP_HANDLE handle = nullptr;
        int status = 1;
        C_KVMP_CREATE(c.system, &handle, &status);
        ASSERT_EQ(status, 0) << c.system;
        factor = 0.0;
        C_KVMP_GETLINEARUNIT(handle, &factor, &status);
        EXPECT_EQ(status, c.status) << c.system;
        EXPECT_EQ(factor, c.factor) << c.system;
        C_KVMP_DESTROY(&handle, &status);
    }
    int status = 1;
    C_KVMP_GETLINEARUNIT(nullptr, &factor, &status);
    EXPECT_EQ(status, -1);
}

TEST(Cli, NamesInAnyCaseSuggestionsAndListGrep)
{
    kvtest::TempDir dir;
    kvtest::ShippedCatalogue();
    // A name in another case is the catalogue's system, in the grid's own unit.
    for (const auto& names :
         {std::make_pair("UTM-32", "utm-32"), std::make_pair("NAD27 / Alabama East", "nad27 / ALABAMA east")}) {
        const SRun exact = Kvcart(dir, {"transform", "LONG/LAT", names.first}, std::string("-85.5 32.5\n9.5 47.5\n"));
        const SRun folded = Kvcart(dir, {"transform", "LONG/LAT", names.second}, std::string("-85.5 32.5\n9.5 47.5\n"));
        EXPECT_EQ(folded.status, 0) << folded.err;
        EXPECT_EQ(folded.out, exact.out) << names.second;
        EXPECT_EQ(Kvcart(dir, {"proj4", names.second}).out, Kvcart(dir, {"proj4", names.first}).out) << names.second;
    }
    EXPECT_EQ(Kvcart(dir, {"info", "rd new"}).out.rfind("Name:          RD New\n", 0), 0u);

    // An unknown name ends with the closest names; nothing close, nothing suggested.
    const SRun typo = Kvcart(dir, {"transform", "LONG/LAT", "Britsh National Grid"}, std::string("0 50\n"));
    EXPECT_EQ(typo.status, 2);
    EXPECT_EQ(typo.out, "");
    const int bng = CKvMapProjection::FindMapProjectionDefinition("British National Grid")->GetEpsgCode();
    EXPECT_TRUE(
        kvtest::Contains(typo.err, "kvcart: unknown coordinate system 'Britsh National Grid' ('kvcart list' shows the "
                                   "catalogue); did you mean \"British National Grid\"" +
                                       (bng > 0 ? " (EPSG:" + std::to_string(bng) + ")" : std::string()) + "?\n"));
    const SRun nowhere = Kvcart(dir, {"info", "Nowhere Grid"});
    EXPECT_EQ(nowhere.status, 2);
    EXPECT_FALSE(kvtest::Contains(nowhere.err, "did you mean"));

    // Two of the user's names that differ in case alone (UTM zones 32 and 33 by
    // other names, with their codes): a third spelling is neither.
    const auto zone = [](const char* name, int centre, int code) {
        return std::string("  SECTION UTM_PROJECTION\n    Projection_Name \"") + name +
               "\"\n    Branch_Name \"Projects\"\n    Ellipsoid \"WE\"\n    Scale 0.9996\n    Centre " +
               std::to_string(centre) + "\n    Origin_Latitude 0\n    Feast 500000\n    Fnorth 0\n    EPSG_Code " +
               std::to_string(code) + "\n  END_SECTION\n";
    };
    ASSERT_EQ(std::system(("mkdir -p " + Quote(dir.Path() + "config/kvcart")).c_str()), 0);
    kvtest::WriteFile(dir.File("config/kvcart/custom_projection.gxr"),
                      "TARGET MAP_PROJECTION_DEFINITION\n" + zone("Site grid", 9, 32632) +
                          zone("SITE GRID", 15, 32633) + "END_TARGET\n");
    const SRun ambiguous = Kvcart(dir, {"transform", "LONG/LAT", "site grid"}, std::string("9 0\n"));
    EXPECT_EQ(ambiguous.status, 2);
    EXPECT_TRUE(kvtest::Contains(ambiguous.err,
                                 "kvcart: ambiguous coordinate system 'site grid': the catalogue holds \"Site grid\" "
                                 "and \"SITE GRID\", which differ only in case"));
    EXPECT_EQ(Kvcart(dir, {"transform", "LONG/LAT", "SITE GRID"}, std::string("15 0\n")).out, "500000.0000 0.0000\n");

    // --grep: a piece of a name or of its code, in either case; the code ends the line.
    // The registry's systems that match follow, code first.
    const SRun rd = Kvcart(dir, {"list", "--grep", "rd NEW"});
    ASSERT_EQ(rd.OutLines().size(), 2u) << rd.out;
    EXPECT_EQ(rd.out.rfind("RD New ", 0), 0u);
    EXPECT_EQ(rd.OutLines()[1].rfind("EPSG:28992 ", 0), 0u) << rd.out;
    const SRun site = Kvcart(dir, {"list", "--grep", "site"});
    EXPECT_EQ(site.out,
              "Site grid                                      Transverse mercator                Projects [user]  "
              "EPSG:32632\n"
              "SITE GRID                                      Transverse mercator                Projects [user]  "
              "EPSG:32633\n")
        << site.err;
    for (const char* pattern : {"32632", "epsg:32632", "EPSG:32632"}) {
        const SRun found = Kvcart(dir, {"list", "--grep", pattern});
        EXPECT_EQ(found.status, 0);
        EXPECT_TRUE(kvtest::Contains(found.out, "Site grid ")) << pattern;
        EXPECT_FALSE(kvtest::Contains(found.out, "SITE GRID ")) << pattern;
        bool registry = false;
        for (const std::string& line : found.OutLines()) {
            if (line.rfind("EPSG:32632 ", 0) == 0)
                registry = true; // WGS 84 / UTM zone 32N of the registry
            else
                EXPECT_EQ(line.substr(line.size() - 10), "EPSG:32632") << line;
        }
        EXPECT_TRUE(registry) << found.out;
    }
    EXPECT_TRUE(kvtest::Contains(Kvcart(dir, {"info", "SITE GRID"}).out, "\nEPSG code:     32633\n"));
    EXPECT_FALSE(kvtest::Contains(Kvcart(dir, {"info", "UTM-32"}).out, "EPSG code:     32633"));
    const SRun none = Kvcart(dir, {"list", "--grep", "Britsh"});
    EXPECT_EQ(none.out, "");
    EXPECT_TRUE(
        kvtest::Contains(none.err, "kvcart: no definition matches 'Britsh'; did you mean \"British National Grid\""));
    // The plain listing keeps its three columns.
    for (const std::string& line : Kvcart(dir, {"list"}).OutLines())
        EXPECT_FALSE(kvtest::Contains(line, "EPSG:"));
}

// EPSG codes on the command line: the README's sample to the British National
// Grid gives cs2cs's figures (`cs2cs EPSG:4326 EPSG:27700`, Helmert 1314) to the
// centimetre; info names the registry's system, area and shift; a point far
// outside the area of use is pointed out once.
TEST(Cli, EpsgCodesGiveCs2csFiguresAndTheirAreaOfUse)
{
    const kvtest::TempDir dir;
    const std::string places = "-5.71500 50.06570 Land's End\n-3.18830 55.95330 Edinburgh\n"
                               "-6.38900 58.20900 Stornoway\n";
    const SRun bng = Kvcart(dir, {"transform", "EPSG:4326", "epsg:27700", "--precision", "3"}, &places);
    ASSERT_EQ(bng.status, 0) << bng.err;
    const std::vector<std::string> lines = bng.OutLines();
    ASSERT_EQ(lines.size(), 3u);
    const double expected[3][2] = {{134240.827, 25011.461}, {325897.218, 674001.202}, {142287.093, 932868.456}};
    for (int i = 0; i < 3; ++i) {
        double x = 0, y = 0;
        ASSERT_EQ(std::sscanf(lines[i].c_str(), "%lf %lf", &x, &y), 2) << lines[i];
        EXPECT_NEAR(x, expected[i][0], 0.005) << lines[i];
        EXPECT_NEAR(y, expected[i][1], 0.005) << lines[i];
    }
    EXPECT_EQ(bng.err, "");

    const SRun info = Kvcart(dir, {"info", "EPSG:27700"});
    ASSERT_EQ(info.status, 0) << info.err;
    EXPECT_TRUE(kvtest::Contains(info.out, "Registry:      EPSG:27700, OSGB36 / British National Grid"));
    EXPECT_TRUE(kvtest::Contains(info.out, "Area of use:   longitude -9 to 2.01, latitude 49.75 to 61.01"));
    EXPECT_TRUE(kvtest::Contains(info.out, "Shift source:  EPSG:1314 OSGB36 to WGS 84 (6), accuracy 2 m"));
    EXPECT_TRUE(kvtest::Contains(info.out, "TOWGS84[446.448"));

    // Paris and New York in the British grid: the first is pointed out, with its line.
    const std::string far = "-3 55 inside\n2.35 48.85 Paris\n-74 40.7 New York\n";
    const SRun outside = Kvcart(dir, {"transform", "EPSG:4326", "EPSG:27700"}, &far);
    EXPECT_EQ(outside.status, 0);
    EXPECT_EQ(outside.err,
              "kvcart: warning: stdin:3: the point lies far outside the area of use of EPSG:27700, OSGB36 / British "
              "National Grid (-9 to 2.01 E, 49.75 to 61.01 N) (later points are not checked)\n");
    // ... also on the way back, on the grid's side.
    const std::string grid = "400000 500000\n3000000 500000\n";
    const SRun back = Kvcart(dir, {"transform", "EPSG:27700", "EPSG:4326"}, &grid);
    EXPECT_TRUE(kvtest::Contains(back.err, "stdin:2: the point lies far outside"));

    // list --grep finds the registry's systems by name and by code.
    const SRun grep = Kvcart(dir, {"list", "--grep", "rd new"});
    EXPECT_TRUE(kvtest::Contains(grep.out, "EPSG:28992"));
    EXPECT_TRUE(kvtest::Contains(grep.out, "Amersfoort / RD New"));
    const SRun byCode = Kvcart(dir, {"list", "--grep", "esri:10200"});
    EXPECT_TRUE(
        kvtest::Contains(byCode.out, "ESRI:102001                                    Canada_Albers_Equal_Area_Conic"));

    const SRun unknown = Kvcart(dir, {"info", "EPSG:99999"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_TRUE(kvtest::Contains(unknown.err, "EPSG:99999"));
}

// The zone of a point, and a system written as WKT alone on a line (ESRI and
// OGC form). Coordinates: cs2cs EPSG:4326 EPSG:32734 on 33.9249 S 18.4241 E.
TEST(Cli, ZonesOfPointsAndWktOfSystems)
{
    const kvtest::TempDir dir;
    const std::pair<std::vector<std::string>, const char*> zones[] = {
        {{"zone", "18.4241", "-33.9249"}, "UTM-34S EPSG:32734\n"},
        {{"zone", "5", "84.5"}, "UPS North EPSG:32661\n"},
        {{"zone", "5", "-80"}, "UTM-31S EPSG:32731\n"},
        {{"zone", "540", "10"}, "UTM-1 EPSG:32601\n"},
        {{"zone", "4", "60"}, "UTM-32 EPSG:32632\n"},
        {{"zone", "9.5"}, "UTM-32\n"}};
    for (const auto& z : zones) {
        const SRun run = Kvcart(dir, z.first);
        EXPECT_EQ(run.status, 0) << z.second << run.err;
        EXPECT_EQ(run.out, z.second);
    }
    const SRun beyond = Kvcart(dir, {"zone", "5", "90.5"});
    EXPECT_EQ(beyond.status, 2);
    EXPECT_TRUE(kvtest::Contains(beyond.err, "latitude is beyond 90"));
    EXPECT_EQ(Kvcart(dir, {"zone", "5", "nan"}).status, 2);
    EXPECT_EQ(Kvcart(dir, {"zone", "5", "1", "2"}).status, 2);

    const std::string cape = "18.4241 -33.9249 Cape Town\n";
    const SRun south = Kvcart(dir, {"transform", "LONG/LAT", "UTM-34S", "--precision", "4"}, cape);
    EXPECT_EQ(south.out, "261881.5985 6243182.3545 Cape Town\n") << south.err;

    // The library's own form is the WKT kvcart info shows, on one line.
    const SRun esri = Kvcart(dir, {"wkt", "RD New"});
    ASSERT_EQ(esri.status, 0) << esri.err;
    EXPECT_EQ(esri.out.rfind("PROJCS[\"RD New\",GEOGCS[", 0), 0u) << esri.out;
    EXPECT_TRUE(kvtest::Contains(esri.out, "PROJECTION[\"Double_Stereographic\"]"));
    EXPECT_EQ(esri.out.find('\n'), esri.out.size() - 1);
    EXPECT_EQ(Kvcart(dir, {"wkt", "RD New", "--esri"}).out, esri.out);

    // The OGC form reads back as the same system, datum shift included.
    const SRun ogc = Kvcart(dir, {"wkt", "RD New", "--ogc"});
    ASSERT_EQ(ogc.status, 0) << ogc.err;
    EXPECT_EQ(ogc.out.find('\n'), ogc.out.size() - 1);
    for (const char* node : {"PROJECTION[\"Oblique_Stereographic\"]", "PARAMETER[\"latitude_of_origin\",",
                             "UNIT[\"metre\",1]", "AXIS[\"Easting\",EAST],AXIS[\"Northing\",NORTH]", "TOWGS84["})
        EXPECT_TRUE(kvtest::Contains(ogc.out, node));
    kvtest::WriteFile(dir.File("rd.prj"), ogc.out);
    const std::string amsterdam = "4.9 52.37\n";
    const SRun byName = Kvcart(dir, {"transform", "LONG/LAT", "RD New", "--precision", "6"}, amsterdam);
    const SRun byText = Kvcart(dir, {"transform", "LONG/LAT", "@rd.prj", "--precision", "6"}, amsterdam);
    EXPECT_EQ(byText.out, byName.out) << byText.err;
    EXPECT_EQ(byText.status, 0);

    // A WKT file in, the OGC form out: GDAL's names, the shift kept.
    kvtest::WriteFile(dir.File("bng.prj"), kvtest::kOsgbGrid);
    const SRun file = Kvcart(dir, {"wkt", "@bng.prj", "--ogc"});
    EXPECT_TRUE(kvtest::Contains(file.out, "TOWGS84[446.448,-125.157,542.06,0.15,0.247,0.842,-20.489]"));

    const SRun longLat = Kvcart(dir, {"wkt", "LONG/LAT", "--ogc"});
    EXPECT_EQ(longLat.status, 1);
    EXPECT_EQ(longLat.out, "");
    EXPECT_TRUE(kvtest::Contains(longLat.err, "no datum"));
    const SRun rotated = Kvcart(dir, {"wkt", "COSMO-EU Rotated Pole", "--ogc"});
    EXPECT_EQ(rotated.status, 1);
    EXPECT_TRUE(kvtest::Contains(rotated.err, "rotated longitude/latitude"));
    EXPECT_EQ(Kvcart(dir, {"wkt", "NON-UTM"}).status, 1);
    EXPECT_EQ(Kvcart(dir, {"wkt", "RD New", "--esri", "--ogc"}).status, 2);
    EXPECT_EQ(Kvcart(dir, {"wkt", "Nowhere Grid"}).status, 2);
    EXPECT_EQ(Kvcart(dir, {"wkt", "UTM"}).status, 2);
}
