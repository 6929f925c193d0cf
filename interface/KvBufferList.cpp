#include "interface/KvBufferList.h"

#include "coordsys/KvMapProjection.h"
#include "wkt/KvPRJParser.h"

CKvBufferList::iterator CKvBufferList::FindMapProjection(const char* text)
{
    const CString wanted = CKvPRJParser::ShortName(CString(text != nullptr ? text : ""));
    for (iterator it = begin(); it != end(); ++it)
        if (CKvPRJParser::ShortName(*it) == wanted)
            return it;
    return end();
}

void CKvBufferList::TruncateToSize(int typeMask, int n)
{
    int count = 0;
    for (iterator it = begin(); it != end(); ++it) {
        if (!CKvMapProjection::IsType(typeMask, it->GetString()))
            continue;
        if (++count >= n) {
            erase(std::next(it), end());
            return;
        }
    }
}
