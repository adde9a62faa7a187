#include "host/model/SettingKeys.h"

#include <charconv>
#include <limits>
#include <string_view>
#include <system_error>

#include "host/files/CsvReader.h"
#include "host/model/DataForm.h"
#include "host/model/Distance.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"
#include "host/text/Spelling.h"

namespace krige
{

namespace
{

constexpr int maxDriftOrder = 4; // more acts as 4 in the library: asking for it is a misunderstanding

// The semivariogram is a straight line across the box long before: a larger fraction is meant in the inputs' units.
constexpr double largestRangeFraction = 10.0;

double parseSetting(const std::string& option, std::string_view text)
{
    double value = 0.0;
    const NumberStatus status = parseNumber(text, value);
    if (status == NumberStatus::Missing)
        throw UsageError(option + ": needs a finite number, not " + quoteForMessage(text));
    if (status != NumberStatus::Ok)
        throw UsageError(option + ": " + describeNumberFault(text, status));
    return value;
}

double parseSetting(const std::string& option, std::string_view text, double low, double high, const char* bounds)
{
    const double value = parseSetting(option, text);
    if (value < low || value > high)
        throw UsageError(option + ": must be " + bounds + ", not " + quoteForMessage(text));
    return value;
}

int parseCount(const std::string& option, std::string_view text, int high, const std::string& bounds)
{
    text = trimBlanks(text);
    int value = 0;
    const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() || value < 0 || value > high)
        throw UsageError(option + ": must be a whole number " + bounds + ", not " + quoteForMessage(text));
    return value;
}

std::vector<double> parseScaleFactors(const std::string& option, const std::string& text)
{
    std::vector<double> factors;
    for (const std::string& factor : splitCsvText(text, option))
        factors.push_back(parseSetting(option, factor));
    if (factors.empty())
        throw UsageError(option + ": needs one number per input");
    return factors;
}

void applyDuplicates(Settings& settings, const std::string& name, const std::string& text)
{
    const std::string_view rule = trimBlanks(text);
    if (rule != "error" && rule != "merge" && rule != "keep")
        throw UsageError(name + ": must be error, merge or keep, not " + quoteForMessage(text));
    settings.keepsDuplicates = rule == "keep";
    if (rule != "merge")
        settings.duplicateTolerance = -1.0;
    else if (settings.duplicateTolerance < 0.0)
        settings.duplicateTolerance = 0.0;
}

void applyRange(Settings& settings, const std::string& name, const std::string& text)
{
    const Distance range = parseDistance(name, text);
    if (range.isInInputUnits)
    {
        settings.rangeInInputUnits = range.value;
        return;
    }
    if (range.value > largestRangeFraction)
        throw UsageError(name + ": must be a fraction of the diagonal of the samples' box, 0 to 10, not " +
                         quoteForMessage(text) + "; for a range in the inputs' units write " +
                         formatDistance({range.value, true}) + " (and give inputs one scale: --scale 1,1)");
    settings.rangeFraction = range.value;
    settings.rangeInInputUnits.reset();
}

} // namespace

