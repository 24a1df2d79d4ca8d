#include <gtest/gtest.h>

#include <LibStrokeset/LibStrokeset.h>

TEST(Build, Links) {
    LibStrokeset::CStrokeset document;
    EXPECT_EQ(document.getOpcodeCount(), 0u);
}
