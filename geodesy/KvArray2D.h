#ifndef KVCART_GEODESY_KVARRAY2D_H
#define KVCART_GEODESY_KVARRAY2D_H

#include "geodesy/KvArrayBase.h"
#include "geodesy/KvArrayType.h"

// A two-dimensional array whose index ranges may start anywhere. Element (j, k)
// lives at (j - lowerJ) + (k - lowerK) * sizeJ: J varies fastest.
template <class T>
class CKvArray2D : public CKvArrayBase<T>, public CKvArrayType
{
public:
    CKvArray2D() = default;

    int Dim() const override { return 2; }

    // Shape [lowerJ, upperJ] x [lowerK, upperK], both bounds inclusive.
    bool Allocate(int lowerJ, int upperJ, int lowerK, int upperK)
    {
        const int sizeJ = upperJ >= lowerJ ? upperJ - lowerJ + 1 : 0;
        const int sizeK = upperK >= lowerK ? upperK - lowerK + 1 : 0;
        if (!CKvArrayBase<T>::Allocate(sizeJ * sizeK)) {
            _setShape(0, -1, 0, -1);
            return false;
        }
        _setShape(lowerJ, upperJ, lowerK, upperK);
        return true;
    }

    void Deallocate()
    {
        CKvArrayBase<T>::Deallocate();
        _setShape(0, -1, 0, -1);
    }

    int LowerJ() const { return m_lowerJ; }
    int UpperJ() const { return m_upperJ; }
    int SizeJ() const { return m_sizeJ; }
    int LowerK() const { return m_lowerK; }
    int UpperK() const { return m_upperK; }
    int SizeK() const { return m_sizeK; }

    // No range check, as for a plain array.
    T& operator()(int j, int k) { return this->GetBuffer()[_offset(j, k)]; }
    const T& operator()(int j, int k) const { return this->GetBuffer()[_offset(j, k)]; }

private:
    int _offset(int j, int k) const { return (j - m_lowerJ) + (k - m_lowerK) * m_sizeJ; }
    void _setShape(int lowerJ, int upperJ, int lowerK, int upperK)
    {
        m_lowerJ = lowerJ;
        m_upperJ = upperJ;
        m_sizeJ = upperJ - lowerJ + 1;
        m_lowerK = lowerK;
        m_upperK = upperK;
        m_sizeK = upperK - lowerK + 1;
    }

    int m_lowerJ = 0, m_upperJ = -1, m_sizeJ = 0;
    int m_lowerK = 0, m_upperK = -1, m_sizeK = 0;
};

#endif
