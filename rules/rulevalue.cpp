#include "rules/rulevalue.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

#include "common/basics.h"
#include "common/library.h"

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

bool IsDateText(const char* text) {
    if (!text) return false;
    // Stop at the terminator: a text shorter than five characters is no date.
    for (int i = 0; i < 4; ++i)
        if (!text[i]) return false;
    return text[4] == '-';
}

bool IsNumericText(const char* text) {
    if (!text) return false;
    const char* p = text;
    if (p[0] == '-' && isDigit(p[1])) ++p;
    if (!isDigit(*p)) return false;
    return !IsDateText(p);
}

void CRuleValue::SetText(const char* text) {
    m_Text = text;
    m_Number = 0.0;
    m_IsNumber = 0;
}

void CRuleValue::SetNumber(double x) {
    m_Number = x;
    m_IsNumber = 1;
}

void CRuleValue::SetNode(CXMLVar* node) {
    if (!node) {
        m_Text.Empty();
        m_Number = 0.0;
        m_IsNumber = 1;
    } else if (!node->children.empty()) {
        m_Text.Empty();
        m_Number = 1.0;
        m_IsNumber = 1;
    } else if (IsNumericText(node->value)) {
        m_Text = node->value;
        m_Number = std::atof(node->value);
        m_IsNumber = 1;
    } else {
        SetText(node->value);
    }
}

bool CRuleValue::IsTrue() const { return m_Number != 0.0 || m_Text.GetLength() > 0; }

double CRuleValue::Number() const {
    if (m_IsNumber) return m_Number;
    if (IsNumericText(m_Text)) return std::atof(m_Text);
    return static_cast<double>(m_Text.GetLength());
}

CString CRuleValue::Text() const {
    if (m_Text.IsEmpty() && m_IsNumber) return fmt0(m_Number);
    return m_Text;
}

bool CRuleValue::operator==(const CRuleValue& right) const {
    if (!right.m_IsNumber) return std::strcmp(m_Text.c_str(), right.m_Text.c_str()) == 0;
    return Number() == right.Number();
}

bool CRuleValue::operator<(const CRuleValue& right) const { return Number() < right.Number(); }
bool CRuleValue::operator<=(const CRuleValue& right) const { return Number() <= right.Number(); }
bool CRuleValue::operator>=(const CRuleValue& right) const { return Number() >= right.Number(); }
double CRuleValue::operator*(const CRuleValue& right) const { return Number() * right.Number(); }

bool CRuleValue::operator||(const CRuleValue& right) const { return IsTrue() || right.IsTrue(); }

bool CRuleValue::operator||(bool right) const {
    const bool result = IsTrue() || right;
    DoLogF("operator|| (bool) on %d,%s returns %d", right ? 1 : 0, m_Text.c_str(), result ? 1 : 0);
    return result;
}

bool operator||(bool left, const CRuleValue& right) { return right.IsTrue() || left; }

bool Not(bool value) { return !value; }
bool Not(const CRuleValue& value) { return !value.IsTrue(); }
double Abs(double value) { return value < 0 ? -value : value; }
double Floor(double value) { return std::floor(value); }
// The nearest whole number, halves up, straight from the double: the rules
// hold a penny tolerance against it, so no millionth step may come first.
// Nothing that is not finite has a nearest whole number; it counts as 0.
double Round(double value) {
    if (!std::isfinite(value)) return 0.0;
    const double r = std::round(value);
    return r == 0.0 ? 0.0 : r;
}
CString String(const CRuleValue& value) { return value.Text(); }

CString NormalizeSpace(const CString& text) {
    CString result;
    bool lastKeptWasText = false;
    for (char c : text.view()) {
        if (!iswhite(c)) {
            result += c;
            lastKeptWasText = true;
        } else if (lastKeptWasText) {
            result += c;
            lastKeptWasText = false;
        }
    }
    int end = result.GetLength();
    while (end > 0 && iswhite(result[end - 1])) --end;
    return result.Left(end);
}

CRuleValue Translate(const CString& text, const char* from, const char* to) {
    CString copy(text);
    // An empty pattern matches nothing rather than everywhere.
    if (from && *from) copy.Replace(from, to ? to : "");
    CRuleValue value;
    value.SetText(copy);
    return value;
}

CString Concat(const char* a, const char* b) { return CString(a) + (b ? b : ""); }

CString Concat(int n, const char* b) { return fmt("%d", n) + (b ? b : ""); }
