// Fixed records declared as tables: every field type goes out little-endian and comes back, texts
// are cut to their field, a generation without a field leaves it alone, and a table whose fields
// overlap or leave the record is refused.
#include <gtest/gtest.h>

#include <vector>

#include "platform/RecordLayout.h"

namespace nvdl {
namespace {

struct Sample {
    std::int16_t channel = 0;
    std::int32_t count = 0;
    float gain = 0;
    double when = 0;
    std::string label;
};

using record::f32;
using record::f64;
using record::i16;
using record::i32;
using record::text;
using Row = record::Field<Sample, 2>;

constexpr Row kTable[] = {
    {i16(&Sample::channel), {0, 0}},
    {i32(&Sample::count), {2, 2}},
    {f32(&Sample::gain), {6, -1}},
    {f64(&Sample::when), {10, 6}},
    {text(&Sample::label, 6), {18, 14}},
};
static_assert(record::fitsAndDisjoint(std::span<const Row>(kTable), 0, 24));
static_assert(record::fitsAndDisjoint(std::span<const Row>(kTable), 1, 20));
static_assert(!record::fitsAndDisjoint(std::span<const Row>(kTable), 0, 23), "the label leaves a 23-byte record");

constexpr Row kOverlapping[] = {
    {i32(&Sample::count), {0, 0}},
    {i16(&Sample::channel), {3, 4}},
};
static_assert(!record::fitsAndDisjoint(std::span<const Row>(kOverlapping), 0, 8));
static_assert(record::fitsAndDisjoint(std::span<const Row>(kOverlapping), 1, 8));

TEST(RecordLayout, FieldsGoOutLittleEndianAndComeBack) {
    Sample s;
    s.channel = -2;
    s.count = 0x01020304;
    s.gain = 1.5f;
    s.when = -0.25;
    s.label = "abcdefgh";  // cut to five characters and a zero
    std::vector<std::uint8_t> bytes(24, 0xEE);
    record::encode(std::span<const Row>(kTable), 0, s, bytes.data());
    const std::vector<std::uint8_t> expected = {0xFE, 0xFF, 0x04, 0x03, 0x02, 0x01, 0x00, 0x00, 0xC0, 0x3F, 0,    0,
                                                0,    0,    0,    0,    0xD0, 0xBF, 'a',  'b',  'c',  'd',  'e',  0};
    EXPECT_EQ(bytes, expected);

    Sample back;
    record::decode(std::span<const Row>(kTable), 0, bytes.data(), back);
    EXPECT_EQ(back.channel, -2);
    EXPECT_EQ(back.count, 0x01020304);
    EXPECT_EQ(back.gain, 1.5f);
    EXPECT_EQ(back.when, -0.25);
    EXPECT_EQ(back.label, "abcde");
}

TEST(RecordLayout, AGenerationWithoutAFieldLeavesItAlone) {
    Sample s;
    s.gain = 7.0f;
    std::vector<std::uint8_t> bytes(20, 0);
    record::decode(std::span<const Row>(kTable), 1, bytes.data(), s);
    EXPECT_EQ(s.gain, 7.0f);
    EXPECT_FALSE(record::stores(std::span<const Row>(kTable), 1, &Sample::gain));
    EXPECT_TRUE(record::stores(std::span<const Row>(kTable), 0, &Sample::gain));
    EXPECT_EQ(record::offsetOf(std::span<const Row>(kTable), 1, &Sample::label), 14);
}

}  // namespace
}  // namespace nvdl
