#pragma once

#include "base/ErrorReporter.h"

namespace pulsara {

// Keeps reports that are not fatal from being shown for as long as it lives, where a failure is
// expected and answered otherwise (a file that is only being looked at). Fatal reports still end
// the program as always.
class QuietReports final : public ErrorPresenter {
public:
    QuietReports() : previous_(setErrorPresenter(this)) { }
    ~QuietReports() override { setErrorPresenter(previous_); }
    QuietReports(const QuietReports&) = delete;
    QuietReports& operator=(const QuietReports&) = delete;

    void present(const ErrorReport& report) override
    {
        if (report.isFatal() && previous_)
            previous_->present(report);
    }

private:
    ErrorPresenter* previous_;
};

} // namespace pulsara
