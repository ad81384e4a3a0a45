#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

#include "rules/excludepath.h"
#include "rules/looppath.h"
#include "sysservices/text.h"

class TiXmlElement;

// The attributes of a "GarbageInfo" element, read as the engine understands them and nothing resolved yet. "RootKey",
// "Value", "Filter" and "Iteration" serve both kinds of rule; what else belongs to one kind, the other does not read.
struct RuleElement {
    explicit RuleElement(const TiXmlElement& element);

    bool isRegistry;
    bool iteration;
    CString path;  // "Path", or "KeyPath" of a registry rule
    CString filter;

    // Of a registry rule, and with GetByReg of the location of a file rule.
    HKEY rootKey = nullptr;  // null for none
    CString value;           // "Value" as it stands

    // Of a file rule.
    bool hasPath = false;
    bool getByReg = false;
    bool isFolder = false;
    int32_t folderIndex = -1;
    // "FolderX86EnvDir" in a 32-bit process on a 64-bit system if it has any, else "FolderEnvDir".
    CString folderVariable;
    std::vector<CString> excludedNames;
    CString emptyProc;
    bool loopPath = false;
    bool excludePath = false;
    bool selfExclude = false;
    bool useShellBrowse = false;

    // Of a registry rule.
    bool deleteKey = false;
    std::vector<CString> valueNames;  // lower-cased

private:
    void ReadFileRule(const TiXmlElement& element);
    void ReadRegistryRule(const TiXmlElement& element);
};

// The children of such an element. Their names are known in any case, unlike those of the levels above.
struct RuleChildren {
    explicit RuleChildren(const TiXmlElement& element);

    // A child and where it stands in the document.
    template <class Child>
    struct Placed {
        Child child;
        const TiXmlElement* element;
    };
    std::vector<Placed<LoopStep>> steps;
    std::vector<Placed<std::vector<CString>>> terminals;  // the names of each, lower-cased
    bool exactMatch = false;                              // the last of the terminals decides for all of them
    std::vector<Placed<ExcludePathEntry>> exclusions;

private:
    void ReadLoopPath(const TiXmlElement& child);
    void ReadExcludePath(const TiXmlElement& child);
};
