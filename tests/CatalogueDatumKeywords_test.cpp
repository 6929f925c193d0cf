// The keywords a catalogue definition may carry besides its projection: the
// EPSG code of the system it stands for and its datum's shift to WGS 84. Old
// files without them read as before; files with them survive the user
// catalogue's write-back byte for byte; a value the library would have to
// guess at keeps the file from being written over.
#include "catalogue/KvMapProjectionList.h"
#include "catalogue/KvTransverseMercatorProjection.h"
#include "paramfile/Gxr.h"

#include "TestSupport.h"

#include <cmath>
#include <gtest/gtest.h>
#include <memory>

namespace {

std::string Section(const std::string& body)
{
    return "  SECTION UTM_PROJECTION\n    Projection_Name \"Grid\"\n    Branch_Name \"Mine\"\n"
           "    Ellipsoid \"AA\"\n    Scale 0.9996012717\n    Centre -2\n    Origin_Latitude 49\n"
           "    Feast 400000\n    Fnorth -100000\n" +
           body + "  END_SECTION\n";
}

std::string File(const std::string& sections)
{
    return "TARGET MAP_PROJECTION_DEFINITION\n" + sections + "END_TARGET\n";
}

// The list of one user file; the file's problems in problems.
std::unique_ptr<CKvMapProjectionList> ReadUserFile(const kvtest::TempDir& dir, const std::string& text,
                                                   std::string& problems)
{
    kvtest::WriteFile(dir.File("custom_projection.gxr"), text);
    auto list = std::make_unique<CKvMapProjectionList>();
    list->ReadMapProjections(dir.File("custom_projection.gxr"), true);
    problems = list->GetProblems();
    return list;
}

} // namespace

TEST(CatalogueEpsgCode, OldSectionsReadAsBeforeAndNewOnesCarryTheirCode)
{
    kvtest::TempDir dir;
    std::string problems;
    auto old = ReadUserFile(dir, File(Section("")), problems);
    EXPECT_EQ(problems, "");
    ASSERT_EQ(old->GetCount(), 1u);
    const CKvMapProjData& plain = **old->GetIteratorBegin();
    EXPECT_EQ(plain.GetEpsgCode(), 0);
    EXPECT_EQ(kvtest::Parameters(plain), (std::vector<double>{0.9996012717, -2, 49, 400000, -100000}));
    // Written without the keyword, as before.
    ASSERT_EQ(old->WriteCustomMapProjections(dir.File("out.gxr")), GXR_OK);
    EXPECT_FALSE(kvtest::Contains(kvtest::ReadFile(dir.File("out.gxr")), "EPSG"));

    auto coded = ReadUserFile(dir, File(Section("    EPSG_Code 27700\n")), problems);
    EXPECT_EQ(problems, "");
    ASSERT_EQ(coded->GetCount(), 1u);
    EXPECT_EQ((*coded->GetIteratorBegin())->GetEpsgCode(), 27700);
    EXPECT_EQ(kvtest::Parameters(**coded->GetIteratorBegin()), kvtest::Parameters(plain));
    // The largest code an int holds, and the keyword anywhere in the section.
    auto largest = ReadUserFile(
        dir, File("  SECTION UTM_PROJECTION\n    EPSG_Code 2147483647\n    Projection_Name \"G\"\n  END_SECTION\n"),
        problems);
    EXPECT_EQ(problems, "");
    ASSERT_EQ(largest->GetCount(), 1u);
    EXPECT_EQ((*largest->GetIteratorBegin())->GetEpsgCode(), 2147483647);

    // The setter: a code of 0 or less is none.
    CKvTransverseMercatorProjection grid("G", "B", "WE", 0.9996, 9, 0, 500000, 0);
    grid.SetEpsgCode(32632);
    EXPECT_EQ(grid.GetEpsgCode(), 32632);
    grid.SetEpsgCode(-4);
    EXPECT_EQ(grid.GetEpsgCode(), 0);
    // A copy of the fields takes the code along.
    CKvTransverseMercatorProjection copy;
    copy.CopyFieldsFrom(*(*coded->GetIteratorBegin()));
    EXPECT_EQ(copy.GetEpsgCode(), 27700);
}

