#pragma once
// Paths of test data and a scratch folder per test.

#include <unistd.h>

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

namespace molvera::test {

/// A bundled test file (tests/data).
inline std::string DataFile(const std::string& name) {
    return std::string(MOLVERA_TEST_DATA) + "/" + name;
}

/// A file of the shared real-data set, or "" when the shared folder is absent.
inline std::string SharedRealFile(const std::string& rel) {
    std::filesystem::path p = std::filesystem::path(MOLVERA_SHARED_DIR) / "testdata" / "real" / rel;
    return std::filesystem::exists(p) ? p.string() : std::string();
}

/// A fresh empty folder for one test.
inline std::filesystem::path ScratchDir() {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    // The process id keeps two test runs on one machine out of each other's folders.
    std::filesystem::path dir = std::filesystem::temp_directory_path() / "molvera-tests" /
                                (std::string(info->test_suite_name()) + "." + info->name() + "." +
                                 std::to_string(getpid()));
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    return dir;
}

}  // namespace molvera::test
