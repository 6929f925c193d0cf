#ifndef KVCART_PARAMFILE_PARAMFILEREADER_H
#define KVCART_PARAMFILE_PARAMFILEREADER_H

#include "paramfile/ParamTree.h"

#include <string>

// Parses the text of a parameter file into a GxrFile. The whole text is checked:
// any error rejects the file and describes the first fault as
// "<file>:<line>: <what is wrong>".
class CParamFileReader
{
public:
    CParamFileReader(const std::string& displayName, const std::string& text);

    bool Parse(GxrFile& file);
    const std::string& GetError() const { return m_error; }

private:
    struct Token
    {
        bool isString = false;
        std::string text;
    };

    bool _tokenizeLine(const std::string& line, std::deque<Token>& tokens);
    bool _fail(const std::string& what);
    static bool _isIdentifier(const std::string& text);

    std::string m_displayName;
    const std::string& m_text;
    std::string m_error;
    int m_line = 0;
};

#endif
