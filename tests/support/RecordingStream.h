#pragma once

#include "Sound/WaveOutStream.h"
#include "base/ErrorReporter.h"

#include <string>
#include <utility>
#include <vector>

namespace pulsara::testing {

// An output stream that keeps every meter notification, the way the application's meters
// would receive them.
class RecordingStream : public WaveOutStream {
public:
    using WaveOutStream::WaveOutStream;

    std::vector<std::pair<float, float>> peaks;
    std::vector<float> loads;

protected:
    void onPeaks(float left, float right) override { peaks.emplace_back(left, right); }
    void onCpuLoad(float load) override { loads.push_back(load); }
};

// While alive, fatal reports are kept here and unwind as FatalErrorUnwind instead of ending
// the test program.
class FatalReportCatcher : public ErrorPresenter {
public:
    struct Seen {
        int32_t code;
        std::string source;
        int line;
        std::u16string message;
    };

    FatalReportCatcher()
        : previous_(setErrorPresenter(this))
    {
        setFatalErrorsUnwind(true);
    }
    ~FatalReportCatcher() override
    {
        setFatalErrorsUnwind(false);
        setErrorPresenter(previous_);
    }

    void present(const ErrorReport& report) override
    {
        reports.push_back({ report.code, report.source ? report.source : "", report.line, std::u16string(report.message) });
    }

    std::vector<Seen> reports;

private:
    ErrorPresenter* previous_;
};

} // namespace pulsara::testing
