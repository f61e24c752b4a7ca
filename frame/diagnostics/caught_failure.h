#pragma once
// The outermost frame of an operation that the host calls: turns whatever was
// thrown into error information and a result. Use inside catch (...):
//
//   } catch (...) {
//       return ReportCaughtFailure(CLSID_TervaneParser, IFileParser::iid,
//                                  u"Unexpected error when accessing Parse.");
//   }
//
// A class of the family and a _com_error are reported with their own text and
// familyResult; anything else with unexpectedText and E_FAIL. Operations
// whose Part names other results catch those cases themselves first.
#include "platform/com/unknown.h"

namespace tervane {

HRESULT ReportCaughtFailure(const CLSID& clsid, const IID& iid, const char16_t* unexpectedText,
                            HRESULT familyResult = E_FAIL);

} // namespace tervane
