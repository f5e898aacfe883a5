// The item reader of the Leybold and Phi files: separators, quotes, line ends.

#include "fileio/itemreader.h"

#include <gtest/gtest.h>

namespace molvera {
namespace {

TEST(ItemReader, SeparatorsQuotesAndLineEnds) {
    ItemReader r("  \"Cu, 2p\" , 12 34,5\r\nnext text, 6\n\r\n  \n7");
    EXPECT_EQ(r.Text(), "Cu, 2p");
    EXPECT_EQ(r.Number(), 12.0);
    EXPECT_EQ(r.Number(), 34.0);  // a numeric item ends at a blank
    EXPECT_EQ(r.Number(), 5.0);
    EXPECT_EQ(r.Text(), "next text");  // a text item keeps its inner blank
    EXPECT_EQ(r.Number(), 6.0);
    EXPECT_FALSE(r.AtEnd());
    EXPECT_EQ(r.Number(), 7.0);  // numbers pass over empty lines
    EXPECT_TRUE(r.AtEnd());
    EXPECT_FALSE(r.Text().has_value());
    EXPECT_FALSE(r.Number().has_value());
}

TEST(ItemReader, NonNumericItemAndExtraSeparators) {
    ItemReader plain("abc 1;2\t3");
    EXPECT_FALSE(plain.Number().has_value());  // "abc" holds no number
    EXPECT_EQ(plain.NumberItem(), "1;2");      // ";" separates only with the extra separators
    ItemReader extra("1;2\t3", true);
    EXPECT_EQ(extra.Number(), 1.0);
    EXPECT_EQ(extra.Number(), 2.0);
    EXPECT_EQ(extra.Number(), 3.0);
    EXPECT_TRUE(extra.AtEnd());
    EXPECT_EQ(ValueAfterEquals("Regions = 3"), Int16{3});
    EXPECT_EQ(ValueAfterEquals("a=2.5=9"), Int16{2});  // halves to even, first "=" only
    EXPECT_EQ(ValueAfterEquals("42"), Int16{42});
    EXPECT_FALSE(ValueAfterEquals("n=1e9").has_value());
}

}  // namespace
}  // namespace molvera
