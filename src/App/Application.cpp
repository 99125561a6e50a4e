#include "App/Application.h"

#include "App/AboutBox.h"
#include "App/DataFolders.h"
#include "App/DroppedFiles.h"
#include "App/ExportProgress.h"
#include "App/HelpLauncher.h"
#include "base/QuietReports.h"
#include "App/SettingsDialog.h"
#include "GUI/NativeWindow.h"
#include "GUI/Prompts.h"
#include "GUI/Skin.h"
#include "GUI/UiFont.h"
#include "GUI/WindowMessage.h"
#include "base/Path.h"
#include "base/text.h"

#include <QApplication>

#include <algorithm>
#include <cmath>

namespace pulsara {

namespace {

constexpr std::u16string_view kLiveKeysFirstRow = u"1234567890QWERTYUIOP";
constexpr std::u16string_view kLiveKeysSecondRow = u"ASDFGHJKLZXCVBNM";
constexpr uint32_t kFirstTrackOfSecondRow = 20;
constexpr int32_t kGap = 6;
constexpr int32_t kValueTipWidth = 96;
constexpr int32_t kDisplayInset = 4;
constexpr uint32_t kAllScopes = 0xFFFFFFFF;

std::u16string number(int64_t value)
{
    return fromUtf8(std::to_string(value));
}

std::u16string twoDigits(uint32_t value)
{
    std::u16string text = number(value);
    return text.size() < 2 ? u"0" + text : text;
}

} // namespace

Application::Application(Skin& skin, WaveDevice& device, MidiPorts* midiPorts)
    : skin_(skin)
    , device_(device)
    , midiPorts_(midiPorts)
    , song_(AudioFormat { 44100, 32, 1 })
    , edits_(song_)
    , transport_(device, song_)
    , document_(song_, edits_, *this)
    , mainEditor_(skin, edits_, *this)
    , songProperties_(skin, edits_)
    , topBar_(skin)
    , livePanels_ { LiveRow(skin, song_, 0, kLiveKeysFirstRow), LiveRow(skin, song_, kFirstTrackOfSecondRow, kLiveKeysSecondRow) }
{
    if (midiPorts_)
        midi_ = std::make_unique<MidiInput>(*midiPorts_, song_.player());
}

Application::~Application()
{
    transport_.setMeterListener(nullptr);
    transport_.close();
}

void Application::initialise(int latencyMs)
{
    AppSettings settings;
    settings.bufferLength = latencyMs;
    settings.samplesDir = samplesFolder();
    initialise(settings);
}

void Application::initialise(const AppSettings& settings)
{
    settings_ = settings;
    const QFont displayFont = uiFont(15, QFont::Bold);
    const QColor displayColour(0x2e, 0xc4, 0xb6);
    counterDisplay_.setFrame(&skin_.panelD);
    counterDisplay_.setFont(displayFont);
    counterDisplay_.setColor(displayColour);
    pairDisplay_.setFrame(&skin_.panelD);
    pairDisplay_.setFont(displayFont);
    pairDisplay_.setColor(displayColour);
    counterDisplay_.setValue(1);
    pairDisplay_.setValues(1, 1);

    for (int32_t page = 0; page < 2; ++page) {
        TextButton& button = pageButton(page);
        button.setSkin(&skin_.panelBckD, &skin_.panelD);
        button.setFont(uiFont(13, QFont::Bold));
        button.onClick = [this, page] { showPage(page); };
    }
    pageButton0_.setPressed(true);
    playButton_.setBitmap(&skin_.play);
    playButton_.onChange = [this](bool pressed) { setPlaying(pressed); };

    masterVolumeSlider_.setSkin(&skin_.vol, &skin_.panel, &skin_.back);
    tempoSlider_.setSkin(&skin_.vol, &skin_.panel, &skin_.back);
    masterVolumeSlider_.setStep(0.01);
    tempoSlider_.setStep(1.0 / kMaxTempo);
    // Both knobs stand upside down: the top is the loudest and the fastest.
    masterVolumeSlider_.onPress = [this] { edits_.beginGesture(u"Change master volume"); };
    masterVolumeSlider_.onChange = [this](double knob) {
        edits_.setMasterVolume(float(1.0 - knob));
        showValueTip(masterVolumeSlider_, u"Volume " + number(std::lround((1.0 - knob) * 100.0)) + u"%");
    };
    tempoSlider_.onPress = [this] { edits_.beginGesture(u"Change tempo"); };
    tempoSlider_.onChange = [this](double knob) {
        float tempo = std::max(1.0f, std::round(float(1.0 - knob) * kMaxTempo));
        edits_.setTempo(tempo);
        showValueTip(tempoSlider_, u"Tempo " + number(std::lround(tempo)));
    };
    for (Slider* slider : { &masterVolumeSlider_, &tempoSlider_ }) {
        slider->onRelease = [this] {
            edits_.endGesture();
            hideValueTip();
        };
    }

    valueTip_.setFrame(&skin_.panelD);
    valueTipText_.setFont(uiFont(13, QFont::Bold));
    valueTipText_.setColor(displayColour);
    valueTip_.addChild(&valueTipText_);
    valueTip_.setVisible(false);

    topBar_.onMoveMode = [this](bool on) { mainEditor_.setMoveMode(on); };
    for (LiveRow& row : livePanels_) {
        row.onTrigger = [this](int32_t track) {
            transport_.triggerLive(track);
            for (LiveRow& lit : livePanels_)
                lit.light(track, Timer::tickCount() + LiveRow::kLitMs);
        };
    }
    songProperties_.onClose = [this] { clearOverlay(); };
    for (int32_t page = 0; page < 2; ++page)
        mainEditor_.grid(page).onActivated = [this, page] { focusedEditor_ = uint16_t(page); };

    // The value tip goes first so that it is drawn over the controls it stands beside.
    for (Element* child : std::initializer_list<Element*> { &valueTip_, &mainEditor_, &tempoSlider_, &pageButton0_, &pageButton1_,
             &masterVolumeSlider_, &playButton_, &counterDisplay_, &pairDisplay_, &topBar_, &livePanels_[0], &livePanels_[1] })
        addChild(child);

    edits_.onApplied = [this](EditScope scope, bool fromHistory) { onEditApplied(scope, fromHistory); };
    edits_.onCleanChanged = [this](bool clean) { document_.setDirty(!clean); };

    song_.setFormat({ settings.sampleRate, 32, settings.channels });
    setInterpolation(settings.interpolation != 0);
    const uint32_t release = settings.releaseWaveOut ? SongDocument::kReleaseDeviceFlag : 0;
    document_.setFlags((document_.flags() & ~SongDocument::kReleaseDeviceFlag) | release);
    transport_.setDrainsInBackground(true);
    transport_.setDocumentFlags(document_.flags());
    device_.chooseOutput(toUtf8(settings.device));
    transport_.open(settings.bufferLength);
    applyMidiSettings(settings);
    transport_.setMeterListener(this);
    document_.setFolders(samplesFolder(), templatesFolder(), settings.samplesDir.empty() ? samplesFolder() : settings.samplesDir);
    document_.setLastSample(settings.lastSample);
    mainEditor_.patternPage().instrumentPanel().setSamplesFolder(document_.samplesFolder());
    document_.makeUntitled();
    showNewSong();
    if (settings.liveact)
        toggleLiveact();
}

AppSettings Application::currentSettings() const
{
    AppSettings settings = settings_;
    settings.sampleRate = song_.format().sampleRate;
    settings.channels = song_.format().channels;
    settings.interpolation = interpolation_ ? 1 : 0;
    settings.liveact = liveact_ ? 1 : 0;
    settings.bufferLength = transport_.latency();
    settings.releaseWaveOut = document_.flags() & SongDocument::kReleaseDeviceFlag;
    settings.lastSong = std::u16string(document_.songPath().view());
    settings.lastSample = std::u16string(document_.lastSample().view());
    settings.samplesDir = document_.samplesFolder();
    return settings;
}

void Application::openFirstSong()
{
    if (!settings_.lastSong.empty() && fileExists(settings_.lastSong))
        loadSongFile(settings_.lastSong);
    document_.offerUntitledRecovery();
}

void Application::runSettingsDialog()
{
    AppSettings settings = currentSettings();
    SettingsDialog dialog(settings, device_.outputNames(), midiPorts_ ? midiPorts_->names() : std::vector<std::string>(), QApplication::activeWindow());
    // The latency takes effect as soon as it is chosen; the stream restarts with it if running.
    dialog.onLatency = [this](int milliseconds) { transport_.setLatency(milliseconds); };
    dialog.exec();
    dialog.applyTo(settings);
    setInterpolation(settings.interpolation != 0);
    const uint32_t release = settings.releaseWaveOut ? SongDocument::kReleaseDeviceFlag : 0;
    document_.setFlags((document_.flags() & ~SongDocument::kReleaseDeviceFlag) | release);
    transport_.setDocumentFlags(document_.flags());
    const AudioFormat format { settings.sampleRate, 32, settings.channels };
    if (settings.device != settings_.device) {
        settings_.device = settings.device;
        device_.chooseOutput(toUtf8(settings.device));
        // A running stream moves to the new output.
        if (transport_.isRunning()) {
            transport_.WaveOutStream::stop();
            transport_.start();
        }
    }
    if (format.sampleRate != song_.format().sampleRate || format.channels != song_.format().channels)
        transport_.changeFormat(format);
    applyMidiSettings(settings);
    if (settings.zoom != settings_.zoom) {
        settings_.zoom = settings.zoom;
        if (NativeWindow* window = windowHandle())
            window->setZoom(int32_t(settings.zoom));
    }
}

void Application::applyMidiSettings(const AppSettings& settings)
{
    settings_.midiIn = settings.midiIn;
    settings_.midiMode = settings.midiMode;
    if (!midi_)
        return;
    midi_->setMode(settings.midiMode == 1 ? MidiNoteMap::Mode::Chromatic : MidiNoteMap::Mode::Drums);
    midi_->setInput(toUtf8(settings.midiIn));
}

void Application::rememberSong(std::u16string_view path)
{
    rememberRecentSong(settings_, path);
    updateRecentMenu();
}

void Application::updateRecentMenu()
{
    NativeWindow* window = windowHandle();
    if (!window)
        return;
    std::vector<PopupMenuItem> items;
    for (size_t index = 0; index < settings_.recentSongs.size(); ++index)
        items.push_back({ settings_.recentSongs[index], uint32_t(kFirstRecentCommand + index) });
    window->setMenuItemsAfter(kRecentMenuCommand, items);
}

void Application::openRecentSong(uint32_t index)
{
    if (index >= settings_.recentSongs.size())
        return;
    const std::u16string path = settings_.recentSongs[index];
    if (!fileExists(path)) {
        // A song that has gone leaves the list when it is chosen.
        settings_.recentSongs.erase(settings_.recentSongs.begin() + index);
        updateRecentMenu();
        prompts().ask(u"\"" + path + u"\" is no longer there.", u"Open Recent", PromptButtons::Ok);
        return;
    }
    if (document_.askSaveChanges(u"Open Song"))
        return;
    document_.setDirty(false);
    loadSongFile(path);
}

// Documents.

int Application::loadSongFile(std::u16string_view path)
{
    document_.setSongPath(path);
    return document_.loadSongFile();
}

void Application::showNewSong()
{
    transport_.moveToSongPosition(0);
    setTopBarMode(kSongMode);
    mainEditor_.setPattern(uint32_t(std::clamp(song_.view(0).value, 0, int32_t(Song::kPatterns) - 1)));
    refreshViews();
    mainEditor_.scrollHome();
    showPage(song_.editorShown() == 1 ? 1 : 0);
}

void Application::setTitle(std::u16string_view title)
{
    const std::u16string mark = document_.isDirty() ? u"*" : u"";
    topBar_.setSongName((document_.flags() & kUntitledFlag ? u"Untitled" : document_.songName()) + mark);
    if (NativeWindow* window = windowHandle())
        window->setTitle(title);
}

void Application::storeViewState()
{
    song_.view(0) = { int32_t(mainEditor_.pattern()), { mainEditor_.grid(0).firstColumn(), mainEditor_.grid(0).firstRow() } };
    song_.view(1) = { 0, { mainEditor_.grid(1).firstColumn(), mainEditor_.grid(1).firstRow() } };
    song_.setEditorShown(mainEditor_.page());
}

bool Application::stopForExport()
{
    const bool wasRunning = transport_.isRunning();
    setPlaying(false);
    transport_.close();
    return wasRunning;
}

void Application::resumeAfterExport(bool wasRunning)
{
    setInterpolation(interpolation_);
    if (wasRunning)
        transport_.start();
}

bool Application::exportSong(std::u16string_view path)
{
    return ExportProgress::run(song_.player(), path);
}

void Application::closeWindow()
{
    if (NativeWindow* window = windowHandle())
        window->destroyWindow();
}

void Application::setTemplatesMenu(const std::vector<std::u16string>& names)
{
    NativeWindow* window = windowHandle();
    if (!window)
        return;
    std::vector<PopupMenuItem> items;
    for (size_t index = 0; index < names.size(); ++index)
        items.push_back({ names[index], uint32_t(kFirstTemplateCommand + index) });
    window->setMenuItemsAfter(kNewEmptyCommand, items);
}

// The song's numbers and their sliders.

void Application::setTempo(float beatsPerMinute)
{
    song_.player().setTempo(beatsPerMinute);
    tempoSlider_.setValue(1.0 - song_.player().tempo() / kMaxTempo);
}

void Application::setMasterVolume(float volume)
{
    song_.player().setVolume(volume);
    masterVolumeSlider_.setValue(1.0 - volume);
}

void Application::refreshSliders()
{
    if (!tempoSlider_.isDragging())
        tempoSlider_.setValue(1.0 - song_.player().tempo() / kMaxTempo);
    if (!masterVolumeSlider_.isDragging())
        masterVolumeSlider_.setValue(1.0 - song_.player().volume());
}

void Application::setInterpolation(bool on)
{
    song_.setInterpolation(on ? Interpolation::Linear : Interpolation::None);
    interpolation_ = on;
}

void Application::showValueTip(const Slider& slider, std::u16string text)
{
    const ElemRect& at = *slider.rect();
    const ElemRect tip { at.x - kValueTipWidth - 2, at.y + kDisplayInset, kValueTipWidth, at.height - 2 * kDisplayInset };
    if (!valueTip_.isVisible() || !(*valueTip_.rect() == tip)) {
        valueTip_.layout(tip);
        valueTipText_.layout(tip);
        valueTip_.setVisible(true);
    }
    valueTipText_.setText(std::move(text));
    valueTip_.redraw();
}

void Application::hideValueTip()
{
    valueTip_.setVisible(false);
    invalidateRect(*valueTip_.rect());
}

// Views.

void Application::refreshViews()
{
    refreshSliders();
    mainEditor_.refresh(kAllScopes);
    PatternPage& page = mainEditor_.patternPage();
    int32_t row = std::max(0, page.editor().selectedRow());
    page.instrumentPanel().showInstrument(page.editor().trackOfRow(row), page.editor().rowLabel(row));
    for (LiveRow& liveRow : livePanels_)
        liveRow.redraw();
    followPlayback();
}

void Application::onEditApplied(uint32_t scope, bool fromHistory)
{
    if (fromHistory) {
        mainEditor_.refresh(scope);
        refreshSliders();
    } else if (scope & kScopePatternLength) {
        mainEditor_.refresh(kScopePatternLength);
    } else if (scope & kScopePatternNames) {
        mainEditor_.patternPage().selector().redraw();
    }
    if (scope & kScopeInstruments) {
        mainEditor_.patternPage().editor().redraw();
        for (LiveRow& row : livePanels_)
            row.redraw();
    }
}

void Application::setTopBarMode(int32_t mode)
{
    topBarMode_ = mode;
    switch (mode) {
    case kPatternMode:
        topBar_.setModeText(u"Pattern " + twoDigits(mainEditor_.pattern() + 1));
        break;
    case kTrackMode: {
        int32_t row = mainEditor_.patternPage().editor().selectedRow();
        topBar_.setModeText(u"Track " + twoDigits(uint32_t(std::max(0, row)) + 1));
        break;
    }
    default:
        topBar_.setModeText(u"Song");
    }
}

void Application::showPage(int32_t page)
{
    pageButton0_.setPressed(page == 0);
    pageButton1_.setPressed(page == 1);
    mainEditor_.showPage(page);
    song_.setEditorShown(page);
    focusedEditor_ = uint16_t(page);
}

void Application::showSongProperties()
{
    songProperties_.showSong();
    songProperties_.layout({ rect_.x + 10, rect_.y + (rect_.height - PatternLengthPanel::kHeight) / 2, rect_.width - 20,
        PatternLengthPanel::kHeight });
    setOverlay(&songProperties_);
}

void Application::onTapOutsideOverlay(int, int32_t, int32_t)
{
    clearOverlay();
}

void Application::toggleLiveact()
{
    setTopBarMode(kSongMode);
    liveact_ = !liveact_;
    checkMenuItem(kLiveactCommand, liveact_);
    transport_.setLiveMode(liveact_);
    layout(rect_);
    invalidateRect(rect_);
}

void Application::checkMenuItem(uint32_t command, bool checked)
{
    if (NativeWindow* window = windowHandle())
        window->checkMenuItem(command, checked);
}

// Playback.

void Application::setPlaying(bool on)
{
    if (on == transport_.isPlaying())
        return;
    if (on) {
        if (!transport_.play())
            playButton_.setPressed(false);
    } else {
        transport_.stopPlaying();
    }
    playButton_.setPressed(transport_.isPlaying());
}

void Application::dropFiles(const std::vector<std::u16string>& paths, int32_t x, int32_t y)
{
    DroppedFiles dropped = DroppedFiles::sort(paths);
    if (!dropped.refused.empty()) {
        prompts().ask(dropped.refusal(), u"Pulsara", PromptButtons::Ok);
        return;
    }
    if (!dropped.songs.empty()) {
        if (document_.askSaveChanges(u"Open Song"))
            return;
        document_.setDirty(false);
        loadSongFile(dropped.songs.front());
        return;
    }
    PatternEditor& grid = mainEditor_.patternPage().editor();
    if (dropped.samples.empty() || mainEditor_.page() != 0 || !grid.rect()->contains(x, y))
        return;
    // On a label: that row's instrument. On the cells: the chosen row's, then the empty ones.
    const int32_t labelRow = grid.labelRowAt(x, y);
    const int32_t firstRow = labelRow >= 0 ? labelRow : std::max(0, grid.selectedRow());
    std::vector<uint32_t> targets;
    for (int32_t row = firstRow; row < grid.rows() && targets.size() < dropped.samples.size(); ++row) {
        const uint32_t slot = grid.trackOfRow(row);
        if (row == firstRow || !song_.instrument(slot).sample().isLoaded())
            targets.push_back(slot);
        if (labelRow >= 0)
            break;
    }
    loadSampleSafely([&] {
        edits_.beginGesture(targets.size() > 1 ? u"Open samples" : u"Open sample");
        for (size_t index = 0; index < targets.size(); ++index)
            edits_.loadSample(targets[index], dropped.samples[index]);
        edits_.endGesture();
    });
    mainEditor_.refresh(kScopeInstruments);
}

void Application::moveToSongPosition(int32_t position)
{
    transport_.moveToSongPosition(position);
    followPlayback();
}

void Application::moveToStep(int32_t step)
{
    transport_.moveToSongPosition(std::max(0, song_.player().songPosition()), uint32_t(step));
    followPlayback();
}

void Application::setPlayedPattern(int32_t pattern)
{
    if (pattern != song_.player().mode())
        song_.player().setMode(pattern);
}

void Application::loadSampleSafely(const std::function<void()>& load)
{
    const bool restart = !liveact_ && transport_.isRunning();
    if (restart)
        transport_.WaveOutStream::stop();
    load();
    if (restart)
        transport_.start();
}

void Application::audition(std::u16string_view path)
{
    SongPlayer& player = song_.player();
    player.stopAudition();
    if (path.empty()) {
        if (startedForAudition_ && !transport_.isPlaying() && !liveact_)
            transport_.stopPlaying();
        startedForAudition_ = false;
        return;
    }
    {
        // A file that is no WAV is simply not heard while browsing; no box interrupts.
        QuietReports quiet;
        player.audition().load(path);
    }
    if (!player.audition().isLoaded())
        return;
    if (!transport_.isRunning()) {
        if (!transport_.start())
            return;
        startedForAudition_ = true;
    }
    player.playAudition();
}

void Application::followPlayback()
{
    const SongPlayer& player = song_.player();
    if (playButton_.isPressed() != player.isPlaying())
        playButton_.setPressed(player.isPlaying());
    const int32_t position = std::max(0, player.songPosition());
    const int32_t step = int32_t(player.currentStep());
    const uint32_t pattern = mainEditor_.pattern();
    counterDisplay_.setValue(position + 1);
    pairDisplay_.setValues(int32_t(pattern) + 1, step + 1);
    // The pattern page marks the step only while its pattern is the one sounding.
    const bool patternSounds = player.mode() == int32_t(pattern)
        || (player.mode() == SongPlayer::kSongMode && player.playlist().isOn(pattern, uint32_t(position)));
    mainEditor_.patternPage().editor().setPlayColumn(patternSounds ? step : -1);
    mainEditor_.playlist().setPlayColumn(player.mode() == SongPlayer::kSongMode ? position : -1);
    topBar_.setClipped(transport_.isClipped());
    const uint32_t now = Timer::tickCount();
    // The device is let go once the last sound has played; a device that never hands its
    // buffers back is closed anyway.
    if (transport_.state() == StreamState::Draining) {
        if (drainingSince_ == 0)
            drainingSince_ = now;
        if (!transport_.finishDrain() && now - drainingSince_ > kDrainLimitMs)
            transport_.stop();
    } else {
        drainingSince_ = 0;
    }
    song_.reclaimSamples();
    if (midi_) {
        // Inputs come and go; a look once a second picks them up.
        if (++followTicks_ % kMidiLookTicks == 0)
            midi_->refresh();
        PatternEditor& editor = mainEditor_.patternPage().editor();
        midi_->setChosenTrack(int32_t(editor.trackOfRow(std::max(0, editor.selectedRow()))));
        // A note played with the stream stopped waits for it in the live path.
        if (midi_->takePlayed() && !transport_.isRunning())
            transport_.start();
    }
    if (device_.takeFallbackNotice())
        prompts().ask(u"The sound device \"" + settings_.device + u"\" is not there; Pulsara plays on the system's default device.",
            u"Pulsara", PromptButtons::Ok);
    for (LiveRow& row : livePanels_)
        row.tick(now);
}

void Application::onPeaks(float left, float right)
{
    topBar_.leftMeter().setValue(std::fabs(left));
    topBar_.rightMeter().setValue(std::fabs(right));
}

void Application::onCpuLoad(float load)
{
    topBar_.cpuMeter().setValue(load);
}

// Layout and painting.

void Application::layout(const ElemRect& rect)
{
    RootElement::layout(rect);
    const int32_t x = rect.x, y = rect.y, w = rect.width, h = rect.height;
    const int32_t live = liveact_ ? kLiveRowHeight : 0;
    livePanels_[0].setVisible(liveact_);
    livePanels_[1].setVisible(liveact_);
    const int32_t unit = topBar_.unitHeight();
    topBar_.layout({ x, y, w, unit });

    const int32_t row = y + unit;
    pageButton0_.layout({ x, row, kPageButtonWidth, unit });
    pageButton1_.layout({ pageButton0_.rect()->right(), row, kPageButtonWidth, unit });
    tempoSlider_.layout({ x + w - kTempoSliderWidth, row, kTempoSliderWidth, unit });
    masterVolumeSlider_.layout({ tempoSlider_.rect()->x - kTempoSliderWidth, row, kTempoSliderWidth, unit });
    playButton_.place(masterVolumeSlider_.rect()->x - playButton_.stateWidth(), row);

    // The counter and the pair display share the room between the page buttons and the play
    // button; the pair display goes first when it runs short.
    const int32_t counterWidth = counterDisplay_.preferredWidth();
    const int32_t displayHeight = unit - 2 * kDisplayInset;
    const int32_t room = playButton_.rect()->x - pageButton1_.rect()->right();
    counterDisplay_.setVisible(room >= counterWidth);
    pairDisplay_.setVisible(room >= 2 * counterWidth);
    int32_t counterRight = playButton_.rect()->x - kDisplayInset;
    if (pairDisplay_.isVisible()) {
        pairDisplay_.layout({ counterRight - counterWidth, row + kDisplayInset, counterWidth, displayHeight });
        counterRight = pairDisplay_.rect()->x - kGap;
    }
    counterDisplay_.layout({ counterRight - counterWidth, row + kDisplayInset, counterWidth, displayHeight });

    mainEditor_.layout({ x, y + 2 * unit, w, std::max(0, h - 2 * (unit + live)) });
    livePanels_[0].layout({ x, y + h - 2 * live, w, live });
    livePanels_[1].layout({ x, y + h - live, w, live });
    songProperties_.layout({ x + 10, y + (h - PatternLengthPanel::kHeight) / 2, w - 20, PatternLengthPanel::kHeight });
    if (valueTip_.isVisible())
        hideValueTip();
}

int Application::paint(DeviceContext* dc, uint32_t mode)
{
    if (mustDraw(mode)) {
        // The control row's background; every other part of the window is covered by a child.
        const int32_t unit = topBar_.unitHeight();
        skin_.back.setDestination(dc);
        skin_.back.drawRect(rect_.x, rect_.y + unit, rect_.width, unit);
    }
    return RootElement::paint(dc, mustDraw(mode) ? kPaintAll : mode);
}

// Messages.

intptr_t Application::onCreate(NativeWindow* window)
{
    intptr_t result = RootElement::onCreate(window);
    checkMenuItem(kLiveactCommand, liveact_);
    if (window && settings_.zoom != 0)
        window->setZoom(int32_t(settings_.zoom));
    document_.updateTitle();
    document_.buildTemplatesMenu();
    updateRecentMenu();
    followTimer_.setTimer(kFollowPeriodMs);
    autosaveTimer_.setTimer(Autosave::kPeriodMs);
    return result;
}

intptr_t Application::handleMessage(uint32_t message, uintptr_t wParam, intptr_t lParam)
{
    if (message == kMessageKeyDown && liveact_) {
        int32_t track = Transport::liveTrackForKey(uint32_t(wParam));
        // A held key plays its pad once, not once per automatic repeat.
        if (track >= 0 && (lParam & kKeyRepeatFlag))
            return 0;
        if (track >= 0) {
            for (LiveRow& row : livePanels_)
                row.light(track, Timer::tickCount() + LiveRow::kLitMs);
        }
    }
    if (transport_.filterMessage(message, wParam, lParam))
        return 0;
    switch (message) {
    case kMessageKeyDown:
        // Escape closes a pop-up, else leaves the program as Exit does, asking to save first.
        if (wParam == kKeyEscape) {
            if (overlay())
                clearOverlay();
            else
                document_.exitApp();
            return 0;
        }
        handleKey(uint32_t(wParam), lParam);
        return RootElement::handleMessage(message, wParam, lParam);
    case kMessageCommand:
        handleCommand(uint32_t(wParam) & 0xFFFF);
        return 0;
    case kMessageClose:
        document_.exitApp();
        return 0;
    case kMessageDropFiles:
        if (wParam)
            dropFiles(*reinterpret_cast<const std::vector<std::u16string>*>(wParam), positionX(lParam), positionY(lParam));
        return 0;
    case kMessageUser:
        // Another start of the program opens a song: this one closes, unless the user keeps it.
        if (!document_.askSaveChanges(u"Open from shell"))
            closeWindow();
        return 0;
    default:
        return RootElement::handleMessage(message, wParam, lParam);
    }
}

void Application::handleKey(uint32_t key, intptr_t)
{
    if (key == kKeySpace) {
        setPlaying(!transport_.isPlaying());
        return;
    }
    if (focusedEditor_ > 1 || overlay())
        return;
    StepGridView& grid = mainEditor_.grid(focusedEditor_);
    switch (key) {
    case kKeyLeft:
        grid.moveCursor(-1, 0);
        break;
    case kKeyUp:
        grid.moveCursor(0, -1);
        break;
    case kKeyRight:
        grid.moveCursor(1, 0);
        break;
    case kKeyDown:
        grid.moveCursor(0, 1);
        break;
    case kKeyReturn:
        grid.toggleCursorCell();
        break;
    case kKeyDelete:
        grid.clearCursorCell();
        break;
    case kKeyPageUp:
        grid.scroll(0, -StepGridView::kScrollRows);
        break;
    case kKeyPageDown:
        grid.scroll(0, StepGridView::kScrollRows);
        break;
    default:
        break;
    }
}

void Application::handleCommand(uint32_t id)
{
    if (id >= kFirstTemplateCommand && id <= kLastTemplateCommand) {
        document_.newFromTemplate(id - kFirstTemplateCommand);
        mainEditor_.command(id);
        return;
    }
    if (id >= kFirstRecentCommand && id < kFirstRecentCommand + AppSettings::kRecentSongs) {
        openRecentSong(id - kFirstRecentCommand);
        return;
    }
    switch (id) {
    case kNewEmptyCommand:
        document_.newEmptySong();
        break;
    case kOpenCommand:
        document_.openSong();
        break;
    case kSaveCommand:
        document_.save();
        break;
    case kSaveAsCommand:
        document_.saveAs();
        break;
    case kSaveNewVersionCommand:
        document_.saveNewVersion();
        break;
    case kExportCommand:
        document_.exportWav();
        break;
    case kExitCommand:
        document_.exitApp();
        break;
    case kLiveactCommand:
        toggleLiveact();
        break;
    case kSettingsCommand:
        runSettingsDialog();
        break;
    case kAboutCommand:
        showAboutBox(QApplication::activeWindow());
        break;
    case kHelpCommand:
        openHelp();
        break;
    case kSongPropertiesCommand:
        showSongProperties();
        break;
    default:
        mainEditor_.command(id);
    }
}

} // namespace pulsara
