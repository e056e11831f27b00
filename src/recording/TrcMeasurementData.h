// The bulk data of one stored measurement or sub-measurement. CTrcMeasurementDataSection is a table
// of two entries followed by the X values (only for axis types with a stored X table) and the Y
// values (the real part, and the imaginary part behind it for a complex curve). The X and Y
// sections have no block of their own: their sizes follow from the header of the measurement that
// owns the data (`Size`, `XAxisType`, `Complex`), and they move floats between the caller's buffer
// and the file by position, so a curve is never loaded whole. Positions and counts are in floats.
#pragma once

#include <cstdint>

#include "recording/TrcBaseSection.h"
#include "recording/TrcToc.h"

namespace nvdl::trc {

class CTrcFile;
class CTrcMeasurementDataSection;
class CTrcMeasurementHeaderSection;
class CTrcMeasurementSection;
class CTrcSubMeasurementSection;

// What X and Y share: one curve's floats in the file, reached through the data section that owns them.
class CTrcMeasurementCurveSection : public CTrcBaseSection {
protected:
    explicit CTrcMeasurementCurveSection(CTrcMeasurementDataSection& data) : m_data(data) {}
    int InitAs(SectionType type, const char* name);

    // Moves `count` floats at `position` of a curve of `floats` values; `behind` skips the first
    // `Size` floats of the section (the imaginary part stands behind the real one).
    int ReadFloats(std::int64_t position, float* buffer, std::int64_t count, std::int64_t floats, bool behind);
    int WriteFloats(std::int64_t position, const float* buffer, std::int64_t count, std::int64_t floats, bool behind);
    CTrcMeasurementHeaderSection* Header() const;

private:
    // The file offset of the move, or -1 when it is refused.
    std::int64_t Locate(bool writing, std::int64_t position, const void* buffer, std::int64_t count,
                        std::int64_t floats, bool behind);

    CTrcMeasurementDataSection& m_data;
};

class CTrcMeasurementXDataSection final : public CTrcMeasurementCurveSection {
public:
    explicit CTrcMeasurementXDataSection(CTrcMeasurementDataSection& data) : CTrcMeasurementCurveSection(data) {
        Init();
    }
    int Init() { return InitAs(kMeasurementXDataSection, "MEAS_X_SECTION"); }

    int Write(std::int64_t position, const float* buffer, std::int64_t count);
    int Read(std::int64_t position, float* buffer, std::int64_t count);
    std::int64_t GetSectionSize() override;  // `Size` floats for an axis with a stored table, else nothing
};

class CTrcMeasurementYDataSection final : public CTrcMeasurementCurveSection {
public:
    explicit CTrcMeasurementYDataSection(CTrcMeasurementDataSection& data) : CTrcMeasurementCurveSection(data) {
        Init();
    }
    int Init() { return InitAs(kMeasurementYDataSection, "MEAS_Y_SECTION"); }

    int WriteReal(std::int64_t position, const float* buffer, std::int64_t count);
    int ReadReal(std::int64_t position, float* buffer, std::int64_t count);
    // On a real curve these are not refused: they reach the bytes behind the real part, whatever
    // stands there, as long as they lie inside the file.
    int WriteImag(std::int64_t position, const float* buffer, std::int64_t count);
    int ReadImag(std::int64_t position, float* buffer, std::int64_t count);
    std::int64_t GetSectionSize() override;  // `Size` floats, twice that for a complex curve

private:
    std::int64_t Floats();  // the values of one part
};

class CTrcMeasurementDataSection final : public CTrcBaseSection {
public:
    CTrcMeasurementDataSection() : m_x(*this), m_y(*this) { Reset(nullptr, nullptr, nullptr); }

    // A fresh data section of a measurement or a sub-measurement, whose header gives the sizes.
    int Init(CTrcFile* file, CTrcMeasurementSection* parent);
    int Init(CTrcFile* file, CTrcSubMeasurementSection* parent);
    // Replaces the file, parent and header only; the layout stays.
    int InternInit(CTrcFile* file, CTrcBaseSection* parent, CTrcMeasurementHeaderSection* header);

    CTrcMeasurementXDataSection& GetX() { return m_x; }
    CTrcMeasurementYDataSection& GetY() { return m_y; }
    CTrcBaseSection* GetParent() const { return m_parent; }
    CTrcMeasurementHeaderSection* GetHeader() const { return m_header; }
    CTrcFile* GetFile() const { return m_file; }

    std::int64_t GetSectionSize() override;
    CTrcTableManagment* GetToc() override { return &m_toc; }
    int UpdateTocSections();  // X behind the table, Y behind X

    // The owner is the measurement or sub-measurement whose table holds this section's entry.
    int Write(CTrcBaseSection* owner, CTrcFile* file);
    int Read(CTrcBaseSection* owner, CTrcFile* file);
    // Writes the table and zeros over the room of X and Y, so the whole curve exists in the file
    // before its values are written piece by piece.
    int InternWrite(CTrcFile* file);
    int InternRead(CTrcFile* file);  // the table only; X and Y learn their places, the values stay on disk

private:
    int Reset(CTrcFile* file, CTrcBaseSection* parent, CTrcMeasurementHeaderSection* header);

    CTrcFile* m_file = nullptr;
    CTrcBaseSection* m_parent = nullptr;
    CTrcMeasurementHeaderSection* m_header = nullptr;
    CTrcTableManagment m_toc;
    CTrcMeasurementXDataSection m_x;
    CTrcMeasurementYDataSection m_y;
};

}  // namespace nvdl::trc
