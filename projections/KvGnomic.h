#ifndef KVCART_PROJECTIONS_KVGNOMIC_H
#define KVCART_PROJECTIONS_KVGNOMIC_H

#include "projections/KvProjection.h"

// The gnomonic method is declared but not available: constructing the engine or
// using it ends the process with a message. No definition creates it, and it
// stays abstract (no Clone).
class CKvGnomic : public CKvProjection
{
public:
    CKvGnomic();

    const char* GetName() const override { return "Gnomic"; }
    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
};

#endif
