// The free functions every subsystem takes for granted: reading a box's number,
// splitting a text date, widening a year, and the log.
#pragma once

#include "platform/cstring.h"

// The number at the front of a box's text. Accepts leading blanks, a pound
// sign, thousands commas and a trailing override mark ("1,000.00!"); "zero",
// empty text and anything that is not a finite number read as 0.
double myatof(const char* text);

// Splits "dd/mm/yyyy" (one to four digits a field, slashes only, blanks
// around the text allowed) into year, month and day. Non-zero on success.
// Ranges are not checked; the year is returned as written (see yyyy).
int ParseDate(const char* text, int& year, int& month, int& day);
// The same for an XML date "yyyy-mm-dd" (four-digit year first).
int ParseXmlDate(const char* text, int& year, int& month, int& day);

// Widens a year as typed to four digits: 0-79 are 2000-2079, 80-99 are
// 1980-1999; any other year comes back unchanged.
int yyyy(int year);

// One formatted line in the log. Never fails visibly.
void DoLogF(const char* format, ...) CT600_PRINTF(1, 2);

// Where log lines go. By default a file "ct600.log" in the temporary folder,
// or the file named by the environment variable CT600_LOG_FILE. A host may
// install its own sink; a null sink restores the default.
using LogSink = void (*)(const char* line, void* context);
void SetLogSink(LogSink sink, void* context) noexcept;
