// The frames of the form entries and the forwarders, generated from the form
// matrix so that every name, target and log line stands in one table.
#include "entry/exports.h"

#include <cstring>
#include <iterator>

#include "calculators/calculators.h"
#include "common/library.h"
#include "entry/module.h"
#include "platform/message_box.h"

namespace {
CString* emptyPrefixIfNull(CString* prefix, CString& local) { return prefix ? prefix : &local; }

// Runs one calculator over the box map and stores its errors under "validation".
template <typename Calculator>
int runFrame(const char* logLine, CMapStringToString* boxes, CString* prefix, CMapStringToString* result,
             bool secondRunUnderS) {
    CT600_MANAGE_STATE();
    if (logLine) DoLogF("%s", logLine);
    CMapStringToString localBoxes, localResult;
    CString localPrefix;
    if (!boxes) boxes = &localBoxes;
    if (!result) result = &localResult;
    Calculator calc;
    Helper(&calc, boxes, emptyPrefixIfNull(prefix, localPrefix), result);
    if (secondRunUnderS) {
        CString s("S");
        Helper(&calc, boxes, &s, result);
    }
    (*result)["validation"] = xmlerrors(&calc);
    return 1;
}
}  // namespace

#define CT600_FRAME(name, calc, log) \
    int name(CMapStringToString* b, CString* p, CMapStringToString* r) { return runFrame<calc>(log, b, p, r, false); }
#define CT600_FRAME_TWICE(name, calc, log) \
    int name(CMapStringToString* b, CString* p, CMapStringToString* r) { return runFrame<calc>(log, b, p, r, true); }
#define CT600_FORWARD(name, target, log)                                  \
    int name(CMapStringToString* b, CString* p, CMapStringToString* r) { \
        const char* line = log;                                           \
        if (line) DoLogF("%s", line);                                     \
        return target(b, p, r);                                           \
    }
#define CT600_FORM(name, kind, target, log, calculator) CT600_##kind(name, target, log)
extern "C" {
CT600_FORM_MATRIX(CT600_FORM)
}
#undef CT600_FORM

namespace {
#define CT600_FORM(name, kind, target, log, calculator) {#name, &name, #calculator},
const FormEntryInfo kEntries[] = {CT600_FORM_MATRIX(CT600_FORM)};
#undef CT600_FORM
}  // namespace

const FormEntryInfo* FormEntries(int* count) {
    if (count) *count = static_cast<int>(std::size(kEntries));
    return kEntries;
}

FormEntry FindFormEntry(const char* name) {
    if (!name) return nullptr;
    for (const FormEntryInfo& info : kEntries)
        if (std::strcmp(info.name, name) == 0) return info.entry;
    return nullptr;
}

void LiabilityCalc(CMapStringToString* boxes) {
    // A second-generation run whose use is what it leaves behind: the changed
    // box map and the worked report. The result map, validation and all, is
    // thrown away. The frame of ct600_05 brackets the module's state.
    if (!boxes) return;
    CMapStringToString result;
    CString prefix;
    ct600_05(boxes, &prefix, &result);
}

void ct600lib_set_message_sink(void (*sink)(const char*, void*), void* context) { SetMessageSink(sink, context); }

void ct600lib_set_log_sink(void (*sink)(const char*, void*), void* context) { SetLogSink(sink, context); }
