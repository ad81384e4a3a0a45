#pragma once

#include <tinyxml.h>

#include "host/check/finding.h"

// Elements, attributes and their types: that each is known, where it may stand, and holds what it should. Stricter than
// the engine, which passes over what it does not know; docs/rule-file.xsd says the same.
void CheckRuleSchema(const TiXmlElement& root, CFindings& findings);

// Is this one of the attributes by which a root element names its schema?
bool IsSchemaReference(const TiXmlAttribute& attribute);
