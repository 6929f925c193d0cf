// A reference for the UTM batch: the transcendental functions that the transverse
// Mercator formulas need per point beyond sine and cosine (forward atan2 and
// asinh, inverse exp, atan2 and asin), each once per point on arguments of the
// same size, through glibc's vector maths (libmvec) in the same vectorized loops
// and instruction-set clones as the engine, and nothing else. The engine's
// batch replaces these calls by its own series; this is what the calls alone
// would cost. Beside it, the scalar libm calls of the formulas as written.
#include "projections/KvBatch.h"

#include "BenchSupport.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <cstddef>
#include <vector>

#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) && defined(__GLIBC__)
extern "C" {
#pragma omp declare simd notinbranch
double atan2(double, double) noexcept;
#pragma omp declare simd notinbranch
double asinh(double) noexcept;
#pragma omp declare simd notinbranch
double asin(double) noexcept;
#pragma omp declare simd notinbranch
double exp(double) noexcept;
}
#endif

namespace {

constexpr std::size_t kPoints = 1024;

KVCART_VECTOR_CLONES void ForwardCalls(std::size_t n, const double* a, const double* b, double* u, double* v)
{
#pragma omp simd
    for (std::size_t i = 0; i < n; ++i) {
        u[i] = std::atan2(a[i], b[i]);
        v[i] = std::asinh(a[i]);
    }
}

KVCART_VECTOR_CLONES void InverseCalls(std::size_t n, const double* a, const double* b, double* u, double* v)
{
#pragma omp simd
    for (std::size_t i = 0; i < n; ++i) {
        u[i] = std::exp(a[i]) + std::atan2(a[i], b[i]);
        v[i] = std::asin(a[i]);
    }
}

// The scalar libm calls of the JHS steps as written (the engine's general path),
// once each per point: forward tan, atanh, sinh, sin, cos, atan2 and asinh;
// inverse exp, sin, cos, sin, cos, sinh, atan and asin (its iteration left out).
void ForwardLibm(std::size_t n, const double* a, const double* b, double* u, double* v)
{
    for (std::size_t i = 0; i < n; ++i) {
        u[i] = std::tan(b[i]) + std::sinh(0.08 * std::atanh(a[i])) + std::atan2(a[i], b[i]);
        v[i] = std::sin(a[i]) + std::cos(a[i]) + std::asinh(a[i]);
    }
}

void InverseLibm(std::size_t n, const double* a, const double* b, double* u, double* v)
{
    for (std::size_t i = 0; i < n; ++i) {
        u[i] = std::exp(a[i]) + std::sin(b[i]) + std::cos(b[i]) + std::atan(b[i]);
        v[i] = std::sin(a[i] + b[i]) + std::cos(a[i] + b[i]) + std::sinh(a[i]) + std::asin(a[i]);
    }
}

void Limit(benchmark::State& state, bool forward, bool vector)
{
    std::vector<double> a(kPoints), b(kPoints), u(kPoints), v(kPoints);
    for (std::size_t i = 0; i < kPoints; ++i) {
        a[i] = 0.1 * ((i * 37) % kPoints) / kPoints - 0.05; // eta-sized arguments
        b[i] = 0.5 + 0.5 * ((i * 61) % kPoints) / kPoints;  // cos-sized ones
    }
    for (auto _ : state) {
        if (vector && forward)
            ForwardCalls(kPoints, a.data(), b.data(), u.data(), v.data());
        else if (vector)
            InverseCalls(kPoints, a.data(), b.data(), u.data(), v.data());
        else if (forward)
            ForwardLibm(kPoints, a.data(), b.data(), u.data(), v.data());
        else
            InverseLibm(kPoints, a.data(), b.data(), u.data(), v.data());
        benchmark::DoNotOptimize(u.data());
        benchmark::ClobberMemory();
    }
    kvbench::CountPoints(state, kPoints);
}

const bool kRegistered = [] {
    benchmark::RegisterBenchmark("Interface/UTM32/limit-forward-vector-maths", Limit, true, true);
    benchmark::RegisterBenchmark("Interface/UTM32/limit-inverse-vector-maths", Limit, false, true);
    benchmark::RegisterBenchmark("Interface/UTM32/limit-forward-libm", Limit, true, false);
    benchmark::RegisterBenchmark("Interface/UTM32/limit-inverse-libm", Limit, false, false);
    return true;
}();

} // namespace
