// PROJ.4 text for catalogue names and WKT, and its C entry point.
#include "TestSupport.h"

#include "coordsys/KvMapProjection.h"
#include "interface/KvCart.h"
#include "wkt/KvProjTranslator.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace {

const char kTail[] = "+no_defs  no_defs <>";

const std::string kRotated =
    "PROJCS[\"Rotated\",GEOGCS[\"GCS_WGS_1984\",DATUM[\"D_WGS_1984\",SPHEROID[\"WGS_1984\",6378137.0,"
    "298.257223563]],PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\",0.017453292519943295]],"
    "PROJECTION[\"Rotated_Longitude_Latitude\"],PARAMETER[\"Longitude_Of_South_Pole\",10],"
    "PARAMETER[\"Latitude_Of_South_Pole\",-30],PARAMETER[\"Angle_Of_Rotation\",0],UNIT[\"Meter\",1.0]]";

// A state plane in US survey feet with a seven-parameter datum shift.
const std::string kFeet =
    "PROJCS[\"Feet\",GEOGCS[\"GCS_NAD27\",DATUM[\"D_NAD27\",SPHEROID[\"Clarke_1866\",6378206.4,294.9786982],"
    "TOWGS84[-8,160,176,0.1,-0.2,0.3,1.5]],PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\",0.017453292519943295]],"
    "PROJECTION[\"Lambert_Conformal_Conic\"],PARAMETER[\"False_Easting\",2000000],"
    "PARAMETER[\"False_Northing\",0],PARAMETER[\"Central_Meridian\",-120.5],"
    "PARAMETER[\"Standard_Parallel_1\",41.66666666666666],PARAMETER[\"Standard_Parallel_2\",40],"
    "PARAMETER[\"Latitude_Of_Origin\",39.33333333333334],UNIT[\"Foot_US\",0.3048006096012192]]";

} // namespace

