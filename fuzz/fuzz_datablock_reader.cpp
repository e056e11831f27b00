// libFuzzer target for data blocks: the first byte is the number of records, the rest the packed
// image; every measurement of an accepted image is made from its record.
#include <cstddef>
#include <cstdint>

#include "measurement/DataBlock.h"
#include "platform/ComPtr.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    nvdl::ComPtr<nvdl::CDataBlock> block(dynamic_cast<nvdl::CDataBlock*>(nvdl::CFrameBase::of(nvdl::CDataBlock::create())));
    if (FAILED(block->InitializeChecked(data[0] % 8, {data + 1, size - 1}))) return 0;
    LONG count = 0;
    block->get_MeasurementsCount(&count);
    for (LONG i = 0; i < count; ++i) {
        IMeasurement* m = nullptr;
        if (SUCCEEDED(block->get_Measurement(i, &m)) && m) m->Release();
    }
    return 0;
}
