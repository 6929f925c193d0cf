#include "catalogue/KvCartSetup.h"
#include "catalogue/KvGeographicalProjection.h"
#include "catalogue/KvHotineObliqueMercatorProjection.h"
#include "catalogue/KvLambert2SPProjection.h"
#include "catalogue/KvTransverseMercatorProjection.h"
#include "coordsys/KvMapProjection.h"
#include "paramfile/Gxr.h"
#include "projections/KvGeographical.h"
#include "wkt/KvPRJParser.h"

#include "ProgramRun.h"

using kvtest::Parameters;

#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <set>
#include <sys/wait.h>

namespace {

const double kFoot = 12.0 / 39.37;

std::string RunSession(const std::string& system, const std::string& user, const std::string& arguments)
{
    const std::string command =
        std::string(KVCART_CATALOGUE_SESSION) + " '" + system + "' '" + user + "' " + arguments + " 2>&1";
    const kvtest::SRun run = kvtest::Piped(command);
    EXPECT_EQ(run.status, 0) << command << "\n" << run.out;
    return run.out;
}

} // namespace

TEST(KvMapProjectionList, BuiltInDefinitionsWithoutAnyFile)
{
    kvtest::TempDir empty;
    CKvMapProjectionList list;
    list.InitMapProjections(empty.Path(), empty.Path());
    ASSERT_EQ(list.GetCount(), 124u);
    std::vector<CKvMapProjData*> all(list.GetIteratorBegin(), list.GetIteratorEnd());

    EXPECT_EQ(all.front()->GetName(), "LONG/LAT");
    EXPECT_EQ(all.front()->GetProjectionType(), CKvMapProjData::eGeographical);
    EXPECT_EQ(all.front()->GetBranchName(), "Non UTM Projections");
    EXPECT_EQ(all.back()->GetName(), "NON-UTM");
    EXPECT_EQ(all.back()->GetProjectionType(), CKvMapProjData::eTransverseMercator);
    for (int zone = 1; zone <= 60; ++zone) {
        auto* utm = dynamic_cast<CKvTransverseMercatorProjection*>(all[zone]);
        ASSERT_NE(utm, nullptr);
        EXPECT_EQ(utm->GetName(), "UTM-" + std::to_string(zone));
        EXPECT_EQ(utm->GetBranchName(), "UTM Projections");
        EXPECT_EQ(utm->GetEllipsoidID(), "WE");
        EXPECT_EQ(utm->GetScale(), 0.9996);
        EXPECT_EQ(utm->GetCentre(), zone * 6.0 - 183.0);
        EXPECT_EQ(utm->GetFalseEasting(), 500000.0);
        EXPECT_EQ(utm->GetFalseNorthing(), 0.0);
        EXPECT_FALSE(utm->CanDelete());
        EXPECT_FALSE(utm->CanEdit());
    }
    EXPECT_EQ(dynamic_cast<CKvTransverseMercatorProjection*>(list.GetMapProjection("UTM-1"))->GetCentre(), -177.0);
    EXPECT_EQ(dynamic_cast<CKvTransverseMercatorProjection*>(list.GetMapProjection("UTM-31"))->GetCentre(), 3.0);
    EXPECT_EQ(list.GetMapProjection("UTM-61"), nullptr);
    EXPECT_EQ(list.GetMapProjection(" NON-UTM "), all.back()) << "names compare in their short form";
    EXPECT_FALSE(all.front()->CanDelete());
    EXPECT_FALSE(all.back()->CanEdit());

    // Deleting takes the definition out and frees it; a definition outside the list is freed too.
    list.DeleteMapProjection(list.GetMapProjection("UTM-7"));
    EXPECT_EQ(list.GetCount(), 123u);
    EXPECT_EQ(list.GetMapProjection("UTM-7"), nullptr);
    list.DeleteMapProjection(new CKvGeographicalProjection("stray", "", ""));
    list.DeleteMapProjection(nullptr);
    EXPECT_EQ(list.GetCount(), 123u);
}

