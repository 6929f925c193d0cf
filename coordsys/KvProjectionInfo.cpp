#include "coordsys/KvProjectionInfo.h"

#include "wkt/KvPRJParser.h"

#include <cstring>
#include <strings.h>
#include <utility>

CKvProjectionInfo::CAxis::CAxis() : m_type(eEast), m_sign(1.0), m_name{}
{
    SetProperties(eEast, "");
}

CKvProjectionInfo::CAxis::CAxis(EType type, const char* name) : m_type(eEast), m_sign(1.0), m_name{}
{
    SetProperties(type, name);
}

CKvProjectionInfo::CAxis::CAxis(const CAxis& other)
{
    _copy(other);
}

CKvProjectionInfo::CAxis& CKvProjectionInfo::CAxis::operator=(const CAxis& other)
{
    if (this != &other)
        _copy(other);
    return *this;
}

void CKvProjectionInfo::CAxis::_copy(const CAxis& other)
{
    m_type = other.m_type;
    m_sign = other.m_sign;
    std::memcpy(m_name, other.m_name, sizeof m_name);
}

void CKvProjectionInfo::CAxis::SetProperties(EType type, const char* name)
{
    m_type = type;
    if (type == eEast || type == eNorth)
        m_sign = 1.0;
    else if (type == eWest || type == eSouth)
        m_sign = -1.0;
    CString::CopyBounded(m_name, sizeof m_name, name);
}

CKvProjectionInfo::CAxis::EType CKvProjectionInfo::CAxis::StringToType(const char* word) const
{
    static const char* const kWords[] = {"EAST", "NORTH", "WEST", "SOUTH"};
    for (int i = 0; i < 4; ++i)
        if (word != nullptr && strcasecmp(word, kWords[i]) == 0)
            return static_cast<EType>(i);
    return eEast;
}

CKvProjectionInfo::CKvProjectionInfo()
    : m_projUnit(Undefined), m_angularUnit(Undefined), m_projUnitName{}, m_angularUnitName{},
      m_datumShiftKnown(false), m_datumName{}, m_firstAxis(CAxis::eEast, "Easting"),
      m_secondAxis(CAxis::eNorth, "Northing")
{
}

CKvProjectionInfo::CKvProjectionInfo(const CKvProjectionInfo& other)
{
    _copy(other);
}

CKvProjectionInfo& CKvProjectionInfo::operator=(const CKvProjectionInfo& other)
{
    if (this != &other)
        _copy(other);
    return *this;
}

void CKvProjectionInfo::_copy(const CKvProjectionInfo& other)
{
    m_projUnit = other.m_projUnit;
    m_angularUnit = other.m_angularUnit;
    std::memcpy(m_projUnitName, other.m_projUnitName, sizeof m_projUnitName);
    std::memcpy(m_angularUnitName, other.m_angularUnitName, sizeof m_angularUnitName);
    m_datumShift = other.m_datumShift;
    m_datumShiftKnown = other.m_datumShiftKnown;
    std::memcpy(m_datumName, other.m_datumName, sizeof m_datumName);
    m_firstAxis = other.m_firstAxis;
    m_secondAxis = other.m_secondAxis;
}

void CKvProjectionInfo::SetProjectionInfo(const CKvPRJParser& parser)
{
    CString name;
    parser.GetProjUnit(name, m_projUnit);
    CString::CopyBounded(m_projUnitName, sizeof m_projUnitName, name);
    parser.GetAngularUnit(name, m_angularUnit);
    CString::CopyBounded(m_angularUnitName, sizeof m_angularUnitName, name);
    parser.GetDatumShift(m_datumShift);
    m_datumShiftKnown = m_datumShift.GetType() != CKvCartDef::eNoDatumShift;
    CString::CopyBounded(m_datumName, sizeof m_datumName, parser.GetDatum());
    CString direction;
    parser.GetAxisInfo(CKvPRJParser::eFirstAxis, name, direction);
    m_firstAxis.SetProperties(m_firstAxis.StringToType(direction), name);
    parser.GetAxisInfo(CKvPRJParser::eSecondAxis, name, direction);
    m_secondAxis.SetProperties(m_secondAxis.StringToType(direction), name);
}

void CKvProjectionInfo::SetDatumName(const char* name)
{
    CString::CopyBounded(m_datumName, sizeof m_datumName, name != nullptr ? name : "");
}

bool CKvProjectionInfo::GetProjUnit(double* factor, char* name) const
{
    *factor = m_projUnit;
    std::memcpy(name, m_projUnitName, std::strlen(m_projUnitName) + 1);
    return m_projUnit != Undefined;
}

bool CKvProjectionInfo::GetAngularUnit(double* factor, char* name) const
{
    *factor = m_angularUnit;
    std::memcpy(name, m_angularUnitName, std::strlen(m_angularUnitName) + 1);
    return m_angularUnit != Undefined;
}

void CKvProjectionInfo::GetAxisTypes(CAxis::EType& first, CAxis::EType& second) const
{
    first = m_firstAxis.GetType();
    second = m_secondAxis.GetType();
}

bool CKvProjectionInfo::KeepsEngineAxes() const
{
    return m_firstAxis.GetSign() == 1.0 && m_secondAxis.GetSign() == 1.0 && !_firstIsVertical();
}
