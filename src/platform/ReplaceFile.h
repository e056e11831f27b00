// Saving a file without ever damaging the one it replaces: the new contents go to a fresh temporary
// file in the target's folder, are flushed to the disk, and take the target's name in one atomic
// rename. A failure at any step removes the temporary file and leaves the target as it was; the
// temporary files of saves that were cut short with their process are removed by the next save of
// the same target.
#pragma once

#include <filesystem>
#include <functional>

#include "nvdl/Storage.h"

namespace nvdl {

// Lets `write` make the new file under a temporary name beside `target`, flushes it and puts it in
// the target's place. The status of the first failing step is returned.
HRESULT replaceFile(const std::filesystem::path& target,
                    const std::function<HRESULT(const std::filesystem::path& temporary)>& write);

// Creates a compound file beside `target`, lets `write` fill its root storage, commits it and puts it
// in the target's place. The status of the first failing step is returned.
HRESULT replaceWithCompoundFile(const std::filesystem::path& target, const std::function<HRESULT(IStorage*)>& write);

}  // namespace nvdl
