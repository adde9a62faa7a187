#ifndef FENN_HOST_PAGE_PAGE_H
#define FENN_HOST_PAGE_PAGE_H

#include <string>
#include <string_view>
#include <vector>

namespace krige
{

/// A page of HTML that needs nothing beside itself: its style sheet and its script stand in it, and it tells the
/// browser to load nothing from anywhere.
class Page
{
public:
    /// Texts. summary: sentences below the title.
    Page(std::string title_, std::string subtitle_, std::vector<std::string> summary_);

    /// id: for links; heading: text; html: the section's content.
    void addSection(const std::string& id, const std::string& heading, const std::string& html);

    std::string toHtml() const;

private:
    struct Section
    {
        std::string id;
        std::string heading;
        std::string html;
    };

    std::string title;
    std::string subtitle;
    std::vector<std::string> summary;
    std::vector<Section> sections;
};

/// The files page.css and page.js.
extern const std::string_view pageStyle;
extern const std::string_view pageScript;

} // namespace krige

#endif
