// libFuzzer target: arbitrary bytes as the user's two catalogue files.
// The bytes go through the parameter-file reader, then the catalogue's load path
// (both custom files in a user directory), a transform through every definition
// that loaded, and the write-back. Beyond the sanitizers' findings it checks the
// catalogue's promise: a file that did not load cleanly is left byte for byte as
// it was, and a file that is written back reads again.
#include "catalogue/KvEllipsoidList.h"
#include "catalogue/KvMapProjectionList.h"
#include "interface/KvCart.h"
#include "paramfile/Gxr.h"
#include "projections/KvProjection.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <unistd.h>

namespace {

std::string g_dir;

void WriteFile(const std::string& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

std::string ReadFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void Check(bool condition, const char* what)
{
    if (!condition) {
        std::fprintf(stderr, "catalogue promise broken: %s\n", what);
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    char pattern[] = "/dev/shm/kvcart-fuzz-XXXXXX";
    const char* made = mkdtemp(pattern);
    if (made == nullptr) {
        char fallback[] = "/tmp/kvcart-fuzz-XXXXXX";
        made = mkdtemp(fallback);
    }
    g_dir = std::string(made) + "/";
    // The process-wide catalogue holds the shipped ellipsoids that engines look up.
    CARTSETUPLINUX(KVCART_SHIPPED_DATA_DIR, (g_dir + "setup-user/").c_str());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    GxrFile* parsed = gxrLoadText("fuzz.gxr", text.c_str());
    // A NUL byte ends the text for the reader of a C string, not for the file reader.
    const bool malformed = parsed == nullptr || text.find('\0') != std::string::npos;
    gxrClose(parsed);
    gxrGetErrorGlb();

    const std::string ellipsoids = g_dir + "custom_ellipsoid.gxr";
    const std::string projections = g_dir + "custom_projection.gxr";
    WriteFile(ellipsoids, text);
    WriteFile(projections, text);
    {
        CKvEllipsoidList ellipsoidList;
        ellipsoidList.ReadEllipsoids(ellipsoids, true);
        ellipsoidList.GenerateCompleteList();
        CKvMapProjectionList projectionList;
        projectionList.InitMapProjections(g_dir + "no-system/", g_dir);

        for (auto it = projectionList.GetIteratorBegin(); it != projectionList.GetIteratorEnd(); ++it) {
            if (!(*it)->CanDelete())
                continue;
            std::unique_ptr<CKvProjection> engine((*it)->CreateProjection());
            if (engine == nullptr)
                continue;
            double x = 0, y = 0, lon = 0, lat = 0;
            engine->Geo2Proj(10.0, 50.0, &x, &y);
            engine->Proj2Geo(x, y, &lon, &lat);
            engine->GetConvergence(179.5, -89.0);
            engine->GetDefaultArea(&x, &y, &lon, &lat);
        }

        // An addition of this session, then the write-back of both files.
        ellipsoidList.AddEllipsoid(new CKvEllipsoid("Fuzz", "FZ", 6378000.0, 300.0));
        std::string message;
        ellipsoidList.WriteBackCustom(ellipsoids, message);
        projectionList.WriteBackCustom(projections, message);

        // A malformed file is untouched; a file that was written back reads again.
        for (const std::string& path : {ellipsoids, projections}) {
            const std::string now = ReadFile(path);
            if (malformed)
                Check(now == text, "a malformed catalogue was written over");
            if (now != text) {
                GxrFile* again = gxrLoadFile(path.c_str());
                Check(again != nullptr, "a written catalogue does not read back");
                gxrClose(again);
            }
        }
    }
    unlink(ellipsoids.c_str());
    unlink(projections.c_str());
    unlink((g_dir + "custom_ellipsoid.unsaved.gxr").c_str());
    unlink((g_dir + "custom_projection.unsaved.gxr").c_str());
    return 0;
}
