#pragma once

#include "base/ErrorReporter.h"

class QWidget;

namespace pulsara {

// Shows reports in message boxes owned by the main window, with the captions "error" and
// "FATAL ERROR". A report raised on another thread (the audio device's) never opens a box
// there: it is handed to the GUI thread, which shows it; a fatal one then ends the program
// from the GUI thread, while the reporting thread waits. Installed for its lifetime.
class WindowErrorPresenter final : public ErrorPresenter {
public:
    // The longest a reporting thread waits for the GUI thread to show a fatal report.
    static constexpr int kFatalWaitMs = 10000;

    WindowErrorPresenter();
    ~WindowErrorPresenter() override;

    void setOwner(QWidget* owner) { owner_ = owner; }
    void present(const ErrorReport&) override;

private:
    ErrorPresenter* previous_ = nullptr;
    QWidget* owner_ = nullptr;
};

} // namespace pulsara
