#ifndef KVCART_PROJECTIONS_KVPROJINTERFACE_H
#define KVCART_PROJECTIONS_KVPROJINTERFACE_H

#include "catalogue/KvEllipsoid.h"

// The inner interface behind which an engine keeps its sphere and ellipsoid
// variants; the owning engine picks one at construction and forwards to it.
class CKvProjInterface
{
public:
    virtual ~CKvProjInterface() = default;
    virtual void Geo2Proj(double lon, double lat, double* x, double* y) const = 0;
    virtual void Proj2Geo(double x, double y, double* lon, double* lat) const = 0;
    virtual void GetOrigin(double* x, double* y) const = 0;
    virtual void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const = 0;
    virtual bool GetAnonymousEllipsoid(CKvEllipsoid& ellipsoid) const = 0;
};

#endif
