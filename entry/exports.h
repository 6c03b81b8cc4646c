// The exports a host finds by name. Form entries take the box map (changed in
// place), the run's prefix and the result map, and always return 1.
#pragma once

#include "common/xmlvar.h"
#include "platform/collections.h"
#include "platform/cstring.h"
#include "platform/ctime.h"
#include "platform/export.h"

using FormEntry = int (*)(CMapStringToString* boxes, CString* prefix, CMapStringToString* result);

#define CT600_DECLARE_ENTRY(name) \
    extern "C" CT600_EXPORT int name(CMapStringToString* boxes, CString* prefix, CMapStringToString* result);

#include "entry/form_matrix.inc"
#define CT600_FORM(name, kind, target, log, calculator) CT600_DECLARE_ENTRY(name)
CT600_FORM_MATRIX(CT600_FORM)
#undef CT600_FORM

extern "C" CT600_EXPORT void do_calc(CXMLVar* tree);
extern "C" CT600_EXPORT int do_calc2(CMapStringToString* boxes, CString* prefix, CMapStringToString* result);
extern "C" CT600_EXPORT int do_validate(CMapStringToString* boxes, CXMLVar* errors);
extern "C" CT600_EXPORT void LiabilityCalc(CMapStringToString* boxes);
#if defined(__clang__)
// The host contract fixes this signature: a C export that returns a CTime.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wreturn-type-c-linkage"
#endif
extern "C" CT600_EXPORT CTime AtoT(const char* date);
#if defined(__clang__)
#pragma clang diagnostic pop
#endif

// Host settings that are not form entries: where messages, errors and log
// lines go. A null sink restores the default.
extern "C" CT600_EXPORT void ct600lib_set_message_sink(void (*sink)(const char* text, void* context),
                                                       void* context);
extern "C" CT600_EXPORT void ct600lib_set_log_sink(void (*sink)(const char* line, void* context), void* context);

// The form matrix as data, for hosts and tools that list or pick entries.
struct FormEntryInfo {
    const char* name;
    FormEntry entry;
    const char* calculator;  // "CCT600_16Calc", "CCT600_05Calc" or "CCT600_02Calc"
};
const FormEntryInfo* FormEntries(int* count);
FormEntry FindFormEntry(const char* name);
