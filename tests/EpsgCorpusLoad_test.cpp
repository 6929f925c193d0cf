// The EPSG projected-system corpus (tools/make_epsg_corpus.py) as the loader
// reads it: every system complete, and a few records checked against values
// computed here with cs2cs rather than taken from the corpus.
#include "EpsgCorpus.h"
#include "TestSupport.h"

#include <cmath>
#include <gtest/gtest.h>
#include <string>

namespace {

const kvtest::EpsgCorpus& Corpus()
{
    static const kvtest::EpsgCorpus corpus = kvtest::LoadEpsgCorpus();
    return corpus;
}

using kvtest::EpsgForm;

TEST(EpsgCorpusLoad, EverySystemHasBothTextsAndThreePointsInItsArea)
{
    const auto& corpus = Corpus();
    EXPECT_TRUE(kvtest::Contains(corpus.header, "PROJ 9"));
    EXPECT_TRUE(kvtest::Contains(corpus.header, "GDAL 3"));
    EXPECT_TRUE(kvtest::Contains(corpus.header, "EPSG dataset v"));
    ASSERT_GE(corpus.systems.size(), 5100u);

    size_t written[2] = {0, 0}, read[2] = {0, 0}, computed = 0;
    for (const auto& s : corpus.systems) {
        SCOPED_TRACE("EPSG:" + std::to_string(s.code));
        EXPECT_FALSE(s.name.empty());
        EXPECT_GT(s.methodCode, 1000);
        EXPECT_FALSE(s.methodName.empty());
        ASSERT_TRUE(s.south < s.north && s.south >= -90.0 && s.north <= 90.0);
        ASSERT_TRUE(s.west >= -180.0 && s.west <= 180.0 && s.east >= -180.0 && s.east <= 180.0);
        const double width = s.east - s.west + (s.west > s.east ? 360.0 : 0.0);

        ASSERT_EQ(s.epsgPoints.size(), 3u);
        for (const auto& p : s.epsgPoints) {
            EXPECT_GE(p.lat, s.south);
            EXPECT_LE(p.lat, s.north);
            EXPECT_GE(p.lon, -180.0);
            EXPECT_LE(p.lon, 180.0);
            const double fromWest = std::fmod(p.lon - s.west + 720.0, 360.0);
            EXPECT_LE(fromWest, width + 1e-9) << p.lon;
        }
        if (std::isfinite(s.epsgPoints[1].x))
            ++computed;

        for (int form = 0; form < 2; ++form) {
            const auto& t = s.texts[form];
            EXPECT_NE(t.written, !t.gdalReason.empty());
            if (!t.written) {
                EXPECT_TRUE(t.points.empty());
                continue;
            }
            ++written[form];
            EXPECT_EQ(t.wkt.compare(0, 7, "PROJCS["), 0) << t.wkt;
            EXPECT_NE(t.read, !t.projReason.empty());
            if (t.read) {
                ++read[form];
                EXPECT_FALSE(t.axis1.empty());
                EXPECT_FALSE(t.axis2.empty());
                EXPECT_GT(t.metresPerUnit, 0.0);
            }
            // PROJ's points on the text are at the system's own points.
            ASSERT_EQ(t.points.size(), 3u);
            for (size_t i = 0; i < 3; ++i) {
                EXPECT_EQ(t.points[i].lon, s.epsgPoints[i].lon);
                EXPECT_EQ(t.points[i].lat, s.epsgPoints[i].lat);
            }
        }
    }
    // GDAL writes both forms of nearly every system (WKT 1 has no name for a
    // few dozen methods the ESRI form names) and PROJ reads them back; PROJ
    // computes nearly every system from its EPSG definition.
    EXPECT_GE(written[0], 5100u);
    EXPECT_GE(written[1], 5050u);
    EXPECT_LT(written[1], written[0]);
    EXPECT_EQ(read[0], written[0]);
    EXPECT_EQ(read[1], written[1]);
    EXPECT_GE(computed, 5100u);
}

TEST(EpsgCorpusLoad, KnownSystemsAgreeWithCs2cs)
{
    // Swiss LV95, oblique Mercator: PROJ on GDAL's OGC text against
    //   cs2cs -f %.4f EPSG:4150 EPSG:2056   (lat lon in, easting northing out)
    const auto* lv95 = Corpus().Find(2056);
    ASSERT_NE(lv95, nullptr);
    EXPECT_EQ(lv95->name, "CH1903+ / LV95");
    EXPECT_EQ(lv95->methodCode, 9815);
    const auto& ogc = lv95->Text(EpsgForm::Ogc);
    ASSERT_TRUE(ogc.written && ogc.read);
    EXPECT_EQ(ogc.axis1, "east");
    EXPECT_EQ(ogc.axis2, "north");
    const double lv95Expected[3][4] = {{7.0925, 46.3175, 2573269.6697, 1129487.1573},
                                       {8.225, 46.815, 2659933.4187, 1185026.7141},
                                       {9.3575, 47.3125, 2744987.2544, 1241802.1214}};
    ASSERT_EQ(ogc.points.size(), 3u);
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(ogc.points[i].lon, lv95Expected[i][0]);
        EXPECT_EQ(ogc.points[i].lat, lv95Expected[i][1]);
        EXPECT_NEAR(ogc.points[i].x, lv95Expected[i][2], 1e-4);
        EXPECT_NEAR(ogc.points[i].y, lv95Expected[i][3], 1e-4);
        EXPECT_NEAR(lv95->epsgPoints[i].x, lv95Expected[i][2], 1e-4);
        EXPECT_NEAR(lv95->epsgPoints[i].y, lv95Expected[i][3], 1e-4);
    }

