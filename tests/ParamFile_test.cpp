#include "paramfile/Gxr.h"

#include "TestSupport.h"

#include <cmath>
#include <csignal>
#include <cstring>
#include <dirent.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace {

int CountFilesIn(const std::string& dir)
{
    int n = 0;
    if (DIR* d = opendir(dir.c_str())) {
        while (dirent* e = readdir(d))
            if (std::strcmp(e->d_name, ".") != 0 && std::strcmp(e->d_name, "..") != 0)
                ++n;
        closedir(d);
    }
    return n;
}

// A small catalogue file written through the library.
std::string WriteSample(const std::string& path, double semiMajorAxis)
{
    GxrFile* file = gxrCreate(path.c_str());
    GxrTarget* target = gxrAddTarget(file, "ELLIPSOID_DEFINITION");
    GxrSection* section = gxrAddSection(target, "REF_ELLIPSOID");
    gxrPutParam(section, "Ellipsoid_Name", "WGS 84");
    gxrPutParam(section, "Semi_Major_Axis", semiMajorAxis);
    gxrEndSection(section);
    EXPECT_EQ(gxrWrite(file), GXR_OK) << gxrGetErrorMessageGlb();
    gxrClose(file);
    return kvtest::ReadFile(path);
}

bool SameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

} // namespace

TEST(ParamFile, ReadsTheDocumentedSyntax)
{
    const char* text = "# a comment runs to the end of the line\r\n"
                       "TARGET ELLIPSOID_DEFINITION   # trailing comment\r\n"
                       "\r\n"
                       "  SECTION REF_ELLIPSOID\n"
                       "    Ellipsoid_Name   \"WGS 84 # not a comment\"\n"
                       "    ID_Code          \"WE\"\n"
                       "    Semi_Major_Axis  6378137\n"
                       "    Inverse_Flatness 298.257223563\n"
                       "    Centre_dms       -3 30 0.5\n"
                       "  END_SECTION\n"
                       "  SECTION REF_ELLIPSOID\n"
                       "    ID_Code \"RF\"\n"
                       "  END_SECTION\n"
                       "  SECTION OTHER\n"
                       "    ID_Code \"XX\"\n"
                       "  END_SECTION\n"
                       "END_TARGET";
    GxrFile* file = gxrLoadText("sample.gxr", text);
    ASSERT_NE(file, nullptr) << gxrGetErrorMessageGlb();
    EXPECT_EQ(gxrPeekErrorGlb(), GXR_OK);

    GxrTarget* target = gxrTargetByNameNum(file, "ELLIPSOID_DEFINITION", 1);
    ASSERT_NE(target, nullptr);
    EXPECT_EQ(gxrTargetByNameNum(file, "ELLIPSOID_DEFINITION", 2), nullptr);
    EXPECT_EQ(gxrGetNoSections(target, "REF_ELLIPSOID"), 2);
    EXPECT_EQ(gxrGetNoSections(target, nullptr), 3);
    EXPECT_STREQ(gxrGetSectionName(gxrSectionByNum(target, 3)), "OTHER");
    EXPECT_EQ(gxrSectionByNum(target, 4), nullptr);
    EXPECT_EQ(gxrSectionByNum(target, 0), nullptr);

    GxrSection* first = gxrSectionByNameNum(target, "REF_ELLIPSOID", 1);
    CString name;
    EXPECT_EQ(gxrGetParam(first, "Ellipsoid_Name", &name, 1, 1), 1);
    EXPECT_EQ(name, "WGS 84 # not a comment");
    double value = 0.0;
    EXPECT_EQ(gxrGetParam(first, "Inverse_Flatness", &value, 1, 1), 1);
    EXPECT_EQ(value, 298.257223563);

    GxrKeyword* dms = gxrKeywordByNameNum(first, "Centre_dms", 1);
    ASSERT_NE(dms, nullptr);
    EXPECT_EQ(gxrGetNoParams(dms), 3);
    EXPECT_EQ(gxrGetInt(gxrParamByNum(dms, 1)), -3);
    EXPECT_EQ(gxrGetInt(gxrParamByNum(dms, 2)), 30);
    EXPECT_EQ(gxrGetDouble(gxrParamByNum(dms, 3)), 0.5);
    EXPECT_EQ(gxrParamByNum(dms, 4), nullptr);
    EXPECT_EQ(gxrGetKeywordLine(dms), 9);

    CString id;
    EXPECT_EQ(gxrGetParam(gxrSectionByNameNum(target, "REF_ELLIPSOID", 2), "ID_Code", &id, 1, 1), 1);
    EXPECT_EQ(id, "RF");
    gxrClose(file);
}

