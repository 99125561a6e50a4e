#include "App/MenuBar.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QUndoStack>

namespace pulsara {

namespace {

struct MenuItem {
    const char* text; // null: a separator
    uint16_t commandId;
    const char* shortcut = nullptr;
    bool checkable = false;
};

struct Menu {
    const char* title;
    std::initializer_list<MenuItem> items;
};

constexpr uint16_t kEmptySongCommand = 40018;

const Menu kNewMenu = { "New", { { "Empty", kEmptySongCommand, "Ctrl+N" } } };
constexpr uint16_t kRecentMenuCommand = 40399;
const Menu kOpenMenu = { "File", { { "Open...", 40012, "Ctrl+O" } } };
const Menu kFileMenu = { "File",
    { { nullptr, 0 }, { "Save", 40019, "Ctrl+S" }, { "Save as...", 40013, "Ctrl+Shift+S" },
        { "Save new version", 40020, "Ctrl+Alt+S" }, { nullptr, 0 }, { "Export to WAV", 40034, "Ctrl+E" }, { nullptr, 0 },
        { "Exit", 40002, "Ctrl+Q" } } };
const Menu kToolsMenu = { "Tools",
    { { "Liveact", 40029, nullptr, true }, { nullptr, 0 }, { "Settings", 40015, "Ctrl+," }, { "Song Properties", 40033 } } };
const Menu kHelpMenu = { "Help", { { "Help", 40028, "F1" }, { nullptr, 0 }, { "About", 40027 } } };

void addItems(QMenu* menu, const Menu& items, const std::function<void(uint16_t)>& sendCommand,
    const std::function<bool(uint16_t)>& isAvailable)
{
    for (const MenuItem& item : items.items) {
        if (!item.text) {
            menu->addSeparator();
            continue;
        }
        QAction* action = menu->addAction(QString::fromLatin1(item.text));
        const uint16_t id = item.commandId;
        action->setData(id);
        action->setCheckable(item.checkable);
        if (item.shortcut)
            action->setShortcut(QKeySequence(QString::fromLatin1(item.shortcut)));
        action->setEnabled(!isAvailable || isAvailable(id));
        QObject::connect(action, &QAction::triggered, menu, [sendCommand, id] {
            if (sendCommand)
                sendCommand(id);
        });
    }
}

} // namespace

bool buildMenuBar(QMenuBar* menuBar, QUndoStack& history, std::function<void(uint16_t)> sendCommand,
    std::function<bool(uint16_t)> isAvailable)
{
    if (!menuBar)
        return false;
    QMenu* file = menuBar->addMenu(QStringLiteral("File"));
    QMenu* newSong = file->addMenu(QStringLiteral("New"));
    addItems(newSong, kNewMenu, sendCommand, isAvailable);
    addItems(file, kOpenMenu, sendCommand, isAvailable);
    // The songs opened or saved last, filled in by the application.
    QMenu* recent = file->addMenu(QStringLiteral("Open Recent"));
    recent->menuAction()->setData(kRecentMenuCommand);
    addItems(file, kFileMenu, sendCommand, isAvailable);

    QMenu* edit = menuBar->addMenu(QStringLiteral("Edit"));
    QAction* undo = history.createUndoAction(edit, QStringLiteral("Undo"));
    undo->setShortcut(QKeySequence::Undo);
    QAction* redo = history.createRedoAction(edit, QStringLiteral("Redo"));
    redo->setShortcuts({ QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), QKeySequence(Qt::CTRL | Qt::Key_Y) });
    edit->addAction(undo);
    edit->addAction(redo);

    addItems(menuBar->addMenu(QStringLiteral("Tools")), kToolsMenu, sendCommand, isAvailable);
    addItems(menuBar->addMenu(QStringLiteral("Help")), kHelpMenu, sendCommand, isAvailable);
    return true;
}

} // namespace pulsara
