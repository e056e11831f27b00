// The dimensions the outputs of the multi-input analysis carry, worked out through the unit service.
#include <array>
#include <optional>

#include "Common/Source/Mimo.h"
#include "nvdl/Variant.h"
#include "platform/ComPtr.h"

namespace nvdl {

namespace {

using Exponents = std::array<SHORT, kBaseExponentCount>;

// The base exponents of the table's dimension at `index`; nothing when the table has no such row.
std::optional<Exponents> exponentsAt(IDimensions* dimensions, std::int32_t index) {
    IDimension* found = nullptr;
    if (FAILED(dimensions->get_Item(Variant::fromLong(index), &found)) || !found) return std::nullopt;
    ComPtr<IDimension> dimension(found);
    Exponents exponents{};
    for (SHORT i = 0; i < kBaseExponentCount; ++i)
        if (FAILED(dimension->get_BaseExponent(static_cast<SHORT>(i + 1), &exponents[static_cast<std::size_t>(i)])))
            return std::nullopt;
    return exponents;
}

// The table index of the dimension with these exponents: 0 when the table has none, as a file keeps
// a dimension it does not know.
std::optional<std::int32_t> indexOf(IDimensions* dimensions, const Exponents& e) {
    IDimension* found = nullptr;
    if (FAILED(dimensions->FromExponents(e[0], e[1], e[2], e[3], e[4], e[5], e[6], e[7], e[8], e[9], &found)) || !found)
        return std::nullopt;
    ComPtr<IDimension> dimension(found);
    LONG index = -1;
    if (FAILED(dimension->get_Index(&index))) return std::nullopt;
    return index >= 0 ? index : 0;
}

}  // namespace

bool CMimo::PrepareDimensions(IUnitService* units) {
    m_frfDimensions.clear();
    m_coherenceDimensions.clear();
    m_inverseDimensions.clear();
    IDimensions* table = nullptr;
    if (!units || FAILED(units->get_Dimensions(&table)) || !table) return false;
    ComPtr<IDimensions> dimensions(table);
    const long n = m_inputs;
    const long m = m_responses;

    // Each output starts with its source's indexes; a Y dimension is replaced when the exponents it
    // is made of are known.
    const auto sourceIndexes = [](const Input* input) {
        return input && input->layout ? DimensionIndexes{input->layout->head.xDimension, input->layout->head.yDimension}
                                      : DimensionIndexes{};
    };
    const auto yExponents = [&](const Input* input) -> std::optional<Exponents> {
        if (!input || !input->layout) return std::nullopt;
        return exponentsAt(dimensions.get(), input->layout->head.yDimension);
    };

    const std::optional<Exponents> reference = n > 0 ? yExponents(entry(m_gff, 1, n, 1)) : std::nullopt;
    for (long i = 1; i <= n; ++i)
        for (long j = 1; j <= m; ++j) {
            const Input* cross = entry(m_gxf, j, m, i);
            DimensionIndexes indexes = sourceIndexes(cross);
            if (std::optional<Exponents> e = yExponents(cross); e && reference) {
                for (std::size_t b = 0; b < e->size(); ++b) (*e)[b] = static_cast<SHORT>((*e)[b] - (*reference)[b]);
                indexes.y = indexOf(dimensions.get(), *e).value_or(indexes.y);
            }
            m_frfDimensions.push_back(indexes);
        }
    const std::optional<std::int32_t> plainNumber = indexOf(dimensions.get(), Exponents{});
    for (long j = 1; j <= m; ++j) {
        DimensionIndexes indexes = sourceIndexes(entry(m_gxx, j, m, 1));
        indexes.y = plainNumber.value_or(indexes.y);
        m_coherenceDimensions.push_back(indexes);
    }
    for (long col = 1; col <= n; ++col)
        for (long row = 1; row <= n; ++row) {
            const Input* input = entry(m_gff, row, n, col);
            DimensionIndexes indexes = sourceIndexes(input);
            if (std::optional<Exponents> e = yExponents(input)) {
                for (SHORT& b : *e) b = static_cast<SHORT>(-b);
                indexes.y = indexOf(dimensions.get(), *e).value_or(indexes.y);
            }
            m_inverseDimensions.push_back(indexes);
        }
    return true;
}

}  // namespace nvdl
