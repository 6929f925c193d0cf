#include "catalogue/KvGeographicalProjection.h"
#include "catalogue/KvKrovakProjection.h"
#include "catalogue/KvLambert1SPProjection.h"
#include "catalogue/KvMapProjectionList.h"
#include "catalogue/KvMercator2SPProjection.h"
#include "catalogue/KvTransverseMercatorProjection.h"
#include "paramfile/Gxr.h"
#include "projections/KvProjection.h"
#include "wkt/KvPRJParser.h"

#include "TestSupport.h"

using kvtest::Parameters;

#include <gtest/gtest.h>
#include <memory>

namespace {

using Def = std::unique_ptr<CKvMapProjData>;

// Reads the first section of a one-target text as the definition of its type.
Def ReadSection(const std::string& sectionText)
{
    const std::string text = "TARGET MAP_PROJECTION_DEFINITION\n" + sectionText + "END_TARGET\n";
    GxrFile* file = gxrLoadText("test.gxr", text.c_str());
    EXPECT_NE(file, nullptr) << gxrGetErrorMessageGlb();
    GxrSection* section = gxrSectionByNum(gxrTargetByNameNum(file, "MAP_PROJECTION_DEFINITION", 1), 1);
    Def found;
    for (int t = 0; t < CKvMapProjData::GetNoOfProjections() && !found; ++t) {
        Def d(CKvMapProjData::CreateDefaultParameterProjection(CKvMapProjData::Enum2ProjectionType(t)));
        if (d->IsSectionID(gxrGetSectionName(section))) {
            d->ReadFromHandle(section, true);
            found = std::move(d);
        }
    }
    gxrClose(file);
    return found;
}

} // namespace

