#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// What MeasureXmlDepth answers when TinyXML would read beyond the end of the text.
constexpr size_t kXmlDepthUnknown = SIZE_MAX;

// How deeply TinyXML would recurse into elements if it parsed this text: 1 for a root element alone, 0 without any.
// Never less than that; more only for texts that TinyXML breaks off at an error. TinyXML has no limit of its own and
// overflows the stack on hostile files, so ask here first. `xml` is the text as TinyXML gets it, with its byte order
// mark and without CR. Needs no recursion and no memory; linear time. Any thread.
[[nodiscard]] size_t MeasureXmlDepth(std::string_view xml) noexcept;
