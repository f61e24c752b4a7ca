#include "preview/draw/fit_json.h"

#include <cstdio>
#include <ostream>

namespace tervane::preview {

namespace {

void Quoted(std::ostream& out, const std::string& text) {
    out << '"';
    for (const char c : text) {
        switch (c) {
        case '"':
            out << "\\\"";
            break;
        case '\\':
            out << "\\\\";
            break;
        case '\n':
            out << "\\n";
            break;
        case '\r':
            out << "\\r";
            break;
        case '\t':
            out << "\\t";
            break;
        default:
            if (static_cast<unsigned char>(c) < 0x20) {
                char escape[8];
                std::snprintf(escape, sizeof escape, "\\u%04x", c);
                out << escape;
            } else {
                out << c;
            }
        }
    }
    out << '"';
}

void RectArray(std::ostream& out, const Rect& r, const DialogFrame& frame) {
    out << '[' << r.x + frame.clientX << ',' << r.y + frame.clientY << ',' << r.width << ','
        << r.height << ']';
}

} // namespace

void WriteFitJson(std::ostream& out, const PreviewerOptions& options, const DialogScene& scene,
                  const DialogFrame& frame, const std::vector<FitFinding>& findings) {
    out << "{\"file\":";
    Quoted(out, options.path);
    out << ",\"kind\":";
    Quoted(out, options.kind);
    out << ",\"id\":";
    Quoted(out, options.id);
    out << ",\"baseUnits\":[" << scene.units.x << ',' << scene.units.y << "],\"controls\":[";
    for (std::size_t i = 0; i < scene.controls.size(); ++i) {
        const SceneControl& c = scene.controls[i];
        out << (i ? "," : "") << "{\"id\":" << c.source.id << ",\"kind\":";
        Quoted(out, c.kind);
        out << ",\"rect\":";
        RectArray(out, c.rect, frame);
        out << ",\"text\":";
        Quoted(out, c.text.text);
        if (c.text.HasHotkey())
            out << ",\"hotkey\":[" << c.text.underlineBegin << ',' << c.text.underlineEnd << ']';
        if (!c.items.empty()) {
            out << ",\"items\":[";
            for (std::size_t k = 0; k < c.items.size(); ++k) {
                out << (k ? "," : "");
                Quoted(out, c.items[k]);
            }
            out << ']';
        }
        out << '}';
    }
    out << "],\"findings\":[";
    for (std::size_t i = 0; i < findings.size(); ++i) {
        const FitFinding& f = findings[i];
        const SceneControl& c = scene.controls[f.control];
        out << (i ? "," : "") << "{\"id\":" << c.source.id << ",\"kind\":";
        Quoted(out, c.kind);
        out << ",\"problem\":\"" << MisfitName(f.problem) << "\",\"text\":";
        Quoted(out, f.text);
        out << ",\"rect\":";
        RectArray(out, c.rect, frame);
        out << ",\"needed\":[" << f.neededWidth << ',' << f.neededHeight << "],\"room\":["
            << f.roomWidth << ',' << f.roomHeight << "]}";
    }
    out << "]}\n";
}

} // namespace tervane::preview