    // Lambert zone II on the Paris meridian, angles in grads: the ESRI text's
    // geodetic input must have been given from Paris in grads. Against
    //   cs2cs -f %.4f +proj=longlat +ellps=clrk80ign +to +proj=lcc +lat_1=46.8
    //     +lat_0=46.8 +lon_0=0 +k_0=0.99987742 +x_0=600000 +y_0=2200000
    //     +ellps=clrk80ign +pm=paris
    // whose Paris (2d20'14.025"E) differs from EPSG's 2.5969213 grad by 0.3 mm.
    const auto* lambert2 = Corpus().Find(27572);
    ASSERT_NE(lambert2, nullptr);
    const auto& esri = lambert2->Text(EpsgForm::Esri);
    ASSERT_TRUE(esri.written && esri.read);
    EXPECT_TRUE(kvtest::Contains(esri.wkt, "UNIT[\"Grad\""));
    const double lambertExpected[3][2] = {
        {287359.4238, 1955769.4784}, {549771.5394, 2192985.1139}, {791871.8404, 2440885.2829}};
    ASSERT_EQ(esri.points.size(), 3u);
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(esri.points[i].x, lambertExpected[i][0], 1e-3);
        EXPECT_NEAR(esri.points[i].y, lambertExpected[i][1], 1e-3);
    }
}

