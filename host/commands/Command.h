#ifndef FENN_HOST_COMMANDS_COMMAND_H
#define FENN_HOST_COMMANDS_COMMAND_H

#include <iosfwd>

namespace krige
{

class Console;

/// A subcommand. Its constructor adds the options to the parser's CLI::App; the object must live until it has run.
class Command
{
public:
    Command(const Command& other) = delete;
    Command& operator=(const Command& other) = delete;
    virtual ~Command() = default;

    /// Does the work once the options have been parsed. out: what is printed as the result. Throws UsageError or
    /// InputError.
    virtual void run(std::ostream& out, Console& console) const = 0;

protected:
    Command() = default;
};

} // namespace krige

#endif
