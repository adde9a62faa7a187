// Measures the gallery of hard systems and prints the table of docs/accuracy.md, or with --each a line per system.

#include <cstdio>
#include <cstring>

#include "tests/accuracy/AccuracyTables.h"

int main(int argc, char** argv)
{
    const bool isEach = argc == 2 && std::strcmp(argv[1], "--each") == 0;
    if (argc > 1 && !isEach)
    {
        std::fprintf(stderr, "usage: %s [--each]\n", argv[0]);
        return 2;
    }
    const auto systems = fenn::test::measureHardSystems();
    std::fputs((isEach ? fenn::test::systemTable(systems) : fenn::test::familyTable(systems)).c_str(), stdout);
    return 0;
}
