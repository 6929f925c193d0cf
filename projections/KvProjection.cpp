#include "projections/KvProjection.h"

CKvProjection::~CKvProjection() = default;

void CKvProjection::GetOrigin(double* x, double* y) const
{
    *x = 0.0;
    *y = 0.0;
}

double CKvProjection::GetConvergence(double, double) const
{
    return 0.0;
}

void CKvProjection::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    *x1 = 0.0;
    *y1 = 0.0;
    *x2 = 0.0;
    *y2 = 0.0;
}

bool CKvProjection::IsLocal() const
{
    return false;
}

bool CKvProjection::IsGeographical() const
{
    return false;
}

void CKvProjection::free()
{
    delete this;
}

void CKvProjection::GetDerivedParameters(double*) const {}

bool CKvProjection::GetAnonymousEllipsoid(CKvEllipsoid&) const
{
    return false;
}

void CKvProjection::Release(CKvProjection* engine)
{
    if (engine != nullptr)
        engine->free();
}
