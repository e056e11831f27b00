// CTransducer: the sensor on an input, a record of plain values with its input mode table.
#pragma once

#include <string>

#include "frame/EnumTable.h"
#include "nvdl/ITransducer.h"
#include "setup/SectionFrame.h"

namespace nvdl {

struct TransducerFields {
    std::string SerialNumber;
    std::string Model;
    std::int32_t InputMode = 130;
    float Sensitivity = 1.0f;
    std::string Unit = "Volt";
    std::string CalibrationType = "EU/V";
    double CalibrationDate = 0.0;
    double CalibrationDue = 0.0;
    std::string Comment;
};

class CTransducer final : public CSectionFrame<CTransducer, ITransducer, TransducerFields> {
public:
    static constexpr const char* kClassName = "CTransducer";
    static constexpr const CLSID& kClassId = CLSID_CTransducer;
    static const section::Record<TransducerFields, 1> kRecord;
    static const EnumTable kEnums;

    static IDispatch* create() { return (new CTransducer)->dispatch(); }
    CTransducer() : CSectionFrame(IID_ITransducer) {}

    NVDL_IMPLEMENTS(NVDL_ITRANSDUCER_MEMBERS)
};

}  // namespace nvdl
