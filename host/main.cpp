#include <iostream>

#include "host/CommandLine.h"

int main(int argc, char** argv)
{
    return krige::runCommandLine(argc, argv, std::cout, std::cerr);
}
