#include "tools/kvcart/KvCliCommands.h"

#include "catalogue/KvCartSetup.h"
#include "catalogue/KvEpsgRegistry.h"
#include "catalogue/KvEllipsoidList.h"
#include "catalogue/KvMapProjData.h"
#include "catalogue/KvMapProjectionList.h"
#include "catalogue/KvNameSuggestions.h"
#include "coordsys/KvMapProjection.h"
#include "geodesy/KvDatumConverter.h"
#include "paramfile/Gxr.h"
#include "projections/KvProjection.h"
#include "tools/kvcart/KvPointStream.h"
#include "wkt/KvOgcWktWriter.h"
#include "wkt/KvPRJParser.h"
#include "wkt/KvProjTranslator.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <stdexcept>
#include <sys/stat.h>
#include <thread>

#ifndef KVCART_VERSION
#define KVCART_VERSION "0"
#endif

namespace {

constexpr double kPi = 3.141592653589793;
constexpr size_t kMaxPrjSize = 1 << 20;

const char kMainHelp[] =
    "Usage: kvcart COMMAND [ARGUMENTS] [OPTIONS]\n"
    "\n"
    "Map projections, datum shifts and geodesics from the command line.\n"
    "\n"
    "Commands:\n"
    "  transform FROM TO [FILE...]     convert points from one coordinate system to another\n"
    "  info CS                         describe a coordinate system\n"
    "  proj4 CS                        write a coordinate system as a PROJ.4 definition\n"
    "  list                            list the catalogue's coordinate systems\n"
    "  ellipsoids                      list the catalogue's ellipsoids\n"
    "  wkt CS                          write a coordinate system as WKT (ESRI or OGC form)\n"
    "  zone LON [LAT]                  the UTM zone of a longitude, or the UTM/UPS zone of a point\n"
    "  geod LON LAT AZIMUTH DISTANCE   solve the direct geodesic problem\n"
    "  geod --inverse LON1 LAT1 LON2 LAT2\n"
    "                                  solve the inverse geodesic problem\n"
    "  check FILE.gxr                  validate a catalogue file\n"
    "  add NAME CS                     add a definition to the user's catalogue\n"
    "  remove NAME                     remove a definition from the user's catalogue\n"
    "\n"
    "A coordinate system CS is WKT text, a catalogue name (\"UTM-32\", \"LONG/LAT\",\n"
    "\"NON-UTM\", \"British National Grid\", ...) or @FILE for a .prj file holding WKT.\n"
    "A catalogue name may be written in either case (\"rd new\"); a name that is not\n"
    "in the catalogue is answered with the names closest to it.\n"
    "\n"
    "Options of every command:\n"
    "  --catalogue DIR   the catalogue directory (default: the installed share/kvcart/)\n"
    "  --user-dir DIR    the user's catalogue directory (default: $XDG_CONFIG_HOME/kvcart/,\n"
    "                    else ~/.config/kvcart/; created when a definition is first added;\n"
    "                    without HOME the program refuses)\n"
    "  -h, --help        this help; 'kvcart COMMAND --help' for a command's\n"
    "  --version         the program's version\n"
    "  --compatible-reading  read WKT as the library does by default, where that\n"
    "                    differs from the EPSG registry (south-orientated transverse\n"
    "                    Mercator, ESRI Stereographic, a scaled two-parallel Lambert,\n"
    "                    axes at a pole, a spherical PROJ4 extension), with a warning\n"
    "                    for each difference; by default the program gives the\n"
    "                    registry's coordinates\n"
    "\n"
    "Exit status: 0 success; 1 input lines that could not be converted, a catalogue\n"
    "file with errors or an edit that could not be saved; 2 usage errors (unknown\n"
    "command or option, wrong arguments, a coordinate system that does not resolve).\n";

const char kTransformHelp[] =
    "Usage: kvcart transform FROM TO [FILE...] [OPTIONS]\n"
    "\n"
    "Converts points from the coordinate system FROM to TO. Points are read from\n"
    "the FILEs in turn, or from standard input when none is given or FILE is \"-\",\n"
    "one per line: \"x y\" or \"x y h\", separated by blanks, tabs, a comma or a\n"
    "semicolon. Geographical coordinates are longitude then latitude in decimal\n"
    "degrees, projected ones are in the system's own axis order and linear unit\n"
    "(US survey feet for a state plane in feet); h is the ellipsoidal height in\n"
    "metres.\n"
    "\n"
    "The decimal mark is a point, or a comma on a line whose first coordinate is\n"
    "followed by a semicolon or a tab (\"9,5;47,5;Zurich\"); such a line is written\n"
    "back with decimal commas. A comma between digits on a line separated by\n"
    "blanks (\"9,5 47,5\") could be either and is refused, never guessed.\n"
    "\n"
    "Every input line gives one output line. The converted coordinates keep the\n"
    "separators of the input, and text after them is copied. Blank lines and\n"
    "comment lines (starting with #) are copied as they are. A line that cannot be\n"
    "read, or whose point lies outside the systems' domain, is written as \"* *\"\n"
    "followed by the text after its coordinates, and named on standard error with\n"
    "its line number; the exit status is then 1. A line longer than 1 MiB is such\n"
    "a line. A UTF-8 byte-order mark at the start of an input is dropped.\n"
    "\n"
    "Between different datums the points pass through geocentric coordinates with\n"
    "each system's shift to WGS 84 (its TOWGS84: position vector, small angles). A\n"
    "catalogue name carries the shift of the EPSG registry's best Helmert for its\n"
    "datum (kvcart info shows it). \"LONG/LAT\" names no datum: with a shift on the\n"
    "other side it is WGS 84, and without one points keep their latitude and\n"
    "longitude across the change; so does a system without a datum name. Two\n"
    "systems on one datum (by name, on one ellipsoid) keep latitude and longitude.\n"
    "Between two different datums whose shift is not known on one side, that side\n"
    "is taken as WGS 84 and the program warns once, naming the datum and the\n"
    "error to expect (hundreds of metres for a classical datum); WGS 84 and a\n"
    "datum with a shift of zero (NAD83, ETRS89) count as one datum.\n"
    "\n"
    "Options:\n"
    "  --inverse              convert from TO to FROM\n"
    "  --towgs84-from VALUES  the shift from FROM's datum to WGS 84, replacing its\n"
    "                         own: dx,dy,dz in metres, or dx,dy,dz,rx,ry,rz,s with\n"
    "                         rotations in arc-seconds (position vector) and the\n"
    "                         scale in ppm\n"
    "  --towgs84-to VALUES    the same for TO\n"
    "  --towgs84-convention C the rotations' convention of --towgs84-from and\n"
    "                         --towgs84-to: position-vector (the default) or\n"
    "                         coordinate-frame (as projinfo prints EPSG method\n"
    "                         9607), whose rotations are negated\n"
    "  --strict-datum         refuse a change of datum whose shift is not known\n"
    "                         (exit status 2) instead of warning\n"
    "  --bypass-datum         apply no datum shift: only the projections\n"
    "  --precision N          decimals of every output coordinate, 0 to 17\n"
    "                         (default: 4 for projected ones, 9 for degrees)\n"
    "  --skip-header N        copy the first N lines of each input unchanged\n"
    "  --metres               projected coordinates in metres, whatever the\n"
    "                         systems' unit\n"
    "  --threads N            threads that convert, 1 to 256 (default: the cores\n"
    "                         available); one more reads and one writes, and the\n"
    "                         output and messages are those of --threads 1\n"
    "  --no-progress          no progress line (by default an input that takes\n"
    "                         more than a second shows one on standard error when\n"
    "                         that is a terminal: the percentage of the file read,\n"
    "                         or the lines read, and the points per second)\n"
    "\n"
    "Examples:\n"
    "  echo \"9.5 47.5\" | kvcart transform LONG/LAT UTM-32\n"
    "  kvcart transform LONG/LAT UTM-32 --skip-header 1 export.csv\n"
    "  kvcart transform LONG/LAT \"British National Grid\" points.txt\n"
    "  kvcart transform @parcels.prj LONG/LAT --towgs84-from 565.4,50.3,465.6 parcels.csv\n"
    "  kvcart transform LONG/LAT @rd.prj --towgs84-convention coordinate-frame \\\n"
    "      --towgs84-to 565.4171,50.3319,465.5524,0.398957,-0.343988,1.877402,4.0725\n";

const char kInfoHelp[] =
    "Usage: kvcart info CS\n"
    "\n"
    "Describes a coordinate system: its name, the projection type and every\n"
    "parameter with its unit, the ellipsoid and datum, the projected origin, the\n"
    "default map area, the units and axes, the datum shift to WGS 84, the WKT (in\n"
    "readable form) and the PROJ.4 definition.\n"
    "\n"
    "Example:\n"
    "  kvcart info UTM-32\n";

const char kProj4Help[] =
    "Usage: kvcart proj4 CS [--towgs84 VALUES] [--legacy]\n"
    "\n"
    "Writes the coordinate system as a PROJ string that PROJ 9 reads as the same\n"
    "system (the WKT read by the EPSG rules), ending \"+no_defs +type=crs\".\n"
    "\n"
    "Options:\n"
    "  --towgs84 VALUES   a datum shift replacing the system's own: dx,dy,dz or\n"
    "                     dx,dy,dz,rx,ry,rz,s (metres, arc-seconds, ppm)\n"
    "  --legacy           the library's established PROJ.4 text instead (PROJ reads\n"
    "                     some of it differently: +lon_0 for omerc's centre, no\n"
    "                     Krovak axes, polar +lat_ts with +k; ends \"no_defs <>\")\n"
    "\n"
    "Example:\n"
    "  kvcart proj4 @parcels.prj\n";

const char kWktHelp[] =
    "Usage: kvcart wkt CS [--esri | --ogc]\n"
    "\n"
    "Writes the coordinate system as WKT 1 on one line, and nothing else.\n"
    "\n"
    "Options:\n"
    "  --esri   the library's own form, as kvcart info shows it and a .prj file\n"
    "           of ESRI's holds it (the default)\n"
    "  --ogc    OGC WKT 1 as GDAL writes it: OGC's method and parameter names,\n"
    "           TOWGS84 when the system has a datum shift, the units and axes of\n"
    "           the system's coordinates, AUTHORITY[\"EPSG\",...] when its code is\n"
    "           known; a method OGC WKT 1 cannot name (a rotated pole, the\n"
    "           Michigan Lambert's scale) is refused with the reason\n"
    "\n"
    "LONG/LAT (no datum) and NON-UTM (a local grid) have no WKT; a text that\n"
    "cannot be written exits with status 1 and the reason.\n"
    "\n"
    "Examples:\n"
    "  kvcart wkt \"RD New\"\n"
    "  kvcart wkt UTM-33S --ogc > zone33s.prj\n";

const char kListHelp[] =
    "Usage: kvcart list [--type MASK] [--branch NAME] [--grep TEXT]\n"
    "\n"
    "Lists the catalogue's coordinate systems, one per line: the name, the\n"
    "projection type and the branch (the datum group it is filed under); the\n"
    "user's own definitions are marked [user].\n"
    "\n"
    "Options:\n"
    "  --type MASK     the sum of 1 (projections), 2 (geographical systems),\n"
    "                  4 (LONG/LAT) and 8 (NON-UTM); default 15, all\n"
    "  --branch NAME   only the definitions of that branch\n"
    "  --grep TEXT     only the systems whose name or EPSG code (\"EPSG:27700\")\n"
    "                  holds TEXT, in either case; each line ends with the code\n"
    "                  when the system has one. The EPSG registry's systems\n"
    "                  that match follow, code first (\"EPSG:27700\", \"ESRI:102001\")\n"
    "\n"
    "Examples:\n"
    "  kvcart list --branch NAD83\n"
    "  kvcart list --grep \"rd new\"\n"
    "  kvcart list --grep 27700\n";

const char kEllipsoidsHelp[] =
    "Usage: kvcart ellipsoids [--system | --custom]\n"
    "\n"
    "Lists the catalogue's ellipsoids: identification code, semi-major axis in\n"
    "metres, inverse flattening (0 for a sphere) and name.\n"
    "\n"
    "Options:\n"
    "  --system   only the shipped ellipsoids\n"
    "  --custom   only the user's own\n";

const char kZoneHelp[] =
    "Usage: kvcart zone LON [LAT]\n"
    "\n"
    "Writes the name of the UTM zone of a longitude in degrees, e.g. \"UTM-32\".\n"
    "Longitudes outside -180..180 are first brought into that range.\n"
    "\n"
    "With a latitude, writes the zone of the point on the UTM/UPS grid of WGS 84\n"
    "and the EPSG code of its system, separated by a blank (the code is the last\n"
    "word): \"UTM-32 EPSG:32632\" north of the equator and on it, \"UTM-33S\n"
    "EPSG:32733\" south of it, \"UPS North EPSG:32661\" above 84 N and \"UPS South\n"
    "EPSG:32761\" below 80 S. The zones are the military grid's: zone 32 spans 3 E\n"
    "to 12 E from 56 N up to 64 N, and from 72 N to 84 N zones 31, 33, 35 and 37\n"
    "span 0-9, 9-21, 21-33 and 33-42 E. Each name is a catalogue system.\n"
    "\n"
    "Examples:\n"
    "  kvcart zone 9.5\n"
    "  kvcart zone 18.42 -33.92\n";

const char kGeodHelp[] =
    "Usage: kvcart geod LON LAT AZIMUTH DISTANCE [--cs CS]\n"
    "       kvcart geod --inverse LON1 LAT1 LON2 LAT2 [--cs CS]\n"
    "\n"
    "Solves the direct geodesic problem (Vincenty): from the point LON LAT\n"
    "(degrees) along the azimuth AZIMUTH (degrees clockwise from north) for\n"
    "DISTANCE metres. Writes the end point's longitude and latitude and the\n"
    "forward azimuth there, in degrees.\n"
    "\n"
    "With --inverse, solves the inverse problem (Karney): the shortest geodesic\n"
    "from the point LON1 LAT1 to LON2 LAT2 (degrees; longitudes of any size).\n"
    "Writes its length in metres and the forward azimuths at both points (at the\n"
    "second, the direction of travel), in degrees clockwise from north within\n"
    "-180..180.\n"
    "\n"
    "Options:\n"
    "  --cs CS     work on the ellipsoid of that coordinate system (default WGS 84)\n"
    "  --inverse   solve the inverse problem\n"
    "\n"
    "Examples:\n"
    "  kvcart geod 2.35 48.85 45 100000\n"
    "  kvcart geod --inverse 2.35 48.85 -0.1275 51.507\n";

const char kCheckHelp[] =
    "Usage: kvcart check FILE.gxr\n"
    "\n"
    "Validates a catalogue file of ellipsoids or projection definitions and\n"
    "reports every problem with its line: the syntax, unknown sections and\n"
    "keywords, values of the wrong kind, missing names, duplicate names or codes,\n"
    "ellipsoids the catalogue does not hold, parameters the projection cannot use.\n"
    "The exit status is 1 when a problem was found.\n"
    "\n"
    "Example:\n"
    "  kvcart check ~/.config/kvcart/custom_projection.gxr\n";

const char kAddHelp[] =
    "Usage: kvcart add NAME CS [--branch NAME]\n"
    "       kvcart add --ellipsoid ID NAME SEMI_MAJOR_AXIS INVERSE_FLATTENING\n"
    "\n"
    "Adds a definition to the user's catalogue (custom_projection.gxr or\n"
    "custom_ellipsoid.gxr in the user directory) and saves it at once. The first\n"
    "form stores the projection of CS (a catalogue name, WKT or @FILE.prj) under\n"
    "NAME; its ellipsoid must be in the catalogue. A catalogue definition holds\n"
    "metres, degrees and easting/northing axes: the units and axes of a WKT are not\n"
    "kept. The datum shift is kept (a WKT's TOWGS84, a catalogue name's), and so\n"
    "is the EPSG code of the system (a catalogue name's, an EPSG:n, the AUTHORITY\n"
    "that closes a WKT). The second form adds an ellipsoid; an inverse flattening\n"
    "of 0 makes a sphere. Nothing the file already holds is lost; a file that\n"
    "could not be read is never written over.\n"
    "\n"
    "Options:\n"
    "  --branch NAME   the branch to file the definition under (default: the\n"
    "                  datum's name)\n"
    "  --ellipsoid     add an ellipsoid\n"
    "\n"
    "Examples:\n"
    "  kvcart add \"Site grid\" @site.prj --branch Projects\n"
    "  kvcart add --ellipsoid XS \"Test sphere\" 6371000 0\n";

const char kRemoveHelp[] =
    "Usage: kvcart remove NAME\n"
    "       kvcart remove --ellipsoid ID\n"
    "\n"
    "Removes one of the user's own definitions (or ellipsoids) from the user's\n"
    "catalogue and saves it at once. The shipped catalogue cannot be changed, and\n"
    "an ellipsoid that a definition uses is not removed.\n";

bool FileExists(const std::string& path)
{
    struct stat st;
    return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

bool HoldsCatalogue(const std::string& directory)
{
    return FileExists(directory + "ellipsoid.gxr") && FileExists(directory + "map_projection.gxr");
}

std::string WithSlash(std::string directory)
{
    if (!directory.empty() && directory.back() != '/')
        directory += '/';
    return directory;
}

// mkdir -p, for the user directory: each directory of the path from the first
// ("a" of "a/b/", never a leading "/" alone). A directory that exists is used as
// it is, whoever may write the directories above it.
bool MakeDirectories(const std::string& directory)
{
    struct stat st;
    if (::stat(directory.c_str(), &st) == 0) {
        if (S_ISDIR(st.st_mode))
            return true;
        errno = ENOTDIR;
        return false;
    }
    for (size_t slash = directory.find('/', 1);; slash = directory.find('/', slash + 1)) {
        if (::mkdir(directory.substr(0, slash).c_str(), 0777) != 0 && errno != EEXIST)
            return false;
        if (slash == std::string::npos)
            break;
    }
    return ::stat(directory.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

// "dx,dy,dz" or "dx,dy,dz,rx,ry,rz,s": the count of values, 0 when malformed.
int ParseShift(const std::string& text, double* values)
{
    int count = 0;
    std::string field;
    std::istringstream stream(text);
    while (std::getline(stream, field, ',')) {
        if (count == 7 || !CKvPointStream::ParseNumber(field, values[count]))
            return 0;
        ++count;
    }
    return count == 3 || count == 7 ? count : 0;
}

std::string Format(double value, int precision)
{
    std::string text;
    CKvPointStream::AppendFixed(text, value, precision);
    return text;
}

// The shortest text that reads back as the same double, in plain notation
// for the magnitudes of geodesy.
std::string Exact(double value)
{
    char buffer[64];
    const double magnitude = std::fabs(value);
    const std::chars_format format =
        magnitude == 0.0 || (magnitude >= 1e-6 && magnitude < 1e15) ? std::chars_format::fixed : std::chars_format::general;
    const std::to_chars_result r = std::to_chars(buffer, buffer + sizeof buffer, value == 0.0 ? 0.0 : value, format);
    return std::string(buffer, r.ptr);
}

// The EPSG code of a system: "EPSG:n" of a registry system, else the
// AUTHORITY["EPSG","n"] node that closes a WKT's root node (as GDAL writes
// it); 0 when there is none.
int RootEpsgCode(const std::string& text, const std::string& registryCode)
{
    const char* digits = nullptr;
    if (registryCode.compare(0, 5, "EPSG:") == 0) {
        digits = registryCode.c_str() + 5;
    } else {
        const std::string node = "AUTHORITY[\"EPSG\",\"";
        const size_t at = text.rfind(node);
        if (at == std::string::npos)
            return 0;
        const size_t end = text.find("\"]", at + node.size());
        // Only the root's: nothing but closing brackets and blanks after it.
        if (end == std::string::npos || text.find_first_not_of("] \t\r\n", end + 2) != std::string::npos ||
            text.find(']', end + 2) == std::string::npos)
            return 0;
        digits = text.c_str() + at + node.size();
    }
    long code = 0;
    int n = 0;
    for (; digits[n] >= '0' && digits[n] <= '9' && n < 10; ++n)
        code = code * 10 + (digits[n] - '0');
    const bool whole = n > 0 && (digits[n] == '\0' || digits[n] == '"');
    return whole && code <= 2147483647L ? static_cast<int>(code) : 0;
}

const char* AxisWord(int type)
{
    static const char* const words[] = {"east", "north", "west", "south"};
    return type >= 0 && type < 4 ? words[type] : "east";
}

} // namespace

struct CKvCliCommands::SCommand
{
    const char* name;
    const char* help;
    int (CKvCliCommands::*run)();
    int minPositionals;
    int maxPositionals; // -1: any number
    std::vector<CKvCliArguments::SOption> options;
};

const std::vector<CKvCliCommands::SCommand>& CKvCliCommands::_commands()
{
    static const std::vector<SCommand> commands = {
        {"transform", kTransformHelp, &CKvCliCommands::_transform, 2, -1,
         {{"inverse", false}, {"towgs84-from", true}, {"towgs84-to", true}, {"towgs84-convention", true},
          {"strict-datum", false}, {"bypass-datum", false},
          {"precision", true}, {"skip-header", true}, {"metres", false}, {"threads", true}, {"no-progress", false}}},
        {"info", kInfoHelp, &CKvCliCommands::_info, 1, 1, {}},
        {"proj4", kProj4Help, &CKvCliCommands::_proj4, 1, 1, {{"towgs84", true}, {"legacy", false}}},
        {"wkt", kWktHelp, &CKvCliCommands::_wkt, 1, 1, {{"esri", false}, {"ogc", false}}},
        {"list", kListHelp, &CKvCliCommands::_list, 0, 0, {{"type", true}, {"branch", true}, {"grep", true}}},
        {"ellipsoids", kEllipsoidsHelp, &CKvCliCommands::_ellipsoids, 0, 0, {{"system", false}, {"custom", false}}},
        {"zone", kZoneHelp, &CKvCliCommands::_zone, 1, 2, {}},
        {"geod", kGeodHelp, &CKvCliCommands::_geod, 4, 4, {{"cs", true}, {"inverse", false}}},
        {"check", kCheckHelp, &CKvCliCommands::_check, 1, 1, {}},
        {"add", kAddHelp, &CKvCliCommands::_add, 2, 4, {{"branch", true}, {"ellipsoid", false}}},
        {"remove", kRemoveHelp, &CKvCliCommands::_remove, 1, 1, {{"ellipsoid", false}}},
    };
    return commands;
}

CKvCliCommands::CKvCliCommands(const std::string& programPath, FILE* out, FILE* err)
    : m_programPath(programPath), m_out(out), m_err(err)
{
}

std::string CKvCliCommands::FindCatalogue(const std::string& programPath)
{
    std::vector<std::string> candidates;
#ifdef KVCART_RELATIVE_DATA_DIR
    const size_t slash = programPath.rfind('/');
    if (slash != std::string::npos)
        candidates.push_back(programPath.substr(0, slash + 1) + KVCART_RELATIVE_DATA_DIR);
#else
    (void)programPath;
#endif
#ifdef KVCART_SOURCE_DATA_DIR
    candidates.push_back(KVCART_SOURCE_DATA_DIR);
#endif
#ifdef KVCART_INSTALL_DATA_DIR
    candidates.push_back(KVCART_INSTALL_DATA_DIR);
#endif
    for (const std::string& candidate : candidates)
        if (HoldsCatalogue(WithSlash(candidate)))
            return WithSlash(candidate);
    return std::string();
}

std::string CKvCliCommands::DefaultUserDirectory()
{
    // The XDG base directories are absolute paths (a relative one is ignored).
    // A HOME that is unset, empty or relative would put the user's catalogue in
    // whatever the working directory happens to be: there is no default then.
    const char* xdg = std::getenv("XDG_CONFIG_HOME");
    if (xdg != nullptr && xdg[0] == '/')
        return WithSlash(xdg) + "kvcart/";
    const char* home = std::getenv("HOME");
    if (home != nullptr && home[0] == '/')
        return WithSlash(home) + ".config/kvcart/";
    return std::string();
}

int CKvCliCommands::_usage(const std::string& message) const
{
    std::fprintf(m_err, "kvcart: %s\n", message.c_str());
    if (m_pCommand != nullptr)
        std::fprintf(m_err, "Try 'kvcart %s --help'.\n", m_pCommand->name);
    else
        std::fprintf(m_err, "Try 'kvcart --help'.\n");
    return eUsage;
}

void CKvCliCommands::_help(const SCommand* command) const
{
    std::fputs(command != nullptr ? command->help : kMainHelp, m_out);
    if (command != nullptr)
        std::fputs("\nOptions of every command: --catalogue DIR, --user-dir DIR, --compatible-reading, --help, --version.\n", m_out);
}

int CKvCliCommands::Main(int argc, const char* const* argv)
{
    std::vector<CKvCliArguments::SOption> known = {{"catalogue", true}, {"user-dir", true}, {"help", false},
                                                   {"version", false}, {"compatible-reading", false}};
    for (const SCommand& command : _commands())
        known.insert(known.end(), command.options.begin(), command.options.end());
    std::string error;
    if (!m_args.Parse(argc, argv, known, error))
        return _usage(error);

    if (m_args.Has("version")) {
        std::fprintf(m_out, "kvcart %s\n", KVCART_VERSION);
        return eSuccess;
    }
    const std::string& name = m_args.GetCommand();
    for (const SCommand& command : _commands())
        if (name == command.name)
            m_pCommand = &command;
    if (name.empty() || (m_pCommand == nullptr && m_args.Has("help"))) {
        _help(nullptr);
        return name.empty() && !m_args.Has("help") ? eUsage : eSuccess;
    }
    if (m_pCommand == nullptr)
        return _usage("unknown command '" + name + "'");
    if (m_args.Has("help")) {
        _help(m_pCommand);
        return eSuccess;
    }
    std::vector<const char*> allowed = {"catalogue", "user-dir", "compatible-reading"};
    for (const CKvCliArguments::SOption& option : m_pCommand->options)
        allowed.push_back(option.name);
    const std::string stray = m_args.FirstNotIn(allowed);
    if (!stray.empty())
        return _usage("option '--" + stray + "' does not apply to " + name);
    const int count = static_cast<int>(m_args.GetPositionals().size());
    if (count < m_pCommand->minPositionals)
        return _usage("missing arguments");
    if (m_pCommand->maxPositionals >= 0 && count > m_pCommand->maxPositionals)
        return _usage("too many arguments");
    if (!_readCatalogue())
        return eUsage;
    // The program reads WKT as the EPSG registry defines it; the established
    // reading of the library's default is an option.
    CKvMapProjection::SetEpsgReading(!m_args.Has("compatible-reading"));
    return (this->*(m_pCommand->run))();
}

bool CKvCliCommands::_readCatalogue()
{
    if (m_args.Has("catalogue")) {
        m_catalogueDirectory = WithSlash(m_args.GetValue("catalogue"));
        if (!HoldsCatalogue(m_catalogueDirectory)) {
            std::fprintf(m_err, "kvcart: '%s' holds no catalogue (ellipsoid.gxr and map_projection.gxr)\n",
                         m_catalogueDirectory.c_str());
            return false;
        }
    } else {
        m_catalogueDirectory = FindCatalogue(m_programPath);
        if (m_catalogueDirectory.empty()) {
            std::fprintf(m_err, "kvcart: the catalogue was not found; name its directory with --catalogue DIR\n");
            return false;
        }
    }
    // Every command may name the user's definitions, so none runs without
    // knowing where they are.
    m_userDirectory = m_args.Has("user-dir") ? WithSlash(m_args.GetValue("user-dir")) : DefaultUserDirectory();
    if (m_userDirectory.empty()) {
        std::fprintf(m_err, "kvcart: %s\n",
                     m_args.Has("user-dir") ? "--user-dir names no directory"
                                            : "the user's catalogue has no directory: HOME is not set to an "
                                              "absolute directory (nor XDG_CONFIG_HOME); set HOME or pass "
                                              "--user-dir DIR");
        return false;
    }
    CKvCartSetup* setup = CKvCartSetup::Instance();
    setup->ReadData(m_catalogueDirectory, m_userDirectory);
    // The catalogue's own problems are reported by check; the user's file matters
    // to every command, since its definitions may be what is asked for.
    std::istringstream problems(setup->GetLastError());
    for (std::string line; std::getline(problems, line);)
        if (m_pCommand != nullptr && std::strcmp(m_pCommand->name, "check") != 0)
            std::fprintf(m_err, "kvcart: warning: %s\n", line.c_str());
    return true;
}

bool CKvCliCommands::_coordSysText(const std::string& argument, std::string& text) const
{
    if (argument.empty() || argument[0] != '@') {
        // A catalogue name in another case is taken as the catalogue spells it.
        text = CKvMapProjection::CatalogueSpelling(argument.c_str());
        return true;
    }
    const std::string path = argument.substr(1);
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        std::fprintf(m_err, "kvcart: cannot read '%s': %s\n", path.c_str(), std::strerror(errno));
        return false;
    }
    std::string content;
    char buffer[4096];
    while (file.read(buffer, sizeof buffer) || file.gcount() > 0) {
        content.append(buffer, static_cast<size_t>(file.gcount()));
        if (content.size() > kMaxPrjSize) {
            std::fprintf(m_err, "kvcart: '%s' is too large for a .prj file\n", path.c_str());
            return false;
        }
    }
    // A .prj file holds one WKT, sometimes spread over lines.
    for (char& c : content)
        if (c == '\r' || c == '\n' || c == '\t')
            c = ' ';
    const size_t first = content.find_first_not_of(' ');
    const size_t last = content.find_last_not_of(' ');
    text = first == std::string::npos ? std::string() : content.substr(first, last - first + 1);
    if (text.empty()) {
        std::fprintf(m_err, "kvcart: '%s' is empty\n", path.c_str());
        return false;
    }
    return true;
}

bool CKvCliCommands::_number(const std::string& argument, const char* what, double& value) const
{
    if (CKvPointStream::ParseNumber(argument, value))
        return true;
    _usage(std::string(what) + " '" + argument + "' is not a finite number");
    return false;
}

namespace {

// The system of a coordinate-system text, or null with the reason in error.
// shown is the argument as the user gave it: a name, a WKT text or @FILE.
std::unique_ptr<CKvMapProjection> MakeSystem(const std::string& text, const std::string& shown, std::string& error)
{
    std::unique_ptr<CKvMapProjection> system;
    try {
        system.reset(new CKvMapProjection(text));
    } catch (const std::out_of_range&) {
        error = "'" + shown + "' names no zone: use UTM-1 to UTM-60 ('kvcart zone LON' tells which)";
        return nullptr;
    }
    if (system->GetProjection() == nullptr) {
        const std::string& reason = system->GetMessage();
        // The library's reason for a name, quoted as the library quotes it: what
        // follows the name (the names closest to it, or the names it could be
        // in another case) is kept.
        CString name(text.c_str());
        name.Trim();
        std::string detail;
        for (const char* kind : {"unknown", "ambiguous"}) {
            const std::string quoted = std::string(kind) + " coordinate system \"" + name.GetStdString() + "\"";
            if (reason.compare(0, quoted.size(), quoted) == 0)
                detail = reason.substr(quoted.size());
        }
        std::string authority;
        int code = 0;
        const size_t close = detail.find("; did you mean ");
        if (close != std::string::npos)
            error = "unknown coordinate system '" + shown + "' ('kvcart list' shows the catalogue)" + detail.substr(close);
        else if (detail.compare(0, 2, ": ") == 0)
            error = "ambiguous coordinate system '" + shown + "'" + detail;
        else if (reason.compare(0, 26, "unknown coordinate system ") == 0 || reason.empty())
            error = "unknown coordinate system '" + shown + "' ('kvcart list' shows the catalogue)";
        else if (CKvEpsgRegistry::ParseCode(text.c_str(), authority, code))
            error = reason; // "EPSG:5515 (S-JTSK/05 / Modified Krovak): ..." names the code already
        else
            error = (shown.size() > 1 && shown[0] == '@' ? shown.substr(1) : std::string("the WKT text")) + ": " +
                    reason;
        return nullptr;
    }
    return system;
}

} // namespace

void CKvCliCommands::_reportReading(const std::string& shown, const CKvMapProjection& system, FILE* to,
                                    const char* prefix) const
{
    std::istringstream lines(system.GetMessage());
    const std::string what = shown.size() > 1 && shown[0] == '@' ? shown.substr(1) : shown;
    const bool longText = what.size() > 60;
    for (std::string line; std::getline(lines, line);)
        std::fprintf(to, "%s%s: %s\n", prefix, longText ? "the WKT text" : what.c_str(), line.c_str());
}

namespace {

// A registry system's area of use as the box its points are expected in,
// widened by half its size each way (at least a degree): points beyond it are
// not what the system is made for, and the program says so once.
void SetAreaOfUse(CKvPointStream& stream, const CKvMapProjection& system, bool target)
{
    double west = 0, south = 0, east = 0, north = 0;
    if (!system.GetAreaOfUse(west, south, east, north))
        return;
    char what[512];
    std::snprintf(what, sizeof what, "%s, %s (%s to %s E, %s to %s N)", system.GetRegistryCode().c_str(),
                  system.GetRegistryName().c_str(), Exact(west).c_str(), Exact(east).c_str(), Exact(south).c_str(),
                  Exact(north).c_str());
    const double width = east >= west ? east - west : east + 360.0 - west;
    const double mx = std::max(1.0, width / 2.0), my = std::max(1.0, (north - south) / 2.0);
    const double w = width + 2.0 * mx >= 360.0 ? -180.0 : west - mx;
    const double e = width + 2.0 * mx >= 360.0 ? 180.0 : w + width + 2.0 * mx;
    const double s = std::max(-90.0, south - my), n = std::min(90.0, north + my);
    if (system.IsGeographical()) {
        stream.SetExpectedBox(target, true, w, s, e, n, what);
        return;
    }
    // The widened area's outline on the grid, and the box around it.
    double x0 = HUGE_VAL, y0 = HUGE_VAL, x1 = -HUGE_VAL, y1 = -HUGE_VAL;
    const int steps = 64;
    for (int k = 0; k <= steps; ++k) {
        const double t = static_cast<double>(k) / steps;
        const double lon = w + t * (e - w), lat = s + t * (n - s);
        const double outline[4][2] = {{lon, s}, {lon, n}, {w, lat}, {e, lat}};
        for (const auto& p : outline) {
            double x = 0, y = 0;
            system.Geo2Proj(p[0], p[1], &x, &y);
            if (!std::isfinite(x) || !std::isfinite(y))
                continue;
            x0 = std::min(x0, x);
            x1 = std::max(x1, x);
            y0 = std::min(y0, y);
            y1 = std::max(y1, y);
        }
    }
    if (x0 <= x1 && y0 <= y1)
        stream.SetExpectedBox(target, false, x0, y0, x1, y1, what);
}

} // namespace

int CKvCliCommands::_transform()
{
    const std::vector<std::string>& args = m_args.GetPositionals();
    std::unique_ptr<CKvMapProjection> systems[2];
    for (int i = 0; i < 2; ++i) {
        std::string text, error;
        if (!_coordSysText(args[i], text))
            return eUsage;
        systems[i] = MakeSystem(text, args[i], error);
        if (!systems[i])
            return _usage(error);
        _reportReading(args[i], *systems[i], m_err, "kvcart: warning: ");
    }
    // "LONG/LAT" carries no ellipsoid, and the converter shifts nothing between
    // a system without one and any other. When a datum shift is asked for, on
    // the command line or in a WKT, such a side is taken as WGS 84, the datum
    // every shift leads to.
    bool shifted = m_args.Has("towgs84-from") || m_args.Has("towgs84-to");
    for (const auto& system : systems) {
        CKvDatumShift shift;
        system->GetDatumShift(shift);
        shifted = shifted || shift.GetType() != CKvCartDef::eNoDatumShift;
    }
    for (auto& system : systems) {
        CKvEllipsoid figure;
        if (shifted && system->IsGeographical() && !system->GetProjection()->GetAnonymousEllipsoid(figure))
            system.reset(new CKvMapProjection(CKvMapProjection::IDtoProjectionString(CKvMapProjection::eWgs84Geographic)));
    }
    CKvDatumConverter converter(systems[0].get(), systems[1].get());
    const bool fromGeo = systems[0]->IsGeographical(), toGeo = systems[1]->IsGeographical();
    converter.SetConversionType(fromGeo ? (toGeo ? CKvDatumConverter::eGeoToGeo : CKvDatumConverter::eGeoToProj)
                                        : (toGeo ? CKvDatumConverter::eProjToGeo : CKvDatumConverter::eProjToProj));
    // The rotations of a shift as typed: position vector (the library's
    // convention, EPSG method 9606) or coordinate frame (method 9607, as
    // projinfo prints many transformations), whose rotations are the negated
    // position-vector ones (EPSG Guidance Note 7-2, 4.4.3).
    const std::string convention = m_args.GetValue("towgs84-convention", "position-vector");
    if (convention != "position-vector" && convention != "coordinate-frame")
        return _usage("--towgs84-convention takes position-vector or coordinate-frame, not '" + convention + "'");
    const char* shiftOptions[2] = {"towgs84-from", "towgs84-to"};
    for (int i = 0; i < 2; ++i) {
        if (!m_args.Has(shiftOptions[i]))
            continue;
        double values[7] = {0, 0, 0, 0, 0, 0, 0};
        const int count = ParseShift(m_args.GetValue(shiftOptions[i]), values);
        if (count == 0)
            return _usage(std::string("--") + shiftOptions[i] + " takes 3 or 7 numbers separated by commas");
        if (convention == "coordinate-frame")
            for (int r = 3; r < 6; ++r)
                values[r] = -values[r];
        // The converter takes the rotations in radians and the scale as a plain correction.
        for (int r = 3; r < 6; ++r)
            values[r] *= kPi / (180.0 * 3600.0);
        values[6] *= 1e-6;
        converter.SetDatumShift(count == 3 ? CKvCartDef::eThreeParameters : CKvCartDef::eSevenParameters, values,
                                i == 0);
    }
    if (m_args.Has("bypass-datum"))
        converter.BypassXYZ();
    // A change of datum whose shift is not known is never made silently:
    // told once, before any point, or refused.
    if (!m_args.Has("bypass-datum") && !converter.GetMessage().empty()) {
        if (m_args.Has("strict-datum"))
            return _usage(converter.GetMessage() + "; refused (--strict-datum): give the shift with --towgs84-from or "
                                                   "--towgs84-to, or --bypass-datum for none");
        std::fprintf(m_err,
                     "kvcart: warning: %s (give the shift with --towgs84-from or --towgs84-to; --strict-datum refuses "
                     "such a conversion)\n",
                     converter.GetMessage().c_str());
    }

    const bool inverse = m_args.Has("inverse");
    const bool geoOut = inverse ? fromGeo : toGeo;
    int precisionXY = geoOut ? 9 : 4, precisionH = 4;
    if (m_args.Has("precision")) {
        double value = 0.0;
        if (!CKvPointStream::ParseNumber(m_args.GetValue("precision"), value) || value < 0 || value > 17 ||
            value != std::floor(value))
            return _usage("--precision takes a whole number from 0 to 17");
        precisionXY = precisionH = static_cast<int>(value);
    }
    long skipHeader = 0;
    if (m_args.Has("skip-header")) {
        double value = 0.0;
        if (!CKvPointStream::ParseNumber(m_args.GetValue("skip-header"), value) || value < 0 || value > 1e9 ||
            value != std::floor(value))
            return _usage("--skip-header takes a whole number of lines, 0 or more");
        skipHeader = static_cast<long>(value);
    }

    // One thread reads, the others convert: by default as many as the cores.
    int threads = static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
    if (m_args.Has("threads")) {
        double value = 0.0;
        if (!CKvPointStream::ParseNumber(m_args.GetValue("threads"), value) || value < 1 || value > 256 ||
            value != std::floor(value))
            return _usage("--threads takes a whole number from 1 to 256");
        threads = static_cast<int>(value);
    }

    // Projected coordinates are in their system's own linear unit (US survey
    // feet for a state plane in feet); the engines work in metres, so the unit
    // is applied around the conversion. --metres keeps the engines' metres.
    double units[2] = {1.0, 1.0};
    for (int i = 0; i < 2 && !m_args.Has("metres"); ++i) {
        const double factor = systems[i]->GetLinearUnit();
        if (factor > 0.0)
            units[i] = factor;
    }

    CKvPointStream stream(converter, inverse, precisionXY, precisionH);
    stream.SetUnits(units[0], units[1]);
    for (int i = 0; i < 2; ++i)
        SetAreaOfUse(stream, *systems[i], i == 1);
    stream.SetSkipHeader(skipHeader);
    stream.SetThreads(threads);
    stream.SetProgress(!m_args.Has("no-progress"));
    std::vector<std::string> files(args.begin() + 2, args.end());
    if (files.empty())
        files.emplace_back("-");
    long marked = 0;
    bool failed = false;
    for (const std::string& file : files) {
        FILE* in = file == "-" ? stdin : std::fopen(file.c_str(), "rb");
        if (in == nullptr) {
            const int error = errno;
            std::string shown;
            CKvPointStream::AppendEscaped(shown, file.data(), file.size());
            std::fprintf(m_err, "kvcart: cannot open '%s': %s\n", shown.c_str(), std::strerror(error));
            failed = true;
            continue;
        }
        const long result = stream.Run(in, file == "-" ? "stdin" : file.c_str(), m_out, m_err);
        if (in != stdin)
            std::fclose(in);
        if (result < 0)
            failed = true;
        else
            marked += result;
    }
    if (marked > 0)
        std::fprintf(m_err, "kvcart: %ld line%s could not be converted\n", marked, marked == 1 ? "" : "s");
    return marked > 0 || failed ? eBadInput : eSuccess;
}

int CKvCliCommands::_info()
{
    const std::string& argument = m_args.GetPositionals()[0];
    std::string text, error;
    if (!_coordSysText(argument, text))
        return eUsage;
    const std::unique_ptr<CKvMapProjection> system = MakeSystem(text, argument, error);
    if (!system)
        return _usage(error);
    const CKvProjection* engine = system->GetProjection();

    // The WKT as given, or as the engine describes a catalogue system.
    CString wkt;
    std::string registryText;
    const bool registry = CKvMapProjection::RegistryText(text.c_str(), registryText);
    if (CKvPRJParser::IsPRJ(CString(text.c_str()))) {
        wkt = text.c_str();
    } else if (registry) {
        wkt = registryText.c_str();
    } else {
        CKvPRJParser described(engine);
        described.Format(wkt);
    }
    CKvPRJParser parser(wkt);
    if (registry)
        parser.SetReading(CKvPRJParser::eEpsgReading);
    parser.Parse(false);

    std::fprintf(m_out, "Name:          %s\n", system->GetName());
    // The code of the registry's system a catalogue entry stands for.
    const CKvMapProjData* entry =
        CKvPRJParser::IsPRJ(CString(text.c_str())) ? nullptr : CKvMapProjection::FindMapProjectionDefinition(text.c_str());
    if (entry != nullptr && entry->GetEpsgCode() > 0)
        std::fprintf(m_out, "EPSG code:     %d\n", entry->GetEpsgCode());
    double west = 0, south = 0, east = 0, north = 0;
    if (system->GetAreaOfUse(west, south, east, north)) {
        std::fprintf(m_out, "Registry:      %s, %s\n", system->GetRegistryCode().c_str(),
                     system->GetRegistryName().c_str());
        std::fprintf(m_out, "Area of use:   longitude %s to %s, latitude %s to %s\n", Exact(west).c_str(),
                     Exact(east).c_str(), Exact(south).c_str(), Exact(north).c_str());
    }
    std::fprintf(m_out, "Projection:    %s\n", parser.GetProjectionTypeTitle().GetString());
    const int n = parser.GetNoOfParameters();
    for (int i = 0; i < n; ++i) {
        CString label, unit;
        double value = 0.0, factor = 1.0;
        if (parser.GetParameter(i, label, value, unit, factor))
            std::fprintf(m_out, "  %-34s %s%s%s\n", label.GetString(), Exact(value).c_str(), unit.IsEmpty() ? "" : " ",
                         unit.GetString());
    }
    CString ellipsoid, datum = parser.GetDatum();
    double a = 0.0, rf = 0.0;
    parser.GetEllipsoid(ellipsoid, a, rf);
    if (!ellipsoid.IsEmpty())
        std::fprintf(m_out, "Ellipsoid:     %s (a = %s m, 1/f = %s)\n", ellipsoid.GetString(), Exact(a).c_str(),
                     Exact(rf).c_str());
    if (!datum.IsEmpty())
        std::fprintf(m_out, "Datum:         %s\n", datum.GetString());

    // The origin as longitude and latitude, and where it falls on the grid.
    double x = 0.0, y = 0.0, lon = 0.0, lat = 0.0;
    system->GetOrigin(&lon, &lat);
    system->Geo2Proj(lon, lat, &x, &y);
    if (system->IsGeographical() || !std::isfinite(x) || !std::isfinite(y))
        std::fprintf(m_out, "Origin:        longitude %s, latitude %s\n", Exact(lon).c_str(), Exact(lat).c_str());
    else
        std::fprintf(m_out, "Origin:        longitude %s, latitude %s; grid %s %s\n", Exact(lon).c_str(),
                     Exact(lat).c_str(), Format(x, 3).c_str(), Format(y, 3).c_str());
    double x0 = 0.0, y0 = 0.0, x1 = 0.0, y1 = 0.0;
    system->GetDefaultArea(&x0, &y0, &x1, &y1);
    const int areaDecimals = system->IsGeographical() ? 6 : 3;
    std::fprintf(m_out, "Default area:  %s %s to %s %s\n", Format(x0, areaDecimals).c_str(),
                 Format(y0, areaDecimals).c_str(), Format(x1, areaDecimals).c_str(), Format(y1, areaDecimals).c_str());

    CString unitName;
    double factor = 0.0;
    if (!system->IsGeographical()) {
        parser.GetProjUnit(unitName, factor);
        if (!unitName.IsEmpty())
            std::fprintf(m_out, "Linear unit:   %s (%s m)\n", unitName.GetString(), Exact(factor).c_str());
        // A catalogue grid kept in another unit than its engine's metres.
        const double grid = system->GetLinearUnit();
        if (grid > 0.0 && grid != factor)
            std::fprintf(m_out, "Grid unit:     %s (%s m; kvcart transform reads and writes it, --metres the "
                                "engine's metres)\n",
                         grid == 1200.0 / 3937.0 ? "US survey foot" : "unit", Exact(grid).c_str());
    }
    parser.GetAngularUnit(unitName, factor);
    if (!unitName.IsEmpty())
        std::fprintf(m_out, "Angular unit:  %s (%s rad)\n", unitName.GetString(), Exact(factor).c_str());
    const int axes = system->GetCoordSysType();
    std::fprintf(m_out, "Axes:          %s, %s\n", AxisWord(axes / 4), AxisWord(axes % 4));

    CKvDatumShift shift;
    system->GetDatumShift(shift);
    // A catalogue definition tells how its shift is written, the EPSG code of
    // the transformation and its accuracy.
    const CKvMapProjData* definition = CKvPRJParser::IsPRJ(CString(text.c_str()))
                                           ? nullptr
                                           : CKvMapProjection::FindMapProjectionDefinition(text.c_str());
    if (definition != nullptr && !definition->HasDatumShift())
        definition = nullptr;
    if (!system->IsDatumShiftKnown()) {
        const std::string key = CKvDatumConverter::DatumKey(system->GetDatumName());
        if (key.empty() || key == "wgs1984")
            std::fprintf(m_out, "Datum shift:   none\n");
        else
            std::fprintf(m_out, "Datum shift:   not known for \"%s\" (kvcart transform warns when it changes datum)\n",
                         system->GetDatumName());
    } else {
        const int count = definition != nullptr ? definition->GetDatumShiftCount()
                          : shift.GetType() == CKvCartDef::eSevenParameters ? 7
                                                                            : 3;
        std::string values;
        for (int i = 0; i < count; ++i)
            values += (i ? "," : "") + Exact(shift[i]);
        std::string source;
        if (definition != nullptr && definition->GetDatumShiftCode() > 0)
            source += ", EPSG:" + std::to_string(definition->GetDatumShiftCode());
        if (definition != nullptr && definition->GetDatumShiftAccuracy() >= 0.0)
            source += ", accuracy " + Exact(definition->GetDatumShiftAccuracy()) + " m";
        std::fprintf(m_out, "Datum shift:   %s to WGS 84 (%s)%s\n", values.c_str(),
                     count == 3 ? "metres" : "metres, arc-seconds, ppm; position vector", source.c_str());
    }
    if (!system->GetDatumShiftSource().empty())
        std::fprintf(m_out, "Shift source:  %s\n", system->GetDatumShiftSource().c_str());
    std::fprintf(m_out, "Reading:       %s\n",
                 CKvMapProjection::GetEpsgReading() ? "EPSG (--compatible-reading for the library's default)"
                                                    : "compatible (the library's default)");
    {
        std::istringstream lines(system->GetMessage());
        for (std::string line; std::getline(lines, line);)
            std::fprintf(m_out, "Warning:       %s\n", line.c_str());
    }

    CString readable;
    CKvPRJParser::FormatAsReadableWKT(wkt, readable);
    std::string flowed = readable.GetStdString();
    std::string cleaned;
    for (char c : flowed)
        if (c != '\r')
            cleaned += c;
    std::fprintf(m_out, "WKT:\n%s\n", cleaned.c_str());
    try {
        const std::string proj = CKvProjTranslator().ConvertToProj(text, nullptr, 0);
        std::fprintf(m_out, "PROJ:          %s\n", proj.empty() ? "(none)" : proj.c_str());
        std::fprintf(m_out, "PROJ.4:        %s\n", CKvProjTranslator().Convert2Proj4(text, nullptr, 0).c_str());
    } catch (const std::exception&) {
        std::fprintf(m_out, "PROJ.4:        (none)\n");
    }
    return eSuccess;
}

int CKvCliCommands::_proj4()
{
    const std::string& argument = m_args.GetPositionals()[0];
    std::string text, error;
    if (!_coordSysText(argument, text))
        return eUsage;
    if (!MakeSystem(text, argument, error))
        return _usage(error);
    double values[7] = {0, 0, 0, 0, 0, 0, 0};
    int count = 0;
    if (m_args.Has("towgs84") && (count = ParseShift(m_args.GetValue("towgs84"), values)) == 0)
        return _usage("--towgs84 takes 3 or 7 numbers separated by commas");
    if (m_args.Has("legacy")) {
        const std::string proj4 = CKvProjTranslator().Convert2Proj4(text, count > 0 ? values : nullptr, count);
        if (proj4.empty()) {
            std::fprintf(m_err, "kvcart: '%s' has no PROJ.4 form\n", argument.c_str());
            return eBadInput;
        }
        std::fprintf(m_out, "%s\n", proj4.c_str());
        return eSuccess;
    }
    std::string reason;
    const std::string proj = CKvProjTranslator().ConvertToProj(text, count > 0 ? values : nullptr, count, &reason);
    if (proj.empty()) {
        std::fprintf(m_err, "kvcart: '%s' has no PROJ string: %s\n", argument.c_str(), reason.c_str());
        return eBadInput;
    }
    std::fprintf(m_out, "%s\n", proj.c_str());
    return eSuccess;
}

int CKvCliCommands::_wkt()
{
    const std::string& argument = m_args.GetPositionals()[0];
    if (m_args.Has("esri") && m_args.Has("ogc"))
        return _usage("--esri and --ogc exclude each other");
    std::string text, error;
    if (!_coordSysText(argument, text))
        return eUsage;
    if (!MakeSystem(text, argument, error))
        return _usage(error);
    // Both forms write the same record: the WKT as read (by the reading in
    // force), or a catalogue system as its definition describes it.
    CKvOgcWktWriter::SSystem system;
    std::string reason, wkt;
    bool written = false;
    if (m_args.Has("ogc")) {
        written = CKvOgcWktWriter::WriteSystem(text, wkt, reason);
    } else if ((written = CKvOgcWktWriter::Describe(text, system, reason))) {
        CString esri;
        written = system.record->Format(esri);
        wkt = esri.GetStdString();
        if (!written)
            reason = "the library writes no WKT for its projection";
    }
    if (!written) {
        std::fprintf(m_err, "kvcart: '%s' has no %s WKT: %s\n", argument.c_str(), m_args.Has("ogc") ? "OGC" : "ESRI",
                     reason.c_str());
        return eBadInput;
    }
    std::fprintf(m_out, "%s\n", wkt.c_str());
    return eSuccess;
}

int CKvCliCommands::_list()
{
    double mask = 15;
    if (m_args.Has("type") &&
        (!CKvPointStream::ParseNumber(m_args.GetValue("type"), mask) || mask < 1 || mask > 15 || mask != std::floor(mask)))
        return _usage("--type takes a whole number from 1 to 15");
    const int flags = static_cast<int>(mask);
    const bool byBranch = m_args.Has("branch");
    const std::string branch = m_args.GetValue("branch");
    // --grep: a piece of the name or of "EPSG:n", in either case; the lines
    // found end with the code.
    const bool byText = m_args.Has("grep");
    const std::string pattern = CKvNameSuggestions::Fold(m_args.GetValue("grep"));
    const CKvMapProjectionList& list = CKvCartSetup::Instance()->GetMapProjectionList();
    const std::string longLat = CKvMapProjection::IDtoProjectionString(CKvMapProjection::eLongLat);
    const std::string nonUtm = CKvMapProjection::IDtoProjectionString(CKvMapProjection::eNonUTM);
    long shown = 0;
    for (auto it = list.GetIteratorBegin(); it != list.GetIteratorEnd(); ++it) {
        const CKvMapProjData* d = *it;
        const std::string name = d->GetName();
        const bool selected = name == longLat  ? (flags & 4) != 0
                              : name == nonUtm ? (flags & 8) != 0
                                               : CKvMapProjData::IsEquivalent(flags, d->GetProjectionType());
        if (!selected || (byBranch && d->GetBranchName() != branch))
            continue;
        const std::string code = d->GetEpsgCode() > 0 ? "EPSG:" + std::to_string(d->GetEpsgCode()) : std::string();
        if (byText && CKvNameSuggestions::Fold(name).find(pattern) == std::string::npos &&
            (code.empty() || CKvNameSuggestions::Fold(code).find(pattern) == std::string::npos))
            continue;
        const std::string title = name == nonUtm ? "Local grid" : d->GetProjectionTypeTitle();
        std::fprintf(m_out, "%-46s %-34s %s%s%s%s\n", name.c_str(), title.c_str(), d->GetBranchName().c_str(),
                     d->CanDelete() ? " [user]" : "", byText && !code.empty() ? "  " : "",
                     byText ? code.c_str() : "");
        ++shown;
    }
    // The EPSG registry's systems too, by name or code ("EPSG:27700", "ESRI:102100").
    if (byText && !byBranch && flags == 15) {
        CKvEpsgRegistry::Instance().ForEach(
            [this, &pattern, &shown](const std::string& authority, int code, bool geographic, const std::string& name) {
                const std::string key = authority + ":" + std::to_string(code);
                if (CKvNameSuggestions::Fold(name).find(pattern) == std::string::npos &&
                    CKvNameSuggestions::Fold(key).find(pattern) == std::string::npos)
                    return;
                std::fprintf(m_out, "%-46s %-34s %s\n", key.c_str(), name.c_str(),
                             geographic ? "registry, geographic" : "registry, projected");
                ++shown;
            });
    }
    if (shown == 0 && byText) {
        // What the catalogue holds that is nearest to the text.
        CKvNameSuggestions candidates;
        for (auto it = list.GetIteratorBegin(); it != list.GetIteratorEnd(); ++it)
            candidates.Add((*it)->GetName(), (*it)->GetEpsgCode());
        const std::string near = CKvNameSuggestions::DidYouMean(candidates.Suggest(m_args.GetValue("grep")));
        std::fprintf(m_err, "kvcart: no definition%s matches '%s'%s%s\n", byBranch ? " of the branch" : "",
                     m_args.GetValue("grep").c_str(), near.empty() ? "" : "; ", near.c_str());
    } else if (shown == 0 && byBranch) {
        std::fprintf(m_err, "kvcart: no definition of branch '%s'\n", branch.c_str());
    }
    return eSuccess;
}

int CKvCliCommands::_ellipsoids()
{
    if (m_args.Has("system") && m_args.Has("custom"))
        return _usage("--system and --custom exclude each other");
    const CKvEllipsoidList::EEllipsoidTypes kind = m_args.Has("system")   ? CKvEllipsoidList::eSystem
                                                   : m_args.Has("custom") ? CKvEllipsoidList::eCustom
                                                                          : CKvEllipsoidList::eComplete;
    const CKvEllipsoidList& list = CKvCartSetup::Instance()->GetEllipsoidList();
    for (auto it = list.GetIteratorBegin(kind); it != list.GetIteratorEnd(kind); ++it)
        std::fprintf(m_out, "%-4s %-14s %-16s %s\n", (*it)->GetID().c_str(), Exact((*it)->GetMajor()).c_str(),
                     Exact((*it)->GetInvFlatness()).c_str(), (*it)->GetName().c_str());
    return eSuccess;
}

int CKvCliCommands::_zone()
{
    const std::vector<std::string>& args = m_args.GetPositionals();
    double lon = 0.0;
    if (!_number(args[0], "longitude", lon))
        return eUsage;
    if (args.size() > 1) {
        double lat = 0.0;
        if (!_number(args[1], "latitude", lat))
            return eUsage;
        std::string name, reason;
        int code = 0;
        if (!CKvMapProjection::UTMZoneName(lon, lat, name, code, &reason))
            return _usage("no zone for " + args[0] + " " + args[1] + ": " + reason);
        std::fprintf(m_out, "%s EPSG:%d\n", name.c_str(), code);
        return eSuccess;
    }
    // Into [-180, 180): 180 is the western edge of zone 1.
    lon = std::fmod(lon + 180.0, 360.0);
    if (lon < 0.0)
        lon += 360.0;
    lon -= 180.0;
    std::fprintf(m_out, "%s\n", CKvMapProjection::LongitudeToUTMZone(lon));
    return eSuccess;
}

int CKvCliCommands::_geod()
{
    const std::vector<std::string>& args = m_args.GetPositionals();
    // The direct problem: LON LAT AZIMUTH DISTANCE; the inverse (--inverse):
    // LON1 LAT1 LON2 LAT2.
    const bool inverse = m_args.Has("inverse");
    static const char* const names[2][4] = {{"longitude", "latitude", "azimuth", "distance"},
                                            {"longitude", "latitude", "longitude", "latitude"}};
    double v[4] = {0.0, 0.0, 0.0, 0.0};
    for (int i = 0; i < 4; ++i)
        if (!_number(args[i], names[inverse ? 1 : 0][i], v[i]))
            return eUsage;
    for (int i = 1; i < (inverse ? 4 : 2); i += 2)
        if (std::fabs(v[i]) > 90.0)
            return _usage("latitude '" + args[i] + "' is outside -90..90");
    std::string text = CKvMapProjection::IDtoProjectionString(CKvMapProjection::eLongLat), error;
    if (m_args.Has("cs") && !_coordSysText(m_args.GetValue("cs"), text))
        return eUsage;
    const std::unique_ptr<CKvMapProjection> system = MakeSystem(text, m_args.GetValue("cs", text), error);
    if (!system)
        return _usage(error);
    if (inverse) {
        double distance = 0.0, azimuth1 = 0.0, azimuth2 = 0.0;
        if (!system->GetInverseGeodesic(v[0], v[1], v[2], v[3], distance, azimuth1, azimuth2)) {
            std::fprintf(m_err, "kvcart: the geodesic could not be solved (the coordinate system has no ellipsoid)\n");
            return eBadInput;
        }
        std::fprintf(m_out, "%s %s %s\n", Format(distance, 6).c_str(), Format(azimuth1, 9).c_str(),
                     Format(azimuth2, 9).c_str());
        return eSuccess;
    }
    const double lon = v[0], lat = v[1], azimuth = v[2], distance = v[3];
    double lon2 = 0.0, lat2 = 0.0, azimuth2 = 0.0;
    if (!system->GetPoint(lon, lat, azimuth, distance, lon2, lat2, azimuth2) || !std::isfinite(lon2) ||
        !std::isfinite(lat2)) {
        std::fprintf(m_err, "kvcart: the geodesic could not be solved (no ellipsoid, or no convergence)\n");
        return eBadInput;
    }
    lon2 = std::remainder(lon2, 360.0);
    std::fprintf(m_out, "%s %s %s\n", Format(lon2, 9).c_str(), Format(lat2, 9).c_str(), Format(azimuth2, 9).c_str());
    return eSuccess;
}

int CKvCliCommands::_check()
{
    const std::string& path = m_args.GetPositionals()[0];
    GxrFile* file = gxrLoadFile(path.c_str());
    if (file == nullptr) {
        std::fprintf(m_out, "%s\n", gxrGetErrorMessageGlb());
        gxrGetErrorGlb();
        return eBadInput;
    }
    const bool ellipsoids = gxrGetNoTargets(file, "ELLIPSOID_DEFINITION") > 0;
    const bool projections = gxrGetNoTargets(file, "MAP_PROJECTION_DEFINITION") > 0;
    std::vector<int> sectionLines;
    for (const GxrTarget& target : file->targets)
        if (target.name == (ellipsoids ? "ELLIPSOID_DEFINITION" : "MAP_PROJECTION_DEFINITION"))
            for (const GxrSection& section : target.sections)
                sectionLines.push_back(section.line);
    gxrClose(file);
    if (!ellipsoids && !projections) {
        std::fprintf(m_out, "%s: no ELLIPSOID_DEFINITION or MAP_PROJECTION_DEFINITION target\n", path.c_str());
        return eBadInput;
    }

    // The file is read the way the catalogue reads a user file, into lists of its
    // own, and the entries taken from it are then checked against the catalogue.
    std::vector<std::string> problems;
    const auto addProblems = [&problems](const std::string& text) {
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);)
            problems.push_back(line);
    };
    const auto at = [&path](int line) { return path + ":" + std::to_string(line) + ": "; };
    CKvCartSetup* setup = CKvCartSetup::Instance();
    if (ellipsoids) {
        CKvEllipsoidList list;
        list.ReadEllipsoids(path, true);
        addProblems(list.GetProblems());
        std::map<std::string, int> seen;
        for (auto it = list.GetIteratorBegin(CKvEllipsoidList::eCustom);
             it != list.GetIteratorEnd(CKvEllipsoidList::eCustom); ++it) {
            const CKvEllipsoid& e = **it;
            const int line = list.GetSourceLine(&e);
            if (e.GetID().empty())
                problems.push_back(at(line) + "the ellipsoid has no ID_Code");
            if (e.GetName().empty())
                problems.push_back(at(line) + "the ellipsoid has no Ellipsoid_Name");
            if (!(e.GetMajor() > 0.0) || !std::isfinite(e.GetMajor()))
                problems.push_back(at(line) + "Semi_Major_Axis must be a positive length");
            if (!(e.GetInvFlatness() == 0.0 || e.GetInvFlatness() > 1.0) || !std::isfinite(e.GetInvFlatness()))
                problems.push_back(at(line) + "Inverse_Flatness must be 0 (a sphere) or greater than 1");
            if (!e.GetID().empty() && !seen.emplace(e.GetID(), line).second)
                problems.push_back(at(line) + "ID_Code '" + e.GetID() + "' is also used on line " +
                                   std::to_string(seen[e.GetID()]));
        }
    } else {
        CKvMapProjectionList list;
        list.ReadMapProjections(path, true);
        addProblems(list.GetProblems());
        std::map<std::string, int> seen;
        std::set<std::string> ids;
        for (auto it = list.GetIteratorBegin(); it != list.GetIteratorEnd(); ++it) {
            const CKvMapProjData& d = **it;
            const int line = list.GetSourceLine(&d);
            const std::string shortName = CKvPRJParser::ShortName(CString(d.GetName())).GetStdString();
            if (d.GetName().empty())
                problems.push_back(at(line) + "the definition has no Projection_Name");
            else if (!seen.emplace(shortName, line).second)
                problems.push_back(at(line) + "the name '" + d.GetName() + "' is also used on line " +
                                   std::to_string(seen[shortName]));
            if (d.GetProjectionType() != CKvMapProjData::eGeographical &&
                setup->GetEllipsoidList().GetEllipsoid(d.GetEllipsoidID()) == nullptr)
                problems.push_back(at(line) + "ellipsoid '" + d.GetEllipsoidID() + "' is not in the catalogue");
            const std::unique_ptr<CKvProjection, void (*)(CKvProjection*)> engine(d.CreateProjection(),
                                                                                  CKvProjection::Release);
            // The engine must map its own origin.
            double lon = NAN, lat = NAN, x = NAN, y = NAN;
            if (engine) {
                engine->GetOrigin(&lon, &lat);
                engine->Geo2Proj(lon, lat, &x, &y);
            }
            if (!engine || !std::isfinite(x) || !std::isfinite(y))
                problems.push_back(at(line) + "the parameters do not make a usable " + d.GetProjectionTypeTitle() +
                                   " projection");
        }
    }
    // In file order: "path:line: what".
    const auto lineOf = [&path](const std::string& problem) {
        return std::atoi(problem.c_str() + std::min(problem.size(), path.size() + 1));
    };
    std::stable_sort(problems.begin(), problems.end(),
                     [&lineOf](const std::string& a, const std::string& b) { return lineOf(a) < lineOf(b); });
    for (const std::string& problem : problems)
        std::fprintf(m_out, "%s\n", problem.c_str());
    if (problems.empty())
        std::fprintf(m_out, "%s: %zu %s%s, no problems\n", path.c_str(), sectionLines.size(),
                     ellipsoids ? "ellipsoid" : "definition", sectionLines.size() == 1 ? "" : "s");
    return problems.empty() ? eSuccess : eBadInput;
}

