// The WKT reader, the construction from the record and the WKT writer.
#include "TestSupport.h"

#include "catalogue/KvMapProjData.h"
#include "projections/KvProjection.h"
#include "wkt/KvPRJParser.h"

#include <cmath>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace {

constexpr double kUndefined = CKvPRJParser::Undefined;

const std::string kGeogcs = "GEOGCS[\"GCS_WGS_1984\",DATUM[\"D_WGS_1984\",SPHEROID[\"WGS_1984\",6378137.0,"
                            "298.257223563]],PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\",0.0174532925199433]]";

// A PROJCS on WGS 84 with the given projection node and parameters.
std::string Projcs(const std::string& projection, const std::string& parameters,
                   const std::string& unit = "UNIT[\"Meter\",1.0]")
{
    return "PROJCS[\"Test\"," + kGeogcs + ",PROJECTION[\"" + projection + "\"]," + parameters + unit + "]";
}

std::string Param(const char* name, double value)
{
    CString text;
    text.Format("PARAMETER[\"%s\",%.17g],", name, value);
    return text.GetStdString();
}

const std::string kTmParameters = Param("False_Easting", 500000) + Param("False_Northing", 0) +
                                  Param("Central_Meridian", 9) + Param("Scale_Factor", 0.9996) +
                                  Param("Latitude_Of_Origin", 0);

struct EngineDeleter
{
    void operator()(CKvProjection* engine) const { CKvProjection::Release(engine); }
};
using Engine = std::unique_ptr<CKvProjection, EngineDeleter>;

CKvPRJParser Parsed(const std::string& text, bool sort = false)
{
    CKvPRJParser parser(text.c_str());
    parser.Parse(sort);
    return parser;
}

} // namespace

TEST(PrjScanner, BracketsCommasNamesAndParameters)
{
    EXPECT_EQ(CKvPRJParser::_MatchBrackets(""), -1);
    EXPECT_EQ(CKvPRJParser::_MatchBrackets("A[B[]]"), -1);
    EXPECT_EQ(CKvPRJParser::_MatchBrackets("A[]]["), 3);
    EXPECT_EQ(CKvPRJParser::_MatchBrackets("A[[]"), 4);
    EXPECT_EQ(CKvPRJParser::_GetBracketLevel("A[B[x,"), 2);
    EXPECT_EQ(CKvPRJParser::_GetBracketLevel("A]]["), -1);
    EXPECT_TRUE(CKvPRJParser::IsPRJ(kGeogcs));
    EXPECT_FALSE(CKvPRJParser::IsPRJ(kGeogcs + "]"));                 // unbalanced
    EXPECT_FALSE(CKvPRJParser::IsPRJ("GEOGCS[\"a\",B[1],C[2]]"));      // commas not more than brackets
    EXPECT_FALSE(CKvPRJParser::IsPRJ("geogcs[\"a\",1,2]"));             // keywords are case-sensitive
    EXPECT_TRUE(CKvPRJParser::IsPRJ("X[\"a\",1,2,PROJCS]"));            // a keyword anywhere will do

    EXPECT_EQ(CKvPRJParser::GetName(kGeogcs, "DATUM"), "D_WGS_1984");
    EXPECT_EQ(CKvPRJParser::GetName(kGeogcs, "PROJCS"), "");
    EXPECT_EQ(CKvPRJParser::GetName("PROJCS[\"\",GEOGCS[\"G\"]]", "PROJCS"), "");
    EXPECT_EQ(CKvPRJParser::DatumName(kGeogcs), "D_WGS_1984");

    // The remainder finds the next node of the same keyword.
    const CString two = "A[UNIT[\"Degree\",0.0174],UNIT[\"Foot_US\",0.3048006096012192]]";
    CString name = "untouched";
    double value = -7.0;
    CString rest = CKvPRJParser::GetNameParam(two, "UNIT", name, value);
    EXPECT_EQ(name, "Degree");
    EXPECT_EQ(value, 0.0174);
    CKvPRJParser::GetNameParam(rest, "UNIT", name, value);
    EXPECT_EQ(name, "Foot_US");
    EXPECT_EQ(value, 0.3048006096012192);
    EXPECT_EQ(CKvPRJParser::GetNameParam(two, "PRIMEM", name, value), "");
    EXPECT_EQ(name, "Foot_US"); // untouched when absent
    CString direction;
    CKvPRJParser::GetNameParam("AXIS[\"X\", NORTH ]", "AXIS", name, direction);
    EXPECT_EQ(direction, "NORTH");

    // Parameters: quoted names, any letter case, first occurrence, alias order.
    const CString p = "PARAMETER[\"false_EASTING\",12.5],PARAMETER[\"False_Easting\",99],"
                      "PARAMETER[\"Longitude_Of_Center\",3],X[Central_Meridian,7]";
    EXPECT_EQ(CKvPRJParser::GetParam(p, "False_Easting", kUndefined), 12.5);
    EXPECT_EQ(CKvPRJParser::GetParam(p, "Central_Meridian", -1.0), -1.0); // unquoted is not a parameter
    EXPECT_EQ(CKvPRJParser::GetParam(p, {"Central_Meridian", "Longitude_Of_Center"}, 0.0), 3.0);
    EXPECT_EQ(CKvPRJParser::GetParam(p, {"Nothing", "Else"}, 42.0), 42.0);

    EXPECT_EQ(CKvPRJParser::ShortName(Projcs("Transverse_Mercator", kTmParameters)), "Test");
    EXPECT_EQ(CKvPRJParser::ShortName("COMPD_CS[\"Both\"," + Projcs("Transverse_Mercator", "") + "]"), "Both");
    EXPECT_EQ(CKvPRJParser::ShortName(kGeogcs), "GCS_WGS_1984");
    EXPECT_EQ(CKvPRJParser::ShortName(" NON-UTM "), "Local Coordinates");
    EXPECT_EQ(CKvPRJParser::ShortName("UTM-32"), "UTM-32");
}