TEST(KvMapProjData, EveryTypeHasItsDefaultDefinition)
{
    struct Expected
    {
        const char* name;
        const char* ellipsoid;
        const char* section;
        int count;
        std::vector<double> values;
    };
    const Expected expected[22] = {
        {"Default Transverse Mercator", "WE", "UTM_PROJECTION", 5, {0.9996, 0, 0, 500000, 0}},
        {"Default Lambert 2SP", "WE", "LAMBERT_CONIC_2SP_PROJECTION", 6, {5, 10, 0, 0, 500000, 0}},
        {"Default Lambert 1SP", "WE", "LAMBERT_CONIC_1SP_PROJECTION", 5, {0.9996, 0, 0, 500000, 0}},
        {"Default Stereographic", "WE", "STEREOGRAPHIC_PROJECTION", 5, {1, 0, 0, 500000, 0}},
        {"Default New Zealang Map Grid", "IN", "NEW_ZEALAND_MAP_GRID_PROJECTION", 4, {173, -41, 2510000, 6023150}},
        {"Default Hotine Oblique Mercator",
         "RF",
         "HOTINE_OBLIQUE_MERCATOR_PROJECTION",
         6,
         {0.9996, 0, 0, 0, 500000, 0}},
        {"Default Oblique Mercator", "BR", "OBLIQUE_MERCATOR_PROJECTION", 6, {0.9996, 0, 0, 0, 500000, 0}},
        {"Default Rectified Skew Orthomorphic",
         "EB",
         "RECTIFIED_SKEW_ORTHOMORPHIC_PROJECTION",
         7,
         {0.9996, 0, 0, 0, 0, 500000, 0}},
        {"Default Rotated Longitude/Latitude", "XY", "ROTATED_LONGITUDE_LATITUDE_PROJECTION", 3, {0, 0, 0}},
        {"Default Mercator 2SP", "WE", "MERCATOR_2SP_PROJECTION", 4, {0, 0, 0, 0}},
        {"Default Mercator 1SP", "WE", "MERCATOR_1SP_PROJECTION", 4, {0, 0, 0, 0}},
        {"Default Stereographic North Pole", "WE", "STEREOGRAPHIC_NORTH_POLE_PROJECTION", 4, {60, 0, 0, 0}},
        {"Default Stereographic South Pole", "WE", "STEREOGRAPHIC_SOUTH_POLE_PROJECTION", 4, {-60, 0, 0, 0}},
        {"Default Geographical", "WE", "GEOGRAPHICAL_PROJECTION", 0, {}},
        {"Default Krovak Oblique Conformal Conic",
         "BR",
         "KROVAK_OBLIQUE_CONFORMAL_CONIC",
         10,
         {0.9999, 0, 0, 0, 0, 0, 1, 1, 500000, 0}},
        {"Default Albers Equal Area", "WE", "ALBERS_EQUAL_AREA_PROJECTION", 6, {5, 10, 0, 0, 500000, 0}},
        {"Default Lambert Azimuthal Equal Area", "WE", "LAMBERT_AZIMUTHAL_EQUAL_AREA_PROJECTION", 4, {0, 0, 500000, 0}},
        {"Default Cassini-Soldner", "WE", "CASSINI_SOLDNER_PROJECTION", 4, {0, 0, 0, 0}},
        {"Default Equidistant Conic", "WE", "EQUIDISTANT_CONIC_PROJECTION", 6, {5, 10, 0, 0, 0, 0}},
        {"Default Polar Stereographic", "WE", "POLAR_STEREOGRAPHIC_PROJECTION", 5, {1, 0, 0, 500000, 0}},
        {"Default Stereographic (Snyder)", "WE", "STEREOGRAPHIC_SNYDER_PROJECTION", 5, {1, 0, 0, 500000, 0}},
        {"Default Pseudo Mercator", "WE", "PSEUDO_MERCATOR_PROJECTION", 4, {0, 0, 0, 0}},
    };
    // Types 1..20, then 23 and 24 (21 and 22 are no definitions), then the
    // described methods from 25.
    ASSERT_GT(CKvMapProjData::GetNoOfProjections(), 22);
    EXPECT_EQ(CKvMapProjData::Enum2ProjectionType(CKvMapProjData::GetNoOfProjections()),
              CKvMapProjData::eNoProjection);
    for (int i = 22; i < CKvMapProjData::GetNoOfProjections(); ++i) {
        const CKvMapProjData::EProjectionType type = CKvMapProjData::Enum2ProjectionType(i);
        EXPECT_TRUE(CKvMapProjData::IsDescribedMethod(type));
        EXPECT_GE(type, CKvMapProjData::eMillerCylindrical);
        EXPECT_LE(type, CKvMapProjData::eLastMethod);
        EXPECT_EQ(CKvMapProjData::ProjectionType2Enum(type), i);
        Def d(CKvMapProjData::CreateDefaultParameterProjection(type));
        ASSERT_NE(d, nullptr);
        EXPECT_EQ(d->GetProjectionType(), type);
        EXPECT_TRUE(d->IsSectionID(d->GetTypeInfo().sectionID));
        std::unique_ptr<CKvProjection, void (*)(CKvProjection*)> engine(d->CreateProjection(),
                                                                         CKvProjection::Release);
        EXPECT_NE(engine, nullptr) << d->GetTypeInfo().title;
    }
    for (int i = 0; i < 22; ++i) {
        const CKvMapProjData::EProjectionType type = CKvMapProjData::Enum2ProjectionType(i);
        EXPECT_EQ(type, i < 20 ? i + 1 : i + 3);
        EXPECT_EQ(CKvMapProjData::ProjectionType2Enum(type), i);
        Def d(CKvMapProjData::CreateDefaultParameterProjection(type));
        ASSERT_NE(d, nullptr);
        SCOPED_TRACE(expected[i].name);
        EXPECT_EQ(d->GetProjectionType(), type);
        EXPECT_EQ(d->GetName(), expected[i].name);
        EXPECT_EQ(d->GetEllipsoidID(), expected[i].ellipsoid);
        EXPECT_EQ(d->GetBranchName(), "");
        EXPECT_TRUE(d->IsSectionID(expected[i].section));
        EXPECT_FALSE(d->IsSectionID(CString(expected[i].section).MakeLower().GetStdString()));
        EXPECT_EQ(d->GetNoOfParameters(), expected[i].count);
        EXPECT_EQ(Parameters(*d), expected[i].values);
    }
    // No type claims another's section.
    const int n = CKvMapProjData::GetNoOfProjections();
    for (int i = 0; i < n; ++i) {
        Def d(CKvMapProjData::CreateDefaultParameterProjection(CKvMapProjData::Enum2ProjectionType(i)));
        for (int j = 0; j < n; ++j)
            if (j != i) {
                Def other(CKvMapProjData::CreateDefaultParameterProjection(CKvMapProjData::Enum2ProjectionType(j)));
                EXPECT_FALSE(other->IsSectionID(d->GetTypeInfo().sectionID)) << i << " " << j;
            }
    }
    for (const CKvMapProjData::EProjectionType none : {CKvMapProjData::eNonProjected, CKvMapProjData::eNoProjection}) {
        EXPECT_EQ(CKvMapProjData::CreateDefaultParameterProjection(none), nullptr);
        EXPECT_EQ(CKvMapProjData::ProjectionType2Enum(none), -1);
        EXPECT_EQ(CKvMapProjData::GetTypeInfo(none), nullptr);
    }
}

