#include "base/ErrorReporter.h"

#include "support/ReportRecorder.h"

#include <gtest/gtest.h>

#include <vector>

using namespace pulsara;

namespace {

// Reports a second fatal error from inside the first one's box.
class ReentrantPresenter final : public ErrorPresenter {
public:
    void present(const ErrorReport&) override { reportError(&errorContext(), -7, "Sound/waveOut", 1, u"second"); }
};

} // namespace

TEST(ErrorReporter, ShowsAnErrorBoxAndAFatalReportUnwindsWhenAskedTo)
{
    test::ReportRecorder reports;
    EXPECT_EQ(reportError(&errorContext(), 0, nullptr, 17, u"can't open wave file"), 1);
    setFatalErrorsUnwind(true);
    EXPECT_THROW(reportError(&errorContext(), -1, "Sound/songFile", 10, u"The song file is corrupted"), FatalErrorUnwind);
    // The counter was released, so the next fatal report is presented too.
    EXPECT_THROW(reportError(&errorContext(), -1, "Sound/songFile", 17, u"The song file is corrupted"), FatalErrorUnwind);
    setFatalErrorsUnwind(false);
    EXPECT_EQ(reports.summaries(), (std::vector<test::ReportSummary> { { 0, "", 17, u"can't open wave file" },
                                       { -1, "Sound/songFile", 10, u"The song file is corrupted" },
                                       { -1, "Sound/songFile", 17, u"The song file is corrupted" } }));
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
