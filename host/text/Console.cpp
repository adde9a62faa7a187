#include "host/text/Console.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <utility>

#include <CLI/CLI.hpp>
#include <unistd.h>

namespace krige
{

namespace
{

constexpr std::chrono::milliseconds firstShown(500);
constexpr std::chrono::milliseconds betweenDrawings(200);
constexpr std::chrono::seconds betweenLines(10);

std::string formatRate(double perSecond)
{
    char text[32];
    std::snprintf(text, sizeof text, perSecond >= 100.0 ? "%.0f" : "%.3g", perSecond);
    return text;
}

std::string formatDuration(double seconds)
{
    char text[64];
    constexpr double longest = 3.6e8; // beyond ten years nobody waits
    const auto whole = std::lround(std::min(seconds, longest));
    if (whole < 60)
        std::snprintf(text, sizeof text, "%ld s", whole);
    else if (whole < 3600)
        std::snprintf(text, sizeof text, "%ld min %02ld s", whole / 60, whole % 60);
    else
        std::snprintf(text, sizeof text, "%ld h %02ld min", whole / 3600, whole / 60 % 60);
    return text;
}

} // namespace

void addConsoleOptions(CLI::App& command, ConsoleOptions& options)
{
    CLI::Option* const quiet =
        command.add_flag("--quiet", options.isQuiet,
                         "Print results and errors only. Default: a report of the run as well. Example: --quiet");
    command
        .add_flag("--progress", options.forcesProgress,
                  "Show progress even where standard error is no terminal, e.g. in the log of a batch job. Default: on "
                  "a terminal only. Example: --progress")
        ->excludes(quiet);
}

ProgressLine::ProgressLine(std::ostream* stream_, std::string noun_, bool overwrites_)
    : stream(stream_),
      noun(std::move(noun_)),
      overwrites(overwrites_),
      start(Clock::now()),
      nextTime(start + firstShown)
{
}

ProgressLine::~ProgressLine()
{
    wipe();
}

void ProgressLine::update(std::uint64_t numDone, std::uint64_t total)
{
    if (!stream)
        return;
    const Clock::time_point now = Clock::now();
    if (now < nextTime)
        return;
    nextTime = now + (overwrites ? Clock::duration(betweenDrawings) : Clock::duration(betweenLines));

    const double seconds = std::chrono::duration<double>(now - start).count();
    const double rate = static_cast<double>(numDone) / seconds;
    std::string line = std::to_string(numDone);
    if (total > 0)
    {
        char percentage[32];
        std::snprintf(percentage, sizeof percentage, " (%.0f %%)",
                      100.0 * static_cast<double>(numDone) / static_cast<double>(total));
        line += " of " + std::to_string(total) + " " + noun + percentage;
    }
    else
        line += " " + noun;
    line += ", " + formatRate(rate) + "/s";
    if (total >= numDone && total > 0 && numDone > 0)
        line += ", " + formatDuration(static_cast<double>(total - numDone) / rate) + " left";

    if (overwrites)
        *stream << '\r' << line << "\033[K";
    else
        *stream << "progress: " << line << '\n';
    stream->flush();
    isDrawn = true;
}

void ProgressLine::wipe()
{
    if (isDrawn && overwrites)
        *stream << "\r\033[K" << std::flush;
    isDrawn = false;
}

std::size_t ChunkSize::next()
{
    const Clock::time_point now = Clock::now();
    const double seconds = std::chrono::duration<double>(now - start).count();
    start = now;
    if (isFirst)
        isFirst = false;
    else if (seconds < 0.2)
        size = std::min(size * 2, largest);
    else if (seconds > 1.0)
        size = std::max<std::size_t>(size / 2, 1);
    return size;
}

Console::Console(std::ostream& err_, const ConsoleOptions& options_)
    : err(err_),
      options(options_),
      isTerminal(::isatty(STDERR_FILENO) == 1),
      silence(std::make_unique<std::ostream>(nullptr)),
      report(options_.isQuiet ? silence.get() : &err_)
{
}

Console::~Console() = default;

bool Console::showsProgress() const
{
    return !options.isQuiet && (isTerminal || options.forcesProgress);
}

std::unique_ptr<ProgressLine> Console::startProgress(const std::string& noun) const
{
    return std::make_unique<ProgressLine>(showsProgress() ? &err : nullptr, noun, isTerminal);
}

bool Console::canAsk() const
{
    return isTerminal && ::isatty(STDIN_FILENO) == 1;
}

bool Console::confirm(const std::string& question)
{
    err << question << " [y/N] " << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    return !answer.empty() && (answer.front() == 'y' || answer.front() == 'Y');
}

} // namespace krige
