#include "projections/KvGnomic.h"

#include <cstdio>
#include <cstdlib>

namespace {
[[noreturn]] void NotImplemented()
{
    std::fputs("Gnomic projection not implemented yet", stdout);
    std::fflush(stdout);
    std::abort();
}
} // namespace

CKvGnomic::CKvGnomic()
{
    NotImplemented();
}

void CKvGnomic::Geo2Proj(double, double, double*, double*) const
{
    NotImplemented();
}

void CKvGnomic::Proj2Geo(double, double, double*, double*) const
{
    NotImplemented();
}
