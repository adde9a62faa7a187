#ifndef FENN_TESTS_HOST_TEMPORARYFOLDER_H
#define FENN_TESTS_HOST_TEMPORARYFOLDER_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace krige::test
{

/// An empty folder that goes with the object.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "fenn-host-test-XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            throw std::runtime_error("No temporary folder");
        path = pattern;
    }

    TemporaryFolder(const TemporaryFolder& other) = delete;
    TemporaryFolder& operator=(const TemporaryFolder& other) = delete;

    ~TemporaryFolder()
    {
        std::error_code error;
        std::filesystem::remove_all(path, error);
    }

    std::string pathOf(const std::string& name) const
    {
        return (path / name).string();
    }

    /// Returns the path.
    std::string write(const std::string& name, const std::string& content) const
    {
        std::ofstream(pathOf(name), std::ios::binary) << content;
        return pathOf(name);
    }

    std::string read(const std::string& name) const
    {
        std::ifstream stream(pathOf(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

    std::size_t countFiles() const
    {
        std::size_t count = 0;
        for (auto entry = std::filesystem::directory_iterator(path); entry != std::filesystem::directory_iterator();
             ++entry)
            ++count;
        return count;
    }

private:
    std::filesystem::path path;
};

/// The message of the exception that action throws, or "nothing was thrown".
template <typename Exception, typename Action>
std::string messageOf(Action action)
{
    try
    {
        action();
    }
    catch (const Exception& error)
    {
        return error.what();
    }
    return "nothing was thrown";
}

} // namespace krige::test

#endif
