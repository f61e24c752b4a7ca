#include "app/bilingual_file.h"

#include <filesystem>

#include "app/xliff/sha256.h"
#include "app/xliff/xliff_io.h"
#include "platform/files/file_content.h"
#include "platform/locale/language_code_pages.h"
#include "platform/pe/pe_image.h"
#include "platform/pe/resource_directory.h"

namespace tervane::app {

namespace {

namespace fs = std::filesystem;

std::string TagOf(LANGID language) {
    auto entry = locale::FindLanguageCodePages(language);
    if (!entry)
        return {};
    std::string name = entry->name;
    return name.substr(0, name.find('_'));
}

// The language of the first resource the conversion reads.
std::string ResourceLanguage(files::FileContent content) {
    auto image = pe::PeImage::Parse(std::move(content));
    if (!image)
        return {};
    auto tree = pe::ReadResourceTree(*image);
    if (!tree)
        return {};
    for (const pe::ResourceType& type : tree->types) {
        std::uint16_t kind = type.id.IsName() ? 0 : type.id.Ordinal();
        if (kind != 4 && kind != 5 && kind != 6 && kind != 16)
            continue;
        for (const pe::ResourceName& name : type.names) {
            if (!name.languages.empty())
                return TagOf(name.languages.front().language);
        }
    }
    return {};
}

} // namespace

SourceFacts ReadSourceFacts(const std::string& path) {
    auto content = files::ReadFileContent(path);
    if (!content)
        throw CommandFailure(path, SystemText(content.error().code, path));
    SourceFacts facts;
    facts.sha256 = xliff::Sha256Hex(content->bytes());
    facts.size = content->size();
    facts.language = ResourceLanguage(std::move(*content));
    return facts;
}

std::string OriginalFor(const std::string& source, const std::string& documentPath) {
    if (documentPath.empty())
        return source;
    std::error_code error;
    fs::path folder = fs::absolute(documentPath, error).parent_path();
    fs::path relative = fs::relative(fs::absolute(source, error), folder, error);
    return error || relative.empty() ? source : relative.generic_string();
}

std::string SourceFromOriginal(const std::string& original, const std::string& documentPath) {
    fs::path path(original);
    if (path.is_absolute())
        return original;
    return (fs::path(documentPath).parent_path() / path).string();
}

std::string LanguageTagOption(const std::string& text, const std::string& option) {
    std::optional<locale::LanguageCodePages> found;
    char* end = nullptr;
    unsigned long number = std::strtoul(text.c_str(), &end, 0);
    if (!text.empty() && end && *end == '\0' && number <= 0xFFFF)
        found = locale::FindLanguageCodePages(static_cast<LANGID>(number));
    else
        found = locale::FindLanguageByName(text);
    if (!found || std::string(found->name).empty())
        throw CommandFailure(option, "unknown language '" + text + "'");
    std::string name = found->name;
    return name.substr(0, name.find('_'));
}

CommandFailure DocumentFailure(const std::string& path, const xliff::DocumentError& error) {
    std::string subject = path;
    if (error.Line() > 0)
        subject += ":" + std::to_string(error.Line());
    std::string text = error.what();
    if (!error.UnitId().empty())
        text = "unit " + error.UnitId() + ": " + text;
    return CommandFailure(subject, text);
}

xliff::Document LoadDocument(const std::string& path) {
    auto content = files::ReadFileContent(path);
    if (!content)
        throw CommandFailure(path, SystemText(content.error().code, path));
    Bytes bytes = content->bytes();
    try {
        return xliff::ReadXliff(
            std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()), path);
    } catch (const xliff::DocumentError& error) {
        throw DocumentFailure(path, error);
    }
}

void SaveDocument(const xliff::Document& document, OutputFile& output) {
    output.Write(xliff::WriteXliff(document, TERVANE_VERSION));
    output.Commit();
}

} // namespace tervane::app
