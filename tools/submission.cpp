// 'message --submission' and 'validate --submission'.
#include "submission.h"

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

std::string errorsText(const CXMLVar& errors, bool xml, bool declaration) {
    if (xml) {
        CString text;
        errors.Save(text, declaration ? 1 : 0);
        return text.str() + "\n";
    }
    std::string text;
    for (const CXMLVar* error : errors.children) {
        const CXMLVar* line = error->FindChild("Text");
        text += (line ? line->value.str() : error->value.str()) + "\n";
    }
    return text;
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
    if (outPath.empty() || outPath == "-") {
        std::fwrite(text.c_str(), 1, static_cast<std::size_t>(text.GetLength()), stdout);
        std::fputc('\n', stdout);
        return;
    }
    writeReplacing(outPath, text.str() + "\n", path);
}

ValidateRun runValidateSubmission(const std::string& path, bool xml, const std::string& fileAttribute) {
    CMapStringToString boxes = loadBoxes(path);
    const std::unique_ptr<CXMLVar> errors(ValidateSubmission(boxes, SubmissionSettings{}));
    if (!fileAttribute.empty()) errors->SetAttr("file", fileAttribute.c_str());
    ValidateRun run;
    run.errorsFound = errors->GetChildCount() != 0;
    run.text = errorsText(*errors, xml, fileAttribute.empty());
    return run;
}

void writeReplacing(const std::string& target, const std::string& text, const std::string& input) {
    namespace fs = std::filesystem;
    std::error_code ec;
    if (!input.empty() && fs::equivalent(target, input, ec))
        throw InputError{"-o " + target + " is the return being read; choose another name"};
    const fs::path where = fs::path(target).parent_path();
    std::string temp = ((where.empty() ? fs::path(".") : where) / ("." + fs::path(target).filename().string() + ".XXXXXX")).string();
    const int fd = mkstemp(temp.data());  // mode 0600
    if (fd < 0) throw InputError{"cannot write " + target + ": " + std::strerror(errno)};
    const char* at = text.data();
    std::size_t left = text.size();
    int failure = 0;
    while (left > 0 && !failure) {
        const ssize_t n = ::write(fd, at, left);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) failure = n < 0 ? errno : EIO;
        else {
            at += n;
            left -= static_cast<std::size_t>(n);
        }
    }
    if (!failure && ::fsync(fd) != 0) failure = errno;
    if (::close(fd) != 0 && !failure) failure = errno;
    if (!failure && std::rename(temp.c_str(), target.c_str()) != 0) failure = errno;
    if (failure) {
        ::unlink(temp.c_str());
        throw InputError{"cannot write " + target + ": " + std::strerror(failure)};
    }
}

}  // namespace cli
