// CMultiInput: the automation class through which clients reach the multi-input analysis (CMimo).
// It keeps the measurements it is given as flat records, runs the analyses on them and hands the
// results out as new measurements.
#pragma once

#include <memory>
#include <vector>

#include "Common/Source/Mimo.h"
#include "frame/ObjectFrame.h"
#include "nvdl/IMultiInput.h"

namespace nvdl {

class CMultiInput final : public CObjectFrame<CMultiInput, IMultiInput> {
public:
    static constexpr const char* kClassName = "CMultiInput";
    static constexpr const CLSID& kClassId = CLSID_CMultiInput;

    static IDispatch* create();
    CMultiInput();

    NVDL_IMPLEMENTS(NVDL_IMULTIINPUT_MEMBERS)

private:
    // Appends the measurement, or each measurement of the collection, as a flat record.
    HRESULT add(IDispatch* measurements, std::vector<mimo::RecordBytes>& to);
    HRESULT addOne(IDispatch* item, std::vector<mimo::RecordBytes>& to);
    // The counts the analysis runs with: those set, else those the measurements give.
    HRESULT countsFor(CMimo& mimo);
    // A new measurement made from one output record.
    HRESULT answer(const std::vector<mimo::RecordBytes>& records, long position, bool inRange, IMeasurement** result);
    HRESULT fail(HRESULT status, const std::string& message);

    LONG m_inputs = 0;
    LONG m_responses = 0;
    LONG m_lines = 0;
    std::vector<mimo::RecordBytes> m_gff, m_gxf, m_gxx;
    std::unique_ptr<CMimo> m_results;  // the analysis of the last Analyze that ran to its end
};

}  // namespace nvdl
