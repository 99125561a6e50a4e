#pragma once

#include "App/AppSettings.h"
#include "App/Autosave.h"
#include "App/MidiInput.h"
#include "App/PairDisplay.h"
#include "App/SongDocument.h"
#include "App/TopBar.h"
#include "App/Transport.h"
#include "GUI/BitmapButton.h"
#include "GUI/FilePath.h"
#include "GUI/FramePanel.h"
#include "GUI/NumericDisplay.h"
#include "GUI/RootElement.h"
#include "GUI/Slider.h"
#include "GUI/TextButton.h"
#include "GUI/TextLabel.h"
#include "GUI/Timer.h"
#include "GUI/editors/EditorHost.h"
#include "GUI/editors/LiveRow.h"
#include "GUI/editors/MainEditor.h"
#include "GUI/editors/PatternLengthPanel.h"
#include "GUI/editors/SongEdits.h"
#include "Sound/Song.h"

#include <array>
#include <string>

namespace pulsara {

class Skin;
class WaveDevice;

// The one object that owns everything else: the song and its edit history, the playback
// transport, the editors, the control strip along the top and the live rows at the bottom. It
// is the root of the element tree and the handler of every window message: the transport sees
// each message first (live play), then menu commands, the keyboard and the framework's own
// messages are handled here.
//
// GUI thread only, but for the meter notifications, which arrive on the audio device's thread.
class Application : public RootElement, public EditorHost, private DocumentHost, private MeterListener {
public:
    static constexpr uint32_t kDirtyFlag = SongDocument::kDirtyFlag;
    static constexpr uint32_t kUntitledFlag = SongDocument::kUntitledFlag;

    static constexpr float kMaxTempo = 300.0f;
    static constexpr int32_t kLiveRowHeight = 18;
    static constexpr int32_t kTempoSliderWidth = 30;
    static constexpr int32_t kPageButtonWidth = 84;
    static constexpr uint32_t kFollowPeriodMs = 10;
    // The longest the device may take to play out what it holds after playing stops.
    static constexpr uint32_t kDrainLimitMs = 3000;
    // Follow ticks between two looks for MIDI inputs that came or went: a second.
    static constexpr uint32_t kMidiLookTicks = 100;

    enum Command : uint16_t {
        kExitCommand = 40002,
        kOpenCommand = 40012,
        kSaveAsCommand = 40013,
        kNewEmptyCommand = 40018,
        kSaveCommand = 40019,
        kSaveNewVersionCommand = 40020,
        kSettingsCommand = 40015,
        kAboutCommand = 40027,
        kHelpCommand = 40028,
        kLiveactCommand = 40029,
        kSongPropertiesCommand = 40033,
        kExportCommand = 40034,
        kFirstTemplateCommand = 40200,
        kLastTemplateCommand = 40299,
        kRecentMenuCommand = 40399,
        kFirstRecentCommand = 40400,
    };

    // The device is not owned; it plays what the transport renders. The MIDI inputs, when
    // given, play live notes (not owned).
    Application(Skin&, WaveDevice&, MidiPorts* = nullptr);
    ~Application() override;

    // Everything that needs no window: the controls' skins, the tree, the song set up as the
    // program starts (tempo 150, master volume 0.7, 40 instruments at 0.7, an empty song), and
    // the user's settings: the output format and latency, resampling, live mode, sharing the
    // device, the folders and the song to open first.
    void initialise(const AppSettings&);
    // The same with the default settings but for the latency, in milliseconds.
    void initialise(int latencyMs);
    // The settings as they stand, to be kept for the next start.
    AppSettings currentSettings() const;
    // The first song: the file at the settings' last song when there is one, else an empty
    // song; an untitled song a crash left behind is offered back.
    void openFirstSong();
    // Loads a song file, asking for the samples it names that are not where it says; a file
    // that cannot be read leaves an empty song. Returns 1 when loaded.
    int loadSongFile(std::u16string_view path);

    void layout(const ElemRect&) override;
    int paint(DeviceContext*, uint32_t mode) override;
    intptr_t handleMessage(uint32_t message, uintptr_t wParam, intptr_t lParam) override;

    void setTempo(float beatsPerMinute);
    void setMasterVolume(float);
    void setInterpolation(bool on);
    void toggleLiveact();
    void showSongProperties();
    void showPage(int32_t page);
    // Starts or stops playing, as the play button does.
    void setPlaying(bool);
    // Files dropped on the window at (x, y): a song opens (after the save-changes question);
    // WAV files go into the instrument of the row label they are dropped on, or, dropped on the
    // grid, into the chosen instrument and the next empty ones, as one undo step; anything else
    // is refused with a message and changes nothing.
    void dropFiles(const std::vector<std::u16string>&, int32_t x, int32_t y);

