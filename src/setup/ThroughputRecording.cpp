// CThroughput as the script's door to a recording: open, read scan by scan, close; a channel read
// into a measurement; a span cut into a new recording.
#include <vector>

#include "access/TrcLoader.h"
#include "nvdl/Bstr.h"
#include "platform/Host.h"
#include "setup/Throughput.h"

namespace nvdl {

namespace {

// Names pass to the loader as 8-bit text of at most 799 characters.
std::string loaderName(BSTR name) {
    std::string text = bstrToAnsi(name);
    if (text.size() > 799) text.resize(799);
    return text;
}

}  // namespace

HRESULT CThroughput::Open(BSTR filename, LONG* bits, float* scaling, LONG* result) {
    // Closed first, so that a failed Open leaves nothing open. `result` is not written.
    (void)result;
    LONG closed = 0;
    Close(&closed);
    if (!bits || !scaling) return E_POINTER;
    if (!filename) return E_FAIL;
    m_recordingSetup.reset();
    long fileBits = 0;
    float fileScaling = 0.0f;
    const std::string name = loaderName(filename);
    if (!loader().OpenFile(name.c_str()) || !loader().GetDataFormat(&fileBits, &fileScaling)) {
        Close(&closed);
        return E_FAIL;
    }
    *bits = static_cast<LONG>(fileBits);
    *scaling = fileScaling;
    ComPtr<ISetup> setup;
    if (FAILED(get_ThroughputSetup(setup.out())) || !setup) {
        Close(&closed);
        return E_POINTER;
    }
    m_recordingSetup = std::move(setup);
    return S_OK;
}

HRESULT CThroughput::get_IsOpened(SHORT* opened) {
    if (!opened) return E_POINTER;
    *opened = m_loader && m_loader->IsFileOpened() ? -1 : 0;
    // Scripts look at the value; the call has always answered a failure, open or not.
    return E_FAIL;
}

HRESULT CThroughput::ReadScan(LONG channels, const LONG* numbers, LONG blocksize, float* data, LONG* status,
                              float* range, LONG* result) {
    if (!result) return E_FAIL;
    *result = -1;
    if (!numbers || !data || !status || !range || channels <= 0) return E_FAIL;
    if (!m_loader || !m_loader->IsFileOpened()) return E_FAIL;
    const std::vector<long> wanted(numbers, numbers + channels);
    std::vector<long> statuses(static_cast<std::size_t>(channels));
    if (!m_loader->ReadScan(channels, wanted.data(), blocksize, data, statuses.data(), range, 1)) return E_FAIL;
    for (LONG k = 0; k < channels; ++k) status[k] = static_cast<LONG>(statuses[static_cast<std::size_t>(k)]);
    *result = 0;
    return S_OK;
}

HRESULT CThroughput::ReadRPMScan(LONG blocksize, float* data, LONG* result) {
    if (!result) return E_FAIL;
    *result = -1;
    if (!data || !m_loader || !m_loader->IsFileOpened() || !m_loader->ReadRpmScan(blocksize, data)) return E_FAIL;
    *result = 0;
    return S_OK;
}

HRESULT CThroughput::Close(LONG* result) {
    if (!result) return E_POINTER;
    *result = -1;
    if (!m_loader || !m_loader->IsFileOpened()) return S_OK;
    m_loader->CloseFile();
    *result = 0;
    return S_OK;
}

HRESULT CThroughput::get_ThroughputSetup(ISetup** setup) {
    if (!setup) return E_POINTER;
    *setup = nullptr;
    if (m_recordingSetup) return m_recordingSetup->QueryInterface(IID_ISetup, reinterpret_cast<void**>(setup));
    if (!m_loader || !m_loader->IsFileOpened()) return E_FAIL;
    *setup = m_loader->BuildSetup();
    return *setup ? S_OK : E_FAIL;
}

HRESULT CThroughput::Cut(BSTR input, BSTR output, float start, float stop, LONG* result) {
    if (!result) return E_POINTER;
    *result = -1;
    const std::string from = loaderName(input);
    const std::string to = loaderName(output);
    if (from.empty()) {
        host::messageBox("Invalid input filename", "Sonvara", host::MB_OK);
        return E_FAIL;
    }
    if (to.empty()) {
        host::messageBox("Invalid output filename", "Sonvara", host::MB_OK);
        return E_FAIL;
    }
    if (!loader().Cut(from.c_str(), to.c_str(), start, stop)) return E_FAIL;
    *result = 0;
    return S_OK;
}

HRESULT CThroughput::ReadMeasurement(BSTR filename, LONG channel, IMeasurement** measurement, LONG* result) {
    if (!measurement || !result) return E_POINTER;
    *measurement = nullptr;
    *result = -1;
    if (!filename) return E_POINTER;
    access::CTrcLoader local;
    IMeasurement* read = nullptr;
    if (local.OpenFile(loaderName(filename).c_str())) read = local.ReadChannelMeasurement(nullptr, channel);
    local.CloseFile();
    if (!read) return E_FAIL;
    *measurement = read;
    *result = 0;
    return S_OK;
}

}  // namespace nvdl
