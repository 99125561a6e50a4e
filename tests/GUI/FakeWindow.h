#pragma once

#include "GUI/NativeWindow.h"

#include <QRegion>

#include <string>
#include <vector>

namespace pulsara::test {

// A window that records what the root asks of it.
class FakeWindow : public NativeWindow {
public:
    ElemRect client { 0, 0, 200, 126 };
    int32_t menuHeight = 26;
    bool menuBarWorks = true;
    bool capture = false;
    QRegion paintRegion;
    QRegion presented;
    std::vector<ElemRect> invalidated;
    std::vector<std::string> calls;

    void bringToForeground() override { calls.push_back("foreground"); }
    bool createMenuBar() override
    {
        calls.push_back("createMenuBar");
        return menuBarWorks;
    }
    void destroyMenuBar() override { calls.push_back("destroyMenuBar"); }
    void destroyWindow() override { calls.push_back("destroyWindow"); }
    ElemRect clientRect() const override { return client; }
    int32_t menuBarHeight() const override { return menuHeight; }
    QRegion updateRegion() const override { return paintRegion; }
    void invalidate(const ElemRect& rect) override { invalidated.push_back(rect); }
    void present(const QRegion& region) override { presented += region; }
    void captureStylus() override { capture = true; }
    void releaseStylus() override { capture = false; }
    bool hasStylusCapture() const override { return capture; }
    void postQuit() override { calls.push_back("quit"); }
    void showMessage(std::u16string_view text, std::u16string_view caption) override
    {
        calls.push_back("message " + std::string(text.begin(), text.end()) + " / " + std::string(caption.begin(), caption.end()));
    }
};

} // namespace pulsara::test
