// Whole third-generation returns through the ctv3_16 export: cases, worked by
// hand, in tests/data/return_cases.txt.
#include <gtest/gtest.h>

#include "common/errors.h"
#include "entry/exports.h"
#include "support.h"
#include "support/table.h"

namespace {

TEST(Return, WorkedReturns) {
    QuietErrors quiet;
    const auto cases = testdata::cases("return_cases.txt");
    for (const testdata::Case& c : cases) {
        CMapStringToString boxes, out;
        CString prefix;
        int runs = 1;
        for (const std::string& line : c.body) {
            const std::string key = line.substr(0, line.find('\t')), value = line.substr(key.size() + 1);
            if (key == "prefix") prefix = value.c_str();
            else if (key == "runs") runs = std::stoi(value);
            else boxes[key.c_str()] = value.c_str();
        }
        for (int i = 0; i < runs; ++i) EXPECT_EQ(ctv3_16(&boxes, &prefix, &out), 1) << c.what;
        for (const std::string& line : c.expected) {
            const std::string key = line.substr(0, line.find('\t')), value = line.substr(key.size() + 1);
            EXPECT_EQ(key.rfind("out:", 0) == 0 ? result(out, key.c_str() + 4) : result(boxes, key.c_str()), value)
                << c.what << ": " << key;
        }
    }
    EXPECT_EQ(cases.size(), 7u);
}

}  // namespace
