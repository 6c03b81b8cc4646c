// Scratch files for the tests of the ct600 command: each test writes under
// its own temporary folder (set per test), so tests may run side by side.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/run_cli.h"

namespace clitest {

inline std::filesystem::path scratch(const std::string& name) {
    const char* base = std::getenv("CT600_TEMP_DIR");
    const auto dir = std::filesystem::path(base && *base ? base : "/tmp") / "scratch";
    std::filesystem::create_directories(dir);
    return dir / name;
}

inline std::string put(const std::filesystem::path& path, const std::string& text) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
    return path.string();
}

inline std::string slurp(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

inline std::string example(const char* name) { return std::string(CT600_SOURCE_DIR) + "/examples/" + name; }

inline int count(const std::string& text, const std::string& part) {
    int n = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) ++n;
    return n;
}

// Standard output alone, standard error dropped: for output that must parse.
inline std::string stdoutOf(const std::string& arguments, const std::string& environment = "") {
    return RunShell(environment + " " + std::string(CT600_CLI) + " " + arguments + " 2>/dev/null").out;
}

}  // namespace clitest
