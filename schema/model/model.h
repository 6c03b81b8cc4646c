// The return document as the schema tests see it, written as data.
//
// A section is a table of declarations that reads like the element tables of
// the schema: one row per element, nesting by depth, with its occurrence in
// the parent's sequence and its content.
//
//   const Decl kTurnoverRows[] = {
//       {0, "Turnover", optional, sequence},
//       {1, "Total", optional, type(TurnoverAmount)},
//       {1, "OtherFinancialConcerns", optional, type(YesFlag)},
//   };
//   extern const Table kTurnover{"CompanyTaxReturn", kTurnoverRows};
//
// Every row whose content is not noTest becomes one row of the test table,
// keyed by (parent name, element name); a sequence counts the rows one level
// deeper, in order, and a choice takes their names. A pair declared in two
// places gets two rows and is tested twice, as the schema does; a pair that is
// only to be counted here while its row comes from another table is declared
// `shared`.
//
// Adding a section of the return: write its rows below its top row, in the
// file that holds that row (company.cpp, calculation.cpp, pages.cpp), and
// nothing else. kReturnSectionList (message.cpp) lists every section of
// CompanyTaxReturn in document order and the test table takes the rows in
// from there. A table whose parent has no row of its own (IRheader, Name,
// Contains) is listed in kModel (message.cpp) instead. The table's faults
// (a depth that jumps, an occurrence that doesn't fit its parent, one pair
// with two different tests) show in CSchemaTable::Problems(), which the
// tests require to be empty.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace schemamodel {

// ---------------------------------------------------------------- checks

enum class Op : std::uint8_t {
    None,
    MinLength,
    MaxLength,
    Length,
    Pattern,
    MaxInclusive,
    MinInclusive,
    MinExclusive,
    Integer,
    Decimal,
    NonNegative,
    Year,
    Enumeration,
    // Only in a type's list: where the element's own length limits run, when
    // that isn't after the type's checks.
    ElementLengths,
};

struct Check {
    Op op = Op::None;
    int n = 0;
    const char* text = nullptr;             // a pattern or a limit
    std::span<const char* const> values{};  // an enumeration
};

constexpr Check minLength(int n) { return {Op::MinLength, n}; }
constexpr Check maxLength(int n) { return {Op::MaxLength, n}; }
constexpr Check length(int n) { return {Op::Length, n}; }
constexpr Check pattern(const char* p) { return {Op::Pattern, 0, p}; }
constexpr Check maxInclusive(const char* limit) { return {Op::MaxInclusive, 0, limit}; }
constexpr Check minInclusive(const char* limit) { return {Op::MinInclusive, 0, limit}; }
constexpr Check minExclusive(const char* limit) { return {Op::MinExclusive, 0, limit}; }
constexpr Check integer() { return {Op::Integer}; }
constexpr Check decimal() { return {Op::Decimal}; }
constexpr Check nonNegative() { return {Op::NonNegative}; }
constexpr Check year() { return {Op::Year}; }
constexpr Check oneOf(std::span<const char* const> values) { return {Op::Enumeration, 0, nullptr, values}; }
constexpr Check elementLengths() { return {Op::ElementLengths}; }

// ---------------------------------------------------------------- types

enum Type : std::uint8_t {
    NoType,
    // amounts
    AmountBase,
    NonNegativeAmount,
    PositiveAmount,
    PoundsAmount,
    PositivePounds,
    PenceAmount,
    TurnoverAmount,
    PercentRate,
    PositivePercent,
    // whole numbers
    WholeNumber,
    CompanyTypeCode,
    SmallCount,
    TonnageNumber,
    DayCount,
    ShipNumber,
    SchemeNumber,
    CompanyCount,
    YearNumber,
    // dates
    DateText,
    PeriodStartDate,
    // text
    PlainText,
    NameText,
    CodeText,
    HeaderText,
    AddressText,
    RegistrationText,
    SortCodeText,
    AccountNumberText,
    TenDigitReference,
    CharityReference,
    SchemaVersionText,
    TitleText,
    ForenameText,
    SurnameText,
    // enumerations
    YesFlag,
    YesNoFlag,
    YesNoNaFlag,
    AcceptFlag,
    CurrencyCode,
    ShipInterest,
    SenderType,
    NoAccountsText,
    NoComputationsText,
    TypeCount
};

// A named, ordered list of checks; the base type's list runs first.
struct TypeDef {
    Type type;
    const char* name;
    Type base;
    Check checks[4];
};

// Indexed by Type; entry 0 (NoType) has no checks.
std::span<const TypeDef> typeCatalogue();
// Every pattern text of the catalogue, in catalogue order, repeats included.
std::vector<const char*> cataloguePatterns();

