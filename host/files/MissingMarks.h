#ifndef FENN_HOST_FILES_MISSINGMARKS_H
#define FENN_HOST_FILES_MISSINGMARKS_H

#include <string>
#include <string_view>
#include <vector>

#include "host/text/NumberText.h"

namespace krige
{

/// Texts and numbers that stand for "no value" in a column of numbers, such as NA or -9999. A number is meant however
/// it is written: -9999 also as -9999.0 or -9.999e3. Texts count as they are, without the blanks around them.
class MissingMarks
{
public:
    MissingMarks() = default;

    /// `-9999,NA`: an empty word stands for empty cells. Throws UsageError that names the option.
    MissingMarks(const std::string& option, const std::string& text_);

    /// Whether a cell with this text holds a mark; status and value are those of parseNumber.
    bool contains(std::string_view cell, NumberStatus status, double value) const;

    bool isEmpty() const
    {
        return text.empty();
    }

    /// As it was given.
    const std::string& getText() const
    {
        return text;
    }

private:
    std::string text;
    std::vector<std::string> words; // that are no numbers
    std::vector<double> numbers;
};

} // namespace krige

#endif
