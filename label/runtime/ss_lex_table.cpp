#include "label/runtime/ss_lex_table.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>
#include <new>
#include <tuple>

#include "label/runtime/resource_image.h"
#include "label/runtime/ss_lex_lexeme.h"
#include "platform/byte_reader.h"

namespace tervane {

namespace {

constexpr std::uint32_t kFileHeaderSize = 36;
constexpr std::uint32_t kListHeaderSize = 88;
constexpr std::uint32_t kFinalStateSize = 28;
constexpr std::uint32_t kTransitionSize = 12;
constexpr std::uint32_t kKeywordHeaderSize = 40;
constexpr std::uint32_t kKeywordEntrySize = 41;

[[noreturn]] void InvalidTable(const std::string& name) {
    SSExceptionPresent::raise(ss_error::kInvalidTable, "SSLex0104e: Invalid table, %s",
                              name.c_str());
}

std::uint32_t Word(Bytes bytes, std::size_t offset) {
    return LoadU32LE(bytes.data() + offset);
}

// A null-terminated text at offset inside the image; damage if unterminated.
template <typename Char>
std::basic_string<Char> TextAt(Bytes image, std::uint32_t offset, const std::string& name) {
    std::basic_string<Char> text;
    for (std::size_t at = offset;; at += sizeof(Char)) {
        if (!InBounds(at, sizeof(Char), image.size()))
            InvalidTable(name);
        Char c = sizeof(Char) == 1 ? static_cast<Char>(image[at])
                                   : static_cast<Char>(image[at] | (image[at + 1] << 8));
        if (c == 0)
            return text;
        text.push_back(c);
    }
}

SSLexKeywordTable LoadKeywordTable(Bytes image, const std::string& name) {
    std::uint32_t count = Word(image, 4);
    if (count > (image.size() - kKeywordHeaderSize) / kKeywordEntrySize)
        InvalidTable(name);
    SSLexKeywordTable table;
    table.entries.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        std::size_t at = kKeywordHeaderSize + std::size_t{i} * kKeywordEntrySize;
        SSLexKeyword& entry = table.entries.emplace_back();
        entry.token = Word(image, at);
        entry.ignoreCase = image[at + 4] != 0;
        entry.narrowText = TextAt<char>(image, Word(image, at + 5), name);
        entry.userValue = Word(image, at + 13);
        entry.wideText = TextAt<char16_t>(image, Word(image, at + 17), name);
    }
    return table;
}

} // namespace

SSLexExpressionList SSLexTableLoader::loadList(Bytes bytes, const std::string& name,
                                               std::uint32_t* size) {
    if (bytes.size() < kListHeaderSize)
        InvalidTable(name);
    std::uint32_t magic = Word(bytes, 0);
    std::uint32_t imageSize = Word(bytes, 4);
    if ((magic != 1 && magic != SSLexTableHeader::kMagic) || imageSize < kListHeaderSize ||
        imageSize > bytes.size())
        InvalidTable(name);
    Bytes image = bytes.first(imageSize);
    std::uint32_t stateCount = Word(image, 40);
    std::uint32_t rowIndexOffset = Word(image, 48);
    std::uint32_t finalsOffset = Word(image, 52);
    // Counts are checked against what the image holds before anything is
    // multiplied or allocated; a list without states has no start state.
    if (stateCount == 0 || stateCount > imageSize / 4 ||
        !InBounds(finalsOffset, std::uint64_t{stateCount} * kFinalStateSize, imageSize) ||
        !InBounds(rowIndexOffset, std::uint64_t{stateCount} * 4, imageSize))
        InvalidTable(name);

    SSLexExpressionList list;
    try {
        list.image_.assign(image.begin(), image.end());
        list.finals_.resize(stateCount);
        list.rows_.resize(stateCount);
    } catch (const std::bad_alloc&) {
        throw SSExceptionOutOfStorage();
    }
    std::vector<std::uint32_t> rowOffsets(stateCount);
    for (std::uint32_t s = 0; s < stateCount; ++s) {
        std::size_t at = finalsOffset + std::size_t{s} * kFinalStateSize;
        list.finals_[s] = {Word(image, at), Word(image, at + 4), Word(image, at + 8),
                           Word(image, at + 12), Word(image, at + 16)};
        std::uint32_t rowOffset = Word(image, rowIndexOffset + std::size_t{s} * 4);
        if (!InBounds(rowOffset, 4, imageSize))
            InvalidTable(name);
        std::uint32_t count = Word(image, rowOffset);
        if (!InBounds(rowOffset + 4ull, std::uint64_t{count} * kTransitionSize, imageSize))
            InvalidTable(name);
        list.rows_[s] = {rowOffset + 4, count};
        rowOffsets[s] = rowOffset;
    }
    // A move to a state the list does not have would leave the table. Each
    // stored row is checked once, however many states share it.
    std::sort(rowOffsets.begin(), rowOffsets.end());
    rowOffsets.erase(std::unique(rowOffsets.begin(), rowOffsets.end()), rowOffsets.end());
    for (std::uint32_t rowOffset : rowOffsets) {
        std::uint32_t count = Word(image, rowOffset);
        for (std::size_t i = 0, at = rowOffset + 4ull; i < count; ++i, at += kTransitionSize)
            if (Word(image, at + 8) >= stateCount)
                InvalidTable(name);
    }
    list.buildDirect();
    *size = imageSize;
    return list;
}

