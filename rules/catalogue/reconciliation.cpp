// The rules that follow the return from the net tax to what is owed or
// repaid: the tax outstanding or overpaid, the reconciliation with credits and
// tax already paid, enhanced expenditure, losses available for surrender, and
// the repayments asked for.
#include "rules/catalogue/catalogue.h"

using namespace ruledsl;

namespace {

// A box that is a difference floored at zero: while x is above -0.001 the
// box must be x within 0.001; at or below it the box must be exactly 0.
Bool notFlooredAtZero(const Num& x) {
    return (x > -0.001 && abs(num(".") - x) >= 0.001) || (x <= -0.001 && num(".") != 0);
}

// A box that may not take a negative result: a result at or below -0.001
// reports whatever the box holds; otherwise the box must be x within 0.001.
Bool notNonNegativeDifference(const Num& x) { return x <= -0.001 || abs(num(".") - x) >= 0.001; }

// The "Maximum available for surrender as group relief" of one kind of loss,
// held against the amount arising beside it.
RuleGroup surrenderMaximum(int number, const char* select) {
    return {number, select, {
        {"9952", "The 'Maximum available for surrender as group relief' is completed so the amount 'Arising' must be greater than zero.",
         sum("../Arising") <= 0},
        {"9953", "The 'Maximum available for surrender as group relief' must not be greater than the amount 'Arising'.",
         sum("../Arising") < num(".")},
    }};
}

}  // namespace

