// SampleVector: the storage of one of a measurement's vectors (Y real, Y imaginary, X and their
// display copies). Its array comes from malloc, so that an array handed out by the da kernel (which
// allocates its outputs with malloc) is taken over as it is, without a copy, and given back with free.
// A vector can also be made "as allocated", without writing its elements, for a measurement whose
// new vectors hold no defined values yet.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <initializer_list>
#include <iterator>
#include <new>
#include <vector>

namespace nvdl {

class SampleVector {
public:
    using value_type = float;
    using size_type = std::size_t;
    using iterator = float*;
    using const_iterator = const float*;
    using reference = float&;
    using const_reference = const float&;

    SampleVector() noexcept = default;
    SampleVector(std::initializer_list<float> values) { assign(values.begin(), values.end()); }
    SampleVector(const SampleVector& other) { assign(other.begin(), other.end()); }
    SampleVector(SampleVector&& other) noexcept : m_data(other.m_data), m_size(other.m_size) {
        other.m_data = nullptr;
        other.m_size = 0;
    }
    SampleVector& operator=(const SampleVector& other) {
        if (this != &other) assign(other.begin(), other.end());
        return *this;
    }
    SampleVector& operator=(SampleVector&& other) noexcept {
        SampleVector(std::move(other)).swap(*this);
        return *this;
    }
    ~SampleVector() { std::free(m_data); }

    std::size_t size() const noexcept { return m_size; }
    bool empty() const noexcept { return m_size == 0; }
    float* data() noexcept { return m_data; }
    const float* data() const noexcept { return m_data; }
    float* begin() noexcept { return m_data; }
    float* end() noexcept { return m_data + m_size; }
    const float* begin() const noexcept { return m_data; }
    const float* end() const noexcept { return m_data + m_size; }
    float& operator[](std::size_t i) noexcept { return m_data[i]; }
    const float& operator[](std::size_t i) const noexcept { return m_data[i]; }

    // Frees the array.
    void clear() noexcept {
        std::free(m_data);
        m_data = nullptr;
        m_size = 0;
    }
    void swap(SampleVector& other) noexcept {
        std::swap(m_data, other.m_data);
        std::swap(m_size, other.m_size);
    }

    // n elements that hold no defined values; the old array is freed.
    void allocate(std::size_t n) { SampleVector(fresh(n), n).swap(*this); }
    // n copies of `value`.
    void assign(std::size_t n, float value) {
        allocate(n);
        std::fill_n(m_data, n, value);
    }
    // A copy of [first, last).
    template <class Iterator>
    void assign(Iterator first, Iterator last) {
        const auto n = static_cast<std::size_t>(std::distance(first, last));
        float* array = fresh(n);
        if (n > 0) std::copy(first, last, array);
        SampleVector(array, n).swap(*this);
    }
    // Keeps the first elements up to n; elements beyond the old length are `fill`. The values move
    // to a fresh array, so a vector that shrinks gives its whole old array back.
    void resize(std::size_t n, float fill = 0.0f) {
        if (n == m_size) return;
        if (n == 0) return clear();
        float* array = fresh(n);
        const std::size_t kept = std::min(n, m_size);
        if (kept > 0) std::copy_n(m_data, kept, array);
        if (n > kept) std::fill(array + kept, array + n, fill);
        SampleVector(array, n).swap(*this);
    }
    // Takes over an array of n floats allocated with malloc; it is freed with free.
    void adopt(float* array, std::size_t n) noexcept { SampleVector(array, n).swap(*this); }

    friend bool operator==(const SampleVector& a, const SampleVector& b) {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }
    friend bool operator==(const SampleVector& a, const std::vector<float>& b) {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }

private:
    SampleVector(float* array, std::size_t n) noexcept : m_data(array), m_size(n) {}

    // An array of n floats; an empty vector owns none.
    static float* fresh(std::size_t n) {
        if (n == 0) return nullptr;
        if (n > static_cast<std::size_t>(-1) / sizeof(float)) throw std::bad_alloc();
        void* array = std::malloc(n * sizeof(float));
        if (!array) throw std::bad_alloc();
        return static_cast<float*>(array);
    }

    float* m_data = nullptr;
    std::size_t m_size = 0;
};

}  // namespace nvdl