TEST(ParamFile, LookupsAnswerAbsenceWithoutTouchingOutputs)
{
    GxrFile* file =
        gxrLoadText("t.gxr", "TARGET T\nSECTION S\nName \"text\"\nValue 2.75\nValue -7.9\nBig 1e300\nNan nan\n"
                             "END_SECTION\nEND_TARGET\n");
    ASSERT_NE(file, nullptr) << gxrGetErrorMessageGlb();
    GxrSection* s = gxrSectionByNameNum(gxrTargetByNameNum(file, "T", 1), "S", 1);
    double d = 123.0;
    int i = 456;
    CString text("unchanged");
    EXPECT_EQ(gxrGetParam(s, "Missing", &d, 1, 1), 0);
    EXPECT_EQ(gxrGetParam(s, "Value", &d, 3, 1), 0); // only two instances
    EXPECT_EQ(gxrGetParam(s, "Value", &d, 1, 2), 0); // only one parameter
    EXPECT_EQ(gxrGetParam(s, "Name", &d, 1, 1), 0);  // a string is not a number
    EXPECT_EQ(gxrGetParam(s, "Name", &i, 1, 1), 0);
    EXPECT_EQ(gxrGetParam(s, "Missing", &text, 1, 1), 0);
    EXPECT_EQ(d, 123.0);
    EXPECT_EQ(i, 456);
    EXPECT_EQ(text, "unchanged");

    EXPECT_EQ(gxrGetParam(s, "Value", &d, 2, 1), 1);
    EXPECT_EQ(d, -7.9);
    EXPECT_EQ(gxrGetParam(s, "Value", &i, 1, 1), 1);
    EXPECT_EQ(i, 2); // truncated toward zero
    EXPECT_EQ(gxrGetParam(s, "Value", &i, 2, 1), 1);
    EXPECT_EQ(i, -7);
    EXPECT_EQ(gxrGetParam(s, "Big", &i, 1, 1), 1);
    EXPECT_EQ(i, 2147483647); // clamped, not undefined
    EXPECT_EQ(gxrGetParam(s, "Nan", &i, 1, 1), 1);
    EXPECT_EQ(i, 0);
    EXPECT_EQ(gxrGetParam(s, "Value", &text, 1, 1), 1);
    EXPECT_EQ(text, "2.75"); // a number's text as written
    EXPECT_EQ(gxrGetDouble(gxrParamByNum(gxrKeywordByNameNum(s, "Name", 1), 1)), 0.0);

    // Null handles are answered, not dereferenced.
    EXPECT_EQ(gxrTargetByNameNum(nullptr, "T", 1), nullptr);
    EXPECT_EQ(gxrGetNoSections(nullptr, nullptr), 0);
    EXPECT_EQ(gxrGetNoParams(nullptr), 0);
    EXPECT_EQ(gxrGetParam(nullptr, "Value", &d, 1, 1), 0);
    gxrClose(file);
    gxrClose(nullptr);
}

