#include "fileio/formats.h"

#include <string>

#include <gtest/gtest.h>

#include "base/messages.h"
#include "support/files.h"

namespace molvera {
namespace {

// Every format of the table is found by its name, and a file that holds nothing is
// refused with the fixed message and a detail, the project left as it was.
TEST(ImportFormats, EveryFormatIsFoundAndRefusesAnEmptyFile) {
    for (const ImportFormat& format : ImportFormats()) {
        SCOPED_TRACE(std::string(format.name));
        EXPECT_EQ(FindImportFormat(format.name), &format);
        EXPECT_FALSE(format.menuCaption.empty() || format.title.empty() || format.filter.empty() ||
                     format.extensions.empty());
        Project project;
        test::RecordingHost host;
        const Project before = project;
        const ImportResult result = test::ImportText(project, host, std::string(format.name), "");
        EXPECT_TRUE(result.notices.empty());
        EXPECT_FALSE(result.status.ok());
        EXPECT_FALSE(result.status.detail().empty());
        EXPECT_EQ(project.Regions, before.Regions);
        EXPECT_EQ(project.Description, before.Description);
    }
    EXPECT_EQ(FindImportFormat("VAMAS"), nullptr);
}

}  // namespace
}  // namespace molvera
