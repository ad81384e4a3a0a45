#pragma once

#include <utility>

#include "sysservices/nothrow.h"

// Owns one reference on a counted object, of this engine, of COM or of a host, and gives it up at the end of its scope.
// What a foreign Release throws ends there.
template <class T>
class CReference {
public:
    CReference() noexcept = default;
    // Adopts a reference that the caller already holds.
    explicit CReference(T* adopted) noexcept : m_object(adopted) {}
    // Takes a further reference on an object that somebody else holds; null gives an empty owner.
    static CReference Share(T* object) noexcept {
        if (object) object->AddRef();
        return CReference(object);
    }

    CReference(CReference&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    CReference& operator=(CReference&& other) noexcept {
        const CReference old(std::exchange(m_object, std::exchange(other.m_object, nullptr)));
        return *this;
    }
    ~CReference() {
        if (m_object) NoThrow<unsigned long>(0, [this] { return m_object->Release(); });
    }

    // Gives up what it holds and returns the place for an out argument, whose reference it then owns. The second form
    // fits COM operations that take an interface identifier.
    T** Put() noexcept {
        *this = CReference();
        return &m_object;
    }
    void** PutVoid() noexcept { return reinterpret_cast<void**>(Put()); }

    T* get() const noexcept { return m_object; }
    T* operator->() const noexcept { return m_object; }
    T& operator*() const noexcept { return *m_object; }
    explicit operator bool() const noexcept { return m_object != nullptr; }

private:
    T* m_object = nullptr;
};
