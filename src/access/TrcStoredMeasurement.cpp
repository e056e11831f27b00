// CTrcLoader::ReadStoredMeasurement: a measurement that the recorder stored beside the scans (an
// autopower, an FRF...) or one of its sub-measurements, with its header as stored and the first
// picture of its curves; its address in the file lets later reads page through the rest.
#include <cstdio>
#include <string>
#include <type_traits>

#include "access/TrcMeasurementFill.h"
#include "frame/ClassTable.h"
#include "nvdl/Guid.h"
#include "recording/TrcMeasurement.h"
#include "recording/TrcMeasurements.h"
#include "recording/TrcSubMeasurement.h"
#include "recording/TrcSubMeasurements.h"

namespace nvdl::access {

namespace {

using Block = trc::MeasurementHeaderBlock;
using PutField = void (*)(CMeasurement& m, const Block& from);

// The row of a member of the header's block and the measurement's setter of the same value: texts
// go in as texts, enumerations as their codes, numbers as they are.
template <auto Field, auto Put>
constexpr PutField row() {
    return [](CMeasurement& m, const Block& from) {
        const auto& value = from.*Field;
        if constexpr (std::is_same_v<std::remove_cvref_t<decltype(value)>, std::string>) {
            putText(m, Put, value.c_str());
        } else if constexpr (std::is_invocable_v<decltype(Put), CMeasurement&, VARIANT>) {
            Variant code = Variant::fromLong(value);
            (m.*Put)(code);
        } else {
            (m.*Put)(value);
        }
    };
}
#define NVDL_HEADER_FIELD(name) row<&Block::name, &CMeasurement::put_##name>()

// The header's fields into the measurement, one to one.
constexpr PutField kHeaderRows[] = {
    NVDL_HEADER_FIELD(Name), NVDL_HEADER_FIELD(FunctionType), NVDL_HEADER_FIELD(Response),
    NVDL_HEADER_FIELD(ResponseChannel), NVDL_HEADER_FIELD(Reference), NVDL_HEADER_FIELD(ReferenceChannel),
    [](CMeasurement& m, const Block& from) { m.put_Complex(from.Complex ? -1 : 0); },
    NVDL_HEADER_FIELD(XAxisType), NVDL_HEADER_FIELD(XStart), NVDL_HEADER_FIELD(XIncrement),
    NVDL_HEADER_FIELD(StorageUnitX), NVDL_HEADER_FIELD(StorageUnitY),
    NVDL_HEADER_FIELD(XDimension), NVDL_HEADER_FIELD(YDimension), NVDL_HEADER_FIELD(ZDimension),
    NVDL_HEADER_FIELD(AveragingType), NVDL_HEADER_FIELD(AveragingParameter), NVDL_HEADER_FIELD(Averages),
    NVDL_HEADER_FIELD(Overlap), NVDL_HEADER_FIELD(WindowType), NVDL_HEADER_FIELD(WindowParameter),
    NVDL_HEADER_FIELD(MeasurementTime), NVDL_HEADER_FIELD(TestId), NVDL_HEADER_FIELD(FunctionQualifier),
    NVDL_HEADER_FIELD(AcousticWeighting), NVDL_HEADER_FIELD(Environment), NVDL_HEADER_FIELD(UserId),
    NVDL_HEADER_FIELD(Order), NVDL_HEADER_FIELD(RPM), NVDL_HEADER_FIELD(Z),
    NVDL_HEADER_FIELD(BandwidthCorrectionFactor), NVDL_HEADER_FIELD(Power), NVDL_HEADER_FIELD(SoftwareRevision),
};
#undef NVDL_HEADER_FIELD

}  // namespace

IMeasurement* CTrcLoader::ReadStoredMeasurement(long measurement, long subMeasurement) {
    const ClassInfo* info = findClass(CLSID_CTrcLoader);
    const std::string progId = info ? info->progId : kProgId;
    if (!IsOpened() || measurement < 1) return nullptr;
    trc::CTrcMeasurementsSection& list = GetMeasurements();
    if (!list.IsRead() && !list.Read(-1)) return nullptr;
    trc::CTrcMeasurementSection* stored = list.GetItem(measurement - 1);
    if (!stored) return nullptr;
    trc::CTrcMeasurementHeaderSection* header = &stored->GetHeader();
    char address[160];
    std::snprintf(address, sizeof address, "%s:%s:%ld", progId.c_str(), "Measurements", measurement - 1);
    if (subMeasurement >= 1) {
        trc::CTrcSubMeasurementSection* sub = stored->GetMeasurements().GetItem(subMeasurement - 1);
        if (!sub) return nullptr;
        header = &sub->GetHeader();
        std::snprintf(address, sizeof address, "%s:%s(%ld):%s:%ld", progId.c_str(), "Measurements", measurement - 1,
                      "SubMeasurements", subMeasurement - 1);
    }

    MeasurementRef owned(CMeasurement::createMeasurement());
    if (!owned) return nullptr;
    CMeasurement& m = *owned;
    if (FAILED(putText(m, &CMeasurement::put_ClsidLoader, formatGuid(CLSID_CTrcLoader))) ||
        FAILED(putText(m, &CMeasurement::put_ChannelFileID, address)))
        return nullptr;
    const Bstr file(std::string_view{GetFilename()}), empty(std::string_view{});
    if (FAILED(m.Location(file.get(), 0, empty.get(), empty.get(), 0))) return nullptr;
    for (PutField put : kHeaderRows) put(m, header->GetBlock());
    m.put_CheckOnUnicId(0);
    if (!fillFirstPicture(*this, m, kStoredMeasurement, measurement, subMeasurement >= 1 ? subMeasurement : -1,
                          header->GetSize()))
        return nullptr;
    m.put_Modified(0);
    return static_cast<IMeasurement*>(owned.release());
}

}  // namespace nvdl::access
