#include "App/HelpLauncher.h"

#include "App/DataFolders.h"

#include <QDesktopServices>
#include <QUrl>

namespace pulsara {

void openHelp(std::u16string_view anchor)
{
    QUrl page = QUrl::fromLocalFile(QString::fromStdU16String(dataFolder() + u"/Pulsara.htm"));
    if (!anchor.empty())
        page.setFragment(QString::fromUtf16(anchor.data(), qsizetype(anchor.size())));
    QDesktopServices::openUrl(page);
}

} // namespace pulsara
