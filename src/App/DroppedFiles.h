#pragma once

#include <string>
#include <vector>

namespace pulsara {

// Files dropped on the window, sorted by what the program can do with them: songs and
// templates to open, WAV samples to load, and the rest (folders, other files), refused.
struct DroppedFiles {
    std::vector<std::u16string> songs;
    std::vector<std::u16string> samples;
    std::vector<std::u16string> refused;

    static DroppedFiles sort(const std::vector<std::u16string>& paths);
    // The message for refused files: "Pulsara opens songs (.kqu, .kqt) and WAV samples (.wav);
    // this is neither: NAME".
    std::u16string refusal() const;
};

} // namespace pulsara
