#pragma once

// The bodies of CLoadResIdText. Included by the file that instantiates a level, where the node is complete.

#include <tinyxml.h>

#include "sysservices/text.h"
#include "tree/itextselector.h"
#include "tree/loadresidtext.h"
#include "tree/residtexttable.h"

template <class Node>
bool CLoadResIdText<Node>::LoadResID(const TiXmlElement* element) {
    if (const char* key = element->Attribute("ResID")) m_key = key;
    return true;
}

template <class Node>
void CLoadResIdText<Node>::ChangeResID(const CResIdTextTable& table, ITextSelector* selector) {
    Node* node = dynamic_cast<Node*>(this);
    if (!node) return;
    if (!m_key.empty()) ReplaceName(*node, table, selector);
    // A node without a key still has children that may have one.
    node->ChangeResIDOfChildren(table, selector);
}

template <class Node>
void CLoadResIdText<Node>::ReplaceName(Node& node, const CResIdTextTable& table, ITextSelector* selector) {
    const char* text = table.Find(m_key);
    if (!text) return;
    node.Name = Utf8ToWide(text);
    if (!selector) return;
    if (const wchar_t* selected = selector->Select(node.Name.c_str())) node.Name = std::wstring_view(selected);
}
