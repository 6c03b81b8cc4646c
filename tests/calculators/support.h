// Helpers shared by the calculator suites.
#pragma once

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "common/errors.h"
#include "common/library.h"
#include "boxstore/calcbase.h"
#include "support/capture.h"
#include "support/table.h"

using Nums = std::initializer_list<std::pair<const char*, double>>;
using Texts = std::initializer_list<std::pair<const char*, const char*>>;
using Errors = std::vector<std::pair<std::string, std::string>>;  // field, message

// One run of a calculator over a box map, errors kept quiet and collected.
template <class Calc>
struct BoxRun {
    CMapStringToString boxes;
    Errors errors;

    BoxRun& set(const char* key, const char* value) {
        boxes[key] = value;
        return *this;
    }
    BoxRun& go(const char* prefix = "") {
        const QuietErrors quiet;
        Calc calc;
        CString p(prefix);
        CMapStringToString out;
        Helper(&calc, &boxes, &p, &out);
        for (CObject* o : calc.m_Errors) {
            auto* e = static_cast<CError*>(o);
            errors.emplace_back(e->m_Field.str(), e->m_Message.str());
        }
        return *this;
    }
    double num(const char* key) { return myatof(boxes[key]); }
    std::string text(const char* key) { return boxes[key].str(); }
    bool has(const char* key) const { return boxes.PLookup(key) != nullptr; }
};

// Each box of a run against its expected text or figure, the key in any failure.
template <class R>
void expectTexts(R& r, Texts rows) {
    for (const auto& [k, v] : rows) EXPECT_EQ(r.text(k), v) << k;
}
template <class R>
void expectNums(R& r, Nums rows) {
    for (const auto& [k, v] : rows) EXPECT_EQ(r.num(k), v) << k;
}
template <class R>
void expectDoubles(R& r, Nums rows) {
    for (const auto& [k, v] : rows) EXPECT_DOUBLE_EQ(r.num(k), v) << k;
}

// The cases of a file under tests/data, each run on a fresh box map (see
// calc05_cases.txt): the boxes given, then each box expected as a text, a
// figure ("=N") or no key ("<unset>").
template <class Calc>
void runCalcCases(const char* file, std::size_t count) {
    const auto cases = testdata::cases(file);
    for (const testdata::Case& c : cases) {
        BoxRun<Calc> r;
        int runs = 1;
        for (const std::string& line : c.body) {
            const auto [key, value] = testdata::cut(line);
            if (key == "runs") runs = std::stoi(value);
            else r.set(key.c_str(), value.c_str());
        }
        for (int i = 0; i < runs; ++i) r.go();
        for (const std::string& line : c.expected) {
            const auto [key, value] = testdata::cut(line);
            if (value == "<unset>") EXPECT_FALSE(r.has(key.c_str())) << c.what << ": " << key;
            else if (!value.empty() && value[0] == '=') EXPECT_NEAR(r.num(key.c_str()), std::stod(value.substr(1)), 1e-6) << c.what << ": " << key;
            else EXPECT_EQ(r.text(key.c_str()), value) << c.what << ": " << key;
        }
    }
    EXPECT_EQ(cases.size(), count) << file;
}
