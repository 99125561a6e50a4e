#include "App/CommandLine.h"

#include <cstdio>

namespace pulsara {

int runCommandLine(int argc, char** argv)
{
    std::fputs("pulsara: the command line is being built\n", stderr);
    return 2;
}

} // namespace pulsara
