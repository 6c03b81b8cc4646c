// Scratch files for the tests of the ct600 command: each test writes under
// its own temporary folder (set per test), so tests may run side by side.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "support/run_cli.h"
#include "support/table.h"

namespace clitest {

inline std::filesystem::path scratch(const std::string& name) {
    const char* base = std::getenv("CT600_TEMP_DIR");
    const auto dir = std::filesystem::path(base && *base ? base : "/tmp") / "scratch";
    std::filesystem::create_directories(dir);
    return dir / name;
}

// A folder of its own, emptied.
inline std::filesystem::path freshFolder(const std::string& name) {
    const std::filesystem::path folder = scratch(name);
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    return folder;
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

// A shell script run in folder with $CT600 the command, $SRC the source tree
// and $EXAMPLES its examples; standard error and
// standard output together.
inline CliOutcome shell(const std::filesystem::path& folder, const std::string& script) {
    return RunShell("cd '" + folder.string() + "' && CT600='" + std::string(CT600_CLI) + "' SRC='" CT600_SOURCE_DIR
                    "' && EXAMPLES=\"$SRC/examples\" && { " + script + "\n} 2>&1");
}

// Runs the cases of a file under tests/data in folder (the files of
// tests/data/cli copied in first): each "$ script" must exit with its "? N"
// (0 when not given), print every "> text" and no "! text", and, given
// "n N", print N lines.
inline void runCases(const std::filesystem::path& folder, const std::string& file) {
    std::filesystem::copy(CT600_SOURCE_DIR "/tests/data/cli", folder, std::filesystem::copy_options::recursive |
                                                                      std::filesystem::copy_options::skip_existing);
    const auto cases = testdata::cases(file);
    ASSERT_FALSE(cases.empty()) << file;
    for (const testdata::Case& c : cases) {
        std::string script;
        std::vector<std::string> absent;
        int status = 0, lines = -1;
        for (const std::string& line : c.body) {
            const std::string rest = testdata::unescape(line.substr(std::min<std::size_t>(2, line.size())));
            if (line[0] == '$') script += rest + "\n";
            else if (line[0] == '?') status = std::stoi(rest);
            else if (line[0] == '!') absent.push_back(rest);
            else if (line[0] == 'n') lines = std::stoi(rest);
        }
        const CliOutcome o = shell(folder, script);
        EXPECT_EQ(o.status, status) << c.what << "\n" << o.out;
        for (const std::string& text : c.expected)
            EXPECT_NE(o.out.find(testdata::unescape(text)), std::string::npos) << c.what << ": " << text << "\n" << o.out;
        for (const std::string& text : absent) EXPECT_EQ(o.out.find(text), std::string::npos) << c.what << ": " << text;
        if (lines >= 0) {
            EXPECT_EQ(count(o.out, "\n"), lines) << c.what << "\n" << o.out;
        }
    }
}

}  // namespace clitest
