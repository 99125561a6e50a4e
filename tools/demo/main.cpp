// pulsara_demo_generator FOLDER: writes the demo kit, song and templates into FOLDER.
#include "DemoSong.h"

#include <cstdio>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    if (!demo::writeDemo(argv[1])) {
        std::fprintf(stderr, "%s: could not write the demo into %s\n", argv[0], argv[1]);
        return 1;
    }
    return 0;
}
