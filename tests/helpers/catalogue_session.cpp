// One process's use of the catalogue, for tests of what survives a process exit.
//   catalogue_session SYSTEM_DIR USER_DIR add NAME      adds a custom definition
//   catalogue_session SYSTEM_DIR USER_DIR add-many N    adds N custom definitions
//   catalogue_session SYSTEM_DIR USER_DIR ellipsoid ID  adds a custom ellipsoid
//   catalogue_session SYSTEM_DIR USER_DIR list          prints the custom entries
// The catalogue writes itself back when the process exits.
#include "catalogue/KvCartSetup.h"
#include "catalogue/KvLambert2SPProjection.h"
#include "coordsys/KvMapProjection.h"
#include "interface/KvCart.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

int main(int argc, char** argv)
{
    if (argc < 4)
        return 2;
    CARTSETUPLINUX(argv[1], argv[2]);
    const std::string command = argv[3];
    if (command == "add" && argc > 4) {
        CKvMapProjection::AddMapProjection(
            new CKvLambert2SPProjection(argv[4], "Site grids", "RF", 49.0, 44.0, 3.0, 46.5, 700000.0, 6600000.0));
    } else if (command == "add-many" && argc > 4) {
        for (int i = 0; i < std::atoi(argv[4]); ++i)
            CKvMapProjection::AddMapProjection(new CKvLambert2SPProjection(
                "Grid " + std::to_string(i), "Site grids", "RF", 49.0, 44.0, 3.0, 46.5, 700000.0, 6600000.0));
    } else if (command == "ellipsoid" && argc > 4) {
        CKvMapProjection::AddEllipsoid(new CKvEllipsoid("Site ellipsoid", argv[4], 6378000.5, 300.25));
    } else if (command == "list") {
        CKvCartSetup* setup = CKvCartSetup::Instance();
        for (auto it = setup->GetMapProjectionList().GetIteratorBegin();
             it != setup->GetMapProjectionList().GetIteratorEnd(); ++it)
            if ((*it)->CanDelete())
                std::printf("projection %s\n", (*it)->GetName().c_str());
        for (auto it = setup->GetEllipsoidList().GetIteratorBegin(CKvEllipsoidList::eCustom);
             it != setup->GetEllipsoidList().GetIteratorEnd(CKvEllipsoidList::eCustom); ++it)
            std::printf("ellipsoid %s %.17g %.17g\n", (*it)->GetID().c_str(), (*it)->GetMajor(),
                        (*it)->GetInvFlatness());
    } else {
        return 2;
    }
    return 0;
}
