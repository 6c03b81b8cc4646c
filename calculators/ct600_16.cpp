#include "calculators/calculators.h"
#include "calculators/pages_16.h"
#include "calculators/rows.h"
#include "liability/liability.h"

namespace {

// Boxes worked as amount times a percentage rate. Q410 takes its rate from
// Q416, outside its own run of numbers.
constexpr RateRow kRateRows[] = {
    {"Q345", "Q335", "Q340"}, {"Q360", "Q350", "Q355"}, {"Q375", "Q365", "Q370"},
    {"Q395", "Q385", "Q390"}, {"Q410", "Q400", "Q416"}, {"Q425", "Q415", "Q420"},
};

// Totals that show an explicit nought rather than a blank.
constexpr int kZeroBoxes[] = {165, 300, 315, 430, 440, 475, 525};
constexpr YearLine kYearLines[] = {{"Q330", "Q335", "Q345"}, {"Q380", "Q385", "Q395"}};

}  // namespace

void CCT600_16Calc::Calc() {
    DoLogF("CCT600_16Calc::Calc()");
    // Clear the tax block. Through SetBox, so a user's override survives.
    ClearBoxes(*this, 330, 440);
    ProfitBlock();
    Liability();
    TaxBlock();
    TotalsBlock();
    ZeroMarks();
    // A run under a prefix computes the main return only.
    if (!m_Prefix.IsEmpty()) return;
    CalcPages16(*this);
    FieldChecks16(*this);
}

void CCT600_16Calc::ProfitBlock() {
    SetBox("Q165", GetBox("Q155") - GetBox("Q160"));
    SetBox("Q220", GetBox("Q210") - GetBox("Q215"));
    SetBox("Q235", Sum({"Q165", "Q220", "Q170", "Q175", "Q180", "Q185", "Q190", "Q195", "Q200", "Q205"}) -
                       GetBox("Q225") - GetBox("Q230"));
    SetBox("Q295", Sum({"Q240", "Q245", "Q250", "Q255", "Q260", "Q265", "Q270", "Q275", "Q285", "Q290"}));
    SetBox("Q300", GetBox("Q235") - GetBox("Q295"));
    SetBox("Q315", GetBox("Q300") - (GetBox("Q305") + GetBox("Q310") + GetBox("Q312")));
}

void CCT600_16Calc::Liability() {
    // The driver's results replace even a user's entry, and an empty result
    // blanks its box.
    CMapStringToString results;
    CTcharge_16(m_pBoxes, m_Prefix, &results);
    // Under current law the driver also says whether Q329 is ticked; that
    // box is computed like any other, so a user's entry stands.
    CString tick;
    const bool ticks = results.Lookup("Q329", tick);
    if (ticks) results.RemoveKey("Q329");
    TakeOverResults(results);
    if (!ticks) return;
    const CString entered = GetBoxText("Q329");
    if (entered.IsEmpty() || entered[entered.GetLength() - 1] != '!') WriteChanged("Q329", tick);
}

void CCT600_16Calc::TaxBlock() {
    RateRows(*this, kRateRows);
    SetBox("Q430", Sum({"Q345", "Q360", "Q375", "Q395", "Q410", "Q425"}));
    SetBox("Q440", GetBox("Q430") - GetBox("Q435"));
    SetBox("Q470", Sum({"Q445", "Q450", "Q465"}));
    // With tax to pay, a nil total of reliefs shows as nought, before Q475 reads it.
    if (GetBox("Q440") > 0) MarkZero("Q470");
}

// The keys are the host's form's: Q496 and Q516 have no box of that number on
// the published return, and 505 and 535 are not keys here.
void CCT600_16Calc::TotalsBlock() {
    SetBox("Q475", GetBox("Q440") - GetBox("Q470"));
    SetBox("Q500", Sum({"Q490", "Q495", "Q496"}));
    SetBox("Q510", Sum({"Q475", "Q500", "Q480", "Q516"}));
    SetBox("Q525", FlooredAtZero(GetBox("Q510") - GetBox("Q515")));
    SetBox("Q526", FlooredAtZero(GetBox("Q471") + GetBox("Q474") - (GetBox("Q472") + GetBox("Q473"))));
    SetBox("Q528", Sum({"Q525", "Q526", "Q527"}));
    SetBox("Q545", GetBox("Q530") + GetBox("Q540"));
    SetBox("Q560", GetBox("Q550") + GetBox("Q555"));
    SetBox("Q570", FlooredAtZero(GetBox("Q545") - GetBox("Q525")));
    SetBox("Q575", FlooredAtZero(GetBox("Q545") + GetBox("Q560") - GetBox("Q525") - GetBox("Q570")));
    SetBox("Q580", FlooredAtZero(GetBox("Q545") + GetBox("Q560") + GetBox("Q565") - GetBox("Q525") - GetBox("Q570") -
                           GetBox("Q575")));
    SetBox("Q600", FlooredAtZero(GetBox("Q525") - GetBox("Q545") - GetBox("Q560") - GetBox("Q565") - GetBox("Q595")));
    SetBox("Q605", FlooredAtZero(GetBox("Q560") + GetBox("Q565") + GetBox("Q595") + GetBox("Q545") - GetBox("Q525")));
    SetBox("Q670", GetBox("Q660") + GetBox("Q665"));
}

void CCT600_16Calc::ZeroMarks() { MarkZeroes(*this, kZeroBoxes, kYearLines); }
