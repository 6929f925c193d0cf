#ifndef KVCART_WKT_KVPROJTRANSLATOR_H
#define KVCART_WKT_KVPROJTRANSLATOR_H

#include <string>

// Writes a coordinate system as a PROJ.4 definition for tools that speak PROJ.4.
// It goes through the WKT form of the system: the projection tokens come from
// the parsed record, then the ellipsoid, an optional datum shift and the unit.
class CKvProjTranslator
{
public:
    CKvProjTranslator() = default;
    virtual ~CKvProjTranslator() = default;

    // text: WKT, a catalogue name such as "UTM-32", "NON-UTM" or "LONG/LAT".
    // datumShift (count values, dx dy dz rx ry rz scale) replaces the system's own
    // TOWGS84 when count >= 1; missing values are written as 0. "" when the text
    // resolves to no engine; "+proj=undef " for systems PROJ.4 cannot express.
    // Throws std::out_of_range for the generic name "UTM".
    std::string Convert2Proj4(const std::string& text, const double* datumShift, int count) const;
    // The same for the first line of a .prj file; an unreadable file converts an
    // empty line.
    std::string ConvertPRJFile2Proj4(const std::string& path, const double* datumShift, int count) const;
};

#endif