TEST(PrjParse, GeographicAndProjectedRecords)
{
    CKvPRJParser geographic = Parsed(kGeogcs);
    EXPECT_EQ(geographic.GetProjectionType(), CKvMapProjData::eGeographical);
    EXPECT_EQ(geographic.GetProjectionTypeName(), "Geographical");
    EXPECT_EQ(geographic.GetProjCSname(), "GCS_WGS_1984"); // takes the geographic name
    CString name, direction;
    geographic.GetAxisInfo(CKvPRJParser::eFirstAxis, name, direction);
    EXPECT_EQ(name + "/" + direction, "Longitude/EAST");
    geographic.GetAxisInfo(CKvPRJParser::eSecondAxis, name, direction);
    EXPECT_EQ(name + "/" + direction, "Latitude/NORTH");
    double factor = 0.0, a = 0.0, invF = 0.0;
    geographic.GetProjUnit(name, factor);
    EXPECT_EQ(factor, kUndefined);
    geographic.GetEllipsoid(name, a, invF);
    EXPECT_EQ(name + "", "WGS_1984");
    EXPECT_EQ(a, 6378137.0);
    EXPECT_EQ(invF, 298.257223563);

    // A full projected record, with its axes and the linear unit after the angular one.
    CKvPRJParser tm = Parsed(Projcs("Transverse_Mercator", kTmParameters,
                                    "UNIT[\"Foot_US\",0.3048006096012192],AXIS[\"X\",NORTH],AXIS[\"Y\",EAST]"));
    ASSERT_EQ(tm.GetProjectionType(), CKvMapProjData::eTransverseMercator);
    EXPECT_EQ(tm.GetFalseEasting(), 500000.0);
    EXPECT_EQ(tm.GetCentralMeridian(), 9.0);
    EXPECT_EQ(tm.GetScaleFactor(), 0.9996);
    tm.GetProjUnit(name, factor);
    EXPECT_EQ(name + "", "Foot_US");
    EXPECT_EQ(factor, 0.3048006096012192);
    tm.GetAxisInfo(CKvPRJParser::eFirstAxis, name, direction);
    EXPECT_EQ(name + "/" + direction, "X/NORTH");
    tm.GetAxisInfo(CKvPRJParser::eSecondAxis, name, direction);
    EXPECT_EQ(name + "/" + direction, "Y/EAST");
    tm.GetAxisInfo(static_cast<CKvPRJParser::EAxisType>(3), name, direction); // ignored
    EXPECT_EQ(name + "/" + direction, "Y/EAST");

    // Failures: no projected unit, no angular unit, unknown name, missing parameter.
    for (const std::string& text :
         {Projcs("Transverse_Mercator", kTmParameters, ""),
          std::string("GEOGCS[\"G\",DATUM[\"D\",SPHEROID[\"S\",6378137,298]],PRIMEM[\"Greenwich\",0]]"),
          Projcs("Aitoff", kTmParameters),
          Projcs("Transverse_Mercator", Param("False_Easting", 0) + Param("False_Northing", 0) +
                                            Param("Central_Meridian", 9) + Param("Scale_Factor", 1))}) {
        CKvPRJParser parser(text.c_str());
        EXPECT_FALSE(parser.Parse(false)) << text;
        EXPECT_EQ(parser.GetProjectionType(), CKvMapProjData::eNoProjection) << text;
    }

    // Not WKT: nothing changes.
    CKvPRJParser rejected((kGeogcs + "]").c_str());
    rejected.SetProjCSname("kept");
    rejected.SetProjectionType(CKvMapProjData::eKrovak);
    EXPECT_FALSE(rejected.Parse(false));
    EXPECT_EQ(rejected.GetProjCSname(), "kept");
    EXPECT_EQ(rejected.GetProjectionType(), CKvMapProjData::eKrovak);
}

