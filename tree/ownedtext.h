#pragma once

#include <cstring>
#include <string_view>

#pragma pack(push, 4)

// A null-terminated wide string in one pointer. Its alignment of 4 makes it a legal member of the packed records, which
// std::wstring is not.
class COwnedText {
public:
    COwnedText() noexcept = default;
    ~COwnedText() { delete[] m_text; }
    COwnedText(const COwnedText&) = delete;
    COwnedText& operator=(const COwnedText&) = delete;

    // Copies the text, which may be part of the old one; unchanged when memory runs out.
    COwnedText& operator=(std::wstring_view text) {
        wchar_t* copy = new wchar_t[text.size() + 1];
        if (!text.empty()) std::memcpy(copy, text.data(), text.size() * sizeof(wchar_t));
        copy[text.size()] = L'\0';
        delete[] m_text;
        m_text = copy;
        return *this;
    }
    const wchar_t* c_str() const noexcept { return m_text ? m_text : L""; }

private:
    wchar_t* m_text = nullptr;
};

#pragma pack(pop)
