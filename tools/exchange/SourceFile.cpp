#include "exchange/SourceFile.h"

#include "cli/Failure.h"
#include "exchange/UffFields.h"
#include "frame/LateBound.h"
#include "nvdl/Storage.h"
#include "platform/CodePage.h"
#include "project/Project.h"
#include "project/Workspace.h"

namespace nvdl::exchange {

namespace {

std::string nameOf(IDispatch* object) {
    Variant v;
    if (FAILED(latebound::get(object, u"Name", &v)) || FAILED(v.changeType(VT_BSTR))) return {};
    return narrow(bstrView(v.bstrVal));
}

}  // namespace

CProject* OpenedFile::projectObject() const {
    return project ? static_cast<CProject*>(static_cast<IProject*>(project.get())) : nullptr;
}

bool isProjectFile(const std::string& path) {
    ComPtr<IStorage> root;
    STATSTG stat{};
    return SUCCEEDED(openCompoundFile(std::filesystem::path(path), STGM_READ | STGM_SHARE_DENY_WRITE, root.out())) &&
           SUCCEEDED(root->Stat(&stat, STATFLAG_NONAME)) && stat.clsid == CLSID_CProject;
}

bool openFile(const std::string& path, OpenedFile& opened, std::string& error) {
    const Bstr name(std::string_view{narrow(utf8ToUtf16(path))});
    if (isProjectFile(path)) {
        opened.project.reset(CProject::create());
        CProject* project = opened.projectObject();
        if (HRESULT h = project->Load(name.get()); FAILED(h)) {
            error = tool::reasonOf(h, "cannot read the project file");
            return false;
        }
        for (std::size_t i = 0; i < project->workspaces().size(); ++i)
            if (auto* w = dynamic_cast<CWorkspace*>(CFrameBase::of(project->workspaces().itemAt(i))))
                opened.workspaces.push_back(w);
        return true;
    }
    opened.own.reset(CWorkspace::create());
    auto* workspace = static_cast<CWorkspace*>(static_cast<IWorkspace*>(opened.own.get()));
    if (HRESULT h = workspace->Load(name.get(), Variant::missing()); FAILED(h)) {
        error = tool::reasonOf(h, "cannot read the file");
        return false;
    }
    opened.workspaces.push_back(workspace);
    return true;
}

CWorkspace* chooseWorkspace(const OpenedFile& opened, const std::string& choice, std::string& error) {
    if (choice.empty() && !opened.workspaces.empty()) return opened.workspaces.front();
    if (const auto index = uff::parseInteger(choice); index && *index >= 0 &&
                                                      static_cast<std::size_t>(*index) < opened.workspaces.size())
        return opened.workspaces[static_cast<std::size_t>(*index)];
    for (CWorkspace* w : opened.workspaces)
        if (nameOf(w->dispatch()) == choice) return w;
    error = choice.empty() ? "the file holds no workspace" : "no workspace \"" + choice + "\"";
    return nullptr;
}

}  // namespace nvdl::exchange
