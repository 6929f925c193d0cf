#include "geodesy/Matrix.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr double kPi = 3.141592653589793;

// Reports a failed shape check the way assert() does, naming this file, the line
// and the operation, then ends the process.
[[noreturn]] void CheckFailed(const char* condition, int line, const char* signature)
{
    std::fprintf(stderr, "Matrix:%d: %s: Assertion `%s' failed.\n", line, signature, condition);
    std::fflush(stderr);
    std::abort();
}

#define KV_MATRIX_CHECK(condition, signature) \
    ((condition) ? static_cast<void>(0) : CheckFailed(#condition, __LINE__, signature))

const char* const kSigConstruct = "CMatrix::CMatrix(CKvArray2D<double> *)";
const char* const kSigAdd = "CMatrix CMatrix::operator+(const CMatrix &) const";
const char* const kSigSubtract = "CMatrix CMatrix::operator-(const CMatrix &) const";
const char* const kSigMultiply = "CMatrix CMatrix::operator*(const CMatrix &) const";

} // namespace

CMatrix::CMatrix() = default;

CMatrix::CMatrix(CKvArray2D<double>* pArray)
{
    KV_MATRIX_CHECK(pArray, kSigConstruct);
    _copy(*pArray);
}

CMatrix::CMatrix(double a, double b, double c)
{
    m_array.Allocate(0, 0, 0, 2);
    m_array(0, 0) = a;
    m_array(0, 1) = b;
    m_array(0, 2) = c;
}

CMatrix::CMatrix(double angle, ERotationType type)
{
    // Rows k of columns j. An unknown type keeps the shape and zero elements.
    m_array.Allocate(0, 2, 0, 2);
    const double radians = angle * kPi / 180.0;
    const double s = std::sin(radians);
    const double c = std::cos(radians);
    double rows[3][3];
    switch (type) {
    case eRotateX: {
        const double r[3][3] = {{1, 0, 0}, {0, c, -s}, {0, s, c}};
        std::copy(&r[0][0], &r[0][0] + 9, &rows[0][0]);
        break;
    }
    case eRotateY: {
        const double r[3][3] = {{c, 0, s}, {0, 1, 0}, {-s, 0, c}};
        std::copy(&r[0][0], &r[0][0] + 9, &rows[0][0]);
        break;
    }
    case eRotateZ: {
        const double r[3][3] = {{c, -s, 0}, {s, c, 0}, {0, 0, 1}};
        std::copy(&r[0][0], &r[0][0] + 9, &rows[0][0]);
        break;
    }
    default:
        return;
    }
    for (int k = 0; k < 3; ++k)
        for (int j = 0; j < 3; ++j)
            m_array(j, k) = rows[k][j];
}

CMatrix::CMatrix(const CMatrix& other)
{
    _copy(other.m_array);
}

CMatrix& CMatrix::operator=(const CMatrix& other)
{
    if (this != &other)
        _copy(other.m_array);
    return *this;
}

CMatrix::~CMatrix()
{
    _dealloc();
}

void CMatrix::_dealloc()
{
    m_array.Deallocate();
}

void CMatrix::_copy(const CKvArray2D<double>& array)
{
    if (!m_array.Allocate(array.LowerJ(), array.UpperJ(), array.LowerK(), array.UpperK()))
        return;
    const int n = array.GetCount();
    for (int i = 0; i < n; ++i)
        m_array.GetBuffer()[i] = array.GetBuffer()[i];
}

CMatrix CMatrix::_elementwise(const CMatrix& other, double sign, const char* signature) const
{
    const CKvArray2D<double>* pArray = &other.m_array;
    const int nJ = m_array.SizeJ();
    const int nK = m_array.SizeK();
    KV_MATRIX_CHECK(nJ == pArray->SizeJ(), signature);
    KV_MATRIX_CHECK(nK == pArray->SizeK(), signature);
    CMatrix result(*this);
    const int n = m_array.GetCount();
    for (int i = 0; i < n; ++i)
        result.m_array.GetBuffer()[i] += sign * pArray->GetBuffer()[i];
    return result;
}

CMatrix CMatrix::operator+(const CMatrix& other) const
{
    return _elementwise(other, 1.0, kSigAdd);
}

CMatrix CMatrix::operator-(const CMatrix& other) const
{
    return _elementwise(other, -1.0, kSigSubtract);
}

CMatrix CMatrix::operator*(const CMatrix& other) const
{
    const int nJ1 = m_array.SizeJ();
    const int nK2 = other.m_array.SizeK();
    KV_MATRIX_CHECK(nJ1 == nK2, kSigMultiply);
    CMatrix result;
    const int sizeJ = other.m_array.SizeJ();
    const int sizeK = m_array.SizeK();
    result.m_array.Allocate(0, sizeJ - 1, 0, sizeK - 1);
    const CKvArray2D<double>& a = m_array;
    const CKvArray2D<double>& b = other.m_array;
    for (int k = 0; k < sizeK; ++k) {
        for (int j = 0; j < sizeJ; ++j) {
            double sum = 0.0;
            for (int i = 0; i < nJ1; ++i)
                sum += a(a.LowerJ() + i, a.LowerK() + k) * b(b.LowerJ() + j, b.LowerK() + i);
            result.m_array(j, k) = sum;
        }
    }
    return result;
}

CMatrix CMatrix::operator*(double factor) const
{
    CMatrix result(*this);
    const int n = m_array.GetCount();
    for (int i = 0; i < n; ++i)
        result.m_array.GetBuffer()[i] *= factor;
    return result;
}
