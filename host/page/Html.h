#ifndef FENN_HOST_PAGE_HTML_H
#define FENN_HOST_PAGE_HTML_H

#include <string>
#include <string_view>
#include <vector>

namespace krige
{

// The pieces of a page. What is called text may come from a file and is escaped; what is called html is markup already.
// No text reaches a script or a style: what a script needs stands in attributes.

/// Text as the content of an element or of an attribute in double quotes, in HTML and in SVG: markup is escaped,
/// control characters and bytes that are not UTF-8 become U+FFFD.
std::string escapeHtml(std::string_view text);

/// The text, or its beginning and "..." where it has more characters than this. UTF-8 is not cut within a character.
std::string shortenText(std::string_view text, std::size_t mostCharacters);

/// <p>text</p>, with this class where it is not empty.
std::string paragraphOf(std::string_view text, std::string_view className = {});

/// A list of texts; nothing for none.
std::string listOf(const std::vector<std::string>& texts, std::string_view className = {});

/// A table: the first row is its head, the first column of the others theirs. It can be scrolled where the page is
/// narrow.
std::string tableOf(const std::vector<std::vector<std::string>>& rows, std::string_view className = {});

/// Text as it stands, such as a command line.
std::string preformatted(std::string_view text);

/// A picture under its caption, which is text. html: the picture, e.g. SVG, and what belongs to it.
std::string figureOf(std::string_view caption, std::string_view html, std::string_view className = {});

/// Figures side by side where the page is wide enough.
std::string sideBySide(const std::vector<std::string>& figuresHtml);

} // namespace krige

#endif
