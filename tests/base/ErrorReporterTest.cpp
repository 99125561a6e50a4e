#include "base/ErrorReporter.h"

#include <gtest/gtest.h>

#include <vector>

using namespace pulsara;

namespace {

class RecordingPresenter final : public ErrorPresenter {
public:
    struct Shown {
        std::u16string caption, text;
        int32_t code;
        int line;
    };
    std::vector<Shown> shown;
    void present(const ErrorReport& report) override
    {
        shown.push_back({ std::u16string(report.caption()), std::u16string(report.text), report.code, report.line });
    }
};

// Reports a second fatal error from inside the first one's box.
class ReentrantPresenter final : public ErrorPresenter {
public:
    void present(const ErrorReport&) override { reportError(&errorContext(), -7, "Sound/waveOut", 1, u"second"); }
};

} // namespace

TEST(ErrorReporter, RecoverableReportShowsAnErrorBoxAndReturnsOne)
{
    RecordingPresenter presenter;
    setErrorPresenter(&presenter);
    EXPECT_EQ(reportError(&errorContext(), 0, nullptr, 17, u"can't open wave file"), 1);
    setErrorPresenter(nullptr);

    ASSERT_EQ(presenter.shown.size(), 1u);
    EXPECT_EQ(presenter.shown[0].caption, u"error");
    EXPECT_EQ(presenter.shown[0].line, 17);
}

TEST(ErrorReporter, TextPutsTheCodeWhereAFunctionNameWouldStand)
{
    ErrorContext context;
    EXPECT_EQ(formatErrorText(context, 0, u"buff read error"), u" .: 0() - buff read error");
    context.function = u"/samples/kick.wav";
    EXPECT_EQ(formatErrorText(context, -1, u"Close"), u" ./samples/kick.wav: -1() - Close");
}

TEST(ErrorReporterDeathTest, FatalReportEndsTheProcessWithItsCode)
{
    EXPECT_EXIT(reportError(&errorContext(), -1, "Sound/Pattern", 139, u"SS: no format defined"),
        testing::ExitedWithCode(255), "pulsara: FATAL ERROR: SS: no format defined");
}

TEST(ErrorReporterDeathTest, SecondFatalReportDuringTheFirstEndsAtOnceWithItsOwnCode)
{
    EXPECT_EXIT(
        {
            ReentrantPresenter presenter;
            setErrorPresenter(&presenter);
            reportError(&errorContext(), -1, "text", 114, u"first");
        },
        testing::ExitedWithCode(256 - 7), "");
}

TEST(ErrorReporter, FatalReportUnwindsWhenAskedTo)
{
    RecordingPresenter presenter;
    setErrorPresenter(&presenter);
    setFatalErrorsUnwind(true);
    EXPECT_THROW(reportError(&errorContext(), -1, "Sound/songFile", 10, u"The song file is corrupted"), FatalErrorUnwind);
    // The counter was released, so the next fatal report is presented too.
    EXPECT_THROW(reportError(&errorContext(), -1, "Sound/songFile", 17, u"The song file is corrupted"), FatalErrorUnwind);
    setFatalErrorsUnwind(false);
    setErrorPresenter(nullptr);
    ASSERT_EQ(presenter.shown.size(), 2u);
    EXPECT_EQ(presenter.shown[1].caption, u"FATAL ERROR");
}
