// do_calc and do_calc2: the choice of calculator, the rebuilt Boxes node and
// the dropping of noughts; and, over generated returns of all three
// generations, what a recalculation and a validation may change in a return.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <numeric>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "calculators/calculators.h"
#include "common/errors.h"
#include "common/library.h"
#include "entry/exports.h"
#include "envelope/envelope.h"
#include "liability/liability.h"
#include "platform/message_box.h"

namespace {

void quietErrors(const CObList&, const CStringList*, void*) {}

class RoundTrip : public testing::Test {
protected:
    std::vector<std::string> log;
    void SetUp() override {
        SetErrorSink(quietErrors, nullptr);
        SetMessageSink([](const char*, void*) {}, nullptr);
        SetLogSink([](const char* line, void* ctx) { static_cast<std::vector<std::string>*>(ctx)->push_back(line); },
                   &log);
    }
    void TearDown() override {
        SetLogSink(nullptr, nullptr);
        SetErrorSink(nullptr, nullptr);
        SetMessageSink(nullptr, nullptr);
    }
    bool logged(const char* line) const { return std::find(log.begin(), log.end(), line) != log.end(); }

    static CXMLVar* returnTree(const char* rootName, const char* form, const char* type) {
        auto* tree = new CXMLVar(rootName);
        if (type) tree->SetAttr("type", type);
        CXMLVar* boxes = tree->GetChild("Boxes");
        if (form) boxes->SetChildValue("form", form);
        boxes->SetChildValue("Q155", "1000");
        return tree;
    }
};

TEST_F(RoundTrip, FormAndTypeChooseTheCalculator) {
    struct Case {
        const char* root;
        const char* form;
        const char* type;
        bool thirdGeneration;
        bool anyCalculation;
    };
    const Case cases[] = {
        {"Return", "CTV3 2016", nullptr, true, true},  // the test comes after lower-casing
        {"Return", "ctv3", "CTA", true, true},         // the form wins over the type
        {"TF", "ct600", "CTA", false, true},
        {"TF", "ct600", nullptr, false, true},         // TF with no type: second generation
        {"TF", "ct600", "CTB", false, false},
        {"Return", "ct600", nullptr, false, false},
        {"Return", nullptr, "CTA", false, true},
    };
    for (const auto& c : cases) {
        log.clear();
        std::unique_ptr<CXMLVar> tree(returnTree(c.root, c.form, c.type));
        do_calc(tree.get());
        const CXMLVar* boxes = tree->FindChild("Boxes");
        ASSERT_NE(boxes, nullptr);
        EXPECT_EQ(logged("CCT600_16Calc::Calc()"), c.thirdGeneration) << c.root << " " << (c.form ? c.form : "");
        EXPECT_EQ(std::count(log.begin(), log.end(), "ctv3_16"), c.thirdGeneration ? 1 : 0) << "the frame logs once";
        EXPECT_EQ(boxes->FindChild("Q165") != nullptr, c.thirdGeneration);
        EXPECT_EQ(tree->FindChild(kCalcErrorsRoot) != nullptr, c.anyCalculation);
        EXPECT_EQ(boxes->FindChild("validation"), nullptr);
        EXPECT_EQ(tree->CountChildren("Boxes"), 1);
    }
}

TEST_F(RoundTrip, NoughtsVanishWordsAndOverridesStay) {
    CXMLVar tree("Return");
    CXMLVar* boxes = tree.GetChild("Boxes");
    const char* kept[][2] = {{"Q1", "Example Ltd"}, {"Q6", "zero"}, {"Q7", "0.00!"}, {"Q8", "12.5"}};
    for (const auto& kv : kept) boxes->SetChildValue(kv[0], kv[1]);
    for (const char* nought : {"0", "0.000000", "", "-0"}) boxes->SetChildValue(CString("N") + nought, nought);
    do_calc(&tree);  // no form: no calculation, Boxes rebuilt all the same
    const CXMLVar* rebuilt = tree.FindChild("Boxes");
    ASSERT_NE(rebuilt, nullptr);
    for (const auto& kv : kept) {
        const CXMLVar* box = rebuilt->FindChild(kv[0]);
        ASSERT_NE(box, nullptr) << kv[0];
        EXPECT_EQ(box->value, kv[1]);
    }
    EXPECT_EQ(rebuilt->GetChildCount(), 4);
}

TEST_F(RoundTrip, ThePrefixAttributeIsRestoredAndNotApplied) {
    CXMLVar tree("Return");
    tree.SetAttr("prefix", "S");
    CXMLVar* boxes = tree.GetChild("Boxes");
    boxes->SetChildValue("form", "ctv3");
    boxes->SetChildValue("Q155", "300");
    do_calc(&tree);
    EXPECT_EQ(tree.GetAttr("prefix"), "S");
    const CXMLVar* q165 = tree.FindChild("Boxes")->FindChild("Q165");
    ASSERT_NE(q165, nullptr);
    EXPECT_EQ(q165->value, "300.000000");
}

TEST_F(RoundTrip, ANewErrorDocumentReplacesTheFormerOne) {
    CXMLVar tree("Return");
    tree.GetChild("Boxes")->SetChildValue("form", "ctv3");
    tree.AddChild(new CXMLVar(kCalcErrorsRoot))->AddChild("Error", "stale");
    do_calc(&tree);
    EXPECT_EQ(tree.CountChildren(kCalcErrorsRoot), 1);
    EXPECT_EQ(tree.FindChild(kCalcErrorsRoot)->FindChild("Error"), nullptr);
}

TEST_F(RoundTrip, DoCalc2WorksOnTextAndSurvivesBadText) {
    struct Case {
        const char* zxml;
        bool hasQ165;
    };
    const Case cases[] = {
        {"<Return><Boxes><form>ctv3</form><Q155>250</Q155><Q9>0</Q9></Boxes></Return>", true},
        {"", false},
        {"<Return><Boxes><Q155>5", false},  // cut short before any form: no calculation
        {"not xml at all \x01\xff", false},
    };
    for (const auto& c : cases) {
        CMapStringToString map;
        map["zxml"] = c.zxml;
        EXPECT_EQ(do_calc2(&map, nullptr, &map), 1);
        CXMLVar back("");
        back.Open(map["zxml"]);
        const CXMLVar* boxes = back.FindChild("Boxes");
        ASSERT_NE(boxes, nullptr) << c.zxml;
        EXPECT_EQ(boxes->FindChild("Q9"), nullptr);
        EXPECT_EQ(boxes->FindChild("Q165") != nullptr, c.hasQ165) << c.zxml;
    }
    // Cut short: what Open kept is the return, prefix and all. Its boxes are
    // read with the prefix blanked, so "validation" is a box like any other.
    CMapStringToString map;
    map["zxml"] = "<TF type=\"CT)A\" prefix=\"P\"><Boxes><form>ct600</form><Q5>0.000000</Q5>"
                  "<validation>v</valiax=\"P\x1c>T0</Q5><s></TF>";
    do_calc2(&map, nullptr, &map);
    CXMLVar back("");
    back.Open(map["zxml"]);
    EXPECT_EQ(back.GetAttr("prefix"), "P");
    std::string boxes;
    for (const CXMLVar* box : back.GetChild("Boxes")->children) boxes += std::string(box->name) + "=" + box->value.c_str() + ";";
    EXPECT_EQ(boxes, "form=ct600;validation=v;");
}

}  // namespace

