#include "host/model/SillChoice.h"

#include <string_view>

#include "host/files/CsvReader.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

std::string_view withoutQuotes(std::string_view text)
{
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
        return text.substr(1, text.size() - 2);
    return text;
}

SillChoice parseChoice(const std::string& name, const std::string& text)
{
    const std::string_view word = withoutQuotes(trimBlanks(text));
    if (word == "auto")
        return {SillChoice::Rule::Automatic, 0.0};
    if (word == "sample")
        return {SillChoice::Rule::Sample, 0.0};
    SillChoice choice{SillChoice::Rule::Given, 0.0};
    const NumberStatus status = parseNumber(word, choice.value);
    if (status == NumberStatus::TooLarge || status == NumberStatus::TooSmall)
        throw UsageError(name + ": " + describeNumberFault(word, status));
    if (status != NumberStatus::Ok || !(choice.value > 0.0))
        throw UsageError(name + ": must be auto, sample or a number above 0 for each output, not " +
                         quoteForMessage(text));
    return choice;
}

} // namespace

std::vector<SillChoice> parseSillChoices(const std::string& name, const std::string& text)
{
    std::vector<SillChoice> choices;
    for (const std::string& choice : splitCsvText(text, name))
        choices.push_back(parseChoice(name, choice));
    if (choices.empty())
        throw UsageError(name + ": needs auto, sample or a number above 0 for each output");
    return choices;
}

std::string tomlOf(const std::vector<SillChoice>& choices)
{
    std::string text;
    for (const SillChoice& choice : choices)
    {
        text += text.empty() ? "" : ", ";
        text += choice.rule == SillChoice::Rule::Automatic ? "\"auto\""
                : choice.rule == SillChoice::Rule::Sample  ? "\"sample\""
                                                           : formatNumber(choice.value);
    }
    return "[" + text + "]";
}

void checkSillChoices(const std::vector<SillChoice>& choices, std::size_t numOutputs)
{
    const bool isOneWord = choices.size() == 1 && choices[0].rule != SillChoice::Rule::Given;
    if (!choices.empty() && !isOneWord && choices.size() != numOutputs)
        throw UsageError("--sill: " + countOf(choices.size(), "value") + " for " + countOf(numOutputs, "output") +
                         "; give one each");
}

} // namespace krige
