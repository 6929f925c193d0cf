#include "interface/KvCart.h"

#include "catalogue/KvCartSetup.h"

extern "C" void CARTSETUPLINUX(const char* systemDirectory, const char* userDirectory)
{
    CKvCartSetup::Instance()->ReadData(systemDirectory != nullptr ? systemDirectory : "",
                                       userDirectory != nullptr ? userDirectory : "");
}
