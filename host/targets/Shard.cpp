#include "host/targets/Shard.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>

#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

bool parsePart(std::string_view text, std::uint64_t& value)
{
    const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

} // namespace

std::uint64_t Shard::numBefore(std::uint64_t numTargets) const
{
    const std::uint64_t before = index - 1;
    return numTargets / count * before + std::min(before, numTargets % count);
}

std::uint64_t Shard::size(std::uint64_t numTargets) const
{
    return numTargets / count + (index - 1 < numTargets % count ? 1 : 0);
}

std::string nameOfPart(std::string name, const Shard& shard)
{
    constexpr std::string_view mark = "{shard}";
    const std::string digits = std::to_string(shard.index);
    const std::string number = std::string(std::to_string(shard.count).size() - digits.size(), '0') + digits;
    for (std::size_t at = name.find(mark); at != std::string::npos; at = name.find(mark, at + number.size()))
        name.replace(at, mark.size(), number);
    return name;
}

Shard parseShard(const std::string& text)
{
    Shard shard;
    const std::string_view view = text;
    const std::size_t slash = view.find('/');
    if (slash == std::string_view::npos || !parsePart(view.substr(0, slash), shard.index) ||
        !parsePart(view.substr(slash + 1), shard.count) || shard.index < 1 || shard.index > shard.count)
        throw UsageError("--shard: must be I/K, the I-th of K parts with I from 1 to K, for instance 1/4, not " +
                         quoteForMessage(text));
    return shard;
}

} // namespace krige
