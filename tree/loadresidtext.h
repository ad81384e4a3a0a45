#pragma once

#include <string>

class CResIdTextTable;
class ITextSelector;
class TiXmlElement;

// The localised name of a node: its key, from the "ResID" attribute, and the replacement of its `Name`.
template <class Node>
class CLoadResIdText {
public:
    CLoadResIdText() = default;
    virtual ~CLoadResIdText() = default;
    CLoadResIdText(const CLoadResIdText&) = delete;
    CLoadResIdText& operator=(const CLoadResIdText&) = delete;

    // Reads the key. A missing attribute leaves the key as it was; always true.
    virtual bool LoadResID(const TiXmlElement* element);
    // Gives the node the text of its key, then its children theirs. Without a key, an entry or a text the name stays
    // as it is, in the previous language if need be. `selector` may be null.
    virtual void ChangeResID(const CResIdTextTable& table, ITextSelector* selector);

private:
    void ReplaceName(Node& node, const CResIdTextTable& table, ITextSelector* selector);

    std::string m_key;  // the attribute's bytes, compared with those of the text file
};
