#ifndef FENN_HOST_TEXT_HOSTERRORS_H
#define FENN_HOST_TEXT_HOSTERRORS_H

#include <cstddef>
#include <stdexcept>
#include <string>

namespace krige
{

/// The command line itself is wrong: exit status 2.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Something that the command line names is wrong (a file, its content, the samples): exit status 1. The message says
/// where, and what to do next where there is something to do.
class InputError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;

    /// "FILE, line 4: message". line counts from 1.
    static InputError atLine(const std::string& path, std::size_t line, const std::string& message);

    /// "FILE, line 4, column 'z': message".
    static InputError atColumn(const std::string& path, std::size_t line, const std::string& column,
                               const std::string& message);

    /// "FILE: No such file or directory", from errno's value.
    static InputError fromSystem(const std::string& path, int errorNumber);
};

/// The person at the terminal ended the run with Ctrl-C, and what it had found is kept: exit status 130. The message
/// says what.
class Interrupted : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The program that read our standard output has ended. Nothing is left to do, and there is nobody to print a message
/// for.
class ClosedPipe : public std::runtime_error
{
public:
    ClosedPipe() : std::runtime_error("standard output: nobody reads it any more") {}
};

} // namespace krige

#endif
