// The validation entry behind do_validate.
#pragma once

#include "common/xmlvar.h"
#include "platform/collections.h"

// The errors of the return in the box map: a new "Errors" node, owned by the
// caller, with one Error (and its Text) per failure, rule failures first.
CXMLVar* ValidateReturn(CMapStringToString& boxes);
