#include "boxstore/calcbase.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <vector>

namespace {
// The one error dialog of the module, made on first use.
CErrorsDlg& errorsDialog() {
    static CErrorsDlg dialog(nullptr);
    return dialog;
}
}  // namespace

// A full return computes a few hundred boxes: room for them up front spares rehashing.
CBaseCalc::CBaseCalc() { m_Values.reserve(512); }

CBaseCalc::~CBaseCalc() {
    if (m_ShowErrors) ShowErrors(nullptr);
    for (CObject* error : m_Errors) delete error;
    m_Errors.RemoveAll();
}

namespace {
// The one "%d" of a row format splits it into the text before and after the number.
struct RowFormat {
    std::string_view head, tail;
    bool numbered = false;
};
RowFormat splitRowFormat(const char* format) {
    const std::string_view text(format ? format : "");
    const std::size_t at = text.find("%d");
    if (at == std::string_view::npos || text.find('%', at + 2) != std::string_view::npos ||
        text.substr(0, at).find('%') != std::string_view::npos)
        return {text, {}, false};
    return {text.substr(0, at), text.substr(at + 2), true};
}

// The number a key carries in place of "%d", if it is exactly what "%d" prints.
bool rowNumber(std::string_view digits, int& number) {
    if (digits.empty()) return false;
    const bool negative = digits.front() == '-';
    const std::string_view body = negative ? digits.substr(1) : digits;
    if (body.empty() || (body.front() == '0' && body.size() > 1) || (negative && body == "0")) return false;
    const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return ec == std::errc() && end == digits.data() + digits.size();
}
}  // namespace

const CString* CBaseCalc::FindBox(const char* key) const {
    if (!m_pBoxes) return nullptr;
    if (m_Prefix.IsEmpty()) return m_pBoxes->PLookup(key);
    return m_pBoxes->PLookup(m_Prefix + key);
}

CString CBaseCalc::GetBoxText(const char* key) const {
    const CString* text = FindBox(key);
    return text ? *text : CString();
}

double CBaseCalc::GetBox(const char* key) const {
    const CString* text = FindBox(key);
    return text ? myatof(*text) : 0.0;
}

// Rows are sparse: rather than look up every possible row, walk the keys that
// share the row's stem (the map is ordered) and add them in row order, so the
// sum is the same, bit for bit, as adding row 1, 2, 3... with missing rows as 0.
double CBaseCalc::SumBoxes(const char* format, int first, int last) const {
    const RowFormat row = splitRowFormat(format);
    if (!row.numbered || !m_pBoxes) {
        double sum = 0.0;
        for (int n = first; n <= last; ++n) sum += GetBox(BoxKey(format, n));
        return sum;
    }
    std::string stem(m_Prefix.view());
    stem += row.head;
    std::vector<std::pair<int, double>> present;
    const auto& items = m_pBoxes->items();
    for (auto it = items.lower_bound(std::string_view(stem)); it != items.end(); ++it) {
        const std::string_view key = it->first.view();
        if (key.substr(0, stem.size()) != stem) break;
        std::string_view rest = key.substr(stem.size());
        if (rest.size() < row.tail.size() || rest.substr(rest.size() - row.tail.size()) != row.tail) continue;
        rest.remove_suffix(row.tail.size());
        int number = 0;
        if (rowNumber(rest, number) && number >= first && number <= last)
            present.emplace_back(number, myatof(it->second));
    }
    std::sort(present.begin(), present.end());
    double sum = 0.0;
    for (const auto& entry : present) sum += entry.second;
    return sum;
}

double CBaseCalc::Sum(std::initializer_list<const char*> keys) const {
    double sum = 0.0;
    for (const char* key : keys) sum += GetBox(key);
    return sum;
}

CString CBaseCalc::BoxKey(const char* format, int number) {
    const RowFormat row = splitRowFormat(format);
    if (!row.numbered) return FormatString(format, number);
    char digits[16];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    std::string key;
    key.reserve(row.head.size() + static_cast<std::size_t>(end - digits) + row.tail.size());
    key.append(row.head).append(digits, end).append(row.tail);
    return CString(std::move(key));
}

void CBaseCalc::SetBox(const char* key, double value) {
    const CString full = m_WritePrefix + key;
    m_Values[full] = value;
    if (m_NoWrite || !m_pBoxes) return;
    CString& box = (*m_pBoxes)[full];
    if (!box.IsEmpty() && box[box.GetLength() - 1] == '!') return;
    box = FormatFixed(value, 6);
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