// The datum shift: 3 or 7 values with the transformation's code and accuracy,
// read as written and written as read.
TEST(CatalogueDatumShiftKeywords, ReadAsWrittenAndWrittenAsRead)
{
    kvtest::TempDir dir;
    std::string problems;
    auto seven = ReadUserFile(dir,
                              File(Section("    EPSG_Code 27700\n    TOWGS84 446.448 -125.157 542.06 0.15 0.247 0.842 "
                                           "-20.489\n    TOWGS84_Code 1314\n    TOWGS84_Accuracy 2\n")),
                              problems);
    EXPECT_EQ(problems, "");
    ASSERT_EQ(seven->GetCount(), 1u);
    const CKvMapProjData& bng = **seven->GetIteratorBegin();
    CKvDatumShift shift;
    ASSERT_TRUE(bng.GetDatumShift(shift));
    EXPECT_EQ(shift.GetType(), CKvCartDef::eSevenParameters);
    const double published[7] = {446.448, -125.157, 542.06, 0.15, 0.247, 0.842, -20.489};
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(shift[i], published[i]) << i;
    EXPECT_EQ(bng.GetDatumShiftCount(), 7);
    EXPECT_EQ(bng.GetDatumShiftCode(), 1314);
    EXPECT_EQ(bng.GetDatumShiftAccuracy(), 2.0);

    // Three values; a shift of zero is a shift; code and accuracy may be left out.
    auto three = ReadUserFile(dir, File(Section("    TOWGS84 0 0 0\n")), problems);
    EXPECT_EQ(problems, "");
    const CKvMapProjData& zero = **three->GetIteratorBegin();
    EXPECT_TRUE(zero.HasDatumShift());
    ASSERT_TRUE(zero.GetDatumShift(shift));
    EXPECT_EQ(shift.GetType(), CKvCartDef::eNoDatumShift);
    EXPECT_EQ(zero.GetDatumShiftCount(), 3);
    EXPECT_EQ(zero.GetDatumShiftCode(), 0);
    EXPECT_LT(zero.GetDatumShiftAccuracy(), 0.0);
    EXPECT_EQ(zero.GetEpsgCode(), 0);

    // An old section has none.
    auto old = ReadUserFile(dir, File(Section("")), problems);
    EXPECT_FALSE((*old->GetIteratorBegin())->HasDatumShift());
    EXPECT_FALSE((*old->GetIteratorBegin())->GetDatumShift(shift));
    EXPECT_EQ(shift.GetType(), CKvCartDef::eNoDatumShift);

    // Seven values that are a translation stay seven when written; three stay three.
    for (const char* line : {"    TOWGS84 -8 160 176 0 0 0 0\n", "    TOWGS84 -8 160 176\n"}) {
        auto list = ReadUserFile(dir, File(Section(line)), problems);
        ASSERT_EQ(list->WriteCustomMapProjections(dir.File("out.gxr")), GXR_OK);
        const std::string written = kvtest::ReadFile(dir.File("out.gxr"));
        EXPECT_TRUE(kvtest::Contains(written, std::string("    TOWGS84                 ") + (line + 12)));
    }

    // The setters: 3 or 7 finite values, a code above 0, an accuracy of 0 or more.
    CKvTransverseMercatorProjection grid("G", "B", "WE", 0.9996, 9, 0, 500000, 0);
    const double values[7] = {1, 2, 3, 4, 5, 6, 7};
    EXPECT_FALSE(grid.SetDatumShift(values, 5));
    EXPECT_FALSE(grid.SetDatumShift(nullptr, 3));
    const double notFinite[3] = {1, NAN, 3};
    EXPECT_FALSE(grid.SetDatumShift(notFinite, 3));
    const double huge[3] = {1, HUGE_VAL, 3};
    EXPECT_FALSE(grid.SetDatumShift(huge, 3));
    EXPECT_FALSE(grid.HasDatumShift());
    EXPECT_TRUE(grid.SetDatumShift(values, 7, -3, NAN));
    EXPECT_EQ(grid.GetDatumShiftCode(), 0);
    EXPECT_LT(grid.GetDatumShiftAccuracy(), 0.0);
    EXPECT_TRUE(grid.SetDatumShift(values, 3, 1188, 4));
    ASSERT_TRUE(grid.GetDatumShift(shift));
    EXPECT_EQ(shift[3], 0.0) << "values beyond the count are not kept";
    EXPECT_EQ(grid.GetDatumShiftCode(), 1188);
    EXPECT_EQ(grid.GetDatumShiftAccuracy(), 4.0);
    CKvTransverseMercatorProjection copy;
    copy.CopyFieldsFrom(grid);
    EXPECT_EQ(copy.GetDatumShiftCount(), 3);
    EXPECT_EQ(copy.GetDatumShiftCode(), 1188);
    grid.RemoveDatumShift();
    EXPECT_FALSE(grid.HasDatumShift());
    EXPECT_EQ(grid.GetDatumShiftCode(), 0);
}

