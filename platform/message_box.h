// The modal message box of a desktop host becomes a sink: a function the host
// sets. By default a message goes to standard error as one line.
#pragma once

constexpr unsigned MB_OK = 0;
constexpr int IDOK = 1;

using MessageSink = void (*)(const char* text, void* context);

// Installs the sink; a null sink restores the default (standard error).
void SetMessageSink(MessageSink sink, void* context) noexcept;

// Hands the text to the sink and returns IDOK, as a box with one OK button would.
int AfxMessageBox(const char* text, unsigned type = MB_OK);
