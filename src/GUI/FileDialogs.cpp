#include "GUI/FileDialogs.h"

#include "base/Path.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QStandardPaths>
#include <QStringList>

namespace pulsara {

namespace {

FileDialogHook dialogHook;

QString toQString(std::u16string_view text)
{
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

QStringList qtFilters(const FilePath& path)
{
    QStringList filters;
    for (const FileFilter& filter : parseFilterList(path.filter)) {
        QString patterns = toQString(filter.pattern).replace(u';', u' ');
        filters << toQString(filter.description) + QStringLiteral(" (") + patterns + QStringLiteral(")");
    }
    return filters;
}

// The program's own dialog rather than the desktop's, so that it behaves the same everywhere,
// including under the offscreen platform of the tests.
void prepare(QFileDialog& dialog, const FilePath& path, FileDialogKind kind)
{
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    QStringList filters = qtFilters(path);
    if (!filters.isEmpty()) {
        dialog.setNameFilters(filters);
        uint32_t index = path.filterIndex > 0 ? path.filterIndex - 1 : 0;
        if (index < static_cast<uint32_t>(filters.size()))
            dialog.selectNameFilter(filters[static_cast<qsizetype>(index)]);
    }
    dialog.setDirectory(toQString(dialogStartFolder(path)));
    bool save = kind == FileDialogKind::Save;
    dialog.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    if (!path.empty())
        dialog.selectFile(toQString(pathFileName(path.view())));
}

void storeChoice(FilePath& path, const QFileDialog& dialog)
{
    QString chosen = dialog.selectedFiles().value(0);
    path.assign(chosen.toStdU16String());
    QStringList filters = dialog.nameFilters();
    qsizetype index = filters.indexOf(dialog.selectedNameFilter());
    if (!filters.isEmpty() && index >= 0)
        path.filterIndex = static_cast<uint32_t>(index) + 1;
}

} // namespace

std::u16string dialogStartFolder(const PathString& path)
{
    if (!path.empty()) {
        QFileInfo info(toQString(path.view()));
        if (info.isDir())
            return info.absoluteFilePath().toStdU16String();
        if (info.absoluteDir().exists())
            return info.absolutePath().toStdU16String();
    }
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation).toStdU16String();
}

void setFileDialogHook(FileDialogHook hook)
{
    dialogHook = std::move(hook);
}

int chooseOpenFile(FilePath& path)
{
    if (dialogHook)
        return dialogHook(FileDialogKind::Open, path);
    QFileDialog dialog(path.owner);
    prepare(dialog, path, FileDialogKind::Open);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return 0;
    storeChoice(path, dialog);
    return 1;
}

int chooseSampleFile(FilePath& path, const std::function<void(std::u16string_view)>& onSelect)
{
    int chosen = 0;
    if (dialogHook) {
        // A scripted answer stands for a user who selected that file and took it.
        chosen = dialogHook(FileDialogKind::Open, path);
        if (chosen && onSelect)
            onSelect(path.view());
    } else {
        QFileDialog dialog(path.owner);
        prepare(dialog, path, FileDialogKind::Open);
        QObject::connect(&dialog, &QFileDialog::currentChanged, [&onSelect](const QString& selected) {
            if (onSelect)
                onSelect(QFileInfo(selected).isFile() ? selected.toStdU16String() : std::u16string());
        });
        if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty()) {
            storeChoice(path, dialog);
            chosen = 1;
        }
    }
    if (onSelect)
        onSelect({});
    return chosen;
}

int chooseSaveFile(FilePath& path)
{
    if (dialogHook)
        return dialogHook(FileDialogKind::Save, path);
    QFileDialog dialog(path.owner);
    prepare(dialog, path, FileDialogKind::Save);
    if (dialog.exec() != QDialog::Accepted)
        return 0;
    QString chosen = dialog.selectedFiles().value(0);
    if (chosen.isEmpty() || QFileInfo(chosen).fileName().isEmpty())
        return 0;
    storeChoice(path, dialog);
    return 1;
}

int chooseFolder(FilePath& path)
{
    if (dialogHook)
        return dialogHook(FileDialogKind::Folder, path);
    QFileDialog dialog(path.owner, QStringLiteral("Open Folder"));
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setDirectory(toQString(dialogStartFolder(path)));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return 0;
    path.assign(dialog.selectedFiles().value(0).toStdU16String());
    return 1;
}

} // namespace pulsara
