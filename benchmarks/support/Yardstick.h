#ifndef FENN_BENCHMARKS_SUPPORT_YARDSTICK_H
#define FENN_BENCHMARKS_SUPPORT_YARDSTICK_H

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>

#include <unistd.h>

namespace fenn::benchmarks
{

/// The number that this program prints when it is run again with the given arguments, in a process of its own with the
/// given environment. Ends the program when it prints none.
inline double figureOfChild(const std::string& environment, const std::string& arguments)
{
    char path[4096];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
    const std::string program(path, static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    const std::string command = environment + " '" + program + "' " + arguments;
    std::FILE* pipe = popen(command.c_str(), "r");
    double figure = 0.0;
    const bool isRead = pipe != nullptr && std::fscanf(pipe, "%lf", &figure) == 1;
    if (pipe != nullptr)
        pclose(pipe);
    if (!isRead)
    {
        std::fprintf(stderr, "no figure from: %s\n", command.c_str());
        std::exit(EXIT_FAILURE);
    }
    return figure;
}

/// Best time of a yardstick in OpenBLAS, in seconds: that of the fastest of its kernels on one thread. OpenBLAS chooses
/// its kernels when it is loaded, so each set is measured in a process of its own.
inline double yardstickSeconds(const std::string& arguments)
{
    double best = std::numeric_limits<double>::infinity();
    for (const char* kernels : {"HASWELL", "SKYLAKEX", "ZEN"})
        best = std::min(best,
                        figureOfChild(std::string("OPENBLAS_NUM_THREADS=1 OPENBLAS_CORETYPE=") + kernels, arguments));
    return best;
}

} // namespace fenn::benchmarks

#endif
