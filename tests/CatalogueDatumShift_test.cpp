// Catalogue names carry their datum's shift to WGS 84, and a change of datum
// whose shift is not known is never made silently. Reference values: PROJ
// through the named transformation (tools/make_catalogue_shift_vectors.py).
#include "catalogue/KvMapProjData.h"
#include "catalogue/KvTransverseMercatorProjection.h"
#include "coordsys/KvMapProjection.h"
#include "geodesy/KvDatumConverter.h"
#include "projections/KvProjection.h"

#include "TestSupport.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

struct SReference
{
    std::string name;
    int epsg = 0;
    std::string transformation;
    double lon = 0, lat = 0, x = 0, y = 0;
};

std::vector<SReference> LoadReferences()
{
    std::ifstream in(std::string(KVCART_TEST_DATA_DIR) + "catalogue_shift_vectors.txt");
    std::vector<SReference> rows;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#')
            continue;
        const std::vector<std::string> f = kvtest::TabFields(line);
        if (f.size() != 7)
            continue;
        rows.push_back({f[0], std::atoi(f[1].c_str()), f[2], std::atof(f[3].c_str()), std::atof(f[4].c_str()),
                        std::atof(f[5].c_str()), std::atof(f[6].c_str())});
    }
    return rows;
}

// GDAL's WKT 1 texts, without TOWGS84: datums whose shift the text does not give.
const char kAmersfoortWkt[] =
    "PROJCS[\"Amersfoort / RD New\",GEOGCS[\"Amersfoort\",DATUM[\"Amersfoort\",SPHEROID[\"Bessel "
    "1841\",6377397.155,299.1528128]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],"
    "PROJECTION[\"Oblique_Stereographic\"],PARAMETER[\"latitude_of_origin\",52.1561605555556],"
    "PARAMETER[\"central_meridian\",5.38763888888889],PARAMETER[\"scale_factor\",0.9999079],"
    "PARAMETER[\"false_easting\",155000],PARAMETER[\"false_northing\",463000],UNIT[\"metre\",1]]";
const char kNad27Wkt[] =
    "PROJCS[\"NAD27 / Alabama East\",GEOGCS[\"NAD27\",DATUM[\"North_American_Datum_1927\",SPHEROID[\"Clarke "
    "1866\",6378206.4,294.978698213898]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],"
    "PROJECTION[\"Transverse_Mercator\"],PARAMETER[\"latitude_of_origin\",30.5],"
    "PARAMETER[\"central_meridian\",-85.8333333333333],PARAMETER[\"scale_factor\",0.99996],"
    "PARAMETER[\"false_easting\",500000],PARAMETER[\"false_northing\",0],UNIT[\"US survey foot\",0.304800609601219]]";
const char kEtrs89Wkt[] =
    "PROJCS[\"ETRS89 / UTM zone 32N\",GEOGCS[\"ETRS89\",DATUM[\"European_Terrestrial_Reference_System_1989\","
    "SPHEROID[\"GRS 1980\",6378137,298.257222101]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],"
    "PROJECTION[\"Transverse_Mercator\"],PARAMETER[\"latitude_of_origin\",0],PARAMETER[\"central_meridian\",9],"
    "PARAMETER[\"scale_factor\",0.9996],PARAMETER[\"false_easting\",500000],PARAMETER[\"false_northing\",0],"
    "UNIT[\"metre\",1]]";
// The same text with a zero TOWGS84, as GDAL writes datums that coincide with WGS 84.
std::string WithZeroShift(const char* wkt)
{
    std::string text = wkt;
    const size_t spheroidEnd = text.find("]]", text.find("SPHEROID"));
    return text.insert(spheroidEnd + 1, ",TOWGS84[0,0,0,0,0,0,0]");
}

} // namespace

