// Converting a TEAC recording into a project file. The recording is read by the TEAC reader, a
// component of another module (nvdl/ITeacReader.h); the project file gets one workspace,
// "Workspace1", with one time record per channel. The records are written block by block straight
// into the file, so that a recording of any length passes through a buffer of one block.
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

#include "measurement/MeasurementBlockWriter.h"
#include "nvdl/ITeacReader.h"
#include "nvdl/ServerEntry.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"
#include "platform/DebugTrace.h"
#include "platform/Host.h"
#include "project/LoaderPlugin.h"
#include "project/Project.h"
#include "project/ProjectFile.h"
#include "project/SmallStreams.h"
#include "project/WkdStorage.h"

namespace nvdl {

namespace {

// The project file: transacted, read-write, exclusive, replacing an existing file.
constexpr DWORD kProjectMode = STGM_TRANSACTED | STGM_CREATE | STGM_SHARE_EXCLUSIVE | STGM_READWRITE;
constexpr DWORD kCreate = STGM_CREATE | STGM_SHARE_EXCLUSIVE | STGM_WRITE;
// The bytes of samples after which all that was written is committed to the file.
constexpr std::uint64_t kCommitBytes = 0x13FFFFF;
// The largest block buffer (all channels) that a reader's setup may ask for, in samples.
constexpr std::int64_t kMaxBufferSamples = std::int64_t{1} << 24;

// Notes the trace step of a failure and hands its status on.
HRESULT failedAt(std::string& step, const char* at, HRESULT status) {
    step = at;
    return status;
}

struct Acquisition {
    double frequency = 0.0;
    LONG blockSize = 0, samples = 0, channels = 0;
};

// The reader: the library's class object when that is the reader itself, else a new instance
// from the class object.
HRESULT createReader(ComPtr<ITeacReader>& reader) {
    if (SUCCEEDED(GetPluginClassObject(CLSID_TeacRecordingReader, IID_ITeacReader, reader.outVoid())) && reader)
        return S_OK;
    ComPtr<IClassFactory> factory;
    HRESULT h = GetPluginClassObject(CLSID_TeacRecordingReader, IID_IClassFactory, factory.outVoid());
    if (FAILED(h)) return h;
    ITeacReader* made = nullptr;
    h = factory->CreateInstance(nullptr, IID_ITeacReader, reinterpret_cast<void**>(&made));
    if (FAILED(h)) return h;  // whatever a foreign factory left in `made` is not taken
    if (!made) return E_NOINTERFACE;
    reader.reset(made);
    return S_OK;
}

HRESULT readAcquisition(ITeacSetup* setup, Acquisition& a) {
    HRESULT h = setup->get_SampleFrequency(&a.frequency);
    if (SUCCEEDED(h)) h = setup->get_BlockSize(&a.blockSize);
    if (SUCCEEDED(h)) h = setup->get_SampleCount(&a.samples);
    if (SUCCEEDED(h)) h = setup->get_ChannelCount(&a.channels);
    if (FAILED(h)) return h;
    if (!(a.frequency > 0.0) || a.blockSize < 1 || a.channels < 1 ||
        std::int64_t{a.blockSize} * a.channels > kMaxBufferSamples)
        return E_FAIL;
    return S_OK;
}

// The last-write time of the recording, as the workspace's origin time.
std::string lastWriteText(const std::string& file) {
    struct stat st{};
    if (::stat(pathFromAnsi(file).c_str(), &st) != 0) return {};
    std::tm t{};
    localtime_r(&st.st_mtime, &t);
    char text[96];
    std::snprintf(text, sizeof text, "%04ld/%02ld/%02ld %02ld:%02ld:%02ld", long{t.tm_year} + 1900L, long{t.tm_mon} + 1L,
                  long{t.tm_mday}, long{t.tm_hour}, long{t.tm_min}, long{t.tm_sec});
    return text;
}

// The project file while it is written: its storages down to the workspace's Blocks, and a
// block writer per channel whose stream is Blocks/Meas<i>.
class TeacProjectWriter {
public:
    explicit TeacProjectWriter(const Acquisition& acquisition) : m_acquisition(acquisition) {}

