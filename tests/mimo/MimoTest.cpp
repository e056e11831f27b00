// The multi-input analysis on flat records: matrix layouts, the three per-line decompositions, the
// analyses with their checks and messages, cloning, and dimensions through the unit service.
#include <gtest/gtest.h>

#include <complex>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Common/Source/Mimo.h"
#include "measurement/FlatRecord.h"
#include "platform/ComPtr.h"
#include "platform/Host.h"
#include "platform/LittleEndian.h"
#include "project/UnitClient.h"

namespace nvdl {
namespace {

using cd = std::complex<double>;
using mimo::RecordBytes;
using mimo::RecordView;

RecordBytes makeRecord(const std::vector<cd>& values, bool complex = true, const std::string& axis = "Equidistant",
                       std::int32_t yDimension = 0) {
    flat::Record r;
    r.head.name = "source";
    r.head.functionType = "Crosspower";
    r.head.xAxisType = axis;
    r.head.xDimension = 7;
    r.head.yDimension = yDimension;
    r.parameters = {{"Operator", "test"}};
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (flat::storesX(r.head)) r.x.push_back(10.0f * static_cast<float>(i));
        r.re.push_back(static_cast<float>(values[i].real()));
        if (complex) r.im.push_back(static_cast<float>(values[i].imag()));
    }
    return flat::writeRecord(r);
}

flat::Record readBack(const RecordBytes& bytes) {
    flat::Record r;
    EXPECT_TRUE(flat::readRecord(bytes.data(), bytes.size(), r));
    return r;
}

std::vector<cd> valuesOf(const RecordBytes& bytes) {
    flat::Record r = readBack(bytes);
    std::vector<cd> v;
    for (std::size_t i = 0; i < r.re.size(); ++i) v.emplace_back(r.re[i], r.im.empty() ? 0.0 : r.im[i]);
    return v;
}

// Keeps the records alive and hands their views to the analysis.
struct Inputs {
    std::vector<RecordBytes> gff, gxf, gxx;
    void into(CMimo& mimo) const {
        std::vector<RecordView> a(gff.begin(), gff.end()), b(gxf.begin(), gxf.end()), c(gxx.begin(), gxx.end());
        mimo.AddGff(a);
        mimo.AddGxf(b);
        mimo.AddGxx(c);
    }
};

class Mimo : public ::testing::Test {
protected:
    void SetUp() override {
        host::setMessageBoxHandler([this](const std::string& text, const std::string&, unsigned) {
            messages.push_back(text);
            return host::IDOK;
        });
    }
    void TearDown() override { host::setMessageBoxHandler({}); }
    // The message without its "{unit,line}" tail.
    static std::string withoutTail(const std::string& text) { return text.substr(0, text.rfind(" {")); }

