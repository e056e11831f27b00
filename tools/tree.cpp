// nvdl tree FILE: the storage tree of a compound file, one element per line in storage order,
// depth first: path, kind, size, class identifier (storages) or '-' (streams), tab-separated.
#include <cstdio>
#include <string>

#include "cli/Arguments.h"
#include "cli/Failure.h"
#include "cli/StorageFailure.h"
#include "commands.h"
#include "platform/CodePage.h"
#include "nvdl/Storage.h"

namespace nvdl::tool {

namespace {

struct Releaser {
    IUnknown* object;
    ~Releaser() { object->Release(); }
};

HRESULT list(IStorage* storage, const std::string& prefix, std::string& out) {
    std::vector<STATSTG> elements;
    if (HRESULT h = storage->EnumElements(&elements); FAILED(h)) return h;
    for (const STATSTG& e : elements) {
        std::string path = prefix + "/" + utf16ToUtf8(e.name);
        if (e.type != STGTY_STORAGE) {
            out += path + "\tstream\t" + std::to_string(e.cbSize) + "\t-\n";
            continue;
        }
        out += path + "\tstorage\t0\t" + formatGuid(e.clsid) + "\n";
        IStorage* child = nullptr;
        if (HRESULT h = storage->OpenStorage(e.name.c_str(), nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, nullptr, 0,
                                             &child);
            FAILED(h))
            return h;
        Releaser hold{child};
        if (HRESULT h = list(child, path, out); FAILED(h)) return h;
    }
    return S_OK;
}

}  // namespace

int tree(int argc, char** argv) {
    Arguments args;
    std::string problem;
    if (!args.parse(argc, argv, {}, {}, problem) || args.positional().size() != 1)
        return usageFailure("tree", treeCommand.usage, problem);
    const std::string& file = args.positional()[0];
    IStorage* root = nullptr;
    std::string out;
    HRESULT h = openCompoundFile(file, STGM_READ | STGM_SHARE_EXCLUSIVE, &root);
    if (SUCCEEDED(h)) {
        Releaser hold{root};
        STATSTG stat;
        h = root->Stat(&stat, STATFLAG_NONAME);
        if (SUCCEEDED(h)) {
            out = "/\tstorage\t0\t" + formatGuid(stat.clsid) + "\n";
            h = list(root, "", out);
        }
    }
    if (FAILED(h)) return failure("tree", file, storageFailureText(h));
    std::fwrite(out.data(), 1, out.size(), stdout);
    return 0;
}

const CommandEntry treeCommand{"tree", tree, "tree FILE       print the storage tree of a compound file"};

}  // namespace nvdl::tool
