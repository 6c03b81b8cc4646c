// The numbers a limit check reads: plain decimals and every other shape the
// standard atof takes must come out alike, to the last bit.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "schema/checks.h"
#include "support.h"

namespace {

TEST(LimitNumbers, EveryShapeReadsAsAtofReadsIt) {
    const std::string le = "Company Name: value \"";
    struct Case {
        std::string value;
        bool over;  // above the limit 10
    };
    const std::string hugeNumber = "1" + std::string(400, '0');           // past a double: infinity
    const std::string tinyNumber = "0." + std::string(400, '0') + "1";   // below the least double: 0
    const std::vector<Case> cases = {
        {"10.0000000000000001", false},  // 1e-16 is under half the step between doubles near 10 (1.8e-15)
        {"10.000000000000002", true},    // 2e-15 is over it: the next double up
        {"9.99999999999999999", false},  // rounds up to 10 itself
        {"11.", true},                   // a point with no decimals after it
        {"+11", true},                   // a plus sign
        {".5", false},                   // no digit before the point
        {"-.5", false},
        {"-11", false},
        {"0010.5", true},                // leading zeros
        {hugeNumber, true},
        {tinyNumber, false},
        {"-" + hugeNumber, false},
    };
    for (const Case& c : cases) {
        CXMLVar node("CompanyName", c.value.c_str());
        CXMLVar errors("Errors");
        checkmaxinclusive("10", "", &node, &errors);
        const std::vector<std::string> expected =
            c.over ? std::vector<std::string>{le + c.value + "\" - must be less than or equal to 10"}
                   : std::vector<std::string>{};
        EXPECT_EQ(schematest::texts(errors), expected) << c.value;
    }
}

}  // namespace
