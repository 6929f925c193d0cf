// The OGC WKT 1 the library writes (CKvOgcWktWriter, kvcart wkt --ogc): PROJ
// reads every text of every catalogue entry and of every EPSG corpus text as
// the same system (tools/check_ogc_wkt.py judged the texts and recorded PROJ's
// coordinates; a changed text must be judged again), the library reads each
// back, under both readings, to the coordinates it was written from, and what
// OGC WKT 1 cannot say is refused with the reason.
#include "EpsgCorpus.h"
#include "TestSupport.h"

#include "catalogue/KvCartSetup.h"
#include "catalogue/KvMapProjectionList.h"
#include "catalogue/KvTransverseMercatorProjection.h"
#include "coordsys/KvMapProjection.h"
#include "wkt/KvOgcWktWriter.h"
#include "wkt/KvPRJParser.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

namespace {

struct Judged
{
    bool written = false;
    std::string text; // our text, or the reason there is none
    bool read = false;
    std::string axis1, axis2;              // PROJ's reading of the axes
    std::vector<kvtest::EpsgPoint> points; // PROJ on our text (catalogue entries)
    int code = 0;
    double worst = NAN; // PROJ on EPSG:code against PROJ on our text, metres
};

const std::map<std::string, Judged>& Verdicts()
{
    static const std::map<std::string, Judged> verdicts = [] {
        std::map<std::string, Judged> v;
        std::ifstream in(KVCART_OGC_WKT);
        for (std::string line; std::getline(in, line);) {
            if (line.empty() || line[0] == '#')
                continue;
            const std::vector<std::string> f = kvtest::TabFields(line);
            const char kind = f[0][0];
            if (kind == 'K' || kind == 'T') {
                const size_t at = kind == 'K' ? 2 : 3;
                Judged& j = v[kind == 'K' ? f[1] : f[1] + ":" + f[2]];
                j.written = f[at] == "O";
                j.text = f[at + 1];
            } else if (kind == 'A') {
                Judged& j = v[f[1]];
                j.read = true;
                j.axis1 = f[2];
                j.axis2 = f[3];
            } else if (kind == 'P') {
                v[f[1]].points.push_back({std::strtod(f[2].c_str(), nullptr), std::strtod(f[3].c_str(), nullptr),
                                          std::strtod(f[4].c_str(), nullptr), std::strtod(f[5].c_str(), nullptr)});
            } else if (kind == 'E') {
                Judged& j = v[f[1]];
                j.code = std::atoi(f[2].c_str());
                j.worst = std::strtod(f[3].c_str(), nullptr);
            }
        }
        return v;
    }();
    return verdicts;
}

// A text without its TOWGS84 node. PROJ's verdict is on the projection: its
// points are computed from the text's own geodetic system, so the shift's
// values do not enter it, and a text whose shift alone changed (the registry's
// or the catalogue's data) need not be judged again. The shift is compared by
// reading the text back.
std::string WithoutShift(const std::string& text)
{
    const size_t at = text.find(",TOWGS84[");
    if (at == std::string::npos)
        return text;
    const size_t end = text.find(']', at);
    return text.substr(0, at) + (end == std::string::npos ? std::string() : text.substr(end + 1));
}

// The directions our text gives its axes, lower case as PROJ reports them.
void OurAxes(const std::string& text, std::string& first, std::string& second)
{
    const auto word = [&text](size_t from, size_t& end) {
        const size_t at = text.find("AXIS[", from);
        if (at == std::string::npos)
            return std::string();
        const size_t comma = text.find("\",", at);
        end = text.find(']', comma);
        std::string w = text.substr(comma + 2, end - comma - 2);
        for (char& c : w)
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        return w;
    };
    size_t end = 0;
    first = word(0, end);
    second = word(end, end);
}

// The largest distance between two systems' coordinates of the points, and
// between the points and the second system's inverse of the first's
// coordinates, in degrees.
void Compare(const CKvMapProjection& a, const CKvMapProjection& b, const std::vector<kvtest::EpsgPoint>& points,
             double& metres, double& degrees)
{
    metres = degrees = 0.0;
    for (const kvtest::EpsgPoint& p : points) {
        double xa = NAN, ya = NAN, xb = NAN, yb = NAN, lon = NAN, lat = NAN;
        a.Geo2Proj(p.lon, p.lat, &xa, &ya);
        b.Geo2Proj(p.lon, p.lat, &xb, &yb);
        if (!std::isfinite(xa) && !std::isfinite(xb))
            continue;
        const double d = std::hypot(xa - xb, ya - yb);
        metres = std::isfinite(d) ? std::max(metres, d) : INFINITY;
        b.Proj2Geo(xa, ya, &lon, &lat);
        const double dd =
            std::max(std::fabs(std::remainder(lon - p.lon, 360.0)) * std::cos(p.lat * 0.017453292519943295),
                     std::fabs(lat - p.lat));
        degrees = std::isfinite(dd) ? std::max(degrees, dd) : INFINITY;
    }
}

} // namespace

