#include "App/WindowMain.h"
#include "base/text.h"

// pulsara-window [SONG]: the editor window. Users run pulsara, which starts this program when no
// windowless option is given (cli/CommandLine.cpp), passing the song on.
int main(int argc, char** argv)
{
    return pulsara::runWindow(argc, argv, argc > 1 ? pulsara::fromUtf8(argv[1]) : std::u16string());
}
