// Writing what the command gives: files replaced whole or not at all,
// standard output checked, and the run's temporary files removed even when a
// signal ends it.
#pragma once

#include <string>
#include <vector>

namespace cli {

// The system's reason for errno in plain words: "no such file", "permission
// denied", "the disk is full".
std::string reason(int error);

// Writes text to path through a temporary file in the same folder, flushed to
// the disk and then renamed over path: on any failure the old file is as it
// was, nothing is left under the final name and the temporary file is gone.
// A new file gets the usual permissions, a replaced one keeps its own.
// ownerOnly: readable by its owner alone, whatever the old file allowed (a
// filing message holds a password). Throws InputError naming path and the reason.
void writeFileSafely(const std::string& path, const std::string& text, bool ownerOnly = false);

// Refuses (InputError) an output that is one of the inputs, through links
// too. sameAllowed: the in-place recalculation of a return.
void checkNotAnInput(const std::string& output, const std::vector<std::string>& inputs, bool sameAllowed = false);

// Standard output, checked: a failed write is reported (once) and throws
// OutputLost; the command then exits 2.
struct OutputLost {};
void printOut(const std::string& text);
// Reports a failed write to standard output, once.
void outputFailed(int error);
// Flushes standard output; false, with the message given, if anything
// written to it was lost.
bool finishOut();

// Removed by the handler when HUP, INT or TERM (and, in a batch worker,
// ALRM) ends the process, which then ends by that signal. The folder is
// emptied one level deep and removed.
void installCleanupHandlers(bool alsoAlarm = false);
void cleanupFolderOnSignal(const std::string& folder);  // empty: none

}  // namespace cli
