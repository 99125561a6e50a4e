#pragma once

#include "GUI/NativeWindow.h"

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
    void finish(bool accepted)
    {
        shown = false;
        if (onFinished)
            onFinished(accepted);
    }
};

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
    void scrollContent(const ElemRect& area, int32_t dx, int32_t dy) override
    {
        calls.push_back("scroll " + std::to_string(area.width) + "x" + std::to_string(area.height) + " by " + std::to_string(dx) + "," + std::to_string(dy));
    }
    void captureStylus() override { capture = true; }
    void releaseStylus() override { capture = false; }
    bool hasStylusCapture() const override { return capture; }
    void postQuit() override { calls.push_back("quit"); }
    void showMessage(std::u16string_view text, std::u16string_view caption) override
    {
        calls.push_back("message " + std::string(text.begin(), text.end()) + " / " + std::string(caption.begin(), caption.end()));
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
    void setMenuItemsAfter(uint32_t anchor, const std::vector<PopupMenuItem>& items) override { menuItemsAfter[anchor] = items; }
    std::unique_ptr<PlatformTextEdit> createTextEdit() override
    {
        auto edit = std::make_unique<FakeTextEdit>();
        textEdit = edit.get();
        return edit;
    }

    std::u16string title;
    // The command the next pop-up menu answers with (0: dismissed), and what it showed.
    uint32_t popupChoice = 0;
    std::vector<PopupMenuItem> popupItems;
    ElemRect popupAt;
    std::map<uint32_t, bool> checkedItems;
    std::map<uint32_t, std::vector<PopupMenuItem>> menuItemsAfter;
    FakeTextEdit* textEdit = nullptr;
};

} // namespace pulsara::test
