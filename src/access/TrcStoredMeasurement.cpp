// CTrcLoader::ReadStoredMeasurement: a measurement that the recorder stored beside the scans (an
// autopower, an FRF...) or one of its sub-measurements, with its header as stored and the first
// picture of its curves; its address in the file lets later reads page through the rest.
#include <cstdio>

#include "access/TrcMeasurementFill.h"
#include "frame/ClassTable.h"
#include "nvdl/Guid.h"
#include "recording/TrcMeasurement.h"
#include "recording/TrcMeasurements.h"
#include "recording/TrcSubMeasurement.h"
#include "recording/TrcSubMeasurements.h"

namespace nvdl::access {

namespace {

HRESULT putCode(CMeasurement& m, HRESULT (CMeasurement::*put)(VARIANT), long code) {
    Variant value = Variant::fromLong(code);
    return (m.*put)(value);
}

// The header's fields into the measurement, one to one.
void putHeader(CMeasurement& m, const trc::CTrcMeasurementHeaderSection& h) {
    putText(m, &CMeasurement::put_Name, h.GetName());
    putCode(m, &CMeasurement::put_FunctionType, h.GetFunctionType());
    putText(m, &CMeasurement::put_Response, h.GetResponse());
    m.put_ResponseChannel(h.GetResponseChannel());
    putText(m, &CMeasurement::put_Reference, h.GetReference());
    m.put_ReferenceChannel(h.GetReferenceChannel());
    m.put_Complex(h.GetComplex() ? -1 : 0);
    putCode(m, &CMeasurement::put_XAxisType, h.GetXAxisType());
    m.put_XStart(h.GetXStart());
    m.put_XIncrement(h.GetXIncrement());
    putText(m, &CMeasurement::put_StorageUnitX, h.GetStorageUnitX());
    putText(m, &CMeasurement::put_StorageUnitY, h.GetStorageUnitY());
    putText(m, &CMeasurement::put_XDimension, h.GetXDimension());
    putText(m, &CMeasurement::put_YDimension, h.GetYDimension());
    putText(m, &CMeasurement::put_ZDimension, h.GetZDimension());
    putCode(m, &CMeasurement::put_AveragingType, h.GetAveragingType());
    m.put_AveragingParameter(h.GetAveragingParameter());
    m.put_Averages(h.GetAverages());
    m.put_Overlap(h.GetOverlap());
    putCode(m, &CMeasurement::put_WindowType, h.GetWindowType());
    m.put_WindowParameter(h.GetWindowParameter());
    m.put_MeasurementTime(h.GetMeasurementTime());
    putText(m, &CMeasurement::put_TestId, h.GetTestId());
    putText(m, &CMeasurement::put_FunctionQualifier, h.GetFunctionQualifier());
    putText(m, &CMeasurement::put_AcousticWeighting, h.GetAcousticWeighting());
    putText(m, &CMeasurement::put_Environment, h.GetEnvironment());
    putText(m, &CMeasurement::put_UserId, h.GetUserId());
    m.put_Order(h.GetOrder());
    m.put_RPM(h.GetRPM());
    m.put_Z(h.GetZ());
    m.put_BandwidthCorrectionFactor(h.GetBandwidthCorrectionFactor());
    m.put_Power(h.GetPower());
    putText(m, &CMeasurement::put_SoftwareRevision, h.GetSoftwareRevision());
    m.put_CheckOnUnicId(0);
}

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
    putHeader(m, *header);
    if (!fillFirstPicture(*this, m, kStoredMeasurement, measurement, subMeasurement >= 1 ? subMeasurement : -1,
                          header->GetSize()))
        return nullptr;
    m.put_Modified(0);
    return static_cast<IMeasurement*>(owned.release());
}

}  // namespace nvdl::access
