#include "platform/cstring.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstring>

void CString::FormatV(const char* format, va_list args) {
    s_.clear();
    if (!format) return;
    va_list copy;
    va_copy(copy, args);
    char small[256];
    int needed = std::vsnprintf(small, sizeof small, format, copy);
    va_end(copy);
    if (needed < 0) return;
    if (static_cast<std::size_t>(needed) < sizeof small) {
        s_.assign(small, static_cast<std::size_t>(needed));
        return;
    }
    s_.resize(static_cast<std::size_t>(needed) + 1);
    std::vsnprintf(s_.data(), s_.size(), format, args);
    s_.resize(static_cast<std::size_t>(needed));
}

void CString::Format(const char* format, ...) {
    va_list args;
    va_start(args, format);
    FormatV(format, args);
    va_end(args);
}

void CString::AppendFormat(const char* format, ...) {
    CString tail;
    va_list args;
    va_start(args, format);
    tail.FormatV(format, args);
    va_end(args);
    s_ += tail.s_;
}

CString FormatString(const char* format, ...) {
    CString out;
    va_list args;
    va_start(args, format);
    out.FormatV(format, args);
    va_end(args);
    return out;
}

namespace {
// "%.*f" for the amounts a return holds, worked in integers: from 2^-8 up to
// 2^53 a double's fraction is a whole number of 2^-60ths, so its digits are
// that number times 10^decimals over 2^60, the remainder rounded half to even
// as printf rounds. Anything else (or more than nine decimals) is left to the
// general path; false then.
bool formatAmount(double value, int decimals, char* out, std::size_t& length) {
    static constexpr std::uint64_t kPowers[] = {1,      10,      100,      1000,      10000,
                                                100000, 1000000, 10000000, 100000000, 1000000000};
    const double magnitude = std::fabs(value);
    if (decimals < 0 || decimals > 9 || !(magnitude < 9007199254740992.0) ||
        (magnitude != 0 && magnitude < 0.00390625))
        return false;
    auto whole = static_cast<std::uint64_t>(magnitude);
    const double fraction = magnitude - static_cast<double>(whole);  // exact
    const auto sixtieths = static_cast<std::uint64_t>(fraction * 0x1p60);  // exact: a power of two
    const unsigned __int128 scaled = static_cast<unsigned __int128>(sixtieths) * kPowers[decimals];
    std::uint64_t digits = static_cast<std::uint64_t>(scaled >> 60);
    const unsigned __int128 rest = scaled & ((static_cast<unsigned __int128>(1) << 60) - 1);
    const unsigned __int128 half = static_cast<unsigned __int128>(1) << 59;
    const std::uint64_t last = decimals > 0 ? digits : whole;
    if (rest > half || (rest == half && (last & 1))) ++digits;
    if (digits == kPowers[decimals]) {
        ++whole;
        digits = 0;
    }
    char* p = out;
    if (std::signbit(value)) *p++ = '-';
    p = std::to_chars(p, p + 20, whole).ptr;
    if (decimals > 0) {
        *p++ = '.';
        // Two digits a step, from the right.
        static constexpr char kPairs[] =
            "0001020304050607080910111213141516171819202122232425262728293031323334353637383940414243444546474849"
            "5051525354555657585960616263646566676869707172737475767778798081828384858687888990919293949596979899";
        int i = decimals;
        for (; i >= 2; i -= 2, digits /= 100) std::memcpy(p + i - 2, kPairs + 2 * (digits % 100), 2);
        if (i == 1) p[0] = static_cast<char>('0' + digits);
        p += decimals;
    }
    length = static_cast<std::size_t>(p - out);
    return true;
}
}  // namespace

CString FormatFixed(double value, int decimals) {
    char amount[40];
    std::size_t length = 0;
    if (formatAmount(value, decimals, amount, length)) return CString(amount, length);
    // to_chars prints finite values exactly as "%.*f" does, without the printf machinery.
    if (std::isfinite(value) && decimals >= 0 && decimals <= 17) {
        char text[352];  // the longest finite double in fixed notation, plus decimals
        const auto result = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals);
        if (result.ec == std::errc()) return CString(text, static_cast<std::size_t>(result.ptr - text));
    }
    return FormatString("%.*f", decimals, value);
}

namespace {
std::size_t clampCount(int count, std::size_t size) {
    if (count <= 0) return 0;
    return std::min(static_cast<std::size_t>(count), size);
}
}  // namespace

CString CString::Left(int count) const { return CString(s_.substr(0, clampCount(count, s_.size()))); }

CString CString::Right(int count) const {
    std::size_t n = clampCount(count, s_.size());
    return CString(s_.substr(s_.size() - n));
}

CString CString::Mid(int first) const {
    std::size_t start = clampCount(first, s_.size());
    return CString(s_.substr(start));
}

CString CString::Mid(int first, int count) const {
    std::size_t start = clampCount(first, s_.size());
    return CString(s_.substr(start, clampCount(count, s_.size() - start)));
}

int CString::Find(char c, int start) const noexcept {
    if (start < 0) start = 0;
    std::size_t pos = s_.find(c, static_cast<std::size_t>(start));
    return pos == std::string::npos ? -1 : static_cast<int>(pos);
}

int CString::Find(const char* sub, int start) const noexcept {
    if (!sub) return -1;
    if (start < 0) start = 0;
    if (static_cast<std::size_t>(start) > s_.size()) return -1;
    std::size_t pos = s_.find(sub, static_cast<std::size_t>(start));
    return pos == std::string::npos ? -1 : static_cast<int>(pos);
}

int CString::ReverseFind(char c) const noexcept {
    std::size_t pos = s_.rfind(c);
    return pos == std::string::npos ? -1 : static_cast<int>(pos);
}

int CString::Replace(const char* from, const char* to) {
    if (!from || !*from) return 0;
    std::string_view f(from);
    std::string_view t(to ? to : "");
    int count = 0;
    std::string out;
    std::size_t pos = 0;
    for (;;) {
        std::size_t hit = s_.find(f, pos);
        if (hit == std::string::npos) break;
        out.append(s_, pos, hit - pos);
        out.append(t);
        pos = hit + f.size();
        ++count;
    }
    if (count) {
        out.append(s_, pos, std::string::npos);
        s_ = std::move(out);
    }
    return count;
}

int CString::Replace(char from, char to) {
    int count = 0;
    for (char& c : s_)
        if (c == from) { c = to; ++count; }
    return count;
}

namespace {
bool isSpace(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }
}  // namespace

CString& CString::TrimRight() {
    while (!s_.empty() && isSpace(s_.back())) s_.pop_back();
    return *this;
}

CString& CString::TrimLeft() {
    std::size_t i = 0;
    while (i < s_.size() && isSpace(s_[i])) ++i;
    s_.erase(0, i);
    return *this;
}

CString& CString::MakeLower() {
    for (char& c : s_) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return *this;
}

CString& CString::MakeUpper() {
    for (char& c : s_) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return *this;
}
