#ifndef KVCART_GEODESY_MATRIX_H
#define KVCART_GEODESY_MATRIX_H

#include "geodesy/KvArray2D.h"

// A small dense matrix of doubles. k is the row index and j the column index:
// SizeJ is the number of columns, SizeK the number of rows. A shape mismatch is a
// programming error and ends the process with an assertion message.
class CMatrix
{
public:
    enum ERotationType
    {
        eRotateX = 1,
        eRotateY = 2,
        eRotateZ = 3
    };

    CMatrix();
    explicit CMatrix(CKvArray2D<double>* pArray);
    // The 3 x 1 column vector (a, b, c).
    CMatrix(double a, double b, double c);
    // The active (counter-clockwise) rotation by angle degrees about one axis.
    CMatrix(double angle, ERotationType type);
    CMatrix(const CMatrix& other);
    CMatrix& operator=(const CMatrix& other);
    virtual ~CMatrix();

    CMatrix operator+(const CMatrix& other) const;
    CMatrix operator-(const CMatrix& other) const;
    CMatrix operator*(const CMatrix& other) const;
    CMatrix operator*(double factor) const;

    // Element (j, k) with the lower bounds subtracted; no range check.
    double operator()(int j, int k) const { return m_array(j, k); }
    double GetElement(int j, int k) const { return m_array(j, k); }
    double& Element(int j, int k) { return m_array(j, k); }

    const CKvArray2D<double>& GetArray() const { return m_array; }
    int GetSizeJ() const { return m_array.SizeJ(); }
    int GetSizeK() const { return m_array.SizeK(); }

protected:
    void _copy(const CKvArray2D<double>& array);
    void _dealloc();

private:
    CMatrix _elementwise(const CMatrix& other, double sign, const char* signature) const;

    CKvArray2D<double> m_array;
};

#endif
