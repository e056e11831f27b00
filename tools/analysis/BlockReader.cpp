#include "analysis/BlockReader.h"

#include <algorithm>

#include "measurement/Measurement.h"
#include "nvdl/SafeArray.h"
#include "nvdl/Variant.h"

namespace nvdl::analysis {

std::int64_t recordLength(IMeasurement* record) {
    LONG size = 0, fileSamples = 0;
    record->get_Size(&size);
    record->get_FileSamples(&fileSamples);
    return std::max(size, fileSamples);
}

bool readSpan(IMeasurement* record, std::int64_t start, long count, float* out, std::string& error) {
    LONG size = 0, fileSamples = 0;
    record->get_Size(&size);
    record->get_FileSamples(&fileSamples);
    const std::int64_t length = std::max(size, fileSamples);
    if (start < 0 || count < 1 || start + count > length) {
        error = "the span of " + std::to_string(count) + " samples from " + std::to_string(start) +
                " lies outside the record of " + std::to_string(length);
        return false;
    }
    if (fileSamples <= size) return SUCCEEDED(record->GetYValues(static_cast<LONG>(start), count, out, nullptr));

    // A paged record: the span comes in as part of a block, whose first element need not be the
    // span's first sample (near the end of the record the block reaches back).
    SHORT useful = 0;
    if (FAILED(record->ReadData(static_cast<LONG>(start), count)) || FAILED(record->get_IsUsefullData(&useful)) ||
        !useful) {
        error = "cannot read " + std::to_string(count) + " samples from " + std::to_string(start) +
                " of the record at once";
        return false;
    }
    const CMeasurement* held = CMeasurement::from(record);
    const LONG first = held ? held->GetDataIndex(static_cast<LONG>(start)) : -1;
    record->get_Size(&size);
    if (first < 0 || first + count > size) {
        error = "the record's block does not hold the span from " + std::to_string(start);
        return false;
    }
    Variant section;
    if (FAILED(record->get_YRealSectionArray(first + count, 0, &section)) || !(section.vt & VT_ARRAY)) {
        error = "the record's samples cannot be read";
        return false;
    }
    const std::span<float> values = floatArrayData(section.parray);
    if (values.size() < static_cast<std::size_t>(first + count)) {
        error = "the record's samples cannot be read";
        return false;
    }
    std::copy_n(values.begin() + first, count, out);
    return true;
}

}  // namespace nvdl::analysis
