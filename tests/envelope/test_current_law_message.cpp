// Current law in the return document and its validation: the associated
// companies and the small profits tick (Q326 to Q329) and the relief in
// Q435 reach the message only under current law, the schema model accepts
// them only there, and rule 9350 stands down there while 9216 and 9234 hold.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "entry/exports.h"
#include "entry/validate.h"
#include "envelope_support.h"
#include "schema/table.h"

namespace {

using Pairs = std::vector<std::pair<const char*, const char*>>;

const char* const kCalculation = "Body/IRenvelope/CompanyTaxReturn/CompanyTaxCalculation";

void calc(CMapStringToString& boxes) {
    QuietErrors quiet;
    CString prefix;
    CMapStringToString out;
    ctv3_16(&boxes, &prefix, &out);
}

std::string at(CXMLVar* message, const std::string& below) {
    return envtest::compact(nodeAt(message, std::string(kCalculation) + "/" + below));
}

std::vector<std::string> errorTexts(CMapStringToString& boxes) {
    const std::unique_ptr<CXMLVar> errors(ValidateReturn(boxes));
    std::vector<std::string> out;
    for (const CXMLVar* e : errors->children)
        if (const CXMLVar* text = e->FindChild("Text")) out.push_back(text->value.str());
    return out;
}

bool hasCode(const std::vector<std::string>& texts, const std::string& code) {
    return std::any_of(texts.begin(), texts.end(), [&](const std::string& t) { return t.rfind(code + ":", 0) == 0; });
}

class CurrentLawMessage : public testing::Test {
protected:
    envtest::EnvGuard noProcessChoice{"CT600_RATES", ""};
};

TEST_F(CurrentLawMessage, AssociatedCompaniesAheadOfTheYearsOnlyUnderCurrentLaw) {
    struct Case {
        const char* what;
        Pairs boxes;
        const char* chargeable;  // compact CorporationTaxChargeable
        const char* relief;      // compact MarginalReliefForRingFenceTrades, "" for none
        const char* net;         // compact NetCorporationTaxChargeable
    };
    const Case cases[] = {
        // FY2023, 100,000, one associate: 25,000.00 less 3/200 x (125,000 - 100,000) = 375.00.
        {"one associate for the period",
         {{"rates", "current"}, {"from", "01/04/2023"}, {"to", "31/03/2024"}, {"Q155", "100000"}, {"Q326", "1"}},
         "CorporationTaxChargeable(AssociatedCompanies(ThisPeriod=1 StartingOrSmallCompaniesRate=yes) "
         "FinancialYearOne(Year=2023 Details(Profit=100000.00 TaxRate=25.00 Tax=25000.00)))",
         "MarginalReliefForRingFenceTrades=375.00", "NetCorporationTaxChargeable=24625.00"},
        // As in the liability suite: 24,863 and 75,137 at 25%, relief 559.426 + 281.762 -> 841.18.
        {"associates by financial year",
         {{"rates", "current"}, {"from", "01/01/2024"}, {"to", "31/12/2024"}, {"Q155", "100000"}, {"Q327", "0"},
          {"Q328", "1"}},
         "CorporationTaxChargeable(AssociatedCompanies(AssociatedCompaniesFinancialYears(FirstYear=0 SecondYear=1) "
         "StartingOrSmallCompaniesRate=yes) "
         "FinancialYearOne(Year=2023 Details(Profit=24863.00 TaxRate=25.00 Tax=6215.75)) "
         "FinancialYearTwo(Year=2024 Details(Profit=75137.00 TaxRate=25.00 Tax=18784.25)))",
         "MarginalReliefForRingFenceTrades=841.18", "NetCorporationTaxChargeable=24158.82"},
        // Above the upper limit: no tick, no relief, and no associates given: nothing added.
        {"nothing to say",
         {{"rates", "current"}, {"from", "01/04/2023"}, {"to", "31/03/2024"}, {"Q155", "300000"}},
         "CorporationTaxChargeable(FinancialYearOne(Year=2023 Details(Profit=300000.00 TaxRate=25.00 Tax=75000.00)))",
         "", "NetCorporationTaxChargeable=75000.00"},
        // The default ladder: 19% on all profits, the boxes of current law left out.
        {"by default",
         {{"from", "01/04/2023"}, {"to", "31/03/2024"}, {"Q155", "100000"}, {"Q326", "1"}, {"Q329", "yes"}},
         "CorporationTaxChargeable(FinancialYearOne(Year=2023 Details(Profit=100000.00 TaxRate=19.00 Tax=19000.00)))",
         "", "NetCorporationTaxChargeable=19000.00"},
    };
    for (const Case& c : cases) {
        CMapStringToString boxes = envtest::boxesOf(c.boxes);
        calc(boxes);
        const std::unique_ptr<CXMLVar> message(quick_govtalk(boxes));
        ASSERT_NE(message, nullptr);
        EXPECT_EQ(at(message.get(), "CorporationTaxChargeable"), c.chargeable) << c.what;
        EXPECT_EQ(at(message.get(), "MarginalReliefForRingFenceTrades"), c.relief) << c.what;
        EXPECT_EQ(at(message.get(), "NetCorporationTaxChargeable"), c.net) << c.what;
    }
}

TEST_F(CurrentLawMessage, CountsWithoutATaxStillReachTheDocument) {
    // No profit, so no financial years; the count makes CorporationTaxChargeable
    // in its place, ahead of CorporationTax, and the schema says what it lacks.
    CMapStringToString boxes = envtest::boxesOf(
        {{"rates", "current"}, {"from", "01/04/2023"}, {"to", "31/03/2024"}, {"Q326", "2"}, {"Q430", "zero"}});
    const std::unique_ptr<CXMLVar> message(quick_govtalk(boxes));
    const CXMLVar* calculation = nodeAt(message.get(), kCalculation);
    ASSERT_NE(calculation, nullptr);
    EXPECT_NE(envtest::compact(calculation).find(
                  " CorporationTaxChargeable(AssociatedCompanies(ThisPeriod=2)) CorporationTax="),
              std::string::npos)
        << envtest::compact(calculation);
    const std::vector<std::string> errors = errorTexts(boxes);
    EXPECT_TRUE(std::any_of(errors.begin(), errors.end(), [](const std::string& t) {
        return t.find("FinancialYearOne") != std::string::npos;
    }));
}

TEST_F(CurrentLawMessage, RulesOnTheReliefBox) {
    // A return as the calculator leaves it under current law, over 1 April
    // 2024 with one associate: 24,863 and 75,137 at 25%, 6,215.75 + 18,784.25
    // = 25,000.00; relief 3/200 x (125,000 - 100,000) = 375 shared 91/366 and
    // 275/366, 375.00 in Q435; 24,625.00 in Q440; no ring fence page. By
    // default 19% in both years, 19,000.00.
    const Pairs consistent = {{"from", "01/01/2024"}, {"to", "31/12/2024"}, {"Q155", "100000"}, {"Q326", "1"}};
    struct Case {
        const char* what;
        const char* rates;
        Pairs changed;  // after the run
        bool r9216, r9234, r9350;
    };
    const Case cases[] = {
        {"current law, consistent", "current", {}, false, false, false},
        {"current law, Q440 not Q430 - Q435", "current", {{"Q440", "25000"}}, false, true, false},
        {"current law, relief not below the tax", "current", {{"Q435", "25000"}}, true, true, false},
        // The default ladder's 19,000.00 with a relief a host put in Q435, and no page I.
        {"by default", "", {{"Q435", "375"}, {"Q440", "18625"}}, false, false, true},
    };
    for (const Case& c : cases) {
        CMapStringToString boxes = envtest::boxesOf(consistent);
        boxes["rates"] = c.rates;
        calc(boxes);
        for (const auto& [key, value] : c.changed) boxes[key] = value;
        const std::vector<std::string> errors = errorTexts(boxes);
        EXPECT_EQ(hasCode(errors, "9216"), c.r9216) << c.what;
        EXPECT_EQ(hasCode(errors, "9234"), c.r9234) << c.what;
        EXPECT_EQ(hasCode(errors, "9350"), c.r9350) << c.what;
        // Each year's tax is its amount times its rate, and Q430 their sum.
        for (const char* code : {"9204", "9213", "9214"}) EXPECT_FALSE(hasCode(errors, code)) << c.what << code;
        for (const std::string& e : errors)
            EXPECT_EQ(e.find("AssociatedCompanies"), std::string::npos) << c.what << ": " << e;
    }
}

TEST(CurrentLawSchema, TheModelAcceptsAssociatedCompaniesOnlyUnderCurrentLaw) {
    EXPECT_EQ(ReturnSchema(RateLadder::CurrentLaw).Problems().GetSize(), 0);
    EXPECT_EQ(&ReturnSchema(RateLadder::Default), &ReturnSchema());
    const auto doc = parseXml(
        "<CompanyTaxCalculation><CorporationTaxChargeable>"
        "<AssociatedCompanies><AssociatedCompaniesFinancialYears><FirstYear>1</FirstYear><SecondYear>X</SecondYear>"
        "</AssociatedCompaniesFinancialYears><StartingOrSmallCompaniesRate>no</StartingOrSmallCompaniesRate>"
        "</AssociatedCompanies>"
        "<FinancialYearOne><Year>2023</Year><Details><Profit>1.00</Profit><TaxRate>25.00</TaxRate><Tax>0.25</Tax>"
        "</Details></FinancialYearOne></CorporationTaxChargeable></CompanyTaxCalculation>");
    CXMLVar* chargeable = doc->FindChild("CorporationTaxChargeable");
    ASSERT_NE(chargeable, nullptr);
    for (RateLadder ladder : {RateLadder::Default, RateLadder::CurrentLaw}) {
        CXMLVar errors("Errors");
        ReturnSchema(ladder).Walk(chargeable, &errors);
        std::string all;
        for (const CXMLVar* e : errors.children) all += e->FindChild("Text")->value.str() + "\n";
        if (ladder == RateLadder::Default) {
            // Unknown to the default model: one structural error, and nothing below it tested.
            EXPECT_NE(all.find("Element AssociatedCompanies unexpected"), std::string::npos) << all;
            EXPECT_EQ(errors.GetChildCount(), 1) << all;
        } else {
            // Known, so its values are tested: SecondYear is no count, "no" is no YesFlag.
            EXPECT_EQ(all.find("unexpected"), std::string::npos) << all;
            EXPECT_EQ(all,
                      "Second Year: value \"X\" - must be non negative integer\n"
                      "Starting Or Small Companies Rate: value \"no\" - must be \"yes\"\n");
        }
    }
}

}  // namespace
