// The workspace file: one workspace in a compound file, or in a storage nested in a project file.
//
//   Version/Version                          the tag "20030819" with its zero
//   Workspace/WorkspaceStream                a record of 176 bytes: tag "20020220", Default
//   Workspace/WorkspaceName                  the name with its zero
//   Workspace/Blocks/Meas<i>                 measurement i, by its own persistence
//   Workspace/SubBlocks/Meas<i>/SubMeas<j>   sub-measurement j of measurement i
//   Workspace/Geometries/Geom<i>, Workspace/Modes/Mode<i>
//   Workspace/AcqSetups/Setup<i>             setup i, by its own storage persistence
//
// Measurements are read as headers: their samples stay in the file and are paged in on demand from
// the place each measurement is told (its location).
#pragma once

#include <string>

#include "nvdl/Storage.h"

namespace nvdl {

class CWorkspace;

// Where the storage being read lies: a workspace file of its own, or a storage inside a project
// file (the file name is then the project's and `nestedPath` the storage's path in its data).
struct WkdPlace {
    std::string file;
    std::string nestedPath;  // empty for a workspace file of its own
};

// The version tag that the writer writes, and the newest the reader knows.
inline constexpr long kWkdVersion = 20030819;

// Reads the workspace storage of `root` into the workspace. A failure leaves what was read in the
// workspace and puts the message for the user (possibly empty) in `message`.
HRESULT loadWkd(IStorage* root, CWorkspace& workspace, const WkdPlace& place, std::string& message);

// Writes the head of a workspace file into `root`: Version, the class of the file, the workspace
// storage with its record and its name (cut to 200 characters). The workspace storage is handed out.
HRESULT writeWkdHead(IStorage* root, std::string name, std::int16_t defaultFlag, IStorage** workspaceStorage);

// Writes the workspace into `root` and commits it.
HRESULT saveWkd(IStorage* root, CWorkspace& workspace, std::string& message);

// After the workspace was saved by saveWkd at `place`: its measurements that page from a file page
// from the new one, at the streams the save gave them.
void followSavedWorkspace(CWorkspace& workspace, const WkdPlace& place);

// The number of a version tag of the file, or 0 for an unknown or empty tag.
long wkdVersionNumber(const std::string& tag);

}  // namespace nvdl
