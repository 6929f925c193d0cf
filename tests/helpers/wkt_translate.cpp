// Reads "id<TAB>coordinate system" lines from stdin and prints, per line,
// "id<TAB>type<TAB>PROJ.4 text": the projection type that the WKT reader gives
// and the PROJ.4 translation. Used by tools/make_wkt_corpus.py to hand our
// PROJ.4 text to PROJ.
#include "wkt/KvPRJParser.h"
#include "wkt/KvProjTranslator.h"

#include <iostream>
#include <string>

int main()
{
    std::string line;
    const CKvProjTranslator translator;
    while (std::getline(std::cin, line)) {
        const size_t tab = line.find('\t');
        if (tab == std::string::npos)
            continue;
        const std::string text = line.substr(tab + 1);
        CKvPRJParser parser(text.c_str());
        parser.Parse(false);
        std::cout << line.substr(0, tab) << '\t' << static_cast<int>(parser.GetProjectionType()) << '\t'
                  << translator.Convert2Proj4(text, nullptr, 0) << '\n';
    }
    return 0;
}