TEST(KvEllipsoidList, SystemEntriesComeFirstAndCustomOnesAreOwned)
{
    kvtest::TempDir dir;
    kvtest::WriteFile(dir.File("system.gxr"), "TARGET ELLIPSOID_DEFINITION\n"
                                              "SECTION REF_ELLIPSOID\nEllipsoid_Name \"Sys\"\nID_Code \"AA\"\n"
                                              "Semi_Major_Axis 1\nInverse_Flatness 2\nEND_SECTION\n"
                                              "SECTION REF_ELLIPSOID\nID_Code \"ZZ\"\nEND_SECTION\nEND_TARGET\n");
    kvtest::WriteFile(dir.File("custom.gxr"), "TARGET ELLIPSOID_DEFINITION\n"
                                              "SECTION REF_ELLIPSOID\nEllipsoid_Name \"Mine\"\nID_Code \"AA\"\n"
                                              "Semi_Major_Axis 3\nInverse_Flatness 4\nEND_SECTION\nEND_TARGET\n");
    kvtest::WriteFile(dir.File("broken.gxr"), "TARGET ELLIPSOID_DEFINITION\nSECTION REF_ELLIPSOID\n");
    CKvEllipsoidList list;
    EXPECT_EQ(list.ReadEllipsoids(dir.File("system.gxr"), false), GXR_OK);
    EXPECT_EQ(list.ReadEllipsoids(dir.File("custom.gxr"), true), GXR_OK);
    EXPECT_EQ(list.ReadEllipsoids(dir.File("broken.gxr"), true), GXR_ERR_SYNTAX);
    EXPECT_EQ(list.ReadEllipsoids(dir.File("missing.gxr"), true), GXR_ERR_OPEN);
    EXPECT_EQ(list.GetEllipsoid("AA"), nullptr) << "the complete list is built on request";
    list.GenerateCompleteList();
    ASSERT_NE(list.GetEllipsoid("AA"), nullptr);
    EXPECT_EQ(list.GetEllipsoid("AA")->GetName(), "Sys");
    EXPECT_EQ(list.GetEllipsoidFromName("Mine")->GetMajor(), 3.0);
    const CKvEllipsoid* bare = list.GetEllipsoid("ZZ");
    ASSERT_NE(bare, nullptr);
    EXPECT_EQ(bare->GetName(), "");
    EXPECT_EQ(bare->GetMajor(), 0.0);
    EXPECT_EQ(list.GetEllipsoid("aa"), nullptr) << "IDs match case-sensitively";
    EXPECT_EQ(std::distance(list.GetIteratorBegin(CKvEllipsoidList::eComplete),
                            list.GetIteratorEnd(CKvEllipsoidList::eComplete)),
              3);

    CKvEllipsoid* added = new CKvEllipsoid("New", "NW", 5, 6);
    list.AddEllipsoid(added);
    EXPECT_EQ(list.GetEllipsoid("NW"), added);
    EXPECT_EQ(list.WriteCustomEllipsoids(dir.File("out.gxr")), GXR_OK);
    CKvEllipsoidList reread;
    reread.ReadEllipsoids(dir.File("out.gxr"), true);
    reread.GenerateCompleteList();
    EXPECT_EQ(std::distance(reread.GetIteratorBegin(CKvEllipsoidList::eCustom),
                            reread.GetIteratorEnd(CKvEllipsoidList::eCustom)),
              2);
    EXPECT_TRUE(*reread.GetEllipsoid("NW") == *added);

    list.DeleteEllipsoid(added);
    EXPECT_EQ(list.GetEllipsoid("NW"), nullptr);
    list.DeleteEllipsoid(const_cast<CKvEllipsoid*>(list.GetEllipsoid("ZZ"))); // system entries stay
    EXPECT_NE(list.GetEllipsoid("ZZ"), nullptr);
    list.DeleteEllipsoid(nullptr);
}

