// CMeasurement: life cycle, identity, naming, parent and the Modified climb.
#include "measurement/Measurement.h"

#include <array>
#include <ctime>
#include <limits>
#include <optional>

#include "frame/ClassTable.h"
#include "frame/LateBound.h"
#include "measurement/MeasurementBlockWriter.h"
#include "platform/CodePage.h"
#include "platform/DebugTrace.h"
#include "platform/Registry.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.measurement", CLSID_CMeasurement, "Sonvara Measurement", &CMeasurement::create}};

DATE localNow() {
    std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return dateFromParts(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
}

// The block size a "MaxBlockSize" setting gives: 32768 when it is absent, unreadable or below 1.
LONG maxBlockSizeFrom(const std::optional<std::string>& setting) {
    const long value = setting ? std::atol(setting->c_str()) : 0;
    return value >= 1 && value <= std::numeric_limits<LONG>::max() ? static_cast<LONG>(value) : 32768;
}

// An internal identity: answers the CMeasurement itself, without a reference.
constexpr IID IID_CMeasurementImpl{0x7c1e2f90, 0x5a3b, 0x4d21, {0x8e, 0x44, 0x10, 0x9b, 0x6f, 0x2a, 0xd3, 0x57}};

}  // namespace

CMeasurement::CMeasurement(bool sized) : CObjectFrame(IID_IMeasurement) {
    m_modified = 1;  // a new measurement counts as unsaved
    m_parameters.SetOwner(dispatch());
    m_parameters.SetItemClass(CLSID_CParameter);
    m_measurements.SetOwner(dispatch());
    m_measurements.SetItemClass(CLSID_CMeasurement);
    m_dataBlocks.SetOwner(dispatch());
    m_dataBlocks.SetItemClass(CLSID_CDataBlock);
    m_signalRange.SetOwner(dispatch());
    m_optimizedXStart = m_xStart;
    if (!sized) return;  // a copy takes its time, block size and paging settings from its source
    m_measurementTime = localNow();
    // Both settings from one look at the store: a new measurement is made for every block of a
    // block-wise analysis.
    constexpr std::array<std::string_view, 2> names{"MaxBlockSize", "LongFileFeature"};
    std::array<std::optional<std::string>, 2> values;
    registry::readSettings(names, values);
    m_maxBlockSize = maxBlockSizeFrom(values[0]);
    m_longFileFeature = std::atol(values[1].value_or("0").c_str()) != 0 ? 1 : 0;
    m_fileSamples = m_maxBlockSize;
    put_Size(m_maxBlockSize);
}

CMeasurement::~CMeasurement() {
    m_parameters.SetOwner(nullptr);
    m_measurements.SetOwner(nullptr);
    m_dataBlocks.SetOwner(nullptr);
    m_signalRange.SetOwner(nullptr);
    releaseDimensions();
    if (m_fields) m_fields->Release();
}

IDispatch* CMeasurement::create() { return createMeasurement()->dispatch(); }

CMeasurement* CMeasurement::createMeasurement() { return new CMeasurement; }

CMeasurement* CMeasurement::createForCopy() { return new CMeasurement(false); }

CMeasurement* CMeasurement::from(IMeasurement* m) {
    if (!m) return nullptr;
    void* self = nullptr;
    if (FAILED(m->QueryInterface(IID_CMeasurementImpl, &self))) return nullptr;
    return static_cast<CMeasurement*>(self);
}

HRESULT CMeasurement::queryCompanion(REFIID riid, void** ppv) {
    if (riid == IID_CMeasurementImpl) {
        *ppv = this;
        return S_OK;
    }
    if (riid == IID_IMeasurementBlockWriter) {
        *ppv = static_cast<IMeasurementBlockWriter*>(CMeasurementBlockWriter::create());
        return S_OK;
    }
    if (HRESULT h = m_persistHelpers.query(riid, ppv); h != E_NOINTERFACE) return h;
    return E_NOINTERFACE;
}

HRESULT CMeasurement::CheckRegistryMaxBlockSize() {
    if (m_maxBlockSize > 0) return S_OK;
    m_maxBlockSize = maxBlockSizeFrom(registry::readSetting("MaxBlockSize"));
    return S_OK;
}

// Identity and naming.

