#pragma once

namespace pulsara {

// Parses the command line and runs what it asks for; returns the process's exit status.
int runCommandLine(int argc, char** argv);

} // namespace pulsara
