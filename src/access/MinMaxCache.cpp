// Placeholder until the min/max cache lands on this branch: no recording has a cache.
#include "access/MinMaxCache.h"

namespace nvdl::access {

std::unique_ptr<CMinMaxCache> CMinMaxCache::Load(const std::string&, long, long) { return nullptr; }

std::unique_ptr<CMinMaxCacheBuilder> CMinMaxCacheBuilder::Begin(const std::string&, long, long, long, std::int64_t) {
    return nullptr;
}

long BuildMinMaxCaches(const std::string&) { return -1; }

}  // namespace nvdl::access
