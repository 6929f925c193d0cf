// The datum converter against PROJ (cs2cs --3d with the same +towgs84, and
// +proj=cart for geocentric coordinates; tools/make_datum_vectors.py), its rule
// for a side without an ellipsoid, its flags, order and copies, and the values
// it refuses.
#include "TestSupport.h"

#include "coordsys/KvMapProjection.h"
#include "geodesy/KvDatumConverter.h"
#include "interface/KvCart.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr double kMetresPerDegree = 111320.0;
const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

struct DatumCase
{
    int type = 0;
    std::string source, target;
    int shiftSide = -1;                      // a shift set after construction: 1 source, 0 target
    std::vector<double> shift;               // its 3 or 7 values
    std::vector<std::vector<double>> values; // x y h x' y' h'
};

std::vector<double> Numbers(const std::vector<std::string>& f, size_t from)
{
    std::vector<double> v;
    for (size_t i = from; i < f.size(); ++i)
        v.push_back(std::strtod(f[i].c_str(), nullptr));
    return v;
}

struct DatumVectors
{
    std::map<std::string, DatumCase> cases;
    std::vector<std::vector<double>> geocentric; // heights -1 km to 10 km
    std::vector<std::vector<double>> far;        // the poles, heights far below and above
};

DatumVectors Load()
{
    DatumVectors d;
    std::ifstream in(std::string(KVCART_TEST_DATA_DIR) + "datum_vectors.txt");
    for (std::string line; std::getline(in, line);) {
        const std::vector<std::string> f = kvtest::TabFields(line);
        if (f[0] == "C") {
            DatumCase& c = d.cases[f[1]];
            c.type = std::stoi(f[2]);
            c.source = f[3];
            c.target = f[4];
        } else if (f[0] == "S") {
            DatumCase& c = d.cases.at(f[1]);
            c.shiftSide = std::stoi(f[2]);
            c.shift = Numbers(f, 3);
        } else if (f[0] == "V") {
            d.cases.at(f[1]).values.push_back(Numbers(f, 2));
        } else if (f[0] == "G") {
            d.geocentric.push_back(Numbers(f, 1));
        } else if (f[0] == "H") {
            d.far.push_back(Numbers(f, 1));
        }
    }
    return d;
}

// The distance in metres between two results, geographical ones scaled.
double Miss(bool geographical, double x, double y, double xRef, double yRef)
{
    if (!geographical)
        return std::hypot(x - xRef, y - yRef);
    return kMetresPerDegree * std::hypot((x - xRef) * std::cos(yRef * M_PI / 180.0), y - yRef);
}

std::string Geographic(double a, double rf)
{
    char text[256];
    std::snprintf(text, sizeof text,
                  "GEOGCS[\"G\",DATUM[\"D\",SPHEROID[\"S\",%.17g,%.17g]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\","
                  "0.0174532925199433]]",
                  a, rf);
    return text;
}

CKvDatumConverter::ETypeOfConversion Conversion(int type)
{
    return static_cast<CKvDatumConverter::ETypeOfConversion>(type);
}

CKvCartDef::ETypeOfDatumShift ShiftType(const std::vector<double>& values)
{
    return values.size() == 3 ? CKvCartDef::eThreeParameters : CKvCartDef::eSevenParameters;
}

// A case's converter, with the shift the case sets after construction.
void Prepare(CKvDatumConverter& converter, const DatumCase& c)
{
    converter.SetConversionType(Conversion(c.type));
    if (c.shiftSide >= 0) {
        std::vector<double> values = c.shift;
        values.resize(7, 0.0);
        converter.SetDatumShift(ShiftType(c.shift), values.data(), c.shiftSide == 1);
    }
}


} // namespace

