#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "common/basics.h"
#include "common/library.h"

TEST(Myatof, ReadsTheNumberAtTheFront) {
    struct Case {
        const char* text;
        double value;
    };
    const Case cases[] = {
        {"1000.00!", 1000},   {"1,234.56", 1234.56}, {"\xA3" "12", 12},  {"-\xA3" "12", -12},
        {"\xA3-12", -12},     {" -7.5", -7.5},       {"\t+3", 3},        {"zero", 0},
        {"", 0},              {"1e3", 1000},         {"1E-2", 0.01},     {"2e", 2},
        {"1e400", 0},         {"-1e400", 0},         {"1e-400", 0},      {"nan", 0},
        {"inf", 0},           {"-inf", 0},           {"12abc", 12},      {"abc", 0},
        {"-5", -5},           {"(5)", 0},            {".5", 0.5},        {"5.", 5},
        {".", 0},             {"-", 0},              {",5", 0},          {"1,,2", 1},
        {"1,000,000", 1e6},   {"0x10", 0},           {"-0", 0},          {"0.1", 0.1},
        {"\xA3\xA3" "5", 0},  {"12 345", 12},
    };
    for (const auto& c : cases) EXPECT_EQ(myatof(c.text), c.value) << c.text;
    EXPECT_EQ(myatof(nullptr), 0);
    EXPECT_FALSE(std::signbit(myatof("-0.00")));
    EXPECT_EQ(myatof(std::string(400, '9').c_str()), 0);  // beyond double: not finite
}

TEST(ParseDate, TextFormsAndYearFirstXmlForms) {
    struct Case {
        const char* text;
        int ok, year, month, day;
    };
    const Case text[] = {
        {"05/04/2016", 1, 2016, 4, 5}, {"5/4/16", 1, 16, 4, 5},       {" 05/4/2016 ", 1, 2016, 4, 5},
        {"99/99/9999", 1, 9999, 99, 99},
        {"31-12-99", 0, 0, 0, 0},      {"1.2.2003", 0, 0, 0, 0},      {"2016-04-05", 0, 0, 0, 0},
        {"", 0, 0, 0, 0},              {"   ", 0, 0, 0, 0},          {"05/04", 0, 0, 0, 0},
        {"05/04/2016/1", 0, 0, 0, 0},  {"a5/04/2016", 0, 0, 0, 0},   {"05/04/2016x", 0, 0, 0, 0},
        {"05/04-2016", 0, 0, 0, 0},    {"05//2016", 0, 0, 0, 0},     {"05/04/20160", 0, 0, 0, 0},
        {"-5/04/2016", 0, 0, 0, 0},    {"05 04 2016", 0, 0, 0, 0},   {"today", 0, 0, 0, 0},
    };
    // XML dates: year first with hyphens only.
    const Case xml[] = {
        {"2016-04-05", 1, 2016, 4, 5}, {" 2016-4-5 ", 1, 2016, 4, 5}, {"2023-02-31", 1, 2023, 2, 31},
        {"16-04-05", 0, 0, 0, 0},      {"05/04/2016", 0, 0, 0, 0},    {"2016-04", 0, 0, 0, 0},
        {"2016-04-05Z", 0, 0, 0, 0},   {"", 0, 0, 0, 0},
    };
    const auto check = [](const auto& cases, int (*parse)(const char*, int&, int&, int&)) {
        for (const Case& c : cases) {
            int y = -1, m = -1, d = -1;
            EXPECT_EQ(parse(c.text, y, m, d), c.ok) << c.text;
            EXPECT_EQ(std::vector<int>({y, m, d}), std::vector<int>({c.year, c.month, c.day})) << c.text;
        }
    };
    check(text, ParseDate);
    check(xml, ParseXmlDate);
}

TEST(Yyyy, WidensTwoDigitYears) {
    const std::vector<std::pair<int, int>> cases = {{0, 2000},   {16, 2016},   {79, 2079}, {80, 1980},
                                                    {99, 1999},  {100, 100},   {2016, 2016}, {-1, -1}};
    for (const auto& [in, out] : cases) EXPECT_EQ(yyyy(in), out) << in;
}

TEST(DoLogF, SinkReceivesTheExactLine) {
    std::vector<std::string> lines;
    SetLogSink([](const char* line, void* c) { static_cast<std::vector<std::string>*>(c)->push_back(line); },
               &lines);
    DoLogF("tt=%s n=%d", "ct60", 7);
    DoLogF("%s", "");
    SetLogSink(nullptr, nullptr);
    EXPECT_EQ(lines, (std::vector<std::string>{"tt=ct60 n=7", ""}));
}

TEST(DoLogF, DefaultGoesToTheNamedFile) {
    const std::string path = (GetTempDir() + "/log_test.log").str();
    std::remove(path.c_str());
    const char* before = std::getenv("CT600_LOG_FILE");
    const std::string saved = before ? before : "";
    setenv("CT600_LOG_FILE", path.c_str(), 1);
    DoLogF("first %d", 1);
    DoLogF("second");
    // The log is kept open between lines; removing it starts a new one.
    std::ifstream before_removal(path);
    const std::string kept((std::istreambuf_iterator<char>(before_removal)), std::istreambuf_iterator<char>());
    EXPECT_EQ(kept, "first 1\nsecond\n");
    std::remove(path.c_str());
    DoLogF("third");
    setenv("CT600_LOG_FILE", "/no/such/folder/x.log", 1);
    DoLogF("lost quietly");
    if (before)
        setenv("CT600_LOG_FILE", saved.c_str(), 1);
    else
        unsetenv("CT600_LOG_FILE");
    std::ifstream in(path);
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_EQ(text, "third\n");
}
