#pragma once

// The bodies of CVolumeProc. Included by the file that instantiates a level, where the parent is complete.

#include <utility>

#include "rules/ieuobject.h"
#include "tree/volumeproc.h"

template <class Parent>
CVolumeProc<Parent>::CVolumeProc(Parent* parent) noexcept : m_parent(parent) {
    // Not through an override: the engine does not count what its own categories hold.
    if (m_parent) m_parent->IEUObject::AddRef();
}

template <class Parent>
CVolumeProc<Parent>::~CVolumeProc() {
    if (Parent* parent = std::exchange(m_parent, nullptr)) parent->IEUObject::Release();
}

template <class Parent>
bool CVolumeProc<Parent>::QueryUpgradeMode() {
    return m_parent ? m_parent->QueryUpgradeMode() : IsUpgradeMode();
}

template <class Parent>
bool CVolumeProc<Parent>::QueryPathAllowed(const CString& path, bool withFiles) {
    return m_parent ? m_parent->QueryPathAllowed(path, withFiles) : IsPathAllowed(path);
}

template <class Parent>
bool CVolumeProc<Parent>::ReportProgress(uint32_t begin, uint32_t end) {
    return !m_parent || m_parent->ReportProgress(begin, end);
}

template <class Parent>
bool CVolumeProc<Parent>::ReportFound(const CString& item, const uint64_t* size, uint64_t extra) {
    AddFound(*size);
    return !m_parent || m_parent->ReportFound(item, size, extra);
}

template <class Parent>
bool CVolumeProc<Parent>::ReportEmptied(const CString& item, const uint64_t* size, uint64_t extra, bool subtract,
                                        uint32_t count) {
    if (subtract) TakeEmptied(*size, count);
    return !m_parent || m_parent->ReportEmptied(item, size, extra, subtract, count);
}

template <class Parent>
void CVolumeProc<Parent>::SubtractVolume(const uint64_t* size) {
    if (m_parent) m_parent->SubtractVolume(size);
    SubtractSize(*size);
}
