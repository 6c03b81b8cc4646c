// The worker pool. The parent lists the files, forks the workers once, and
// hands each worker the index of its next file over a pipe, keeping two in
// hand per worker so that none waits for the parent. A worker answers with
// the file's status and texts on a pipe of its own. The parent prints the
// answers in the order of the files, so that the output does not depend on
// the number of workers. A worker that dies costs only the file it was on:
// the parent reports that file, hands the worker's other files on, and
// starts a replacement.
#include "batch.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <filesystem>

#include "cli.h"
#include "entry/exports.h"
#include "output.h"

namespace cli {

namespace fs = std::filesystem;

// ---------------------------------------------------------------- the files

namespace {

bool isReturnName(const fs::path& path) {
    std::string ext = path.extension().string();
    for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return ext == ".json" || ext == ".xml";
}

std::vector<InputFile> filesBelow(const std::string& folder) {
    std::vector<InputFile> found;
    std::error_code ec;
    auto it = fs::recursive_directory_iterator(folder, ec);
    fs::path at = folder;  // the folder being entered when reading fails
    for (; !ec && it != fs::recursive_directory_iterator(); it.increment(ec)) {
        const fs::path& path = it->path();
        at = path;
        const std::string name = path.filename().string();
        std::error_code kind;
        if (!name.empty() && name[0] == '.') {
            if (it->is_directory(kind)) it.disable_recursion_pending();
            continue;
        }
        if (it->is_regular_file(kind) && isReturnName(path))
            found.push_back({path.string(), path.lexically_relative(folder).string()});
    }
    if (ec) {
        std::error_code kind;
        const std::string failed = fs::is_directory(at, kind) ? at.string() : folder;
        throw InputError{"cannot read the folder " + failed + ": " + reason(ec.value())};
    }
    if (found.empty()) throw InputError{"no .json or .xml file in " + folder};
    std::sort(found.begin(), found.end(), [](const InputFile& a, const InputFile& b) { return a.path < b.path; });
    return found;
}

}  // namespace

std::vector<InputFile> collectInputs(const std::vector<std::string>& paths) {
    std::vector<InputFile> files;
    for (const std::string& named : paths) {
        std::error_code ec;
        if (fs::is_directory(named, ec)) {
            auto found = filesBelow(named);
            files.insert(files.end(), std::make_move_iterator(found.begin()), std::make_move_iterator(found.end()));
        } else {
            files.push_back({named, fs::path(named).filename().string()});
        }
    }
    return files;
}

bool isBatch(const std::vector<std::string>& paths) {
    std::error_code ec;
    return paths.size() > 1 || (paths.size() == 1 && fs::is_directory(paths[0], ec));
}

int defaultJobs() {
    const long online = sysconf(_SC_NPROCESSORS_ONLN);
    return online > 0 ? static_cast<int>(online) : 1;
}

// ---------------------------------------------------------------- the pipes

namespace {

// What a worker sends back for a file, followed by the two texts.
struct Answer {
    std::uint32_t index, status, outLength, errLength;
};

bool writeAll(int fd, const void* data, std::size_t size) {
    const char* p = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t n = write(fd, p, size);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        p += n;
        size -= static_cast<std::size_t>(n);
    }
    return true;
}

bool readAll(int fd, void* data, std::size_t size) {
    char* p = static_cast<char*>(data);
    while (size > 0) {
        const ssize_t n = read(fd, p, size);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        p += n;
        size -= static_cast<std::size_t>(n);
    }
    return true;
}

// ---------------------------------------------------------------- a worker

void captureMessage(const char* text, void* context) {
    auto* messages = static_cast<std::string*>(context);
    *messages += text ? text : "";
    *messages += '\n';
}

std::string prefixLines(const std::string& prefix, const std::string& text) {
    std::string out;
    std::size_t at = 0;
    while (at < text.size()) {
        std::size_t end = text.find('\n', at);
        if (end == std::string::npos) end = text.size();
        out += prefix + text.substr(at, end - at) + "\n";
        at = end + 1;
    }
    return out;
}

[[noreturn]] void workerMain(int taskFd, int answerFd, const std::string& folder, const std::vector<InputFile>& files,
                             unsigned timeoutSeconds, const std::function<FileResult(const InputFile&)>& task) {
    // Stopped by the parent or by its alarm, a worker removes the output it
    // was writing; its folder is the parent's to remove.
    signal(SIGPIPE, SIG_DFL);
    cleanupFolderOnSignal("");
    installCleanupHandlers(true);
    // Everything a worker says goes through its pipe.
    if (const int null = open("/dev/null", O_WRONLY); null >= 0) {
        dup2(null, STDOUT_FILENO);
        close(null);
    }
    setenv("CT600_TEMP_DIR", folder.c_str(), 1);
    std::string messages;
    ct600lib_set_message_sink(captureMessage, &messages);

    std::uint32_t index = 0;
    while (readAll(taskFd, &index, sizeof index)) {
        if (index >= files.size()) _exit(3);
        const InputFile& file = files[index];
        removeStaleReport();
        messages.clear();
        FileResult result;
        alarm(timeoutSeconds);
        try {
            result = task(file);
        } catch (const InputError& e) {
            result = {FileStatus::Unreadable, "", "ct600: " + e.message + "\n"};
        } catch (const std::exception& e) {
            result = {FileStatus::Unreadable, "", "ct600: " + file.path + ": " + e.what() + "\n"};
        }
        alarm(0);
        if (!messages.empty()) result.err = prefixLines("ct600: " + file.path + ": ", messages) + result.err;

        const Answer answer{index, static_cast<std::uint32_t>(result.status),
                            static_cast<std::uint32_t>(result.out.size()), static_cast<std::uint32_t>(result.err.size())};
        std::string message(reinterpret_cast<const char*>(&answer), sizeof answer);
        message += result.out;
        message += result.err;
        if (!writeAll(answerFd, message.data(), message.size())) _exit(0);  // the parent is gone
    }
    _exit(0);
}

// ---------------------------------------------------------------- the parent

volatile sig_atomic_t g_interrupted = 0;
void onInterrupt(int sig) { g_interrupted = sig; }

// Ctrl-C, a hang-up and a termination request end the batch cleanly: workers stopped,
// temporary folders removed. A worker that dies must not kill the parent
// through a write to its pipe.
class ParentSignals {
public:
    ParentSignals() {
        struct sigaction on {};
        on.sa_handler = onInterrupt;
        sigemptyset(&on.sa_mask);
        sigaction(SIGHUP, &on, &oldHup_);
        sigaction(SIGINT, &on, &oldInt_);
        sigaction(SIGTERM, &on, &oldTerm_);
        struct sigaction ignore {};
        ignore.sa_handler = SIG_IGN;
        sigemptyset(&ignore.sa_mask);
        sigaction(SIGPIPE, &ignore, &oldPipe_);
    }
    ~ParentSignals() {
        sigaction(SIGHUP, &oldHup_, nullptr);
        sigaction(SIGINT, &oldInt_, nullptr);
        sigaction(SIGTERM, &oldTerm_, nullptr);
        sigaction(SIGPIPE, &oldPipe_, nullptr);
    }
    ParentSignals(const ParentSignals&) = delete;
    ParentSignals& operator=(const ParentSignals&) = delete;

private:
    struct sigaction oldHup_ {}, oldInt_ {}, oldTerm_ {}, oldPipe_ {};
};

struct Worker {
    pid_t pid = -1;
    int taskFd = -1, answerFd = -1;
    std::string received;
    std::deque<std::uint32_t> inHand;  // sent, not yet answered, in the order sent
};

class Progress {
public:
    Progress(const std::string& verb, std::size_t total) : verb_(verb), total_(total), on_(isatty(STDERR_FILENO)) {}
    void clear() {
        if (!shown_) return;
        std::fputs("\r\033[K", stderr);
        shown_ = false;
    }
    void draw(std::size_t done, bool force) {
        if (!on_) return;
        const auto now = std::chrono::steady_clock::now();
        if (!force && shown_ && now - last_ < std::chrono::milliseconds(100)) return;
        std::fflush(stdout);
        std::fprintf(stderr, "\r%s %zu/%zu\033[K", verb_.c_str(), done, total_);
        std::fflush(stderr);
        shown_ = true;
        last_ = now;
    }

private:
    std::string verb_;
    std::size_t total_;
    bool on_;
    bool shown_ = false;
    std::chrono::steady_clock::time_point last_;
};

std::string plural(std::size_t n, const char* one, const char* many) {
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

class Pool {
public:
    Pool(const std::vector<InputFile>& files, const BatchSettings& settings,
         const std::function<FileResult(const InputFile&)>& task, const std::string& folder)
        : files_(files), settings_(settings), task_(task), folder_(folder), results_(files.size()),
          ready_(files.size(), 0), progress_(settings.verb, files.size()) {
        for (std::uint32_t i = 0; i < files.size(); ++i) queue_.push_back(i);
    }

    // Returns the exit status, or 0 with interrupted() set.
    int run() {
        put(settings_.header);
        const std::size_t wanted = std::min<std::size_t>(static_cast<std::size_t>(std::max(settings_.jobs, 1)), files_.size());
        while (workers_.size() < wanted && spawn()) {
        }
        if (workers_.empty() && !queue_.empty()) throw InputError{"cannot start a worker: " + startError_};
        for (Worker& w : workers_) feed(w);

        while (!workers_.empty() && !g_interrupted) {
            std::vector<pollfd> fds;
            for (const Worker& w : workers_) fds.push_back({w.answerFd, POLLIN, 0});
            const int ready = poll(fds.data(), fds.size(), -1);
            if (ready < 0) {
                if (errno == EINTR) continue;
                throw InputError{std::string("waiting for the workers: ") + std::strerror(errno)};
            }
            for (std::size_t i = fds.size(); i-- > 0 && !g_interrupted;) {
                if (!fds[i].revents) continue;
                char buffer[65536];
                const ssize_t n = read(workers_[i].answerFd, buffer, sizeof buffer);
                if (n < 0 && errno == EINTR) continue;
                if (n > 0) {
                    workers_[i].received.append(buffer, static_cast<std::size_t>(n));
                    takeAnswers(workers_[i]);
                } else {
                    buried(i);
                }
            }
            while (!queue_.empty() && workers_.size() < wanted && spawn()) feed(workers_.back());
            if (workers_.empty() && !queue_.empty()) {
                // No worker can be started again: what is left cannot be done.
                while (!queue_.empty()) {
                    const std::uint32_t index = queue_.front();
                    queue_.pop_front();
                    fail(index, "no worker could be started (" + startError_ + ")");
                }
            }
            emitReady();
            progress_.draw(done_, false);
        }
        if (g_interrupted) {
            stopAll();
            progress_.clear();
            std::fflush(stdout);
            if (g_interrupted != SIGPIPE)
                std::fprintf(stderr, "ct600: interrupted after %zu of %zu files\n", done_, files_.size());
            return 0;
        }
        emitReady();
        progress_.clear();
        put(settings_.footer);
        if (!outLost_ && std::fflush(stdout) != 0) {
            outLost_ = true;
            outputFailed(errno);
        }

        std::string summary = settings_.verb + " " + plural(files_.size(), "file", "files") + ": " +
                              std::to_string(counts_[0]) + " clean, " + std::to_string(counts_[1]) + " with errors, " +
                              std::to_string(counts_[2]) + " unreadable";
        if (counts_[4]) summary += ", " + std::to_string(counts_[4]) + " with outputs not written";
        if (counts_[3]) summary += ", " + std::to_string(counts_[3]) + " lost with their worker";
        std::fprintf(stderr, "%s\n", summary.c_str());
        if (counts_[2] || counts_[3] || counts_[4] || outLost_) return kExitBadInput;
        return counts_[1] ? kExitErrorsFound : kExitOk;
    }

private:
    bool spawn() {
        int task[2], answer[2];
        if (pipe(task) != 0) {
            startError_ = std::strerror(errno);
            return false;
        }
        if (pipe(answer) != 0) {
            startError_ = std::strerror(errno);
            close(task[0]);
            close(task[1]);
            return false;
        }
        const std::string folder = folder_ + "/w" + std::to_string(nextId_++);
        std::error_code ignored;
        fs::create_directories(folder, ignored);
        std::fflush(stdout);
        std::fflush(stderr);
        const pid_t pid = fork();
        if (pid < 0) {
            startError_ = std::strerror(errno);
            for (int fd : {task[0], task[1], answer[0], answer[1]}) close(fd);
            return false;
        }
        if (pid == 0) {
            // Only the parent may hold the other workers' pipes, or their ends would never be seen.
            for (const Worker& w : workers_) {
                if (w.taskFd >= 0) close(w.taskFd);
                close(w.answerFd);
            }
            close(task[1]);
            close(answer[0]);
            workerMain(task[0], answer[1], folder, files_, settings_.timeoutSeconds, task_);
        }
        close(task[0]);
        close(answer[1]);
        Worker w;
        w.pid = pid;
        w.taskFd = task[1];
        w.answerFd = answer[0];
        workers_.push_back(std::move(w));
        return true;
    }

    void feed(Worker& w) {
        while (w.taskFd >= 0 && w.inHand.size() < 2 && !queue_.empty()) {
            const std::uint32_t index = queue_.front();
            if (!writeAll(w.taskFd, &index, sizeof index)) break;  // it died: its end shows that
            queue_.pop_front();
            w.inHand.push_back(index);
        }
        if (queue_.empty() && w.taskFd >= 0) {
            close(w.taskFd);  // the worker ends after its last answer
            w.taskFd = -1;
        }
    }

    void takeAnswers(Worker& w) {
        std::size_t at = 0;
        while (w.received.size() - at >= sizeof(Answer)) {
            Answer a;
            std::memcpy(&a, w.received.data() + at, sizeof a);
            const std::size_t whole = sizeof a + std::size_t{a.outLength} + a.errLength;
            if (w.received.size() - at < whole) break;
            const char* body = w.received.data() + at + sizeof a;
            const auto held = std::find(w.inHand.begin(), w.inHand.end(), a.index);
            const bool known = a.status <= static_cast<std::uint32_t>(FileStatus::Unwritten) &&
                               a.status != static_cast<std::uint32_t>(FileStatus::Failed);
            if (held != w.inHand.end() && known) {
                w.inHand.erase(held);
                FileResult r;
                r.status = static_cast<FileStatus>(a.status);
                r.out.assign(body, a.outLength);
                r.err.assign(body + a.outLength, a.errLength);
                record(a.index, std::move(r));
            }
            at += whole;
        }
        w.received.erase(0, at);
        // Two in hand keeps the worker busy while the answer travels.
        feed(w);
    }

    // A worker's pipe has ended: it has exited, normally or not.
    void buried(std::size_t i) {
        Worker w = std::move(workers_[i]);
        workers_.erase(workers_.begin() + static_cast<std::ptrdiff_t>(i));
        if (w.taskFd >= 0) close(w.taskFd);
        close(w.answerFd);
        int status = 0;
        while (waitpid(w.pid, &status, 0) < 0 && errno == EINTR) {
        }
        if (w.inHand.empty()) return;
        std::string why;
        if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM && settings_.timeoutSeconds)
            why = "still running after " + plural(settings_.timeoutSeconds, "second", "seconds") + "; its worker was stopped";
        else if (WIFSIGNALED(status))
            why = "the worker on this file died (signal " + std::to_string(WTERMSIG(status)) + ", " +
                  strsignal(WTERMSIG(status)) + ")";
        else
            why = "the worker on this file ended unexpectedly (exit status " + std::to_string(WEXITSTATUS(status)) + ")";
        fail(w.inHand.front(), why);
        // The files it held after that one go to the others.
        for (auto it = w.inHand.rbegin(); it + 1 != w.inHand.rend(); ++it) queue_.push_front(*it);
    }

    void fail(std::uint32_t index, const std::string& why) {
        FileResult r;
        r.status = FileStatus::Failed;
        r.err = "ct600: " + files_[index].path + ": " + why + "\n";
        if (settings_.failedOut) r.out = settings_.failedOut(files_[index], why);
        record(index, std::move(r));
    }

    void record(std::uint32_t index, FileResult r) {
        if (ready_[index]) return;
        ++counts_[static_cast<int>(r.status)];
        results_[index] = std::move(r);
        ready_[index] = 1;
        ++done_;
    }

    void emitReady() {
        while (nextOut_ < files_.size() && ready_[nextOut_]) {
            FileResult& r = results_[nextOut_];
            if (!r.err.empty() || !r.out.empty()) progress_.clear();
            if (!r.err.empty()) {
                std::fflush(stdout);
                std::fputs(r.err.c_str(), stderr);
            }
            put(r.out);
            r = FileResult{};
            ++nextOut_;
        }
    }

    // Standard output, checked. A reader that has gone (| head) ends the batch
    // as it would end a filter; any other failure is reported at the end.
    void put(const std::string& text) {
        if (text.empty() || outLost_) return;
        if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size()) return;
        if (errno == EPIPE) {
            g_interrupted = SIGPIPE;
            return;
        }
        outLost_ = true;
        outputFailed(errno);
    }

