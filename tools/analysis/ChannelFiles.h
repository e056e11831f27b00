// The files around an analysis: time records read from a recording or workspace file through the
// workspace's loaders, channels picked by number, and results written as a workspace file or as
// comma-separated text.
#pragma once

#include <string>
#include <vector>

#include "nvdl/IMeasurement.h"
#include "nvdl/IWorkspace.h"
#include "platform/ComPtr.h"

namespace nvdl::analysis {

struct TimeRecords {
    ComPtr<IWorkspace> workspace;  // holds the records
    std::vector<ComPtr<IMeasurement>> records;
    // The number a user names each record by: its recording channel number when the records carry
    // them, else its place among the file's time records, from 1.
    std::vector<long> numbers;
};

// Loads the file into a new workspace and gathers its time records. False with `error` set when
// the file cannot be loaded or holds no time record.
bool loadTimeRecords(const std::string& file, TimeRecords& loaded, std::string& error);
// The time records a workspace holds already; false with `error` set when it holds none.
bool gatherTimeRecords(const ComPtr<IWorkspace>& workspace, TimeRecords& loaded, std::string& error);

// The records named by a list of numbers and ranges ("2,3", "1-4"), in the list's order; an empty
// list names every record. False with `error` set for a malformed list or an unknown number.
bool pickChannels(const TimeRecords& loaded, const std::string& list, std::vector<IMeasurement*>& picked,
                  std::string& error);

// The number of one of the loaded records.
long numberOf(const TimeRecords& loaded, const IMeasurement* record);

// Writes the measurements to `path`: a workspace file for ".wkd", comma-separated text for ".csv"
// (either case). False with `error` set for another extension or a failed write.
bool writeResults(const std::vector<IMeasurement*>& results, const std::string& path, std::string& error);

// Adds a measurement (or any named item) to a collection under its own name.
HRESULT addItem(ICollection* collection, IDispatch* item);

}  // namespace nvdl::analysis
