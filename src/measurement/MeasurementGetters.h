// A measurement's properties read through its own getters, as the writers of its records take them:
// text, an enumerated value as the text of its code, a plain value, a dimension as its index in
// the units table.
#pragma once

#include <string>

#include "measurement/Measurement.h"
#include "project/UnitClient.h"

namespace nvdl::getters {

inline std::string textOf(CMeasurement& m, HRESULT (CMeasurement::*get)(BSTR*)) {
    Bstr text;
    (m.*get)(text.out());
    return text.ansi();
}

// A code without text gives an empty text.
inline std::string enumeratedText(CMeasurement& m, HRESULT (CMeasurement::*get)(VARIANT*)) {
    Variant value;
    if (FAILED((m.*get)(&value)) || FAILED(value.changeType(VT_I4))) return {};
    Bstr text;
    m.Translate(value.lVal, text.out());
    return text.ansi();
}

inline LONG dimensionIndex(CMeasurement& m, HRESULT (CMeasurement::*get)(IDispatch**)) {
    IDispatch* dimension = nullptr;
    (m.*get)(&dimension);
    const LONG index = DimensionTableIndex(dimension);
    if (dimension) dimension->Release();
    return index;
}

template <class T, class Object>
T valueOf(Object& o, HRESULT (Object::*get)(T*)) {
    T value{};
    (o.*get)(&value);
    return value;
}

}  // namespace nvdl::getters