void SSLexExpressionList::buildDirect() {
    constexpr std::size_t kMaxStates = 4096;
    constexpr std::uint64_t kMaxWork = std::uint64_t{1} << 22;
    if (rows_.size() > kMaxStates)
        return;
    // Each answer searches at most the whole row.
    std::uint64_t work = 0;
    for (const Row& row : rows_)
        work += (std::uint64_t{row.count} + 1) * kDirect;
    if (work > kMaxWork)
        return;
    try {
        direct_.resize(rows_.size() * kDirect);
    } catch (const std::bad_alloc&) {
        direct_.clear();
        return;
    }
    for (std::uint32_t s = 0; s < rows_.size(); ++s)
        for (std::uint32_t c = 0; c < kDirect; ++c)
            direct_[std::size_t{s} * kDirect + c] = searchRow(s, c);
    buildLoops();
}

bool SSLexExpressionList::findStops(std::uint32_t state, std::vector<std::uint16_t>& stops) const {
    stops.clear();
    const std::uint32_t* row = direct_.data() + std::size_t{state} * kDirect;
    for (std::uint32_t c = 0; c < kDirect; ++c) {
        if (row[c] == state && c != 10)
            continue;
        if (stops.size() == kLoopStops)
            return false;
        stops.push_back(static_cast<std::uint16_t>(c));
    }
    // Every character from kDirect up must stay, as the row search finds it:
    // the first range that ends at or above a character decides.
    std::uint32_t covered = kDirect;
    for (std::uint32_t i = 0; i < rows_[state].count && covered <= 0xFFFF; ++i) {
        const SSLexTransition move = rowEntry(state, i);
        if (move.high < covered)
            continue;
        if (move.low > covered || move.next != state)
            return false;
        covered = move.high >= 0xFFFF ? 0x10000 : move.high + 1;
    }
    return covered > 0xFFFF;
}

void SSLexExpressionList::buildLoops() {
    // Without them every loop is run through a character at a time.
    try {
        std::vector<std::uint16_t> stops;
        loops_.assign(rows_.size(), 0);
        for (std::uint32_t s = 0; s < rows_.size(); ++s) {
            if (!findStops(s, stops))
                continue;
            // Repeats of the first fill the unused places and change nothing.
            stops.resize(kLoopStops, stops.front());
            const std::size_t at = stops_.size();
            for (std::uint16_t stop : stops)
                stops_.insert(stops_.end(), kStopWidth, stop);
            loops_[s] = static_cast<std::uint32_t>(at / (kLoopStops * kStopWidth) + 1);
        }
    } catch (const std::bad_alloc&) {
        loops_.clear();
        stops_.clear();
    }
}

