#include "App/MenuBar.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

namespace pulsara {

namespace {

struct MenuItem {
    const char* text; // null: a separator
    uint16_t commandId;
};

struct Menu {
    const char* title;
    std::initializer_list<MenuItem> items;
};

const Menu kMenus[] = {
    { "File",
        { { "Empty", 40018 }, { "Open...", 40012 }, { nullptr, 0 }, { "Save", 40019 }, { "Save as...", 40013 },
            { "Save new version", 40020 }, { nullptr, 0 }, { "Export to WAV", 40034 }, { nullptr, 0 }, { "Exit", 40002 } } },
    { "Tools", { { "Liveact", 40029 }, { nullptr, 0 }, { "Settings", 40015 }, { "Song Properties", 40033 } } },
    { "Help", { { "Help", 40028 }, { nullptr, 0 }, { "About", 40027 } } },
};

} // namespace

bool buildMenuBar(QMenuBar* menuBar, std::function<void(uint16_t)> sendCommand, std::function<bool(uint16_t)> isAvailable)
{
    if (!menuBar)
        return false;
    for (const Menu& menu : kMenus) {
        QMenu* dropDown = menuBar->addMenu(QString::fromLatin1(menu.title));
        for (const MenuItem& item : menu.items) {
            if (!item.text) {
                dropDown->addSeparator();
                continue;
            }
            QAction* action = dropDown->addAction(QString::fromLatin1(item.text));
            const uint16_t id = item.commandId;
            action->setData(id);
            action->setEnabled(!isAvailable || isAvailable(id));
            QObject::connect(action, &QAction::triggered, menuBar, [sendCommand, id] {
                if (sendCommand)
                    sendCommand(id);
            });
        }
    }
    return true;
}

} // namespace pulsara
