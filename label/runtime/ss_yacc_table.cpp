#include "label/runtime/ss_yacc_table.h"

#include <algorithm>
#include <new>

#include "label/runtime/resource_image.h"
#include "platform/byte_reader.h"

namespace tervane {

namespace {

constexpr std::uint32_t kHeaderSize = 20;
constexpr std::uint32_t kRowHeadSize = 12;
constexpr std::uint32_t kEntrySize = 8;

[[noreturn]] void ReadError(const std::string& name) {
    SSExceptionPresent::raise(ss_error::kErrorReadingTable, "SSYacc0111e: Error reading table, %s",
                              name.c_str());
}

std::uint32_t Word(Bytes bytes, std::size_t offset) {
    return LoadU32LE(bytes.data() + offset);
}

struct RowPlace {
    std::uint32_t flags = 0;
    std::size_t entries = 0; // offset of the first action entry
    std::uint32_t actionCount = 0;
    std::uint32_t gotoCount = 0;
    std::size_t end = 0;
};

RowPlace ReadRow(Bytes image, std::size_t offset, const std::string& name) {
    if (!InBounds(offset, kRowHeadSize, image.size()))
        ReadError(name);
    RowPlace row;
    row.flags = Word(image, offset);
    row.entries = offset + kRowHeadSize;
    if (row.flags & SSYaccRow::headOnly) {
        row.end = row.entries;
        return row;
    }
    row.gotoCount = Word(image, offset + 4);
    row.actionCount = Word(image, offset + 8);
    std::uint64_t entries = std::uint64_t{row.gotoCount} + row.actionCount +
                            ((row.flags & SSYaccRow::hasError) ? 1 : 0);
    if (!InBounds(row.entries, entries * kEntrySize, image.size()))
        ReadError(name);
    row.end = row.entries + entries * kEntrySize;
    return row;
}

std::shared_ptr<const SSYaccTable::Data> Prepare(Bytes image, const std::string& name) {
    if (image.size() < 4)
        ReadError(name);
    std::uint32_t magic = Word(image, 0);
    if (magic != 0 && magic != 1 && magic != SSYaccTableHeader::kMagic)
        ReadError(name);
    if (image.size() < kHeaderSize)
        ReadError(name);
    auto data = std::make_shared<SSYaccTable::Data>();
    SSYaccTableHeader& header = data->header;
    header.magic = magic;
    header.productionCount = LoadU16LE(image.data() + 4);
    header.lookaheadTableCount = LoadU16LE(image.data() + 6);
    header.stateCount = Word(image, 8);
    header.firstRowOffset = Word(image, 12);
    header.productionsOffset = Word(image, 16);
    bool older = magic == 0;
    // The parse starts in state 0, so a table needs one; every row takes at
    // least its head, which bounds the count before anything is allocated.
    if (header.stateCount == 0 || header.stateCount > image.size() / kRowHeadSize)
        ReadError(name);
    if (!older && !InBounds(kHeaderSize, std::uint64_t{header.stateCount} * 4, image.size()))
        ReadError(name);
    if (!InBounds(header.productionsOffset, std::uint64_t{header.productionCount} * 8,
                  image.size()))
        ReadError(name);

    for (std::uint32_t p = 0; p < header.productionCount; ++p) {
        std::size_t at = header.productionsOffset + std::size_t{p} * 8;
        data->productions.push_back({Word(image, at), Word(image, at + 4)});
    }

    try {
        data->image.assign(image.begin(), image.end());
        data->rows.resize(header.stateCount);
    } catch (const std::bad_alloc&) {
        throw SSExceptionOutOfStorage();
    }
    std::vector<RowPlace> places;
    places.reserve(header.stateCount);
    std::size_t next = header.firstRowOffset;
    for (std::uint32_t s = 0; s < header.stateCount; ++s) {
        std::size_t offset = older ? next : Word(image, kHeaderSize + std::size_t{s} * 4);
        const RowPlace& place = places.emplace_back(ReadRow(image, offset, name));
        next = place.end;
        SSYaccRow& row = data->rows[s];
        row.flags = place.flags;
        row.actionCount = place.actionCount;
        row.gotoCount = place.gotoCount;
        row.entries = data->image.data() + place.entries;
        std::size_t errorAt =
            place.entries + (std::size_t{place.actionCount} + place.gotoCount) * 8;
        if (!(place.flags & SSYaccRow::headOnly) && (place.flags & SSYaccRow::hasError))
            row.errorState = Word(image, errorAt) & kActionArgumentMask;
        else
            row.flags &= ~static_cast<std::uint32_t>(SSYaccRow::hasError);
    }

    // Every state, production and automaton that an entry names must exist,
    // so that the parse never looks outside the table. Rows that several
    // states share are checked once.
    std::vector<std::size_t> checked;
    for (const RowPlace& place : places)
        checked.push_back(place.entries);
    std::sort(checked.begin(), checked.end());
    checked.erase(std::unique(checked.begin(), checked.end()), checked.end());
    for (std::uint32_t s = 0; s < header.stateCount; ++s) {
        const SSYaccRow& row = data->rows[s];
        auto first = std::lower_bound(checked.begin(), checked.end(), places[s].entries);
        if (first == checked.end() || *first != places[s].entries)
            continue; // this row's bytes were checked through an earlier state
        checked.erase(first);
        for (std::uint32_t i = 0; i < row.actionCount; ++i) {
            SSYaccEntry entry = row.action(i);
            std::uint32_t argument = entry.value & kActionArgumentMask;
            switch (ActionKind(entry.value)) {
            case SSYaccAction::shift:
                if (argument >= header.stateCount)
                    ReadError(name);
                break;
            case SSYaccAction::reduce:
                if (argument >= header.productionCount)
                    ReadError(name);
                break;
            case SSYaccAction::lookahead:
                if (argument >= header.lookaheadTableCount)
                    ReadError(name);
                break;
            default:
                break;
            }
        }
        for (std::uint32_t i = 0; i < row.gotoCount; ++i)
            if ((row.gotoEntry(i).value & kActionArgumentMask) >= header.stateCount)
                ReadError(name);
    }
    for (const SSYaccRow& row : data->rows)
        if ((row.flags & SSYaccRow::hasError) && row.errorState >= header.stateCount)
            ReadError(name);

    data->buildSlots();

    std::size_t at = places.back().end;
    for (std::uint32_t i = 0; i < header.lookaheadTableCount; ++i) {
        std::uint32_t size = 0;
        data->lookaheads.push_back(SSLexTableLoader::loadList(image.subspan(at), name, &size));
        at += size;
    }
    return data;
}

} // namespace

std::uint32_t SSYaccTable::Data::searchAction(std::uint32_t state, std::uint32_t token) const {
    const SSYaccRow& row = rows[state];
    for (std::uint32_t i = 0; i < row.actionCount; ++i) {
        const SSYaccEntry entry = row.action(i);
        if (entry.symbol == token)
            return entry.value;
    }
    return 0;
}

std::uint32_t SSYaccTable::Data::searchGoto(std::uint32_t state, std::uint32_t symbol) const {
    const SSYaccRow& row = rows[state];
    for (std::uint32_t i = 0; i < row.gotoCount; ++i) {
        const SSYaccEntry entry = row.gotoEntry(i);
        if (entry.symbol == symbol)
            return entry.value & kActionArgumentMask;
    }
    return kNoGoto;
}

void SSYaccTable::Data::buildSlots() {
    constexpr std::size_t kMaxStates = 1024;
    constexpr std::uint64_t kMaxWork = std::uint64_t{1} << 22;
    if (rows.size() > kMaxStates)
        return;
    std::uint64_t work = 0;
    for (const SSYaccRow& row : rows)
        work += std::uint64_t{row.actionCount} + row.gotoCount;
    if (work > kMaxWork)
        return;
    try {
        actionSlots.assign(rows.size() * kActionSlots, 0);
        actionSteps.assign(rows.size() * kActionSlots, 0);
        gotoSlots.assign(rows.size() * kGotoSlots, 0);
    } catch (const std::bad_alloc&) {
        actionSlots.clear();
        actionSteps.clear();
        gotoSlots.clear();
        return;
    }
    // From the back, so that the first entry for a symbol is the one kept.
    for (std::uint32_t s = 0; s < rows.size(); ++s) {
        const SSYaccRow& row = rows[s];
        std::uint32_t* actions = actionSlots.data() + std::size_t{s} * kActionSlots;
        for (std::uint32_t i = row.actionCount; i-- > 0;) {
            const SSYaccEntry entry = row.action(i);
            if (const std::uint32_t slot = ActionSlot(entry.symbol); slot < kActionSlots)
                actions[slot] = entry.value;
        }
        std::uint32_t* gotos = gotoSlots.data() + std::size_t{s} * kGotoSlots;
        for (std::uint32_t i = row.gotoCount; i-- > 0;) {
            const SSYaccEntry entry = row.gotoEntry(i);
            if (const std::uint32_t slot = entry.symbol - kFirstNonTerminal; slot < kGotoSlots)
                gotos[slot] = (entry.value & kActionArgumentMask) + 1;
        }
    }
    for (std::size_t i = 0; i < actionSlots.size(); ++i)
        actionSteps[i] = ActionStep(actionSlots[i]);
}

SSYaccTable::SSYaccTable(Bytes image, const std::string& name) : data_(Prepare(image, name)) {}

SSYaccTable::SSYaccTable(HMODULE module, const ResName& name, const ResName& type) {
    auto loaded = LoadTableResource<Data>(module, name, type, Prepare);
    if (!loaded)
        raise(ss_error::kYaccResourceNotFound, "SSYacc0115e: Resource not found, %s",
              name.ToString().c_str());
    data_ = std::move(loaded);
}

} // namespace tervane
