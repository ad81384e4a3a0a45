#include "host/common/texts.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <string_view>

#include "sysservices/owner.h"

// Where the module begins that this is linked into: the texts of a DLL are not those of its host.
extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace {

constexpr LANGID kFirstLanguage = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US);

std::atomic<LANGID> g_language{kFirstLanguage};

struct LocalTextKind {
    using Value = wchar_t*;
    static void GiveBack(wchar_t* text) noexcept { LocalFree(text); }
};

// The table stands in blocks of 16 texts, each of them behind its length. Not LoadString, which chooses the language by
// itself.
std::wstring_view FindText(LANGID language, unsigned id) noexcept {
    constexpr unsigned kBlock = 16;
    const auto module = reinterpret_cast<HMODULE>(&__ImageBase);
    const HRSRC block = FindResourceExW(module, RT_STRING, MAKEINTRESOURCEW(id / kBlock + 1), language);
    const auto* text = block ? static_cast<const wchar_t*>(LockResource(LoadResource(module, block))) : nullptr;
    if (!text) return {};
    for (unsigned i = id % kBlock; i > 0; --i)
        text += *text + 1;
    return {text + 1, *text};
}

std::wstring Pattern(unsigned id) {
    std::wstring_view text = FindText(g_language, id);
    if (text.empty()) text = FindText(kFirstLanguage, id);
    return std::wstring(text);
}

}  // namespace

std::wstring Text(unsigned id, std::initializer_list<std::wstring> values) {
    const std::wstring pattern = Pattern(id);
    // A placeholder without a value would read behind the last one.
    std::array<DWORD_PTR, 9> arguments;
    arguments.fill(reinterpret_cast<DWORD_PTR>(L""));
    std::transform(values.begin(), values.end(), arguments.begin(),
                   [](const std::wstring& value) { return reinterpret_cast<DWORD_PTR>(value.c_str()); });
    COwner<LocalTextKind> filled;
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_STRING | FORMAT_MESSAGE_ARGUMENT_ARRAY, pattern.c_str(), 0,
        0, reinterpret_cast<wchar_t*>(filled.Put()), 0, reinterpret_cast<va_list*>(arguments.data()));
    // More than 64 KB are refused: better the text alone than none.
    return length > 0 ? std::wstring(filled.get(), length) : pattern;
}

void SetTextLanguage(LANGID language) noexcept {
    g_language = language;
}
