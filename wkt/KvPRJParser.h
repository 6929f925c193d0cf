#ifndef KVCART_WKT_KVPRJPARSER_H
#define KVCART_WKT_KVPRJPARSER_H

#include "catalogue/KvMapProjData.h"
#include "geodesy/KvDatumShift.h"
#include "paramfile/String.h"

#include <list>
#include <string>
#include <map>

class CKvProjection;

// One coordinate system in the shape of a WKT description: names, ellipsoid,
// datum shift, prime meridian, units, two axes, the projection type and its
// parameters. Numeric fields that were never given hold the undefined marker
// Undefined (-1e-35), compared exactly. Angles are kept in the WKT's own units.
class CKvPRJParser
{
public:
    static constexpr double Undefined = -1.0e-35;

    // How a text is read where the established reading of a WKT name differs
    // from the EPSG registry's definition of the same system (the south-orientated
    // transverse Mercator, ESRI's "Stereographic", the scale of a two-parallel
    // Lambert, axes named along meridians at a pole, a spherical EXTENSION).
    // eCompatibleReading keeps the established reading and records a warning for
    // every such text; eEpsgReading gives the registry's coordinates.
    enum EReading
    {
        eCompatibleReading = 0,
        eEpsgReading = 1
    };

    // The process-wide reading that new parsers take (eCompatibleReading unless
    // a host chose otherwise). Safe to call from any thread.
    static void SetDefaultReading(EReading reading);
    static EReading GetDefaultReading();

    enum EAxisType
    {
        eFirstAxis = 1, // easting or longitude
        eSecondAxis = 2 // northing or latitude
    };

    explicit CKvPRJParser(const CString& text);
    explicit CKvPRJParser(const char* text);
    // Filled by the engine's or the definition's TransferParameters.
    explicit CKvPRJParser(const CKvProjection* engine);
    explicit CKvPRJParser(const CKvMapProjData* definition);
    virtual ~CKvPRJParser() = default;

    // --- The keyword scanner. Each node is found by the first occurrence of its
    // keyword (case-sensitive) anywhere in the text; nesting is checked only for
    // the text as a whole (IsPRJ). Numbers are read in the C locale.

    // Balanced brackets, more commas than opening brackets, and "PROJCS" or
    // "GEOGCS" somewhere in the text.
    static bool IsPRJ(const CString& text);
    // -1 when the brackets balance (or the text is empty); else the index where
    // the level first drops below zero, or the length when brackets stay open.
    static int _MatchBrackets(const CString& text);
    static bool _MatchCommas(const CString& text);
    // The bracket level at the end of the text, or the first negative level.
    static int _GetBracketLevel(const CString& text);
    // The quoted name that follows the first occurrence of keyword, e.g.
    // GetName("PROJCS[\"RD New\",...", "PROJCS") is "RD New"; "" when absent.
    static CString GetName(const CString& text, const char* keyword);
    // Name and first value of the node; returns the text after the value so that
    // a second call finds the next node of the same keyword. When the keyword is
    // absent: returns "" and leaves name and value as they were.
    static CString GetNameParam(const CString& text, const char* keyword, CString& name, double& value);
    // The same with the value as text, trimmed (AXIS directions).
    static CString GetNameParam(const CString& text, const char* keyword, CString& name, CString& value);
    // The value of PARAMETER["name",value]: the quoted name is matched ignoring
    // letter case; defaultValue when it does not occur.
    static double GetParam(const CString& text, const char* name, double defaultValue);
    // The first of the names that occurs.
    static double GetParam(const CString& text, const std::list<CString>& names, double defaultValue);
    // The name a coordinate-system string goes by: the COMPD_CS, PROJCS or GEOGCS
    // name, "Local Coordinates" for the local system, else the text itself.
    static CString ShortName(const CString& text);
    static CString DatumName(const CString& text);

    // Reads the source text into the record. sortParallels: store the two
    // standard parallels of the two-parallel conics in ascending order. False for
    // text that is not WKT (nothing changed), or with the type set to
    // eNoProjection when a unit, the projection name or a required parameter is
    // missing. Fields the text does not give keep their values.
    bool Parse(bool sortParallels);

    // A new engine for the record, values converted to degrees and metres; the
    // caller owns it. Null for eNoProjection. The Mercator and polar stereographic
    // forms write their derived parameter back into the record.
    CKvProjection* CreateMapProjection();
    // A new definition with the record's values as stored; null for types
    // outside 1..20.
    CKvMapProjData* _CreateProjData() const;
    // Brings the record to degrees, metres and the Greenwich meridian by the
    // rules CreateMapProjection builds engines with, so that _CreateProjData then
    // gives a definition as the catalogue stores it. Undefined fields stay so.
    void ConvertToDegreesAndMetres();
    CString GetProjectionTypeTitle() const;

