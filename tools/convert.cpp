// nvdl convert IN OUT: a workspace file, project file or zip bundle (a project file and its
// recordings in one .zip) rewritten as the kind of file that OUT's extension names: .vpj a project
// file (a workspace file becomes a project holding that one workspace), .wkd a workspace file (of a
// project or bundle the workspace that --workspace names, by number from 1 or by name; the first
// by default). Both go through the project and workspace objects, which write beside OUT and rename
// over it when complete: a failed conversion leaves no partial OUT, and IN is only read. Prints one
// tab-separated line: the kind written, OUT, and its workspaces (project) or measurements (workspace).
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "cli/Arguments.h"
#include "cli/Failure.h"
#include "cli/FileKind.h"
#include "cli/Progress.h"
#include "cli/ServerMessages.h"
#include "commands.h"
#include "frame/LateBound.h"
#include "nvdl/Bstr.h"
#include "nvdl/Variant.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"
#include "project/Project.h"
#include "project/Workspace.h"

namespace nvdl::tool {

extern const CommandEntry convertCommand;

namespace {

// Paths reach the objects as text in the system code page; the command line gives UTF-8.
Bstr pathText(const std::string& utf8) { return Bstr(std::string_view{narrow(utf8ToUtf16(utf8))}); }

CProject& projectOf(IDispatch* object) { return *static_cast<CProject*>(static_cast<IProject*>(object)); }
CWorkspace& workspaceOf(IDispatch* object) { return *static_cast<CWorkspace*>(static_cast<IWorkspace*>(object)); }

// Reads IN into `project`: a project file or bundle as it is, a workspace file as the one workspace
// of a new project. The failure's reason in `reason`.
HRESULT loadSource(const std::string& input, FileKind kind, CProject& project, std::string& reason) {
    if (kind != FileKind::Workspace) {
        const HRESULT h = project.Load(pathText(input).get());
        if (FAILED(h)) reason = reasonOf(h, "cannot read the project");
        return h;
    }
    ComPtr<IDispatch> held(CWorkspace::create());
    CWorkspace& workspace = workspaceOf(held.get());
    HRESULT h = workspace.Load(pathText(input).get(), Variant::missing());
    if (FAILED(h)) {
        reason = reasonOf(h, "cannot read the workspace");
        return h;
    }
    Variant key, before, after;
    LONG index = 0;
    h = project.workspaces().Add(held.get(), &key, &before, &after, &index);
    if (FAILED(h)) reason = reasonOf(h, "the workspace cannot join a project");
    return h;
}

std::string nameOf(IDispatch* object) {
    Variant v;
    if (FAILED(latebound::get(object, u"Name", &v)) || FAILED(v.changeType(VT_BSTR))) return {};
    return utf16ToUtf8(bstrView(v.bstrVal));
}

// The workspace that --workspace names: a number from 1, or a name. Null when there is none such.
IDispatch* chosenWorkspace(CProject& project, const std::string& choice) {
    CObjectCollection& workspaces = project.workspaces();
    char* end = nullptr;
    const long number = std::strtol(choice.c_str(), &end, 10);
    if (!choice.empty() && *end == '\0')
        return number >= 1 && static_cast<std::size_t>(number) <= workspaces.size()
                   ? workspaces.itemAt(static_cast<std::size_t>(number - 1))
                   : nullptr;
    for (std::size_t i = 0; i < workspaces.size(); ++i)
        if (nameOf(workspaces.itemAt(i)) == choice) return workspaces.itemAt(i);
    return nullptr;
}

}  // namespace

int convert(int argc, char** argv) {
    Arguments args;
    std::string problem;
    if (!args.parse(argc, argv, {"workspace"}, {"quiet"}, problem) || args.positional().size() != 2)
        return usageFailure("convert", convertCommand.usage, problem);
    const std::string& input = args.positional()[0];
    const std::string& output = args.positional()[1];
    const std::string target = lowerExtension(output);
    if (target != ".vpj" && target != ".wkd")
        return usageFailure("convert", convertCommand.usage, "OUT ends in .vpj (a project) or .wkd (a workspace)");
    if (args.value("workspace") && target != ".wkd")
        return usageFailure("convert", convertCommand.usage, "--workspace chooses what goes into a .wkd");

    std::string reason;
    const FileKind kind = kindOfFile(input, reason);
    if (kind == FileKind::Unreadable) return failure("convert", input, reason);
    if (kind != FileKind::Project && kind != FileKind::Workspace && kind != FileKind::Bundle)
        return failure("convert", input, "neither a workspace file, a project file nor a zip bundle");
    std::error_code error;
    if (std::filesystem::equivalent(input, output, error))
        return failure("convert", output, "is the file being converted; the conversion goes to a new file");

    ServerMessages messages;
    ProgressBar bar("convert", args.has("quiet"));
    bar.update(0);
    ComPtr<IDispatch> held(CProject::create());
    CProject& project = projectOf(held.get());
    if (FAILED(loadSource(input, kind, project, reason))) return failure("convert", input, reason);
    bar.update(0.5);

    std::string line;
    if (target == ".vpj") {
        const HRESULT h = project.Save(pathText(output).get());
        if (FAILED(h)) return failure("convert", output, reasonOf(h, "cannot write the project"));
        line = "project\t" + output + "\t" + std::to_string(project.workspaces().size());
    } else {
        IDispatch* chosen = chosenWorkspace(project, args.value("workspace").value_or("1"));
        if (!chosen)
            return failure("convert", input,
                           args.value("workspace") ? "holds no workspace " + *args.value("workspace")
                                                   : "holds no workspace");
        CWorkspace& workspace = workspaceOf(chosen);
        const HRESULT h = workspace.Save(pathText(output).get(), Variant::fromAnsi("nv_bench.io_wkd"));
        if (FAILED(h)) return failure("convert", output, reasonOf(h, "cannot write the workspace"));
        line = "workspace\t" + output + "\t" + std::to_string(workspace.measurements().size());
    }
    bar.update(1);
    project.Close();
    std::printf("%s\n", line.c_str());
    return 0;
}

const CommandEntry convertCommand{"convert", convert, "convert IN OUT  rewrite a workspace file, project file or zip bundle as OUT: .vpj a project (a workspace becomes its one workspace), .wkd a workspace (--workspace N or NAME of a project or bundle, the first by default); --quiet"};

}  // namespace nvdl::tool
