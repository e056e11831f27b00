#include <gtest/gtest.h>

#include <cmath>

#include "plot/Picture.h"

namespace nvdl::plot {
namespace {

constexpr long kTimeRecord = 1001, kAutopower = 1003, kPsd = 1005, kFrf = 1011, kCoherence = 1013;
constexpr long kEquidistant = 1100, kOctaves = 1103;

MeasurementValues evenlySpaced(long type, std::vector<double> real, std::vector<double> imag = {}, double dx = 1.0) {
    MeasurementValues m;
    m.functionType = type;
    m.axisType = kEquidistant;
    m.complex = !imag.empty();
    m.xIncrement = dx;
    for (std::size_t i = 0; i < real.size(); ++i) m.x.push_back(dx * static_cast<double>(i));
    m.real = std::move(real);
    m.imag = std::move(imag);
    return m;
}

TEST(PlotPicture, KindFollowsFunctionTypeAxisAndCompression) {
    struct Case {
        long type, axis;
        bool complex;
        float compression;
        PictureKind kind;
    } cases[] = {
        {kFrf, kEquidistant, true, 1, PictureKind::MagnitudePhase},
        {1004, kEquidistant, true, 1, PictureKind::MagnitudePhase},
        {kAutopower, kEquidistant, false, 1, PictureKind::Magnitude},
        {kPsd, kEquidistant, false, 1, PictureKind::Magnitude},
        {kCoherence, kEquidistant, false, 1, PictureKind::Coherence},
        {1014, kEquidistant, false, 1, PictureKind::Coherence},
        {kAutopower, kOctaves, false, 1, PictureKind::OctaveBands},
        {kTimeRecord, kEquidistant, false, 1, PictureKind::Lines},
        {kTimeRecord, kEquidistant, false, 80, PictureKind::Envelope},
        {1000, kEquidistant, false, 1, PictureKind::Lines},
    };
    for (const Case& c : cases) {
        MeasurementValues m;
        m.functionType = c.type;
        m.axisType = c.axis;
        m.complex = c.complex;
        m.compressionFactor = c.compression;
        EXPECT_EQ(pictureKindOf(m), c.kind) << c.type << " " << c.axis;
    }
}

TEST(PlotPicture, ReducedPairsBecomeAnEnvelopeWithoutEmptyChunks) {
    MeasurementValues m = evenlySpaced(kTimeRecord, {-1, 2, -3, 4, 2147483648.0, -2147483648.0, 0, 0.5}, {}, 0.001);
    m.compressionFactor = 80;
    m.x.assign(m.x.size(), 0.0);
    m.x[0] = 5.0;
    const Trace t = envelopeOf(m);
    EXPECT_EQ(t.style, TraceStyle::Envelope);
    // Each pair spans 2 x 80 samples of a millisecond; the third is left out, the fourth keeps its place.
    const std::vector<double> x{5.0, 5.16, 5.16, 5.32, 5.48, 5.64};
    ASSERT_EQ(t.x.size(), x.size());
    for (std::size_t i = 0; i < x.size(); ++i) EXPECT_NEAR(t.x[i], x[i], 1e-12) << i;
    EXPECT_EQ(t.y, (std::vector<double>{-1, -1, -3, -3, 0, 0}));
    EXPECT_EQ(t.top, (std::vector<double>{2, 2, 4, 4, 0.5, 0.5}));
}

TEST(PlotPicture, FrfGivesDecibelsOverLogFrequencyAbovePhase) {
    // H = 10 j at every line: 20 dB, +90 degrees; the line at 0 Hz cannot go on the log axis.
    const MeasurementValues frf = evenlySpaced(kFrf, {0, 0, 0, 0}, {10, 10, 10, 10}, 50.0);
    const Picture p = composePicture({frf}, PlotOptions{});
    ASSERT_EQ(p.panels.size(), 2u);
    EXPECT_TRUE(p.legend.empty());
    const Panel& magnitude = p.panels[0];
    EXPECT_TRUE(magnitude.xAxis.logarithmic);
    EXPECT_DOUBLE_EQ(magnitude.xAxis.low, 10.0);
    EXPECT_DOUBLE_EQ(magnitude.xAxis.high, 1000.0);
    EXPECT_DOUBLE_EQ(magnitude.traces[0].y[1], 20.0);
    EXPECT_LT(magnitude.yAxis.low, 20.0);
    EXPECT_GT(magnitude.yAxis.high, 20.0);
    EXPECT_DOUBLE_EQ(p.panels[1].traces[0].y[2], 90.0);
    EXPECT_EQ(p.panels[1].yAxis.low, -180.0);

    PlotOptions linear;
    linear.linearFrequency = linear.linearMagnitude = true;
    const Picture q = composePicture({frf}, linear);
    EXPECT_FALSE(q.panels[0].xAxis.logarithmic);
    EXPECT_DOUBLE_EQ(q.panels[0].xAxis.low, 0.0);
    EXPECT_DOUBLE_EQ(q.panels[0].traces[0].y[1], 10.0);
}

TEST(PlotPicture, DecibelScaleDoesNotFollowValuesNearZero) {
    const MeasurementValues spectrum = evenlySpaced(kAutopower, {1.0, 1e-30, 10.0, 0.0});
    const Picture p = composePicture({spectrum}, PlotOptions{});
    EXPECT_GE(p.panels[0].yAxis.low, 10.0 - 200.0 - 20.0);
    EXPECT_LE(p.panels[0].yAxis.low, 10.0 - 200.0);
    EXPECT_EQ(p.panels[0].traces[0].y[3], -std::numeric_limits<double>::infinity());
}

TEST(PlotPicture, OverlaidMeasurementsGetColoursAndALegend) {
    MeasurementValues a = evenlySpaced(kCoherence, {0.5, 0.9, 1.0}, {}, 10.0), b = a;
    a.name = "Accel 1";
    b.name.clear();
    PlotOptions options;
    options.title = "Run 3";
    const Picture p = composePicture({a, b}, options);
    EXPECT_EQ(p.title, "Run 3");
    ASSERT_EQ(p.legend.size(), 2u);
    EXPECT_EQ(p.legend[0].name, "Accel 1");
    EXPECT_EQ(p.legend[1].name, "measurement 2");
    EXPECT_NE(p.panels[0].traces[0].colour, p.panels[0].traces[1].colour);
    EXPECT_EQ(p.panels[0].yAxis.low, 0.0);
    EXPECT_EQ(p.panels[0].yAxis.high, 1.0);
    EXPECT_EQ(p.panels[0].yLabel, "Coherence");
}

TEST(PlotPicture, OctaveBarsOfSeveralMeasurementsShareEachBandWithoutOverlap) {
    MeasurementValues bands;
    bands.functionType = kAutopower;
    bands.axisType = kOctaves;
    bands.x = {100, 125, 160, 200};
    bands.real = {1, 10, 100, 1000};
    const Picture p = composePicture({bands, bands}, PlotOptions{});
    const Trace& first = p.panels[0].traces[0];
    const Trace& second = p.panels[0].traces[1];
    ASSERT_EQ(first.x.size(), 4u);
    EXPECT_EQ(first.y, (std::vector<double>{0, 10, 20, 30}));
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_LT(first.x[i], first.right[i]);
        EXPECT_LE(first.right[i], second.x[i] * (1 + 1e-12));  // side by side, in order
        EXPECT_LT(first.x[i], bands.x[i]);
        EXPECT_GT(second.right[i], bands.x[i]);
        if (i + 1 < 4) {
            EXPECT_LT(second.right[i], first.x[i + 1]);
        }
    }
}

TEST(PlotPicture, UnitsNameTheAxes) {
    MeasurementValues m = evenlySpaced(kFrf, {1, 2}, {0, 0}, 1.0);
    m.xDimension = "Frequency";
    m.xUnit = "Hz";
    m.yDimension = "Acceleration/Force";
    m.yUnit = "m/s²/N";
    const Picture db = composePicture({m}, PlotOptions{});
    EXPECT_EQ(db.panels[0].xLabel, "Frequency [Hz]");
    EXPECT_EQ(db.panels[0].yLabel, "Acceleration/Force [dB re 1 m/s²/N]");
    PlotOptions linear;
    linear.linearMagnitude = true;
    EXPECT_EQ(composePicture({m}, linear).panels[0].yLabel, "Acceleration/Force [m/s²/N]");
}

}  // namespace
}  // namespace nvdl::plot
