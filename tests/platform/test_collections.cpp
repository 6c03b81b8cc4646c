#include <gtest/gtest.h>

#include <set>

#include "platform/collections.h"

namespace {

TEST(CMapStringToString, IndexCreatesTheEntryLookupDoesNot) {
    CMapStringToString map;
    CString value;
    EXPECT_FALSE(map.Lookup("Q155", value));
    EXPECT_EQ(map.GetCount(), 0);
    EXPECT_EQ(map["Q155"], "");  // a read through [] leaves an empty entry
    EXPECT_EQ(map.GetCount(), 1);
    EXPECT_TRUE(map.Lookup("Q155", value));
    map["Q155"] = "100";
    EXPECT_EQ(*map.PLookup("Q155"), "100");
    EXPECT_EQ(map.PLookup("q155"), nullptr);
    EXPECT_TRUE(map.RemoveKey("Q155"));
    EXPECT_FALSE(map.RemoveKey("Q155"));
    EXPECT_TRUE(map.IsEmpty());
}

TEST(CMapStringToString, IterationVisitsEveryEntryOnce) {
    CMapStringToString map;
    for (const char* key : {"Q3", "from", "QA10B.1", "From", "xml/CT/CTchargeable"}) map[key] = CString(key) + "=";
    std::set<std::string> seen;
    POSITION pos = map.GetStartPosition();
    while (pos) {
        CString key, value;
        map.GetNextAssoc(pos, key, value);
        EXPECT_EQ(value, key + "=");
        EXPECT_TRUE(seen.insert(key.str()).second);
    }
    EXPECT_EQ(seen.size(), 5u);
    EXPECT_EQ(CMapStringToString().GetStartPosition(), nullptr);
}

TEST(CStringArray, SetAtGrowFillsTheGap) {
    CStringArray array;
    array.SetAtGrow(2, "c");
    ASSERT_EQ(array.GetSize(), 3);
    EXPECT_EQ(array[0], "");
    EXPECT_EQ(array[2], "c");
    array.SetAtGrow(0, "a");
    array.SetAtGrow(-1, "ignored");
    EXPECT_EQ(array.GetSize(), 3);
    EXPECT_EQ(array[0], "a");
}

struct Item : CObject {
    explicit Item(int v) : value(v) {}
    int value;
};

TEST(CObList, KeepsOrderAndEndsWithNullPosition) {
    Item a(1), b(2), c(3);
    CObList list;
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
    list.AddTail(&a);
    list.AddTail(&b);
    list.AddTail(&c);
    std::vector<int> order;
    POSITION pos = list.GetHeadPosition();
    while (pos) order.push_back(static_cast<Item*>(list.GetNext(pos))->value);
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST(CObArray, SetAtGrowAndSetSizeZero) {
    Item a(1);
    CObArray array;
    array.SetAtGrow(3, &a);
    EXPECT_EQ(array.GetSize(), 4);
    EXPECT_EQ(array[0], nullptr);
    EXPECT_EQ(array[3], &a);
    array.SetSize(0, -1);
    EXPECT_EQ(array.GetSize(), 0);
}

}  // namespace
