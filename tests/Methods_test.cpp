// The projection methods described by their descriptor, one test per case of
// the reference files tests/data/method_vectors_*.txt (tools/make_method_vectors.py
// and the case lists in tools/method_cases/): PROJ's forward, inverse and
// meridian convergence, the published worked examples, round trips over the
// area, the domain rules for every kind of double, and the texts the library
// writes for the system (ESRI and OGC WKT read back to the same map, the PROJ
// string naming PROJ's method and the same parameters).
#include "TestSupport.h"

#include "coordsys/KvMapProjection.h"
#include "projections/KvProjection.h"
#include "wkt/KvOgcWktWriter.h"
#include "wkt/KvPRJParser.h"
#include "wkt/KvProjTranslator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fstream>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

struct MethodCase
{
    std::string id, file, crs, proj;
    double area[4] = {0, 0, 0, 0};
    double tol = 0.001;
    struct Forward
    {
        double lon, lat, x, y, gamma;
    };
    struct Inverse
    {
        double x, y, lon, lat;
    };
    struct Example
    {
        double lon, lat, x, y, tol;
        std::string source;
    };
    std::vector<Forward> forward;
    std::vector<Inverse> inverse;
    std::vector<Example> examples;
};

double Number(const std::string& s)
{
    return s == "nan" ? kNaN : std::strtod(s.c_str(), nullptr);
}

std::vector<MethodCase> LoadCases()
{
    std::vector<MethodCase> cases;
    std::vector<std::string> files;
    if (DIR* dir = opendir(KVCART_TEST_DATA_DIR)) {
        while (const dirent* entry = readdir(dir)) {
            const std::string name = entry->d_name;
            if (name.compare(0, 15, "method_vectors_") == 0 && name.size() > 19 &&
                name.compare(name.size() - 4, 4, ".txt") == 0)
                files.push_back(name);
        }
        closedir(dir);
    }
    std::sort(files.begin(), files.end());
    for (const std::string& file : files) {
        std::ifstream in(std::string(KVCART_TEST_DATA_DIR) + file);
        for (std::string line; std::getline(in, line);) {
            const std::vector<std::string> f = kvtest::TabFields(line);
            if (f.empty() || f[0].empty() || f[0][0] == '#')
                continue;
            if (f[0] == "CASE" && f.size() == 2) {
                cases.push_back({});
                cases.back().id = f[1];
                cases.back().file = file;
                continue;
            }
            if (cases.empty())
                continue;
            MethodCase& c = cases.back();
            if (f[0] == "CRS" && f.size() == 2)
                c.crs = f[1];
            else if (f[0] == "PROJ" && f.size() == 2)
                c.proj = f[1] == "-" ? std::string() : f[1];
            else if (f[0] == "AREA" && f.size() == 5)
                for (int i = 0; i < 4; ++i)
                    c.area[i] = Number(f[i + 1]);
            else if (f[0] == "TOL" && f.size() == 2)
                c.tol = Number(f[1]);
            else if (f[0] == "F" && f.size() == 6)
                c.forward.push_back({Number(f[1]), Number(f[2]), Number(f[3]), Number(f[4]), Number(f[5])});
            else if (f[0] == "I" && f.size() == 5)
                c.inverse.push_back({Number(f[1]), Number(f[2]), Number(f[3]), Number(f[4])});
            else if (f[0] == "X" && f.size() == 7)
                c.examples.push_back({Number(f[1]), Number(f[2]), Number(f[3]), Number(f[4]), Number(f[5]), f[6]});
        }
    }
    return cases;
}

const std::vector<MethodCase>& Cases()
{
    static const std::vector<MethodCase> cases = LoadCases();
    return cases;
}

using EnginePtr = std::unique_ptr<CKvProjection, void (*)(CKvProjection*)>;

EnginePtr Engine(const std::string& text)
{
    return EnginePtr(CKvMapProjection::GetProjection(text.c_str(), nullptr), CKvProjection::Release);
}

// Metres between two points on a sphere of the earth's size: enough to tell a
// round trip's millimetres.
double GroundMetres(double lon1, double lat1, double lon2, double lat2)
{
    const double k = 6371000.0 * 3.141592653589793 / 180.0;
    const double dlon = std::remainder(lon2 - lon1, 360.0) * std::cos(lat1 * 3.141592653589793 / 180.0);
    return k * std::hypot(dlon, lat2 - lat1);
}

// The numbers of a PROJ string's +key=value tokens, and its +proj word.
std::map<std::string, std::string> ProjTokens(const std::string& text)
{
    std::map<std::string, std::string> tokens;
    size_t at = 0;
    while ((at = text.find('+', at)) != std::string::npos) {
        const size_t end = text.find(' ', at);
        const std::string token = text.substr(at + 1, end == std::string::npos ? std::string::npos : end - at - 1);
        const size_t eq = token.find('=');
        tokens[token.substr(0, eq)] = eq == std::string::npos ? std::string() : token.substr(eq + 1);
        if (end == std::string::npos)
            break;
        at = end;
    }
    return tokens;
}