std::shared_ptr<const SSLexTable::Data> SSLexTableLoader::load(Bytes image,
                                                               const std::string& name) {
    if (image.size() < kFileHeaderSize)
        InvalidTable(name);
    auto data = std::make_shared<SSLexTable::Data>();
    data->header = {Word(image, 0), Word(image, 4), Word(image, 8)};
    if (data->header.magic != 0 && data->header.magic != SSLexTableHeader::kMagic)
        InvalidTable(name);
    std::size_t at = kFileHeaderSize;
    // Every list takes at least its 88-byte head, which bounds the count.
    if (data->header.listCount > (image.size() - at) / kListHeaderSize)
        InvalidTable(name);
    data->lists.reserve(data->header.listCount);
    for (std::uint32_t i = 0; i < data->header.listCount; ++i) {
        std::uint32_t size = 0;
        data->lists.push_back(loadList(image.subspan(at), name, &size));
        at += size;
    }
    if (data->header.keywordTableCount > (image.size() - at) / kKeywordHeaderSize)
        InvalidTable(name);
    for (std::uint32_t i = 0; i < data->header.keywordTableCount; ++i) {
        if (!InBounds(at, kKeywordHeaderSize, image.size()))
            InvalidTable(name);
        std::uint32_t size = Word(image, at);
        if (size < kKeywordHeaderSize || !InBounds(at, size, image.size()))
            InvalidTable(name);
        data->keywords.push_back(LoadKeywordTable(image.subspan(at, size), name));
        at += size;
    }
    return data;
}

SSLexTable::SSLexTable(Bytes image, const std::string& name)
    : data_(SSLexTableLoader::load(image, name)) {}

SSLexTable::SSLexTable(HMODULE module, const ResName& name, const ResName& type) {
    auto loaded =
        LoadTableResource<Data>(module, name, type, [](Bytes image, const std::string& text) {
            return SSLexTableLoader::load(image, text);
        });
    if (!loaded)
        raise(ss_error::kLexResourceNotFound, "SSLex0108e: Resource not found, %s",
              name.ToString().c_str());
    data_ = std::move(loaded);
}

const SSLexExpressionList* SSLexTable::expressionList(std::uint32_t index) const {
    if (index >= data_->lists.size())
        raise(ss_error::kInvalidListIndex, "SSLex0106e: Invalid expression list index, %ld",
              static_cast<long>(index));
    return &data_->lists[index];
}

void SSLexTable::keywordLookup(std::uint32_t index, SSLexLexeme& lexeme,
                               std::uint32_t consumerType) const {
    if (index >= data_->keywords.size())
        raise(ss_error::kInvalidKeywordIndex, "SSLex0110e: Invalid keyword index, %ld",
              static_cast<long>(index));
    const auto& entries = data_->keywords[index].entries;
    bool wide = consumerType == 1;
    std::size_t low = 0, high = entries.size();
    while (high > low) {
        std::size_t mid = low + (high - low) / 2;
        const SSLexKeyword& entry = entries[mid];
        if (entry.ignoreCase) {
            // Lower-cased in place as the C locale does: ASCII letters only.
            std::uint8_t* text = lexeme.text();
            for (std::uint32_t i = 0; i < lexeme.length(); i += wide ? 2 : 1)
                if (text[i] >= 'A' && text[i] <= 'Z' && (!wide || text[i + 1] == 0))
                    text[i] = static_cast<std::uint8_t>(text[i] - 'A' + 'a');
        }
        int order = wide ? lexeme.wideText().compare(entry.wideText)
                         : lexeme.narrowText().compare(entry.narrowText);
        if (order < 0) {
            if (low == mid)
                return;
            high = mid;
        } else if (order > 0) {
            if (high == mid + 1)
                return;
            low = mid;
        } else {
            lexeme.setToken(entry.token);
            lexeme.setUserValue(entry.userValue);
            return;
        }
    }
}

} // namespace tervane
