#pragma once

class TiXmlDocument;

// Elements of a document may be nested this deep, the root counting 1.
constexpr unsigned kXmlDeepestNesting = 256;

// Loads and parses an XML file, its encoding detected by TinyXML. `path` may be relative, longer than 260 characters
// and hold any letter; null is refused. The file is read once; another program may have it open for writing.
// Returns false when the file cannot be opened, is empty, of 2 GB or more, cannot be parsed, is nested deeper than
// kXmlDeepestNesting, or memory runs out; what `document` then holds is of no use. A file that TinyXML accepts may
// still lack a root element. Never throws; any thread, one document each.
[[nodiscard]] bool LoadXmlDocument(const wchar_t* path, TiXmlDocument& document) noexcept;