// WGS 84 longitude and latitude to the grids of catalogue names as PROJ gives
// them through the same transformation, and back; the catalogue entry names
// that transformation.
TEST(CatalogueDatumShift, CatalogueNamesConvertAsPROJThroughTheirTransformation)
{
    kvtest::ShippedCatalogue();
    const std::vector<SReference> rows = LoadReferences();
    ASSERT_GE(rows.size(), 30u);
    for (const SReference& r : rows) {
        SCOPED_TRACE(r.name + " " + std::to_string(r.lon) + " " + std::to_string(r.lat));
        const CKvMapProjData* definition = CKvMapProjection::FindMapProjectionDefinition(r.name.c_str());
        ASSERT_NE(definition, nullptr);
        EXPECT_EQ(definition->GetEpsgCode(), r.epsg);
        EXPECT_TRUE(definition->HasDatumShift());
        EXPECT_EQ("EPSG:" + std::to_string(definition->GetDatumShiftCode()), r.transformation);

        CKvDatumConverter converter("LONG/LAT", r.name.c_str());
        EXPECT_EQ(converter.GetMessage(), "");
        converter.SetConversionType(CKvDatumConverter::eGeoToProj);
        const double unit = converter.GetMapProjection(false)->GetLinearUnit();
        double x = r.lon, y = r.lat, h = 0.0;
        converter.Convert(x, y, h);
        // A millimetre, in the grid's unit (US survey feet for NAD27).
        EXPECT_NEAR(x / unit, r.x, 0.001 / unit);
        EXPECT_NEAR(y / unit, r.y, 0.001 / unit);
        converter.InvConvert(x, y, h);
        EXPECT_NEAR(x, r.lon, 2e-8);
        EXPECT_NEAR(y, r.lat, 2e-8);
        EXPECT_NEAR(h, 0.0, 0.001);
    }
}

// The system object of a catalogue name has its definition's shift in its
// info; the bypass keeps the established projection of latitude and longitude.
TEST(CatalogueDatumShift, TheSystemCarriesTheShiftAndTheBypassKeepsTheProjectionAlone)
{
    kvtest::ShippedCatalogue();
    const CKvMapProjection bng("British National Grid");
    CKvDatumShift shift;
    bng.GetDatumShift(shift);
    EXPECT_EQ(shift.GetType(), CKvCartDef::eSevenParameters);
    const double published[7] = {446.448, -125.157, 542.06, 0.15, 0.247, 0.842, -20.489};
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(shift[i], published[i]) << i;
    EXPECT_TRUE(bng.IsDatumShiftKnown());
    EXPECT_STREQ(bng.GetDatumName(), "OSGB 1936");
    // The units and axes still come from the engine's description.
    EXPECT_EQ(bng.GetLinearUnit(), 1.0);
    EXPECT_EQ(bng.GetCoordSysType(), 1);
    const CKvMapProjection copy(bng);
    CKvDatumShift copied;
    copy.GetDatumShift(copied);
    EXPECT_EQ(copied, shift);

    // A zero shift is known (NAD83), a definition without one is not (RSO Malaya: no Helmert).
    const CKvMapProjection nad83("NAD83 / Alabama East");
    nad83.GetDatumShift(shift);
    EXPECT_EQ(shift.GetType(), CKvCartDef::eNoDatumShift);
    EXPECT_TRUE(nad83.IsDatumShiftKnown());
    EXPECT_FALSE(CKvMapProjection("RSO Malaya").IsDatumShiftKnown());
    EXPECT_FALSE(CKvMapProjection("LONG/LAT").IsDatumShiftKnown());
    EXPECT_STREQ(CKvMapProjection("LONG/LAT").GetDatumName(), "");
    EXPECT_STREQ(CKvMapProjection("UTM-32").GetDatumName(), "WGS 84");
    // WKT: a TOWGS84 node is a known shift, zero or not.
    EXPECT_FALSE(CKvMapProjection(kEtrs89Wkt).IsDatumShiftKnown());
    EXPECT_TRUE(CKvMapProjection(WithZeroShift(kEtrs89Wkt)).IsDatumShiftKnown());

    CKvDatumConverter bypassed("LONG/LAT", "British National Grid");
    bypassed.SetConversionType(CKvDatumConverter::eGeoToProj);
    bypassed.BypassXYZ();
    double x = -0.1281, y = 51.508;
    bypassed.Convert(x, y);
    double ex = 0, ey = 0;
    bng.GetProjection()->Geo2Proj(-0.1281, 51.508, &ex, &ey);
    EXPECT_EQ(x, ex);
    EXPECT_EQ(y, ey);
    EXPECT_GT(std::hypot(x - 530006.2219, y - 180446.2838), 100.0) << "the shift is what the bypass leaves out";
}

