// Every one of the 237 exports, found in the shared library by its plain name
// and called as a host calls it, with a box that changes as the formulas of
// the export's generation say.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "common/xmlvar.h"
#include "entry/exports.h"

namespace {

using Boxes = std::vector<std::pair<const char*, const char*>>;

// One return for each generation, with its tax worked by hand.
struct Scenario {
    Boxes inputs;
    Boxes expected;
};

const std::map<std::string, Scenario>& scenarios() {
    static const std::map<std::string, Scenario> table = {
        // FY2010, profits 400,000: 28% = 112,000 less 7/400 x (1,500,000 - 400,000) = 19,250.
        {"CCT600_16Calc",
         {{{"from", "01/04/2010"}, {"to", "31/03/2011"}, {"Q155", "400000"}},
          {{"Q165", "400000.000000"}, {"Q340", "28"}, {"Q345", "112000.000000"}, {"Q70", "92750.00"}}}},
        // FY2004, profits 30,000: 19% = 5,700 less 19/400 x (50,000 - 30,000) = 950.
        {"CCT600_05Calc",
         {{{"from", "01/04/2004"}, {"to", "31/03/2005"}, {"Q3", "30000"}},
          {{"Q5", "30000.000000"}, {"Q45", "19"}, {"Q64", "950.00"}, {"Q42", "y"}, {"Q70", "4750.000000"}}}},
        // FY2001, profits 30,000: 20% = 6,000 less 1/40 x 20,000 = 500; under S,
        // profits 8,000 at the 10% starting rate.
        {"CCT600_02Calc",
         {{{"From", "01/04/2001"}, {"To", "31/03/2002"}, {"Q3", "30000"}, {"SQ3", "8000"}},
          {{"Q41", "20"}, {"Q60", "500.00"}, {"Q64", "5500.000000"}, {"SQ41", "10"}, {"SQ64", "800.000000"}}}},
    };
    return table;
}

class AllExports : public testing::Test {
protected:
    void* handle = nullptr;
    void SetUp() override {
        handle = dlopen(CT600_SHARED_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(handle, nullptr) << dlerror();
        using Setter = void (*)(void (*)(const char*, void*), void*);
        for (const char* name : {"ct600lib_set_log_sink", "ct600lib_set_message_sink"}) {
            auto set = reinterpret_cast<Setter>(dlsym(handle, name));
            ASSERT_NE(set, nullptr) << name;
            set([](const char*, void*) {}, nullptr);
        }
    }
    void TearDown() override {
        if (handle) dlclose(handle);
    }
    void* symbol(const std::string& name) { return dlsym(handle, name.c_str()); }
};

// The second-generation return as a tree of the kind do_calc is given.
const char* kReturnXml =
    "<TF type=\"CTA\"><Boxes><from>01/04/2004</from><to>31/03/2005</to><Q3>30000</Q3></Boxes></TF>";

std::string boxIn(const CXMLVar& tree, const char* key) {
    const CXMLVar* boxes = tree.FindChild("Boxes");
    const CXMLVar* box = boxes ? boxes->FindChild(key) : nullptr;
    return box ? box->value.str() : "<missing>";
}

// The five exports that are not form entries, each with its own check.
const std::vector<std::pair<std::string, std::function<void(void*)>>>& otherExports() {
    static const std::vector<std::pair<std::string, std::function<void(void*)>>> table = {
        {"do_calc",
         [](void* sym) {
             CXMLVar tree("");
             ASSERT_NE(tree.Open(kReturnXml), 0);
             reinterpret_cast<void (*)(CXMLVar*)>(sym)(&tree);
             EXPECT_EQ(boxIn(tree, "Q5"), "30000.000000");
             EXPECT_EQ(boxIn(tree, "Q64"), "950.00");
             EXPECT_EQ(boxIn(tree, "Q70"), "4750.000000");
         }},
        {"do_calc2",
         [](void* sym) {
             CMapStringToString in, out;
             in["zxml"] = kReturnXml;
             CString prefix;
             EXPECT_EQ(reinterpret_cast<FormEntry>(sym)(&in, &prefix, &out), 1);
             CXMLVar tree("");
             ASSERT_NE(tree.Open(out["zxml"]), 0);
             EXPECT_EQ(boxIn(tree, "Q45"), "19");
             EXPECT_EQ(boxIn(tree, "Q70"), "4750.000000");
         }},
        {"do_validate",
         [](void* sym) {
             CMapStringToString boxes;
             CXMLVar errors("Errors");
             EXPECT_EQ(reinterpret_cast<int (*)(CMapStringToString*, CXMLVar*)>(sym)(&boxes, &errors), 1);
             ASSERT_GE(errors.CountChildren("Error"), 1);
             EXPECT_NE(errors.FindChild("Error")->FindChild("Text"), nullptr);
         }},
        {"LiabilityCalc",
         [](void* sym) {
             CMapStringToString boxes;
             for (const auto& [key, value] : scenarios().at("CCT600_05Calc").inputs) boxes[key] = value;
             reinterpret_cast<void (*)(CMapStringToString*)>(sym)(&boxes);
             for (const auto& [key, value] : scenarios().at("CCT600_05Calc").expected)
                 EXPECT_EQ(boxes[key], value) << key;
             EXPECT_EQ(boxes.PLookup("validation"), nullptr);
             reinterpret_cast<void (*)(CMapStringToString*)>(sym)(nullptr);
         }},
        {"AtoT",
         [](void* sym) {
             const CTime t = reinterpret_cast<CTime (*)(const char*)>(sym)("1/4/15");
             EXPECT_EQ(t.Format("%d/%m/%Y"), "01/04/2015");
             EXPECT_EQ(t.GetHour(), 12);
         }},
    };
    return table;
}

// The form matrix as published (tests/data/form_matrix.tsv): name to calculator.
std::map<std::string, std::string> publishedMatrix() {
    std::map<std::string, std::string> names;
    std::ifstream in(CT600_SOURCE_DIR "/tests/data/form_matrix.tsv");
    std::string family, calculator;
    int first = 0, last = 0;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream row(line);
        row >> family >> first >> last >> calculator;
        for (int year = first; year <= last; ++year)
            names[family + (year < 10 ? "0" : "") + std::to_string(year)] = calculator;
    }
    return names;
}

TEST_F(AllExports, EveryFormEntryComputesByItsGeneration) {
    const auto matrix = publishedMatrix();
    ASSERT_EQ(matrix.size(), 232u);
    int count = 0;
    const FormEntryInfo* entries = FormEntries(&count);
    std::set<std::string> listed;
    for (int i = 0; i < count; ++i) listed.insert(entries[i].name);
    std::set<std::string> published;
    for (const auto& [name, calculator] : matrix) published.insert(name);
    EXPECT_EQ(listed, published) << "the entries the library lists";
    for (const auto& [name, calculator] : matrix) {
        auto run = reinterpret_cast<FormEntry>(symbol(name));
        ASSERT_NE(run, nullptr) << name;
        const Scenario& scenario = scenarios().at(calculator);
        CMapStringToString boxes, result;
        for (const auto& [key, value] : scenario.inputs) boxes[key] = value;
        CString prefix;
        EXPECT_EQ(run(&boxes, &prefix, &result), 1) << name;
        for (const auto& [key, value] : scenario.expected) EXPECT_EQ(boxes[key], value) << name << " " << key;
        EXPECT_NE(result.PLookup("validation"), nullptr) << name;
    }
}

TEST_F(AllExports, EveryOtherExportDoesItsWork) {
    for (const auto& [name, check] : otherExports()) {
        SCOPED_TRACE(name);
        void* sym = symbol(name);
        ASSERT_NE(sym, nullptr);
        check(sym);
    }
}

}  // namespace