namespace {

// ---------------------------------------------------------------- generated returns

// Returns made up from the boxes of one generation, with every kind of text a
// host sends: figures, overrides, noughts written every way, "zero", blanks,
// free text, periods good and bad, pages filled or left alone. One seed makes
// one return, so a failure names the seed that brings it back.
enum class Generation { First, Second, Third };

const char* nameOf(Generation g) {
    return g == Generation::First ? "first" : g == Generation::Second ? "second" : "third";
}

FormEntry entryOf(Generation g) {
    return g == Generation::First ? &ct600_02 : g == Generation::Second ? &ct600_05 : &ctv3_16;
}

struct Page {
    std::vector<const char*> boxes;
    std::vector<std::pair<const char*, int>> rows;  // row format and its number of rows
};

// The boxes a host fills, by generation. The boxes the calculator writes are
// found by running it (see computedBoxes), so that overrides land on them too.
struct Form {
    const char* from;
    const char* to;
    int firstYear, lastYear;  // financial years the periods start in
    std::vector<const char*> inputs;
    std::vector<Page> pages;
};

const Form& formOf(Generation g) {
    static const Form third{
        "from", "to", 2008, 2023,
        {"Q155", "Q160", "Q170", "Q175", "Q180", "Q185", "Q190", "Q195", "Q200", "Q205", "Q210", "Q215", "Q225",
         "Q230", "Q240", "Q245", "Q250", "Q255", "Q260", "Q265", "Q270", "Q275", "Q285", "Q290", "Q305", "Q350",
         "Q355", "Q365", "Q370", "Q400", "Q416", "Q415", "Q420", "Q445", "Q450", "Q465", "Q471", "Q472", "Q473",
         "Q474", "Q495", "Q496", "Q515", "Q516", "Q527", "Q540", "Q550", "Q555", "Q565", "Q595", "Q660", "Q665",
         "Q38", "Q67", "Q1"},
        {{{}, {{"QA10B.%d", 6}, {"QA25B.%d", 6}, {"QA25C.%d", 6}, {"QA50B.%d", 6}, {"QA50C.%d", 6}}},
         {{}, {{"QB5F.%d", 200}, {"QB5G.%d", 200}, {"QB5H.%d", 200}, {"QB5I.%d", 200}, {"QB5J.%d", 200}}},
         {{"QC45", "QC46", "QC50", "QC55", "QC60", "QC65", "QC70", "QC75", "QC160", "QC161", "QC165", "QC170",
           "QC175", "QC180"},
          {{"QC5D.%d", 20}, {"QC85D.%d", 20}, {"QC125D.%d", 20}, {"QC190D.%d", 20}}},
         {{"QE50", "QE55", "QE60", "QE65", "QE70", "QE75", "QE80", "QE85", "QE95", "QE100", "QE105", "QE110",
           "QE115", "QE120"},
          {}},
         {{"QF10G.8"}, {{"QF10D.%d", 7}, {"QF10E.%d", 7}}},
         {{}, {{"QG1.4.%d", 5}}},
         {{"QL5", "QL6", "QL7", "QL15", "QL20", "QL30", "QL35", "QL55", "QL62", "QL65", "QL75", "QL90", "QL100",
           "QL110", "QL115", "QL135", "QL170", "QL175", "QL194"},
          {}}}};
    static const Form second{
        "from", "to", 2000, 2010,
        {"Q3",  "Q4",  "Q6",  "Q8",  "Q9",  "Q10", "Q11", "Q12", "Q14", "Q16", "Q17", "Q19", "Q20", "Q22", "Q23",
         "Q24", "Q25", "Q26", "Q27", "Q28", "Q29", "Q30", "Q31", "Q32", "Q35", "Q38", "Q39", "Q40", "Q41", "Q67",
         "Q72", "Q76", "Q82", "Q84", "Q87", "Q88", "Q91", "Q170"},
        {{{}, {{"QA2.02.%d", 6}, {"QA4.02.%d", 6}, {"QA4.03.%d", 6}, {"QA8.02.%d", 6}, {"QA8.03.%d", 6}}},
         {{}, {{"QB1.06.%d", 200}, {"QB1.07.%d", 200}, {"QB1.08.%d", 200}, {"QB1.09.%d", 200}, {"QB1.10.%d", 200}}},
         {{}, {{"QC1.06.%d", 20}, {"QC2.%d", 7}, {"QC2.06.%d", 20}, {"QC3.06.%d", 20}, {"QC4.06.%d", 20}}},
         {{"QD1", "QD2", "QD4", "QD5", "QD7", "QD8", "QD13", "QD14"}, {}},
         {{"QF10G.8"}, {{"QF10D.%d", 7}, {"QF10E.%d", 7}}},
         {{}, {{"QG1.4.%d", 5}}}}};
    static const Form first{
        "From", "To", 1999, 2004,
        {"Q3",  "Q4",  "Q7",  "Q8",  "Q9",  "Q10", "Q11", "Q12", "Q13", "Q14", "Q15",  "Q17",  "Q18", "Q20",
         "Q21", "Q22", "Q23", "Q24", "Q25", "Q26", "Q27", "Q28", "Q31", "Q32", "Q34", "Q35",  "Q36",  "Q37",
         "Q38", "Q43", "Q44", "Q46", "Q47", "Q53", "Q54", "Q56", "Q57", "Q61", "Q62", "Q148", "Q162", "Q66",
         "Q67", "Q163", "Q69", "Q71", "Q73", "Q75"},
        {{{"QA11"}, {{"QA2.02.%d", 6}, {"QA4.02.%d", 6}, {"QA4.03.%d", 6}, {"QA8.02.%d", 6}, {"QA8.03.%d", 6}}},
         {{}, {{"QB1.06.%d", 12}, {"QB1.07.%d", 12}, {"QB1.08.%d", 12}, {"QB1.09.%d", 12}, {"QB1.10.%d", 12}}},
         {{}, {{"QC1.06.%d", 7}, {"QC2.%d", 6}, {"QC2.06.%d", 7}, {"QC3.06.%d", 7}, {"QC4.06.%d", 7}}},
         {{"QD1", "QD2", "QD4", "QD5", "QD7", "QD8", "QD13", "QD14"}, {}}}};
    return g == Generation::First ? first : g == Generation::Second ? second : third;
}

// What one run of the generation's calculator leaves behind: the box map, the
// keys it computed (every SetBox, whether the map took it or not) and the
// texts it wrote past SetBox (the liability results and the "zero" marks).
struct CalcRun {
    CMapStringToString boxes, changed;
    std::set<std::string> computed;
};

template <class Calc>
CalcRun runCalculator(CMapStringToString boxes, const CString& prefix, bool twice) {
    CalcRun run;
    run.boxes = std::move(boxes);
    Calc calc;
    calc.m_ShowErrors = 0;
    CString p = prefix, s("S");
    Helper(&calc, &run.boxes, &p, &run.changed);
    if (twice) Helper(&calc, &run.boxes, &s, &run.changed);
    for (const auto& [key, value] : calc.m_Values) run.computed.insert(key.str());
    return run;
}

CalcRun runCalculator(Generation g, const CMapStringToString& boxes, const CString& prefix) {
    switch (g) {
        case Generation::First: return runCalculator<CCT600_02Calc>(boxes, prefix, true);
        case Generation::Second: return runCalculator<CCT600_05Calc>(boxes, prefix, false);
        default: return runCalculator<CCT600_16Calc>(boxes, prefix, false);
    }
}

// Every box the calculator writes, found by running it over a return with
// every input and every page row filled; and of those, the boxes of the main
// return, which a run under a prefix computes too. The rest belong to the
// pages, whose totals reach the main return only on the next run.
struct Computed {
    std::vector<std::string> all, main;
};

const Computed& computedBoxes(Generation g) {
    static std::map<Generation, Computed> found;
    Computed& keys = found[g];
    if (!keys.all.empty()) return keys;
    const Form& form = formOf(g);
    CMapStringToString full;
    full[form.from] = "01/01/" + std::to_string(form.firstYear + 2);
    full[form.to] = "31/12/" + std::to_string(form.firstYear + 2);
    for (const char* key : form.inputs) full[key] = full[CString("S") + key] = "1000";
    for (const Page& page : form.pages) {
        for (const char* key : page.boxes) full[key] = "1000";
        for (const auto& [format, rows] : page.rows)
            for (int row = 1; row <= rows; ++row) full[CBaseCalc::BoxKey(format, row)] = "1000";
    }
    const auto written = [&](const CString& prefix) {
        const CalcRun run = runCalculator(g, full, prefix);
        std::set<std::string> all = run.computed;
        for (const auto& [key, text] : run.changed.items()) all.insert(key.str());
        std::set<std::string> bare;
        for (const std::string& key : all)
            if (key.compare(0, prefix.GetLength(), prefix.c_str()) == 0) bare.insert(key.substr(prefix.GetLength()));
        for (const char* key : form.inputs) bare.erase(key);
        return bare;
    };
    const std::set<std::string> all = written(""), main = written("S");
    keys.all.assign(all.begin(), all.end());
    for (const std::string& key : all)
        if (main.count(key)) keys.main.push_back(key);
    return keys;
}

struct GeneratedReturn {
    unsigned seed = 0;
    Generation generation = Generation::Third;
    CString prefix;  // the run's prefix: every box but the words carries it
    std::vector<std::pair<std::string, std::string>> boxes;  // in the order made

