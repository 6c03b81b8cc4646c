// Dates and durations as the rules see them: dates are XML date texts
// ("2015-04-01"), durations ISO 8601 texts ("-P12M"), and nothing else.
// A year of a duration is always 365 days.
#pragma once

#include <cstdint>

#include "platform/cstring.h"

// The given text when it is not empty, otherwise today as an XML date.
CString Today(const char* date);
// The calendar year of an XML date.
int YearOf(CString xmlDate);
// Seconds of a date (noon of that day), or of a duration: years of 365 days
// plus days; months don't count. 64 bits, since dates after January 2038
// and the difference of a date and a text that is no date overflow 32.
std::int64_t DateSeconds(const char* text);
// Years, months and days of a duration, each carrying the duration's sign.
void DurationParts(const char* text, int& years, int& months, int& days);
// Whole days as "P<years>Y<days>D"; the years are left out when there are none.
CString SecondsToDuration(std::int64_t seconds);
// The date moved by the duration, month wrapped once, day left as it falls:
// 2023-05-31 less three months is "2023-02-31".
CString AddDuration(const char* date, const char* duration);
// The duration from a to b, with a minus sign when b sorts before a.
CString DateDifference(const char* a, const char* b);
