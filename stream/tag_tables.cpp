#include "stream/tag_tables.h"

namespace tervane {

namespace {
// The controls that may follow any closed control of a dialog or group box.
const std::vector<std::string> kAfterControl = {"label",    "button",   "radiobutton", "checkbox",
                                                "groupbox", "combobox", "/items"};
} // namespace

TagTable BuildSuccessorTable() {
    return TagTable{
        {"resources", {"dialogs", "menus", "stringtable", "versioninfo"}},
        {"menus", {"menu"}},
        {"/menus", {"dialogs", "/resources", "stringtable", "versioninfo"}},
        {"menu", {"menu", "item", "/menu"}},
        {"/menu", {"/menus", "menu", "item", "/menu"}},
        {"item", {"shortcut", "/item"}},
        {"/item", {"item", "/items", "separator", "/menu", "menu", "/combobox"}},
        {"separator", {"item", "separator", "/menu"}},
        {"shortcut", {"/shortcut"}},
        {"/shortcut", {"/item"}},
        {"dialogs", {"dialog"}},
        {"/dialogs", {"/resources", "stringtable", "versioninfo"}},
        {"dialog", {"caption", "items"}},
        {"/dialog", {"/dialogs", "dialog"}},
        {"caption", {"/caption"}},
        {"/caption", {"/dialog", "/groupbox", "items"}},
        {"items", {"label", "button", "radiobutton", "checkbox", "groupbox", "combobox", "item"}},
        {"/items", {"/dialog", "/combobox", "/groupbox"}},
        {"label", {"/label"}},
        {"/label", kAfterControl},
        {"button", {"/button"}},
        {"/button", kAfterControl},
        {"checkbox", {"/checkbox"}},
        {"/checkbox", kAfterControl},
        {"radiobutton", {"/radiobutton"}},
        {"/radiobutton", kAfterControl},
        {"combobox", {"items", "item"}},
        {"/combobox", kAfterControl},
        {"groupbox", {"caption", "items"}},
        {"/groupbox", kAfterControl},
        {"stringtable", {"string"}},
        {"string", {"/string"}},
        {"/string", {"string", "/stringtable"}},
        {"/stringtable", {"versioninfo", "/resources"}},
        {"versioninfo",
         {"comments", "legalcopyright", "productversion", "productname", "legaltrademarks"}},
        {"/versioninfo", {"/resources"}},
        {"comments", {"/comments"}},
        {"/comments",
         {"/resources", "legalcopyright", "productversion", "productname", "legaltrademarks",
          "/versioninfo"}},
        {"legalcopyright", {"/legalcopyright"}},
        {"/legalcopyright",
         {"/resources", "productversion", "productname", "legaltrademarks", "/versioninfo"}},
        {"productversion", {"/productversion"}},
        {"/productversion", {"/resources", "productname", "legaltrademarks", "/versioninfo"}},
        {"productname", {"/productname"}},
        {"/productname", {"/resources", "legaltrademarks", "/versioninfo"}},
        {"legaltrademarks", {"/legaltrademarks"}},
        {"/legaltrademarks", {"/resources", "/versioninfo"}},
    };
}

TagTable BuildGroupTable() {
    return TagTable{
        {"versioninfo",
         {"versioninfo", "comments", "legalcopyright", "productversion", "productname",
          "legaltrademarks", "/versioninfo", "/comments", "/legalcopyright", "/productversion",
          "/productname", "/legaltrademarks"}},
        {"stringtable", {"stringtable", "string", "/string", "/stringtable"}},
        {"menus",
         {"menus", "menu", "item", "/menus", "/menu", "/item", "shortcut", "/shortcut", "separator",
          "/separator"}},
        {"dialogs",
         {"dialogs", "dialog", "label", "caption", "items", "button", "groupbox", "combobox",
          "radiobutton", "item", "checkbox"}},
    };
}

} // namespace tervane
