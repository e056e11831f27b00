#include "project/TrcLoader.h"

#include "access/TrcLoader.h"
#include "access/TrcSetupMapping.h"
#include "frame/ClassTable.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"
#include "platform/Registry.h"
#include "project/Workspace.h"
#include "recording/TrcMeasurements.h"
#include "recording/TrcRecorderSection.h"
#include "recording/TrcSetupSection.h"
#include "setup/Setup.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.io_newtrc", CLSID_CTrcLoader, "Sonvara TRC Loader", &CTrcLoader::create}};

HRESULT addTo(CObjectCollection& collection, IDispatch* item) {
    Variant key, before, after;
    LONG index = 0;
    return collection.Add(item, &key, &before, &after, &index);
}

// Adds a measurement made by the recording loader; a null one (the loader failed) fails.
HRESULT addMeasurement(CObjectCollection& to, IMeasurement* m) {
    if (!m) return E_FAIL;
    const HRESULT h = addTo(to, m);
    m->Release();
    return h;
}

HRESULT addSetup(CWorkspace& ws, trc::CTrcSetupSection& section) {
    IDispatch* object = nullptr;
    HRESULT h = createInstance(CLSID_CSetup, &object);
    if (FAILED(h)) return h;
    ComPtr<IDispatch> held(object);
    auto* setup = dynamic_cast<CSetup*>(CFrameBase::of(object));
    if (!setup || !access::buildSetup(section, *setup)) return E_FAIL;
    setup->put_Modified(0);
    return addTo(ws.setups(), object);
}

bool importAllSections() {
    const std::optional<std::string> flag = registry::readSetting("ImportAllTRCFlag");
    return flag && *flag == "1";
}

// A stored measurement with its sub-measurements in its own collection.
HRESULT addStored(access::CTrcLoader& loader, CObjectCollection& to, long number, long subs) {
    IMeasurement* m = loader.ReadStoredMeasurement(number, -1);
    if (!m) return E_FAIL;
    ComPtr<IMeasurement> held(m);
    ICollection* children = nullptr;
    HRESULT h = m->get_Measurements(&children);
    if (FAILED(h)) return h;
    ComPtr<ICollection> heldChildren(children);
    for (long s = 1; s <= subs && SUCCEEDED(h); ++s) {
        IMeasurement* sub = loader.ReadStoredMeasurement(number, s);
        if (!sub) return E_FAIL;
        Variant key, before, after;
        LONG index = 0;
        h = children->Add(sub, &key, &before, &after, &index);
        sub->Release();
    }
    return SUCCEEDED(h) ? addTo(to, m) : h;
}

}  // namespace

CTrcLoader::CTrcLoader() : CObjectFrame(IID_IWorkspaceLoader) {}

IDispatch* CTrcLoader::create() { return (new CTrcLoader)->dispatch(); }

HRESULT CTrcLoader::Load(BSTR file, IDispatch* workspace) {
    auto* ws = dynamic_cast<CWorkspace*>(CFrameBase::of(workspace));
    if (!file || !ws) return E_POINTER;
    access::CTrcLoader loader;
    if (!loader.OpenFile(bstrToAnsi(file).c_str())) return E_FAIL;
    trc::CTrcRecorderSection& recorder = loader.GetRecorder();
    if (!recorder.Read() || !recorder.GetHeader().GetEnabled()) return E_FAIL;
    trc::CTrcSetupSection& setup = recorder.GetHeader().GetSetup();
    if (HRESULT h = addSetup(*ws, setup); FAILED(h)) return h;

    const long inputs = setup.GetInputs().GetTotalChannels();
    for (long c = 0; c < inputs; ++c)
        if (setup.GetInputs().GetItem(c)->GetUsage() != 0)
            if (HRESULT h = addMeasurement(ws->measurements(), loader.ReadChannelMeasurement(nullptr, c + 1)); FAILED(h))
                return h;
    for (long t = 0; t < setup.GetTachos().GetTotalChannels(); ++t)
        if (setup.GetTachos().GetItem(t)->GetActivated() != 0)
            if (HRESULT h = addMeasurement(ws->measurements(), loader.ReadChannelMeasurement(nullptr, inputs + t + 1));
                FAILED(h))
                return h;

    if (importAllSections()) {
        trc::CTrcMeasurementsSection& stored = loader.GetMeasurements();
        if (!stored.Read(-1)) return E_FAIL;
        for (long m = 0; m < stored.GetCount(); ++m)
            if (HRESULT h = addStored(loader, ws->measurements(), m + 1, stored.GetItem(m)->GetMeasurements().GetCount());
                FAILED(h))
                return h;
    }
    return S_OK;
}

// Recordings are made by the recorder, never written from a workspace: there is nothing to save to.
HRESULT CTrcLoader::Save(BSTR, IDispatch*) { return E_NOTIMPL; }

}  // namespace nvdl
