// The PROJ strings the library writes, against PROJ itself: for every text of
// the EPSG corpus, PROJ on our string gave the coordinates of PROJ on the EPSG
// definition within 1 mm (tools/check_proj_strings.py recorded the verdict and
// the string it judged; a changed string must be judged again), and a text with
// no string says why.
#include "EpsgCorpus.h"
#include "TestSupport.h"

#include "interface/KvCart.h"
#include "wkt/KvProjTranslator.h"

#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Verdict
{
    bool hasString = false;
    std::string text;   // our string, or the reason there is none
    double worst = NAN; // metres from PROJ's EPSG definition
};

std::map<std::string, Verdict> LoadVerdicts()
{
    std::ifstream in(KVCART_PROJ_STRINGS);
    std::map<std::string, Verdict> verdicts;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#')
            continue;
        const std::vector<std::string> f = kvtest::TabFields(line);
        Verdict v;
        v.hasString = f[0] == "S";
        v.text = f.size() > 3 ? f[3] : "";
        if (v.hasString)
            v.worst = std::strtod(f[4].c_str(), nullptr);
        verdicts[f[1] + ":" + f[2]] = v;
    }
    return verdicts;
}

} // namespace

TEST(ProjStrings, ProjReadsEveryStringAsTheEpsgSystem)
{
    // The strings PROJ judged are those of the texts alone; with the registry a
    // text without TOWGS84 would take the registry's shift.
    const kvtest::WithoutRegistry texts;
    const std::map<std::string, Verdict> verdicts = LoadVerdicts();
    const kvtest::EpsgCorpus corpus = kvtest::LoadEpsgCorpus(KVCART_EPSG_CORPUS);
    const CKvProjTranslator translator;
    int strings = 0, none = 0;
    for (const kvtest::EpsgSystem& s : corpus.systems) {
        for (int form = 0; form < 2; ++form) {
            const kvtest::EpsgText& text = s.texts[form];
            if (!text.written)
                continue;
            const std::string key = std::to_string(s.code) + ":" + (form == 0 ? "E" : "O");
            const auto found = verdicts.find(key);
            ASSERT_NE(found, verdicts.end()) << key << " was not judged by PROJ";
            std::string reason;
            const std::string ours = translator.ConvertToProj(text.wkt, nullptr, 0, &reason);
            if (found->second.hasString) {
                EXPECT_EQ(ours, found->second.text) << key << ": the string changed, judge it again";
                EXPECT_LE(found->second.worst, 1e-3) << key << " " << ours;
                ++strings;
            } else {
                EXPECT_EQ(ours, "") << key;
                EXPECT_EQ(reason, found->second.text) << key;
                EXPECT_FALSE(reason.empty()) << key;
                ++none;
            }
            // No trailing text that a shell would take for a redirection.
            EXPECT_EQ(ours.find('<'), std::string::npos) << key;
        }
    }
    EXPECT_GE(strings, 10118); // +proj=webmerc for both texts of EPSG:3857 among them
    std::printf("PROJ strings: %d agree with PROJ's EPSG definitions within 1 mm, %d texts have none\n", strings, none);
}

TEST(ProjStrings, CatalogueParametersComeBackAsHeld)
{
    // The numbers as the catalogue and the WKT hold them, not their binary
    // neighbours (0.999975, not 0.9999749999999999).
    const std::string text =
        "PROJCS[\"x\",GEOGCS[\"y\",DATUM[\"z\",SPHEROID[\"GRS 1980\",6378137,298.257222101]],PRIMEM[\"Greenwich\",0],"
        "UNIT[\"degree\",0.0174532925199433]],PROJECTION[\"Transverse_Mercator\"],PARAMETER[\"latitude_of_origin\","
        "36.66666666666666],PARAMETER[\"central_meridian\",-93.1],PARAMETER[\"scale_factor\",0.999975],PARAMETER["
        "\"false_easting\",300000],PARAMETER[\"false_northing\",0],UNIT[\"US survey foot\",0.3048006096012192]]";
    EXPECT_EQ(CKvProjTranslator().ConvertToProj(text, nullptr, 0),
              "+proj=tmerc +lat_0=36.66666666666666 +lon_0=-93.1 +k=0.999975 +x_0=91440.18288036576 +y_0=0 "
              "+a=6378137 +rf=298.257222101 +to_meter=0.3048006096012192 +no_defs +type=crs");
    // A catalogue grid kept in US survey feet is written in feet, its false
    // origin in metres as PROJ takes it (PROJ then gives 602772.3875 727652.6721
    // ftUS at -85.5 32.5 on NAD27, as kvcart transform does).
    kvtest::ShippedCatalogue();
    EXPECT_EQ(CKvProjTranslator().ConvertToProj("NAD27 / Alabama East", nullptr, 0),
              "+proj=tmerc +lat_0=30.5 +lon_0=-85.83333333333333 +k=0.99996 +x_0=152400.3048006096 +y_0=0 "
              "+a=6378206.4 +rf=294.9786982138982 +to_meter=0.3048006096012192 +no_defs +type=crs");
    // A datum shift given to the call replaces the text's own, completed with zeros.
    const double shift[3] = {-87, -98, -121};
    EXPECT_TRUE(kvtest::Contains(CKvProjTranslator().ConvertToProj(text, shift, 3), "+towgs84=-87,-98,-121,0,0,0,0 "));
}

