#include "host/files/MissingMarks.h"

#include <algorithm>

#include "host/files/CsvReader.h"
#include "host/text/HostErrors.h"
#include "host/text/Utf8.h"

namespace krige
{

MissingMarks::MissingMarks(const std::string& option, const std::string& text_) : text(text_)
{
    for (const std::string& word : splitCsvText(text, option))
    {
        double number = 0.0;
        if (parseNumber(word, number) == NumberStatus::Ok)
            numbers.push_back(number);
        else
            words.push_back(toUtf8(trimBlanks(word)));
    }
    if (words.empty() && numbers.empty())
        throw UsageError(option + ": needs at least one text or number");
}

bool MissingMarks::contains(std::string_view cell, NumberStatus status, double value) const
{
    if (status == NumberStatus::Ok)
        return std::find(numbers.begin(), numbers.end(), value) != numbers.end();
    return std::find(words.begin(), words.end(), toUtf8(trimBlanks(cell))) != words.end();
}

} // namespace krige
