// CXMLVar: the one XML tree of the system. A node has a name, a text value,
// ordered owned children, attributes and a parent link. Parsing goes through
// expat; saving escapes text so that Open reads back exactly what was saved.
#pragma once

#include <iosfwd>
#include <utility>
#include <vector>

#include "platform/collections.h"
#include "platform/cstring.h"

class CXMLVar : public CObject {
public:
    explicit CXMLVar(CString name = CString());
    CXMLVar(CString name, CString value);
    ~CXMLVar() override;
    CXMLVar(const CXMLVar&) = delete;
    CXMLVar& operator=(const CXMLVar&) = delete;

    CString name;
    CString value;
    // Owned, in document order. Elements only: attributes are not children.
    std::vector<CXMLVar*> children;
    CXMLVar* parent = nullptr;

    // Parses XML text into this node, which takes the root element's name,
    // attributes, value and children (replacing its own). Text that is not
    // well-formed leaves a valid tree: whatever was read up to the fault, or
    // an empty node. Returns non-zero on a clean parse.
    int Open(const CString& text);
    int OpenPath(const char* path);

    // Writes the tree as XML text, replacing what the string held.
    void Save(CString& out, int withDeclaration = 1) const;
    void Save(std::ostream& out, int withDeclaration = 1, int indent = 0, int unused = 0) const;
    // Records a stylesheet; written as a processing instruction by later saves.
    void AddStyle(const char* path);
    const CString& GetStyle() const noexcept { return style_; }

    // Finds the first direct child of that name, or appends an empty one.
    CXMLVar* GetChild(const char* childName);
    // Finds only; null when absent.
    CXMLVar* FindChild(const char* childName) const;
    CXMLVar* FirstChild() const { return children.empty() ? nullptr : children.front(); }
    int CountChildren(const char* childName) const;
    int GetChildCount() const noexcept { return static_cast<int>(children.size()); }

    POSITION GetFirstChildPosition() const noexcept;
    CXMLVar* GetNextChild(POSITION& pos) const;

    // Walks down names separated by "/", creating what is missing.
    CXMLVar* FromPath(CString path);

    // Takes ownership and appends; the second argument is accepted for form.
    CXMLVar* AddChild(CXMLVar* child, CXMLVar* after = nullptr);
    CXMLVar* AddChild(const char* childName, const char* childValue);
    void SetChildValue(const char* childName, const char* childValue);
    // Removes a direct child and destroys its subtree; other pointers are ignored.
    void DeleteChild(CXMLVar* child);
    // Deep-copies the source's children and appends the copies here.
    void CloneChildren(const CXMLVar* source);
    // Stable sort of the direct children. The key "#name" is the only key in use;
    // the comparison receives two CXMLVar pointers.
    void Sort(const char* key, int (*compare)(const void*, const void*));

    CString GetAttr(const char* attrName) const;
    void SetAttr(const char* attrName, const char* attrValue);
    void SetAttr(const char* attrName, int attrValue);
    // Replaces every attribute, in the order given; a repeated name keeps its
    // first place and takes the last value, as SetAttr in turn would. Time
    // stays linear in the count, however many there are.
    void SetAttributes(std::vector<std::pair<CString, CString>> attributes);
    const std::vector<std::pair<CString, CString>>& Attributes() const noexcept { return attributes_; }

    // Calls back for this node and every node below it, in document order
    // (a node before its children). The flag is accepted for form.
    void foreach(void (*callback)(CXMLVar* node, void* context), void* context, int flag = 0);

    // Removes children, attributes and value; keeps the name.
    void Clear();

private:
    std::vector<std::pair<CString, CString>> attributes_;
    CString style_;
};
