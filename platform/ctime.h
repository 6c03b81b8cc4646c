// CTime: a calendar date and time held as seconds on a fixed civil time line.
// Day arithmetic never consults the machine's time zone or daylight saving, so
// a span between two noons is always a whole number of days.
#pragma once

#include <cstdint>

#include "platform/cstring.h"

class CTimeSpan {
public:
    constexpr CTimeSpan() = default;
    constexpr explicit CTimeSpan(std::int64_t seconds) : seconds_(seconds) {}
    constexpr std::int64_t GetTotalSeconds() const noexcept { return seconds_; }
    constexpr std::int64_t GetDays() const noexcept { return seconds_ / 86400; }
    friend constexpr bool operator==(CTimeSpan a, CTimeSpan b) noexcept = default;

private:
    std::int64_t seconds_ = 0;
};

class CTime {
public:
    constexpr CTime() = default;
    // Fields out of range roll over as a calendar would: day 0 is the last day
    // of the month before, month 13 is January of the next year. The daylight
    // flag is accepted for form; the time line has no daylight saving.
    CTime(int year, int month, int day, int hour, int minute, int second, int dst = -1);

    std::int64_t GetTime() const noexcept { return seconds_; }
    int GetYear() const noexcept;
    int GetMonth() const noexcept;
    int GetDay() const noexcept;
    int GetHour() const noexcept;

    // strftime-style: %d %m %Y %y %H %M %S %j %%; other characters are copied.
    CString Format(const char* pattern) const;

    friend CTimeSpan operator-(const CTime& a, const CTime& b) noexcept {
        return CTimeSpan(a.seconds_ - b.seconds_);
    }
    friend bool operator==(const CTime& a, const CTime& b) noexcept = default;
    friend auto operator<=>(const CTime& a, const CTime& b) noexcept = default;

private:
    std::int64_t seconds_ = 0;
};

// Days since 1970-01-01 of a proleptic Gregorian date, and back.
std::int64_t DaysFromCivil(std::int64_t year, unsigned month, unsigned day) noexcept;
void CivilFromDays(std::int64_t days, int& year, int& month, int& day) noexcept;
