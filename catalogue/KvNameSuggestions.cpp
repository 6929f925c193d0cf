#include "catalogue/KvNameSuggestions.h"

#include "paramfile/String.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

namespace {

// Longest stripped text the edit distance is computed for; a name longer than
// this is compared by its words alone. Registry names stay below 100.
constexpr std::size_t kMaxCompact = 160;
// Above every edit distance any query may accept (6).
constexpr int kFar = 7;

bool IsAsciiLetter(unsigned char c)
{
    return c >= 'a' && c <= 'z';
}

bool IsDigit(unsigned char c)
{
    return c >= '0' && c <= '9';
}

// Letters, digits and the bytes of non-ASCII characters make words; blanks,
// punctuation and control bytes separate them.
bool IsWordByte(unsigned char c)
{
    return IsAsciiLetter(c) || IsDigit(c) || c >= 0x80;
}

bool AllDigits(const std::string& word)
{
    return !word.empty() && std::all_of(word.begin(), word.end(), [](char c) { return IsDigit(static_cast<unsigned char>(c)); });
}

std::string Compact(const std::string& folded)
{
    std::string compact;
    compact.reserve(folded.size());
    for (char c : folded)
        if (IsWordByte(static_cast<unsigned char>(c)))
            compact += c;
    return compact;
}

std::vector<std::string> Words(const std::string& folded)
{
    std::vector<std::string> words;
    std::string word;
    for (char c : folded) {
        if (IsWordByte(static_cast<unsigned char>(c))) {
            word += c;
        } else if (!word.empty()) {
            words.push_back(word);
            word.clear();
        }
    }
    if (!word.empty())
        words.push_back(word);
    return words;
}

std::array<std::uint8_t, 37> Count(const std::string& compact)
{
    std::array<std::uint8_t, 37> counts{};
    for (char ch : compact) {
        const unsigned char c = static_cast<unsigned char>(ch);
        const std::size_t bin = IsAsciiLetter(c) ? c - 'a' : IsDigit(c) ? 26 + (c - '0') : 36;
        if (counts[bin] < 255)
            ++counts[bin];
    }
    return counts;
}

// The edits a query of this stripped length may be from a name and still have
// been meant as it: a slip in a short word is another word.
int Tolerance(std::size_t length)
{
    if (length < 4)
        return 0;
    if (length <= 5)
        return 1;
    if (length <= 9)
        return 2;
    return static_cast<int>(std::min<std::size_t>(length / 4, 6));
}

// The optimal-string-alignment distance (Damerau-Levenshtein with adjacent
// transpositions, each substring edited once), or limit + 1 when it is more
// than limit. Only the band |i - j| <= limit is computed, and the loop ends
// when a whole row lies beyond the limit. Both strings at most kMaxCompact.
int BoundedDistance(const std::string& a, const std::string& b, int limit)
{
    const int n = static_cast<int>(a.size()), m = static_cast<int>(b.size());
    const int over = limit + 1;
    if (std::abs(n - m) > limit)
        return over;
    if (n == 0 || m == 0)
        return std::min(std::max(n, m), over);
    int rows[3][kMaxCompact + 2];
    int* before = rows[0]; // row i - 2
    int* previous = rows[1];
    int* current = rows[2];
    for (int j = 0; j <= m; ++j)
        previous[j] = std::min(j, over);
    for (int i = 1; i <= n; ++i) {
        const int low = std::max(1, i - limit), high = std::min(m, i + limit);
        // Cells beside the band are beyond the limit (|i - j| edits at least).
        current[low - 1] = low == 1 ? std::min(i, over) : over;
        if (high < m)
            current[high + 1] = over;
        int rowMinimum = current[low - 1];
        for (int j = low; j <= high; ++j) {
            const int substitution = previous[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            int value = std::min({previous[j] + 1, current[j - 1] + 1, substitution});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                value = std::min(value, before[j - 2] + 1);
            current[j] = std::min(value, over);
            rowMinimum = std::min(rowMinimum, current[j]);
        }
        if (rowMinimum > limit)
            return over;
        int* const recycled = before;
        before = previous;
        previous = current;
        current = recycled;
    }
    return previous[m];
}

// Whether a word of the query stands for a word of a name: the same; its start,
// three letters or more; or, from five letters, one letter wrong, missing, extra
// or two swapped. A number is a number: 32 is the start of 32n (a zone and its
// hemisphere), never of 327 or 3270. inexact is set for all but the same word.
bool WordMatches(const std::string& query, const std::string& name, bool& inexact)
{
    inexact = false;
    if (query == name)
        return true;
    inexact = true;
    if (AllDigits(query))
        return name.size() > query.size() && name.compare(0, query.size(), query) == 0 &&
               !IsDigit(static_cast<unsigned char>(name[query.size()]));
    if (AllDigits(name))
        return false;
    if (query.size() >= 3 && name.size() > query.size() && name.compare(0, query.size(), query) == 0)
        return true;
    return query.size() >= 5 && name.size() >= 5 && query.size() <= kMaxCompact && name.size() <= kMaxCompact &&
           BoundedDistance(query, name, 1) <= 1;
}

std::string Initials(const std::vector<std::string>& words)
{
    std::string initials;
    for (const std::string& word : words)
        if (IsAsciiLetter(static_cast<unsigned char>(word[0])))
            initials += word[0];
    return initials;
}

std::size_t CommonStart(const std::string& a, const std::string& b)
{
    std::size_t n = 0;
    while (n < a.size() && n < b.size() && a[n] == b[n])
        ++n;
    return n;
}

} // namespace

struct CKvNameSuggestions::SQuery
{
    std::string compact;
    std::vector<std::string> words;
    Histogram counts{};
    int code = 0;
    int tolerance = 0;
    bool acronym = false; // one word of letters that may be the initials of a name's last words
};

std::string CKvNameSuggestions::Fold(const std::string& text)
{
    CString folded(text);
    folded.Trim();
    folded.MakeLower();
    return folded.GetStdString();
}

void CKvNameSuggestions::Add(const std::string& name, int epsgCode)
{
    const std::string folded = Fold(name);
    if (folded.empty())
        return;
    SCandidate candidate;
    candidate.name = name;
    candidate.epsgCode = epsgCode > 0 ? epsgCode : 0;
    candidate.compact = Compact(folded);
    candidate.words = Words(folded);
    candidate.initials = Initials(candidate.words);
    for (std::size_t k = 0; k + 1 < candidate.words.size(); ++k)
        candidate.pairs.push_back(candidate.words[k] + candidate.words[k + 1]);
    candidate.counts = Count(candidate.compact);
    m_candidates.push_back(std::move(candidate));
}

int CKvNameSuggestions::ReadCode(const std::string& query)
{
    const std::string folded = Fold(query);
    std::size_t start = 0;
    if (folded.compare(0, 4, "epsg") == 0) {
        start = 4;
        if (folded.compare(start, 2, "::") == 0)
            start += 2;
        else if (start < folded.size() && (folded[start] == ':' || folded[start] == ' '))
            ++start;
        else
            return 0;
    }
    const std::string digits = folded.substr(start);
    if (!AllDigits(digits) || digits.size() > 10)
        return 0;
    const long long value = std::atoll(digits.c_str());
    return value > 0 && value <= INT_MAX ? static_cast<int>(value) : 0;
}

std::vector<CKvNameSuggestions::SSuggestion> CKvNameSuggestions::Suggest(const std::string& text,
                                                                          std::size_t maxCount) const
{
    std::vector<SSuggestion> suggestions;
    const std::string folded = Fold(text);
    if (folded.empty() || folded.size() > MaxQueryLength || maxCount == 0)
        return suggestions;
    SQuery query;
    query.compact = Compact(folded);
    // One letter or digit is too little to be near anything but itself.
    const bool tooShort = query.compact.size() < 2;
    query.words = Words(folded);
    query.counts = Count(query.compact);
    query.code = ReadCode(folded);
    query.tolerance = query.compact.size() <= kMaxCompact ? Tolerance(query.compact.size()) : 0;
    query.acronym = query.words.size() == 1 && query.compact.size() >= 3 && query.compact.size() <= 8 &&
                    std::all_of(query.compact.begin(), query.compact.end(),
                                [](char c) { return IsAsciiLetter(static_cast<unsigned char>(c)); });

    // Costs in half edits: 0 for the same name, 2 per edit, 2 for the words of
    // the query all found, and 2 more per word of the name not asked for and 1
    // per word matched only by its start or with a slip.
    struct SScored
    {
        int cost;
        std::size_t commonStart, lengthDifference, index;
    };
    std::vector<SScored> scored;
    for (std::size_t index = 0; index < m_candidates.size(); ++index) {
        const SCandidate& candidate = m_candidates[index];
        int cost = INT_MAX;
        if ((query.code > 0 && candidate.epsgCode == query.code) ||
            (!query.compact.empty() && query.compact == candidate.compact))
            cost = 0;

        const std::size_t n = query.compact.size(), m = candidate.compact.size();
        const std::size_t lengthDifference = n > m ? n - m : m - n;
        if (cost > 0 && query.tolerance > 0 && m <= kMaxCompact &&
            lengthDifference <= static_cast<std::size_t>(query.tolerance)) {
            // Each edit changes the counts of characters by two at most (a
            // transposition not at all), so half their difference bounds the
            // distance from below.
            int difference = 0;
            for (std::size_t bin = 0; bin < query.counts.size(); ++bin)
                difference += std::abs(int(query.counts[bin]) - int(candidate.counts[bin]));
            if ((difference + 1) / 2 <= query.tolerance) {
                const int distance = BoundedDistance(query.compact, candidate.compact, query.tolerance);
                if (distance <= query.tolerance)
                    cost = std::min(cost, 2 * distance);
            }
        }

        if (cost > 2 && !tooShort && !query.words.empty() && !candidate.words.empty()) {
            std::vector<bool> used(candidate.words.size(), false);
            int inexact = 0;
            bool all = true;
            for (const std::string& word : query.words) {
                bool found = false, slip = true;
                for (std::size_t k = 0; k < candidate.words.size(); ++k) {
                    bool wordSlip = false;
                    if (WordMatches(word, candidate.words[k], wordSlip)) {
                        found = true;
                        used[k] = true;
                        slip = slip && wordSlip;
                    }
                }
                // A word written as two ("wgs84" for "WGS 84").
                for (std::size_t k = 0; !found && k < candidate.pairs.size(); ++k) {
                    if (candidate.pairs[k] == word) {
                        found = true;
                        slip = false;
                        used[k] = used[k + 1] = true;
                    }
                }
                if (!found) {
                    all = false;
                    break;
                }
                inexact += slip ? 1 : 0;
            }
            if (all) {
                const int unmatched = static_cast<int>(std::count(used.begin(), used.end(), false));
                cost = std::min(cost, 2 + 2 * unmatched + inexact);
            }
        }

        // The initials of the name's last words ("BNG" for "OSGB36 / British
        // National Grid"); 2 more for each word of the name besides them.
        const std::size_t a = query.compact.size(), b = candidate.initials.size();
        if (cost > 2 && query.acronym && b >= a && candidate.initials.compare(b - a, a, query.compact) == 0)
            cost = std::min(cost, 2 + 2 * static_cast<int>(candidate.words.size() - a));

        if (cost != INT_MAX)
            scored.push_back({cost, CommonStart(query.compact, candidate.compact), lengthDifference, index});
    }

    const auto better = [](const SScored& a, const SScored& b) {
        if (a.cost != b.cost)
            return a.cost < b.cost;
        if (a.commonStart != b.commonStart)
            return a.commonStart > b.commonStart;
        if (a.lengthDifference != b.lengthDifference)
            return a.lengthDifference < b.lengthDifference;
        return a.index < b.index;
    };
    const std::size_t kept = std::min(maxCount, scored.size());
    std::partial_sort(scored.begin(), scored.begin() + static_cast<std::ptrdiff_t>(kept), scored.end(), better);
    for (std::size_t i = 0; i < kept; ++i) {
        const SCandidate& candidate = m_candidates[scored[i].index];
        suggestions.push_back({candidate.name, candidate.epsgCode});
    }
    return suggestions;
}

std::string CKvNameSuggestions::DidYouMean(const std::vector<SSuggestion>& suggestions)
{
    std::string text;
    for (std::size_t i = 0; i < suggestions.size(); ++i) {
        text += i == 0 ? "did you mean " : i + 1 == suggestions.size() ? " or " : ", ";
        text += '"' + suggestions[i].name + '"';
        if (suggestions[i].epsgCode > 0)
            text += " (EPSG:" + std::to_string(suggestions[i].epsgCode) + ")";
    }
    if (!text.empty())
        text += '?';
    return text;
}
