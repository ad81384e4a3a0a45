#pragma once

#include <atomic>
#include <cstdint>

// The base of every object that crosses the module boundary: nodes, rules, the engine, the update object.
//
// An object begins with one reference, which belongs to whoever received it. Every pointer that an operation returns
// carries a reference of its own; give each one up with Release and do not touch the object afterwards.
//
// Any thread may add and release references; what else an object allows is told with the object.
class IEUObject {
public:
    IEUObject(const IEUObject&) = delete;
    IEUObject& operator=(const IEUObject&) = delete;

    // Adds a reference; returns the new count.
    virtual uint32_t AddRef() noexcept { return m_references.fetch_add(1, std::memory_order_relaxed) + 1; }

    // Gives up a reference; returns the new count. At 0 the object is gone before the call returns. The engine's
    // objects never throw here; what the override of a host's or companion's object throws, the engine drops.
    virtual uint32_t Release() {
        const uint32_t left = m_references.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left == 0) {
            FinalRelease();
            delete this;
        }
        return left;
    }

    // Runs just before destruction; a hook for classes that must let go of something while they are still whole.
    virtual void FinalRelease() noexcept {}

    // Behind the other operations: their places in the table of virtual functions are part of the binary interface.
    virtual ~IEUObject() = default;

protected:
    IEUObject() noexcept = default;

private:
    std::atomic<uint32_t> m_references{1};
};
