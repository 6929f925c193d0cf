#ifndef KVCART_PROJECTIONS_KVBATCH_H
#define KVCART_PROJECTIONS_KVBATCH_H

#include <cstddef>
#include <cstdint>
#include <cstring>

// The vectorized block loops are compiled once per instruction set and the
// loader picks the widest that the processor has (GCC's function clones). Not
// under ThreadSanitizer, whose runtime is not yet up when the loader runs the
// clones' resolvers.
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) && defined(__GLIBC__) && \
    !defined(__SANITIZE_THREAD__)
#define KVCART_VECTOR_CLONES __attribute__((target_clones("default", "avx2", "arch=x86-64-v4")))
#else
#define KVCART_VECTOR_CLONES
#endif

// The loop that follows is to be vectorized (OpenMP's simd directive, which
// needs no OpenMP runtime). GCC only: the loops are written for its
// if-conversion, and other compilers leave them scalar, same results.
#if defined(__GNUC__) && !defined(__clang__)
#define KVCART_SIMD_LOOP _Pragma("omp simd")
#else
#define KVCART_SIMD_LOOP
#endif

// For a block loop whose path takes a quotient of operands chosen under the
// same conditions (CKvMathKernel::Atan2's and AtanUnit's num / den): GCC's
// jump threading would copy the division into each case before the loop is
// if-converted, so that the vector loop computes every case's quotient and
// then chooses (five divisions per point where three are needed in the polar
// stereographic inverse). Without it the loop chooses first and divides once;
// the operations kept, and so the bits, are the same.
#if defined(__GNUC__) && !defined(__clang__)
#define KVCART_ONE_QUOTIENT __attribute__((optimize("no-thread-jumps")))
#else
#define KVCART_ONE_QUOTIENT
#endif

// Defines NAME, the vectorized loop of an engine's fast path over one block of
// contiguous points: ok[i] = PATH(figures, a[i], b[i], u[i], v[i]), PATH an
// inline function of the engine's figures (a struct of doubles and flags) that
// computes one point with the math kernels and values chosen rather than
// branches, and says whether the point lies within the path. The loop works on
// a copy of the figures, which the stores to the outputs cannot alias, so that
// they stay in registers. It must be expanded in the file whose functions call
// it: a function's clones are local to the file that defines it.
#define KVCART_DEFINE_BLOCK_LOOP(NAME, TFIGURES, PATH)                                                       \
    KVCART_VECTOR_CLONES void NAME(const TFIGURES& figures, std::size_t count, const double* a, const double* b, \
                                   double* u, double* v, bool* ok)                                            \
    {                                                                                                          \
        const TFIGURES local = figures;                                                                        \
        KVCART_SIMD_LOOP                                                                                       \
        for (std::size_t i = 0; i < count; ++i)                                                                \
            ok[i] = PATH(local, a[i], b[i], u[i], v[i]);                                                       \
    }

// Strided arrays as PROJ's proj_trans_generic takes them: a base pointer and a
// distance in bytes from one element to the next. Each point's two inputs are
// read before its two outputs are written, so that the outputs may be the
// inputs themselves (in-place use).
class CKvBatch
{
public:
    // Points per block of the vectorized loops: enough to fill the vector units
    // (GCC takes as many points per iteration as a vector holds bytes, for the
    // flags: 64 with AVX-512) several times over and to amortize the call, the
    // copy of the figures and the pass over the exceptional points, small enough
    // to stay in the first-level cache (four arrays of 2 KiB) on the stack.
    static constexpr std::size_t BlockSize = 256;

