// CTrcLoader: configuration, the file's states (closed, armed, open), the data format, the scan
// window and the conversions to physical units.
#include "access/TrcLoader.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "platform/ComPtr.h"
#include "platform/Registry.h"
#include "platform/RegistryTree.h"
#include "project/UnitClient.h"
#include "recording/TrcRecorderSection.h"

namespace nvdl::access {

namespace {

long settingOr(const std::optional<std::string>& text, long fallback) {
    return text ? std::strtol(text->c_str(), nullptr, 10) : fallback;
}

// The factor and offset of a unit by name in the units table; false (and 1, 0) when the table
// cannot be reached or has no such unit.
bool unitScale(const char* name, double& scale, double& offset) {
    scale = 1.0;
    offset = 0.0;
    if (!name || !*name) return false;
    IDimension* dimension = DimensionFromText(name, false);
    if (!dimension) return false;
    IUnit* unit = UnitOfDimension(dimension, name);
    const bool found = GetUnitScaleAndOffset(unit, scale, offset);
    if (unit) unit->Release();
    dimension->Release();
    return found;
}

}  // namespace

CTrcLoader::CTrcLoader() {
    constexpr std::array<std::string_view, 2> names{"MaxBlockSize", "LongFileFeature"};
    std::array<std::optional<std::string>, 2> values;
    registry::readSettings(names, values);
    m_maxBlockSize = settingOr(values[0], 32768);
    m_longFileFeature = static_cast<int>(settingOr(values[1], 0));
}

CTrcLoader::~CTrcLoader() { CloseFile(); }

int CTrcLoader::SetMaxBlockSize(long value) {
    m_maxBlockSize = value;
    char text[32];
    std::snprintf(text, sizeof text, "%ld", value);
    return registry::writeString(registry::Hive::CurrentUser, registry::kSettingsKey, "MaxBlockSize", text) ? 1 : 0;
}

int CTrcLoader::OpenFile(const char* name) {
    if (!name || !*name) return 0;
    CloseFile();
    if (!Open(name) || !IsFileOpened()) return 0;
    // The trace stays off: Start on a disabled log makes no file.
    m_log.SetEnable(false);
    m_log.Start("Compression", "c:\\temp\\Compression.txt");
    return 1;
}

int CTrcLoader::PrepareNew(const char* name) {
    if (!name || !*name) return 0;
    CloseFile();
    GetRecorder().GetHeader().SetEnabled(1);
    m_currentName = name;
    return 1;
}

int CTrcLoader::CloseFile() {
    if (IsOpened()) Close();
    m_previousName = std::move(m_currentName);
    m_currentName.clear();
    m_testDefinitionPath.clear();
    m_firstScan = 0;
    m_log.Stop();
    return 1;
}

int CTrcLoader::IsFileOpened() const { return IsOpened(); }

int CTrcLoader::SetDataFormat(long bits, float scaling) {
    auto& header = GetRecorder().GetHeader();
    header.SetDataSize(bits == 32 ? trc::kDataSizeFloat
                                  : trc::kDataSizeInt16);
    header.SetScalingFactor(scaling);
    if (IsOpened()) return GetRecorder().Write();
    return m_currentName.empty() ? 0 : 1;
}

int CTrcLoader::GetDataFormat(long* bits, float* scaling) {
    if (!bits || !scaling || !IsOpened()) return 0;
    if (!GetRecorder().Read() || !GetRecorder().GetHeader().GetEnabled()) return 0;
    *bits = GetRecorder().GetHeader().GetDataSize() != 0 ? 32 : 16;
    *scaling = GetRecorder().GetHeader().GetScalingFactor();
    return 1;
}

int CTrcLoader::SetScanWindow(std::int64_t firstScan) {
    if (firstScan < 0) return 0;
    m_firstScan = firstScan;
    return 1;
}

long CTrcLoader::ScanFromSample(std::int64_t sample, std::int64_t total, long blocksize) {
    if (sample < 0 || total <= 0 || blocksize < 1) return -1;
    const std::int64_t last = total / blocksize;
    if (sample >= total) return static_cast<long>(last);
    return static_cast<long>(std::min(sample / blocksize, last));
}

float CTrcLoader::ScaleSample(std::int16_t sample, float scale) {
    return scale == 0.0f ? 0.0f : static_cast<float>(sample) / scale;
}

float CTrcLoader::ScaleOfRange(float range) { return 32767.0f / (range > 0.0f ? range : 1.0f); }

int CTrcLoader::GetUnitConversion(const char* unit, float sensitivity, const char* calibrationType, float preGain,
                                  float channelOffset, float* offset, float* factor) {
    if (!offset || !factor) return 0;
    *factor = 1.0f;
    *offset = 0.0f;
    const ComPtr<IUnitService> service(GetOrCreateUnitService());
    if (!service) return 0;
    double a = 1.0, b = 0.0;
    unitScale(unit, a, b);
    double s = sensitivity;
    if (calibrationType && registry::equalsIgnoringCase(calibrationType, "mV/EU"))
        s = sensitivity != 0.0f ? 1000.0 / sensitivity : 1.0;
    double f = s * a;
    if (preGain != 0.0f) f /= preGain;
    *factor = static_cast<float>(f);
    *offset = static_cast<float>(b - a * channelOffset);
    return 1;
}

float CTrcLoader::GetRpmFactor() {
    // The quantity "Rotation speed" in "RPM": the table's factor of the unit takes rpm to the
    // quantity's base unit. Without the unit the values stay as they are.
    double scale = 1.0, offset = 0.0;
    if (!unitScale("RPM", scale, offset) || scale == 0.0) return 1.0f;
    return static_cast<float>(scale);
}

}  // namespace nvdl::access
