#include "base/Path.h"

#include "support/ScratchFolder.h"

#include <gtest/gtest.h>

using namespace pulsara;

TEST(Path, TakesPathsApartAtTheirSeparatorsAndDots)
{
    EXPECT_EQ(pathExtension(u"/songs/beat.kqu"), std::u16string_view(u"kqu"));
    EXPECT_EQ(pathExtension(u"kick.hard.wav"), std::u16string_view(u"wav"));
    EXPECT_EQ(pathExtension(u"README"), std::u16string_view(u"README")); // no dot at all: the whole name
    EXPECT_EQ(pathExtension(u"/my.folder/README"), std::nullopt); // a dot only in an earlier component
    EXPECT_EQ(pathFileName(u"/a/b/kick.wav"), u"kick.wav");
    EXPECT_EQ(pathFileName(u"kick.wav"), u"kick.wav");
    EXPECT_EQ(pathFileName(u"/a/b/"), u"");
    PathString out;
    parentFolder(out, u"/a/b/song.kqu");
    EXPECT_EQ(out.view(), u"/a/b");
    parentFolder(out, u"song.kqu");
    EXPECT_EQ(out.view(), u"song.kqu");
    // The first component follows the first separator after the first unit.
    firstComponent(out, u"/My Documents/Pulsara/x.kqu");
    EXPECT_EQ(out.view(), u"Pulsara");
    firstComponent(out, u"");
    EXPECT_EQ(out.view(), u"");
}

TEST(Path, JoinAddsOneSeparatorUnlessTheNameIsAbsolute)
{
    const std::u16string_view cases[][3] = {
        { u"/songs", u"kick.wav", u"/songs/kick.wav" },
        { u"/songs/", u"kick.wav", u"/songs/kick.wav" },
        { u"", u"kick.wav", u"kick.wav" },
        { u"/songs", u"/abs/kick.wav", u"/abs/kick.wav" },
        { u"/songs", u"C:kick.wav", u"C:kick.wav" },
    };
    for (const auto& [folder, name, joined] : cases) {
        PathString out(u"stale");
        joinPath(out, folder, name);
        EXPECT_EQ(out.view(), joined);
    }
}

TEST(Path, RelativePathComparesUnitByUnit)
{
    // The base, the target, the relative path and the steps up.
    for (const auto& [base, target, relative, steps] : std::initializer_list<std::tuple<std::u16string, std::u16string, std::u16string, int>> {
             { u"/My Documents/songs", u"/My Documents/songs/smp/kick.wav", u"smp/kick.wav", 0 },
             { u"/My Documents/songs", u"/My Documents/other/kick.wav", u"../other/kick.wav", 1 },
             // The common prefix runs into the folder name: kept as the program always did it.
             { u"/My Documents/songs", u"/My Documents/smp/kick.wav", u"../mp/kick.wav", 1 },
             { u"/a/b/c", u"/a/x.wav", u"../../x.wav", 2 },
             { u"", u"/a/x.wav", u"/a/x.wav", -1 },
             { u"/a", u"b/x.wav", u"b/x.wav", -1 },
             { u"/a", u"", u"untouched", -2 }, // an empty target leaves the output alone
         }) {
        PathString out(u"untouched");
        EXPECT_EQ(relativePath(out, base, target), steps) << toUtf8(target);
        EXPECT_EQ(out.view(), relative) << toUtf8(target);
    }
}

TEST(Path, FileExistsOnlyForReadableFiles)
{
    test::ScratchFolder folder;
    EXPECT_TRUE(fileExists(folder.write("a.txt", {})));
    EXPECT_FALSE(fileExists(folder.path().u16string()));
    EXPECT_FALSE(fileExists(folder.file("b.txt")));
}
