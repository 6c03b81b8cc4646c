// The document model: valid documents give no error, and each case of
// tests/data/schema_*_cases.txt (one fault in a valid document) gives exactly
// its errors, in order.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "schema/table.h"
#include "support.h"

using namespace schematest;

namespace {

// The frame, the header and the first sections, every optional element once.
const std::string kValidMessage = readFile(CT600_SOURCE_DIR "/tests/data/schema_valid_message.xml");
// Every later section once, with its required elements and a few optional ones.
const std::string kValidReturn = readFile(CT600_SOURCE_DIR "/tests/data/schema_valid_return.xml");

TEST(Model, TheReturnTableHasNoFaults) {
    const CStringArray& problems = ReturnSchema().Problems();
    EXPECT_EQ(std::vector<std::string>(problems.begin(), problems.end()), std::vector<std::string>{});
}

TEST(Model, ValidDocumentsGiveNoErrors) {
    for (const std::string* text : {&kValidMessage, &kValidReturn}) {
        auto doc = parse(*text);
        EXPECT_EQ(walk(doc.get()), std::vector<std::string>{});
    }
    CXMLVar errors("Errors");
    schemawalk(nullptr, &errors);
    EXPECT_TRUE(errors.children.empty());
}

TEST(Model, FrameHeaderAndFirstSections) { runCaseFile(kValidMessage, "schema_model_cases.txt"); }

TEST(Model, CalculationReconciliationAndPages) { runCaseFile(kValidReturn, "schema_section_cases.txt"); }

}  // namespace