TEST(ProjTranslator, CatalogueNamesAndWkt)
{
    kvtest::ShippedCatalogue();
    const CKvProjTranslator translator;
    EXPECT_EQ(translator.Convert2Proj4("UTM-32", nullptr, 0),
              std::string("+proj=tmerc +lat_0=0 +lon_0=9 +k=0.9996 +x_0=500000 +y_0=0 +a=6378137 "
                          "+b=6356752.314245179 +units=m ") +
                  kTail);
    // Blanks around a name, and the same zone given as its own WKT.
    EXPECT_EQ(translator.Convert2Proj4("  UTM-32 ", nullptr, 0), translator.Convert2Proj4("UTM-32", nullptr, 0));

    EXPECT_EQ(translator.Convert2Proj4(kRotated, nullptr, 0), "+proj=undef ");
    // "Non_Projected" has no PROJ.4 name: the figure and the unit only.
    std::string nonProjected = kFeet;
    nonProjected.replace(nonProjected.find("Lambert_Conformal_Conic"), 23, "Non_Projected");
    nonProjected.replace(nonProjected.find("Standard_Parallel_1"), 19, "Scale_Factor");
    EXPECT_EQ(translator.Convert2Proj4(nonProjected, nullptr, 0),
              std::string("+a=6378206.4 +b=6356583.799998981 +towgs84=-8,160,176,0.1,-0.2,0.3,1.5 "
                          "+to_meter=0.3048006096012192 ") +
                  kTail);
    EXPECT_EQ(translator.Convert2Proj4("No such system", nullptr, 0), "");
    EXPECT_THROW(translator.Convert2Proj4(" UTM ", nullptr, 0), std::out_of_range);
    // The special names stay names, which PROJ.4 cannot express.
    EXPECT_EQ(translator.Convert2Proj4("LONG/LAT", nullptr, 0), "+proj=undef ");

    // Feet, the system's own datum shift, and a shift array that replaces it.
    EXPECT_EQ(translator.Convert2Proj4(kFeet, nullptr, 0),
              std::string("+proj=lcc +lat_1=41.66666666666666 +lat_2=40 +lat_0=39.33333333333334 +lon_0=-120.5 "
                          "+x_0=609601.2192024384 +y_0=0 +a=6378206.4 +b=6356583.799998981 "
                          "+towgs84=-8,160,176,0.1,-0.2,0.3,1.5 +to_meter=0.3048006096012192 ") +
                  kTail);
    double shift[] = {1.5, -2, 3};
    const std::string replaced = translator.Convert2Proj4(kFeet, shift, 3);
    EXPECT_TRUE(kvtest::Contains(replaced, " +towgs84=1.5,-2,3,0,0,0,0 +to_meter="));
    EXPECT_EQ(translator.Convert2Proj4(kFeet, shift, 0), translator.Convert2Proj4(kFeet, nullptr, 0));

    // A geographic system: longlat, the figure, no unit.
    const std::string geographic = CKvMapProjection::IDtoProjectionString(CKvMapProjection::eWgs84Geographic);
    EXPECT_EQ(translator.Convert2Proj4(geographic, nullptr, 0),
              std::string("+proj=longlat +a=6378137 +b=6356752.314245179 ") + kTail);
    // The Google Maps sphere: the spherical Mercator of PROJ, k = 1 derived.
    EXPECT_EQ(
        translator.Convert2Proj4(CKvMapProjection::IDtoProjectionString(CKvMapProjection::eGoogleMercator), nullptr, 0),
        std::string("+proj=merc +lat_ts=0 +lon_0=0 +k=1 +x_0=0 +y_0=0 +a=6378137 +b=6378137 +units=m ") + kTail);

    // A .prj file: its first line only; a missing file converts an empty line,
    // which is the local grid (not georeferenced: no projection tokens).
    const kvtest::TempDir dir;
    kvtest::WriteFile(dir.File("zone.prj"), geographic + "\r\nPROJCS[garbage\n");
    EXPECT_EQ(translator.ConvertPRJFile2Proj4(dir.File("zone.prj"), nullptr, 0),
              translator.Convert2Proj4(geographic, nullptr, 0));
    EXPECT_EQ(translator.ConvertPRJFile2Proj4(dir.File("missing.prj"), nullptr, 0),
              translator.Convert2Proj4("", nullptr, 0));
    EXPECT_FALSE(kvtest::Contains(translator.Convert2Proj4("", nullptr, 0), "+proj="));

    // The ESRI degree (0.0174532925199433) is the degree: no 9.000000000000002.
    std::string esri = kFeet;
    esri.replace(esri.find("0.017453292519943295"), 20, "0.0174532925199433");
    EXPECT_EQ(translator.Convert2Proj4(esri, nullptr, 0), translator.Convert2Proj4(kFeet, nullptr, 0));

    // Numbers with a point whatever the host's locale.
    const kvtest::CommaLocale comma;
    ASSERT_TRUE(comma.Active());
    EXPECT_TRUE(kvtest::Contains(translator.Convert2Proj4(kFeet, nullptr, 0), "+to_meter=0.3048006096012192 "));
}

TEST(ProjTranslator, CEntryPointCopiesByTheStringRule)
{
    kvtest::ShippedCatalogue();
    const std::string expected = CKvProjTranslator().Convert2Proj4("UTM-32", nullptr, 0);
    const int len = static_cast<int>(expected.size());
    std::string buffer(expected.size() + 8, '#');
    int status = 99;

    // Too small by one: the length is reported and nothing is written.
    C_KVC_CONVERT2PROJ4("UTM-32", nullptr, 0, &buffer[0], len - 1, &status);
    EXPECT_EQ(status, len);
    EXPECT_EQ(buffer[0], '#');
    // Exactly the length: copied, with the terminator one byte past size.
    C_KVC_CONVERT2PROJ4("UTM-32", nullptr, 0, &buffer[0], len, &status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(buffer.c_str(), expected);
    EXPECT_EQ(buffer[expected.size() + 1], '#');

    double shift[] = {1, 2, 3, 4, 5, 6, 7};
    C_KVC_CONVERT2PROJ4("UTM-32", shift, 7, &buffer[0], static_cast<int>(buffer.size()), &status);
    EXPECT_EQ(status, len + static_cast<int>(std::string("+towgs84=1,2,3,4,5,6,7 ").size()));

    // The generic name is an error, not an exception across the C boundary.
    C_KVC_CONVERT2PROJ4("UTM", nullptr, 0, &buffer[0], static_cast<int>(buffer.size()), &status);
    EXPECT_EQ(status, -1);
    C_KVC_CONVERT2PROJ4(nullptr, nullptr, 0, nullptr, 0, &status); // blank: the local grid, no buffer
    EXPECT_GT(status, 0);
}
