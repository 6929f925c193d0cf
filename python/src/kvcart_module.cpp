// The compiled core of the Python package: coordinate systems resolved by
// CKvMapProjection, conversions by CKvDatumConverter set up as the kvcart
// program sets them up, and the point loop over numpy's memory. The Python
// layer (kvcart/__init__.py) shapes the arguments; what reaches run() here is
// two one-dimensional float64 arrays to convert in place.
#include "catalogue/KvCartSetup.h"
#include "catalogue/KvEllipsoidList.h"
#include "coordsys/KvCartography.h"
#include "coordsys/KvMapProjection.h"
#include "geodesy/KvDatumConverter.h"
#include "geodesy/KvDatumShift.h"
#include "geodesy/KvGeodesic.h"
#include "paramfile/String.h"
#include "projections/KvProjection.h"
#include "wkt/KvOgcWktWriter.h"
#include "wkt/KvPRJParser.h"
#include "wkt/KvProjTranslator.h"

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstddef>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace py = pybind11;

namespace {

// Columns of points for the per-point functions (convergence, geocentric
// coordinates, geodesics, site grids): one-dimensional, C-contiguous float64
// arrays of one length, which the Python layer makes by broadcasting its
// arguments. The loop runs without the GIL and allocates nothing.
struct SColumns
{
    std::size_t n = 0;
    const double* in[4] = {nullptr, nullptr, nullptr, nullptr};
    double* out[3] = {nullptr, nullptr, nullptr};
};

bool IsColumn(const py::array& a)
{
    return a.ndim() == 1 && py::isinstance<py::array_t<double>>(a) &&
           (a.flags() & py::array::c_style) != 0;
}

SColumns Columns(std::initializer_list<py::array> in, std::initializer_list<py::array> out)
{
    SColumns columns;
    bool first = true;
    auto check = [&](const py::array& a) {
        if (!IsColumn(a))
            throw py::type_error("the core takes one-dimensional contiguous float64 arrays");
        const std::size_t n = static_cast<std::size_t>(a.shape(0));
        if (!first && n != columns.n)
            throw py::value_error("the arrays differ in length");
        columns.n = n;
        first = false;
    };
    std::size_t k = 0;
    for (const py::array& a : in) {
        check(a);
        columns.in[k++] = static_cast<const double*>(a.data());
    }
    k = 0;
    for (py::array a : out) {
        check(a);
        if (!a.writeable())
            throw py::value_error("the arrays are not writable");
        columns.out[k++] = static_cast<double*>(a.mutable_data());
    }
    return columns;
}

// One coordinate system and the text it was made from (the catalogue's
// spelling of a name given in another case, as the program takes it).
class CoreCRS
{
public:
    explicit CoreCRS(const std::string& given)
    {
        if (given.find('\0') != std::string::npos)
            throw py::value_error("a coordinate-system string cannot hold a NUL character");
        m_text = CKvMapProjection::CatalogueSpelling(given.c_str());
        try {
            m_system = std::make_shared<const CKvMapProjection>(m_text);
        } catch (const std::out_of_range&) {
            const std::string& said = CKvMapProjection::GetLastMessage();
            throw py::value_error(said.empty() ? "'UTM' names no zone: use UTM-1 to UTM-60" : said);
        }
        if (m_system->GetProjection() == nullptr) {
            std::string reason = m_system->GetMessage();
            if (reason.empty())
                reason = "unknown coordinate system \"" + given + "\"";
            throw py::value_error(reason);
        }
    }

    const std::string& Text() const { return m_text; }
    const CKvMapProjection& System() const { return *m_system; }

    std::string Name() const { return m_system->GetName(); }
    bool IsGeographic() const { return m_system->IsGeographical(); }
    bool IsLocal() const { return m_system->IsLocal(); }

    py::object DatumShift() const
    {
        if (!m_system->IsDatumShiftKnown())
            return py::none();
        CKvDatumShift shift;
        m_system->GetDatumShift(shift);
        py::tuple values(CKvDatumShift::NoOfParameters);
        for (int i = 0; i < CKvDatumShift::NoOfParameters; ++i)
            values[static_cast<std::size_t>(i)] = py::float_(shift[i]);
        return std::move(values);
    }

