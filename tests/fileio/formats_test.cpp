#include "fileio/formats.h"

#include <fstream>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fileio/asciiimport.h"
#include "support/files.h"
#include "fileio/kratos.h"
#include "fileio/leybold.h"
#include "fileio/phi.h"
#include "fileio/vamas.h"
#include "support/recording_host.h"

namespace molvera {
namespace {

TEST(ImportFormats, TableOfTitlesFiltersAndReaders) {
    const auto formats = ImportFormats();
    ASSERT_EQ(formats.size(), 5u);
    struct Row {
        const char* name;
        const char* title;
        const char* filter;
        ImportFunction read;
    };
    const Row rows[] = {
        {"kratos", "Import Kratos Ascii format", "Kratos Files (*.des) |*.des|", &ReadKratos},
        {"leybold", "Import Leybold Ascii format", "ASCII Files (*.dat) |*.dat|", &ReadLeybold},
        {"phi", "Import Phi Ascii format", "ASCII Files (*.asc) |*.asc|", &ReadPhi},
        {"vamas", "Import VAMAS format", "VAMAS Files (*.*) |*.*|", &ReadVamas},
        {"ascii", "Import Ascii format (BE  Intensity)", "ASCII Files (*.*) |*.*|", &ReadAscii},
    };
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(formats[i].name, rows[i].name);
        EXPECT_EQ(formats[i].title, rows[i].title);
        EXPECT_EQ(formats[i].filter, rows[i].filter);
        EXPECT_EQ(formats[i].read, rows[i].read);
        EXPECT_EQ(FindImportFormat(rows[i].name), &formats[i]);
    }
    EXPECT_EQ(FindImportFormat("VAMAS"), nullptr);
    EXPECT_EQ(FindImportFormat(""), nullptr);
}

// Every reader on damaged input: cut real and synthetic files at many places,
// flip bytes, feed noise. Nothing may crash, and no region may exceed its limits.
TEST(ImportFormats, DamagedInputNeverBreaksTheProject) {
    std::vector<std::string> samples = {
        "Dataset:\tx\nObject name:\ty\n# ord = 3\nenergy = 100\nRegions\n" + std::string(12 * 8, '=') +
            "\n(Counts)\n1 2\n3 4\n5 6\n",
        "d\nRegions = 2\n1\nC\nPoints = 2\n1, 2\n3, 4\n1\nO\nPoints = 2\n5 6\n7 8\n",
        "A, B\nC\n1 10 -1 3\n1 2 3\n0\n",
        "290 1\n289 2\n",
    };
    for (const char* rel : {"minespex/vamas.vms", "lg4x/C1s_sample.csv"}) {
        const std::string path = test::RealFile(rel);
        if (!path.empty()) {
            std::string text;
            for (const std::string& l : test::FileLines(path)) text += l + "\r\n";
            samples.push_back(text.substr(0, 6000));
        }
    }
    std::mt19937 random(7);
    std::vector<std::string> inputs = {"", "\n", std::string(3, '\0'), "VAMAS\n", "\"unterminated"};
    for (const std::string& s : samples) {
        for (std::size_t cut = 0; cut < s.size(); cut += 1 + s.size() / 40) inputs.push_back(s.substr(0, cut));
        for (int k = 0; k < 10; ++k) {
            std::string m = s;
            m[random() % m.size()] = static_cast<char>(random() % 256);
            inputs.push_back(m);
        }
    }
    const std::string path = (test::ScratchDir() / "in.txt").string();
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        std::ofstream(path, std::ios::binary | std::ios::trunc) << inputs[i];
        for (const ImportFormat& f : ImportFormats()) {
            Project project;
            test::RecordingHost host;
            project.CurrentRegion = static_cast<Int16>(i % kRegionCount);
            const Status s = f.read(project, host, path);
            if (!s.ok()) {
                EXPECT_FALSE(s.message().empty());
            }
            for (const Region& r : project.Regions) {
                EXPECT_LE(r.PointCount, kMaxPoints);
                EXPECT_GE(r.PointCount, 0);
                if (IsSet(r.HasData)) {
                    EXPECT_EQ(r.BindingEnergy.size(), static_cast<std::size_t>(r.PointCount) + 1);
                }
                EXPECT_LE(r.PeakCount, kMaxPeaksPerRegion);
            }
            EXPECT_EQ(project.CurrentRegion, static_cast<Int16>(i % kRegionCount)) << f.name << " input " << i;
        }
    }
}

}  // namespace
}  // namespace molvera
