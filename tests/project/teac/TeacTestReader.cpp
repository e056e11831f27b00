// A TEAC reader of another module for the tests. The "recording" it opens is a text of settings,
// one "name value" a line: channels, samples (per channel), block, rate, and for failures
// "status -1" (Open reports failure) or "closed 1" (IsOpen answers 0). It serves the sines of
// TeacSignal.h. Channel c is named "Ch<c+1>"; its "Y Unit Label" is taken in turn from Pa, m/s^2, V.
#include <algorithm>
#include <fstream>
#include <map>
#include <string>

#include "TeacSignal.h"
#include "nvdl/Bstr.h"
#include "nvdl/ITeacReader.h"
#include "nvdl/ServerEntry.h"
#include "../PluginFactory.h"

namespace {

using Settings = std::map<std::string, long>;

const char* const kUnits[] = {"Pa", "m/s^2", "V"};

BSTR ascii(const std::string& text) { return nvdl::allocBstr(std::u16string(text.begin(), text.end())); }

class TestSetup final : public nvdl::test::PluginObject<ITeacSetup> {
public:
    explicit TestSetup(Settings settings) : m_settings(std::move(settings)) {}

    HRESULT get_SampleFrequency(double* value) override { return give(static_cast<double>(m_settings["rate"]), value); }
    HRESULT get_BlockSize(LONG* value) override { return give(static_cast<LONG>(m_settings["block"]), value); }
    HRESULT get_SampleCount(LONG* value) override { return give(static_cast<LONG>(m_settings["samples"]), value); }
    HRESULT get_ChannelCount(LONG* value) override { return give(static_cast<LONG>(m_settings["channels"]), value); }
    HRESULT ChannelName(LONG channel, BSTR* name) override {
        if (!name) return E_POINTER;
        *name = ascii("Ch" + std::to_string(channel + 1));
        return S_OK;
    }
    HRESULT ChannelParameter(LONG channel, BSTR name, BSTR* value) override {
        if (!value) return E_POINTER;
        *value = nullptr;
        if (nvdl::test::narrowAscii(name) != "Y Unit Label" || channel < 0) return E_INVALIDARG;
        *value = ascii(kUnits[channel % 3]);
        return S_OK;
    }

private:
    template <class T>
    static HRESULT give(T v, T* out) {
        if (!out) return E_POINTER;
        *out = v;
        return S_OK;
    }
    Settings m_settings;
};

class TestReader final : public nvdl::test::PluginObject<ITeacReader> {
public:
    HRESULT Open(BSTR file, LONG* status) override {
        if (!status) return E_POINTER;
        std::ifstream in(nvdl::test::narrowAscii(file));
        std::string name;
        long value = 0;
        m_settings = {{"status", 0}, {"closed", 0}};
        while (in >> name >> value) m_settings[name] = value;
        m_position = 0;
        m_open = in.eof() && m_settings["status"] != -1;
        *status = m_open ? 0 : -1;
        return S_OK;
    }
    HRESULT IsOpen(SHORT* open) override {
        if (!open) return E_POINTER;
        *open = m_open && m_settings["closed"] == 0 ? -1 : 0;
        return S_OK;
    }
    HRESULT GetSetup(ITeacSetup** setup) override {
        if (!setup) return E_POINTER;
        *setup = m_open ? new TestSetup(m_settings) : nullptr;
        return m_open ? S_OK : E_FAIL;
    }
    HRESULT ReadBlock(float* samples, LONG capacity, LONG* count, LONG* status) override {
        if (!samples || !count || !status) return E_POINTER;
        const long channels = m_settings["channels"], block = m_settings["block"], total = m_settings["samples"];
        *count = 0;
        *status = -1;
        if (!m_open || capacity < channels * block) return E_INVALIDARG;
        const long n = std::min(block, total - m_position);
        for (long c = 0; c < channels; ++c)
            for (long i = 0; i < n; ++i)
                samples[c * block + i] = nvdl::test::teacSample(c, m_position + i, static_cast<double>(m_settings["rate"]));
        m_position += n > 0 ? n : 0;
        *count = static_cast<LONG>(n > 0 ? n : 0);
        *status = n > 0 ? 1 : 0;
        return S_OK;
    }
    HRESULT Close() override {
        m_open = false;
        return S_OK;
    }

private:
    Settings m_settings;
    long m_position = 0;
    bool m_open = false;
};

nvdl::test::PluginFactory<TestReader> g_factory;

}  // namespace

HRESULT DllGetClassObject(REFCLSID clsid, REFIID riid, void** factory) {
    return g_factory.classObject(CLSID_TeacRecordingReader, clsid, riid, factory);
}