TEST(DatumConverter, AgreesWithProjForEveryConversionType)
{
    kvtest::ShippedCatalogue();
    const DatumVectors d = Load();
    ASSERT_GE(d.cases.size(), 19u);
    std::set<int> types;
    size_t longLat = 0, shiftsSet = 0;
    for (const auto& [name, c] : d.cases) {
        CKvDatumConverter converter(c.source.c_str(), c.target.c_str());
        Prepare(converter, c);
        ASSERT_FALSE(converter.GetBypassXYZ()) << name;
        types.insert(c.type);
        longLat += c.source == "LONG/LAT" || c.target == "LONG/LAT";
        shiftsSet += c.shiftSide >= 0;
        // Degrees in and out where the type says so, and where the system's own
        // coordinates are degrees.
        const bool geoIn = c.type >= 2 || converter.GetMapProjection(true)->IsGeographical();
        const bool geoOut = c.type % 2 == 1 || converter.GetMapProjection(false)->IsGeographical();
        const bool sevenParameters = converter.GetShiftType(true) == CKvCartDef::eSevenParameters ||
                                     converter.GetShiftType(false) == CKvCartDef::eSevenParameters;
        ASSERT_EQ(c.values.size(), 16u) << name;
        for (const std::vector<double>& v : c.values) {
            double x = v[0], y = v[1], h = v[2];
            converter.Convert(x, y, h);
            EXPECT_LT(Miss(geoOut, x, y, v[3], v[4]), 1e-3) << name << " at " << v[0] << " " << v[1];
            EXPECT_NEAR(h, v[5], 1e-3) << name;
            // The reverse uses the transposed rotation: exact for translations,
            // first order (millimetres at 5 arc-seconds) for rotations. Far from
            // the ellipsoid one step of Bowring's method and the spacing of the
            // doubles leave a tenth of a millimetre.
            converter.InvConvert(x, y, h);
            const double back = sevenParameters ? 1e-2 : std::fabs(v[2]) > 1e5 ? 1e-4 : 1e-5;
            EXPECT_LT(Miss(geoIn, x, y, v[0], v[1]), back) << name;
            EXPECT_NEAR(h, v[2], back) << name;
        }
    }
    EXPECT_EQ(types.size(), 4u);
    EXPECT_GE(longLat, 9u);
    EXPECT_EQ(shiftsSet, 2u);
}

// The batch path and the C interface give the single calls' results bit for
// bit, shifts set afterwards included.
TEST(DatumConverter, BatchAndCInterfaceGiveTheSingleCallsResults)
{
    kvtest::ShippedCatalogue();
    const DatumVectors d = Load();
    for (const auto& [name, c] : d.cases) {
        CKvDatumConverter converter(c.source.c_str(), c.target.c_str());
        Prepare(converter, c);
        KVDC_HANDLE handle = nullptr;
        int status = -1;
        C_KVDC_CREATE(c.source.c_str(), c.target.c_str(), &handle, &status);
        ASSERT_EQ(status, 0) << name;
        C_KVDC_SETCONVERSIONTYPE(handle, c.type);
        if (c.shiftSide >= 0) {
            std::vector<double> values = c.shift;
            values.resize(7, 0.0);
            EXPECT_EQ(C_KVDC_SETDATUMSHIFT(handle, ShiftType(c.shift), values.data(), c.shiftSide), 0) << name;
        }
        std::vector<double> xs, ys, hs;
        for (const std::vector<double>& v : c.values) {
            xs.push_back(v[0]);
            ys.push_back(v[1]);
            hs.push_back(v[2]);
        }
        std::vector<double> bx = xs, by = ys, bh = hs, cx = xs, cy = ys, ch = hs;
        converter.Convert(bx.size(), bx.data(), by.data(), bh.data());
        C_KVDC_CONVERTXYH_N(handle, cx.size(), cx.data(), cy.data(), ch.data());
        for (size_t i = 0; i < xs.size(); ++i) {
            double x = xs[i], y = ys[i], h = hs[i];
            converter.Convert(x, y, h);
            EXPECT_EQ(bx[i], x) << name;
            EXPECT_EQ(by[i], y) << name;
            EXPECT_EQ(bh[i], h) << name;
            double px = xs[i], py = ys[i], ph = hs[i];
            C_KVDC_CONVERTXYH(handle, &px, &py, &ph);
            EXPECT_EQ(px, x) << name;
            EXPECT_EQ(py, y) << name;
            EXPECT_EQ(ph, h) << name;
            EXPECT_EQ(cx[i], x) << name;
            EXPECT_EQ(ch[i], h) << name;
        }
        C_KVDC_DESTROY(&handle, &status);
    }
}

