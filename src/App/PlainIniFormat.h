#pragma once

#include <QSettings>

namespace pulsara {

// The INI format of Qt's settings, read and written as plain text only. Qt's own INI reader
// turns a value written as @Variant(...) into a stored object, with sizes taken from the file,
// so a few bytes of a damaged settings file could ask for gigabytes at every start; this one
// reads strings and lists of strings, as the program writes them, and passes over any value
// that names a type. Files written by Qt's INI format read the same for those values.
QSettings::Format plainIniFormat();

} // namespace pulsara
