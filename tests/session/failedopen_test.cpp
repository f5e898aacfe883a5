// A failed open, import, region parameter load or option load leaves the open project as
// it was: the same project file bytes, the same options, the same main-window texts.
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/messages.h"
#include "fileio/optionfile.h"
#include "fileio/projectfile.h"
#include "fileio/regionparams.h"
#include "session/sessionhost.h"
#include "support/files.h"

namespace molvera {
namespace {

using Open = std::function<Status(Project&, Host&, const std::string&)>;

std::string Corpus(const std::string& rel) {
    return test::ReadBytes(std::string(MOLVERA_SOURCE_DIR) + "/fuzz/corpus/" + rel);
}

std::string FirstHalf(const std::string& bytes) { return bytes.substr(0, bytes.size() / 2); }

struct Case {
    std::string what;
    std::string bytes;  ///< the file's content; kMissing: no file at all
    Open open;
};
const std::string kMissing = "\x01missing";

TEST(FailedOpen, ChangesNothing) {
    const std::string xps = Corpus("project/c1s_three_peaks.xps");
    const Open loadProject = [](Project& p, Host& h, const std::string& f) {
        return LoadProject(p, h, f);
    };
    std::vector<Case> cases = {
        {"project, wrong format", "not a project\n", loadProject},
        {"project, truncated", FirstHalf(xps), loadProject},
        {"project, unreadable", kMissing, loadProject},
        {"region parameters, truncated", FirstHalf(Corpus("regionparams/c1s_three_peaks.rpa")),
         LoadRegionParameters},
        {"region parameters, unreadable", kMissing, LoadRegionParameters},
        {"options, truncated", FirstHalf(Corpus("optionfile/default.opa")),
         [](Project& p, Host&, const std::string& path) {
             return ReadOptionFile(p.Options, path);
         }},
        {"options, unreadable", kMissing,
         [](Project& p, Host&, const std::string& path) {
             return ReadOptionFile(p.Options, path);
         }},
        // VAMAS ending inside its second block: the first block was read already.
        {"vamas, truncated",
         FirstHalf(test::ReadBytes(test::DataFile("real/pynxtools-xps/regular.vms"))), nullptr},
        {"kratos, truncated fit", FirstHalf(Corpus("kratos/fit_shirley.des")), nullptr},
    };
    for (const ImportFormat& f : ImportFormats()) {
        const Open import = [&f](Project& p, Host& h, const std::string& path) {
            return ImportFile(p, h, f, path).status;
        };
        cases.push_back({std::string(f.name) + ", wrong format", "no spectrum here\n", import});
        cases.push_back({std::string(f.name) + ", unreadable", kMissing, import});
        for (Case& c : cases)
            if (!c.open && c.what.starts_with(f.name)) c.open = import;
    }

    const std::string path = (test::ScratchDir() / "c1s.dat").string();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        SessionHost host;
        Project project;
        test::WriteBytes(path, xps);
        ASSERT_TRUE(LoadProject(project, host, path));
        const std::string bytes = ProjectFileBytes(project);
        const std::string options = OptionFileBytes(project.Options);
        const MainWindowTexts texts = host.MainTexts();

        std::filesystem::remove(path);
        if (c.bytes != kMissing) test::WriteBytes(path, c.bytes);
        const Status st = c.open(project, host, path);
        EXPECT_FALSE(st.ok());
        EXPECT_TRUE(st.detail().starts_with("c1s.dat: ")) << st.Text();
        EXPECT_EQ(ProjectFileBytes(project), bytes);
        EXPECT_EQ(OptionFileBytes(project.Options), options);
        EXPECT_EQ(host.MainTexts().totalChiSquare, texts.totalChiSquare);
        EXPECT_EQ(host.MainTexts().chiSquare, texts.chiSquare);
    }
}

}  // namespace
}  // namespace molvera