TEST(ShippedCatalogue, EveryDefinitionNamesAKnownEllipsoidAndEveryTypeIsPresent)
{
    CKvEllipsoidList ellipsoids;
    ASSERT_EQ(ellipsoids.ReadEllipsoids(KVCART_SHIPPED_DATA_DIR "ellipsoid.gxr", false), GXR_OK)
        << gxrGetErrorMessageGlb();
    ellipsoids.GenerateCompleteList();
    for (const char* id : {"AA", "AM", "AN", "BR", "BN", "CC", "CD", "EA", "EB", "EC", "ED", "EE",
                           "EF", "FA", "HE", "HO", "ID", "IN", "KA", "RF", "SA", "WD", "WE", "XY"})
        EXPECT_NE(ellipsoids.GetEllipsoid(id), nullptr) << id;
    EXPECT_EQ(ellipsoids.GetEllipsoid("XY")->GetInvFlatness(), 0.0);
    EXPECT_EQ(ellipsoids.GetEllipsoid("XY")->GetMajor(), 6371229.0);
    // Clarke 1866 is defined by its axes a = 6378206.4 m and b = 6356583.8 m.
    EXPECT_NEAR(ellipsoids.GetEllipsoid("CC")->GetMinor(), 6356583.8, 1e-6);

    std::set<int> types;
    std::set<std::string> names;
    for (const char* file : {"map_projection.gxr", "state_plane_nad83.gxr", "state_plane_nad27.gxr"}) {
        CKvMapProjectionList list;
        ASSERT_EQ(list.ReadMapProjections(std::string(KVCART_SHIPPED_DATA_DIR) + file, false), GXR_OK)
            << gxrGetErrorMessageGlb();
        EXPECT_GT(list.GetCount(), 20u) << file;
        for (auto it = list.GetIteratorBegin(); it != list.GetIteratorEnd(); ++it) {
            EXPECT_NE(ellipsoids.GetEllipsoid((*it)->GetEllipsoidID()), nullptr) << (*it)->GetName();
            EXPECT_TRUE(names.insert((*it)->GetName()).second) << "duplicate name " << (*it)->GetName();
            EXPECT_FALSE((*it)->CanDelete());
            types.insert((*it)->GetProjectionType());
        }
    }
    EXPECT_EQ(types.size(), 20u) << "the shipped grids cover every definition type";
    for (int d = 0; d < 20; ++d) {
        std::unique_ptr<CKvMapProjData> def(
            CKvMapProjData::CreateDefaultParameterProjection(CKvMapProjData::Enum2ProjectionType(d)));
        EXPECT_NE(ellipsoids.GetEllipsoid(def->GetEllipsoidID()), nullptr) << def->GetName();
    }
}

TEST(ShippedCatalogue, EveryDefinitionReadsWritesAndReadsBackIdentically)
{
    kvtest::TempDir dir;
    for (const char* file : {"map_projection.gxr", "state_plane_nad83.gxr", "state_plane_nad27.gxr"}) {
        CKvMapProjectionList first;
        first.ReadMapProjections(std::string(KVCART_SHIPPED_DATA_DIR) + file, false);
        ASSERT_EQ(first.WriteCustomMapProjections(dir.File("first.gxr")), GXR_OK);
        CKvMapProjectionList second;
        ASSERT_EQ(second.ReadMapProjections(dir.File("first.gxr"), false), GXR_OK) << gxrGetErrorMessageGlb();
        ASSERT_EQ(second.GetCount(), first.GetCount()) << file;
        auto b = second.GetIteratorBegin();
        for (auto a = first.GetIteratorBegin(); a != first.GetIteratorEnd(); ++a, ++b) {
            EXPECT_EQ((*a)->GetProjectionType(), (*b)->GetProjectionType());
            EXPECT_EQ((*a)->GetName(), (*b)->GetName());
            EXPECT_EQ((*a)->GetBranchName(), (*b)->GetBranchName());
            EXPECT_EQ((*a)->GetEllipsoidID(), (*b)->GetEllipsoidID());
            EXPECT_EQ(Parameters(**a), Parameters(**b)) << (*a)->GetName();
        }
        ASSERT_EQ(second.WriteCustomMapProjections(dir.File("second.gxr")), GXR_OK);
        EXPECT_EQ(kvtest::ReadFile(dir.File("first.gxr")), kvtest::ReadFile(dir.File("second.gxr"))) << file;
    }
}