    CMapStringToString Map() const {
        CMapStringToString map;
        for (const auto& [key, text] : boxes) map[key.c_str()] = text.c_str();
        return map;
    }
    std::string Describe() const {
        std::string out = "seed " + std::to_string(seed) + ", " + nameOf(generation) + " generation, prefix \"" +
                          prefix.str() + "\":";
        for (const auto& [key, text] : boxes) out += "\n  " + key + " = \"" + text + "\"";
        return out;
    }
};

struct MakeOptions {
    bool noughtOverrides = true;  // "0.00!" and the like among the texts
    bool pages = true;  // page boxes, and the main boxes the pages write
    bool prefixes = false;  // a run under "S" now and then
};

class ReturnMaker {
public:
    ReturnMaker(unsigned seed, Generation g, MakeOptions options)
        : random_(seed * 7919u + static_cast<unsigned>(g)), form_(formOf(g)), options_(options) {
        made_.seed = seed;
        made_.generation = g;
    }

    GeneratedReturn Make() {
        if (options_.prefixes && made_.generation != Generation::First && chance(25)) made_.prefix = "S";
        period();
        if (chance(50)) put("name", pick({"Example Trading Limited", "A & B <Ltd>", "\"Quoted\" Co", ""}), false);
        if (chance(30)) put("Address1", std::string(pickInt(30, 40), 'a'), false);
        if (chance(20)) put("Address2", pick({"1 High St", "", "x"}), false);
        if (chance(20)) put("co_type", pick({"0", "1", "2", "", "x"}), false);
        if (chance(15)) put("forcestandardrate", pick({"T", "yes", "no", ""}), false);
        if (chance(20)) put("tax_reference", "1234567890", false);
        const Computed& written = computedBoxes(made_.generation);
        const std::vector<std::string>& computed = options_.pages ? written.all : written.main;
        for (int n = pickInt(3, 35); n > 0; --n) {
            // A box the calculator writes is where an override matters.
            const bool onComputed = chance(35) && !computed.empty();
            const std::string key = onComputed ? pick(computed) : std::string(pick(form_.inputs));
            put(key, onComputed && chance(50) ? override() : value(), true);
        }
        if (options_.pages)
            for (const Page& page : form_.pages)
                if (chance(35))
                    for (int n = pickInt(1, 6); n > 0; --n) {
                        const std::string key = pageBox(page);
                        put(key, value(), true);
                    }
        // The first generation's second company, run under "S" by the entry.
        if (made_.generation == Generation::First && chance(50))
            for (int n = pickInt(1, 8); n > 0; --n) {
                const std::string key = "S" + std::string(pick(form_.inputs));
                put(key, value(), false);
            }
        if (chance(20)) put("fileattach1", pick({"accounts.html", "notice.pdf", "x-ctcomp.html"}), false);
        if (chance(10)) put("fileattach2", pick({"scan.pdf", "more.html"}), false);
        return made_;
    }

private:
    bool chance(int percent) { return pickInt(0, 99) < percent; }
    // mt19937's numbers are the same everywhere, and so is this use of them.
    int pickInt(int low, int high) { return low + static_cast<int>(random_() % static_cast<unsigned>(high - low + 1)); }
    template <class T>
    T pick(const std::vector<T>& pool) {
        return pool[static_cast<std::size_t>(pickInt(0, static_cast<int>(pool.size()) - 1))];
    }
    std::string pick(std::initializer_list<const char*> pool) { return pick(std::vector<const char*>(pool)); }