    uint32_t documentFlags() const { return document_.flags(); }
    bool isLiveact() const { return liveact_; }
    const std::u16string& titleText() const { return document_.title(); }
    SongDocument& document() { return document_; }
    uint16_t focusedEditor() const { return focusedEditor_; }
    int32_t topBarMode() const { return topBarMode_; }

    Song& song() { return song_; }
    SongEdits& edits() { return edits_; }
    Transport& transport() { return transport_; }
    MainEditor& mainEditor() { return mainEditor_; }
    TopBar& topBar() { return topBar_; }
    TextButton& pageButton(int32_t page) { return page == 1 ? pageButton1_ : pageButton0_; }
    BitmapButton& playButton() { return playButton_; }
    Slider& masterVolumeSlider() { return masterVolumeSlider_; }
    Slider& tempoSlider() { return tempoSlider_; }
    NumericDisplay& counterDisplay() { return counterDisplay_; }
    PairDisplay& pairDisplay() { return pairDisplay_; }
    LiveRow& livePanel(int32_t row) { return livePanels_[row == 1 ? 1 : 0]; }
    PatternLengthPanel& songProperties() { return songProperties_; }
    MidiInput* midiInput() { return midi_.get(); }

    // EditorHost
    void setTopBarMode(int32_t) override;
    void moveToSongPosition(int32_t position) override;
    void moveToStep(int32_t step) override;
    void setPlayedPattern(int32_t pattern) override;
    void setFocusedEditor(uint16_t editor) override { focusedEditor_ = editor; }
    bool isLiveMode() const override { return liveact_; }
    void loadSampleSafely(const std::function<void()>& load) override;
    void audition(std::u16string_view path) override;

    // The displays and the rulers' play markers follow playback; the timer calls it.
    void followPlayback();

protected:
    intptr_t onCreate(NativeWindow*) override;
    void onTapOutsideOverlay(int button, int32_t x, int32_t y) override;

private:
    class FollowTimer : public Timer {
    public:
        explicit FollowTimer(Application& application) : application_(application) { }

    protected:
        int32_t onTimer() override
        {
            application_.followPlayback();
            return 0;
        }

    private:
        Application& application_;
    };

    void runSettingsDialog();
    void applyMidiSettings(const AppSettings&);
    void openRecentSong(uint32_t index);
    void updateRecentMenu();

    // DocumentHost
    void showNewSong() override;
    void rememberSong(std::u16string_view path) override;
    void setTitle(std::u16string_view) override;
    void storeViewState() override;
    bool stopForExport() override;
    void resumeAfterExport(bool wasRunning) override;
    bool exportSong(std::u16string_view path) override;
    void closeWindow() override;
    void setTemplatesMenu(const std::vector<std::u16string>& names) override;

    class AutosaveTimer : public Timer {
    public:
        explicit AutosaveTimer(Application& application) : application_(application) { }

    protected:
        int32_t onTimer() override
        {
            application_.document_.autosave();
            return 0;
        }

    private:
        Application& application_;
    };

    // Device callback thread: no allocation, locks, I/O or logging.
    void onPeaks(float left, float right) override;
    void onCpuLoad(float load) override;

    void handleKey(uint32_t key, intptr_t flags);
    void handleCommand(uint32_t id);
    void onEditApplied(uint32_t scope, bool fromHistory);
    // Shows the whole song again (a new or loaded song).
    void refreshViews();
    void refreshSliders();
    void showValueTip(const Slider&, std::u16string text);
    void hideValueTip();
    void checkMenuItem(uint32_t command, bool checked);

    Skin& skin_;
    WaveDevice& device_;
    MidiPorts* midiPorts_;
    Song song_;
    SongEdits edits_;
    Transport transport_;
    SongDocument document_;
    MainEditor mainEditor_;
    PatternLengthPanel songProperties_;
    bool interpolation_ = false;
    bool liveact_ = false;
    TopBar topBar_;
    TextButton pageButton0_ { u"Pattern", TextButton::Kind::Latch };
    TextButton pageButton1_ { u"Playlist", TextButton::Kind::Latch };
    NumericDisplay counterDisplay_ { 3 };
    PairDisplay pairDisplay_;
    BitmapButton playButton_ { BitmapButton::Kind::Toggle };
    Slider masterVolumeSlider_ { Slider::Orientation::Vertical };
    Slider tempoSlider_ { Slider::Orientation::Vertical };
    std::array<LiveRow, 2> livePanels_;
    FramePanel valueTip_;
    TextLabel valueTipText_ { {}, 3 };
    uint16_t focusedEditor_ = 0;
    int32_t topBarMode_ = kSongMode;
    uint32_t drainingSince_ = 0;
    FollowTimer followTimer_ { *this };
    AutosaveTimer autosaveTimer_ { *this };
    AppSettings settings_;
    std::unique_ptr<MidiInput> midi_;
    uint32_t followTicks_ = 0;
    // The stream was started to hear a sample, and stops with it.
    bool startedForAudition_ = false;
};

} // namespace pulsara
