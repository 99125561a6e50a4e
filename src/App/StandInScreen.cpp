#include "App/StandInScreen.h"

#include "GUI/Skin.h"

#include <algorithm>
#include <cmath>

namespace pulsara {

namespace {

constexpr uint32_t kRows = 16;
constexpr uint32_t kSteps = 32;
constexpr int32_t kMeterSegments = 20;
constexpr int32_t kTempoSliderWidth = 30;
constexpr int32_t kGap = 6;
constexpr int32_t kNotePanelWidth = 172;
constexpr double kDefaultTempo = 150.0;
constexpr double kMaxTempo = 300.0;
constexpr double kDefaultMasterVolume = 0.7;

// A beat to start from, so that the row colours and the beat shading show at once.
void writeStarterBeat(StepGrid& grid)
{
    for (uint32_t step = 0; step < kSteps; step += 4)
        grid.setCell(0, step, kDefaultNote);
    for (uint32_t step = 4; step < kSteps; step += 8)
        grid.setCell(1, step, kDefaultNote);
    for (uint32_t step = 2; step < kSteps; step += 2)
        grid.setCell(2, step, kDefaultNote);
    for (uint32_t step : { 3u, 11u, 14u, 19u, 27u })
        grid.setCell(3, step, kDefaultNote);
}

void writeStarterArrangement(StepGrid& playlist)
{
    for (uint32_t position = 0; position < kSteps; ++position) {
        playlist.setCell(0, position, kDefaultNote);
        if (position >= 4)
            playlist.setCell(1, position, kDefaultNote);
        if (position >= 8 && position % 8 < 4)
            playlist.setCell(2, position, kDefaultNote);
        if (position >= 16 && position < 24)
            playlist.setCell(3, position, kDefaultNote);
    }
}

} // namespace

StandInScreen::StandInScreen(Skin& skin)
    : skin_(skin)
    , pattern_(kRows, kSteps)
    , playlist_(kRows, kSteps)
    , leftMeter_(kMeterSegments)
    , rightMeter_(kMeterSegments)
    , cpuMeter_(kMeterSegments)
    , grid_(skin, skin.stepsPat, pattern_, u"smp ")
{
    writeStarterBeat(pattern_);
    writeStarterArrangement(playlist_);

    QFont displayFont(QStringLiteral("Liberation Sans"));
    displayFont.setPixelSize(15);
    displayFont.setBold(true);
    const QColor displayColour(0x2e, 0xc4, 0xb6);
    for (NumericDisplay* display : { &counterDisplay_, &beatsDisplay_, &beatLengthDisplay_, &tempoDisplay_ }) {
        display->setFrame(&skin_.panelD);
        display->setFont(displayFont);
        display->setColor(displayColour);
    }
    counterDisplay_.setValue(1);
    beatsDisplay_.setValue(4);
    beatLengthDisplay_.setValue(4);
    tempoDisplay_.setValue(int32_t(kDefaultTempo));

    QFont titleFont(QStringLiteral("Liberation Sans"));
    titleFont.setPixelSize(17);
    titleFont.setBold(true);
    title_.setFont(titleFont);
    title_.setColor(QColor(0xdc, 0xe1, 0xea));
    QFont textFont(QStringLiteral("Liberation Sans"));
    textFont.setPixelSize(12);
    const QColor dimText(0x8a, 0x93, 0xa3);
    for (TextLabel* label : { &songName_, &noteHeading_, &volumeHeading_ }) {
        label->setFont(textFont);
        label->setColor(dimText);
    }

    topBar_.setFrame(&skin_.back);
    leftMeter_.setBitmap(&skin_.level);
    rightMeter_.setBitmap(&skin_.level);
    cpuMeter_.setBitmap(&skin_.cpu);
    clipLamp_.setBitmap(&skin_.peak);
    for (Element* child : std::initializer_list<Element*> { &leftMeter_, &rightMeter_, &clipLamp_, &cpuMeter_, &counterDisplay_, &title_, &songName_ })
        topBar_.addChild(child);

    pageButton0_.setBitmap(&skin_.draw);
    pageButton1_.setBitmap(&skin_.hand);
    pageButton0_.setPressed(true);
    pageButton0_.onChange = [this](bool) { selectPage(0); };
    pageButton1_.onChange = [this](bool) { selectPage(1); };
    playButton_.setBitmap(&skin_.play);

    masterVolumeSlider_.setSkin(&skin_.vol, &skin_.panel, &skin_.back);
    tempoSlider_.setSkin(&skin_.vol, &skin_.panel, &skin_.back);
    // Both knobs stand upside down: the top is the loudest and the fastest.
    masterVolumeSlider_.setValue(1.0 - kDefaultMasterVolume);
    tempoSlider_.setValue(1.0 - kDefaultTempo / kMaxTempo);
    tempoSlider_.onChange = [this](double knob) { tempoDisplay_.setValue(int32_t(std::lround((1.0 - knob) * kMaxTempo))); };

    editorPanel_.setFrame(&skin_.panel);
    notePanel_.setFrame(&skin_.panel2);
    piano_.setBitmap(&skin_.piano);
    octaves_.setBitmap(&skin_.octave);
    noteVolumeSlider_.setSkin(&skin_.vol, &skin_.panelD, &skin_.panel2);
    noteVolumeSlider_.setStep(0.01);
    noteVolumeSlider_.setValue(1.0 / 1.2);
    notePanel_.addChild(&noteHeading_);
    notePanel_.addChild(&volumeHeading_);
    notePanel_.addChild(&piano_);
    notePanel_.addChild(&octaves_);
    notePanel_.addChild(&noteVolumeSlider_);
    editorPanel_.addChild(&grid_);
    editorPanel_.addChild(&notePanel_);
    grid_.onPlayPosition = [this](int32_t column) { counterDisplay_.setValue(column + 1); };

    // The order of the application's own tree: the editors first, the top bar last.
    for (Element* child : std::initializer_list<Element*> { &editorPanel_, &tempoSlider_, &tempoDisplay_, &pageButton0_,
             &pageButton1_, &masterVolumeSlider_, &playButton_, &beatsDisplay_, &beatLengthDisplay_, &topBar_ })
        addChild(child);
}

int32_t StandInScreen::unitHeight() const
{
    return skin_.play.height();
}

void StandInScreen::selectPage(int page)
{
    pageButton0_.setPressed(page == 0);
    pageButton1_.setPressed(page == 1);
    if (page == 0)
        grid_.show(skin_.stepsPat, pattern_, u"smp ");
    else
        grid_.show(skin_.stepsPlst, playlist_, u"patt ");
}

void StandInScreen::layout(const ElemRect& rect)
{
    RootElement::layout(rect);
    const int32_t x = rect.x, y = rect.y, w = rect.width, h = rect.height;
    const int32_t unit = unitHeight();

    topBar_.layout({ x, y, w, unit });
    const int32_t meterX = x + w - leftMeter_.rect()->width - kGap;
    const int32_t meterTop = y + (unit - 2 * leftMeter_.rect()->height - 2) / 2;
    leftMeter_.place(meterX, meterTop);
    rightMeter_.place(meterX, meterTop + leftMeter_.rect()->height + 2);
    clipLamp_.place(meterX - clipLamp_.stateWidth() - 2, meterTop + 1);
    cpuMeter_.place(clipLamp_.rect()->x - cpuMeter_.rect()->width - kGap, meterTop + leftMeter_.rect()->height / 2 + 1);
    const int32_t displayHeight = unit - 8;
    const int32_t counterWidth = counterDisplay_.preferredWidth();
    counterDisplay_.layout({ x + kGap, y + 4, counterWidth, displayHeight });
    title_.layout({ counterDisplay_.rect()->right() + 2 * kGap, y, 90, unit });
    songName_.layout({ title_.rect()->right(), y, std::max(0, cpuMeter_.rect()->x - title_.rect()->right() - kGap), unit });

    const int32_t row = y + unit;
    pageButton0_.place(x, row);
    pageButton1_.place(pageButton0_.rect()->right(), row);
    tempoSlider_.layout({ x + w - kTempoSliderWidth, row, kTempoSliderWidth, unit });
    const int32_t tempoWidth = tempoDisplay_.preferredWidth();
    tempoDisplay_.layout({ tempoSlider_.rect()->x - tempoWidth, row + 4, tempoWidth, displayHeight });
    masterVolumeSlider_.layout({ tempoDisplay_.rect()->x - kTempoSliderWidth - kGap, row, kTempoSliderWidth, unit });
    playButton_.place(masterVolumeSlider_.rect()->x - playButton_.stateWidth() - kGap, row);
    const int32_t pairWidth = beatsDisplay_.preferredWidth();
    const int32_t room = playButton_.rect()->x - pageButton1_.rect()->right() - kGap;
    beatsDisplay_.setVisible(room >= 2 * pairWidth + kGap);
    beatLengthDisplay_.setVisible(room >= 2 * pairWidth + kGap);
    beatLengthDisplay_.layout({ playButton_.rect()->x - kGap - pairWidth, row + 4, pairWidth, displayHeight });
    beatsDisplay_.layout({ beatLengthDisplay_.rect()->x - 2 - pairWidth, row + 4, pairWidth, displayHeight });

    const int32_t editorTop = y + 2 * unit;
    editorPanel_.layout({ x, editorTop, w, std::max(0, h - 2 * unit) });
    const ElemRect inner { x + kGap, editorTop + kGap, w - 2 * kGap, std::max(0, h - 2 * unit - 2 * kGap) };
    const bool roomForNotes = inner.width > 3 * kNotePanelWidth;
    notePanel_.setVisible(roomForNotes);
    const int32_t gridWidth = roomForNotes ? inner.width - kNotePanelWidth - kGap : inner.width;
    grid_.layout({ inner.x, inner.y, gridWidth, inner.height });

    const int32_t noteX = inner.x + gridWidth + kGap;
    notePanel_.layout({ noteX, inner.y, kNotePanelWidth, inner.height });
    const int32_t pianoWidth = skin_.piano.width();
    const int32_t pianoX = noteX + (kNotePanelWidth - pianoWidth) / 2;
    noteHeading_.layout({ noteX + 10, inner.y + 4, kNotePanelWidth - 20, 18 });
    piano_.layout({ pianoX, noteHeading_.rect()->bottom() + 4, pianoWidth, skin_.piano.height() / 2 });
    octaves_.layout({ noteX + (kNotePanelWidth - 6 * skin_.octave.height() / 2) / 2, piano_.rect()->bottom() + 10,
        6 * skin_.octave.height() / 2, skin_.octave.height() / 2 });
    volumeHeading_.layout({ noteX + 10, octaves_.rect()->bottom() + 10, kNotePanelWidth - 20, 18 });
    noteVolumeSlider_.layout({ noteX + 10, volumeHeading_.rect()->bottom() + 2, kNotePanelWidth - 20, skin_.vol.height() + 6 });
}

int StandInScreen::paint(DeviceContext* dc, uint32_t mode)
{
    const bool drawAll = mustDraw(mode);
    if (drawAll) {
        skin_.back.setDestination(dc);
        skin_.back.drawInRect(rect_);
    }
    // A redrawn background covers every child.
    return RootElement::paint(dc, drawAll ? kPaintAll : mode);
}

} // namespace pulsara