// Every catalogue entry: the text PROJ judged, PROJ's coordinates on it those
// of the catalogue's system, of its EPSG code's system, and of the text read
// back by the library under both readings.
TEST(OgcWkt, CatalogueEntriesReadAsTheSameSystemByProjAndTheLibrary)
{
    kvtest::ShippedCatalogue();
    const kvtest::EpsgReading epsgReading(true);
    const CKvMapProjectionList& list = CKvCartSetup::Instance()->GetMapProjectionList();
    int written = 0, coded = 0;
    double worstProj = 0.0, worstBack = 0.0, worstDegrees = 0.0;
    for (auto it = list.GetIteratorBegin(); it != list.GetIteratorEnd(); ++it) {
        const std::string name = (*it)->GetName();
        const auto found = Verdicts().find(name);
        ASSERT_NE(found, Verdicts().end()) << name << " was not judged by PROJ: run tools/check_ogc_wkt.py";
        const Judged& j = found->second;
        std::string text, reason;
        const bool ours = CKvOgcWktWriter::WriteSystem(name, text, reason);
        EXPECT_EQ(ours, j.written) << name << ": " << reason;
        EXPECT_EQ(WithoutShift(ours ? text : reason), WithoutShift(j.text))
            << name << ": the text changed, judge it again";
        if (!ours || !j.written)
            continue;
        ++written;
        ASSERT_TRUE(j.read) << name << ": PROJ did not read " << text;
        std::string first, second;
        OurAxes(text, first, second);
        EXPECT_EQ(j.axis1, first) << name;
        EXPECT_EQ(j.axis2, second) << name;

        const CKvMapProjection system(name);
        ASSERT_EQ(j.points.size(), 3u) << name;
        // Metres, or degrees for a geographical system.
        const double tolerance = system.IsGeographical() ? 1e-11 : 1e-3;
        for (const kvtest::EpsgPoint& p : j.points) {
            double x = NAN, y = NAN;
            system.Geo2Proj(p.lon, p.lat, &x, &y);
            const double d = std::hypot(x - p.x, y - p.y);
            EXPECT_LT(d, tolerance) << name << " at " << p.lon << " " << p.lat << ": " << x << " " << y << " PROJ "
                                    << p.x << " " << p.y;
            if (!system.IsGeographical())
                worstProj = std::max(worstProj, d);
        }
        if (j.code != 0) {
            ++coded;
            EXPECT_LE(j.worst, 1e-3) << name << " is not EPSG:" << j.code << " by PROJ";
            EXPECT_EQ(j.code, (*it)->GetEpsgCode()) << name;
        }

        // Read back: the same coordinates, shift, unit and axes, and nothing to warn of.
        for (const bool epsg : {true, false}) {
            const kvtest::EpsgReading reading(epsg);
            const CKvMapProjection back(text);
            ASSERT_NE(back.GetProjection(), nullptr) << name << ": " << back.GetMessage();
            // An entry whose datum shift the catalogue does not know is written
            // without TOWGS84; the established reading may name the registry's.
            const std::string& message = back.GetMessage();
            if (system.IsDatumShiftKnown() || epsg || message.find('\n') != std::string::npos ||
                message.find("has no TOWGS84") == std::string::npos) {
                EXPECT_EQ(message, "") << name;
            }
            double metres = 0.0, degrees = 0.0;
            Compare(system, back, j.points, metres, degrees);
            EXPECT_LT(metres, 1e-6) << name << (epsg ? " (EPSG reading)" : " (established reading)");
            EXPECT_LT(degrees, 1e-10) << name;
            worstBack = std::max(worstBack, metres);
            worstDegrees = std::max(worstDegrees, degrees);
            CKvDatumShift shift, backShift;
            system.GetDatumShift(shift);
            back.GetDatumShift(backShift);
            if (system.IsDatumShiftKnown()) {
                EXPECT_TRUE(shift == backShift) << name;
                EXPECT_TRUE(back.IsDatumShiftKnown()) << name;
            }
            EXPECT_EQ(back.GetLinearUnit(), system.GetLinearUnit()) << name;
            EXPECT_EQ(back.GetCoordSysType(), system.GetCoordSysType()) << name;
        }
    }
    EXPECT_GT(written, 360);
    EXPECT_GT(coded, 300);
    std::printf("[ measured ] %d catalogue entries in OGC WKT (%d with their EPSG code): PROJ within %.2g mm, read "
                "back within %.2g mm and %.2g deg\n",
                written, coded, worstProj * 1e3, worstBack * 1e3, worstDegrees);
}

