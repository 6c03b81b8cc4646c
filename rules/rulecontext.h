// CRuleContext: the node a rule stands on, the nodes of the running group,
// the walk of path tables and the Errors document that failures go to.
//
// A path table is a null-terminated array of steps. The steps:
//   "/"           first only: the root of the message (the next step, the
//                 root's own name, is passed over);
//   ".."          the parent; "." stays;
//   "@name"       last only: the attribute, as a leaf holding its text,
//                 when it is not empty;
//   "name[@attr]" the children of that name that bear the attribute;
//   any other     the children of exactly that name.
#pragma once

#include <map>
#include <memory>
#include <utility>

#include "common/xmlvar.h"
#include "platform/collections.h"
#include "rules/rulevalue.h"

using PathTable = const char* const*;

// The shared step constants. Tables made by MakePathTable hold these very
// pointers for the two special steps, and one pointer for each step name.
extern const char kRootStep[];
extern const char kParentStep[];
extern const char kSelfStep[];

// The table of a path written with "/" between steps, made once and shared
// by every rule that names the same path. "~/" stands for the way down to
// the return: "/", "GovTalkMessage", "Body", "IRenvelope", "CompanyTaxReturn".
// A path starting "/" is absolute; "." alone is the current node.
PathTable MakePathTable(const char* path);

class CRuleContext {
public:
    CRuleContext() = default;
    CRuleContext(CXMLVar* root, CXMLVar* errors) : m_Root(root), m_ErrorsNode(errors) {}
    virtual ~CRuleContext() = default;
    CRuleContext(const CRuleContext&) = delete;
    CRuleContext& operator=(const CRuleContext&) = delete;

    virtual bool IsRootStep(const char* step) const;
    virtual bool IsParentStep(const char* step) const;

    CXMLVar* m_Current = nullptr;     // where relative paths start; not owned
    CXMLVar* m_Root = nullptr;        // the GovTalkMessage; not owned
    CXMLVar* m_ErrorsNode = nullptr;  // the Errors document; not owned
    CObArray m_Selected;              // nodes of the running group, document order
    bool m_CurrentLaw = false;        // the return is charged under current law

    // Fills the selection from the root. False, with m_Current unchanged,
    // when nothing is found; otherwise the first node becomes current.
    bool Select(PathTable table);
    // Out-of-range indexes are ignored.
    void SetCurrent(int index);
    CXMLVar* Selected(int index) const;

    // Appends what the table reaches from the node, in document order.
    void Walk(CXMLVar* from, PathTable table, CObArray& out);
    CXMLVar* FirstNode(CXMLVar* from, PathTable table);
    int Count(PathTable table);
    // Adds atof of each value reached from the current node.
    double Sum(PathTable table);
    CRuleValue Value(PathTable table);
    CRuleValue Self();

    // Appends Error/Text "code:message" to the Errors document.
    void Error(const char* code, const char* message);

    // Runs every group of the catalogue in order of their numbers.
    void RunRules();

private:
    void WalkSteps(CXMLVar* node, PathTable steps, bool first, CObArray& out);
    CXMLVar* AttributeLeaf(CXMLVar* node, const char* name, const CString& text);

    // Leaves that stand for attributes, one for each element and name, kept
    // for the life of the context so that a walk can hand out their pointers.
    std::map<std::pair<const CXMLVar*, CString>, std::unique_ptr<CXMLVar>> m_AttributeLeaves;
};
