#include "base/Path.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <unistd.h>

using namespace pulsara;

TEST(Path, ExtensionIsTheTextAfterTheLastDotOfTheLastComponent)
{
    EXPECT_EQ(pathExtension(u"/songs/beat.kqu"), std::u16string_view(u"kqu"));
    EXPECT_EQ(pathExtension(u"kick.hard.wav"), std::u16string_view(u"wav"));
    // No dot at all: the whole name.
    EXPECT_EQ(pathExtension(u"README"), std::u16string_view(u"README"));
    // A dot only in an earlier component: no extension.
    EXPECT_EQ(pathExtension(u"/my.folder/README"), std::nullopt);
}

TEST(Path, FileNameIsTheTextAfterTheLastSeparator)
{
    EXPECT_EQ(pathFileName(u"/a/b/kick.wav"), u"kick.wav");
    EXPECT_EQ(pathFileName(u"kick.wav"), u"kick.wav");
    EXPECT_EQ(pathFileName(u"/a/b/"), u"");
}

TEST(Path, JoinAddsOneSeparatorUnlessTheNameIsAbsolute)
{
    struct Case {
        std::u16string folder, name, joined;
    };
    for (const Case& c : std::initializer_list<Case> {
             { u"/songs", u"kick.wav", u"/songs/kick.wav" },
             { u"/songs/", u"kick.wav", u"/songs/kick.wav" },
             { u"", u"kick.wav", u"kick.wav" },
             { u"/songs", u"/abs/kick.wav", u"/abs/kick.wav" },
             { u"/songs", u"C:kick.wav", u"C:kick.wav" },
         }) {
        PathString out(u"stale");
        joinPath(out, c.folder, c.name);
        EXPECT_EQ(out.view(), c.joined);
    }
}

TEST(Path, ParentFolderCutsAtTheLastSeparator)
{
    PathString out;
    parentFolder(out, u"/a/b/song.kqu");
    EXPECT_EQ(out.view(), u"/a/b");
    parentFolder(out, u"song.kqu");
    EXPECT_EQ(out.view(), u"song.kqu");
}

TEST(Path, RelativePathComparesUnitByUnit)
{
    struct Case {
        std::u16string base, target, relative;
        int steps;
    };
    for (const Case& c : std::initializer_list<Case> {
             { u"/My Documents/songs", u"/My Documents/songs/smp/kick.wav", u"smp/kick.wav", 0 },
             { u"/My Documents/songs", u"/My Documents/other/kick.wav", u"../other/kick.wav", 1 },
             // The common prefix runs into the folder name: kept as the program always did it.
             { u"/My Documents/songs", u"/My Documents/smp/kick.wav", u"../mp/kick.wav", 1 },
             { u"/a/b/c", u"/a/x.wav", u"../../x.wav", 2 },
             { u"", u"/a/x.wav", u"/a/x.wav", -1 },
             { u"/a", u"b/x.wav", u"b/x.wav", -1 },
         }) {
        PathString out;
        EXPECT_EQ(relativePath(out, c.base, c.target), c.steps) << toUtf8(c.target);
        EXPECT_EQ(out.view(), c.relative) << toUtf8(c.target);
    }
}

TEST(Path, RelativePathOfAnEmptyTargetLeavesTheOutputAlone)
{
    PathString out(u"untouched");
    EXPECT_EQ(relativePath(out, u"/a", u""), -2);
    EXPECT_EQ(out.view(), u"untouched");
}

TEST(Path, FirstComponentFollowsTheFirstSeparatorAfterTheFirstUnit)
{
    PathString out(u"stale");
    firstComponent(out, u"/My Documents/Pulsara/x.kqu");
    EXPECT_EQ(out.view(), u"Pulsara");
    firstComponent(out, u"");
    EXPECT_EQ(out.view(), u"");
}

TEST(Path, FileExistsOnlyForReadableFiles)
{
    auto file = std::filesystem::temp_directory_path() / ("pulsara_path_" + std::to_string(::getpid()) + ".txt");
    std::FILE* handle = std::fopen(file.c_str(), "w");
    ASSERT_NE(handle, nullptr);
    std::fclose(handle);
    EXPECT_TRUE(fileExists(fromUtf8(file.string())));
    EXPECT_FALSE(fileExists(fromUtf8(file.parent_path().string())));
    std::filesystem::remove(file);
    EXPECT_FALSE(fileExists(fromUtf8(file.string())));
}