TEST(ParamFile, EveryValueKindRoundTripsExactly)
{
    kvtest::TempDir dir;
    const std::string path = dir.File("roundtrip.gxr");
    const double numbers[] = {0.0,
                              -0.0,
                              1.0,
                              -1.0,
                              6378137.0,
                              298.257223563,
                              0.1,
                              1.0 / 3.0,
                              0.017453292519943295,
                              1e-300,
                              4.9406564584124654e-324,
                              1.7976931348623157e308,
                              -2.5e-8,
                              12.0 / 39.37,
                              HUGE_VAL,
                              -HUGE_VAL,
                              std::nan("")};
    const char* strings[] = {"",
                             "WGS 84",
                             "quote \" inside",
                             "back\\slash \\\" both",
                             "tab\tand\nnewline\r",
                             "# not a comment",
                             "Zürich – Ørsted",
                             "END_SECTION"};
    {
        GxrFile* file = gxrCreate(path.c_str());
        for (int t = 0; t < 2; ++t) {
            GxrTarget* target = gxrAddTarget(file, "MAP_PROJECTION_DEFINITION");
            for (int s = 0; s < 2; ++s) {
                GxrSection* section = gxrAddSection(target, s == 0 ? "UTM_PROJECTION" : "OTHER_SECTION");
                for (double v : numbers)
                    ASSERT_EQ(gxrPutParam(section, "Number", v), GXR_OK);
                for (const char* v : strings)
                    ASSERT_EQ(gxrPutParam(section, "Text", CString(v)), GXR_OK);
                GxrKeyword* mixed = gxrAddKeyword(section, "Mixed");
                gxrAppendParam(mixed, -3.0);
                gxrAppendParam(mixed, CString("min"));
                gxrAppendParam(mixed, 0.25 * (t + 1));
                gxrEndSection(section);
            }
        }
        ASSERT_EQ(gxrWrite(file), GXR_OK) << gxrGetErrorMessageGlb();
        gxrClose(file);
    }

    GxrFile* file = gxrLoadFile(path.c_str());
    ASSERT_NE(file, nullptr) << gxrGetErrorMessageGlb();
    ASSERT_EQ(gxrGetNoTargets(file, "MAP_PROJECTION_DEFINITION"), 2);
    for (int t = 1; t <= 2; ++t) {
        GxrTarget* target = gxrTargetByNameNum(file, "MAP_PROJECTION_DEFINITION", t);
        ASSERT_EQ(gxrGetNoSections(target, nullptr), 2);
        EXPECT_STREQ(gxrGetSectionName(gxrSectionByNum(target, 1)), "UTM_PROJECTION");
        GxrSection* section = gxrSectionByNum(target, 2);
        EXPECT_STREQ(gxrGetSectionName(section), "OTHER_SECTION");
        ASSERT_EQ(gxrGetNoKeywords(section, "Number"), static_cast<int>(std::size(numbers)));
        for (size_t i = 0; i < std::size(numbers); ++i) {
            double v = 0.0;
            ASSERT_EQ(gxrGetParam(section, "Number", &v, static_cast<int>(i + 1), 1), 1);
            if (std::isnan(numbers[i]))
                EXPECT_TRUE(std::isnan(v));
            else
                EXPECT_TRUE(SameBits(v, numbers[i])) << "value " << numbers[i] << " came back as " << v;
        }
        for (size_t i = 0; i < std::size(strings); ++i) {
            CString v;
            ASSERT_EQ(gxrGetParam(section, "Text", &v, static_cast<int>(i + 1), 1), 1);
            EXPECT_EQ(v, strings[i]);
        }
        GxrKeyword* mixed = gxrKeywordByNameNum(section, "Mixed", 1);
        ASSERT_EQ(gxrGetNoParams(mixed), 3);
        EXPECT_EQ(gxrGetInt(gxrParamByNum(mixed, 1)), -3);
        EXPECT_TRUE(gxrIsString(gxrParamByNum(mixed, 2)));
        EXPECT_EQ(gxrGetString(gxrParamByNum(mixed, 2)), "min");
        EXPECT_EQ(gxrGetDouble(gxrParamByNum(mixed, 3)), 0.25 * t);
    }
    // Writing what was read gives the same text again.
    const std::string firstText = kvtest::ReadFile(path);
    ASSERT_EQ(gxrWriteAs(file, dir.File("again.gxr").c_str()), GXR_OK);
    EXPECT_EQ(kvtest::ReadFile(dir.File("again.gxr")), firstText);
    gxrClose(file);
}