TEST(PrjParse, NamesKeywordsAndTheDeliberateStrictness)
{
    // Projection and parameter names in any letter case; keywords are exact.
    CKvPRJParser mixed = Parsed(Projcs("tRANSVERSE_mercator", "PARAMETER[\"FALSE_easting\",1]," + kTmParameters));
    EXPECT_EQ(mixed.GetProjectionType(), CKvMapProjData::eTransverseMercator);
    EXPECT_EQ(mixed.GetProjectionTypeName(), "tRANSVERSE_mercator");
    EXPECT_EQ(mixed.GetFalseEasting(), 1.0); // first occurrence wins
    std::string lower = Projcs("Transverse_Mercator", kTmParameters);
    lower.replace(lower.find("PROJECTION"), 10, "projection");
    EXPECT_EQ(Parsed(lower).GetProjectionType(), CKvMapProjData::eGeographical);

    // A parameter before the PROJECTION node is not seen.
    std::string before = "PROJCS[\"Test\"," + kGeogcs + "," + Param("False_Easting", 1) + "PROJECTION[\"Mercator_1SP\"]," +
                         Param("False_Northing", 0) + Param("Central_Meridian", 0) + Param("Scale_Factor", 1) +
                         "UNIT[\"Meter\",1]]";
    EXPECT_EQ(Parsed(before).GetProjectionType(), CKvMapProjData::eNoProjection);

    // Lambert: both parallels make 2SP, a scale factor without the second 1SP.
    const std::string lcc = Param("False_Easting", 0) + Param("False_Northing", 0) + Param("Central_Meridian", 3) +
                            Param("Standard_Parallel_1", 49) + Param("Latitude_Of_Origin", 46.5);
    EXPECT_EQ(Parsed(Projcs("Lambert_Conformal_Conic", lcc + Param("Standard_Parallel_2", 44))).GetProjectionType(),
              CKvMapProjData::eLambert2SP);
    EXPECT_EQ(Parsed(Projcs("Lambert_Conformal_Conic", lcc + Param("Scale_Factor", 0.9995))).GetProjectionType(),
              CKvMapProjData::eLambert1SP);
    EXPECT_EQ(Parsed(Projcs("Lambert_Conformal_Conic", lcc)).GetProjectionType(), CKvMapProjData::eNoProjection);

    // Hotine: the grid angle equal to the azimuth keeps the type; another angle,
    // or none, makes the rectified skew form.
    const std::string hotine = Param("False_Easting", 0) + Param("False_Northing", 0) + Param("Scale_Factor", 0.99984) +
                               Param("Azimuth", 53.3158204722222) + Param("Longitude_Of_Center", 115) +
                               Param("Latitude_Of_Center", 4);
    const char* natural = "Hotine_Oblique_Mercator_Azimuth_Natural_Origin";
    EXPECT_EQ(Parsed(Projcs(natural, hotine + Param("Rectified_Grid_Angle", 53.3158204722222))).GetProjectionType(),
              CKvMapProjData::eHotineObliqueMercator);
    CKvPRJParser skew = Parsed(Projcs(natural, hotine + Param("Rectified_Grid_Angle", 53.1301023611111)));
    EXPECT_EQ(skew.GetProjectionType(), CKvMapProjData::eRectifiedSkewOrthomorphic);
    EXPECT_EQ(skew.GetXYPlaneRotation(), 53.1301023611111);
    EXPECT_EQ(Parsed(Projcs(natural, hotine)).GetProjectionType(), CKvMapProjData::eRectifiedSkewOrthomorphic);
    EXPECT_EQ(Parsed(Projcs("Hotine_Oblique_Mercator_Azimuth_Center", hotine)).GetProjectionType(),
              CKvMapProjData::eRectifiedSkewOrthomorphic);
    EXPECT_EQ(Parsed(Projcs(natural, Param("Rectified_Grid_Angle", 1))).GetProjectionType(),
              CKvMapProjData::eNoProjection); // a missing required parameter is not undone

    // The two parallels are ordered only under the flag.
    const std::string albers = Param("False_Easting", 0) + Param("False_Northing", 0) +
                               Param("Longitude_Of_Center", -96) + Param("Standard_Parallel_1", 60) +
                               Param("Standard_Parallel_2", 20) + Param("Latitude_Of_Center", 40);
    CKvPRJParser sorted = Parsed(Projcs("Albers", albers), true);
    EXPECT_EQ(sorted.GetStandardParallel1(), 20.0);
    EXPECT_EQ(sorted.GetStandardParallel2(), 60.0);
    EXPECT_EQ(sorted.GetCentralMeridian(), -96.0);  // by its alias
    EXPECT_EQ(sorted.GetLatitudeOfOrigin(), 40.0); // by its alias
    EXPECT_EQ(Parsed(Projcs("Albers", albers), false).GetStandardParallel1(), 60.0);

    // TOWGS84 always takes seven values: three leave the rest to the text after.
    std::string shifted = Projcs("Transverse_Mercator", kTmParameters);
    shifted.replace(shifted.find("]],PRIMEM"), 2, "],TOWGS84[1,2,3]]");
    CKvDatumShift shift;
    Parsed(shifted).GetDatumShift(shift);
    EXPECT_EQ(shift.GetType(), CKvCartDef::eSevenParameters);
    EXPECT_EQ(shift[2], 3.0);
    EXPECT_EQ(shift[3], 0.0);                // from PRIMEM["Greenwich"
    EXPECT_EQ(shift[6], 0.0174532925199433); // from the angular unit

    // A second parse overwrites what it reads and keeps the rest.
    CKvPRJParser twice(shifted.c_str());
    twice.Parse(false);
    CKvPRJParser again(kGeogcs.c_str());
    again = twice; // copyable record
    EXPECT_EQ(again.GetFalseEasting(), 500000.0);
}

