#include "common/outfile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>

ReplaceFile::ReplaceFile(const char* path) : std::ostream(&buffer_) {
    if (path) fd_ = ::open(path, O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    if (fd_ < 0) setstate(std::ios::badbit);
}

ReplaceFile::~ReplaceFile() { Close(); }

bool ReplaceFile::Close() {
    if (fd_ < 0) return false;
    const std::string text = buffer_.str();
    bool ok = true;
    std::size_t done = 0;
    while (ok && done < text.size()) {
        const ssize_t n = ::pwrite(fd_, text.data() + done, text.size() - done, static_cast<off_t>(done));
        if (n > 0)
            done += static_cast<std::size_t>(n);
        else if (n < 0 && errno == EINTR)
            continue;
        else
            ok = false;
    }
    if (::ftruncate(fd_, static_cast<off_t>(done)) != 0) ok = false;
    if (::close(fd_) != 0) ok = false;
    fd_ = -1;
    buffer_.str(std::string());
    setstate(std::ios::badbit);
    return ok;
}
