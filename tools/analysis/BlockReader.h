// Reading a span of samples out of a time record, wherever its samples live: a record held whole
// in memory gives them by a block copy; a record paged from its file (a long recording channel,
// a long record of a workspace file) is first asked to bring the span in, and the span is then
// taken from the block it holds.
#pragma once

#include <cstdint>
#include <string>

#include "nvdl/IMeasurement.h"

namespace nvdl::analysis {

// The record's length in samples: the whole record, not the block held in memory.
std::int64_t recordLength(IMeasurement* record);

// Copies `count` real samples from sample `start` on into `out`. False with `error` set when the
// span lies outside the record or the record cannot bring it in whole (a span longer than the
// block a paged record holds at a time).
bool readSpan(IMeasurement* record, std::int64_t start, long count, float* out, std::string& error);

}  // namespace nvdl::analysis