TEST(ParamFile, MalformedFilesAreRejectedWithFileLineAndReason)
{
    struct Case
    {
        const char* text;
        int line;
        const char* reason;
    };
    const std::string nul = std::string("TARGET T\nSECTION S\nName \"a") + '\0' + "b\"\nEND_SECTION\nEND_TARGET\n";
    const Case cases[] = {
        {"TARGET T\nSECTION S\nName \"WGS 84\nEND_SECTION\nEND_TARGET\n", 3, "unterminated string"},
        {"TARGET T\nSECTION S\nName \"ends with backslash\\\nEND_SECTION\nEND_TARGET\n", 3, "unterminated string"},
        {"TARGET T\nEND_SECTION\nEND_TARGET\n", 2, "END_SECTION without SECTION"},
        {"# nothing open\nEND_TARGET\n", 2, "END_TARGET without TARGET"},
        {"TARGET T\nSECTION S\nValue 1\n", 3, "end of file inside section 'S'"},
        {"TARGET T\nSECTION S\nValue 1\nEND_SECTION\n", 4, "end of file inside target 'T'"},
        {"TARGET T\nSECTION S\nScale abc\nEND_SECTION\nEND_TARGET\n", 3, "neither a number nor a string"},
        {"TARGET T\nSECTION S\nScale 1,5\nEND_SECTION\nEND_TARGET\n", 3, "neither a number nor a string"},
        {"TARGET T\nSECTION S\nScale 0x10\nEND_SECTION\nEND_TARGET\n", 3, "neither a number nor a string"},
        {"TARGET T\nSECTION S\nScale 1.5.2\nEND_SECTION\nEND_TARGET\n", 3, "neither a number nor a string"},
        {"TARGET T\nSECTION S\nScale 1e\nEND_SECTION\nEND_TARGET\n", 3, "neither a number nor a string"},
        {"TARGET T\nSECTION S\nScale\nEND_SECTION\nEND_TARGET\n", 3, "has no parameter"},
        {"TARGET T\nValue 1\nEND_TARGET\n", 2, "outside a section"},
        {"SECTION S\n", 1, "SECTION outside a target"},
        {"TARGET T\nSECTION S\nSECTION U\n", 3, "SECTION inside section"},
        {"TARGET T\nTARGET U\n", 2, "TARGET inside target"},
        {"TARGET\n", 1, "needs exactly one name"},
        {"TARGET A B\n", 1, "needs exactly one name"},
        {"TARGET T\nSECTION S\nName \"a\\q\"\nEND_SECTION\nEND_TARGET\n", 3, "unknown escape"},
        {"TARGET T\nSECTION S\nName \"a\"b\nEND_SECTION\nEND_TARGET\n", 3, "followed by a blank"},
        {"TARGET T\nSECTION S\n\"Name\" 1\nEND_SECTION\nEND_TARGET\n", 3, "expected a keyword name"},
        {"TARGET T\nSECTION S\nName-1 1\nEND_SECTION\nEND_TARGET\n", 3, "expected a keyword name"},
        {"TARGET T\nSECTION S\nEND_SECTION extra\nEND_TARGET\n", 3, "takes no parameters"},
        {"TARGET T\nSECTION S\nEND_TARGET\n", 3, "END_TARGET inside section"},
    };
    kvtest::TempDir dir;
    int index = 0;
    for (const Case& c : cases) {
        const std::string path = dir.File("bad" + std::to_string(index++) + ".gxr");
        kvtest::WriteFile(path, c.text);
        EXPECT_EQ(gxrLoadFile(path.c_str()), nullptr) << c.text;
        EXPECT_EQ(gxrPeekErrorGlb(), GXR_ERR_SYNTAX);
        const std::string message = gxrGetErrorMessageGlb();
        EXPECT_TRUE(kvtest::Contains(message, path + ":" + std::to_string(c.line) + ": "));
        EXPECT_TRUE(kvtest::Contains(message, c.reason));
        EXPECT_EQ(gxrGetErrorGlb(), GXR_ERR_SYNTAX);
        EXPECT_EQ(gxrGetErrorGlb(), GXR_OK) << "reading the error clears it";
    }

    const std::string path = dir.File("nul.gxr");
    kvtest::WriteFile(path, nul);
    EXPECT_EQ(gxrLoadFile(path.c_str()), nullptr);
    EXPECT_TRUE(kvtest::Contains(gxrGetErrorMessageGlb(), path + ":3: NUL byte"));

    EXPECT_EQ(gxrLoadFile(dir.File("missing.gxr").c_str()), nullptr);
    EXPECT_EQ(gxrGetErrorGlb(), GXR_ERR_OPEN);
    // An overlong message is cut to the error buffer, never overflowing it.
    const std::string longName = dir.File(std::string(3000, 'n'));
    EXPECT_EQ(gxrLoadFile(longName.c_str()), nullptr);
    EXPECT_EQ(std::strlen(gxrGetErrorMessageGlb()), 1023u);
    EXPECT_EQ(std::string(gxrGetErrorMessageGlb()), longName.substr(0, 1023));
    // A successful load leaves no error pending.
    kvtest::WriteFile(path, "");
    GxrFile* empty = gxrLoadFile(path.c_str());
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(gxrPeekErrorGlb(), GXR_OK);
    EXPECT_EQ(gxrGetNoTargets(empty, nullptr), 0);
    gxrClose(empty);
}