TEST(PrjConstruction, UnitsPrimeMeridianAndDerivedParameters)
{
    // Grads and a Paris meridian: 10 grads are 9 degrees, and the prime
    // meridian (written in degrees) is added as it stands.
    std::string grads = Projcs("Transverse_Mercator", kTmParameters);
    grads.replace(grads.find("PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\",0.0174532925199433]"),
                  std::string("PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\",0.0174532925199433]").size(),
                  "PRIMEM[\"Paris\",2.33722917],UNIT[\"Grad\",0.01570796326794897]");
    grads.replace(grads.find("\"Central_Meridian\",9"), 20, "\"Central_Meridian\",10");
    CKvPRJParser parser(grads.c_str());
    ASSERT_TRUE(parser.Parse(false));
    Engine engine(parser.CreateMapProjection());
    double x = 0.0, y = 0.0;
    engine->Geo2Proj(9.0 + 2.33722917, 0.0, &x, &y);
    EXPECT_NEAR(x, 500000.0, 1e-6);
    EXPECT_NEAR(y, 0.0, 1e-6);

    // The south-orientated and Gauss-Kruger names build the same engine.
    double xs = 0.0, ys = 0.0;
    Engine plain(Parsed(Projcs("Transverse_Mercator", kTmParameters)).CreateMapProjection());
    plain->Geo2Proj(11.5, 48.1, &x, &y);
    for (const char* name : {"Transverse_Mercator_South_Orientated", "Gauss_Kruger"}) {
        Engine same(Parsed(Projcs(name, kTmParameters)).CreateMapProjection());
        same->Geo2Proj(11.5, 48.1, &xs, &ys);
        EXPECT_EQ(xs, x) << name;
        EXPECT_EQ(ys, y) << name;
    }

    // Non_Projected: a transverse Mercator engine, but no definition.
    CKvPRJParser none = Parsed(Projcs("Non_Projected", kTmParameters));
    EXPECT_EQ(none.GetProjectionType(), CKvMapProjData::eNonProjected);
    EXPECT_TRUE(Engine(none.CreateMapProjection()));
    EXPECT_EQ(none.GetProjectionTypeTitle(), "Non projection");
    EXPECT_EQ(none.GetNoOfParameters(), 0);
    EXPECT_EQ(none._CreateProjData(), nullptr);

    // Derived parameters written back by the parse: the scale on the equator of
    // a two-parallel Mercator (EPSG guidance note 7-2, k0 = cos(phi1)/sqrt(1 - e2 sin2(phi1))),
    // the one-parallel form's report (0), the polar stereographic's scale at the pole.
    const std::string merc = Param("False_Easting", 0) + Param("False_Northing", 0) + Param("Central_Meridian", 100);
    CKvPRJParser two = Parsed(Projcs("Mercator", merc + Param("Standard_Parallel_1", -41)));
    const double e2 = 0.0066943799901413165, s = std::sin(-41.0 * M_PI / 180.0);
    EXPECT_NEAR(two.GetScaleFactor(), std::cos(-41.0 * M_PI / 180.0) / std::sqrt(1.0 - e2 * s * s), 1e-12);
    CKvPRJParser one = Parsed(Projcs("Mercator_1SP", merc + Param("Scale_Factor", 0.997)));
    EXPECT_EQ(one.GetStandardParallel1(), 0.0);
    CKvPRJParser south = Parsed(Projcs("Stereographic_South_Pole", merc + Param("Standard_Parallel_1", -71)));
    EXPECT_NEAR(south.GetScaleFactor(), 0.9727690, 1e-7); // PROJ's k for lat_ts = -71 on WGS 84

    // The definition holds the values as stored, named after the record.
    CKvPRJParser tm = Parsed(Projcs("Transverse_Mercator", kTmParameters, "UNIT[\"Foot\",0.3048]"));
    tm.SetDatum("D_Test");
    std::unique_ptr<CKvMapProjData> definition(tm._CreateProjData());
    ASSERT_TRUE(definition);
    EXPECT_EQ(definition->GetName(), "Test");
    EXPECT_EQ(definition->GetBranchName(), "D_Test");
    EXPECT_EQ(definition->GetEllipsoidID(), "WGS_1984");
    EXPECT_EQ(kvtest::Parameters(*definition), (std::vector<double>{0.9996, 9, 0, 500000, 0}));
    EXPECT_EQ(tm.GetProjectionTypeTitle(), CString(definition->GetProjectionTypeTitle()));
    ASSERT_EQ(tm.GetNoOfParameters(), 5);
    CString name, unit;
    double value = 0.0, factor = 0.0;
    ASSERT_TRUE(tm.GetParameter(0, name, value, unit, factor)); // scale: no unit
    EXPECT_EQ(unit + "|" + name, CString("|") + "Scale:");
    EXPECT_EQ(factor, 1.0);
    ASSERT_TRUE(tm.GetParameter(1, name, value, unit, factor)); // angle
    EXPECT_EQ(unit + "", "Degree");
    EXPECT_EQ(factor, 0.0174532925199433);
    ASSERT_TRUE(tm.GetParameter(3, name, value, unit, factor)); // length
    EXPECT_EQ(unit + "", "Foot");
    EXPECT_EQ(value, 500000.0);
    EXPECT_FALSE(tm.GetParameter(5, name, value, unit, factor));

    CKvPRJParser nothing("");
    EXPECT_EQ(nothing.CreateMapProjection(), nullptr);
    EXPECT_FALSE(nothing.GetParameter(0, name, value, unit, factor));
}

