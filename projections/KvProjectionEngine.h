#ifndef KVCART_PROJECTIONS_KVPROJECTIONENGINE_H
#define KVCART_PROJECTIONS_KVPROJECTIONENGINE_H

#include "catalogue/KvMapProjData.h"
#include "coordsys/KvMapProjection.h"
#include "projections/KvBatch.h"
#include "projections/KvProjection.h"

// What every engine built for a named coordinate system has in common: its name
// in a fixed array (so GetName() stays valid as long as the engine lives) and
// the numbers of its ellipsoid, copied by value at construction so that the
// engine never refers back to the catalogue.
class CKvProjectionEngine : public CKvProjection
{
public:
    static constexpr int NameSize = 256;

    const char* GetName() const override { return m_szName; }
    // Sets the figure when the engine has one (semi-major axis > 0).
    bool GetAnonymousEllipsoid(CKvEllipsoid& ellipsoid) const override;
    // The catalogue ellipsoid of the projection that bears this engine's name.
    bool GetEllipsoid(CKvEllipsoid& ellipsoid) const;

protected:
    // The name is copied with truncation at NameSize - 1 characters.
    CKvProjectionEngine(const char* name, const CKvEllipsoid& ellipsoid);
    // Name and ellipsoid of a definition. An unknown or empty ellipsoid
    // identifier leaves every ellipsoid number at 0, without a report.
    explicit CKvProjectionEngine(const CKvMapProjData& definition);

    double _a() const { return m_dA; }
    double _invF() const { return m_dInvF; }
    double _e() const { return m_dE; }
    double _e2() const { return m_dE2; }
    double _f() const { return m_dInvF > 0.0 ? 1.0 / m_dInvF : 0.0; }
    double _b() const { return m_dInvF > 0.0 ? m_dA * (m_dInvF - 1.0) / m_dInvF : m_dA; }
    void _setName(const char* name);

    // Grid convergence measured on the map: the direction of a step of one minute
    // of latitude northwards from the point, in degrees from grid north.
    double _numericConvergence(double lon, double lat) const;
    // The projected box of 3 degrees on each side of (lon, lat), latitudes clamped
    // at the poles and, when clampLongitude, longitudes at +-180.
    void _boxAround(double lon, double lat, bool clampLongitude, double* x1, double* y1, double* x2, double* y2) const;

private:
    void _setEllipsoid(const CKvEllipsoid& ellipsoid);

    char m_szName[NameSize];
    double m_dA;    // semi-major axis, 0 when the ellipsoid is unknown
    double m_dInvF; // inverse flattening, 0 for a sphere
    double m_dE;    // first eccentricity
    double m_dE2;   // e * e
};

// The rest of the pattern, for an engine class and its definition class:
// cloning, finding the catalogue definition of the engine's name, and describing
// the engine to the WKT record from that definition.
template <class TEngine, class TDefinition> class CKvEngine : public CKvProjectionEngine
{
public:
    CKvProjection* Clone() const override { return new TEngine(static_cast<const TEngine&>(*this)); }

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    // The batch loop of the engine class itself: the qualified calls bind the
    // engine's own formulas statically, with no virtual call per point.
    void Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat, std::size_t latStride,
                  double* x, std::size_t xStride, double* y, std::size_t yStride) const override
    {
        CKvBatch::Forward(static_cast<const TEngine&>(*this), n, lon, lonStride, lat, latStride, x, xStride, y, yStride);
    }
    void Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y, std::size_t yStride,
                  double* lon, std::size_t lonStride, double* lat, std::size_t latStride) const override
    {
        CKvBatch::Inverse(static_cast<const TEngine&>(*this), n, x, xStride, y, yStride, lon, lonStride, lat, latStride);
    }

    // Copies the catalogue definition of the engine's name into definition;
    // false, leaving it untouched, when there is none of this definition class.
    // The look-up only reads the catalogue: describing a system must neither mark
    // the user's catalogue for writing back nor write shared state that other
    // threads read.
    bool GetMapProjection(TDefinition& definition) const
    {
        const TDefinition* found =
            dynamic_cast<const TDefinition*>(CKvMapProjection::FindMapProjectionDefinition(GetName()));
        if (found == nullptr)
            return false;
        definition.CopyFieldsFrom(*found);
        return true;
    }

    void TransferParameters(CKvPRJParser& parser) const override
    {
        TDefinition definition;
        GetMapProjection(definition);
        CKvEllipsoid ellipsoid;
        const bool found = GetEllipsoid(ellipsoid);
        definition.TransferWith(parser, ellipsoid, found, true);
    }

protected:
    using CKvProjectionEngine::CKvProjectionEngine;
};

#endif
