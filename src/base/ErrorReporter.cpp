#include "base/ErrorReporter.h"

#include "base/text.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace pulsara {

namespace {

class StderrPresenter final : public ErrorPresenter {
public:
    void present(const ErrorReport& report) override
    {
        std::string line = "pulsara: " + toUtf8(report.caption()) + ": " + toUtf8(report.message) + "\n";
        std::fputs(line.c_str(), stderr);
    }
};

StderrPresenter defaultPresenter;
std::atomic<ErrorPresenter*> presenter { &defaultPresenter };
std::atomic<uint32_t> fatalReportsInProgress { 0 };
std::atomic<bool> fatalErrorsUnwind { false };

} // namespace

ErrorContext& errorContext()
{
    static ErrorContext context;
    return context;
}

void setFatalErrorsUnwind(bool unwind)
{
    fatalErrorsUnwind = unwind;
}

ErrorPresenter* setErrorPresenter(ErrorPresenter* newPresenter)
{
    return presenter.exchange(newPresenter ? newPresenter : &defaultPresenter);
}

std::u16string formatErrorText(const ErrorContext& context, int32_t code, std::u16string_view message)
{
    std::u16string text = context.module;
    text += u' ';
    text += context.className;
    text += u'.';
    text += context.function;
    text += u": ";
    text += fromUtf8(std::to_string(code));
    text += u"() - ";
    text += message;
    return text;
}

int reportError(const ErrorContext* context, int32_t code, const char* source, int line, std::u16string_view message)
{
    static const ErrorContext emptyContext;
    const ErrorContext& shownContext = context ? *context : emptyContext;
    std::u16string text = formatErrorText(shownContext, code, message);
    ErrorReport report { code, source, line, message, text, &shownContext };

    if (code < 0) {
        // A second fatal report while the first is still on screen (say from the audio thread)
        // ends the process without another box.
        if (fatalReportsInProgress.fetch_add(1) != 0)
            std::_Exit(code);
        presenter.load()->present(report);
        if (fatalErrorsUnwind) {
            fatalReportsInProgress.fetch_sub(1);
            throw FatalErrorUnwind { code };
        }
        std::_Exit(code);
    }
    presenter.load()->present(report);
    return 1;
}

} // namespace pulsara
