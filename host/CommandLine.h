#ifndef FENN_HOST_COMMANDLINE_H
#define FENN_HOST_COMMANDLINE_H

#include <iosfwd>

namespace krige
{

/// Runs `krige` with the arguments of main. out and err stand for standard output and standard error. Never throws.
///
/// Exit status: 0 done; 1 the input is wrong or something failed; 2 the command line is wrong; 130 stopped with Ctrl-C,
/// and what was found until then is kept.
int runCommandLine(int argc, const char* const* argv, std::ostream& out, std::ostream& err);

} // namespace krige

#endif