// Defining parameters of state plane zones as published by the National Geodetic
// Survey (SPCS 83: NOAA Manual NOS NGS 5; SPCS 27: USC&GS Special Publication 235),
// independently of the EPSG dataset the files were generated from.
TEST(ShippedCatalogue, StatePlaneZonesMatchPublishedParameters)
{
    CKvMapProjectionList list;
    for (const char* file : {"state_plane_nad83.gxr", "state_plane_nad27.gxr"})
        list.ReadMapProjections(std::string(KVCART_SHIPPED_DATA_DIR) + file, false);
    auto dms = [](double d, double m, double s = 0.0) { return d < 0 ? d - m / 60 - s / 3600 : d + m / 60 + s / 3600; };

    struct Lambert
    {
        const char* name;
        double parallelA, parallelB, lon0, lat0, fe, fn;
    };
    const Lambert lambert[] = {
        {"NAD83 / California zone 3", dms(38, 26), dms(37, 4), dms(-120, 30), dms(36, 30), 2000000, 500000},
        {"NAD83 / Texas Central", dms(30, 7), dms(31, 53), dms(-100, 20), dms(29, 40), 700000, 3000000},
        {"NAD83 / New York Long Island", dms(41, 2), dms(40, 40), -74, dms(40, 10), 300000, 0},
        {"NAD83 / Pennsylvania North", dms(41, 57), dms(40, 53), dms(-77, 45), dms(40, 10), 600000, 0},
        {"NAD83 / Washington North", dms(48, 44), dms(47, 30), dms(-120, 50), 47, 500000, 0},
        {"NAD83 / Colorado Central", dms(39, 45), dms(38, 27), dms(-105, 30), dms(37, 50), 914401.8289, 304800.6096},
        {"NAD27 / Texas Central", dms(30, 7), dms(31, 53), dms(-100, 20), dms(29, 40), 2000000 * kFoot, 0},
        {"NAD27 / California zone III", dms(38, 26), dms(37, 4), dms(-120, 30), dms(36, 30), 2000000 * kFoot, 0},
        {"NAD27 / Pennsylvania North", dms(41, 57), dms(40, 53), dms(-77, 45), dms(40, 10), 2000000 * kFoot, 0},
    };
    for (const Lambert& z : lambert) {
        auto* d = dynamic_cast<CKvLambert2SPProjection*>(list.GetMapProjection(z.name));
        ASSERT_NE(d, nullptr) << z.name;
        const std::set<double> expected = {std::round(z.parallelA * 1e9), std::round(z.parallelB * 1e9)};
        const std::set<double> actual = {std::round(d->GetParallel1() * 1e9), std::round(d->GetParallel2() * 1e9)};
        EXPECT_EQ(actual, expected) << z.name;
        EXPECT_NEAR(d->GetOriginLongitude(), z.lon0, 1e-9) << z.name;
        EXPECT_NEAR(d->GetOriginLatitude(), z.lat0, 1e-9) << z.name;
        EXPECT_NEAR(d->GetFalseEasting(), z.fe, 1e-4) << z.name;
        EXPECT_NEAR(d->GetFalseNorthing(), z.fn, 1e-4) << z.name;
        EXPECT_EQ(d->GetEllipsoidID(), std::string(z.name).find("NAD83") == 0 ? "RF" : "CC");
    }

    struct Transverse
    {
        const char* name;
        double scale, lon0, lat0, fe, fn;
    };
    const Transverse transverse[] = {
        {"NAD83 / Alabama East", 1.0 - 1.0 / 25000, dms(-85, 50), dms(30, 30), 200000, 0},
        {"NAD83 / Florida East", 1.0 - 1.0 / 17000, -81, dms(24, 20), 200000, 0},
        {"NAD83 / Hawaii zone 1", 1.0 - 1.0 / 30000, dms(-155, 30), dms(18, 50), 500000, 0},
        {"NAD27 / Alabama East", 1.0 - 1.0 / 25000, dms(-85, 50), dms(30, 30), 500000 * kFoot, 0},
        {"NAD27 / New York East", 1.0 - 1.0 / 30000, dms(-74, 20), 40, 500000 * kFoot, 0},
    };
    for (const Transverse& z : transverse) {
        auto* d = dynamic_cast<CKvTransverseMercatorProjection*>(list.GetMapProjection(z.name));
        ASSERT_NE(d, nullptr) << z.name;
        EXPECT_NEAR(d->GetScale(), z.scale, 1e-9) << z.name; // published to nine decimals
        EXPECT_NEAR(d->GetCentre(), z.lon0, 1e-9) << z.name;
        EXPECT_NEAR(d->GetOriginLatitude(), z.lat0, 1e-9) << z.name;
        EXPECT_NEAR(d->GetFalseEasting(), z.fe, 1e-4) << z.name;
        EXPECT_NEAR(d->GetFalseNorthing(), z.fn, 1e-4) << z.name;
    }

    // Alaska zone 1: oblique Mercator along a line of azimuth atan(-3/4) through 57 N 133 40 W.
    auto* alaska = dynamic_cast<CKvHotineObliqueMercatorProjection*>(list.GetMapProjection("NAD83 / Alaska zone 1"));
    ASSERT_NE(alaska, nullptr);
    EXPECT_NEAR(alaska->GetAzimuth(), 360.0 + std::atan2(-3.0, 4.0) * 180.0 / M_PI, 1e-8);
    EXPECT_NEAR(alaska->GetCenterLongitude(), dms(-133, 40), 1e-9);
    EXPECT_EQ(alaska->GetCenterLatitude(), 57.0);
    EXPECT_EQ(alaska->GetScale(), 0.9999);
    EXPECT_EQ(alaska->GetFalseEasting(), 5000000.0);
    EXPECT_EQ(alaska->GetFalseNorthing(), -5000000.0);

    // Michigan's NAD27 zones use an ellipsoid-scaled Lambert: left out, and said so.
    EXPECT_EQ(list.GetMapProjection("NAD27 / Michigan Central"), nullptr);
    EXPECT_TRUE(
        kvtest::Contains(kvtest::ReadFile(KVCART_SHIPPED_DATA_DIR "state_plane_nad27.gxr"), "Michigan Central"));
}