    // The file with its class, Version, Data/File 1 and the workspace head. `step` names the step
    // that failed.
    HRESULT create(const std::string& target, std::string& step);
    // A time record per channel, named "Meas<i>" and with the channel's "Y Unit Label" as its unit.
    HRESULT beginRecords(ITeacSetup* setup);
    // Copies the blocks of the reader into the records until the source is exhausted or the user
    // cancels; commits whenever enough was written since the last commit.
    HRESULT copyBlocks(ITeacReader* reader, const std::string& source, bool& cancelled);
    // Completes the records, writes the workspace's origin and commits the file.
    HRESULT finish(const std::string& source);

private:
    HRESULT commitAll();

    Acquisition m_acquisition;
    ComPtr<IStorage> m_root, m_data, m_file, m_workspace, m_blocks;
    std::vector<ComPtr<CMeasurementBlockWriter>> m_writers;  // released before the storages
};

HRESULT TeacProjectWriter::create(const std::string& target, std::string& step) {
    HRESULT h = createCompoundFile(pathFromAnsi(target), kProjectMode, m_root.out());
    if (FAILED(h)) return failedAt(step, "1", h);
    if (FAILED(h = m_root->SetClass(CLSID_CProject))) return failedAt(step, "4", h);
    if (FAILED(h = writeProjectVersion(m_root.get()))) return failedAt(step, "5", h);
    if (FAILED(h = m_root->CreateStorage(u"Data", kCreate, 0, 0, m_data.out()))) return failedAt(step, "6", h);
    if (FAILED(h = m_data->CreateStorage(u"File 1", kCreate, 0, 0, m_file.out()))) return failedAt(step, "8A", h);
    if (FAILED(h = writeWkdHead(m_file.get(), "Workspace1", 0, m_workspace.out()))) return failedAt(step, "9", h);
    if (FAILED(h = m_workspace->CreateStorage(u"Blocks", kCreate, 0, 0, m_blocks.out()))) return failedAt(step, "9", h);
    return S_OK;
}

HRESULT TeacProjectWriter::beginRecords(ITeacSetup* setup) {
    const Bstr xUnit(std::string_view{"s"}), unitLabel(std::u16string_view{u"Y Unit Label"}), none;
    for (LONG channel = 0; channel < m_acquisition.channels; ++channel) {
        Bstr channelName, unit;
        if (FAILED(setup->ChannelName(channel, channelName.out())) ||
            FAILED(setup->ChannelParameter(channel, unitLabel.get(), unit.out())))
            return E_FAIL;
        const std::string name = "Meas<" + std::to_string(channel) + ">";
        ComPtr<CMeasurementBlockWriter> writer(CMeasurementBlockWriter::create());
        writer->SetRecordName(name);
        const Bstr stream(std::string_view{name});
        HRESULT h = writer->Create(m_blocks.get(), stream.get());
        if (SUCCEEDED(h))
            h = writer->BeginTimeRecord(1, m_acquisition.blockSize, m_acquisition.frequency, 0.0f, xUnit.get(), unit.get(),
                                        channelName.get(), none.get(), 0.0, 0.0, nullptr);
        if (FAILED(h)) return h;
        m_writers.push_back(std::move(writer));
    }
    return S_OK;
}

HRESULT TeacProjectWriter::copyBlocks(ITeacReader* reader, const std::string& source, bool& cancelled) {
    const std::size_t blockSize = static_cast<std::size_t>(m_acquisition.blockSize);
    std::vector<float> buffer(blockSize * m_writers.size());
    const LONG capacity = static_cast<LONG>(buffer.size());
    std::uint64_t sinceCommit = 0;
    std::int64_t done = 0;
    cancelled = false;
    for (;;) {
        LONG count = 0, status = -1;
        HRESULT h = reader->ReadBlock(buffer.data(), capacity, &count, &status);
        if (FAILED(h) || status == -1) return E_FAIL;
        if (status == 0) return S_OK;
        if (count < 1 || count > m_acquisition.blockSize) return E_FAIL;
        for (std::size_t c = 0; c < m_writers.size(); ++c)
            if (FAILED(h = m_writers[c]->WriteBlock(buffer.data() + c * blockSize, count, 0))) return h;
        done += count;
        sinceCommit += static_cast<std::uint64_t>(count) * sizeof(float) * m_writers.size();
        if (sinceCommit > kCommitBytes) {
            if (FAILED(h = commitAll())) return h;
            sinceCommit = 0;
        }
        CProject::DoEvents();
        const int percent = m_acquisition.samples > 0
                                ? static_cast<int>(std::min<std::int64_t>(100, done * 100 / m_acquisition.samples))
                                : 0;
        if (!host::reportProgress(percent, source)) {
            cancelled = true;
            return S_OK;
        }
    }
}

HRESULT TeacProjectWriter::finish(const std::string& source) {
    for (ComPtr<CMeasurementBlockWriter>& writer : m_writers) {
        const HRESULT h = writer->Finish(nullptr);
        writer->Close();  // answers E_FAIL always
        if (FAILED(h)) return h;
    }
    m_writers.clear();
    if (FAILED(writeTextStream(m_file.get(), u"OriginFile", source)) ||
        FAILED(writeTextStream(m_file.get(), u"OriginTime", lastWriteText(source))))
        return E_FAIL;
    return commitAll();
}

// From the innermost storage out to the root, which writes the file's tables.
HRESULT TeacProjectWriter::commitAll() {
    for (IStorage* s : {m_blocks.get(), m_workspace.get(), m_file.get(), m_data.get(), m_root.get()})
        if (HRESULT h = s->Commit(STGC_DEFAULT); FAILED(h)) return h;
    return S_OK;
}

// Writes the project from an open reader; E_ABORT when the user cancelled, the file then holding
// the blocks read until then.
HRESULT convertOpenRecording(ITeacReader* reader, const std::string& source, const std::string& target) {
    ComPtr<ITeacSetup> setup;
    Acquisition acquisition;
    HRESULT h = reader->GetSetup(setup.out());
    if (SUCCEEDED(h) && !setup) h = E_FAIL;
    if (SUCCEEDED(h)) h = readAcquisition(setup.get(), acquisition);
    if (FAILED(h)) return h;

    TeacProjectWriter writer(acquisition);
    std::string step;
    if (FAILED(h = writer.create(target, step))) {
        DebugTraceF("CProject::SaveProject - jump %s", step.c_str());
        return h;
    }
    bool cancelled = false;
    if (FAILED(h = writer.beginRecords(setup.get()))) return h;
    if (FAILED(h = writer.copyBlocks(reader, source, cancelled))) return h;
    if (FAILED(h = writer.finish(source))) return h;
    return cancelled ? E_ABORT : S_OK;
}

}  // namespace

// The count is 1, the workspace made, when the whole recording was converted, else -1. A file
// partly written stays on disk.
HRESULT CProject::ConvertTEACtoVPJ(const std::string& source, const std::string& target, LONG* count) {
    if (!count) return E_FAIL;
    *count = -1;
    if (source.empty() || target.empty()) return E_FAIL;
    ComPtr<ITeacReader> reader;
    HRESULT h = createReader(reader);
    if (FAILED(h)) return h;
    const Bstr file(std::string_view{source});
    LONG status = -1;
    if (FAILED(reader->Open(file.get(), &status)) || status == -1) return E_FAIL;
    SHORT open = 0;
    if (FAILED(reader->IsOpen(&open)) || open == 0) h = E_FAIL;
    if (SUCCEEDED(h)) h = convertOpenRecording(reader.get(), source, target);
    reader->Close();
    if (SUCCEEDED(h)) *count = 1;
    return h;
}

}  // namespace nvdl
