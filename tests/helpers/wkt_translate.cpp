// Reads "id<TAB>coordinate system" lines from stdin and prints, per line,
// "id<TAB>type<TAB>PROJ.4 text": the projection type that the WKT reader gives
// and the PROJ.4 translation. Used by tools/make_wkt_corpus.py to hand our
// PROJ.4 text to PROJ. With --proj: "id<TAB>PROJ string<TAB>reason", the PROJ
// string of the EPSG reading (empty, with the reason, when there is none), for
// tools/check_proj_strings.py.
#include "wkt/KvPRJParser.h"
#include "wkt/KvProjTranslator.h"

#include <iostream>
#include <string>

int main(int argc, char** argv)
{
    std::string line;
    const CKvProjTranslator translator;
    const bool proj = argc > 1 && std::string(argv[1]) == "--proj";
    while (std::getline(std::cin, line)) {
        const size_t tab = line.find('\t');
        if (tab == std::string::npos)
            continue;
        const std::string text = line.substr(tab + 1);
        if (proj) {
            std::string reason;
            const std::string string = translator.ConvertToProj(text, nullptr, 0, &reason);
            std::cout << line.substr(0, tab) << '\t' << string << '\t' << reason << '\n';
            continue;
        }
        CKvPRJParser parser(text.c_str());
        parser.Parse(false);
        std::cout << line.substr(0, tab) << '\t' << static_cast<int>(parser.GetProjectionType()) << '\t'
                  << translator.Convert2Proj4(text, nullptr, 0) << '\n';
    }
    return 0;
}
