#include "paramfile/ParamFileReader.h"

#include "paramfile/NumericLocale.h"

#include <cstring>

namespace {

bool IsBlank(char ch)
{
    return ch == ' ' || ch == '\t' || ch == '\r' || ch == '\f' || ch == '\v';
}

} // namespace

CParamFileReader::CParamFileReader(const std::string& displayName, const std::string& text)
    : m_displayName(displayName), m_text(text)
{
}

bool CParamFileReader::_fail(const std::string& what)
{
    m_error = m_displayName + ":" + std::to_string(m_line) + ": " + what;
    return false;
}

bool CParamFileReader::_isIdentifier(const std::string& text)
{
    if (text.empty())
        return false;
    for (char ch : text) {
        const bool ok = (ch >= 'A' && ch <= 'Z') || (ch >= 'a' && ch <= 'z') || (ch >= '0' && ch <= '9') || ch == '_';
        if (!ok)
            return false;
    }
    return true;
}

bool CParamFileReader::_tokenizeLine(const std::string& line, std::deque<Token>& tokens)
{
    size_t i = 0;
    const size_t n = line.size();
    while (i < n) {
        while (i < n && IsBlank(line[i]))
            ++i;
        if (i >= n || line[i] == '#')
            break;
        Token token;
        if (line[i] == '"') {
            token.isString = true;
            ++i;
            bool closed = false;
            while (i < n) {
                const char ch = line[i++];
                if (ch == '"') {
                    closed = true;
                    break;
                }
                if (ch != '\\') {
                    token.text += ch;
                    continue;
                }
                if (i >= n)
                    break;
                const char esc = line[i++];
                switch (esc) {
                case '"': token.text += '"'; break;
                case '\\': token.text += '\\'; break;
                case 'n': token.text += '\n'; break;
                case 't': token.text += '\t'; break;
                case 'r': token.text += '\r'; break;
                default:
                    return _fail(std::string("unknown escape sequence '\\") + esc + "' in a string");
                }
            }
            if (!closed)
                return _fail("unterminated string");
            if (i < n && !IsBlank(line[i]) && line[i] != '#')
                return _fail("a string must be followed by a blank");
        } else {
            const size_t start = i;
            while (i < n && !IsBlank(line[i]) && line[i] != '#' && line[i] != '"')
                ++i;
            if (i < n && line[i] == '"')
                return _fail("a quote inside '" + line.substr(start, i - start + 1) + "'");
            token.text = line.substr(start, i - start);
        }
        tokens.push_back(std::move(token));
    }
    return true;
}

bool CParamFileReader::Parse(GxrFile& file)
{
    GxrTarget* target = nullptr;
    GxrSection* section = nullptr;
    size_t pos = 0;
    m_line = 0;

    while (pos < m_text.size()) {
        ++m_line;
        size_t end = m_text.find('\n', pos);
        if (end == std::string::npos)
            end = m_text.size();
        const std::string line = m_text.substr(pos, end - pos);
        pos = end + 1;

        if (std::memchr(line.data(), '\0', line.size()) != nullptr)
            return _fail("NUL byte in the file");

        std::deque<Token> tokens;
        if (!_tokenizeLine(line, tokens))
            return false;
        if (tokens.empty())
            continue;

        const Token head = tokens.front();
        tokens.pop_front();
        if (head.isString || !_isIdentifier(head.text))
            return _fail("expected a keyword name, found '" + head.text + "'");

        if (head.text == "TARGET" || head.text == "SECTION") {
            if (tokens.size() != 1 || tokens.front().isString || !_isIdentifier(tokens.front().text))
                return _fail(head.text + " needs exactly one name");
            if (head.text == "TARGET") {
                if (target != nullptr)
                    return _fail("TARGET inside target '" + target->name + "' (missing END_TARGET)");
                file.targets.push_back(GxrTarget{tokens.front().text, {}, m_line});
                target = &file.targets.back();
            } else {
                if (target == nullptr)
                    return _fail("SECTION outside a target");
                if (section != nullptr)
                    return _fail("SECTION inside section '" + section->name + "' (missing END_SECTION)");
                target->sections.push_back(GxrSection{tokens.front().text, {}, m_line, true});
                section = &target->sections.back();
            }
            continue;
        }
        if (head.text == "END_SECTION" || head.text == "END_TARGET") {
            if (!tokens.empty())
                return _fail(head.text + " takes no parameters");
            if (head.text == "END_SECTION") {
                if (section == nullptr)
                    return _fail("END_SECTION without SECTION");
                section = nullptr;
            } else {
                if (target == nullptr)
                    return _fail("END_TARGET without TARGET");
                if (section != nullptr)
                    return _fail("END_TARGET inside section '" + section->name + "' (missing END_SECTION)");
                target = nullptr;
            }
            continue;
        }

        if (section == nullptr)
            return _fail("keyword '" + head.text + "' outside a section");
        if (tokens.empty())
            return _fail("keyword '" + head.text + "' has no parameter");
        GxrKeyword keyword;
        keyword.name = head.text;
        keyword.line = m_line;
        for (const Token& token : tokens) {
            GxrParam param;
            param.isString = token.isString;
            param.text = token.text;
            if (!token.isString && !CNumericLocale::ParseDouble(token.text.c_str(), param.number))
                return _fail("parameter '" + token.text + "' of keyword '" + head.text +
                             "' is neither a number nor a string");
            keyword.params.push_back(std::move(param));
        }
        section->keywords.push_back(std::move(keyword));
    }

    if (section != nullptr)
        return _fail("end of file inside section '" + section->name + "' opened on line " +
                     std::to_string(section->line));
    if (target != nullptr)
        return _fail("end of file inside target '" + target->name + "' opened on line " +
                     std::to_string(target->line));
    return true;
}
