#include "Common/Source/MultiInput.h"

#include <algorithm>
#include <cmath>

#include "frame/ClassTable.h"
#include "frame/LateBound.h"
#include "frame/Resources.h"
#include "measurement/FlatRecord.h"
#include "measurement/Measurement.h"
#include "nvdl/Variant.h"
#include "platform/ComPtr.h"
#include "project/UnitClient.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.MultiInput", CLSID_CMultiInput, "Sonvara Multi-Input Analysis",
                                 &CMultiInput::create}};

std::vector<mimo::RecordView> viewsOf(const std::vector<mimo::RecordBytes>& records) {
    return {records.begin(), records.end()};
}

}  // namespace

CMultiInput::CMultiInput() : CObjectFrame(IID_IMultiInput) {}

IDispatch* CMultiInput::create() { return (new CMultiInput)->dispatch(); }

HRESULT CMultiInput::fail(HRESULT status, const std::string& message) {
    RaiseException(message, moduleFileName());
    return status;
}

// --- Counts: 0 means "as the measurements give" ---

HRESULT CMultiInput::get_Inputs(LONG* inputs) {
    if (!inputs) return E_POINTER;
    *inputs = m_inputs;
    return S_OK;
}

HRESULT CMultiInput::put_Inputs(LONG inputs) {
    if (inputs < 0) return fail(E_INVALIDARG, "The number of inputs cannot be negative.");
    m_inputs = inputs;
    return S_OK;
}

HRESULT CMultiInput::get_Responses(LONG* responses) {
    if (!responses) return E_POINTER;
    *responses = m_responses;
    return S_OK;
}

HRESULT CMultiInput::put_Responses(LONG responses) {
    if (responses < 0) return fail(E_INVALIDARG, "The number of responses cannot be negative.");
    m_responses = responses;
    return S_OK;
}

HRESULT CMultiInput::get_Lines(LONG* lines) {
    if (!lines) return E_POINTER;
    *lines = m_lines;
    return S_OK;
}

HRESULT CMultiInput::put_Lines(LONG lines) {
    if (lines < 0) return fail(E_INVALIDARG, "The number of frequency lines cannot be negative.");
    m_lines = lines;
    return S_OK;
}

// --- Measurements in ---

HRESULT CMultiInput::addOne(IDispatch* item, std::vector<mimo::RecordBytes>& to) {
    auto measurement = ComPtr<IMeasurement>::query(item);
    CMeasurement* source = CMeasurement::from(measurement.get());
    if (!source) return fail(E_INVALIDARG, "Only measurements can be analysed.");
    flat::Record record = flat::recordOf(*source);
    // The analysis reads an X vector on "Categories" axes, which their flat records do not hold.
    if (mimo::carriesXVector(record.head) != flat::storesX(record.head))
        return fail(E_INVALIDARG, "A measurement on a \"" + record.head.xAxisType + "\" axis cannot be analysed.");
    to.push_back(flat::writeRecord(record));
    return S_OK;
}

HRESULT CMultiInput::add(IDispatch* measurements, std::vector<mimo::RecordBytes>& to) {
    if (!measurements) return fail(E_INVALIDARG, "No measurement was given.");
    std::vector<mimo::RecordBytes> added;
    if (ComPtr<IMeasurement>::query(measurements)) {
        if (HRESULT h = addOne(measurements, added); FAILED(h)) return h;
    } else {
        Variant count;
        if (FAILED(latebound::get(measurements, u"Count", &count)) || count.vt != VT_I4)
            return fail(E_INVALIDARG, "Neither a measurement nor a collection of measurements was given.");
        for (LONG i = 0; i < count.lVal; ++i) {
            const VARIANT key[] = {Variant::fromLong(i)};  // a long: nothing to own
            Variant item;
            if (FAILED(latebound::call(measurements, u"Item", key, &item)) || item.vt != VT_DISPATCH)
                return fail(E_INVALIDARG, "An item of the collection cannot be read.");
            if (HRESULT h = addOne(item.pdispVal, added); FAILED(h)) return h;
        }
    }
    for (mimo::RecordBytes& record : added) to.push_back(std::move(record));
    return S_OK;
}

HRESULT CMultiInput::AddGff(IDispatch* measurements) { return add(measurements, m_gff); }
HRESULT CMultiInput::AddGxf(IDispatch* measurements) { return add(measurements, m_gxf); }
HRESULT CMultiInput::AddGxx(IDispatch* measurements) { return add(measurements, m_gxx); }

HRESULT CMultiInput::Clear() {
    m_results.reset();  // it reads the records about to go
    m_gff.clear();
    m_gxf.clear();
    m_gxx.clear();
    return S_OK;
}

