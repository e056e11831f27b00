// The way from a measurement to its backing stream inside a workspace file: the chain of storages
// from the file down to the stream, opened on first use and kept until closed.
#pragma once

#include <string>

#include "nvdl/Storage.h"

namespace nvdl {

// Where a measurement's stream lies: the file, whether the workspace is a sub-storage of the file's
// "Data" storage, that sub-storage's name, and the stream's name in "Workspace/Blocks" (or, for a
// sub-measurement, "<storage>SubMeas<...>" in "Workspace/SubBlocks/<storage>").
struct DataStreamPlace {
    std::string file;
    short inDataStorage = 0;
    std::string subStorage;
    std::string stream;
};

class MeasurementDataStream {
public:
    MeasurementDataStream() = default;
    MeasurementDataStream(const MeasurementDataStream&) = delete;
    MeasurementDataStream& operator=(const MeasurementDataStream&) = delete;
    ~MeasurementDataStream() { close(); }

    // The stream with one more reference for the caller, or null. An open stream is reused; otherwise
    // each level is opened in turn for reading, and a failure at any level releases them all again.
    IStream* open(const DataStreamPlace& place);
    // Releases every level, the stream first.
    void close();
    bool isOpen() const { return m_stream != nullptr; }

private:
    IStream* m_stream = nullptr;
    IStorage* m_subBlock = nullptr;  // the storage of a sub-measurement's parent under "SubBlocks"
    IStorage* m_blocks = nullptr;    // "Blocks" or "SubBlocks"
    IStorage* m_workspace = nullptr;
    IStorage* m_subStorage = nullptr;
    IStorage* m_data = nullptr;
    IStorage* m_file = nullptr;
};

// The text that marks a sub-measurement's stream name.
inline constexpr const char* kSubMeasurementMarker = "SubMeas<";
// Stream names longer than this are cut.
inline constexpr std::size_t kMaxDataStreamName = 599;

}  // namespace nvdl
