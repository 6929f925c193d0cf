#ifndef KVCART_GEODESY_KVDATUMSHIFT_H
#define KVCART_GEODESY_KVDATUMSHIFT_H

#include "geodesy/KvCartDef.h"

// The shift from a datum to WGS 84: dx, dy, dz in metres, rx, ry, rz in
// arc-seconds, scale correction in parts per million, stored exactly as given.
// The type (none, 3 or 7 parameters) is decided from the values.
class CKvDatumShift : public CKvCartDef
{
public:
    static constexpr int NoOfParameters = 7;

    CKvDatumShift();
    explicit CKvDatumShift(const double* parameters);
    CKvDatumShift(const CKvDatumShift& other);
    CKvDatumShift& operator=(const CKvDatumShift& other);
    ~CKvDatumShift() override;

    void Reset();
    // Copies seven values (a 3-parameter set passes zeros at 3..6) and decides the type.
    void SetParameters(const double* parameters);
    double* GetParameters() { return m_parameters; }
    const double* GetParameters() const { return m_parameters; }
    ETypeOfDatumShift GetType() const { return m_type; }
    const char* GetTypeAsText() const;
    static const char* TypeAsText(int type);

    // No bounds check, as for a plain array.
    double& operator[](long index) { return m_parameters[index]; }
    const double& operator[](long index) const { return m_parameters[index]; }

    bool operator==(const CKvDatumShift& other) const;
    bool operator!=(const CKvDatumShift& other) const { return !(*this == other); }

protected:
    void _copy(const CKvDatumShift& other);

private:
    ETypeOfDatumShift m_type;
    double m_parameters[NoOfParameters];
};

#endif
