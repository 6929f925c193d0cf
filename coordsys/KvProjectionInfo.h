#ifndef KVCART_COORDSYS_KVPROJECTIONINFO_H
#define KVCART_COORDSYS_KVPROJECTIONINFO_H

#include "geodesy/KvDatumShift.h"

#include <utility>

class CKvPRJParser;

// What a coordinate-system string says besides its projection: the linear and
// angular units, the datum shift to WGS 84 and the two axes. The engines always
// work in easting/northing order with positive axes; Convert turns their output
// into the order and signs the WKT declares, InvConvert the other way. The
// units are reported, not applied: the engines already work in metres.
class CKvProjectionInfo
{
public:
    static constexpr double Undefined = -1.0e-35; // a unit factor not given

    class CAxis
    {
    public:
        enum EType
        {
            eEast = 0,
            eNorth = 1,
            eWest = 2,
            eSouth = 3
        };
        static constexpr int NameSize = 32;

        CAxis();
        CAxis(EType type, const char* name);
        CAxis(const CAxis& other);
        CAxis& operator=(const CAxis& other);
        virtual ~CAxis() = default;

        // The sign follows the type (+1 east/north, -1 west/south); a type out
        // of range keeps the sign as it was. The name is truncated to fit.
        void SetProperties(EType type, const char* name);
        // "EAST", "NORTH", "WEST", "SOUTH" in any letter case; anything else is east.
        EType StringToType(const char* word) const;
        EType GetType() const { return m_type; }
        double GetSign() const { return m_sign; }
        const char* GetName() const { return m_name; }

    protected:
        void _copy(const CAxis& other);

    private:
        EType m_type;
        double m_sign;
        char m_name[NameSize];
    };

    static constexpr int UnitNameSize = 64;

    CKvProjectionInfo();
    CKvProjectionInfo(const CKvProjectionInfo& other);
    CKvProjectionInfo& operator=(const CKvProjectionInfo& other);
    virtual ~CKvProjectionInfo() = default;

    // Units, datum name and shift and axes from a parsed WKT record.
    void SetProjectionInfo(const CKvPRJParser& parser);
    // name: at least UnitNameSize bytes. True when the unit is given.
    bool GetProjUnit(double* factor, char* name) const;
    bool GetAngularUnit(double* factor, char* name) const;
    void GetDatumShift(CKvDatumShift& shift) const { shift = m_datumShift; }
    // Sets the shift; known tells whether it is the datum's shift to WGS 84
    // (a shift of zero included) or no shift is known for the datum.
    void SetDatumShift(const CKvDatumShift& shift)
    {
        SetDatumShift(shift, shift.GetType() != CKvCartDef::eNoDatumShift);
    }
    void SetDatumShift(const CKvDatumShift& shift, bool known)
    {
        m_datumShift = shift;
        m_datumShiftKnown = known;
    }
    // Whether the shift to WGS 84 is known. A WKT that gives a TOWGS84 node,
    // or a catalogue definition with a TOWGS84 keyword, knows it even when it
    // is zero (a datum that coincides with WGS 84, as NAD83 and ETRS89 do at
    // their transformations' accuracy); SetProjectionInfo can only tell a
    // shift that is not zero, the caller who has the text says the rest.
    bool IsDatumShiftKnown() const { return m_datumShiftKnown; }
    void SetDatumShiftKnown(bool known) { m_datumShiftKnown = known; }
    // The datum's name: the WKT's DATUM, a catalogue definition's branch; ""
    // for a system without one. Truncated to DatumNameSize - 1 bytes.
    static constexpr int DatumNameSize = 128;
    const char* GetDatumName() const { return m_datumName; }
    void SetDatumName(const char* name);
    void GetAxisTypes(CAxis::EType& first, CAxis::EType& second) const;
    // Engine output to the caller's axes, and back. Only the first axis decides
    // whether the two coordinates change places.
    // Inline: they run once per transformed point.
    void Convert(double& x, double& y) const
    {
        x *= m_firstAxis.GetSign();
        y *= m_secondAxis.GetSign();
        if (_firstIsVertical())
            std::swap(x, y);
    }
    void InvConvert(double& x, double& y) const
    {
        if (_firstIsVertical())
            std::swap(x, y);
        x *= m_firstAxis.GetSign();
        y *= m_secondAxis.GetSign();
    }
    // True when Convert and InvConvert change nothing (easting, northing, both positive).
    bool KeepsEngineAxes() const;

protected:
    void _copy(const CKvProjectionInfo& other);
    bool _firstIsVertical() const
    {
        return m_firstAxis.GetType() == CAxis::eNorth || m_firstAxis.GetType() == CAxis::eSouth;
    }

private:
    double m_projUnit;
    double m_angularUnit;
    char m_projUnitName[UnitNameSize];
    char m_angularUnitName[UnitNameSize];
    CKvDatumShift m_datumShift;
    bool m_datumShiftKnown;
    char m_datumName[DatumNameSize];
    CAxis m_firstAxis;
    CAxis m_secondAxis;
};

#endif
