#include "App/ExportProgress.h"

#include "Sound/WavExporter.h"

#include <QApplication>
#include <QProgressDialog>

namespace pulsara {

namespace {

constexpr int kSteps = 1000;

} // namespace

bool ExportProgress::run(SoundSource& source, std::u16string_view path)
{
    QProgressDialog dialog(QStringLiteral("Exporting to WAV..."), QStringLiteral("Cancel"), 0, kSteps, QApplication::activeWindow());
    dialog.setWindowTitle(QStringLiteral("Export to WAV"));
    dialog.setWindowModality(Qt::WindowModal);
    dialog.setMinimumDuration(300);
    auto progress = [&dialog](uint64_t done, uint64_t total) {
        dialog.setValue(total ? int(done * kSteps / total) : kSteps);
        // The dialog's Cancel button arrives with the events handled here.
        QCoreApplication::processEvents();
        return !dialog.wasCanceled();
    };
    const bool exported = WavExporter().exportTo(source, path, progress) == 1;
    dialog.reset();
    return exported;
}

} // namespace pulsara
