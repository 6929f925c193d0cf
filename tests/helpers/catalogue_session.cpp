// One host process's use of the catalogue, for tests of what survives a process
// exit. Usage: catalogue_session SYSTEM_DIR USER_DIR [--nobody] [--twice] STEP...
//   --nobody          drop root privileges first (uid/gid 65534), so that file
//                     permissions apply as they do to an ordinary user
//   --twice           call the set-up twice with the same directories
//   --full-disk       writes to the temporary file of a catalogue file fail with
//                     ENOSPC (a full disk); the rescue file can still be written
// Steps, carried out in order:
//   add NAME          adds a custom definition
//   add-many N        adds N custom definitions
//   ellipsoid ID      adds a custom ellipsoid
//   lookup NAME       describes a catalogue system (marks the list modified)
//   delete NAME       deletes a custom definition
//   branch NAME B     edits a definition: its branch becomes B
//   delete-ellipsoid ID  deletes a custom ellipsoid
//   list              prints the custom entries
//   errors            prints the catalogue's error text
//   writeback         writes back now and prints the status
//   barrier DIR       creates DIR/ready.<pid>, then waits until DIR/start exists,
//                     so that several hosts write back at the same moment
// The catalogue writes itself back when the process exits.
#include "catalogue/KvCartSetup.h"
#include "catalogue/KvLambert2SPProjection.h"
#include "coordsys/KvMapProjection.h"
#include "interface/KvCart.h"
#include "wkt/KvPRJParser.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <grp.h>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace {

bool g_fullDisk = false;

// Whether fd is the temporary file that replaces a catalogue file
// ("custom_projection.gxr.tmp.<pid>.<n>"), not that of a rescue file.
bool IsCatalogueTemporary(int fd)
{
    char link[64], target[4096];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
    const ssize_t n = ::readlink(link, target, sizeof target - 1);
    if (n <= 0)
        return false;
    target[n] = '\0';
    const char* base = std::strrchr(target, '/');
    base = base != nullptr ? base + 1 : target;
    return std::strncmp(base, "custom_projection.gxr.tmp.", 26) == 0 ||
           std::strncmp(base, "custom_ellipsoid.gxr.tmp.", 25) == 0;
}

} // namespace

// The library's write(2) calls come here (the executable's definition comes
// first in the dynamic linker's search), so that a full disk can be simulated.
extern "C" ssize_t write(int fd, const void* buffer, size_t count)
{
    if (g_fullDisk && IsCatalogueTemporary(fd)) {
        errno = ENOSPC;
        return -1;
    }
    return static_cast<ssize_t>(syscall(SYS_write, fd, buffer, count));
}

namespace {

CKvMapProjData* NewGrid(const std::string& name)
{
    return new CKvLambert2SPProjection(name, "Site grids", "RF", 49.0, 44.0, 3.0, 46.5, 700000.0, 6600000.0);
}

bool DropPrivileges()
{
    if (geteuid() != 0)
        return true;
    return setgroups(0, nullptr) == 0 && setgid(65534) == 0 && setuid(65534) == 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 4)
        return 2;
    int i = 3;
    bool twice = false;
    for (; i < argc && std::strncmp(argv[i], "--", 2) == 0; ++i) {
        if (std::strcmp(argv[i], "--nobody") == 0 && !DropPrivileges())
            return 3;
        twice = twice || std::strcmp(argv[i], "--twice") == 0;
        g_fullDisk = g_fullDisk || std::strcmp(argv[i], "--full-disk") == 0;
    }
    CARTSETUPLINUX(argv[1], argv[2]);
    if (twice)
        CARTSETUPLINUX(argv[1], argv[2]);

    for (; i < argc; ++i) {
        const std::string step = argv[i];
        const char* arg = i + 1 < argc ? argv[i + 1] : nullptr;
        CKvCartSetup* setup = CKvCartSetup::Instance();
        if (step == "add" && arg != nullptr) {
            CKvMapProjection::AddMapProjection(NewGrid(arg));
            ++i;
        } else if (step == "add-many" && arg != nullptr) {
            for (int k = 0; k < std::atoi(arg); ++k)
                CKvMapProjection::AddMapProjection(NewGrid("Grid " + std::to_string(k)));
            ++i;
        } else if (step == "ellipsoid" && arg != nullptr) {
            CKvMapProjection::AddEllipsoid(new CKvEllipsoid("Site ellipsoid", arg, 6378000.5, 300.25));
            ++i;
        } else if (step == "lookup" && arg != nullptr) {
            // What a host does to describe a system: the definition, then its WKT record.
            if (CKvMapProjData* definition = CKvMapProjection::MapProjection(arg))
                CKvPRJParser parser(definition);
            ++i;
        } else if (step == "delete" && arg != nullptr) {
            CKvMapProjection::DeleteMapProjection(setup->GetMapProjectionList().GetMapProjection(arg));
            ++i;
        } else if (step == "branch" && arg != nullptr && i + 2 < argc) {
            if (CKvMapProjData* definition = setup->GetMapProjectionList().GetMapProjection(arg)) {
                definition->SetBranchName(argv[i + 2]);
                setup->SetMapProjectionListModified();
            }
            i += 2;
        } else if (step == "delete-ellipsoid" && arg != nullptr) {
            CKvEllipsoidList& ellipsoids = setup->GetEllipsoidList();
            for (auto it = ellipsoids.GetIteratorBegin(CKvEllipsoidList::eCustom);
                 it != ellipsoids.GetIteratorEnd(CKvEllipsoidList::eCustom); ++it)
                if ((*it)->GetID() == arg) {
                    CKvMapProjection::DeleteEllipsoid(*it);
                    break;
                }
            ++i;
        } else if (step == "list") {
            for (auto it = setup->GetMapProjectionList().GetIteratorBegin();
                 it != setup->GetMapProjectionList().GetIteratorEnd(); ++it)
                if ((*it)->CanDelete())
                    std::printf("projection %s\n", (*it)->GetName().c_str());
            for (auto it = setup->GetEllipsoidList().GetIteratorBegin(CKvEllipsoidList::eCustom);
                 it != setup->GetEllipsoidList().GetIteratorEnd(CKvEllipsoidList::eCustom); ++it)
                std::printf("ellipsoid %s %.17g %.17g\n", (*it)->GetID().c_str(), (*it)->GetMajor(),
                            (*it)->GetInvFlatness());
        } else if (step == "errors") {
            int status = 0;
            char small[1];
            CARTGETERRORLINUX(small, 0, &status);
            std::vector<char> text(static_cast<size_t>(status) + 1, '\0');
            if (status > 0)
                CARTGETERRORLINUX(text.data(), status, &status);
            std::printf("%s", text.data());
        } else if (step == "writeback") {
            std::printf("writeback %d\n", CARTWRITEBACKLINUX());
        } else if (step == "barrier" && arg != nullptr) {
            const std::string dir = arg;
            const std::string ready = dir + "/ready." + std::to_string(getpid());
            const int fd = ::open(ready.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
            if (fd < 0)
                return 4;
            ::close(fd);
            while (::access((dir + "/start").c_str(), F_OK) != 0)
                ::usleep(200);
            ++i;
        } else {
            return 2;
        }
    }
    std::fflush(stdout);
    return 0;
}
