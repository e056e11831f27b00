// nvdl ls FILE: what a workspace file holds - the workspace, its measurements (name, function type,
// samples, x axis) with their sub-measurements, geometries, modes and setups - one line each,
// tab-separated, read as the server reads it (measurement headers only). A project file lists each
// of its workspaces so, indented, then its layouts, setups and associated documents; a zip bundle
// lists as the project it loads as. The listing reads the file without locking it.
#include <cstdio>
#include <string>

#include "cli/Arguments.h"
#include "cli/Failure.h"
#include "cli/FileKind.h"
#include "cli/StorageFailure.h"
#include "commands.h"
#include "ls.h"
#include "nvdl/Bstr.h"
#include "frame/LateBound.h"
#include "measurement/Measurement.h"
#include "platform/CodePage.h"
#include "platform/ComPtr.h"
#include "project/Project.h"
#include "project/ProjectFile.h"
#include "project/WkdStorage.h"
#include "project/Workspace.h"

namespace nvdl::tool {

namespace {

std::string textOf(IDispatch* object, const char16_t* name) {
    Variant v;
    if (FAILED(latebound::get(object, name, &v)) || FAILED(v.changeType(VT_BSTR))) return "?";
    return narrow(bstrView(v.bstrVal));
}

// An enumerated property as its text.
std::string enumText(IDispatch* object, const char16_t* name) {
    Variant v;
    if (FAILED(latebound::get(object, name, &v)) || FAILED(v.changeType(VT_I4))) return "?";
    const std::u16string_view* text = measurementEnumTable().lookupString(v.lVal);
    return text ? narrow(*text) : std::to_string(v.lVal);
}

void listMeasurements(ICollection* measurements, const std::string& indent, std::string& out) {
    LONG count = 0;
    measurements->get_Count(&count);
    for (LONG i = 0; i < count; ++i) {
        ComPtr<IDispatch> m;
        if (FAILED(measurements->Item(Variant::fromLong(i), m.out()))) continue;
        out += indent + "measurement\t" + std::to_string(i) + "\t" + textOf(m.get(), u"Name") + "\t" +
               enumText(m.get(), u"FunctionType") + "\t" + textOf(m.get(), u"FileSamples") + "\t" +
               enumText(m.get(), u"XAxisType") + "\n";
        Variant subs;
        if (SUCCEEDED(latebound::get(m.get(), u"Measurements", &subs)) && subs.vt == VT_DISPATCH && subs.pdispVal)
            listMeasurements(static_cast<ICollection*>(subs.pdispVal), indent + "  ", out);
    }
}

void listNamed(CObjectCollection& items, const std::string& indent, const char* kind, std::string& out) {
    for (std::size_t i = 0; i < items.size(); ++i)
        out += indent + kind + "\t" + std::to_string(i) + "\t" + textOf(items.itemAt(i), u"Name") + "\n";
}

void listWorkspace(CWorkspace& workspace, const std::string& indent, std::string& out) {
    out += indent + "workspace\t" + textOf(workspace.dispatch(), u"Name") + "\n";
    listMeasurements(&workspace.measurements(), indent, out);
    listNamed(workspace.geometries(), indent, "geometry", out);
    listNamed(workspace.modes(), indent, "mode", out);
    listNamed(workspace.setups(), indent, "setup", out);
}

void listProject(CProject& project, const std::string& file, std::string& out) {
    out += "project\t" + file + "\n";
    for (std::size_t i = 0; i < project.workspaces().size(); ++i)
        if (auto* workspace = dynamic_cast<CWorkspace*>(CFrameBase::of(project.workspaces().itemAt(i))))
            listWorkspace(*workspace, "  ", out);
    listNamed(project.layouts(), "", "layout", out);
    listNamed(project.setups(), "", "setup", out);
    listNamed(project.documents(), "", "document", out);
}

// A zip bundle is listed as the project that loading it makes (its recordings as workspaces).
int listBundle(const std::string& command, const std::string& file, std::string& out) {
    ComPtr<IDispatch> object(CProject::create());
    auto* project = static_cast<CProject*>(static_cast<IProject*>(object.get()));
    const Bstr name(std::string_view{narrow(utf8ToUtf16(file))});
    if (HRESULT h = project->Load(name.get()); FAILED(h))
        return failure(command, file, reasonOf(h, "cannot read the bundle"));
    listProject(*project, file, out);
    project->Close();
    return 0;
}

}  // namespace

int listFile(const std::string& command, const std::string& file) {
    std::string reason, message, out;
    const FileKind kind = kindOfFile(file, reason);
    if (kind == FileKind::Unreadable) return failure(command, file, reason);
    if (kind == FileKind::Bundle) {
        if (int status = listBundle(command, file, out); status != 0) return status;
        std::fwrite(out.data(), 1, out.size(), stdout);
        return 0;
    }
    ComPtr<IStorage> root;
    HRESULT h = openCompoundFile(file, STGM_READ | STGM_SHARE_DENY_WRITE, root.out());
    if (FAILED(h)) return failure(command, file, storageFailureText(h));
    if (kind == FileKind::Project) {
        ComPtr<IDispatch> object(CProject::create());
        auto* project = static_cast<CProject*>(static_cast<IProject*>(object.get()));
        h = readProjectTree(root.get(), *project, file, message);
        if (SUCCEEDED(h)) listProject(*project, file, out);
    } else {
        ComPtr<IDispatch> object(CWorkspace::create());
        auto* workspace = static_cast<CWorkspace*>(static_cast<IWorkspace*>(object.get()));
        h = loadWkd(root.get(), *workspace, WkdPlace{file, {}}, message);
        if (SUCCEEDED(h)) listWorkspace(*workspace, "", out);
    }
    if (FAILED(h)) {
        const char* fallback = kind == FileKind::Project ? "cannot read the project file" : "cannot read the workspace file";
        char code[16];
        std::snprintf(code, sizeof code, "0x%08X", static_cast<unsigned>(h));
        return failure(command, file, (message.empty() ? fallback : message) + " (" + code + ")");
    }
    std::fwrite(out.data(), 1, out.size(), stdout);
    return 0;
}

int ls(int argc, char** argv) {
    Arguments args;
    std::string problem;
    if (!args.parse(argc, argv, {}, {}, problem) || args.positional().size() != 1)
        return usageFailure("ls", lsCommand.usage, problem);
    return listFile("ls", args.positional()[0]);
}

const CommandEntry lsCommand{"ls", ls, "ls FILE         list what a workspace or project file (or zip bundle) holds: workspaces, measurements, geometries, modes, setups, layouts, documents"};

}  // namespace nvdl::tool
