#include "output.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "cli.h"

namespace cli {

namespace fs = std::filesystem;

std::string reason(int error) {
    switch (error) {
        case ENOENT: return "no such file or folder";
        case EACCES:
        case EPERM: return "permission denied";
        case ENOSPC: return "the disk is full";
        case EDQUOT: return "the disk quota is used up";
        case EFBIG: return "the file would exceed the size allowed (file size limit)";
        case EROFS: return "the file system is read-only";
        case ELOOP: return "too many levels of links (a link that loops?)";
        case EISDIR: return "it is a folder";
        case ENOTDIR: return "a part of the path is not a folder";
        case ENAMETOOLONG: return "the name is too long";
        case EIO: return "input/output error on the device";
        case EXDEV: return "the temporary file and the target are on different file systems";
        default: {
            std::string text = std::strerror(error);
            if (!text.empty()) text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
            return text;
        }
    }
}

// ---------------------------------------------------------------- signals

namespace {

// What the signal handler removes: fixed buffers, as a handler may not allocate.
char g_tempFile[4096];
volatile sig_atomic_t g_tempSet = 0;
char g_folder[4096];
volatile sig_atomic_t g_folderSet = 0;

void setBuffer(char* buffer, volatile sig_atomic_t& set, const std::string& text) {
    set = 0;
    if (text.empty() || text.size() >= sizeof g_tempFile) return;
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    set = 1;
}

// Only system calls: unlinkat on each entry, one level deep, then the folder.
void removeFolderNow(const char* folder) {
    const int fd = open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        alignas(8) char buffer[8192];
        for (;;) {
            const long n = syscall(SYS_getdents64, fd, buffer, sizeof buffer);
            if (n <= 0) break;
            for (long at = 0; at < n;) {
                const auto* entry = reinterpret_cast<const struct dirent64*>(buffer + at);
                const char* name = entry->d_name;
                if (!(name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'))))
                    if (unlinkat(fd, name, 0) != 0) unlinkat(fd, name, AT_REMOVEDIR);
                at += entry->d_reclen;
            }
        }
        close(fd);
    }
    rmdir(folder);
}

void onEndingSignal(int sig) {
    const int saved = errno;
    if (g_tempSet) unlink(g_tempFile);
    if (g_folderSet) removeFolderNow(g_folder);
    signal(sig, SIG_DFL);
    kill(getpid(), sig);  // delivered as the handler returns: the process ends by it
    errno = saved;
}

}  // namespace

void installCleanupHandlers(bool alsoAlarm) {
    struct sigaction on {};
    on.sa_handler = onEndingSignal;
    sigfillset(&on.sa_mask);
    for (int sig : {SIGHUP, SIGINT, SIGTERM}) sigaction(sig, &on, nullptr);
    if (alsoAlarm) sigaction(SIGALRM, &on, nullptr);
}

void cleanupFolderOnSignal(const std::string& folder) { setBuffer(g_folder, g_folderSet, folder); }

// ---------------------------------------------------------------- files

namespace {

class TempFile {
public:
    explicit TempFile(std::string path) : path_(std::move(path)) {}
    int create() {
        const int fd = mkstemp(path_.data());
        created_ = fd >= 0;
        if (created_) setBuffer(g_tempFile, g_tempSet, path_);
        return fd;
    }
    void kept() {
        g_tempSet = 0;
        created_ = false;
    }
    ~TempFile() {
        g_tempSet = 0;
        if (created_) unlink(path_.c_str());
    }
    const std::string& path() const noexcept { return path_; }

private:
    std::string path_;
    bool created_ = false;
};

}  // namespace

void writeFileSafely(const std::string& path, const std::string& text, bool ownerOnly) {
    const auto fail = [&path](int error) { throw InputError{"cannot write " + path + ": " + reason(error)}; };
    std::error_code ec;
    if (fs::is_directory(path, ec)) throw InputError{"cannot write " + path + ": it is a folder; give a file name"};
    // Through a link the file it names is replaced, and the link kept.
    fs::path target = path;
    if (fs::is_symlink(target, ec)) {
        const fs::path resolved = fs::canonical(target, ec);
        if (!ec) target = resolved;
    }
    // A file its owner made read-only stays as it is.
    if (access(target.c_str(), F_OK) == 0 && access(target.c_str(), W_OK) != 0) fail(errno);
    fs::path folder = target.parent_path();
    if (folder.empty()) folder = ".";
    // A dot first, so that a folder of returns read by a later batch skips it.
    TempFile temp((folder / ("." + target.filename().string() + ".XXXXXX")).string());
    const int fd = temp.create();
    if (fd < 0) fail(errno);
    struct stat old {};
    mode_t mode;
    if (ownerOnly) {
        mode = 0600;
    } else if (stat(target.c_str(), &old) == 0) {
        mode = old.st_mode & 07777;
    } else {
        const mode_t mask = umask(0);
        umask(mask);
        mode = 0666 & ~mask;
    }
    int error = 0;
    if (fchmod(fd, mode) != 0) error = errno;
    for (std::size_t at = 0; !error && at < text.size();) {
        const ssize_t n = write(fd, text.data() + at, text.size() - at);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) error = n < 0 ? errno : ENOSPC;
        else at += static_cast<std::size_t>(n);
    }
    if (!error && fsync(fd) != 0) error = errno;
    if (close(fd) != 0 && !error) error = errno;
    if (!error && rename(temp.path().c_str(), target.c_str()) != 0) error = errno;
    if (error) fail(error);
    temp.kept();
}

void checkNotAnInput(const std::string& output, const std::vector<std::string>& inputs, bool sameAllowed) {
    struct stat out {};
    if (output.empty() || output == "-" || stat(output.c_str(), &out) != 0) return;
    for (const std::string& input : inputs) {
        struct stat in {};
        if (stat(input.c_str(), &in) != 0 || in.st_dev != out.st_dev || in.st_ino != out.st_ino) continue;
        if (sameAllowed) continue;
        throw InputError{"the output " + output + " is the input " + input +
                         " and would replace it; choose another file"};
    }
}

// ---------------------------------------------------------------- standard output

namespace {
int g_outError = 0;
}

void outputFailed(int error) {
    if (g_outError) return;
    g_outError = error ? error : EIO;
    std::fprintf(stderr, "ct600: cannot write to standard output: %s\n", reason(g_outError).c_str());
}

void printOut(const std::string& text) {
    if (text.empty()) return;
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
        outputFailed(errno);
        throw OutputLost{};
    }
}

bool finishOut() {
    errno = 0;
    if (std::fflush(stdout) != 0 || std::ferror(stdout)) outputFailed(errno);
    return g_outError == 0;
}

}  // namespace cli
