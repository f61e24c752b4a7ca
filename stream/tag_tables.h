#pragma once
// The legal order of the document's tags and the group each tag belongs to.
// Keys are bare tag names; a closing tag is written with a leading '/'.
#include <map>
#include <string>
#include <vector>

namespace tervane {

using TagTable = std::map<std::string, std::vector<std::string>>;

// What may follow each tag, in the order the lists are kept.
TagTable BuildSuccessorTable();
// The members of each group.
TagTable BuildGroupTable();

} // namespace tervane