// Groups 68 to 106.
RuleGroups ReconciliationGroups() {
    // Where x (rule 9347): Box 510 less Box 515.
    const Num taxAfterIncomeTax = sum("../TaxChargeable") - sum("../IncomeTax/DeductedIncomeTax");
    // Where x (rule 9348): Boxes 440, 480, 500 and 505 less Boxes 470 and 515.
    const Num taxWithoutBox510 = sum("../SupplementaryCharge") + sum("../CFCandBankLevyTotal") +
                                 sum("../LoansToParticipators") +
                                 num("../../CompanyTaxCalculation/NetCorporationTaxChargeable") -
                                 (sum("../../CompanyTaxCalculation/TaxReliefsAndDeductions/TotalReliefsAndDeductions") +
                                  sum("../IncomeTax/DeductedIncomeTax"));
    // Where x (rules 9261, 9263, 9268): each credit payable is what is left of
    // the credits once Box 525 and the credits paid before it are met.
    const Num taxPayable = num("../../CalculationOfTaxOutstandingOrOverpaid/TaxPayable");
    const Num surplusCredits = sum("../ResearchAndDevelopmentVaccineOrCreativeTaxCredit") - taxPayable;
    const Num landOrLifeLeft = sum("../LandOrLifeCredit") + sum("../ResearchAndDevelopmentVaccineOrCreativeTaxCredit") -
                               (sum("../SurplusResearchAndDevelopmentCreditsOrCreativeCreditPayable") + taxPayable);
    const Num firstYearLeft = sum("../LandOrLifeCredit") + sum("../ResearchAndDevelopmentVaccineOrCreativeTaxCredit") +
                              sum("../CapitalAllowancesFirstYearCredit") -
                              (sum("../LandOrLifeCreditPayable") +
                               sum("../SurplusResearchAndDevelopmentCreditsOrCreativeCreditPayable") + taxPayable);
    // Where x (rules 9276, 9277): Box 525 against the credits and tax already paid.
    const Num paidAndCredits = sum("../../TaxAlreadyPaid") + sum("../../CapitalAllowancesFirstYearCredit") +
                               sum("../../LandOrLifeCredit") +
                               sum("../../ResearchAndDevelopmentVaccineOrCreativeTaxCredit");
    const Num boxTaxPayable = num("../../../CalculationOfTaxOutstandingOrOverpaid/TaxPayable");

    return {
        {68, "~/CalculationOfTaxOutstandingOrOverpaid/NetCorporationTaxLiability", {
            {"9248", "Box 475 must equal Box 440 minus Box 470",
             abs(num(".") - (num("../../CompanyTaxCalculation/NetCorporationTaxChargeable") -
                             sum("../../CompanyTaxCalculation/TaxReliefsAndDeductions/TotalReliefsAndDeductions"))) >= 0.001},
            {"9339", "If Box 475 is completed then Box 510 must equal (the sum of Boxes 475, 480, 500 and 505)",
             filled("../TaxChargeable") &&
                 abs(sum("../TaxChargeable") - (sum("../SupplementaryCharge") + sum("../CFCandBankLevyTotal") +
                                                sum("../LoansToParticipators") + num("."))) >= 0.001},
        }},
        {69, "~/CalculationOfTaxOutstandingOrOverpaid/LoansToParticipators", {
            {"9252", "If return type is New then Box 480 can only be completed if Box 95 is completed",
             str("../../@ReturnType") == "new" && str("../../ReturnInfoSummary/SupplementaryPages/CT600A") != "yes" &&
                 num(".") != 0},
        }},
        {70, "~/CalculationOfTaxOutstandingOrOverpaid/CT600AreliefDue", {
            {"9249", "Box 480 must be completed if Box 485 is completed",
             num("../LoansToParticipators") == 0},
            {"9250", "Box 485 can only be completed if Box A70 is completed",
             str("../../ReturnInfoSummary/SupplementaryPages/CT600A") == "yes" &&
                 !filled("../../LoansByCloseCompanies/LoanLaterReliefNow/ReliefDue") && str(".") == "yes"},
            {"9251", "If  return type is New then Box 485 can only be completed if Box 95 is completed",
             str("../../@ReturnType") == "new" && str("../../ReturnInfoSummary/SupplementaryPages/CT600A") != "yes" &&
                 filled(".")},
        }},
        {71, "~/CalculationOfTaxOutstandingOrOverpaid/CFCtaxPayable", {
            {"9353", "Box 490 must not be completed if the return type is New and Box 100 is not completed",
             str("../../@ReturnType") == "new" && str("../../ReturnInfoSummary/SupplementaryPages/CT600B") != "yes"},
        }},
        {72, "~/CalculationOfTaxOutstandingOrOverpaid/CFCandBankLevyTotal", {
            {"9354", "Box 500 must equal the sum of Boxes 490 and 495",
             abs(num(".") - (sum("../BankLevyPayable") + sum("../CFCtaxPayable"))) >= 0.001},
        }},
        {73, "~/CalculationOfTaxOutstandingOrOverpaid/SupplementaryCharge", {
            {"9254", "If return type is New then Box 505 can only be completed if Box 135 is completed",
             str("../../@ReturnType") == "new" && str("../../ReturnInfoSummary/SupplementaryPages/CT600I") != "yes" &&
                 num(".") != 0},
        }},
        {74, "~/CalculationOfTaxOutstandingOrOverpaid/TaxChargeable", {
            {"9344", "If Box 475 is not completed then Box 510 must equal (the sum of Boxes 440, 480, 500 and 505) minus Box 470 ",
             abs(num(".") - (num("../../CompanyTaxCalculation/NetCorporationTaxChargeable") -
                             sum("../../CompanyTaxCalculation/TaxReliefsAndDeductions/TotalReliefsAndDeductions") +
                             sum("../SupplementaryCharge") + sum("../CFCandBankLevyTotal") +
                             sum("../LoansToParticipators"))) >= 0.001 &&
                 !(val("../NetCorporationTaxLiability") || false)},
            {"9345", "If Box 510 is completed then Box 520 must equal Box 515 minus Box 510",
             filled("../IncomeTax/TaxRepayable") &&
                 abs(sum("../IncomeTax/TaxRepayable") - (sum("../IncomeTax/DeductedIncomeTax") - num("."))) >= 0.001},
        }},
        {75, "~/CalculationOfTaxOutstandingOrOverpaid/IncomeTax/TaxRepayable", {
            {"9346", "If Box 510 is not completed then Box 520 must equal Box 515 plus Box 470 minus (the sum of Boxes 440, 480, 500 and 505)",
             abs(num(".") - (sum("../../../CompanyTaxCalculation/TaxReliefsAndDeductions/TotalReliefsAndDeductions") +
                             sum("../DeductedIncomeTax") -
                             (sum("../../SupplementaryCharge") + sum("../../CFCandBankLevyTotal") +
                              sum("../../LoansToParticipators") +
                              num("../../../CompanyTaxCalculation/NetCorporationTaxChargeable")))) >= 0.001 &&
                 !(val("../../TaxChargeable") || false)},
        }},
        {76, "~/CalculationOfTaxOutstandingOrOverpaid/TaxPayable", {
            {"9347", "If Box 510 is completed then Box 525 must equal Box 510 minus Box 515. If the result is negative please enter 0 (zero).",
             filled("../TaxChargeable") && notFlooredAtZero(taxAfterIncomeTax)},
            {"9348", "If Box 510 is completed then Box 525 must equal (the sum of Boxes 440, 480, 500 and 505) minus (the sum of Boxes 515 and Box 470 ). If the result is negative please enter 0 (zero).",
             !(val("../TaxChargeable") || false) && notFlooredAtZero(taxWithoutBox510)},
        }},
        {77, "~/CalculationOfTaxOutstandingOrOverpaid", {
            {"9351", "Box 500 must be completed if Box 490 is greater than 0 (zero)",
             sum("CFCtaxPayable") > 0 && !filled("CFCandBankLevyTotal")},
            {"9352", "Box 500 must be completed if Box 495 is greater than 0 (zero)",
             sum("BankLevyPayable") > 0 && !filled("CFCandBankLevyTotal")},
            {"9340", "If Box 475 is completed then Box 510 must be completed",
             filled("NetCorporationTaxLiability") && !filled("TaxChargeable")},
            {"9341", "If Box 480 is completed then Box 510 must be completed",
             filled("LoansToParticipators") && !filled("TaxChargeable")},
            {"9342", "If Box 500 is completed then Box 510 must be completed",
             filled("CFCandBankLevyTotal") && !filled("TaxChargeable")},
            {"9343", "If Box 505 is completed then Box 510 must be completed",
             filled("SupplementaryCharge") && !filled("TaxChargeable")},
        }},
        {78, "~/TaxReconciliation/ResearchAndDevelopmentVaccineOrCreativeTaxCredit", {
            {"9360", "Box 545 must equal the sum of Boxes 530, 535 and 540",
             abs(num(".") - (sum("../CreativeCredit") + sum("../VaccineCredit") +
                             sum("../ResearchAndDevelopmentCredit"))) >= 0.001},
        }},
        {79, "~/TaxReconciliation/LandOrLifeCredit", {
            {"9361", "Box 560 must equal the sum of 550 and 555",
             abs(num(".") - (sum("../LifeAssuranceCompanyCredit") + sum("../LandRemediationCredit"))) >= 0.001},
        }},
        {80, "~/TaxReconciliation/SurplusResearchAndDevelopmentCreditsOrCreativeCreditPayable", {
            {"9261", "Box 570 must equal Box 545 minus Box 525. If the result is negative please enter 0 (zero).",
             notFlooredAtZero(surplusCredits)},
        }},
        {81, "~/TaxReconciliation/LandOrLifeCreditPayable", {
            {"9263", "Box 575 must equal (the sum of Boxes 545 and 560) minus (the sum of Boxes 525 and 570). If the result is negative please enter 0 (zero).",
             notFlooredAtZero(landOrLifeLeft)},
            {"9264", "Box 575 must not be greater than Box 560",
             sum("../LandOrLifeCredit") < num(".")},
        }},
        {82, "~/TaxReconciliation/CapitalAllowancesFirstYearCreditPayable", {
            {"9267", "Box 580 must not be greater than Box 565",
             sum("../CapitalAllowancesFirstYearCredit") < num(".")},
            {"9268", "Box 580 must equal (the sum of Boxes 545, 560 and 565) minus (the sum of Boxes 525, 570 and 575). If the result is negative please enter 0 (zero).",
             notFlooredAtZero(firstYearLeft)},
        }},
        {83, "~/TaxReconciliation/RingFenceCorpTaxIncluded", {
            {"9269", "If return type is New then Box 585 can only be completed if Box 135 is completed",
             str("../../@ReturnType") == "new" && str("../../ReturnInfoSummary/SupplementaryPages/CT600I") != "yes" &&
                 num(".") != 0},
            {"9270", "Box 585 must not be greater than Box 525",
             num(".") > num("../../CalculationOfTaxOutstandingOrOverpaid/TaxPayable")},
            {"9271", "If Box 585 is completed and the return type is New then Box I80 must be completed and equal to Box 585.",
             str("../../@ReturnType") == "new" &&
                 (num("../../RingFenceTrade/NetRingFenceTrade/RingFenceCorpTaxIncluded") == 0 ||
                  !same("../../RingFenceTrade/NetRingFenceTrade/RingFenceCorpTaxIncluded", "."))},
        }},
        {84, "~/TaxReconciliation/RingFenceSupplementaryChargeIncluded", {
            {"9272", "Box 590 must not be greater than Box 505",
             sum("../../CalculationOfTaxOutstandingOrOverpaid/SupplementaryCharge") < num(".")},
            {"9273", "If return type is New then Box 590 can only be completed if Box 135 is completed",
             str("../../@ReturnType") == "new" && str("../../ReturnInfoSummary/SupplementaryPages/CT600I") != "yes" &&
                 num(".") != 0},
            {"9274", "If the return type is New and Box 590 is completed then Box I85 must be completed and equal to Box 590.",
             str("../../@ReturnType") == "new" &&
                 (num("../../RingFenceTrade/NetRingFenceTrade/SupplementaryChargeTax") == 0 ||
                  !same("../../RingFenceTrade/NetRingFenceTrade/SupplementaryChargeTax", "."))},
        }},
        {85, "~/TaxReconciliation/TaxOutstandingOrOverpaid/TaxOutstanding", {
            {"9276", "Box 600 must equal Box 525 minus (the sum of Boxes 545, 560, 565 and 595). If the result is negative them Box 600 must not be completed.",
             notNonNegativeDifference(boxTaxPayable - paidAndCredits)},
        }},
        {86, "~/TaxReconciliation/TaxOutstandingOrOverpaid/TaxOverpaid", {
            {"9277", "Box 605 must equal (the sum of Boxes 545, 560, 565 and 595) minus Box 525. If the result is negative Box 605 must not be completed.",
             notNonNegativeDifference(paidAndCredits - boxTaxPayable)},
        }},
        {87, "~/TaxReconciliation/TaxOutstandingOrOverpaid", {
            {"9275", "Only one of Boxes 600 and 605 can be completed unless both are zero (0). ",
             filled("TaxOutstanding") && filled("TaxOverpaid") && (num("TaxOutstanding") != 0 || num("TaxOverpaid") != 0)},
        }},
        {88, "~/TaxReconciliation", {
            {"9355", "If Box 530 is completed then Box 545 must be completed",
             filled("ResearchAndDevelopmentCredit") && !filled("ResearchAndDevelopmentVaccineOrCreativeTaxCredit")},
            {"9356", "If Box 535 is completed then Box 545 must be completed",
             filled("VaccineCredit") && !filled("ResearchAndDevelopmentVaccineOrCreativeTaxCredit")},
            {"9357", "If Box 540 is completed then Box 545 must be completed",
             filled("CreativeCredit") && !filled("ResearchAndDevelopmentVaccineOrCreativeTaxCredit")},
            {"9358", "If Box 550 is completed then Box 560 must be completed",
             filled("LandRemediationCredit") && !filled("LandOrLifeCredit")},
            {"9359", "If Box 555 is completed then Box 560 must be completed",
             filled("LifeAssuranceCompanyCredit") && !filled("LandOrLifeCredit")},
        }},
        {89, "~/EnhancedExpenditure/SMEclaim", {
            {"9281", "Box 650 can only be completed if at least one of the boxes 670, 675 or 680 is greater than 0 (zero).",
             str(".") == "yes" && sum("../RandDAndCreativeEnhancedExpenditure") <= 0 &&
                 sum("../SMEclaimAsLargeCompany") <= 0 && sum("../VaccineResearch") <= 0},
            {"9282", "Box 650 must not be completed if Box 655 is completed",
             str("../LargeCompanyClaim") == "yes" && num(".") != 0},
        }},
        {90, "~/EnhancedExpenditure/LargeCompanyClaim", {
            {"9283", "Box 655 can only be completed if at least one of the boxes 670 or 680 is greater than 0 (zero)",
             str(".") == "yes" && sum("../RandDAndCreativeEnhancedExpenditure") <= 0 && sum("../VaccineResearch") <= 0},
            {"9284", "Box 655 must not be completed if Box 650 is completed",
             str("../SMEclaim") == "yes" && num(".") != 0},
        }},
        {91, "~/EnhancedExpenditure/RandDEnhancedExpenditure", {
            {"9364", "Box 660 must only be completed if either Box 650 or Box 655 are completed",
             str("../SMEclaim") != "yes" && str("../LargeCompanyClaim") != "yes"},
        }},
        {92, "~/EnhancedExpenditure/RandDAndCreativeEnhancedExpenditure", {
            {"9365", "Box 670 must equal the sum of Boxes 660 and 665",
             abs(num(".") - (sum("../CreativeEnhancedExpenditure") + sum("../RandDEnhancedExpenditure"))) >= 0.001},
        }},
        {93, "~/EnhancedExpenditure/SMEclaimAsLargeCompany", {
            {"9287", "Box 675 can only be completed if Box 650 is completed",
             str("../SMEclaim") != "yes"},
        }},
        {94, "~/EnhancedExpenditure/VaccineResearch", {
            {"9286", "Box 680 must only be completed if either Box 650 or Box 655 are completed",
             str("../SMEclaim") != "yes" && str("../LargeCompanyClaim") != "yes"},
        }},
        {95, "~/EnhancedExpenditure", {
            {"9362", "If Box 660 is completed then Box 670 must be completed",
             filled("RandDEnhancedExpenditure") && !filled("RandDAndCreativeEnhancedExpenditure")},
            {"9363", "If Box 665 is completed then Box 670 must be completed",
             filled("CreativeEnhancedExpenditure") && !filled("RandDAndCreativeEnhancedExpenditure")},
        }},
        surrenderMaximum(96, "~/LossesDeficitsAndExcess/AmountArising/LossesOfTradesUK/SurrenderMaximum"),
        surrenderMaximum(97, "~/LossesDeficitsAndExcess/AmountArising/Loans/SurrenderMaximum"),
        surrenderMaximum(98, "~/LossesDeficitsAndExcess/AmountArising/UKpropertyBusinessLosses/SurrenderMaximum"),
        surrenderMaximum(99, "~/LossesDeficitsAndExcess/AmountArising/NonTradingLossesIntangibles/SurrenderMaximum"),
        surrenderMaximum(100, "~/LossesDeficitsAndExcess/ExcessAmounts/ManagementExpenses/SurrenderMaximum"),
        {101, "~/OverpaymentsAndRepayments/RepaymentsForThePeriodCoveredByThisReturn/IncomeTax", {
            {"9296", "Box 870 must equal Box 520",
             sum("../../../CalculationOfTaxOutstandingOrOverpaid/IncomeTax/TaxRepayable") != num(".")},
        }},
        {102, "~/OverpaymentsAndRepayments/RepaymentsForThePeriodCoveredByThisReturn/CreativeCredit", {
            {"9300", "Box 885 must not be greater than Box 570",
             sum("../../../TaxReconciliation/SurplusResearchAndDevelopmentCreditsOrCreativeCreditPayable") < num(".")},
        }},
        {103, "~/OverpaymentsAndRepayments/RepaymentsForThePeriodCoveredByThisReturn/LandRemediationCredit", {
            {"9301", "Box 890 must equal Box 575",
             sum("../../../TaxReconciliation/LandOrLifeCreditPayable") != num(".")},
        }},
        {104, "~/OverpaymentsAndRepayments/RepaymentsForThePeriodCoveredByThisReturn/PayableCapitalAllowancesFirstYearCredit", {
            {"9302", "Box 895 must equal Box 580",
             sum("../../../TaxReconciliation/CapitalAllowancesFirstYearCreditPayable") != num(".")},
        }},
        {105, "~/OverpaymentsAndRepayments/Surrender/JointNotice/Attached", {
            // The first attachment's value is its base64 body, whose length makes
            // it a number other than 0: any attached file satisfies the rule.
            {"9303", "You must attach the Joint Notice if Box 905 is completed",
             num("../../../../AttachedFiles/Attachment") == 0},
        }},
        {106, "~/OverpaymentsAndRepayments/Surrender/StopUntilNotice", {
            {"9304", "Box 915 must not be greater than Box 900",
             num(".") > num("../Amount")},
        }},
    };
}
