// Text, numbers, rounding, base64 and the tree/box-map conversions.
// Dates are in dates.cpp, folders and files in files.cpp.
#include "common/library.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isUpper(char c) { return c >= 'A' && c <= 'Z'; }
bool isLower(char c) { return c >= 'a' && c <= 'z'; }
char lowerAscii(char c) { return isUpper(c) ? static_cast<char>(c - 'A' + 'a') : c; }

// A caller's format must hold exactly one conversion that takes an int, so
// that a wrong format cannot read past the one argument.
bool takesOneInt(const char* format) {
    int conversions = 0;
    for (const char* p = format; *p; ++p) {
        if (*p != '%') continue;
        ++p;
        if (*p == '%') continue;
        while (*p && std::strchr("-+ #0", *p)) ++p;
        while (isDigit(*p)) ++p;
        if (*p == '.') {
            ++p;
            while (isDigit(*p)) ++p;
        }
        if (!*p || !std::strchr("diouxXc", *p)) return false;
        ++conversions;
    }
    return conversions == 1;
}

}  // namespace

// ---------------------------------------------------------------- text

CString ToLower(const char* text) {
    CString out(text);
    out.MakeLower();
    return out;
}

CString fmt(const char* format, int value) {
    if (!format || !takesOneInt(format)) return fmt(value);
    CString out;
    out.Format(format, value);
    return out;
}

CString fmt(int value) {
    char digits[16];
    return CString(digits, static_cast<std::size_t>(std::to_chars(digits, digits + sizeof digits, value).ptr - digits));
}
CString fmt0(double value) { return FormatFixed(value, 0); }
CString fmt2(double value) { return FormatFixed(value, 2); }

CString quote(const char* text) { return "\"" + CString(text) + "\""; }

// A blank goes before each upper-case letter that follows a lower-case one;
// runs of capitals (abbreviations) and digits are left alone:
// CompanyName -> Company Name, NonUKdividends -> Non UKdividends,
// SMEclaim and CT600A unchanged.
CString InsertSpaces(const char* name) {
    CString out;
    if (!name) return out;
    for (const char* p = name; *p; ++p) {
        if (p != name && isUpper(*p) && isLower(p[-1])) out += ' ';
        out += *p;
    }
    return out;
}

