#pragma once

#include "Sound/SampleLocator.h"
#include "base/ErrorReporter.h"

#include <string>

namespace pulsara {

// Reports on the command line: each report is one line on stderr, "pulsara: error: MESSAGE"
// or "pulsara: FATAL ERROR: MESSAGE", naming the file concerned where the message does not.
class ConsolePresenter final : public ErrorPresenter {
public:
    // The file being worked on (the song, the output), named by reports that do not name one.
    void setCurrentFile(std::u16string path) { currentFile_ = std::move(path); }
    bool sawError() const { return sawError_; }

    void present(const ErrorReport&) override;

private:
    std::u16string currentFile_;
    bool sawError_ = false;
};

// Finds samples quietly: the song's folder, then the samples folder; a sample found nowhere is
// a warning and its instrument stays empty.
class ConsoleSampleLocator final : public SampleLocator {
public:
    ConsoleSampleLocator(std::u16string songPath, std::u16string samplesFolder);

    void locateSample(Song&, std::u16string_view storedName, uint32_t instrument) override;
    PathString storedSamplePath(std::u16string_view samplePath, std::u16string_view songPath) override;

    int missingSamples() const { return missing_; }

private:
    std::u16string songFolder_;
    std::u16string samplesFolder_;
    int missing_ = 0;
};

} // namespace pulsara
