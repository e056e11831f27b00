// The thread's pending error record: what a failed call leaves for its client to read.
#pragma once

#include <optional>
#include <string>

#include "nvdl/Export.h"
#include "nvdl/Guid.h"

NVDL_API_BEGIN

namespace nvdl {

struct ErrorRecord {
    IID iid{};
    std::u16string source;
    std::u16string description;
    std::u16string helpFile;
    DWORD helpContext = 0;
};

// Replaces the thread's pending record.
void setErrorInfo(ErrorRecord record);
// Takes the pending record: it is gone afterwards.
std::optional<ErrorRecord> takeErrorInfo();
// Reads the pending record without taking it.
const ErrorRecord* peekErrorInfo();
void clearErrorInfo();

}  // namespace nvdl

NVDL_API_END
