// The small services of the common library: text, numbers, rounding, dates,
// folders and files, base64, and tree/box-map conversions.
#pragma once

#include "common/basics.h"
#include "common/xmlvar.h"
#include "platform/collections.h"
#include "platform/cstring.h"
#include "platform/ctime.h"
#include "platform/export.h"

// ---- text
CString ToLower(const char* text);
CString fmt(const char* format, int value);
CString fmt(int value);
CString fmt0(double value);  // "%.0f"
CString fmt2(double value);  // "%.2f"
CString quote(const char* text);         // "text" in double quotation marks
CString InsertSpaces(const char* name);  // CompanyName -> Company Name
int iswhite(char c);
int StartsWith(const char* text, const char* prefix);
int ext(const char* fileName, const char* extension);  // extension with its dot, case-insensitive
int IsYes(const char* text);                            // y, yes, true, 1, x (any case)
int contains(const CStringArray& items, const char* text);
CString array2str(const CStringArray& items);  // items joined by ", "

// ---- numbers (no blanks; optional sign; digits, with one point for decimals)
int isInteger(const char* text);
int isDecimal(const char* text);
int isPositiveInteger(const char* text);

// ---- rounding. Halves go away from zero, and amounts are first taken to
// the nearest millionth so that 2.675 (stored as 2.67499999...) is a half.
double roundnearest(double value);
double roundpenny(double value);
double roundpennydown(double value);  // towards minus infinity
double roundpennyup(double value);    // towards plus infinity

// ---- dates: "dd/mm/yyyy" texts and XML "yyyy-mm-dd" texts
int before(const char* a, const char* b);  // a earlier than b; 0 if either is no date
int after(const char* a, const char* b);   // a later than b; 0 if either is no date
CString xmldate(const char* textDate);
CString fromxmldate(const CString& xmlDate);
// Today as "dd/mm/yyyy"; the environment variable CT600_TODAY (either date
// form) fixes it for reproducible runs.
CString sNow();
// Splits an ISO 8601 duration such as "-P1Y30D". Outputs in order: seconds,
// days, hours, minutes, weeks, months, years; a leading "-" negates them all.
// message receives a description of a malformed text, or stays empty.
void ansi_duration(const char* text, int& seconds, int& days, int& hours, int& minutes, int& weeks,
                   int& months, int& years, CString& message);

// A text date at 12:00:00 of that day (also an export of the library).
#if defined(__clang__)
// The host contract fixes this signature: a C export that returns a CTime.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wreturn-type-c-linkage"
#endif
extern "C" CT600_EXPORT CTime AtoT(const char* date);
#if defined(__clang__)
#pragma clang diagnostic pop
#endif

// ---- folders and files. Each folder comes without a trailing separator and
// can be set by the host through an environment variable:
//   CT600_TEMP_DIR      temporary folder (default: system temp folder + /ct600, created on use)
//   CT600_TEMPLATE_DIR  form templates (default: share/ct600/templates of the tree the
//                       library or program was installed in, wherever that now is; then
//                       the configured install folder; or the source tree's when
//                       running from a build tree)
//   CT600_FORMATS_DIR   style sheets (default: the template folder)
//   CT600_SUITE_DIR     the suite's own folder (default: the template folder)
CString GetTempDir();
CString GetFormatsDir();
CString GetCTdir();
CString GetQuillonDir();
CString JoinPath(const char* folder, const char* name, const char* extension);
int exists(const char* path);
// Callers join folders and names with a backslash; this turns a path into
// the platform's form before a file is opened.
CString NativePath(const char* path);

// ---- encoding
CString ToBase64(const unsigned char* bytes, int length);
void FileToBase64(const char* path, CXMLVar* node);

// ---- tree and box-map conversions
// One map entry per child of the node's Boxes child (name to value); then
// the key "form" is present (empty if the tree gave none). A non-empty root
// attribute "prefix" is put in front of every key.
void SubformFromXML(CXMLVar* node, CMapStringToString& boxes, CStringArray& names);
// Orders CXMLVar nodes by name, descending (so XBRLsubmission before Attachment).
int xmlcompareR(const void* a, const void* b);