// Every EPSG corpus text, read by the registry's rules and written in OGC
// form: PROJ reads it as EPSG:n, and the library reads it back to the system
// of the text it came from, under both readings (the established one warns
// where it reads a name otherwise, as it does for the original).
TEST(OgcWkt, EveryEpsgTextWrittenAgainInOgcForm)
{
    kvtest::ShippedCatalogue();
    const kvtest::EpsgCorpus corpus = kvtest::LoadEpsgCorpus(KVCART_EPSG_CORPUS);
    int written = 0, refused = 0, warned = 0;
    double worstProj = 0.0, worstBack = 0.0;
    for (const kvtest::EpsgSystem& s : corpus.systems) {
        for (int form = 0; form < 2; ++form) {
            const kvtest::EpsgText& original = s.texts[static_cast<size_t>(form)];
            if (!original.written)
                continue;
            const std::string key = std::to_string(s.code) + (form == 0 ? ":E" : ":O");
            const auto found = Verdicts().find(key);
            ASSERT_NE(found, Verdicts().end()) << key << " was not judged by PROJ: run tools/check_ogc_wkt.py";
            const Judged& j = found->second;
            std::string text, reason;
            bool ours = false;
            {
                const kvtest::EpsgReading reading(true);
                ours = CKvOgcWktWriter::WriteSystem(original.wkt, text, reason);
            }
            EXPECT_EQ(WithoutShift(ours ? text : reason), WithoutShift(j.text))
                << key << ": the text changed, judge it again";
            if (!ours) {
                EXPECT_FALSE(reason.empty()) << key;
                ++refused;
                continue;
            }
            ++written;
            ASSERT_TRUE(j.read) << key;
            if (std::isfinite(j.worst)) {
                EXPECT_LE(j.worst, 1e-3) << key << ": PROJ does not read it as EPSG:" << s.code;
                worstProj = std::max(worstProj, j.worst);
            }
            const kvtest::EpsgReading epsg(true);
            const CKvMapProjection from(original.wkt);
            for (const bool registry : {true, false}) {
                const kvtest::EpsgReading reading(registry);
                const CKvMapProjection back(text);
                ASSERT_NE(back.GetProjection(), nullptr) << key << ": " << back.GetMessage();
                if (!registry && !back.GetMessage().empty()) {
                    ++warned; // read otherwise, and said so
                    continue;
                }
                double metres = 0.0, degrees = 0.0;
                Compare(from, back, s.epsgPoints, metres, degrees);
                EXPECT_LT(metres, 1e-6) << key << (registry ? " (EPSG reading) " : " (established reading) ") << text;
                EXPECT_LT(degrees, 1e-9) << key;
                worstBack = std::max(worstBack, metres);
            }
        }
    }
    EXPECT_GT(written, 10000);
    std::printf("[ measured ] %d corpus texts in OGC WKT: PROJ within %.2g mm of EPSG, read back within %.2g mm "
                "(%d warned by the established reading); %d refused with a reason\n",
                written, worstProj * 1e3, worstBack * 1e3, warned, refused);
}