// A definition of every type, with parameters none of its defaults has, through
// the user's parameter file and back: each in its own section, read back whole.
TEST(KvMapProjData, EveryTypeRoundTripsThroughTheParameterFile)
{
    kvtest::ShippedCatalogue();
    kvtest::TempDir dir;
    CKvMapProjectionList list;
    std::vector<const CKvMapProjData*> written;
    for (int i = 0; i < CKvMapProjData::GetNoOfProjections(); ++i) {
        const CKvMapProjData::EProjectionType type = CKvMapProjData::Enum2ProjectionType(i);
        std::vector<double> values;
        for (int k = 0; k < 10; ++k)
            values.push_back(0.5 + 0.125 * k + 0.001 * i);
        CKvMapProjData* d =
            CKvMapProjData::CreateProjection(type, "Type " + std::to_string(i), "Tests", "BR", values.data());
        ASSERT_NE(d, nullptr) << i;
        list.AddMapProjection(d);
        written.push_back(d);
    }
    ASSERT_EQ(list.WriteCustomMapProjections(dir.File("types.gxr")), GXR_OK);
    const std::string text = kvtest::ReadFile(dir.File("types.gxr"));
    CKvMapProjectionList back;
    ASSERT_EQ(back.ReadMapProjections(dir.File("types.gxr"), true), GXR_OK);
    EXPECT_EQ(back.GetProblems(), "");
    ASSERT_EQ(back.GetCount(), written.size());
    for (const CKvMapProjData* d : written) {
        SCOPED_TRACE(d->GetTypeInfo().title);
        EXPECT_NE(text.find(std::string("SECTION ") + d->GetTypeInfo().sectionID), std::string::npos);
        auto it = back.GetIteratorBegin();
        while (it != back.GetIteratorEnd() && (*it)->GetName() != d->GetName())
            ++it;
        ASSERT_NE(it, back.GetIteratorEnd());
        EXPECT_EQ((*it)->GetProjectionType(), d->GetProjectionType());
        EXPECT_EQ((*it)->GetBranchName(), "Tests");
        EXPECT_EQ((*it)->GetEllipsoidID(), "BR");
        EXPECT_EQ(Parameters(**it), Parameters(*d));
    }
}

