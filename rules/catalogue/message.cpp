// The rules on the message as a whole: the keys of the IRheader, the period
// of the return, the accounts and computations that come with it, the
// supplementary pages declared in ReturnInfoSummary, and the attached files.
#include "rules/catalogue/catalogue.h"

using namespace ruledsl;

namespace {

// True when a key of GovTalkDetails has the Type and value of the current
// IRheader key.
bool keyInGovTalkDetails(CRuleContext& c) {
    static const PathTable detailKeys = MakePathTable("/GovTalkMessage/GovTalkDetails/Keys/Key");
    if (!c.m_Current) return false;
    CObArray found;
    c.Walk(c.m_Current, detailKeys, found);
    for (int i = 0; i < found.GetSize(); ++i) {
        const auto* key = static_cast<const CXMLVar*>(found.GetAt(i));
        if (key->value == c.m_Current->value && key->GetAttr("Type") == c.m_Current->GetAttr("Type")) return true;
    }
    return false;
}

}  // namespace

// Groups 1 to 20 open the run.
RuleGroups MessageGroups() {
    return {
        {1, "/GovTalkMessage/Body/IRenvelope/IRheader/Keys/Key", {
            // The keys of GovTalkDetails are out of the rules' reach by path, and the
            // message built for validation carries none. Where the message does carry
            // them, each key of the IRheader must stand among them with the same Type
            // and value; with no GovTalkDetails keys there is nothing to disagree with.
            {"5005", "Keys in the GovTalkDetails do not match those in the IRheader.",
             count("/GovTalkMessage/GovTalkDetails/Keys/Key") > 0 && !custom(keyInGovTalkDetails)},
        }},
        {2, "/GovTalkMessage/Body/IRenvelope/IRheader", {
            {"5004", "At least one key must exist in the IRHeader",
             count("Keys/Key") == 0},
        }},
        {3, "~/CompanyInformation/PeriodCovered/From", {
            {"9103", "The return period To date in Box 30 must not be later than yesterday",
             dayno(today()) <= dayno(".")},
        }},
        {4, "~/CompanyInformation/PeriodCovered/To", {
            {"9105", "The return period To date in Box 35 must be on or after the return period From date in Box 30",
             ymd(".") < ymd("../From")},
            {"9106", "The return period To date cannot be later than today unless the type of company is 3 (Company in liquidation which is chargeable at the main rate following the first period after liquidation)",
             dayno(today()) < dayno(".") && num("../../CompanyType") != 3},
        }},
        {5, "~/CompanyInformation/PeriodCovered", {
            {"9101", "The return period covered in Boxes 30 and 35 must not be longer than 12 months",
             ymd(plus("To", "-P12M")) >= ymd("From")},
        }},
        {6, "~/ReturnInfoSummary/RegisteredAvoidanceScheme", {
            {"9109", "If the return type is New then Box 140 must be completed if Box 65 is completed",
             filled(".") && str("../../@ReturnType") != "amended" && !filled("../SupplementaryPages/CT600J")},
        }},
        {7, "~/ReturnInfoSummary/TransferPricing", {
            {"9110", "Boxes 70 and 75 cannot both be completed",
             str("Adjustment") == "yes" && str("SME") == "yes"},
        }},
        {8, "~/ReturnInfoSummary/Accounts/NoAccountsReason", {
            {"9349", "iXBRL Accounts are attached so 'No accounts reason' must not be completed",
             count("../../../AttachedFiles/XBRLsubmission/Accounts") > 0},
            {"9115", "Amendment - accounts already submitted' cannot be used if the return type is New",
             str(".") == "Amendment - a/cs already submitted" && str("../../../@ReturnType") != "amended"},
            // The reason promises PDF accounts: some PDF attachment must be there that
            // may be the accounts. One named or typed as computations or other isn't.
            {"9971", "You must provide a set of PDF Accounts if 'No accounts reason' is completed with 'PDF accounts attached with explanation' ",
             str(".") == "PDF accounts attached with explanation" &&
                 pdfs("../../../AttachedFiles/Attachment", kPdfAccounts | kPdfUntyped) == 0},
        }},
        {9, "~/ReturnInfoSummary/Accounts", {
            // PDF accounts without that reason: only a PDF that says it is the accounts
            // (Type or file name) counts, so that a joint notice or a notice of consent
            // in PDF never stops a filing.
            {"9112", "You can only provide a set of PDF accounts if you also complete the 'No accounts reason' with the value of 'PDF accounts attached with explanation' ",
             str("NoAccountsReason") != "PDF accounts attached with explanation" &&
                 pdfs("../../AttachedFiles/Attachment", kPdfAccounts) > 0},
            {"9113", "You must provide a set of iXBRL accounts if the 'No accounts reason' is absent",
             count("../../AttachedFiles/XBRLsubmission/Accounts") == 0 && !(val("NoAccountsReason") || false)},
            {"9114", "If 'No accounts reason' is absent or has been completed with 'PDF accounts attached with explanation' you must complete either 'This period accounts' or 'Different period accounts'",
             count("DifferentPeriod") + count("ThisPeriodAccounts") != 1 && (!filled("NoAccountsReason") ||
                 str("NoAccountsReason") == "PDF accounts attached with explanation")},
            {"9116", "If 'No accounts reason' is present and has not been completed with 'PDF accounts attached with Explanation' you must not complete either 'This period accounts' or 'Different period accounts'",
             filled("NoAccountsReason") && str("NoAccountsReason") != "PDF accounts attached with explanation" &&
                 count("DifferentPeriod") + count("ThisPeriodAccounts") > 0},
        }},
        {10, "~/ReturnInfoSummary/Computations/NoComputationsReason", {
            // A PDF that says it holds the computations (Type, or "ctcomp" in its name,
            // as for iXBRL computations) contradicts a reason for having none.
            {"9117", "Computations in PDF format are attached so a reason for no Computations must not be completed",
             pdfs("../../../AttachedFiles/Attachment", kPdfComputations) > 0},
            {"9118", "Computations in iXBRL format are attached so a reason for no Computations must not be provided",
             count("../../../AttachedFiles/XBRLsubmission/Computation") > 0},
            {"9119", "Amendments - computations already submitted' cannot be used if the return type is New",
             str(".") == "Amendment - comps already submitted" && str("../../../@ReturnType") != "amended"},
        }},
        {11, "~/ReturnInfoSummary/Computations", {
            // No computations at all: no iXBRL computation, no reason, and no PDF that
            // may be the computations (an untyped PDF is given the benefit of the doubt).
            {"9965", "You must provide a Tax Computation with the return unless you provide a valid reason not to supply it",
             pdfs("../../AttachedFiles/Attachment", kPdfComputations | kPdfUntyped) == 0 &&
                 !(val("NoComputationsReason") || false) &&
                 count("../../AttachedFiles/XBRLsubmission/Computation") == 0},
            // Computations twice over: iXBRL ones and a PDF that says it holds them.
            {"9966", "You cannot provide both iXBRL and PDF Tax Computations with the return",
             pdfs("../../AttachedFiles/Attachment", kPdfComputations) > 0 &&
                 count("../../AttachedFiles/XBRLsubmission/Computation") > 0 &&
                 !(val("NoComputationsReason") || false)},
        }},
        {12, "~/ReturnInfoSummary/SupplementaryPages/CT600A", {
            {"9120", "Supplementary form CT600A must be present if Box 95 is completed and the return type is New",
             str(".") == "yes" && str("../../../@ReturnType") == "new" && !filled("../../../LoansByCloseCompanies")},
        }},
        {13, "~/ReturnInfoSummary/SupplementaryPages/CT600B", {
            {"9121", "Supplementary form CT600B must be present if Box 100 is completed and the return type is New",
             str(".") == "yes" && str("../../../@ReturnType") == "new" &&
                 !filled("../../../ControlledForeignCompanies")},
        }},
        {14, "~/ReturnInfoSummary/SupplementaryPages/CT600C", {
            {"9123", "Supplementary form CT600C must be present if Box 105 is completed and the return type is New",
             str(".") == "yes" && str("../../../@ReturnType") == "new" && !filled("../../../GroupAndConsortium")},
        }},
        {15, "~/ReturnInfoSummary/SupplementaryPages/CT600D", {
            {"9124", "Supplementary form CT600D must be present if Box 110 is completed and the return type is New",
             str(".") == "yes" && str("../../../@ReturnType") == "new" && !filled("../../../Insurance")},
        }},
        {16, "~/ReturnInfoSummary/SupplementaryPages/CT600E", {
            {"9125", "Supplementary form CT600E must be present if Box 115 is completed and the return type is New",
             str(".") == "yes" && str("../../../@ReturnType") == "new" && !filled("../../../Charity")},
        }},
        {17, "~/ReturnInfoSummary/SupplementaryPages/CT600F", {
            {"9126", "Supplementary form CT600F must be present if Box 120 is completed and the return type is New",
             str(".") == "yes" && str("../../../@ReturnType") == "new" && !filled("../../../TonnageTax")},
            {"9127", "If Box 120 is completed then Box 200 must be completed.",
             str(".") == "yes" && !filled("../../../CompanyTaxCalculation/Income/TonnageTaxProfits")},
        }},
        {18, "~/ReturnInfoSummary/SupplementaryPages/CT600H", {
            {"9129", "Supplementary form CT600H must be present if Box 130 is completed and the return type is New",
             str(".") == "yes" && str("../../../@ReturnType") == "new" && !filled("../../../CrossBorderRoyalties")},
            {"9130", "If Box 130 is completed then Box 645 must be completed",
             str("../../../IndicatorsAndInformation/CrossBorderRoyalty") != "yes" && str(".") == "yes"},
        }},
        {19, "~/ReturnInfoSummary/SupplementaryPages/CT600I", {
            {"9132", "Supplementary form CT600I must be present if Box 135 is completed and the return type is New ",
             str(".") == "yes" && str("../../../@ReturnType") == "new" && !filled("../../../RingFenceTrade")},
        }},
        {20, "~/ReturnInfoSummary/SupplementaryPages/CT600J", {
            {"9134", "If Box 140 is completed then Box 65 must be completed",
             str("../../RegisteredAvoidanceScheme") != "yes" && str(".") == "yes"},
            {"9136", "Supplementary form CT600J must be present if Box 140 is completed and the return type is New",
             str(".") == "yes" && str("../../../@ReturnType") == "new" && !filled("../../../TaxAvoidanceSchemes")},
        }},
    };
}

