// The notation the rule catalogue is written in. Each rule's test is built
// once, from small typed expressions that read like the rule tables:
//
//   abs(num(".") - (sum("../Profits") - sum("../LossesBroughtForward"))) >= 0.001
//   str("../../@ReturnType") != "amended" && !filled("../SupplementaryPages/CT600J")
//
// and evaluated on a CRuleContext for each selected node. Paths are texts with
// "/" between steps ("." is the current node, "~/" the way down to the return);
// each becomes a shared path table when the expression is built.
//
//   num(p)      Value(p).Number()          str(p)      Value(p).Text()
//   filled(p)   Value(p).IsTrue()          same(p, q)  Value(p) == Value(q)
//   sum(p)      Sum(p)                     count(p)    Count(p)
//   val(p)      Value(p), for the logging "val(p) || false" of the rules
//               marked with a dagger
//   digits(p)   the number of a rate's text without its point
//   today(), plus(d, u), ymd(d), dayno(d), fy(d), span(a, b): the dates
//   abs, floor, round; + - * / on numbers; == != < <= > >= compare numbers
//   exactly; str(p) == "text" compares bytes; && || ! stop as soon as the
//   result is known.
#pragma once

#include <functional>
#include <utility>

#include "platform/cstring.h"
#include "rules/rulecontext.h"
#include "rules/rulevalue.h"

namespace ruledsl {

using Ctx = CRuleContext;

// A number-valued expression. A plain double is a constant.
struct Num {
    std::function<double(Ctx&)> eval;
    Num(double constant);  // implicit: constants stand in expressions as they are
    explicit Num(std::function<double(Ctx&)> f) : eval(std::move(f)) {}
};

// A condition.
struct Bool {
    std::function<bool(Ctx&)> eval;
    explicit Bool(std::function<bool(Ctx&)> f) : eval(std::move(f)) {}
    bool operator()(Ctx& ctx) const { return eval && eval(ctx); }
};

// A text-valued expression: an element's text, or a date text.
struct Str {
    std::function<CString(Ctx&)> eval;
    explicit Str(std::function<CString(Ctx&)> f) : eval(std::move(f)) {}
};

// A rule value itself, for same() and the logging or.
struct Val {
    std::function<CRuleValue(Ctx&)> eval;
    explicit Val(std::function<CRuleValue(Ctx&)> f) : eval(std::move(f)) {}
};

// ---- reading the return
Val val(const char* path);
Num num(const char* path);
Str str(const char* path);
Bool filled(const char* path);
Bool same(const char* left, const char* right);
Num sum(const char* path);
Num count(const char* path);
Num digits(const char* path);

// ---- numbers
Num abs(const Num& x);
Num floor(const Num& x);
Num round(const Num& x);
Num operator+(const Num& a, const Num& b);
Num operator-(const Num& a, const Num& b);
Num operator*(const Num& a, const Num& b);
// A zero divisor gives 0: a rule over an empty span never stops the run.
Num operator/(const Num& a, const Num& b);
Num operator-(const Num& a);

Bool operator==(const Num& a, const Num& b);
Bool operator!=(const Num& a, const Num& b);
Bool operator<(const Num& a, const Num& b);
Bool operator<=(const Num& a, const Num& b);
Bool operator>(const Num& a, const Num& b);
Bool operator>=(const Num& a, const Num& b);

// ---- texts against literals, by bytes
Bool operator==(const Str& a, const char* literal);
Bool operator!=(const Str& a, const char* literal);

// ---- conditions
Bool operator&&(const Bool& a, const Bool& b);
Bool operator||(const Bool& a, const Bool& b);
Bool operator!(const Bool& a);
// The dagger: a value or-ed with a bool through the logging operator.
Bool operator||(const Val& a, bool b);

// ---- dates
Str today();
// AddDuration of the normalised date text and duration.
Str plus(const char* datePath, const char* duration);
// The whole number n followed by a text: concat(num(".") + 1, "-03-31").
Str concat(const Num& n, const char* tail);
// The date's digits as a number: 2015-04-01 gives 20150401.
Num ymd(const char* datePath);
Num ymd(const Str& date);
// Days since 1970 of the normalised date. A date that isn't real, such as
// 2021-03-00 from plus(), falls on its neighbouring real day (2021-02-28).
Num dayno(const char* datePath);
Num dayno(const Str& date);
// Financial year: three months back, then the calendar year.
Num fy(const char* datePath);
// Days from a to b, both included.
Num span(const char* fromPath, const char* toPath);
Num span(const char* fromPath, const Str& to);

// ---- attachments
// What a PDF under AttachedFiles holds. The return says it only through an
// attribute Type when the host wrote one ("accounts", "computations", anything
// else is Other); without it the file name may tell, by the convention that
// names computations "ctcomp..." and accounts "...accounts...". What neither
// tells is Untyped.
enum PdfKind : unsigned { kPdfAccounts = 1, kPdfComputations = 2, kPdfOther = 4, kPdfUntyped = 8 };
PdfKind PdfKindOf(const CXMLVar& attachment);
// The PDF attachments that the path reaches and whose kind is one of kinds.
// A PDF is an element with FileFormat "pdf", or without FileFormat, a
// Filename ending ".pdf".
Num pdfs(const char* path, unsigned kinds);

// ---- escape hatches for tests no notation covers
Bool custom(std::function<bool(Ctx&)> f);
Num customNumber(std::function<double(Ctx&)> f);

}  // namespace ruledsl
