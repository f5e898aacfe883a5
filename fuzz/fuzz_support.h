#pragma once
// Shared pieces of the fuzz targets: the input as a file, sample projects, and the
// commands a user runs after a successful load.

#include <cstddef>
#include <cstdint>
#include <string>

#include "model/records.h"

namespace molvera::fuzz {

/// Writes the input to this process's scratch file for `target` (in /dev/shm when
/// present) and returns its path.
std::string InputFile(const char* target, const std::uint8_t* data, std::size_t size);

/// Region `r` filled with n points from `highBE` down in steps of `step` eV.
void FillRegion(Project& project, int r, int n, float highBE, float step);

/// A project whose current region 0 holds 1001 points (700..200 eV); with `crowded`,
/// regions 1..5 carry peaks that leave only six peak slots free.
Project SampleProject(bool crowded);

/// What a user does next with a loaded project: every region recomputed, then each
/// region with data given a background and a peak if it lacks them, its envelope
/// computed and both exports produced.
void ExerciseProject(Project& project);

}  // namespace molvera::fuzz