TEST(EpsgCorpusLoad, AxesUnitsAndGdalFailuresAsRecorded)
{
    // South-orientated Transverse Mercator: the ESRI text has no AXIS nodes, yet
    // its projection name makes PROJ read westing, southing.
    const auto* lo15 = Corpus().Find(2046);
    ASSERT_NE(lo15, nullptr);
    EXPECT_EQ(lo15->methodCode, 9808);
    const auto& esri = lo15->Text(EpsgForm::Esri);
    EXPECT_EQ(esri.axis1, "west");
    EXPECT_EQ(esri.axis2, "south");
    EXPECT_EQ(esri.metresPerUnit, 1.0);

    // US survey feet, 1200/3937 m.
    const auto* feet = Corpus().Find(2234);
    ASSERT_NE(feet, nullptr);
    EXPECT_DOUBLE_EQ(feet->Text(EpsgForm::Esri).metresPerUnit, 1200.0 / 3937.0);

    // Across the antimeridian (178.5 E to 178.5 W): points unwrapped, then
    // normalised.
    const auto* chukotka = Corpus().Find(2636);
    ASSERT_NE(chukotka, nullptr);
    EXPECT_GT(chukotka->west, chukotka->east);
    EXPECT_DOUBLE_EQ(chukotka->epsgPoints[0].lon, 179.25);
    EXPECT_DOUBLE_EQ(std::fabs(chukotka->epsgPoints[1].lon), 180.0);
    EXPECT_DOUBLE_EQ(chukotka->epsgPoints[2].lon, -179.25);

    // GDAL has no WKT 1 name for the hyperbolic Cassini-Soldner, in either
    // form: a reason, no text, no points.
    const auto* vanuaLevu = Corpus().Find(3139);
    ASSERT_NE(vanuaLevu, nullptr);
    for (const auto& failed : vanuaLevu->texts) {
        EXPECT_FALSE(failed.written);
        EXPECT_TRUE(failed.wkt.empty());
        EXPECT_TRUE(failed.points.empty());
        EXPECT_TRUE(kvtest::Contains(failed.gdalReason, "Hyperbolic Cassini-Soldner"));
    }
    // The Colombian urban grids have an ESRI name but none in GDAL's WKT 1.
    const auto* bogota = Corpus().Find(6247);
    ASSERT_NE(bogota, nullptr);
    EXPECT_EQ(bogota->methodName, "Colombia Urban");
    EXPECT_TRUE(bogota->Text(EpsgForm::Esri).written);
    EXPECT_FALSE(bogota->Text(EpsgForm::Ogc).written);
    EXPECT_TRUE(kvtest::Contains(bogota->Text(EpsgForm::Ogc).gdalReason, "Colombia Urban"));
}

TEST(EpsgCorpusLoad, MalformedFilesAreRefusedWithTheirLine)
{
    kvtest::TempDir dir;
    const auto refusal = [&](const std::string& text) {
        kvtest::WriteFile(dir.File("c.tsv"), text);
        try {
            kvtest::LoadEpsgCorpus(dir.File("c.tsv"));
        } catch (const std::runtime_error& e) {
            return std::string(e.what());
        }
        return std::string("accepted");
    };
    const std::string header = "# versions\n";
    const std::string system = "S\t2056\tCH1903+ / LV95\t9815\tHotine\t5.96\t45.82\t10.49\t47.81\n";
    const std::string point = "G\t2056\t7.0925\t46.3175\t2573269.6697\t1129487.1573\n";

    kvtest::WriteFile(dir.File("good.tsv"), header + system + point + "P\t2056\tE\t7\t46\tnan\tnan\n");
    const auto good = kvtest::LoadEpsgCorpus(dir.File("good.tsv"));
    EXPECT_EQ(good.header, " versions");
    ASSERT_EQ(good.systems.size(), 1u);
    ASSERT_EQ(good.systems[0].epsgPoints.size(), 1u);
    EXPECT_EQ(good.systems[0].epsgPoints[0].y, 1129487.1573);
    EXPECT_TRUE(std::isnan(good.systems[0].Text(EpsgForm::Esri).points.at(0).x));

    EXPECT_THROW(kvtest::LoadEpsgCorpus(dir.File("absent.tsv")), std::runtime_error);
    EXPECT_TRUE(kvtest::Contains(refusal(header + point), "line 2"));                          // no S line before it
    EXPECT_TRUE(kvtest::Contains(refusal(system + "G\t2057\t7\t46\t1\t2\n"), "line 2"));       // another system's
    EXPECT_TRUE(kvtest::Contains(refusal(system + "G\t2056\t7,09\t46\t1\t2\n"), "line 2"));    // comma decimal
    EXPECT_TRUE(kvtest::Contains(refusal(system + "G\t2056\t7\t46\t1\n"), "line 2"));          // short
    EXPECT_TRUE(kvtest::Contains(refusal(system + "A\t2056\tQ\teast\tnorth\t1\n"), "line 2")); // form
    EXPECT_TRUE(kvtest::Contains(refusal(system + "Z\t2056\n"), "line 2"));                    // record type
    EXPECT_TRUE(kvtest::Contains(refusal(system + system), "line 2"));                         // order
}

} // namespace
