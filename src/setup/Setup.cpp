#include "setup/Setup.h"

#include "frame/ClassTable.h"
#include "nvdl/Storage.h"
#include "frame/LateBound.h"
#include "measurement/Measurement.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"
#include "platform/ReplaceFile.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.setup", CLSID_CSetup, "Sonvara Setup", &CSetup::create}};

constexpr EnumPair kDataModes[] = {{340, u"Block Mode"}, {341, u"Continuous Mode"}};

const CLSID& itemClassOf(SectionCollection which) {
    switch (which) {
        case SectionCollection::Parameters: return CLSID_CParameter;
        case SectionCollection::Transducers: return CLSID_CTransducer;
        case SectionCollection::InputChannels: return CLSID_CInputChannel;
        case SectionCollection::StrainChannels: return CLSID_CStrainChannel;
        case SectionCollection::SourceChannels: return CLSID_CSourceChannel;
        case SectionCollection::Frontends: return CLSID_CFrontend;
    }
    return CLSID_NULL;
}

constexpr SectionCollection kCollections[] = {
    SectionCollection::Parameters,     SectionCollection::Transducers,    SectionCollection::InputChannels,
    SectionCollection::StrainChannels, SectionCollection::SourceChannels, SectionCollection::Frontends,
};

// The setup as the back reference of one of its sections (the section's Setup property).
void setOwner(IDispatch* section, IDispatch* owner) {
    Variant value;
    value.vt = VT_DISPATCH;
    value.pdispVal = owner;
    latebound::put(section, u"Setup", value, true);
    value.vt = VT_EMPTY;  // not counted: nothing to release
}

}  // namespace

const EnumTable CSetup::kEnums{kDataModes};

// The sections are built in this order: parameters, transducers, input and strain channels,
// acquisition, source channels, frontends, processing, saving and the analysis sections.
CSetup::CSetup() : CObjectFrame(IID_ISetup) {
    for (SectionCollection which : kCollections) {
        collection(which).SetOwner(dispatch());
        collection(which).SetItemClass(itemClassOf(which));
    }
    for (std::size_t i = 0; i < kSingleSectionCount; ++i) {
        m_sections[i] = createSection(static_cast<SingleSection>(i));
        if (m_sections[i]) setOwner(m_sections[i], dispatch());
    }
}

CSetup::~CSetup() {
    for (IDispatch*& s : m_sections) {
        if (!s) continue;
        setOwner(s, nullptr);  // a client may keep a section longer than its setup
        s->Release();
    }
    for (SectionCollection which : kCollections) collection(which).SetOwner(nullptr);
}

CObjectCollection& CSetup::collection(SectionCollection which) {
    switch (which) {
        case SectionCollection::Parameters: return m_parameters;
        case SectionCollection::Transducers: return m_transducers;
        case SectionCollection::InputChannels: return m_inputChannels;
        case SectionCollection::StrainChannels: return m_strainChannels;
        case SectionCollection::SourceChannels: return m_sourceChannels;
        case SectionCollection::Frontends: return m_frontends;
    }
    return m_parameters;
}