    // OGC WKT 1, as GDAL writes it. The library's own form (`kvcart wkt
    // --esri`) is not offered: it writes a catalogue grid kept in US survey
    // feet in metres, leaves a catalogue entry's datum shift out and writes a
    // geographic system as a projected one, so it does not read back as the
    // same system.
    std::string ToWkt() const
    {
        std::string wkt, reason;
        if (!CKvOgcWktWriter::WriteSystem(m_text, wkt, reason))
            throw py::value_error("no OGC WKT for " + Shown() + ": " + reason);
        return wkt;
    }

    std::string ToProj4() const
    {
        std::string reason;
        const std::string proj = CKvProjTranslator().ConvertToProj(m_text, nullptr, 0, &reason);
        if (proj.empty())
            throw py::value_error("no PROJ string for " + Shown() + ": " + reason);
        return proj;
    }

    // The text in a message: a long WKT is named by its system's name.
    std::string Shown() const
    {
        if (m_text.size() <= 60)
            return "'" + m_text + "'";
        return "the WKT of \"" + Name() + "\"";
    }

    const std::string& Message() const { return m_system->GetMessage(); }

    // The coordinates' axes, in the order the library reads and writes them:
    // (direction, unit name, metres or degrees per unit) for each.
    py::list Axes() const
    {
        static const char* const kDirections[4] = {"east", "north", "west", "south"};
        py::list axes;
        if (m_system->IsGeographical()) {
            axes.append(py::make_tuple("east", "degree", 1.0));
            axes.append(py::make_tuple("north", "degree", 1.0));
            return axes;
        }
        int directions[2] = {0, 1};
        Directions(directions);
        double factor = 0.0;
        std::string unit = LinearUnit(factor);
        axes.append(py::make_tuple(kDirections[directions[0]], unit, factor));
        axes.append(py::make_tuple(kDirections[directions[1]], unit, factor));
        return axes;
    }

    // The directions (0 east, 1 north, 2 west, 3 south) of a projected
    // system's two coordinates as they are written, whichever way the engine
    // and the text's axes make them: seen on the map, as the coordinates move
    // for a step east and a step north from a point inside the system's area
    // (the registry's area, else around the projection's origin). A grid
    // that is turned against the meridians gets the nearest directions.
    void Directions(int directions[2]) const
    {
        // Candidates in order: the registry's area's centre, the projection's
        // default area's centre, then two fixed points.
        double bases[4][2] = {{0.0, 0.0}, {0.0, 0.0}, {0.0, 0.0}, {0.0, 45.0}};
        double west = 0.0, south = 0.0, east = 0.0, north = 0.0;
        if (m_system->GetAreaOfUse(west, south, east, north)) {
            const double width = east >= west ? east - west : east - west + 360.0;
            bases[0][0] = west + width / 2.0;
            bases[0][1] = (south + north) / 2.0;
        } else {
            bases[0][0] = std::nan("");
        }
        double x0 = 0.0, y0 = 0.0, x1 = 0.0, y1 = 0.0;
        m_system->GetDefaultArea(&x0, &y0, &x1, &y1);
        m_system->Proj2Geo((x0 + x1) / 2.0, (y0 + y1) / 2.0, &bases[1][0], &bases[1][1]);
        constexpr double Step = 1e-4; // degrees: some 10 m
        for (const auto& base : bases) {
            const double lon = base[0], lat = base[1];
            if (!std::isfinite(lon) || !(std::fabs(lat) < 89.0))
                continue;
            double x = 0.0, y = 0.0, xe = 0.0, ye = 0.0, xn = 0.0, yn = 0.0;
            m_system->Geo2Proj(lon, lat, &x, &y);
            m_system->Geo2Proj(lon + Step, lat, &xe, &ye);
            m_system->Geo2Proj(lon, lat + Step, &xn, &yn);
            const double ex = xe - x, ey = ye - y, nx = xn - x, ny = yn - y;
            if (!std::isfinite(ex + ey + nx + ny) || ex * ny - ey * nx == 0.0)
                continue;
            // The first coordinate follows east or west when the step east moves
            // it more than the step north does.
            const bool firstEastWest = std::fabs(ex) * std::hypot(nx, ny) >= std::fabs(nx) * std::hypot(ex, ey);
            if (firstEastWest) {
                directions[0] = ex > 0.0 ? 0 : 2;
                directions[1] = ny > 0.0 ? 1 : 3;
            } else {
                directions[0] = nx > 0.0 ? 1 : 3;
                directions[1] = ey > 0.0 ? 0 : 2;
            }
            return;
        }
    }

