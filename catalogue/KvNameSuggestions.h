#ifndef KVCART_CATALOGUE_KVNAMESUGGESTIONS_H
#define KVCART_CATALOGUE_KVNAMESUGGESTIONS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// The names of coordinate systems closest to one that did not resolve: the
// catalogue's, and any other list of systems a caller holds (the EPSG
// registry's names, such as "OSGB36 / British National Grid"), each with its
// EPSG code or 0.
//
// A candidate is close when, compared with ASCII letters folded to lower case:
//  - it is the same apart from blanks and punctuation ("utm 32", "Lambert 93"),
//    or its EPSG code is the number the query names ("27700", "EPSG:27700");
//  - the Damerau-Levenshtein distance (optimal string alignment) of the two,
//    without blanks and punctuation, is small for the query's length: none
//    below 4 characters, 1 up to 5, 2 up to 9, then a quarter of the length,
//    at most 6 ("Britsh National Grid");
//  - every word of the query is a word of the name, the start of one (three
//    letters or more; a number only before letters: 32 for 32N), one with a
//    letter wrong (five letters or more) or two of them written as one
//    ("wgs84"): "RD", "National Grid", "texas central";
//  - the query, three letters or more, is the initials of the name's last
//    words ("BNG" for "OSGB36 / British National Grid").
// A query of one letter or digit is close to nothing but itself. The best come
// first: the fewest edits or, for words, the fewest words of the name left
// unmatched; then the longer common start, the nearer length and the order in
// which the candidates were added.
//
// Candidates are prepared once (folded, stripped, split into words, counted by
// character); a query tests each against a length bound and a character-count
// bound before any edit distance, which it computes in a band and gives up on
// as soon as the bound is passed. The 6 700 names of the EPSG registry answer
// a query in under a millisecond. The object is not changed by Suggest: any
// number of threads may ask at once.
class CKvNameSuggestions
{
public:
    struct SSuggestion
    {
        std::string name;
        int epsgCode = 0; // 0: none
    };

    // Queries longer than this (in bytes, after trimming) are no name anyone
    // meant to type: they get no suggestion.
    static constexpr std::size_t MaxQueryLength = 200;

    CKvNameSuggestions() = default;

    void Reserve(std::size_t count) { m_candidates.reserve(count); }
    // A candidate; an empty name, or one of blanks, is not one.
    void Add(const std::string& name, int epsgCode = 0);
    std::size_t GetCount() const { return m_candidates.size(); }

    // Up to maxCount candidates close to the query, best first; none when
    // nothing is close.
    std::vector<SSuggestion> Suggest(const std::string& query, std::size_t maxCount = 3) const;

    // "did you mean "British National Grid" (EPSG:27700)?", the names joined by
    // commas and a last "or"; empty for no suggestion.
    static std::string DidYouMean(const std::vector<SSuggestion>& suggestions);
    // The EPSG code a query names by number alone: "27700", "EPSG:27700",
    // "EPSG::27700", "epsg 27700" (blanks around it do not matter); 0 for any
    // other text and for numbers beyond a code's range.
    static int ReadCode(const std::string& query);
    // The text with ASCII letters in lower case and blanks at both ends removed;
    // other bytes (UTF-8 among them) stay as they are.
    static std::string Fold(const std::string& text);

private:
    // Counts of the letters a-z, the digits and every other byte (saturating).
    using Histogram = std::array<std::uint8_t, 37>;

    struct SCandidate
    {
        std::string name;
        int epsgCode = 0;
        std::string compact;             // folded, letters, digits and non-ASCII bytes only
        std::vector<std::string> words;  // folded words, split at blanks and punctuation
        std::vector<std::string> pairs;  // each word joined to the next
        std::string initials;            // the first letters of the words that start with one
        Histogram counts{};              // of compact
    };

    struct SQuery;

    std::vector<SCandidate> m_candidates;
};

#endif
