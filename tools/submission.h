// The filing message on the command line: 'message --submission' and
// 'validate --submission'. Credentials come from the environment (or the
// password from standard input), never from a return.
#pragma once

#include <string>

#include "cli.h"
#include "envelope/submission.h"

namespace cli {

// CT600_SENDER_ID, CT600_SENDER_PASSWORD (or the first line of standard input
// with passwordStdin) and CT600_VENDOR_ID. Each one missing is said on standard
// error, and its element stays empty.
SubmissionSettings submissionCredentials(bool passwordStdin);

// The filing message for the return in path, IRmark filled in: printed, or
// written to outPath through a temporary file beside it.
void writeSubmission(const std::string& path, const SubmissionSettings& settings, const std::string& outPath);

// As runValidate, over the filing message. No credentials are read: no rule
// and no schema test looks at them.
ValidateRun runValidateSubmission(const std::string& path, bool xml, const std::string& fileAttribute = "");


}  // namespace cli
