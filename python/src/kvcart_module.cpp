// The compiled core of the Python package: coordinate systems resolved by
// CKvMapProjection, conversions by CKvDatumConverter set up as the kvcart
// program sets them up, and the point loop over numpy's memory. The Python
// layer (kvcart/__init__.py) shapes the arguments; what reaches run() here is
// two one-dimensional float64 arrays to convert in place.
#include "catalogue/KvCartSetup.h"
#include "coordsys/KvMapProjection.h"
#include "geodesy/KvDatumConverter.h"
#include "geodesy/KvDatumShift.h"
#include "paramfile/String.h"
#include "projections/KvProjection.h"
#include "wkt/KvOgcWktWriter.h"
#include "wkt/KvPRJParser.h"
#include "wkt/KvProjTranslator.h"

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace py = pybind11;

namespace {

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

private:
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

    // x, y and (unless None) h: one-dimensional, writable float64 arrays of
    // one length, with any strides; converted in place. threads > 1 splits the
    // points into that many contiguous runs, each converted on a thread of its
    // own; the results are those of one thread, bit for bit, since every point
    // is converted on its own.
    void Run(py::array x, py::array y, py::object h, bool inverse, int threads) const
    {
        py::array z;
        const bool heights = !h.is_none();
        if (heights) {
            if (!py::isinstance<py::array>(h))
                throw py::type_error("run() takes float64 arrays");
            z = py::reinterpret_borrow<py::array>(h);
        }
        py::array* arrays[3] = {&x, &y, heights ? &z : nullptr};
        for (py::array* a : arrays) {
            if (a == nullptr)
                continue;
            // Equivalent to native float64, not the same dtype object: an
            // unpickled array carries a dtype of its own.
            if (a->ndim() != 1 || !py::isinstance<py::array_t<double>>(*a))
                throw py::type_error("run() takes one-dimensional float64 arrays");
            if (!a->writeable())
                throw py::value_error("the arrays are not writable");
            if (a->shape(0) != x.shape(0))
                throw py::value_error("the arrays differ in length");
        }
        if (threads < 1)
            throw py::value_error("threads must be at least 1");
        SPoints points;
        points.n = static_cast<std::size_t>(x.shape(0));
        points.base[0] = static_cast<char*>(x.mutable_data());
        points.base[1] = static_cast<char*>(y.mutable_data());
        points.base[2] = heights ? static_cast<char*>(z.mutable_data()) : nullptr;
        points.stride[0] = x.strides(0);
        points.stride[1] = y.strides(0);
        points.stride[2] = heights ? z.strides(0) : 0;
        if (points.n > 0 && (points.base[0] == points.base[1] || (heights && (points.base[2] == points.base[0] ||
                                                                             points.base[2] == points.base[1]))))
            throw py::value_error("two of the arrays are the same memory");

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
        char* base[3] = {nullptr, nullptr, nullptr};
        std::ptrdiff_t stride[3] = {0, 0, 0};
    };

    // Converts points [begin, end) through blocks on the stack: no allocation
    // per point, and the engines' batch loops run on contiguous memory.
    void _convert(const SPoints& points, std::size_t begin, std::size_t end, bool inverse) const
    {
        const int in = inverse ? 1 : 0, out = inverse ? 0 : 1;
        const double unitIn = m_units[in], unitOut = m_units[out];
        const bool swapIn = m_swap[in], swapOut = m_swap[out];
        const bool heights = points.base[2] != nullptr;
        constexpr std::size_t Block = 256;
        double bx[Block], by[Block], bh[Block];
        auto at = [&points](int axis, std::size_t k) {
            return reinterpret_cast<double*>(points.base[axis] +
                                             static_cast<std::ptrdiff_t>(k) * points.stride[axis]);
        };
        for (std::size_t first = begin; first < end; first += Block) {
            const std::size_t count = end - first < Block ? end - first : Block;
            for (std::size_t i = 0; i < count; ++i) {
                const double vx = *at(0, first + i), vy = *at(1, first + i);
                bx[i] = swapIn ? vy : vx;
                by[i] = swapIn ? vx : vy;
            }
            if (heights)
                for (std::size_t i = 0; i < count; ++i)
                    bh[i] = *at(2, first + i);
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
                *at(0, first + i) = swapOut ? by[i] : bx[i];
                *at(1, first + i) = swapOut ? bx[i] : by[i];
            }
            if (heights)
                for (std::size_t i = 0; i < count; ++i)
                    *at(2, first + i) = bh[i];
        }
    }

    std::unique_ptr<CKvMapProjection> m_systems[2];
    std::unique_ptr<CKvDatumConverter> m_converter;
    double m_units[2] = {1.0, 1.0};
    bool m_swap[2] = {false, false};
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
        .def("to_wkt", &CoreCRS::ToWkt)
        .def("to_proj4", &CoreCRS::ToProj4);

    py::class_<CoreTransformer>(m, "_Transformer")
        .def(py::init<const CoreCRS&, const CoreCRS&, bool>(), py::arg("source"), py::arg("target"),
             py::arg("always_xy"))
        .def_property_readonly("message", &CoreTransformer::Message)
        .def("unit", &CoreTransformer::Unit, py::arg("source"))
        .def("swaps", &CoreTransformer::Swaps, py::arg("source"))
        .def("run", &CoreTransformer::Run, py::arg("x"), py::arg("y"), py::arg("h"), py::arg("inverse"),
             py::arg("threads"));
}
