#include "demo/DemoJob.h"

#include <cstdio>

#include "analysis/ChannelAnalysis.h"
#include "analysis/ChannelFiles.h"
#include "cli/Failure.h"
#include "cli/Progress.h"
#include "demo/DemoPlots.h"
#include "demo/DemoReport.h"
#include "demo/ModalRecording.h"
#include "nvdl/IProject.h"
#include "nvdl/nvdl.h"

namespace nvdl::demo {

namespace {

constexpr long kBlock = 8192;
constexpr double kOverlap = 50.0;
constexpr std::size_t kBandResponse = 1;  // the accelerometer whose bands are shown
const char* const kRecordingFile = "modal-test.trc";
const char* const kProjectFile = "modal-test.vpj";

template <class I>
ComPtr<I> create(const char16_t* progId, std::string& error) {
    ComPtr<IDispatch> object;
    if (HRESULT h = CreateObject(progId, object.out()); FAILED(h)) {
        error = tool::reasonOf(h, "cannot create an object");
        return {};
    }
    return ComPtr<I>::query(object.get());
}

bool succeeded(HRESULT h, const std::string& step, std::string& error) {
    if (SUCCEEDED(h)) return true;
    error = step + ": " + tool::reasonOf(h, "failed");
    return false;
}

ComPtr<IMeasurement> itemNamed(ICollection* items, const std::string& name) {
    LONG count = 0;
    items->get_Count(&count);
    for (LONG i = 0; i < count; ++i) {
        ComPtr<IDispatch> item;
        ComPtr<IMeasurement> m;
        Bstr itemName;
        if (SUCCEEDED(items->Item(Variant::fromLong(i), item.out())) && (m = ComPtr<IMeasurement>::query(item.get())) &&
            SUCCEEDED(m->get_Name(itemName.out())) && itemName.ansi() == name)
            return m;
    }
    return {};
}

// The results that go into the project: per channel its autopower, and per response its
// crosspower, FRF and coherence; then the bands.
bool keepResults(IWorkspace* workspace, const analysis::ChannelAnalysis& analysis, IMeasurement* bands,
                 std::string& error) {
    ComPtr<ICollection> items;
    workspace->get_Measurements(items.out());
    for (const analysis::ChannelSpectra& c : analysis.channels)
        for (IMeasurement* m : {c.autopower.get(), c.cross.get(), c.frf.get(), c.coherence.get()})
            if (m && !succeeded(analysis::addItem(items.get(), m), "keeping the results", error)) return false;
    return succeeded(analysis::addItem(items.get(), bands), "keeping the bands", error);
}

// The first part of the job: the project with the recording loaded and the results computed, saved.
bool analyseAndSave(const DemoOptions& options, const ModalTest& test, std::string& summary, std::string& error) {
    const std::string recording = (options.folder / kRecordingFile).string();
    if (!writeModalRecording(recording, test, error)) return false;
    ComPtr<IProject> project = create<IProject>(u"nv_bench.Project", error);
    ComPtr<IWorkspace> workspace = create<IWorkspace>(u"nv_bench.Workspace", error);
    if (!project || !workspace) return false;
    const Bstr recordingName{std::string_view{recording}};
    Variant anyLoader;
    if (!succeeded(workspace->Load(recordingName.get(), anyLoader), "loading the recording", error)) return false;
    ComPtr<ICollection> workspaces;
    project->get_Workspaces(workspaces.out());
    if (!succeeded(analysis::addItem(workspaces.get(), workspace.get()), "adding the workspace", error)) return false;

    analysis::TimeRecords channels;
    if (!analysis::gatherTimeRecords(workspace, channels, error)) return false;
    std::vector<IMeasurement*> records;
    for (const auto& r : channels.records) records.push_back(r.get());
    analysis::AnalysisOptions settings;
    settings.block = kBlock;
    settings.overlap = kOverlap;
    analysis::ChannelAnalysis result;
    ComPtr<IMeasurement> bands;
    {
        tool::ProgressBar bar("analysis", options.quiet);
        if (!analysis::analyseChannels(records, settings, [&](double f) { bar.update(f); }, result, error)) return false;
    }
    if (result.channels.size() != kResponses + 1) {
        error = "the recording came back with " + std::to_string(result.channels.size()) + " channels";
        return false;
    }
    if (!analysis::octaveBands(result.channels[kBandResponse].autopower.get(), 3, result.windowBandwidth, bands, error) ||
        !keepResults(workspace.get(), result, bands.get(), error))
        return false;
    const Bstr projectName{std::string_view{(options.folder / kProjectFile).string()}};
    if (!succeeded(project->Save(projectName.get()), "saving the project", error)) return false;
    project->Close();

    const double seconds = static_cast<double>(test.scans * test.scanLength) / test.sampleRate;
    char line[200];
    std::snprintf(line, sizeof line,
                  "recorded %zu channels, %ld samples each at %.0f Hz (%.0f s); %ld averages of %ld samples, Hanning, "
                  "%.0f%% overlap\n",
                  records.size(), test.scans * test.scanLength, test.sampleRate, seconds, result.averages, kBlock,
                  kOverlap);
    summary = line;
    return true;
}

}  // namespace

bool runDemo(const DemoOptions& options, std::string& report, std::string& error) {
    std::error_code failed;
    std::filesystem::create_directories(options.folder, failed);
    if (failed) {
        error = options.folder.string() + ": " + failed.message();
        return false;
    }
    const ModalTest test = standardTest(options.small);
    std::string summary;
    if (!analyseAndSave(options, test, summary, error)) return false;

    // Everything below comes from the project file as it was saved.
    ComPtr<IProject> project = create<IProject>(u"nv_bench.Project", error);
    if (!project) return false;
    const Bstr projectName{std::string_view{(options.folder / kProjectFile).string()}};
    if (!succeeded(project->Load(projectName.get()), "loading the saved project", error)) return false;
    ComPtr<IWorkspace> workspace;
    ComPtr<ICollection> workspaces, items;
    ComPtr<IDispatch> first;
    project->get_Workspaces(workspaces.out());
    if (!workspaces || FAILED(workspaces->Item(Variant::fromLong(0), first.out())) ||
        !(workspace = ComPtr<IWorkspace>::query(first.get())) || FAILED(workspace->get_Measurements(items.out()))) {
        error = "the saved project holds no workspace";
        return false;
    }
    analysis::TimeRecords channels;
    if (!analysis::gatherTimeRecords(workspace, channels, error)) return false;
    const std::vector<std::string> names = channelNames();
    DemoPictures pictures;
    std::vector<ComPtr<IMeasurement>> held;
    for (int r = 1; r <= kResponses; ++r) {
        const std::string pair = "(" + names[static_cast<std::size_t>(r)] + "," + names[0] + ")";
        held.push_back(itemNamed(items.get(), "FRF" + pair));
        held.push_back(itemNamed(items.get(), "Coherence" + pair));
        if (!held[held.size() - 2] || !held.back()) {
            error = "the saved project lacks the FRF or coherence of " + names[static_cast<std::size_t>(r)];
            return false;
        }
        pictures.frfs.push_back(held[held.size() - 2].get());
        pictures.coherences.push_back(held.back().get());
    }
    ComPtr<IMeasurement> bands = itemNamed(items.get(), "Oct(Autopower(" + names[kBandResponse] + "))");
    if (!bands) {
        error = "the saved project lacks the bands";
        return false;
    }
    pictures.bands = bands.get();
    for (const auto& r : channels.records) pictures.records.push_back(r.get());

    std::vector<ModeFound> modes;
    if (!findModes(test, pictures.frfs, pictures.coherences, modes)) {
        error = "an FRF has no lines near a mode";
        return false;
    }
    std::vector<std::string> written;
    if (!writeDemoPlots(pictures, options.folder, written, error)) return false;
    project->Close();

    report = summary + "\n" + modeTable(modes, {names.begin() + 1, names.end()}) + "\nthird-octave bands of " +
             names[kBandResponse] +
             " (rms m/s², dB re 1 µm/s²):\n" + bandTable(bands.get()) + "\nfiles: " + kRecordingFile + " " + kProjectFile;
    for (const std::string& file : written) report += " " + file;
    report += "\nin " + std::filesystem::absolute(options.folder).string() + "\n";
    return true;
}

}  // namespace nvdl::demo
