// CBaseCalc: the box store every calculator is written against. A form is a
// map from box keys to text; reads and writes go through a run's prefix, a
// computed number never replaces a user's override (text ending in "!"), and
// every computed number is kept in a side store.
#pragma once

#include <initializer_list>
#include <unordered_map>

#include "common/basics.h"
#include "common/errors.h"
#include "platform/collections.h"
#include "platform/cstring.h"

class CBaseCalc {
public:
    CBaseCalc();
    // Shows the errors (when m_ShowErrors is set) and frees them.
    virtual ~CBaseCalc();
    CBaseCalc(const CBaseCalc&) = delete;
    CBaseCalc& operator=(const CBaseCalc&) = delete;

    virtual double Result() { return 0.0; }
    virtual void Calc() = 0;

    CString GetBoxText(const char* key) const;
    double GetBox(const char* key) const;
    double SumBoxes(const char* format, int first, int last) const;
    // GetBox summed over the keys, left to right.
    double Sum(std::initializer_list<const char*> keys) const;
    static CString BoxKey(const char* format, int number);
    void SetBox(const char* key, double value);
    double GetValue(const char* key) const;
    double BoxLength(const char* key) const { return GetBoxText(key).GetLength(); }
    double BoxDateOk(const char* key) const;
    double AddError(int code, const char* key, double ok, const char* message);
    void ShowErrors(const CStringList* list);

    // Writes "zero" when the box reads as 0 (regardless of an override mark).
    void MarkZero(const char* key);
    // Copies every pair of a liability result map into the box map and into
    // m_Changed, replacing even an override.
    void TakeOverResults(const CMapStringToString& results);
    // A direct write under m_Prefix that also lands in m_Changed.
    void WriteChanged(const char* key, const CString& text);

    // The stored text of the box under the run's prefix, or null.
    const CString* FindBox(const char* key) const;

    CMapStringToString* m_pBoxes = nullptr;
    std::unordered_map<CString, double> m_Values;
    CMapStringToString m_Changed;
    CString m_WritePrefix;
    CString m_Prefix;
    int m_NoWrite = 1;
    int m_Decimals = 0;
    int m_Reserved = 0;
    int m_ShowErrors = 1;
    CObList m_Errors;
};

// Points the calculator at the box map and prefix, runs Calc, and copies the
// texts the run wrote outside SetBox (m_Changed) into the result map.
void Helper(CBaseCalc* calc, CMapStringToString* boxes, CString* prefix, CMapStringToString* out);

CString xmlerrors(const CBaseCalc* calc);