// A code that is not a whole number an int holds, above 0, or a shift the library
// would have to guess at, is not read as something else: the section is refused
// with its line, the file is never written over, and the session's additions
// are saved aside.
TEST(CatalogueDatumShiftKeywords, AValueThatIsNoCodeOrShiftRefusesTheSection)
{
    struct SCase
    {
        const char* lines;
        const char* reason;
        int at = 21; // the line of the problem
    };
    const SCase cases[] = {
        {"EPSG_Code 27700.5", "keyword 'EPSG_Code' takes a whole number from 1 to 2147483647, not 27700.5"},
        {"EPSG_Code 0", "keyword 'EPSG_Code' takes a whole number from 1 to 2147483647, not 0"},
        {"EPSG_Code -27700", "keyword 'EPSG_Code' takes a whole number from 1 to 2147483647, not -27700"},
        {"EPSG_Code 2147483648", "keyword 'EPSG_Code' takes a whole number from 1 to 2147483647, not 2147483648"},
        {"EPSG_Code 1e308", "keyword 'EPSG_Code' takes a whole number from 1 to 2147483647, not 1e308"},
        {"EPSG_Code nan", "keyword 'EPSG_Code' takes a whole number from 1 to 2147483647, not nan"},
        {"EPSG_Code inf", "keyword 'EPSG_Code' takes a whole number from 1 to 2147483647, not inf"},
        {"EPSG_Code \"27700\"", "keyword 'EPSG_Code' takes a number, not the string \"27700\""},
        {"EPSG_Code 27700 4277", "keyword 'EPSG_Code' takes 1 value, not 2"},
        {"EPSG_Code 27700\n    EPSG_Code 27700", "keyword 'EPSG_Code' is given twice", 22},
        {"TOWGS84 1 2 3 4", "keyword 'TOWGS84' takes 3 values (dx dy dz) or 7 (dx dy dz rx ry rz ds), not 4"},
        {"TOWGS84 1 2 3 4 5 6", "keyword 'TOWGS84' takes 3 values (dx dy dz) or 7 (dx dy dz rx ry rz ds), not 6"},
        {"TOWGS84 1 2", "keyword 'TOWGS84' takes 3 to 7 values, not 2"},
        {"TOWGS84 1 2 3 4 5 6 7 8", "keyword 'TOWGS84' takes 3 to 7 values, not 8"},
        {"TOWGS84 1 nan 3", "keyword 'TOWGS84' takes finite numbers, not nan"},
        {"TOWGS84 1 2 3 4 5 -inf 7", "keyword 'TOWGS84' takes finite numbers, not -inf"},
        {"TOWGS84 1e309 2 3", "keyword 'TOWGS84' takes finite numbers, not 1e309"},
        {"TOWGS84 1 \"2\" 3", "keyword 'TOWGS84' takes a number, not the string \"2\""},
        {"TOWGS84 1 2 3\n    TOWGS84 1 2 3", "keyword 'TOWGS84' is given twice", 22},
        {"TOWGS84 1 2 3\n    TOWGS84_Code 1314.5",
         "keyword 'TOWGS84_Code' takes a whole number from 1 to 2147483647, not 1314.5", 22},
        {"TOWGS84 1 2 3\n    TOWGS84_Code 0", "keyword 'TOWGS84_Code' takes a whole number from 1 to 2147483647, not 0",
         22},
        {"TOWGS84 1 2 3\n    TOWGS84_Accuracy -1",
         "keyword 'TOWGS84_Accuracy' takes a length in metres, 0 or more, not -1", 22},
        {"TOWGS84 1 2 3\n    TOWGS84_Accuracy nan",
         "keyword 'TOWGS84_Accuracy' takes a length in metres, 0 or more, not nan", 22},
        {"TOWGS84 1 2 3\n    TOWGS84_Accuracy inf",
         "keyword 'TOWGS84_Accuracy' takes a length in metres, 0 or more, not inf", 22},
        {"TOWGS84_Code 1314", "keyword 'TOWGS84_Code' describes the datum shift, and the section has no TOWGS84"},
        {"TOWGS84_Accuracy 2", "keyword 'TOWGS84_Accuracy' describes the datum shift, and the section has no TOWGS84"},
        {"TOWGS84 1 2 3\n    TOWGS84_Accuracy 1 2", "keyword 'TOWGS84_Accuracy' takes 1 value, not 2", 22},
    };
    for (const SCase& c : cases) {
        SCOPED_TRACE(c.lines);
        kvtest::TempDir dir;
        const std::string text = File(Section("") + Section(std::string("    ") + c.lines + "\n"));
        std::string problems;
        auto list = ReadUserFile(dir, text, problems);
        EXPECT_TRUE(kvtest::Contains(problems,
                                     dir.File("custom_projection.gxr") + ":" + std::to_string(c.at) + ": " + c.reason));
        EXPECT_EQ(list->GetCount(), 1u) << "the good section is read, the refused one is not";
        list->AddMapProjection(new CKvTransverseMercatorProjection("New", "B", "WE", 1, 0, 0, 0, 0));
        std::string message;
        EXPECT_FALSE(list->WriteBackCustom(dir.File("custom_projection.gxr"), message) && message.empty());
        EXPECT_EQ(kvtest::ReadFile(dir.File("custom_projection.gxr")), text) << "never written over";
        EXPECT_TRUE(kvtest::Contains(kvtest::ReadFile(dir.File("custom_projection.unsaved.gxr")), "\"New\""));
    }
}