TEST(KvCartSetup, ResolvesNamesEllipsoidsAndEngines)
{
    kvtest::ShippedCatalogue();
    CKvCartSetup* setup = CKvCartSetup::Instance();
    EXPECT_EQ(setup, CKvCartSetup::Instance());
    EXPECT_EQ(setup->GetMapProjectionList().GetCount(), 124u + 21u + 124u + 107u);

    const CKvEllipsoid* airy = CKvMapProjection::Ellipsoid("British National Grid");
    ASSERT_NE(airy, nullptr);
    EXPECT_EQ(airy->GetID(), "AA");
    EXPECT_EQ(CKvMapProjection::Ellipsoid("LONG/LAT"), nullptr) << "the built-in long/lat names no ellipsoid";
    EXPECT_EQ(CKvMapProjection::Ellipsoid("No such grid"), nullptr);
    EXPECT_EQ(CKvMapProjection::EllipsoidFromID("RF")->GetName(), "GRS 1980");
    EXPECT_EQ(CKvMapProjection::EllipsoidFromID(""), nullptr);
    EXPECT_EQ(CKvMapProjection::EllipsoidFromName("International 1924")->GetID(), "IN");
    EXPECT_EQ(CKvMapProjection::EllipsoidFromName(nullptr), nullptr);
    ASSERT_NE(CKvMapProjection::MapProjection("UTM-32"), nullptr);
    EXPECT_EQ(CKvMapProjection::MapProjection("UTM"), nullptr);

    EXPECT_STREQ(CKvMapProjection::IDtoProjectionString(1), "NON-UTM");
    EXPECT_STREQ(CKvMapProjection::IDtoProjectionString(2), "LONG/LAT");
    EXPECT_EQ(std::string(CKvMapProjection::IDtoProjectionString(3)).find("PROJCS[\"Google Maps - Mercator\""), 0u);
    EXPECT_TRUE(kvtest::Contains(CKvMapProjection::IDtoProjectionString(3), "0.0174532925199433]"));
    EXPECT_TRUE(kvtest::Contains(CKvMapProjection::IDtoProjectionString(4), "0.017453292519943295]"));
    EXPECT_STREQ(CKvMapProjection::IDtoProjectionString(0), "");
    EXPECT_STREQ(CKvMapProjection::IDtoProjectionString(5), "");
    EXPECT_TRUE(CKvMapProjection::IsLocal(" NON-UTM\t"));
    EXPECT_FALSE(CKvMapProjection::IsLocal("non-utm"));

    // A catalogue definition makes its engine, with the ellipsoid copied in.
    CKvMapProjData* wgs84 = CKvMapProjection::MapProjection("WGS 84 Geographic");
    ASSERT_NE(wgs84, nullptr);
    std::unique_ptr<CKvProjection> engine(wgs84->CreateProjection());
    ASSERT_NE(engine, nullptr);
    EXPECT_STREQ(engine->GetName(), "WGS 84 Geographic");
    CKvEllipsoid figure;
    ASSERT_TRUE(engine->GetAnonymousEllipsoid(figure));
    EXPECT_EQ(figure.GetMajor(), 6378137.0);
    EXPECT_EQ(figure.GetInvFlatness(), 298.257223563);
    const CKvPRJParser described(engine.get());
    EXPECT_EQ(described.GetProjectionType(), CKvMapProjData::eGeographical);
    EXPECT_EQ(described.GetProjectionTypeName(), "Geographical");
    EXPECT_EQ(described.GetProjCSname(), "WGS 84 Geographic");
    EXPECT_EQ(described.GetDatum(), "WGS 84");
    CString unit;
    double factor = 0.0;
    described.GetProjUnit(unit, factor);
    EXPECT_EQ(unit, "Meter");

    auto* geographic = dynamic_cast<CKvGeographical*>(engine.get());
    ASSERT_NE(geographic, nullptr);
    CKvGeographicalProjection copy;
    ASSERT_TRUE(geographic->GetMapProjection(copy));
    EXPECT_EQ(copy.GetEllipsoidID(), "WE");
    EXPECT_TRUE(geographic->GetEllipsoid(figure));
    EXPECT_EQ(figure.GetName(), "WGS 84");

    // The built-in LONG/LAT has no ellipsoid: no figure, and described as not projected.
    std::unique_ptr<CKvProjection> longLat(CKvMapProjection::MapProjection("LONG/LAT")->CreateProjection());
    EXPECT_FALSE(longLat->GetAnonymousEllipsoid(figure));
    EXPECT_EQ(CKvPRJParser(longLat.get()).GetProjectionType(), CKvMapProjData::eNonProjected);

    // An engine whose name is not in the catalogue writes an empty definition.
    const CKvGeographical stranger("Not catalogued", CKvEllipsoid("WGS 84", "WE", 6378137.0, 298.257223563));
    CKvGeographicalProjection untouched("keep", "b", "e");
    EXPECT_FALSE(stranger.GetMapProjection(untouched));
    EXPECT_EQ(untouched.GetName(), "keep");
    const CKvPRJParser strangerRecord(&stranger);
    EXPECT_EQ(strangerRecord.GetProjectionType(), CKvMapProjData::eNonProjected);
    EXPECT_EQ(strangerRecord.GetProjCSname(), "");
    // A definition of another class under the engine's name is not taken either.
    const CKvGeographical wrongClass("UTM-32", CKvEllipsoid());
    EXPECT_FALSE(wrongClass.GetMapProjection(untouched));
}

