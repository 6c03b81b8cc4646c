#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

#include "platform/ctime.h"
#include "platform/message_box.h"
#include "platform/module_state.h"
#include "support/env.h"

namespace {

CTime noon(int y, int m, int d) { return CTime(y, m, d, 12, 0, 0, -1); }

TEST(CTime, FormatsDayMonthYear) {
    EXPECT_EQ(noon(2016, 4, 5).Format("%d/%m/%Y"), "05/04/2016");
    EXPECT_EQ(noon(1999, 12, 31).Format("%d/%m/%Y %H:%M:%S %y %%"), "31/12/1999 12:00:00 99 %");
    EXPECT_EQ(noon(2024, 12, 31).Format("%j"), "366");
}

TEST(CTime, FieldsOutOfRangeRollOverLikeACalendar) {
    struct Case {
        int y, m, d;
        const char* want;
    };
    const Case cases[] = {
        {2021, 3, 0, "28/02/2021"},   // day 0 is the last day of the month before
        {2024, 3, 0, "29/02/2024"},   // leap year
        {2023, 2, 31, "03/03/2023"},  // 31 February runs into March
        {2022, 13, 1, "01/01/2023"},  // month 13 is January of the next year
        {2022, 0, 15, "15/12/2021"},  // month 0 is December of the year before
        {2000, 2, 29, "29/02/2000"},  // a century leap year
        {1900, 2, 29, "01/03/1900"},  // a century that is not
    };
    for (const auto& c : cases) EXPECT_EQ(noon(c.y, c.m, c.d).Format("%d/%m/%Y"), c.want) << c.want;
}

// Spans between noons are whole days whatever the machine's zone: a clock
// change in March or October must not take or add an hour.
TEST(CTime, DaySpansDoNotDependOnTheTimeZone) {
    for (const char* zone : {"UTC", "Europe/London", "America/New_York"}) {
        const EnvGuard tz("TZ", zone);
        tzset();
        struct Case {
            CTime a, b;
            std::int64_t days;
        };
        const Case cases[] = {
            {noon(2016, 3, 26), noon(2016, 3, 28), 2},    // UK clocks go forward 27 March 2016
            {noon(2016, 10, 29), noon(2016, 10, 31), 2},  // and back 30 October
            {noon(2016, 3, 12), noon(2016, 3, 14), 2},    // US change 13 March 2016
            {noon(2015, 4, 1), noon(2016, 3, 31), 365},
            {noon(2016, 4, 1), noon(2017, 3, 31), 364},
            {noon(2019, 4, 1), noon(2020, 3, 31), 365},   // across 29 February 2020
            {noon(2017, 3, 31), noon(2016, 4, 1), -364},
        };
        for (const auto& c : cases) {
            const CTimeSpan span = c.b - c.a;
            EXPECT_EQ(span.GetTotalSeconds(), c.days * 86400) << zone;
            EXPECT_EQ(span.GetDays(), c.days) << zone;
        }
        EXPECT_EQ(noon(2016, 3, 27).Format("%d/%m/%Y %H"), "27/03/2016 12") << zone;
    }
    tzset();
}

TEST(CTime, CivilDaysRoundTrip) {
    EXPECT_EQ(DaysFromCivil(1970, 1, 1), 0);
    EXPECT_EQ(DaysFromCivil(2000, 3, 1), 11017);
    for (std::int64_t day = -800000; day <= 800000; day += 997) {
        int y = 0, m = 0, d = 0;
        CivilFromDays(day, y, m, d);
        EXPECT_EQ(DaysFromCivil(y, static_cast<unsigned>(m), static_cast<unsigned>(d)), day);
    }
}

TEST(ModuleState, BracketsNestAndRestoreTheCallersState) {
    ModuleState outer{"host"}, inner{"ct600"};
    EXPECT_EQ(CurrentModuleState(), nullptr);
    {
        CModuleStateGuard a(&outer);
        EXPECT_EQ(CurrentModuleState(), &outer);
        {
            CModuleStateGuard b(&inner);
            EXPECT_EQ(CurrentModuleState(), &inner);
        }
        EXPECT_EQ(CurrentModuleState(), &outer);
    }
    EXPECT_EQ(CurrentModuleState(), nullptr);
}

TEST(MessageBox, GoesToTheHostsSinkUntilReset) {
    std::vector<std::string> seen;
    SetMessageSink([](const char* text, void* ctx) { static_cast<std::vector<std::string>*>(ctx)->push_back(text); },
                   &seen);
    EXPECT_EQ(AfxMessageBox("period above 12 months"), IDOK);
    AfxMessageBox(nullptr);
    SetMessageSink(nullptr, nullptr);
    testing::internal::CaptureStderr();
    AfxMessageBox("to stderr");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "to stderr\n");
    EXPECT_EQ(seen, (std::vector<std::string>{"period above 12 months", ""}));
}

}  // namespace
