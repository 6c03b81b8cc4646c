#include "entry/calcbase.h"

#include <cstdio>

namespace {
// The one error dialog of the module, made on first use.
CErrorsDlg& errorsDialog() {
    static CErrorsDlg dialog(nullptr);
    return dialog;
}
}  // namespace

CBaseCalc::CBaseCalc() { m_Values.reserve(17); }

CBaseCalc::~CBaseCalc() {
    if (m_ShowErrors) ShowErrors(nullptr);
    for (CObject* error : m_Errors) delete error;
    m_Errors.RemoveAll();
}

CString CBaseCalc::GetBoxText(const char* key) const {
    if (!m_pBoxes) return CString();
    const CString* text = m_pBoxes->PLookup(m_Prefix + key);
    return text ? *text : CString();
}

double CBaseCalc::SumBoxes(const char* format, int first, int last) const {
    double sum = 0.0;
    for (int n = first; n <= last; ++n) sum += GetBox(BoxKey(format, n));
    return sum;
}

double CBaseCalc::Sum(std::initializer_list<const char*> keys) const {
    double sum = 0.0;
    for (const char* key : keys) sum += GetBox(key);
    return sum;
}

CString CBaseCalc::BoxKey(const char* format, int number) {
    CString key;
    key.Format(format, number);
    return key;
}

void CBaseCalc::SetBox(const char* key, double value) {
    const CString full = m_WritePrefix + key;
    m_Values[full] = value;
    if (m_NoWrite || !m_pBoxes) return;
    CString& box = (*m_pBoxes)[full];
    if (!box.IsEmpty() && box[box.GetLength() - 1] == '!') return;
    box.Format("%f", value);
}

double CBaseCalc::GetValue(const char* key) const {
    auto it = m_Values.find(m_WritePrefix + key);
    return it == m_Values.end() ? 0.0 : it->second;
}

double CBaseCalc::BoxDateOk(const char* key) const {
    const CString text = GetBoxText(key);
    if (text.IsEmpty()) return 1.0;
    int year = 0, month = 0, day = 0;
    if (!ParseDate(text, year, month, day)) return 0.0;
    return (month >= 1 && month <= 12 && day >= 1 && day <= 31) ? 1.0 : 0.0;
}

double CBaseCalc::AddError(int code, const char* key, double ok, const char* message) {
    if (ok != 0) return ok;
    const CString text = message ? CString(message) : CError::Lookup(code);
    m_Errors.AddTail(new CError(key, code, text));
    return ok;
}

void CBaseCalc::ShowErrors(const CStringList* list) {
    if (!m_ShowErrors) return;
    CErrorsDlg& dialog = errorsDialog();
    dialog.SetErrorList(&m_Errors);
    dialog.Show(list);
    dialog.SetErrorList(nullptr);
}

void CBaseCalc::WriteChanged(const char* key, const CString& text) {
    const CString full = m_Prefix + key;
    if (m_pBoxes) (*m_pBoxes)[full] = text;
    m_Changed[full] = text;
}

void CBaseCalc::MarkZero(const char* key) {
    if (GetBox(key) != 0) return;
    WriteChanged(key, "zero");
}

void CBaseCalc::TakeOverResults(const CMapStringToString& results) {
    for (const auto& [key, text] : results.items()) WriteChanged(key, text);
}

void Helper(CBaseCalc* calc, CMapStringToString* boxes, CString* prefix, CMapStringToString* out) {
    if (!calc || !boxes) return;
    calc->m_pBoxes = boxes;
    calc->m_Prefix = prefix ? *prefix : CString();
    calc->m_WritePrefix = calc->m_Prefix;
    calc->m_NoWrite = 0;
    calc->Calc();
    if (out)
        for (const auto& [key, text] : calc->m_Changed.items()) (*out)[key] = text;
}

CString xmlerrors(const CBaseCalc* calc) { return calc ? xmlerrors(calc->m_Errors) : xmlerrors(CObList()); }
