// Files dropped on the window from a file manager: WAV files into instruments, songs opened,
// anything else refused without a change.
#include "DemoApp.h"
#include "GUI/ScriptedPrompts.h"
#include "support/ScratchFolder.h"
#include "support/WavBuilder.h"

#include <QDropEvent>
#include <QMimeData>
#include <QUndoStack>
#include <QUrl>

#include <filesystem>
#include <gtest/gtest.h>

using namespace pulsara;
using namespace pulsara::test;

namespace {

struct Window : DemoWindow {
    Window() : DemoWindow(1200, 780) { }
    // Drops the files on the canvas at the point, as a file manager does: the drag comes in, then
    // the drop.
    void drop(const std::vector<std::u16string>& paths, QPoint at)
    {
        QMimeData data;
        QList<QUrl> urls;
        for (const std::u16string& path : paths)
            urls << QUrl::fromLocalFile(QString::fromStdU16String(path));
        data.setUrls(urls);
        QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&window.canvas(), &enter);
        QDropEvent event(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&window.canvas(), &event);
    }
    QPoint label(int row) { return labelCentre(app.mainEditor().grid(0), row); }
    std::u16string path(uint32_t slot) { return std::u16string(app.song().instrument(slot).sample().path().view()); }
};

} // namespace

TEST(FileDrop, LoadsSamplesOpensSongsAndRefusesTheRest)
{
    ScratchFolder folder;
    std::vector<std::u16string> waves;
    for (const char* name : { "a.wav", "b.WAV", "c.wav" })
        waves.push_back(folder.write(name, makeWav(1, 44100, 16, pcm16({ 7, 8 }))));
    const std::u16string text = folder.write("notes.txt", { 'x' });
    std::filesystem::create_directories(folder.path() / "samples");

    Window window;
    Application& app = window.app;
    ScriptedPrompts answers;
    // A folder or another file: a message, and nothing changes.
    window.drop({ waves[0], text }, window.label(3));
    window.drop({ folder.path().u16string() + u"/samples" }, window.label(3));
    ASSERT_EQ(answers.asked.size(), 2u);
    EXPECT_NE(answers.asked[0].text.find(u"notes.txt"), std::u16string::npos);
    EXPECT_NE(answers.asked[1].text.find(u"samples"), std::u16string::npos);
    EXPECT_EQ(app.edits().history().count(), 0);

    // On a row's label: that row's instrument, whatever it held.
    window.drop({ waves[0] }, window.label(3));
    EXPECT_EQ(window.path(3), waves[0]);
    EXPECT_EQ(app.edits().history().undoText().toStdString(), "Open sample");

    // On the cells: the chosen row's instrument, then the next empty ones (rows 9 and up).
    app.handleMessage(kMessageLeftButtonDown, 0, packPosition(window.label(7).x(), window.label(7).y()));
    app.handleMessage(kMessageLeftButtonUp, 0, packPosition(window.label(7).x(), window.label(7).y()));
    window.drop(waves, cellCentre(app.mainEditor().grid(0), 4, 20));
    EXPECT_EQ((std::vector { window.path(7), window.path(8), window.path(9) }), waves);
    EXPECT_EQ(app.edits().history().undoText().toStdString(), "Open samples");
    app.edits().history().undo();
    EXPECT_EQ(window.path(8), u"") << "one step for the whole drop";

    // A song opens, after the question about the changes.
    answers.asked.clear();
    window.drop({ u"" PULSARA_SHARE_DIR "/Demo/Empty kit.kqt" }, window.label(0));
    EXPECT_EQ(answers.captions(), std::vector<std::u16string> { u"Open Song" });
    EXPECT_EQ(app.titleText(), u"Pulsara - zzzDemo*") << "Cancel kept the song";
}