int iswhite(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

int StartsWith(const char* text, const char* prefix) {
    if (!text || !prefix) return 0;
    return std::strncmp(text, prefix, std::strlen(prefix)) == 0 ? 1 : 0;
}

int ext(const char* fileName, const char* extension) {
    if (!fileName || !extension || !*extension) return 0;
    const std::size_t n = std::strlen(fileName);
    const std::size_t e = std::strlen(extension);
    if (e > n) return 0;
    const char* tail = fileName + (n - e);
    for (std::size_t i = 0; i < e; ++i)
        if (lowerAscii(tail[i]) != lowerAscii(extension[i])) return 0;
    return 1;
}

int IsYes(const char* text) {
    CString t(text);
    t.Trim();
    t.MakeLower();
    return t == "y" || t == "yes" || t == "true" || t == "1" || t == "x" ? 1 : 0;
}

int contains(const CStringArray& items, const char* text) {
    const std::string_view wanted(text ? text : "");
    for (const CString& item : items)
        if (item.view() == wanted) return 1;
    return 0;
}

CString array2str(const CStringArray& items) {
    CString out;
    for (int i = 0; i < items.GetSize(); ++i) {
        if (i) out += ", ";
        out += items[i];
    }
    return out;
}

// ---------------------------------------------------------------- numbers

int isInteger(const char* text) {
    if (!text) return 0;
    const char* p = text;
    if (*p == '-' || *p == '+') ++p;
    if (!isDigit(*p)) return 0;
    while (isDigit(*p)) ++p;
    return *p == '\0' ? 1 : 0;
}

int isDecimal(const char* text) {
    if (!text) return 0;
    const char* p = text;
    if (*p == '-' || *p == '+') ++p;
    int digits = 0;
    int points = 0;
    for (; *p; ++p) {
        if (isDigit(*p))
            ++digits;
        else if (*p == '.' && ++points == 1)
            continue;
        else
            return 0;
    }
    return digits > 0 ? 1 : 0;
}

int isPositiveInteger(const char* text) {
    if (!isInteger(text)) return 0;
    if (*text == '-') return 0;
    for (const char* p = text; *p; ++p)
        if (*p >= '1' && *p <= '9') return 1;
    return 0;
}

// ---------------------------------------------------------------- rounding

namespace {

// The amount in millionths, rounded, so that a value stored a hair below a
// half (2.675 is 2.67499999...) counts as the half it was typed as: what the
// calculators' roundings do at halves is theirs to settle, and this settles
// it. The rules' Round is the plain nearest whole number and skips it. Beyond
// a billion the step would lose more than it mends and is skipped.
double toMicros(double value) {
    const double micros = value * 1e6;
    return std::fabs(value) < 1e9 ? std::round(micros) : micros;
}

// Never a visible "-0.00"; nothing that is not finite leaves the rounding.
double tidy(double value) {
    if (!std::isfinite(value) || value == 0.0) return 0.0;
    return value;
}

}  // namespace

double roundnearest(double value) {
    if (!std::isfinite(value)) return 0.0;
    return tidy(std::round(toMicros(value) / 1e6));
}

double roundpenny(double value) {
    if (!std::isfinite(value)) return 0.0;
    return tidy(std::round(toMicros(value) / 1e4) / 100.0);
}

double roundpennydown(double value) {
    if (!std::isfinite(value)) return 0.0;
    return tidy(std::floor(toMicros(value) / 1e4) / 100.0);
}

double roundpennyup(double value) {
    if (!std::isfinite(value)) return 0.0;
    return tidy(std::ceil(toMicros(value) / 1e4) / 100.0);
}

// ---------------------------------------------------------------- encoding

CString ToBase64(const unsigned char* bytes, int length) {
    static constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    if (!bytes || length <= 0) return CString();
    const auto n = static_cast<std::size_t>(length);
    out.reserve((n + 2) / 3 * 4);
    std::size_t i = 0;
    for (; i + 3 <= n; i += 3) {
        const unsigned v = (unsigned{bytes[i]} << 16) | (unsigned{bytes[i + 1]} << 8) | bytes[i + 2];
        out += kAlphabet[(v >> 18) & 63];
        out += kAlphabet[(v >> 12) & 63];
        out += kAlphabet[(v >> 6) & 63];
        out += kAlphabet[v & 63];
    }
    if (i < n) {
        const bool two = i + 1 < n;
        const unsigned v = (unsigned{bytes[i]} << 16) | (two ? unsigned{bytes[i + 1]} << 8 : 0u);
        out += kAlphabet[(v >> 18) & 63];
        out += kAlphabet[(v >> 12) & 63];
        out += two ? kAlphabet[(v >> 6) & 63] : '=';
        out += '=';
    }
    return CString(std::move(out));
}

void FileToBase64(const char* path, CXMLVar* node) {
    if (!node) return;
    node->value.Empty();
    if (!path) return;
    std::ifstream in(NativePath(path).c_str(), std::ios::binary);
    if (!in) return;
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (bytes.size() > static_cast<std::size_t>(INT32_MAX)) return;
    node->value =
        ToBase64(reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<int>(bytes.size()));
}

// ---------------------------------------------------------------- trees and box maps

void SubformFromXML(CXMLVar* node, CMapStringToString& boxes, CStringArray& names) {
    if (node) {
        const CString prefix = node->GetAttr("prefix");
        if (const CXMLVar* list = node->FindChild("Boxes")) {
            int index = 0;
            for (const CXMLVar* box : list->children) {
                const CString key = prefix + box->name;
                boxes[key] = box->value;
                names.SetAtGrow(index++, key);
            }
        }
    }
    (void)boxes["form"];  // the entry must exist, empty when the tree gave none
}

int xmlcompareR(const void* a, const void* b) {
    const auto* x = static_cast<const CXMLVar*>(a);
    const auto* y = static_cast<const CXMLVar*>(b);
    const int c = std::strcmp(y ? y->name.c_str() : "", x ? x->name.c_str() : "");
    return c < 0 ? -1 : (c > 0 ? 1 : 0);
}
