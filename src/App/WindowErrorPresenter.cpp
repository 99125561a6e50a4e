#include "App/WindowErrorPresenter.h"

#include "base/text.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QPointer>
#include <QThread>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace pulsara {

namespace {

void showBox(QWidget* owner, const QString& caption, const QString& text, bool fatal)
{
    QMessageBox box(fatal ? QMessageBox::Critical : QMessageBox::Warning, caption, text, QMessageBox::Ok, owner);
    box.setWindowFlag(Qt::WindowStaysOnTopHint);
    box.exec();
}

} // namespace

WindowErrorPresenter::WindowErrorPresenter()
    : previous_(setErrorPresenter(this))
{
}

WindowErrorPresenter::~WindowErrorPresenter()
{
    setErrorPresenter(previous_);
}

void WindowErrorPresenter::present(const ErrorReport& report)
{
    const QString caption = QString::fromUtf16(report.caption().data(), qsizetype(report.caption().size()));
    const QString text = QString::fromUtf16(report.text.data(), qsizetype(report.text.size()));
    const bool fatal = report.isFatal();
    QCoreApplication* application = QCoreApplication::instance();
    if (!application || QThread::currentThread() == application->thread()) {
        showBox(owner_, caption, text, fatal);
        return;
    }
    // Not the GUI thread: a line on stderr at once, the box on the GUI thread.
    std::string line = "pulsara: " + toUtf8(report.caption()) + ": " + toUtf8(report.message) + "\n";
    std::fputs(line.c_str(), stderr);
    QPointer<QWidget> owner = owner_;
    const int32_t code = report.code;
    QMetaObject::invokeMethod(
        application,
        [owner, caption, text, fatal, code] {
            showBox(owner, caption, text, fatal);
            if (fatal)
                std::_Exit(code);
        },
        Qt::QueuedConnection);
    if (!fatal)
        return;
    // The GUI thread ends the program once the box is closed; if it cannot get to it, this
    // thread gives up waiting and the program ends here.
    for (int waited = 0; waited < kFatalWaitMs; waited += 10)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

} // namespace pulsara
