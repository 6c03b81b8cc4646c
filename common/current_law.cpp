#include "common/current_law.h"

#include <cstdlib>

#include "common/basics.h"

namespace {

// More associated companies than this is a typing slip; the bound keeps
// 1 + the count clear of overflow.
constexpr double kMostAssociates = 1000000;

bool namesCurrentLaw(CString text) {
    text.Trim();
    text.MakeLower();
    return text == kCurrentLawWord;
}

const CString* boxText(const CMapStringToString& boxes, const CString& prefix, const char* key) {
    return prefix.IsEmpty() ? boxes.PLookup(key) : boxes.PLookup(prefix + key);
}

}  // namespace

RateLadder ChosenLadder(const CMapStringToString& boxes) {
    // The return's own word wins; an empty box says nothing either way.
    CString chosen;
    if (const CString* own = boxes.PLookup("rates")) chosen = *own;
    if (CString(chosen).Trim().IsEmpty()) {
        const char* process = std::getenv("CT600_RATES");
        chosen = process ? process : "";
    }
    return namesCurrentLaw(chosen) ? RateLadder::CurrentLaw : RateLadder::Default;
}

bool BoxFilled(const CMapStringToString& boxes, const CString& prefix, const char* key) {
    const CString* text = boxText(boxes, prefix, key);
    return text && !CString(*text).Trim().IsEmpty();
}

int AssociatedCompaniesInYear(const CMapStringToString& boxes, const CString& prefix, bool secondYear) {
    const char* yearBox = secondYear ? "Q328" : "Q327";
    const CString* text = boxText(boxes, prefix, BoxFilled(boxes, prefix, yearBox) ? yearBox : "Q326");
    const double count = text ? myatof(*text) : 0.0;
    if (!(count > 0)) return 0;
    return static_cast<int>(count < kMostAssociates ? count : kMostAssociates);
}
