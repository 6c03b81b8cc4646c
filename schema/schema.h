// Schema conformance of the return document: the walk that the validation
// entry runs after the business rules. Every node of the message is looked up
// by its own name and its parent's name in the test table, and each row of
// that pair runs its test; failures are added to the Errors tree as
//   <Error><Text>label: [value "v" - ]message</Text></Error>
// and never stop the walk.
#pragma once

#include "common/current_law.h"
#include "common/xmlvar.h"
#include "schema/checks.h"
#include "schema/pattern.h"

// Walks the whole document (nothing when root is null); errors is the Errors root.
void schemawalk(CXMLVar* root, CXMLVar* errors);
// The same walk by the model of the ladder the return is charged by.
void schemawalk(CXMLVar* root, CXMLVar* errors, RateLadder ladder);
// The walk's callback for one node; errors is the Errors root.
void schemavisit(CXMLVar* node, void* errors);
