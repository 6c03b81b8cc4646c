// The schema's check primitives and their reporter.
#include "schema/checks.h"

#include <charconv>
#include <locale.h>
#include <stdlib.h>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "common/library.h"

namespace {

const CString& valueOf(const CXMLVar* node) {
    static const CString none;
    return node ? node->value : none;
}

// A number as the standard atof reads it (hexadecimal, infinity and nan
// included), with a point for decimals whatever locale the host has set.
double number(const char* text) {
    // A plain decimal, as almost every value is, reads the same through
    // from_chars (correctly rounded, as strtod is) at a fraction of the cost.
    const std::string_view plain(text);
    std::size_t i = !plain.empty() && plain[0] == '-' ? 1 : 0;
    const std::size_t firstDigit = i;
    while (i < plain.size() && plain[i] >= '0' && plain[i] <= '9') ++i;
    bool isPlain = i > firstDigit;
    if (isPlain && i < plain.size()) {
        const std::size_t point = i++;
        while (i < plain.size() && plain[i] >= '0' && plain[i] <= '9') ++i;
        isPlain = plain[point] == '.' && i > point + 1 && i == plain.size();
    }
    if (isPlain) {
        double value = 0;
        const auto [end, error] = std::from_chars(plain.data(), plain.data() + plain.size(), value);
        if (error == std::errc() && end == plain.data() + plain.size()) return value;
    }
    static const locale_t c = newlocale(LC_NUMERIC_MASK, "C", static_cast<locale_t>(nullptr));
    return c ? strtod_l(text, nullptr, c) : std::strtod(text, nullptr);
}

// yyyy-mm-dd, digits where the form has them.
bool dateForm(std::string_view text) {
    if (text.size() != 10) return false;
    for (std::size_t i = 0; i < 10; ++i) {
        const bool digit = text[i] >= '0' && text[i] <= '9';
        if (i == 4 || i == 7 ? text[i] != '-' : !digit) return false;
    }
    return true;
}

// How a value stands to a limit: -1 below, 0 equal, 1 above; 2 when no order
// is known (a nan). A limit that is a date compares the two texts byte by
// byte, whatever shape the value has; any other pair compares as numbers.
int order(const CString& value, const CString& limit) {
    if (dateForm(limit.view())) {
        const int c = std::strcmp(value.c_str(), limit.c_str());
        return c < 0 ? -1 : c > 0 ? 1 : 0;
    }
    const double v = number(value.c_str());
    const double l = number(limit.c_str());
    if (v < l) return -1;
    if (v > l) return 1;
    if (v == l) return 0;
    return 2;
}

void valueError(const char* label, CXMLVar* node, CXMLVar* errors, const CString& message) {
    schemaerror(label, node, errors, message, 1);
}

void structuralError(CXMLVar* node, CXMLVar* errors, const CString& message) {
    schemaerror(node->name, node, errors, message, 0);
}

}  // namespace

void schemaerror(const char* label, CXMLVar* node, CXMLVar* errors, const char* message, int showValue) {
    if (!errors) return;
    CString text = label && *label ? CString(label) : InsertSpaces(node ? node->name.c_str() : "");
    text += ": ";
    if (showValue) text += "value " + quote(valueOf(node)) + " - ";
    text += message;
    CXMLVar* error = errors->AddChild(new CXMLVar("Error", ""), nullptr);
    error->AddChild("Text", text);
}

// ---------------------------------------------------------------- value checks

void checkminlength(int n, const char* label, CXMLVar* node, CXMLVar* errors) {
    if (node && node->value.GetLength() < n) valueError(label, node, errors, fmt("less than minimum %d characters", n));
}

void checkmaxlength(int n, const char* label, CXMLVar* node, CXMLVar* errors) {
    if (node && node->value.GetLength() > n)
        valueError(label, node, errors, fmt("greater than maximum %d characters", n));
}

void checklength(int n, const char* label, CXMLVar* node, CXMLVar* errors) {
    if (node && node->value.GetLength() != n) valueError(label, node, errors, fmt("must be %d characters", n));
}

void checkpattern(const CSchemaPattern& pattern, const char* label, CXMLVar* node, CXMLVar* errors) {
    if (!node) return;
    CString message;
    if (!patternvalidate(pattern, node->value.view(), message)) valueError(label, node, errors, message);
}

