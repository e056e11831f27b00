// The averaged analysis of a set of time records against one of them, the reference: per channel
// the autopower and its density, the crosspower to the reference, the H1 frequency response and the
// ordinary coherence. The records are cut into windowed, overlapping blocks; each block goes
// through the measurement operators (Window, Multiply, Fft, Psd) and the block estimates are
// averaged with Add. The averaged densities then give the FRF and the coherence through Frf and
// Coherence.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "nvdl/IMeasurement.h"
#include "platform/ComPtr.h"

namespace nvdl::analysis {

struct AnalysisOptions {
    long block = 2048;
    LONG window = 1302;  // a window code of the measurement's table; Hanning
    long averages = 0;   // blocks to average; 0 takes every whole block of the records
    double overlap = 50.0;  // percent of a block that neighbouring blocks share
    std::size_t reference = 0;  // which of the records is the reference
};

// What one record gives. The reference's own crosspower, FRF and coherence are trivial and left empty.
struct ChannelSpectra {
    ComPtr<IMeasurement> autopower;  // mean square per line, in the record's unit squared
    ComPtr<IMeasurement> psd;        // the same as a density per hertz
    ComPtr<IMeasurement> cross;      // crosspower of the reference to this record
    ComPtr<IMeasurement> frf;        // H1: averaged cross density over the reference's auto density
    ComPtr<IMeasurement> coherence;
};

struct ChannelAnalysis {
    std::vector<ChannelSpectra> channels;  // in the order of the records
    long averages = 0;
    // The window's noise bandwidth in lines: how far one sine's power spreads over neighbouring lines.
    float windowBandwidth = 1.0f;
};

// The window code for a name ("hanning", "Flattop", ...; case does not count), or -1. Windows that
// need parameters of an impact test (force, exponential) are not offered.
LONG windowCode(const std::string& name);

// False with `error` set when the records are not equidistant time records of one sampling rate,
// the block plan fails (see planBlocks) or an operator fails. `progress` hears the fraction done.
bool analyseChannels(const std::vector<IMeasurement*>& records, const AnalysisOptions& options,
                     const std::function<void(double)>& progress, ChannelAnalysis& result, std::string& error);

// The constant-percentage bands (`bandsPerOctave` 1 for octaves, 3 for third octaves) of an
// averaged autopower from analyseChannels: each band's value is the root mean square of the
// record in that band, in the record's unit.
bool octaveBands(IMeasurement* autopower, long bandsPerOctave, float windowBandwidth, ComPtr<IMeasurement>& bands,
                 std::string& error);

}  // namespace nvdl::analysis
