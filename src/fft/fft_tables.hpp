// Sizes and contents of the tables of a record.
#pragma once

#include "fft/fft_plan.hpp"
#include "fft/fft_spec.hpp"

#include <cstddef>
#include <cstdint>

namespace lyr::fft {

// The base table up to this order is a constant; beyond, the initialisation computes one of the order of the transform.
inline constexpr int constantSineOrder = 10;

// sin(2*pi*k / 2^10) for the first quadrant, both ends included: 257 entries.
const float* constantSine() noexcept;

// Writes sin(2*pi*k / 2^order) for k from 0 to 2^order / 4.
void computeSine(float* table, int order) noexcept;

struct Sizes
{
    std::uint64_t spec;
    std::uint64_t init;
    std::uint64_t buffer;
};

// Bytes that a caller provides, each with the spare bytes for its alignment.
Sizes sizesOf(int order) noexcept;

// Bytes of the tables of a plan, and at most so many ahead of them to the next cache line.
inline constexpr std::size_t cacheLine = 64;
std::uint64_t tableBytes(const Plan& plan) noexcept;

// Lays the tables of a plan behind the record, from the next cache line on, and fills them from a base table of
// 2^sineOrder points a turn.
void buildTables(FFTSpec_R_32f& spec, const Plan& plan, const float* sine, int sineOrder) noexcept;

} // namespace lyr::fft