    // The name and size (metres per unit) of a projected system's unit, as
    // a transformer reads and writes its coordinates: a catalogue grid kept in
    // US survey feet is in feet, where its engine's description is in metres.
    std::string LinearUnit(double& factor) const
    {
        factor = m_system->GetLinearUnit();
        double described = 0.0;
        char name[CKvProjectionInfo::UnitNameSize + 1] = {0};
        const bool named = m_system->GetUnit(CKvMapProjection::eProjUnit, &described, name);
        if (!(factor > 0.0)) {
            // No usable unit named (a local grid): the engine's metres.
            factor = 1.0;
            return "metre";
        }
        if (named && name[0] != '\0' && described == factor)
            return name;
        if (factor == 1200.0 / 3937.0)
            return "US survey foot";
        return factor == 1.0 ? "metre" : "unnamed";
    }

    py::object AreaOfUse() const
    {
        double west = 0.0, south = 0.0, east = 0.0, north = 0.0;
        if (!m_system->GetAreaOfUse(west, south, east, north))
            return py::none();
        return py::make_tuple(west, south, east, north);
    }

    py::tuple DefaultArea() const
    {
        double x0 = 0.0, y0 = 0.0, x1 = 0.0, y1 = 0.0;
        m_system->GetDefaultArea(&x0, &y0, &x1, &y1);
        return py::make_tuple(x0, y0, x1, y1);
    }

    // The angle from true north to grid north at each (lon, lat), degrees.
    void Convergence(py::array lon, py::array lat, py::array out) const
    {
        const SColumns c = Columns({lon, lat}, {out});
        py::gil_scoped_release release;
        for (std::size_t i = 0; i < c.n; ++i)
            c.out[0][i] = m_system->GetConvergence(c.in[0][i], c.in[1][i]);
    }

    // Geocentric X, Y, Z on the system's ellipsoid from longitude, latitude
    // and height (toXYZ), or back.
    void Geocentric(bool toXYZ, py::array a, py::array b, py::array c3, py::array u, py::array v, py::array w) const
    {
        const SColumns c = Columns({a, b, c3}, {u, v, w});
        if (!HasFigure())
            throw py::value_error(Shown() + " has no ellipsoid: no geocentric coordinates");
        py::gil_scoped_release release;
        for (std::size_t i = 0; i < c.n; ++i) {
            if (toXYZ)
                m_system->Geo2XYZ(c.in[0][i], c.in[1][i], c.in[2][i], &c.out[0][i], &c.out[1][i], &c.out[2][i]);
            else
                m_system->XYZ2Geo(c.in[0][i], c.in[1][i], c.in[2][i], &c.out[0][i], &c.out[1][i], &c.out[2][i]);
        }
    }

    // The figure of the system's geodesics: (a, f), or None without one.
    py::object Figure() const
    {
        const CKvGeodesic& geodesic = m_system->GetGeodesic();
        if (!geodesic.IsValid())
            return py::none();
        return py::make_tuple(geodesic.GetMajor(), geodesic.GetFlattening());
    }

private:
    bool HasFigure() const
    {
        CKvEllipsoid figure;
        return m_system->GetProjection()->GetAnonymousEllipsoid(figure);
    }

