// Building a coordinate system from the ESRI WKT of a .prj file (parse, and
// parse with the engine a host then uses), writing WKT back and translating to
// PROJ.4; PROJ's proj_create on the same text beside it when PROJ is present.
#include "projections/KvProjection.h"
#include "wkt/KvPRJParser.h"
#include "wkt/KvProjTranslator.h"

#include <benchmark/benchmark.h>
#ifdef KVCART_BENCH_WITH_PROJ
#include <proj.h>
#endif

namespace {

// ESRI one-line WKT as gdalsrsinfo writes it: a UTM zone, a state plane in US
// feet (Lambert), the Dutch grid (oblique stereographic) and the Czech Krovak.
const char* const kTexts[] = {
    "PROJCS[\"WGS_1984_UTM_Zone_32N\",GEOGCS[\"GCS_WGS_1984\",DATUM[\"D_WGS_1984\",SPHEROID[\"WGS_1984\",6378137.0,"
    "298.257223563]],PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\",0.0174532925199433]],PROJECTION["
    "\"Transverse_Mercator\"],PARAMETER[\"False_Easting\",500000.0],PARAMETER[\"False_Northing\",0.0],PARAMETER["
    "\"Central_Meridian\",9.0],PARAMETER[\"Scale_Factor\",0.9996],PARAMETER[\"Latitude_Of_Origin\",0.0],UNIT["
    "\"Meter\",1.0]]",
    "PROJCS[\"NAD_1983_StatePlane_California_II_FIPS_0402_Feet\",GEOGCS[\"GCS_North_American_1983\",DATUM["
    "\"D_North_American_1983\",SPHEROID[\"GRS_1980\",6378137.0,298.257222101]],PRIMEM[\"Greenwich\",0.0],UNIT["
    "\"Degree\",0.0174532925199433]],PROJECTION[\"Lambert_Conformal_Conic\"],PARAMETER[\"False_Easting\","
    "6561666.666666666],PARAMETER[\"False_Northing\",1640416.666666667],PARAMETER[\"Central_Meridian\",-122.0],"
    "PARAMETER[\"Standard_Parallel_1\",38.33333333333334],PARAMETER[\"Standard_Parallel_2\",39.83333333333334],"
    "PARAMETER[\"Latitude_Of_Origin\",37.66666666666666],UNIT[\"Foot_US\",0.3048006096012192]]",
    "PROJCS[\"RD_New\",GEOGCS[\"GCS_Amersfoort\",DATUM[\"D_Amersfoort\",SPHEROID[\"Bessel_1841\",6377397.155,"
    "299.1528128]],PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\",0.0174532925199433]],PROJECTION["
    "\"Double_Stereographic\"],PARAMETER[\"False_Easting\",155000.0],PARAMETER[\"False_Northing\",463000.0],"
    "PARAMETER[\"Central_Meridian\",5.38763888888889],PARAMETER[\"Scale_Factor\",0.9999079],PARAMETER["
    "\"Latitude_Of_Origin\",52.15616055555555],UNIT[\"Meter\",1.0]]",
    "PROJCS[\"S-JTSK_Krovak_East_North\",GEOGCS[\"GCS_S_JTSK\",DATUM[\"D_S_JTSK\",SPHEROID[\"Bessel_1841\","
    "6377397.155,299.1528128]],PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\",0.0174532925199433]],PROJECTION["
    "\"Krovak\"],PARAMETER[\"False_Easting\",0.0],PARAMETER[\"False_Northing\",0.0],PARAMETER["
    "\"Pseudo_Standard_Parallel_1\",78.5],PARAMETER[\"Scale_Factor\",0.9999],PARAMETER[\"Azimuth\","
    "30.28813975277778],PARAMETER[\"Longitude_Of_Center\",24.83333333333333],PARAMETER[\"Latitude_Of_Center\","
    "49.5],PARAMETER[\"X_Scale\",-1.0],PARAMETER[\"Y_Scale\",1.0],PARAMETER[\"XY_Plane_Rotation\",90.0],UNIT["
    "\"Meter\",1.0]]",
};
const char* const kNames[] = {"utm32", "stateplane_ft", "rd_new", "krovak"};

void SetName(benchmark::State& state)
{
    state.SetLabel(kNames[state.range(0)]);
}

// Parse alone (it builds and drops the engine once, to validate).
void WktParse(benchmark::State& state)
{
    const char* text = kTexts[state.range(0)];
    for (auto _ : state) {
        CKvPRJParser parser(text);
        benchmark::DoNotOptimize(parser.Parse(false));
    }
    SetName(state);
}
BENCHMARK(WktParse)->DenseRange(0, 3);

// What a host does when it opens a file: parse and keep the engine.
void WktCreate(benchmark::State& state)
{
    const char* text = kTexts[state.range(0)];
    for (auto _ : state) {
        CKvPRJParser parser(text);
        parser.Parse(false);
        CKvProjection* engine = parser.CreateMapProjection();
        benchmark::DoNotOptimize(engine);
        CKvProjection::Release(engine);
    }
    SetName(state);
}
BENCHMARK(WktCreate)->DenseRange(0, 3);

void WktFormat(benchmark::State& state)
{
    CKvPRJParser parser(kTexts[state.range(0)]);
    parser.Parse(false);
    CString out;
    for (auto _ : state) {
        parser.Format(out);
        benchmark::DoNotOptimize(out.GetString());
    }
    SetName(state);
}
BENCHMARK(WktFormat)->DenseRange(0, 3);

void WktToProj4(benchmark::State& state)
{
    const CKvProjTranslator translator;
    const std::string text = kTexts[state.range(0)];
    for (auto _ : state)
        benchmark::DoNotOptimize(translator.Convert2Proj4(text, nullptr, 0));
    SetName(state);
}
BENCHMARK(WktToProj4)->DenseRange(0, 3);

#ifdef KVCART_BENCH_WITH_PROJ
// PROJ's proj_create on the same ESRI WKT, in one context as a host keeps it.
void ProjCreate(benchmark::State& state)
{
    PJ_CONTEXT* context = proj_context_create();
    const char* text = kTexts[state.range(0)];
    for (auto _ : state) {
        PJ* crs = proj_create(context, text);
        benchmark::DoNotOptimize(crs);
        proj_destroy(crs);
    }
    proj_context_destroy(context);
    SetName(state);
}
BENCHMARK(ProjCreate)->DenseRange(0, 3)->Unit(benchmark::kMicrosecond);
#endif

} // namespace
