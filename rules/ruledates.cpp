#include "rules/ruledates.h"

#include <cinttypes>
#include <cstring>

#include "common/basics.h"
#include "common/library.h"

CString Today(const char* date) {
    if (date && *date) return CString(date);
    return xmldate(sNow());
}

int YearOf(CString xmlDate) {
    int year = 0, month = 0, day = 0;
    ParseDate(fromxmldate(xmlDate), year, month, day);
    return year;
}

void DurationParts(const char* text, int& years, int& months, int& days) {
    years = months = days = 0;
    int seconds = 0, hours = 0, minutes = 0, weeks = 0;
    CString message;
    ansi_duration(text ? text : "", seconds, days, hours, minutes, weeks, months, years, message);
}

std::int64_t DateSeconds(const char* text) {
    if (!text) text = "";
    // A negative duration is what DateDifference gives when its second date
    // comes first; it counts backwards, so a span from a date to the day
    // before it is 0 days rather than an arbitrary number.
    if (StartsWith(text, "P") || StartsWith(text, "-P")) {
        int years = 0, months = 0, days = 0;
        DurationParts(text, years, months, days);
        return (static_cast<std::int64_t>(years) * 365 + days) * 86400;
    }
    return AtoT(fromxmldate(CString(text))).GetTime();
}

CString SecondsToDuration(std::int64_t seconds) {
    const std::int64_t days = seconds / 86400;
    const std::int64_t years = days / 365;
    const std::int64_t rest = days - years * 365;
    CString text("P");
    if (years > 0) text.AppendFormat("%" PRId64 "Y", years);
    text.AppendFormat("%" PRId64 "D", rest);
    return text;
}

CString AddDuration(const char* date, const char* duration) {
    int y = 0, m = 0, d = 0;
    ParseDate(fromxmldate(CString(date ? date : "")), y, m, d);
    int years = 0, months = 0, days = 0;
    DurationParts(duration, years, months, days);
    // Wide arithmetic: a duration's parts can be as large as an int holds.
    std::int64_t year = static_cast<std::int64_t>(y) + years;
    std::int64_t month = static_cast<std::int64_t>(m) + months;
    const std::int64_t day = static_cast<std::int64_t>(d) + days;
    if (month < 1) {
        month += 12;
        year -= 1;
    } else if (month > 12) {
        month -= 12;
        year += 1;
    }
    return FormatString("%04" PRId64 "-%02" PRId64 "-%02" PRId64, year, month, day);
}

CString DateDifference(const char* a, const char* b) {
    const char* first = a ? a : "";
    const char* second = b ? b : "";
    bool negative = false;
    if (std::strcmp(second, first) < 0) {
        const char* swap = first;
        first = second;
        second = swap;
        negative = true;
    }
    const std::int64_t lesser = AtoT(fromxmldate(CString(first))).GetTime();
    const std::int64_t greater = AtoT(fromxmldate(CString(second))).GetTime();
    CString text = SecondsToDuration(greater - lesser);
    return negative ? "-" + text : text;
}
