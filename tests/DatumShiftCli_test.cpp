// kvcart transform, add and info with the datum shifts of catalogue names:
// the program's answers against PROJ through the same transformation
// (tests/data/catalogue_shift_vectors.txt, tools/make_catalogue_shift_vectors.py),
// the convention of a pasted shift, and the warning for a shift that is not known.
#include "ProgramRun.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace {

using kvtest::Kvcart;
using kvtest::SRun;

// The reference rows of one catalogue name: "lon lat" input and "x y" expected.
void References(const std::string& name, std::string& input, std::vector<std::vector<double>>& expected)
{
    std::ifstream in(std::string(KVCART_TEST_DATA_DIR) + "catalogue_shift_vectors.txt");
    for (std::string line; std::getline(in, line);) {
        const std::vector<std::string> f = kvtest::TabFields(line);
        if (line.empty() || line[0] == '#' || f.size() != 7 || f[0] != name)
            continue;
        input += f[3] + " " + f[4] + "\n";
        expected.push_back({std::atof(f[5].c_str()), std::atof(f[6].c_str())});
    }
}

// Each output line's two numbers within tolerance of the expected ones.
void ExpectPoints(const std::string& out, const std::vector<std::vector<double>>& expected, double tolerance)
{
    std::istringstream lines(out);
    size_t i = 0;
    for (std::string line; std::getline(lines, line); ++i) {
        ASSERT_LT(i, expected.size()) << out;
        double x = 0, y = 0;
        ASSERT_EQ(std::sscanf(line.c_str(), "%lf %lf", &x, &y), 2) << line;
        EXPECT_NEAR(x, expected[i][0], tolerance) << line;
        EXPECT_NEAR(y, expected[i][1], tolerance) << line;
    }
    EXPECT_EQ(i, expected.size()) << out;
}

const char kRdWithoutShift[] =
    "PROJCS[\"Amersfoort / RD New\",GEOGCS[\"Amersfoort\",DATUM[\"Amersfoort\",SPHEROID[\"Bessel "
    "1841\",6377397.155,299.1528128]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],"
    "PROJECTION[\"Oblique_Stereographic\"],PARAMETER[\"latitude_of_origin\",52.1561605555556],"
    "PARAMETER[\"central_meridian\",5.38763888888889],PARAMETER[\"scale_factor\",0.9999079],"
    "PARAMETER[\"false_easting\",155000],PARAMETER[\"false_northing\",463000],UNIT[\"metre\",1]]";

// A grid on a local datum that neither the text nor the registry gives a shift for.
std::string LocalDatum()
{
    std::string text = kRdWithoutShift;
    const std::string datum = "DATUM[\"Amersfoort\"";
    return text.replace(text.find(datum), datum.size(), "DATUM[\"Local_Survey_1950\"");
}

} // namespace

// kvcart transform LONG/LAT "British National Grid" is cs2cs EPSG:4326
// EPSG:27700 (Helmert EPSG:1314) to the centimetre; so are the other names.
TEST(DatumShiftCli, CatalogueNamesGiveCs2csAnswers)
{
    kvtest::TempDir dir;
    for (const char* name : {"British National Grid", "RD New", "Lambert-93", "NAD83 / Alabama East",
                             "NAD83 / Hawaii zone 3", "NAD27 / Alabama East", "NAD27 / Alaska zone 4"}) {
        SCOPED_TRACE(name);
        std::string input;
        std::vector<std::vector<double>> expected;
        References(name, input, expected);
        ASSERT_FALSE(expected.empty());
        const SRun run = Kvcart(dir, {"transform", "LONG/LAT", name, "--precision", "4"}, input);
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.err, "");
        ExpectPoints(run.out, expected, 0.01);
    }
    // The README's sample, to the centimetre as printed there.
    const SRun sample = Kvcart(dir, {"transform", "LONG/LAT", "British National Grid", "--precision", "2"},
                               "-0.12810 51.50800 London, Trafalgar Square\n-3.17910 51.48160 Cardiff\n");
    EXPECT_EQ(sample.out, "530006.22 180446.28 London, Trafalgar Square\n318217.99 176508.92 Cardiff\n");
    // Without the datum step: the projection of the latitude and longitude alone, 124 m away.
    const SRun bypass =
        Kvcart(dir, {"transform", "LONG/LAT", "British National Grid", "--precision", "2", "--bypass-datum"},
               "-0.12810 51.50800\n");
    EXPECT_EQ(bypass.out, "529893.30 180500.18\n");
    EXPECT_EQ(bypass.err, "");
}