    // The address of element i. A stride is a size_t, so a host walking an
    // array backwards passes a negative distance as its two's complement:
    // i * stride wraps to the distance modulo 2^64, and read as a signed
    // offset it is the true one, so that the pointer moves back within the
    // host's array instead of "forward" past the end of the address space
    // (which is undefined, and which the sanitizers report). The conversion is
    // the same register, the code the same as an unsigned offset's.
    static std::ptrdiff_t Offset(std::size_t stride, std::size_t i)
    {
        return static_cast<std::ptrdiff_t>(i * stride);
    }
    static const double* At(const double* base, std::size_t stride, std::size_t i)
    {
        return reinterpret_cast<const double*>(reinterpret_cast<const char*>(base) + Offset(stride, i));
    }
    static double* At(double* base, std::size_t stride, std::size_t i)
    {
        return reinterpret_cast<double*>(reinterpret_cast<char*>(base) + Offset(stride, i));
    }

    // f(a, b, &u, &v) for each point, in order.
    template <class F>
    static void ForEachPoint(std::size_t n, const double* a, std::size_t sa, const double* b, std::size_t sb, double* u,
                             std::size_t su, double* v, std::size_t sv, F f)
    {
        for (std::size_t i = 0; i < n; ++i) {
            const double ai = *At(a, sa, i), bi = *At(b, sb, i);
            double ui, vi;
            f(ai, bi, &ui, &vi);
            *At(u, su, i) = ui;
            *At(v, sv, i) = vi;
        }
    }

    // The single-point formulas of an object's own class over the arrays: the
    // qualified calls bind them at compile time, no virtual call per point.
    template <class TObject>
    static void Forward(const TObject& self, std::size_t n, const double* a, std::size_t sa, const double* b,
                        std::size_t sb, double* u, std::size_t su, double* v, std::size_t sv)
    {
        ForEachPoint(n, a, sa, b, sb, u, su, v, sv,
                     [&self](double p, double q, double* r, double* t) { self.TObject::Geo2Proj(p, q, r, t); });
    }
    template <class TObject>
    static void Inverse(const TObject& self, std::size_t n, const double* a, std::size_t sa, const double* b,
                        std::size_t sb, double* u, std::size_t su, double* v, std::size_t sv)
    {
        ForEachPoint(n, a, sa, b, sb, u, su, v, sv,
                     [&self](double p, double q, double* r, double* t) { self.TObject::Proj2Geo(p, q, r, t); });
    }

    // The inputs copied block by block into contiguous arrays before any output
    // of the block is written (so that in-place calls keep them):
    // block(first, count, a, b) for each block of at most BlockSize points.
    template <class FBlock>
    static void ForEachCopiedBlock(std::size_t n, const double* a, std::size_t sa, const double* b, std::size_t sb,
                                   FBlock block)
    {
        double ab[BlockSize], bb[BlockSize];
        for (std::size_t first = 0; first < n; first += BlockSize) {
            const std::size_t count = n - first < BlockSize ? n - first : BlockSize;
            for (std::size_t i = 0; i < count; ++i) {
                ab[i] = *At(a, sa, first + i);
                bb[i] = *At(b, sb, first + i);
            }
            block(first, count, ab, bb);
        }
    }

    // The batch form of an engine with a vectorized fast path: the points through
    // the block loop defined by KVCART_DEFINE_BLOCK_LOOP, and those it leaves
    // through point(a, b, &u, &v), the single-point call; every point through
    // point when the figures are beyond the kernels' reach (fast false).
    template <class TFigures, class FPoint>
    static void ForEachFastBlock(void (*loop)(const TFigures&, std::size_t, const double*, const double*, double*,
                                              double*, bool*),
                                 const TFigures& figures, bool fast, std::size_t n, const double* a, std::size_t sa,
                                 const double* b, std::size_t sb, double* u, std::size_t su, double* v, std::size_t sv,
                                 FPoint point)
    {
        if (!fast) {
            ForEachPoint(n, a, sa, b, sb, u, su, v, sv, point);
            return;
        }
        ForEachBlock(
            n, a, sa, b, sb, u, su, v, sv,
            [loop, &figures](std::size_t count, const double* ab, const double* bb, double* ub, double* vb, bool* ok) {
                loop(figures, count, ab, bb, ub, vb, ok);
            },
            point);
    }

