// The flat export of a workspace's measurements: a head (format, channel count, block size,
// sampling interval), then rounds of one block per selected channel - the samples, the channel's
// overload count and its gain - each round closed by a text with the date of the round and, when a
// channel of rotation speed is carried, its value.
#include <cmath>
#include <cstdio>
#include <vector>

#include "measurement/Measurement.h"
#include "nvdl/Date.h"
#include "nvdl/SafeArray.h"
#include "platform/ComPtr.h"
#include "project/FlatFile.h"
#include "project/Workspace.h"

namespace nvdl {

namespace {

// The elements of a float array handed in a variant (directly or by reference).
std::span<float> arrayOf(VARIANT* v) {
    if (!v) return {};
    if (v->vt == (VT_ARRAY | VT_R4)) return floatArrayData(v->parray);
    if (v->vt == (VT_BYREF | VT_VARIANT) && v->pvarVal) return arrayOf(v->pvarVal);
    if (v->vt == (VT_BYREF | VT_ARRAY | VT_R4) && v->pparray) return floatArrayData(*v->pparray);
    return {};
}

// "%d/%m/%Y %H:%M:%S" of a date.
std::string dateText(DATE date) {
    DateParts p{};
    if (!dateToParts(date, p)) return {};
    char text[64];
    std::snprintf(text, sizeof text, "%02d/%02d/%04d %02d:%02d:%02d", p.day, p.month, p.year, p.hour, p.minute, p.second);
    return text;
}

struct Channel {
    ComPtr<IMeasurement> measurement;
    float gain = 1.0f;
};

// One block of a channel: its samples from `start`, its overload count, its gain.
bool writeBlock(FlatFileWriter& out, Channel& c, LONG start, std::vector<float>& samples) {
    LONG overload = 0;
    c.measurement->get_Overload(&overload);
    return SUCCEEDED(c.measurement->GetYValues(start, static_cast<LONG>(samples.size()), samples.data(), nullptr)) &&
           out.writeFloats(samples) && out.writeLong(overload) && out.writeFloat(c.gain);
}

LONG fileSamplesOf(Channel& c) {
    LONG samples = 0;
    c.measurement->get_FileSamples(&samples);
    return samples;
}

bool isRotationSpeed(IMeasurement* m) {
    Variant type;
    static const LONG kRpm = measurementEnumTable().lookupEnum(u"RPM");
    return SUCCEEDED(m->get_FunctionType(&type)) && SUCCEEDED(type.changeType(VT_I4)) && type.lVal == kRpm;
}

}  // namespace

HRESULT CWorkspace::StoreMeasurementsToFile(BSTR file, LONG format, LONG blockSize, float interval, SHORT dateFlag,
                                            LONG count, VARIANT* channels, VARIANT* gains) {
    if (!file || count < 0 || blockSize < 1) return E_INVALIDARG;
    const std::span<float> indices = arrayOf(channels), gainValues = arrayOf(gains);
    if (indices.size() < static_cast<std::size_t>(count)) return E_INVALIDARG;
    std::vector<Channel> selected;
    Channel carrier;
    for (LONG i = 0; i < count; ++i) {
        const float index = indices[static_cast<std::size_t>(i)];
        if (!(index >= 1 && index <= static_cast<float>(m_measurements.size()))) return E_INVALIDARG;
        Channel c{ComPtr<IMeasurement>::query(m_measurements.itemAt(static_cast<std::size_t>(index) - 1)),
                  static_cast<std::size_t>(i) < gainValues.size() ? gainValues[static_cast<std::size_t>(i)] : 1.0f};
        if (!c.measurement) return E_INVALIDARG;
        if (dateFlag == -1 && !carrier.measurement && isRotationSpeed(c.measurement.get())) carrier = std::move(c);
        else selected.push_back(std::move(c));
    }
    if (carrier.measurement) selected.push_back(carrier);  // the carrier goes behind the others

    FlatFileWriter out;
    if (!out.create(bstrToAnsi(file))) return STG_E_ACCESSDENIED;
    bool written = out.writeLong(format) && out.writeLong(count) && out.writeLong(blockSize) && out.writeFloat(interval);
    DATE start = 0;
    if (!selected.empty()) selected.front().measurement->get_MeasurementTime(&start);
    std::vector<float> samples(static_cast<std::size_t>(blockSize));
    for (LONG position = 0; written; position += blockSize) {
        bool ended = false;
        for (Channel& c : selected) {
            const LONG fileSamples = fileSamplesOf(c);
            if (fileSamples < 1) return E_FAIL;
            if (static_cast<long long>(position) + blockSize > fileSamples) {
                ended = true;
                break;
            }
            written = writeBlock(out, c, position, samples);
            if (!written) break;
        }
        if (ended || !written || selected.empty()) break;
        std::string text = "DateTimeFlag=" + dateText(start + position * static_cast<double>(interval) / 86400.0);
        if (carrier.measurement) {
            float rotation = 0;
            carrier.measurement->GetYValues(position, 1, &rotation, nullptr);
            char value[32];
            std::snprintf(value, sizeof value, "%g", rotation);
            text += std::string(";") + "RotateTime=" + value;
        }
        written = out.writeString(text);
    }
    return written && out.close() ? S_OK : STG_E_WRITEFAULT;
}

}  // namespace nvdl
