#pragma once

#include <string>

namespace pulsara {

// <Documents>/Pulsara, where songs are kept and where samples are looked for when a song's own
// folder lacks them.
std::u16string samplesFolder();
// <Documents>/Templates, the song templates File > New offers.
std::u16string templatesFolder();
// The installed data (demo, skins, help): $PULSARA_DATA_DIR, else share/pulsara beside the
// executable (the build tree), else ../share/pulsara from the executable's folder.
std::u16string dataFolder();
// The folder of the running program's executable; empty when it cannot be told.
std::string programFolder();

} // namespace pulsara
