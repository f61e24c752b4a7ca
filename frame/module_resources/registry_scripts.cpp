#include <string>

#include "frame/module_resources/module_resources.h"

namespace tervane::module_resources {

namespace {

constexpr char kAppScript[] = R"(HKCR
{
	NoRemove AppID
	{
		'%APPID%' = s 'Zelkor Tervane Filter 1.0.0.0'
		'TervaneFilter.dll'
		{
			val AppID = s '%APPID%'
			val Release = s 'IB19.1'
			val Date = s '10.03.2005'
		}
	}
}
)";

constexpr char kLibrary[] = "{CBFF1EDF-61B7-408F-8C5C-E0EA82826D03}";

// The frame that scripts 102 to 106 share; the class key's extra lines come
// in classExtra, the server's in serverExtra.
std::string ClassScript(const std::string& name, const std::string& clsid,
                        const std::string& progId, const std::string& classExtra,
                        const std::string& serverExtra) {
    const std::string versioned = progId + ".1";
    const std::string description = "'" + name + " Class'";
    return "HKCR\n{\n"
           "\t" +
           versioned + " = s " + description +
           "\n\t{\n"
           "\t\tCLSID = s '" +
           clsid +
           "'\n\t}\n"
           "\t" +
           progId + " = s " + description +
           "\n\t{\n"
           "\t\tCLSID = s '" +
           clsid +
           "'\n"
           "\t\tCurVer = s '" +
           versioned +
           "'\n\t}\n"
           "\tNoRemove CLSID\n\t{\n"
           "\t\tForceRemove '" +
           clsid + "' = s " + description + "\n\t\t{\n" + classExtra + "\t\t\tProgID = s '" +
           versioned +
           "'\n"
           "\t\t\tVersionIndependentProgID = s '" +
           progId +
           "'\n"
           "\t\t\tForceRemove 'Programmable'\n"
           "\t\t\tInprocServer32 = s '%MODULE%'\n\t\t\t{\n" +
           serverExtra +
           "\t\t\t}\n"
           "\t\t\t'TypeLib' = s '" +
           kLibrary +
           "'\n"
           "\t\t}\n\t}\n}\n";
}

const std::string kApartment = "\t\t\t\tval ThreadingModel = s 'Apartment'\n";

std::span<const std::uint8_t> Bytes(const std::string& text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

} // namespace

std::vector<Resource> RegistryScripts() {
    static const std::string scripts[] = {
        kAppScript,
        ClassScript("TervaneParser", "{F3CC2DB3-29A7-4CC3-82E7-8EAAD9875B2F}",
                    "Zelkor.TervaneParser", "", kApartment),
        ClassScript("TervaneWriter", "{758B7A60-23F8-4E7D-9B8E-4E2D4DFA75C3}",
                    "Zelkor.TervaneWriter", "\t\t\tval AppID = s '%APPID%'\n", ""),
        ClassScript("TervanePreviewWriter", "{A9F23F59-2DDA-4A05-9BA9-0D6BE568606B}",
                    "Zelkor.TervanePreviewWriter", "", kApartment),
        ClassScript("TervaneScanner", "{85F9F636-07B6-4FCC-A7F1-2560135377F9}",
                    "Zelkor.TervaneScanner", "", kApartment),
        ClassScript("TervaneInteractiveParser", "{C10218AC-3535-4815-9059-06F6F1CCBEFE}",
                    "Zelkor.TervaneInteractiveParser", "", kApartment),
        ClassScript("TervaneVerifier", "{D6054293-4139-462C-8654-4EE69B00234B}",
                    "TervaneFilter.TervaneVerifier",
                    "\t\t\tval Description = s 'Zelkor Tervane Verifier'\n"
                    "\t\t\t'Implemented Categories' = s '%MODULE%'\n\t\t\t{\n"
                    "\t\t\t\t'{8AC3B6B0-B698-11d5-8911-00B0D0777F8B}'\n\t\t\t}\n",
                    kApartment),
    };
    std::vector<Resource> resources;
    std::uint16_t number = 101;
    for (const std::string& script : scripts)
        resources.push_back({Id{u"REGISTRY", 0}, Id{{}, number++}, kEnglishUs, Bytes(script)});
    return resources;
}

} // namespace tervane::module_resources
