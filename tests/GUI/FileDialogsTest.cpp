#include "GUI/FileDialogs.h"
#include "QtTestApplication.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>

#include <functional>

namespace pulsara {
namespace {

constexpr char16_t kSongFilter[] = u"Pulsara song files\0*.kqu\0Pulsara song template files\0*.kqt\0";

// Acts on the dialog as soon as it is shown, as a user would.
void whenDialogOpens(std::function<void(QFileDialog&)> act)
{
    QTimer::singleShot(0, [act] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        act(*dialog);
    });
}

void touch(const QString& path)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
}

TEST(FileDialogs, ParsesTheDoubleZeroFilterList)
{
    auto filters = parseFilterList(kSongFilter);
    ASSERT_EQ(filters.size(), 2u);
    EXPECT_EQ(filters[0].description, u"Pulsara song files");
    EXPECT_EQ(filters[1].pattern, u"*.kqt");
    EXPECT_TRUE(parseFilterList(nullptr).empty());
    EXPECT_TRUE(parseFilterList(u"only a description\0").empty());
}

TEST(FileDialogs, OpenStartsInThePathsFolderAndStoresTheChosenFilter)
{
    test::testApplication();
    QTemporaryDir folder;
    touch(folder.filePath("a.kqu"));
    touch(folder.filePath("b.kqt"));
    FilePath path(folder.filePath("a.kqu").toStdU16String());
    path.filter = kSongFilter;
    path.filterIndex = 1;

    QString seenFolder;
    QStringList seenFilters;
    whenDialogOpens([&](QFileDialog& dialog) {
        seenFolder = dialog.directory().absolutePath();
        seenFilters = dialog.nameFilters();
        dialog.selectNameFilter(seenFilters.value(1));
        dialog.selectFile(folder.filePath("b.kqt"));
        static_cast<QDialog&>(dialog).accept();
    });
    EXPECT_EQ(chooseOpenFile(path), 1);
    EXPECT_EQ(seenFolder, QDir(folder.path()).absolutePath());
    EXPECT_EQ(seenFilters, QStringList({ "Pulsara song files (*.kqu)", "Pulsara song template files (*.kqt)" }));
    EXPECT_EQ(path.view(), folder.filePath("b.kqt").toStdU16String());
    EXPECT_EQ(path.filterIndex, 2u);
}

TEST(FileDialogs, CancelLeavesThePathAsItWas)
{
    test::testApplication();
    FilePath path(u"/nowhere/song.kqu");
    path.filter = kSongFilter;
    path.filterIndex = 2;
    whenDialogOpens([](QFileDialog& dialog) { dialog.reject(); });
    EXPECT_EQ(chooseOpenFile(path), 0);
    EXPECT_EQ(path.view(), u"/nowhere/song.kqu");
    EXPECT_EQ(path.filterIndex, 2u);

    whenDialogOpens([](QFileDialog& dialog) { dialog.reject(); });
    EXPECT_EQ(chooseSaveFile(path), 0);
    whenDialogOpens([](QFileDialog& dialog) { dialog.reject(); });
    EXPECT_EQ(chooseFolder(path), 0);
    EXPECT_EQ(path.view(), u"/nowhere/song.kqu");
}

TEST(FileDialogs, SaveTakesTheNameAsTypedWithoutAddingAnExtension)
{
    test::testApplication();
    QTemporaryDir folder;
    FilePath path(folder.filePath("old.kqu").toStdU16String());
    path.filter = kSongFilter;
    whenDialogOpens([&](QFileDialog& dialog) {
        dialog.selectFile(folder.filePath("newsong"));
        static_cast<QDialog&>(dialog).accept();
    });
    EXPECT_EQ(chooseSaveFile(path), 1);
    EXPECT_EQ(path.view(), folder.filePath("newsong").toStdU16String());
    EXPECT_EQ(path.filterIndex, 1u);
}

TEST(FileDialogs, FolderDialogIsTitledOpenFolderAndReturnsTheFolder)
{
    test::testApplication();
    QTemporaryDir folder;
    QDir(folder.path()).mkdir("samples");
    FilePath path(folder.path().toStdU16String());
    QString title;
    whenDialogOpens([&](QFileDialog& dialog) {
        title = dialog.windowTitle();
        dialog.selectFile(folder.filePath("samples"));
        static_cast<QDialog&>(dialog).accept();
    });
    EXPECT_EQ(chooseFolder(path), 1);
    EXPECT_EQ(title, "Open Folder");
    EXPECT_EQ(path.view(), folder.filePath("samples").toStdU16String());
}

} // namespace
} // namespace pulsara
