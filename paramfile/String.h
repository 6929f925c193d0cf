#ifndef KVCART_PARAMFILE_STRING_H
#define KVCART_PARAMFILE_STRING_H

#include <string>

// A byte string with the familiar CString interface, built on std::string.
// Positions and lengths are int; -1 means "not found". Case operations are
// ASCII only; formatting always uses the C locale.
class CString
{
public:
    CString() = default;
    CString(const char* text) : m_text(text != nullptr ? text : "") {}
    CString(const char* text, int length);
    CString(const std::string& text) : m_text(text) {}
    CString(char ch, int repeat = 1);

    operator const char*() const { return m_text.c_str(); }
    const char* GetString() const { return m_text.c_str(); }
    const std::string& GetStdString() const { return m_text; }

    int GetLength() const { return static_cast<int>(m_text.size()); }
    bool IsEmpty() const { return m_text.empty(); }
    void Empty() { m_text.clear(); }
    char GetAt(int index) const { return m_text[static_cast<size_t>(index)]; }
    void SetAt(int index, char ch) { m_text[static_cast<size_t>(index)] = ch; }

    int Find(const char* sub, int start = 0) const;
    int Find(char ch, int start = 0) const;
    int ReverseFind(char ch) const;
    // Skips leading delimiter characters and returns the run up to the next
    // delimiter, moving start past it. At the end returns "" and sets start to -1.
    CString Tokenize(const char* delimiters, int& start) const;
    int Replace(const char* oldText, const char* newText);

    CString& Trim();
    CString& TrimLeft();
    CString& TrimRight();
    CString& Trim(const char* characters);
    CString& TrimLeft(const char* characters);
    CString& TrimRight(const char* characters);
    CString& MakeLower();
    CString& MakeUpper();

    int Compare(const char* other) const;
    int CompareNoCase(const char* other) const;

    CString Left(int count) const;
    CString Right(int count) const;
    CString Mid(int first) const;
    CString Mid(int first, int count) const;

    // Copies text into a fixed field of size bytes, truncated so that the
    // terminator always fits; a null text gives "".
    static void CopyBounded(char* field, size_t size, const char* text);

    void Format(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void AppendFormat(const char* format, ...) __attribute__((format(printf, 2, 3)));

    CString& operator+=(const CString& other) { m_text += other.m_text; return *this; }
    CString& operator+=(const char* other) { if (other != nullptr) m_text += other; return *this; }
    CString& operator+=(char ch) { m_text += ch; return *this; }

    friend CString operator+(const CString& a, const CString& b) { return CString(a.m_text + b.m_text); }
    friend CString operator+(const CString& a, const char* b) { CString r(a); r += b; return r; }
    friend CString operator+(const char* a, const CString& b) { CString r(a); r += b; return r; }
    friend CString operator+(const CString& a, char b) { CString r(a); r += b; return r; }

    friend bool operator==(const CString& a, const CString& b) { return a.m_text == b.m_text; }
    friend bool operator==(const CString& a, const char* b) { return a.Compare(b) == 0; }
    friend bool operator==(const char* a, const CString& b) { return b.Compare(a) == 0; }
    friend bool operator!=(const CString& a, const CString& b) { return !(a == b); }
    friend bool operator!=(const CString& a, const char* b) { return !(a == b); }
    friend bool operator!=(const char* a, const CString& b) { return !(a == b); }
    friend bool operator<(const CString& a, const CString& b) { return a.m_text < b.m_text; }
    friend bool operator>(const CString& a, const CString& b) { return b.m_text < a.m_text; }
    friend bool operator<=(const CString& a, const CString& b) { return !(b.m_text < a.m_text); }
    friend bool operator>=(const CString& a, const CString& b) { return !(a.m_text < b.m_text); }

private:
    std::string m_text;
};

#endif
