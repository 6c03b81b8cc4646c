#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

#include "common/library.h"

TEST(Dates, XmlFormBothWays) {
    struct Case {
        const char* text;
        const char* xml;
    };
    const Case cases[] = {
        {"05/04/2016", "2016-04-05"}, {"01/01/2000", "2000-01-01"}, {"31/12/1999", "1999-12-31"},
        {"29/02/2024", "2024-02-29"}, {"01/04/0100", "0100-04-01"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(xmldate(c.text), c.xml);
        EXPECT_EQ(fromxmldate(c.xml), c.text);
        EXPECT_EQ(xmldate(fromxmldate(c.xml)), c.xml);
    }
    EXPECT_EQ(xmldate("5/4/16"), "2016-04-05");
    EXPECT_EQ(xmldate("1/4/85"), "1985-04-01");
    EXPECT_EQ(xmldate("1-4-85"), "");  // text dates take slashes only
    EXPECT_EQ(xmldate("2016-04-05"), "");
    for (const char* bad : std::initializer_list<const char*>{"", "not a date", "05/04", nullptr}) EXPECT_EQ(xmldate(bad), "");
    for (const char* other : {"05/04/2016", "after 2016", "", "2016-04", "2016-04-05Z", "16-04-05"})
        EXPECT_EQ(fromxmldate(other), other);
    EXPECT_EQ(fromxmldate(" 2016-4-5 "), "05/04/2016");
}

TEST(Dates, BeforeAndAfter) {
    struct Case {
        const char* a;
        const char* b;
        int before, after;
    };
    const Case cases[] = {
        {"01/04/2016", "02/04/2016", 1, 0}, {"02/04/2016", "01/04/2016", 0, 1},
        {"01/04/2016", "01/04/2016", 0, 0}, {"31/12/2015", "01/01/2016", 1, 0},
        {"01/12/2016", "01/02/2017", 1, 0}, {"1/4/16", "2/4/2016", 1, 0},
        {"01/04/2016", "2016-04-02", 0, 0},
        {"31/03/99", "01/04/2000", 1, 0},   {"01/04/79", "01/04/80", 0, 1},
        {"", "01/04/2016", 0, 0},           {"01/04/2016", "x", 0, 0},
        {"01/04/2016", nullptr, 0, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(before(c.a, c.b), c.before) << c.a << " " << (c.b ? c.b : "null");
        EXPECT_EQ(after(c.a, c.b), c.after) << c.a << " " << (c.b ? c.b : "null");
    }
}

TEST(Dates, TodayCanBeFixed) {
    const char* old = std::getenv("CT600_TODAY");
    const std::string saved = old ? old : "";
    setenv("CT600_TODAY", "2016-04-05", 1);
    EXPECT_EQ(sNow(), "05/04/2016");
    setenv("CT600_TODAY", "1/2/03", 1);
    EXPECT_EQ(sNow(), "01/02/2003");
    setenv("CT600_TODAY", "soon", 1);
    const CString today = sNow();
    if (old)
        setenv("CT600_TODAY", saved.c_str(), 1);
    else
        unsetenv("CT600_TODAY");
    int y = 0, m = 0, d = 0;
    ASSERT_EQ(ParseDate(today, y, m, d), 1) << today.c_str();
    EXPECT_GE(y, 2024);
    EXPECT_EQ(today.GetLength(), 10);
}

TEST(Dates, AtoTGivesNoon) {
    struct Case {
        const char* text;
        const char* day;
    };
    const Case cases[] = {{"05/04/2016", "05/04/2016"}, {"1/4/15", "01/04/2015"}, {"29/2/2016", "29/02/2016"}, {"2016-02-29", "01/01/1900"},
                          {"32/01/2016", "01/02/2016"}, {"garbage", "01/01/1900"}, {nullptr, "01/01/1900"}};
    for (const auto& c : cases) {
        const CTime t = AtoT(c.text);
        EXPECT_EQ(t.Format("%d/%m/%Y"), c.day) << (c.text ? c.text : "null");
        EXPECT_EQ(t.GetHour(), 12);
    }
    EXPECT_EQ((AtoT("01/03/2016") - AtoT("28/02/2016")).GetTotalSeconds(), 2 * 86400);
}

// Cases in tests/data/durations.tsv.
TEST(Durations, Iso8601Parts) {
    std::ifstream in(CT600_SOURCE_DIR "/tests/data/durations.tsv");
    int n = 0;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::stringstream row(line);
        std::string text;
        std::getline(row, text, '\t');
        std::vector<int> expected(7);
        int valid = -1;
        for (int& part : expected) row >> part;
        ASSERT_TRUE(row >> valid) << line;
        std::vector<int> got(7, 9);
        CString message("stale");
        ansi_duration(text.c_str(), got[0], got[1], got[2], got[3], got[4], got[5], got[6], message);
        EXPECT_EQ(got, expected) << text;
        EXPECT_EQ(message.IsEmpty(), valid == 1) << text;
        if (valid == 0) {
            EXPECT_NE(message.Find("invalid duration"), -1);
        }
        ++n;
    }
    EXPECT_EQ(n, 21);
    int s, d, h, mi, w, mo, y;
    CString message;
    ansi_duration(nullptr, s, d, h, mi, w, mo, y, message);
    EXPECT_FALSE(message.IsEmpty());
}
