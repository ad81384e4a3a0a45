#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <string_view>

#include "sysservices/foundpath.h"
#include "sysservices/itemidlist.h"

// The found items of one rule, in the order of discovery. There may be millions: beside its text an item costs some 24
// bytes, and no allocation of its own. Items stay where they are until they are erased, also while others are appended.
class CFoundItems {
public:
    struct FoundItem {
        uint64_t size;       // bytes
        CItemIdList itemId;  // the shell item's list in its folder; none for files

        // The full path of a file, or the display text of a shell item. Not terminated.
        std::wstring_view Path() const noexcept { return {Texts(), m_length}; }
        // The literal form that deletes the file, empty where the path does: see CFoundPath. Not terminated.
        std::wstring_view LiteralPath() const noexcept { return {Texts() + m_length, m_literalLength}; }

    private:
        friend class CFoundItems;
        FoundItem(std::wstring_view path, std::wstring_view literal, uint64_t bytes, CItemIdList id) noexcept;
        static size_t Room(size_t length) noexcept;
        size_t Room() const noexcept { return Room(size_t{m_length} + m_literalLength); }
        const wchar_t* Texts() const noexcept { return reinterpret_cast<const wchar_t*>(this + 1); }

        // Of the path and its literal form, which follow the item in memory.
        uint32_t m_length;
        uint32_t m_literalLength : 31;
        uint32_t m_erased : 1 = 0;
    };

private:
    // A block of memory with one item after the other.
    struct Chunk {
        explicit Chunk(size_t room) : bytes(std::make_unique_for_overwrite<std::byte[]>(room)), capacity(room) {}
        FoundItem& At(size_t offset) const noexcept { return *reinterpret_cast<FoundItem*>(bytes.get() + offset); }
        std::unique_ptr<std::byte[]> bytes;
        size_t capacity;
        size_t used = 0;
        size_t count = 0;  // items that are not erased
    };
    using Chunks = std::list<Chunk>;

public:
    class Iterator {
    public:
        FoundItem& operator*() const noexcept { return m_chunk->At(m_offset); }
        FoundItem* operator->() const noexcept { return &**this; }
        Iterator& operator++() noexcept;
        bool operator==(const Iterator&) const noexcept = default;

    private:
        friend class CFoundItems;
        Iterator(Chunks::iterator chunk, Chunks::iterator end) noexcept : m_chunk(chunk), m_end(end) { PassErased(); }
        void PassErased() noexcept;

        Chunks::iterator m_chunk;
        Chunks::iterator m_end;
        size_t m_offset = 0;
    };

    CFoundItems() = default;
    ~CFoundItems() { Clear(); }
    CFoundItems(const CFoundItems&) = delete;
    CFoundItems& operator=(const CFoundItems&) = delete;

    Iterator begin() noexcept { return {m_chunks.begin(), m_chunks.end()}; }
    Iterator end() noexcept { return {m_chunks.end(), m_chunks.end()}; }
    size_t Count() const noexcept;

    // Throws std::bad_alloc and leaves the items as they are.
    void Append(const CFoundPath& path, uint64_t size, CItemIdList itemId);
    // Returns the place of the next item.
    Iterator Erase(Iterator item) noexcept;
    void Clear() noexcept;

private:
    Chunk& ChunkWithRoom(size_t room);

    Chunks m_chunks;
};
