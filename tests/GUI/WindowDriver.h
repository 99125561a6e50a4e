#pragma once

// A recording window, and a driver that works an element tree as a user at the window would: the
// same window messages the canvas sends, with the skin loaded from the build tree.
#include "GUI/NativeWindow.h"
#include "GUI/QtTestApplication.h"
#include "GUI/RootElement.h"
#include "GUI/Skin.h"
#include "GUI/WindowMessage.h"
#include "base/text.h"

#include <QImage>
#include <QPoint>
#include <QRegion>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace pulsara::test {

// A text box that holds its text; tests finish it as a user would.
class FakeTextEdit : public PlatformTextEdit {
public:
    ElemRect geometry;
    std::u16string content;
    bool shown = false;

    void setGeometry(const ElemRect& rect) override { geometry = rect; }
    void setText(std::u16string_view text) override { content = text; }
    std::u16string text() const override { return content; }
    void setMaxLength(int32_t) override { }
    void show() override { shown = true; }
    void hide() override { shown = false; }
    bool isShown() const override { return shown; }
    // Return (accepted) or Escape.
    void finish(bool accepted) { shown = false; if (onFinished) onFinished(accepted); }
    void enter(std::u16string text, bool accepted) { content = std::move(text); finish(accepted); }
};

// A window that records what the root asks of it.
class FakeWindow : public NativeWindow {
public:
    ElemRect client { 0, 0, 200, 126 };
    int32_t menuHeight = 26;
    bool menuBarWorks = true, capture = false;
    QRegion paintRegion, presented;
    std::vector<std::string> calls;
    std::u16string title;
    // The command the next pop-up menu answers with (0: dismissed), and what it showed.
    uint32_t popupChoice = 0;
    std::vector<PopupMenuItem> popupItems;
    ElemRect popupAt;
    std::map<uint32_t, bool> checkedItems;
    FakeTextEdit* textEdit = nullptr;

    void bringToForeground() override { calls.push_back("foreground"); }
    bool createMenuBar() override { calls.push_back("createMenuBar"); return menuBarWorks; }
    void destroyMenuBar() override { calls.push_back("destroyMenuBar"); }
    void destroyWindow() override { calls.push_back("destroyWindow"); }
    ElemRect clientRect() const override { return client; }
    int32_t menuBarHeight() const override { return menuHeight; }
    QRegion updateRegion() const override { return paintRegion; }
    void invalidate(const ElemRect&) override { }
    void present(const QRegion& region) override { presented += region; }
    void scrollContent(const ElemRect&, int32_t, int32_t) override { }
    void captureStylus() override { capture = true; }
    void releaseStylus() override { capture = false; }
    bool hasStylusCapture() const override { return capture; }
    void postQuit() override { calls.push_back("quit"); }
    void showMessage(std::u16string_view text, std::u16string_view caption) override
    {
        calls.push_back("message " + toUtf8(text) + " / " + toUtf8(caption));
    }
    void setTitle(std::u16string_view text) override { title = text; }
    uint32_t trackPopupMenu(const std::vector<PopupMenuItem>& items, int32_t x, int32_t y) override
    {
        popupItems = items;
        popupAt = { x, y, 0, 0 };
        return popupChoice;
    }
    void checkMenuItem(uint32_t id, bool checked) override { checkedItems[id] = checked; }
    void setZoom(int32_t) override { }
    void setMenuItemsAfter(uint32_t, const std::vector<PopupMenuItem>&) override { }
    std::unique_ptr<PlatformTextEdit> createTextEdit() override { auto edit = std::make_unique<FakeTextEdit>(); textEdit = edit.get(); return edit; }
};

inline Skin& loadedSkin()
{
    static bool loaded = false;
    if (!loaded) {
        testApplication();
        theSkin().setInstallDir(u"" PULSARA_SHARE_DIR "/");
        theSkin().load();
        loaded = true;
    }
    return theSkin();
}

struct WindowDriver {
    RootElement& root;
    FakeWindow window;

    // The tree is not touched until open(), so that it may be built after the driver.
    explicit WindowDriver(RootElement& tree) : root(tree) { window.menuHeight = 0; }

    void open(int width, int height)
    {
        root.handleMessage(kMessageCreate, 0, reinterpret_cast<intptr_t>(static_cast<NativeWindow*>(&window)));
        resize(width, height);
    }
    void resize(int width, int height)
    {
        window.client = { 0, 0, width, height };
        root.handleMessage(kMessageSize, 0, packPosition(width, height));
        paint();
    }
    // A full repaint, as the window asks for after a resize or an uncovering.
    void paint() { window.paintRegion = QRegion(window.client.toQRect()); root.handleMessage(kMessagePaint, 0, 0); }
    const QImage& image() const { return root.backBuffer().image(); }

    void send(uint32_t message, QPoint at, uintptr_t wParam = 0) { root.handleMessage(message, wParam, packPosition(at.x(), at.y())); }
    void press(QPoint at, int button = 0) { send(button ? kMessageRightButtonDown : kMessageLeftButtonDown, at); }
    void move(QPoint at) { send(kMessageMouseMove, at); }
    void release(QPoint at, int button = 0) { send(button ? kMessageRightButtonUp : kMessageLeftButtonUp, at); }
    void click(QPoint at, int button = 0) { press(at, button); release(at, button); }
    void doubleClick(QPoint at) { click(at); send(kMessageLeftButtonDoubleClick, at); release(at); }
    void wheel(QPoint at, int notches, uint32_t keys = 0) { send(kMessageMouseWheel, at, packWheel(notches * kWheelNotch, keys)); }
    void key(uint32_t key, intptr_t flags = 0) { root.handleMessage(kMessageKeyDown, key, flags); }
    void command(uint32_t id) { root.handleMessage(kMessageCommand, id, 0); }

    static QPoint centre(const Element& element) { return element.rect()->toQRect().center(); }
};

} // namespace pulsara::test
