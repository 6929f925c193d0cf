#include "paramfile/String.h"

#include "paramfile/NumericLocale.h"

#include <cstdarg>
#include <cstring>

namespace {

bool IsBlank(char ch)
{
    return ch == ' ' || ch == '\t' || ch == '\n' || ch == '\r' || ch == '\f' || ch == '\v';
}

char LowerAscii(char ch)
{
    return (ch >= 'A' && ch <= 'Z') ? static_cast<char>(ch - 'A' + 'a') : ch;
}

char UpperAscii(char ch)
{
    return (ch >= 'a' && ch <= 'z') ? static_cast<char>(ch - 'a' + 'A') : ch;
}

// Clamps a (first, count) request to the bounds of a string of the given size.
void ClampRange(size_t size, int& first, int& count)
{
    if (first < 0)
        first = 0;
    if (static_cast<size_t>(first) > size)
        first = static_cast<int>(size);
    if (count < 0)
        count = 0;
    if (static_cast<size_t>(count) > size - static_cast<size_t>(first))
        count = static_cast<int>(size - static_cast<size_t>(first));
}

} // namespace

CString::CString(const char* text, int length)
{
    if (text != nullptr && length > 0)
        m_text.assign(text, static_cast<size_t>(length));
}

CString::CString(char ch, int repeat)
{
    if (repeat > 0)
        m_text.assign(static_cast<size_t>(repeat), ch);
}

int CString::Find(const char* sub, int start) const
{
    if (sub == nullptr || start < 0 || static_cast<size_t>(start) > m_text.size())
        return -1;
    const size_t pos = m_text.find(sub, static_cast<size_t>(start));
    return pos == std::string::npos ? -1 : static_cast<int>(pos);
}

int CString::Find(char ch, int start) const
{
    if (start < 0 || static_cast<size_t>(start) > m_text.size())
        return -1;
    const size_t pos = m_text.find(ch, static_cast<size_t>(start));
    return pos == std::string::npos ? -1 : static_cast<int>(pos);
}

int CString::ReverseFind(char ch) const
{
    const size_t pos = m_text.rfind(ch);
    return pos == std::string::npos ? -1 : static_cast<int>(pos);
}

void CString::CopyBounded(char* field, size_t size, const char* text)
{
    const size_t length = text != nullptr ? strnlen(text, size - 1) : 0;
    if (length > 0)
        std::memcpy(field, text, length);
    field[length] = '\0';
}

CString CString::Tokenize(const char* delimiters, int& start) const
{
    if (start < 0 || delimiters == nullptr || static_cast<size_t>(start) > m_text.size()) {
        start = -1;
        return CString();
    }
    const size_t first = m_text.find_first_not_of(delimiters, static_cast<size_t>(start));
    if (first == std::string::npos) {
        start = -1;
        return CString();
    }
    size_t last = m_text.find_first_of(delimiters, first);
    if (last == std::string::npos)
        last = m_text.size();
    start = static_cast<int>(last < m_text.size() ? last + 1 : last);
    return CString(m_text.substr(first, last - first));
}

int CString::Replace(const char* oldText, const char* newText)
{
    if (oldText == nullptr || *oldText == '\0')
        return 0;
    const std::string replacement = newText != nullptr ? newText : "";
    const size_t oldLength = std::strlen(oldText);
    int count = 0;
    for (size_t pos = m_text.find(oldText); pos != std::string::npos;
         pos = m_text.find(oldText, pos + replacement.size())) {
        m_text.replace(pos, oldLength, replacement);
        ++count;
    }
    return count;
}

CString& CString::TrimLeft()
{
    size_t n = 0;
    while (n < m_text.size() && IsBlank(m_text[n]))
        ++n;
    m_text.erase(0, n);
    return *this;
}

CString& CString::TrimRight()
{
    size_t n = m_text.size();
    while (n > 0 && IsBlank(m_text[n - 1]))
        --n;
    m_text.erase(n);
    return *this;
}

CString& CString::Trim()
{
    return TrimRight().TrimLeft();
}

CString& CString::TrimLeft(const char* characters)
{
    if (characters != nullptr) {
        const size_t n = m_text.find_first_not_of(characters);
        m_text.erase(0, n == std::string::npos ? m_text.size() : n);
    }
    return *this;
}

CString& CString::TrimRight(const char* characters)
{
    if (characters != nullptr) {
        const size_t n = m_text.find_last_not_of(characters);
        m_text.erase(n == std::string::npos ? 0 : n + 1);
    }
    return *this;
}

CString& CString::Trim(const char* characters)
{
    return TrimRight(characters).TrimLeft(characters);
}

CString& CString::MakeLower()
{
    for (char& ch : m_text)
        ch = LowerAscii(ch);
    return *this;
}

CString& CString::MakeUpper()
{
    for (char& ch : m_text)
        ch = UpperAscii(ch);
    return *this;
}

int CString::Compare(const char* other) const
{
    const int r = std::strcmp(m_text.c_str(), other != nullptr ? other : "");
    return r < 0 ? -1 : (r > 0 ? 1 : 0);
}

int CString::CompareNoCase(const char* other) const
{
    const unsigned char* a = reinterpret_cast<const unsigned char*>(m_text.c_str());
    const unsigned char* b = reinterpret_cast<const unsigned char*>(other != nullptr ? other : "");
    for (;; ++a, ++b) {
        const unsigned char ca = static_cast<unsigned char>(LowerAscii(static_cast<char>(*a)));
        const unsigned char cb = static_cast<unsigned char>(LowerAscii(static_cast<char>(*b)));
        if (ca != cb)
            return ca < cb ? -1 : 1;
        if (ca == '\0')
            return 0;
    }
}

CString CString::Left(int count) const
{
    int first = 0;
    ClampRange(m_text.size(), first, count);
    return CString(m_text.substr(0, static_cast<size_t>(count)));
}

CString CString::Right(int count) const
{
    int first = 0;
    ClampRange(m_text.size(), first, count);
    return CString(m_text.substr(m_text.size() - static_cast<size_t>(count)));
}

CString CString::Mid(int first) const
{
    return Mid(first, GetLength());
}

CString CString::Mid(int first, int count) const
{
    ClampRange(m_text.size(), first, count);
    return CString(m_text.substr(static_cast<size_t>(first), static_cast<size_t>(count)));
}

void CString::Format(const char* format, ...)
{
    std::string result;
    va_list args;
    va_start(args, format);
    CNumericLocale::AppendVFormat(result, format, args);
    va_end(args);
    m_text.swap(result);
}

void CString::AppendFormat(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    CNumericLocale::AppendVFormat(m_text, format, args);
    va_end(args);
}
