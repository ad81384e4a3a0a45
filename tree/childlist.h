#pragma once

#include <cstdint>
#include <list>
#include <memory>

#include "sysservices/lock.h"
#include "sysservices/reference.h"

class TiXmlElement;

// The children of one node: the lock, the owned pointers in load order, and the cursor of the one enumeration. `Class`
// is the children's class, `Interface` what the enumeration hands out.
template <class Class, class Interface>
class CChildList {
public:
    CChildList() = default;
    ~CChildList() { Release(); }
    CChildList(const CChildList&) = delete;
    CChildList& operator=(const CChildList&) = delete;

    // Loads `child`, whose reference it takes over, from its element and appends it. A child that fails to load, or for
    // which memory runs out (throws), lets go of what it has loaded and is released.
    [[nodiscard]] bool LoadAndAppend(Class* child, const TiXmlElement* element) {
        std::unique_ptr<Class, Discard> owned(child);
        if (!child->LoadXml(element)) return false;
        const CLockGuard guard(m_lock);
        m_children.push_back(child);
        owned.release();
        return true;
    }

    Interface* First() {
        const CLockGuard guard(m_lock);
        m_cursor = m_children.begin();
        return AddRefAtCursor();
    }

    Interface* Next(const Interface* previous) {
        const CLockGuard guard(m_lock);
        if (m_cursor == m_children.end() || static_cast<Interface*>(*m_cursor) != previous) return nullptr;
        ++m_cursor;
        return AddRefAtCursor();
    }

    // Lets every child let go of its own children, then releases it. The cursor stands at the end afterwards.
    void Release() noexcept {
        std::list<Class*> gone;
        {
            const CLockGuard guard(m_lock);
            gone.swap(m_children);
            m_cursor = m_children.end();
            ++m_generation;
        }
        for (Class* child : gone)
            Discard()(child);
    }

    // Calls visit(child) in list order, with the lock held throughout, until it answers false; false then. A visit that
    // has the children released, on this thread, is the last one.
    template <class Visit>
    bool VisitLocked(Visit visit) {
        const CLockGuard guard(m_lock);
        const uint32_t generation = m_generation;
        for (auto child = m_children.begin(); child != m_children.end(); ++child) {
            const auto held = CReference<Class>::Share(*child);
            if (!visit(*held)) return false;
            if (generation != m_generation) break;
        }
        return true;
    }

    CLock& Lock() noexcept { return m_lock; }

private:
    // A child holds a reference on its parent: it must let go of its own children before it can go.
    struct Discard {
        void operator()(Class* child) const noexcept {
            child->ReleaseContent();
            child->Release();
        }
    };

    Interface* AddRefAtCursor() noexcept {
        if (m_cursor == m_children.end()) return nullptr;
        (*m_cursor)->AddRef();
        return *m_cursor;
    }

    CLock m_lock;  // guards the three below
    std::list<Class*> m_children;
    typename std::list<Class*>::iterator m_cursor = m_children.end();
    uint32_t m_generation = 0;  // counts the releases
};
