// The version record: its values, and its layout, which tools read.

#include "lyrsr.h"

#include <cstddef>
#include <cstring>
#include <gtest/gtest.h>

namespace {

TEST(Version, Record)
{
    const LibVersion* const v = lyrsrGetLibVersion();
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v, lyrsrGetLibVersion()) << "one constant record";
    EXPECT_EQ(v->majorVersion, 5);
    EXPECT_EQ(v->minorVersion, 2);
    EXPECT_EQ(v->buildMajor, 108);
    EXPECT_EQ(v->buildMinor, 385);
    EXPECT_EQ(std::memcmp(v->targetTag, "q9\0\0", 4), 0);
    EXPECT_STREQ(v->libraryName, "liblyrsrq9.so.5.2");
    EXPECT_STREQ(v->versionText, "5.2");
    EXPECT_STREQ(v->buildDate, "Jul 11 2007");
}

TEST(Version, Layout)
{
    constexpr std::size_t word = sizeof(void*);
    constexpr std::size_t firstPointer = word == 8 ? 24 : 20; // naturally aligned
    EXPECT_EQ(offsetof(LibVersion, majorVersion), 0U);
    EXPECT_EQ(offsetof(LibVersion, minorVersion), 4U);
    EXPECT_EQ(offsetof(LibVersion, buildMajor), 8U);
    EXPECT_EQ(offsetof(LibVersion, buildMinor), 12U);
    EXPECT_EQ(offsetof(LibVersion, targetTag), 16U);
    EXPECT_EQ(offsetof(LibVersion, libraryName), firstPointer);
    EXPECT_EQ(offsetof(LibVersion, versionText), firstPointer + word);
    EXPECT_EQ(offsetof(LibVersion, buildDate), firstPointer + 2 * word);
    EXPECT_EQ(sizeof(LibVersion), firstPointer + 3 * word);
}

} // namespace
