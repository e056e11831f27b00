#include "setup/Acquisition.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "frame/ClassTable.h"
#include "frame/LateBound.h"
#include "platform/Registry.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{
    {"nv_bench.acquisition", CLSID_CAcquisition, "Sonvara Acquisition", &CAcquisition::create}};

constexpr EnumPair kAcquisitionEnums[] = {
    {1, u"Source"},
    {331, u"Fast 16 bit"},
    {332, u"Precision 32 bit"},
    {409, u"Free Run"},
    {410, u"Positive slope"},
    {411, u"Negative slope"},
    {430, u"Manual Arm"},
    {431, u"Auto Arm"},
    {471, u"Ext trigger pos edge"},
    {472, u"Ext trigger neg edge"},
    {473, u"Ext prearm pos"},
    {474, u"Ext prearm neg"},
    {825, u"Zone Exit"},
    {826, u"Zone Entry"},
};

// The functions whose computation blocks are cut by the settings' divider: the time record and the
// time record with its spectrum.
bool dividesComputationBlocks(LONG measurementFunction) {
    return measurementFunction == 1001 || measurementFunction == 1041;
}

// The measurement function of the setup's processing section, found by name; none without a setup.
std::optional<LONG> measurementFunctionOf(IDispatch* setup) {
    Variant processing, function;
    if (FAILED(latebound::get(setup, u"Processing", &processing)) || processing.vt != VT_DISPATCH ||
        !processing.pdispVal)
        return std::nullopt;
    if (FAILED(latebound::get(processing.pdispVal, u"MeasurementFunction", &function)) ||
        FAILED(function.changeType(VT_I4)))
        return std::nullopt;
    return function.lVal;
}

// The divider of the settings: a number, 1 when missing or below 1.
long computationBlocksizeDivider() {
    const std::optional<std::string> text = registry::readSetting("ComputationBlocksizeDivider");
    const long divider = text ? std::atol(text->c_str()) : 1;
    return divider < 1 ? 1 : divider;
}

}  // namespace

const EnumTable CAcquisition::kEnums{kAcquisitionEnums};

HRESULT CAcquisition::Translate(LONG code, BSTR* text) { return kEnums.translate(code, text); }

// Floored, then passed through its "%lf" text, the form in which the front end shows and reads a rate.
std::optional<float> CAcquisition::wholeSampleFrequency(float value) {
    if (!(value > 0.0f)) return std::nullopt;
    char text[64];
    std::snprintf(text, sizeof text, "%lf", std::floor(static_cast<double>(value)));
    return static_cast<float>(std::strtod(text, nullptr));
}

HRESULT CAcquisition::put_SampleFrequency(float value) {
    const std::optional<float> whole = wholeSampleFrequency(value);
    if (!whole) return E_FAIL;
    return storeField(m_fields.SampleFrequency, *whole);
}

HRESULT CAcquisition::put_ComputationBlocksize(LONG value) {
    return storeField(m_fields.ComputationBlocksize, computationBlocksizeOf(value, m_fields.Blocksize));
}

// The stored size, cut by the settings' divider while the setup computes time records; a size that
// comes out below one follows the block size.
HRESULT CAcquisition::get_ComputationBlocksize(LONG* value) {
    if (!value) return E_POINTER;
    LONG size = m_fields.ComputationBlocksize;
    ComPtr<IDispatch> setup;
    if (SUCCEEDED(get_Setup(setup.out())) && setup) {
        const std::optional<LONG> function = measurementFunctionOf(setup.get());
        if (function && dividesComputationBlocks(*function)) {
            const long divider = computationBlocksizeDivider();
            if (divider > 1) size = static_cast<LONG>(size / divider);
        }
    }
    *value = computationBlocksizeOf(size, m_fields.Blocksize);
    return S_OK;
}

HRESULT CAcquisition::put_DataFormat(LONG value) { return storeField(m_fields.DataFormat, knownDataFormat(value)); }

// The blocks of a run whose blocks overlap by `overlap` percent: each new block brings only the part
// that does not overlap. Without a proper overlap every block counts once.
HRESULT CAcquisition::ComputeBlocksCount(LONG blocks, float overlap, LONG* result) {
    if (!result) return E_POINTER;
    if (!(overlap > 0.0f && overlap < 100.0f)) {
        *result = blocks;
        return S_OK;
    }
    if (blocks <= 0) return E_FAIL;
    const double count = static_cast<double>(blocks - 1) * 100.0 / (100.0 - static_cast<double>(overlap));
    if (count >= static_cast<double>(INT32_MAX)) return E_FAIL;  // no count of blocks that a long holds
    *result = static_cast<LONG>(count) + 1;
    return S_OK;
}

}  // namespace nvdl
