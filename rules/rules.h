// The business rules, as the validation entry calls them.
#pragma once

#include "common/xmlvar.h"

// Runs every rule group, in order, over a message whose root is the
// GovTalkMessage, appending an Error (with its Text "code:message") to the
// errors node for each failure. A null message runs nothing; nothing thrown
// leaves this call.
void RunRules(CXMLVar* message, CXMLVar* errors);
