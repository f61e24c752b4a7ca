#include "app/xliff/content.h"

namespace tervane::xliff {

namespace {

void AppendText(Content& content, std::u16string_view text) {
    if (text.empty())
        return;
    if (content.empty() || content.back().placeholder)
        content.push_back({false, {}});
    content.back().text += text;
}

} // namespace

Content ToContent(std::span<const Event> events, bool hotkeys) {
    Content content;
    for (const Event& event : events) {
        if (!event.IsTag()) {
            if (!hotkeys) {
                AppendText(content, event.text);
                continue;
            }
            std::u16string doubled;
            for (char16_t c : event.text) {
                doubled += c;
                if (c == u'&')
                    doubled += c;
            }
            AppendText(content, doubled);
        } else if (hotkeys && event.text == u"&") {
            AppendText(content, u"&");
        } else {
            content.push_back({true, event.text});
        }
    }
    return content;
}

EventList ToEvents(const Content& content, bool hotkeys) {
    EventList events;
    std::u16string text;
    auto flush = [&] {
        if (!text.empty())
            events.push_back(Event::Text(std::move(text)));
        text.clear();
    };
    for (const Piece& piece : content) {
        if (piece.placeholder) {
            flush();
            events.push_back(Event::Inline(piece.text));
            continue;
        }
        if (!hotkeys) {
            text += piece.text;
            continue;
        }
        const std::u16string& run = piece.text;
        for (std::size_t i = 0; i < run.size(); ++i) {
            if (run[i] != u'&') {
                text += run[i];
            } else if (i + 1 < run.size() && run[i + 1] == u'&') {
                text += u'&';
                ++i;
            } else {
                flush();
                events.push_back(Event::Inline(u"&"));
            }
        }
    }
    flush();
    return events;
}

std::u16string Flatten(const Content& content) {
    std::u16string all;
    for (const Piece& piece : content)
        all += piece.text;
    return all;
}

} // namespace tervane::xliff
