#pragma once

#include <QDialog>

#include <functional>
#include <string>
#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;
class QSlider;

namespace pulsara {

struct AppSettings;

// Tools > Settings: the output format (rate and stereo), the latency, sharing the audio device
// and smooth resampling. The latency applies as soon as the slider is let go; the rest when the
// dialog closes, whichever button closes it.
class SettingsDialog final : public QDialog {
public:
    // The rates offered, in the order of the list.
    static constexpr uint32_t kRates[] = { 11025, 22050, 44100, 48000 };

    // `outputs` are the sound outputs to choose from, the system's default first (none: no
    // choice is offered).
    // `midiInputs` likewise the MIDI inputs there now.
    SettingsDialog(const AppSettings&, const std::vector<std::string>& outputs, const std::vector<std::string>& midiInputs,
        QWidget* owner);

    // Called with each latency the user settles on, in milliseconds.
    std::function<void(int milliseconds)> onLatency;
    // The settings as the dialog leaves them: an unlisted rate stays as it was.
    void applyTo(AppSettings&) const;

    QComboBox& format() { return *format_; }
    QComboBox& device() { return *device_; }
    QComboBox& midiInput() { return *midiInput_; }
    QComboBox& midiMode() { return *midiMode_; }
    QComboBox& zoom() { return *zoom_; }
    QCheckBox& stereo() { return *stereo_; }
    QSlider& latency() { return *latency_; }
    QLabel& latencyLabel() { return *latencyLabel_; }
    QCheckBox& shareDevice() { return *shareDevice_; }
    QCheckBox& smoothResampling() { return *smoothResampling_; }

private:
    void latencySettled();

    QComboBox* format_;
    QComboBox* device_;
    QComboBox* midiInput_;
    QComboBox* midiMode_;
    QComboBox* zoom_;
    QCheckBox* stereo_;
    QSlider* latency_;
    QLabel* latencyLabel_;
    QCheckBox* shareDevice_;
    QCheckBox* smoothResampling_;
};

} // namespace pulsara
