// The shared library as a host sees it: every export found by its plain name
// with dlsym, and a third-generation run through a loaded handle.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <string>

#include "entry/exports.h"

namespace {

std::set<std::string> expectedNames() {
    std::set<std::string> names;
    int count = 0;
    const FormEntryInfo* entries = FormEntries(&count);
    for (int i = 0; i < count; ++i) names.insert(entries[i].name);
    for (const char* other : {"do_calc", "do_calc2", "do_validate", "LiabilityCalc", "AtoT"}) names.insert(other);
    return names;
}

class SharedLibrary : public testing::Test {
protected:
    void* handle = nullptr;
    void SetUp() override {
        handle = dlopen(CT600_SHARED_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(handle, nullptr) << dlerror();
    }
    void TearDown() override {
        if (handle) dlclose(handle);
    }
    FormEntry entry(const char* name) { return reinterpret_cast<FormEntry>(dlsym(handle, name)); }
};

TEST_F(SharedLibrary, EveryExportResolvesByItsPlainName) {
    const auto names = expectedNames();
    ASSERT_EQ(names.size(), 237u);
    for (const auto& name : names) EXPECT_NE(dlsym(handle, name.c_str()), nullptr) << name;
}

TEST_F(SharedLibrary, DynamicSymbolTableHoldsTheNamesUnmangled) {
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
    for (const auto& name : expectedNames()) EXPECT_TRUE(defined.count(name)) << name;
    for (const auto& name : defined) EXPECT_NE(name.rfind("_Z", 0), 0u) << "mangled export " << name;
}

TEST_F(SharedLibrary, ThirdGenerationEntriesComputeThroughTheHandle) {
    using LogSetter = void (*)(void (*)(const char*, void*), void*);
    auto setLog = reinterpret_cast<LogSetter>(dlsym(handle, "ct600lib_set_log_sink"));
    ASSERT_NE(setLog, nullptr);
    setLog([](const char*, void*) {}, nullptr);
    for (const char* name : {"ctv3_16", "_ctav3_22"}) {
        FormEntry run = entry(name);
        ASSERT_NE(run, nullptr) << name;
        CMapStringToString boxes, result;
        boxes["Q155"] = "100000";
        boxes["Q160"] = "40000";
        boxes["Q220"] = "2500.00!";
        CString prefix;
        EXPECT_EQ(run(&boxes, &prefix, &result), 1);
        EXPECT_EQ(boxes["Q165"], "60000.000000") << name;
        EXPECT_EQ(boxes["Q220"], "2500.00!") << name;
        EXPECT_EQ(boxes["Q235"], "62500.000000") << name;
        EXPECT_EQ(boxes["Q315"], "62500.000000") << name;
        EXPECT_NE(result.PLookup("validation"), nullptr) << name;
    }
    setLog(nullptr, nullptr);
}

}  // namespace
