#include "fileio/formats.h"

#include <string>

#include <gtest/gtest.h>

#include "fileio/asciiimport.h"
#include "fileio/kratos.h"
#include "fileio/leybold.h"
#include "fileio/phi.h"
#include "fileio/vamas.h"

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

}  // namespace
}  // namespace molvera
