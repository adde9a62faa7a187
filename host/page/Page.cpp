#include "host/page/Page.h"

#include <utility>

#include "host/page/Html.h"

namespace krige
{

Page::Page(std::string title_, std::string subtitle_, std::vector<std::string> summary_)
    : title(std::move(title_)), subtitle(std::move(subtitle_)), summary(std::move(summary_))
{
}

void Page::addSection(const std::string& id, const std::string& heading, const std::string& html)
{
    sections.push_back({id, heading, html});
}

std::string Page::toHtml() const
{
    std::string html = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                       "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; img-src data:; "
                       "style-src 'unsafe-inline'; script-src 'unsafe-inline'; base-uri 'none'; form-action 'none'\">\n"
                       "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
                       "<meta name=\"color-scheme\" content=\"light dark\">\n"
                       "<meta name=\"generator\" content=\"krige " KRIGE_VERSION "\">\n<title>" +
                       escapeHtml(title) + "</title>\n<style>\n" + std::string(pageStyle) +
                       "</style>\n</head>\n<body>\n<header>\n<h1>" + escapeHtml(title) + "</h1>\n" +
                       paragraphOf(subtitle, "subtitle") + listOf(summary, "summary") + "</header>\n<nav><ul>\n";
    for (const Section& section : sections)
        html += "<li><a href=\"#" + section.id + "\">" + escapeHtml(section.heading) + "</a></li>\n";
    html += "</ul></nav>\n<main>\n";
    for (const Section& section : sections)
        html += "<section id=\"" + section.id + "\">\n<h2>" + escapeHtml(section.heading) + "</h2>\n" + section.html +
                "</section>\n";
    return html + "</main>\n<script>\n" + std::string(pageScript) + "</script>\n</body>\n</html>\n";
}

} // namespace krige
