// Batch runs: many returns through one command, in long-lived worker
// processes that each have a temporary folder of their own.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace cli {

// Failed: lost with its worker. Unwritten: an output of the file could not be written.
enum class FileStatus : int { Clean = 0, Errors = 1, Unreadable = 2, Failed = 3, Unwritten = 4 };

struct FileResult {
    FileStatus status = FileStatus::Clean;
    std::string out;  // for standard output
    std::string err;  // for standard error
};

struct InputFile {
    std::string path;      // as the user can find it again
    std::string relative;  // below the folder it was found in; a named file's own name
};

// The files named, in order, each folder replaced by the .json and .xml files
// below it (any depth, names starting with a dot left out), sorted by path. A
// named file is taken whatever its name; one that is missing stays in the
// list and is reported as unreadable when its turn comes. A folder that
// cannot be read or holds no return is an InputError.
std::vector<InputFile> collectInputs(const std::vector<std::string>& paths);

// Whether the paths make a batch: more than one, or any folder.
bool isBatch(const std::vector<std::string>& paths);

// The number of processors online, at least 1.
int defaultJobs();

struct BatchSettings {
    int jobs = 1;
    unsigned timeoutSeconds = 0;  // a worker still on one file after this long is stopped; 0: no limit
    std::string verb;             // "validated": the progress line and the summary
    std::string header, footer;   // standard output before the first result and after the last
    // The standard output given for a file whose worker died; may be empty.
    std::function<std::string(const InputFile&, const std::string& why)> failedOut;
};

// Runs task over every file in settings.jobs worker processes, printing each
// file's output in the order of the files, a progress line while standard
// error is a terminal, then the summary. The task runs in a worker: it may
// call the library, and its temporary folder is the worker's own. Returns
// the exit status: 0 every file clean, 1 errors found in any, 2 any file
// unreadable, not written or lost with its worker, or standard output lost.
int runBatch(const std::vector<InputFile>& files, const BatchSettings& settings,
             const std::function<FileResult(const InputFile&)>& task);

}  // namespace cli
