#include <gtest/gtest.h>

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

}  // namespace
