#include "base/ErrorReporter.h"

#include <gtest/gtest.h>

#include <vector>

using namespace pulsara;

namespace {

class RecordingPresenter final : public ErrorPresenter {
public:
    RecordingPresenter() { setErrorPresenter(this); }
    ~RecordingPresenter() override { setErrorPresenter(nullptr); }
    void present(const ErrorReport& report) override { shown.emplace_back(report.caption(), report.line); }
    std::vector<std::pair<std::u16string, int>> shown;
};

// Reports a second fatal error from inside the first one's box.
class ReentrantPresenter final : public ErrorPresenter {
public:
    void present(const ErrorReport&) override { reportError(&errorContext(), -7, "Sound/waveOut", 1, u"second"); }
};

} // namespace

TEST(ErrorReporter, ShowsAnErrorBoxAndAFatalReportUnwindsWhenAskedTo)
{
    RecordingPresenter presenter;
    EXPECT_EQ(reportError(&errorContext(), 0, nullptr, 17, u"can't open wave file"), 1);
    setFatalErrorsUnwind(true);
    EXPECT_THROW(reportError(&errorContext(), -1, "Sound/songFile", 10, u"The song file is corrupted"), FatalErrorUnwind);
    // The counter was released, so the next fatal report is presented too.
    EXPECT_THROW(reportError(&errorContext(), -1, "Sound/songFile", 17, u"The song file is corrupted"), FatalErrorUnwind);
    setFatalErrorsUnwind(false);
    using Shown = std::vector<std::pair<std::u16string, int>>;
    EXPECT_EQ(presenter.shown, (Shown { { u"error", 17 }, { u"FATAL ERROR", 10 }, { u"FATAL ERROR", 17 } }));
}

TEST(ErrorReporter, TextPutsTheCodeWhereAFunctionNameWouldStand)
{
    ErrorContext context;
    EXPECT_EQ(formatErrorText(context, 0, u"buff read error"), u" .: 0() - buff read error");
    context.function = u"/samples/kick.wav";
    EXPECT_EQ(formatErrorText(context, -1, u"Close"), u" ./samples/kick.wav: -1() - Close");
}

TEST(ErrorReporterDeathTest, FatalReportEndsTheProcessWithItsCodeAndASecondOneAtOnceWithItsOwn)
{
    EXPECT_EXIT(reportError(&errorContext(), -1, "Sound/Pattern", 139, u"SS: no format defined"),
        testing::ExitedWithCode(255), "pulsara: FATAL ERROR: SS: no format defined");
    EXPECT_EXIT(
        {
            ReentrantPresenter presenter;
            setErrorPresenter(&presenter);
            reportError(&errorContext(), -1, "text", 114, u"first");
        },
        testing::ExitedWithCode(256 - 7), "");
}
