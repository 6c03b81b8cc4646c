// CRuleValue: the one dynamic value of the business rules, a text, a number
// or both, read from a node of the return. Its semantics decide what an
// absent element, an empty element, zero and a text that is no number mean
// in every rule, so they are kept exactly as the rules were written against.
#pragma once

#include "common/xmlvar.h"
#include "platform/cstring.h"

class CRuleValue {
public:
    // The value of no node: empty text, number 0.
    CString m_Text;
    double m_Number = 0.0;
    int m_IsNumber = 1;

    // Text only; whether it reads as a number is decided later by Number().
    void SetText(const char* text);
    // The number; the text stays.
    void SetNumber(double x);
    // No node: empty, 0, a number. A container: empty, 1, a number (its own
    // value is not read). A leaf: its value, and the number when the value
    // passes IsNumericText.
    void SetNode(CXMLVar* node);

    // Completed, not non-zero: a leaf holding "0" is true.
    bool IsTrue() const;
    // The number; a text that is no number counts as its length in bytes.
    double Number() const;
    // The text; a bare number (absent node, container) is printed "%.0f".
    CString Text() const;

    // The right operand decides: a text on the right compares bytes, a
    // number on the right compares Number() on both sides exactly.
    bool operator==(const CRuleValue& right) const;
    bool operator<(const CRuleValue& right) const;
    bool operator<=(const CRuleValue& right) const;
    bool operator>=(const CRuleValue& right) const;
    double operator*(const CRuleValue& right) const;
    // The right side is only read when the left is false.
    bool operator||(const CRuleValue& right) const;
    // As above with a bool; writes one log line on every call.
    bool operator||(bool right) const;
};

// right.IsTrue() or left, without a log line.
bool operator||(bool left, const CRuleValue& right);

// A text counts as a number when it starts with a digit (or a minus sign and
// a digit) and is not a date: "12abc" is a number, ".5" and "2015-04-01" are not.
bool IsNumericText(const char* text);
// True when the fifth character is a hyphen, as in 2015-04-01.
bool IsDateText(const char* text);

// The function library that stands beside the value.
bool Not(bool value);
bool Not(const CRuleValue& value);
double Abs(double value);
double Floor(double value);
// Nearest whole number, halves away from zero.
double Round(double value);
CString String(const CRuleValue& value);
// Drops leading white space, keeps the first character of each inner run of
// white space as it is, drops trailing white space.
CString NormalizeSpace(const CString& text);
// Every occurrence of from replaced by to, as a text value.
CRuleValue Translate(const CString& text, const char* from, const char* to);
CString Concat(const char* a, const char* b);
CString Concat(int n, const char* b);
