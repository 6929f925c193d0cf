// Catalogue names as a user types them: a name in another case resolves to the
// system of its exact spelling; a name that resolves nowhere is answered with
// the names closest to it.
#include "TestSupport.h"

#include "catalogue/KvCartSetup.h"
#include "catalogue/KvMapProjectionList.h"
#include "catalogue/KvNameSuggestions.h"
#include "catalogue/KvTransverseMercatorProjection.h"
#include "coordsys/KvMapProjection.h"
#include "interface/KvCart.h"
#include "projections/KvProjection.h"
#include "wkt/KvProjTranslator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace {

std::vector<std::string> Names(const std::vector<CKvNameSuggestions::SSuggestion>& suggestions)
{
    std::vector<std::string> names;
    for (const auto& s : suggestions)
        names.push_back(s.name);
    return names;
}

// The shipped catalogue's names and codes, as the library offers them.
const CKvNameSuggestions& Catalogue()
{
    static const CKvNameSuggestions candidates = [] {
        kvtest::ShippedCatalogue();
        CKvNameSuggestions all;
        const CKvMapProjectionList& list = CKvCartSetup::Instance()->GetMapProjectionList();
        for (auto it = list.GetIteratorBegin(); it != list.GetIteratorEnd(); ++it)
            all.Add((*it)->GetName(), (*it)->GetEpsgCode());
        return all;
    }();
    return candidates;
}

int CodeOf(const char* name)
{
    const CKvMapProjData* d = CKvMapProjection::FindMapProjectionDefinition(name);
    return d != nullptr ? d->GetEpsgCode() : 0;
}

// '"British National Grid" (EPSG:27700)', the code as the catalogue holds it.
std::string Quoted(const char* name)
{
    const int code = CodeOf(name);
    return std::string("\"") + name + "\"" + (code > 0 ? " (EPSG:" + std::to_string(code) + ")" : "");
}

// The optimal-string-alignment distance over the whole matrix, as written in
// the textbooks: the reference the bounded, banded computation must agree with.
int FullDistance(const std::string& a, const std::string& b)
{
    const size_t n = a.size(), m = b.size();
    std::vector<std::vector<int>> d(n + 1, std::vector<int>(m + 1, 0));
    for (size_t i = 0; i <= n; ++i)
        d[i][0] = static_cast<int>(i);
    for (size_t j = 0; j <= m; ++j)
        d[0][j] = static_cast<int>(j);
    for (size_t i = 1; i <= n; ++i)
        for (size_t j = 1; j <= m; ++j) {
            d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
        }
    return d[n][m];
}

int Tolerance(size_t length)
{
    return length < 4 ? 0 : length <= 5 ? 1 : length <= 9 ? 2 : static_cast<int>(std::min<size_t>(length / 4, 6));
}

} // namespace

