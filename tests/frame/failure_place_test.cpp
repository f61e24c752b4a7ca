#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "frame/diagnostics/exceptions.h"
#include "frame/resource.h"
#include "frame/resource_parser_impl.h"
#include "platform/diag/failure_place.h"
#include "platform/pe/resource_directory.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

using Bytes8 = std::vector<std::uint8_t>;

// Where one resource of a fixture lies in the file.
struct Located {
    std::size_t data = 0;  // file offset of its bytes
    std::size_t entry = 0; // file offset of its IMAGE_RESOURCE_DATA_ENTRY
    Bytes8 bytes;
};

std::size_t Find(const Bytes8& file, const Bytes8& what) {
    auto at = std::search(file.begin(), file.end(), what.begin(), what.end());
    EXPECT_NE(at, file.end());
    return static_cast<std::size_t>(at - file.begin());
}

Bytes8 Le32(std::uint32_t a, std::uint32_t b) {
    Bytes8 out;
    for (std::uint32_t v : {a, b})
        for (int i = 0; i < 4; ++i)
            out.push_back(static_cast<std::uint8_t>(v >> (8 * i)));
    return out;
}

Located Locate(const Bytes8& file, WORD type, WORD name, WORD language) {
    auto image = pe::PeImage::Parse(Bytes8(file));
    auto tree = pe::ReadResourceTree(*image);
    for (const pe::ResourceType& t : tree->types)
        for (const pe::ResourceName& n : t.names)
            for (const pe::ResourceLanguage& l : n.languages) {
                if (t.id != pe::ResourceId(type) || n.id != pe::ResourceId(name) ||
                    l.language != language)
                    continue;
                const pe::ResourceDataEntry& entry = l.data;
                Located at;
                at.bytes = *pe::ReadResourceData(*image, entry);
                at.data = Find(file, at.bytes);
                at.entry = Find(file, Le32(entry.rva, entry.size));
                return at;
            }
    ADD_FAILURE() << "no resource " << type << "/" << name;
    return {};
}

std::string Hex(std::size_t offset) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%zX", offset);
    return text;
}

// The counted string of a block that a cut at size falls into: its length
// word or its text.
std::string CutString(const Bytes8& block, std::size_t size) {
    for (std::size_t at = 0;;) {
        if (at + 2 > size)
            return "offset " + Hex(at) + ", field length";
        std::size_t end = at + 2 + 2 * (block[at] | block[at + 1] << 8);
        if (end > size)
            return "offset " + Hex(at + 2) + ", field string";
        at = end;
    }
}

// Damaged copies of real images: the failure keeps its fixed text, and the
// place beside it reads from the file down to the offset and field.
TEST(FailurePlace, NamesTheFileTheResourceTheOffsetAndTheField) {
    struct Case {
        const char* what;
        const char* fixture;
        WORD type;
        WORD name;
        WORD language;
        // Damages the file; returns the place below the resource, or the
        // whole place after the file for a file that does not load.
        std::string (*damage)(Bytes8& file, const Located& at);
        bool loads = true;
    };
    const Case cases[] = {
        {"a dialog counting a control more than it holds", "fwd_dialogs", 5, 100, 0x409,
         [](Bytes8& file, const Located& at) {
             ++file[at.data + 8]; // cdit of a DIALOG
             return "offset " + Hex(at.bytes.size()) + ", field control";
         }},
        {"an extended dialog whose caption runs off its end", "fwd_dialogs", 5, 101, 0x409,
         [](Bytes8& file, const Located& at) {
             // The size now ends inside the caption, behind the empty menu and class.
             const std::size_t caption = 26 + 2 + 2;
             file[at.entry + 4] = static_cast<std::uint8_t>(caption + 4);
             for (int i = 5; i < 8; ++i)
                 file[at.entry + i] = 0;
             return "offset " + Hex(caption) + ", field title";
         }},
        {"a string block cut short", "fwd_strings", 6, 1, 0x407,
         [](Bytes8& file, const Located& at) {
             const std::size_t size = at.bytes.size() / 2;
             file[at.entry + 4] = static_cast<std::uint8_t>(size);
             file[at.entry + 5] = static_cast<std::uint8_t>(size >> 8);
             return CutString(at.bytes, size);
         }},
        {"the file cut inside its resources", "fwd_dialogs", 5, 100, 0x409,
         [](Bytes8& file, const Located& at) {
             file.resize(at.data + 4);
             return std::string("section .rsrc runs past the end of the file");
         },
         false},
    };
    for (const Case& c : cases) {
        for (const std::string& fixture : test::FixtureImages(c.fixture)) {
            SCOPED_TRACE(std::string(c.what) + " in " + fixture);
            Bytes8 file = test::ReadFile(fixture);
            const std::string below = c.damage(file, Locate(file, c.type, c.name, c.language));
            const std::string path = test::TempDir() + "/damaged.dll";
            test::WriteFile(path, file);

            CResourceParserImpl engine;
            const std::u16string wide(path.begin(), path.end());
            if (!c.loads) {
                EXPECT_NE(engine.InitialiseParser(wide), 0);
                EXPECT_EQ(FailurePlace(), path + ": " + below);
                continue;
            }
            ASSERT_EQ(engine.InitialiseParser(wide), 0);
            engine.EnumerateResources();
            try {
                engine.ExtractResources(0);
                ADD_FAILURE() << "no failure";
            } catch (const CParserException& e) {
                EXPECT_STREQ(e.message, kCorruptedDocumentMessage);
            }
            char resource[64];
            std::snprintf(resource, sizeof resource,
                          ": resource type %u, name %u, language 0x%04X: ", c.type, c.name,
                          c.language);
            EXPECT_EQ(FailurePlace(), path + resource + below);
        }
    }
}

} // namespace
} // namespace tervane
