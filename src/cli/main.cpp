#include "cli/CommandLine.h"
#include "cli/ProcessHeap.h"

int main(int argc, char** argv)
{
    pulsara::prepareProcessHeap();
    return pulsara::runCommandLine(argc, argv);
}
