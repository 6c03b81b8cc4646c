// CXMLVar::Open on arbitrary bytes, then Save and Open again: whatever Open
// read must come back whole from its own saved text, with or without the
// declaration, and the copy and teardown of any tree it built must hold.
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "common/xmlvar.h"
#include "fuzz_support.h"

namespace {

using ct600fuzz::Require;

// Element names other than plain ASCII ones are written as <_x xname="name">.
bool escapedName(const CString& name) {
    if (name.IsEmpty() || name == "_x") return true;
    for (int i = 0; i < name.GetLength(); ++i) {
        const auto c = static_cast<unsigned char>(name[i]);
        const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
        const bool digit = (c >= '0' && c <= '9') || c == '-' || c == '.' || c == ':';
        if (!letter && !(i > 0 && digit)) return true;
    }
    return false;
}

// What Save can carry of a node's attributes: a name that held a character
// beyond the code page reads as '?', which no XML name may hold, and an
// escaped element has no room for an attribute of the escape's own name.
std::vector<std::pair<CString, CString>> writableAttributes(const CXMLVar& node) {
    std::vector<std::pair<CString, CString>> out;
    for (const auto& attribute : node.Attributes()) {
        if (attribute.first.Find('?') >= 0) continue;
        if (attribute.first == "xname" && escapedName(node.name)) continue;
        out.push_back(attribute);
    }
    return out;
}

bool sameTree(const CXMLVar& a, const CXMLVar& b) {
    std::vector<std::pair<const CXMLVar*, const CXMLVar*>> pending{{&a, &b}};
    while (!pending.empty()) {
        const auto [x, y] = pending.back();
        pending.pop_back();
        if (x->name != y->name || x->value != y->value || writableAttributes(*x) != y->Attributes() ||
            x->children.size() != y->children.size())
            return false;
        for (std::size_t i = 0; i < x->children.size(); ++i) {
            if (y->children[i]->parent != y) return false;
            pending.emplace_back(x->children[i], y->children[i]);
        }
    }
    return true;
}

bool isNothing(const CXMLVar& node) {
    return node.name.IsEmpty() && node.value.IsEmpty() && node.children.empty() && node.Attributes().empty();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    ct600fuzz::PrepareEnvironment();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CXMLVar first("Old", "old");
    first.AddChild("OldChild", "x");
    first.Open(CString(std::string(reinterpret_cast<const char*>(data), size)));

    for (int declaration : {1, 0}) {
        CString text;
        first.Save(text, declaration);
        CXMLVar second;
        const int reopened = second.Open(text);
        Require(isNothing(first) || reopened == 1, "a saved tree reads back cleanly");
        Require(sameTree(first, second), "a saved tree reads back the same");
        CString again;
        second.Save(again, declaration);
        Require(again == text, "saving what was read back gives the same text");
    }

    CXMLVar copy("Copy");
    copy.CloneChildren(&first);
    Require(copy.children.size() == first.children.size(), "a copy has every child");
    return 0;
}
