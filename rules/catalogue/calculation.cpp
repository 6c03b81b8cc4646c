// The rules on CompanyTaxCalculation: income, gains, deductions and reliefs,
// charges, chargeable profits, the tax of each financial year and the reliefs
// against it. Most are one line of the form's arithmetic held to its total.
#include "rules/catalogue/catalogue.h"

using namespace ruledsl;

// Groups 21 to 67.
RuleGroups CalculationGroups() {
    // Where E (rule 9198): the 31 March that ends financial year one, from
    // the Year it stands on. A period that ends before it begins has a span
    // of 0 or less; the division then gives 0 (or a negative share) and the
    // run goes on, with 9105 telling the user what is wrong.
    const Str E = concat(num(".") + 1, "-03-31");
    return {
        {21, "~/CompanyTaxCalculation/Income/Trading/LossesBroughtForward", {
            {"9149", "Box 160 must not be greater than Box 155",
             sum("../Profits") < num(".")},
            {"9150", "If Box 160 is completed then Box 155 must be greater than 0 (zero)",
             sum("../Profits") <= 0},
        }},
        {22, "~/CompanyTaxCalculation/Income/Trading/NetProfits", {
            {"9151", "Box 165 must equal Box 155 minus Box 160",
             abs(num(".") - (sum("../Profits") - sum("../LossesBroughtForward"))) >= 0.001},
            {"9321", "Box 235 must be completed if Box 165 is greater than 0 (zero)",
             num(".") > 0 && !(val("../../../ProfitsBeforeOtherDeductions") || false)},
        }},
        {23, "~/CompanyTaxCalculation/Income/Trading", {
            {"9148", "Box 165 must be completed if Box 155 is greater than 0 (zero)",
             sum("Profits") > 0 && !filled("NetProfits")},
        }},
        {24, "~/CompanyTaxCalculation/Income/NonTradingLoanProfitsAndGains", {
            {"9322", "Box 235 must be completed if Box 170 is greater than 0 (zero)",
             num(".") > 0 && !(val("../../ProfitsBeforeOtherDeductions") || false)},
        }},
        {25, "~/CompanyTaxCalculation/Income/NonLoanAnnuitiesAnnualPaymentsDiscounts", {
            {"9323", "Box 235 must be completed if Box 175 is greater than 0 (zero)",
             num(".") > 0 && !(val("../../ProfitsBeforeOtherDeductions") || false)},
        }},
        {26, "~/CompanyTaxCalculation/Income/NonUKdividends", {
            {"9324", "Box 235 must be completed if Box 180 is greater than 0 (zero)",
             num(".") > 0 && !(val("../../ProfitsBeforeOtherDeductions") || false)},
        }},
        {27, "~/CompanyTaxCalculation/Income/DeductedIncome", {
            {"9325", "Box 235 must be completed if Box 185 is greater than 0 (zero)",
             num(".") > 0 && !(val("../../ProfitsBeforeOtherDeductions") || false)},
        }},
        {28, "~/CompanyTaxCalculation/Income/PropertyBusinessIncome", {
            {"9326", "Box 235 must be completed if Box 190 is greater than 0 (zero)",
             num(".") > 0 && !(val("../../ProfitsBeforeOtherDeductions") || false)},
        }},
        {29, "~/CompanyTaxCalculation/Income/TonnageTaxProfits", {
            {"9154", "Box 200 can only be completed if Box 120 is completed or the return type is Amended",
             str("../../../ReturnInfoSummary/SupplementaryPages/CT600F") != "yes" &&
                 str("../../../@ReturnType") != "amended"},
            {"9155", "If Box F70 is completed then Box 200 must equal Box F70",
             filled("../../../TonnageTax/TonnageTax/QualifyingShips/Total") &&
                 !same(".", "../../../TonnageTax/TonnageTax/QualifyingShips/Total")},
        }},
        {30, "~/CompanyTaxCalculation/Income", {
            {"9327", "Box 235 must be completed if (the sum of Boxes 195, 200 and 205) is greater than 0 (zero)",
             sum("OtherIncome") + sum("TonnageTaxProfits") + sum("NonTradingGainsIntangibles") > 0 &&
                 !(val("../ProfitsBeforeOtherDeductions") || false)},
        }},
        {31, "~/CompanyTaxCalculation/ChargeableGains/AllowableLosses", {
            {"9157", "Box 215 must not be greater than Box 210",
             sum("../GrossGains") < num(".")},
            {"9158", "If Box 215 is completed then Box 210 must be greater than 0 (zero)",
             sum("../GrossGains") <= 0},
        }},
        {32, "~/CompanyTaxCalculation/ChargeableGains/NetChargeableGains", {
            {"9159", "Box 220 must equal Box 210 minus Box 215",
             abs(num(".") - (sum("../GrossGains") - sum("../AllowableLosses"))) >= 0.001},
            {"9331", "Box 235 must be completed if Box 220 is greater than 0 (zero)",
             num(".") > 0 && !(val("../../ProfitsBeforeOtherDeductions") || false)},
        }},
        {33, "~/CompanyTaxCalculation/LossesBroughtForward", {
            {"9160", "Box 225 must not be greater than the sum of Boxes 170, 175, 180, 185, 190, 195, 200, 205 and 220",
             num(".") - (sum("../ChargeableGains/NetChargeableGains") + sum("../Income/OtherIncome") +
                 sum("../Income/TonnageTaxProfits") + sum("../Income/NonTradingGainsIntangibles") +
                 sum("../Income/PropertyBusinessIncome") + sum("../Income/DeductedIncome") +
                 sum("../Income/NonUKdividends") + sum("../Income/NonLoanAnnuitiesAnnualPaymentsDiscounts") +
                 sum("../Income/NonTradingLoanProfitsAndGains")) >= 0.001},
        }},
        {34, "~/CompanyTaxCalculation/NonTradeDeficitsOnLoans", {
            {"9161", "Box 230 must not be greater than (the sum of Boxes 170, 175, 180, 185, 190, 195, 200, 205 and 220) minus Box 225",
             num(".") - (sum("../ChargeableGains/NetChargeableGains") + sum("../Income/OtherIncome") +
                 sum("../Income/TonnageTaxProfits") + sum("../Income/NonTradingGainsIntangibles") +
                 sum("../Income/PropertyBusinessIncome") + sum("../Income/DeductedIncome") +
                 sum("../Income/NonUKdividends") + sum("../Income/NonLoanAnnuitiesAnnualPaymentsDiscounts") +
                 sum("../Income/NonTradingLoanProfitsAndGains") - sum("../LossesBroughtForward")) >= 0.001},
        }},
        {35, "~/CompanyTaxCalculation/ProfitsBeforeOtherDeductions", {
            {"9332", "Box 235 must equal (the sum of Boxes 165, 170, 175, 180, 185, 190, 195, 200, 205 and 220 ) minus (the sum of Boxes 225 and 230 ) )",
             abs(num(".") - (sum("../Income/OtherIncome") + sum("../Income/TonnageTaxProfits") +
                 sum("../Income/NonTradingGainsIntangibles") + sum("../ChargeableGains/NetChargeableGains") +
                 sum("../Income/PropertyBusinessIncome") + sum("../Income/DeductedIncome") +
                 sum("../Income/NonUKdividends") + sum("../Income/NonLoanAnnuitiesAnnualPaymentsDiscounts") +
                 sum("../Income/NonTradingLoanProfitsAndGains") +
                 sum("../Income/Trading/NetProfits") - (sum("../NonTradeDeficitsOnLoans") +
                 sum("../LossesBroughtForward")))) >= 0.001},
        }},
        {36, "~/CompanyTaxCalculation/DeductionsAndReliefs/UnquotedShares", {
            {"9166", "Box 240 must not be greater than Box 235",
             sum("../../ProfitsBeforeOtherDeductions") < num(".")},
        }},
        {37, "~/CompanyTaxCalculation/DeductionsAndReliefs/ManagementExpenses", {
            {"9167", "Box 245 must not be greater than Box 235 minus Box 240",
             num(".") - (sum("../../ProfitsBeforeOtherDeductions") - sum("../UnquotedShares")) >= 0.001},
        }},
        {38, "~/CompanyTaxCalculation/DeductionsAndReliefs/UKpropertyBusinessLosses", {
            {"9169", "Box 250 must not be greater than Box 235 minus (the sum of Boxes 240 and 245)",
             num(".") - (sum("../../ProfitsBeforeOtherDeductions") - (sum("../ManagementExpenses") +
                 sum("../UnquotedShares"))) >= 0.001},
        }},
        {39, "~/CompanyTaxCalculation/DeductionsAndReliefs/CapitalAllowances", {
            {"9170", "Box 255 must not be greater than Box 235 minus (the sum of Boxes 240, 245 and 250",
             num(".") - (sum("../../ProfitsBeforeOtherDeductions") - (sum("../UKpropertyBusinessLosses") +
                 sum("../ManagementExpenses") + sum("../UnquotedShares"))) >= 0.001},
        }},
        {40, "~/CompanyTaxCalculation/DeductionsAndReliefs/NonTradeDeficits", {
            {"9171", "Box 260 must not be greater than Box 235 minus (the sum of Boxes 240, 245, 250 and 255)",
             num(".") - (sum("../../ProfitsBeforeOtherDeductions") - (sum("../CapitalAllowances") +
                 sum("../UKpropertyBusinessLosses") + sum("../ManagementExpenses") +
                 sum("../UnquotedShares"))) >= 0.001},
        }},
        {41, "~/CompanyTaxCalculation/DeductionsAndReliefs/NonTradingLossIntangibles", {
            {"9172", "Box 265 must be less than or equal to Box 830",
             sum("../../../LossesDeficitsAndExcess/AmountArising/NonTradingLossesIntangibles/Arising") < num(".")},
            {"9173", "Box 265 must not be greater than Box 235 minus (the sum of Boxes 240, 245, 250, 255 and 260)",
             num(".") - (sum("../../ProfitsBeforeOtherDeductions") - (sum("../NonTradeDeficits") +
                 sum("../CapitalAllowances") + sum("../UKpropertyBusinessLosses") + sum("../ManagementExpenses") +
                 sum("../UnquotedShares"))) >= 0.001},
        }},
        {42, "~/CompanyTaxCalculation/DeductionsAndReliefs/TradingLosses", {
            {"9175", "If Box 280 is not completed then Box 275 must be less than or equal to Box 780",
             sum("../../../LossesDeficitsAndExcess/AmountArising/LossesOfTradesUK/Arising") < num(".") &&
                 !(val("../TradingLossesCarriedBack") || false)},
            {"9176", "Box 275 must not be greater than Box 235 minus (the sum of Boxes 240, 245, 250, 255, 260 and 265)",
             num(".") - (sum("../../ProfitsBeforeOtherDeductions") - (sum("../NonTradingLossIntangibles") +
                 sum("../NonTradeDeficits") + sum("../CapitalAllowances") + sum("../UKpropertyBusinessLosses") +
                 sum("../ManagementExpenses") + sum("../UnquotedShares"))) >= 0.001},
        }},
        {43, "~/CompanyTaxCalculation/DeductionsAndReliefs/TradingLossesCarriedBack", {
            {"9174", "If Box 280 is completed then Box 275 must be greater than 0 (zero)",
             sum("../TradingLosses") <= 0},
        }},
        {44, "~/CompanyTaxCalculation/DeductionsAndReliefs/NonTradeCapitalAllowances", {
            {"9178", "Box 290 must not be greater than Box 235 minus (the sum of Boxes 240, 245, 250, 255, 260, 265 and 275)",
             num(".") - (sum("../../ProfitsBeforeOtherDeductions") - (sum("../TradingLosses") +
                 sum("../NonTradingLossIntangibles") + sum("../NonTradeDeficits") + sum("../CapitalAllowances") +
                 sum("../UKpropertyBusinessLosses") + sum("../ManagementExpenses") +
                 sum("../UnquotedShares"))) >= 0.001},
        }},
        {45, "~/CompanyTaxCalculation/DeductionsAndReliefs/Total", {
            {"9179", "Box 295 must not be greater than Box 235",
             sum("../../ProfitsBeforeOtherDeductions") < num(".")},
            {"9180", "Box 295 must equal the sum of Boxes 240, 245, 250, 255, 260, 265, 275, 290",
             abs(num(".") - (sum("../NonTradeCapitalAllowances") + sum("../TradingLosses") +
                 sum("../NonTradingLossIntangibles") + sum("../NonTradeDeficits") + sum("../CapitalAllowances") +
                 sum("../UKpropertyBusinessLosses") + sum("../ManagementExpenses") +
                 sum("../UnquotedShares"))) >= 0.001},
        }},
        {46, "~/CompanyTaxCalculation/DeductionsAndReliefs", {
            {"9318", "Box 295 must be completed if the sum of Boxes 240, 245, 250, 255, 260, 265, 275 and 290 is greater than 0 (zero)",
             sum("NonTradeCapitalAllowances") + sum("TradingLosses") + sum("NonTradingLossIntangibles") +
                 sum("NonTradeDeficits") + sum("CapitalAllowances") + sum("UKpropertyBusinessLosses") +
                 sum("ManagementExpenses") + sum("UnquotedShares") >= 0.001 && !filled("Total")},
        }},
        {47, "~/CompanyTaxCalculation/ChargesAndReliefs/ProfitsBeforeDonationsAndGroupRelief", {
            {"9334", "If Box 300 is completed then Box 305 must not be greater than Box 300",
             num(".") < sum("../QualifyingDonations")},
            {"9335", "If Box 300 is completed then Box 315 must equal Box 300 minus (the sum of Boxes 305 and 310)",
             abs(num("../../ChargeableProfits") - (num(".") - (sum("../GroupRelief") +
                 sum("../QualifyingDonations")))) >= 0.001},
            {"9333", "Box 300 must equal Box 235 minus (the sum of Boxes 240, 245, 250, 255, 260, 265, 275 and 290)",
             abs(num(".") - (sum("../../ProfitsBeforeOtherDeductions") - (sum("../../DeductionsAndReliefs/NonTradeCapitalAllowances") +
                 sum("../../DeductionsAndReliefs/TradingLosses") +
                 sum("../../DeductionsAndReliefs/NonTradingLossIntangibles") +
                 sum("../../DeductionsAndReliefs/NonTradeDeficits") +
                 sum("../../DeductionsAndReliefs/CapitalAllowances") +
                 sum("../../DeductionsAndReliefs/UKpropertyBusinessLosses") +
                 sum("../../DeductionsAndReliefs/ManagementExpenses") +
                 sum("../../DeductionsAndReliefs/UnquotedShares")))) >= 0.001},
        }},
        {48, "~/CompanyTaxCalculation/ChargesAndReliefs/QualifyingDonations", {
            {"9336", "If Box 300 is absent then Box 305 must not be greater than Box 235 minus (the sum of Boxes 240, 245, 250, 255, 260, 265, 275 and 290)",
             num(".") - (sum("../../ProfitsBeforeOtherDeductions") - (sum("../../DeductionsAndReliefs/NonTradeCapitalAllowances") +
                 sum("../../DeductionsAndReliefs/TradingLosses") +
                 sum("../../DeductionsAndReliefs/NonTradingLossIntangibles") +
                 sum("../../DeductionsAndReliefs/NonTradeDeficits") +
                 sum("../../DeductionsAndReliefs/CapitalAllowances") +
                 sum("../../DeductionsAndReliefs/UKpropertyBusinessLosses") +
                 sum("../../DeductionsAndReliefs/ManagementExpenses") +
                 sum("../../DeductionsAndReliefs/UnquotedShares"))) >= 0.001 &&
                 !(val("../ProfitsBeforeDonationsAndGroupRelief") || false)},
        }},
        {49, "~/CompanyTaxCalculation/ChargesAndReliefs/GroupRelief", {
            {"9954", "Box C10 must be completed if the return type is New and Box 310 is greater than 0 (zero)",
             str("../../../@ReturnType") == "new" && num(".") > 0 &&
                 !filled("../../../GroupAndConsortium/ClaimToGroupRelief/CompanyInformation/TotalAmountClaimed")},
            {"9185", "Box 310 can only be completed if Box 105 is completed or the return type is Amended",
             str("../../../ReturnInfoSummary/SupplementaryPages/CT600C") != "yes" &&
                 str("../../../@ReturnType") != "amended"},
            {"9955", "If return type is New and Box 310 is greater than 0 (zero) then 'Copy of Notices of Consent Attached' must be Yes or 'Authorisation of claim to group relief for simplified arrangements' must be completed",
             str("../../../@ReturnType") == "new" && num(".") > 0 &&
                 !filled("../../../GroupAndConsortium/ClaimToGroupRelief/ClaimAuthorisation/CopyOfNoticesOfConsentAttached") &&
                 !filled("../../../GroupAndConsortium/ClaimToGroupRelief/ClaimAuthorisation/AuthorisationForSimplifiedArrangements")},
            {"9337", "Box 310 must not be greater than Box 235 minus (the sum of Boxes 240, 245, 250, 255, 260, 265, 275, 290 and 305)",
             num(".") - (sum("../../ProfitsBeforeOtherDeductions") - (sum("../../DeductionsAndReliefs/NonTradeCapitalAllowances") +
                 sum("../../DeductionsAndReliefs/TradingLosses") +
                 sum("../../DeductionsAndReliefs/NonTradingLossIntangibles") +
                 sum("../../DeductionsAndReliefs/NonTradeDeficits") +
                 sum("../../DeductionsAndReliefs/CapitalAllowances") +
                 sum("../../DeductionsAndReliefs/UKpropertyBusinessLosses") +
                 sum("../../DeductionsAndReliefs/ManagementExpenses") +
                 sum("../../DeductionsAndReliefs/UnquotedShares")) - sum("../QualifyingDonations")) >= 0.001},
        }},
        {50, "~/CompanyTaxCalculation/ChargeableProfits", {
            {"9186", "Box 315 must equal the sum of Boxes 335, 350, 365, 385, 400 and 415",
             sum("../CorporationTaxChargeable/FinancialYearTwo/Details/Profit") +
                 sum("../CorporationTaxChargeable/FinancialYearOne/Details/Profit") != num(".")},
            {"9338", "If Box 300 is absent then Box 315 must equal Box 235 minus (the sum of Boxes 240, 245, 250, 255, 260, 265, 275, 290, 305 and 310)",
             abs(num(".") - (sum("../ProfitsBeforeOtherDeductions") - (sum("../ChargesAndReliefs/GroupRelief") +
                 sum("../ChargesAndReliefs/QualifyingDonations") +
                 sum("../DeductionsAndReliefs/NonTradeCapitalAllowances") +
                 sum("../DeductionsAndReliefs/TradingLosses") +
                 sum("../DeductionsAndReliefs/NonTradingLossIntangibles") +
                 sum("../DeductionsAndReliefs/NonTradeDeficits") + sum("../DeductionsAndReliefs/CapitalAllowances") +
                 sum("../DeductionsAndReliefs/UKpropertyBusinessLosses") +
                 sum("../DeductionsAndReliefs/ManagementExpenses") +
                 sum("../DeductionsAndReliefs/UnquotedShares")))) >= 0.001 &&
                 !(val("../ChargesAndReliefs/ProfitsBeforeDonationsAndGroupRelief") || false)},
            {"9188", "Financial year two information must be provided if Box 315 is greater than 0 (zero) and the return period To date in Box 35 falls in the financial year following that of the return period From date in Box 30",
             fy("../../CompanyInformation/PeriodCovered/To") - fy("../../CompanyInformation/PeriodCovered/From") == 1 &&
                 !filled("../CorporationTaxChargeable/FinancialYearTwo") && num(".") > 0},
        }},
        {51, "~/CompanyTaxCalculation/RingFenceProfitsIncluded", {
            {"9190", "Box 320 must not be greater than Box 315",
             num(".") > num("../ChargeableProfits")},
            {"9956", "Box 320 can only be completed if Box 135 is completed or return type is Amended",
             str("../../ReturnInfoSummary/SupplementaryPages/CT600I") != "yes" &&
                 str("../../@ReturnType") != "amended"},
        }},
        {52, "~/CompanyTaxCalculation/CorporationTaxChargeable/FinancialYearOne/Year", {
            {"9195", "Box 330 must equal the equivalent financial year of the return period From date in Box 30",
             fy("../../../../CompanyInformation/PeriodCovered/From") != num(".")},
            {"9197", "Where the return period From date in Box 30 and the return period To date in Box 35 are in the same financial year then the sum of Boxes 335, 350 and 365 must equal Box 315",
             fy("../../../../CompanyInformation/PeriodCovered/From") == fy("../../../../CompanyInformation/PeriodCovered/To") &&
                 num("../../../ChargeableProfits") != sum("../Details/Profit")},
            {"9198", "Where the return period From date in Box 30 and the return period To date in Box 35 are in different financial years then the sum of Boxes 335, 350 and 365 must equal Box 315 apportioned to the first financial year",
             fy("../../../../CompanyInformation/PeriodCovered/From") != fy("../../../../CompanyInformation/PeriodCovered/To") &&
                 round(num("../../../ChargeableProfits") * span("../../../../CompanyInformation/PeriodCovered/From", E) /
                       span("../../../../CompanyInformation/PeriodCovered/From", "../../../../CompanyInformation/PeriodCovered/To")) !=
                     sum("../Details/Profit")},
        }},
        {53, "~/CompanyTaxCalculation/CorporationTaxChargeable/FinancialYearOne/Details/Tax", {
            {"9204", "The amount of Tax must equal the Amount of profit multiplied by the Rate of tax e.g. Box 345 must equal Box 335 multiplied by Box 340",
             abs(num(".") - round(num("../Profit") * digits("../TaxRate") * 0.01) * 100 * 0.0001) >= 0.001},
        }},
        {54, "~/CompanyTaxCalculation/CorporationTaxChargeable/FinancialYearTwo/Year", {
            {"9207", "Box 380 must equal Box 330 plus one.",
             abs(num(".") - (1 + num("../../FinancialYearOne/Year"))) >= 0.001},
        }},
        {55, "~/CompanyTaxCalculation/CorporationTaxChargeable/FinancialYearTwo/Details/Tax", {
            {"9213", "For the second financial year the amount of Tax must equal the Amount of profit multiplied by the Rate of tax e.g. Box 395 must equal Box 385 multiplied by Box 390",
             abs(num(".") - round(num("../Profit") * digits("../TaxRate") * 0.01) * 100 * 0.0001) >= 0.001},
        }},
        {56, "~/CompanyTaxCalculation/CorporationTaxChargeable/FinancialYearTwo", {
            {"9206", "Financial year two information must not be completed if the accounting period falls within the same financial year.",
             fy("../../../CompanyInformation/PeriodCovered/From") == fy("../../../CompanyInformation/PeriodCovered/To")},
        }},
        {57, "~/CompanyTaxCalculation/CorporationTax", {
            {"9214", "Box 430 must equal the sum of Boxes 345, 360, 375, 395, 410 and 425",
             abs(num(".") - (sum("../CorporationTaxChargeable/FinancialYearTwo/Details/Tax") +
                 sum("../CorporationTaxChargeable/FinancialYearOne/Details/Tax"))) >= 0.001},
        }},
        {58, "~/CompanyTaxCalculation/MarginalReliefForRingFenceTrades", {
            {"9216", "Box 435 must be less than Box 430",
             sum("../CorporationTax") <= num(".")},
            // Box 435 was ring-fence relief only; under current law it is
            // every company's marginal relief.
            {"9350", "If Box 435 is completed then Box 135 must be completed",
             str("../../ReturnInfoSummary/SupplementaryPages/CT600I") != "yes", true},
        }},
        {59, "~/CompanyTaxCalculation/NetCorporationTaxChargeable", {
            {"9234", "Box 440 must equal Box 430 minus Box 435",
             abs(num(".") - (sum("../CorporationTax") - sum("../MarginalReliefForRingFenceTrades"))) >= 0.001},
        }},
        {60, "~/CompanyTaxCalculation/TaxReliefsAndDeductions/CommunityInvestmentRelief", {
            {"9241", "Box 445 must not be greater than Box 440",
             num(".") > num("../../NetCorporationTaxChargeable")},
        }},
        {61, "~/CompanyTaxCalculation/TaxReliefsAndDeductions/DoubleTaxation/DoubleTaxationRelief", {
            {"9242", "Box 450 must not be greater than Box 440 minus Box 445",
             num(".") - (num("../../../NetCorporationTaxChargeable") - sum("../../CommunityInvestmentRelief")) >= 0.001},
        }},
        {62, "~/CompanyTaxCalculation/TaxReliefsAndDeductions/DoubleTaxation/UnderlyingRate", {
            {"9244", "If Box 455 is completed then Box 450 must be greater than 0 (zero)",
             sum("../DoubleTaxationRelief") <= 0},
        }},
        {63, "~/CompanyTaxCalculation/TaxReliefsAndDeductions/DoubleTaxation/AmountCarriedBack", {
            {"9245", "If Box 460 is completed then Box 450 must be greater than 0 (zero)",
             sum("../DoubleTaxationRelief") <= 0},
        }},
        {64, "~/CompanyTaxCalculation/TaxReliefsAndDeductions/AdvancedCorporationTax", {
            {"9246", "Box 465 must not be greater than Box 440 minus (the sum of Boxes 445 and 450)",
             num(".") - (num("../../NetCorporationTaxChargeable") - (sum("../DoubleTaxation/DoubleTaxationRelief") +
                 sum("../CommunityInvestmentRelief"))) >= 0.001},
        }},
        {65, "~/CompanyTaxCalculation/TaxReliefsAndDeductions/TotalReliefsAndDeductions", {
            {"9247", "Box 470 must equal the sum of Boxes 445, 450 and 465",
             abs(num(".") - (sum("../AdvancedCorporationTax") + sum("../DoubleTaxation/DoubleTaxationRelief") +
                 sum("../CommunityInvestmentRelief"))) >= 0.001},
        }},
        {66, "~/CompanyTaxCalculation/TaxReliefsAndDeductions", {
            {"9236", "Box 470 must be completed if Box 445 is completed.",
             filled("CommunityInvestmentRelief") && !filled("TotalReliefsAndDeductions")},
            {"9237", "Box 470 must be completed if Box 450 is completed.",
             filled("DoubleTaxation/DoubleTaxationRelief") && !filled("TotalReliefsAndDeductions")},
            {"9238", "Box 470 must be completed if Box 465 is completed.",
             filled("AdvancedCorporationTax") && !filled("TotalReliefsAndDeductions")},
        }},
        {67, "~/CompanyTaxCalculation", {
            {"9140", "If Box F45 is completed then Box 450 must be greater than or equal to that entry",
             filled("../TonnageTax/TonnageTax/OffshoreTrainingAllowance/OffsetAgainstCorpTax") &&
                 (num("TaxReliefsAndDeductions/DoubleTaxation/DoubleTaxationRelief") == 0 ||
                 sum("TaxReliefsAndDeductions/DoubleTaxation/DoubleTaxationRelief") - sum("../TonnageTax/TonnageTax/OffshoreTrainingAllowance/OffsetAgainstCorpTax") <= -0.001)},
            {"9144", "Box 330 must be completed if Box 315 is greater than 0 (zero)",
             num("ChargeableProfits") > 0 && !filled("CorporationTaxChargeable/FinancialYearOne/Year")},
            {"9146", "Box 430 must be completed if Box 345 or Box 395 is completed",
             !filled("CorporationTax") && (filled("CorporationTaxChargeable/FinancialYearOne/Details/Tax") ||
                 filled("CorporationTaxChargeable/FinancialYearTwo/Details/Tax"))},
            {"9320", "Box 300 must be completed if Box 235 is greater than 0 (zero)",
             sum("ProfitsBeforeOtherDeductions") > 0 &&
                 !filled("ChargesAndReliefs/ProfitsBeforeDonationsAndGroupRelief")},
        }},
    };
}
