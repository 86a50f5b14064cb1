#include "ExportTestSupport.h"

#include <locale.h>

using namespace exporttest;

namespace {

const std::vector<ExportFormat> formats = {ExportFormat::Text, ExportFormat::Json, ExportFormat::C,
                                           ExportFormat::Python, ExportFormat::Excel};

} // namespace

TEST(ModelExport, TheSameModelGivesTheSameBytesInEveryFormat)
{
    for (NamedCases& variety : varieties()) {
        for (const Kind kind : {Polynomial, Kriging}) {
            const ExportedModel model = variety.cases.exported(kind);
            const ExportedModel again = variety.cases.exported(kind);
            for (const ExportFormat format : formats) {
                EXPECT_EQ(exportModel(model, format), exportModel(again, format)) << variety.name;
            }
        }
    }
}

TEST(ModelExport, TheUsersLocaleChangesNothing)
{
    const ExportedModel model = cvd().exported(Kriging);
    std::vector<std::string> before;
    for (const ExportFormat format : formats) {
        before.push_back(exportModel(model, format));
    }
    const char* const chosen = setlocale(LC_ALL, "de_DE.UTF-8");
    for (std::size_t k = 0; k < formats.size(); ++k) {
        EXPECT_EQ(exportModel(model, formats[k]), before[k]);
    }
    EXPECT_NO_THROW(readExportedModel(before[1]));
    setlocale(LC_ALL, "C");
    if (chosen == nullptr) {
        GTEST_SKIP() << "there is no locale with decimal commas here";
    }
}
