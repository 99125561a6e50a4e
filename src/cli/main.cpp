#include "cli/CommandLine.h"

int main(int argc, char** argv)
{
    return pulsara::runCommandLine(argc, argv);
}
