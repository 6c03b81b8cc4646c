// Each test gets a temporary folder of its own under the suite's, so tests
// that read back calc.htm or t.xml can run side by side.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

class PerTestTempDir : public testing::EmptyTestEventListener {
public:
    PerTestTempDir() {
        const char* base = std::getenv("CT600_TEMP_DIR");
        base_ = base && *base ? base : (std::filesystem::temp_directory_path() / "ct600-tests").string();
    }
    void OnTestStart(const testing::TestInfo& info) override {
        std::string name = std::string(info.test_suite_name()) + "." + info.name();
        for (char& c : name)
            if (c == '/') c = '_';
        const std::filesystem::path dir = std::filesystem::path(base_) / name;
        std::error_code ignored;
        std::filesystem::create_directories(dir, ignored);
        setenv("CT600_TEMP_DIR", dir.c_str(), 1);
    }

private:
    std::string base_;
};

const bool registered = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new PerTestTempDir);
    return true;
}();

}  // namespace