// Which conversions change datum, and which of them lack a shift.
TEST(CatalogueDatumShift, AChangeOfDatumWithoutItsShiftCarriesAMessage)
{
    kvtest::ShippedCatalogue();
    struct SCase
    {
        const char* what;
        std::string source, target;
        std::vector<std::string> said; // in the message, or nothing when empty
    };
    const SCase cases[] = {
        {"both shifts known", "British National Grid", "RD New", {}},
        {"WGS 84 to a known shift", "UTM-32", "RD New", {}},
        {"LONG/LAT names no datum", "LONG/LAT", kAmersfoortWkt, {}},
        {"a zero shift is WGS 84", "Lambert-93", "UTM-31", {}},
        {"two zero shifts", "Lambert-93", "LAEA Europe", {}},
        {"a WKT's zero TOWGS84", WithZeroShift(kEtrs89Wkt), "UTM-32", {}},
        {"a WKT on WGS 84", "World Mercator", "UTM-32", {}},
        {"one datum, spelled by GDAL and by the catalogue", "NAD27 / Alabama East", kNad27Wkt, {}},
        {"a classical datum without its shift",
         "British National Grid",
         kAmersfoortWkt,
         {"the datum changes from \"OSGB 1936\" to \"Amersfoort\"",
          "the shift of \"Amersfoort\" to WGS 84 is not known", "as if \"Amersfoort\" were WGS 84",
          "hundreds of metres", "Bessel 1841"}},
        {"the other way round", kAmersfoortWkt, "UTM-32", {"from \"Amersfoort\" to \"WGS 84\"", "hundreds of metres"}},
        {"a geocentric datum without its shift",
         kEtrs89Wkt,
         "RD New",
         {"\"European_Terrestrial_Reference_System_1989\" to WGS 84 is not known", "up to about 2 m", "GRS 1980"}},
        {"a catalogue entry without a shift", "UTM-47", "RSO Malaya", {"\"Kertau (RSO)\"", "hundreds of metres"}},
        {"neither shift known",
         kAmersfoortWkt,
         kNad27Wkt,
         {"the shifts of both to WGS 84 are not known", "Bessel 1841", "Clarke 1866"}},
    };
    for (const SCase& c : cases) {
        SCOPED_TRACE(c.what);
        CKvDatumConverter converter(c.source.c_str(), c.target.c_str());
        const std::string& message = converter.GetMessage();
        if (c.said.empty()) {
            EXPECT_EQ(message, "");
            continue;
        }
        for (const std::string& part : c.said)
            EXPECT_TRUE(kvtest::Contains(message, part));
        // The host that made the converter from strings reads it as the thread's last message too.
        const std::string& last = CKvMapProjection::GetLastMessage();
        EXPECT_TRUE(kvtest::Contains(last, message));
        // The reversed converter says the same of the same datum; a copy keeps it.
        CKvDatumConverter copy(converter);
        EXPECT_EQ(copy.GetMessage(), message);
        copy.InvertOrder();
        EXPECT_FALSE(copy.GetMessage().empty());
    }

    // A shift set for the side that lacked it ends the message.
    CKvDatumConverter converter("British National Grid", kAmersfoortWkt);
    ASSERT_FALSE(converter.GetMessage().empty());
    EXPECT_FALSE(converter.IsShiftKnown(false));
    const double rd[7] = {565.4171, 50.3319, 465.5524, 0, 0, 0, 0};
    converter.SetDatumShift(CKvCartDef::eThreeParameters, rd, false);
    EXPECT_EQ(converter.GetMessage(), "");
    EXPECT_TRUE(converter.IsShiftKnown(false));
}

