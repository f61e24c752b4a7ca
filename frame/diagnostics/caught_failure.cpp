#include "frame/diagnostics/caught_failure.h"

#include "frame/diagnostics/exceptions.h"
#include "frame/diagnostics/report_error.h"
#include "platform/com/com_error.h"

namespace tervane {

HRESULT ReportCaughtFailure(const CLSID& clsid, const IID& iid, const char16_t* unexpectedText,
                            HRESULT familyResult) {
    try {
        throw;
    } catch (const CParserException& e) {
        ReportError(clsid, e.message, iid, familyResult);
    } catch (const CVerificationException& e) {
        ReportError(clsid, e.message, iid, familyResult);
    } catch (const IOException& e) {
        ReportError(clsid, e.message, iid, familyResult);
    } catch (const TervaneFilterException& e) {
        ReportError(clsid, e.message, iid, familyResult);
    } catch (const _com_error& e) {
        ReportError(clsid, e.ErrorMessage(), iid, familyResult);
    } catch (...) {
        ReportError(clsid, unexpectedText, iid, E_FAIL);
        return E_FAIL;
    }
    return familyResult;
}

} // namespace tervane
