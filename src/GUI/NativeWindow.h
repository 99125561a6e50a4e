#pragma once

#include "GUI/ElemRect.h"
#include "GUI/PlatformTextEdit.h"
#include "GUI/PopupMenuItem.h"

#include <memory>
#include <string_view>
#include <vector>

class QRegion;

namespace pulsara {

// What the root element asks of the top-level window it draws into. The Qt canvas implements
// it; tests put a recording stand-in in its place.
class NativeWindow {
public:
    virtual ~NativeWindow() = default;

    virtual void bringToForeground() = 0;
    // Builds the window's menu bar; false when that failed.
    virtual bool createMenuBar() = 0;
    virtual void destroyMenuBar() = 0;
    // Closes the window for good (the default handling of the close message).
    virtual void destroyWindow() = 0;

    // The client area, the menu bar's room included, and the height of that room.
    virtual ElemRect clientRect() const = 0;
    virtual int32_t menuBarHeight() const = 0;

    // While the paint message is handled: the part of the window to repaint.
    virtual QRegion updateRegion() const = 0;
    // Asks for a paint message for the rectangle, later, without erasing it first.
    virtual void invalidate(const ElemRect&) = 0;
    // The back buffer already holds fresh pixels there: show them, without a paint message.
    virtual void present(const QRegion&) = 0;
    // The back buffer's pixels in the area have moved by (dx, dy), as scrolling moves them: the
    // window moves its own copy the same way, rather than taking all of them again. What comes
    // into view is presented separately.
    virtual void scrollContent(const ElemRect& area, int32_t dx, int32_t dy) = 0;

    virtual void captureStylus() = 0;
    virtual void releaseStylus() = 0;
    virtual bool hasStylusCapture() const = 0;

    // Ends the message loop.
    virtual void postQuit() = 0;
    virtual void showMessage(std::u16string_view text, std::u16string_view caption) = 0;

    // The text of the window's title bar.
    virtual void setTitle(std::u16string_view) = 0;
    // Shows a pop-up menu with its top-left corner at the client point and waits for the
    // choice: the chosen item's command, or 0 when the menu was dismissed.
    virtual uint32_t trackPopupMenu(const std::vector<PopupMenuItem>&, int32_t x, int32_t y) = 0;
    // Sets the check mark of the menu item that sends the command.
    virtual void checkMenuItem(uint32_t commandId, bool checked) = 0;
    // Replaces the items that follow the item of `anchorCommand` in its menu (File > New's
    // templates after "Empty"), or all the items of the sub-menu that `anchorCommand` names
    // (File > Open Recent); each sends its command as a command message.
    virtual void setMenuItemsAfter(uint32_t anchorCommand, const std::vector<PopupMenuItem>&) = 0;
    // Draws every pixel of the element tree as `zoom` x `zoom` pixels of the screen (1 to 3), or
    // at the screen's own scale rounded to a whole number (0), so that every cell of the skin
    // keeps the same size on screens of any scale.
    virtual void setZoom(int32_t zoom) = 0;
    // A text box laid over the client area, hidden until shown.
    virtual std::unique_ptr<PlatformTextEdit> createTextEdit() = 0;
};

} // namespace pulsara
