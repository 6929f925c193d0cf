#ifndef KVCART_GEODESY_KVDATUMCONVERTER_H
#define KVCART_GEODESY_KVDATUMCONVERTER_H

#include "geodesy/KvCartDef.h"
#include "geodesy/KvDatumShift.h"

#include <cstddef>

class CKvMapProjection;

// Converts coordinates from a source coordinate system to a target system on
// possibly another datum: through geographical and, unless both share a datum,
// geocentric coordinates, with the source's shift to WGS 84 and the inverse of
// the target's. The shifts are the small-angle Helmert transformation in its
// position-vector form (EPSG method 9606); the inverse uses the transposed
// rotation, so forward and inverse agree to first order in the rotations.
class CKvDatumConverter : public CKvCartDef
{
public:
    enum ETypeOfConversion
    {
        eProjToProj = 0, // source x/y to target x/y
        eProjToGeo = 1,  // source x/y to target lon/lat
        eGeoToProj = 2,  // source lon/lat to target x/y
        eGeoToGeo = 3    // source lon/lat to target lon/lat
    };

    // Builds and owns the two systems; the constructor of a system throws
    // std::out_of_range for the generic name "UTM".
    CKvDatumConverter(const char* source, const char* target);
    // Uses the two systems without owning them.
    CKvDatumConverter(CKvMapProjection* source, CKvMapProjection* target);
    // A copy owns copies of owned systems and shares systems it does not own.
    CKvDatumConverter(const CKvDatumConverter& other);
    CKvDatumConverter& operator=(const CKvDatumConverter& other);
    ~CKvDatumConverter() override;

    void Convert(double& x, double& y) const;
    void Convert(double& x, double& y, double& h) const;
    void InvConvert(double& x, double& y) const;
    void InvConvert(double& x, double& y, double& h) const;
    // n points in place, with the results of n single calls; h may be null (the
    // heights are then taken as 0 and not returned). The map projections run
    // their batch loops on blocks of points.
    void Convert(std::size_t n, double* x, double* y, double* h = nullptr) const;
    void InvConvert(std::size_t n, double* x, double* y, double* h = nullptr) const;
    // Source-geocentric to target-geocentric metres, and back.
    void DatumShift(double& X, double& Y, double& Z) const;
    void InvDatumShift(double& X, double& Y, double& Z) const;

    void SetConversionType(ETypeOfConversion type) { m_conversionType = type; }
    ETypeOfConversion GetConversionType() const { return m_conversionType; }
    // Replaces one side's shift: 3 or 7 values, rotations already in radians and
    // the scale as a plain correction (not ppm). Returns the new bypass flag.
    bool SetDatumShift(ETypeOfDatumShift type, const double* parameters, bool source);
    bool GetBypassXYZ() const { return m_bypass; }
    void BypassXYZ() { m_bypass = true; }
    void ResetBypassXYZ() { m_bypass = m_bypassDefault; }
    void InvertOrder();
    CKvMapProjection* GetMapProjection(bool source) const { return source ? m_pSource : m_pTarget; }
    // The shift of one side as used: rotations in radians, scale as a correction.
    const double* GetShift(bool source) const { return source ? m_sourceShift : m_targetShift; }
    ETypeOfDatumShift GetShiftType(bool source) const { return source ? m_sourceType : m_targetType; }

protected:
    void _init();
    void _copy(const CKvDatumConverter& other);
    void _dealloc();

private:
    // lon/lat/h of the source through geocentric coordinates to the target (forward).
    void _geocentric(double& lon, double& lat, double& h, bool forward) const;
    // The system read and the system written, and whether each side is projected.
    struct SEnds
    {
        const CKvMapProjection* from;
        const CKvMapProjection* to;
        bool projectedIn, projectedOut;
    };
    SEnds _ends(bool forward) const;
    void _convert(double& x, double& y, double& h, bool forward) const;
    void _convert(std::size_t n, double* x, double* y, double* h, bool forward) const;

    CKvMapProjection* m_pSource;
    CKvMapProjection* m_pTarget;
    ETypeOfConversion m_conversionType;
    bool m_sameEllipsoid;
    bool m_bypass;
    bool m_bypassDefault;
    bool m_local;
    bool m_ownsSystems;
    ETypeOfDatumShift m_sourceType;
    ETypeOfDatumShift m_targetType;
    double m_sourceShift[CKvDatumShift::NoOfParameters];
    double m_targetShift[CKvDatumShift::NoOfParameters];
};

#endif