TEST(ProjStrings, ANumberThatIsNoNumberHasNoString)
{
    // A text whose parameters read as NaN or infinity (the reader takes "nan" and
    // "inf" as numbers) describes no system PROJ could be told.
    for (const char* value : {"nan", "inf", "-inf", "1e999"}) {
        const std::string text =
            std::string("PROJCS[\"x\",GEOGCS[\"y\",DATUM[\"z\",SPHEROID[\"GRS 1980\",6378137,298.257222101]],"
                        "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],PROJECTION[\"Transverse_"
                        "Mercator\"],PARAMETER[\"latitude_of_origin\",0],PARAMETER[\"central_meridian\",9],"
                        "PARAMETER[\"scale_factor\",") +
            value + "],PARAMETER[\"false_easting\",500000],PARAMETER[\"false_northing\",0],UNIT[\"metre\",1]]";
        std::string reason;
        EXPECT_EQ(CKvProjTranslator().ConvertToProj(text, nullptr, 0, &reason), "") << value;
        EXPECT_TRUE(kvtest::Contains(reason, "not a finite number")) << value;
    }
}

TEST(ProjStrings, KrovakTurnedByNoRightAngleHasNoString)
{
    // ESRI's Krovak with its plane rotation: a right angle turns PROJ's axes, any
    // other angle (or none that is a number) has no PROJ string.
    for (const char* rotation : {"45", "nan", "inf"}) {
        const std::string text =
            std::string("PROJCS[\"k\",GEOGCS[\"g\",DATUM[\"d\",SPHEROID[\"Bessel_1841\",6377397.155,299.1528128]],"
                        "PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\",0.0174532925199433]],PROJECTION[\"Krovak\"],"
                        "PARAMETER[\"False_Easting\",0.0],PARAMETER[\"False_Northing\",0.0],PARAMETER[\"Pseudo_"
                        "Standard_Parallel_1\",78.5],PARAMETER[\"Scale_Factor\",0.9999],PARAMETER[\"Azimuth\","
                        "30.28813975277778],PARAMETER[\"Longitude_Of_Center\",24.83333333333333],PARAMETER[\"Latitude_"
                        "Of_Center\",49.5],PARAMETER[\"X_Scale\",-1.0],PARAMETER[\"Y_Scale\",1.0],PARAMETER[\"XY_"
                        "Plane_Rotation\",") +
            rotation + "],UNIT[\"Meter\",1.0]]";
        std::string reason;
        EXPECT_EQ(CKvProjTranslator().ConvertToProj(text, nullptr, 0, &reason), "") << rotation;
        EXPECT_TRUE(kvtest::Contains(reason, "Krovak")) << rotation;
    }
}

TEST(ProjStrings, CInterfaceCopiesOrSaysWhy)
{
    char buffer[400];
    int status = 1;
    C_KVC_CONVERT2PROJ("NON-UTM", nullptr, 0, buffer, sizeof buffer - 1, &status);
    EXPECT_EQ(status, -1);
    C_KVMP_GETLASTERROR(buffer, sizeof buffer - 1, &status);
    EXPECT_TRUE(kvtest::Contains(buffer, "NON-UTM"));
    const char* wkt =
        "PROJCS[\"UTM 32\",GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\",6378137,298.257223563]],PRIMEM["
        "\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],PROJECTION[\"Transverse_Mercator\"],PARAMETER["
        "\"latitude_of_origin\",0],PARAMETER[\"central_meridian\",9],PARAMETER[\"scale_factor\",0.9996],PARAMETER["
        "\"false_easting\",500000],PARAMETER[\"false_northing\",0],UNIT[\"metre\",1]]";
    const std::string expected = "+proj=tmerc +lat_0=0 +lon_0=9 +k=0.9996 +x_0=500000 +y_0=0 +a=6378137 "
                                 "+rf=298.257223563 +units=m +no_defs +type=crs";
    const int length = static_cast<int>(expected.size());
    C_KVC_CONVERT2PROJ(wkt, nullptr, 0, buffer, length - 1, &status);
    EXPECT_EQ(status, length); // too small: the length, nothing copied
    C_KVC_CONVERT2PROJ(wkt, nullptr, 0, buffer, length, &status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(std::string(buffer), expected);
}