TEST(KvMapProjData, ParametersLabelsAndFactory)
{
    const double values[10] = {0.9999, 78.5, 24.8333, 49.5, 30.2881, 90, -1, 1, 0, 0};
    Def krovak(CKvMapProjData::CreateProjection(CKvMapProjData::eKrovak, "S-JTSK", "S-JTSK", "BR", values));
    ASSERT_NE(krovak, nullptr);
    EXPECT_EQ(Parameters(*krovak), std::vector<double>(values, values + 10));
    EXPECT_TRUE(krovak->CanDelete()) << "definitions made in code are the user's own";
    EXPECT_TRUE(krovak->CanEdit());
    std::string label = "untouched";
    double value = -7.0;
    CKvMapProjData::EParamType kind = CKvMapProjData::eLength;
    EXPECT_FALSE(krovak->GetParameter(-1, label, value, kind));
    EXPECT_FALSE(krovak->GetParameter(10, label, value, kind));
    EXPECT_EQ(label, "untouched");
    EXPECT_EQ(value, -7.0);
    ASSERT_TRUE(krovak->GetParameter(0, label, value, kind));
    EXPECT_EQ(label, "Scale at pseudo parallel:");
    EXPECT_EQ(kind, CKvMapProjData::eDimensionless);
    ASSERT_TRUE(krovak->GetParameter(5, label, value, kind));
    EXPECT_EQ(label, "XY plane rotation:");
    EXPECT_EQ(kind, CKvMapProjData::eAngle);
    ASSERT_TRUE(krovak->GetParameter(9, label, value, kind));
    EXPECT_EQ(label, "False northing:");
    EXPECT_EQ(kind, CKvMapProjData::eLength);
    EXPECT_EQ(krovak->GetProjectionTypeTitle(), "Krovak oblique conformal conic");

    // The typed accessors address the stored order.
    CKvLambert1SPProjection lambert("Jamaica", "JAD69", "CC", 1.0, -77.0, 18.0, 250000.0, 150000.0);
    EXPECT_EQ(lambert.GetOriginLongitude(), -77.0);
    EXPECT_EQ(lambert.GetOriginLatitude(), 18.0);
    ASSERT_TRUE(lambert.GetParameter(1, label, value, kind));
    EXPECT_EQ(label, "Central meridian:") << "Lambert 1SP labels its origin longitude as a central meridian";
    lambert.SetFalseNorthing(1.5);
    EXPECT_EQ(Parameters(lambert).back(), 1.5);

    for (CKvMapProjData::EProjectionType t : {CKvMapProjData::eNonProjected, CKvMapProjData::eNoProjection})
        EXPECT_EQ(CKvMapProjData::CreateProjection(t, "x", "y", "z", values), nullptr);
    Def geographic(CKvMapProjData::CreateProjection(CKvMapProjData::eGeographical, "G", "B", "WE", nullptr));
    EXPECT_EQ(geographic->GetNoOfParameters(), 0);
}

TEST(KvMapProjData, TypeFlagsSelectTheRightFamilies)
{
    using D = CKvMapProjData;
    EXPECT_TRUE(D::IsEquivalent(2, D::eGeographical));
    EXPECT_TRUE(D::IsEquivalent(2, D::eRotatedLongitudeLatitude));
    EXPECT_FALSE(D::IsEquivalent(1, D::eGeographical));
    EXPECT_TRUE(D::IsEquivalent(1, D::eTransverseMercator));
    EXPECT_TRUE(D::IsEquivalent(1, D::ePolarStereographic));
    EXPECT_FALSE(D::IsEquivalent(2, D::eKrovak));
    EXPECT_FALSE(D::IsEquivalent(3, D::eNonProjected));
    EXPECT_FALSE(D::IsEquivalent(3, D::eNoProjection));
}

