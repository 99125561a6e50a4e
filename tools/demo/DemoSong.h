#pragma once

#include <string>

namespace demo {

// Writes the kit's WAV files, the demo song zzzDemo.kqu and two templates into `folder`.
bool writeDemo(const std::string& folder);

} // namespace demo
