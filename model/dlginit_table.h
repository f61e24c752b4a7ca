#pragma once
// The process-wide table of dialog init data, by the identifier text of the
// dialog they belong to: the one link between two resources of the model.
#include <map>
#include <memory>
#include <string>

namespace tervane {

class CDlgInitData;

class CDlgInitTable {
public:
    static CDlgInitTable& GetInstance();
    void Clear() { entries_.clear(); }
    bool Empty() const { return entries_.empty(); }

private:
    std::map<std::string, std::shared_ptr<CDlgInitData>> entries_;
};

} // namespace tervane