TEST(KvCartSetup, UserDefinitionsSurviveTheProcessAndOnlyThey)
{
    kvtest::TempDir user;
    const std::string system = KVCART_SHIPPED_DATA_DIR;
    RunSession(system, user.Path(), "add 'My Site Grid'");
    const std::string written = kvtest::ReadFile(user.File("custom_projection.gxr"));
    EXPECT_TRUE(kvtest::Contains(written, "\"My Site Grid\""));
    EXPECT_FALSE(kvtest::Contains(written, "UTM-1\"")) << "system definitions are not written back";
    EXPECT_FALSE(kvtest::Contains(written, "British National Grid"));

    RunSession(system, user.Path(), "add 'Second Grid'");
    RunSession(system, user.Path(), "ellipsoid MY");
    const std::string listed = RunSession(system, user.Path(), "list");
    EXPECT_EQ(listed, "projection My Site Grid\nprojection Second Grid\nellipsoid MY 6378000.5 300.25\n");

    // A process that does not change the catalogue leaves the files alone.
    const std::string before = kvtest::ReadFile(user.File("custom_projection.gxr"));
    RunSession(system, user.Path(), "list");
    EXPECT_EQ(kvtest::ReadFile(user.File("custom_projection.gxr")), before);
}

TEST(KvCartSetup, CrashDuringWriteBackKeepsThePreviousCatalogue)
{
    kvtest::TempDir user;
    const std::string system = KVCART_SHIPPED_DATA_DIR;
    RunSession(system, user.Path(), "add 'Kept Grid'");
    const std::string before = kvtest::ReadFile(user.File("custom_projection.gxr"));
    ASSERT_FALSE(before.empty());

    // The write-back of a large catalogue is cut off by a file-size limit (SIGXFSZ).
    const std::string command = "ulimit -f 4; exec " + std::string(KVCART_CATALOGUE_SESSION) + " '" + system + "' '" +
                                user.Path() + "' add-many 500";
    const int status = std::system(("sh -c \"" + command + "\"").c_str());
    EXPECT_NE(status, 0) << "the session should have been killed while writing";
    EXPECT_EQ(kvtest::ReadFile(user.File("custom_projection.gxr")), before);
    EXPECT_EQ(RunSession(system, user.Path(), "list"), "projection Kept Grid\n");
}

