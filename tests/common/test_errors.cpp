#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/errors.h"
#include "common/xmlvar.h"
#include "platform/message_box.h"

TEST(Errors, LookupNamesTheCode) {
    EXPECT_EQ(CError::Lookup(0), "Error");
    EXPECT_EQ(CError::Lookup(12), "Error 12");
    EXPECT_EQ(CError::Lookup(-1), "Error -1");
}

TEST(Errors, XmlDocumentReadsBack) {
    CError first("QA15", 0, "Amount & date <required>");
    CError second("xml/CT/CTchargeable", 7, "");
    CObject other;
    CObList list;
    list.AddTail(&first);
    list.AddTail(&other);  // not an error: skipped
    list.AddTail(nullptr);
    list.AddTail(&second);

    CXMLVar doc;
    ASSERT_EQ(doc.Open(xmlerrors(list)), 1);
    EXPECT_EQ(doc.name, kCalcErrorsRoot);
    ASSERT_EQ(doc.CountChildren("Error"), 2);
    const CXMLVar* e = doc.children[0];
    ASSERT_EQ(e->GetChildCount(), 3);
    const char* names[] = {"Field", "Code", "Text"};
    const char* values[2][3] = {{"QA15", "0", "Amount & date <required>"}, {"xml/CT/CTchargeable", "7", "Error 7"}};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(e->children[i]->name, names[i]);
        EXPECT_EQ(e->children[i]->value, values[0][i]);
        EXPECT_EQ(doc.children[1]->children[i]->value, values[1][i]);
    }

    ASSERT_EQ(doc.Open(xmlerrors(CObList())), 1);
    EXPECT_EQ(doc.name, kCalcErrorsRoot);
    EXPECT_EQ(doc.GetChildCount(), 0);
}

namespace {
std::vector<std::string> g_messages;
void collect(const char* text, void*) { g_messages.push_back(text); }
}  // namespace

TEST(Errors, DialogShowsOneMessageForTheList) {
    g_messages.clear();
    SetMessageSink(collect, nullptr);
    SetErrorSink(nullptr, nullptr);
    CError a("Q1", 0, "missing");
    CError b("Q2", 3, "");
    CObList list;
    CErrorsDlg dlg;
    dlg.SetErrorList(&list);
    dlg.Show(nullptr);
    EXPECT_TRUE(g_messages.empty());
    list.AddTail(&a);
    list.AddTail(&b);
    CStringList extra;
    extra.Add("see notes");
    dlg.Show(&extra);
    CErrorsDlg().Show(nullptr);  // no list at all
    SetMessageSink(nullptr, nullptr);
    EXPECT_EQ(g_messages, (std::vector<std::string>{"Q1: missing\nQ2: Error 3\nsee notes"}));
}

TEST(Errors, HostSinkReceivesEveryRun) {
    struct Seen {
        int calls = 0;
        int count = -1;
        const CStringList* extra = nullptr;
    } seen;
    SetErrorSink(
        [](const CObList& errors, const CStringList* extra, void* c) {
            auto* s = static_cast<Seen*>(c);
            ++s->calls;
            s->count = errors.GetCount();
            s->extra = extra;
        },
        &seen);
    CObList list;
    CStringList extra;
    CErrorsDlg dlg;
    dlg.SetErrorList(&list);
    dlg.Show(&extra);
    SetErrorSink(nullptr, nullptr);
    EXPECT_EQ(seen.calls, 1);
    EXPECT_EQ(seen.count, 0);
    EXPECT_EQ(seen.extra, &extra);
}
