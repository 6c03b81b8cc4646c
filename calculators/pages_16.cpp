#include "calculators/pages_16.h"

#include <algorithm>

#include "calculators/rows.h"
#include "common/library.h"

namespace {

constexpr LoanPageKeys kLoanPage16{
    {"QA15", "QA10B.%d", 6}, "QA20",
    {{"QA30", "QA25B.%d", 6}, {"QA35", "QA25C.%d", 6}}, "QA40", "QA45",
    {{"QA55", "QA50B.%d", 6}, {"QA60", "QA50C.%d", 6}}, "QA65", "QA70",
    "QA80", "Q480",
};

void pageA(CBaseCalc& c) {
    // The rate follows the start of the period, and each tax rounds up.
    const double rate = LoanTaxRate(c.GetBoxText("from"), c.GetBoxText("to"));
    LoanPage(c, kLoanPage16, {rate, roundpennyup, true, true});
}

constexpr RowTotal kPageB16[] = {
    {"QB10", "QB5F.%d", 200}, {"QB15", "QB5G.%d", 200}, {"QB20", "QB5H.%d", 200},
    {"QB25", "QB5I.%d", 200}, {"QB30", "QB5J.%d", 200},
};

void pageB(CBaseCalc& c) {
    SumRows(c, kPageB16);
    c.SetBox("Q490", c.GetBox("QB30"));
}

void pageC(CBaseCalc& c) {
    c.SetBox("QC10", c.SumBoxes("QC5D.%d", 1, 20));
    c.SetBox("QC80", c.Sum({"QC45", "QC46", "QC50", "QC55", "QC60", "QC65", "QC70", "QC75"}));
    c.SetBox("QC90", c.SumBoxes("QC85D.%d", 1, 20));
    c.SetBox("QC130", c.SumBoxes("QC125D.%d", 1, 20));
    c.SetBox("QC185", c.Sum({"QC160", "QC161", "QC165", "QC170", "QC175", "QC180"}));
    c.SetBox("QC195", c.SumBoxes("QC190D.%d", 1, 20));
    c.SetBox("Q310", c.GetBox("QC10"));
    c.SetBox("Q312", c.GetBox("QC130"));
}

void pageE(CBaseCalc& c) {
    c.SetBox("QE90", c.Sum({"QE50", "QE55", "QE60", "QE65", "QE70", "QE75", "QE80", "QE85"}));
    c.SetBox("QE125", c.Sum({"QE95", "QE100", "QE105", "QE110", "QE115", "QE120"}));
}

// Every comparison reads the box as it stands at that step; a skipped step
// leaves its boxes as they came in.
void pageL(CBaseCalc& c) {
    auto box = [&c](const char* key) { return c.GetBox(key); };
    c.SetBox("QL8", FlooredAtZero(box("QL5") - box("QL7")));
    c.SetBox("QL9", FlooredAtZero(box("QL6") - box("QL7")));
    c.SetBox("QL25", box("QL15") + box("QL20"));
    if (box("QL15") > 0) c.SetBox("QL30", box("Q475"));
    c.SetBox("QL40", box("QL30") - box("QL35"));
    c.SetBox("QL45", std::min(box("QL40"), box("QL25")));
    c.SetBox("QL50", FlooredAtZero(box("QL25") - box("QL45")));
    if (box("QL50") > 0) {
        c.SetBox("QL60", box("QL15") - box("QL55"));
        if (box("QL15") > box("QL30")) c.SetBox("QL62", box("QL15") - box("QL30"));
        if (box("QL9") > 0) c.SetBox("QL65", FlooredAtZero(box("QL62") - box("QL60")));
    }
    c.SetBox("QL70", box("QL50") - box("QL65"));
    c.SetBox("QL80", FlooredAtZero(box("QL70") - box("QL75")));
    c.SetBox("QL85", box("QL70") - box("QL80"));
    c.SetBox("QL95", box("QL85") - box("QL90"));
    c.SetBox("QL105", box("QL95") - box("QL100"));
    c.SetBox("QL120", box("QL110") + box("QL115"));
    c.SetBox("QL125", box("QL105") - box("QL120"));
    if (box("QL50") - box("QL65") > 0) {
        c.SetBox("QL129", box("QL8"));
        c.SetBox("QL130", box("QL65"));
        c.SetBox("QL140", box("QL130") - box("QL135"));
        c.SetBox("QL145", box("QL80"));
        c.SetBox("QL150", box("QL140") + box("QL145"));
    }
    c.SetBox("QL155", box("QL135"));
    c.SetBox("QL160", box("QL100"));
    c.SetBox("QL165", box("QL155") + box("QL160"));
    c.SetBox("QL180", box("QL170") - box("QL175"));
    c.SetBox("QL195", box("QL45"));
    c.SetBox("QL200", box("QL110"));
    c.SetBox("QL205", box("QL175"));
    c.SetBox("QL210", box("QL195") + box("QL200") + box("QL205") + box("QL194"));
    c.SetBox("Q530", box("QL210"));
    c.SetBox("Q880", box("QL125"));
}

}  // namespace

void CalcPages16(CBaseCalc& calc) {
    pageA(calc);
    pageB(calc);
    pageC(calc);
    pageE(calc);
    TonnagePage(calc);
    PageG(calc);
    pageL(calc);
}

void FieldChecks16(CBaseCalc& calc) {
    FieldChecks(calc, "from", "to", "Date must be dd/mm/yyyy - must have slashes typed in.");
}
