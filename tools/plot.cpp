// nvdl plot FILE OUT.png|OUT.svg: a picture of measurements of a workspace file, a project's
// workspace or a recording (whose channels come in as the workspace loader brings them, long ones
// as their min/max overview). Measurements are chosen by position or name; without a choice every
// measurement drawn the way the first one is goes into the picture, overlaid.
#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "cli/Arguments.h"
#include "cli/Failure.h"
#include "commands.h"
#include "frame/LateBound.h"
#include "nvdl/IProject.h"
#include "nvdl/IWorkspace.h"
#include "nvdl/Storage.h"
#include "nvdl/nvdl.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"
#include "plot/MeasurementPlot.h"
#include "plot/MeasurementValues.h"
#include "plot/Picture.h"
#include "plot/Surface.h"

namespace nvdl::tool {

namespace {

const char* const kUsage =
    "plot FILE OUT.png|OUT.svg [--measurement N]... [--workspace N] [--width W] [--height H] "
    "[--linear-frequency] [--linear-magnitude] [--title T]";

bool isIndex(const std::string& text) {
    return !text.empty() && text.size() < 9 && std::all_of(text.begin(), text.end(), [](char c) { return std::isdigit(static_cast<unsigned char>(c)); });
}

// An item of a collection by position (0-based) or by name, the first of that name. (A collection
// of measurements finds its items by their Id, so names are compared here.)
HRESULT itemOf(ICollection* items, const std::string& key, IDispatch** item) {
    if (isIndex(key)) return items->Item(Variant::fromLong(std::stol(key)), item);
    const std::u16string name = utf8ToUtf16(key);
    LONG count = 0;
    items->get_Count(&count);
    for (LONG i = 0; i < count; ++i) {
        ComPtr<IDispatch> candidate;
        Variant value;
        if (SUCCEEDED(items->Item(Variant::fromLong(i), candidate.out())) &&
            SUCCEEDED(latebound::get(candidate.get(), u"Name", &value)) && value.vt == VT_BSTR && bstrView(value.bstrVal) == name) {
            *item = candidate.release();
            return S_OK;
        }
    }
    return E_INVALIDARG;
}

bool isProjectFile(const std::string& path) {
    ComPtr<IStorage> root;
    STATSTG stat{};
    return SUCCEEDED(openCompoundFile(path, STGM_READ | STGM_SHARE_DENY_WRITE, root.out())) &&
           SUCCEEDED(root->Stat(&stat, STATFLAG_NONAME)) && stat.clsid == CLSID_CProject;
}

// The workspace that holds the measurements: the file itself, or the chosen workspace of a project
// (kept open in `project` while the workspace is used).
HRESULT openWorkspace(const std::string& path, const std::string& workspaceKey, ComPtr<IProject>& project,
                      ComPtr<IWorkspace>& workspace, std::string& reason) {
    const Bstr file(std::u16string_view{utf8ToUtf16(path)});
    if (isProjectFile(path)) {
        ComPtr<IDispatch> object;
        HRESULT h = CreateObject(u"nv_bench.Project", object.out());
        if (SUCCEEDED(h)) h = object->QueryInterface(IID_IProject, reinterpret_cast<void**>(project.out()));
        if (SUCCEEDED(h)) h = project->Load(file.get());
        if (FAILED(h)) {
            reason = reasonOf(h, "cannot read the project");
            return h;
        }
        ComPtr<ICollection> workspaces;
        ComPtr<IDispatch> item;
        project->get_Workspaces(workspaces.out());
        h = workspaces ? itemOf(workspaces.get(), workspaceKey.empty() ? "0" : workspaceKey, item.out()) : E_FAIL;
        if (SUCCEEDED(h)) h = item->QueryInterface(IID_IWorkspace, reinterpret_cast<void**>(workspace.out()));
        if (FAILED(h)) reason = "the project has no workspace " + (workspaceKey.empty() ? "0" : workspaceKey);
        return h;
    }
    if (!workspaceKey.empty()) {
        reason = "--workspace needs a project file";
        return E_INVALIDARG;
    }
    ComPtr<IDispatch> object;
    HRESULT h = CreateObject(u"nv_bench.Workspace", object.out());
    if (SUCCEEDED(h)) h = object->QueryInterface(IID_IWorkspace, reinterpret_cast<void**>(workspace.out()));
    if (SUCCEEDED(h)) h = workspace->Load(file.get(), Variant::missing());
    if (FAILED(h)) reason = reasonOf(h, "cannot read the file");
    return h;
}

// The chosen measurements, or without a choice those that are drawn the way the first one is.
bool chooseMeasurements(IWorkspace& workspace, const std::vector<std::string>& keys,
                        std::vector<ComPtr<IDispatch>>& chosen, std::string& reason) {
    ComPtr<ICollection> measurements;
    LONG count = 0;
    if (FAILED(workspace.get_Measurements(measurements.out())) || !measurements ||
        FAILED(measurements->get_Count(&count)) || count == 0) {
        reason = "the file holds no measurements";
        return false;
    }
    for (const std::string& key : keys) {
        ComPtr<IDispatch> m;
        if (FAILED(itemOf(measurements.get(), key, m.out())) || !m) {
            reason = "no measurement " + key;
            return false;
        }
        chosen.push_back(std::move(m));
    }
    if (!keys.empty()) return true;
    plot::PictureKind kind{};
    for (LONG i = 0; i < count; ++i) {
        ComPtr<IDispatch> m;
        plot::MeasurementValues values;
        std::string ignored;
        if (FAILED(measurements->Item(Variant::fromLong(i), m.out())) || !plot::readMeasurementValues(m.get(), values, ignored))
            continue;
        if (chosen.empty()) kind = plot::pictureKindOf(values);
        if (plot::pictureKindOf(values) == kind) chosen.push_back(std::move(m));
    }
    if (chosen.empty()) reason = "the file holds no measurement with values";
    return !chosen.empty();
}

}  // namespace

int plot(int argc, char** argv) {
    Arguments args;
    std::string problem;
    if (!args.parse(argc, argv, {"measurement", "workspace", "width", "height", "title"},
                    {"linear-frequency", "linear-magnitude"}, problem))
        return usageFailure("plot", kUsage, problem);
    if (args.positional().size() != 2) return usageFailure("plot", kUsage);
    const std::string& file = args.positional()[0];
    const std::string& out = args.positional()[1];

    if (plot::imageFormatOf(out) == plot::ImageFormat::Unknown)
        return failure("plot", out, "the picture's file name must end in .png or .svg");
    plot::PlotOptions options;
    long width = 0, height = 0;
    if (!args.integer("width", options.width, width, problem) || !args.integer("height", options.height, height, problem))
        return usageFailure("plot", kUsage, problem);
    options.width = static_cast<int>(width);
    options.height = static_cast<int>(height);
    options.title = args.value("title").value_or("");
    options.linearFrequency = args.has("linear-frequency");
    options.linearMagnitude = args.has("linear-magnitude");

    ComPtr<IProject> project;
    ComPtr<IWorkspace> workspace;
    std::string reason;
    if (FAILED(openWorkspace(file, args.value("workspace").value_or(""), project, workspace, reason)))
        return failure("plot", file, reason);
    std::vector<ComPtr<IDispatch>> chosen;
    const bool found = chooseMeasurements(*workspace, args.values("measurement"), chosen, reason);
    std::vector<IDispatch*> measurements;
    for (const auto& m : chosen) measurements.push_back(m.get());
    const bool written = found && plot::writeMeasurementPlot(measurements, out, options, reason);
    chosen.clear();
    workspace.reset();
    if (project) project->Close();
    if (!found) return failure("plot", file, reason);
    return written ? 0 : failure("plot", out, reason);
}

const CommandEntry plotCommand{"plot", plot, "plot FILE OUT.png|OUT.svg   a picture of measurements of a workspace, project or recording: spectra in dB over log frequency, FRFs with phase, coherence, octave bands, time records, a long channel's min/max overview (--measurement N..., --workspace N, --width, --height, --linear-frequency, --linear-magnitude, --title)"};

}  // namespace nvdl::tool
