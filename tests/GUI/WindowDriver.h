#pragma once

// Drives an element tree as a user at the window would: the same window messages the canvas
// sends, on a recording window, with the skin loaded from the build tree.
#include "GUI/FakeWindow.h"
#include "GUI/QtTestApplication.h"
#include "GUI/RootElement.h"
#include "GUI/Skin.h"
#include "GUI/WindowMessage.h"

#include <QImage>
#include <QPoint>

namespace pulsara::test {

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

    // The window's creation and first paint.
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
    void paint()
    {
        window.paintRegion = QRegion(window.client.toQRect());
        root.handleMessage(kMessagePaint, 0, 0);
    }
    const QImage& image() const { return root.backBuffer().image(); }

    void send(uint32_t message, QPoint at, uintptr_t wParam = 0) { root.handleMessage(message, wParam, packPosition(at.x(), at.y())); }
    void press(QPoint at, int button = 0) { send(button ? kMessageRightButtonDown : kMessageLeftButtonDown, at); }
    void move(QPoint at) { send(kMessageMouseMove, at); }
    void release(QPoint at, int button = 0) { send(button ? kMessageRightButtonUp : kMessageLeftButtonUp, at); }
    void click(QPoint at, int button = 0)
    {
        press(at, button);
        release(at, button);
    }
    void doubleClick(QPoint at)
    {
        click(at);
        send(kMessageLeftButtonDoubleClick, at);
        release(at);
    }
    void drag(QPoint from, QPoint to)
    {
        press(from);
        move(to);
        release(to);
    }
    void wheel(QPoint at, int notches, uint32_t keys = 0) { send(kMessageMouseWheel, at, packWheel(notches * kWheelNotch, keys)); }
    void key(uint32_t key, intptr_t flags = 0) { root.handleMessage(kMessageKeyDown, key, flags); }
    void command(uint32_t id) { root.handleMessage(kMessageCommand, id, 0); }

    static QPoint centre(const Element& element) { return element.rect()->toQRect().center(); }
};

} // namespace pulsara::test
