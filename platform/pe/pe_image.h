#pragma once
// A PE32 or PE32+ file parsed as data: headers, section table and data
// directories, with every offset checked. Nothing of the file is run or mapped;
// reads by RVA go through the section table.
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/byte_reader.h"
#include "platform/files/file_content.h"
#include "platform/result.h"

namespace tervane::pe {

inline constexpr std::uint16_t kPe32Magic = 0x10B;
inline constexpr std::uint16_t kPe32PlusMagic = 0x20B;
inline constexpr std::size_t kSectionHeaderSize = 40;
inline constexpr std::size_t kMaxSections = 96; // the Windows loader's own limit

enum DirectoryIndex : std::size_t {
    kExportDirectory = 0,
    kImportDirectory = 1,
    kResourceDirectory = 2,
    kExceptionDirectory = 3,
    kSecurityDirectory = 4, // a file offset, not an RVA
    kBaseRelocDirectory = 5,
    kDebugDirectory = 6,
};

struct DataDirectory {
    std::uint32_t rva = 0;
    std::uint32_t size = 0;
};

struct SectionHeader {
    std::array<char, 8> name{};
    std::uint32_t virtualSize = 0;
    std::uint32_t virtualAddress = 0;
    std::uint32_t sizeOfRawData = 0;
    std::uint32_t pointerToRawData = 0;
    std::uint32_t pointerToRelocations = 0;
    std::uint32_t pointerToLinenumbers = 0;
    std::uint16_t numberOfRelocations = 0;
    std::uint16_t numberOfLinenumbers = 0;
    std::uint32_t characteristics = 0;

    std::string Name() const; // up to the first NUL
    // Bytes the section occupies in memory: the virtual size, or the raw size
    // where a linker left the virtual size 0.
    std::uint32_t MappedSize() const { return virtualSize ? virtualSize : sizeOfRawData; }
    bool ContainsRva(std::uint32_t rva) const {
        return rva >= virtualAddress && rva - virtualAddress < MappedSize();
    }
};

// Where the fields that a writer must patch stand in the file.
struct HeaderOffsets {
    std::size_t peSignature = 0;
    std::size_t fileHeader = 0;
    std::size_t optionalHeader = 0;
    std::size_t dataDirectories = 0;
    std::size_t sectionTable = 0;
    std::size_t checksum = 0;
    std::size_t sizeOfImage = 0;
    std::size_t sizeOfInitializedData = 0;
};

class PeImage {
public:
    // Fails with ERROR_FILE_INVALID for an empty file and ERROR_BAD_EXE_FORMAT
    // for anything that is not a PE image the loader would accept as data.
    static Result<PeImage> Parse(files::FileContent content);
    static Result<PeImage> Parse(std::vector<std::uint8_t> bytes) {
        return Parse(files::FileContent(std::move(bytes)));
    }

    bool Is64() const { return magic_ == kPe32PlusMagic; }
    std::uint16_t Machine() const { return machine_; }
    std::uint32_t FileAlignment() const { return fileAlignment_; }
    std::uint32_t SectionAlignment() const { return sectionAlignment_; }
    std::uint32_t SizeOfImage() const { return sizeOfImage_; }
    std::uint32_t SizeOfHeaders() const { return sizeOfHeaders_; }
    std::uint32_t CheckSum() const { return checksum_; }
    std::uint32_t SizeOfInitializedData() const { return sizeOfInitializedData_; }
    const HeaderOffsets& Offsets() const { return offsets_; }

    std::size_t DirectoryCount() const { return directories_.size(); }
    DataDirectory Directory(std::size_t index) const {
        return index < directories_.size() ? directories_[index] : DataDirectory{};
    }
    const std::vector<SectionHeader>& Sections() const { return sections_; }
    // Index of the section that holds rva, if any.
    std::optional<std::size_t> SectionIndexForRva(std::uint32_t rva) const;

    // The section's content as the loader would map it: its raw bytes (as far
    // as the file holds them), then zeros up to its mapped size.
    std::vector<std::uint8_t> SectionContent(std::size_t index) const;
    // Copies [rva, rva + size) when it lies inside one section; the
    // uninitialised tail of a section reads as zeros.
    std::optional<std::vector<std::uint8_t>> ReadRva(std::uint32_t rva, std::uint32_t size) const;
    // The file's own bytes of [rva, rva + size), valid as long as the image:
    // empty unless the range lies inside one section and the file holds all
    // of it, where ReadRva would give the same bytes.
    std::optional<Bytes> ViewRva(std::uint32_t rva, std::uint32_t size) const;

    // End of the last section's raw data: what follows is appended data.
    std::uint64_t EndOfSectionData() const;

    Bytes FileBytes() const { return bytes_.bytes(); }

private:
    std::vector<std::uint8_t> ReadSection(const SectionHeader& section, std::uint32_t offset,
                                          std::uint32_t size) const;

    files::FileContent bytes_;
    std::uint16_t machine_ = 0;
    std::uint16_t magic_ = 0;
    std::uint32_t fileAlignment_ = 0;
    std::uint32_t sectionAlignment_ = 0;
    std::uint32_t sizeOfImage_ = 0;
    std::uint32_t sizeOfHeaders_ = 0;
    std::uint32_t checksum_ = 0;
    std::uint32_t sizeOfInitializedData_ = 0;
    HeaderOffsets offsets_;
    std::vector<DataDirectory> directories_;
    std::vector<SectionHeader> sections_;
};

// The PE checksum as the image help library computes it, with the checksum
// field itself counted as zero.
std::uint32_t ComputeChecksum(Bytes file, std::size_t checksumOffset);

} // namespace tervane::pe
