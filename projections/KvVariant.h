#ifndef KVCART_PROJECTIONS_KVVARIANT_H
#define KVCART_PROJECTIONS_KVVARIANT_H

#include "projections/KvProjInterface.h"

// A sphere or ellipsoid variant that an engine owns: the inner interface, and a
// copy for the engine's Clone.
class CKvVariant : public CKvProjInterface
{
public:
    virtual CKvVariant* Clone() const = 0;
};

#endif