// "EPSG:n" is written from the registry's text, read by the registry's rules
// whatever the reading in force: the same text as the corpus's OGC form of
// EPSG:n gives, which PROJ judged above, but for the datum shift (the registry
// gives each system its area's Helmert, a datum named in a text has its
// datum's), with the code.
TEST(OgcWkt, RegistryCodesWriteTheirSystem)
{
    kvtest::ShippedCatalogue();
    const kvtest::EpsgCorpus corpus = kvtest::LoadEpsgCorpus(KVCART_EPSG_CORPUS);
    int same = 0;
    for (const kvtest::EpsgSystem& s : corpus.systems) {
        const kvtest::EpsgText& ogc = s.Text(kvtest::EpsgForm::Ogc);
        if (!ogc.written)
            continue;
        const std::string code = "EPSG:" + std::to_string(s.code);
        std::string byCode, byText, reasonCode, reasonText;
        bool writtenByCode = false, writtenByText = false;
        {
            const kvtest::EpsgReading reading(s.code % 2 == 0); // the registry's rules either way
            writtenByCode = CKvOgcWktWriter::WriteSystem(code, byCode, reasonCode);
        }
        {
            const kvtest::EpsgReading reading(true);
            writtenByText = CKvOgcWktWriter::WriteSystem(ogc.wkt, byText, reasonText);
        }
        // EPSG:4087's registry method is the ellipsoidal equidistant cylindrical,
        // which OGC WKT 1 cannot name (GDAL's text says "Equirectangular", the
        // spherical form): its code is refused with that reason.
        if (!writtenByCode && writtenByText && reasonCode.find("has no name in OGC WKT 1") != std::string::npos) {
            EXPECT_EQ(s.code, 4087) << reasonCode;
            continue;
        }
        EXPECT_EQ(writtenByCode, writtenByText) << code << ": " << reasonCode << " / " << reasonText;
        if (!writtenByCode || !writtenByText)
            continue;
        EXPECT_EQ(WithoutShift(byCode), WithoutShift(byText)) << code;
        EXPECT_TRUE(kvtest::Contains(byCode, ",AUTHORITY[\"EPSG\",\"" + std::to_string(s.code) + "\"]]"));
        ++same;
    }
    EXPECT_GT(same, 5000);
    std::string out, reason;
    EXPECT_FALSE(CKvOgcWktWriter::WriteSystem("EPSG:99999", out, reason));
    EXPECT_TRUE(kvtest::Contains(reason, "EPSG:99999"));
}

