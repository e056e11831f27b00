// nvdl import UFF TARGET: the datasets of a universal file into a workspace file or a project's
// workspace (`--workspace`, by position or name; the first by default). A missing TARGET is made
// (a project with one workspace for .vpj); an existing one is read, added to and saved in place
// through a temporary file, so that a failed save leaves it as it was.
#include <filesystem>

#include "cli/Arguments.h"
#include "cli/Failure.h"
#include "cli/FileKind.h"
#include "commands.h"
#include "exchange/SourceFile.h"
#include "exchange/UffFile.h"
#include "exchange/UffMapping.h"
#include "frame/LateBound.h"
#include "platform/CodePage.h"
#include "project/Project.h"
#include "project/Workspace.h"

namespace nvdl::tool {

namespace {

constexpr const char* kUsage =
    "import UFF TARGET [--workspace N]   the datasets of a universal file (functions, nodes, trace lines, mode "
    "shapes) into a workspace (.wkd) or project (.vpj), made when missing";


Bstr ansiPath(const std::string& path) { return Bstr(std::string_view{narrow(utf8ToUtf16(path))}); }

}  // namespace

int importFile(int argc, char** argv) {
    Arguments args;
    std::string problem;
    if (!args.parse(argc, argv, {"workspace"}, {"quiet"}, problem)) return usageFailure("import", kUsage, problem);
    if (args.positional().size() != 2) return usageFailure("import", kUsage);
    const std::string& source = args.positional()[0];
    const std::string& target = args.positional()[1];
    const std::string kind = lowerExtension(target);
    if (kind != ".wkd" && kind != ".vpj") return usageFailure("import", kUsage, "TARGET must end in .wkd or .vpj");

    std::string error;
    exchange::uff::File file;
    if (!exchange::uff::readFile(source, file, error)) return failure("import", source, error);

    const bool exists = std::filesystem::exists(target);
    exchange::OpenedFile opened;
    if (exists && !exchange::openFile(target, opened, error)) return failure("import", target, error);
    if (exists && kind == ".vpj" && !opened.project) return failure("import", target, "not a project file");
    if (exists && kind == ".wkd" && opened.project) return failure("import", target, "a project file, not a workspace file");
    const std::string stem = narrow(utf8ToUtf16(std::filesystem::path(source).stem().string()));
    if (!exists) {
        ComPtr<IDispatch> workspace(CWorkspace::create());
        auto* w = static_cast<CWorkspace*>(static_cast<IWorkspace*>(workspace.get()));
        latebound::put(workspace.get(), u"Name", Variant::fromAnsi(narrow(utf8ToUtf16(std::filesystem::path(target).stem().string()))));
        if (kind == ".vpj") {
            opened.project.reset(CProject::create());
            Variant key, before, after;
            LONG index = 0;
            if (FAILED(opened.projectObject()->workspaces().Add(workspace.get(), &key, &before, &after, &index)))
                return failure("import", target, "the project refuses a new workspace");
        } else {
            opened.own = std::move(workspace);
        }
        opened.workspaces.push_back(w);
    }
    CWorkspace* workspace = exchange::chooseWorkspace(opened, args.value("workspace").value_or(""), error);
    if (!workspace) return failure("import", target, error);
    if (!exchange::uff::addFileToWorkspace(file, *workspace, stem, error)) return failure("import", source, error);

    const Bstr path = ansiPath(target);
    const HRESULT h = opened.project ? opened.projectObject()->Save(path.get()) : workspace->Save(path.get(), Variant::missing());
    if (FAILED(h)) return failure("import", target, reasonOf(h, "cannot save the file"));
    return 0;
}

const CommandEntry importCommand{"import", importFile, kUsage};

}  // namespace nvdl::tool
