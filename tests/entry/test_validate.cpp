// do_validate as a host calls it, by name through the loaded library: the
// full sample return is clean, and known faults come back in order, the
// business rules' first and the schema's after them.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "common/xmlvar.h"
#include "platform/collections.h"
#include "support/tree.h"

namespace {

using Validate = int (*)(CMapStringToString*, CXMLVar*);

CMapStringToString fullReturn() {
    std::ifstream in(CT600_SOURCE_DIR "/examples/full-return.json");
    const nlohmann::json doc = nlohmann::json::parse(in);
    CMapStringToString boxes;
    for (const auto& [key, value] : doc.items()) boxes[key.c_str()] = value.get<std::string>().c_str();
    return boxes;
}

class ValidateByName : public testing::Test {
protected:
    void* handle = nullptr;
    Validate validate = nullptr;
    void SetUp() override {
        handle = dlopen(CT600_SHARED_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(handle, nullptr) << dlerror();
        validate = reinterpret_cast<Validate>(dlsym(handle, "do_validate"));
        ASSERT_NE(validate, nullptr);
        setenv("CT600_TODAY", "2018-06-30", 1);
    }
    void TearDown() override {
        unsetenv("CT600_TODAY");
        if (handle) dlclose(handle);
    }
};

TEST_F(ValidateByName, TheFullSampleReturnIsClean) {
    CMapStringToString boxes = fullReturn();
    CXMLVar errors("HostErrors");
    errors.AddChild("Kept", "the host's own node");
    EXPECT_EQ(validate(&boxes, &errors), 1);
    ASSERT_EQ(errors.GetChildCount(), 1);  // the host's node, and nothing added
    EXPECT_EQ(errors.FirstChild()->name, "Kept");
}

TEST_F(ValidateByName, KnownFaultsComeBackInOrder) {
    struct Case {
        const char* what;
        std::vector<std::pair<const char*, const char*>> changes;
        std::vector<std::string> expected;
    };
    const std::string widePostalLine(40, 'x');
    const Case cases[] = {
        {"box 165 does not follow from 155 and 160, and an address line too long",
         // The rest of the payee filled, so that the long line is the one schema fault.
         {{"Q165", "12345"}, {"Q955", "Northwind Nominees Limited"}, {"Address1", widePostalLine.c_str()},
          {"Address2", "Bristol"}, {"Q965", "NWN1234"}},
         {"9151:Box 165 must equal Box 155 minus Box 160",
          "9332:Box 235 must equal (the sum of Boxes 165, 170, 175, 180, 185, 190, 195, 200, 205 and 220 ) minus "
          "(the sum of Boxes 225 and 230 ) )",
          "Line: value \"" + widePostalLine + "\" - greater than maximum 35 characters"}},
        {"a period of fifteen months that starts before the form's first day",
         {{"from", "01/01/2015"}},
         {"9101:The return period covered in Boxes 30 and 35 must not be longer than 12 months",
          "9195:Box 330 must equal the equivalent financial year of the return period From date in Box 30",
          "From: value \"2015-01-01\" - must be greater than of equal to 2015-04-01"}},
    };
    for (const auto& c : cases) {
        CMapStringToString boxes = fullReturn();
        for (const auto& [key, value] : c.changes) boxes[key] = value;
        CXMLVar errors("Errors");
        validate(&boxes, &errors);
        EXPECT_EQ(errorTexts(errors), c.expected) << c.what;
        for (const CXMLVar* error : errors.children) EXPECT_EQ(error->name, "Error");
    }
}

TEST_F(ValidateByName, ASecondCallAppendsBehindTheFirst) {
    CMapStringToString boxes = fullReturn();
    boxes["Q165"] = "1";
    CXMLVar errors("Errors");
    validate(&boxes, &errors);
    const auto once = errorTexts(errors);
    ASSERT_FALSE(once.empty());
    validate(&boxes, &errors);
    auto twice = once;
    twice.insert(twice.end(), once.begin(), once.end());
    EXPECT_EQ(errorTexts(errors), twice);
}

TEST_F(ValidateByName, AnEmptyBoxMapAndNullArgumentsDoNotCrash) {
    CMapStringToString empty;
    CXMLVar errors("Errors");
    EXPECT_EQ(validate(&empty, &errors), 1);
    EXPECT_GT(errors.GetChildCount(), 0);  // a return with nothing in it is no return
    EXPECT_EQ(validate(nullptr, nullptr), 1);
}

}  // namespace