// What OGC WKT 1 has no form for is refused with the reason, not approximated.
TEST(OgcWkt, RefusesWhatOgcWkt1CannotSay)
{
    kvtest::ShippedCatalogue();
    const kvtest::EpsgReading epsgReading(true);
    const auto refused = [](const std::string& text, const char* why) {
        std::string out = "stale", reason;
        EXPECT_FALSE(CKvOgcWktWriter::WriteSystem(text, out, reason)) << text << "\n" << out;
        EXPECT_EQ(out, "");
        EXPECT_TRUE(kvtest::Contains(reason, why)) << text;
    };
    const std::string geogcs =
        "GEOGCS[\"GCS_Bessel_1841\",DATUM[\"D_Bessel_1841\",SPHEROID[\"Bessel_1841\","
        "6377397.155,299.1528128]],PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\",0.0174532925199433]]";
    refused("COSMO-EU Rotated Pole", "rotated longitude/latitude");
    refused("LONG/LAT", "no datum");
    refused("NON-UTM", "local grid");
    refused("  ", "local grid");
    refused("UTM", "names no zone");
    refused("Nowhere Grid", "unknown coordinate system");
    refused("PROJCRS[\"x\"]", "WKT 2");
    // EPSG method 1051: the Michigan form scales a two-parallel Lambert.
    refused("PROJCS[\"Michigan\"," + geogcs +
                ",PROJECTION[\"Lambert_Conformal_Conic\"],PARAMETER[\"False_Easting\",0],PARAMETER[\"False_Northing\","
                "0],PARAMETER[\"Central_Meridian\",-84],PARAMETER[\"Standard_Parallel_1\",42],PARAMETER["
                "\"Standard_Parallel_2\",44],PARAMETER[\"Scale_Factor\",1.0000382],PARAMETER[\"Latitude_Of_Origin\","
                "41.5],UNIT[\"Meter\",1.0]]",
            "EPSG method 1051");
    // A Krovak grid turned by 45 degrees has no AXIS nodes that say so.
    refused("PROJCS[\"Turned Krovak\"," + geogcs +
                ",PROJECTION[\"Krovak\"],PARAMETER[\"False_Easting\",0],PARAMETER[\"False_Northing\",0],PARAMETER["
                "\"Pseudo_Standard_Parallel_1\",78.5],PARAMETER[\"Scale_Factor\",0.9999],PARAMETER[\"Azimuth\","
                "30.28813975277778],PARAMETER[\"Longitude_Of_Center\",24.83333333333333],PARAMETER["
                "\"Latitude_Of_Center\",49.5],PARAMETER[\"X_Scale\",1],PARAMETER[\"Y_Scale\",1],PARAMETER["
                "\"XY_Plane_Rotation\",45],UNIT[\"Meter\",1.0]]",
            "turned by 45 degrees");
    // Axes north, west: the library takes the first word's sign for the
    // easting, PROJ for the northing; no text reads the same in both.
    const std::string tm = "PROJCS[\"Odd axes\"," + geogcs +
                           ",PROJECTION[\"Transverse_Mercator\"],PARAMETER[\"False_Easting\",0],PARAMETER["
                           "\"False_Northing\",0],PARAMETER[\"Central_Meridian\",9],PARAMETER[\"Scale_Factor\",1],"
                           "PARAMETER[\"Latitude_Of_Origin\",0],UNIT[\"Meter\",1.0]";
    refused(tm + ",AXIS[\"X\",SOUTH],AXIS[\"Y\",EAST]]", "north, west");
    // Names the library's own reader would not read back.
    auto* odd = new CKvTransverseMercatorProjection("Grid [old]", "Projects", "WE", 1.0, 9.0, 0.0, 0.0, 0.0);
    CKvMapProjection::AddMapProjection(odd);
    refused("Grid [old]", "would not read back");
    CKvMapProjection::DeleteMapProjection(odd);
    // The writer on a record of its own: variant B with its parallel in the
    // other hemisphere than its pole.
    CKvPRJParser record(CKvMapProjection("NSIDC Sea Ice Polar Stereographic North").GetProjection());
    record.SetStandardParallel1(-70.0);
    std::string out, reason;
    EXPECT_FALSE(CKvOgcWktWriter(record).Write(out, reason));
    EXPECT_TRUE(kvtest::Contains(reason, "other hemisphere"));
}