TEST(KvMapProjectionList, ReadsTheAlternativeKeywordsFromAUserFile)
{
    kvtest::TempDir dir;
    kvtest::WriteFile(dir.File("custom_projection.gxr"),
                      "TARGET MAP_PROJECTION_DEFINITION\n"
                      "  SECTION MERCATOR_PROJECTION\n"
                      "    Projection_Name \"Old Mercator\"\n    Ellipsoid \"WE\"\n"
                      "    Parallel_1_dms 0 -30 0\n    Centre_dms -3 30 0\n"
                      "    Feast_ft_us 1000\n    Feast 1\n    Fnorth 2\n"
                      "  END_SECTION\n"
                      "  SECTION UNKNOWN_PROJECTION\n    Projection_Name \"Skipped\"\n  END_SECTION\n"
                      "  SECTION UTM_PROJECTION\n"
                      "    Projection_Name \"Reduced\"\n    Scale_Reduction 2500\n    Scale 1\n"
                      "  END_SECTION\n"
                      "END_TARGET\n");
    CKvMapProjectionList list;
    list.InitMapProjections(dir.Path() + "no-system/", dir.Path());
    ASSERT_EQ(list.GetCount(), 126u);
    EXPECT_EQ(list.GetMapProjection("Skipped"), nullptr);

    CKvMapProjData* mercator = list.GetMapProjection("Old Mercator");
    ASSERT_NE(mercator, nullptr);
    EXPECT_EQ(mercator->GetProjectionType(), CKvMapProjData::eMercator2SP);
    EXPECT_TRUE(mercator->CanDelete());
    EXPECT_TRUE(mercator->CanEdit());
    EXPECT_EQ(Parameters(*mercator), (std::vector<double>{-0.5, -3.5, 1000 * kFoot, 2.0}));
    CKvMapProjData* reduced = list.GetMapProjection("Reduced");
    ASSERT_NE(reduced, nullptr);
    EXPECT_DOUBLE_EQ(Parameters(*reduced)[0], 0.9996);

    // Written back under the current section name and plain keywords, custom entries only.
    ASSERT_EQ(list.WriteCustomMapProjections(dir.File("out.gxr"), true), GXR_OK);
    const std::string text = kvtest::ReadFile(dir.File("out.gxr"));
    EXPECT_TRUE(kvtest::Contains(text, "SECTION MERCATOR_2SP_PROJECTION"));
    EXPECT_FALSE(kvtest::Contains(text, "_dms"));
    EXPECT_FALSE(kvtest::Contains(text, "_ft_us"));
    EXPECT_FALSE(kvtest::Contains(text, "UTM-1\""));
    CKvMapProjectionList reread;
    reread.ReadMapProjections(dir.File("out.gxr"), true);
    ASSERT_EQ(reread.GetCount(), 2u);
    EXPECT_EQ(Parameters(**reread.GetIteratorBegin()), Parameters(*mercator));
}