TEST(NameSuggestions, TyposCaseSlipsAndAbbreviationsFindTheirSystem)
{
    const CKvNameSuggestions& catalogue = Catalogue();
    const struct
    {
        const char* query;
        const char* first;
    } cases[] = {
        {"Britsh National Grid", "British National Grid"},   // a letter missing
        {"Brittish National Grid", "British National Grid"}, // one extra
        {"Bitrish National Grid", "British National Grid"},  // two swapped
        {"British Natoinal Gird", "British National Grid"},  // two swaps
        {"BRITISH NATIONAL GRID.", "British National Grid"}, // case and punctuation
        {"british_national_grid", "British National Grid"},
        {"Lambert 93", "Lambert-93"},
        {"lambert93", "Lambert-93"},
        {"utm 32", "UTM-32"},
        {"UTM_32", "UTM-32"},
        {"RD", "RD New"},
        {"rdnew", "RD New"},
        {"BNG", "British National Grid"}, // initials
        {"nzmg", "New Zealand Map Grid"},
        {"Swiss", "Swiss LV03"},
        {"NAD83 Texas Central", "NAD83 / Texas Central"},
        {"nad27 / alabama eats", "NAD27 / Alabama East"},
        {"Soldner", "Soldner Berlin"},
        {"Krovak", "S-JTSK / Krovak"},
        {"Zealand Transverse Mercator", "New Zealand Transverse Mercator 2000"},
        {"Br\xc3\xaetish National Grid", "British National Grid"}, // a non-ASCII letter in place of one
    };
    for (const auto& c : cases) {
        const std::vector<std::string> names = Names(catalogue.Suggest(c.query));
        ASSERT_FALSE(names.empty()) << c.query;
        EXPECT_EQ(names.front(), c.first) << c.query;
        EXPECT_LE(names.size(), 3u);
    }

    // Every word found: the names that hold them all, the shortest first.
    const std::vector<std::string> national = Names(catalogue.Suggest("National Grid"));
    EXPECT_EQ(national, (std::vector<std::string>{"British National Grid", "Jamaica National Grid"}));
    const std::vector<std::string> texas = Names(catalogue.Suggest("texas central"));
    ASSERT_EQ(texas.size(), 3u);
    EXPECT_EQ(texas[0], "NAD83 / Texas Central");
    EXPECT_EQ(texas[1], "NAD27 / Texas Central");
    // A zone's number is a number: "Alaska 1" is zone 1, never 10.
    for (const std::string& name : Names(catalogue.Suggest("Alaska 1", 10)))
        EXPECT_EQ(name.substr(name.size() - 7), " zone 1") << name;
}

TEST(NameSuggestions, NothingIsSuggestedForWhatIsCloseToNoName)
{
    const CKvNameSuggestions& catalogue = Catalogue();
    const std::string longName(100000, 'x');
    const std::string longNear = "British National Grid" + std::string(300, ' ') + "x";
    for (const std::string& query :
         {std::string(""), std::string("   "), std::string("x"), std::string("xyzzy"), std::string("Nowhere Grid"),
          std::string("qwertyuiop"), std::string("!!! ??? ///"), std::string("12345"), std::string("0"),
          std::string("\xe6\x97\xa5\xe6\x9c\xac\xe6\xb8\xac\xe5\x9c\xb0\xe7\xb3\xbb"), // Japanese, 5 characters
          std::string("\xff\xfe\x01\x02"), longName, longNear, std::string("grid of nowhere")})
        EXPECT_TRUE(catalogue.Suggest(query).empty()) << query.substr(0, 60);
    EXPECT_TRUE(catalogue.Suggest("British National Grid", 0).empty());
    EXPECT_TRUE(CKvNameSuggestions().Suggest("British National Grid").empty());
}

TEST(NameSuggestions, TheEditDistanceBoundIsTheTextbookDistance)
{
    // Random words over three letters are often near one another: every pair is
    // suggested exactly when its distance is within the query's tolerance (or
    // the query is the start of the name, a word match), whatever the length.
    std::mt19937 random(20240611);
    std::uniform_int_distribution<int> letter(0, 2), length(1, 26), edits(0, 8), position(0, 40);
    int near = 0, far = 0;
    for (int trial = 0; trial < 20000; ++trial) {
        std::string name;
        for (int i = length(random); i > 0; --i)
            name += static_cast<char>('a' + letter(random));
        std::string query = name;
        for (int e = edits(random); e > 0; --e) {
            const size_t at = static_cast<size_t>(position(random)) % (query.size() + 1);
            switch (letter(random)) {
            case 0: query.insert(at, 1, static_cast<char>('a' + letter(random))); break;
            case 1:
                if (at < query.size())
                    query.erase(at, 1);
                break;
            default:
                if (at + 1 < query.size())
                    std::swap(query[at], query[at + 1]);
            }
        }
        CKvNameSuggestions one;
        one.Add(name);
        const bool suggested = !one.Suggest(query).empty();
        const int distance = FullDistance(query, name);
        const bool start = query.size() >= 3 && name.size() > query.size() && name.compare(0, query.size(), query) == 0;
        const bool expected = distance <= Tolerance(query.size()) || start;
        ASSERT_EQ(suggested, expected) << '"' << query << "\" for \"" << name << "\": distance " << distance;
        (expected ? near : far) += 1;
    }
    // Both outcomes were tried often.
    EXPECT_GT(near, 2000);
    EXPECT_GT(far, 2000);
}

