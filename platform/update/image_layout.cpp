#include "platform/update/image_layout.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "platform/update/narrowing.h"
#include "platform/update/section_writer.h"
#include "platform/win32/last_error.h"

namespace tervane::update {

namespace {

constexpr std::uint32_t kScnCode = 0x00000020;
constexpr std::uint32_t kScnInitializedData = 0x00000040;
constexpr std::uint32_t kScnExecute = 0x20000000;
constexpr std::uint32_t kScnRead = 0x40000000;
constexpr std::uint64_t kMaxFile = std::numeric_limits<std::uint32_t>::max();

std::uint64_t Align(std::uint64_t value, std::uint64_t alignment) {
    return (value + alignment - 1) / alignment * alignment;
}

bool PowerOfTwo(std::uint32_t v) {
    return v != 0 && (v & (v - 1)) == 0;
}

Error BadImage(const std::string& what) {
    return Error{ERROR_BAD_EXE_FORMAT, what};
}

std::uint64_t RawEnd(const pe::SectionHeader& s) {
    return std::uint64_t{s.pointerToRawData} + s.sizeOfRawData;
}

// Raw bytes of the section that the file really holds.
std::uint64_t RawInFile(const pe::SectionHeader& s, std::uint64_t fileSize) {
    if (s.pointerToRawData >= fileSize)
        return 0;
    return std::min<std::uint64_t>(s.sizeOfRawData, fileSize - s.pointerToRawData);
}

// True when a data directory other than those named lies in the section.
bool OtherDirectoryIn(const pe::PeImage& image, std::size_t section,
                      std::initializer_list<std::size_t> allowed) {
    const pe::SectionHeader& s = image.Sections()[section];
    for (std::size_t i = 0; i < image.DirectoryCount(); ++i) {
        if (i == pe::kSecurityDirectory ||
            std::find(allowed.begin(), allowed.end(), i) != allowed.end())
            continue;
        pe::DataDirectory d = image.Directory(i);
        if (d.rva != 0 && s.ContainsRva(d.rva))
            return true;
    }
    return false;
}

bool SortedByAddress(const std::vector<pe::SectionHeader>& sections) {
    for (std::size_t i = 1; i < sections.size(); ++i)
        if (sections[i].virtualAddress <= sections[i - 1].virtualAddress)
            return false;
    return true;
}

bool IsRelocations(const pe::PeImage& image, std::size_t index) {
    const pe::SectionHeader& s = image.Sections()[index];
    pe::DataDirectory relocs = image.Directory(pe::kBaseRelocDirectory);
    bool holdsRelocs = relocs.rva != 0 && s.ContainsRva(relocs.rva);
    if (!holdsRelocs && !(relocs.rva == 0 && s.Name() == ".reloc"))
        return false;
    return !OtherDirectoryIn(image, index, {pe::kBaseRelocDirectory}) &&
           !(s.characteristics & (kScnCode | kScnExecute));
}

std::uint64_t ImageEnd(const std::vector<pe::SectionHeader>& sections, std::uint32_t alignment,
                       std::uint64_t headers) {
    std::uint64_t end = Align(headers, alignment);
    for (const pe::SectionHeader& s : sections)
        end = std::max(end, std::uint64_t{s.virtualAddress} + Align(s.MappedSize(), alignment));
    return end;
}

Result<ImagePlan> PlanAppend(const pe::PeImage& image, std::uint32_t treeSize) {
    const auto& sections = image.Sections();
    std::uint64_t tableEnd =
        image.Offsets().sectionTable + (sections.size() + 1) * pe::kSectionHeaderSize;
    std::uint64_t firstRaw = image.SizeOfHeaders();
    for (const pe::SectionHeader& s : sections)
        if (s.sizeOfRawData && s.pointerToRawData)
            firstRaw = std::min<std::uint64_t>(firstRaw, s.pointerToRawData);
    if (sections.size() + 1 > pe::kMaxSections || tableEnd > firstRaw ||
        tableEnd > image.FileBytes().size())
        return Error{ERROR_INVALID_DATA, "no room in the headers for another section header"};
    // Linkers may keep data behind the table (bound imports): never overwrite it.
    Bytes slot =
        image.FileBytes().subspan(tableEnd - pe::kSectionHeaderSize, pe::kSectionHeaderSize);
    if (std::any_of(slot.begin(), slot.end(), [](std::uint8_t b) { return b != 0; }))
        return Error{ERROR_INVALID_DATA, "the room for another section header is in use"};
    std::uint64_t rva = ImageEnd(sections, image.SectionAlignment(), image.SizeOfHeaders());
    if (rva + Align(treeSize, image.SectionAlignment()) > kMaxFile)
        return BadImage("the image would outgrow 4 GiB");
    return ImagePlan{Placement::kAppend, sections.size(), static_cast<std::uint32_t>(rva),
                     treeSize};
}

void PutSectionHeader(std::vector<std::uint8_t>& out, std::size_t at, const pe::SectionHeader& s) {
    std::memcpy(&out[at], s.name.data(), 8);
    StoreU32LE(&out[at + 8], s.virtualSize);
    StoreU32LE(&out[at + 12], s.virtualAddress);
    StoreU32LE(&out[at + 16], s.sizeOfRawData);
    StoreU32LE(&out[at + 20], s.pointerToRawData);
    StoreU32LE(&out[at + 24], s.pointerToRelocations);
    StoreU32LE(&out[at + 28], s.pointerToLinenumbers);
    StoreU16LE(&out[at + 32], s.numberOfRelocations);
    StoreU16LE(&out[at + 34], s.numberOfLinenumbers);
    StoreU32LE(&out[at + 36], s.characteristics);
}

void PadTo(std::vector<std::uint8_t>& out, std::uint64_t alignment) {
    out.resize(Align(out.size(), alignment), 0);
}

void Append(std::vector<std::uint8_t>& out, Bytes in, std::uint64_t offset, std::uint64_t size) {
    auto from = in.begin() + static_cast<std::ptrdiff_t>(offset);
    out.insert(out.end(), from, from + static_cast<std::ptrdiff_t>(size));
}

std::uint64_t InitializedDataSize(const std::vector<pe::SectionHeader>& sections) {
    std::uint64_t sum = 0;
    for (const pe::SectionHeader& s : sections)
        if (s.characteristics & kScnInitializedData)
            sum += s.sizeOfRawData;
    return sum;
}

} // namespace

constexpr std::uint32_t kMaxFileAlignment = 0x10000;

Result<ImagePlan> PlanImage(const pe::PeImage& image, std::uint32_t treeSize) {
    if (!PowerOfTwo(image.FileAlignment()) || !PowerOfTwo(image.SectionAlignment()))
        return BadImage("file or section alignment is not a power of two");
    // Every section is padded to the file alignment: past the 64 KiB that
    // PE/COFF allows, a file of a few kilobytes would be written as gigabytes.
    if (image.FileAlignment() > kMaxFileAlignment)
        return BadImage("file alignment is above 64 KiB");
    if (image.DirectoryCount() <= pe::kResourceDirectory)
        return BadImage("the optional header has no resource directory entry");
    const auto& sections = image.Sections();
    const std::uint64_t fileSize = image.FileBytes().size();
    pe::DataDirectory dir = image.Directory(pe::kResourceDirectory);
    // A directory of size 0 is none, as the readers see it: whatever its RVA
    // points at belongs to something else.
    std::optional<std::size_t> index;
    if (dir.rva != 0 && dir.size != 0)
        index = image.SectionIndexForRva(dir.rva);
    if (!index)
        return treeSize <= 16 ? Result<ImagePlan>(ImagePlan{}) : PlanAppend(image, treeSize);

    const std::size_t r = *index;
    const pe::SectionHeader& s = sections[r];
    const std::size_t n = sections.size();
    const std::uint64_t dataEnd = image.EndOfSectionData();
    const bool dedicated = dir.rva == s.virtualAddress &&
                           !(s.characteristics & (kScnCode | kScnExecute)) &&
                           !OtherDirectoryIn(image, r, {pe::kResourceDirectory});
    const bool ordered = SortedByAddress(sections);
    const std::uint64_t tableEnd = image.Offsets().sectionTable + n * pe::kSectionHeaderSize;
    const bool rawOk = s.pointerToRawData >= tableEnd && RawEnd(s) <= fileSize;
    auto grows = [&](std::uint64_t end) {
        return end + Align(treeSize, image.SectionAlignment()) <= kMaxFile;
    };

    if (dedicated && ordered && rawOk && r == n - 1 && RawEnd(s) == dataEnd &&
        grows(s.virtualAddress))
        return ImagePlan{Placement::kResizeLast, r, s.virtualAddress, treeSize, true};

    if (dedicated && ordered && rawOk && n >= 2 && r == n - 2 && IsRelocations(image, n - 1)) {
        const pe::SectionHeader& relocs = sections[n - 1];
        if (RawEnd(s) <= relocs.pointerToRawData && RawEnd(relocs) == dataEnd &&
            RawEnd(relocs) <= fileSize &&
            grows(s.virtualAddress + Align(relocs.MappedSize(), image.SectionAlignment())))
            return ImagePlan{Placement::kMoveReloc, r, s.virtualAddress, treeSize, true};
    }

    // Anything else may be referred to by code or data: only the bytes that
    // the old tree occupied may be reused.
    std::uint64_t offset = dir.rva - s.virtualAddress;
    std::uint64_t raw = RawInFile(s, fileSize);
    std::uint64_t capacity = offset < raw ? raw - offset : 0;
    if (dedicated) {
        for (const pe::SectionHeader& other : sections)
            if (other.virtualAddress > s.virtualAddress)
                capacity =
                    std::min<std::uint64_t>(capacity, other.virtualAddress - s.virtualAddress);
    } else {
        capacity = std::min<std::uint64_t>(capacity, std::min(dir.size, s.MappedSize()));
    }
    if (rawOk && treeSize <= capacity)
        return ImagePlan{Placement::kInPlace, r, dir.rva, treeSize, dedicated};
    return PlanAppend(image, treeSize);
}

Result<std::vector<std::uint8_t>> RewriteImage(const pe::PeImage& image, const ResourceTree& tree) {
    auto treeSize = ResourceSectionSize(tree);
    if (!treeSize)
        return std::move(treeSize.error());
    auto plan = PlanImage(image, *treeSize);
    if (!plan)
        return std::move(plan.error());
    Bytes in = image.FileBytes();
    if (plan->placement == Placement::kUnchanged)
        return std::vector<std::uint8_t>(in.begin(), in.end());
    auto content = BuildResourceSection(tree, plan->rva);
    if (!content)
        return std::move(content.error());

    const std::uint32_t fileAlign = image.FileAlignment();
    const std::uint32_t sectionAlign = image.SectionAlignment();
    const pe::HeaderOffsets& at = image.Offsets();
    std::vector<pe::SectionHeader> sections = image.Sections();
    const std::uint64_t oldDataEnd = image.EndOfSectionData();
    const std::uint64_t oldInitData = InitializedDataSize(sections);
    const std::uint64_t size = content->size();

    std::vector<std::uint8_t> out;
    out.reserve(in.size() + size + 2 * fileAlign);
    Narrowing narrow("image");
    std::optional<pe::DataDirectory> movedRelocs;

    switch (plan->placement) {
    case Placement::kResizeLast:
    case Placement::kMoveReloc: {
        pe::SectionHeader& s = sections[plan->section];
        Append(out, in, 0, s.pointerToRawData);
        out.insert(out.end(), content->begin(), content->end());
        PadTo(out, fileAlign);
        s.virtualSize = narrow.U32(size, "section size");
        s.sizeOfRawData = narrow.U32(out.size() - s.pointerToRawData, "section raw size");
        if (plan->placement == Placement::kMoveReloc) {
            pe::SectionHeader& relocs = sections[plan->section + 1];
            std::uint32_t oldRva = relocs.virtualAddress;
            std::uint64_t from = relocs.pointerToRawData;
            relocs.pointerToRawData = narrow.U32(out.size(), "relocations file offset");
            Append(out, in, from, relocs.sizeOfRawData);
            PadTo(out, fileAlign);
            relocs.virtualAddress =
                narrow.U32(Align(s.virtualAddress + size, sectionAlign), "relocations RVA");
            pe::DataDirectory d = image.Directory(pe::kBaseRelocDirectory);
            if (d.rva != 0)
                movedRelocs = pe::DataDirectory{d.rva - oldRva + relocs.virtualAddress, d.size};
        }
        break;
    }
    case Placement::kInPlace: {
        Append(out, in, 0, oldDataEnd);
        pe::SectionHeader& s = sections[plan->section];
        std::uint64_t offset = std::uint64_t{s.pointerToRawData} + (plan->rva - s.virtualAddress);
        pe::DataDirectory old = image.Directory(pe::kResourceDirectory);
        // Zero what the old tree occupied beyond the new one.
        std::uint64_t oldEnd = std::min<std::uint64_t>(offset + old.size, RawEnd(s));
        oldEnd = std::min<std::uint64_t>(oldEnd, out.size());
        if (plan->dedicated) {
            oldEnd = std::min<std::uint64_t>(RawEnd(s), out.size());
            s.virtualSize = narrow.U32(std::max<std::uint64_t>(size, 1), "section size");
        }
        std::copy(content->begin(), content->end(),
                  out.begin() + static_cast<std::ptrdiff_t>(offset));
        if (oldEnd > offset + size)
            std::fill(out.begin() + static_cast<std::ptrdiff_t>(offset + size),
                      out.begin() + static_cast<std::ptrdiff_t>(oldEnd), 0);
        break;
    }
    case Placement::kAppend: {
        Append(out, in, 0, oldDataEnd);
        PadTo(out, fileAlign);
        pe::SectionHeader s;
        std::memcpy(s.name.data(), ".rsrc\0\0\0", 8);
        s.virtualAddress = plan->rva;
        s.virtualSize = narrow.U32(size, "section size");
        s.pointerToRawData = narrow.U32(out.size(), "section file offset");
        out.insert(out.end(), content->begin(), content->end());
        PadTo(out, fileAlign);
        s.sizeOfRawData = narrow.U32(out.size() - s.pointerToRawData, "section raw size");
        s.characteristics = kScnInitializedData | kScnRead;
        sections.push_back(s);
        break;
    }
    case Placement::kUnchanged:
        break;
    }

    // Appended data moves as one block; a certificate in it is dropped, since
    // the new content makes its signature invalid.
    const std::uint64_t newDataEnd = out.size();
    pe::DataDirectory cert = image.Directory(pe::kSecurityDirectory);
    std::uint64_t certStart = in.size(), certEnd = in.size();
    if (cert.size != 0 && cert.rva >= oldDataEnd && InBounds(cert.rva, cert.size, in.size())) {
        certStart = cert.rva;
        certEnd = std::uint64_t{cert.rva} + cert.size;
    }
    Append(out, in, oldDataEnd, certStart - oldDataEnd);
    Append(out, in, certEnd, in.size() - certEnd);
    if (out.size() > kMaxFile)
        return BadImage("the file would outgrow 4 GiB");

    if (out.size() < at.fileHeader + 20)
        return BadImage("section data overlaps the headers");
    // The COFF symbol table, where a linker left one, lives in the appended data.
    std::size_t symbolsAt = at.fileHeader + 8;
    std::uint32_t symbols = LoadU32LE(&out[symbolsAt]);
    if (symbols >= oldDataEnd && symbols < in.size()) {
        std::uint64_t moved = symbols < certStart ? symbols - oldDataEnd + newDataEnd
                              : symbols >= certEnd
                                  ? symbols - (certEnd - certStart) - oldDataEnd + newDataEnd
                                  : 0;
        StoreU32LE(&out[symbolsAt], narrow.U32(moved, "symbol table offset"));
    }

    std::size_t headersEnd =
        std::max({at.sectionTable + sections.size() * pe::kSectionHeaderSize,
                  at.dataDirectories + image.DirectoryCount() * 8, at.checksum + 4,
                  at.sizeOfImage + 4, at.sizeOfInitializedData + 4, at.fileHeader + 20});
    if (out.size() < headersEnd)
        return BadImage("section data overlaps the headers");
    for (std::size_t i = 0; i < sections.size(); ++i)
        PutSectionHeader(out, at.sectionTable + i * pe::kSectionHeaderSize, sections[i]);
    StoreU16LE(&out[at.fileHeader + 2], narrow.U16(sections.size(), "section count"));
    auto putDirectory = [&](std::size_t index, pe::DataDirectory d) {
        if (index < image.DirectoryCount()) {
            StoreU32LE(&out[at.dataDirectories + index * 8], d.rva);
            StoreU32LE(&out[at.dataDirectories + index * 8 + 4], d.size);
        }
    };
    putDirectory(pe::kResourceDirectory, {plan->rva, narrow.U32(size, "resource directory size")});
    if (movedRelocs)
        putDirectory(pe::kBaseRelocDirectory, *movedRelocs);
    if (image.Directory(pe::kSecurityDirectory).rva || image.Directory(pe::kSecurityDirectory).size)
        putDirectory(pe::kSecurityDirectory, {0, 0});

    std::uint64_t imageEnd = ImageEnd(sections, sectionAlign, image.SizeOfHeaders());
    if (imageEnd > kMaxFile)
        return BadImage("the image would outgrow 4 GiB");
    StoreU32LE(&out[at.sizeOfImage], narrow.U32(imageEnd, "size of image"));
    std::int64_t initData = std::int64_t{image.SizeOfInitializedData()} +
                            static_cast<std::int64_t>(InitializedDataSize(sections)) -
                            static_cast<std::int64_t>(oldInitData);
    initData = std::clamp<std::int64_t>(initData, 0, std::numeric_limits<std::uint32_t>::max());
    StoreU32LE(&out[at.sizeOfInitializedData], static_cast<std::uint32_t>(initData));
    if (auto fault = narrow.FirstFault())
        return *fault;
    if (image.CheckSum() != 0)
        StoreU32LE(&out[at.checksum], pe::ComputeChecksum(out, at.checksum));
    return out;
}

} // namespace tervane::update