    std::string m_text;
    std::shared_ptr<const CKvMapProjection> m_system;
};

bool IsWkt(const std::string& text)
{
    return CKvPRJParser::IsPRJ(CString(text.c_str()));
}

// Whether a projected system's first axis is a northing or southing
// (EPSG:2193, the Krovak grids): always_xy hands such a side over as
// easting/westing first.
bool NorthingFirst(const CKvMapProjection& system)
{
    if (system.IsGeographical())
        return false;
    const int first = system.GetCoordSysType() / 4;
    return first == CKvProjectionInfo::CAxis::eNorth || first == CKvProjectionInfo::CAxis::eSouth;
}

// A conversion between two systems, as `kvcart transform` makes it: a
// geographical side without an ellipsoid is WGS 84 when any datum shift is in
// play, the conversion type follows the two sides, and projected coordinates
// are read and written in their system's own linear unit.
//
// Shared between threads: CKvDatumConverter::Convert/InvConvert are const and
// write nothing of the converter (the block buffers are on the stack), the
// systems' batch transforms are const, and the engines are immutable after
// construction. The only per-thread state the library keeps (the last message)
// is touched when systems are made, never by a transform.
class CoreTransformer
{
public:
    CoreTransformer(const CoreCRS& source, const CoreCRS& target, bool alwaysXY)
    {
        const CoreCRS* sides[2] = {&source, &target};
        bool shifted = false;
        for (int i = 0; i < 2; ++i) {
            m_systems[i] = std::make_unique<CKvMapProjection>(sides[i]->System());
            CKvDatumShift shift;
            m_systems[i]->GetDatumShift(shift);
            shifted = shifted || shift.GetType() != CKvCartDef::eNoDatumShift;
        }
        for (auto& system : m_systems) {
            CKvEllipsoid figure;
            if (shifted && system->IsGeographical() && !system->GetProjection()->GetAnonymousEllipsoid(figure))
                system = std::make_unique<CKvMapProjection>(
                    CKvMapProjection::IDtoProjectionString(CKvMapProjection::eWgs84Geographic));
        }
        m_converter = std::make_unique<CKvDatumConverter>(m_systems[0].get(), m_systems[1].get());
        const bool fromGeo = m_systems[0]->IsGeographical(), toGeo = m_systems[1]->IsGeographical();
        m_converter->SetConversionType(fromGeo ? (toGeo ? CKvDatumConverter::eGeoToGeo : CKvDatumConverter::eGeoToProj)
                                               : (toGeo ? CKvDatumConverter::eProjToGeo
                                                        : CKvDatumConverter::eProjToProj));
        for (int i = 0; i < 2; ++i) {
            const double factor = m_systems[i]->GetLinearUnit();
            m_units[i] = factor > 0.0 ? factor : 1.0;
            m_swap[i] = alwaysXY && NorthingFirst(*m_systems[i]);
        }
    }

    const std::string& Message() const { return m_converter->GetMessage(); }
    double Unit(bool source) const { return m_units[source ? 0 : 1]; }
    bool Swaps(bool source) const { return m_swap[source ? 0 : 1]; }

