#pragma once
// Dialog init data: the records of type 240 that fill a dialog's combo and list
// boxes, and the process-wide table of them by the identifier text of the
// dialog they belong to, the one link between two resources of the model.
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "model/resource_buffer.h"
#include "platform/byte_reader.h"
#include "platform/win32/types.h"

namespace tervane {

struct DlgInitRecord {
    WORD controlId = 0;
    WORD message = 0;
    WORD lengthLow = 0;
    WORD lengthHigh = 0;
    std::string text; // all data bytes, zero bytes included
};

using NarrowTextList = std::vector<std::string>;

class CDlgInitData {
public:
    // Fills the maps from a run of records. Throws CParserException when a
    // record runs past the data.
    void Parse(Bytes data, std::size_t size);
    NarrowTextList GetStrings(WORD controlId) const;
    void SetStrings(WORD controlId, NarrowTextList list);
    // Writes the records by ascending control id, with the strings that differ
    // from the source in place of theirs, and a closing word of 0. A string
    // too long for its 16-bit length raises TervaneFilterException.
    void Rebuild();

    long recordCount = 0;
    std::map<WORD, std::vector<DlgInitRecord>> records;
    std::map<WORD, NarrowTextList> strings;
    long currentControl = -1;
    WORD endWord = 0;
    std::vector<DlgInitRecord> pendingRecords;
    NarrowTextList pendingStrings;
    long hasPending = 0;
    CResourceBuffer buffer;
    WORD language = 0;

private:
    void FlushPending();
};

class CDlgInitTable {
public:
    static CDlgInitTable& GetInstance();

    // A second resource of the same identifier takes the place of the first.
    void Store(const std::string& identifier, std::unique_ptr<CDlgInitData> data);
    CDlgInitData* Find(const std::string& identifier) const;
    // The strings of a dialog's control, empty if the dialog has no entry;
    // sets language to the entry's.
    NarrowTextList GetItems(const std::string& identifier, WORD controlId);
    // Does nothing for a dialog without an entry: nothing could take the list.
    void SetItems(const std::string& identifier, WORD controlId, NarrowTextList list);
    void Clear() { entries_.clear(); }
    bool Empty() const { return entries_.empty(); }

    WORD language = 0;

private:
    // std::string orders by unsigned bytes, as the multi-byte comparison does.
    std::map<std::string, std::unique_ptr<CDlgInitData>> entries_;
};

} // namespace tervane
