#pragma once

#include <string>

namespace pulsara {

class Song;

// The song as one JSON object (tempo, volume, grid shape, loop, views, every instrument and
// every pattern with its playlist positions and notes). Floats carry 9 significant digits, so
// that 32-bit values read back exactly.
std::string dumpSongJson(const Song&);

} // namespace pulsara