    // One-line WKT of the record. False for a type without a writer; the text
    // then stops after the PROJECTION node and must not be used.
    bool Format(CString& out) const;
    // Copies the text with its terminator when it is shorter than size.
    bool Format(char* buffer, int size) const;
    // The WKT re-flowed: every node after a comma on a new line ("\r\n"),
    // indented by four blanks per open bracket.
    static void FormatAsReadableWKT(const CString& text, CString& out);
    int GetNoOfParameters() const;
    // A parameter of the definition with its unit: none for scale factors, the
    // projected unit for lengths, the angular unit for angles.
    bool GetParameter(int index, CString& name, double& value, CString& unitName, double& unitFactor) const;

    CKvMapProjData::EProjectionType LookUpProjectionName(const CString& wktName) const;

    // The reading of this parser; a new parser takes the process-wide one.
    EReading GetReading() const { return m_reading; }
    void SetReading(EReading reading) { m_reading = reading; }
    // Why the last Parse failed (empty after a success), e.g.
    // 'projection "Mercator_Auxiliary_Sphere" is not supported'.
    const std::string& GetFailureReason() const { return m_failureReason; }
    // What the last Parse read differently from the EPSG registry, one sentence
    // per line; empty when the text reads as the registry defines it. Under the
    // EPSG reading: what was read by the registry's rule instead of the text's
    // literal meaning.
    const std::string& GetWarnings() const { return m_warnings; }
    // Where the datum shift comes from when the text has no TOWGS84 node and
    // its datum is found in the EPSG registry by name (an ESRI .prj names
    // "D_OSGB_1936"): under the EPSG reading the registry's shift is taken and
    // this says so; under the established reading no shift is taken and a
    // warning says what the registry would give. Empty otherwise.
    const std::string& GetDatumShiftSource() const { return m_shiftSource; }
    // Whether the text's DATUM has a TOWGS84 node (zeros included), or a shift
    // was taken from the registry: the datum's relation to WGS 84 is known.
    bool HasKnownDatumShift() const { return m_shiftKnown; }
    // An oblique Mercator text named after its projection centre (EPSG variant
    // B): its coordinates count from the centre, whatever type it is read as.
    bool GetCentreOrigin() const { return m_centreOrigin; }
    void SetCentreOrigin(bool centre) { m_centreOrigin = centre; }
    // A south-orientated transverse Mercator (westing/southing, EPSG 9808).
    bool GetSouthOrientated() const { return m_southOrientated; }

    CString GetProjCSname() const { return m_projCSName; }
    void SetProjCSname(const CString& name) { m_projCSName = name; }
    CString GetGeoCSname() const { return m_geoCSName; }
    void SetGeoCSname(const CString& name) { m_geoCSName = name; }
    CString GetDatum() const { return m_datum; }
    void SetDatum(const CString& name) { m_datum = name; }
    void GetPrimeMeridian(CString& name, double& longitude) const;
    void SetPrimeMeridian(const CString& name, double longitude);
    void GetAngularUnit(CString& name, double& factor) const;
    void SetAngularUnit(const CString& name, double factor);
    void GetEllipsoid(CString& name, double& semiMajorAxis, double& inverseFlattening) const;
    void SetEllipsoid(const CString& name, double semiMajorAxis, double inverseFlattening);
    void GetDatumShift(CKvDatumShift& shift) const { shift = m_datumShift; }
    void SetDatumShift(const CKvDatumShift& shift) { m_datumShift = shift; }
    CKvMapProjData::EProjectionType GetProjectionType() const { return m_type; }
    void SetProjectionType(CKvMapProjData::EProjectionType type) { m_type = type; }
    CString GetProjectionTypeName() const { return m_typeName; }
    void SetProjectionTypeName(const CString& name) { m_typeName = name; }

