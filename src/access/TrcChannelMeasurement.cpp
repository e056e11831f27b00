// CTrcLoader::ReadChannelMeasurement: a measurement of one recorder channel that points into the
// recording (its loader's class and the channel's address) and holds the first picture of the data:
// the whole channel when it fits, else its min/max reduction.
#include <cstdio>

#include "access/TrcMeasurementFill.h"
#include "frame/ClassTable.h"
#include "nvdl/Guid.h"
#include "platform/CodePage.h"
#include "project/UnitClient.h"
#include "recording/TrcRecorderSection.h"
#include "recording/TrcSetupSection.h"

namespace nvdl::access {

namespace {

std::string translated(CMeasurement& m, LONG code) {
    Bstr text;
    if (FAILED(m.Translate(code, text.out()))) return {};
    return bstrToAnsi(text.get());
}

HRESULT putVariantText(CMeasurement& m, HRESULT (CMeasurement::*put)(VARIANT), const std::string& text) {
    Variant value = Variant::fromAnsi(text);
    return (m.*put)(value);
}

// A dimension from the units table into the measurement; false when the table has none.
bool putDimension(CMeasurement& m, HRESULT (CMeasurement::*put)(IDispatch*), IDimension* dimension) {
    if (!dimension) return false;
    const HRESULT h = (m.*put)(dimension);
    dimension->Release();
    return SUCCEEDED(h);
}

}  // namespace

IMeasurement* CTrcLoader::ReadChannelMeasurement(IMeasurement*, long channel) {
    const ClassInfo* info = findClass(CLSID_CTrcLoader);
    const std::string progId = info ? info->progId : kProgId;
    if (!IsOpened() || channel < 1) return nullptr;
    trc::CTrcRecorderSection& recorder = GetRecorder();
    if (!recorder.Read()) return nullptr;
    trc::CTrcSetupSection& setup = recorder.GetHeader().GetSetup();
    const long inputs = setup.GetInputs().GetTotalChannels();
    const bool tacho = channel > inputs;
    if (tacho && channel - inputs > setup.GetTachos().GetTotalChannels()) return nullptr;
    const long kind = tacho ? kTachoChannel : kInputChannel;
    const long position = tacho ? channel - inputs - 1 : channel - 1;

    std::string name, unit = "RPM";
    if (tacho) {
        name = setup.GetTachos().GetItem(position)->GetRpm().GetName();
    } else {
        const trc::CTrcInputChannel& input = *setup.GetInputs().GetItem(position);
        name = input.GetName();
        unit = input.GetUnit();
    }
    const std::int64_t size = setup.GetProcessing().GetAverageNumber() * static_cast<std::int64_t>(
                                                                              setup.GetAcquisition().GetBlocksize());
    // The measurement's counts are 32-bit: a channel beyond them cannot be one measurement.
    if (size < 0 || size > 0x7FFFFFFF) return nullptr;
    const float frequency = setup.GetAcquisition().GetSampleFrequency();
    if (!(frequency > 0.0f)) return nullptr;

    MeasurementRef owned(CMeasurement::createMeasurement());
    if (!owned) return nullptr;
    CMeasurement& m = *owned;
    char address[128];
    std::snprintf(address, sizeof address, "%s:%s(%s):%ld", progId.c_str(), "Recorder", tacho ? "Rpm" : "Input", position);
    if (FAILED(putText(m, &CMeasurement::put_ClsidLoader, formatGuid(CLSID_CTrcLoader))) ||
        FAILED(putText(m, &CMeasurement::put_ChannelFileID, address)))
        return nullptr;
    const Bstr file(std::string_view{GetFilename()}), empty(std::string_view{});
    if (FAILED(m.Location(file.get(), 0, empty.get(), empty.get(), 0))) return nullptr;
    putText(m, &CMeasurement::put_Response, name);
    putText(m, &CMeasurement::put_Reference, name);
    if (!tacho) {
        m.put_ResponseChannel(channel);
        m.put_ReferenceChannel(channel);
    }
    Variant function = Variant::fromLong(1001);
    m.put_FunctionType(function);
    const std::string functionText = translated(m, 1001);
    char title[512];
    std::snprintf(title, sizeof title, "%s(%s,%s)", functionText.c_str(), name.c_str(), name.c_str());
    putText(m, &CMeasurement::put_Name, title);
    m.put_XIncrement(1.0 / frequency);
    m.put_Complex(0);
    putVariantText(m, &CMeasurement::put_XAxisType, translated(m, 1100));
    putText(m, &CMeasurement::put_StorageUnitX, "s");
    if (!putDimension(m, &CMeasurement::put_XdDimension, DimensionFromText("s", false)))
        putText(m, &CMeasurement::put_XDimension, "Time");
    putText(m, &CMeasurement::put_StorageUnitY, unit);
    if (!putDimension(m, &CMeasurement::put_YdDimension, DimensionFromText(unit, false)) &&
        FAILED(putText(m, &CMeasurement::put_YDimension, "Unknown")))
        putText(m, &CMeasurement::put_YDimension, "rad/s");
    putVariantText(m, &CMeasurement::put_AveragingType, translated(m, 1200));
    putVariantText(m, &CMeasurement::put_WindowType, translated(m, 1300));
    m.put_CheckOnUnicId(0);
    if (tacho) m.put_RPM(-1.0f);

    if (!fillFirstPicture(*this, m, kind, channel, -1, size)) return nullptr;
    m.put_Modified(0);
    return static_cast<IMeasurement*>(owned.release());
}

}  // namespace nvdl::access