TEST(NameSuggestions, CodesAreReadAndNamedWithTheSuggestion)
{
    EXPECT_EQ(CKvNameSuggestions::ReadCode("27700"), 27700);
    EXPECT_EQ(CKvNameSuggestions::ReadCode(" EPSG:2154 "), 2154);
    EXPECT_EQ(CKvNameSuggestions::ReadCode("epsg::4326"), 4326);
    EXPECT_EQ(CKvNameSuggestions::ReadCode("Epsg 3857"), 3857);
    EXPECT_EQ(CKvNameSuggestions::ReadCode("2147483647"), 2147483647);
    for (const char* none : {"", "EPSG", "EPSG:", "EPSG:-1", "-27700", "27700x", "27 700", "0", "2147483648",
                             "99999999999999999999", "ESRI:102100", "EPSG:27700:1", "1e5"})
        EXPECT_EQ(CKvNameSuggestions::ReadCode(none), 0) << none;

    CKvNameSuggestions candidates;
    candidates.Add("British National Grid", 27700);
    candidates.Add("RD New", 28992);
    candidates.Add("Lambert-93", 2154);
    candidates.Add("No code");
    candidates.Add("   "); // no name
    EXPECT_EQ(candidates.GetCount(), 4u);
    for (const char* query : {"27700", "EPSG:27700", "epsg 27700"}) {
        const auto found = candidates.Suggest(query);
        ASSERT_EQ(found.size(), 1u) << query;
        EXPECT_EQ(found[0].name, "British National Grid");
        EXPECT_EQ(found[0].epsgCode, 27700);
    }
    EXPECT_TRUE(candidates.Suggest("EPSG:4326").empty());

    using S = CKvNameSuggestions::SSuggestion;
    EXPECT_EQ(CKvNameSuggestions::DidYouMean({}), "");
    EXPECT_EQ(CKvNameSuggestions::DidYouMean({S{"British National Grid", 27700}}),
              "did you mean \"British National Grid\" (EPSG:27700)?");
    EXPECT_EQ(CKvNameSuggestions::DidYouMean({S{"A", 0}, S{"B", 2}}), "did you mean \"A\" or \"B\" (EPSG:2)?");
    EXPECT_EQ(CKvNameSuggestions::DidYouMean({S{"A", 1}, S{"B", 0}, S{"C", 0}}),
              "did you mean \"A\" (EPSG:1), \"B\" or \"C\"?");
}

TEST(NameSuggestions, ThousandsOfCandidatesKeepTheBestFirst)
{
    // A registry-sized list: the catalogue's names among 6000 others of the
    // registry's pattern. The best match stays first, and a name that is only
    // near many others still finds its own.
    CKvNameSuggestions candidates;
    candidates.Reserve(6400);
    const char* datums[] = {"WGS 84", "ETRS89", "NAD83", "NAD27", "GDA94", "SIRGAS 2000", "Pulkovo 1942", "ED50"};
    for (int i = 0; i < 6000; ++i)
        candidates.Add(std::string(datums[i % 8]) + " / Zone " + std::to_string(i), 20000 + i);
    kvtest::ShippedCatalogue();
    const CKvMapProjectionList& list = CKvCartSetup::Instance()->GetMapProjectionList();
    for (auto it = list.GetIteratorBegin(); it != list.GetIteratorEnd(); ++it)
        candidates.Add((*it)->GetName(), (*it)->GetEpsgCode());
    const auto british = candidates.Suggest("Britsh National Grid");
    ASSERT_FALSE(british.empty());
    EXPECT_EQ(british[0].name, "British National Grid");
    const auto zone = candidates.Suggest("ETRS89 / Zone 4713");
    ASSERT_FALSE(zone.empty());
    EXPECT_EQ(zone[0].name, "ETRS89 / Zone 4713");
    EXPECT_EQ(zone[0].epsgCode, 24713);
    const auto slip = candidates.Suggest("ETRS98 / Zone 4713");
    ASSERT_FALSE(slip.empty());
    EXPECT_EQ(slip[0].name, "ETRS89 / Zone 4713");
    EXPECT_EQ(candidates.Suggest("24713").at(0).name, "ETRS89 / Zone 4713");
    EXPECT_TRUE(candidates.Suggest("Nowhere Grid").empty());
}

