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

namespace rulestest {

// Today for every rule run of the suites.
inline void fixToday() { setenv("CT600_TODAY", "2024-09-30", 1); }

inline CXMLVar* parse(const char* xml) {
    auto* root = new CXMLVar();
    root->Open(xml);
    return root;
}

// One step of an edit path: a name with an optional 1-based index, "Details[2]".
inline std::pair<std::string, int> splitStep(const std::string& step) {
    const auto open = step.find('[');
    if (open == std::string::npos || step.back() != ']') return {step, 1};
    return {step.substr(0, open), std::atoi(step.substr(open + 1).c_str())};
}

// The n-th child of that name, created (with any missing before it) if asked.
inline CXMLVar* child(CXMLVar* node, const std::string& step, bool create) {
    auto [name, index] = splitStep(step);
    int seen = 0;
    for (CXMLVar* c : node->children)
        if (c->name == name.c_str() && ++seen == index) return c;
    if (!create) return nullptr;
    CXMLVar* made = nullptr;
    while (seen++ < index) made = node->AddChild(new CXMLVar(name.c_str()), nullptr);
    return made;
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
// A PDF attachment as the envelope places one.
inline Edit pdf(const char* filename, const char* type = nullptr) {
    std::vector<std::pair<std::string, std::string>> attrs{{"Filename", filename}, {"FileFormat", "pdf"}};
    if (type) attrs.emplace_back("Type", type);
    return add("AttachedFiles/Attachment", "JVBERi0xLjQKJe++", std::move(attrs));
}

inline CXMLVar* returnOf(CXMLVar* message) {
    CXMLVar* node = message;
    for (const char* name : {"Body", "IRenvelope", "CompanyTaxReturn"}) node = node ? node->FindChild(name) : nullptr;
    return node;
}

inline void apply(CXMLVar* message, const Edit& edit) {
    std::string path = edit.path;
    CXMLVar* node = returnOf(message);
    if (!path.empty() && path[0] == '/') {
        node = message;
        path.erase(0, 1);
    }
    std::vector<std::string> steps;
    for (std::size_t start = 0; start < path.size();) {
        std::size_t end = path.find('/', start);
        if (end == std::string::npos) end = path.size();
        steps.push_back(path.substr(start, end - start));
        start = end + 1;
    }
    const bool create = edit.kind != Edit::Drop;
    const std::size_t walk = edit.kind == Edit::Add ? steps.size() - 1 : steps.size();
    for (std::size_t i = 0; i < walk && node; ++i) node = child(node, steps[i], create);
    if (!node) return;
    switch (edit.kind) {
        case Edit::Set:
            node->value = edit.value.c_str();
            break;
        case Edit::Add: {
            CXMLVar* made = node->AddChild(new CXMLVar(steps.back().c_str(), edit.value.c_str()), nullptr);
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

// The texts of the Error children, in order.
inline std::vector<std::string> errorTexts(const CXMLVar& errors) {
    std::vector<std::string> texts;
    for (const CXMLVar* error : errors.children) {
        const CXMLVar* text = error->FindChild("Text");
        texts.emplace_back(text ? text->value.c_str() : "<no Text>");
    }
    return texts;
}

// Runs every rule over the message and gives the error texts.
inline std::vector<std::string> runRules(CXMLVar* message) {
    CXMLVar errors("Errors");
    RunRules(message, &errors);
    return errorTexts(errors);
}

}  // namespace rulestest
