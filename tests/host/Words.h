#ifndef FENN_TESTS_HOST_WORDS_H
#define FENN_TESTS_HOST_WORDS_H

#include <memory>
#include <string>
#include <vector>

namespace CLI
{
class App;
}

namespace krige::test
{

// Apart, so that the parser's templates are compiled once and not with every test.

std::shared_ptr<CLI::App> makeApp();

/// words: as on a command line, without the program's name.
void parse(CLI::App& app, std::vector<std::string> words);

} // namespace krige::test

#endif
