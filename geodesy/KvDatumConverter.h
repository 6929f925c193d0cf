#ifndef KVCART_GEODESY_KVDATUMCONVERTER_H
#define KVCART_GEODESY_KVDATUMCONVERTER_H

#include "geodesy/KvCartDef.h"
#include "geodesy/KvDatumShift.h"
#include "geodesy/KvGeocentric.h"
#include "projections/KvBatch.h"

#include <cstddef>
#include <string>

class CKvMapProjection;

// Converts coordinates from a source coordinate system to a target system on
// possibly another datum: through geographical and, unless both share a datum,
// geocentric coordinates, with the source's shift to WGS 84 and the inverse of
// the target's. The shifts are the small-angle Helmert transformation in its
// position-vector form (EPSG method 9606); the inverse uses the transposed
// rotation, so forward and inverse agree to first order in the rotations.
//
// A side without an ellipsoid ("LONG/LAT") and without a shift of its own is
// WGS 84 when the other side has a shift: the datum every shift leads to (the
// shift is never skipped). Without a shift on either side there is nothing to
// shift between and such a converter only projects (bypassed). A side without
// an ellipsoid that has a shift of its own has no geocentric coordinates: its
// points come out NaN.
//
// Datums: each side names one (a WKT's DATUM, a catalogue definition's
// branch) or none (LONG/LAT). Two sides are on the same datum when the names
// match after the spelling of the registry, GDAL and Esri is set aside
// ("OSGB 1936", "OSGB_1936", "D_OSGB_1936"; "NAD27", "North_American_Datum_1927")
// or both are WGS 84 or a datum with a known shift of zero (NAD83, ETRS89 at
// their transformations' accuracy). On one datum a side without a shift takes
// the other's, and on one datum and one ellipsoid the points keep their
// latitude and longitude (no geocentric step), whatever regional shifts the
// two sides carry, unless a shift was set with SetDatumShift. Between two different datums a side whose shift is
// not known is taken as WGS 84; the conversion is then made with a message
// (GetMessage) that names the datum and the size of error to expect. A side
// without a datum name follows the LONG/LAT rule above and never has one.
//
// The geocentric step keeps to CKvGeocentric's domain: a latitude beyond +-90,
// a longitude that is no number, or a height below a quarter of the semi-major
// axis under the ellipsoid or above 1e12 m gives NaN in every output.
class CKvDatumConverter : public CKvCartDef
{
public:
    // Int-based, so that any integer brought in is a value of the type, which
    // SetConversionType checks.
    enum ETypeOfConversion : int
    {
        eProjToProj = 0, // source x/y to target x/y
        eProjToGeo = 1,  // source x/y to target lon/lat
        eGeoToProj = 2,  // source lon/lat to target x/y
        eGeoToGeo = 3    // source lon/lat to target lon/lat
    };

    // Builds and owns the two systems; the constructor of a system throws
    // std::out_of_range for the generic name "UTM". The datum message, when
    // there is one, is added to the thread's last message as well
    // (CKvMapProjection::GetLastMessage, C_KVMP_GETLASTERROR).
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

    // Throws std::invalid_argument, leaving the converter as it was, for a
    // value that is none of the four types (IsConversionType).
    void SetConversionType(ETypeOfConversion type);
    ETypeOfConversion GetConversionType() const { return m_conversionType; }
    // Replaces one side's shift: 3 or 7 values, rotations already in radians and
    // the scale as a plain correction (not ppm); none takes no values (parameters
    // may be null). Recomputes the bypass flag, and the flag ResetBypassXYZ goes
    // back to, from the shifts as they now are, and returns it. Throws
    // std::invalid_argument, leaving the converter as it was, for what IsShift
    // refuses.
    bool SetDatumShift(ETypeOfDatumShift type, const double* parameters, bool source);
    // The name a datum is compared by: letters and digits in lower case, the
    // registry's, GDAL's and Esri's spellings of one datum made one
    // ("OSGB_1936", "D_OSGB_1936", "OSGB 1936": "osgb1936"; "NAD27",
    // "North_American_Datum_1927": "nad1927"; WGS 84 is "wgs1984"); "" for none.
    static std::string DatumKey(const char* name);
    // 0 to 3, the values of ETypeOfConversion.
    static bool IsConversionType(int type);
    // A type of ETypeOfDatumShift with, for 3 or 7 parameters, that many finite
    // values (a 3-parameter shift reads only the first three).
    static bool IsShift(int type, const double* parameters);
    // Why the points may be off: the conversion changes datum and the shift
    // to WGS 84 of one side or both is not known, so it is made without it.
    // One sentence that names the datum and the error to expect; empty when
    // the datum is kept or every shift needed is known. Set when the
    // converter is made and again by SetDatumShift (a shift set is known).
    const std::string& GetMessage() const { return m_message; }
    // Whether a side's shift to WGS 84 is known (a zero one included): its
    // system's TOWGS84 or catalogue keyword, the other side's on the same
    // datum, or one set by SetDatumShift.
    bool IsShiftKnown(bool source) const { return source ? m_sourceKnown : m_targetKnown; }
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
    // The figures of the geocentric step and the bypass flags, from the
    // systems' own figures and the shifts as they are.
    void _settle();
    // The datum of each side, a shift shared on one datum, and the message.
    void _judgeDatums(bool share);
    // lon/lat/h of the source through geocentric coordinates to the target
    // (forward): the kernels' step where it holds, else the general one.
    void _geocentric(double& lon, double& lat, double& h, bool forward) const;
    // The rest: a longitude beyond +-180 reduced and given to the kernels again,
    // else the general step (CKvGeocentric's Forward and Inverse and the shifts).
    void _geocentricGeneral(double& lon, double& lat, double& h, bool forward) const;
    // The kernels' step on a block of points in place, vectorized; ok[i] is
    // cleared, and the point left as it was, where the general step must answer.
    KVCART_VECTOR_CLONES static void _geocentricBlock(const CKvDatumConverter& self, std::size_t count, double* lon,
                                                      double* lat, double* h, bool forward, bool* ok);
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
    // Each system's own figure (none without an ellipsoid), and the one the
    // geocentric step uses (WGS 84 in its place by the rule above).
    CKvGeocentric m_sourceOwn, m_targetOwn;
    CKvGeocentric m_sourceFigure, m_targetFigure;
    bool m_sameEllipsoid;
    bool m_bypass;
    bool m_bypassDefault;
    bool m_local;
    bool m_ownsSystems;
    ETypeOfDatumShift m_sourceType;
    ETypeOfDatumShift m_targetType;
    double m_sourceShift[CKvDatumShift::NoOfParameters];
    double m_targetShift[CKvDatumShift::NoOfParameters];
    bool m_sourceKnown;
    bool m_targetKnown;
    bool m_sameDatum;     // one datum on one ellipsoid: latitude and longitude are kept
    bool m_explicitShift; // a shift was set by SetDatumShift
    std::string m_message;
};

#endif