bool CKvCliCommands::_saveUserCatalogue()
{
    // The library merges the edit with what other programs saved since the
    // catalogue was read. A user file that did not read cleanly is not written
    // over, and an entry that another program changed differently keeps that
    // version: the library saves the edit to a rescue file beside it and says so.
    // Either way the catalogue file itself was not updated, which is a failure
    // here. Having asked for the message, the program prints it, and the library
    // does not repeat it at exit.
    CKvCartSetup* setup = CKvCartSetup::Instance();
    const bool directory = MakeDirectories(m_userDirectory);
    if (!directory)
        std::fprintf(m_err, "kvcart: cannot create the user directory '%s': %s\n", m_userDirectory.c_str(),
                     std::strerror(errno));
    const size_t known = setup->GetLastError().size();
    const bool saved = setup->WriteBack();
    const std::string error = setup->GetLastError();
    const std::string message = error.substr(std::min(known, error.size()));
    if (directory && saved && message.empty())
        return true;
    if (!message.empty())
        std::fprintf(m_err, "kvcart: the user catalogue was not updated:\n%s", message.c_str());
    return false;
}

int CKvCliCommands::_add()
{
    const std::vector<std::string>& args = m_args.GetPositionals();
    CKvCartSetup* setup = CKvCartSetup::Instance();
    if (m_args.Has("ellipsoid")) {
        if (args.size() != 4 || m_args.Has("branch"))
            return _usage("an ellipsoid takes ID NAME SEMI_MAJOR_AXIS INVERSE_FLATTENING");
        double a = 0.0, rf = 0.0;
        if (!_number(args[2], "semi-major axis", a) || !_number(args[3], "inverse flattening", rf))
            return eUsage;
        if (args[0].empty() || args[1].empty())
            return _usage("the ellipsoid needs an ID and a name");
        if (!(a > 0.0) || !(rf == 0.0 || rf > 1.0))
            return _usage("the semi-major axis must be positive and the inverse flattening 0 or greater than 1");
        if (setup->GetEllipsoidList().GetEllipsoid(args[0]) != nullptr) {
            std::fprintf(m_err, "kvcart: the catalogue already holds an ellipsoid '%s'\n", args[0].c_str());
            return eBadInput;
        }
        CKvMapProjection::AddEllipsoid(new CKvEllipsoid(args[1], args[0], a, rf));
        if (!_saveUserCatalogue())
            return eBadInput;
        std::fprintf(m_out, "added ellipsoid %s to %scustom_ellipsoid.gxr\n", args[0].c_str(), m_userDirectory.c_str());
        return eSuccess;
    }
    if (args.size() != 2)
        return _usage("a definition takes NAME CS");
    const std::string& name = args[0];
    if (name.find_first_not_of(' ') == std::string::npos)
        return _usage("the name is blank");
    if (CKvMapProjection::FindMapProjectionDefinition(name.c_str()) != nullptr) {
        std::fprintf(m_err, "kvcart: the catalogue already holds a definition named '%s'\n", name.c_str());
        return eBadInput;
    }
    std::string text, error;
    if (!_coordSysText(args[1], text))
        return eUsage;
    const std::unique_ptr<CKvMapProjection> system = MakeSystem(text, args[1], error);
    if (!system)
        return _usage(error);
    if (CKvMapProjection::IsLongLat(text.c_str()) || CKvMapProjection::IsLocal(text.c_str())) {
        std::fprintf(m_err, "kvcart: '%s' is built in and cannot be stored under another name\n", args[1].c_str());
        return eBadInput;
    }

    // A catalogue system is copied as it is defined; a WKT is stored in degrees
    // and metres, converted by the rules its engine was built with, on the
    // catalogue's ellipsoid of that name, else of the same figure.
    std::unique_ptr<CKvMapProjData> definition;
    if (const CKvMapProjData* source = CKvMapProjection::FindMapProjectionDefinition(text.c_str())) {
        double values[CKvMapProjData::MaxParameters] = {};
        std::string label;
        CKvMapProjData::EParamType kind;
        for (int i = 0; i < source->GetNoOfParameters(); ++i)
            source->GetParameter(i, label, values[i], kind);
        definition.reset(CKvMapProjData::CreateProjection(source->GetProjectionType(), name, source->GetBranchName(),
                                                          source->GetEllipsoidID(), values));
        // The copy is the same system: its EPSG code and datum shift go with it.
        if (definition) {
            definition->SetEpsgCode(source->GetEpsgCode());
            CKvDatumShift shift;
            if (source->GetDatumShift(shift))
                definition->SetDatumShift(shift.GetParameters(), source->GetDatumShiftCount(),
                                          source->GetDatumShiftCode(), source->GetDatumShiftAccuracy());
        }
    } else {
        // "EPSG:n" is stored as the registry defines it, read by the registry's rules.
        std::string registryText;
        const bool registry = CKvMapProjection::RegistryText(text.c_str(), registryText);
        CKvPRJParser parser(registry ? registryText.c_str() : text.c_str());
        if (registry)
            parser.SetReading(CKvPRJParser::eEpsgReading);
        parser.Parse(false);
        parser.ConvertToDegreesAndMetres();
        definition.reset(parser._CreateProjData());
        CString ellipsoidName;
        double a = 0.0, rf = 0.0;
        parser.GetEllipsoid(ellipsoidName, a, rf);
        const CKvEllipsoidList& ellipsoids = setup->GetEllipsoidList();
        const CKvEllipsoid* ellipsoid = ellipsoids.GetEllipsoidFromName(ellipsoidName.GetStdString());
        const CKvEllipsoid figure("", "", a, rf);
        for (auto it = ellipsoids.GetIteratorBegin(CKvEllipsoidList::eComplete);
             ellipsoid == nullptr && it != ellipsoids.GetIteratorEnd(CKvEllipsoidList::eComplete); ++it)
            if ((*it)->IsEquivalent(figure))
                ellipsoid = *it;
        if (definition && ellipsoid == nullptr) {
            std::fprintf(m_err,
                         "kvcart: the ellipsoid '%s' (a = %s, 1/f = %s) is not in the catalogue; add it first with "
                         "'kvcart add --ellipsoid ID NAME A 1/F'\n",
                         ellipsoidName.GetString(), Exact(a).c_str(), Exact(rf).c_str());
            return eBadInput;
        }
        if (definition)
            definition->SetEllipsoidID(ellipsoid->GetID());
    }
    if (definition)
        definition->SetName(name);
    // A WKT's TOWGS84 (a zero one too) is kept as the definition's shift, and
    // the EPSG code it gives its system (GDAL's closing AUTHORITY node) as its code.
    if (definition && !CKvMapProjection::FindMapProjectionDefinition(text.c_str())) {
        CKvDatumShift shift;
        system->GetDatumShift(shift);
        if (system->IsDatumShiftKnown()) {
            // A registry system's shift keeps its transformation's code and accuracy.
            std::string authority;
            int code = 0, transformation = 0;
            double accuracy = -1.0;
            CKvEpsgRegistry::SEntry entry;
            if (CKvEpsgRegistry::ParseCode(system->GetRegistryCode().c_str(), authority, code) &&
                CKvEpsgRegistry::Instance().Find(authority, code, entry) && entry.hasShift) {
                if (entry.shift.code.compare(0, 5, "EPSG:") == 0)
                    transformation = std::atoi(entry.shift.code.c_str() + 5);
                accuracy = entry.shift.accuracy;
            }
            definition->SetDatumShift(shift.GetParameters(), shift.GetType() == CKvCartDef::eSevenParameters ? 7 : 3,
                                      transformation, accuracy);
        }
        definition->SetEpsgCode(RootEpsgCode(text, system->GetRegistryCode()));
    }
    if (!definition) {
        std::fprintf(m_err, "kvcart: '%s' has no projection to store\n", args[1].c_str());
        return eBadInput;
    }
    if (m_args.Has("branch"))
        definition->SetBranchName(m_args.GetValue("branch"));
    definition->SetPermissions(true, true);
    CKvMapProjection::AddMapProjection(definition.release());
    if (!_saveUserCatalogue())
        return eBadInput;
    std::fprintf(m_out, "added '%s' to %scustom_projection.gxr\n", name.c_str(), m_userDirectory.c_str());
    return eSuccess;
}

