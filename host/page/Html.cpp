#include "host/page/Html.h"

namespace krige
{

namespace
{

constexpr const char* replacementCharacter = "\xef\xbf\xbd";

/// Length of the UTF-8 character at the front of a text that is not empty; 0 where there is none.
std::size_t characterLength(std::string_view text)
{
    const auto byteAt = [&](std::size_t i)
    {
        return static_cast<unsigned char>(text[i]);
    };
    const unsigned char first = byteAt(0);
    if (first < 0x80)
        return 1;
    const std::size_t length = first >= 0xf5 ? 0 : first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : first >= 0xc2 ? 2 : 0;
    if (length == 0 || text.size() < length)
        return 0;
    for (std::size_t i = 1; i < length; ++i)
    {
        if ((byteAt(i) & 0xc0) != 0x80)
            return 0;
    }
    const unsigned char second = byteAt(1);
    const bool isOverlong = (first == 0xe0 && second < 0xa0) || (first == 0xf0 && second < 0x90);
    const bool isSurrogate = first == 0xed && second >= 0xa0;
    const bool isBeyondUnicode = first == 0xf4 && second >= 0x90;
    return isOverlong || isSurrogate || isBeyondUnicode ? 0 : length;
}

/// C1 controls are among them: U+0080 to U+009F.
bool isControl(std::string_view character)
{
    const auto first = static_cast<unsigned char>(character[0]);
    if (character.size() == 1)
        return (first < 0x20 && first != '\n' && first != '\t') || first == 0x7f;
    return first == 0xc2 && static_cast<unsigned char>(character[1]) < 0xa0;
}

void appendEscaped(std::string& html, std::string_view character)
{
    switch (character[0])
    {
    case '&':
        html += "&amp;";
        return;
    case '<':
        html += "&lt;";
        return;
    case '>':
        html += "&gt;";
        return;
    case '"':
        html += "&quot;";
        return;
    case '\'':
        html += "&#39;";
        return;
    default:
        html += character;
    }
}

std::string classAttribute(std::string_view className)
{
    return className.empty() ? "" : " class=\"" + escapeHtml(className) + "\"";
}

} // namespace

std::string escapeHtml(std::string_view text)
{
    std::string html;
    while (!text.empty())
    {
        const std::size_t length = characterLength(text);
        if (length == 0 || isControl(text.substr(0, length)))
            html += replacementCharacter;
        else
            appendEscaped(html, text.substr(0, length));
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return html;
}

std::string shortenText(std::string_view text, std::size_t mostCharacters)
{
    std::size_t end = 0;
    std::size_t numCharacters = 0;
    while (end < text.size() && numCharacters < mostCharacters)
    {
        const std::size_t length = characterLength(text.substr(end));
        end += length == 0 ? 1 : length;
        ++numCharacters;
    }
    return std::string(text.substr(0, end)) + (end < text.size() ? "..." : "");
}

std::string paragraphOf(std::string_view text, std::string_view className)
{
    return "<p" + classAttribute(className) + ">" + escapeHtml(text) + "</p>\n";
}

std::string listOf(const std::vector<std::string>& texts, std::string_view className)
{
    if (texts.empty())
        return "";
    std::string html = "<ul" + classAttribute(className) + ">\n";
    for (const std::string& text : texts)
        html += "<li>" + escapeHtml(text) + "</li>\n";
    return html + "</ul>\n";
}

std::string tableOf(const std::vector<std::vector<std::string>>& rows, std::string_view className)
{
    std::string html = "<div class=\"scroll\"><table" + classAttribute(className) + ">\n";
    for (std::size_t row = 0; row < rows.size(); ++row)
    {
        html += row == 0 ? "<thead><tr>" : "<tr>";
        for (std::size_t column = 0; column < rows[row].size(); ++column)
        {
            const std::string text = escapeHtml(rows[row][column]);
            if (row == 0)
                html += "<th scope=\"col\">" + text + "</th>";
            else if (column == 0)
                html += "<th scope=\"row\">" + text + "</th>";
            else
                html += "<td>" + text + "</td>";
        }
        html += row == 0 ? "</tr></thead>\n<tbody>\n" : "</tr>\n";
    }
    return html + (rows.empty() ? "" : "</tbody>") + "</table></div>\n";
}

std::string preformatted(std::string_view text)
{
    return "<pre>" + escapeHtml(text) + "</pre>\n";
}

std::string figureOf(std::string_view caption, std::string_view html, std::string_view className)
{
    return "<figure" + classAttribute(className) + ">\n<figcaption>" + escapeHtml(caption) + "</figcaption>\n" +
           std::string(html) + "</figure>\n";
}

std::string sideBySide(const std::vector<std::string>& figuresHtml)
{
    std::string html = "<div class=\"figures\">\n";
    for (const std::string& figure : figuresHtml)
        html += figure;
    return html + "</div>\n";
}

} // namespace krige
