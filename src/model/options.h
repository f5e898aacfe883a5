#pragma once
// The fitting options record.

#include <array>
#include <cstdint>

namespace molvera {

/// One level of the Search method for one parameter.
struct SearchLevel {
    std::int16_t Use = 0;
    float Range = 0;
    float Step = 0;
    bool operator==(const SearchLevel&) const = default;
};

/// One level of Newton's method for one parameter.
struct NewtonLevel {
    std::int16_t Use = 0;
    float Delta = 0;
    bool operator==(const NewtonLevel&) const = default;
};

constexpr int kLevels = 4;

/// Method, trials, tolerance, the four levels per parameter and the line-shape choice.
/// Levels are indexed 0..3 for levels 1..4.
struct FitOptions {
    float Method = 0;  ///< 0 Search method, 2 Levenberg-Marquardt, anything else Newton's method
    std::int16_t SearchTrials = 0;
    std::int16_t NewtonTrials = 0;
    float Tolerance = 0;  ///< fraction, 0..1
    std::array<SearchLevel, kLevels> PositionSearch{};
    std::array<SearchLevel, kLevels> AreaSearch{};
    std::array<SearchLevel, kLevels> FWHMSearch{};
    std::array<NewtonLevel, kLevels> PositionNewton{};
    std::array<NewtonLevel, kLevels> AreaNewton{};
    std::array<NewtonLevel, kLevels> FWHMNewton{};
    std::int16_t GLSum = 0;  ///< true: GL sum line shape; false: GL product

    bool operator==(const FitOptions&) const = default;
};

}  // namespace molvera