// A shift pasted as projinfo prints Amersfoort to WGS 84 (4) (coordinate frame):
// right with --towgs84-convention coordinate-frame, 58 m off read as position vector.
TEST(DatumShiftCli, TheConventionOfAPastedShift)
{
    kvtest::TempDir dir;
    kvtest::WriteFile(dir.File("rd.prj"), kRdWithoutShift);
    std::string input;
    std::vector<std::vector<double>> expected;
    References("RD New", input, expected);
    const std::string printed =
        "565.4171,50.3319,465.5524,0.398957388243134,-0.343987817378283,1.87740163998045,4.0725";
    const SRun frame = Kvcart(
        dir, {"transform", "LONG/LAT", "@rd.prj", "--towgs84-convention", "coordinate-frame", "--towgs84-to", printed},
        input);
    EXPECT_EQ(frame.status, 0) << frame.err;
    ExpectPoints(frame.out, expected, 0.01);
    // The same shift in the position-vector convention, typed as such.
    const std::string vector =
        "565.4171,50.3319,465.5524,-0.398957388243134,0.343987817378283,-1.87740163998045,4.0725";
    for (const std::vector<std::string>& convention :
         {std::vector<std::string>{}, std::vector<std::string>{"--towgs84-convention", "position-vector"}}) {
        std::vector<std::string> args = {"transform", "LONG/LAT", "@rd.prj", "--towgs84-to", vector};
        args.insert(args.end(), convention.begin(), convention.end());
        const SRun typed = Kvcart(dir, args, input);
        ExpectPoints(typed.out, expected, 0.01);
    }
    // Pasted without the option: the rotations the wrong way round.
    const SRun wrong = Kvcart(dir, {"transform", "LONG/LAT", "@rd.prj", "--towgs84-to", printed}, "5.1214 52.0907\n");
    double x = 0, y = 0;
    ASSERT_EQ(std::sscanf(wrong.out.c_str(), "%lf %lf", &x, &y), 2) << wrong.err;
    EXPECT_GT(std::hypot(x - 136783.7257, y - 455860.1394), 50.0);
    // A 3-parameter shift has no rotations to turn; the catalogue name's own
    // shift is replaced as before; the convention takes one of two words.
    const SRun three = Kvcart(
        dir,
        {"transform", "LONG/LAT", "@rd.prj", "--towgs84-convention", "coordinate-frame", "--towgs84-to", "593,26,478"},
        "5.1214 52.0907\n");
    const SRun threePv =
        Kvcart(dir, {"transform", "LONG/LAT", "@rd.prj", "--towgs84-to", "593,26,478"}, "5.1214 52.0907\n");
    EXPECT_EQ(three.out, threePv.out);
    const SRun bad = Kvcart(dir, {"transform", "LONG/LAT", "RD New", "--towgs84-convention", "frame"}, "5 52\n");
    EXPECT_EQ(bad.status, 2);
    EXPECT_TRUE(
        kvtest::Contains(bad.err, "--towgs84-convention takes position-vector or coordinate-frame, not 'frame'"));
    EXPECT_EQ(bad.out, "");
}

// A change of datum whose shift is not known is converted with one warning per
// run that names the datum and the error to expect; --strict-datum refuses it.
TEST(DatumShiftCli, AnUnknownShiftIsNeverSilent)
{
    kvtest::TempDir dir;
    kvtest::WriteFile(dir.File("rd.prj"), LocalDatum());
    const std::string three = "530006.22 180446.28\n318217.99 176508.92\n325897.22 674001.20\n";
    const SRun warned = Kvcart(dir, {"transform", "British National Grid", "@rd.prj"}, three);
    EXPECT_EQ(warned.status, 0) << warned.err;
    EXPECT_EQ(kvtest::Count(warned.out, "\n"), 3);
    EXPECT_EQ(kvtest::Count(warned.err, "warning"), 1) << warned.err;
    EXPECT_TRUE(
        kvtest::Contains(warned.err, "kvcart: warning: the datum changes from \"OSGB 1936\" to \"Local_Survey_1950\""));
    EXPECT_TRUE(kvtest::Contains(warned.err, "hundreds of metres"));
    EXPECT_TRUE(kvtest::Contains(warned.err, "--strict-datum"));
    // The same the other way, with --inverse.
    const SRun inverse = Kvcart(dir, {"transform", "@rd.prj", "British National Grid", "--inverse"}, three);
    EXPECT_EQ(kvtest::Count(inverse.err, "warning"), 1) << inverse.err;

    const SRun strict = Kvcart(dir, {"transform", "British National Grid", "@rd.prj", "--strict-datum"}, three);
    EXPECT_EQ(strict.status, 2);
    EXPECT_EQ(strict.out, "");
    EXPECT_TRUE(kvtest::Contains(strict.err, "refused (--strict-datum)"));

    // Known on both sides, or no change of datum: no warning, also under --strict-datum.
    struct SQuiet
    {
        std::vector<std::string> args;
        const char* input;
    };
    const SQuiet quiet[] = {
        {{"transform", "British National Grid", "RD New", "--strict-datum"}, "530006.22 180446.28\n"},
        {{"transform", "British National Grid", "@rd.prj", "--strict-datum", "--towgs84-to",
          "565.4171,50.3319,465.5524"},
         "530006.22 180446.28\n"},
        {{"transform", "LONG/LAT", "@rd.prj", "--strict-datum"}, "5.1 52.1\n"},
        {{"transform", "UTM-31", "Lambert-93", "--strict-datum"}, "448251.8 5411943.8\n"},
        {{"transform", "NAD27 / Alabama East", "NAD27 / Alabama West", "--strict-datum"}, "602772.39 727652.67\n"},
        {{"transform", "NAD27 / Alabama East", "NAD27 / Alaska zone 4", "--strict-datum"}, "602772.39 727652.67\n"},
        {{"transform", "British National Grid", "@rd.prj", "--bypass-datum"}, "530006.22 180446.28\n"},
    };
    for (const SQuiet& q : quiet) {
        const SRun run = Kvcart(dir, q.args, q.input);
        EXPECT_EQ(run.status, 0) << q.args[2] << run.err;
        EXPECT_EQ(run.err, "") << q.args[2];
        EXPECT_EQ(kvtest::Count(run.out, "\n"), 1) << q.args[2];
    }
}

