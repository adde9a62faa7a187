#ifndef FENN_HOST_TEXT_CONSOLE_H
#define FENN_HOST_TEXT_CONSOLE_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>

namespace CLI
{
class App;
}

namespace krige
{

/// How talkative a run is.
struct ConsoleOptions
{
    bool isQuiet = false;        // nothing but errors and results
    bool forcesProgress = false; // also where nobody watches
};

/// Adds --quiet and --progress; options must live until the subcommand has run.
void addConsoleOptions(CLI::App& command, ConsoleOptions& options);

/// One line that says how far work has come, at which rate, and how long the rest takes. On a terminal it is drawn over
/// until the work is done and then wiped; elsewhere, with --progress, a line of its own every few seconds.
///
/// Shows nothing before half a second has passed: what is done by then needs no progress.
class ProgressLine
{
public:
    /// stream: null shows nothing. noun: what is counted, e.g. "targets". overwrites: whether stream is a terminal.
    ProgressLine(std::ostream* stream_, std::string noun_, bool overwrites_);
    ProgressLine(const ProgressLine& other) = delete;
    ProgressLine& operator=(const ProgressLine& other) = delete;
    ~ProgressLine();

    /// total: 0 when it is not known.
    void update(std::uint64_t numDone, std::uint64_t total);

    /// Wipes the line, so that others can be written; the next update draws it again.
    void wipe();

    bool isShown() const
    {
        return stream != nullptr;
    }

private:
    using Clock = std::chrono::steady_clock;

    std::ostream* stream;
    std::string noun;
    bool overwrites;
    bool isDrawn = false;
    Clock::time_point start;
    Clock::time_point nextTime;
};

/// How much work to hand out at once so that progress is seen to move, whatever a piece of it costs: doubles while a
/// chunk takes less than a fifth of a second, halves when it takes more than a whole one.
class ChunkSize
{
public:
    ChunkSize(std::size_t first, std::size_t largest_) : size(first), largest(largest_), start(Clock::now()) {}

    /// Of the next chunk; the time since the last call counts as that of the chunk before.
    std::size_t next();

private:
    using Clock = std::chrono::steady_clock;

    std::size_t size;
    std::size_t largest;
    Clock::time_point start;
    bool isFirst = true;
};

/// Standard error as one run uses it.
class Console
{
public:
    Console(std::ostream& err_, const ConsoleOptions& options_);
    Console(const Console& other) = delete;
    Console& operator=(const Console& other) = delete;
    ~Console();

    /// Where a run says what it does; swallows everything when quiet.
    std::ostream& getReport()
    {
        return *report;
    }

    /// Whether somebody is there to see progress, or asked for it.
    bool showsProgress() const;

    std::unique_ptr<ProgressLine> startProgress(const std::string& noun) const;

private:
    std::ostream& err;
    ConsoleOptions options;
    bool isTerminal;
    std::unique_ptr<std::ostream> silence;
    std::ostream* report;
};

} // namespace krige

#endif
