// The checks every element test of the schema is made of, and the one
// reporter they all go through. A check looks at one node, never stops
// anything, and adds at most its own error to the Errors tree:
//
//   Error
//     Text   "<label>: [value "<value>" - ]<message>"
//
// Value checks take their limit (if any), the label, the node and the errors
// tree; an empty label becomes the node's name with spaces inserted.
// Structural checks label their error with the node's own name as it stands.
#pragma once

#include <span>

#include "common/xmlvar.h"
#include "platform/collections.h"
#include "platform/cstring.h"
#include "schema/pattern.h"

// The reporter. showValue is 1 from value checks, 0 from structural ones.
void schemaerror(const char* label, CXMLVar* node, CXMLVar* errors, const char* message, int showValue);

// ---- value checks
void checkminlength(int n, const char* label, CXMLVar* node, CXMLVar* errors);
void checkmaxlength(int n, const char* label, CXMLVar* node, CXMLVar* errors);
void checklength(int n, const char* label, CXMLVar* node, CXMLVar* errors);
void checkpattern(const char* pattern, const char* label, CXMLVar* node, CXMLVar* errors);
void checkpattern(const CSchemaPattern& pattern, const char* label, CXMLVar* node, CXMLVar* errors);
void checkmaxinclusive(const char* limit, const char* label, CXMLVar* node, CXMLVar* errors);
void checkmininclusive(const char* limit, const char* label, CXMLVar* node, CXMLVar* errors);
void checkminexclusive(const char* limit, const char* label, CXMLVar* node, CXMLVar* errors);
void checkinteger(const char* label, CXMLVar* node, CXMLVar* errors);
void checkdecimal(const char* label, CXMLVar* node, CXMLVar* errors);
void checknonnegative(const char* label, CXMLVar* node, CXMLVar* errors);
void checkyear(const char* label, CXMLVar* node, CXMLVar* errors);
// The whole list of an enumeration at once, so that membership can be
// decided: a value outside the list is reported, as the filing service
// rejects it.
void checkenumeration(std::span<const char* const> values, const char* label, CXMLVar* node, CXMLVar* errors);

// ---- structural checks
void checkoccurs(CXMLVar* node, CXMLVar* errors, const char* name, int min, int max, CStringArray* seen);
void checknoother(CXMLVar* node, CXMLVar* errors, const CStringArray* seen);
void checkchoice(CXMLVar* node, CXMLVar* errors, const CStringArray* names);
