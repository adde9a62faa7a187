#include "host/pictures/Gnuplot.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <system_error>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "host/files/OutputPlace.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

extern char** environ; // NOLINT(readability-redundant-declaration): not every system's headers declare it

namespace krige
{

namespace
{

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

bool endsWith(const std::string& text, const char* ending)
{
    const std::string_view tail(ending);
    return text.size() > tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

bool isOnPath(const std::string& program)
{
    const char* const path = std::getenv("PATH");
    std::string_view folders = path ? path : "/usr/bin:/bin";
    while (true)
    {
        const std::size_t colon = folders.find(':');
        const std::string folder(folders.substr(0, colon));
        if (::access((folder.empty() ? program : folder + "/" + program).c_str(), X_OK) == 0)
            return true;
        if (colon == std::string_view::npos)
            return false;
        folders.remove_prefix(colon + 1);
    }
}

[[noreturn]] void throwMissingGnuplot(const std::string& path)
{
    throw InputError(path + ": gnuplot, which draws pictures, is not installed; install it (Debian: gnuplot-nox), or "
                            "write its script with --plot FILE.gp");
}

/// Without a name, so that nothing is left behind whatever happens.
File openNameless()
{
    File file(std::tmpfile(), &std::fclose);
    if (!file)
        throw InputError("a temporary file cannot be made: " + std::generic_category().message(errno));
    return file;
}

std::string readAll(std::FILE* file)
{
    std::string text;
    std::rewind(file);
    char block[65536];
    for (std::size_t count = 0; (count = std::fread(block, 1, sizeof block, file)) > 0;)
        text.append(block, count);
    return text;
}

/// Length of the UTF-8 character at the front of text, 0 where there is none.
std::size_t characterLength(std::string_view text)
{
    const auto byteAt = [&](std::size_t i)
    {
        return static_cast<unsigned char>(text[i]);
    };
    const unsigned char first = byteAt(0);
    if (first < 0x80)
        return 1;
    const std::size_t length = first >= 0xf5 ? 0 : first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : first >= 0xc2 ? 2 : 0;
    if (length == 0 || text.size() < length)
        return 0;
    for (std::size_t i = 1; i < length; ++i)
    {
        if ((byteAt(i) & 0xc0) != 0x80)
            return 0;
    }
    const unsigned char second = byteAt(1);
    const bool isOverlong = (first == 0xe0 && second < 0xa0) || (first == 0xf0 && second < 0x90);
    const bool isNoCharacter = (first == 0xed && second >= 0xa0) || (first == 0xf4 && second >= 0x90) ||
                               (first == 0xc2 && second < 0xa0) || // a control character
                               (first == 0xef && second == 0xbf && byteAt(2) >= 0xbe);
    return isOverlong || isNoCharacter ? 0 : length;
}

} // namespace

std::string runGnuplot(const std::string& path, const std::string& script)
{
    const File input = openNameless();
    const File output = openNameless();
    const File messages = openNameless();
    if (std::fwrite(script.data(), 1, script.size(), input.get()) != script.size() || std::fflush(input.get()) != 0)
        throw InputError("a temporary file cannot be written: " + std::generic_category().message(errno));
    std::rewind(input.get());

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ::fileno(input.get()), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, ::fileno(output.get()), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, ::fileno(messages.get()), STDERR_FILENO);
    char program[] = "gnuplot";
    char ignoreStartUpFiles[] = "-d";
    char scriptFile[] = "/dev/fd/0"; // as a file: standard input itself would be read like a terminal
    char* arguments[] = {program, ignoreStartUpFiles, scriptFile, nullptr};
    pid_t process = 0;
    const int spawned = ::posix_spawnp(&process, program, &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned == ENOENT)
        throwMissingGnuplot(path);
    if (spawned != 0)
        throw InputError(path + ": gnuplot cannot be started: " + std::generic_category().message(spawned));
    int waitStatus = 0;
    while (::waitpid(process, &waitStatus, 0) < 0)
    {
        if (errno != EINTR)
            throw InputError(path + ": gnuplot was lost: " + std::generic_category().message(errno));
    }
    std::string picture = readAll(output.get());
    if (!WIFEXITED(waitStatus) || WEXITSTATUS(waitStatus) != 0 || picture.empty())
    {
        std::string message = readAll(messages.get());
        message.erase(0, message.find_first_not_of(" \t\r\n"));
        throw InputError(path + ": gnuplot failed: " + quoteForMessage(message.substr(0, message.find('\n'))));
    }
    return picture;
}

void checkPicturePath(const std::string& path)
{
    const bool isScript = endsWith(path, ".gp");
    if (!isScript && !endsWith(path, ".png") && !endsWith(path, ".svg") && !endsWith(path, ".pdf"))
        throw UsageError("--plot: " + quoteForMessage(path) +
                         " must end in .png, .svg or .pdf for a picture, or in .gp for its gnuplot script");
    checkCanBeWritten(path);
    if (!isScript && !isOnPath("gnuplot"))
        throwMissingGnuplot(path);
}

std::string quoteForGnuplot(std::string_view text, std::size_t mostCharacters)
{
    std::string quoted = "'";
    std::size_t numCharacters = 0;
    while (!text.empty())
    {
        if (++numCharacters > mostCharacters)
            return quoted + "...'";
        const std::size_t length = characterLength(text);
        const auto byte = static_cast<unsigned char>(text.front());
        if (length == 0 || byte < 0x20 || byte == 0x7f)
            quoted += '?';
        else if (byte == '\'')
            quoted += "''";
        else
            quoted += text.substr(0, length);
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return quoted + "'";
}

} // namespace krige
