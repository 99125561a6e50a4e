#pragma once

// Installs an ErrorPresenter that keeps every report instead of showing it, for as long as it
// lives; the previous presenter comes back afterwards.

#include "base/ErrorReporter.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace pulsara::test {

struct RecordedReport {
    int32_t code = 0;
    std::string source;
    int line = 0;
    std::u16string message;
    std::u16string text;
};

class ReportRecorder final : public ErrorPresenter {
public:
    ReportRecorder() { previous_ = setErrorPresenter(this); }
    ~ReportRecorder() override { setErrorPresenter(previous_); }
    ReportRecorder(const ReportRecorder&) = delete;
    ReportRecorder& operator=(const ReportRecorder&) = delete;

    void present(const ErrorReport& report) override
    {
        reports_.push_back({ report.code, report.source ? report.source : "", report.line,
            std::u16string(report.message), std::u16string(report.text) });
    }

    const std::vector<RecordedReport>& reports() const { return reports_; }
    const RecordedReport& last() const
    {
        if (reports_.empty())
            throw std::logic_error("no report was made");
        return reports_.back();
    }
    void clear() { reports_.clear(); }

private:
    ErrorPresenter* previous_ = nullptr;
    std::vector<RecordedReport> reports_;
};

// Lets fatal reports unwind as FatalErrorUnwind instead of ending the test program.
class FatalReportsUnwind {
public:
    FatalReportsUnwind() { setFatalErrorsUnwind(true); }
    ~FatalReportsUnwind() { setFatalErrorsUnwind(false); }
    FatalReportsUnwind(const FatalReportsUnwind&) = delete;
    FatalReportsUnwind& operator=(const FatalReportsUnwind&) = delete;
};

} // namespace pulsara::test
