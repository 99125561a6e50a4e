// Reports made on the audio device's thread are shown by the GUI thread, never by their own.
#include "App/WindowErrorPresenter.h"

#include "GUI/QtTestApplication.h"

#include <QApplication>
#include <QThread>
#include <QTimer>
#include <QWidget>
#include <gtest/gtest.h>

#include <thread>

using namespace pulsara;

TEST(WindowErrorPresenter, ShowsAReportFromAnotherThreadOnTheGuiThread)
{
    test::testApplication();
    WindowErrorPresenter presenter;
    QString caption;
    bool onGuiThread = false;
    // Each box is closed as soon as it shows, noting what and where.
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [&] {
        if (QWidget* box = QApplication::activeModalWidget()) {
            caption = box->windowTitle();
            onGuiThread = QThread::currentThread() == QCoreApplication::instance()->thread();
            box->close();
        }
    });
    closer.start(5);
    std::thread device([] { reportError(&errorContext(), kRecoverable, "Sound/waveOut", 1, u"device lost"); });
    // A report that is not fatal does not hold up the thread that made it.
    device.join();
    EXPECT_TRUE(caption.isEmpty()) << "nothing is shown before the GUI thread runs";
    ASSERT_TRUE(test::processEventsUntil([&] { return !caption.isEmpty(); }));
    EXPECT_EQ(caption, QStringLiteral("error"));
    EXPECT_TRUE(onGuiThread);
}