void checkpattern(const char* pattern, const char* label, CXMLVar* node, CXMLVar* errors) {
    if (!node) return;
    const std::string_view text(pattern ? pattern : "");
    if (const CSchemaPattern* compiled = knownPattern(text)) return checkpattern(*compiled, label, node, errors);
    checkpattern(CSchemaPattern(text), label, node, errors);
}

void checkmaxinclusive(const char* limit, const char* label, CXMLVar* node, CXMLVar* errors) {
    if (!node) return;
    const CString l(limit);
    if (order(node->value, l) == 1)
        valueError(label, node, errors, "must be less than or equal to " + l);
}

void checkmininclusive(const char* limit, const char* label, CXMLVar* node, CXMLVar* errors) {
    if (!node) return;
    const CString l(limit);
    if (order(node->value, l) == -1)
        valueError(label, node, errors, "must be greater than of equal to " + l);
}

void checkminexclusive(const char* limit, const char* label, CXMLVar* node, CXMLVar* errors) {
    if (!node) return;
    const CString l(limit);
    // Only a value known to be above passes; a nan doesn't.
    if (order(node->value, l) != 1) valueError(label, node, errors, "must be greater than " + l);
}

void checkinteger(const char* label, CXMLVar* node, CXMLVar* errors) {
    if (node && !isInteger(node->value)) valueError(label, node, errors, "must be integer");
}

void checkdecimal(const char* label, CXMLVar* node, CXMLVar* errors) {
    if (node && !isDecimal(node->value)) valueError(label, node, errors, "must be a decimal number");
}

void checknonnegative(const char* label, CXMLVar* node, CXMLVar* errors) {
    if (node && !isPositiveInteger(node->value) && !(node->value == "0"))
        valueError(label, node, errors, "must be non negative integer");
}

void checkyear(const char* label, CXMLVar* node, CXMLVar* errors) {
    if (!node) return;
    bool ok = false;
    if (isInteger(node->value)) {
        // The digits are read without atoi, which has no defined result for
        // a number beyond an int.
        std::string_view digits = node->value.view();
        const bool negative = digits.front() == '-';
        if (digits.front() == '-' || digits.front() == '+') digits.remove_prefix(1);
        long long year = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), year);
        ok = !negative && error == std::errc() && end == digits.data() + digits.size() && year >= 1900 &&
             year <= 2100;
    }
    if (!ok) valueError(label, node, errors, "must be valid year");
}

void checkenumeration(std::span<const char* const> values, const char* label, CXMLVar* node, CXMLVar* errors) {
    if (!node || values.empty()) return;
    CString list;
    for (const char* v : values) {
        if (node->value == v) return;
        if (!list.IsEmpty()) list += ", ";
        list += quote(v);
    }
    valueError(label, node, errors, (values.size() == 1 ? "must be " : "must be one of ") + list);
}

// ---------------------------------------------------------------- structural checks

void checkoccurs(CXMLVar* node, CXMLVar* errors, const char* name, int min, int max, CStringArray* seen) {
    if (!node) return;
    const CString wanted(name);
    int count = 0;
    for (const CXMLVar* child : node->children)
        if (child && child->name == wanted) ++count;
    if (count > 0 && seen) seen->Add(wanted);
    if (count < min) structuralError(node, errors, FormatString("need at least %d %s", min, wanted.c_str()));
    if (count > max) structuralError(node, errors, FormatString("At most %d %s allowed", max, wanted.c_str()));
}

void checknoother(CXMLVar* node, CXMLVar* errors, const CStringArray* seen) {
    if (!node) return;
    for (const CXMLVar* child : node->children) {
        if (!child) continue;
        bool known = false;
        if (seen)
            for (const CString& name : *seen)
                if (name == child->name) known = true;
        if (!known) structuralError(node, errors, "Element " + child->name + " unexpected");
    }
}

void checkchoice(CXMLVar* node, CXMLVar* errors, const CStringArray* names) {
    if (!node) return;
    const CXMLVar* first = node->FirstChild();
    if (first && names)
        for (const CString& name : *names)
            if (name == first->name) return;
    static const CStringArray none;
    structuralError(node, errors, "One of " + array2str(names ? *names : none) + " expected");
}