namespace {

// Writes "0x" and `digits` hexadecimal digits of `value`, upper or lower case, at `to`; returns the
// end of what it wrote.
char* putHex(char* to, unsigned long long value, int digits, bool upper) {
    const char* symbols = upper ? "0123456789ABCDEF" : "0123456789abcdef";
    *to++ = '0';
    *to++ = 'x';
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) *to++ = symbols[(value >> shift) & 0xF];
    return to;
}

}  // namespace

// ".UID." and a new GUID as "0x%08lX-0x%04X-0x%04x-0x%02X%02X-0x%02X%02X%02X%02X%02X%02X" (the third
// group in lower case), unless the text already carries one.
HRESULT CMeasurement::GenerateStaticUnicId(std::string& text) {
    if (text.find(".UID.") != std::string::npos) return S_OK;
    GUID g = generateGuid();
    if (g == GUID_NULL) return E_FAIL;
    unsigned long long node = 0;
    for (int i = 2; i < 8; ++i) node = node << 8 | g.Data4[i];
    char buf[64];
    char* end = putHex(buf, g.Data1, 8, true);
    *end++ = '-';
    end = putHex(end, g.Data2, 4, true);
    *end++ = '-';
    end = putHex(end, g.Data3, 4, false);
    *end++ = '-';
    end = putHex(end, static_cast<unsigned long long>(g.Data4[0]) << 8 | g.Data4[1], 4, true);
    *end++ = '-';
    end = putHex(end, node, 12, true);
    text += ".UID.";
    text.append(buf, end);
    return S_OK;
}

HRESULT CMeasurement::get_Id(BSTR* v) {
    if (!v) return E_POINTER;
    if (m_id.empty()) GenerateStaticUnicId(m_id);
    *v = allocBstrFromAnsi(m_id);
    return *v ? S_OK : E_OUTOFMEMORY;
}

HRESULT CMeasurement::get_Name(BSTR* v) {
    if (!v) return E_POINTER;
    if (m_name.empty()) {
        const std::u16string_view* type = measurementEnumTable().lookupString(m_functionType);
        std::string name = type ? narrow(*type) : std::string();
        name += "(" + m_response;
        if (!isOneChannelFunction(m_functionType)) name += "," + m_reference;
        name += ")";
        m_name = name;
    }
    *v = allocBstrFromAnsi(m_name);
    return *v ? S_OK : E_OUTOFMEMORY;
}

HRESULT CMeasurement::put_Name(BSTR v) { return setText(m_name, v); }

HRESULT CMeasurement::get_Tag(BSTR* v) {
    if (!v) return E_POINTER;
    if (m_tag.empty()) return get_Id(v);
    *v = allocBstrFromAnsi(m_tag);
    return S_OK;
}

HRESULT CMeasurement::put_Tag(BSTR v) { return setText(m_tag, v); }

// Modified and parent.

HRESULT CMeasurement::put_Modified(SHORT v) {
    m_modified = v;
    // A parent that refuses the flag is let go, and the link name with it.
    if (v && FAILED(UpdateParentModifiedFlag(v))) {
        m_parent.clear();
        m_linkName.clear();
    }
    return S_OK;
}

HRESULT CMeasurement::get_Parent(IDispatch** v) {
    if (!v) return E_POINTER;
    *v = m_parent.get();
    if (*v) (*v)->AddRef();
    return S_OK;
}

HRESULT CMeasurement::put_Parent(IDispatch* v) {
    IDispatch* old = m_parent.get();
    if (!v || !old || !IsMasterProjectParent(old)) m_parent.set(v);
    IDispatch* parent = m_parent.get();
    // Below a master project the workspace's link text is kept, and published in a record of its own.
    if (parent && m_linkName.empty() && IsMasterProjectParent(parent)) {
        m_linkName = linkOfParent(parent).substr(0, kShmRecordSize - 1);
        if (!m_linkName.empty() && InitShmInfo()) {
            char record[kShmRecordSize] = {};
            m_linkName.copy(record, sizeof record - 1);
            m_shm.Write(record, sizeof record);
        }
    }
    // Sub-measurements follow: the first failure stops the walk.
    Variant self = Variant::fromDispatch(dispatch());
    for (std::size_t i = 0; i < m_measurements.size(); ++i)
        if (FAILED(latebound::put(m_measurements.itemAt(i), u"Parent", self, true))) break;
    return S_OK;
}

}  // namespace nvdl
