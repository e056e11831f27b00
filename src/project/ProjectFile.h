// The project file: a compound file that holds the whole project.
//
//   Version/Version              the class tag "20001123", a zero, the file's tag "20030221", a zero
//   Documents/Document(n)        associated document n, from 1, by its stream persistence
//   Data/File n                  workspace n, from 1, the whole workspace file tree, with
//   Data/File n/OriginFile       its origin file and
//   Data/File n/OriginTime       its origin time, each text with its zero
//   Layouts/Layout n             layout n, by its storage persistence
//   Setups/Setup n               setup n, by its storage persistence, told its number first
//
// Documents, Data, Layouts and Setups exist only when they have something to hold. Files of the
// old layout ("20001123" alone) name each workspace by its storage; later ones by its
// WorkspaceName stream. The measurements of a loaded project stay in the file and are paged in on
// demand from Data/File n.
#pragma once

#include <string>

#include "nvdl/Storage.h"

namespace nvdl {

class CProject;

enum class ProjectLayout { Old, Current, Refused };

// The layout that the Version stream's bytes (at most 50 of them) announce.
ProjectLayout projectLayoutOf(const std::string& versionBytes);

// Writes the Version storage with its stream: the class tag and the file's tag.
HRESULT writeProjectVersion(IStorage* root);

// Writes the project's tree into `root`. `message` receives a text for the user when a part cannot
// be written; `step` the trace step of the failure.
HRESULT writeProjectTree(IStorage* root, CProject& project, std::string& message, std::string& step);

// Reads the tree of a project file into the project; `file` is where its measurements stay.
HRESULT readProjectTree(IStorage* root, CProject& project, const std::string& file, std::string& message);

}  // namespace nvdl
