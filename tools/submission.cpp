// 'message --submission' and 'validate --submission'.
#include "submission.h"

#include "output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>

#include "entry/submission.h"

namespace cli {

namespace {

CString fromEnvironment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

void warn(const std::string& text) { std::fprintf(stderr, "ct600: %s\n", text.c_str()); }

// The first line, without its line break.
CString firstLineOfInput() {
    std::string line;
    std::getline(std::cin, line);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return CString(line.c_str());
}


}  // namespace

SubmissionSettings submissionCredentials(bool passwordStdin) {
    SubmissionSettings settings;
    settings.senderId = fromEnvironment("CT600_SENDER_ID");
    settings.password = passwordStdin ? firstLineOfInput() : fromEnvironment("CT600_SENDER_PASSWORD");
    settings.vendorId = fromEnvironment("CT600_VENDOR_ID");
    if (settings.senderId.IsEmpty()) warn("no sender id (set CT600_SENDER_ID): SenderID is left empty");
    if (settings.password.IsEmpty())
        warn(passwordStdin ? "no password on standard input: Authentication/Value is left empty"
                           : "no password (set CT600_SENDER_PASSWORD, or use --password-stdin): "
                             "Authentication/Value is left empty");
    if (settings.vendorId.IsEmpty()) warn("no vendor id (set CT600_VENDOR_ID): ChannelRouting/Channel/URI is left empty");
    return settings;
}

void writeSubmission(const std::string& path, const SubmissionSettings& settings, const std::string& outPath) {
    CMapStringToString boxes = loadBoxes(path);
    requireTemplate();
    for (const char* key : {"fileattach1", "fileattach2", "fileattach3"})
        if (const CString* name = boxes.PLookup(key); name && !name->IsEmpty())
            warn(path + ": the attached file " + name->str() +
                 " is not read; the message carries a stand-in body for it, as validation does");
    CString text;
    if (!SubmissionText(boxes, settings, text)) throw InputError{path + ": the IRmark of the message cannot be made"};
    if (outPath.empty() || outPath == "-") printOut(text.str() + "\n");
    else writeFileSafely(outPath, text.str() + "\n", true);
}

ValidateRun runValidateSubmission(const std::string& path, bool xml, const std::string& fileAttribute) {
    CMapStringToString boxes = loadBoxes(path);
    const std::unique_ptr<CXMLVar> errors(ValidateSubmission(boxes, SubmissionSettings{}));
    return validateRunOf(*errors, xml, fileAttribute);
}

}  // namespace cli
