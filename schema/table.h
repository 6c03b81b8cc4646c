// The test table: the declarations of schema/model turned into runnable
// element tests, keyed by (parent name, element name). Built once from
// constant tables; the walk looks a node's pair up and runs every row of it.
#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "common/current_law.h"
#include "schema/checks.h"
#include "schema/model/model.h"

// One element's test: a fixed list of checks, a sequence or a choice.
class CSchemaTest {
public:
    enum Shape { Simple, Sequence, Choice };

    struct Step {
        schemamodel::Op op = schemamodel::Op::None;
        int n = 0;
        CString limit;
        const CSchemaPattern* pattern = nullptr;
        std::span<const char* const> values;
    };
    struct Child {
        CString name;
        bool counted = true;  // false: only accepted into seen
        int min = 0;
        int max = 0;
    };

    Shape shape = Simple;
    std::vector<Step> steps;      // Simple
    std::vector<Child> children;  // Sequence
    CStringArray names;           // Choice

    void Run(const char* label, CXMLVar* node, CXMLVar* errors) const;
    // Same checks with the same limits in the same order.
    bool operator==(const CSchemaTest& other) const;
};

class CSchemaTable {
public:
    struct Row {
        CString parent;
        CString element;
        const CSchemaTest* test = nullptr;
    };

    // Builds from the top tables; tables named by a Sections content are
    // taken in where they are named. Faults in the tables (a depth that
    // jumps, a pair with two different tests, a type outside the catalogue...)
    // are collected in Problems() and the faulty row is left out.
    explicit CSchemaTable(std::span<const schemamodel::Table* const> tables);
    CSchemaTable(const CSchemaTable&) = delete;
    CSchemaTable& operator=(const CSchemaTable&) = delete;

    const std::vector<Row>& Rows() const noexcept { return rows_; }
    // Every row of the pair, in table order.
    std::vector<const Row*> Find(std::string_view parent, std::string_view element) const;
    const CStringArray& Problems() const noexcept { return problems_; }

    // Runs the tests of the node's pair, with the empty label.
    void Visit(CXMLVar* node, CXMLVar* errors) const;
    // Visits the node and everything below it, in document order.
    void Walk(CXMLVar* root, CXMLVar* errors) const;

private:
    struct Building;
    void addTable(const schemamodel::Table& table, const char* parent, bool topCounted, Building& b);
    std::unique_ptr<CSchemaTest> compile(const schemamodel::Decl& decl, std::span<const schemamodel::Decl> below);
    void addTypeSteps(const schemamodel::Decl& decl, CSchemaTest& test);
    void addStep(const schemamodel::Check& check, const char* where, CSchemaTest& test);
    void problem(const CString& text) { problems_.Add(text); }
    template <typename Each>
    void forPair(std::string_view parent, std::string_view element, Each each) const;

    std::vector<std::unique_ptr<CSchemaTest>> tests_;
    std::vector<std::unique_ptr<CSchemaPattern>> ownPatterns_;
    std::vector<Row> rows_;
    std::vector<std::size_t> index_;  // rows by element, then parent, then table order

    // Where each pair's rows start in index_: a visit finds them without a
    // search. The views are into rows_, which is not changed once built.
    struct PairKey {
        std::string_view parent, element;
        bool operator==(const PairKey&) const = default;
    };
    struct PairHash {
        std::size_t operator()(const PairKey& k) const noexcept {
            const std::hash<std::string_view> hash;
            return hash(k.element) * 31 + hash(k.parent);
        }
    };
    std::unordered_map<PairKey, std::size_t, PairHash> firstOfPair_;
    CStringArray problems_;
};

// The test table of the return document, built on first use.
const CSchemaTable& ReturnSchema();
// The table for the ladder a return is charged by: under current law
// CorporationTaxChargeable may hold AssociatedCompanies.
const CSchemaTable& ReturnSchema(RateLadder ladder);
