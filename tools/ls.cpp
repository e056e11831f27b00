// nvdl ls FILE: what a workspace file holds - the workspace, its measurements (name, function type,
// samples, x axis) with their sub-measurements, geometries, modes and setups - one line each,
// tab-separated, read as the server reads it (measurement headers only). A project file lists each
// of its workspaces so, indented, then its layouts, setups and associated documents. The listing
// reads the file without locking it.
#include <cstdio>
#include <string>

#include "commands.h"
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

HRESULT listProject(IStorage* root, const std::string& file, std::string& out, std::string& message) {
    ComPtr<IDispatch> object(CProject::create());
    auto* project = static_cast<CProject*>(static_cast<IProject*>(object.get()));
    HRESULT h = readProjectTree(root, *project, file, message);
    if (FAILED(h)) return h;
    out += "project\t" + file + "\n";
    for (std::size_t i = 0; i < project->workspaces().size(); ++i)
        if (auto* workspace = dynamic_cast<CWorkspace*>(CFrameBase::of(project->workspaces().itemAt(i))))
            listWorkspace(*workspace, "  ", out);
    listNamed(project->layouts(), "", "layout", out);
    listNamed(project->setups(), "", "setup", out);
    listNamed(project->documents(), "", "document", out);
    return S_OK;
}

}  // namespace

int ls(int argc, char** argv) {
    if (argc != 1) {
        std::fprintf(stderr, "usage: nvdl ls FILE\n");
        return 2;
    }
    const std::string file = argv[0];
    ComPtr<IStorage> root;
    HRESULT h = openCompoundFile(file, STGM_READ | STGM_SHARE_DENY_WRITE, root.out());
    std::string message, out;
    STATSTG stat{};
    const bool isProject = SUCCEEDED(h) && SUCCEEDED(root->Stat(&stat, STATFLAG_NONAME)) && stat.clsid == CLSID_CProject;
    if (isProject) {
        h = listProject(root.get(), file, out, message);
    } else if (SUCCEEDED(h)) {
        ComPtr<IDispatch> object(CWorkspace::create());
        auto* workspace = static_cast<CWorkspace*>(static_cast<IWorkspace*>(object.get()));
        h = loadWkd(root.get(), *workspace, WkdPlace{file, {}}, message);
        if (SUCCEEDED(h)) listWorkspace(*workspace, "", out);
    }
    if (FAILED(h)) {
        std::fprintf(stderr, "nvdl ls: %s: %s (0x%08X)\n", file.c_str(),
                     message.empty() ? (isProject ? "cannot read the project file" : "cannot read the workspace file")
                                     : message.c_str(),
                     static_cast<unsigned>(h));
        return 1;
    }
    std::fwrite(out.data(), 1, out.size(), stdout);
    return 0;
}

const CommandEntry lsCommand{"ls", ls, "ls FILE         list what a workspace or project file holds: workspaces, measurements, geometries, modes, setups, layouts, documents"};

}  // namespace nvdl::tool
