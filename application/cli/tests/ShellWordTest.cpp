#include "ShellWord.h"

#include <gtest/gtest.h>

TEST(ShellWord, QuotesWhatAShellWouldTakeApart)
{
    const struct
    {
        const char* text;
        const char* word;
    } rows[] = {{"H2/WF6,a_1:x=-2.5%", "H2/WF6,a_1:x=-2.5%"},
                {"Größe", "Größe"},
                {"", "''"},
                {"a b", "'a b'"},
                {"$(x)", "'$(x)'"},
                {"d'or", "'d'\\''or'"}};

    for (const auto& row : rows) {
        EXPECT_EQ(shellWord(row.text), row.word);
    }
}
