// The shared library's dynamic symbol table: every export by its plain name,
// and no mangled C++ name among what it defines.
#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <string>

#include "entry/exports.h"

namespace {

TEST(SharedLibrary, DynamicSymbolTableHoldsTheNamesUnmangled) {
    const std::string command = std::string("nm -D --defined-only ") + CT600_SHARED_LIBRARY;
    FILE* pipe = popen(command.c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    std::set<std::string> defined;
    char line[512];
    while (std::fgets(line, sizeof line, pipe)) {
        std::string text(line);
        while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
        const auto space = text.rfind(' ');
        defined.insert(space == std::string::npos ? text : text.substr(space + 1));
    }
    ASSERT_EQ(pclose(pipe), 0);
    int count = 0;
    const FormEntryInfo* entries = FormEntries(&count);
    for (int i = 0; i < count; ++i) EXPECT_TRUE(defined.count(entries[i].name)) << entries[i].name;
    for (const char* other : {"do_calc", "do_calc2", "do_validate", "LiabilityCalc", "AtoT"})
        EXPECT_TRUE(defined.count(other)) << other;
    for (const auto& name : defined) EXPECT_NE(name.rfind("_Z", 0), 0u) << "mangled export " << name;
}

}  // namespace
