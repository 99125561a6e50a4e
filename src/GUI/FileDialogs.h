#pragma once

#include "GUI/FilePath.h"

#include <functional>

namespace pulsara {

// The three file dialogs. Each returns 1 when the user chose something (the FilePath then holds
// it) and 0 when the dialog was cancelled (the FilePath is left as it was).

// A file that exists; the dialog starts at the path's own file and remembers the chosen filter.
int chooseOpenFile(FilePath&);
// chooseOpenFile for a sample, telling `onSelect` of each file the user selects in the dialog
// (so that it can be heard) and, with an empty path, when the dialog closes.
int chooseSampleFile(FilePath&, const std::function<void(std::u16string_view path)>& onSelect);
// A file to write in a folder that exists; the name is taken as the user typed it, with no
// extension added.
int chooseSaveFile(FilePath&);
// A folder, in a dialog titled "Open Folder".
int chooseFolder(FilePath&);

enum class FileDialogKind { Open, Save, Folder };

// Answers the dialogs instead of a person (tests): called with the dialog's kind and the path,
// it returns what the dialog would. An empty function restores the real dialogs.
using FileDialogHook = std::function<int(FileDialogKind, FilePath&)>;
void setFileDialogHook(FileDialogHook);

// The folder a dialog for this path opens in: the path's own folder when it names one, else the
// user's documents folder.
std::u16string dialogStartFolder(const PathString&);

} // namespace pulsara