TEST(KvMapProjData, ReadingRulesForScalesAnglesAndFeet)
{
    // A scale reduction wins over the scale; US feet win over metres.
    Def tm = ReadSection("SECTION UTM_PROJECTION\n Projection_Name \"TM\"\n Branch_Name \"B\"\n Ellipsoid \"WE\"\n"
                         " Scale 0.5\n Scale_Reduction 2500\n Centre 9\n Feast 1\n Feast_ft_us 1000\n"
                         " Fnorth_ft_us -3937\nEND_SECTION\n");
    ASSERT_NE(tm, nullptr);
    auto* t = dynamic_cast<CKvTransverseMercatorProjection*>(tm.get());
    ASSERT_NE(t, nullptr);
    EXPECT_DOUBLE_EQ(t->GetScale(), 0.9996);
    EXPECT_NEAR(t->GetFalseEasting(), 304.8006096012192, 1e-9);
    EXPECT_NEAR(t->GetFalseNorthing(), -1200.0, 1e-9);
    EXPECT_EQ(t->GetCentre(), 9.0);
    EXPECT_EQ(t->GetOriginLatitude(), 0.0) << "an absent origin latitude is the equator";
    EXPECT_EQ(t->GetName(), "TM");
    EXPECT_EQ(t->GetBranchName(), "B");
    EXPECT_EQ(t->GetEllipsoidID(), "WE");
    EXPECT_TRUE(t->CanDelete());

    // Degrees, minutes, seconds: the sign comes from the degrees alone.
    struct DmsCase
    {
        const char* dms;
        double degrees;
    };
    const DmsCase cases[] = {{"-3 30 0", -3.5},
                             {"0 -30 0", -0.5},
                             {"0 30 0", 0.5},
                             {"-0 30 0", 0.5},
                             {"52 9 22.178", 52.0 + 9.0 / 60.0 + 22.178 / 3600.0},
                             {"12", 12.0},
                             {"-12 6", -12.1}};
    for (const DmsCase& c : cases) {
        Def d = ReadSection(std::string("SECTION UTM_PROJECTION\n Centre 99\n Centre_dms ") + c.dms +
                            "\n Origin_Latitude_dms " + c.dms + "\nEND_SECTION\n");
        auto* dt = dynamic_cast<CKvTransverseMercatorProjection*>(d.get());
        ASSERT_NE(dt, nullptr);
        EXPECT_NEAR(dt->GetCentre(), c.degrees, 1e-12) << c.dms;
        EXPECT_NEAR(dt->GetOriginLatitude(), c.degrees, 1e-12) << c.dms;
    }

    // Angles without a DMS form ignore one; the Krovak scales are read as they stand.
    Def k = ReadSection("SECTION KROVAK_OBLIQUE_CONFORMAL_CONIC\n Azimuth 30.5\n Azimuth_dms 1 0 0\n"
                        " Scale_At_Pseudo_Parallel 0.9999\n Scale_Reduction 2\n X_Scale -1\n"
                        " Pseudo_Parallel_dms 78 30\nEND_SECTION\n");
    auto* kr = dynamic_cast<CKvKrovakProjection*>(k.get());
    ASSERT_NE(kr, nullptr);
    EXPECT_EQ(kr->GetAzimuth(), 30.5);
    EXPECT_EQ(kr->GetScaleAtPseudoParallel(), 0.9999);
    EXPECT_EQ(kr->GetXScale(), -1.0);
    EXPECT_EQ(kr->GetPseudoParallel(), 78.5);

    // The old Mercator section name reads as Mercator 2SP and is written under the new one.
    Def m = ReadSection("SECTION MERCATOR_PROJECTION\n Projection_Name \"Old\"\n Parallel_1 42\n Centre 51\n"
                        "END_SECTION\n");
    ASSERT_NE(dynamic_cast<CKvMercator2SPProjection*>(m.get()), nullptr);
    EXPECT_EQ(m->GetProjectionType(), CKvMapProjData::eMercator2SP);
    GxrFile* out = gxrCreate("unused");
    ASSERT_TRUE(m->WriteToHandle(gxrAddTarget(out, "MAP_PROJECTION_DEFINITION")));
    GxrTarget* target = gxrTargetByNameNum(out, "MAP_PROJECTION_DEFINITION", 1);
    EXPECT_STREQ(gxrGetSectionName(gxrSectionByNum(target, 1)), "MERCATOR_2SP_PROJECTION");
    double p1 = 0.0;
    EXPECT_EQ(gxrGetParam(gxrSectionByNum(target, 1), "Parallel_1", &p1, 1, 1), 1);
    EXPECT_EQ(p1, 42.0);
    gxrClose(out);

    // Reading from nothing changes nothing.
    CKvTransverseMercatorProjection untouched("keep", "b", "WE", 1, 2, 3, 4, 5);
    EXPECT_FALSE(untouched.ReadFromHandle(nullptr, false));
    EXPECT_EQ(untouched.GetName(), "keep");
}

