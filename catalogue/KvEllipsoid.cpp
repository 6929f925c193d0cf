#include "catalogue/KvEllipsoid.h"

#include "catalogue/KvFloatCompareRel.h"

#include <cmath>

CKvEllipsoid::CKvEllipsoid() : m_semiMajorAxis(1.0), m_inverseFlattening(1.0) {}

CKvEllipsoid::CKvEllipsoid(const std::string& name, const std::string& id, double semiMajorAxis,
                           double inverseFlattening)
    : m_name(name), m_id(id), m_semiMajorAxis(semiMajorAxis), m_inverseFlattening(inverseFlattening)
{
}

CKvEllipsoid::CKvEllipsoid(const CKvEllipsoid& other)
{
    _copy(other);
}

CKvEllipsoid& CKvEllipsoid::operator=(const CKvEllipsoid& other)
{
    if (this != &other)
        _copy(other);
    return *this;
}

CKvEllipsoid::~CKvEllipsoid() = default;

void CKvEllipsoid::_copy(const CKvEllipsoid& other)
{
    m_name = other.m_name;
    m_id = other.m_id;
    m_semiMajorAxis = other.m_semiMajorAxis;
    m_inverseFlattening = other.m_inverseFlattening;
}

double CKvEllipsoid::GetFlatness() const
{
    return m_inverseFlattening > 0.0 ? 1.0 / m_inverseFlattening : 0.0;
}

double CKvEllipsoid::GetMinor() const
{
    if (m_inverseFlattening > 0.0)
        return m_semiMajorAxis * (m_inverseFlattening - 1.0) / m_inverseFlattening;
    return m_semiMajorAxis;
}

double CKvEllipsoid::GetEccentricity() const
{
    const double a = GetMajor();
    const double b = GetMinor();
    return std::sqrt((a * a - b * b) / (a * a));
}

void CKvEllipsoid::SetParams(double semiMajorAxis, double inverseFlattening)
{
    m_semiMajorAxis = semiMajorAxis;
    m_inverseFlattening = inverseFlattening;
}

bool CKvEllipsoid::operator==(const CKvEllipsoid& other) const
{
    if (this == &other)
        return true;
    if (m_name != other.m_name || m_id != other.m_id)
        return false;
    return IsEquivalent(other);
}

bool CKvEllipsoid::IsEquivalent(const CKvEllipsoid& other) const
{
    if (this == &other)
        return true;
    return CKvFloatCompareRel::Close(m_semiMajorAxis, other.m_semiMajorAxis) &&
           CKvFloatCompareRel::Close(m_inverseFlattening, other.m_inverseFlattening);
}
