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

/// How much a run prints on standard error.
struct ConsoleOptions
{
    bool isQuiet = false;        // nothing but errors and results
    bool forcesProgress = false; // also where standard error is no terminal
};

/// Adds --quiet and --progress; options must live until the subcommand has run.
void addConsoleOptions(CLI::App& command, ConsoleOptions& options);

/// Progress in one line: how much is done, how fast, and how much time is left. On a terminal the line is overwritten
/// and in the end wiped; elsewhere, with --progress, a new line is printed every ten seconds.
///
/// Shows nothing in the first half second.
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

/// How many targets to compute between two updates of the progress line. The number doubles while they take less than
/// 0.2 s, and is halved when they take more than 1 s.
class ChunkSize
{
public:
    ChunkSize(std::size_t first, std::size_t largest_) : size(first), largest(largest_), start(Clock::now()) {}

    /// Size of the next chunk. The time since the last call is taken as the time of the chunk before.
    std::size_t next();

private:
    using Clock = std::chrono::steady_clock;

    std::size_t size;
    std::size_t largest;
    Clock::time_point start;
    bool isFirst = true;
};

/// What one run prints on standard error: its report and its progress.
class Console
{
public:
    Console(std::ostream& err_, const ConsoleOptions& options_);
    Console(const Console& other) = delete;
    Console& operator=(const Console& other) = delete;
    ~Console();

    /// The stream for the report. With --quiet it discards everything.
    std::ostream& getReport()
    {
        return *report;
    }

    /// Whether progress is shown: on a terminal or with --progress, and never with --quiet.
    bool showsProgress() const;

    std::unique_ptr<ProgressLine> startProgress(const std::string& noun) const;

    /// Whether somebody can be asked: standard input and standard error are a terminal.
    bool canAsk() const;

    /// Asks on standard error; whether the answer on standard input begins with y.
    bool confirm(const std::string& question);

private:
    std::ostream& err;
    ConsoleOptions options;
    bool isTerminal;
    std::unique_ptr<std::ostream> silence;
    std::ostream* report;
};

} // namespace krige

#endif