TEST(DatumConverter, GeocentricCoordinatesAgreeWithProjCart)
{
    const DatumVectors d = Load();
    ASSERT_EQ(d.geocentric.size(), 600u);
    ASSERT_GT(d.far.size(), 200u);
    // Heights -1 km to 10 km (the accuracy table's points), then the poles and
    // heights from 0.24 a below the ellipsoid to 1e11 m above it.
    for (const auto* points : {&d.geocentric, &d.far}) {
        double worstForward = 0.0, worstBowring = 0.0;
        for (const std::vector<double>& g : *points) {
            const CKvMapProjection system(Geographic(g[0], g[1]));
            double X = 0, Y = 0, Z = 0;
            system.Geo2XYZ(g[2], g[3], g[4], &X, &Y, &Z);
            worstForward = std::max(worstForward, std::hypot(X - g[5], Y - g[6], Z - g[7]));
            double lon = 0, lat = 0, h = 0;
            system.XYZ2Geo(g[5], g[6], g[7], &lon, &lat, &h);
            // Angles as distances at the point's own distance from the centre.
            const double radius = std::hypot(g[5], g[6], g[7]);
            const double horizontal = radius * M_PI / 180.0 *
                                      std::hypot((lon - g[2]) * std::cos(g[3] * M_PI / 180.0), lat - g[3]);
            worstBowring = std::max({worstBowring, horizontal, std::fabs(h - g[4])});
        }
        // One step of Bowring's method, heights -1 km to 10 km: 2.2e-6 m at worst;
        // 0.24 a below the ellipsoid 1e-5 m; 1e11 m above it the doubles' spacing.
        EXPECT_LT(worstForward, 1e-4);
        EXPECT_LT(worstBowring, 1e-4);
        if (points == &d.geocentric)
            RecordProperty("bowring_worst_metres", std::to_string(worstBowring));
        std::printf("geocentric (%zu points): forward %.3g m, Bowring inverse %.3g m worst\n", points->size(),
                    worstForward, worstBowring);
    }
}

TEST(DatumConverter, FlagsOrderAndCopies)
{
    kvtest::ShippedCatalogue();
    const std::string osgb =
        "GEOGCS[\"OSGB36\",DATUM[\"OSGB36\",SPHEROID[\"Airy 1830\",6377563.396,299.3249646],TOWGS84[446.448,"
        "-125.157,542.06,1,0.247,0.842,-20.489]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]]";
    const std::string wgs84 = CKvMapProjection::IDtoProjectionString(CKvMapProjection::eWgs84Geographic);

    // Same figure, no shift: bypassed, a geographical conversion changes nothing.
    CKvDatumConverter same(wgs84.c_str(), "UTM-32");
    EXPECT_TRUE(same.GetBypassXYZ());
    same.SetConversionType(CKvDatumConverter::eGeoToGeo);
    double x = 9.5, y = 50.25, h = 123.0;
    same.Convert(x, y, h);
    EXPECT_EQ(x, 9.5);
    EXPECT_EQ(y, 50.25);
    EXPECT_EQ(h, 123.0);

    // Arc-seconds and ppm of TOWGS84 are taken as radians and a correction.
    CKvDatumConverter shifted(osgb.c_str(), wgs84.c_str());
    EXPECT_FALSE(shifted.GetBypassXYZ());
    EXPECT_NEAR(shifted.GetShift(true)[3], 4.84813681109536e-06, 1e-20);
    EXPECT_NEAR(shifted.GetShift(true)[6], -20.489e-6, 1e-20);
    shifted.BypassXYZ();
    EXPECT_TRUE(shifted.GetBypassXYZ());
    shifted.ResetBypassXYZ();
    EXPECT_FALSE(shifted.GetBypassXYZ());
    // Setting the shifts recomputes the bypass; Airy and WGS 84 differ, so even
    // with no shift on either side the geocentric step stays.
    EXPECT_FALSE(shifted.SetDatumShift(CKvCartDef::eNoDatumShift, nullptr, false));
    EXPECT_FALSE(shifted.SetDatumShift(CKvCartDef::eNoDatumShift, nullptr, true));

    // The geocentric shift and its reverse; the order inverted twice is the same converter.
    CKvDatumConverter converter(osgb.c_str(), "UTM-32");
    converter.SetConversionType(CKvDatumConverter::eProjToGeo);
    double X = 3980000.0, Y = -100000.0, Z = 4970000.0;
    converter.DatumShift(X, Y, Z);
    EXPECT_GT(std::fabs(X - 3980000.0), 100.0);
    converter.InvDatumShift(X, Y, Z);
    EXPECT_NEAR(X, 3980000.0, 1e-3);
    EXPECT_NEAR(Y, -100000.0, 1e-3);
    EXPECT_NEAR(Z, 4970000.0, 1e-3);
    converter.InvertOrder();
    EXPECT_EQ(converter.GetConversionType(), CKvDatumConverter::eGeoToProj);
    EXPECT_EQ(converter.GetShiftType(true), CKvCartDef::eNoDatumShift);
    converter.InvertOrder();
    EXPECT_EQ(converter.GetConversionType(), CKvDatumConverter::eProjToGeo);
    EXPECT_EQ(converter.GetShiftType(true), CKvCartDef::eSevenParameters);
    EXPECT_STREQ(converter.GetMapProjection(false)->GetName(), "UTM-32");

    // A local system on either side leaves every coordinate alone.
    CKvDatumConverter local("NON-UTM", osgb.c_str());
    local.SetConversionType(CKvDatumConverter::eGeoToGeo);
    x = 1.0, y = 2.0, h = 3.0;
    local.Convert(x, y, h);
    local.InvConvert(x, y, h);
    EXPECT_EQ(x, 1.0);
    EXPECT_EQ(y, 2.0);
    EXPECT_EQ(h, 3.0);

    // A copy owns copies of owned systems: it outlives the original.
    CKvDatumConverter* original = new CKvDatumConverter(osgb.c_str(), wgs84.c_str());
    original->SetConversionType(CKvDatumConverter::eGeoToGeo);
    CKvDatumConverter copy(*original);
    CKvDatumConverter assigned(wgs84.c_str(), wgs84.c_str());
    assigned = *original;
    double lon1 = -2.0, lat1 = 52.0, lon2 = -2.0, lat2 = 52.0;
    original->Convert(lon1, lat1);
    delete original;
    copy.Convert(lon2, lat2);
    EXPECT_EQ(lon1, lon2);
    EXPECT_EQ(lat1, lat2);
    assigned.Convert(lon2 = -2.0, lat2 = 52.0);
    EXPECT_EQ(lat1, lat2);
    // Systems it does not own stay shared and are not deleted by either.
    CKvMapProjection a(osgb), b(wgs84);
    CKvDatumConverter borrowing(&a, &b);
    { CKvDatumConverter second(borrowing); EXPECT_EQ(second.GetMapProjection(true), &a); }
    EXPECT_STREQ(a.GetName(), borrowing.GetMapProjection(true)->GetName());

    EXPECT_THROW(CKvDatumConverter("UTM", "UTM-32"), std::out_of_range);
}

