#pragma once

#include <gmock/gmock.h>
#include <tinyxml.h>

#include <memory>
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
        if (m_document.RootElement()) loaded = m_category->LoadXml(m_document.RootElement());
    }
    ~Category() {
        m_category->ReleaseContent();
        m_category->Release();
        // Made by the look-up of a product, and kept by the process.
        CAppInfoManager::ReleaseInstance();
    }
    Category(const Category&) = delete;
    Category& operator=(const Category&) = delete;

    CAppCatagory* operator->() const { return m_category; }
    CAppCatagory& operator*() const { return *m_category; }
    // Borrowed from the tree.
    CAppGarbageInfo& App(size_t app = 0) const {
        return static_cast<CAppGarbageInfo&>(*ChildrenOf(*m_category).at(app));
    }
    CGarbageCatagory& Garbage(size_t app = 0, size_t garbage = 0) const {
        return static_cast<CGarbageCatagory&>(*ChildrenOf(App(app)).at(garbage));
    }
    CGarbageInfo& Rule(size_t app = 0, size_t garbage = 0, size_t rule = 0) const {
        return static_cast<CGarbageInfo&>(*ChildrenOf(Garbage(app, garbage)).at(rule));
    }

    bool loaded = false;

private:
    TiXmlDocument m_document;
    CAppCatagory* m_category;
};