class Methods : public ::testing::TestWithParam<size_t>
{
protected:
    static void SetUpTestSuite() { kvtest::ShippedCatalogue(); }
    const MethodCase& Case() const { return Cases()[GetParam()]; }
};

// PROJ's forward and convergence, and its inverse: the same point where PROJ's
// answer maps back, and NaN (or a point that truly maps back) where it does not.
TEST_P(Methods, AgreeWithProj)
{
    const MethodCase& c = Case();
    const EnginePtr engine = Engine(c.crs);
    ASSERT_NE(engine, nullptr) << c.id << ": " << CKvMapProjection::GetLastMessage();
    if (c.proj.empty()) {
        EXPECT_TRUE(c.forward.empty() && c.inverse.empty());
        EXPECT_FALSE(c.examples.empty()) << c.id << ": a method PROJ cannot compute needs a worked example";
        return;
    }
    ASSERT_GT(c.forward.size(), 100u);
    int compared = 0;
    double worstForward = 0.0, worstInverse = 0.0;
    for (const auto& p : c.forward) {
        double x = 0, y = 0;
        engine->Geo2Proj(p.lon, p.lat, &x, &y);
        if (std::isnan(p.x)) {
            // PROJ refuses the point: the library gives no made-up one either
            // (NaN, or the infinity of a pole).
            EXPECT_FALSE(std::isfinite(x) && std::isfinite(y)) << c.id << " at " << p.lon << " " << p.lat;
            continue;
        }
        ++compared;
        worstForward = std::max(worstForward, std::max(std::fabs(x - p.x), std::fabs(y - p.y)));
        ASSERT_NEAR(x, p.x, c.tol) << c.id << " at " << p.lon << " " << p.lat;
        ASSERT_NEAR(y, p.y, c.tol) << c.id << " at " << p.lon << " " << p.lat;
        if (!std::isnan(p.gamma)) {
            ASSERT_NEAR(engine->GetConvergence(p.lon, p.lat), p.gamma, 1e-6) << c.id << " at " << p.lon << " " << p.lat;
        }
    }
    EXPECT_GT(compared, 100);
    int given = 0;
    for (const auto& p : c.inverse) {
        double lon = 0, lat = 0;
        engine->Proj2Geo(p.x, p.y, &lon, &lat);
        if (std::isnan(p.lon)) {
            if (std::isnan(lon) && std::isnan(lat))
                continue;
            // Not PROJ's point, but the library's answer must be a true one.
            double x = 0, y = 0;
            engine->Geo2Proj(lon, lat, &x, &y);
            ASSERT_LE(std::hypot(x - p.x, y - p.y), 0.001)
                << c.id << ": made-up point " << lon << " " << lat << " for " << p.x << " " << p.y;
            continue;
        }
        ++given;
        ASSERT_TRUE(std::isfinite(lon) && std::isfinite(lat)) << c.id << " at " << p.x << " " << p.y;
        worstInverse = std::max(worstInverse, GroundMetres(lon, lat, p.lon, p.lat));
        // Near a pole the longitude is loose: compare on the ground.
        ASSERT_LE(GroundMetres(lon, lat, p.lon, p.lat), c.tol) << c.id << " at " << p.x << " " << p.y << ": " << lon
                                                                << " " << lat << ", PROJ " << p.lon << " " << p.lat;
    }
    EXPECT_GT(given, 0);
    // The figures of the README's table of methods.
    std::printf("method %s: %d forward, worst %.4f mm; %d inverse, worst %.4f mm on the ground\n", c.id.c_str(),
                compared, worstForward * 1e3, given, worstInverse * 1e3);
}

// The published worked examples, both ways.
TEST_P(Methods, WorkedExamples)
{
    const MethodCase& c = Case();
    const EnginePtr engine = Engine(c.crs);
    ASSERT_NE(engine, nullptr) << c.id << ": " << CKvMapProjection::GetLastMessage();
    for (const auto& e : c.examples) {
        double x = 0, y = 0, lon = 0, lat = 0;
        engine->Geo2Proj(e.lon, e.lat, &x, &y);
        EXPECT_NEAR(x, e.x, e.tol) << c.id << ": " << e.source;
        EXPECT_NEAR(y, e.y, e.tol) << c.id << ": " << e.source;
        engine->Proj2Geo(e.x, e.y, &lon, &lat);
        EXPECT_LE(GroundMetres(lon, lat, e.lon, e.lat), 2.0 * e.tol) << c.id << ": " << e.source;
    }
}