const std::vector<SettingKey>& settingKeys()
{
    static const std::vector<SettingKey> keys{
        {"duplicates", "RULE",
         "What to do with samples at one place, or nearer to each other than a model can tell apart: error ends the "
         "run and names two of them, merge averages them, keep goes on all the same. With a nugget above 0 they are "
         "repeated measurements and no error. Default: error. Example: --duplicates merge",
         applyDuplicates},
        {"duplicate-tolerance", "T",
         "Merge samples whose inputs differ by at most this fraction of each input's range into one point, their mean; "
         "0 merges samples at the same place. Means --duplicates merge, which takes 0. Default: -1, none are merged. "
         "Example: --duplicate-tolerance 0.001",
         [](Settings& settings, const std::string& name, const std::string& text)
         {
             settings.duplicateTolerance = parseSetting(name, text);
             if (settings.duplicateTolerance >= 0.0)
                 settings.keepsDuplicates = false;
         }},
        {"scale", "NUMBERS",
         "One factor per input: -k scales its range in the samples to 2k; a positive factor is the weight of its raw "
         "values beside those of the other inputs. Default: -1 each, every input counts alike. Example: --scale 1,10",
         [](Settings& settings, const std::string& name, const std::string& text)
         {
             settings.scaleFactors = parseScaleFactors(name, text);
             settings.anisotropy.reset();
         }},
        {"drift", "P", "Degree of the polynomial drift, 0 (a constant mean) to 4. Default: 0. Example: --drift 1",
         [](Settings& settings, const std::string& name, const std::string& text)
         {
             settings.driftOrder = parseCount(name, text, maxDriftOrder, "from 0 to 4");
         }},
        {"range", "F",
         "Range of the semivariogram, the distance beyond which samples tell nothing about each other, as a fraction "
         "of the diagonal of the samples' normalised box, 0 to 10; or, with u behind it, in the units of inputs that "
         "share one scale (--scale 1,1). Default: 1. Examples: --range 0.5, --range 900u",
         [](Settings& settings, const std::string& name, const std::string& text)
         {
             applyRange(settings, name, text);
         }},
        {"nugget", "C",
         "Nugget as a fraction of the sill, 0 to 1; above 0 it smooths noisy samples. Default: 0. Example: --nugget "
         "0.05",
         [](Settings& settings, const std::string& name, const std::string& text)
         {
             settings.nugget = parseSetting(name, text, 0.0, 1.0, "between 0 and 1");
         }},
        {"nearest", "N",
         "Estimate each target from its N nearest samples; 0: from all of them. Default: 0. Example: --nearest 32",
         [](Settings& settings, const std::string& name, const std::string& text)
         {
             settings.numNearestPoints = parseCount(name, text, std::numeric_limits<int>::max(), "of at least 0");
         }},
        {"sill", "RULES",
         "Sill of each output, which its standard errors and intervals take: auto estimates it from the points, for "
         "the given range, nugget and drift; sample is the variance of the points; or a number above 0 in squared "
         "units of the output. One value per output, or one word for all of them. Default: auto. Examples: --sill "
         "sample, --sill 12.5,auto",
         [](Settings& settings, const std::string& name, const std::string& text)
         {
             settings.sills = parseSillChoices(name, text);
         }},
        {"anisotropy", "RATIO,ANGLE",
         "For two inputs of one unit, in place of --scale: values stay alike farther along ANGLE, in degrees "
         "anticlockwise from the axis of the first input, RATIO times as far as across it. Inputs are rotated and "
         "stretched before the model; its range is the longer one. Default: none. Example: --anisotropy 2.5,30",
         [](Settings& settings, const std::string& name, const std::string& text)
         {
             settings.anisotropy = parseAnisotropy(name, text);
             settings.scaleFactors = {1.0, 1.0};
         }},
        {"transform", "NAME",
         "log: model the natural logarithms of the outputs, which must be above 0, and give estimates in the data's "
         "units, unbiased, with the medians as NAME_median; NAME_stderr stays that of the logarithm. Default: none. "
         "Example: --transform log",
         [](Settings& settings, const std::string& name, const std::string& text)
         {
             settings.units.areLogarithms = parseTransform(name, text);
         }},
        {"clamp", "LO:HI",
         "Bring estimates, medians and ends of intervals into these limits, in the data's units; one of them may be "
         "left out. Default: none. Examples: --clamp 0:100, --clamp 0:",
         [](Settings& settings, const std::string& name, const std::string& text)
         {
             settings.units.limits = parseClamp(name, text);
         }}};
    return keys;
}

const SettingKey& findSettingKey(const std::string& key)
{
    std::string list;
    std::vector<std::string> names;
    for (const SettingKey& known : settingKeys())
    {
        if (key == known.key)
            return known;
        list += (list.empty() ? "" : ", ") + std::string(known.key);
        names.emplace_back(known.key);
    }
    throw UsageError(quoteForMessage(key) + " is no setting; the settings are " + list + suggestMeant(key, names));
}

void applySetting(Settings& settings, const std::string& key, const std::string& text)
{
    findSettingKey(key).apply(settings, key, text);
}

} // namespace krige
