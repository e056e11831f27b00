// The members of an input channel over the user-defined FIR weighting file, which all channels
// share: each answers -1 in `result` when it succeeds and leaves 0 there otherwise.
#include "setup/InputChannel.h"
#include "setup/UserWeightingFile.h"

namespace nvdl {

HRESULT CInputChannel::DeleteFIRUserWeightingData(SHORT* result) {
    if (!result) return E_POINTER;
    *result = 0;
    if (!userweighting::remove(userweighting::location(false))) return E_FAIL;
    *result = -1;
    return S_OK;
}

// The measurement's samples, each as its X value and its real Y value.
HRESULT CInputChannel::CreateFIRUserWeightingData(IMeasurement* measurement, SHORT* result) {
    if (!result) return E_POINTER;
    *result = 0;
    if (!measurement) return E_POINTER;
    LONG samples = 0;
    if (FAILED(measurement->get_FileSamples(&samples))) return E_POINTER;
    if (samples <= 0) return E_FAIL;
    const std::filesystem::path file = userweighting::location(true);
    if (file.empty()) return E_FAIL;
    const bool written = userweighting::write(file, samples, [measurement](std::int32_t i, float& x, float& y) {
        return SUCCEEDED(measurement->get_X(i, &x)) && SUCCEEDED(measurement->get_YReal(i, &y));
    });
    if (!written) return E_FAIL;
    *result = -1;
    return S_OK;
}

HRESULT CInputChannel::SearchFIRUserWeightingData(SHORT* result) {
    if (!result) return E_POINTER;
    *result = 0;
    if (!userweighting::holdsData(userweighting::location(false))) return E_FAIL;
    *result = -1;
    return S_OK;
}

}  // namespace nvdl