    // source: x, y and, when there are three, heights; target: as many
    // arrays for the results, which may be the source arrays themselves (in
    // place). One-dimensional float64 arrays of one length, with any strides;
    // the targets writable and apart from one another. threads > 1 splits the
    // points into that many contiguous runs, each converted on a thread of its
    // own; the results are those of one thread, bit for bit, since every point
    // is converted on its own.
    void Run(const py::tuple& source, const py::tuple& target, bool inverse, int threads) const
    {
        const std::size_t axes = source.size();
        if ((axes != 2 && axes != 3) || target.size() != axes)
            throw py::value_error("run() takes two or three source arrays and as many target arrays");
        SPoints points;
        for (std::size_t k = 0; k < 2 * axes; ++k) {
            const py::handle item = k < axes ? source[k] : target[k - axes];
            // Equivalent to native float64, not the same dtype object: an
            // unpickled array carries a dtype of its own.
            if (!py::isinstance<py::array_t<double>>(item) || py::reinterpret_borrow<py::array>(item).ndim() != 1)
                throw py::type_error("run() takes one-dimensional float64 arrays");
            py::array a = py::reinterpret_borrow<py::array>(item);
            if (k > 0 && static_cast<std::size_t>(a.shape(0)) != points.n)
                throw py::value_error("the arrays differ in length");
            points.n = static_cast<std::size_t>(a.shape(0));
            if (k < axes) {
                points.in[k] = static_cast<const char*>(a.data());
                points.inStride[k] = a.strides(0);
            } else {
                if (!a.writeable())
                    throw py::value_error("the target arrays are not writable");
                points.out[k - axes] = static_cast<char*>(a.mutable_data());
                points.outStride[k - axes] = a.strides(0);
            }
        }
        if (points.n > 0)
            for (std::size_t i = 0; i < axes; ++i)
                for (std::size_t j = i + 1; j < axes; ++j)
                    if (points.out[i] == points.out[j])
                        throw py::value_error("two of the target arrays are the same memory");
        if (threads < 1)
            throw py::value_error("threads must be at least 1");

        // Fewer threads than asked for when there are few points: a thread is
        // worth its start only over some thousands of them.
        constexpr std::size_t MinPerThread = 4096;
        std::size_t parts = static_cast<std::size_t>(threads);
        if (parts > 1 && points.n / parts < MinPerThread)
            parts = points.n / MinPerThread > 1 ? points.n / MinPerThread : 1;

        py::gil_scoped_release release;
        if (parts <= 1) {
            _convert(points, 0, points.n, inverse);
            return;
        }
        std::vector<std::thread> workers;
        workers.reserve(parts - 1);
        const std::size_t share = points.n / parts, extra = points.n % parts;
        std::size_t first = 0;
        std::size_t mine = 0;
        try {
            for (std::size_t p = 0; p < parts; ++p) {
                const std::size_t count = share + (p < extra ? 1 : 0);
                if (p + 1 == parts)
                    mine = first; // the calling thread takes the last run
                else
                    workers.emplace_back([this, &points, first, count, inverse] {
                        _convert(points, first, first + count, inverse);
                    });
                first += count;
            }
        } catch (...) {
            // No thread to be had: the runs started finish, and the call fails.
            for (std::thread& worker : workers)
                worker.join();
            throw;
        }
        _convert(points, mine, points.n, inverse);
        for (std::thread& worker : workers)
            worker.join();
    }

private:
    // The coordinates of run(): x, y and heights (null base when none).
    struct SPoints
    {
        std::size_t n = 0;
        const char* in[3] = {nullptr, nullptr, nullptr};
        char* out[3] = {nullptr, nullptr, nullptr};
        std::ptrdiff_t inStride[3] = {0, 0, 0};
        std::ptrdiff_t outStride[3] = {0, 0, 0};
    };

