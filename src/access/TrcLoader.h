// CTrcLoader: a recording file seen from the automation objects. It is the file itself (CTrc) plus
// the mapping of its setup section to and from a setup object, scan and channel reads converted to
// physical units, the reduced reading of long spans for display, the cut of a time span into a new
// recording, and the measurements that point into the file instead of holding its data.
//
// Every operation returns 1 (or a pointer) on success and 0 (or null) on failure and never throws.
//
// Configuration, read once at construction from the user's settings: "MaxBlockSize" (the most values
// handed out at one time, 32768 when absent) and "LongFileFeature" (non-zero: long recordings are
// read in blocks and reduced).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "access/TrcLogging.h"
#include "recording/Trc.h"

// The interfaces of the object server stand in the global namespace.
struct IMeasurement;
struct ISetup;

namespace nvdl::access {

class CTrcCompression;
// Frees the working state of the reduced reads; defined beside it, so that this header need not
// know its shape.
struct CompressionDeleter {
    void operator()(CTrcCompression* compression) const;
};

// The kinds of source of a reduced read.
enum SourceKind : long { kInputChannel = 1, kTachoChannel = 2, kStoredMeasurement = 3 };

class CTrcLoader : public trc::CTrc {
public:
    // The loader's program identifier, the first part of every channel address it makes.
    static constexpr const char* kProgId = "nv_bench.io_newtrc";

    CTrcLoader();
    ~CTrcLoader() override;
    CTrcLoader(const CTrcLoader&) = delete;
    CTrcLoader& operator=(const CTrcLoader&) = delete;

    // --- Configuration ---
    long GetMaxBlockSize() const { return m_maxBlockSize; }
    // Stores the value and writes it back to the settings as decimal text.
    int SetMaxBlockSize(long value);
    int GetLongFileFeature() const { return m_longFileFeature; }

    // --- The file ---
    int OpenFile(const char* name);
    // Arms a new file under this name: the recorder is enabled, nothing touches the disk yet.
    int PrepareNew(const char* name);
    int CloseFile();
    int IsFileOpened() const;
    const std::string& GetCurrentName() const { return m_currentName; }
    const std::string& GetPreviousName() const { return m_previousName; }
    const std::string& GetTestDefinitionPath() const { return m_testDefinitionPath; }
    // 32 bits stores floats, anything else 16-bit samples.
    int SetDataFormat(long bits, float scaling);
    int GetDataFormat(long* bits, float* scaling);
    int SetScanCount(long count);
    int SetCreator(const char* creator);
    int SetTestDefinitionFile(const char* path);
    int StoreTestDefinition(const char* path);

    // --- Scans, by a cursor over a window of the recording ---
    int SetScanWindow(std::int64_t firstScan);
    std::int64_t GetFirstScan() const { return m_firstScan; }
    std::int64_t GetCurrentScan() const { return m_scanCursor; }
    void ResetScanCursor() { m_scanCursor = 1; }
    // One scan of the listed channels (numbers from 1), `blocksize` values each, channel after
    // channel into `data`, one status and one range per channel; physical units with `convert`.
    int ReadScan(long channels, const long* numbers, long blocksize, float* data, long* status, float* range, int convert);
    // The one used tacho channel's samples of the scan that the next ReadScan reads, in rpm.
    int ReadRpmScan(long blocksize, float* data);
    int WriteScanFloat(long scan, long channels, const float* buffer, std::int64_t count);
    int WriteScanInt16(long scan, long channels, const std::int16_t* buffer, std::int64_t count);
    int WriteInputInfo(long scan, long channels, const long* status, const float* range);
    int WriteTachoInfo(long scan, long channels, const long* status, const float* range);
    // The 0-based scan that holds a sample, clamped to the recording; -1 for bad input.
    static long ScanFromSample(std::int64_t sample, std::int64_t total, long blocksize);

    // --- Values in physical units ---
    // A 16-bit sample in range units: sample / scale, with scale = 32767 / range; 0 for a scale of 0.
    static float ScaleSample(std::int16_t sample, float scale);
    // The 16-bit scale of a range: 32767 / range, with a range of zero or below counted as 1.
    static float ScaleOfRange(float range);
    // factor and offset that take a value in range units to the unit named: from the units table's
    // factor a and offset b of the unit, the sensitivity (as 1000 / sensitivity for the calibration
    // type "mV/EU"), the pre-gain and the channel's offset. Factor 1 and offset 0, and 0, when the
    // units table cannot be reached.
    static int GetUnitConversion(const char* unit, float sensitivity, const char* calibrationType, float preGain,
                                 float channelOffset, float* offset, float* factor);
    // The factor of a tacho channel's values: rotation speed in "RPM"; the offset is 0.
    static float GetRpmFactor();

    // --- Setup mapping ---
    // A new setup object from the file's setup section; null when no file is open or the recorder
    // section cannot be read.
    ISetup* BuildSetup();
    // Fills the file's setup section from the setup; with `create`, also makes the file under the
    // current name and writes the recorder section (and the test definition when one is set).
    int ApplySetup(ISetup* setup, int create);

    // --- Measurements ---
    // A measurement of channel `channel` (inputs first, then tachos, from 1) that points into the
    // file, with the first picture of its data; null on failure. `hint` is not used.
    IMeasurement* ReadChannelMeasurement(IMeasurement* hint, long channel);
    // Reads `count` values of a source from `start` on and hands back at most MaxBlockSize values:
    // the span itself when it fits, else one minimum and one maximum per step. The arrays are the
    // caller's, to be released with free(). `fileSamples` or `count` of zero or less: 1, nothing made.
    int ReadCompressed(long kind, long channel, long subChannel, std::int64_t fileSamples, std::int64_t start,
                       std::int64_t count, float** x, float** yReal, float** yImag, float* factor, int* uncompleted,
                       int* useful, float* range, long* status);

    // --- Cut ---
    // Copies the span [start, stop) seconds of recording `input` into a new recording `output`.
    int Cut(const char* input, const char* output, float start, float stop);

    CTrcLogging& GetLog() { return m_log; }

private:
    std::string m_currentName;
    std::string m_previousName;
    std::string m_testDefinitionPath;
    std::int64_t m_firstScan = 0;
    std::int64_t m_scanCursor = 1;
    CTrcLogging m_log;
    long m_maxBlockSize = 32768;
    int m_longFileFeature = 0;
    // Working state of the reduced reads, kept between calls: a scrolling display reads every view.
    std::unique_ptr<CTrcCompression, CompressionDeleter> m_compression;
    // Scratch buffers of Cut, kept between calls; they grow and never shrink.
    std::vector<unsigned char> m_cutInputs;
    std::vector<unsigned char> m_cutTachos;
};

}  // namespace nvdl::access
