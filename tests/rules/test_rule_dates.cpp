// Dates and durations, and the date notation of the rules.
#include <gtest/gtest.h>

#include <memory>
#include <vector>
#include <string>

#include "common/library.h"
#include "rules/ruledates.h"
#include "rules/ruledsl.h"
#include "support.h"
#include "support/table.h"

namespace {

// Cases in tests/data/rule_dates.tsv: date arithmetic, durations and the seconds of dates.
TEST(RuleDates, AddDurationAndDateDifference) {
    int n = 0;
    for (const auto& f : testdata::rows("rule_dates.tsv", 4)) {
        const char *a = f[1].c_str(), *b = f[2].c_str();
        if (f[0] == "add" || f[0] == "diff") {
            EXPECT_EQ(f[0] == "add" ? std::string(AddDuration(a, b)) : std::string(DateDifference(a, b)), f[3]) << a << b;
        } else if (f[0] == "duration") {
            EXPECT_EQ(std::string(SecondsToDuration(std::stoll(f[1]) * 86400)), f[2]);
            EXPECT_EQ(DateSeconds(b), std::stoll(f[1]) * 86400) << "the duration reads back as its days";
        } else {
            EXPECT_EQ(DateSeconds(a), std::stoll(f[2])) << a;
        }
        ++n;
    }
    EXPECT_EQ(n, 33);
    EXPECT_EQ(std::string(AddDuration(nullptr, nullptr)), "-001-12-00");  // month 0 wraps, as any would
}

TEST(RuleDates, DurationsAndDifferences) {
    EXPECT_EQ(std::string(SecondsToDuration(86399)), "P0D");
    EXPECT_EQ(DateSeconds("not a date"), DateSeconds("")) << "every non-date is one far-off day";

    int y = 9, m = 9, d = 9;
    DurationParts("-P12M", y, m, d);
    EXPECT_EQ(m, -12);
    EXPECT_EQ(y, 0);
    EXPECT_EQ(d, 0);
    DurationParts("garbage", y, m, d);
    EXPECT_EQ(y + m + d, 0);

    EXPECT_EQ(YearOf("2023-12-31"), 2023);
    EXPECT_EQ(YearOf("2023-02-31"), 2023);
    EXPECT_EQ(YearOf("nothing"), 0);
}

TEST(RuleDates, Today) {
    rulestest::fixToday();
    EXPECT_EQ(std::string(Today("")), "2024-09-30");
    EXPECT_EQ(std::string(Today(nullptr)), "2024-09-30");
    EXPECT_EQ(std::string(Today("2020-01-01")), "2020-01-01");
    setenv("CT600_TODAY", "01/02/2025", 1);
    EXPECT_EQ(std::string(Today("")), "2025-02-01");
    rulestest::fixToday();
}

// The notation on a small return: From and To in a period.
class DateNotation : public ::testing::Test {
protected:
    void SetUp() override { rulestest::fixToday(); }
    double eval(const ruledsl::Num& n, const char* from, const char* to) {
        std::unique_ptr<CXMLVar> doc(rulestest::parse(
            (std::string("<P><From>") + from + "</From><To>" + to + "</To></P>").c_str()));
        CRuleContext ctx(doc.get(), nullptr);
        ctx.m_Current = doc.get();
        return n.eval(ctx);
    }
};

TEST_F(DateNotation, FinancialYearsDaysAndSpans) {
    using namespace ruledsl;
    const struct {
        const char* why;
        Num expression;
        const char* from;
        const char* to;
        double result;
    } cases[] = {
        {"fy of 31 March is the year before", fy("To"), "", "2023-03-31", 2022},
        {"fy of 1 April is its own year", fy("To"), "", "2023-04-01", 2023},
        {"fy of a date with blanks round it", fy("To"), "", " 2023-04-01\n", 2023},
        {"fy of no date", fy("To"), "", "", 0},
        {"ymd orders digits", ymd("From"), "2015-04-01", "", 20150401},
        {"ymd of plus need not be a real date", ymd(plus("From", "-P12M")), "2024-02-29", "", 20230229},
        {"ymd of an absent date", ymd("Nothing"), "", "", 0},
        {"span of one day", span("From", "To"), "2023-04-01", "2023-04-01", 1},
        {"span of a year", span("From", "To"), "2023-04-01", "2024-03-31", 366},
        {"span to the day before", span("From", "To"), "2023-04-01", "2023-03-31", 0},
        {"span backwards", span("From", "To"), "2023-04-10", "2023-04-01", -8},
        {"span to a built date", span("From", concat(num("To") + 1, "-03-31")), "2023-01-01", "2022", 90},
        {"dayno of today", dayno(today()), "", "", 19996},
        {"dayno of a date", dayno("From"), "2024-09-30", "", 19996},
        {"dayno of 1 January 1970", dayno("From"), "1970-01-01", "", 0},
        {"dayno truncates: the day before 1970 is day 0 too", dayno("From"), "1969-12-31", "", 0},
        {"dayno two days before 1970", dayno("From"), "1969-12-30", "", -1},
        {"day 0 of a month falls on the last day of the month before", dayno(plus("From", "-P9M1D")), "2021-12-01",
         "", 18686},
        {"dayno of that real day", dayno("From"), "2021-02-28", "", 18686},
        {"day 31 of a short month falls on the next", dayno(plus("From", "-P3M")), "2023-05-31", "", 19419},
        {"dayno of 3 March 2023", dayno("From"), "2023-03-03", "", 19419},
        {"digits of a rate", digits("From"), "19.00", "", 1900},
        {"division by nothing gives nothing", num("From") / num("To"), "5", "0", 0},
    };
    for (const auto& c : cases) EXPECT_EQ(eval(c.expression, c.from, c.to), c.result) << c.why;
}

}  // namespace