    void put(const std::string& key, const std::string& text, bool prefixed) {
        const std::string full = (prefixed ? made_.prefix.str() : std::string()) + key;
        for (auto& [k, v] : made_.boxes)
            if (k == full) {
                v = text;
                return;
            }
        made_.boxes.emplace_back(full, text);
    }

    std::string pageBox(const Page& page) {
        if (page.rows.empty() || (!page.boxes.empty() && chance(40))) return pick(page.boxes);
        const auto& [format, rows] = pick(page.rows);
        // Mostly the first rows, now and then the last, or one past it.
        const int row = chance(80) ? pickInt(1, std::min(rows, 3)) : rows + pickInt(0, 1);
        return CBaseCalc::BoxKey(format, row).str();
    }

    static std::string date(std::chrono::sys_days day) {
        const std::chrono::year_month_day ymd{day};
        char text[16];
        std::snprintf(text, sizeof text, "%02u/%02u/%04d", static_cast<unsigned>(ymd.day()),
                      static_cast<unsigned>(ymd.month()), static_cast<int>(ymd.year()));
        return text;
    }

    // Mostly a year or less from a day in the generation's years; now and then
    // longer than a year, backwards, missing, or no date at all.
    void period() {
        using namespace std::chrono;
        const int first = pickInt(form_.firstYear, form_.lastYear), anyDay = pickInt(0, 364);
        const int offset = pick(std::vector<int>{0, 0, 0, 91, 183, 274, anyDay});
        const sys_days start = sys_days{year{first} / April / 1} + days{offset};
        int length = 365;
        switch (pickInt(0, 9)) {
            case 0: length = pickInt(1, 364); break;
            case 1: length = pickInt(366, 400); break;
            case 2: length = -pickInt(1, 30); break;
            default: break;
        }
        std::string from = date(start), to = date(start + days{length - 1});
        switch (pickInt(0, 19)) {
            case 0: from.clear(); break;
            case 1: to.clear(); break;
            case 2: from = "2015-04-01"; break;
            case 3: to = "31/02/2016"; break;
            default: break;
        }
        put(form_.from, from, false);
        put(form_.to, to, false);
        // The first generation falls back to the lower-case fields.
        if (made_.generation == Generation::First && chance(10)) put("from", date(start), false);
    }

