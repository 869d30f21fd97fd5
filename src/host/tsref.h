#ifndef VYGIS_TSREF_H
#define VYGIS_TSREF_H

// Reference counting shared by every object of the GIS object library.
//
// An object starts with no reference. Whoever keeps it holds a reference,
// normally through a TsRefPtr; when the last reference is released the object
// deletes itself. Objects are therefore always created with new and wrapped at
// once (TsRefPtr<T>::create does both), never placed on the stack.

#include "vygishost_export.h"

#include <atomic>
#include <cstddef>
#include <utility>

namespace VyObjects {

class VYGIS_HOST_EXPORT TsRefBase
{
public:
    TsRefBase(const TsRefBase&) = delete;
    TsRefBase& operator=(const TsRefBase&) = delete;

    // The count is bookkeeping, not part of the object's value, so both work
    // on const objects too.
    void AddRef() const;
    // Returns true when this call dropped the last reference and destroyed
    // the object; false while references remain. Releasing an object that
    // holds no reference is a programming error and does nothing.
    bool Release() const;
    int RefCount() const;

    // Process-wide tallies for leak checks: objects constructed but not yet
    // destroyed, and AddRef calls not yet matched by a Release.
    static long long LiveObjectCount();
    static long long OutstandingReferenceCount();

protected:
    TsRefBase();
    virtual ~TsRefBase();

private:
    mutable std::atomic<int> m_refCount{0};
};

// Holds one reference to a T (or nothing). Copies add a reference, the
// destructor gives it back.
template <class T>
class TsRefPtr
{
public:
    TsRefPtr() noexcept = default;
    TsRefPtr(std::nullptr_t) noexcept {}
    explicit TsRefPtr(T* object) : m_object(object) { addRef(); }
    TsRefPtr(const TsRefPtr& other) : m_object(other.m_object) { addRef(); }
    TsRefPtr(TsRefPtr&& other) noexcept : m_object(other.m_object) { other.m_object = nullptr; }
    template <class U>
    TsRefPtr(const TsRefPtr<U>& other) : m_object(other.get()) { addRef(); }
    ~TsRefPtr() { release(); }

    TsRefPtr& operator=(TsRefPtr other) noexcept
    {
        std::swap(m_object, other.m_object);
        return *this;
    }

    template <class... Args>
    static TsRefPtr create(Args&&... args)
    {
        return TsRefPtr(new T(std::forward<Args>(args)...));
    }

    // Null when the object is not a U.
    template <class U>
    TsRefPtr<U> dynamicCast() const
    {
        return TsRefPtr<U>(dynamic_cast<U*>(m_object));
    }

    void reset() { TsRefPtr().swap(*this); }
    void swap(TsRefPtr& other) noexcept { std::swap(m_object, other.m_object); }

    T* get() const noexcept { return m_object; }
    T* operator->() const noexcept { return m_object; }
    T& operator*() const noexcept { return *m_object; }
    explicit operator bool() const noexcept { return m_object != nullptr; }
    bool isNull() const noexcept { return m_object == nullptr; }

private:
    void addRef()
    {
        if (m_object)
            m_object->AddRef();
    }
    void release()
    {
        if (m_object)
            m_object->Release();
        m_object = nullptr;
    }

    T* m_object = nullptr;
};

template <class T, class U>
bool operator==(const TsRefPtr<T>& a, const TsRefPtr<U>& b) { return a.get() == b.get(); }
template <class T, class U>
bool operator!=(const TsRefPtr<T>& a, const TsRefPtr<U>& b) { return a.get() != b.get(); }
template <class T>
bool operator==(const TsRefPtr<T>& a, std::nullptr_t) { return a.isNull(); }
template <class T>
bool operator!=(const TsRefPtr<T>& a, std::nullptr_t) { return !a.isNull(); }

} // namespace VyObjects

#endif // VYGIS_TSREF_H
