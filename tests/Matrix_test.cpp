#include "geodesy/Matrix.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

void ExpectVector(const CMatrix& v, double a, double b, double c)
{
    ASSERT_EQ(v.GetSizeJ(), 1);
    ASSERT_EQ(v.GetSizeK(), 3);
    EXPECT_NEAR(v(0, 0), a, 1e-15);
    EXPECT_NEAR(v(0, 1), b, 1e-15);
    EXPECT_NEAR(v(0, 2), c, 1e-15);
}

} // namespace

TEST(Matrix, RotationsTurnVectorsCounterClockwise)
{
    const CMatrix x(1.0, 0.0, 0.0), y(0.0, 1.0, 0.0), z(0.0, 0.0, 1.0);
    ExpectVector(CMatrix(90.0, CMatrix::eRotateZ) * x, 0.0, 1.0, 0.0);
    ExpectVector(CMatrix(90.0, CMatrix::eRotateX) * y, 0.0, 0.0, 1.0);
    ExpectVector(CMatrix(90.0, CMatrix::eRotateY) * z, 1.0, 0.0, 0.0);
    ExpectVector(CMatrix(-90.0, CMatrix::eRotateZ) * x, 0.0, -1.0, 0.0);

    // A rotation and its opposite compose to the identity; the product runs row by column.
    const CMatrix r = CMatrix(37.0, CMatrix::eRotateY) * CMatrix(-37.0, CMatrix::eRotateY);
    for (int k = 0; k < 3; ++k)
        for (int j = 0; j < 3; ++j)
            EXPECT_NEAR(r(j, k), j == k ? 1.0 : 0.0, 1e-15);

    // Rz(30) * Rx(90) applied to y: first onto z, which Rz leaves alone.
    ExpectVector(CMatrix(30.0, CMatrix::eRotateZ) * (CMatrix(90.0, CMatrix::eRotateX) * y), 0.0, 0.0, 1.0);
    // The product is not commutative: (Rz * Rx) * x = Rz * x.
    const CMatrix zx = CMatrix(30.0, CMatrix::eRotateZ) * CMatrix(90.0, CMatrix::eRotateX);
    ExpectVector(zx * x, std::cos(30.0 * 3.141592653589793 / 180.0), 0.5, 0.0);
}

TEST(Matrix, ElementwiseOperationsAndCopies)
{
    const CMatrix a(1.0, 2.0, 3.0), b(0.5, -1.0, 4.0);
    ExpectVector(a + b, 1.5, 1.0, 7.0);
    ExpectVector(a - b, 0.5, 3.0, -1.0);
    ExpectVector(a * 2.0, 2.0, 4.0, 6.0);

    CMatrix c;
    EXPECT_EQ(c.GetSizeJ(), 0);
    EXPECT_EQ(c.GetSizeK(), 0);
    c = a;
    c.Element(0, 1) = 9.0;
    ExpectVector(a, 1.0, 2.0, 3.0); // deep copy
    ExpectVector(c, 1.0, 9.0, 3.0);

    // An array with lower bounds other than 0 keeps them; elements are addressed through them.
    CKvArray2D<double> shifted;
    ASSERT_TRUE(shifted.Allocate(1, 2, -1, 0)); // 2 columns, 2 rows
    EXPECT_EQ(shifted.Dim(), 2);
    shifted(1, -1) = 1.0;
    shifted(2, -1) = 2.0;
    shifted(1, 0) = 3.0;
    shifted(2, 0) = 4.0;
    EXPECT_EQ(shifted.GetBuffer()[1], 2.0); // J varies fastest
    EXPECT_EQ(shifted.GetBuffer()[2], 3.0);
    const CMatrix m(&shifted);
    EXPECT_EQ(m.GetElement(2, 0), 4.0);
    // The product takes the bounds into account and starts its result at 0.
    const CMatrix square = m * m; // [[1,2],[3,4]]^2 = [[7,10],[15,22]]
    EXPECT_EQ(square(0, 0), 7.0);
    EXPECT_EQ(square(1, 0), 10.0);
    EXPECT_EQ(square(0, 1), 15.0);
    EXPECT_EQ(square(1, 1), 22.0);
}

TEST(Matrix, ArrayBufferRules)
{
    CKvArrayBase<double> base;
    ASSERT_TRUE(base.Allocate(4));
    double* first = base.GetBuffer();
    first[0] = 5.0;
    EXPECT_TRUE(base.Allocate(4));
    EXPECT_EQ(base.GetBuffer(), first) << "same count keeps the buffer";
    EXPECT_EQ(base.GetBuffer()[0], 5.0);

    double external[3] = {1, 2, 3};
    CKvArrayBase<double> borrowed;
    borrowed.Borrow(external, 3);
    EXPECT_FALSE(borrowed.Allocate(5));
    EXPECT_EQ(borrowed.GetCount(), 0);

    CKvArrayBase<double> other;
    other.Borrow(external, 3);
    other.SwapBuffers(base);
    EXPECT_EQ(other.GetBuffer(), first);
    EXPECT_EQ(other.GetCount(), 4);
    EXPECT_EQ(base.GetBuffer(), external);
    base.Deallocate(); // lets the borrowed buffer go without freeing it
    EXPECT_EQ(external[2], 3.0);
}

using MatrixDeathTest = ::testing::Test;

TEST(MatrixDeathTest, ShapeMismatchEndsTheProcessNamingTheOperation)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const CMatrix v(1.0, 2.0, 3.0);
    const CMatrix r(45.0, CMatrix::eRotateZ);
    EXPECT_DEATH(v * r, "Matrix:[0-9]+: CMatrix CMatrix::operator\\*\\(const CMatrix &\\) const: "
                        "Assertion `nJ1 == nK2' failed");
    EXPECT_DEATH(v + r, "Matrix:[0-9]+: CMatrix CMatrix::operator\\+\\(const CMatrix &\\) const: "
                        "Assertion `nJ == pArray->SizeJ\\(\\)' failed");
    EXPECT_DEATH(r - v, "operator-.*nJ == pArray->SizeJ");
    EXPECT_DEATH(CMatrix(static_cast<CKvArray2D<double>*>(nullptr)), "Assertion `pArray' failed");
}