TEST(ParamFile, BuildingRefusesBadNamesAndEndedSections)
{
    GxrFile* file = gxrCreate("unused.gxr");
    EXPECT_EQ(gxrAddTarget(file, "has space"), nullptr);
    EXPECT_EQ(gxrPeekErrorGlb(), GXR_ERR_ARGUMENT);
    EXPECT_EQ(gxrAddTarget(file, "END_TARGET"), nullptr);
    GxrTarget* target = gxrAddTarget(file, "T");
    ASSERT_NE(target, nullptr);
    EXPECT_EQ(gxrAddSection(target, ""), nullptr);
    GxrSection* section = gxrAddSection(target, "S");
    EXPECT_EQ(gxrPutParam(section, "bad-name", 1.0), GXR_ERR_ARGUMENT);
    EXPECT_EQ(gxrPutParam(section, "Good", 1.0), GXR_OK);
    EXPECT_EQ(gxrEndSection(section), GXR_OK);
    EXPECT_EQ(gxrPutParam(section, "Late", 2.0), GXR_ERR_ARGUMENT);
    EXPECT_TRUE(kvtest::Contains(gxrGetErrorMessageGlb(), "ended section"));
    EXPECT_EQ(gxrGetNoKeywords(section, nullptr), 1);
    EXPECT_EQ(gxrAppendParam(static_cast<GxrKeyword*>(nullptr), 1.0), GXR_ERR_ARGUMENT);
    EXPECT_EQ(gxrWrite(nullptr), GXR_ERR_ARGUMENT);
    gxrClose(file);
}

TEST(ParamFile, NumbersUseThePointWhateverTheHostLocale)
{
    kvtest::TempDir dir;
    kvtest::CommaLocale german;
    ASSERT_TRUE(german.Active()) << "the comma-decimal test locale could not be loaded";
    const std::string text = WriteSample(dir.File("locale.gxr"), 6378137.5);
    EXPECT_TRUE(kvtest::Contains(text, "6378137.5"));

    GxrFile* file = gxrLoadText("locale.gxr", "TARGET T\nSECTION S\nV 0.9996\nW -1.5e-3\nEND_SECTION\nEND_TARGET\n");
    ASSERT_NE(file, nullptr) << gxrGetErrorMessageGlb();
    GxrSection* s = gxrSectionByNum(gxrTargetByNameNum(file, "T", 1), 1);
    double v = 0.0;
    ASSERT_EQ(gxrGetParam(s, "V", &v, 1, 1), 1);
    EXPECT_EQ(v, 0.9996);
    ASSERT_EQ(gxrGetParam(s, "W", &v, 1, 1), 1);
    EXPECT_EQ(v, -0.0015);
    gxrClose(file);
}

