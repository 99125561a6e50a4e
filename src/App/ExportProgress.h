#pragma once

#include <string_view>

namespace pulsara {

class SoundSource;

// Export to WAV in the window: the render with a progress dialog whose Cancel stops it. A
// cancelled or failed export leaves no file behind.
class ExportProgress {
public:
    // True when the whole file was written.
    static bool run(SoundSource&, std::u16string_view path);
};

} // namespace pulsara