HRESULT CSetup::queryCompanion(REFIID riid, void** ppv) {
    if (riid == IID_IPersistStorage) {
        *ppv = static_cast<IPersistStorage*>(&m_persistStorage);
    } else if (riid == IID_IPersistStream || riid == IID_IPersist) {
        *ppv = static_cast<IPersistStream*>(&m_persistStream);
    } else {
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

HRESULT CSetup::giveSection(SingleSection which, IDispatch** out) {
    if (!out) return E_POINTER;
    *out = section(which);
    if (!*out) return E_UNEXPECTED;
    (*out)->AddRef();
    return S_OK;
}

HRESULT CSetup::giveCollection(CObjectCollection& c, ICollection** out) {
    if (!out) return E_POINTER;
    *out = &c;
    c.AddRef();
    return S_OK;
}

HRESULT CSetup::get_Parameters(ICollection** v) { return giveCollection(m_parameters, v); }
HRESULT CSetup::get_Transducers(ICollection** v) { return giveCollection(m_transducers, v); }
HRESULT CSetup::get_InputChannels(ICollection** v) { return giveCollection(m_inputChannels, v); }
HRESULT CSetup::get_StrainChannels(ICollection** v) { return giveCollection(m_strainChannels, v); }
HRESULT CSetup::get_SourceChannels(ICollection** v) { return giveCollection(m_sourceChannels, v); }
HRESULT CSetup::get_Frontends(ICollection** v) { return giveCollection(m_frontends, v); }

HRESULT CSetup::get_Acquisition(IDispatch** v) { return giveSection(SingleSection::Acquisition, v); }
HRESULT CSetup::get_Processing(IDispatch** v) { return giveSection(SingleSection::Processing, v); }
HRESULT CSetup::get_Saving(IDispatch** v) { return giveSection(SingleSection::Saving, v); }
HRESULT CSetup::get_Tacho(IDispatch** v) { return giveSection(SingleSection::Tacho, v); }
HRESULT CSetup::get_Rpm(IDispatch** v) { return giveSection(SingleSection::Rpm, v); }
HRESULT CSetup::get_SinRed(IDispatch** v) { return giveSection(SingleSection::SinRed, v); }
HRESULT CSetup::get_SRS(IDispatch** v) { return giveSection(SingleSection::SRS, v); }
HRESULT CSetup::get_SteppedSine(IDispatch** v) { return giveSection(SingleSection::SteppedSine, v); }
HRESULT CSetup::get_Throughput(IDispatch** v) { return giveSection(SingleSection::Throughput, v); }
HRESULT CSetup::get_Octave(IDispatch** v) { return giveSection(SingleSection::Octave, v); }
HRESULT CSetup::get_Impact(IDispatch** v) { return giveSection(SingleSection::Impact, v); }
HRESULT CSetup::get_TimeFilter(IDispatch** v) { return giveSection(SingleSection::TimeFilter, v); }
HRESULT CSetup::get_Resampling(IDispatch** v) { return giveSection(SingleSection::Resampling, v); }
HRESULT CSetup::get_PostProcessing(IDispatch** v) { return giveSection(SingleSection::PostProcessing, v); }
HRESULT CSetup::get_ShockCapture(IDispatch** v) { return giveSection(SingleSection::ShockCapture, v); }

// The default and grouping flags are plain stores: they do not mark the setup modified.
HRESULT CSetup::put_Default(SHORT v) { return field::take(m_fields.Default, v), S_OK; }
HRESULT CSetup::put_GroupDataInSameWs(SHORT v) { return field::take(m_fields.GroupDataInSameWs, v), S_OK; }
HRESULT CSetup::put_GroupChannels(SHORT v) { return field::take(m_fields.GroupChannels, v), S_OK; }
HRESULT CSetup::put_GroupFunctions(SHORT v) { return field::take(m_fields.GroupFunctions, v), S_OK; }

HRESULT CSetup::Translate(LONG code, BSTR* text) { return kEnums.translate(code, text); }

// A static unique identity, made on first demand as a measurement's is.
HRESULT CSetup::get_Id(BSTR* id) {
    if (!id) return E_POINTER;
    if (m_id.empty()) CMeasurement::GenerateStaticUnicId(m_id);
    *id = allocBstrFromAnsi(m_id);
    return S_OK;
}

HRESULT CSetup::Load(BSTR path) {
    if (!path) return E_FAIL;
    ComPtr<IStorage> root;
    HRESULT h = openCompoundFile(pathFromAnsi(bstrToAnsi(path)), STGM_READ | STGM_SHARE_DENY_WRITE, root.out());
    if (FAILED(h)) return h;
    return m_persistStorage.Load(root.get());
}

// The file is written beside the old one and takes its place only when complete.
HRESULT CSetup::Save(BSTR path) {
    if (!path) return E_FAIL;
    return replaceWithCompoundFile(pathFromAnsi(bstrToAnsi(path)),
                                   [this](IStorage* root) { return m_persistStorage.Save(root, 0); });
}

HRESULT CSetup::Copy(ISetup* source, ISetup* target) {
    auto* from = dynamic_cast<CSetup*>(CFrameBase::of(source));
    auto* to = dynamic_cast<CSetup*>(CFrameBase::of(target));
    if (!from || !to) return E_INVALIDARG;
    if (from == to) return S_OK;
    to->m_fields = from->m_fields;
    for (std::size_t i = 0; i < kSingleSectionCount; ++i) {
        if (!from->m_sections[i] || !to->m_sections[i]) continue;
        VARIANT target{};
        target.vt = VT_DISPATCH;
        target.pdispVal = to->m_sections[i];
        latebound::call(from->m_sections[i], u"Copy", {&target, 1}, nullptr);
    }
    for (SectionCollection which : kCollections) {
        CObjectCollection& into = to->collection(which);
        into.Clear();
        if (HRESULT h = into.AddClonesOf(from->collection(which)); FAILED(h)) return h;
    }
    return target->put_Modified(1);
}

}  // namespace nvdl
