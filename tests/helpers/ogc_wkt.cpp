// Reads "id<TAB>coordinate system" lines from stdin (WKT, or a name of the
// catalogue in the directory given as the first argument) and prints, per line,
// "id<TAB>O<TAB>text" with the system's OGC WKT 1, or "id<TAB>N<TAB>reason" when
// it has none. WKT is read by the EPSG registry's rules, as the kvcart program
// reads it. With --list as second argument, prints the catalogue's names
// instead, one a line. Used by tools/check_ogc_wkt.py to hand our texts to PROJ.
#include "catalogue/KvCartSetup.h"
#include "catalogue/KvMapProjectionList.h"
#include "coordsys/KvMapProjection.h"
#include "interface/KvCart.h"
#include "wkt/KvOgcWktWriter.h"

#include <cstdlib>
#include <iostream>
#include <string>
#include <unistd.h>

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::cerr << "usage: ogc_wkt CATALOGUE_DIR/ < lines\n";
        return 2;
    }
    char pattern[] = "/tmp/kvcart-ogc-XXXXXX";
    const char* user = mkdtemp(pattern);
    if (user == nullptr)
        return 2;
    CARTSETUPLINUX(argv[1], (std::string(user) + "/").c_str());
    CKvMapProjection::SetEpsgReading(true);
    if (argc > 2 && std::string(argv[2]) == "--list") {
        const CKvMapProjectionList& list = CKvCartSetup::Instance()->GetMapProjectionList();
        for (auto it = list.GetIteratorBegin(); it != list.GetIteratorEnd(); ++it)
            std::cout << (*it)->GetName() << '\n';
        rmdir(user);
        return 0;
    }
    std::string line;
    while (std::getline(std::cin, line)) {
        const size_t tab = line.find('\t');
        if (tab == std::string::npos)
            continue;
        std::string text, reason;
        const bool written = CKvOgcWktWriter::WriteSystem(line.substr(tab + 1), text, reason);
        std::cout << line.substr(0, tab) << (written ? "\tO\t" : "\tN\t") << (written ? text : reason) << '\n';
    }
    rmdir(user);
    return 0;
}
