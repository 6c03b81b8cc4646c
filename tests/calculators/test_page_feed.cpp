// Page totals written late in the pass reach the main return on the next run
// over the same box map, never in the run that computed them.
#include <gtest/gtest.h>

#include "common/errors.h"
#include "common/library.h"
#include "entry/exports.h"
#include "support.h"

namespace {

TEST(PageFeed, TotalsReachTheMainReturnOnTheSecondRun) {
    struct Case {
        const char* page;
        std::vector<std::pair<const char*, const char*>> inputs;
        const char* fed;      // the main-return box the page writes
        const char* reader;   // a main-return box that reads it
        double firstRun, secondRun;
    };
    const Case cases[] = {
        // Page C: group relief of 5,000 reduces profits chargeable (Q315) next time.
        {"C", {{"Q155", "20000"}, {"QC5D.1", "3000"}, {"QC5D.20", "2000"}}, "Q310", "Q315", 20000, 15000},
        // Page A: loan of 4,000 from 2015 at 25% adds 1,000 to Q510 next time.
        {"A", {{"from", "01/01/2015"}, {"QA10B.3", "4000"}}, "Q480", "Q510", 0, 1000},
        // Page B: CFC tax of 700 reaches Q500 next time.
        {"B", {{"QB5J.17", "700"}}, "Q490", "Q500", 0, 700},
        // Page L: 450 of R&D credit payable (QL45, capped by QL25) reaches Q545 next time.
        {"L", {{"QL20", "450"}, {"QL30", "900!"}}, "Q530", "Q545", 0, 450},
    };
    const QuietErrors quiet;
    for (const auto& c : cases) {
        CMapStringToString boxes, result;
        CString prefix;
        for (const auto& [key, value] : c.inputs) boxes[key] = value;
        ctv3_16(&boxes, &prefix, &result);
        const double fed = myatof(boxes[c.fed]);
        EXPECT_NE(fed, 0) << "page " << c.page;
        EXPECT_EQ(myatof(boxes[c.reader]), c.firstRun) << "page " << c.page << ", first run";
        ctv3_16(&boxes, &prefix, &result);
        EXPECT_EQ(myatof(boxes[c.fed]), fed) << "page " << c.page;
        EXPECT_EQ(myatof(boxes[c.reader]), c.secondRun) << "page " << c.page << ", second run";
    }
}

}  // namespace
