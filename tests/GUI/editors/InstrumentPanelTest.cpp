// The instrument panel: its volume, Open and Clear, each with its question or dialog.
#include "EditorHarness.h"
#include "GUI/ScriptedPrompts.h"
#include "support/ScratchFolder.h"
#include "support/WavBuilder.h"

#include <QUndoStack>
#include <gtest/gtest.h>

using namespace pulsara;
using namespace pulsara::test;

TEST(InstrumentPanel, OpensClearsAndSetsTheVolume)
{
    ScratchFolder folder;
    const std::u16string kick = folder.write("Kick1.wav", makeWav(1, 44100, 16, pcm16({ 1000, -1000 })));
    Editors editors;
    Instrument& instrument = editors.song.instrument(0);
    InstrumentPanel& panel = editors.editor.patternPage().instrumentPanel();
    QUndoStack& history = editors.edits.history();
    EXPECT_EQ(panel.percentText(), u"70%");

    {
        ScriptedFileDialogs cancelled;
        panel.open();
        EXPECT_EQ(std::u16string_view(cancelled.filter), u"PCM WaveFiles");
        EXPECT_FALSE(instrument.sample().isLoaded());
        EXPECT_EQ(history.count(), 0);
    }
    {
        ScriptedFileDialogs chosen(kick);
        panel.open();
        EXPECT_EQ(std::u16string_view(instrument.sample().path().view()), kick);
        EXPECT_EQ(panel.fileText(), u"Kick1.wav");
        EXPECT_EQ(editors.host.sampleLoads, 1);
        // The file selected is heard, and the sound stops as the dialog closes.
        EXPECT_EQ(editors.host.auditions, (std::vector<std::u16string> { u"", kick, u"" }));
        panel.open();
        EXPECT_EQ(chosen.started, kick) << "the dialog starts at the instrument's own file";
    }

    ScriptedPrompts answers({ PromptAnswer::No, PromptAnswer::Yes });
    instrument.setVolume(0.5f);
    panel.clear();
    EXPECT_TRUE(instrument.sample().isLoaded()) << "No keeps the instrument";
    panel.clear();
    const ScriptedPrompts::Question clear { u"Are you sure to clear this instrument?", u"Clear", PromptButtons::YesNo };
    EXPECT_EQ(answers.asked, (ScriptedPrompts::Questions { clear, clear }));
    EXPECT_FALSE(instrument.sample().isLoaded());
    EXPECT_EQ(instrument.volume(), 0.7f);
    EXPECT_EQ(history.undoText().toStdString(), "Clear instrument");

    // The slider's drag sets the volume in hundredths, as one step.
    editors.paint();
    const ElemRect& slider = *panel.volumeSlider().rect();
    editors.press({ slider.x, slider.y + slider.height / 2 });
    editors.move({ slider.x + slider.width / 2, slider.y + slider.height / 2 });
    editors.release({ slider.right(), slider.y + slider.height / 2 });
    EXPECT_EQ(instrument.volume(), 1.0f);
    EXPECT_EQ(panel.percentText(), u"100%");
    EXPECT_EQ(history.undoText().toStdString(), "Change instrument volume");
}
