// The rules on the supplementary pages for loans to participators (CT600A),
// controlled foreign companies (CT600B) and group and consortium relief
// (CT600C).
#include "rules/catalogue/catalogue.h"

using namespace ruledsl;

namespace {

// The notices of consent that a claim or a surrender says are attached come
// as a PDF, and the return can say no more of a PDF than whether it is the
// accounts, the computations or something else. A user attaching the notices
// expects any PDF that is not declared (by its Type or its file name) to be
// the accounts or the computations to count; only a return with no such PDF
// is told to attach one.
Num otherPdfs(const char* attachments) { return pdfs(attachments, kPdfOther | kPdfUntyped); }

}  // namespace

// Groups 107 to 146.
RuleGroups PagesAtoCGroups() {
    return {
        {107, "~/LoansByCloseCompanies/LoansInformation/TotalLoans", {
            {"9401", "Box A15 must equal the sum of all 'Amount of loan' amounts in column A10B",
             abs(num(".") - sum("../Loan/AmountOfLoan")) >= 0.001},
        }},
        {108, "~/LoansByCloseCompanies/LoansInformation/TaxChargeable", {
            {"9402", "Box A20 must equal Box A15 multiplied by 25%",
             abs(num(".") - num("../TotalLoans") * 0.25) >= 0.001},
        }},
        {109, "~/LoansByCloseCompanies/LoansInformation", {
            {"9400", "The maximum number of loans has been exceeded in Part 1",
             count("Loan") > 999},
        }},
        {110, "~/LoansByCloseCompanies/ReliefEarlierThan/Loan/Date", {
            {"9406", "The 'Date of repayment, release or write-off' in Box A25D must be less than nine months and one day after the period To date in Box 35. ",
             dayno("../../../../CompanyInformation/PeriodCovered/To") <= dayno(plus(".", "-P9M1D"))},
            {"9429", "The 'Date of repayment, release or write-off' in Box A25D must be after the period To date in Box 35.",
             dayno(".") <= dayno("../../../../CompanyInformation/PeriodCovered/To")},
        }},
        {111, "~/LoansByCloseCompanies/ReliefEarlierThan/Loan", {
            {"9404", "At least one of 'Amount repaid/return repayments made' in Box A25B or 'Amount released or written off' in Box A25C must be greater than 0 (zero).",
             sum("AmountRepaid") <= 0 && sum("AmountReleasedOrWrittenOff") <= 0},
            {"9405", "If 'Part 2: Relief for return payments and/or amounts repaid, released or written off within 9 months' is completed then 'Part 1: Outstanding loans and arrangements' made must be completed",
             num("../../LoansInformation") == 0},
        }},
        {112, "~/LoansByCloseCompanies/ReliefEarlierThan/TotalAmountRepaid", {
            {"9407", "Box A30 must equal the sum of all 'Amounts repaid/return repayments made' in Boxes A25B",
             abs(num(".") - sum("../Loan/AmountRepaid")) >= 0.001},
        }},
        {113, "~/LoansByCloseCompanies/ReliefEarlierThan/TotalAmountReleasedOrWritten", {
            {"9408", "Box A35 must equal the sum of all 'Amounts released or written off' made in Boxes A25C",
             abs(num(".") - sum("../Loan/AmountReleasedOrWrittenOff")) >= 0.001},
        }},
        {114, "~/LoansByCloseCompanies/ReliefEarlierThan/TotalLoans", {
            {"9409", "Box A40 must equal the sum of Boxes A30 and A35",
             abs(num(".") - (sum("../TotalAmountReleasedOrWritten") + sum("../TotalAmountRepaid"))) >= 0.001},
        }},
        {115, "~/LoansByCloseCompanies/ReliefEarlierThan/ReliefDue", {
            {"9411", "Box A45 must not be greater than Box A20",
             sum("../../LoansInformation/TaxChargeable") < num(".")},
            {"9410", "Box A45 must equal Box A40 multiplied by 25%",
             abs(num(".") - num("../TotalLoans") * 0.25) >= 0.001},
        }},
        {116, "~/LoansByCloseCompanies/ReliefEarlierThan", {
            {"9403", "The maximum number of loans has been exceeded in Part 2",
             count("Loan") > 999},
        }},
        {117, "~/LoansByCloseCompanies/LoanLaterReliefNow/Loan/Date", {
            {"9430", "The 'Date of repayment, release or write-off' in Box A50D must be at least nine months after the period To date in Box 35.",
             dayno(plus(".", "-P9M1D")) < dayno("../../../../CompanyInformation/PeriodCovered/To")},
            {"9431", "The 'Date of repayment, release or write-off' in Box A50D cannot be later than today",
             dayno(today()) < dayno(".")},
        }},
        {118, "~/LoansByCloseCompanies/LoanLaterReliefNow/Loan", {
            {"9419", "At least one of 'Amount repaid/return repayments made' in Box A50B or 'Amount released or written off' in Box A50C must be greater than 0 (zero).",
             sum("AmountRepaid") <= 0 && sum("AmountReleasedOrWrittenOff") <= 0},
        }},
        {119, "~/LoansByCloseCompanies/LoanLaterReliefNow/TotalAmountRepaid", {
            {"9421", "Box A55 must equal the sum of all 'Amounts repaid/return repayments made' in Boxes A50B",
             abs(num(".") - sum("../Loan/AmountRepaid")) >= 0.001},
        }},
        {120, "~/LoansByCloseCompanies/LoanLaterReliefNow/TotalAmountReleasedOrWritten", {
            {"9422", "Box A60 must equal the sum of all 'Amounts released or written off' made in Boxes A50C",
             abs(num(".") - sum("../Loan/AmountReleasedOrWrittenOff")) >= 0.001},
        }},
        {121, "~/LoansByCloseCompanies/LoanLaterReliefNow/TotalLoans", {
            {"9423", "Box A65 must equal the sum of Boxes A55 and A60",
             abs(num(".") - (sum("../TotalAmountReleasedOrWritten") + sum("../TotalAmountRepaid"))) >= 0.001},
        }},
        {122, "~/LoansByCloseCompanies/LoanLaterReliefNow/ReliefDue", {
            {"9425", "Box A70 must not be greater than Box A20",
             sum("../../LoansInformation/TaxChargeable") < num(".")},
            {"9426", "If Box A70 is completed then Box 485 must be completed",
             str("../../../CalculationOfTaxOutstandingOrOverpaid/CT600AreliefDue") != "yes"},
            {"9424", "Box A70 must equal Box A65 multiplied by 25%",
             abs(num(".") - num("../TotalLoans") * 0.25) >= 0.001},
        }},
        {123, "~/LoansByCloseCompanies/LoanLaterReliefNow", {
            {"9418", "The maximum number of loans has been exceeded in Part 3",
             count("Loan") > 999},
        }},
        {124, "~/LoansByCloseCompanies/TaxPayable", {
            {"9427", "Box A80 must equal Box A20 minus (the sum of Boxes A45 and A70)",
             abs(num(".") - (sum("../LoansInformation/TaxChargeable") -
                             (sum("../LoanLaterReliefNow/ReliefDue") + sum("../ReliefEarlierThan/ReliefDue")))) >= 0.001},
            {"9428", "If Box A80 is completed then Box 480 must be completed and equal to Box A80",
             num("../../CalculationOfTaxOutstandingOrOverpaid/LoansToParticipators") == 0 ||
                 !same("../../CalculationOfTaxOutstandingOrOverpaid/LoansToParticipators", ".")},
        }},
        {125, "~/LoansByCloseCompanies", {
            {"9305", "Supplementary form CT600A is present so Box 95 must be completed",
             str("../ReturnInfoSummary/SupplementaryPages/CT600A") != "yes"},
        }},
        {126, "~/ControlledForeignCompanies/CompanyInformation/CFCTaxCalculation/CFCchargeDue", {
            {"9455", "CFC charge due' in Box B5J must equal 'Tax on chargeable profits' in Box B5F minus (the sum of 'Creditable tax' in Box B5G, 'Reliefs in terms of tax' in Box B5H and 'ACT as restricted' in Box B5I)",
             abs(num(".") - (num("../TaxOnChargeable") -
                             (sum("../ACTrestricted") + sum("../ReliefsInTaxTerms") + sum("../CreditableTax")))) >= 0.001},
        }},
        {127, "~/ControlledForeignCompanies/TotalTaxChargeable", {
            {"9456", "Box B10 must equal the sum of 'Tax on chargeable profits' in Boxes B5F",
             abs(num(".") - sum("../CompanyInformation/CFCTaxCalculation/TaxOnChargeable")) >= 0.001},
        }},
        {128, "~/ControlledForeignCompanies/TotalCreditableTax", {
            {"9457", "Box B15 must equal the sum of 'Creditable tax' in Boxes B5G",
             abs(num(".") - sum("../CompanyInformation/CFCTaxCalculation/CreditableTax")) >= 0.001},
        }},
        {129, "~/ControlledForeignCompanies/TotalReliefInTaxTerms", {
            {"9458", "Box B20 must equal the sum of 'Reliefs in terms of tax' in Boxes B5H",
             abs(num(".") - sum("../CompanyInformation/CFCTaxCalculation/ReliefsInTaxTerms")) >= 0.001},
        }},
        {130, "~/ControlledForeignCompanies/TotalACTrestricted", {
            {"9459", "Box B25 must equal the sum of 'ACT as restricted' in Boxes B5I",
             abs(num(".") - sum("../CompanyInformation/CFCTaxCalculation/ACTrestricted")) >= 0.001},
        }},
        {131, "~/ControlledForeignCompanies/TotalCFCtaxChargeble", {
            {"9463", "Box B30 must equal the sum of 'CFC charge due' amounts in Boxes B5J",
             abs(num(".") - sum("../CompanyInformation/CFCTaxCalculation/CFCchargeDue")) >= 0.001},
            {"9465", "If Box B30 is completed then Box 490 must be completed and equal to Box B30",
             num("../../CalculationOfTaxOutstandingOrOverpaid/CFCtaxPayable") == 0 ||
                 abs(num(".") - num("../../CalculationOfTaxOutstandingOrOverpaid/CFCtaxPayable")) >= 0.001},
        }},
        {132, "~/ControlledForeignCompanies", {
            {"9450", "Box B10 must be completed if the sum of 'Tax on chargeable profits' in Boxes B5F is greater than 0 (zero)",
             sum("CompanyInformation/CFCTaxCalculation/TaxOnChargeable") != 0 && !filled("TotalTaxChargeable")},
            {"9451", "Box B15 must be completed if 'Creditable tax' in Box B5G is completed",
             filled("CompanyInformation/CFCTaxCalculation/CreditableTax") && !filled("TotalCreditableTax")},
            {"9452", "Box B20 must be completed if 'Reliefs in terms of tax' in Box B5H is completed",
             filled("CompanyInformation/CFCTaxCalculation/ReliefsInTaxTerms") && !filled("TotalReliefInTaxTerms")},
            {"9453", "Box B25 must be completed if 'ACT as restricted' in Box B5I is completed",
             filled("CompanyInformation/CFCTaxCalculation/ACTrestricted") && !filled("TotalACTrestricted")},
            {"9454", "Box B30 must be completed if any of 'Tax on chargeable profits' in Box B5F, 'Creditable tax' in Box B5G, 'Reliefs in terms of tax' in Box B5H, 'ACT as restricted' in Box B5I or 'CFC charge due' in Box B5J are completed",
             filled("CompanyInformation/CFCTaxCalculation") && !filled("TotalCFCtaxChargeble")},
            {"9306", "Supplementary form CT600B is present so Box 100 must be completed",
             str("../ReturnInfoSummary/SupplementaryPages/CT600B") != "yes"},
        }},
        {133, "~/GroupAndConsortium/ClaimToGroupRelief/CompanyInformation/Company/AccountingPeriod", {
            {"9502", "The 'Accounting period From date of surrendering company' in Box C5B must be on or before the return period To date in Box 35",
             dayno("../../../../../CompanyInformation/PeriodCovered/To") < dayno("From")},
            {"9503", "The 'Accounting period of surrendering company' in Box C5B must not be longer than 12 months.",
             ymd(plus("To", "-P12M")) >= ymd("From")},
            {"9504", "The 'Accounting period of surrendering company' To date must not be before the From date in Box C5B",
             dayno("From") > dayno("To")},
            {"9505", "The 'Accounting period of surrendering company' To date in Box C5B must be on or after the return period From date in Box 30",
             dayno("../../../../../CompanyInformation/PeriodCovered/From") > dayno("To")},
        }},
        {134, "~/GroupAndConsortium/ClaimToGroupRelief/CompanyInformation/TotalAmountClaimed", {
            {"9506", "If Box C10 is completed then Box 310 must be completed and equal to Box C10",
             !same("../../../../CompanyTaxCalculation/ChargesAndReliefs/GroupRelief", ".")},
            {"9507", "Box C10 must equal the sum of 'Claims to group relief Amount Claimed' in Boxes CD5",
             sum("../Company/AmountClaimed") != num(".")},
        }},
        {135, "~/GroupAndConsortium/ClaimToGroupRelief/ClaimAuthorisation/CopyOfNoticesOfConsentAttached", {
            // Any PDF not declared to be the accounts or the computations counts.
            {"9510", "If 'Copy of notices of consent' is completed then a PDF attachment of type 'Other' must be included",
             otherPdfs("../../../../AttachedFiles/Attachment") == 0},
            {"9973", "If 'Copy of notices of consent' is completed then Box 310 must be greater than 0 (zero)",
             sum("../../../../CompanyTaxCalculation/ChargesAndReliefs/GroupRelief") <= 0},
        }},
        {136, "~/GroupAndConsortium/ClaimToGroupRelief", {
            {"9518", "The Claim authorisation section must be completed if the return type is New and there is a claim to group relief",
             filled(".") && !(val("ClaimAuthorisation") || false) && str("../../@ReturnType") == "new"},
        }},
        {137, "~/GroupAndConsortium/SurrenderedGroupRelief/TotalSurrender", {
            {"9511", "Box C80 must equal the sum of Boxes C45, C50, C55, C60, C65, C70 and C75",
             abs(num(".") - (sum("../ExcessManagementExpenses") + sum("../ExcessLosses") + sum("../ExcessDonations") +
                             sum("../NonTradingLossesOnIntangibleFixedAssets") + sum("../NonTradingDeficit") +
                             sum("../ExcessNonTrading") + sum("../TradingLosses"))) >= 0.001},
        }},
        {138, "~/GroupAndConsortium/SurrenderedGroupRelief/SurrenderInformation/Company/AccountingPeriod", {
            {"9513", "The 'Accounting period of claimant company' From date in Box C85B must be on or before the return period To date in Box 35",
             dayno("../../../../../CompanyInformation/PeriodCovered/To") < dayno("From")},
            {"9514", "The 'Accounting period of claimant company' in Box C85B must not be longer than 12 months.",
             ymd(plus("To", "-P12M")) >= ymd("From")},
            {"9515", "The 'Accounting period of claimant company' To date must not be before the From date in Box C85B",
             dayno("From") > dayno("To")},
            {"9516", "The 'Accounting period of claimant company' To date in Box C85B must be on or after the return period From date in Box 30",
             dayno("../../../../../CompanyInformation/PeriodCovered/From") > dayno("To")},
        }},
        {139, "~/GroupAndConsortium/SurrenderedGroupRelief/SurrenderInformation/AmountSurrenderedTotal", {
            {"9517", "Box C90 must equal the sum of all 'Amount surrendered' in Boxes C85D",
             sum("../Company/AmountSurrendered") != num(".")},
        }},
        {140, "~/GroupAndConsortium/SurrenderedGroupRelief/ConsentToSurrender/ConsentOptions/SimplifiedArrangementInForce", {
            {"9974", "If 'Simplified arrangement in force' is completed then Box C90 must be greater than 0 (zero)",
             num("../../../SurrenderInformation/AmountSurrenderedTotal") <= 0},
        }},
        {141, "~/GroupAndConsortium/SurrenderedGroupRelief/ConsentToSurrender/ConsentOptions/NoticeOfConsentCompleted", {
            {"9519", "Amounts surrendered as group relief Declaration must be completed if Notice of consent is completed",
             num("../../Declaration") == 0},
            {"9961", "Notice of consent completed' must not be Yes if 'Copy of notices of consent attached' is Yes",
             filled("../CopyOfNoticesOfConsentAttached")},
            {"9975", "If 'Notice of consent completed' is Yes then Box C90 must be greater than 0 (zero)",
             num("../../../SurrenderInformation/AmountSurrenderedTotal") <= 0},
        }},
        {142, "~/GroupAndConsortium/SurrenderedGroupRelief/ConsentToSurrender/ConsentOptions/CopyOfNoticesOfConsentAttached", {
            {"9521", "Copies of notices of consent' must not be completed if 'Amounts surrendered as group relief Declaration' is completed.",
             num("../../Declaration") != 0 && num(".") != 0},
            // Any PDF not declared to be the accounts or the computations counts.
            {"9522", "If Amounts surrendered as group relief 'Copies of notices of consent' is Yes then a PDF attachment of type 'Other' must be included",
             otherPdfs("../../../../../AttachedFiles/Attachment") == 0},
            {"9976", "If 'Copy of notices of consent' is Yes then Box 90 must be greater than 0 (zero)",
             num("../../../SurrenderInformation/AmountSurrenderedTotal") <= 0},
        }},
        {143, "~/GroupAndConsortium/SurrenderedGroupRelief/ConsentToSurrender/Declaration/CompanyName", {
            {"9523", "The company name in Box C95 must equal the company name in Box 1",
             !same("../../../../../CompanyInformation/CompanyName", ".")},
        }},
        {144, "~/GroupAndConsortium/SurrenderedGroupRelief/ConsentToSurrender/Declaration/TaxReference", {
            {"9543", "The tax reference in Box C100 must equal the tax reference in Box 4",
             !same(".", "../../../../../CompanyInformation/Reference")},
        }},
        {145, "~/GroupAndConsortium/SurrenderedGroupRelief/ConsentToSurrender/Declaration/AccountingPeriod", {
            {"9524", "Details of company surrendering relief Accounting period in Boxes C105 and C110 must match the Accounting period of the return in Boxes 30 and 35",
             !same("From", "../../../../../CompanyInformation/PeriodCovered/From") ||
                 !same("To", "../../../../../CompanyInformation/PeriodCovered/To")},
        }},
        {146, "~/GroupAndConsortium", {
            {"9500", "At least one of 'Part 1: Claims to group relief' and 'Part 2: Amounts surrendered as group relief' must be completed",
             !filled("ClaimToGroupRelief") && !filled("SurrenderedGroupRelief")},
            {"9307", "Supplementary form CT600C is present so Box 105 must be completed",
             str("../ReturnInfoSummary/SupplementaryPages/CT600C") != "yes"},
        }},
    };
}