    // Whether the n doubles from p and the m doubles from q share no byte (as
    // addresses: the arrays may be unrelated objects).
    static bool Apart(const double* p, std::size_t n, const double* q, std::size_t m)
    {
        const std::uintptr_t x = reinterpret_cast<std::uintptr_t>(p), y = reinterpret_cast<std::uintptr_t>(q);
        return x >= y + m * sizeof(double) || y >= x + n * sizeof(double);
    }

    // Whether every point of a block stayed on the fast path: one pass with no
    // branch, eight flags a word (a bool is the byte 0 or 1, so the words' AND
    // keeps 0x0101010101010101 only if every flag is set), so that the usual
    // block, all on it, is not scanned point by point: the byte loop, which the
    // compiler leaves scalar at -O2, took a twentieth of a fast batch.
    static bool AllOk(const bool* ok, std::size_t count)
    {
        constexpr std::uint64_t Ones = 0x0101010101010101u;
        std::uint64_t all = Ones;
        std::size_t i = 0;
        for (; i + 8 <= count; i += 8) {
            std::uint64_t word;
            std::memcpy(&word, ok + i, sizeof word);
            all &= word;
        }
        unsigned char tail = 1;
        for (; i < count; ++i)
            tail &= static_cast<unsigned char>(ok[i]);
        return (all == Ones) & (tail != 0);
    }

    // Runs the points in blocks of contiguous copies: block(count, a, b, u, v, ok)
    // computes a whole block and clears ok[i] for every point it leaves to the
    // general per-point path, point(a, b, &u, &v), which then computes it.
    template <class FBlock, class FPoint>
    static void ForEachBlock(std::size_t n, const double* a, std::size_t sa, const double* b, std::size_t sb, double* u,
                             std::size_t su, double* v, std::size_t sv, FBlock block, FPoint point)
    {
        alignas(64) double ab[BlockSize], bb[BlockSize], ub[BlockSize], vb[BlockSize];
        bool ok[BlockSize];
        constexpr std::size_t D = sizeof(double);
        if (sa == D && sb == D && su == D && sv == D) {
            // Contiguous arrays. Outputs apart from the inputs: the block reads
            // the inputs where they are, and they are still there for the points
            // it leaves. Otherwise (in-place calls) the inputs are copied first.
            // Either way the outputs are written where they belong.
            const bool apart = Apart(u, n, a, n) && Apart(u, n, b, n) && Apart(v, n, a, n) && Apart(v, n, b, n);
            for (std::size_t first = 0; first < n; first += BlockSize) {
                const std::size_t count = n - first < BlockSize ? n - first : BlockSize;
                const double* pa = a + first;
                const double* pb = b + first;
                if (!apart) {
                    std::memcpy(ab, pa, count * D);
                    std::memcpy(bb, pb, count * D);
                    pa = ab;
                    pb = bb;
                }
                block(count, pa, pb, u + first, v + first, ok);
                if (AllOk(ok, count))
                    continue;
                for (std::size_t i = 0; i < count; ++i)
                    if (!ok[i])
                        point(pa[i], pb[i], &u[first + i], &v[first + i]);
            }
            return;
        }
        for (std::size_t first = 0; first < n; first += BlockSize) {
            const std::size_t count = n - first < BlockSize ? n - first : BlockSize;
            for (std::size_t i = 0; i < count; ++i) {
                ab[i] = *At(a, sa, first + i);
                bb[i] = *At(b, sb, first + i);
            }
            block(count, ab, bb, ub, vb, ok);
            for (std::size_t i = 0; i < count; ++i) {
                if (!ok[i])
                    point(ab[i], bb[i], &ub[i], &vb[i]);
                *At(u, su, first + i) = ub[i];
                *At(v, sv, first + i) = vb[i];
            }
        }
    }
};

#endif