TEST(KvMapProjData, WritesPlainKeywordsThatReadBackIdentically)
{
    Def d = ReadSection("SECTION LAMBERT_CONIC_2SP_PROJECTION\n Projection_Name \"L\"\n Branch_Name \"B\"\n"
                        " Ellipsoid \"RF\"\n Parallel_1_dms 49 0 0\n Parallel_2 44\n Origin_Longitude 3\n"
                        " Origin_Latitude_dms 46 30 0\n Feast_ft_us 1000\n Fnorth 6600000\nEND_SECTION\n");
    ASSERT_NE(d, nullptr);
    GxrFile* out = gxrCreate("unused");
    ASSERT_TRUE(d->WriteToHandle(gxrAddTarget(out, "MAP_PROJECTION_DEFINITION")));
    GxrSection* s = gxrSectionByNum(gxrTargetByNameNum(out, "MAP_PROJECTION_DEFINITION", 1), 1);
    for (const char* alternative : {"Parallel_1_dms", "Origin_Latitude_dms", "Feast_ft_us", "Scale_Reduction"})
        EXPECT_EQ(gxrKeywordByNameNum(s, alternative, 1), nullptr) << alternative;
    const char* written[] = {"Projection_Name",  "Branch_Name",     "Ellipsoid", "Parallel_1", "Parallel_2",
                             "Origin_Longitude", "Origin_Latitude", "Feast",     "Fnorth"};
    for (int i = 0; i < 9; ++i)
        EXPECT_STREQ(gxrGetKeywordName(gxrKeywordByNum(s, i + 1)), written[i]);

    Def back(CKvMapProjData::CreateDefaultParameterProjection(CKvMapProjData::eLambert2SP));
    ASSERT_TRUE(back->ReadFromHandle(s, false));
    EXPECT_EQ(Parameters(*back), Parameters(*d));
    EXPECT_EQ(back->GetName(), "L");
    EXPECT_FALSE(back->CanDelete());
    EXPECT_FALSE(back->CanEdit());
    gxrClose(out);
}

TEST(KvMapProjData, TransferFillsTheWktRecord)
{
    kvtest::ShippedCatalogue();
    const CKvTransverseMercatorProjection bng("British National Grid", "OSGB 1936", "AA", 0.9996012717, -2.0, 49.0,
                                              400000.0, -100000.0);
    const CKvPRJParser record(&bng);
    EXPECT_EQ(record.GetProjCSname(), "British National Grid");
    EXPECT_EQ(record.GetGeoCSname(), "Unused");
    EXPECT_EQ(record.GetDatum(), "OSGB 1936");
    CString name;
    double a = 0.0, invf = 0.0;
    record.GetEllipsoid(name, a, invf);
    EXPECT_EQ(name, "Airy 1830");
    EXPECT_EQ(a, 6377563.396);
    EXPECT_EQ(invf, 299.3249646);
    record.GetPrimeMeridian(name, a);
    EXPECT_EQ(name, "Greenwich");
    EXPECT_EQ(a, 0.0);
    record.GetAngularUnit(name, a);
    EXPECT_EQ(name, "Degree");
    EXPECT_EQ(a, 0.017453292519943295);
    record.GetProjUnit(name, a);
    EXPECT_EQ(name, "Meter");
    EXPECT_EQ(a, 1.0);
    EXPECT_EQ(record.GetProjectionType(), CKvMapProjData::eTransverseMercator);
    EXPECT_EQ(record.GetProjectionTypeName(), "Transverse_Mercator");
    EXPECT_EQ(record.GetScaleFactor(), 0.9996012717);
    EXPECT_EQ(record.GetCentralMeridian(), -2.0);
    EXPECT_EQ(record.GetLatitudeOfOrigin(), 49.0);
    EXPECT_EQ(record.GetFalseEasting(), 400000.0);
    EXPECT_EQ(record.GetFalseNorthing(), -100000.0);
    EXPECT_EQ(record.GetStandardParallel1(), CKvPRJParser::Undefined) << "fields of other types stay unset";
    EXPECT_EQ(record.GetAzimuth(), CKvPRJParser::Undefined);

    // The Krovak record: every parameter lands in its own field.
    const double kv[10] = {0.9999, 78.5, 24.8333, 49.5, 30.2881, 90, -1, 1, 10, 20};
    Def krovak(CKvMapProjData::CreateProjection(CKvMapProjData::eKrovak, "K", "S-JTSK", "BR", kv));
    const CKvPRJParser k(krovak.get());
    EXPECT_EQ(k.GetProjectionTypeName(), "Krovak");
    EXPECT_EQ(k.GetScaleFactor(), 0.9999);
    EXPECT_EQ(k.GetPseudoParallel(), 78.5);
    EXPECT_EQ(k.GetLongitudeOfCenter(), 24.8333);
    EXPECT_EQ(k.GetLatitudeOfCenter(), 49.5);
    EXPECT_EQ(k.GetAzimuth(), 30.2881);
    EXPECT_EQ(k.GetXYPlaneRotation(), 90.0);
    EXPECT_EQ(k.GetXScale(), -1.0);
    EXPECT_EQ(k.GetYScale(), 1.0);
    EXPECT_EQ(k.GetFalseEasting(), 10.0);
    EXPECT_EQ(k.GetFalseNorthing(), 20.0);

    // Every WKT name a definition writes is one the record's table reads back to the same type.
    for (int i = 0; i < 20; ++i) {
        Def d(CKvMapProjData::CreateDefaultParameterProjection(CKvMapProjData::Enum2ProjectionType(i)));
        const CKvPRJParser r(d.get());
        EXPECT_EQ(r.GetProjectionType(), d->GetProjectionType()) << d->GetName();
        EXPECT_EQ(r.LookUpProjectionName(r.GetProjectionTypeName()), d->GetProjectionType()) << d->GetName();
    }

    // An unknown ellipsoid makes the system "not projected", with no ellipsoid written.
    const CKvTransverseMercatorProjection orphan("Orphan", "B", "??", 1, 0, 0, 0, 0);
    const CKvPRJParser o(&orphan);
    EXPECT_EQ(o.GetProjectionType(), CKvMapProjData::eNonProjected);
    EXPECT_EQ(o.GetProjectionTypeName(), "Non_Projected");
    o.GetEllipsoid(name, a, invf);
    EXPECT_EQ(a, CKvPRJParser::Undefined);
    EXPECT_EQ(o.GetScaleFactor(), 1.0);
}

