// The workspaces a file holds, as the export and import commands open them: a project file gives
// its workspaces, a workspace file its one workspace, and a recording the workspace its loader
// makes of it (its channels as measurements).
#pragma once

#include <string>
#include <vector>

#include "nvdl/Dispatch.h"
#include "platform/ComPtr.h"

namespace nvdl {
class CProject;
class CWorkspace;
}  // namespace nvdl

namespace nvdl::exchange {

struct OpenedFile {
    ComPtr<IDispatch> project;  // set for a project file
    std::vector<CWorkspace*> workspaces;  // held by `project`, or by `own`
    ComPtr<IDispatch> own;                // the workspace of a workspace file or recording
    CProject* projectObject() const;
};

// Whether the file is a project file (a compound file of the project class).
bool isProjectFile(const std::string& path);
// False with `error` set (the server's reason) when the file cannot be read.
bool openFile(const std::string& path, OpenedFile& opened, std::string& error);
// The workspace chosen by `--workspace`: a 0-based position or a name; the first without one.
// Null with `error` set when there is no such workspace.
CWorkspace* chooseWorkspace(const OpenedFile& opened, const std::string& choice, std::string& error);

}  // namespace nvdl::exchange
