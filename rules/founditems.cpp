#include "rules/founditems.h"

#include <algorithm>
#include <functional>
#include <new>
#include <numeric>
#include <utility>

namespace {

// Most rules find little: a rule's blocks grow with what it finds.
constexpr size_t kFirstChunk = 512;
constexpr size_t kLargestChunk = 65536;
constexpr uint32_t kLongestText = 0x7FFFFFFF;

}  // namespace

CFoundItems::FoundItem::FoundItem(std::wstring_view path, std::wstring_view literal, uint64_t bytes,
                                  CItemIdList id) noexcept
    : size(bytes),
      itemId(std::move(id)),
      m_length(static_cast<uint32_t>(path.size())),
      m_literalLength(static_cast<uint32_t>(literal.size()) & kLongestText) {
    auto* const texts = reinterpret_cast<wchar_t*>(this + 1);
    std::copy(literal.begin(), literal.end(), std::copy(path.begin(), path.end(), texts));
}

size_t CFoundItems::FoundItem::Room(size_t length) noexcept {
    const size_t bytes = sizeof(FoundItem) + length * sizeof(wchar_t);
    return (bytes + alignof(FoundItem) - 1) / alignof(FoundItem) * alignof(FoundItem);
}

// To the first item from here on that is not erased.
void CFoundItems::Iterator::PassErased() noexcept {
    while (m_chunk != m_end) {
        while (m_offset < m_chunk->used && (**this).m_erased)
            m_offset += (**this).Room();
        if (m_offset < m_chunk->used) return;
        ++m_chunk;
        m_offset = 0;
    }
}

CFoundItems::Iterator& CFoundItems::Iterator::operator++() noexcept {
    m_offset += (**this).Room();
    PassErased();
    return *this;
}

size_t CFoundItems::Count() const noexcept {
    return std::transform_reduce(m_chunks.begin(), m_chunks.end(), size_t{0}, std::plus<>(),
                                 [](const Chunk& chunk) { return chunk.count; });
}

void CFoundItems::Append(const CFoundPath& path, uint64_t size, CItemIdList itemId) {
    const CString& text = path.Text();
    const CString& literal = path.Literal();
    if (std::max(text.size(), literal.size()) > kLongestText) throw std::bad_alloc();
    const size_t room = FoundItem::Room(text.size() + literal.size());
    Chunk& chunk = ChunkWithRoom(room);
    ::new (chunk.bytes.get() + chunk.used) FoundItem(text, literal, size, std::move(itemId));
    chunk.used += room;
    ++chunk.count;
}

CFoundItems::Chunk& CFoundItems::ChunkWithRoom(size_t room) {
    const bool isFirst = m_chunks.empty();
    if (!isFirst && m_chunks.back().capacity - m_chunks.back().used >= room) return m_chunks.back();
    const size_t usual = isFirst ? kFirstChunk : std::min(m_chunks.back().capacity * 2, kLargestChunk);
    return m_chunks.emplace_back(std::max(usual, room));
}

// The memory goes with the last item of its chunk.
CFoundItems::Iterator CFoundItems::Erase(Iterator item) noexcept {
    const Chunks::iterator chunk = item.m_chunk;
    item->itemId = {};
    item->m_erased = true;
    ++item;
    if (--chunk->count == 0) m_chunks.erase(chunk);
    return item;
}

void CFoundItems::Clear() noexcept {
    for (FoundItem& item : *this)
        item.itemId = {};  // all that an item owns
    m_chunks.clear();
}
