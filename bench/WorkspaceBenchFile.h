// A workspace of ten time records written by the block writer, as the workspace file loader writes
// them: the content of the file-open benchmarks, as a workspace file or nested in a project file.
#pragma once

#include <string>
#include <vector>

#include "measurement/Measurement.h"
#include "measurement/MeasurementBlockWriter.h"
#include "platform/ComPtr.h"
#include "project/WkdStorage.h"

namespace nvdl::bench {

constexpr int kMeasurements = 10;
constexpr LONG kBlockSize = 250'000;  // samples per written block: 1 MB

// Writes the workspace tree into `root`: ten time records of `blocks` blocks each.
inline void writeTimeRecordWorkspace(IStorage* root, LONG blocks) {
    ComPtr<IStorage> workspace, storage;
    writeWkdHead(root, "bench", 0, workspace.out());
    workspace->CreateStorage(u"Blocks", STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0, 0, storage.out());
    std::vector<float> block(kBlockSize);
    for (std::size_t i = 0; i < block.size(); ++i) block[i] = static_cast<float>(i % 997) * 0.01f;
    for (int m = 0; m < kMeasurements; ++m) {
        ComPtr<CMeasurement> source(CMeasurement::createMeasurement());
        auto writer = ComPtr<IMeasurementBlockWriter>::query(static_cast<IMeasurement*>(source.get()));
        Bstr name{std::string_view{"Meas<" + std::to_string(m) + ">"}}, unit{std::string_view{"s"}};
        Bstr none{std::string_view{}};
        writer->Create(storage.get(), name.get());
        writer->BeginTimeRecord(blocks, kBlockSize, 1000.0, 0.0f, unit.get(), unit.get(), none.get(), none.get(), 0.0, 0.0,
                                nullptr);
        for (LONG b = 0; b < blocks; ++b) writer->WriteBlock(block.data(), kBlockSize, 0);
        writer->Finish(nullptr);
        writer->Close();
    }
}

}  // namespace nvdl::bench
