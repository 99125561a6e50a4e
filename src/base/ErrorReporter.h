#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace pulsara {

// The three strings every report is prefixed with. Only the WAV reader ever changes one:
// it points `function` at the file being loaded, so later reports name that file.
struct ErrorContext {
    std::u16string module;
    std::u16string className;
    std::u16string function;
};

// The one process-wide context that every reporting object points to.
ErrorContext& errorContext();

constexpr int32_t kFatal = -1;
constexpr int32_t kRecoverable = 0;

struct ErrorReport {
    int32_t code = 0;
    const char* source = nullptr; // may be null
    int line = 0;
    std::u16string_view message;
    std::u16string_view text; // the formatted text shown to the user
    const ErrorContext* context = nullptr;

    bool isFatal() const { return code < 0; }
    std::u16string_view caption() const { return isFatal() ? u"FATAL ERROR" : u"error"; }
};

// Shows reports to the user: a message box in the window, a line on stderr on the command line.
// present() returns once the user has seen the report.
class ErrorPresenter {
public:
    virtual ~ErrorPresenter() = default;
    virtual void present(const ErrorReport&) = 0;
};

// Installs the presenter (nullptr restores the default, which writes one line to stderr).
// Returns the previous one.
ErrorPresenter* setErrorPresenter(ErrorPresenter*);

// Formats " module.class.function: code() - message" (the code stands where a function name
// would), shows it and returns 1. A negative code is fatal: the process ends with that code
// once the report has been seen, and a second fatal report arriving meanwhile ends it at once.
int reportError(const ErrorContext*, int32_t code, const char* source, int line, std::u16string_view message);

// The text reportError shows for a report.
std::u16string formatErrorText(const ErrorContext&, int32_t code, std::u16string_view message);

// Fuzzing cannot let a fatal report end the process: with unwinding switched on, a fatal report
// throws this instead of exiting, once it has been presented.
struct FatalErrorUnwind {
    int32_t code;
};
void setFatalErrorsUnwind(bool);

} // namespace pulsara
