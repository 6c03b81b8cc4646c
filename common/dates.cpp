// Text dates ("dd/mm/yyyy" and the XML "yyyy-mm-dd"), today, ISO 8601
// durations and the noon-of-a-day time value.
#include <climits>
#include <cstdlib>
#include <ctime>
#include <string_view>
#include <tuple>

#include "common/library.h"

namespace {

struct Ymd {
    int year = 0, month = 0, day = 0;
};

bool readDate(const char* text, Ymd& d) {
    if (!ParseDate(text, d.year, d.month, d.day)) return false;
    d.year = yyyy(d.year);
    return true;
}

int compareDates(const char* a, const char* b, int& order) {
    Ymd x, y;
    if (!readDate(a, x) || !readDate(b, y)) return 0;
    const auto l = std::tie(x.year, x.month, x.day);
    const auto r = std::tie(y.year, y.month, y.day);
    order = l < r ? -1 : (r < l ? 1 : 0);
    return 1;
}

CString dayFirst(const Ymd& d) { return FormatString("%02d/%02d/%04d", d.day, d.month, d.year); }

}  // namespace

int before(const char* a, const char* b) {
    int order = 0;
    return compareDates(a, b, order) && order < 0 ? 1 : 0;
}

int after(const char* a, const char* b) {
    int order = 0;
    return compareDates(a, b, order) && order > 0 ? 1 : 0;
}

CString xmldate(const char* textDate) {
    Ymd d;
    if (!readDate(textDate, d)) return CString();
    return FormatString("%04d-%02d-%02d", d.year, d.month, d.day);
}

// Only a true "yyyy-mm-dd" is turned round; anything else (a date already in
// text form, a note) passes through as it came.
CString fromxmldate(const CString& xmlDate) {
    CString trimmed(xmlDate);
    trimmed.Trim();
    const std::string_view t = trimmed.view();
    if (t.size() < 5 || t[4] != '-') return xmlDate;
    for (std::size_t i = 0; i < 4; ++i)
        if (t[i] < '0' || t[i] > '9') return xmlDate;
    Ymd d;
    if (!ParseXmlDate(trimmed, d.year, d.month, d.day)) return xmlDate;
    return dayFirst(d);
}

CString sNow() {
    Ymd d;
    const char* fixed = std::getenv("CT600_TODAY");
    if (fixed && (readDate(fixed, d) || ParseXmlDate(fixed, d.year, d.month, d.day))) return dayFirst(d);
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    if (!localtime_r(&now, &local)) return CString("01/01/1970");
    d.year = local.tm_year + 1900;
    d.month = local.tm_mon + 1;
    d.day = local.tm_mday;
    return dayFirst(d);
}

namespace {

// Reads the digits of one component, clamped so that no int overflows.
bool readNumber(const char*& p, int& value) {
    if (*p < '0' || *p > '9') return false;
    long long v = 0;
    while (*p >= '0' && *p <= '9') {
        if (v < INT_MAX) v = v * 10 + (*p - '0');
        ++p;
    }
    value = v > INT_MAX ? INT_MAX : static_cast<int>(v);
    return true;
}

// Components of one part, each at most once and in the order given.
// Returns the number read, or -1 on a fault.
int readPart(const char*& p, const char* designators, int* const* outputs) {
    int found = 0;
    int next = 0;  // first designator still allowed
    while (*p >= '0' && *p <= '9') {
        int value = 0;
        readNumber(p, value);
        int k = next;
        while (designators[k] && designators[k] != *p) ++k;
        if (!designators[k]) return -1;
        *outputs[k] = value;
        next = k + 1;
        ++p;
        ++found;
    }
    return found;
}

}  // namespace

void ansi_duration(const char* text, int& seconds, int& days, int& hours, int& minutes, int& weeks,
                   int& months, int& years, CString& message) {
    seconds = days = hours = minutes = weeks = months = years = 0;
    message.Empty();
    const CString original(text);
    CString trimmed(original);
    trimmed.Trim();
    const char* p = trimmed.c_str();

    bool ok = true;
    bool negative = false;
    if (*p == '-') {
        negative = true;
        ++p;
    }
    if (*p != 'P') ok = false;
    int components = 0;
    if (ok) {
        ++p;
        int* const dateOutputs[] = {&years, &months, &weeks, &days};
        const int n = readPart(p, "YMWD", dateOutputs);
        if (n < 0) ok = false;
        components += n > 0 ? n : 0;
    }
    if (ok && *p == 'T') {
        ++p;
        int* const timeOutputs[] = {&hours, &minutes, &seconds};
        const int n = readPart(p, "HMS", timeOutputs);
        if (n <= 0) ok = false;  // a "T" must be followed by a time
        components += n > 0 ? n : 0;
    }
    if (ok && (*p != '\0' || components == 0)) ok = false;

    if (!ok) {
        seconds = days = hours = minutes = weeks = months = years = 0;
        message.Format("invalid duration \"%s\"", original.c_str());
        return;
    }
    if (negative) {
        for (int* v : {&seconds, &days, &hours, &minutes, &weeks, &months, &years}) *v = -*v;
    }
}

// A text that is no date gives noon of 1 January 1900, far from any
// accounting period, so that it cannot pass for a real one.
CTime AtoT(const char* date) {
    Ymd d;
    if (!readDate(date, d)) return CTime(1900, 1, 1, 12, 0, 0, -1);
    return CTime(d.year, d.month, d.day, 12, 0, 0, -1);
}
