// The module's outputs caught for the length of a scope: the log lines and
// the messages kept, the error dialog kept quiet.
#pragma once

#include <string>
#include <vector>

#include "common/basics.h"
#include "common/errors.h"
#include "platform/message_box.h"

class LogCapture {
public:
    LogCapture() { SetLogSink(&LogCapture::take, this); }
    ~LogCapture() { SetLogSink(nullptr, nullptr); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    // Whether a line holds the text.
    bool Has(const std::string& text) const {
        for (const auto& line : lines)
            if (line.find(text) != std::string::npos) return true;
        return false;
    }
    std::vector<std::string> lines;

private:
    static void take(const char* line, void* self) {
        static_cast<LogCapture*>(self)->lines.emplace_back(line ? line : "");
    }
};

class MessageCapture {
public:
    MessageCapture() { SetMessageSink(&MessageCapture::take, this); }
    ~MessageCapture() { SetMessageSink(nullptr, nullptr); }
    MessageCapture(const MessageCapture&) = delete;
    MessageCapture& operator=(const MessageCapture&) = delete;
    std::vector<std::string> lines;

private:
    static void take(const char* text, void* self) {
        static_cast<MessageCapture*>(self)->lines.emplace_back(text ? text : "");
    }
};

class QuietErrors {
public:
    QuietErrors() { SetErrorSink([](const CObList&, const CStringList*, void*) {}, nullptr); }
    ~QuietErrors() { SetErrorSink(nullptr, nullptr); }
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;
};
