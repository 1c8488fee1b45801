#pragma once
// A short ring of values whose average steadies a level meter.
//
// Thread contract: one thread uses an object at a time.

#include <cstdint>
#include <vector>

namespace mirabend {

class clsSmooth {
public:
    // A ring of `size` values; position, count and largest average restart.
    void SmoothNew(std::int32_t size);
    void SmoothAdd(float value);
    // Average of the values held (0 while none is). Once the ring is full a
    // larger average than any before is remembered (LargestAverage).
    float SmoothGetMax();
    float LargestAverage() const { return m_largest; }

private:
    std::vector<float> m_ring;
    std::size_t m_pos = 0;
    std::size_t m_count = 0;
    float m_largest = 0;
};

} // namespace mirabend