// 1 000 points spread over the area go there and back within 6 mm; most of
// them lie on the map.
TEST_P(Methods, RoundTripsOverTheArea)
{
    const MethodCase& c = Case();
    const EnginePtr engine = Engine(c.crs);
    ASSERT_NE(engine, nullptr) << c.id << ": " << CKvMapProjection::GetLastMessage();
    double west = c.area[0], east = c.area[2];
    if (east < west)
        east += 360.0;
    unsigned state = 12345u;
    const auto next = [&state] {
        state = state * 1664525u + 1013904223u;
        return (state >> 8) / 16777216.0;
    };
    int onMap = 0;
    double worst = 0.0;
    for (int i = 0; i < 1000; ++i) {
        double lon = west + (east - west) * next();
        if (lon > 180.0)
            lon -= 360.0;
        const double lat = c.area[1] + (c.area[3] - c.area[1]) * next();
        double x = 0, y = 0, lon2 = 0, lat2 = 0;
        engine->Geo2Proj(lon, lat, &x, &y);
        if (!std::isfinite(x) || !std::isfinite(y))
            continue;
        ++onMap;
        engine->Proj2Geo(x, y, &lon2, &lat2);
        const double d = GroundMetres(lon, lat, lon2, lat2);
        ASSERT_LE(d, 0.006) << c.id << " at " << lon << " " << lat << ": back at " << lon2 << " " << lat2;
        worst = std::max(worst, d);
    }
    EXPECT_GE(onMap, 900) << c.id;
}

// Every kind of double: no point off the earth gets a finite answer, every call
// returns, and nothing that is no grid point is turned into a place.
TEST_P(Methods, DomainOfEveryDouble)
{
    const MethodCase& c = Case();
    const EnginePtr engine = Engine(c.crs);
    ASSERT_NE(engine, nullptr) << c.id << ": " << CKvMapProjection::GetLastMessage();
    const double lon0 = 0.5 * (c.area[0] + c.area[2]), lat0 = 0.5 * (c.area[1] + c.area[3]);
    const double offEarth[][2] = {{kNaN, lat0}, {lon0, kNaN}, {kInf, lat0}, {-kInf, lat0}, {lon0, kInf},
                                  {lon0, -kInf}, {lon0, 90.000001}, {lon0, -91.0}, {lon0, 1e308}, {kNaN, kNaN}};
    for (const auto& p : offEarth) {
        double x = 0, y = 0;
        engine->Geo2Proj(p[0], p[1], &x, &y);
        EXPECT_TRUE(std::isnan(x) && std::isnan(y)) << c.id << " at " << p[0] << " " << p[1];
        EXPECT_TRUE(std::isnan(engine->GetConvergence(p[0], p[1]))) << c.id << " at " << p[0] << " " << p[1];
    }
    const double noGrid[][2] = {{kNaN, 0.0}, {0.0, kNaN}, {kInf, 0.0}, {0.0, -kInf}, {1e308, 1e308},
                                {-1e308, 0.0}, {0.0, 1e308}, {kNaN, kNaN}};
    for (const auto& p : noGrid) {
        double lon = 0, lat = 0;
        engine->Proj2Geo(p[0], p[1], &lon, &lat);
        EXPECT_TRUE(std::isnan(lon) && std::isnan(lat)) << c.id << " at " << p[0] << " " << p[1];
    }
    // Huge longitudes, the antimeridian and the poles: an answer in bounded
    // time, and a finite one that maps back where the forward gave one.
    const double edges[][2] = {{1e308, lat0}, {-1e300, lat0}, {540.0, lat0}, {180.0, lat0}, {-180.0, lat0},
                               {lon0, 90.0}, {lon0, -90.0}, {lon0 + 180.0, 0.0}};
    for (const auto& p : edges) {
        double x = 0, y = 0;
        engine->Geo2Proj(p[0], p[1], &x, &y);
        if (!std::isfinite(x) || !std::isfinite(y))
            continue;
        double lon = 0, lat = 0, x2 = 0, y2 = 0;
        engine->Proj2Geo(x, y, &lon, &lat);
        if (std::isnan(lat))
            continue; // a point the inverse refuses (beyond the map's reach)
        engine->Geo2Proj(lon, lat, &x2, &y2);
        EXPECT_LE(std::hypot(x2 - x, y2 - y), 0.01 + 1e-9 * std::hypot(x, y))
            << c.id << " at " << p[0] << " " << p[1] << ": " << lon << " " << lat;
    }
}