// A user file with shifts, written by the library, survives edits of other
// entries and a merge with another process's save byte for byte.
TEST(CatalogueDatumShiftKeywords, TheUsersFileRoundTripsByteForByte)
{
    kvtest::TempDir dir;
    const std::string path = dir.File("custom_projection.gxr");
    const double osgb[7] = {446.448, -125.157, 542.06, 0.15, 0.247, 0.842, -20.489};
    const double nad27[3] = {-8, 160, 176};
    {
        CKvMapProjectionList list;
        list.ReadMapProjections(path, true);
        CKvMapProjData* grid =
            new CKvTransverseMercatorProjection("Shifted", "OSGB 1936", "AA", 0.9996012717, -2, 49, 400000, -100000);
        grid->SetEpsgCode(27700);
        grid->SetDatumShift(osgb, 7, 1314, 2);
        list.AddMapProjection(grid);
        CKvMapProjData* three = new CKvTransverseMercatorProjection("Three", "NAD27", "CC", 0.99996, -85.8, 30.5, 0, 0);
        three->SetDatumShift(nad27, 3, 0, 10.5);
        list.AddMapProjection(three);
        CKvMapProjData* coded = new CKvTransverseMercatorProjection("Coded", "OSGB 1936", "AA", 1, -2, 49, 0, -1);
        coded->SetEpsgCode(27700);
        list.AddMapProjection(coded);
        list.AddMapProjection(new CKvTransverseMercatorProjection("Other", "B", "WE", 1, 0, 0, 0, 0));
        std::string message;
        ASSERT_TRUE(list.WriteBackCustom(path, message)) << message;
    }
    const std::string first = kvtest::ReadFile(path);
    EXPECT_TRUE(kvtest::Contains(first, "    EPSG_Code               27700\n"
                                        "    TOWGS84                 446.44799999999998 -125.157 542.05999999999995 "
                                        "0.14999999999999999 0.247 0.84199999999999997 -20.489000000000001\n"
                                        "    TOWGS84_Code            1314\n"
                                        "    TOWGS84_Accuracy        2\n  END_SECTION\n"));
    EXPECT_TRUE(kvtest::Contains(
        first, "    TOWGS84                 -8 160 176\n    TOWGS84_Accuracy        10.5\n  END_SECTION\n"));
    // A code without a shift: in its own column after the projection's keywords.
    const std::string codedText = "    Fnorth                  -1\n    EPSG_Code               27700\n  END_SECTION\n";
    EXPECT_TRUE(kvtest::Contains(first, codedText));
    // Another process edits "Other"; this session edits it too, differently,
    // and adds an entry: the coded and shifted entries stay byte for byte.
    CKvMapProjectionList list;
    list.ReadMapProjections(path, true);
    EXPECT_EQ(list.GetProblems(), "");
    {
        CKvMapProjectionList other;
        other.ReadMapProjections(path, true);
        other.GetMapProjection("Other")->SetBranchName("Theirs");
        std::string message;
        ASSERT_TRUE(other.WriteBackCustom(path, message)) << message;
    }
    list.GetMapProjection("Three")->SetEpsgCode(26729);
    list.AddMapProjection(new CKvTransverseMercatorProjection("Fourth", "B", "WE", 1, 0, 0, 0, 0));
    std::string message;
    EXPECT_TRUE(list.WriteBackCustom(path, message)) << message;
    const std::string second = kvtest::ReadFile(path);
    const size_t end = first.find("  END_SECTION\n") + 14;
    EXPECT_EQ(second.substr(0, end), first.substr(0, end)) << second;
    EXPECT_TRUE(kvtest::Contains(second, "    TOWGS84                 -8 160 176\n    TOWGS84_Accuracy        10.5\n"
                                         "  END_SECTION\n"));
    EXPECT_TRUE(kvtest::Contains(second, "    EPSG_Code               26729\n    TOWGS84  "));
    EXPECT_TRUE(kvtest::Contains(second, codedText));
    EXPECT_TRUE(kvtest::Contains(second, "\"Theirs\""));
    EXPECT_TRUE(kvtest::Contains(second, "\"Fourth\""));
    // What the library wrote it reads back to the same values.
    CKvMapProjectionList reread;
    reread.ReadMapProjections(path, true);
    EXPECT_EQ(reread.GetMapProjection("Coded")->GetEpsgCode(), 27700);
    CKvDatumShift shift;
    ASSERT_TRUE(reread.GetMapProjection("Shifted")->GetDatumShift(shift));
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(shift[i], osgb[i]);
}