    std::vector<std::string> messages;
};

void expectNear(cd actual, cd expected, const std::string& what) {
    EXPECT_NEAR(actual.real(), expected.real(), 1e-5) << what;
    EXPECT_NEAR(actual.imag(), expected.imag(), 1e-5) << what;
}

TEST_F(Mimo, CountsKeepTheirValueUnlessTheNewOneIsPositive) {
    struct Row {
        void (CMimo::*set)(long);
        long (CMimo::*get)() const;
    };
    for (Row row : {Row{&CMimo::SetInputs, &CMimo::Inputs}, Row{&CMimo::SetResponses, &CMimo::Responses},
                    Row{&CMimo::SetLines, &CMimo::Lines}}) {
        CMimo mimo;
        EXPECT_EQ((mimo.*row.get)(), 0);
        (mimo.*row.set)(3);
        for (long refused : {0L, -1L, -100L}) {
            (mimo.*row.set)(refused);
            EXPECT_EQ((mimo.*row.get)(), 3) << refused;
        }
        (mimo.*row.set)(5);
        EXPECT_EQ((mimo.*row.get)(), 5);
    }
}

TEST_F(Mimo, OneInputGivesItsPowerAsComponentAndTheQuotientAsFrf) {
    Inputs in{{makeRecord({4.0})}, {makeRecord({6.0})}, {makeRecord({9.0}, false)}};
    CMimo mimo;
    mimo.SetInputs(1);
    mimo.SetResponses(1);
    mimo.SetLines(1);
    in.into(mimo);
    ASSERT_TRUE(mimo.PrincipalComponents());
    ASSERT_TRUE(mimo.FrequencyResponses());
    ASSERT_EQ(mimo.PrincipalComponentRecords().size(), 1u);
    flat::Record pc = readBack(mimo.PrincipalComponentRecords()[0]);
    EXPECT_EQ(pc.head.functionType, "Principal component");
    EXPECT_EQ(pc.head.complex, 0);
    EXPECT_EQ(pc.head.responseChannel, 1);
    EXPECT_EQ(pc.head.referenceChannel, 1);
    EXPECT_EQ(pc.parameters, (std::vector<std::pair<std::string, std::string>>{{"Operator", "test"}}));
    EXPECT_FLOAT_EQ(pc.re.at(0), 4.0f);
    flat::Record frf = readBack(mimo.FrfRecords().at(0));
    EXPECT_EQ(frf.head.functionType, "FRF");
    EXPECT_EQ(frf.head.complex, 1);
    expectNear(valuesOf(mimo.FrfRecords()[0]).at(0), 1.5, "H");
    flat::Record coherence = readBack(mimo.CoherenceRecords().at(0));
    EXPECT_EQ(coherence.head.functionType, "Multiple coherence");
    EXPECT_EQ(coherence.head.complex, 0);
    EXPECT_FLOAT_EQ(coherence.re.at(0), 1.0f);
    EXPECT_TRUE(messages.empty());
}

TEST_F(Mimo, MultipleCoherenceIsLimitedToZeroAndOne) {
    struct Row {
        double gxf, gxx, coherence;
    } rows[] = {
        {6.0, 18.0, 0.5},  // P = 4·1.5² = 9
        {6.0, 7.5, 1.0},   // 1.2 is limited to 1
        {6.0, 0.0, 0.0},   // no response power
        {6.0, -2.0, 0.0},
        {0.0, 9.0, 0.0},
    };
    for (const Row& row : rows) {
        Inputs in{{makeRecord({4.0})}, {makeRecord({row.gxf})}, {makeRecord({row.gxx}, false)}};
        CMimo mimo;
        mimo.SetInputs(1);
        mimo.SetResponses(1);
        mimo.SetLines(1);
        in.into(mimo);
        ASSERT_TRUE(mimo.FrequencyResponses());
        EXPECT_FLOAT_EQ(readBack(mimo.CoherenceRecords().at(0)).re.at(0), row.coherence) << row.gxx;
    }
}

// Gff = [[2, i], [-i, 2]] at every line: eigenvalues 3 and 1, inverse [[2, -i], [i, 2]]/3. Given in
// its layout, column by column: Gff(1,1), Gff(2,1), Gff(1,2), Gff(2,2).
const cd I{0.0, 1.0};
std::vector<RecordBytes> hermitianGff(int lines) {
    auto constant = [&](cd v) { return makeRecord(std::vector<cd>(static_cast<std::size_t>(lines), v)); };
    return {constant(2.0), constant(-I), constant(I), constant(2.0)};
}

TEST_F(Mimo, AnalyzeGffFillsEachModeLineByLine) {
    struct Row {
        long mode;
        std::vector<cd> perLine;
    } rows[] = {
        {CMimo::kSingularValues, {3.0, 1.0}},
        {CMimo::kEigenvalues, {3.0, 1.0}},
        {CMimo::kGeneralizedInverse, {2.0 / 3, -I / 3.0, I / 3.0, 2.0 / 3}},
    };
    Inputs in{hermitianGff(2), {}, {}};
    for (const Row& row : rows) {
        CMimo mimo;
        mimo.SetInputs(2);
        mimo.SetLines(2);
        in.into(mimo);
        std::vector<d_complex> out(2 * row.perLine.size());
        ASSERT_EQ(mimo.AnalyzeGff(row.mode, out), 0) << row.mode;
        for (std::size_t k = 0; k < out.size(); ++k)
            expectNear({out[k].re, out[k].im}, row.perLine[k % row.perLine.size()], "mode " + std::to_string(row.mode));
        std::vector<d_complex> small(out.size() - 1);
        EXPECT_LT(mimo.AnalyzeGff(row.mode, small), 0) << "too small an output";
    }
    CMimo mimo;
    mimo.SetInputs(2);
    mimo.SetLines(2);
    in.into(mimo);
    std::vector<d_complex> out(16);
    EXPECT_LT(mimo.AnalyzeGff(10004, out), 0);
}

TEST_F(Mimo, FrfsAndCoherencesOfTwoInputsAndTwoResponses) {
    // H = [[1, 2i], [3, 0]]: Gxf = H·Gff = [[4, 5i], [6, 3i]]; powers h·Gff·h^H are 14 and 18.
    Inputs in{hermitianGff(1),
              {makeRecord({4.0}), makeRecord({6.0}), makeRecord({5.0 * I}), makeRecord({3.0 * I})},
              {makeRecord({28.0}, false), makeRecord({18.0}, false)}};
    CMimo mimo;
    mimo.SetInputs(2);
    mimo.SetResponses(2);
    mimo.SetLines(1);
    in.into(mimo);
    ASSERT_TRUE(mimo.FrequencyResponses());
    const cd expected[] = {1.0, 3.0, 2.0 * I, 0.0};  // by input, then response
    ASSERT_EQ(mimo.FrfRecords().size(), 4u);
    for (std::size_t k = 0; k < 4; ++k) expectNear(valuesOf(mimo.FrfRecords()[k]).at(0), expected[k], std::to_string(k));
    ASSERT_EQ(mimo.CoherenceRecords().size(), 2u);
    EXPECT_NEAR(readBack(mimo.CoherenceRecords()[0]).re.at(0), 0.5, 1e-6);
    EXPECT_NEAR(readBack(mimo.CoherenceRecords()[1]).re.at(0), 1.0, 1e-6);
    ASSERT_TRUE(mimo.PrincipalComponents());
    EXPECT_NEAR(readBack(mimo.PrincipalComponentRecords()[0]).re.at(0), 3.0, 1e-6);
    EXPECT_NEAR(readBack(mimo.PrincipalComponentRecords()[1]).re.at(0), 1.0, 1e-6);
    EXPECT_EQ(readBack(mimo.PrincipalComponentRecords()[1]).head.responseChannel, 2);
    EXPECT_EQ(readBack(mimo.PrincipalComponentRecords()[1]).head.referenceChannel, 2);
}

TEST_F(Mimo, InverseLineTakesTheElementAtItsIndexTimesTheLine) {
    // Line 0 has the Hermitian matrix, whose inverse elements (row by row) are 2/3, -i/3, i/3, 2/3.
    auto twoLines = [](cd first) { return makeRecord({first, 100.0}); };
    Inputs in{{twoLines(2.0), twoLines(-I), twoLines(I), twoLines(2.0)}, {}, {}};
    CMimo mimo;
    mimo.SetInputs(2);
    mimo.SetLines(2);
    in.into(mimo);
    ASSERT_TRUE(mimo.InputInverse());
    ASSERT_EQ(mimo.InverseRecords().size(), 4u);
    // entry in the layout of Gff -> {line 0, line 1}: line 1 reads element (col - 1)·n + row - 1.
    const std::vector<cd> expected[] = {{2.0 / 3, 2.0 / 3}, {2.0 / 3, -I / 3.0}, {2.0 / 3, I / 3.0}, {2.0 / 3, 2.0 / 3}};
    for (std::size_t k = 0; k < 4; ++k) {
        std::vector<cd> got = valuesOf(mimo.InverseRecords()[k]);
        ASSERT_EQ(got.size(), 2u);
        expectNear(got[0], expected[k][0], "line 0 of " + std::to_string(k));
        expectNear(got[1], expected[k][1], "line 1 of " + std::to_string(k));
    }
}

TEST_F(Mimo, AnalysesCheckTheirSetupInOrder) {
    struct Row {
        const char* what;
        long inputs, responses, lines;
        bool gff, gxf;
        bool (CMimo::*analysis)();
        std::string message;
    } rows[] = {
        {"pc inputs", 0, 0, 0, false, false, &CMimo::PrincipalComponents, "# inputs 0 (i.e. # references) should be positive"},
        {"pc lines", 1, 0, 0, false, false, &CMimo::PrincipalComponents, "# frequency lines (0) should be positive"},
        {"pc gff", 1, 0, 1, false, false, &CMimo::PrincipalComponents, "Gff measurement collection is unspecified"},
        {"frf responses", 1, 0, 0, false, false, &CMimo::FrequencyResponses, "# inputs 0 (i.e. # responses) should be positive"},
        {"frf lines", 1, 1, 0, true, true, &CMimo::FrequencyResponses, "# frequency lines (0) should be positive"},
        {"frf gff", 1, 1, 1, false, true, &CMimo::FrequencyResponses, "Gff measurement collection is unspecified"},
        {"frf gxf", 1, 1, 1, true, false, &CMimo::FrequencyResponses, "Gxf measurement collection is unspecified"},
        {"inverse inputs", 0, 1, 1, true, false, &CMimo::InputInverse, "# inputs 0 (i.e. # references) should be positive"},
        {"inverse gff", 1, 1, 1, false, false, &CMimo::InputInverse, "Gff measurement collection is unspecified"},
    };
    const RecordBytes one = makeRecord({1.0});
    for (const Row& row : rows) {
        messages.clear();
        CMimo mimo;
        mimo.SetInputs(row.inputs);
        mimo.SetResponses(row.responses);
        mimo.SetLines(row.lines);
        std::vector<RecordView> some{one};
        if (row.gff) mimo.AddGff(some);
        if (row.gxf) mimo.AddGxf(some);
        EXPECT_FALSE((mimo.*row.analysis)()) << row.what;
        ASSERT_EQ(messages.size(), 1u) << row.what;
        EXPECT_EQ(withoutTail(messages[0]), row.message) << row.what;
        EXPECT_NE(messages[0].find("{Mimo,"), std::string::npos) << row.what;
        EXPECT_EQ(mimo.LastMessage(), messages[0]);
    }
}

TEST_F(Mimo, ValuesOutOfRangeShowTheirMessageAndCountAsZero) {
    Inputs in{hermitianGff(2), {makeRecord({5.0}), makeRecord({5.0, 6.0}), makeRecord({1.0, 1.0}), makeRecord({1.0, 1.0}),
                                makeRecord({1.0, 1.0}), makeRecord({1.0, 1.0})},
              {makeRecord({7.0, 8.0}, false), makeRecord({1.0}, false), makeRecord({1.0}, false)}};
    CMimo mimo;
    mimo.SetInputs(2);
    mimo.SetResponses(3);
    mimo.SetLines(2);
    in.into(mimo);
    struct Row {
        std::function<cd()> read;
        cd value;
        std::string message;  // empty: none
    } rows[] = {
        {[&] { return mimo.Gff(1, 2, 1); }, I, ""},
        {[&] { return mimo.Gff(0, 1, 0); }, 0.0, "Gff : Row 0 out of range [1,2]"},
        {[&] { return mimo.Gff(1, 3, 0); }, 0.0, "Gff : Column 3 out of range [1,2]"},
        {[&] { return mimo.Gff(1, 1, 2); }, 0.0, "Gff : Frequency Index 2 out of range [0,1]"},
        {[&] { return mimo.Gxf(2, 1, 1); }, 6.0, ""},
        {[&] { return mimo.Gxf(1, 1, 1); }, 0.0, "Gxf(1,1) : Frequency Index 1 >= size 1"},
        {[&] { return mimo.Gxf(4, 1, 0); }, 0.0, "Gxf : Row 4 out of range [1,3]"},
        {[&] { return mimo.Gxf(1, 3, 0); }, 0.0, "Gxf : Column 3 out of range [1,2]"},
        {[&] { return mimo.Gxf(1, 1, -1); }, 0.0, "Gxf : Frequency Index -1 out of range [0,1]"},
        {[&] { return cd(mimo.Gxx(1, 1)); }, 8.0, ""},
        {[&] { return cd(mimo.Gxx(2, 1)); }, 0.0, "Gxx(2) : Frequency Index 1 >= size 1"},
        {[&] { return cd(mimo.Gxx(0, 0)); }, 0.0, "Gxf : Row 0 out of range [1,3]"},
        {[&] { return cd(mimo.Gxx(1, 5)); }, 0.0, "Gxx : Frequency Index 5 out of range [0,1]"},
    };
    for (const Row& row : rows) {
        messages.clear();
        expectNear(row.read(), row.value, row.message);
        EXPECT_EQ(messages, row.message.empty() ? std::vector<std::string>{} : std::vector<std::string>{row.message});
    }
    messages.clear();
    EXPECT_EQ(mimo.Gff(3, 1), nullptr);
    EXPECT_EQ(mimo.Gxx(4), nullptr);
    EXPECT_EQ(messages, (std::vector<std::string>{"Gff : Row 3 out of range [1,2]", "Gxf : Row 4 out of range [1,3]"}));
    ASSERT_NE(mimo.Gxf(2, 1), nullptr);
    EXPECT_EQ(mimo.Gxf(2, 1)->data(), in.gxf[1].data());
}

TEST_F(Mimo, ShortGxfCountsAsZeroAndTheAnalysisGoesOn) {
    // One input, two lines; Gxf holds only line 0, so line 1 has H = 0 and no coherent power.
    Inputs in{{makeRecord({4.0, 4.0})}, {makeRecord({6.0})}, {makeRecord({9.0, 9.0}, false)}};
    CMimo mimo;
    mimo.SetInputs(1);
    mimo.SetResponses(1);
    mimo.SetLines(2);
    in.into(mimo);
    ASSERT_TRUE(mimo.FrequencyResponses());
    EXPECT_EQ(messages, std::vector<std::string>{"Gxf(1,1) : Frequency Index 1 >= size 1"});
    EXPECT_EQ(readBack(mimo.CoherenceRecords().at(0)).re, (std::vector<float>{1.0f, 0.0f}));
    EXPECT_EQ(valuesOf(mimo.FrfRecords().at(0)).size(), 1u) << "the FRF keeps the size of its Gxf";
}

TEST_F(Mimo, AMissingCloneSourceEndsTheAnalysis) {
    Inputs in{{makeRecord({4.0})}, {makeRecord({6.0})}, {}};
    CMimo mimo;
    mimo.SetInputs(1);
    mimo.SetResponses(1);
    mimo.SetLines(1);
    in.into(mimo);
    EXPECT_FALSE(mimo.FrequencyResponses());
    EXPECT_EQ(withoutTail(mimo.LastMessage()), "Measurement cloning failed");
    EXPECT_EQ(mimo.FrfRecords().size(), 1u) << "the FRFs were made before the coherence failed";
}

TEST_F(Mimo, CloneCarriesAnXVectorOnItsThreeAxesAndCopiesWhatBothSizesReach) {
    struct Row {
        std::string axis;
        bool x;
        std::int32_t size;
        bool complex;
    } rows[] = {
        {"Arbitrary", true, -1, true}, {"octaves", true, 5, true},     {"Categories", true, 2, false},
        {"Equidistant", false, 5, false}, {"Equidistant", false, -1, true}, {"Logarithmic", false, 1, true},
    };
    for (const Row& row : rows) {
        // Three values 1+1i, 2+2i, 3+3i, and X values 10, 20, 30 where the axis carries them.
        RecordBytes source(flat::kHeadSize, 0);
        flat::Head head;
        head.xAxisType = row.axis;
        head.size = 3;
        head.complex = 1;
        head.parameterBytes = 4;
        head.functionType = "Crosspower";
        flat::encodeHead(head, source.data());
        source.insert(source.end(), {'a', 0, 'b', 0});
        auto putFloats = [&](float scale) {
            for (int i = 1; i <= 3; ++i) {
                std::uint8_t bytes[4];
                le::putF32(bytes, scale * static_cast<float>(i));
                source.insert(source.end(), bytes, bytes + 4);
            }
        };
        if (row.x) putFloats(10.0f);
        putFloats(1.0f);
        putFloats(1.0f);

        std::optional<RecordBytes> clone = mimo::CloneRecord(source, row.size, row.complex);
        ASSERT_TRUE(clone) << row.axis;
        std::optional<mimo::RecordLayout> layout = mimo::locate(*clone);
        ASSERT_TRUE(layout);
        const std::int32_t size = row.size == -1 ? 3 : row.size;
        EXPECT_EQ(layout->values, size) << row.axis;
        EXPECT_EQ(layout->hasX, row.x);
        EXPECT_EQ(layout->head.complex, row.complex ? 1 : 0);
        EXPECT_EQ(layout->head.functionType, "Crosspower");
        EXPECT_EQ(std::vector<std::uint8_t>(clone->begin() + flat::kHeadSize, clone->begin() + flat::kHeadSize + 4),
                  (std::vector<std::uint8_t>{'a', 0, 'b', 0}));
        for (std::int32_t i = 0; i < size; ++i) {
            const double v = i < 3 ? i + 1.0 : 0.0;
            expectNear(mimo::valueAt(*clone, *layout, i), {v, row.complex ? v : 0.0}, row.axis + " value");
            if (row.x) {
                const float x = le::f32(clone->data() + layout->xOffset + 4 * static_cast<std::size_t>(i));
                EXPECT_EQ(x, 10.0f * static_cast<float>(v)) << row.axis;
            }
        }
    }
}

TEST_F(Mimo, UnreadableSourcesCloneToNothing) {
    RecordBytes good = makeRecord({1.0, 2.0});
    RecordBytes shortHead(good.begin(), good.begin() + flat::kHeadSize - 1);
    RecordBytes shortValues(good.begin(), good.end() - 1);
    flat::Head huge;
    huge.size = 0x7fffffff;
    RecordBytes hugeSize(flat::kHeadSize, 0);
    flat::encodeHead(huge, hugeSize.data());
    EXPECT_TRUE(mimo::CloneRecord(good, -1, true));
    EXPECT_FALSE(mimo::CloneRecord(good, -2, true));
    EXPECT_FALSE(mimo::CloneRecord(shortHead, -1, true));
    EXPECT_FALSE(mimo::CloneRecord(shortValues, -1, true)) << "its Size is no measure";
    EXPECT_FALSE(mimo::CloneRecord(hugeSize, -1, true));
    EXPECT_TRUE(mimo::CloneRecord(shortValues, 4, true)) << "a size given is made, without the values";
    ASSERT_TRUE(mimo::locate(shortValues));
    EXPECT_EQ(mimo::locate(shortValues)->values, 0);
}

// --- Dimensions through the unit service ---

LONG tableIndex(const char* name) {
    ComPtr<IDimension> d(DimensionFromText(name, false));
    return DimensionTableIndex(d.get());
}

TEST_F(Mimo, DimensionsFollowTheExponentsOfTheSources) {
    ComPtr<IUnitService> units(GetOrCreateUnitService());
    ASSERT_TRUE(units);
    const LONG second = tableIndex("Time"), velocity = tableIndex("Velocity"), acceleration = tableIndex("Acceleration"),
               frequency = tableIndex("Frequency");
    ASSERT_TRUE(second > 0 && velocity > 0 && acceleration > 0 && frequency > 0);
    // Gff in seconds, Gxf in metres per second: the FRF is an acceleration, the inverse a frequency.
    Inputs in{{makeRecord({4.0}, true, "Equidistant", second)}, {makeRecord({6.0}, true, "Equidistant", velocity)},
              {makeRecord({9.0}, false, "Equidistant", velocity)}};
    CMimo mimo;
    mimo.SetInputs(1);
    mimo.SetResponses(1);
    mimo.SetLines(1);
    in.into(mimo);
    ASSERT_TRUE(mimo.PrepareDimensions(units.get()));
    ASSERT_EQ(mimo.FrfDimensions().size(), 1u);
    EXPECT_EQ(mimo.FrfDimensions()[0].y, acceleration);
    EXPECT_EQ(mimo.InverseDimensions().at(0).y, frequency);
    ASSERT_TRUE(mimo.FrequencyResponses() && mimo.InputInverse());
    EXPECT_EQ(readBack(mimo.FrfRecords()[0]).head.yDimension, acceleration);
    EXPECT_EQ(readBack(mimo.FrfRecords()[0]).head.xDimension, 7);
    EXPECT_EQ(readBack(mimo.InverseRecords()[0]).head.yDimension, frequency);
    ComPtr<IDimension> plain(DimensionAtIndex(readBack(mimo.CoherenceRecords()[0]).head.yDimension));
    DimensionExponents exponents{};
    ASSERT_TRUE(GetDimensionExponents(plain.get(), exponents));
    EXPECT_EQ(exponents, DimensionExponents{});

    EXPECT_FALSE(mimo.PrepareDimensions(nullptr));
    EXPECT_TRUE(mimo.FrfDimensions().empty());
    ASSERT_TRUE(mimo.FrequencyResponses());
    EXPECT_EQ(readBack(mimo.FrfRecords()[0]).head.yDimension, velocity) << "unprepared: the source's index stays";
}

}  // namespace
}  // namespace nvdl
