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

// Acts on the dialog as soon as it is shown, as a user would: picks `file` and accepts, or
// cancels without one.
void whenDialogOpens(const QString& file, std::function<void(QFileDialog&)> look = [](QFileDialog&) { })
{
    test::testApplication();
    QTimer::singleShot(0, [file, look] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        look(*dialog);
        if (file.isEmpty())
            return dialog->reject();
        dialog->selectFile(file);
        static_cast<QDialog*>(dialog)->accept();
    });
}

TEST(FileDialogs, OpenShowsTheFiltersStartsInThePathsFolderAndStoresTheChosenFilter)
{
    QTemporaryDir folder;
    QFile(folder.filePath("a.kqu")).open(QIODevice::WriteOnly);
    QFile(folder.filePath("b.kqt")).open(QIODevice::WriteOnly);
    FilePath path(folder.filePath("a.kqu").toStdU16String());
    path.filter = kSongFilter;
    path.filterIndex = 1;
    QString seenFolder;
    QStringList seenFilters;
    whenDialogOpens(folder.filePath("b.kqt"), [&](QFileDialog& dialog) {
        seenFolder = dialog.directory().absolutePath();
        seenFilters = dialog.nameFilters();
        dialog.selectNameFilter(seenFilters.value(1));
    });
    EXPECT_EQ(chooseOpenFile(path), 1);
    EXPECT_EQ(seenFolder, QDir(folder.path()).absolutePath());
    EXPECT_EQ(seenFilters, QStringList({ "Pulsara song files (*.kqu)", "Pulsara song template files (*.kqt)" }));
    EXPECT_EQ(path.view(), folder.filePath("b.kqt").toStdU16String());
    EXPECT_EQ(path.filterIndex, 2u);
    // A list ends at its double zero; a description without a pattern is no filter.
    EXPECT_TRUE(parseFilterList(nullptr).empty());
    EXPECT_TRUE(parseFilterList(u"only a description\0").empty());
}

TEST(FileDialogs, CancelLeavesThePathAsItWas)
{
    FilePath path(u"/nowhere/song.kqu");
    path.filter = kSongFilter;
    path.filterIndex = 2;
    for (auto choose : { chooseOpenFile, chooseSaveFile, chooseFolder }) {
        whenDialogOpens({});
        EXPECT_EQ(choose(path), 0);
        EXPECT_EQ(path.view(), u"/nowhere/song.kqu");
        EXPECT_EQ(path.filterIndex, 2u);
    }
}

TEST(FileDialogs, SaveTakesTheNameAsTypedAndTheFolderDialogTheFolder)
{
    QTemporaryDir folder;
    FilePath path(folder.filePath("old.kqu").toStdU16String());
    path.filter = kSongFilter;
    whenDialogOpens(folder.filePath("newsong"));
    EXPECT_EQ(chooseSaveFile(path), 1);
    EXPECT_EQ(path.view(), folder.filePath("newsong").toStdU16String()); // no extension added
    EXPECT_EQ(path.filterIndex, 1u);

    QDir(folder.path()).mkdir("samples");
    QString title;
    whenDialogOpens(folder.filePath("samples"), [&](QFileDialog& dialog) { title = dialog.windowTitle(); });
    EXPECT_EQ(chooseFolder(path), 1);
    EXPECT_EQ(title, "Open Folder");
    EXPECT_EQ(path.view(), folder.filePath("samples").toStdU16String());
}

} // namespace
} // namespace pulsara