// Groups 177 to 186 close the run, after every other group.
RuleGroups AttachedFilesGroups() {
    return {
        {177, "~/AttachedFiles/XBRLsubmission/Accounts/Instance/EncodedInlineXBRLDocument", {
            {"9970", "You have tried to submit multi page accounts or computations but have not provided file name attributes for each of the pages",
             count("./../EncodedInlineXBRLDocument") > 1 && !filled("@Filename")},
        }},
        {178, "~/AttachedFiles/XBRLsubmission/Accounts/Instance/InlineXBRLDocument", {
            {"9970", "You have tried to submit multi page accounts or computations but have not provided file name attributes for each of the pages",
             count("./../InlineXBRLDocument") > 1 && !filled("@Filename")},
        }},
        {179, "~/AttachedFiles/XBRLsubmission/Accounts/Instance", {
            // Encoded pages mark their entry point on themselves: counting it on plain
            // InlineXBRLDocument elements, which an encoded submission doesn't have,
            // would reject every multi-page encoded submission.
            {"9900", "You have tried to submit multi page accounts or computations but have not identified the main or primary page with an Entry Point attribute.",
             count("EncodedInlineXBRLDocument") >= 2 && count("EncodedInlineXBRLDocument[@entryPoint]") != 1},
            {"9901", "You have tried to submit multi page accounts or computations but have not identified the main or primary page with an Entry Point attribute.",
             count("InlineXBRLDocument") >= 2 && count("InlineXBRLDocument[@entryPoint]") != 1},
        }},
        {180, "~/AttachedFiles/XBRLsubmission/Accounts/Extension", {
            {"9902", "An extension taxonomy must not be provided if raw XBRL is submitted. Please contact your software supplier.  ",
             filled("../Instance/RawXBRLDocument")},
        }},
        {181, "~/AttachedFiles/XBRLsubmission/Computation/Instance/EncodedInlineXBRLDocument", {
            {"9970", "You have tried to submit multi page accounts or computations but have not provided file name attributes for each of the pages",
             count("./../EncodedInlineXBRLDocument") > 1 && !filled("@Filename")},
        }},
        {182, "~/AttachedFiles/XBRLsubmission/Computation/Instance/InlineXBRLDocument", {
            {"9970", "You have tried to submit multi page accounts or computations but have not provided file name attributes for each of the pages",
             count("./../InlineXBRLDocument") > 1 && !filled("@Filename")},
        }},
        {183, "~/AttachedFiles/XBRLsubmission/Computation/Instance", {
            // Encoded pages mark their entry point on themselves: counting it on plain
            // InlineXBRLDocument elements, which an encoded submission doesn't have,
            // would reject every multi-page encoded submission.
            {"9900", "You have tried to submit multi page accounts or computations but have not identified the main or primary page with an Entry Point attribute.",
             count("EncodedInlineXBRLDocument") >= 2 && count("EncodedInlineXBRLDocument[@entryPoint]") != 1},
            {"9901", "You have tried to submit multi page accounts or computations but have not identified the main or primary page with an Entry Point attribute.",
             count("InlineXBRLDocument") >= 2 && count("InlineXBRLDocument[@entryPoint]") != 1},
        }},
        {184, "~/AttachedFiles/XBRLsubmission/Computation/Extension", {
            {"9902", "An extension taxonomy must not be provided if raw XBRL is submitted. Please contact your software supplier.  ",
             filled("../Instance/RawXBRLDocument")},
        }},
        {185, "~/AttachedFiles/XBRLsubmission", {
            {"9315", "If Box 90 'No accounts reason' is absent then accounts must be attached",
             !filled("../../ReturnInfoSummary/Accounts/NoAccountsReason") && !filled("Accounts")},
            {"9316", "If Box 90 'No computations reason' is absent then computations must be attached",
             !filled("../../ReturnInfoSummary/Computations/NoComputationsReason") && !filled("Computation")},
        }},
        {186, "/GovTalkMessage/Body/IRenvelope/CompanyTaxReturn", {
            {"9319", "Box 475 must be completed if Box 440 is greater than 0 (zero)",
             num("CompanyTaxCalculation/NetCorporationTaxChargeable") > 0 &&
                 !filled("CalculationOfTaxOutstandingOrOverpaid/NetCorporationTaxLiability")},
        }},
    };
}
