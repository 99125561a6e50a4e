#include "cli/ConsoleReporting.h"

#include "App/SampleSearch.h"
#include "Sound/Song.h"
#include "Sound/StoredSamplePath.h"
#include "base/Path.h"

#include <cstdio>

namespace pulsara {

void ConsolePresenter::present(const ErrorReport& report)
{
    sawError_ = true;
    // WAV reader reports name the file through the context; the others concern the current file.
    std::u16string_view file = report.source && std::string_view(report.source) == "Sound/file" && report.context
        ? std::u16string_view(report.context->function)
        : std::u16string_view(currentFile_);
    std::u16string text(report.message);
    if (!file.empty() && text.find(file) == std::u16string::npos)
        text += u" (" + std::u16string(file) + u")";
    std::string line = "pulsara: " + toUtf8(report.caption()) + ": " + toUtf8(text) + "\n";
    std::fputs(line.c_str(), stderr);
}

ConsoleSampleLocator::ConsoleSampleLocator(std::u16string songPath, std::u16string samplesFolder)
    : samplesFolder_(std::move(samplesFolder))
{
    PathString folder;
    parentFolder(folder, songPath);
    songFolder_ = folder.view();
}

void ConsoleSampleLocator::locateSample(Song& song, std::u16string_view storedName, uint32_t instrument)
{
    PathString lastTried;
    auto found = findSample(storedName, songFolder_, samplesFolder_, &lastTried);
    if (!found) {
        ++missing_;
        std::string line = "pulsara: warning: can't find sample \"" + toUtf8(storedName) + "\" for instrument "
            + std::to_string(instrument + 1) + " (last looked for " + toUtf8(lastTried.view()) + ")\n";
        std::fputs(line.c_str(), stderr);
        return;
    }
    song.instrument(instrument).sample().load(found->view());
}

PathString ConsoleSampleLocator::storedSamplePath(std::u16string_view samplePath, std::u16string_view songPath)
{
    return makeStoredSamplePath(samplePath, songPath, samplesFolder_);
}

} // namespace pulsara
