#include <mirel_modelexport/WorkbookFile.h>

#include <mirel_fitting/SurrogateModelInterface.h>

#include <gtest/gtest.h>

#include <string>

TEST(WorkbookFile, NamesColumnsAsSpreadsheetsDo)
{
    EXPECT_EQ(WorkbookFile::columnName(0), "A");
    EXPECT_EQ(WorkbookFile::columnName(25), "Z");
    EXPECT_EQ(WorkbookFile::columnName(26), "AA");
    EXPECT_EQ(WorkbookFile::columnName(701), "ZZ");
    EXPECT_EQ(WorkbookFile::columnName(702), "AAA");
    EXPECT_EQ(WorkbookFile::columnName(16383), "XFD");
}

TEST(WorkbookFile, IsTheSameForTheSameCells)
{
    const auto bytes = [] {
        WorkbookFile file({"One", "Two"});
        file.text({0, 0, 0}, "label", WorkbookFile::Heading);
        file.number({1, 2, 3}, 0.1);
        file.formula({1, 2, 4}, "D3*2", 0.2);
        return file.bytes();
    };

    EXPECT_EQ(bytes(), bytes());
    EXPECT_EQ(bytes().substr(0, 2), "PK"); // a zip archive
}

TEST(WorkbookFile, RefusesFormulasAndCellsThatSpreadsheetsDoNotTake)
{
    WorkbookFile file({"One"});
    const std::string longest(WorkbookFile::maxFormulaLength, '1');

    EXPECT_NO_THROW(file.formula({0, 0, 0}, longest, 0.0));
    EXPECT_THROW(file.formula({0, 0, 0}, longest + "1", 0.0), SurrogateModelInterface::Error);
    EXPECT_THROW(file.number({0, 0, WorkbookFile::maxColumns}, 1.0),
                 SurrogateModelInterface::Error);
    EXPECT_THROW(file.number({0, WorkbookFile::maxRows, 0}, 1.0), SurrogateModelInterface::Error);
}
