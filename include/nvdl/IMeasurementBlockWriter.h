// IMeasurementBlockWriter: writes one time record of any length straight into a stream, block by
// block, with no measurement held in memory. A measurement answers a request for this interface
// with a new writer each time.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/ICollection.h"
#include "nvdl/Storage.h"

struct IMeasurement;

struct IMeasurementBlockWriter : IUnknown {
    static constexpr const IID& iid = IID_IMeasurementBlockWriter;

    // The storage in which Create makes the stream when it is given none.
    virtual HRESULT SetStorage(IStorage* storage) = 0;
    // Makes the stream `name` in `storage` (or the storage set before), replacing one of that name,
    // and keeps it open for writing.
    virtual HRESULT Create(IStorage* storage, BSTR name) = 0;
    // -1 while a stream is held, else 0.
    virtual HRESULT IsOpen(SHORT* open) = 0;
    // Writes the header of a time record of `blocks` blocks of `blockSize` samples. The Y unit gives
    // scale and offset of the calibration; a sensitivity in "mV/EU" and a non-zero gain refine the
    // factor. With a template measurement its paging and location block is taken over.
    virtual HRESULT BeginTimeRecord(LONG blocks, LONG blockSize, double sampleFrequency, float xStart, BSTR xUnit,
                                    BSTR yUnit, BSTR response, BSTR sensitivityUnit, double sensitivity, double gain,
                                    IMeasurement* templateRecord) = 0;
    // BeginTimeRecord from the parameters "Blocksize", "SampleFrequency", "X-Unit" and "Y-Unit" of `source`.
    virtual HRESULT BeginFromParameters(IMeasurement* source) = 0;
    // Appends `count` samples (1 to the block size); with `useCalibration` -1 each becomes
    // factor times sample plus offset.
    virtual HRESULT WriteBlock(const float* samples, LONG count, SHORT useCalibration) = 0;
    // Completes the header (samples written, parameter count and text length) and appends the
    // parameters' names and values, each ended by a zero byte. `parameters` may be null.
    virtual HRESULT Finish(ICollection* parameters) = 0;
    // Lets the stream go and resets the calibration. Always answers E_FAIL, which callers ignore.
    virtual HRESULT Close() = 0;

protected:
    ~IMeasurementBlockWriter() = default;
};
