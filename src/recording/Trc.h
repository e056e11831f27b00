// CTrc: a recording file as a whole. It owns the file and the four top sections, always in this
// order in the root table at offset 0 of the file: setups, recorder, stored measurements, test
// definition. Each section stands directly behind the one before, so the root table's size field
// is the size of the file.
//
// Writing: fill the sections (the setup must be complete: it fixes the room for scans), Create
// (lays the tree out and makes the file its final length at once, scans zero-filled), Write each
// section, write scans and measurement data, Close (rewrites the root table).
// Reading: Open reads the file's version and the root table only; every top section is read on
// demand by its own Read, once. After Close the object is as if newly made.
#pragma once

#include <cstdint>
#include <memory>

#include "recording/TrcBaseSection.h"
#include "recording/TrcToc.h"

namespace nvdl::trc {

class CTrcFile;
class CTrcSetupsSection;
class CTrcRecorderSection;
class CTrcMeasurementsSection;
class CTrcTestDefSection;

class CTrc : public CTrcBaseSection {
public:
    CTrc();
    ~CTrc() override;

    int Init();  // a fresh file object and fresh, empty sections
    int Create(const char* name);
    int Open(const char* name);  // 0 for a file older than the oldest readable version
    int Close();

    int IsOpened() const;
    const char* GetFilename() const;
    CTrcFile* GetFile() const { return m_file.get(); }

    std::int64_t GetSectionSize() override;
    CTrcTableManagment* GetToc() override { return &m_toc; }
    CTrcSetupsSection& GetSetups() { return *m_setups; }
    CTrcRecorderSection& GetRecorder() { return *m_recorder; }
    CTrcMeasurementsSection& GetMeasurements() { return *m_measurements; }
    CTrcTestDefSection& GetTestDefinition() { return *m_testDefinition; }

    // Gives every top section its offset and size in the root table, and lets each lay out its own tree.
    int UpdateTocSizesAndOffsets();

private:
    CTrcBaseSection& topSection(long index);

    std::unique_ptr<CTrcFile> m_file;
    CTrcTableManagment m_toc;
    std::unique_ptr<CTrcTestDefSection> m_testDefinition;
    std::unique_ptr<CTrcSetupsSection> m_setups;
    std::unique_ptr<CTrcMeasurementsSection> m_measurements;
    std::unique_ptr<CTrcRecorderSection> m_recorder;
};

}  // namespace nvdl::trc