TEST(CatalogueNames, ANameInAnotherCaseIsTheSameSystem)
{
    kvtest::ShippedCatalogue();
    const struct
    {
        const char* exact;
        const char* folded;
    } pairs[] = {
        {"UTM-32", "utm-32"},
        {"RD New", "RD new"},
        {"RD New", "  rd NEW\t"},
        {"British National Grid", "BRITISH NATIONAL GRID"},
        {"Lambert-93", "LAMBERT-93"},
        {"NAD27 / Alabama East", "nad27 / alabama east"}, // a grid in US survey feet
        {"NAD83 / Alaska zone 1", "nad83 / ALASKA ZONE 1"},
        {"COSMO-EU Rotated Pole", "cosmo-eu rotated pole"},
        {"LONG/LAT", "long/lat"},
        {"NON-UTM", "non-utm"},
    };
    const double lon[] = {9.5, -0.1281, 5.3876, 2.35, -85.5, -141.0, 10.0};
    const double lat[] = {47.5, 51.508, 52.1562, 48.85, 32.5, 60.0, 50.0};
    for (const auto& p : pairs) {
        const CKvMapProjection exact(p.exact), folded(p.folded);
        ASSERT_NE(exact.GetProjection(), nullptr) << p.exact;
        ASSERT_NE(folded.GetProjection(), nullptr) << p.folded << ": " << folded.GetMessage();
        EXPECT_STREQ(folded.GetName(), exact.GetName()) << p.folded;
        EXPECT_STREQ(folded.GetProjectionString(), p.exact) << "the catalogue's spelling";
        EXPECT_EQ(folded.GetMessage(), exact.GetMessage()) << p.folded;
        EXPECT_EQ(folded.GetLinearUnit(), exact.GetLinearUnit()) << p.folded;
        EXPECT_EQ(folded.IsGeographical(), exact.IsGeographical()) << p.folded;
        EXPECT_EQ(folded.IsLocal(), exact.IsLocal()) << p.folded;
        EXPECT_EQ(folded.GetCoordSysType(), exact.GetCoordSysType()) << p.folded;
        CKvDatumShift shiftExact, shiftFolded;
        exact.GetDatumShift(shiftExact);
        folded.GetDatumShift(shiftFolded);
        EXPECT_TRUE(shiftExact == shiftFolded) << p.folded;
        for (size_t i = 0; i < sizeof lon / sizeof lon[0]; ++i) {
            double xe = NAN, ye = NAN, xf = NAN, yf = NAN;
            exact.Geo2Proj(lon[i], lat[i], &xe, &ye);
            folded.Geo2Proj(lon[i], lat[i], &xf, &yf);
            EXPECT_TRUE((xe == xf || (std::isnan(xe) && std::isnan(xf))) &&
                        (ye == yf || (std::isnan(ye) && std::isnan(yf))))
                << p.folded << " at " << lon[i] << " " << lat[i];
        }
        // The engine alone, and the PROJ strings (in the grid's own unit).
        std::unique_ptr<CKvProjection, void (*)(CKvProjection*)> engine(
            CKvMapProjection::GetProjection(p.folded, nullptr), CKvProjection::Release);
        ASSERT_NE(engine, nullptr) << p.folded;
        EXPECT_STREQ(engine->GetName(), exact.GetName());
        std::string whyExact, whyFolded;
        EXPECT_EQ(CKvProjTranslator().ConvertToProj(p.folded, nullptr, 0, &whyFolded),
                  CKvProjTranslator().ConvertToProj(p.exact, nullptr, 0, &whyExact))
            << p.folded;
        EXPECT_EQ(whyFolded, whyExact) << p.folded;
        EXPECT_EQ(CKvProjTranslator().Convert2Proj4(p.folded, nullptr, 0),
                  CKvProjTranslator().Convert2Proj4(p.exact, nullptr, 0))
            << p.folded;
    }

    // Through the C interface as a host calls it.
    KVMP_HANDLE handle = nullptr;
    int status = -1;
    C_KVMP_CREATE("rd new", &handle, &status);
    ASSERT_EQ(status, 0);
    char name[64] = "";
    C_KVMP_GETNAME(handle, name, sizeof name - 1, &status);
    EXPECT_STREQ(name, "RD New");
    C_KVMP_DESTROY(&handle, &status);
}

