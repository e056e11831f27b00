#include "demo/DemoPlots.h"

#include "platform/ComPtr.h"
#include "plot/MeasurementPlot.h"

namespace nvdl::demo {

namespace {

// Points of the overview of a long record: pairs of minimum and maximum.
constexpr LONG kOverviewPoints = 2000;

bool picture(const std::vector<IMeasurement*>& measurements, const std::filesystem::path& folder, const char* file,
             const char* title, std::vector<std::string>& written, std::string& error) {
    plot::PlotOptions options;
    options.title = title;
    const std::vector<IDispatch*> items(measurements.begin(), measurements.end());
    if (!plot::writeMeasurementPlot(items, (folder / file).string(), options, error)) {
        error = std::string(file) + ": " + error;
        return false;
    }
    written.push_back(file);
    return true;
}

}  // namespace

bool writeDemoPlots(const DemoPictures& pictures, const std::filesystem::path& folder, std::vector<std::string>& written,
                    std::string& error) {
    // The overview of each channel is its min/max envelope, which keeps the record's sampling step:
    // the factor tells the picture how many samples stand behind each value.
    std::vector<ComPtr<IMeasurement>> envelopes;
    std::vector<IMeasurement*> overview;
    for (IMeasurement* record : pictures.records) {
        LONG samples = 0;
        float step = 0.0f;
        record->get_FileSamples(&samples);
        record->get_XIncrement(&step);
        ComPtr<IMeasurement> envelope;
        if (FAILED(record->Compress(kOverviewPoints, envelope.out()))) {
            error = "cannot reduce a channel for its overview";
            return false;
        }
        envelope->put_XIncrement(step);
        envelope->put_CompressionFactor(static_cast<float>(samples) / kOverviewPoints);
        overview.push_back(envelope.get());
        envelopes.push_back(std::move(envelope));
    }
    // The force and the accelerations have units of their own, and so pictures of their own.
    const std::vector<IMeasurement*> force(overview.begin(), overview.begin() + 1),
        responses(overview.begin() + 1, overview.end());
    return picture(pictures.frfs, folder, "frf.png", "FRF H1 of the accelerations to the force", written, error) &&
           picture(pictures.coherences, folder, "coherence.png", "Coherence of the accelerations with the force", written,
                   error) &&
           picture({pictures.bands}, folder, "octave.png", "Third-octave bands", written, error) &&
           picture(force, folder, "overview-force.png", "The recording: the force, min/max", written, error) &&
           picture(responses, folder, "overview-responses.png", "The recording: the accelerations, min/max", written,
                   error);
}

}  // namespace nvdl::demo