// On one datum the points keep their latitude and longitude, whatever regional
// shifts the two sides carry (NAD27 in Alabama and in Alaska), and a side that
// lacks the shift takes the other's.
TEST(CatalogueDatumShift, OneDatumKeepsLatitudeAndLongitude)
{
    kvtest::ShippedCatalogue();
    const CKvMapProjection alabama("NAD27 / Alabama East"), alaska("NAD27 / Alaska zone 4");
    CKvDatumShift a, b;
    alabama.GetDatumShift(a);
    alaska.GetDatumShift(b);
    ASSERT_NE(a, b) << "the regional shifts differ";
    CKvDatumConverter converter("NAD27 / Alabama East", "NAD27 / Alaska zone 4");
    converter.SetConversionType(CKvDatumConverter::eProjToGeo);
    EXPECT_TRUE(converter.GetBypassXYZ());
    EXPECT_EQ(converter.GetMessage(), "");
    double x = 183725.3912, y = 221788.9780, lon = 0, lat = 0;
    alabama.Proj2Geo(x, y, &lon, &lat);
    converter.Convert(x, y);
    EXPECT_EQ(x, lon);
    EXPECT_EQ(y, lat);

    // The WKT of the same zone without TOWGS84: the same grid, point for point.
    CKvDatumConverter same("NAD27 / Alabama East", kNad27Wkt);
    same.SetConversionType(CKvDatumConverter::eProjToProj);
    EXPECT_TRUE(same.GetBypassXYZ());
    EXPECT_TRUE(same.IsShiftKnown(false)) << "taken from the other side";
    double e = 183725.3912, n = 221788.9780;
    same.Convert(e, n);
    EXPECT_NEAR(e, 183725.3912, 1e-6);
    EXPECT_NEAR(n, 221788.9780, 1e-6);

    // A shift the host sets is applied as set.
    const double other[7] = {-5, 135, 172, 0, 0, 0, 0};
    converter.SetDatumShift(CKvCartDef::eThreeParameters, other, false);
    EXPECT_FALSE(converter.GetBypassXYZ());
}

// A shift the file holds is any finite number: one far beyond any datum's moves
// points out of the geocentric domain, and they come out NaN, never as a
// made-up point; the poles and the antimeridian convert both ways.
TEST(CatalogueDatumShift, ExtremeShiftsAndPointsGiveNaNOrTheirPoint)
{
    kvtest::ShippedCatalogue();
    auto* huge =
        new CKvTransverseMercatorProjection("Test grid with a huge shift", "Huge", "AA", 0.9996, 9, 0, 500000, 0);
    const double far[7] = {1e300, 0, 0, 0, 1e300, 0, 0};
    ASSERT_TRUE(huge->SetDatumShift(far, 7));
    CKvMapProjection::AddMapProjection(huge);
    CKvDatumConverter converter("LONG/LAT", "Test grid with a huge shift");
    converter.SetConversionType(CKvDatumConverter::eGeoToProj);
    double x = 9, y = 50;
    converter.Convert(x, y);
    EXPECT_TRUE(std::isnan(x) && std::isnan(y)) << x << " " << y;
    CKvMapProjection::DeleteMapProjection(CKvMapProjection::MapProjection("Test grid with a huge shift"));

    CKvDatumConverter bng("LONG/LAT", "British National Grid");
    bng.SetConversionType(CKvDatumConverter::eGeoToProj);
    const double inputs[][2] = {{NAN, 51}, {0, NAN}, {HUGE_VAL, 51}, {0, 91}, {540, 51}, {0, 1e308}};
    for (const auto& in : inputs) {
        double u = in[0], v = in[1];
        bng.Convert(u, v);
        if (in[0] == 540) {
            // 540 degrees is 180: the antimeridian, far outside the grid but a point.
            double w = 180, z = 51;
            bng.Convert(w, z);
            EXPECT_EQ(u, w);
            EXPECT_EQ(v, z);
            continue;
        }
        EXPECT_TRUE(std::isnan(u) && std::isnan(v)) << in[0] << " " << in[1] << ": " << u << " " << v;
    }
    // The north pole through the shift and back.
    double lon = 0, lat = 90, h = 0;
    CKvDatumConverter toGrid("LONG/LAT", "British National Grid");
    toGrid.SetConversionType(CKvDatumConverter::eGeoToProj);
    toGrid.Convert(lon, lat, h);
    ASSERT_TRUE(std::isfinite(lon) && std::isfinite(lat));
    toGrid.InvConvert(lon, lat, h);
    EXPECT_NEAR(lat, 90.0, 1e-9);
}