// "LONG/LAT" has no ellipsoid. Against a side with a shift it is WGS 84, the
// datum every shift leads to: the same results as the WGS 84 WKT, both orders,
// every type, single and batch. The shift is never skipped, nor is a
// geocentric step run on a missing figure.
TEST(DatumConverter, LongLatIsWgs84WhenTheOtherSideHasAShift)
{
    kvtest::ShippedCatalogue();
    const std::string wgs84 = CKvMapProjection::IDtoProjectionString(CKvMapProjection::eWgs84Geographic);
    const double lon[3] = {-0.1281, -3.2, 1.75}, lat[3] = {51.508, 55.9, 52.6}, height[3] = {0.0, 250.0, -40.0};
    for (int order = 0; order < 2; ++order)
        for (int type = 0; type < 4; ++type) {
            CKvDatumConverter longLat(order == 0 ? "LONG/LAT" : kvtest::kOsgbGrid, order == 0 ? kvtest::kOsgbGrid : "LONG/LAT");
            CKvDatumConverter explicitWgs84(order == 0 ? wgs84.c_str() : kvtest::kOsgbGrid,
                                            order == 0 ? kvtest::kOsgbGrid : wgs84.c_str());
            longLat.SetConversionType(Conversion(type));
            explicitWgs84.SetConversionType(Conversion(type));
            EXPECT_FALSE(longLat.GetBypassXYZ());
            // Inputs on the grid's side are grid coordinates when the type says so.
            const bool gridIn = order == 1 && type < 2;
            double xs[3], ys[3], hs[3];
            for (int i = 0; i < 3; ++i) {
                xs[i] = lon[i], ys[i] = lat[i], hs[i] = height[i];
                if (gridIn)
                    longLat.GetMapProjection(true)->Geo2Proj(lon[i], lat[i], &xs[i], &ys[i]);
            }
            double bx[3], by[3], bh[3];
            std::copy(xs, xs + 3, bx);
            std::copy(ys, ys + 3, by);
            std::copy(hs, hs + 3, bh);
            longLat.Convert(3, bx, by, bh);
            for (int i = 0; i < 3; ++i) {
                double x = xs[i], y = ys[i], h = hs[i], xw = xs[i], yw = ys[i], hw = hs[i];
                longLat.Convert(x, y, h);
                explicitWgs84.Convert(xw, yw, hw);
                EXPECT_EQ(x, xw) << order << " type " << type;
                EXPECT_EQ(y, yw) << order << " type " << type;
                EXPECT_EQ(h, hw) << order << " type " << type;
                EXPECT_EQ(bx[i], x);
                EXPECT_EQ(by[i], y);
                EXPECT_EQ(bh[i], h);
                longLat.InvConvert(x, y, h);
                explicitWgs84.InvConvert(xw, yw, hw);
                EXPECT_EQ(x, xw);
                EXPECT_EQ(y, yw);
            }
        }

    // Trafalgar Square through the C interface, to PROJ's cs2cs
    // (+proj=longlat +datum=WGS84 +to the grid with +towgs84=446.448,...): 530006.222 180446.284.
    KVDC_HANDLE handle = nullptr;
    int status = -1;
    C_KVDC_CREATE("LONG/LAT", kvtest::kOsgbGrid, &handle, &status);
    ASSERT_EQ(status, 0);
    C_KVDC_SETCONVERSIONTYPE(handle, 2);
    double x = -0.1281, y = 51.508;
    C_KVDC_CONVERTXY(handle, &x, &y);
    EXPECT_NEAR(x, 530006.222, 1e-3);
    EXPECT_NEAR(y, 180446.284, 1e-3);
    // The same 7 parameters set again (radians, plain scale): the same point.
    const double arcSecond = M_PI / 180.0 / 3600.0;
    double shift[7] = {446.448, -125.157, 542.06, 0.15 * arcSecond, 0.247 * arcSecond, 0.842 * arcSecond, -20.489e-6};
    EXPECT_EQ(C_KVDC_SETDATUMSHIFT(handle, 2, shift, 0), 0);
    double x2 = -0.1281, y2 = 51.508;
    C_KVDC_CONVERTXY(handle, &x2, &y2);
    EXPECT_NEAR(x2, x, 1e-6);
    EXPECT_NEAR(y2, y, 1e-6);
    // Bypassed on request, and back to the shift afterwards.
    C_KVDC_BYPASSXYZ(handle);
    C_KVDC_RESETBYPASSXYZ(handle);
    EXPECT_EQ(C_KVDC_GETBYPASSXYZ(handle), 0);
    // A shift of its own on the side without an ellipsoid places nothing: NaN,
    // never numbers from a missing figure.
    EXPECT_EQ(C_KVDC_SETDATUMSHIFT(handle, 2, shift, 1), 0);
    x2 = -0.1281, y2 = 51.508;
    double h2 = 0.0;
    C_KVDC_CONVERTXYH(handle, &x2, &y2, &h2);
    EXPECT_TRUE(std::isnan(x2) && std::isnan(y2) && std::isnan(h2)) << x2 << " " << y2 << " " << h2;
    C_KVDC_DESTROY(&handle, &status);

    // Without a shift on either side there is nothing to shift between: LONG/LAT
    // against a grid is the grid's own projection, bypassed, as before.
    CKvDatumConverter plain("LONG/LAT", "UTM-32");
    EXPECT_TRUE(plain.GetBypassXYZ());
    plain.SetConversionType(CKvDatumConverter::eGeoToProj);
    double e = 9.0, n = 48.0, ue = 0.0, un = 0.0;
    plain.Convert(e, n);
    CKvMapProjection("UTM-32").Geo2Proj(9.0, 48.0, &ue, &un);
    EXPECT_EQ(e, ue);
    EXPECT_EQ(n, un);
    // A shift set on the grid's side then brings WGS 84 in for LONG/LAT, and
    // the default bypass follows the shifts as set.
    EXPECT_FALSE(plain.SetDatumShift(CKvCartDef::eThreeParameters, shift, false));
    plain.BypassXYZ();
    plain.ResetBypassXYZ();
    EXPECT_FALSE(plain.GetBypassXYZ());
    e = 9.0, n = 48.0;
    double up = 0.0;
    plain.Convert(e, n, up);
    EXPECT_GT(std::hypot(e - ue, n - un), 100.0);
    EXPECT_TRUE(std::isfinite(e) && std::isfinite(n));
    // InvertOrder carries each side's figure with its system: the grid back to
    // LONG/LAT.
    plain.InvertOrder();
    plain.Convert(e, n, up);
    EXPECT_NEAR(up, 0.0, 1e-6);
    EXPECT_NEAR(e, 9.0, 1e-9);
    EXPECT_NEAR(n, 48.0, 1e-9);
    // Both shifts removed again: bypassed as made.
    plain.SetDatumShift(CKvCartDef::eNoDatumShift, nullptr, true);
    EXPECT_TRUE(plain.GetBypassXYZ());
}

