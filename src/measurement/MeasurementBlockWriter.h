// CMeasurementBlockWriter: a long time record written block by block into a stream, in the layout of
// the stored measurement record, without the record ever being held in memory.
#pragma once

#include <string>

#include "nvdl/IMeasurementBlockWriter.h"

namespace nvdl {

class CMeasurement;

class CMeasurementBlockWriter final : public IMeasurementBlockWriter {
public:
    // A new writer with one reference, held by the caller.
    static CMeasurementBlockWriter* create();

    HRESULT QueryInterface(REFIID riid, void** ppv) override;
    ULONG AddRef() override;
    ULONG Release() override;

    HRESULT SetStorage(IStorage* storage) override;
    HRESULT Create(IStorage* storage, BSTR name) override;
    HRESULT IsOpen(SHORT* open) override;
    HRESULT BeginTimeRecord(LONG blocks, LONG blockSize, double sampleFrequency, float xStart, BSTR xUnit, BSTR yUnit,
                            BSTR response, BSTR sensitivityUnit, double sensitivity, double gain,
                            IMeasurement* templateRecord) override;
    HRESULT BeginFromParameters(IMeasurement* source) override;
    HRESULT WriteBlock(const float* samples, LONG count, SHORT useCalibration) override;
    HRESULT Finish(ICollection* parameters) override;
    HRESULT Close() override;

    // The name that the next BeginTimeRecord writes into the record; empty by default.
    void SetRecordName(std::string name) { m_name = std::move(name); }

    // Tags of the header: without and with a template's paging block.
    static constexpr LONG kTag = 20021112;
    static constexpr LONG kTemplateTag = 20030819;

private:
    CMeasurementBlockWriter();
    ~CMeasurementBlockWriter();

    static void pagingBlockOf(const CMeasurement& source, std::uint8_t* block, std::int64_t samples,
                              std::uint64_t dataOffset);
    HRESULT writeAt(std::uint64_t position, const void* bytes, std::size_t size);
    void releaseStream();

    ULONG m_cRef = 1;
    IStorage* m_storage = nullptr;
    IStream* m_stream = nullptr;
    LONG m_blockSize = 0;        // the most samples one WriteBlock takes
    std::int64_t m_written = 0;  // samples written since the header
    std::uint64_t m_headerSize = 0;
    bool m_hasPagingBlock = false;
    double m_scale = 1.0;
    double m_offset = 0.0;
    double m_calibrationFactor = 1.0;
    std::string m_name;
};

}  // namespace nvdl
