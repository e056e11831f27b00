// The persistence helpers a measurement owns: one stream helper per readable generation of the
// stored measurement record and one storage helper. They have no count of their own: their
// reference operations are the measurement's.
//
// Generations are named by a date tag. A tag t maps to a generation, and each generation has its
// own interface identity, asked of the measurement to get the helper that reads it:
//
//   tag t                          generation   identity                            helper's tag
//   t <= 19951205 (19951107 too)   1            IID_IMeasurementPersistGeneration1  "19951205"
//   t <= 19960905                  2            IID_IMeasurementPersistGeneration2  "19960905"
//   t <= 19970312                  3            IID_IMeasurementPersistGeneration3  "19970312"
//   t <= 19970805                  4            IID_IMeasurementPersistGeneration4  "19970805"
//   t <  19990222                  5            IID_IMeasurementPersistGeneration5  "19970819"
//   t <  19991006                  6            IID_IMeasurementPersistGeneration6  "19990222"
//   t <  20021112                  7            IID_IMeasurementPersistGeneration7  "19991006"
//   t >= 20021112                  8            IID_IMeasurementPersistGeneration8  "20021112"
//
// Generation 8 reads the tags 20021112, 20030819 and 20071012. The standard IPersistStream (and
// IPersist) of a measurement is the helper of generation 8; IPersistStorage is the storage helper,
// which keeps the record in the stream "Measurement" of the storage it is given. Every helper
// writes the newest record, 20071012.
#pragma once

#include <array>
#include <string>

#include "frame/PersistCompanion.h"
#include "nvdl/Persist.h"

namespace nvdl {

class CMeasurement;

namespace measurement_tag {
inline constexpr LONG k19951107 = 19951107;
inline constexpr LONG k19951205 = 19951205;
inline constexpr LONG k19960905 = 19960905;
inline constexpr LONG k19970312 = 19970312;
inline constexpr LONG k19970805 = 19970805;
inline constexpr LONG k19970819 = 19970819;
inline constexpr LONG k19990222 = 19990222;
inline constexpr LONG k19991006 = 19991006;
inline constexpr LONG k20021112 = 20021112;
inline constexpr LONG k20030819 = 20030819;
inline constexpr LONG k20071012 = 20071012;
// The generation that the writer produces.
inline constexpr LONG kWritten = k20071012;
}  // namespace measurement_tag

// The generation (1 to 8) that reads a tag. Every value maps to one.
int measurementGenerationOfTag(LONG tag);
// The interface identity of the helper that reads a tag.
const IID& measurementPersistIidOfTag(LONG tag);

// A stream persistence helper: Load reads the generation of its own tag, Save writes 20071012.
class CMeasurementPersistStream final : public CPersistCompanion<CMeasurement, IPersistStream> {
public:
    CMeasurementPersistStream(CMeasurement& owner, const char* tag) : CPersistCompanion(owner), m_tag(tag) {}

    HRESULT Load(IStream* stream) override;
    // Does not clear Modified whatever `clearDirty` says: the caller clears it.
    HRESULT Save(IStream* stream, int clearDirty) override;
    // 0: the record has no fixed upper size.
    HRESULT GetSizeMax(std::uint64_t* size) override;

    const std::string& tag() const { return m_tag; }

private:
    std::string m_tag;
};

// The storage persistence helper: the record lies in the stream "Measurement" of the storage.
class CMeasurementPersistStorage final : public CPersistCompanion<CMeasurement, IPersistStorage> {
public:
    static constexpr const char16_t* kStreamName = u"Measurement";

    CMeasurementPersistStorage(CMeasurement& owner, CMeasurementPersistStream& standard)
        : CPersistCompanion(owner), m_standard(standard) {}

    HRESULT InitNew(IStorage* storage) override;
    HRESULT Load(IStorage* storage) override;
    HRESULT Save(IStorage* storage, int sameStorage) override;
    HRESULT SaveCompleted(IStorage* storage) override;
    HRESULT HandsOffStorage() override;

private:
    CMeasurementPersistStream& m_standard;
};

// All helpers of one measurement, embedded in it.
class MeasurementPersistHelpers {
public:
    explicit MeasurementPersistHelpers(CMeasurement& owner);

    // Answers the persistence interfaces with one reference on the measurement; E_NOINTERFACE
    // (and *ppv untouched) for any other identity.
    HRESULT query(REFIID riid, void** ppv);

private:
    std::array<CMeasurementPersistStream, 8> m_generations;
    CMeasurementPersistStorage m_storage;
};

}  // namespace nvdl
