#include "base/text.h"

#include <gtest/gtest.h>

using namespace pulsara;

TEST(PathString, AssignsAndAppendsUpToItsCapacity)
{
    PathString path(u"/songs");
    path.append(u'/');
    path.append(u"beat.kqu");
    EXPECT_EQ(path.view(), u"/songs/beat.kqu");
    EXPECT_EQ(path.c_str()[path.length()], u'\0');

    std::u16string full(PathString::kCapacity, u'x');
    path.assign(full);
    EXPECT_EQ(path.length(), PathString::kCapacity);
    path.clear();
    EXPECT_TRUE(path.empty());
}

TEST(PathStringDeathTest, OverflowIsFatal)
{
    std::u16string tooLong(PathString::kCapacity + 1, u'x');
    EXPECT_EXIT(PathString { tooLong }, testing::ExitedWithCode(255), "FATAL ERROR: Buffer owerflow");
    EXPECT_EXIT(
        {
            PathString path(std::u16string(PathString::kCapacity, u'x'));
            path.append(u"y");
        },
        testing::ExitedWithCode(255), "Buffer owerflow");
}

TEST(Text, Utf8RoundTripsEveryPlaneAndReplacesBrokenBytes)
{
    std::u16string text = u"Kick \u00e9\u4e2d \U0001F941";
    EXPECT_EQ(fromUtf8(toUtf8(text)), text);
    EXPECT_EQ(toUtf8(u"\u00e9"), "\xc3\xa9");
    EXPECT_EQ(fromUtf8("a\xff" "b"), u"a\ufffdb");
    EXPECT_EQ(fromUtf8("\xe4\xb8"), u"\ufffd");
}