    // Converts points [begin, end) through blocks on the stack: no allocation
    // per point, and the engines' batch loops run on contiguous memory.
    void _convert(const SPoints& points, std::size_t begin, std::size_t end, bool inverse) const
    {
        const int in = inverse ? 1 : 0, out = inverse ? 0 : 1;
        const double unitIn = m_units[in], unitOut = m_units[out];
        const bool swapIn = m_swap[in], swapOut = m_swap[out];
        const bool heights = points.in[2] != nullptr;
        // Contiguous arrays in the engines' own axes and unit (the common case:
        // lon/lat to metres) go to the converter as they lie, after one copy of
        // the input into the output when they differ.
        bool direct = !swapIn && !swapOut && unitIn == 1.0 && unitOut == 1.0;
        for (int axis = 0; axis < (heights ? 3 : 2); ++axis)
            direct = direct && points.inStride[axis] == sizeof(double) && points.outStride[axis] == sizeof(double);
        if (direct) {
            // In runs that stay in the core's cache between the copy and the
            // conversion, so that memory is passed over once.
            constexpr std::size_t Run = 8192;
            for (std::size_t first = begin; first < end; first += Run) {
                const std::size_t count = end - first < Run ? end - first : Run;
                double* target[3] = {nullptr, nullptr, nullptr};
                for (int axis = 0; axis < (heights ? 3 : 2); ++axis) {
                    target[axis] = reinterpret_cast<double*>(points.out[axis]) + first;
                    const double* source = reinterpret_cast<const double*>(points.in[axis]) + first;
                    if (source != target[axis])
                        std::memmove(target[axis], source, count * sizeof(double));
                }
                if (inverse)
                    m_converter->InvConvert(count, target[0], target[1], target[2]);
                else
                    m_converter->Convert(count, target[0], target[1], target[2]);
            }
            return;
        }
        constexpr std::size_t Block = 256;
        double bx[Block], by[Block], bh[Block];
        auto from = [&points](int axis, std::size_t k) {
            return *reinterpret_cast<const double*>(points.in[axis] +
                                                    static_cast<std::ptrdiff_t>(k) * points.inStride[axis]);
        };
        auto to = [&points](int axis, std::size_t k) {
            return reinterpret_cast<double*>(points.out[axis] + static_cast<std::ptrdiff_t>(k) * points.outStride[axis]);
        };
        for (std::size_t first = begin; first < end; first += Block) {
            const std::size_t count = end - first < Block ? end - first : Block;
            for (std::size_t i = 0; i < count; ++i) {
                const double vx = from(0, first + i), vy = from(1, first + i);
                bx[i] = swapIn ? vy : vx;
                by[i] = swapIn ? vx : vy;
            }
            if (heights)
                for (std::size_t i = 0; i < count; ++i)
                    bh[i] = from(2, first + i);
            if (unitIn != 1.0)
                for (std::size_t i = 0; i < count; ++i) {
                    bx[i] *= unitIn;
                    by[i] *= unitIn;
                }
            if (inverse)
                m_converter->InvConvert(count, bx, by, heights ? bh : nullptr);
            else
                m_converter->Convert(count, bx, by, heights ? bh : nullptr);
            if (unitOut != 1.0)
                for (std::size_t i = 0; i < count; ++i) {
                    bx[i] /= unitOut;
                    by[i] /= unitOut;
                }
            for (std::size_t i = 0; i < count; ++i) {
                *to(0, first + i) = swapOut ? by[i] : bx[i];
                *to(1, first + i) = swapOut ? bx[i] : by[i];
            }
            if (heights)
                for (std::size_t i = 0; i < count; ++i)
                    *to(2, first + i) = bh[i];
        }
    }

    std::unique_ptr<CKvMapProjection> m_systems[2];
    std::unique_ptr<CKvDatumConverter> m_converter;
    double m_units[2] = {1.0, 1.0};
    bool m_swap[2] = {false, false};
};

// Geodesics on one ellipsoid (Karney's method): the direct and inverse
// problems over columns of points.
class CoreGeod
{
public:
    CoreGeod(double a, double f) : m_geodesic(a, f)
    {
        if (!m_geodesic.IsValid())
            throw py::value_error("no ellipsoid of semi-major axis " + Number(a) + " m and flattening " + Number(f) +
                                  ": the axis must be finite and positive, the flattening within [0, 1/10]");
    }

    double A() const { return m_geodesic.GetMajor(); }
    double F() const { return m_geodesic.GetFlattening(); }

    void Direct(py::array lon, py::array lat, py::array azimuth, py::array distance, py::array lon2, py::array lat2,
                py::array azimuth2) const
    {
        const SColumns c = Columns({lon, lat, azimuth, distance}, {lon2, lat2, azimuth2});
        py::gil_scoped_release release;
        for (std::size_t i = 0; i < c.n; ++i)
            m_geodesic.Direct(c.in[0][i], c.in[1][i], c.in[2][i], c.in[3][i], c.out[0][i], c.out[1][i],
                              c.out[2][i]);
    }