// kvcart add keeps the shift and the EPSG code of a catalogue name, and a WKT's TOWGS84.
TEST(DatumShiftCli, AddKeepsTheShiftAndTheCode)
{
    kvtest::TempDir dir;
    const SRun added = Kvcart(dir, {"add", "My RD", "RD New"});
    ASSERT_EQ(added.status, 0) << added.err;
    const std::string file = kvtest::ReadFile(dir.File("config/kvcart/custom_projection.gxr"));
    EXPECT_TRUE(kvtest::Contains(file, "    EPSG_Code               28992\n"));
    EXPECT_TRUE(kvtest::Contains(
        file, "    TOWGS84                 565.4171 50.331899999999997 465.55239999999998 -0.39895738824313376 "));
    EXPECT_TRUE(kvtest::Contains(file, "    TOWGS84_Code            4833\n    TOWGS84_Accuracy        1\n"));
    const std::string point = "5.1214 52.0907\n";
    EXPECT_EQ(Kvcart(dir, {"transform", "LONG/LAT", "My RD"}, point).out,
              Kvcart(dir, {"transform", "LONG/LAT", "RD New"}, point).out);

    kvtest::WriteFile(dir.File("rd7.prj"), std::string(kRdWithoutShift)
                                               .insert(std::string(kRdWithoutShift).find("]],PRIMEM") + 1,
                                                       ",TOWGS84[565.4171,50.3319,465.5524,-0.398957388243134,"
                                                       "0.343987817378283,-1.87740163998045,4.0725]"));
    const SRun wkt = Kvcart(dir, {"add", "RD from WKT", "@rd7.prj"});
    ASSERT_EQ(wkt.status, 0) << wkt.err;
    EXPECT_FALSE(kvtest::Contains(wkt.err, "not kept"));
    const std::string after = kvtest::ReadFile(dir.File("config/kvcart/custom_projection.gxr"));
    EXPECT_EQ(kvtest::Count(after, "    TOWGS84 "), 2) << after;
    EXPECT_EQ(kvtest::Count(after, "EPSG_Code"), 1) << "a WKT without an AUTHORITY has no code";
    const SRun fromWkt = Kvcart(dir, {"transform", "LONG/LAT", "RD from WKT", "--precision", "2"}, point);
    EXPECT_EQ(fromWkt.out, "136783.73 455860.14\n") << fromWkt.err;
    // Without a TOWGS84 the stored definition has no shift: it warns against a known one.
    kvtest::WriteFile(dir.File("rd.prj"), LocalDatum());
    ASSERT_EQ(Kvcart(dir, {"add", "Bare RD", "@rd.prj"}).status, 0);
    const SRun bare = Kvcart(dir, {"transform", "UTM-31", "Bare RD"}, "600000 5800000\n");
    EXPECT_TRUE(kvtest::Contains(bare.err, "warning"));

    const SRun info = Kvcart(dir, {"info", "British National Grid"});
    EXPECT_TRUE(kvtest::Contains(info.out,
                                 "Datum shift:   446.448,-125.157,542.06,0.15,0.247,0.842,-20.489 to WGS 84 (metres, "
                                 "arc-seconds, ppm; position vector), EPSG:1314, accuracy 2 m\n"));
    const SRun none = Kvcart(dir, {"info", "RSO Malaya"});
    EXPECT_TRUE(kvtest::Contains(none.out, "Datum shift:   not known for \"Kertau (RSO)\""));
    const SRun zero = Kvcart(dir, {"info", "NAD83 / Alabama East"});
    EXPECT_TRUE(kvtest::Contains(zero.out, "Datum shift:   0,0,0 to WGS 84 (metres), EPSG:1188, accuracy 4 m\n"));
}
