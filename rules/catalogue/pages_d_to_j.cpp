// The rules on the remaining supplementary pages: insurance (CT600D),
// charities (CT600E), tonnage tax (CT600F), cross-border royalties (CT600H),
// ring fence trades (CT600I) and tax avoidance schemes (CT600J).
#include "rules/catalogue/catalogue.h"

using namespace ruledsl;

// Groups 147 to 176.
RuleGroups PagesDtoJGroups() {
    // Where x (rule 9804): the disallowed financing costs less the loss of the
    // trade; Box I35 holds it, or 0 when it is not above 0.
    const Num profitsAfterLoss = sum("../DisallowedFinancingCosts/Total") - num("../Trade/Amount");
    return {
        {147, "~/Insurance", {
            {"9308", "Supplementary form CT600D is present so Box 110 must be completed",
             str("../ReturnInfoSummary/SupplementaryPages/CT600D") != "yes"},
        }},
        {148, "~/Charity/InformationRequired/Income/Total", {
            {"9614", "Box E90 must equal the sum of Boxes E50, E55, E60, E65, E70, E75, E80 and E85",
             abs(num(".") - (sum("../OtherSources") + sum("../GiftOfRealProperty") + sum("../GiftsOfShares") +
                             sum("../OtherCharities") + sum("../GiftAid") + sum("../UKlandBuildings") +
                             sum("../InvestmentIncome") + sum("../TotalTurnover"))) >= 0.001},
        }},
        {149, "~/Charity/InformationRequired/Expenditure/TradingCosts", {
            {"9611", "Box E50 must be greater than 0 (zero) if Box E95 is completed",
             sum("../../Income/TotalTurnover") <= 0},
        }},
        {150, "~/Charity/InformationRequired/Expenditure/UKlandBuildings", {
            {"9612", "Box E60 must be greater than 0 (zero) if Box E100 is completed",
             sum("../../Income/UKlandBuildings") <= 0},
        }},
        {151, "~/Charity/InformationRequired/Expenditure/Total", {
            {"9615", "Box E125 must equal the sum of Boxes E95, E100, E105, E110, E115 and E120",
             abs(num(".") - (sum("../OtherExpenditure") + sum("../GrantsDonationsOutsideUK") +
                             sum("../GrantsDonationsWithinUK") + sum("../GeneralAdminCosts") +
                             sum("../UKlandBuildings") + sum("../TradingCosts"))) >= 0.001},
        }},
        {152, "~/Charity/InformationRequired/Assets/InvestmentsOrLoans/Qualifying", {
            {"9613", "Box E180 must not be completed if Box E185 is completed.",
             num("../ValueOfNonQualifying") != 0 && num(".") != 0},
        }},
        {153, "~/Charity", {
            {"9309", "Supplementary form CT600E is present so Box 115 must be completed",
             str("../ReturnInfoSummary/SupplementaryPages/CT600E") != "yes"},
        }},
        {154, "~/TonnageTax/TonnageTax/Information/TonnageGroup/GroupElection", {
            {"9651", "Box F10 must be completed if Box F5A is Yes",
             str(".") == "yes" && !filled("../Name")},
            {"9652", "Box F25A, F25B of F25C must be completed if Box F5A is Yes",
             str(".") == "yes" && !filled("../../GroupMetCharteredInLimit")},
        }},
        {155, "~/TonnageTax/TonnageTax/Information/TonnageGroup/Name", {
            {"9653", "Box F10 must not be completed if Box F5B is No",
             str("../GroupElection") == "no" && filled(".")},
        }},
        {156, "~/TonnageTax/TonnageTax/Information/CompanyMetCharteredInLimit", {
            {"9656", "If Box F5A is Yes then Box F20C must be Not applicable",
             str("../TonnageGroup/GroupElection") == "yes" && str(".") != "na"},
        }},
        {157, "~/TonnageTax/TonnageTax/Information/GroupMetCharteredInLimit", {
            {"9659", "Boxes F25A, F25B or F25C must not be completed if Box F5B is No",
             str("../TonnageGroup/GroupElection") == "no" && filled(".")},
        }},
        {158, "~/TonnageTax/TonnageTax/Information/Flagging", {
            {"9665", "Boxes F35A or F35B must not be completed if Box F30A is Yes",
             str("../NotRegistered") != "yes"},
        }},
        {159, "~/TonnageTax/TonnageTax/Information/OffshoreActivities", {
            {"9660", "Part 2 Offshore training allowance must be completed if Box F40A is Yes",
             str(".") == "yes" && !filled("../../OffshoreTrainingAllowance")},
        }},
        {160, "~/TonnageTax/TonnageTax/Information", {
            {"9664", "Box F35A or F35B must be completed if Box F30A is Yes",
             str("NotRegistered") == "yes" && !filled("Flagging")},
        }},
        {161, "~/TonnageTax/TonnageTax/OffshoreTrainingAllowance", {
            {"9666", "Part 2 Offshore training allowance must not be present if Box F40B is No",
             str("../Information/OffshoreActivities") == "no"},
        }},
        {162, "~/TonnageTax/TonnageTax/QualifyingShips/Total", {
            {"9663", "Box F70 must equal the sum of 'Tonnage Tax profits' in boxes 70G rounded down to the nearest whole pound.",
             floor(0.0001 + sum("../Ship/Profits")) != num(".")},
        }},
        {163, "~/TonnageTax/TonnageTax", {
            {"9650", "Supplementary form CT600F can only be present if at least one of 'Part 3 Relevant shipping profits' or 'Part 4: Computation of tonnage tax profits' is completed",
             !filled("QualifyingShips") && !filled("RelevantShippingProfits")},
        }},
        {164, "~/TonnageTax", {
            {"9310", "Supplementary form CT600F is present so Box 120 must be completed",
             str("../ReturnInfoSummary/SupplementaryPages/CT600F") != "yes"},
        }},
        {165, "~/CrossBorderRoyalties/Royalties/DeductionAmount", {
            {"9750", "All 'Amount of tax deducted from payment' amounts in Boxes H5G must equal 'Gross Amount of Royalty paid' in Boxes H5D multiplied by 'Rate of tax deducted from payment' in Boxes H5F divided by 100 and rounded to the nearest penny (round down for fractions less than half a penny and round up for fractions of half a penny or greater).",
             abs(num(".") - round(num("../Amount") * digits("../DeductionRate") * 0.01) * 0.01) >= 0.001},
        }},
        {166, "~/CrossBorderRoyalties", {
            {"9312", "Supplementary form CT600H is present so Box 130 must be completed",
             str("../ReturnInfoSummary/SupplementaryPages/CT600H") != "yes"},
        }},
        {167, "~/RingFenceTrade/CalculationOfSupplementaryCharge/DisallowedFinancingCosts/Total", {
            {"9802", "Box I30 must equal the sum of Boxes I20 and I25",
             abs(num(".") - (sum("../RelatedToLossRelief") + sum("../RelatedToCompany"))) >= 0.001},
        }},
        {168, "~/RingFenceTrade/CalculationOfSupplementaryCharge/Profits", {
            {"9803", "If Box I10 is completed then Box I35 must equal the sum of Boxes I5 and I30",
             str("../Trade/Profits") == "yes" &&
                 abs(num(".") - (sum("../DisallowedFinancingCosts/Total") + num("../Trade/Amount"))) >= 0.001},
            {"9804", "If Box I5 is completed then Box I35 must equal Box I30 minus Box I5. If the result is negative please enter 0 (zero).",
             str("../Trade/Losses") == "yes" &&
                 ((profitsAfterLoss > 0 && abs(num(".") - profitsAfterLoss) >= 0.001) ||
                  (profitsAfterLoss <= 0 && abs(num(".")) >= 0.001))},
        }},
        {169, "~/RingFenceTrade/CalculationOfSupplementaryCharge/MinusLosses", {
            {"9805", "Box I50 must not be greater than Box I35",
             num(".") > num("../Profits")},
        }},
        {170, "~/RingFenceTrade/CalculationOfSupplementaryCharge/FieldAllowance", {
            {"9816", "Box I60 must not be greater than Box I35 minus Box I50",
             num(".") - (num("../Profits") - sum("../MinusLosses")) >= 0.001},
        }},
        {171, "~/RingFenceTrade/CalculationOfSupplementaryCharge/NetProfits", {
            {"9817", "Box I65 must equal Box I45 minus the sum of Boxes I50, I55 and I60",
             abs(num(".") - (sum("../RevisedProfits") -
                             (sum("../FieldAllowance") + sum("../DecommissioningReduction") + sum("../MinusLosses")))) >= 0.001},
        }},
        {172, "~/RingFenceTrade/CalculationOfSupplementaryCharge/Tax", {
            {"9807", "If Box I70 is completed then Box 505 must be completed and equal to Box I70",
             num("../../../CalculationOfTaxOutstandingOrOverpaid/SupplementaryCharge") == 0 ||
                 !same("../../../CalculationOfTaxOutstandingOrOverpaid/SupplementaryCharge", ".")},
            {"9818", "Box I70 must equal Box I65 multiplied by 0.2",
             abs(num(".") - num("../NetProfits") * 0.2) >= 0.001},
        }},
        {173, "~/RingFenceTrade/NetRingFenceTrade/RingFenceCorpTaxIncluded", {
            {"9813", "If Box I80 is completed then Box 585 must be completed and equal to Box I80",
             num("../../../TaxReconciliation/RingFenceCorpTaxIncluded") == 0 ||
                 !same("../../../TaxReconciliation/RingFenceCorpTaxIncluded", ".")},
        }},
        {174, "~/RingFenceTrade/NetRingFenceTrade/SupplementaryChargeTax", {
            {"9814", "If Box I85 is completed then Box 590 must be completed and equal to Box I85",
             num("../../../TaxReconciliation/RingFenceSupplementaryChargeIncluded") == 0 ||
                 !same("../../../TaxReconciliation/RingFenceSupplementaryChargeIncluded", ".")},
        }},
        {175, "~/RingFenceTrade", {
            {"9800", "Box I70 must be completed if Box I65 is greater than 0 (zero)",
             num("CalculationOfSupplementaryCharge/NetProfits") > 0 && !filled("CalculationOfSupplementaryCharge/Tax")},
            {"9801", "Box I75 must be completed if Box I15 is completed and Box I5 minus Box I20 is greater than 0 (zero).",
             str("CalculationOfSupplementaryCharge/Trade/Losses") == "yes" &&
                 num("CalculationOfSupplementaryCharge/Trade/Amount") -
                         sum("CalculationOfSupplementaryCharge/DisallowedFinancingCosts/RelatedToCompany") >= 0.001 &&
                 !filled("LossesArising")},
            {"9313", "Supplementary form CT600I is present so Box 135 must be completed",
             str("../ReturnInfoSummary/SupplementaryPages/CT600I") != "yes"},
        }},
        {176, "~/TaxAvoidanceSchemes", {
            {"9314", "Supplementary form CT600J is present so Box 140 must be completed",
             str("../ReturnInfoSummary/SupplementaryPages/CT600J") != "yes"},
        }},
    };
}
