// The message frame around the return, the sections of CompanyTaxReturn in
// their order, and the header elements.
#include <array>
#include <iterator>

#include "schema/model/model.h"

namespace schemamodel {

// Document order of CompanyTaxReturn; the occurrences stand in each
// section's top row.
constexpr const Table* kReturnSectionList[] = {
    &kCompanyInformation,
    &kReturnInfoSummary,
    &kTurnover,
    &kCompanyTaxCalculation,
    &kCalculationOfTaxOutstandingOrOverpaid,
    &kTaxReconciliation,
    &kIndicatorsAndInformation,
    &kEnhancedExpenditure,
    &kLandRemediationEnhancedExpenditure,
    &kAllowancesAndCharges,
    &kNotIncluded,
    &kQualifyingExpenditure,
    &kLossesDeficitsAndExcess,
    &kOverpaymentsAndRepayments,
    &kDeclaration,
    &kLoansByCloseCompanies,
    &kControlledForeignCompanies,
    &kGroupAndConsortium,
    &kInsurance,
    &kCharity,
    &kTonnageTax,
    &kCrossBorderRoyalties,
    &kRingFenceTrade,
    &kTaxAvoidanceSchemes,
    &kWelshReturn,
    &kJointAccounts,
    &kAttachedFiles,
};
extern const std::span<const Table* const> kReturnSections = kReturnSectionList;

// The same sections for a return charged under current law. Made at load
// time: tables of other units have no address a constant may compare.
const auto kReturnSectionListCurrentLaw = [] {
    std::array<const Table*, std::size(kReturnSectionList)> list{};
    for (std::size_t i = 0; i < list.size(); ++i)
        list[i] = kReturnSectionList[i] == &kCompanyTaxCalculation ? &kCompanyTaxCalculationCurrentLaw
                                                                   : kReturnSectionList[i];
    return list;
}();

namespace {

// The frame the validation builds around the return. Only CompanyTaxReturn
// has a row: the names above it take part in no pair.
constexpr Decl kMessageRows[] = {
    {0, "GovTalkMessage", notCounted, noTest},
    {1, "Header", notCounted, noTest},
    {2, "MessageDetails", notCounted, noTest},
    {3, "Class", notCounted, noTest},
    {1, "Body", notCounted, noTest},
    {2, "IRenvelope", notCounted, noTest},
    {3, "CompanyTaxReturn", notCounted, sectionsOf(kReturnSectionList)},
};
const Decl kMessageRowsCurrentLaw[] = {
    {0, "GovTalkMessage", notCounted, noTest},
    {1, "Header", notCounted, noTest},
    {2, "MessageDetails", notCounted, noTest},
    {3, "Class", notCounted, noTest},
    {1, "Body", notCounted, noTest},
    {2, "IRenvelope", notCounted, noTest},
    {3, "CompanyTaxReturn", notCounted, sectionsOf(kReturnSectionListCurrentLaw)},
};

// IRheader has no row of its own, so nothing counts its children.
constexpr Decl kIRheaderRows[] = {
    {0, "Keys", notCounted, sequence},
    {1, "Key", occurs(1, unbounded), type(HeaderText)},
    {0, "PeriodEnd", notCounted, type(DateText)},
    {0, "Principal", notCounted, sequence},
    {1, "Contact", once, sequence},
    {2, "Name", optional, noTest},
    {2, "Email", occurs(0, unbounded), noTest},
    {2, "Telephone", occurs(0, unbounded), noTest},
    {2, "Fax", occurs(0, unbounded), noTest},
    {0, "Agent", notCounted, sequence},
    {1, "AgentID", optional, type(HeaderText, 1, 35)},
    {1, "Company", optional, type(HeaderText, 1, 35)},
    {1, "Address", optional, sequence},
    {2, "Line", occurs(1, 4), type(AddressText, 1, 35)},
    {2, "PostCode", optional, type(AddressText, 1, 8)},
    {2, "Country", optional, type(AddressText, 1, 35)},
    {1, "Contact", optional, sequence},
    {2, "Name", optional, noTest},
    {2, "Email", occurs(0, unbounded), noTest},
    {2, "Telephone", occurs(0, unbounded), noTest},
    {2, "Fax", occurs(0, unbounded), noTest},
    {0, "DefaultCurrency", notCounted, type(CurrencyCode)},
    {0, "Manifest", notCounted, noChildren},
    {0, "IRmark", notCounted, noCheck},
    {0, "Sender", notCounted, type(SenderType)},
};

// The parts of a contact's name, tested under any element called Name.
constexpr Decl kContactNameRows[] = {
    {0, "Ttl", notCounted, type(TitleText)},
    {0, "Fore", notCounted, type(ForenameText)},
    {0, "Sur", notCounted, type(SurnameText)},
};

// The Reference of a manifest.
constexpr Decl kManifestContainsRows[] = {
    {0, "Reference", notCounted, sequence},
    {1, "Namespace", once, noCheck},
    {1, "SchemaVersion", once, type(SchemaVersionText)},
    {1, "TopElementName", once, noCheck},
};

}  // namespace

extern const Table kMessage{"", kMessageRows};
const Table kMessageCurrentLaw{"", kMessageRowsCurrentLaw};
extern const Table kIRheader{"IRheader", kIRheaderRows};
extern const Table kContactName{"Name", kContactNameRows};
extern const Table kManifestContains{"Contains", kManifestContainsRows};

namespace {
constexpr const Table* kModel[] = {&kMessage, &kIRheader, &kContactName, &kManifestContains};
constexpr const Table* kModelCurrentLaw[] = {&kMessageCurrentLaw, &kIRheader, &kContactName, &kManifestContains};
}  // namespace

std::span<const Table* const> returnModel() { return kModel; }
std::span<const Table* const> returnModelCurrentLaw() { return kModelCurrentLaw; }

}  // namespace schemamodel
