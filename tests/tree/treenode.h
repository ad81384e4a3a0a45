#pragma once

#include <gmock/gmock.h>
#include <tinyxml.h>

#include <string>

#include "sysservices/appinfomanager.h"
#include "tests/support/smalljob.h"
#include "tree/appcatagory.h"

// A top-level category without an engine, loaded from a piece of XML.
class Category {
public:
    explicit Category(const std::string& xml, CDregsweep* engine = nullptr, IDregsweep* notifications = nullptr)
        : m_category(new CAppCatagory(engine, notifications)) {
        m_document.Parse(xml.c_str());
        EXPECT_TRUE(m_document.RootElement()) << xml;
        loaded = m_document.RootElement() && m_category->LoadXml(m_document.RootElement());
    }
    ~Category() {
        m_category->ReleaseContent();
        m_category->Release();
        CAppInfoManager::ReleaseInstance();  // made by the look-up of a product
    }
    CAppCatagory* operator->() const { return m_category; }
    CAppCatagory& operator*() const { return *m_category; }
    // Borrowed from the tree; always the first child.
    auto& App() const { return static_cast<CAppGarbageInfo&>(*ChildrenOf(*m_category).at(0)); }
    auto& Garbage() const { return static_cast<CGarbageCatagory&>(*ChildrenOf(App()).at(0)); }
    auto& Rule() const { return static_cast<CGarbageInfo&>(*ChildrenOf(Garbage()).at(0)); }

    bool loaded = false;

private:
    TiXmlDocument m_document;
    CAppCatagory* const m_category;
};
