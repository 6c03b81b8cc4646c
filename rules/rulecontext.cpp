#include "rules/rulecontext.h"

#include <cstdlib>
#include <cstring>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

const char kRootStep[] = "/";
const char kParentStep[] = "..";
const char kSelfStep[] = ".";

namespace {

// The way down from the message to the return, for paths written "~/".
const char* const kReturnSteps[] = {"GovTalkMessage", "Body", "IRenvelope", "CompanyTaxReturn"};

struct PathTables {
    std::mutex lock;
    std::set<std::string, std::less<>> names;            // one constant per step name
    std::map<std::string, std::vector<const char*>, std::less<>> tables;  // one table per path
};

PathTables& pathTables() {
    static PathTables tables;
    return tables;
}

const char* internStep(PathTables& t, const std::string& step) {
    if (step == kRootStep) return kRootStep;
    if (step == kParentStep) return kParentStep;
    if (step == kSelfStep) return kSelfStep;
    return t.names.insert(step).first->c_str();
}

void splitInto(PathTables& t, std::string_view text, std::vector<const char*>& steps) {
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find('/', start);
        if (end == std::string_view::npos) end = text.size();
        if (end > start) steps.push_back(internStep(t, std::string(text.substr(start, end - start))));
        start = end + 1;
    }
}

bool isDots(const char* step, std::size_t dots) {
    for (std::size_t i = 0; i < dots; ++i)
        if (step[i] != '.') return false;
    return step[dots] == '\0';
}

// "name[@attr]" split into its two names; false for any other step. Views
// into the step itself: a walk passes every step often.
bool splitAttributeFilter(std::string_view step, std::string_view& name, std::string_view& attribute) {
    if (step.size() < 4 || step.back() != ']') return false;
    const std::size_t open = step.find("[@");
    if (open == std::string_view::npos) return false;
    name = step.substr(0, open);
    attribute = step.substr(open + 2, step.size() - 1 - (open + 2));
    return !name.empty() && !attribute.empty();
}

}  // namespace

PathTable MakePathTable(const char* path) {
    PathTables& t = pathTables();
    std::lock_guard<std::mutex> guard(t.lock);
    const std::string key(path ? path : "");
    auto found = t.tables.find(key);
    if (found != t.tables.end()) return found->second.data();

    std::vector<const char*> steps;
    std::string_view text(key);
    if (text.substr(0, 2) == "~/") {
        steps.push_back(kRootStep);
        steps.insert(steps.end(), std::begin(kReturnSteps), std::end(kReturnSteps));
        for (const char*& step : steps)
            if (step != kRootStep) step = internStep(t, step);
        text.remove_prefix(2);
    } else if (text.substr(0, 1) == "/") {
        steps.push_back(kRootStep);
        text.remove_prefix(1);
    }
    splitInto(t, text, steps);
    steps.push_back(nullptr);
    return t.tables.emplace(key, std::move(steps)).first->second.data();
}

bool CRuleContext::IsRootStep(const char* step) const {
    return step == kRootStep || (step && step[0] == '/' && step[1] == '\0');
}

bool CRuleContext::IsParentStep(const char* step) const { return step == kParentStep || (step && isDots(step, 2)); }

CXMLVar* CRuleContext::AttributeLeaf(CXMLVar* node, const char* name, const CString& text) {
    std::unique_ptr<CXMLVar>& leaf = m_AttributeLeaves[{node, CString(name)}];
    if (!leaf) leaf = std::make_unique<CXMLVar>(CString(name));
    leaf->value = text;
    leaf->parent = node;
    return leaf.get();
}

void CRuleContext::WalkSteps(CXMLVar* node, PathTable steps, bool first, CObArray& out) {
    if (steps) {
        for (PathTable step = steps; *step; ++step) {
            if (!node) return;
            if (first && step == steps && IsRootStep(*step)) {
                node = m_Root;
                if (step[1]) ++step;  // the root's own name is not compared
                continue;
            }
            if (IsParentStep(*step)) {
                node = node->parent;
                continue;
            }
            if (*step == kSelfStep || isDots(*step, 1)) continue;

            if ((*step)[0] == '@') {
                const CString text = node->GetAttr(*step + 1);
                if (!text.IsEmpty()) out.Add(AttributeLeaf(node, *step + 1, text));
                return;
            }
            const std::string_view whole(*step);
            std::string_view name, attribute;
            const bool filtered = splitAttributeFilter(whole, name, attribute);
            // A view of the name compares lengths first: most children differ there.
            const std::string_view want = filtered ? name : whole;
            const std::string attributeName = filtered ? std::string(attribute) : std::string();
            for (std::size_t i = 0; i < node->children.size(); ++i) {
                CXMLVar* child = node->children[i];
                if (!child || child->name.view() != want) continue;
                if (filtered && child->GetAttr(attributeName.c_str()).IsEmpty()) continue;
                WalkSteps(child, step + 1, false, out);
            }
            return;
        }
    }
    if (node) out.Add(node);
}

void CRuleContext::Walk(CXMLVar* from, PathTable table, CObArray& out) { WalkSteps(from, table, true, out); }

CXMLVar* CRuleContext::FirstNode(CXMLVar* from, PathTable table) {
    CObArray found;
    Walk(from, table, found);
    return found.GetSize() > 0 ? static_cast<CXMLVar*>(found.GetAt(0)) : nullptr;
}

bool CRuleContext::Select(PathTable table) {
    m_Selected.SetSize(0);
    Walk(m_Root, table, m_Selected);
    if (m_Selected.GetSize() == 0) return false;
    SetCurrent(0);
    return true;
}

CXMLVar* CRuleContext::Selected(int index) const {
    if (index < 0 || index >= m_Selected.GetSize()) return nullptr;
    return static_cast<CXMLVar*>(m_Selected.GetAt(index));
}

void CRuleContext::SetCurrent(int index) {
    if (CXMLVar* node = Selected(index)) m_Current = node;
}

int CRuleContext::Count(PathTable table) {
    CObArray found;
    Walk(m_Current, table, found);
    return found.GetSize();
}

double CRuleContext::Sum(PathTable table) {
    CObArray found;
    Walk(m_Current, table, found);
    double total = 0.0;
    for (int i = 0; i < found.GetSize(); ++i) total += std::atof(static_cast<CXMLVar*>(found.GetAt(i))->value);
    return total;
}

CRuleValue CRuleContext::Value(PathTable table) {
    CRuleValue value;
    value.SetNode(FirstNode(m_Current, table));
    return value;
}

CRuleValue CRuleContext::Self() {
    CRuleValue value;
    value.SetNode(m_Current);
    return value;
}

void CRuleContext::Error(const char* code, const char* message) {
    if (!m_ErrorsNode) return;
    CXMLVar* error = m_ErrorsNode->AddChild(new CXMLVar("Error", ""), nullptr);
    error->SetChildValue("Text", Concat(Concat(code, ":"), message));
}