    std::string override() {
        if (options_.noughtOverrides && chance(40)) return pick({"0.00!", "0!", "-0!"});
        const std::string figure = std::to_string(pickInt(1, 99999));
        return figure + pick({"!", ".50!", ".00!"});
    }

    std::string value() {
        const int kind = pickInt(0, 99);
        const auto whole = [this](int low, int high) { return std::to_string(pickInt(low, high)); };
        if (kind < 40) return whole(1, 500000);
        if (kind < 48) {
            const std::string pounds = whole(0, 99999);
            return pounds + "." + whole(10, 99);
        }
        if (kind < 52) return "-" + whole(1, 50000);
        if (kind < 67) return override();
        if (kind < 72) return "zero";
        if (kind < 77) return pick({"0", "0.000000", "-0"});
        if (kind < 82) return "";
        if (kind < 87)
            return pick({"A & B <Ltd>", "12abc", "y", "n/a", "Caf\xe9 \xa3", "tab\there", " lead", "trail ",
                         "line\nbreak", "]]>", "a\"b'c"});
        if (kind < 92) return pick({"0.004", "-0.004", "0.005"});
        if (kind < 97) return whole(1, 99) + "000000000";
        return pick({"1e300", "-1e300", "99999999999999999999"});
    }

    std::mt19937 random_;
    const Form& form_;
    MakeOptions options_;
    GeneratedReturn made_;
};

GeneratedReturn makeReturn(unsigned seed, Generation g, MakeOptions options = {}) {
    return ReturnMaker(seed, g, options).Make();
}

// The fixed seeds: one return each.
std::vector<unsigned> seeds(unsigned count) {
    std::vector<unsigned> list(count);
    std::iota(list.begin(), list.end(), 1u);
    return list;
}

bool isOverride(const std::string& text) { return !text.empty() && text.back() == '!'; }

bool isPureNought(const char* text) {
    char* end = nullptr;
    return std::strtod(text, &end) == 0 && *end == '\0';
}

// The return as a tree that do_calc sends to the generation's calculator.
std::unique_ptr<CXMLVar> treeOf(const GeneratedReturn& r) {
    const bool third = r.generation == Generation::Third;
    auto tree = std::make_unique<CXMLVar>(third || r.seed % 2 ? "Return" : "TF");
    if (!third && r.seed % 2) tree->SetAttr("type", "CTA");
    CXMLVar* boxes = tree->GetChild("Boxes");
    boxes->SetChildValue("form", third ? (r.seed % 2 ? "ctv3" : "CTV3 2016") : "ct600");
    for (const auto& [key, text] : r.boxes) boxes->AddChild(new CXMLVar(key.c_str(), text.c_str()), nullptr);
    return tree;
}

std::map<std::string, std::string> boxesOf(const CXMLVar& tree) {
    std::map<std::string, std::string> out;
    if (const CXMLVar* boxes = tree.FindChild("Boxes"))
        for (const CXMLVar* box : boxes->children) out[box->name.str()] = box->value.str();
    return out;
}

class GeneratedReturns : public testing::Test {
protected:
    void SetUp() override {
        SetErrorSink(quietErrors, nullptr);
        SetMessageSink([](const char*, void*) {}, nullptr);
        SetLogSink([](const char*, void*) {}, nullptr);
    }
    void TearDown() override {
        SetLogSink(nullptr, nullptr);
        SetErrorSink(nullptr, nullptr);
        SetMessageSink(nullptr, nullptr);
    }
    static CString recalc(const CString& text) {
        CMapStringToString map;
        map["zxml"] = text;
        do_calc2(&map, nullptr, &map);
        return map["zxml"];
    }
    static CString textOf(const GeneratedReturn& r) {
        CString text;
        treeOf(r)->Save(text, 1);
        return text;
    }
};

// A nought override on a box that must show an explicit nought becomes "zero"
// (see below), and the next run computes that box again: the tests of a
// settled return leave such overrides out.
TEST_F(GeneratedReturns, RecalculatingTheOutputChangesNothing) {
    for (unsigned seed : seeds(200)) {
        const GeneratedReturn r = makeReturn(seed, Generation::Third, {false, false, false});
        const CString once = recalc(textOf(r));
        ASSERT_EQ(recalc(once), once) << r.Describe();
    }
}

// Page totals reach the main return on the next run, and box 475 reaches
// page L's box 530 one run later still: after three runs nothing moves.
TEST_F(GeneratedReturns, WithPagesTheFeedbackSettlesWithinThreeRuns) {
    for (unsigned seed : seeds(150)) {
        const GeneratedReturn r = makeReturn(seed, seed % 2 ? Generation::Third : Generation::Second, {false});
        CString text = textOf(r);
        for (int run = 0; run < 3; ++run) text = recalc(text);
        ASSERT_EQ(recalc(text), text) << r.Describe();
    }
}

// What a recalculation may drop is what it computes: a box that no SetBox and
// no direct write of the run touched keeps its exact text, and so does an
// override that only SetBox aimed at. The same holds through do_calc2's text.
TEST_F(GeneratedReturns, EveryNonNoughtInputBoxSurvivesDoCalc) {
    for (unsigned seed : seeds(150)) {
        const GeneratedReturn r = makeReturn(seed, seed % 2 ? Generation::Third : Generation::Second);
        CMapStringToString input = r.Map();
        input["form"] = "";
        const CalcRun run = runCalculator(r.generation, input, "");
        auto tree = treeOf(r);
        CString text;
        tree->Save(text, 1);
        do_calc(tree.get());
        const std::map<std::string, std::string> out = boxesOf(*tree);
        CXMLVar viaText("");
        viaText.Open(recalc(text));
        EXPECT_EQ(boxesOf(viaText), out) << "do_calc2 differs from do_calc on " << r.Describe();
        for (const auto& [key, value] : r.boxes) {
            if (isPureNought(value.c_str())) continue;
            const bool direct = run.changed.PLookup(key.c_str()) != nullptr;
            const bool computed = run.computed.count(key) && !isOverride(value);
            if (direct || computed) continue;
            const auto kept = out.find(key);
            ASSERT_NE(kept, out.end()) << key << " lost from " << r.Describe();
            EXPECT_EQ(kept->second, value) << key << " changed in " << r.Describe();
        }
        for (const auto& [key, value] : out) EXPECT_FALSE(isPureNought(value.c_str())) << key;
        EXPECT_EQ(out.count("validation"), 0u);
        if (HasFailure()) break;  // the first failing return says enough
    }
}

// The keys the generation's liability driver hands back, under the run's
// prefix: the driver is run again over the map the calculator left, which
// holds the same profit, period and distributions it read.
std::set<std::string> liabilityKeys(Generation g, const CMapStringToString& after, const CString& prefix) {
    std::set<std::string> keys;
    const auto drive = [&](void (*driver)(CMapStringToString*, CString, CMapStringToString*), const CString& p) {
        CMapStringToString copy = after, results;
        driver(&copy, p, &results);
        for (const auto& [key, text] : results.items()) keys.insert((p + key).str());
    };
    switch (g) {
        case Generation::First:
            drive(&CTcharge_02, prefix);
            drive(&CTcharge_02, "S");  // the entry's second run
            break;
        case Generation::Second:
            drive(&CTcharge_05, prefix);
            // The calculator blanks the small company box in the same results
            // whenever its computed profit is not above 0.
            keys.insert((prefix + "Q42").str());
            break;
        case Generation::Third: drive(&CTcharge_16, prefix); break;
    }
    return keys;
}

// The box store's rules: SetBox never writes over a text ending in "!", but
// two writes don't look at the mark. The liability results replace whatever
// the box held, and MarkZero writes "zero" into a box that reads as 0, which
// an override such as "0.00!" does. So a user's nought override on a box of a
// MarkZero list (Q165, Q300, ... in the third generation; Q5, Q33, Q72 in the
// first; page A's net tax) turns into "zero", and the next run computes the
// box again. Those two writes are the whole exception: both reach the result
// map through m_Changed, which is how this test tells them from the rest.
TEST_F(GeneratedReturns, AnOverrideGivesWayOnlyToTheLiabilityResultsAndToANoughtMark) {
    for (unsigned seed : seeds(300)) {
        const Generation g = static_cast<Generation>(seed % 3);
        const GeneratedReturn r = makeReturn(seed, g, {true, true, true});
        CMapStringToString boxes = r.Map(), result;
        CString prefix = r.prefix;
        EXPECT_EQ(entryOf(g)(&boxes, &prefix, &result), 1);
        const std::set<std::string> liability = liabilityKeys(g, boxes, r.prefix);
        for (const auto& [key, text] : r.boxes) {
            if (!isOverride(text)) continue;
            const CString* now = boxes.PLookup(key.c_str());
            ASSERT_NE(now, nullptr) << key << " lost from " << r.Describe();
            if (*now == text.c_str()) continue;
            EXPECT_NE(result.PLookup(key.c_str()), nullptr)
                << key << " = \"" << now->c_str() << "\" written past SetBox without a trace in " << r.Describe();
            const bool noughtMark = *now == "zero" && myatof(text.c_str()) == 0;
            EXPECT_TRUE(liability.count(key) || noughtMark)
                << key << " = \"" << now->c_str() << "\" is neither a liability result nor a nought mark in "
                << r.Describe();
        }
        if (HasFailure()) break;
    }
}

// The keys the message's template fills: its placeholders' box keys ("QA10B.#"
// stands for every row), and the attachment keys, which the envelope reads
// from the map itself.
class Vocabulary {
public:
    Vocabulary() {
        CXMLVar templ;
        templ.OpenPath(CT600_SOURCE_DIR "/envelope/templates/ctv3_16.xml");
        for (const BoxMapEntry& entry : ListBoxMap(&templ)) {
            Placeholder placeholder;
            if (!ParsePlaceholder(entry.sources.view(), placeholder)) continue;
            for (const PlaceholderSource& source : placeholder.sources) {
                if (source.literal) continue;
                const std::string key = source.text.str();
                if (key.size() > 2 && key.compare(key.size() - 2, 2, ".#") == 0)
                    rows_.insert(key.substr(0, key.size() - 1));
                else
                    keys_.insert(key);
            }
        }
        for (const char* key : {"fileattach1", "fileattach2", "fileattach3"}) keys_.insert(key);
    }
    std::size_t Size() const { return keys_.size() + rows_.size(); }
    bool Has(const std::string& key) const {
        if (keys_.count(key)) return true;
        const auto dot = key.rfind('.');
        return dot != std::string::npos && dot + 1 < key.size() && rows_.count(key.substr(0, dot + 1)) &&
               key.find_first_not_of("0123456789", dot + 1) == std::string::npos;
    }

private:
    std::set<std::string> keys_, rows_;  // rows_: "QA10B." and the like
};

// do_validate reads the map to build the message and never writes a box. The
// rules run over the message, not the map, and expose no keys of their own;
// what may come into the map is an empty entry left by a read through
// operator[], and such reads are for keys of the message's vocabulary.
TEST_F(GeneratedReturns, ValidationLeavesEveryBoxAsItWas) {
    setenv("CT600_TODAY", "2024-09-30", 1);
    const Vocabulary vocabulary;
    ASSERT_GT(vocabulary.Size(), 300u);
    for (unsigned seed : seeds(60)) {
        const Generation g = static_cast<Generation>(seed % 3);
        const GeneratedReturn r = makeReturn(seed, g);
        CMapStringToString boxes = r.Map();
        if (seed % 2) {  // as a host has it after a recalculation, too
            CMapStringToString result;
            CString prefix;
            entryOf(g)(&boxes, &prefix, &result);
        }
        const CMapStringToString before = boxes;
        CXMLVar errors("Errors");
        EXPECT_EQ(do_validate(&boxes, &errors), 1);
        for (const auto& [key, text] : before.items()) {
            const CString* now = boxes.PLookup(key);
            ASSERT_NE(now, nullptr) << key.c_str() << " removed from " << r.Describe();
            EXPECT_EQ(*now, text) << key.c_str() << " changed in " << r.Describe();
        }
        for (const auto& [key, text] : boxes.items()) {
            if (before.PLookup(key)) continue;
            EXPECT_EQ(text, "") << key.c_str() << " added with a value to " << r.Describe();
            EXPECT_TRUE(vocabulary.Has(key.str())) << key.c_str() << " added to " << r.Describe();
        }
        if (HasFailure()) break;
    }
    unsetenv("CT600_TODAY");
}

}  // namespace

