#pragma once

#include <string>

namespace pulsara {

// The first start of the program for a user: when <Documents>/Pulsara does not exist yet, the
// demo song and its samples are put there and the song templates into <Documents>/Templates,
// so that the first window shows the demo, Open shows songs and New shows templates. Returns
// true when it installed them.
bool installUserFolders(const std::u16string& dataFolder, const std::u16string& songsFolder, const std::u16string& templatesFolder);

} // namespace pulsara
