// The message a return is filed in, for hosts and the command line: built,
// marked, and checked by the same rules and schema tests as validation.
#pragma once

#include "common/xmlvar.h"
#include "envelope/submission.h"
#include "platform/collections.h"

// As ValidateReturn, but over the full filing message (GovTalk header, keys
// and IRheader around the same return), so that the rules on the IRheader and
// on the GovTalkDetails keys have something to check. A new "Errors" node,
// owned by the caller; empty when the template is missing.
CXMLVar* ValidateSubmission(CMapStringToString& boxes, const SubmissionSettings& settings);
