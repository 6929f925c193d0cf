#ifndef KVCART_CATALOGUE_KVELLIPSOID_H
#define KVCART_CATALOGUE_KVELLIPSOID_H

#include <string>

// A reference ellipsoid (or a sphere): name, identification code, semi-major
// axis and inverse flattening. An inverse flattening not greater than 0 means a
// sphere. Derived quantities are computed on every call.
class CKvEllipsoid
{
public:
    // Deliberately a = 1 and 1/f = 1, not a sphere: minor axis 0, eccentricity 1.
    CKvEllipsoid();
    CKvEllipsoid(const std::string& name, const std::string& id, double semiMajorAxis, double inverseFlattening);
    CKvEllipsoid(const CKvEllipsoid& other);
    CKvEllipsoid& operator=(const CKvEllipsoid& other);
    virtual ~CKvEllipsoid();

    std::string GetName() const { return m_name; }
    std::string GetID() const { return m_id; }
    double GetMajor() const { return m_semiMajorAxis; }
    double GetInvFlatness() const { return m_inverseFlattening; }
    double GetFlatness() const;
    double GetMinor() const;
    double GetEccentricity() const;

    void SetParams(double semiMajorAxis, double inverseFlattening);

    // Same name and ID byte for byte, and a figure close to a relative 1e-12.
    bool operator==(const CKvEllipsoid& other) const;
    // The same figure, whatever the name and ID.
    bool IsEquivalent(const CKvEllipsoid& other) const;

protected:
    void _copy(const CKvEllipsoid& other);

private:
    std::string m_name;
    std::string m_id;
    double m_semiMajorAxis;
    double m_inverseFlattening;
};

#endif
