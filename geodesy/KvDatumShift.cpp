#include "geodesy/KvDatumShift.h"

#include "catalogue/KvFloatCompareRel.h"

CKvDatumShift::CKvDatumShift()
{
    Reset();
}

CKvDatumShift::CKvDatumShift(const double* parameters)
{
    SetParameters(parameters);
}

CKvDatumShift::CKvDatumShift(const CKvDatumShift& other) : CKvCartDef(other)
{
    _copy(other);
}

CKvDatumShift& CKvDatumShift::operator=(const CKvDatumShift& other)
{
    if (this != &other)
        _copy(other);
    return *this;
}

CKvDatumShift::~CKvDatumShift() = default;

void CKvDatumShift::_copy(const CKvDatumShift& other)
{
    m_type = other.m_type;
    for (int i = 0; i < NoOfParameters; ++i)
        m_parameters[i] = other.m_parameters[i];
}

void CKvDatumShift::Reset()
{
    m_type = eNoDatumShift;
    for (double& p : m_parameters)
        p = 0.0;
}

void CKvDatumShift::SetParameters(const double* parameters)
{
    // A translation makes a 3-parameter set, any rotation or scale a 7-parameter
    // one, even without translation. NaN counts as zero: NotEqual is false for it.
    m_type = eNoDatumShift;
    for (int i = 0; i < NoOfParameters; ++i) {
        m_parameters[i] = parameters[i];
        if (CKvFloatCompareRel::NotEqual(parameters[i], 0.0, CKvFloatCompareRel::DefaultTolerance))
            m_type = i < 3 ? (m_type == eSevenParameters ? eSevenParameters : eThreeParameters) : eSevenParameters;
    }
}

const char* CKvDatumShift::TypeAsText(int type)
{
    switch (type) {
    case eNoDatumShift: return "None";
    case eThreeParameters: return "3 parameter";
    case eSevenParameters: return "7 parameter";
    default: return "";
    }
}

const char* CKvDatumShift::GetTypeAsText() const
{
    return TypeAsText(m_type);
}

bool CKvDatumShift::operator==(const CKvDatumShift& other) const
{
    if (this == &other)
        return true;
    if (m_type != other.m_type)
        return false;
    int compared = 0;
    if (m_type == eThreeParameters)
        compared = 3;
    else if (m_type == eSevenParameters)
        compared = NoOfParameters;
    for (int i = 0; i < compared; ++i)
        if (!CKvFloatCompareRel::Close(m_parameters[i], other.m_parameters[i]))
            return false;
    return true;
}
