#include "host/text/Spelling.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <utility>

#include "host/text/NumberText.h"

namespace krige
{

namespace
{

std::string inLowerCase(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

/// The least number of letters to leave out, add, replace, or swap with their neighbour (each letter once), that turns
/// a into b. Source: L. Boytsov, Indexing methods for approximate dictionary searching (ACM JEA 16, 2011), section 2.1.
std::size_t countSlips(std::string_view a, std::string_view b)
{
    std::vector<std::size_t> beforeLast(b.size() + 1);
    std::vector<std::size_t> last(b.size() + 1);
    std::vector<std::size_t> current(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        current[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i)
    {
        std::swap(beforeLast, last);
        std::swap(last, current);
        current[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j)
        {
            const std::size_t replaced = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            current[j] = std::min({last[j] + 1, current[j - 1] + 1, replaced});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                current[j] = std::min(current[j], beforeLast[j - 2] + 1);
        }
    }
    return current[b.size()];
}

} // namespace

std::string findMeant(std::string_view word, const std::vector<std::string>& candidates)
{
    constexpr std::size_t longest = 100; // a longer one is no slip of the fingers
    constexpr std::size_t lettersPerSlip = 3;
    constexpr std::size_t shortestBeginning = 3;
    const std::string lower = inLowerCase(word);
    if (lower.empty() || lower.size() > longest)
        return {};
    std::string nearest;
    std::size_t leastSlips = 0;
    for (const std::string& candidate : candidates)
    {
        const std::string other = inLowerCase(candidate);
        if (other.empty() || other.size() > longest)
            continue;
        const bool isBeginning = lower.size() >= shortestBeginning && other.compare(0, lower.size(), lower) == 0;
        const std::size_t numSlips = countSlips(lower, other);
        // A single letter stands for many: only its other case is near.
        const std::size_t mostSlips = std::min(lower.size(), other.size()) / lettersPerSlip;
        if (numSlips > mostSlips && !isBeginning)
            continue;
        if (nearest.empty() || numSlips < leastSlips)
        {
            nearest = candidate;
            leastSlips = numSlips;
        }
    }
    return nearest;
}

std::string suggestMeant(std::string_view word, const std::vector<std::string>& candidates)
{
    const std::string meant = findMeant(word, candidates);
    return meant.empty() ? std::string() : "; did you mean " + quoteForMessage(meant) + "?";
}

} // namespace krige