// Values outside the enumerations, missing or non-finite shift values: refused,
// the converter left as it was. The C interface reports -1 for a refused shift
// and leaves the conversion type; the C++ members throw std::invalid_argument.
// GRS 80 and WGS 84 are one figure for a change of datum: a zero shift between
// them keeps latitude and longitude, as PROJ applies the registry's
// zero-parameter transformations (RGF93 to WGS 84, EPSG:1671: +proj=noop). A
// zero shift between other figures still goes through geocentric coordinates,
// as PROJ does for a TOWGS84 of zeros on International 1924 (45 N on it is
// 44.99917787 N on WGS 84).
TEST(DatumConverter, GrsEightyAndWgs84AreOneFigure)
{
    kvtest::ShippedCatalogue();
    const std::string wgs84 = CKvMapProjection::IDtoProjectionString(CKvMapProjection::eWgs84Geographic);
    auto geographic = [](const char* name, const char* figure) {
        return std::string("GEOGCS[\"X\",DATUM[\"X_datum\",SPHEROID[\"E\",") + figure +
               "],TOWGS84[0,0,0,0,0,0,0]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]]" + name;
    };
    const std::string grs80 = geographic("", "6378137,298.257222101");
    CKvDatumConverter same(grs80.c_str(), wgs84.c_str());
    same.SetConversionType(CKvDatumConverter::eGeoToGeo);
    EXPECT_TRUE(same.GetBypassXYZ());
    double x = 10.0, y = 45.0, h = 100.0;
    same.Convert(x, y, h);
    EXPECT_EQ(x, 10.0);
    EXPECT_EQ(y, 45.0);
    EXPECT_EQ(h, 100.0);

    const std::string hayford = geographic("", "6378388,297");
    CKvDatumConverter other(hayford.c_str(), wgs84.c_str());
    other.SetConversionType(CKvDatumConverter::eGeoToGeo);
    EXPECT_FALSE(other.GetBypassXYZ());
    x = 10.0, y = 45.0;
    other.Convert(x, y);
    EXPECT_NEAR(y, 44.999177869798686, 1e-9);
    // A flattening near GRS 80's that is not it is another figure, as for PROJ.
    const std::string near = geographic("", "6378137,298.257222");
    CKvDatumConverter nearly(near.c_str(), wgs84.c_str());
    nearly.SetConversionType(CKvDatumConverter::eGeoToGeo);
    EXPECT_FALSE(nearly.GetBypassXYZ());

    // WGS 84 to Lambert-93 (RGF93, known shift of zero) only projects: the
    // registry's points, PROJ's to the nanometre.
    CKvDatumConverter lambert(wgs84.c_str(), "EPSG:2154");
    lambert.SetConversionType(CKvDatumConverter::eGeoToProj);
    EXPECT_TRUE(lambert.GetBypassXYZ());
    x = 2.35, y = 48.85;
    lambert.Convert(x, y);
    double px = 0.0, py = 0.0;
    CKvMapProjection("EPSG:2154").Geo2Proj(2.35, 48.85, &px, &py);
    EXPECT_EQ(x, px);
    EXPECT_EQ(y, py);
}

