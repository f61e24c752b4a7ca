#include "platform/pe/pe_image.h"

#include <algorithm>
#include <cstring>

#include "platform/win32/last_error.h"

namespace tervane::pe {

namespace {

Error BadFormat(std::string what) {
    return Error{ERROR_BAD_EXE_FORMAT, std::move(what)};
}

// Field offsets inside the optional header; the PE32+ form widens the image
// base and the four stack and heap sizes, which shifts the tail by 16 bytes.
constexpr std::size_t kOptSizeOfInitializedData = 8;
constexpr std::size_t kOptSectionAlignment = 32;
constexpr std::size_t kOptFileAlignment = 36;
constexpr std::size_t kOptSizeOfImage = 56;
constexpr std::size_t kOptSizeOfHeaders = 60;
constexpr std::size_t kOptCheckSum = 64;
constexpr std::size_t kOptRvaCount32 = 92;
constexpr std::size_t kOptRvaCount64 = 108;
constexpr std::size_t kMaxDirectories = 16;

} // namespace

std::string SectionHeader::Name() const {
    auto end = std::find(name.begin(), name.end(), '\0');
    return std::string(name.begin(), end);
}

Result<PeImage> PeImage::Parse(files::FileContent content) {
    if (content.empty())
        return Error{ERROR_FILE_INVALID, "the file is empty"};
    PeImage image;
    image.bytes_ = std::move(content);
    ByteReader file(image.bytes_.bytes());

    auto mz = file.ReadU16LE();
    if (!mz || *mz != 0x5A4D)
        return BadFormat("no MZ signature");
    if (!file.Seek(0x3C))
        return BadFormat("DOS header is truncated");
    auto lfanew = file.ReadU32LE();
    if (!lfanew)
        return BadFormat("DOS header is truncated");

    HeaderOffsets& at = image.offsets_;
    at.peSignature = *lfanew;
    if (!file.Seek(at.peSignature))
        return BadFormat("PE header offset lies past the end of the file");
    auto signature = file.ReadU32LE();
    if (!signature || *signature != 0x00004550)
        return BadFormat("no PE signature");

    at.fileHeader = file.Offset();
    auto machine = file.ReadU16LE();
    auto sectionCount = file.ReadU16LE();
    if (!machine || !sectionCount || !file.Skip(12))
        return BadFormat("file header is truncated");
    auto optionalSize = file.ReadU16LE();
    if (!optionalSize || !file.Skip(2))
        return BadFormat("file header is truncated");
    image.machine_ = *machine;

    at.optionalHeader = file.Offset();
    auto optional = file.Slice(at.optionalHeader, *optionalSize);
    if (!optional)
        return BadFormat("optional header runs past the end of the file");
    auto magic = optional->ReadU16LE();
    if (!magic || (*magic != kPe32Magic && *magic != kPe32PlusMagic))
        return BadFormat("unknown optional header magic");
    image.magic_ = *magic;

    auto field = [&](std::size_t offset) -> std::optional<std::uint32_t> {
        ByteReader r = *optional;
        if (!r.Seek(offset))
            return std::nullopt;
        return r.ReadU32LE();
    };
    const std::size_t rvaCountAt = image.Is64() ? kOptRvaCount64 : kOptRvaCount32;
    auto initData = field(kOptSizeOfInitializedData);
    auto sectionAlign = field(kOptSectionAlignment);
    auto fileAlign = field(kOptFileAlignment);
    auto sizeOfImage = field(kOptSizeOfImage);
    auto sizeOfHeaders = field(kOptSizeOfHeaders);
    auto checksum = field(kOptCheckSum);
    auto rvaCount = field(rvaCountAt);
    if (!initData || !sectionAlign || !fileAlign || !sizeOfImage || !sizeOfHeaders || !checksum ||
        !rvaCount)
        return BadFormat("optional header is truncated");
    image.sizeOfInitializedData_ = *initData;
    image.sectionAlignment_ = *sectionAlign;
    image.fileAlignment_ = *fileAlign;
    image.sizeOfImage_ = *sizeOfImage;
    image.sizeOfHeaders_ = *sizeOfHeaders;
    image.checksum_ = *checksum;
    at.sizeOfInitializedData = at.optionalHeader + kOptSizeOfInitializedData;
    at.sizeOfImage = at.optionalHeader + kOptSizeOfImage;
    at.checksum = at.optionalHeader + kOptCheckSum;
    at.dataDirectories = at.optionalHeader + rvaCountAt + 4;

    // Only as many directories as the header declares and the optional header holds.
    std::size_t available =
        (*optionalSize - std::min<std::size_t>(*optionalSize, rvaCountAt + 4)) / 8;
    std::size_t directoryCount = std::min<std::size_t>({*rvaCount, kMaxDirectories, available});
    ByteReader dirs = *optional;
    dirs.Seek(rvaCountAt + 4);
    for (std::size_t i = 0; i < directoryCount; ++i) {
        auto rva = dirs.ReadU32LE();
        auto size = dirs.ReadU32LE();
        image.directories_.push_back({*rva, *size});
    }

    if (*sectionCount > kMaxSections)
        return BadFormat("too many sections");
    at.sectionTable = at.optionalHeader + *optionalSize;
    auto table = file.Slice(at.sectionTable, std::size_t{*sectionCount} * kSectionHeaderSize);
    if (!table)
        return BadFormat("section table runs past the end of the file");
    for (unsigned i = 0; i < *sectionCount; ++i) {
        SectionHeader s;
        auto name = table->ReadBytes(8);
        std::memcpy(s.name.data(), name->data(), 8);
        s.virtualSize = *table->ReadU32LE();
        s.virtualAddress = *table->ReadU32LE();
        s.sizeOfRawData = *table->ReadU32LE();
        s.pointerToRawData = *table->ReadU32LE();
        s.pointerToRelocations = *table->ReadU32LE();
        s.pointerToLinenumbers = *table->ReadU32LE();
        s.numberOfRelocations = *table->ReadU16LE();
        s.numberOfLinenumbers = *table->ReadU16LE();
        s.characteristics = *table->ReadU32LE();
        image.sections_.push_back(s);
    }
    return image;
}

std::optional<std::size_t> PeImage::SectionIndexForRva(std::uint32_t rva) const {
    for (std::size_t i = 0; i < sections_.size(); ++i)
        if (sections_[i].ContainsRva(rva))
            return i;
    return std::nullopt;
}

std::vector<std::uint8_t> PeImage::SectionContent(std::size_t index) const {
    const SectionHeader& s = sections_.at(index);
    return ReadSection(s, 0, s.MappedSize());
}

std::optional<std::vector<std::uint8_t>> PeImage::ReadRva(std::uint32_t rva,
                                                          std::uint32_t size) const {
    auto index = SectionIndexForRva(rva);
    if (!index)
        return std::nullopt;
    const SectionHeader& s = sections_[*index];
    std::uint32_t offset = rva - s.virtualAddress;
    if (!InBounds(offset, size, s.MappedSize()))
        return std::nullopt;
    return ReadSection(s, offset, size);
}

std::optional<Bytes> PeImage::ViewRva(std::uint32_t rva, std::uint32_t size) const {
    auto index = SectionIndexForRva(rva);
    if (!index)
        return std::nullopt;
    const SectionHeader& s = sections_[*index];
    std::uint32_t offset = rva - s.virtualAddress;
    std::uint64_t rawEnd = std::min<std::uint64_t>(s.sizeOfRawData, s.MappedSize());
    std::uint64_t fileOffset = std::uint64_t{s.pointerToRawData} + offset;
    if (!InBounds(offset, size, rawEnd) || !InBounds(fileOffset, size, bytes_.size()))
        return std::nullopt;
    return FileBytes().subspan(static_cast<std::size_t>(fileOffset), size);
}

std::vector<std::uint8_t> PeImage::ReadSection(const SectionHeader& s, std::uint32_t offset,
                                               std::uint32_t size) const {
    std::vector<std::uint8_t> out(size, 0);
    // Bytes backed by the file are copied; the rest stays zero.
    std::uint64_t rawEnd = std::min<std::uint64_t>(s.sizeOfRawData, s.MappedSize());
    std::uint64_t fileOffset = std::uint64_t{s.pointerToRawData} + offset;
    if (offset < rawEnd && fileOffset < bytes_.size()) {
        std::uint64_t count = std::min<std::uint64_t>(size, rawEnd - offset);
        count = std::min<std::uint64_t>(count, bytes_.size() - fileOffset);
        std::copy_n(bytes_.bytes().begin() + static_cast<std::ptrdiff_t>(fileOffset), count,
                    out.begin());
    }
    return out;
}

std::uint64_t PeImage::EndOfSectionData() const {
    std::uint64_t end = sizeOfHeaders_;
    for (const SectionHeader& s : sections_)
        if (s.sizeOfRawData)
            end = std::max<std::uint64_t>(end, std::uint64_t{s.pointerToRawData} + s.sizeOfRawData);
    return std::min<std::uint64_t>(end, bytes_.size());
}

std::uint32_t ComputeChecksum(Bytes file, std::size_t checksumOffset) {
    std::uint64_t sum = 0;
    const std::size_t words = file.size() / 2;
    for (std::size_t i = 0; i < words; ++i) {
        std::size_t at = i * 2;
        if (at == checksumOffset || at == checksumOffset + 2)
            continue;
        sum += LoadU16LE(&file[at]);
        sum = (sum & 0xFFFF) + (sum >> 16);
    }
    if (file.size() % 2)
        sum += file.back();
    sum = (sum & 0xFFFF) + (sum >> 16);
    sum = (sum & 0xFFFF) + (sum >> 16);
    return static_cast<std::uint32_t>(sum + file.size());
}

} // namespace tervane::pe
