// Helpers shared by the rule suites: documents from text, edits by path, and
// the texts of the errors a run leaves.
#pragma once

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "common/xmlvar.h"
#include "rules/rulecontext.h"
#include "rules/rules.h"
#include "support/tree.h"

namespace rulestest {

// Today for every rule run of the suites.
inline void fixToday() { setenv("CT600_TODAY", "2024-09-30", 1); }

inline CXMLVar* parse(const char* xml) {
    auto* root = new CXMLVar();
    root->Open(xml);
    return root;
}

// Edits on a message. A path is relative to CompanyTaxReturn, or to the
// GovTalkMessage when it starts with "/"; the empty path is CompanyTaxReturn.
struct Edit {
    enum Kind { Set, Add, Drop, Attr } kind;
    std::string path;
    std::string value;
    std::vector<std::pair<std::string, std::string>> attrs;
};
using Edits = std::vector<Edit>;

inline Edit set(const char* path, const char* value) { return {Edit::Set, path, value, {}}; }
// Appends one more element of the path's last name, with value and attributes.
inline Edit add(const char* path, const char* value, std::vector<std::pair<std::string, std::string>> attrs = {}) {
    return {Edit::Add, path, value, std::move(attrs)};
}
inline Edit drop(const char* path) { return {Edit::Drop, path, "", {}}; }
inline Edit attr(const char* path, const char* name, const char* value) {
    return {Edit::Attr, path, "", {{name, value}}};
}
inline CXMLVar* returnOf(CXMLVar* message) {
    CXMLVar* node = message;
    for (const char* name : {"Body", "IRenvelope", "CompanyTaxReturn"}) node = node ? node->FindChild(name) : nullptr;
    return node;
}

inline void apply(CXMLVar* message, const Edit& edit) {
    std::string_view path = edit.path;
    CXMLVar* node = returnOf(message);
    if (!path.empty() && path[0] == '/') {
        node = message;
        path.remove_prefix(1);
    }
    std::string last;  // an Add's new element
    if (edit.kind == Edit::Add) {
        const std::size_t slash = path.rfind('/');
        last = std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
        path = slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
    }
    node = nodeAt(node, path, edit.kind != Edit::Drop);
    if (!node) return;
    switch (edit.kind) {
        case Edit::Set:
            node->value = edit.value.c_str();
            break;
        case Edit::Add: {
            CXMLVar* made = node->AddChild(new CXMLVar(last.c_str(), edit.value.c_str()), nullptr);
            for (const auto& [name, value] : edit.attrs) made->SetAttr(name.c_str(), value.c_str());
            break;
        }
        case Edit::Drop:
            if (node->parent) node->parent->DeleteChild(node);
            break;
        case Edit::Attr:
            for (const auto& [name, value] : edit.attrs) node->SetAttr(name.c_str(), value.c_str());
            break;
    }
}

using ::errorTexts;

// Runs every rule over the message and gives the error texts.
inline std::vector<std::string> runRules(CXMLVar* message) {
    CXMLVar errors("Errors");
    RunRules(message, &errors);
    return errorTexts(errors);
}

}  // namespace rulestest
