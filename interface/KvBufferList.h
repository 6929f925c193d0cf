#ifndef KVCART_INTERFACE_KVBUFFERLIST_H
#define KVCART_INTERFACE_KVBUFFERLIST_H

#include "paramfile/String.h"

#include <list>

// A list of coordinate-system strings for host programs, such as a most
// recently used list.
class CKvBufferList : public std::list<CString>
{
public:
    virtual ~CKvBufferList() = default;

    // The first entry whose short name (the system's name in WKT, else the text)
    // equals that of text, byte for byte; end() when none does.
    iterator FindMapProjection(const char* text);
    // Keeps the entries up to the n-th one of the type mask (the first one for
    // n <= 0) and removes all after it; nothing when fewer match.
    void TruncateToSize(int typeMask, int n);
};

#endif