TEST(DatumConverter, RefusesWhatIsNotATypeOrAShift)
{
    kvtest::ShippedCatalogue();
    KVDC_HANDLE handle = nullptr;
    int status = -1;
    C_KVDC_CREATE(kvtest::kOsgbGrid, "UTM-30", &handle, &status);
    ASSERT_EQ(status, 0);
    C_KVDC_SETCONVERSIONTYPE(handle, 2);
    for (int type : {-1, 4, 7, 99, INT_MIN, INT_MAX}) {
        C_KVDC_SETCONVERSIONTYPE(handle, type);
        EXPECT_EQ(handle->GetConversionType(), CKvDatumConverter::eGeoToProj) << type;
    }
    double x = -0.1281, y = 51.508;
    C_KVDC_CONVERTXY(handle, &x, &y);
    EXPECT_NEAR(x, 699179.13, 0.01); // OSGB 1936 latitude and longitude to WGS 84 / UTM 30

    const double before[7] = {446.448, -125.157, 542.06, 0.15 * M_PI / 648000.0, 0.247 * M_PI / 648000.0,
                              0.842 * M_PI / 648000.0, -20.489e-6};
    double values[7] = {1, 2, 3, 1e-6, 2e-6, 3e-6, 4e-6};
    const auto unchanged = [&](const char* what) {
        EXPECT_EQ(handle->GetShiftType(true), CKvCartDef::eSevenParameters) << what;
        EXPECT_EQ(handle->GetShiftType(false), CKvCartDef::eNoDatumShift) << what;
        for (int i = 0; i < 7; ++i) {
            EXPECT_NEAR(handle->GetShift(true)[i], before[i], 1e-15 * std::fabs(before[i])) << what;
            EXPECT_EQ(handle->GetShift(false)[i], 0.0) << what;
        }
        EXPECT_EQ(C_KVDC_GETBYPASSXYZ(handle), 0) << what;
    };
    for (int type : {-1, 3, 7, 99, INT_MIN}) {
        EXPECT_EQ(C_KVDC_SETDATUMSHIFT(handle, type, values, 1), -1) << type;
        unchanged("type");
    }
    EXPECT_EQ(C_KVDC_SETDATUMSHIFT(handle, 1, nullptr, 1), -1);
    EXPECT_EQ(C_KVDC_SETDATUMSHIFT(handle, 2, nullptr, 0), -1);
    unchanged("no values");
    for (int i = 0; i < 7; ++i)
        for (double bad : {kNaN, kInf, -kInf}) {
            double copy[7] = {1, 2, 3, 1e-6, 2e-6, 3e-6, 4e-6};
            copy[i] = bad;
            // A 3-parameter shift reads only its first three values.
            EXPECT_EQ(C_KVDC_SETDATUMSHIFT(handle, 2, copy, 1), -1) << i;
            EXPECT_EQ(C_KVDC_SETDATUMSHIFT(handle, 1, copy, 0), i < 3 ? -1 : 0) << i;
            C_KVDC_SETDATUMSHIFT(handle, 0, nullptr, 0);
            unchanged("non-finite");
        }
    // A 3-parameter shift replacing a 7-parameter one leaves no rotation behind.
    EXPECT_EQ(C_KVDC_SETDATUMSHIFT(handle, 1, values, 1), 0);
    EXPECT_EQ(handle->GetShiftType(true), CKvCartDef::eThreeParameters);
    for (int i = 3; i < 7; ++i)
        EXPECT_EQ(handle->GetShift(true)[i], 0.0);
    C_KVDC_DESTROY(&handle, &status);

    // The C++ members, with values brought in from integers.
    CKvDatumConverter converter(kvtest::kOsgbGrid, "UTM-30");
    converter.SetConversionType(CKvDatumConverter::eProjToGeo);
    EXPECT_THROW(converter.SetConversionType(static_cast<CKvDatumConverter::ETypeOfConversion>(4)),
                 std::invalid_argument);
    EXPECT_THROW(converter.SetConversionType(static_cast<CKvDatumConverter::ETypeOfConversion>(-1)),
                 std::invalid_argument);
    EXPECT_EQ(converter.GetConversionType(), CKvDatumConverter::eProjToGeo);
    EXPECT_THROW(converter.SetDatumShift(static_cast<CKvCartDef::ETypeOfDatumShift>(3), values, true),
                 std::invalid_argument);
    EXPECT_THROW(converter.SetDatumShift(static_cast<CKvCartDef::ETypeOfDatumShift>(7), values, false),
                 std::invalid_argument);
    EXPECT_THROW(converter.SetDatumShift(CKvCartDef::eSevenParameters, nullptr, false), std::invalid_argument);
    values[4] = kNaN;
    EXPECT_THROW(converter.SetDatumShift(CKvCartDef::eSevenParameters, values, false), std::invalid_argument);
    EXPECT_EQ(converter.GetShiftType(true), CKvCartDef::eSevenParameters);
    EXPECT_EQ(converter.GetShiftType(false), CKvCartDef::eNoDatumShift);
    EXPECT_FALSE(converter.GetBypassXYZ());
}