// ---------------------------------------------------------------- declarations

enum class Occ : std::uint8_t {
    NotCounted,   // the parent has no sequence test
    Counted,      // the parent's sequence counts it, min..max
    Accepted,     // in the parent's seen list without a count
    Alternative,  // a name of the parent's choice
};

struct Occurs {
    Occ kind = Occ::NotCounted;
    int min = 0;
    int max = 0;
};

// The schema's open-ended maximum, enforced as this number.
inline constexpr int unbounded = 9999;

constexpr Occurs occurs(int min, int max) { return {Occ::Counted, min, max}; }
inline constexpr Occurs once = occurs(1, 1);
inline constexpr Occurs optional = occurs(0, 1);
inline constexpr Occurs notCounted{Occ::NotCounted, 0, 0};
inline constexpr Occurs accepted{Occ::Accepted, 0, 0};
inline constexpr Occurs alternative{Occ::Alternative, 0, 0};

struct Table;

enum class Kind : std::uint8_t {
    NoTest,      // no row: neither value nor children looked at from here
    NoCheck,     // a row whose test does nothing
    NoChildren,  // no children allowed
    Sequence,    // counts the rows one level deeper
    Choice,      // the first child must be one of the rows one level deeper
    OfType,      // a type's checks, then the element's lengths and extra check
    Shared,      // counted here; the pair's row comes from another table
    Sections,    // a sequence over the top rows of other tables
};

struct Content {
    Kind kind = Kind::NoTest;
    Type type = NoType;
    int minLength = -1;  // -1: none
    int maxLength = -1;
    Check extra{};       // one further check after the type's (a limit once more)
    std::span<const Table* const> sections{};

    constexpr Content then(Check c) const {
        Content r = *this;
        r.extra = c;
        return r;
    }
};

inline constexpr Content noTest{};
inline constexpr Content noCheck{Kind::NoCheck};
inline constexpr Content noChildren{Kind::NoChildren};
inline constexpr Content sequence{Kind::Sequence};
inline constexpr Content choice{Kind::Choice};
inline constexpr Content shared{Kind::Shared};
constexpr Content type(Type t) { return {Kind::OfType, t}; }
// A type with the element's own length limits, "2 to 56 characters".
constexpr Content type(Type t, int minLen, int maxLen) { return {Kind::OfType, t, minLen, maxLen}; }
// A type with a maximum length only, "at most 20 characters".
constexpr Content atMost(Type t, int maxLen) { return {Kind::OfType, t, -1, maxLen}; }
constexpr Content sectionsOf(std::span<const Table* const> tables) {
    Content c{Kind::Sections};
    c.sections = tables;
    return c;
}

struct Decl {
    int depth;  // 0 for the table's top rows
    const char* name;
    Occurs occurs;
    Content content;
};

// Rows of depth 0 stand under an element called parent.
struct Table {
    const char* parent;
    std::span<const Decl> rows;
};

// ---------------------------------------------------------------- the return

// The message frame, down to CompanyTaxReturn (message.cpp).
extern const Table kMessage;
// Tables under a parent that has no row of its own (message.cpp).
extern const Table kIRheader, kContactName, kManifestContains;
// The sections of CompanyTaxReturn, in document order (message.cpp).
extern const std::span<const Table* const> kReturnSections;
// Where the test table starts: the frame and the free tables.
std::span<const Table* const> returnModel();
// The same for a return charged under current law: CorporationTaxChargeable
// may hold AssociatedCompanies.
std::span<const Table* const> returnModelCurrentLaw();

// company.cpp
extern const Table kCompanyInformation, kReturnInfoSummary, kTurnover;
// calculation.cpp
extern const Table kCompanyTaxCalculation, kCalculationOfTaxOutstandingOrOverpaid, kTaxReconciliation,
    kIndicatorsAndInformation, kEnhancedExpenditure, kLandRemediationEnhancedExpenditure, kAllowancesAndCharges,
    kNotIncluded, kQualifyingExpenditure, kLossesDeficitsAndExcess, kOverpaymentsAndRepayments, kDeclaration;
// calculation.cpp: kCompanyTaxCalculation with current law's AssociatedCompanies
extern const Table kCompanyTaxCalculationCurrentLaw;
// pages.cpp
extern const Table kLoansByCloseCompanies, kControlledForeignCompanies, kGroupAndConsortium, kInsurance, kCharity,
    kTonnageTax, kCrossBorderRoyalties, kRingFenceTrade, kTaxAvoidanceSchemes, kWelshReturn, kJointAccounts,
    kAttachedFiles;

}  // namespace schemamodel