    void stopAll() {
        for (Worker& w : workers_) kill(w.pid, SIGTERM);
        for (Worker& w : workers_) {
            if (w.taskFd >= 0) close(w.taskFd);
            close(w.answerFd);
            while (waitpid(w.pid, nullptr, 0) < 0 && errno == EINTR) {
            }
        }
        workers_.clear();
    }

    const std::vector<InputFile>& files_;
    const BatchSettings& settings_;
    const std::function<FileResult(const InputFile&)>& task_;
    std::string folder_;
    std::vector<Worker> workers_;
    std::deque<std::uint32_t> queue_;
    std::vector<FileResult> results_;
    std::vector<char> ready_;
    std::size_t nextOut_ = 0, done_ = 0;
    std::size_t counts_[5] = {0, 0, 0, 0, 0};
    bool outLost_ = false;
    int nextId_ = 0;
    std::string startError_;
    Progress progress_;
};

}  // namespace

int runBatch(const std::vector<InputFile>& files, const BatchSettings& settings,
             const std::function<FileResult(const InputFile&)>& task) {
    if (files.size() > UINT32_MAX) throw InputError{"too many files for one run"};
    g_interrupted = 0;
    int status;
    {
        const ParentSignals signals;
        const PrivateTempDir folder("batch");
        Pool pool(files, settings, task, folder.path());
        status = pool.run();
    }
    if (const int sig = g_interrupted) {
        // Leave as the signal would have ended the process, now that all is tidy.
        signal(sig, SIG_DFL);
        raise(sig);
        return 128 + sig;
    }
    return status;
}

}  // namespace cli
