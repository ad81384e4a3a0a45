#pragma once

#include <utility>

// Owns one reference on a COM object and releases it at the end of its scope.
template <class T>
class CComPtr {
public:
    CComPtr() noexcept = default;
    CComPtr(CComPtr&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    CComPtr& operator=(CComPtr&& other) noexcept {
        CComPtr(std::move(other)).Swap(*this);
        return *this;
    }
    ~CComPtr() {
        if (m_object) m_object->Release();
    }

    // Gives up what it holds and returns the place for an out argument, whose reference it then owns. The second form
    // fits operations that take an interface identifier.
    T** Put() noexcept {
        CComPtr().Swap(*this);
        return &m_object;
    }
    void** PutVoid() noexcept { return reinterpret_cast<void**>(Put()); }

    T* get() const noexcept { return m_object; }
    T* operator->() const noexcept { return m_object; }
    explicit operator bool() const noexcept { return m_object != nullptr; }

private:
    void Swap(CComPtr& other) noexcept { std::swap(m_object, other.m_object); }

    T* m_object = nullptr;
};
