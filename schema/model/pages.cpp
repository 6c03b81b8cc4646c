// The sections of the supplementary pages, the two closing flags and the
// attached files.
//
// Most pages are of a named complex type: the section's top row counts its
// children, but those children have no rows (noTest), so nothing counts the
// rows below them, which are tested through their own pairs only.
#include "schema/model/model.h"

namespace schemamodel {
namespace {

// Page A. The three Loan elements differ only by their parents, so the pairs
// under Loan stand two or three times.
constexpr Decl kLoansByCloseCompaniesRows[] = {
    {0, "LoansByCloseCompanies", optional, sequence},
    {1, "BeforeEndPeriod", once, noTest},
    {1, "LoansInformation", optional, noTest},
    {2, "Loan", notCounted, sequence},
    {3, "Name", once, type(NameText, 2, 56)},
    {3, "AmountOfLoan", once, type(PositivePounds)},
    {2, "TotalLoans", notCounted, type(PositivePounds).then(maxInclusive("99999999999.00"))},
    {2, "TaxChargeable", notCounted, type(PositiveAmount)},
    {1, "ReliefEarlierThan", optional, noTest},
    {2, "Loan", notCounted, sequence},
    {3, "Name", once, type(NameText, 2, 56)},
    {3, "AmountRepaid", optional, type(PositivePounds)},
    {3, "AmountReleasedOrWrittenOff", optional, type(PositivePounds)},
    {3, "Date", once, type(DateText)},
    {2, "TotalAmountRepaid", notCounted, type(PositivePounds).then(maxInclusive("99999999999.00"))},
    {2, "TotalAmountReleasedOrWritten", notCounted, type(PositivePounds).then(maxInclusive("99999999999.00"))},
    {2, "TotalLoans", notCounted, type(PositivePounds).then(maxInclusive("99999999999.00"))},
    {2, "ReliefDue", notCounted, type(PositiveAmount)},
    {1, "LoanLaterReliefNow", optional, noTest},
    {2, "Loan", notCounted, sequence},
    {3, "Name", once, type(NameText, 2, 56)},
    {3, "AmountRepaid", optional, type(PositivePounds)},
    {3, "AmountReleasedOrWrittenOff", optional, type(PositivePounds)},
    {3, "Date", once, type(DateText)},
    {2, "TotalAmountRepaid", notCounted, type(PositivePounds)},
    {2, "TotalAmountReleasedOrWritten", notCounted, type(PositivePounds)},
    {2, "TotalLoans", notCounted, type(PositivePounds)},
    {2, "ReliefDue", notCounted, type(PositiveAmount)},
    {1, "TotalLoansOutstanding", optional, noTest},
    {1, "TaxPayable", once, noTest},
};

// Page B.
constexpr Decl kControlledForeignCompaniesRows[] = {
    {0, "ControlledForeignCompanies", optional, sequence},
    {1, "CompanyInformation", occurs(1, unbounded), noTest},
    {2, "Name", notCounted, type(NameText, 2, 56)},
    {2, "Territory", notCounted, type(NameText, 2, 56)},
    {2, "ExemptionDue", notCounted, type(NameText, 2, 56)},
    {2, "CFCTaxCalculation", notCounted, sequence},
    {3, "Percentage", once, type(PositivePercent)},
    {3, "ChargeableProfits", once, type(PositivePounds)},
    {3, "TaxOnChargeable", once, type(PenceAmount)},
    {3, "CreditableTax", optional, type(PositiveAmount)},
    {3, "ReliefsInTaxTerms", optional, type(PositiveAmount)},
    {3, "ACTrestricted", optional, type(PositiveAmount)},
    {3, "CFCchargeDue", once, type(PenceAmount)},
    {1, "TotalTaxChargeable", optional, noTest},
    {1, "TotalCreditableTax", optional, noTest},
    {1, "TotalReliefInTaxTerms", optional, noTest},
    {1, "TotalACTrestricted", optional, noTest},
    {1, "TotalCFCtaxChargeble", optional, noTest},
    {1, "ForeignPermanentEstablishmentExemption", optional, noTest},
};

// Page C. Both lists of companies share the pairs under Company, and the
// declaration of consent shares those under Declaration with the return's.
constexpr Decl kGroupAndConsortiumRows[] = {
    {0, "GroupAndConsortium", optional, sequence},
    {1, "ClaimToGroupRelief", optional, noTest},
    {2, "CompanyInformation", notCounted, sequence},
    {3, "Company", occurs(1, unbounded), sequence},
    {4, "Name", once, type(NameText, 2, 56)},
    {4, "AccountingPeriod", optional, sequence},
    {5, "From", once, noTest},
    {5, "To", once, noTest},
    {4, "TaxReference", once, type(CodeText, 8, 20)},
    {4, "AmountClaimed", once, type(PositivePounds)},
    {3, "TotalAmountClaimed", once, type(PositivePounds)},
    {2, "NonResidentCompany", notCounted, type(YesFlag)},
    {2, "LossesGeneratedAbroad", notCounted, type(YesFlag)},
    {2, "ClaimAuthorisation", notCounted, choice},
    {3, "CopyOfNoticesOfConsentAttached", alternative, type(YesFlag)},
    {3, "AuthorisationForSimplifiedArrangements", alternative, sequence},
    {4, "AuthorisationWhereSimplifiedArrangement", once, type(YesFlag)},
    {4, "CompanyName", once, type(NameText)},
    {4, "NameOfAuthorisedPerson", once, type(NameText)},
    {4, "Status", once, type(NameText)},
    {1, "SurrenderedGroupRelief", optional, noTest},
    {2, "TradingLosses", notCounted, type(PositivePounds)},
    {2, "ExcessNonTrading", notCounted, type(PositivePounds)},
    {2, "NonTradingDeficit", notCounted, type(PositivePounds)},
    {2, "ExcessDonations", notCounted, type(PositivePounds)},
    {2, "ExcessLosses", notCounted, type(PositivePounds)},
    {2, "ExcessManagementExpenses", notCounted, type(PositivePounds)},
    {2, "NonTradingLossesOnIntangibleFixedAssets", notCounted, type(PositivePounds)},
    {2, "TotalSurrender", notCounted, type(PositivePounds)},
    {2, "SurrenderInformation", notCounted, sequence},
    {3, "Company", occurs(1, unbounded), sequence},
    {4, "Name", once, type(NameText, 2, 56)},
    {4, "AccountingPeriod", optional, sequence},
    {5, "From", once, noTest},
    {5, "To", once, noTest},
    {4, "TaxReference", once, type(CodeText, 8, 20)},
    {4, "AmountSurrendered", once, type(PoundsAmount)},
    {3, "AmountSurrenderedTotal", once, type(PoundsAmount)},
    {2, "ConsentToSurrender", notCounted, sequence},
    {3, "ConsentOptions", optional, sequence},
    {4, "SimplifiedArrangementInForce", optional, type(YesFlag)},
    {4, "NoticeOfConsentCompleted", optional, type(YesFlag)},
    {4, "CopyOfNoticesOfConsentAttached", optional, type(YesFlag)},
    {3, "Declaration", optional, sequence},
    {4, "CompanyName", once, type(NameText, 2, 56)},
    {4, "TaxReference", once, type(TenDigitReference)},
    {4, "AccountingPeriod", once, sequence},
    {5, "From", once, noTest},
    {5, "To", once, noTest},
    {4, "AcceptDeclaration", once, type(AcceptFlag)},
    {4, "Name", once, type(NameText, 2, 56)},
    {4, "Status", once, type(NameText, 2, 56)},
};

// Page D: its declaration is tested through the pairs under Declaration.
constexpr Decl kInsuranceRows[] = {
    {0, "Insurance", optional, sequence},
    {1, "Declaration", optional, noTest},
};

// Page E.
constexpr Decl kCharityRows[] = {
    {0, "Charity", optional, sequence},
    {1, "ClaimExemption", once, noTest},
    {2, "RepaymentReference", notCounted, type(CharityReference)},
    {2, "RegistrationNumber", notCounted, type(CodeText, 6, 8)},
    {2, "Status", notCounted, sequence},
    {3, "ClaimingExemptionAllOrPart", once, type(YesFlag)},
    {3, "AllCharitable", once, choice},
    {4, "AllExempt", alternative, type(YesFlag)},
    {4, "SomeNotOnlyCharitable", alternative, type(YesFlag)},
    {1, "Repayments", optional, noTest},
    {2, "OverclaimedTax", notCounted, type(YesFlag)},
    {1, "InformationRequired", optional, noTest},
    {2, "Income", notCounted, sequence},
    {3, "TotalTurnover", optional, type(PoundsAmount)},
    {3, "InvestmentIncome", optional, type(PoundsAmount)},
    {3, "UKlandBuildings", optional, type(PoundsAmount)},
    {3, "GiftAid", optional, type(PoundsAmount)},
    {3, "OtherCharities", optional, type(PoundsAmount)},
    {3, "GiftsOfShares", optional, type(PoundsAmount)},
    {3, "GiftOfRealProperty", optional, type(PoundsAmount)},
    {3, "OtherSources", optional, type(PoundsAmount)},
    {3, "Total", once, type(PoundsAmount)},
    {2, "Expenditure", notCounted, sequence},
    {3, "TradingCosts", optional, type(PoundsAmount)},
    {3, "UKlandBuildings", optional, type(PoundsAmount)},
    {3, "GeneralAdminCosts", optional, type(PoundsAmount)},
    {3, "GrantsDonationsWithinUK", optional, type(PoundsAmount)},
    {3, "GrantsDonationsOutsideUK", optional, type(PoundsAmount)},
    {3, "OtherExpenditure", optional, type(PoundsAmount)},
    {3, "Total", once, type(PoundsAmount)},
    {2, "Assets", notCounted, sequence},
    {3, "TangibleFixed", optional, sequence},
    {4, "Disposals", optional, type(PoundsAmount)},
    {4, "Held", optional, type(PoundsAmount)},
    {3, "UKinvestments", optional, sequence},
    {4, "Disposals", optional, type(PoundsAmount)},
    {4, "Held", optional, type(PoundsAmount)},
    {3, "SharesAndLoans", optional, sequence},
    {4, "Disposals", optional, type(PoundsAmount)},
    {4, "Held", optional, type(PoundsAmount)},
    {3, "OverseasInvestments", optional, sequence},
    {4, "Disposals", optional, type(PoundsAmount)},
    {4, "Held", optional, type(PoundsAmount)},
    {3, "LoansAndNonTradeDebtors", optional, sequence},
    {4, "Held", once, type(PoundsAmount)},
    {3, "OtherCurrent", optional, sequence},
    {4, "Held", once, type(PoundsAmount)},
    {3, "InvestmentsOrLoans", optional, sequence},
    {4, "Qualifying", optional, type(YesFlag)},
    {4, "ValueOfNonQualifying", optional, type(PoundsAmount)},
    {3, "SubsidiaryOrAssociatedCompanies", optional, type(SmallCount)},
};

// Page F. The section holds one element of its own name; what stands below
// that is tested through the parent name TonnageTax.
constexpr Decl kTonnageTaxRows[] = {
    {0, "TonnageTax", optional, sequence},
    {1, "TonnageTax", once, noTest},
    {2, "Information", notCounted, sequence},
    {3, "TonnageGroup", optional, sequence},
    {4, "GroupElection", once, type(YesNoFlag)},
    {4, "Name", optional, type(NameText, 2, 56)},
    {3, "TrainingCertificate", once, type(YesNoFlag)},
    {3, "CompanyMetCharteredInLimit", once, type(YesNoNaFlag)},
    {3, "GroupMetCharteredInLimit", optional, type(YesNoNaFlag)},
    {3, "NotRegistered", once, type(YesNoNaFlag)},
    {3, "Flagging", optional, type(YesNoFlag)},
    {3, "OffshoreActivities", once, type(YesNoFlag)},
    {2, "OffshoreTrainingAllowance", notCounted, sequence},
    {3, "OffsetAgainstCorpTax", optional, type(PositiveAmount)},
    {3, "CarriedForward", optional, type(PositiveAmount)},
    {2, "RelevantShippingProfits", notCounted, sequence},
    {3, "Other", optional, choice},
    {4, "Profit", alternative, type(PoundsAmount)},
    {4, "Loss", alternative, type(PositivePounds)},
    {3, "DisposalOfAssets", optional, choice},
    {4, "Profit", alternative, type(PoundsAmount)},
    {4, "Loss", alternative, type(PositivePounds)},
    {3, "GrossDividends", optional, type(PoundsAmount)},
    {2, "QualifyingShips", notCounted, sequence},
    {3, "Ship", occurs(1, 200), sequence},
    {4, "Name", once, type(NameText, 2, 56)},
    {4, "IMOnumber", once, type(ShipNumber)},
    {4, "InterestInShip", once, type(ShipInterest)},
    {4, "GrossTonnage", once, type(WholeNumber)},
    {4, "NetTonnage", once, type(TonnageNumber)},
    {4, "NumberDays", once, type(DayCount)},
    {4, "Profits", once, type(PenceAmount)},
    {4, "Flagged", once, type(YesNoFlag)},
    {4, "FirstTime", once, type(YesNoFlag)},
    {3, "Total", once, type(PoundsAmount)},
};

// Page H.
constexpr Decl kCrossBorderRoyaltiesRows[] = {
    {0, "CrossBorderRoyalties", optional, sequence},
    {1, "Royalties", occurs(1, unbounded), noTest},
    {2, "RecipientName", notCounted, type(NameText, 2, 56)},
    {2, "AddressOfRecipient", notCounted, sequence},
    {3, "Line", occurs(2, 3), noTest},
    {3, "AdditionalLine", optional, noTest},
    {3, "PostCode", optional, noTest},
    {2, "PaymentType", notCounted, type(NameText, 2, 56)},
    {2, "Amount", notCounted, type(PositivePounds)},
    {2, "RoyaltiesAgreement", notCounted, choice},
    {3, "InterestAndRoyalties", alternative, type(NameText, 2, 56)},
    {3, "DoubleTaxationAgreement", alternative, type(NameText, 2, 56)},
    {2, "DeductionRate", notCounted, type(PercentRate)},
    {2, "DeductionAmount", notCounted, type(PenceAmount).then(maxInclusive("99999999999.99"))},
    {2, "AdditionalNotes", notCounted, type(NameText, 2, 56)},
};

// Page I. A Trade accepts Profits and Losses without counting them.
constexpr Decl kRingFenceTradeRows[] = {
    {0, "RingFenceTrade", optional, sequence},
    {1, "CalculationOfSupplementaryCharge", once, noTest},
    {2, "Trade", notCounted, sequence},
    {3, "Amount", once, type(PoundsAmount)},
    {3, "Profits", accepted, type(YesFlag)},
    {3, "Losses", accepted, type(YesFlag)},
    {2, "DisallowedFinancingCosts", notCounted, sequence},
    {3, "RelatedToCompany", optional, type(PositivePounds)},
    {3, "RelatedToLossRelief", optional, type(PositivePounds)},
    {3, "Total", once, type(PoundsAmount)},
    {2, "Profits", notCounted, type(PoundsAmount)},
    {2, "DecommissioningAdjustment", notCounted, type(PoundsAmount)},
    {2, "RevisedProfits", notCounted, type(PoundsAmount)},
    {2, "MinusLosses", notCounted, type(PositivePounds)},
    {2, "DecommissioningReduction", notCounted, type(PoundsAmount)},
    {2, "FieldAllowance", notCounted, type(PoundsAmount)},
    {2, "NetProfits", notCounted, type(PoundsAmount)},
    {2, "Tax", notCounted, type(PositiveAmount)},
    {1, "LossesArising", optional, noTest},
    {1, "NetRingFenceTrade", optional, noTest},
    {2, "RingFenceCorpTaxIncluded", notCounted, type(PenceAmount)},
    {2, "SupplementaryChargeTax", notCounted, type(PenceAmount)},
};

// Page J.
constexpr Decl kTaxAvoidanceSchemesRows[] = {
    {0, "TaxAvoidanceSchemes", optional, sequence},
    {1, "AvoidanceSchemes", occurs(1, 10), noTest},
    {2, "ReferenceNumber", notCounted, type(SchemeNumber)},
    {2, "AccountingPeriod", notCounted, type(DateText)},
};

constexpr Decl kWelshReturnRows[] = {
    {0, "WelshReturn", optional, type(YesFlag)},
};
constexpr Decl kJointAccountsRows[] = {
    {0, "JointAccounts", optional, type(YesFlag)},
};

// The attached files are placed by the envelope and only their shape is
// looked at. Instance and Extension stand under both Accounts and
// Computation, one row for each pair; the schema declares Attachment twice.
constexpr Decl kAttachedFilesRows[] = {
    {0, "AttachedFiles", optional, noCheck},
    {1, "XBRLsubmission", notCounted, noCheck},
    {2, "Accounts", notCounted, noTest},
    {3, "Instance", notCounted, noTest},
    {4, "EncodedInlineXBRLDocument", notCounted, noCheck},
    {4, "RawXBRLDocument", notCounted, noChildren},
    {4, "InlineXBRLDocument", notCounted, noChildren},
    {3, "Extension", notCounted, noTest},
    {4, "Taxonomy", notCounted, noChildren},
    {4, "Linkbase", notCounted, noChildren},
    {2, "Computation", notCounted, noTest},
    {3, "Instance", notCounted, noTest},
    {4, "EncodedInlineXBRLDocument", notCounted, shared},
    {4, "RawXBRLDocument", notCounted, shared},
    {4, "InlineXBRLDocument", notCounted, shared},
    {3, "Extension", notCounted, noTest},
    {4, "Taxonomy", notCounted, shared},
    {4, "Linkbase", notCounted, shared},
    {1, "Attachment", notCounted, noCheck},
    {1, "Attachment", notCounted, noCheck},
};

}  // namespace

extern const Table kLoansByCloseCompanies{"CompanyTaxReturn", kLoansByCloseCompaniesRows};
extern const Table kControlledForeignCompanies{"CompanyTaxReturn", kControlledForeignCompaniesRows};
extern const Table kGroupAndConsortium{"CompanyTaxReturn", kGroupAndConsortiumRows};
extern const Table kInsurance{"CompanyTaxReturn", kInsuranceRows};
extern const Table kCharity{"CompanyTaxReturn", kCharityRows};
extern const Table kTonnageTax{"CompanyTaxReturn", kTonnageTaxRows};
extern const Table kCrossBorderRoyalties{"CompanyTaxReturn", kCrossBorderRoyaltiesRows};
extern const Table kRingFenceTrade{"CompanyTaxReturn", kRingFenceTradeRows};
extern const Table kTaxAvoidanceSchemes{"CompanyTaxReturn", kTaxAvoidanceSchemesRows};
extern const Table kWelshReturn{"CompanyTaxReturn", kWelshReturnRows};
extern const Table kJointAccounts{"CompanyTaxReturn", kJointAccountsRows};
extern const Table kAttachedFiles{"CompanyTaxReturn", kAttachedFilesRows};

}  // namespace schemamodel
