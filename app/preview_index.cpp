#include "app/preview_index.h"

#include <cctype>
#include <fstream>

namespace tervane::app {

namespace {

constexpr const char* kIndexName = "index.html";
constexpr const char* kGenerator = "<meta name=\"generator\" content=\"tervane preview --all\">";

std::string Escaped(const std::string& text) {
    std::string out;
    out.reserve(text.size());
    for (const char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

void Side(std::string& html, const PreviewEntry& entry, const PreviewSide& side,
          const std::string& caption) {
    html += "<figure>\n<figcaption>" + Escaped(caption) + "</figcaption>\n";
    if (side.picture.empty()) {
        html += "<p class=\"failed\">Not drawn: " + Escaped(side.failure) + "</p>\n";
    } else {
        html += "<img src=\"" + Escaped(side.picture) + "\" alt=\"" +
                Escaped(entry.kind + " " + entry.id + ", " + caption) + "\">\n";
        if (entry.kind == "menu") {
            html += "<p>A menu takes the width its items need.</p>\n";
        } else if (side.misfits.empty()) {
            html += "<p class=\"fits\">Every text fits.</p>\n";
        } else {
            html += "<ul class=\"misfits\">\n";
            for (const Misfit& m : side.misfits)
                html += "<li class=\"misfit\">" + Escaped(m.kind) + " " +
                        std::to_string(m.control) + ": <q>" + Escaped(m.text) + "</q> needs " +
                        std::to_string(m.neededWidth) + "&times;" + std::to_string(m.neededHeight) +
                        " px, room " + std::to_string(m.roomWidth) + "&times;" +
                        std::to_string(m.roomHeight) + " px (" +
                        (m.problem == "lines" ? "lines out of sight" : "cut at the side") +
                        ")</li>\n";
            html += "</ul>\n";
        }
    }
    html += "</figure>\n";
}

std::string WithLanguage(const std::string& side, const std::string& language) {
    return language.empty() ? side : side + " (" + language + ")";
}

} // namespace

std::string SafeName(const std::string& kind, const std::string& id) {
    std::string name = kind + "-";
    for (const char c : id)
        name += std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_' ? c : '_';
    return name;
}

std::string IndexHtml(const PreviewPage& page) {
    std::size_t misfitting = 0;
    for (const PreviewEntry& entry : page.entries)
        misfitting += !entry.translation.misfits.empty() || !entry.translation.failure.empty();
    const std::string title = page.document + ": " + WithLanguage("source", page.sourceLanguage) +
                              " and " + WithLanguage("translation", page.targetLanguage);
    std::string html = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n";
    html += std::string(kGenerator) + "\n<title>" + Escaped(title) + "</title>\n";
    html += "<style>\n"
            "body { font-family: sans-serif; margin: 1em 2em; }\n"
            ".pair { display: flex; gap: 2em; align-items: flex-start; flex-wrap: wrap; }\n"
            "figure { margin: 0; }\n"
            "figcaption { font-weight: bold; margin-bottom: .3em; }\n"
            ".misfit, .failed, .bad { color: #b00; }\n"
            ".fits { color: #070; }\n"
            "table { border-collapse: collapse; }\n"
            "td, th { border: 1px solid #ccc; padding: .2em .6em; text-align: left; }\n"
            "</style>\n</head>\n<body>\n";
    html += "<h1>" + Escaped(title) + "</h1>\n";
    html += "<p>The source file " + Escaped(page.sourceFile) + ": " +
            std::to_string(page.entries.size()) + " dialogs and menus, " +
            std::to_string(misfitting) +
            " of them with texts that do not fit in translation.</p>\n";
    if (!page.entries.empty()) {
        html += "<table>\n<tr><th>resource</th><th>source</th><th>translation</th></tr>\n";
        for (const PreviewEntry& entry : page.entries) {
            auto count = [&entry](const PreviewSide& side) {
                if (!side.failure.empty())
                    return std::string("<td class=\"bad\">not drawn</td>");
                if (entry.kind == "menu")
                    return std::string("<td>drawn</td>");
                if (side.misfits.empty())
                    return std::string("<td class=\"fits\">every text fits</td>");
                const std::size_t n = side.misfits.size();
                return "<td class=\"bad\">" + std::to_string(n) +
                       (n == 1 ? " text does not fit</td>" : " texts do not fit</td>");
            };
            html += "<tr><td><a href=\"#" + entry.name + "\">" +
                    Escaped(entry.kind + " " + entry.id) + "</a></td>" + count(entry.source) +
                    count(entry.translation) + "</tr>\n";
        }
        html += "</table>\n";
    }
    for (const PreviewEntry& entry : page.entries) {
        html += "<section id=\"" + entry.name + "\">\n<h2>" + Escaped(entry.kind + " " + entry.id) +
                "</h2>\n<div class=\"pair\">\n";
        Side(html, entry, entry.source, WithLanguage("source", page.sourceLanguage));
        Side(html, entry, entry.translation, WithLanguage("translation", page.targetLanguage));
        html += "</div>\n</section>\n";
    }
    html += "</body>\n</html>\n";
    return html;
}

bool IsPreviewFolder(const std::filesystem::path& folder) {
    std::error_code error;
    bool indexed = false;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        const std::string name = entry.path().filename().string();
        if (!entry.is_regular_file(error) || entry.is_symlink(error))
            return false;
        if (name == kIndexName) {
            std::ifstream in(entry.path(), std::ios::binary);
            std::string head(1024, '\0');
            in.read(head.data(), static_cast<std::streamsize>(head.size()));
            head.resize(static_cast<std::size_t>(in.gcount()));
            indexed = head.find(kGenerator) != std::string::npos;
        } else if (!name.ends_with(".png")) {
            return false;
        }
    }
    return indexed && !error;
}

} // namespace tervane::app
