#ifndef FENN_HOST_TEXT_SPELLING_H
#define FENN_HOST_TEXT_SPELLING_H

#include <string>
#include <string_view>
#include <vector>

namespace krige
{

/// What a person may have meant by a word: of the candidates the one that a few slips of the fingers turn it into
/// (letters left out, added, replaced or swapped with their neighbour; one for every three letters), that differs only
/// in case, or whose beginning it is. The nearest one, of equally near ones the first; empty where none is near.
std::string findMeant(std::string_view word, const std::vector<std::string>& candidates);

/// "; did you mean 'WORD'?" for the end of a message; empty where no candidate is near.
std::string suggestMeant(std::string_view word, const std::vector<std::string>& candidates);

} // namespace krige

#endif