// The forms a catalogue cannot hold, written from the WKT that has them: the
// established reading's own systems (the words of polar axes as directions),
// Snyder's stereographic, the centre-counted skew form, a grid in another
// unit and on another meridian; the text's own EPSG code only where it reads
// as the registry defines it; numbers in the C locale whatever the host's.
TEST(OgcWkt, FormsOfWktTextsAndTheirCodes)
{
    kvtest::ShippedCatalogue();
    const auto write = [](const std::string& text, bool epsg) {
        const kvtest::EpsgReading reading(epsg);
        std::string out, reason;
        EXPECT_TRUE(CKvOgcWktWriter::WriteSystem(text, out, reason)) << reason;
        return out;
    };
    const auto same = [](const std::string& a, bool epsgA, const std::string& b, bool epsgB, double lon, double lat) {
        double xa = NAN, ya = NAN, xb = NAN, yb = NAN;
        {
            const kvtest::EpsgReading reading(epsgA);
            CKvMapProjection(a).Geo2Proj(lon, lat, &xa, &ya);
        }
        {
            const kvtest::EpsgReading reading(epsgB);
            CKvMapProjection(b).Geo2Proj(lon, lat, &xb, &yb);
        }
        EXPECT_LT(std::hypot(xa - xb, ya - yb), 1e-6) << b << "\n" << xa << " " << ya << " / " << xb << " " << yb;
    };

    // GDAL's UPS North: both axes SOUTH, along 90 E and 180 E. Read by the
    // registry's rule, northing, easting; by the established one, the words as
    // directions (negated, exchanged). Either system is written as it is read,
    // with directions that mean the same to every reader.
    const kvtest::EpsgCorpus corpus = kvtest::LoadEpsgCorpus(KVCART_EPSG_CORPUS);
    const std::string ups = corpus.Find(32661)->Text(kvtest::EpsgForm::Ogc).wkt;
    const std::string registry = write(ups, true), established = write(ups, false);
    EXPECT_TRUE(
        kvtest::Contains(registry, "AXIS[\"Northing\",NORTH],AXIS[\"Easting\",EAST],AUTHORITY[\"EPSG\",\"32661\"]]"));
    EXPECT_TRUE(kvtest::Contains(established, "AXIS[\"Southing\",SOUTH],AXIS[\"Westing\",WEST]]"));
    EXPECT_FALSE(kvtest::Contains(established, "AUTHORITY[\"EPSG\",\"32661\"]"))
        << "read otherwise than the registry, the system is not EPSG:32661";
    for (const bool epsg : {true, false}) {
        same(ups, true, registry, epsg, 30.0, 80.0);
        same(ups, false, established, epsg, 30.0, 80.0);
    }
    EXPECT_EQ(std::count(registry.begin(), registry.end(), '['), std::count(registry.begin(), registry.end(), ']'));
    EXPECT_FALSE(kvtest::Contains(registry, "AUTHORITY[\"EPSG\",\"7030\"]")) << "only the system's own code";

    // Snyder's stereographic (ESRI's Stereographic, by the registry's rule) is
    // OGC's Stereographic; the established reading reads that name as the
    // double stereographic, and says so.
    const std::string esriStereographic =
        "PROJCS[\"Stereo\",GEOGCS[\"GCS_WGS_1984\",DATUM[\"D_WGS_1984\",SPHEROID[\"WGS_1984\",6378137.0,"
        "298.257223563]],PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\",0.0174532925199433]],PROJECTION["
        "\"Stereographic\"],PARAMETER[\"False_Easting\",0.0],PARAMETER[\"False_Northing\",0.0],PARAMETER["
        "\"Central_Meridian\",10.0],PARAMETER[\"Scale_Factor\",0.9],PARAMETER[\"Latitude_Of_Origin\",40.0],"
        "UNIT[\"Meter\",1.0]]";
    const std::string snyder = write(esriStereographic, true);
    EXPECT_TRUE(kvtest::Contains(snyder, "PROJECTION[\"Stereographic\"]"));
    same(esriStereographic, true, snyder, true, 12.0, 42.0);
    {
        const kvtest::EpsgReading reading(false);
        EXPECT_TRUE(kvtest::Contains(CKvMapProjection(snyder).GetMessage(), "double"));
    }

    // Swiss LV95 in ESRI's form: the skew form counted from its centre.
    const std::string lv95 = corpus.Find(2056)->Text(kvtest::EpsgForm::Esri).wkt;
    const std::string centre = write(lv95, true);
    EXPECT_TRUE(kvtest::Contains(centre, "PROJECTION[\"Hotine_Oblique_Mercator_Azimuth_Center\"]"));
    for (const bool epsg : {true, false})
        same(lv95, true, centre, epsg, 7.5, 46.8);

    // NTF (Paris) / Lambert zone II: grads and the Paris meridian, as the text has them.
    const std::string ntf = corpus.Find(27572)->Text(kvtest::EpsgForm::Ogc).wkt;
    const std::string paris = write(ntf, true);
    EXPECT_TRUE(kvtest::Contains(paris, "PRIMEM[\"Paris\",2.33722917]"));
    EXPECT_TRUE(kvtest::Contains(paris, "UNIT[\"grad\",0.0157079632679489]"));
    for (const bool epsg : {true, false})
        same(ntf, true, paris, epsg, 2.5, 46.5);

    // A text's own code goes with it, not its datum's or its units'.
    const std::string bng = corpus.Find(27700)->Text(kvtest::EpsgForm::Ogc).wkt;
    const std::string withCode = write(bng, true);
    EXPECT_EQ(withCode.size() - withCode.rfind(",AUTHORITY[\"EPSG\",\"27700\"]]"), 27u) << withCode;
    EXPECT_FALSE(kvtest::Contains(withCode, "\"4277\""));
    EXPECT_FALSE(kvtest::Contains(write(corpus.Find(27700)->Text(kvtest::EpsgForm::Esri).wkt, true), "AUTHORITY"))
        << "an ESRI text names no code";

    // Numbers in the C locale whatever the host has set.
    const std::string before = write("RD New", true);
    const kvtest::CommaLocale comma;
    ASSERT_TRUE(comma.Active());
    EXPECT_EQ(write("RD New", true), before);
}
