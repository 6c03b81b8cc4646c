#include "platform/message_box.h"

#include <cstdio>

namespace {
void toStandardError(const char* text, void*) {
    std::fprintf(stderr, "%s\n", text ? text : "");
    std::fflush(stderr);
}

MessageSink g_sink = toStandardError;
void* g_context = nullptr;
}  // namespace

void SetMessageSink(MessageSink sink, void* context) noexcept {
    g_sink = sink ? sink : toStandardError;
    g_context = sink ? context : nullptr;
}

int AfxMessageBox(const char* text, unsigned type) {
    (void)type;
    g_sink(text ? text : "", g_context);
    return IDOK;
}