TEST(ParamFile, FailedWriteKeepsTheOldFile)
{
    kvtest::TempDir dir;
    const std::string path = dir.File("catalogue.gxr");
    const std::string original = WriteSample(path, 6378137.0);
    chmod(path.c_str(), 0640);

    // A file-size limit makes write(2) fail part-way, as a full disk does.
    GxrFile* big = gxrCreate(path.c_str());
    GxrSection* section = gxrAddSection(gxrAddTarget(big, "T"), "S");
    for (int i = 0; i < 2000; ++i)
        gxrPutParam(section, "Value", i * 1.25);
    gxrEndSection(section);

    struct rlimit saved;
    getrlimit(RLIMIT_FSIZE, &saved);
    struct rlimit small = saved;
    small.rlim_cur = 4096;
    void (*previous)(int) = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    const int status = gxrWrite(big);
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previous);

    EXPECT_EQ(status, GXR_ERR_WRITE);
    EXPECT_TRUE(kvtest::Contains(gxrGetErrorMessageGlb(), "write failed"));
    EXPECT_EQ(kvtest::ReadFile(path), original);
    EXPECT_EQ(CountFilesIn(dir.Path()), 1) << "the temporary file is removed";

    // Without the limit the same write succeeds, replaces the file and keeps its mode.
    ASSERT_EQ(gxrWrite(big), GXR_OK) << gxrGetErrorMessageGlb();
    gxrClose(big);
    EXPECT_NE(kvtest::ReadFile(path), original);
    struct stat st;
    ASSERT_EQ(stat(path.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0640u);
    EXPECT_EQ(CountFilesIn(dir.Path()), 1);

    // A destination that cannot be replaced: a directory, or a missing directory.
    mkdir(dir.File("adir").c_str(), 0755);
    GxrFile* file = gxrCreate(dir.File("adir").c_str());
    gxrAddTarget(file, "T");
    EXPECT_EQ(gxrWrite(file), GXR_ERR_WRITE);
    EXPECT_EQ(gxrWriteAs(file, dir.File("no/such/dir.gxr").c_str()), GXR_ERR_WRITE);
    gxrClose(file);
    EXPECT_EQ(CountFilesIn(dir.Path()), 2);
}

TEST(ParamFile, CrashDuringWriteLeavesThePreviousFile)
{
    kvtest::TempDir dir;
    const std::string path = dir.File("custom.gxr");
    const std::string original = WriteSample(path, 6378137.0);

    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        // The process is killed by SIGXFSZ in the middle of writing.
        struct rlimit small;
        getrlimit(RLIMIT_FSIZE, &small);
        small.rlim_cur = 1024;
        setrlimit(RLIMIT_FSIZE, &small);
        std::signal(SIGXFSZ, SIG_DFL);
        GxrFile* big = gxrCreate(path.c_str());
        GxrSection* section = gxrAddSection(gxrAddTarget(big, "T"), "S");
        for (int i = 0; i < 1000; ++i)
            gxrPutParam(section, "Value", i * 0.5);
        gxrWrite(big);
        _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the write should have been cut off";
    EXPECT_EQ(WTERMSIG(status), SIGXFSZ);
    EXPECT_EQ(kvtest::ReadFile(path), original);
    GxrFile* reread = gxrLoadFile(path.c_str());
    ASSERT_NE(reread, nullptr) << gxrGetErrorMessageGlb();
    gxrClose(reread);
}
