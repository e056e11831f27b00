// Opening and closing the chain of storages down to a measurement's backing stream.
#include "measurement/MeasurementDataStream.h"

#include "platform/CodePage.h"

namespace nvdl {

namespace {

constexpr DWORD kStorageRead = STGM_READ | STGM_SHARE_EXCLUSIVE;

template <class T>
void releaseLevel(T*& level) {
    if (level) level->Release();
    level = nullptr;
}

bool openStorage(IStorage* parent, const std::string& name, IStorage** child) {
    std::u16string wide = widen(name);
    return parent && SUCCEEDED(parent->OpenStorage(wide.c_str(), nullptr, kStorageRead, nullptr, 0, child)) && *child;
}

}  // namespace

IStream* MeasurementDataStream::open(const DataStreamPlace& place) {
    if (m_stream) {
        m_stream->AddRef();
        return m_stream;
    }
    if (place.file.empty() || place.stream.empty()) return nullptr;

    std::string streamName = place.stream;
    std::string parentStorage;
    if (std::size_t marker = streamName.find(kSubMeasurementMarker); marker != std::string::npos) {
        parentStorage = streamName.substr(0, marker);
        streamName = streamName.substr(marker);
    } else if (streamName.size() > kMaxDataStreamName) {
        streamName.resize(kMaxDataStreamName);
    }
    const bool sub = !parentStorage.empty();

    bool opened = SUCCEEDED(openCompoundFile(pathFromAnsi(place.file), STGM_READ | STGM_SHARE_DENY_WRITE, &m_file)) && m_file;
    IStorage* top = m_file;
    if (opened && place.inDataStorage == -1 && !place.subStorage.empty()) {
        opened = openStorage(m_file, "Data", &m_data) && openStorage(m_data, place.subStorage, &m_subStorage);
        top = m_subStorage;
    }
    opened = opened && openStorage(top, "Workspace", &m_workspace) &&
             openStorage(m_workspace, sub ? "SubBlocks" : "Blocks", &m_blocks);
    IStorage* holder = m_blocks;
    if (opened && sub) {
        opened = openStorage(m_blocks, parentStorage, &m_subBlock);
        holder = m_subBlock;
    }
    if (opened) {
        std::u16string wide = widen(streamName);
        opened = SUCCEEDED(holder->OpenStream(wide.c_str(), nullptr, kStorageRead, 0, &m_stream)) && m_stream;
    }
    if (!opened) {
        close();
        return nullptr;
    }
    m_stream->AddRef();
    return m_stream;
}

void MeasurementDataStream::close() {
    releaseLevel(m_stream);
    releaseLevel(m_subBlock);
    releaseLevel(m_blocks);
    releaseLevel(m_workspace);
    releaseLevel(m_subStorage);
    releaseLevel(m_data);
    releaseLevel(m_file);
}

}  // namespace nvdl
