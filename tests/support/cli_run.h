#pragma once
// Running molvera-cli as a process in a scratch folder, as scripts use it.

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "support/files.h"

namespace molvera::test {

/// Exit code and captured output of one molvera-cli run.
struct CliRun {
    int code;
    std::string out;
    std::string err;
};

/// A scratch folder holding the shipped default.opa, where molvera-cli runs.
class CliFolder : public ::testing::Test {
protected:
    void SetUp() override {
        dir = ScratchDir();
        std::filesystem::copy_file(std::filesystem::path(MOLVERA_SOURCE_DIR) / "default.opa",
                                   dir / "default.opa");
    }
    /// Runs molvera-cli in the folder with `args` (already shell-quoted).
    CliRun Cmd(const std::string& args) const {
        const std::string cmd = "cd '" + dir.string() + "' && '" + MOLVERA_CLI_PATH + "' " + args +
                                " > out.txt 2> err.txt";
        const int status = std::system(cmd.c_str());
        return {WEXITSTATUS(status), ReadBytes(dir / "out.txt"), ReadBytes(dir / "err.txt")};
    }
    std::filesystem::path dir;
};

}  // namespace molvera::test
