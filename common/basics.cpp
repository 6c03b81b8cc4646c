#include "common/basics.h"

#include <sys/stat.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>

#include "common/library.h"

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isBlankChar(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
constexpr char kPound = static_cast<char>(0xA3);

}  // namespace

// The text is read by hand so that only the plain number forms count
// ("nan", "inf" and hexadecimal are no amounts); the cleaned digits then go
// through from_chars, which rounds correctly and ignores the locale.
double myatof(const char* text) {
    if (!text) return 0.0;
    // The common case, what SetBox writes: [-]digits[.digits], alone or before
    // the override mark. Up to 2^53 as a whole number of 10^-k, k at most 22,
    // both factors are exact doubles and one division rounds correctly:
    // from_chars's own result, without its general machinery. Longer texts
    // of that form go to from_chars as they stand.
    {
        // One pass reads the digits as a whole number; it is only used when
        // there are at most fifteen of them, which stay below 2^53.
        const char* digits = text + (*text == '-');
        const char* q = digits;
        std::uint64_t whole = 0;
        for (; isDigit(*q); ++q) whole = whole * 10 + static_cast<unsigned>(*q - '0');
        const char* const point = q;
        if (point != digits) {
            if (*q == '.' && isDigit(q[1]))
                for (++q; isDigit(*q); ++q) whole = whole * 10 + static_cast<unsigned>(*q - '0');
            const char* const end = q;
            if (*end == '\0' || (*end == '!' && end[1] == '\0')) {
                static constexpr double kTens[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                   1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                   1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
                const int decimals = end == point ? 0 : static_cast<int>(end - point - 1);
                const auto magnitude = [&](std::uint64_t number) {
                    if (number == 0) return 0.0;
                    const double m = static_cast<double>(number) / kTens[decimals];
                    return digits != text ? -m : m;
                };
                if ((point - digits) + decimals <= 15) return magnitude(whole);
                constexpr std::uint64_t kExactLimit = (std::uint64_t{1} << 53) / 10;
                whole = 0;
                bool exact = true;
                for (const char* d = digits; d != end; ++d) {
                    if (d == point) continue;
                    if (whole >= kExactLimit) exact = false;
                    else whole = whole * 10 + static_cast<unsigned>(*d - '0');
                }
                if (exact && decimals <= 22) return magnitude(whole);
                double result = 0.0;
                const auto [stop, ec] = std::from_chars(text, end, result);
                if (stop == end) return ec != std::errc() || !std::isfinite(result) || result == 0.0 ? 0.0 : result;
            }
        }
    }
    const char* p = text;
    while (isBlankChar(*p)) ++p;
    bool pound = false;
    if (*p == kPound) {
        pound = true;
        ++p;
    }
    bool negative = false;
    if (*p == '-' || *p == '+') {
        negative = *p == '-';
        ++p;
    }
    if (!pound && *p == kPound) ++p;

    std::string clean;
    if (negative) clean += '-';
    int digits = 0;
    for (;; ++p) {
        if (isDigit(*p)) {
            clean += *p;
            ++digits;
        } else if (*p == ',' && digits > 0 && isDigit(p[1])) {
            // thousands separator: skipped
        } else {
            break;
        }
    }
    if (*p == '.') {
        const char* q = p + 1;
        std::string fraction;
        while (isDigit(*q)) fraction += *q++;
        if (digits > 0 || !fraction.empty()) {
            if (!fraction.empty()) clean += '.';
            clean += fraction;
            digits += static_cast<int>(fraction.size());
            p = q;
        }
    }
    if (digits == 0) return 0.0;
    if (*p == 'e' || *p == 'E') {
        const char* q = p + 1;
        std::string exponent = "e";
        if (*q == '-' || *q == '+') exponent += *q++;
        if (isDigit(*q)) {
            while (isDigit(*q)) exponent += *q++;
            clean += exponent;
        }
    }
    double result = 0.0;
    const auto [end, ec] = std::from_chars(clean.data(), clean.data() + clean.size(), result);
    (void)end;
    if (ec != std::errc() || !std::isfinite(result) || result == 0.0) return 0.0;
    return result;
}

namespace {

// One date field: 1 to 4 digits. Advances p past it.
bool readField(const char*& p, int& value, int& length) {
    value = 0;
    length = 0;
    while (isDigit(*p)) {
        if (++length > 4) return false;
        value = value * 10 + (*p - '0');
        ++p;
    }
    return length > 0;
}

// Three digit fields with the separator between them and blanks around the
// whole text; nothing else.
bool readThreeFields(const char* text, char separator, int (&field)[3], int (&length)[3]) {
    if (!text) return false;
    const char* p = text;
    while (isBlankChar(*p)) ++p;
    for (int i = 0; i < 3; ++i) {
        if (i > 0 && *p++ != separator) return false;
        if (!readField(p, field[i], length[i])) return false;
    }
    while (isBlankChar(*p)) ++p;
    return *p == '\0';
}

}  // namespace

// Slashes only: the forms tell users "dd/mm/yyyy - must have slashes typed in",
// so 01-04-2015 is not taken for a date. XML dates go through ParseXmlDate.
int ParseDate(const char* text, int& year, int& month, int& day) {
    year = month = day = 0;
    int field[3] = {}, length[3] = {};
    if (!readThreeFields(text, '/', field, length)) return 0;
    day = field[0];
    month = field[1];
    year = field[2];
    return 1;
}

int ParseXmlDate(const char* text, int& year, int& month, int& day) {
    year = month = day = 0;
    int field[3] = {}, length[3] = {};
    if (!readThreeFields(text, '-', field, length) || length[0] != 4) return 0;
    year = field[0];
    month = field[1];
    day = field[2];
    return 1;
}

int yyyy(int year) {
    if (year >= 0 && year <= 79) return year + 2000;
    if (year >= 80 && year <= 99) return year + 1900;
    return year;
}

namespace {

std::mutex g_logMutex;
LogSink g_logSink = nullptr;
void* g_logContext = nullptr;

// The log stays open between lines. It is reopened when its path changes (the
// host moved the temporary folder) or the file at that path is no longer the
// one held open (removed or replaced), and flushed after every line so that it
// is complete at any moment. Called with g_logMutex held.
std::FILE* g_logFile = nullptr;
std::string g_logPath;
dev_t g_logDevice = 0;
ino_t g_logInode = 0;

bool logStillOpenAt(const CString& path) {
    struct stat now {};
    return g_logFile && g_logPath == path.str() && ::stat(path, &now) == 0 && now.st_dev == g_logDevice &&
           now.st_ino == g_logInode;
}

void appendToLogFile(const CString& line) {
    const char* named = std::getenv("CT600_LOG_FILE");
    const CString path = named && *named ? CString(named) : GetTempDir() + "/ct600.log";
    if (!logStillOpenAt(path)) {
        if (g_logFile) std::fclose(g_logFile);
        g_logPath.clear();
        g_logFile = std::fopen(path, "ae");
        struct stat opened {};
        if (!g_logFile) return;
        if (::fstat(fileno(g_logFile), &opened) == 0) {
            g_logDevice = opened.st_dev;
            g_logInode = opened.st_ino;
            g_logPath = path.str();
        }
    }
    std::fputs(line, g_logFile);
    std::fputc('\n', g_logFile);
    std::fflush(g_logFile);
}

}  // namespace

void SetLogSink(LogSink sink, void* context) noexcept {
    std::lock_guard<std::mutex> lock(g_logMutex);
    g_logSink = sink;
    g_logContext = sink ? context : nullptr;
}

void DoLogF(const char* format, ...) {
    if (!format) return;
    try {
        CString line;
        va_list args;
        va_start(args, format);
        line.FormatV(format, args);
        va_end(args);
        LogSink sink = nullptr;
        void* context = nullptr;
        {
            std::lock_guard<std::mutex> lock(g_logMutex);
            sink = g_logSink;
            context = g_logContext;
        }
        // The sink is called unlocked so that it may log in turn.
        if (sink) {
            sink(line, context);
            return;
        }
        std::lock_guard<std::mutex> lock(g_logMutex);
        appendToLogFile(line);
    } catch (...) {
        // The log never takes a run down.
    }
}
