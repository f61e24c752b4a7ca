#pragma once
// The registrar: runs a registration script of a module's REGISTRY resource
// against the registry store, for registration or for removal.
//
//   HKCR
//   {
//       NoRemove CLSID
//       {
//           ForceRemove {...} = s 'Widget Class'
//           {
//               InprocServer32 = s '%MODULE%'
//               {
//                   val ThreadingModel = s 'Apartment'
//               }
//           }
//       }
//   }
//
// A name or text is a bare word or stands in single quotes ('' for a quote);
// values are s (text) or d (number). %NAME% is replaced from the table, %% is
// a percent sign. Removal deletes a ForceRemove key whole, walks through a
// NoRemove key, and deletes any other key once nothing is left below it.
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/com/hresult.h"

namespace tervane {

using Replacements = std::vector<std::pair<std::string, std::string>>;

HRESULT RunRegistrationScript(std::string_view script, const Replacements& replacements,
                              bool registering);

} // namespace tervane
