// A file written whole, replacing any earlier file of its name.
#pragma once

#include <ostream>
#include <sstream>

// Text collects in memory and reaches the file on Close (or destruction). The
// file is created or opened when the stream is made; one that can't be opened
// leaves the stream bad, so it takes no output and nothing is reported.
//
// An earlier file is overwritten in place and then cut to the new length
// rather than truncated first: on ext4 a truncate-then-rewrite forces the data
// to disk when the file closes, which costs milliseconds a file.
class ReplaceFile : public std::ostream {
public:
    explicit ReplaceFile(const char* path);
    ~ReplaceFile() override;
    ReplaceFile(const ReplaceFile&) = delete;
    ReplaceFile& operator=(const ReplaceFile&) = delete;

    // Writes the text and closes the file; false if it was never open or the
    // write failed. Later output is dropped.
    bool Close();

private:
    std::stringbuf buffer_;
    int fd_ = -1;
};
