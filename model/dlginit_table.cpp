#include "model/dlginit_table.h"

#include "frame/resource.h"
#include "model/read_failure.h"

namespace tervane {

void CDlgInitData::FlushPending() {
    const WORD control = static_cast<WORD>(currentControl);
    records[control] = std::move(pendingRecords);
    strings[control] = std::move(pendingStrings);
    pendingRecords.clear();
    pendingStrings.clear();
}

void CDlgInitData::Parse(Bytes data, std::size_t size) {
    ByteReader reader(data.first(std::min(size, data.size())));
    currentControl = -1;
    hasPending = 0;
    while (reader.Remaining() > 2) {
        DlgInitRecord record;
        const std::size_t start = reader.Offset();
        auto id = reader.ReadU16LE();
        auto message = reader.ReadU16LE();
        auto low = reader.ReadU16LE();
        auto high = reader.ReadU16LE();
        if (!high)
            ThrowCorrupted(start, "record");
        const std::size_t at = reader.Offset();
        auto bytes = reader.ReadBytes(*low);
        if (!bytes)
            ThrowCorrupted(at, "data");
        record = {*id, *message, *low, *high, std::string(bytes->begin(), bytes->end())};

        // A control's records that are not next to each other do not add up:
        // the later run replaces the earlier one.
        if (record.controlId != currentControl && currentControl != -1)
            FlushPending();
        if (record.controlId != currentControl || !hasPending) {
            pendingRecords.clear();
            pendingStrings.clear();
            currentControl = record.controlId;
        }
        pendingStrings.push_back(record.text);
        pendingRecords.push_back(std::move(record));
        hasPending = 1;
        ++recordCount;
    }
    // Fewer than two bytes left leave the word as 0.
    endWord = reader.ReadU16LE().value_or(0);
    if (hasPending)
        FlushPending();
}

NarrowTextList CDlgInitData::GetStrings(WORD controlId) const {
    auto it = strings.find(controlId);
    return it == strings.end() ? NarrowTextList{} : it->second;
}

void CDlgInitData::SetStrings(WORD controlId, NarrowTextList list) {
    strings[controlId] = std::move(list);
}

void CDlgInitData::Rebuild() {
    buffer.clear();
    for (const auto& [control, list] : records) {
        const NarrowTextList& texts = strings[control];
        for (std::size_t i = 0; i < list.size(); ++i) {
            const DlgInitRecord& record = list[i];
            const bool translated =
                i < texts.size() && !texts[i].empty() && texts[i] != record.text;
            buffer.WriteWord(record.controlId);
            buffer.WriteWord(record.message);
            if (translated) {
                // A translation has no zero byte of its own; the record's text keeps its.
                buffer.WriteWord(buffer.Narrowed(texts[i].size() + 1, "a list box text"));
                buffer.WriteWord(0);
                buffer.WriteNarrowText(texts[i]);
                buffer.WriteByte(0);
            } else {
                buffer.WriteWord(record.lengthLow);
                buffer.WriteWord(0);
                buffer.WriteNarrowText(record.text);
            }
        }
    }
    buffer.WriteWord(0);
}

CDlgInitTable& CDlgInitTable::GetInstance() {
    // One conversion runs at a time on a thread.
    thread_local CDlgInitTable table;
    return table;
}

void CDlgInitTable::Store(const std::string& identifier, std::unique_ptr<CDlgInitData> data) {
    entries_[identifier] = std::move(data);
}

CDlgInitData* CDlgInitTable::Find(const std::string& identifier) const {
    auto it = entries_.find(identifier);
    return it == entries_.end() ? nullptr : it->second.get();
}

NarrowTextList CDlgInitTable::GetItems(const std::string& identifier, WORD controlId) {
    CDlgInitData* data = Find(identifier);
    if (data == nullptr)
        return {};
    language = data->language;
    return data->GetStrings(controlId);
}

void CDlgInitTable::SetItems(const std::string& identifier, WORD controlId, NarrowTextList list) {
    if (CDlgInitData* data = Find(identifier))
        data->SetStrings(controlId, std::move(list));
}

} // namespace tervane
