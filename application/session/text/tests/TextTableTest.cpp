#include <session/text/TextTable.h>

#include <gtest/gtest.h>

TEST(TextTable, ColumnsAreAsWideAsTheirWidestCell)
{
    TextTable table({false, true});
    table.add({"name", "value"});
    table.add({"x", "12"});

    EXPECT_EQ(table.text("  "), "  name  value\n"
                                "  x        12\n");
}

TEST(TextTable, CountsCharactersNotBytes)
{
    TextTable table({false, false});
    table.add({"Größe", "a"});
    table.add({"12345", "b"});

    EXPECT_EQ(table.text(""), "Größe  a\n12345  b\n");
}

TEST(TextTable, LinesEndWithoutBlanks)
{
    TextTable table({false, false});
    table.add({"wide cell", ""});
    table.add({"x"});

    EXPECT_EQ(table.text(""), "wide cell\nx\n");
}

TEST(TextTable, LineBreaksInACellDoNotBreakTheRow)
{
    TextTable table({false, false});
    table.add({"a\nb", "x"});
    table.add({"c", "y"});

    EXPECT_EQ(table.text(""), "a\\x0Ab  x\nc       y\n");
}
