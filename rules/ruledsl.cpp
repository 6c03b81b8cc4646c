#include "rules/ruledsl.h"

#include <climits>
#include <cmath>

#include "common/library.h"
#include "rules/ruledates.h"

namespace ruledsl {

namespace {

// "." is the node itself, read without a walk.
bool isSelf(const char* path) { return path && path[0] == '.' && path[1] == '\0'; }

CRuleValue valueOf(Ctx& ctx, PathTable table, bool self) { return self ? ctx.Self() : ctx.Value(table); }

// A whole number as an int, without the undefined conversion of a double
// outside int's range; what is no finite number counts as 0.
int toInt(double x) {
    if (!std::isfinite(x)) return 0;
    if (x >= static_cast<double>(INT_MAX)) return INT_MAX;
    if (x <= static_cast<double>(INT_MIN)) return INT_MIN;
    return static_cast<int>(x);
}

// Days of a date or duration text: the seconds over a day, truncated as a
// whole-number division truncates, so the noons of 31 December 1969 and of
// 1 January 1970 share day 0, as the published rules have it.
double dayNumber(const CString& text) {
    const std::int64_t seconds = DateSeconds(NormalizeSpace(text));
    return Round(static_cast<double>(seconds / 86400));
}

}  // namespace

Num::Num(double constant) : eval([constant](Ctx&) { return constant; }) {}

Val val(const char* path) {
    const bool self = isSelf(path);
    PathTable table = MakePathTable(path);
    return Val([=](Ctx& c) { return valueOf(c, table, self); });
}

Num num(const char* path) {
    const bool self = isSelf(path);
    PathTable table = MakePathTable(path);
    return Num([=](Ctx& c) { return valueOf(c, table, self).Number(); });
}

Str str(const char* path) {
    const bool self = isSelf(path);
    PathTable table = MakePathTable(path);
    return Str([=](Ctx& c) { return valueOf(c, table, self).Text(); });
}

Bool filled(const char* path) {
    const bool self = isSelf(path);
    PathTable table = MakePathTable(path);
    return Bool([=](Ctx& c) { return valueOf(c, table, self).IsTrue(); });
}

Bool same(const char* left, const char* right) {
    const Val a = val(left), b = val(right);
    return Bool([=](Ctx& c) { return a.eval(c) == b.eval(c); });
}

Num sum(const char* path) {
    PathTable table = MakePathTable(path);
    return Num([=](Ctx& c) { return c.Sum(table); });
}

Num count(const char* path) {
    PathTable table = MakePathTable(path);
    return Num([=](Ctx& c) { return static_cast<double>(c.Count(table)); });
}

Num digits(const char* path) {
    const Str text = str(path);
    return Num([=](Ctx& c) { return Translate(text.eval(c), ".", "").Number(); });
}

Num abs(const Num& x) {
    return Num([=](Ctx& c) { return Abs(x.eval(c)); });
}
Num floor(const Num& x) {
    return Num([=](Ctx& c) { return Floor(x.eval(c)); });
}
Num round(const Num& x) {
    return Num([=](Ctx& c) { return Round(x.eval(c)); });
}

Num operator+(const Num& a, const Num& b) {
    return Num([=](Ctx& c) { return a.eval(c) + b.eval(c); });
}
Num operator-(const Num& a, const Num& b) {
    return Num([=](Ctx& c) { return a.eval(c) - b.eval(c); });
}
Num operator*(const Num& a, const Num& b) {
    return Num([=](Ctx& c) { return a.eval(c) * b.eval(c); });
}
Num operator/(const Num& a, const Num& b) {
    return Num([=](Ctx& c) {
        const double divisor = b.eval(c);
        const double dividend = a.eval(c);
        return divisor == 0.0 ? 0.0 : dividend / divisor;
    });
}
Num operator-(const Num& a) {
    return Num([=](Ctx& c) { return -a.eval(c); });
}

Bool operator==(const Num& a, const Num& b) {
    return Bool([=](Ctx& c) { return a.eval(c) == b.eval(c); });
}
Bool operator!=(const Num& a, const Num& b) {
    return Bool([=](Ctx& c) { return a.eval(c) != b.eval(c); });
}
Bool operator<(const Num& a, const Num& b) {
    return Bool([=](Ctx& c) { return a.eval(c) < b.eval(c); });
}
Bool operator<=(const Num& a, const Num& b) {
    return Bool([=](Ctx& c) { return a.eval(c) <= b.eval(c); });
}
Bool operator>(const Num& a, const Num& b) {
    return Bool([=](Ctx& c) { return a.eval(c) > b.eval(c); });
}
Bool operator>=(const Num& a, const Num& b) {
    return Bool([=](Ctx& c) { return a.eval(c) >= b.eval(c); });
}

Bool operator==(const Str& a, const char* literal) {
    const CString text(literal);
    return Bool([=](Ctx& c) { return a.eval(c) == text; });
}
Bool operator!=(const Str& a, const char* literal) {
    const CString text(literal);
    return Bool([=](Ctx& c) { return !(a.eval(c) == text); });
}

Bool operator&&(const Bool& a, const Bool& b) {
    return Bool([=](Ctx& c) { return a(c) && b(c); });
}
Bool operator||(const Bool& a, const Bool& b) {
    return Bool([=](Ctx& c) { return a(c) || b(c); });
}
Bool operator!(const Bool& a) {
    return Bool([=](Ctx& c) { return !a(c); });
}
Bool operator||(const Val& a, bool b) {
    return Bool([=](Ctx& c) { return a.eval(c) || b; });
}

Str today() {
    return Str([](Ctx&) { return Today(""); });
}

Str plus(const char* datePath, const char* duration) {
    const Str date = str(datePath);
    const CString step = NormalizeSpace(CString(duration));
    return Str([=](Ctx& c) { return AddDuration(NormalizeSpace(date.eval(c)), step); });
}

Str concat(const Num& n, const char* tail) {
    const CString text(tail);
    return Str([=](Ctx& c) { return Concat(toInt(n.eval(c)), text); });
}

Num ymd(const Str& date) {
    return Num([=](Ctx& c) { return Translate(date.eval(c), "-", "").Number(); });
}
Num ymd(const char* datePath) { return ymd(str(datePath)); }

Num dayno(const Str& date) {
    return Num([=](Ctx& c) { return dayNumber(date.eval(c)); });
}
Num dayno(const char* datePath) { return dayno(str(datePath)); }

Num fy(const char* datePath) {
    const Str earlier = plus(datePath, "-P3M");
    return Num([=](Ctx& c) { return static_cast<double>(YearOf(NormalizeSpace(earlier.eval(c)))); });
}

Num span(const char* fromPath, const Str& to) {
    const Str from = str(fromPath);
    return Num([=](Ctx& c) {
        const CString difference = DateDifference(NormalizeSpace(from.eval(c)), NormalizeSpace(to.eval(c)));
        const std::int64_t seconds = DateSeconds(NormalizeSpace(difference));
        return Round(static_cast<double>(seconds / 86400) + 1);
    });
}
Num span(const char* fromPath, const char* toPath) { return span(fromPath, str(toPath)); }

namespace {

bool containsNoCase(const CString& text, const char* word) {
    CString lower(text);
    lower.MakeLower();
    return lower.Find(word) >= 0;
}

bool isPdf(const CXMLVar& node) {
    const CString format = node.GetAttr("FileFormat");
    if (!format.IsEmpty()) {
        CString lower(format);
        lower.MakeLower();
        return lower == "pdf";
    }
    return ext(node.GetAttr("Filename"), ".pdf") != 0;
}

}  // namespace

PdfKind PdfKindOf(const CXMLVar& attachment) {
    const CString type = attachment.GetAttr("Type");
    if (!type.IsEmpty()) {
        if (containsNoCase(type, "comp")) return kPdfComputations;
        if (containsNoCase(type, "account")) return kPdfAccounts;
        return kPdfOther;
    }
    const CString name = attachment.GetAttr("Filename");
    if (containsNoCase(name, "ctcomp")) return kPdfComputations;
    if (containsNoCase(name, "accounts")) return kPdfAccounts;
    return kPdfUntyped;
}

Num pdfs(const char* path, unsigned kinds) {
    PathTable table = MakePathTable(path);
    return Num([=](Ctx& c) {
        CObArray found;
        c.Walk(c.m_Current, table, found);
        int n = 0;
        for (int i = 0; i < found.GetSize(); ++i) {
            const auto* node = static_cast<const CXMLVar*>(found.GetAt(i));
            if (isPdf(*node) && (PdfKindOf(*node) & kinds)) ++n;
        }
        return static_cast<double>(n);
    });
}

Bool custom(std::function<bool(Ctx&)> f) { return Bool(std::move(f)); }
Num customNumber(std::function<double(Ctx&)> f) { return Num(std::move(f)); }

}  // namespace ruledsl
