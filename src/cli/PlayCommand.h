#pragma once

namespace pulsara {

class Song;
struct CommandLineOptions;

// `pulsara --play`: plays the loaded song on the default sound device from position 0 to its
// end, or forever with --loop, showing a status line; Enter or Ctrl+C stops it at once. With
// --live the key rows play the tracks, and playing goes on after the song until Enter.
// Returns the exit status: 0 done, 1 when no audio device could be opened.
int playSong(Song&, const CommandLineOptions&);

} // namespace pulsara
