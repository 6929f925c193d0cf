#include "interface/KvCart.h"

#include "catalogue/KvCartSetup.h"
#include "wkt/KvProjTranslator.h"

#include <cstring>
#include <string>

namespace {

// The string rule of the interface: when the length len exceeds size, *status =
// len and the buffer is not touched; otherwise the text and its terminator are
// copied (the buffer holds size + 1 bytes) and *status = 0.
void CopyResult(const std::string& text, char* buffer, int size, int* status)
{
    const long long len = static_cast<long long>(text.size());
    if (len > size || buffer == nullptr) {
        *status = static_cast<int>(len);
        return;
    }
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    *status = 0;
}

} // namespace

extern "C" void CARTSETUPLINUX(const char* systemDirectory, const char* userDirectory)
{
    CKvCartSetup::Instance()->ReadData(systemDirectory != nullptr ? systemDirectory : "",
                                       userDirectory != nullptr ? userDirectory : "");
}

extern "C" int CARTWRITEBACKLINUX(void)
{
    return CKvCartSetup::Instance()->WriteBack() ? 0 : -1;
}

extern "C" void CARTGETERRORLINUX(char* buffer, int size, int* status)
{
    CopyResult(CKvCartSetup::Instance()->GetLastError(), buffer, size, status);
}

extern "C" void C_KVC_CONVERT2PROJ4(const char* text, double* datumShift, int count, char* buffer, int size,
                                    int* status)
{
    // No exception may cross the C boundary.
    try {
        CopyResult(CKvProjTranslator().Convert2Proj4(text != nullptr ? text : "", datumShift, count), buffer, size,
                   status);
    } catch (...) {
        *status = -1;
    }
}