TEST(PrjWriter, FormatsTheRecordAndReflowsIt)
{
    // A geographic record is written as a PROJCS around its GEOGCS.
    CString text;
    ASSERT_TRUE(Parsed(kGeogcs).Format(text));
    EXPECT_EQ(text, "PROJCS[\"GCS_WGS_1984\",GEOGCS[\"GCS_WGS_1984\",DATUM[\"D_WGS_1984\",SPHEROID[\"WGS_1984\","
                    "6378137,298.257223563]],PRIMEM[\"Greenwich\",0],UNIT[\"Degree\",0.0174532925199433]],"
                    "PROJECTION[\"Geographical\"],UNIT[\"\",-1e-35]]");

    // The buffer form needs room for the terminator.
    std::string buffer(static_cast<size_t>(text.GetLength()) + 1, '#');
    EXPECT_FALSE(Parsed(kGeogcs).Format(&buffer[0], text.GetLength()));
    EXPECT_EQ(buffer[0], '#');
    EXPECT_TRUE(Parsed(kGeogcs).Format(&buffer[0], text.GetLength() + 1));
    EXPECT_EQ(buffer.c_str(), text.GetStdString());

    // Polar stereographic: the scale between the central meridian and the latitude.
    CKvPRJParser polar("");
    polar.SetProjectionType(CKvMapProjData::ePolarStereographic);
    polar.SetProjectionTypeName("Polar_Stereographic");
    polar.SetCentralMeridian(0);
    polar.SetScaleFactor(0.994);
    polar.SetLatitudeOfOrigin(90);
    ASSERT_TRUE(polar.Format(text));
    EXPECT_NE(text.Find("PARAMETER[\"Central_Meridian\",0],PARAMETER[\"Scale_Factor\",0.994],"
                        "PARAMETER[\"Latitude_Of_Origin\",90],UNIT["),
              -1);
    EXPECT_NE(text.Find("PARAMETER[\"False_Easting\",-1e-35]"), -1); // never set

    // No writer for "no projection": the text stops after PROJECTION.
    CKvPRJParser none("");
    EXPECT_FALSE(none.Format(text));
    EXPECT_EQ(text.Right(15), "PROJECTION[\"\"],");

    CString readable;
    CKvPRJParser::FormatAsReadableWKT(Projcs("Transverse_Mercator", Param("False_Easting", 0)).c_str(), readable);
    EXPECT_EQ(readable, "PROJCS[\"Test\",\r\n"
                        "    GEOGCS[\"GCS_WGS_1984\",\r\n"
                        "        DATUM[\"D_WGS_1984\",\r\n"
                        "            SPHEROID[\"WGS_1984\",6378137.0,298.257223563]],\r\n"
                        "        PRIMEM[\"Greenwich\",0.0],\r\n"
                        "        UNIT[\"Degree\",0.0174532925199433]],\r\n"
                        "    PROJECTION[\"Transverse_Mercator\"],\r\n"
                        "    PARAMETER[\"False_Easting\",0],\r\n"
                        "    UNIT[\"Meter\",1.0]]");
    // The re-flowed text reads back to the same record.
    EXPECT_EQ(Parsed(readable.GetStdString()).GetProjectionType(), CKvMapProjData::eNoProjection);
    CKvPRJParser::FormatAsReadableWKT(Projcs("Transverse_Mercator", kTmParameters).c_str(), readable);
    EXPECT_EQ(Parsed(readable.GetStdString()).GetScaleFactor(), 0.9996);

    // Hostile nesting: the indentation is bounded, the output stays linear.
    const std::string deep = std::string(100000, '[') + "x,y[" + std::string(100001, ']');
    CKvPRJParser::FormatAsReadableWKT(deep.c_str(), readable);
    EXPECT_LT(readable.GetLength(), 400000);
}