TEST(CatalogueNames, ExactNamesAndTheGenericUtmKeepTheirMeaning)
{
    kvtest::ShippedCatalogue();
    // "UTM" alone names no zone; in another case it is a name like any other.
    EXPECT_THROW(CKvMapProjection("UTM"), std::out_of_range);
    EXPECT_THROW(CKvMapProjection(" UTM "), std::out_of_range);
    EXPECT_EQ(CKvMapProjection::GetLastMessage(), "Can't use generic UTM: name a zone, UTM-1 to UTM-60");
    const CKvMapProjection utm("utm");
    EXPECT_EQ(utm.GetProjection(), nullptr);
    EXPECT_EQ(utm.GetMessage().rfind("unknown coordinate system \"utm\"; did you mean \"UTM-", 0), 0u)
        << utm.GetMessage();

    // Blank text is still the local grid, and what resolved before resolves as before.
    for (const char* blank : {"", "  ", "\t"}) {
        const CKvMapProjection local(blank);
        EXPECT_TRUE(local.IsLocal()) << '"' << blank << '"';
        EXPECT_STREQ(local.GetProjectionString(), blank);
    }
    const CKvMapProjection spaced(" RD New ");
    EXPECT_STREQ(spaced.GetProjectionString(), " RD New ") << "an exact name is kept as given";
    EXPECT_STREQ(spaced.GetName(), "RD New");

    // The catalogue's editing finds its definitions by the exact name only.
    CKvMapProjectionList& list = CKvCartSetup::Instance()->GetMapProjectionList();
    EXPECT_EQ(list.GetMapProjection("rd new"), nullptr);
    EXPECT_EQ(CKvMapProjection::FindMapProjectionDefinition("rd new"), nullptr);
    EXPECT_EQ(list.FindMapProjection("rd new"), list.GetMapProjection("RD New"));
    EXPECT_EQ(list.FindMapProjection("RD New"), list.GetMapProjection("RD New"));
    EXPECT_EQ(list.FindMapProjection("RD Neu"), nullptr);
    EXPECT_EQ(list.FindMapProjection(""), nullptr);
    EXPECT_EQ(CKvMapProjection::CatalogueSpelling("rd new"), "RD New");
    EXPECT_EQ(CKvMapProjection::CatalogueSpelling(" RD New "), " RD New ");
    EXPECT_EQ(CKvMapProjection::CatalogueSpelling("Nowhere"), "Nowhere");
    EXPECT_EQ(CKvMapProjection::CatalogueSpelling(nullptr), "");
}

