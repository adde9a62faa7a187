#include "tests/host/Words.h"

#include <algorithm>

#include <CLI/CLI.hpp>

namespace krige::test
{

std::shared_ptr<CLI::App> makeApp()
{
    return std::make_shared<CLI::App>();
}

void parse(CLI::App& app, std::vector<std::string> words)
{
    std::reverse(words.begin(), words.end()); // the parser takes the last one first
    app.parse(words);
}

} // namespace krige::test