    void Inverse(py::array lon1, py::array lat1, py::array lon2, py::array lat2, py::array distance,
                 py::array azimuth1, py::array azimuth2) const
    {
        const SColumns c = Columns({lon1, lat1, lon2, lat2}, {distance, azimuth1, azimuth2});
        py::gil_scoped_release release;
        for (std::size_t i = 0; i < c.n; ++i)
            m_geodesic.Inverse(c.in[0][i], c.in[1][i], c.in[2][i], c.in[3][i], c.out[0][i], c.out[1][i],
                               c.out[2][i]);
    }

    // The (a, f) of a catalogue ellipsoid, by its name or identifier.
    static py::tuple Catalogue(const std::string& name)
    {
        const CKvEllipsoidList& list = CKvCartSetup::Instance()->GetEllipsoidList();
        const CKvEllipsoid* found = list.GetEllipsoidFromName(name);
        if (found == nullptr)
            found = list.GetEllipsoid(name);
        if (found == nullptr)
            throw py::value_error("unknown ellipsoid \"" + name + "\": kvcart.ellipsoids() lists the catalogue's");
        const double inverse = found->GetInvFlatness();
        return py::make_tuple(found->GetMajor(), inverse > 0.0 ? 1.0 / inverse : 0.0);
    }

    static py::list Names()
    {
        const CKvEllipsoidList& list = CKvCartSetup::Instance()->GetEllipsoidList();
        py::list names;
        for (auto it = list.GetIteratorBegin(CKvEllipsoidList::eComplete);
             it != list.GetIteratorEnd(CKvEllipsoidList::eComplete); ++it)
            names.append((*it)->GetName());
        return names;
    }

private:
    static std::string Number(double value)
    {
        char text[40];
        std::snprintf(text, sizeof text, "%.17g", value);
        return text;
    }

    CKvGeodesic m_geodesic;
};

// A local site grid on a coordinate system: origin at (lon0, lat0), y axis
// turned by an orientation from true north. Projected coordinates are in the
// system's own unit, as a transformer gives them; local ones in metres.
class CoreSiteGrid
{
public:
    // system: the coordinate system, or None for the text "UTM", whose zone
    // is the origin's.
    CoreSiteGrid(py::object system, const std::string& text, double lon0, double lat0, double orientation)
    {
        for (double v : {lon0, lat0, orientation})
            if (!std::isfinite(v))
                throw py::value_error("a site grid's origin and orientation are finite numbers");
        if (!(std::fabs(lat0) <= 90.0))
            throw py::value_error("a site grid's origin latitude lies within [-90, 90]");
        try {
            // The generic "UTM" takes the zone of the origin.
            if (system.is_none())
                m_grid = std::make_unique<CKvCartography>(text.c_str(), lon0, lat0, orientation);
            else
                m_grid = std::make_unique<CKvCartography>(system.cast<const CoreCRS&>().System(), lon0, lat0,
                                                          orientation);
        } catch (const std::out_of_range&) {
            throw py::value_error("'UTM' names no zone for a site grid at longitude " + std::to_string(lon0));
        }
        const double factor = m_grid->GetProjection()->GetLinearUnit();
        m_unit = factor > 0.0 ? factor : 1.0;
    }

    std::string Text() const { return m_grid->GetProjectionString(); }
    double ProjectionNorth() const { return m_grid->GetProjectionNorth(); }

    // what: 0 geographic to local, 1 local to geographic, 2 projected to
    // local, 3 local to projected.
    void Convert(int what, py::array a, py::array b, py::array outA, py::array outB) const
    {
        if (what < 0 || what > 3)
            throw py::value_error("no such conversion");
        const SColumns c = Columns({a, b}, {outA, outB});
        const double unit = m_unit;
        py::gil_scoped_release release;
        for (std::size_t i = 0; i < c.n; ++i) {
            double& u = c.out[0][i];
            double& v = c.out[1][i];
            switch (what) {
            case 0: m_grid->Geo2Xy(c.in[0][i], c.in[1][i], &u, &v); break;
            case 1: m_grid->Xy2Geo(c.in[0][i], c.in[1][i], &u, &v); break;
            case 2: m_grid->Proj2Xy(c.in[0][i] * unit, c.in[1][i] * unit, &u, &v); break;
            default:
                m_grid->Xy2Proj(c.in[0][i], c.in[1][i], &u, &v);
                u /= unit;
                v /= unit;
                break;
            }
        }
    }

