#include "interface/KvCart.h"

#include "catalogue/KvCartSetup.h"

#include <cstring>
#include <string>

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
    const std::string text = CKvCartSetup::Instance()->GetLastError();
    const long long len = static_cast<long long>(text.size());
    // The string rule of the interface: len > size reports the length; a buffer
    // holds size + 1 bytes.
    if (len > size) {
        *status = static_cast<int>(len);
        return;
    }
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    *status = 0;
}
