// Copies a whole storage tree from one storage into another of any kind (compound file or memory).
#pragma once

#include "nvdl/Storage.h"

namespace nvdl {

// Every element of `from` into `to`: streams byte for byte, storages recursively, the class
// identifier of `from` and of each storage below it kept. Elements of `to` with the same names are
// replaced, others stay. The first failure ends the copy and is the result; what was copied stays.
HRESULT copyStorageTree(IStorage* from, IStorage* to);

}  // namespace nvdl
