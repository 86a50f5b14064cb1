#include <session/text/TextTable.h>

#include <gtest/gtest.h>

TEST(TextTable, ColumnsAreAsWideAsTheirWidestCell)
{
    const auto tableOf = [](const std::vector<std::vector<std::string>>& rows,
                            bool alignsRight = false) {
        TextTable table({false, alignsRight});
        for (const std::vector<std::string>& row : rows) {
            table.add(row);
        }
        return table.text("  ");
    };

    EXPECT_EQ(tableOf({{"name", "value"}, {"x", "12"}}, true), "  name  value\n"
                                                               "  x        12\n");
    EXPECT_EQ(tableOf({{"Größe", "a"}, {"12345", "b"}}), "  Größe  a\n  12345  b\n")
        << "characters, not bytes";
    EXPECT_EQ(tableOf({{"wide cell", ""}, {"x"}}), "  wide cell\n  x\n") << "no blanks at the end";
    EXPECT_EQ(tableOf({{"a\nb", "x"}, {"c", "y"}}), "  a\\x0Ab  x\n  c       y\n")
        << "a line break does not break the row";
}
