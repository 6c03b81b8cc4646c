// The catalogue of simple types. A type is a named, ordered list of checks;
// its base type's list runs first, then its own, then the element's length
// limits (unless the type places them itself).
#include "schema/model/model.h"

#include <iterator>

namespace schemamodel {
namespace {

constexpr const char* kYes[] = {"yes"};
constexpr const char* kNoYes[] = {"no", "yes"};
constexpr const char* kNoYesNa[] = {"no", "yes", "na"};
// The schema lists "EUR" and "GBP" and then narrows the type to "GBP".
constexpr const char* kCurrencies[] = {"GBP"};
constexpr const char* kShipInterests[] = {"O", "F", "T", "G"};
constexpr const char* kSenderTypes[] = {"Individual", "Company",    "Agent",      "Bureau",
                                        "Partnership", "Trust",     "Employer",   "Government",
                                        "Acting in Capacity", "Other"};
constexpr const char* kNoAccountsReasons[] = {
    "PoA differs from AP-a/cs with sep rtn", "Company in liquidation",
    "Not within charge to CT",               "Company dormant",
    "Amendment - a/cs already submitted",    "Other - PDF attached with explanation",
    "PDF accounts attached with explanation"};
constexpr const char* kNoComputationsReasons[] = {
    "PoA differs from AP-comp with sep rtn", "Company in liquidation",
    "Not within charge to CT",               "Company dormant",
    "Amendment - comps already submitted",   "Other - PDF attached with explanation"};

// Patterns are byte patterns in the host's code page: 0xA3 is the pound
// sign, 0x82 and 0xAC two further bytes the schema names.
constexpr const char* kAmount = "-?(([1-9][0-9]*)|0)\\.[0-9]{2}";
constexpr const char* kWholePounds = ".*\\.00";
constexpr const char* kPlain = "[A-Za-z0-9 ,\\.\\(\\)/&'\\-\"!%\\*_\\+:@<>\\?=;]*";
constexpr const char* kName = "[^\xA3$#~\x82\xAC]+";
constexpr const char* kAddress =
    "[A-Za-z0-9 ~!\"@#$%&'\\(\\)\\*\\+,\\-\\./:;<=>\\?\\[\\\\\\]^_\\{\\}\xA3\x82\xAC]*";
constexpr const char* kPersonName = "[A-Za-z][A-Za-z'\\-]*";

constexpr TypeDef kTypes[] = {
    {NoType, "", NoType, {}},
    // Amounts: text with exactly two decimals.
    {AmountBase, "AmountBase", NoType, {decimal(), pattern(kAmount)}},
    {NonNegativeAmount, "NonNegativeAmount", AmountBase, {minInclusive("0.00")}},
    {PositiveAmount, "PositiveAmount", AmountBase, {minExclusive("0.00")}},
    {PoundsAmount, "PoundsAmount", NonNegativeAmount, {pattern(kWholePounds), maxInclusive("99999999999.00")}},
    {PositivePounds, "PositivePounds", PositiveAmount, {pattern(kWholePounds), maxInclusive("99999999999.00")}},
    {PenceAmount, "PenceAmount", NonNegativeAmount, {maxInclusive("99999999999.99")}},
    {TurnoverAmount, "TurnoverAmount", NonNegativeAmount,
     {pattern(kWholePounds), maxInclusive("999999999999999999.00")}},
    {PercentRate, "PercentRate", NonNegativeAmount, {maxInclusive("100.00"), minInclusive("0.00")}},
    {PositivePercent, "PositivePercent", PositiveAmount,
     {pattern("[0-9]{1,3}\\.[0-9]{2}"), maxInclusive("100.00")}},
    // Whole numbers.
    {WholeNumber, "WholeNumber", NoType, {integer()}},
    {CompanyTypeCode, "CompanyTypeCode", NoType, {integer(), maxInclusive("10"), minInclusive("0")}},
    {SmallCount, "SmallCount", NoType, {integer(), maxInclusive("999")}},
    {TonnageNumber, "TonnageNumber", NoType, {integer(), maxInclusive("9999999"), minInclusive("0")}},
    {DayCount, "DayCount", NoType, {integer(), maxInclusive("366"), minInclusive("1")}},
    {ShipNumber, "ShipNumber", NoType,
     {integer(), pattern("[1-9][0-9]{6,7}"), maxInclusive("99999999"), minInclusive("1000000")}},
    {SchemeNumber, "SchemeNumber", NoType, {integer(), pattern("[0-9]{8}"), maxInclusive("99999999")}},
    {CompanyCount, "CompanyCount", NoType, {nonNegative(), maxInclusive("9999999999")}},
    {YearNumber, "YearNumber", NoType, {year()}},
    // Dates, as XML dates.
    {DateText, "DateText", NoType, {pattern("\\d{4}-\\d{2}-\\d{2}")}},
    {PeriodStartDate, "PeriodStartDate", DateText, {minInclusive("2015-04-01")}},
    // Text.
    {PlainText, "PlainText", NoType, {pattern(kPlain)}},
    {NameText, "NameText", PlainText, {pattern(kName)}},
    {CodeText, "CodeText", PlainText, {pattern("[A-Za-z0-9]*")}},
    {HeaderText, "HeaderText", NoType, {pattern("[A-Za-z0-9 &'\\(\\)\\*,\\-\\./]*")}},
    {AddressText, "AddressText", NoType, {elementLengths(), pattern(kAddress)}},
    {RegistrationText, "RegistrationText", PlainText, {minLength(2), maxLength(8), pattern("[A-Z0-9]{2,8}")}},
    {SortCodeText, "SortCodeText", PlainText, {minLength(6), maxLength(6), pattern("[0-9]{6}")}},
    {AccountNumberText, "AccountNumberText", PlainText, {minLength(8), maxLength(8), pattern("[0-9]{8}")}},
    {TenDigitReference, "TenDigitReference", NoType, {length(10), pattern("[0-9]{10}")}},
    {CharityReference, "CharityReference", CodeText,
     {minLength(2), maxLength(11), pattern("(X[NRT]?|C[RH]|Z[BCDEFGHJKN]|EW|ST|NI)[0-9]{1,9}")}},
    {SchemaVersionText, "SchemaVersionText", HeaderText,
     {maxLength(13), pattern("[0-9]{4}\\-v[0-9]{1,3}\\.[0-9]{1,3}(\\.[0-9]{1,3})?")}},
    {TitleText, "TitleText", NoType, {minLength(1), maxLength(4), pattern(kPersonName)}},
    {ForenameText, "ForenameText", NoType, {minLength(1), maxLength(35), pattern(kPersonName)}},
    {SurnameText, "SurnameText", NoType, {minLength(1), maxLength(35), pattern("[A-Za-z0-9 ,\\.\\(\\)/&\\-']+")}},
    // Enumerations. A value outside the list is reported, as the filing
    // service rejects it.
    {YesFlag, "YesFlag", NoType, {oneOf(kYes)}},
    {YesNoFlag, "YesNoFlag", NoType, {oneOf(kNoYes)}},
    {YesNoNaFlag, "YesNoNaFlag", NoType, {oneOf(kNoYesNa)}},
    {AcceptFlag, "AcceptFlag", PlainText, {oneOf(kYes)}},
    {CurrencyCode, "CurrencyCode", NoType, {oneOf(kCurrencies)}},
    {ShipInterest, "ShipInterest", PlainText, {oneOf(kShipInterests)}},
    {SenderType, "SenderType", NoType, {oneOf(kSenderTypes)}},
    {NoAccountsText, "NoAccountsText", NameText, {minLength(2), maxLength(40), oneOf(kNoAccountsReasons)}},
    {NoComputationsText, "NoComputationsText", NameText,
     {minLength(2), maxLength(40), oneOf(kNoComputationsReasons)}},
};
constexpr bool inTypeOrder() {
    for (std::size_t i = 0; i < std::size(kTypes); ++i)
        if (kTypes[i].type != i) return false;
    return std::size(kTypes) == TypeCount;
}
static_assert(inTypeOrder(), "one catalogue entry for each type, in the order of Type");

}  // namespace

std::span<const TypeDef> typeCatalogue() { return kTypes; }

std::vector<const char*> cataloguePatterns() {
    std::vector<const char*> out;
    for (const TypeDef& t : kTypes)
        for (const Check& c : t.checks)
            if (c.op == Op::Pattern) out.push_back(c.text);
    return out;
}

}  // namespace schemamodel