TEST(PrjWriter, EveryCatalogueTypeReadsBackAsWritten)
{
    kvtest::ShippedCatalogue();
    for (int i = 0; i < CKvMapProjData::GetNoOfProjections(); ++i) {
        const CKvMapProjData::EProjectionType type = CKvMapProjData::Enum2ProjectionType(i);
        std::unique_ptr<CKvMapProjData> definition(CKvMapProjData::CreateDefaultParameterProjection(type));
        const CKvPRJParser record(definition.get());
        CString text;
        ASSERT_TRUE(record.Format(text)) << type;
        CKvPRJParser back(text);
        // Snyder's stereographic is written as ESRI's "Stereographic", which reads
        // back as itself by the registry's rules (the established reading takes it
        // for the double stereographic, with a warning).
        if (type == CKvMapProjData::eStereographicSnyder)
            back.SetReading(CKvPRJParser::eEpsgReading);
        ASSERT_TRUE(back.Parse(false)) << text;
        // Hotine systems come back as the rectified skew form: no grid angle is written.
        const bool hotine = type == CKvMapProjData::eHotineObliqueMercator || type == CKvMapProjData::eObliqueMercator;
        EXPECT_EQ(back.GetProjectionType(), hotine ? CKvMapProjData::eRectifiedSkewOrthomorphic : type) << text;
        std::unique_ptr<CKvMapProjData> reread(back._CreateProjData());
        ASSERT_TRUE(reread) << text;
        const std::vector<double> written = kvtest::Parameters(*definition);
        std::vector<double> read = kvtest::Parameters(*reread);
        if (hotine) {
            read.erase(read.begin() + 4); // the plane rotation the rectified form adds
        }
        // Mercator and polar forms: the parse writes the derived parameter back.
        if (type == CKvMapProjData::eMercator1SP || type == CKvMapProjData::eMercator2SP ||
            type == CKvMapProjData::eStereographicNorthPole || type == CKvMapProjData::eStereographicSouthPole)
            continue;
        EXPECT_EQ(read, written) << text;
        CString again;
        if (!hotine) {
            back.Format(again);
            EXPECT_EQ(again, text);
        }
    }
}

TEST(PrjWriter, NumbersUseThePointUnderACommaLocale)
{
    const kvtest::CommaLocale comma;
    ASSERT_TRUE(comma.Active());
    CKvPRJParser tm = Parsed(Projcs("Transverse_Mercator", kTmParameters));
    EXPECT_EQ(tm.GetScaleFactor(), 0.9996);
    EXPECT_EQ(tm.GetCentralMeridian(), 9.0);
    CString text;
    tm.Format(text);
    EXPECT_NE(text.Find("PARAMETER[\"Scale_Factor\",0.9996]"), -1);
    EXPECT_NE(text.Find("298.257223563"), -1);
}
