#ifndef KVCART_GEODESY_KVARRAYBASE_H
#define KVCART_GEODESY_KVARRAYBASE_H

#include <new>
#include <utility>

// The element buffer of the array templates: one block of T, its element count,
// and a flag for a borrowed buffer that must be neither freed nor reallocated.
template <class T>
class CKvArrayBase
{
public:
    CKvArrayBase() = default;
    CKvArrayBase(const CKvArrayBase&) = delete;
    CKvArrayBase& operator=(const CKvArrayBase&) = delete;
    virtual ~CKvArrayBase() { Deallocate(); }

    // Allocates n elements (value-initialised). Keeps the buffer when n equals the
    // current count. Returns false, with count 0, when the buffer is borrowed or
    // the allocation fails.
    bool Allocate(int n)
    {
        if (m_borrowed) {
            m_count = 0;
            return false;
        }
        if (n == m_count && (m_buffer != nullptr || n == 0))
            return true;
        Deallocate();
        if (n <= 0)
            return n == 0;
        m_buffer = new (std::nothrow) T[static_cast<unsigned>(n)]();
        if (m_buffer == nullptr)
            return false;
        m_count = n;
        return true;
    }

    // Frees the buffer unless it is borrowed (a borrowed one is only let go).
    void Deallocate()
    {
        if (!m_borrowed)
            delete[] m_buffer;
        m_buffer = nullptr;
        m_count = 0;
        m_borrowed = false;
    }

    // Uses memory owned by somebody else.
    void Borrow(T* buffer, int count)
    {
        Deallocate();
        m_buffer = buffer;
        m_count = count;
        m_borrowed = true;
    }

    void SwapBuffers(CKvArrayBase& other)
    {
        std::swap(m_buffer, other.m_buffer);
        std::swap(m_count, other.m_count);
        std::swap(m_borrowed, other.m_borrowed);
    }

    T* GetBuffer() { return m_buffer; }
    const T* GetBuffer() const { return m_buffer; }
    int GetCount() const { return m_count; }
    bool IsBorrowed() const { return m_borrowed; }

private:
    T* m_buffer = nullptr;
    int m_count = 0;
    bool m_borrowed = false;
};

#endif