    double GetFalseEasting() const { return m_falseEasting; }
    void SetFalseEasting(double v) { m_falseEasting = v; }
    double GetFalseNorthing() const { return m_falseNorthing; }
    void SetFalseNorthing(double v) { m_falseNorthing = v; }
    double GetCentralMeridian() const { return m_centralMeridian; }
    void SetCentralMeridian(double v) { m_centralMeridian = v; }
    double GetStandardParallel1() const { return m_standardParallel1; }
    void SetStandardParallel1(double v) { m_standardParallel1 = v; }
    double GetStandardParallel2() const { return m_standardParallel2; }
    void SetStandardParallel2(double v) { m_standardParallel2 = v; }
    double GetLatitudeOfOrigin() const { return m_latitudeOfOrigin; }
    void SetLatitudeOfOrigin(double v) { m_latitudeOfOrigin = v; }
    double GetLongitudeOfCenter() const { return m_longitudeOfCenter; }
    void SetLongitudeOfCenter(double v) { m_longitudeOfCenter = v; }
    double GetLatitudeOfCenter() const { return m_latitudeOfCenter; }
    void SetLatitudeOfCenter(double v) { m_latitudeOfCenter = v; }
    double GetAzimuth() const { return m_azimuth; }
    void SetAzimuth(double v) { m_azimuth = v; }
    double GetXYPlaneRotation() const { return m_xyPlaneRotation; }
    void SetXYPlaneRotation(double v) { m_xyPlaneRotation = v; }
    double GetScaleFactor() const { return m_scaleFactor; }
    void SetScaleFactor(double v) { m_scaleFactor = v; }
    double GetLongitudeOfSouthPole() const { return m_longitudeOfSouthPole; }
    void SetLongitudeOfSouthPole(double v) { m_longitudeOfSouthPole = v; }
    double GetLatitudeOfSouthPole() const { return m_latitudeOfSouthPole; }
    void SetLatitudeOfSouthPole(double v) { m_latitudeOfSouthPole = v; }
    double GetAngleOfRotation() const { return m_angleOfRotation; }
    void SetAngleOfRotation(double v) { m_angleOfRotation = v; }
    double GetPseudoParallel() const { return m_pseudoParallel; }
    void SetPseudoParallel(double v) { m_pseudoParallel = v; }
    double GetXScale() const { return m_xScale; }
    void SetXScale(double v) { m_xScale = v; }
    double GetYScale() const { return m_yScale; }
    void SetYScale(double v) { m_yScale = v; }
    // ESRI's auxiliary sphere of the pseudo-Mercator: always 0, the sphere of the
    // semi-major axis, the only one read.
    double GetAuxiliarySphereType() const { return 0.0; }
    // The parameters of a method described by its descriptor, by their position
    // in it (in the text's units, as the other fields); Undefined outside.
    double GetMethodParameter(int index) const
    {
        return index >= 0 && index < CKvMapProjData::MaxParameters ? m_methodValues[index] : Undefined;
    }
    void SetMethodParameter(int index, double v)
    {
        if (index >= 0 && index < CKvMapProjData::MaxParameters)
            m_methodValues[index] = v;
    }

    void GetProjUnit(CString& name, double& factor) const;
    void SetProjUnit(const CString& name, double factor);
    void GetAxisInfo(EAxisType axis, CString& name, CString& direction) const;
    void SetAxisInfo(EAxisType axis, const CString& name, const CString& direction);

protected:
    void _initialize();
    // Step 9 of the parse: the parameters of the type from P, the text from the
    // PROJECTION keyword on; lowerP is P in lower case.
    void _readParameters(const CString& P, const std::string& lowerP);
    // The same for a method described by its descriptor.
    void _readMethodParameters(const CString& P, const std::string& lowerP);
    // The described method's parameters in degrees (longitudes from Greenwich)
    // and metres, from the text's units.
    void _methodValuesInDegreesAndMetres(double* values) const;
    // The rules by which the registry and the established reading part: applied
    // or reported after the parameters are read.
    void _applyReadingRules(const CString& name, const CString& T, const CString& P);
    // Whether a PROJ4 EXTENSION on a sphere of this radius over the ellipsoidal
    // datum is the pseudo-Mercator of the text's own Mercator parameters.
    bool _isPseudoMercatorExtension(const std::string& ext, double sphere) const;
    void _datumFromRegistry();
    void _warn(const std::string& sentence);
    bool _fail(const std::string& reason);

private:
    std::map<CString, CKvMapProjData::EProjectionType> m_projectionNames; // lower-cased WKT names
    CString m_text;
    CString m_projCSName;
    CString m_geoCSName;
    CString m_datum;
    CString m_primeMeridianName;
    double m_primeMeridian;
    CString m_angularUnitName;
    double m_angularUnit;
    CString m_ellipsoidName;
    double m_semiMajorAxis;
    double m_inverseFlattening;
    CKvDatumShift m_datumShift;
    CKvMapProjData::EProjectionType m_type;
    CString m_typeName;
    double m_falseEasting;
    double m_falseNorthing;
    double m_centralMeridian;
    double m_standardParallel1;
    double m_standardParallel2;
    double m_latitudeOfOrigin;
    double m_longitudeOfCenter;
    double m_latitudeOfCenter;
    double m_azimuth;
    double m_xyPlaneRotation;
    double m_scaleFactor;
    double m_longitudeOfSouthPole;
    double m_latitudeOfSouthPole;
    double m_angleOfRotation;
    double m_pseudoParallel;
    double m_xScale;
    double m_yScale;
    double m_methodValues[CKvMapProjData::MaxParameters];
    CString m_projUnitName;
    double m_projUnit;
    CString m_axisName[2];
    CString m_axisDirection[2];
    EReading m_reading;
    std::string m_failureReason;
    std::string m_warnings;
    bool m_centreOrigin;
    bool m_southOrientated;
    bool m_lambertScale; // a two-parallel Lambert whose Scale_Factor is applied
    bool m_krovakFromAxes; // a Krovak whose scales and rotation follow from its AXIS nodes
    double m_extensionSphere; // radius of a spherical PROJ4 EXTENSION, or 0
    std::string m_shiftSource; // the registry's datum, when the shift came from there
    bool m_shiftKnown = false;
};

#endif