// The texts the library writes: its ESRI and OGC WKT read back to the same
// map, and its PROJ string names PROJ's method with the reference's numbers.
TEST_P(Methods, WrittenTextsDescribeTheSameMap)
{
    const MethodCase& c = Case();
    const EnginePtr engine = Engine(c.crs);
    ASSERT_NE(engine, nullptr) << c.id << ": " << CKvMapProjection::GetLastMessage();
    std::string wkt = c.crs;
    if (!CKvPRJParser::IsPRJ(CString(c.crs.c_str()))) {
        std::string reason;
        ASSERT_TRUE(CKvMapProjection::RegistryText(c.crs.c_str(), wkt, &reason)) << c.id << ": " << reason;
    }
    CKvPRJParser record{CString(wkt.c_str())};
    record.SetReading(CKvPRJParser::eEpsgReading);
    ASSERT_TRUE(record.Parse(false)) << c.id << ": " << record.GetFailureReason();
    CString esri;
    ASSERT_TRUE(record.Format(esri)) << c.id;
    std::string ogc, reason;
    const bool ogcWritten = CKvOgcWktWriter::WriteSystem(wkt, ogc, reason);
    const CKvMapProjData::STypeInfo* info = CKvMapProjData::GetTypeInfo(record.GetProjectionType());
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(ogcWritten, info->ogcName != nullptr) << c.id << ": " << reason;
    std::vector<std::string> texts = {esri.GetStdString()};
    if (ogcWritten)
        texts.push_back(ogc);
    for (const std::string& text : texts) {
        const EnginePtr again = Engine(text);
        ASSERT_NE(again, nullptr) << c.id << ": " << text << ": " << CKvMapProjection::GetLastMessage();
        for (size_t i = 0; i < c.forward.size(); i += 7) {
            double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
            engine->Geo2Proj(c.forward[i].lon, c.forward[i].lat, &x1, &y1);
            again->Geo2Proj(c.forward[i].lon, c.forward[i].lat, &x2, &y2);
            if (std::isfinite(x1) && std::isfinite(y1)) {
                ASSERT_TRUE(std::fabs(x1 - x2) <= 1e-6 && std::fabs(y1 - y2) <= 1e-6) << c.id << ": " << text;
            }
        }
    }
    const std::string proj = CKvProjTranslator().ConvertToProj(wkt, nullptr, 0, &reason);
    if (info->proj == nullptr) {
        EXPECT_TRUE(proj.empty()) << c.id;
        return;
    }
    ASSERT_FALSE(proj.empty()) << c.id << ": " << reason;
    if (c.proj.empty())
        return;
    const auto ours = ProjTokens(proj), theirs = ProjTokens(c.proj);
    EXPECT_EQ(ours.at("proj"), theirs.at("proj")) << c.id << ": " << proj;
    for (const auto& [key, value] : theirs) {
        const auto found = ours.find(key);
        if (found == ours.end() || key == "proj" || value.empty())
            continue;
        char* end = nullptr;
        const double a = std::strtod(value.c_str(), &end);
        if (*end != '\0')
            continue; // a word (+ellps=WGS84) or a list
        EXPECT_NEAR(std::strtod(found->second.c_str(), nullptr), a, 1e-9 * std::max(1.0, std::fabs(a)))
            << c.id << ": +" << key << " in " << proj;
    }
}

std::string CaseName(const ::testing::TestParamInfo<size_t>& info)
{
    std::string name = Cases()[info.param].id;
    for (char& ch : name)
        if (!std::isalnum(static_cast<unsigned char>(ch)))
            ch = '_';
    return name;
}

INSTANTIATE_TEST_SUITE_P(Cases, Methods, ::testing::Range<size_t>(0, Cases().size()), CaseName);

// Every described method the library has is in some reference file, and every
// case names a system the library reads.
TEST(MethodsCoverage, EveryDescribedMethodHasCases)
{
    kvtest::ShippedCatalogue();
    std::map<int, int> casesOfType;
    for (const MethodCase& c : Cases()) {
        CKvMapProjection system(c.crs.c_str());
        ASSERT_NE(system.GetProjection(), nullptr) << c.id;
        std::string wkt = c.crs;
        if (!CKvPRJParser::IsPRJ(CString(c.crs.c_str()))) {
            ASSERT_TRUE(CKvMapProjection::RegistryText(c.crs.c_str(), wkt, nullptr)) << c.id;
        }
        CKvPRJParser record{CString(wkt.c_str())};
        record.SetReading(CKvPRJParser::eEpsgReading);
        ASSERT_TRUE(record.Parse(false)) << c.id;
        ++casesOfType[record.GetProjectionType()];
    }
    for (int i = 0; i < CKvMapProjData::GetNoOfProjections(); ++i) {
        const CKvMapProjData::EProjectionType type = CKvMapProjData::Enum2ProjectionType(i);
        if (CKvMapProjData::IsDescribedMethod(type)) {
            EXPECT_GT(casesOfType[type], 0) << CKvMapProjData::GetTypeInfo(type)->title << " has no reference case";
        }
    }
}

} // namespace
