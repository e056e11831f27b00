// Test helpers around the kernel's records: an owning output record and vector construction.
#pragma once

#include <cstdlib>
#include <string>
#include <vector>

#include "nvdl/daDspLib.h"

namespace nvdl::test {

// An output record that frees what the kernel left in it.
struct OwnedVector {
    daVector v{nullptr, nullptr, 0};
    OwnedVector() = default;
    OwnedVector(const OwnedVector&) = delete;
    OwnedVector& operator=(const OwnedVector&) = delete;
    ~OwnedVector()
    {
        std::free(v.real);
        std::free(v.imag);
    }
    daVector* out() { return &v; }
    float operator[](long i) const { return v.real[i]; }
    std::vector<float> real() const { return std::vector<float>(v.real, v.real + v.length); }
    std::vector<float> imag() const { return std::vector<float>(v.imag, v.imag + v.length); }
};

// Views of test arrays (the arrays must outlive the view).
inline daVector view(std::vector<float>& re) { return {re.data(), nullptr, static_cast<long>(re.size())}; }
inline daVector view(std::vector<float>& re, std::vector<float>& im)
{
    return {re.data(), im.data(), static_cast<long>(re.size())};
}

// The error store's current message.
inline std::string lastError()
{
    char text[1000];
    daGetError(text, sizeof text);
    return text;
}

inline int errorFlag()
{
    int flag = -1;
    daGetErrorFlag(&flag);
    return flag;
}

}  // namespace nvdl::test