// --- The analysis ---

HRESULT CMultiInput::countsFor(CMimo& mimo) {
    LONG inputs = m_inputs;
    if (inputs == 0) {
        inputs = static_cast<LONG>(std::lround(std::sqrt(static_cast<double>(m_gff.size()))));
        if (static_cast<std::size_t>(inputs) * static_cast<std::size_t>(inputs) != m_gff.size())
            return fail(E_INVALIDARG, "The number of Gff measurements (" + std::to_string(m_gff.size()) +
                                          ") is not the square of a number of inputs.");
    }
    LONG lines = m_lines;
    if (lines == 0) {
        std::int32_t shortest = -1;
        for (const auto* array : {&m_gff, &m_gxf, &m_gxx})
            for (const mimo::RecordBytes& record : *array) {
                std::optional<mimo::RecordLayout> layout = mimo::locate(record);
                const std::int32_t values = layout ? layout->values : 0;
                shortest = shortest < 0 ? values : std::min(shortest, values);
            }
        lines = std::max(shortest, 0);
    }
    mimo.SetInputs(inputs);
    mimo.SetResponses(m_responses != 0 ? m_responses : static_cast<LONG>(m_gxx.size()));
    mimo.SetLines(lines);
    return S_OK;
}

HRESULT CMultiInput::Analyze() {
    auto mimo = std::make_unique<CMimo>();
    if (HRESULT h = countsFor(*mimo); FAILED(h)) return h;
    const std::vector<mimo::RecordView> gff = viewsOf(m_gff), gxf = viewsOf(m_gxf), gxx = viewsOf(m_gxx);
    mimo->AddGff(gff);
    mimo->AddGxf(gxf);
    mimo->AddGxx(gxx);
    // The unit service is made here when it is not running yet; without one the results keep the
    // dimensions of the measurements they are cloned from.
    ComPtr<IUnitService> units(GetOrCreateUnitService());
    mimo->PrepareDimensions(units.get());
    if (!mimo->PrincipalComponents() || !mimo->FrequencyResponses() || !mimo->InputInverse())
        return fail(E_FAIL, mimo->LastMessage());
    m_results = std::move(mimo);
    return S_OK;
}

// --- Results out ---

HRESULT CMultiInput::answer(const std::vector<mimo::RecordBytes>& records, long position, bool inRange,
                            IMeasurement** result) {
    if (!m_results) return fail(E_FAIL, "There are no results: Analyze has not run to its end.");
    if (!inRange || position < 0 || static_cast<std::size_t>(position) >= records.size())
        return fail(E_INVALIDARG, "There is no result of that index.");
    const mimo::RecordBytes& record = records[static_cast<std::size_t>(position)];
    CMeasurement* made = CMeasurement::createMeasurement();
    if (!made->Initialize(record.data(), record.size())) {
        made->Release();
        return fail(E_FAIL, "A result cannot be made into a measurement.");
    }
    *result = made;
    return S_OK;
}

HRESULT CMultiInput::get_PrincipalComponent(LONG index, IMeasurement** component) {
    if (!component) return E_POINTER;
    *component = nullptr;
    if (!m_results) return answer({}, 0, false, component);
    return answer(m_results->PrincipalComponentRecords(), index - 1, index >= 1, component);
}

HRESULT CMultiInput::get_Frf(LONG response, LONG reference, IMeasurement** frf) {
    if (!frf) return E_POINTER;
    *frf = nullptr;
    if (!m_results) return answer({}, 0, false, frf);
    const long m = m_results->Responses();
    const bool inRange = response >= 1 && response <= m && reference >= 1 && reference <= m_results->Inputs();
    return answer(m_results->FrfRecords(), (reference - 1) * m + response - 1, inRange, frf);
}

HRESULT CMultiInput::get_MultipleCoherence(LONG response, IMeasurement** coherence) {
    if (!coherence) return E_POINTER;
    *coherence = nullptr;
    if (!m_results) return answer({}, 0, false, coherence);
    return answer(m_results->CoherenceRecords(), response - 1, response >= 1, coherence);
}

HRESULT CMultiInput::get_InverseGff(LONG row, LONG col, IMeasurement** entry) {
    if (!entry) return E_POINTER;
    *entry = nullptr;
    if (!m_results) return answer({}, 0, false, entry);
    const long n = m_results->Inputs();
    const bool inRange = row >= 1 && row <= n && col >= 1 && col <= n;
    return answer(m_results->InverseRecords(), (col - 1) * n + row - 1, inRange, entry);
}

}  // namespace nvdl