int CKvCliCommands::_remove()
{
    const std::string& name = m_args.GetPositionals()[0];
    CKvCartSetup* setup = CKvCartSetup::Instance();
    if (m_args.Has("ellipsoid")) {
        CKvEllipsoidList& list = setup->GetEllipsoidList();
        CKvEllipsoid* found = nullptr;
        for (auto it = list.GetIteratorBegin(CKvEllipsoidList::eCustom);
             it != list.GetIteratorEnd(CKvEllipsoidList::eCustom); ++it)
            if ((*it)->GetID() == name)
                found = *it;
        if (found == nullptr) {
            std::fprintf(m_err, "kvcart: the user's catalogue holds no ellipsoid '%s'%s\n", name.c_str(),
                         list.GetEllipsoid(name) != nullptr ? " (the shipped ellipsoids cannot be removed)" : "");
            return eBadInput;
        }
        const CKvMapProjectionList& projections = setup->GetMapProjectionList();
        for (auto it = projections.GetIteratorBegin(); it != projections.GetIteratorEnd(); ++it)
            if ((*it)->GetEllipsoidID() == name) {
                std::fprintf(m_err, "kvcart: ellipsoid '%s' is used by '%s'\n", name.c_str(),
                             (*it)->GetName().c_str());
                return eBadInput;
            }
        CKvMapProjection::DeleteEllipsoid(found);
        if (!_saveUserCatalogue())
            return eBadInput;
        std::fprintf(m_out, "removed ellipsoid %s\n", name.c_str());
        return eSuccess;
    }
    const CKvMapProjData* found = CKvMapProjection::FindMapProjectionDefinition(name.c_str());
    if (found == nullptr) {
        std::fprintf(m_err, "kvcart: the catalogue holds no definition named '%s'\n", name.c_str());
        return eBadInput;
    }
    if (!found->CanDelete()) {
        std::fprintf(m_err, "kvcart: '%s' belongs to the shipped catalogue and cannot be removed\n", name.c_str());
        return eBadInput;
    }
    CKvMapProjection::DeleteMapProjection(CKvMapProjection::MapProjection(name.c_str()));
    if (!_saveUserCatalogue())
        return eBadInput;
    std::fprintf(m_out, "removed '%s'\n", name.c_str());
    return eSuccess;
}
