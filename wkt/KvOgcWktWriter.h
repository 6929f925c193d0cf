#ifndef KVCART_WKT_KVOGCWKTWRITER_H
#define KVCART_WKT_KVOGCWKTWRITER_H

#include <memory>
#include <string>

class CKvPRJParser;

// The OGC form of WKT 1, as GDAL writes it (`gdalsrsinfo -o wkt1`), of one
// coordinate system held in the WKT record CKvPRJParser keeps, whether an
// engine, a definition or a parse filled it:
//
//   PROJCS["name",GEOGCS["name",DATUM["name",SPHEROID["name",a,1/f],TOWGS84[...]],
//   PRIMEM["Greenwich",0],UNIT["degree",...]],PROJECTION["Transverse_Mercator"],
//   PARAMETER["latitude_of_origin",0],...,UNIT["metre",1],AXIS["Easting",EAST],
//   AXIS["Northing",NORTH],AUTHORITY["EPSG","32632"]]
//
// on one line: OGC's method and parameter names in GDAL's order, the record's
// numbers in their shortest exact form and in the record's own units (a grid
// kept in another unit than the record's metres writes its lengths in that
// unit), TOWGS84 when the record has a datum shift (its seven values as the
// record holds them: metres, arc-seconds, ppm, position vector), and AXIS nodes
// that name the directions of the coordinates the library gives for the record
// under the reading it was made with. A geographical system is a GEOGCS with
// longitude, latitude axes.
//
// The pseudo-Mercator (EPSG method 1024), which OGC WKT 1 cannot name, is
// written as GDAL writes EPSG:3857: the Mercator of its parameters with a PROJ4
// EXTENSION that projects the sphere of the semi-major axis.
//
// What OGC WKT 1 has no form for is refused with the reason, never written
// approximately: rotated longitude/latitude grids, the two-parallel Lambert
// with a scale factor (EPSG method 1051), a Krovak grid turned by other than a
// right angle or scaled, axes whose directions do not make one easting and one
// northing in a form the readers agree on, and the library's systems that are
// no georeferenced system (LONG/LAT names no datum, NON-UTM is a local grid).
class CKvOgcWktWriter
{
public:
    // The record is kept by reference: it must outlive the writer.
    explicit CKvOgcWktWriter(const CKvPRJParser& record);

    // AUTHORITY["EPSG","code"] after the system's nodes; 0 (the default) writes none.
    void SetEpsgCode(int code) { m_epsgCode = code > 0 ? code : 0; }
    // The unit of the grid's coordinates in metres, when it is not the record's
    // own (a catalogue definition in US survey feet, whose record is in metres):
    // the linear UNIT and the false easting and northing are written in it. 0
    // (the default) keeps the record's unit.
    void SetGridUnit(double metresPerUnit) { m_gridUnit = metresPerUnit > 0.0 ? metresPerUnit : 0.0; }
    // Whether the datum's shift to WGS 84 is known when the record holds a
    // shift of zero (a datum such as NAD83 or ETRS89 whose shift is nil):
    // TOWGS84[0,0,0,0,0,0,0] is then written, as GDAL writes it, so that no
    // reader takes the datum for one whose relation to WGS 84 is unknown. A
    // shift that is not zero is always written.
    void SetDatumShiftKnown(bool known) { m_shiftKnown = known; }

    // The text on one line; false, with out empty and the reason, when the
    // record's system has no OGC WKT 1 form.
    bool Write(std::string& out, std::string& reason) const;

    // A coordinate-system string (WKT, read under the process-wide reading; a
    // catalogue name; "EPSG:n" where the registry is present) as its WKT record,
    // with what the record itself does not carry: the EPSG code (a catalogue
    // entry's, the registry's, or the top-level AUTHORITY of a WKT that reads as
    // the registry defines it), the unit of a catalogue grid kept in US survey
    // feet, whether the datum's shift is known, and a catalogue entry's datum
    // shift and axes. False, with the
    // reason, for a text that resolves to no system, the generic "UTM", LONG/LAT
    // and NON-UTM.
    struct SSystem
    {
        std::unique_ptr<CKvPRJParser> record;
        int epsgCode = 0;
        double gridUnit = 0.0;
        bool shiftKnown = false;
    };
    static bool Describe(const std::string& text, SSystem& system, std::string& reason);
    // Describe, then Write.
    static bool WriteSystem(const std::string& text, std::string& out, std::string& reason);

private:
    const CKvPRJParser& m_record;
    int m_epsgCode = 0;
    double m_gridUnit = 0.0;
    bool m_shiftKnown = false;
};

#endif