TEST(KvPRJParser, RecordDefaultsNamesAndAxes)
{
    const CKvPRJParser record("");
    EXPECT_EQ(record.GetProjectionType(), CKvMapProjData::eNoProjection);
    EXPECT_EQ(record.GetFalseEasting(), -1.0e-35);
    CString axis, direction;
    record.GetAxisInfo(CKvPRJParser::eFirstAxis, axis, direction);
    EXPECT_EQ(axis, "Easting");
    EXPECT_EQ(direction, "EAST");
    record.GetAxisInfo(CKvPRJParser::eSecondAxis, axis, direction);
    EXPECT_EQ(axis, "Northing");
    EXPECT_EQ(direction, "NORTH");
    CKvPRJParser edited("");
    edited.SetAxisInfo(static_cast<CKvPRJParser::EAxisType>(3), "X", "UP");
    edited.GetAxisInfo(static_cast<CKvPRJParser::EAxisType>(3), axis, direction);
    EXPECT_EQ(axis, "Northing") << "other axis numbers do nothing";

    EXPECT_EQ(record.LookUpProjectionName("TRANSVERSE_mercator"), CKvMapProjData::eTransverseMercator);
    EXPECT_EQ(record.LookUpProjectionName("Gauss_Kruger"), CKvMapProjData::eTransverseMercator);
    EXPECT_EQ(record.LookUpProjectionName("Mercator"), CKvMapProjData::eMercator2SP);
    EXPECT_EQ(record.LookUpProjectionName("Non_Projected"), CKvMapProjData::eNonProjected);
    EXPECT_EQ(record.LookUpProjectionName("Aitoff"), CKvMapProjData::eNoProjection);

    const CString wkt("PROJCS[\"RD New\",GEOGCS[\"Amersfoort\",DATUM[\"D_Amersfoort\"]]]");
    EXPECT_EQ(CKvPRJParser::GetName(wkt, "PROJCS"), "RD New");
    EXPECT_EQ(CKvPRJParser::GetName(wkt, "DATUM"), "D_Amersfoort");
    EXPECT_EQ(CKvPRJParser::GetName(wkt, "SPHEROID"), "");
    EXPECT_EQ(CKvPRJParser::ShortName(wkt), "RD New");
    EXPECT_EQ(CKvPRJParser::ShortName("GEOGCS[\"WGS 84\",DATUM[\"D\"]]"), "WGS 84");
    EXPECT_EQ(CKvPRJParser::ShortName("COMPD_CS[\"RD + NAP\",PROJCS[\"RD New\"]]"), "RD + NAP");
    EXPECT_EQ(CKvPRJParser::ShortName("  NON-UTM "), "Local Coordinates");
    EXPECT_EQ(CKvPRJParser::ShortName("UTM-32"), "UTM-32");
}
