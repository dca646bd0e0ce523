#include "output/Table.h"

#include <gtest/gtest.h>

namespace {

using tesselctl::Table;

TEST(Table, alignsNumbersToTheRightAndAllElseToTheLeft)
{
    Table table({"ID", "NAME", "LUN"});
    EXPECT_EQ(table.part({{"7", "db", "-"}, {"11", "web server", "3"}}), "ID  NAME        LUN\n"
                                                                         " 7  db            -\n"
                                                                         "11  web server    3\n");
}

TEST(Table, takesAnEmptyTextForNoNumber)
{
    Table table({"ID", "NAME"});
    EXPECT_EQ(table.part({{"7", "a"}, {"", "b"}, {"11", "c"}}), "ID  NAME\n7   a\n    b\n11  c\n");
}

TEST(Table, keepsItsColumnsFromPartToPart)
{
    Table table({"ID", "NAME"});
    EXPECT_EQ(table.part({{"1", "long name"}}), "ID  NAME\n 1  long name\n");
    EXPECT_EQ(table.part({{"22", "x"}}), "22  x\n");
    EXPECT_EQ(table.part({{"n", "y"}}), " n  y\n"); // to the right, as it began
    Table texts({"ID"});
    texts.part({{"a"}});
    EXPECT_EQ(texts.part({{"1"}}), "1\n");
}

TEST(Table, leavesEscapesAsTheyAre)
{
    Table table({"NAME"});
    EXPECT_EQ(table.part({{"a\\x1Bb"}, {""}}), "NAME\na\\x1Bb\n\n");
}

} // namespace
