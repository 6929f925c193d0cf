// The keywords a catalogue definition may carry besides its projection: the
// EPSG code of the system it stands for. Old files without them read as before;
// files with them survive the user catalogue's write-back byte for byte; a value
// the library would have to guess at keeps the file from being written over.
#include "catalogue/KvMapProjectionList.h"
#include "catalogue/KvTransverseMercatorProjection.h"
#include "paramfile/Gxr.h"

#include "TestSupport.h"

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
    EXPECT_EQ(kvtest::ReadFile(dir.File("out.gxr")).find("EPSG"), std::string::npos);

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

// A code that is not a whole number an int holds, above 0, is not read as some
// other number: the section is refused with its line, and the file is not written.
TEST(CatalogueEpsgCode, AValueThatIsNoCodeRefusesTheSection)
{
    struct SCase
    {
        const char* line;
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
    };
    for (const SCase& c : cases) {
        SCOPED_TRACE(c.line);
        kvtest::TempDir dir;
        const std::string text = File(Section("") + Section(std::string("    ") + c.line + "\n"));
        std::string problems;
        auto list = ReadUserFile(dir, text, problems);
        EXPECT_NE(problems.find(dir.File("custom_projection.gxr") + ":" + std::to_string(c.at) + ": " + c.reason), std::string::npos)
            << problems;
        EXPECT_EQ(list->GetCount(), 1u) << "the good section is read, the refused one is not";
        list->AddMapProjection(new CKvTransverseMercatorProjection("New", "B", "WE", 1, 0, 0, 0, 0));
        std::string message;
        EXPECT_FALSE(list->WriteBackCustom(dir.File("custom_projection.gxr"), message) && message.empty());
        EXPECT_EQ(kvtest::ReadFile(dir.File("custom_projection.gxr")), text);
    }
}

// The library writes the keyword in its own column; what it wrote it reads back
// and writes again byte for byte, while other entries are added and edited.
TEST(CatalogueEpsgCode, TheUsersFileRoundTripsByteForByte)
{
    kvtest::TempDir dir;
    const std::string path = dir.File("custom_projection.gxr");
    {
        CKvMapProjectionList list;
        list.ReadMapProjections(path, true);
        CKvMapProjData* grid = new CKvTransverseMercatorProjection("Coded", "OSGB 1936", "AA", 0.9996012717, -2, 49,
                                                                   400000, -100000);
        grid->SetEpsgCode(27700);
        list.AddMapProjection(grid);
        list.AddMapProjection(new CKvTransverseMercatorProjection("Other", "B", "WE", 1, 0, 0, 0, 0));
        std::string message;
        ASSERT_TRUE(list.WriteBackCustom(path, message)) << message;
    }
    const std::string first = kvtest::ReadFile(path);
    EXPECT_NE(first.find("    Fnorth                  -100000\n    EPSG_Code               27700\n  END_SECTION"),
              std::string::npos)
        << first;
    {
        CKvMapProjectionList list;
        list.ReadMapProjections(path, true);
        EXPECT_EQ(list.GetProblems(), "");
        list.GetMapProjection("Other")->SetBranchName("Edited");
        list.AddMapProjection(new CKvTransverseMercatorProjection("Third", "B", "WE", 1, 0, 0, 0, 0));
        std::string message;
        ASSERT_TRUE(list.WriteBackCustom(path, message)) << message;
        EXPECT_EQ(list.GetMapProjection("Coded")->GetEpsgCode(), 27700);
    }
    const std::string second = kvtest::ReadFile(path);
    const size_t end = first.find("  END_SECTION\n") + 14;
    EXPECT_EQ(second.substr(0, end), first.substr(0, end)) << "the coded entry, byte for byte";
    EXPECT_NE(second.find("\"Edited\""), std::string::npos);
    EXPECT_NE(second.find("\"Third\""), std::string::npos);
}
