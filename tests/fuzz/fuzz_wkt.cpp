// libFuzzer target: arbitrary bytes as the text of a .prj file. The bytes go
// through every reader of WKT (IsPRJ, ShortName, Parse with and without the
// parallel ordering), the construction of the engine and the definition, a
// point through the engine both ways, the writer in both forms, the re-flow
// and the PROJ.4 translation. Beyond the sanitizers' findings it checks what the
// reader promises: text that is not WKT leaves the record as it was, and WKT we
// write ourselves reads back.
#include "projections/KvProjection.h"
#include "wkt/KvPRJParser.h"
#include "wkt/KvProjTranslator.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

void Check(bool condition, const char* what)
{
    if (!condition) {
        std::fprintf(stderr, "broken promise: %s\n", what);
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // The reader works on C strings: a NUL ends the text as it would in a host.
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const CString text(bytes.c_str());

    const bool wkt = CKvPRJParser::IsPRJ(text);
    CKvPRJParser::ShortName(text);
    CKvPRJParser::DatumName(text);

    for (const bool sort : {false, true}) {
        CKvPRJParser parser(text);
        parser.SetProjCSname("before");
        // Both readings: the established one with its warnings, and the EPSG one.
        parser.SetReading(sort ? CKvPRJParser::eEpsgReading : CKvPRJParser::eCompatibleReading);
        const bool parsed = parser.Parse(sort);
        if (!wkt)
            Check(!parsed && parser.GetProjCSname() == "before", "text that is not WKT changed the record");
        Check(parsed || !parser.GetFailureReason().empty(), "a refused text without a reason");
        Check(!parsed || parser.GetFailureReason().empty(), "a read text with a failure reason");

        CKvProjection* engine = parser.CreateMapProjection();
        if (engine != nullptr) {
            double x = 0.0, y = 0.0, lon = 0.0, lat = 0.0;
            engine->Geo2Proj(10.0, 50.0, &x, &y);
            engine->Proj2Geo(x, y, &lon, &lat);
            engine->GetConvergence(10.0, 50.0);
            CKvProjection::Release(engine);
        }
        delete parser._CreateProjData();
        parser.GetProjectionTypeTitle();
        CString name, unit;
        double value = 0.0, factor = 0.0;
        for (int i = 0; i < parser.GetNoOfParameters(); ++i)
            parser.GetParameter(i, name, value, unit, factor);

        CString out;
        char small[64];
        parser.Format(small, static_cast<int>(sizeof small));
        if (parser.Format(out) && parsed && parser.GetProjectionType() != CKvMapProjData::eNonProjected) {
            // What we write reads back (to a type, possibly the rectified skew
            // form of a Hotine system, whose grid angle is not written).
            CKvPRJParser back(out);
            back.Parse(sort);
            Check(CKvPRJParser::IsPRJ(out), "written WKT is not WKT");
        }
        CString readable;
        CKvPRJParser::FormatAsReadableWKT(text, readable);
    }

    try {
        CKvProjTranslator().Convert2Proj4(bytes.c_str(), nullptr, 0);
    } catch (const std::out_of_range&) {
        // The generic name "UTM": the one exception the library raises.
    }
    return 0;
}
