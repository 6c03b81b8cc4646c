// Files written whole: replacing, cutting to length, and failing quietly.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "common/library.h"
#include "common/outfile.h"

namespace {

std::string readAll(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

TEST(ReplaceFile, EachWriteReplacesTheWholeFileWhateverTheLengths) {
    const std::string path = (GetTempDir() + "/replaced.txt").str();
    // Longer, shorter, empty, longer again: nothing of an earlier text may remain.
    for (const std::string& text : {std::string(5000, 'a'), std::string("short"), std::string(), std::string(70, 'z')}) {
        {
            ReplaceFile file(path.c_str());
            ASSERT_TRUE(file.good());
            file << text;
        }
        EXPECT_EQ(readAll(path), text) << text.size();
    }
}

TEST(ReplaceFile, CloseWritesOnceAndLaterOutputIsDropped) {
    const std::string path = (GetTempDir() + "/closed.txt").str();
    ReplaceFile file(path.c_str());
    file << "kept " << 42 << std::endl;
    EXPECT_TRUE(file.Close());
    file << "dropped";
    EXPECT_FALSE(file.Close());
    EXPECT_EQ(readAll(path), "kept 42\n");
}

TEST(ReplaceFile, AFileThatCannotBeOpenedTakesNoOutput) {
    for (const char* path : {"/no/such/folder/x.txt", "", static_cast<const char*>(nullptr)}) {
        ReplaceFile file(path);
        EXPECT_FALSE(file.good());
        file << "nowhere";
        EXPECT_FALSE(file.Close());
    }
    ReplaceFile folder(GetTempDir());  // a folder is not a file
    EXPECT_FALSE(folder.Close());
}

}  // namespace
