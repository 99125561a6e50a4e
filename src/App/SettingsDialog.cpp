#include "App/SettingsDialog.h"

#include "App/AppSettings.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QSlider>

#include <algorithm>
#include <iterator>

namespace pulsara {

namespace {

constexpr int kLatencyPage = 40;

QString milliseconds(int value)
{
    return QStringLiteral("%1 ms").arg(value);
}

} // namespace

SettingsDialog::SettingsDialog(const AppSettings& settings, const std::vector<std::string>& outputs,
    const std::vector<std::string>& midiInputs, QWidget* owner)
    : QDialog(owner)
    , format_(new QComboBox(this))
    , device_(new QComboBox(this))
    , midiInput_(new QComboBox(this))
    , midiMode_(new QComboBox(this))
    , zoom_(new QComboBox(this))
    , stereo_(new QCheckBox(QStringLiteral("Stereo"), this))
    , latency_(new QSlider(Qt::Horizontal, this))
    , latencyLabel_(new QLabel(this))
    , shareDevice_(new QCheckBox(QStringLiteral("Share audio device"), this))
    , smoothResampling_(new QCheckBox(QStringLiteral("Smooth resampling"), this))
{
    setWindowTitle(QStringLiteral("Settings"));
    format_->addItems({ QStringLiteral("11,025 Hz"), QStringLiteral("22,050 Hz"), QStringLiteral("44,100 Hz"), QStringLiteral("48,000 Hz") });
    const auto rate = std::find(std::begin(kRates), std::end(kRates), settings.sampleRate);
    // A rate the list does not offer selects nothing.
    format_->setCurrentIndex(rate == std::end(kRates) ? -1 : int(rate - std::begin(kRates)));
    stereo_->setChecked(settings.channels != 1);
    // The system's default first, then every output by its name; a chosen one that is not
    // there now stays listed, so that choosing nothing keeps it.
    device_->addItem(QStringLiteral("Default"), QString());
    for (const std::string& name : outputs)
        device_->addItem(QString::fromStdString(name), QString::fromStdString(name));
    const QString chosen = QString::fromStdU16String(settings.device);
    if (!chosen.isEmpty() && device_->findData(chosen) < 0)
        device_->addItem(chosen, chosen);
    device_->setCurrentIndex(std::max(0, device_->findData(chosen)));
    midiInput_->addItem(QStringLiteral("All inputs"), QString());
    midiInput_->addItem(QStringLiteral("None"), QStringLiteral("None"));
    for (const std::string& name : midiInputs)
        midiInput_->addItem(QString::fromStdString(name), QString::fromStdString(name));
    const QString input = QString::fromStdU16String(settings.midiIn);
    if (!input.isEmpty() && midiInput_->findData(input) < 0)
        midiInput_->addItem(input, input);
    midiInput_->setCurrentIndex(std::max(0, midiInput_->findData(input)));
    midiMode_->addItems({ QStringLiteral("Drums: C2 plays track 1"), QStringLiteral("Chromatic: the chosen instrument") });
    midiMode_->setCurrentIndex(settings.midiMode == 1 ? 1 : 0);
    zoom_->addItems({ QStringLiteral("Auto"), QStringLiteral("100 %"), QStringLiteral("200 %"), QStringLiteral("300 %") });
    zoom_->setCurrentIndex(int(std::min<uint32_t>(settings.zoom, 3)));
    shareDevice_->setChecked(settings.releaseWaveOut);
    smoothResampling_->setChecked(settings.interpolation != 0);
    latency_->setRange(AppSettings::kMinLatencyMs, AppSettings::kMaxLatencyMs);
    latency_->setPageStep(kLatencyPage);
    latency_->setValue(settings.bufferLength);
    latencyLabel_->setText(milliseconds(latency_->value()));
    latencyLabel_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    // Only a settled latency counts: the end of a drag, or a key or click that moves the knob.
    connect(latency_, &QSlider::sliderReleased, this, [this] { latencySettled(); });
    connect(latency_, &QSlider::valueChanged, this, [this] {
        latencyLabel_->setText(milliseconds(latency_->value()));
        if (!latency_->isSliderDown())
            latencySettled();
    });

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    // Cancel keeps what was changed, as the program has always done: both buttons close.
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QGridLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Format:"), this), 0, 0);
    layout->addWidget(format_, 0, 1);
    layout->addWidget(stereo_, 0, 2);
    layout->addWidget(new QLabel(QStringLiteral("Device:"), this), 5, 0);
    layout->addWidget(device_, 5, 1, 1, 2);
    layout->addWidget(new QLabel(QStringLiteral("Latency:"), this), 1, 0);
    layout->addWidget(latencyLabel_, 1, 1);
    layout->addWidget(latency_, 1, 2);
    layout->addWidget(new QLabel(QStringLiteral("Options:"), this), 2, 0);
    layout->addWidget(shareDevice_, 2, 1, 1, 2);
    layout->addWidget(smoothResampling_, 3, 1, 1, 2);
    layout->addWidget(new QLabel(QStringLiteral("MIDI input:"), this), 6, 0);
    layout->addWidget(midiInput_, 6, 1, 1, 2);
    layout->addWidget(new QLabel(QStringLiteral("MIDI notes:"), this), 7, 0);
    layout->addWidget(midiMode_, 7, 1, 1, 2);
    layout->addWidget(new QLabel(QStringLiteral("Zoom:"), this), 8, 0);
    layout->addWidget(zoom_, 8, 1, 1, 2);
    layout->addWidget(buttons, 9, 0, 1, 3);
}

void SettingsDialog::latencySettled()
{
    latencyLabel_->setText(milliseconds(latency_->value()));
    if (onLatency)
        onLatency(latency_->value());
}

void SettingsDialog::applyTo(AppSettings& settings) const
{
    if (format_->currentIndex() >= 0 && size_t(format_->currentIndex()) < std::size(kRates))
        settings.sampleRate = kRates[format_->currentIndex()];
    settings.channels = stereo_->isChecked() ? 2 : 1;
    settings.releaseWaveOut = shareDevice_->isChecked();
    settings.interpolation = smoothResampling_->isChecked() ? 1 : 0;
    settings.bufferLength = latency_->value();
    settings.device = device_->currentData().toString().toStdU16String();
    settings.midiIn = midiInput_->currentData().toString().toStdU16String();
    settings.midiMode = midiMode_->currentIndex() == 1 ? 1 : 0;
    settings.zoom = uint32_t(std::max(0, zoom_->currentIndex()));
}

} // namespace pulsara