TEST(CatalogueNames, NamesThatDifferOnlyInCaseAreNotGuessedBetween)
{
    kvtest::ShippedCatalogue();
    // Two definitions of the user's own whose names differ in case alone.
    auto* lower = new CKvTransverseMercatorProjection("Site grid", "Projects", "WE", 0.9996, 9.0, 0.0, 500000.0, 0.0);
    auto* upper = new CKvTransverseMercatorProjection("SITE GRID", "Projects", "WE", 0.9996, 15.0, 0.0, 500000.0, 0.0);
    CKvMapProjection::AddMapProjection(lower);
    CKvMapProjection::AddMapProjection(upper);

    // Spelled exactly, each is itself.
    double x = 0, y = 0;
    CKvMapProjection("Site grid").Geo2Proj(9.0, 0.0, &x, &y);
    EXPECT_NEAR(x, 500000.0, 1e-6);
    CKvMapProjection("SITE GRID").Geo2Proj(15.0, 0.0, &x, &y);
    EXPECT_NEAR(x, 500000.0, 1e-6);
    // In a third spelling, neither; the message names both.
    const CKvMapProjection either("site grid");
    EXPECT_EQ(either.GetProjection(), nullptr);
    EXPECT_EQ(either.GetMessage(),
              "ambiguous coordinate system \"site grid\": the catalogue holds \"Site grid\" and "
              "\"SITE GRID\", which differ only in case; write the name as one of them is written");
    EXPECT_EQ(CKvMapProjection::GetLastMessage(), either.GetMessage());
    EXPECT_EQ(CKvMapProjection::GetProjection("Site Grid", nullptr), nullptr);
    std::vector<const CKvMapProjData*> alike;
    EXPECT_EQ(CKvCartSetup::Instance()->GetMapProjectionList().FindMapProjection("site grid", &alike), nullptr);
    EXPECT_EQ(alike.size(), 2u);
    EXPECT_EQ(CKvMapProjection::CatalogueSpelling("site grid"), "site grid");
    char text[512] = "";
    int status = -1;
    C_KVMP_GETLASTERROR(text, sizeof text - 1, &status);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(kvtest::Contains(text, "\"Site grid\" and \"SITE GRID\""));

    CKvMapProjection::DeleteMapProjection(upper);
    CKvMapProjection::DeleteMapProjection(lower);
    EXPECT_EQ(CKvMapProjection("site grid").GetProjection(), nullptr);
}

TEST(CatalogueNames, AnUnknownNameEndsWithTheClosestNames)
{
    kvtest::ShippedCatalogue();
    const CKvMapProjection typo("Britsh National Grid");
    EXPECT_EQ(typo.GetProjection(), nullptr);
    EXPECT_EQ(typo.GetMessage(), "unknown coordinate system \"Britsh National Grid\"; did you mean " +
                                     Quoted("British National Grid") + "?");
    EXPECT_EQ(CKvMapProjection::GetLastMessage(), typo.GetMessage());

    std::string message;
    EXPECT_EQ(CKvMapProjection::GetProjection("  National Grid ", nullptr, &message), nullptr);
    // The catalogue's names come first; the EPSG registry's systems that no
    // entry stands for follow.
    EXPECT_EQ(message, "unknown coordinate system \"National Grid\"; did you mean " + Quoted("British National Grid") +
                           ", " + Quoted("Jamaica National Grid") + " or \"ED50 / Iraq National Grid\" (EPSG:3893)?");

    // Nothing close: the message as it always was.
    EXPECT_EQ(CKvMapProjection("Nowhere Grid").GetMessage(), "unknown coordinate system \"Nowhere Grid\"");
    const std::string huge(1 << 20, 'Q');
    EXPECT_EQ(CKvMapProjection(huge).GetMessage(), "unknown coordinate system \"" + huge + "\"");

    // The C interface hands the same text to its host.
    KVMP_HANDLE handle = nullptr;
    int status = -1;
    C_KVMP_CREATE("Lambert 93", &handle, &status);
    ASSERT_EQ(status, 0);
    int length = -1;
    C_KVMP_GETMESSAGE(handle, nullptr, 0, &length);
    std::vector<char> text(static_cast<size_t>(length) + 1);
    C_KVMP_GETMESSAGE(handle, text.data(), length, &status);
    EXPECT_EQ(std::string(text.data()),
              "unknown coordinate system \"Lambert 93\"; did you mean " + Quoted("Lambert-93") +
                  ", \"RGF93 v2 / Lambert-93\" (EPSG:9793) or \"RGF93 v2b / Lambert-93\" (EPSG:9794)?");
    C_KVMP_DESTROY(&handle, &status);
}
