#include "catalogue/KvFloatCompareRel.h"

#include <algorithm>
#include <cmath>

bool CKvFloatCompareRel::NotEqual(double x, double y, double tol)
{
    if (x == y)
        return false;
    return std::fabs(tol) < std::fabs(x - y) / std::max(std::fabs(x), std::fabs(y));
}

bool CKvFloatCompareRel::Close(double x, double y, double tol)
{
    if (x == y)
        return true;
    return std::fabs(x - y) / std::max(std::fabs(x), std::fabs(y)) <= std::fabs(tol);
}
