#pragma once

// Installs an ErrorPresenter that keeps every report instead of showing it, for as long as it
// lives; the previous presenter comes back afterwards.

#include "base/ErrorReporter.h"

#include <string>
#include <tuple>
#include <vector>

namespace pulsara::test {

struct RecordedReport {
    int32_t code = 0;
    std::string source;
    int line = 0;
    std::u16string message;
    std::u16string text;
};

// What a test names of a report: code, source, line and message.
using ReportSummary = std::tuple<int32_t, std::string, int, std::u16string>;

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
    std::vector<ReportSummary> summaries() const
    {
        std::vector<ReportSummary> out;
        for (const RecordedReport& report : reports_)
            out.emplace_back(report.code, report.source, report.line, report.message);
        return out;
    }
    const RecordedReport& last() const { return reports_.at(reports_.size() - 1); } // throws when none was made
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
