#ifndef KVCART_PROJECTIONS_KVPROJECTIONENGINE_H
#define KVCART_PROJECTIONS_KVPROJECTIONENGINE_H

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

protected:
    // The name is copied with truncation at NameSize - 1 characters.
    CKvProjectionEngine(const char* name, const CKvEllipsoid& ellipsoid);

    double _a() const { return m_dA; }
    double _invF() const { return m_dInvF; }
    double _e() const { return m_dE; }
    double _e2() const { return m_dE2; }

private:
    char m_szName[NameSize];
    double m_dA;    // semi-major axis, 0 when the ellipsoid is unknown
    double m_dInvF; // inverse flattening, 0 for a sphere
    double m_dE;    // first eccentricity
    double m_dE2;   // e * e
};

// The clone operation of the pattern: a member-for-member copy of the engine.
template <class TEngine>
class CKvEngine : public CKvProjectionEngine
{
public:
    CKvProjection* Clone() const override { return new TEngine(static_cast<const TEngine&>(*this)); }

protected:
    using CKvProjectionEngine::CKvProjectionEngine;
};

#endif
