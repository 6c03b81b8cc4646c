// CString: the byte string every subsystem passes around. A thin value type
// over std::string with the operations the calculators and rules are written
// against (printf-style Format, Left/Right/Mid, Find, Replace, trimming).
#pragma once

#include <compare>
#include <cstdarg>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>

#if defined(__GNUC__)
#define CT600_PRINTF(fmt_index, first_arg) __attribute__((format(printf, fmt_index, first_arg)))
#else
#define CT600_PRINTF(fmt_index, first_arg)
#endif

class CString {
public:
    CString() = default;
    CString(const char* text) : s_(text ? text : "") {}
    CString(const char* text, std::size_t length) : s_(text ? text : "", text ? length : 0) {}
    CString(std::string text) : s_(std::move(text)) {}
    CString(std::string_view text) : s_(text) {}
    explicit CString(char c, int count = 1) : s_(count > 0 ? static_cast<std::size_t>(count) : 0, c) {}

    // Implicit view as a terminated C string, as hosts and printf-style calls expect.
    operator const char*() const noexcept { return s_.c_str(); }
    const char* c_str() const noexcept { return s_.c_str(); }
    const std::string& str() const noexcept { return s_; }
    std::string_view view() const noexcept { return s_; }

    int GetLength() const noexcept { return static_cast<int>(s_.size()); }
    bool IsEmpty() const noexcept { return s_.empty(); }
    void Empty() noexcept { s_.clear(); }
    char GetAt(int i) const { return s_.at(static_cast<std::size_t>(i)); }
    // A template so that any index type beats the built-in subscript of the
    // implicit const char* view.
    template <typename I>
        requires std::is_integral_v<I>
    char operator[](I i) const { return GetAt(static_cast<int>(i)); }

    CString& operator=(const char* text) { s_ = text ? text : ""; return *this; }
    CString& operator=(std::string text) { s_ = std::move(text); return *this; }
    CString& operator=(char c) { s_.assign(1, c); return *this; }

    CString& operator+=(const CString& other) { s_ += other.s_; return *this; }
    CString& operator+=(const char* text) { if (text) s_ += text; return *this; }
    CString& operator+=(char c) { s_ += c; return *this; }

    // printf-style formatting; replaces the content.
    void Format(const char* format, ...) CT600_PRINTF(2, 3);
    void FormatV(const char* format, va_list args);
    // printf-style formatting appended to the content.
    void AppendFormat(const char* format, ...) CT600_PRINTF(2, 3);

    CString Left(int count) const;
    CString Right(int count) const;
    CString Mid(int first) const;
    CString Mid(int first, int count) const;

    // Position of the first match at or after start, or -1.
    int Find(char c, int start = 0) const noexcept;
    int Find(const char* sub, int start = 0) const noexcept;
    int ReverseFind(char c) const noexcept;

    // Replaces every occurrence; returns how many were replaced.
    int Replace(const char* from, const char* to);
    int Replace(char from, char to);

    CString& TrimRight();
    CString& TrimLeft();
    CString& Trim() { TrimRight(); return TrimLeft(); }
    CString& MakeLower();
    CString& MakeUpper();

    int Compare(const char* text) const noexcept { return s_.compare(text ? text : ""); }

    friend bool operator==(const CString& a, const CString& b) noexcept { return a.s_ == b.s_; }
    friend bool operator==(const CString& a, const char* b) noexcept { return a.s_ == (b ? b : ""); }
    friend std::strong_ordering operator<=>(const CString& a, const CString& b) noexcept {
        return a.s_ <=> b.s_;
    }
    friend bool operator<(const CString& a, const CString& b) noexcept { return a.s_ < b.s_; }

private:
    std::string s_;
};

inline CString operator+(CString a, const CString& b) { a += b; return a; }
inline CString operator+(CString a, const char* b) { a += b; return a; }
inline CString operator+(const char* a, const CString& b) { CString r(a); r += b; return r; }
inline CString operator+(CString a, char b) { a += b; return a; }
inline CString operator+(char a, const CString& b) { CString r(a); r += b; return r; }

template <>
struct std::hash<CString> {
    std::size_t operator()(const CString& s) const noexcept { return std::hash<std::string_view>{}(s.view()); }
};

// printf into a new string.
CString FormatString(const char* format, ...) CT600_PRINTF(1, 2);
// The same text as FormatString("%.*f", decimals, value), made faster.
CString FormatFixed(double value, int decimals);
