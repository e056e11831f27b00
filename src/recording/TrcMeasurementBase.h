// CTrcMeasurementBase: what a stored measurement and a stored sub-measurement have in common. Each
// is a main table ("main header") with one entry per part: 0 the header, 1 the data, and for a
// measurement 2 its list of sub-measurements. The parts do not follow the table: the list that owns
// the measurement puts all main tables together, then all headers, then all data, so the
// measurement's own entry carries the offsets of its header and data besides its table's.
#pragma once

#include <cstdint>

#include "recording/TrcBaseSection.h"
#include "recording/TrcMeasurementData.h"
#include "recording/TrcMeasurementHeader.h"
#include "recording/TrcToc.h"

namespace nvdl::trc {

class CTrcFile;
class CTrcSubMeasurementsSection;

class CTrcMeasurementBase : public CTrcBaseSection {
public:
    CTrcMeasurementHeaderSection& GetHeader() { return m_header; }
    CTrcMeasurementDataSection& GetData() { return m_data; }

    std::int64_t GetMainHeaderSize() const { return tocSize(m_parts); }
    // What this measurement puts in its list's data zone: its data, then its sub-measurements.
    std::int64_t GetDataZoneSize();
    std::int64_t GetSectionSize() override {
        return GetMainHeaderSize() + m_header.GetSectionSize() + GetDataZoneSize();
    }
    CTrcTableManagment* GetToc() override { return &m_toc; }

    // Places the parts from the header and data offsets that the list gave this measurement.
    int UpdateTocSections();
    // The list is the one whose table holds this measurement's entry.
    int Write(CTrcBaseSection* list, CTrcFile* file);
    int Read(CTrcBaseSection* list, CTrcFile* file);

protected:
    explicit CTrcMeasurementBase(long parts) : m_parts(parts) {}
    int Reset(SectionType type);  // a fresh header and table; the data is reset by the kind
    int Attach(CTrcFile* file);   // the data's file, parent and header; the layout is kept
    virtual CTrcSubMeasurementsSection* SubMeasurements() { return nullptr; }

    CTrcTableManagment m_toc;
    CTrcMeasurementHeaderSection m_header;
    CTrcMeasurementDataSection m_data;

private:
    long m_parts;
};

}  // namespace nvdl::trc