    void TrueNorth(py::array x, py::array y, py::array out) const
    {
        const SColumns c = Columns({x, y}, {out});
        py::gil_scoped_release release;
        for (std::size_t i = 0; i < c.n; ++i)
            c.out[0][i] = m_grid->GetTrueNorth(c.in[0][i], c.in[1][i]);
    }

private:
    std::unique_ptr<CKvCartography> m_grid;
    double m_unit = 1.0;
};

// The catalogue, read once when the package is imported. The package reads
// WKT as the EPSG registry defines it, as the kvcart program does.
py::tuple Setup(const std::string& systemDirectory, const std::string& userDirectory)
{
    CKvCartSetup* setup = CKvCartSetup::Instance();
    setup->ReadData(systemDirectory, userDirectory);
    CKvMapProjection::SetEpsgReading(true);
    return py::make_tuple(setup->HasSystemCatalogue(), setup->GetLastError());
}

} // namespace

PYBIND11_MODULE(_kvcart, m)
{
    m.doc() = "The compiled core of kvcart; use the kvcart package.";
    m.def("_setup", &Setup, py::arg("system_directory"), py::arg("user_directory"));
    m.def("_is_wkt", &IsWkt, py::arg("text"));

    py::class_<CoreCRS>(m, "_CRS")
        .def(py::init<const std::string&>(), py::arg("text"))
        .def_property_readonly("srs", &CoreCRS::Text)
        .def_property_readonly("name", &CoreCRS::Name)
        .def_property_readonly("is_geographic", &CoreCRS::IsGeographic)
        .def_property_readonly("is_local", &CoreCRS::IsLocal)
        .def_property_readonly("datum_shift", &CoreCRS::DatumShift)
        .def_property_readonly("message", &CoreCRS::Message)
        .def_property_readonly("axes", &CoreCRS::Axes)
        .def_property_readonly("area_of_use", &CoreCRS::AreaOfUse)
        .def_property_readonly("default_area", &CoreCRS::DefaultArea)
        .def_property_readonly("figure", &CoreCRS::Figure)
        .def("convergence", &CoreCRS::Convergence)
        .def("geocentric", &CoreCRS::Geocentric)
        .def("to_wkt", &CoreCRS::ToWkt)
        .def("to_proj4", &CoreCRS::ToProj4);

    py::class_<CoreGeod>(m, "_Geod")
        .def(py::init<double, double>(), py::arg("a"), py::arg("f"))
        .def_property_readonly("a", &CoreGeod::A)
        .def_property_readonly("f", &CoreGeod::F)
        .def("direct", &CoreGeod::Direct)
        .def("inverse", &CoreGeod::Inverse)
        .def_static("catalogue", &CoreGeod::Catalogue, py::arg("name"))
        .def_static("names", &CoreGeod::Names);

    py::class_<CoreSiteGrid>(m, "_SiteGrid")
        .def(py::init<py::object, const std::string&, double, double, double>())
        .def_property_readonly("srs", &CoreSiteGrid::Text)
        .def_property_readonly("projection_north", &CoreSiteGrid::ProjectionNorth)
        .def("convert", &CoreSiteGrid::Convert)
        .def("true_north", &CoreSiteGrid::TrueNorth);

    py::class_<CoreTransformer>(m, "_Transformer")
        .def(py::init<const CoreCRS&, const CoreCRS&, bool>(), py::arg("source"), py::arg("target"),
             py::arg("always_xy"))
        .def_property_readonly("message", &CoreTransformer::Message)
        .def("unit", &CoreTransformer::Unit, py::arg("source"))
        .def("swaps", &CoreTransformer::Swaps, py::arg("source"))
        .def("run", &CoreTransformer::Run, py::arg("source"), py::arg("target"), py::arg("inverse"),
             py::arg("threads"));
}
