// Projects for the tests: made, saved and loaded through the interface, and project files built
// element by element.
#pragma once

#include "WorkspaceTestSupport.h"
#include "nvdl/IProject.h"

namespace nvdl::test {

inline ComPtr<IProject> newProject() { return ComPtr<IProject>::query(newObject(u"nv_bench.Project").get()); }

inline HRESULT saveProject(IProject* p, const std::filesystem::path& file) {
    Bstr path(std::string_view{file.string()});
    return p->Save(path.get());
}

inline HRESULT loadProject(IProject* p, const std::filesystem::path& file) {
    Bstr path(std::string_view{file.string()});
    return p->Load(path.get());
}

inline std::vector<std::string> namesOf(ICollection* c) {
    std::vector<std::string> names;
    for (LONG i = 0; i < countOf(c); ++i) names.push_back(getText(itemAt(c, i).get(), u"Name"));
    return names;
}

// The Version stream of a project file: the class tag, and the file's tag when given.
inline std::vector<std::uint8_t> versionBytes(const std::string& classTag, const std::string& fileTag) {
    std::vector<std::uint8_t> bytes(classTag.begin(), classTag.end());
    bytes.push_back(0);
    if (!fileTag.empty()) {
        bytes.insert(bytes.end(), fileTag.begin(), fileTag.end());
        bytes.push_back(0);
    }
    return bytes;
}

}  // namespace nvdl::test
