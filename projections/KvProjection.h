#ifndef KVCART_PROJECTIONS_KVPROJECTION_H
#define KVCART_PROJECTIONS_KVPROJECTION_H

#include "catalogue/KvEllipsoid.h"

#include <cstddef>

class CKvPRJParser;

// The interface of every projection engine. Geographic coordinates cross it in
// decimal degrees, longitude first; projected coordinates are in the unit of the
// ellipsoid's semi-major axis (metres). Engines are immutable after
// construction, so one engine may serve any number of threads at once.
class CKvProjection
{
public:
    virtual ~CKvProjection();

    virtual const char* GetName() const = 0;
    virtual void Geo2Proj(double lon, double lat, double* x, double* y) const = 0;
    virtual void Proj2Geo(double x, double y, double* lon, double* lat) const = 0;
    // n points at once, with the same rules and the same results as n single
    // calls. Each array has its own stride in bytes (as PROJ's proj_trans_generic);
    // the outputs may be the inputs (in-place). The default runs the single-point
    // calls; engines replace it with a loop over their own formulas.
    virtual void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat,
                          std::size_t latStride, double* x, std::size_t xStride, double* y, std::size_t yStride) const;
    virtual void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                          double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const;
    // Contiguous arrays.
    void Geo2Proj(std::size_t n, const double* lon, const double* lat, double* x, double* y) const
    {
        Geo2Proj(n, lon, sizeof(double), lat, sizeof(double), x, sizeof(double), y, sizeof(double));
    }
    void Proj2Geo(std::size_t n, const double* x, const double* y, double* lon, double* lat) const
    {
        Proj2Geo(n, x, sizeof(double), y, sizeof(double), lon, sizeof(double), lat, sizeof(double));
    }
    // Defaults: origin (0, 0), convergence 0, area (0, 0, 0, 0), neither local nor
    // geographical, no derived parameters, no anonymous ellipsoid.
    virtual void GetOrigin(double* x, double* y) const;
    virtual double GetConvergence(double lon, double lat) const;
    // (x1, y1) the lower-left corner, (x2, y2) the upper-right one.
    virtual void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const;
    virtual bool IsLocal() const;
    virtual bool IsGeographical() const;
    // Destroys and deallocates the engine.
    virtual void free();
    virtual void GetDerivedParameters(double* values) const;
    virtual bool GetAnonymousEllipsoid(CKvEllipsoid& ellipsoid) const;
    // A new engine of the same class with every member copied; the caller owns it.
    virtual CKvProjection* Clone() const = 0;
    // Describes the engine to the WKT record: names, ellipsoid, type, parameters.
    virtual void TransferParameters(CKvPRJParser& parser) const = 0;

    // Releases an engine the way free() does, and does nothing for a null one.
    static void Release(CKvProjection* engine);
};

#endif