namespace {

// The full sample return is consistent with its own figures: a recalculation
// keeps every box that is not a nought (numbers may gain decimals, not change).
TEST_F(RoundTrip, TheFullSampleReturnKeepsEveryBox) {
    CXMLVar tree("");
    ASSERT_EQ(tree.OpenPath(CT600_SOURCE_DIR "/examples/full-return.xml"), 1);
    std::unique_ptr<CXMLVar> before(new CXMLVar(""));
    before->OpenPath(CT600_SOURCE_DIR "/examples/full-return.xml");
    do_calc(&tree);
    const CXMLVar* boxes = tree.FindChild("Boxes");
    ASSERT_NE(boxes, nullptr);
    for (const CXMLVar* box : before->FindChild("Boxes")->children) {
        char* end = nullptr;
        if (std::strtod(box->value, &end) == 0 && *end == '\0') continue;  // noughts drop out
        const CXMLVar* kept = boxes->FindChild(box->name);
        ASSERT_NE(kept, nullptr) << box->name.c_str();
        if (kept->value != box->value) {
            EXPECT_EQ(myatof(kept->value), myatof(box->value)) << box->name.c_str() << " " << kept->value.c_str();
        }
    }
    EXPECT_EQ(tree.FindChild(kCalcErrorsRoot)->GetChildCount(), 0);
}

}  // namespace
