#include <session/report/ProjectReport.h>

#include "CvdCases.h"
#include "TemporaryFolder.h"

#include <session/model/Workspace.h>
#include <session/project/ProjectDocument.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <utility>

namespace {
using Json = nlohmann::ordered_json;

ProjectDocument documentWith(const ResponseSurfaceOptions& terms)
{
    const TemporaryFolder folder;
    CaseTable cases = cvdCases();
    cases.path = folder.write("cvd.csv", "cases");
    Workspace workspace(std::move(cases), {{0, 1}, {2}}, {}, Workspace::ResponseSurface);
    workspace.choose({terms});
    return workspace.document();
}
} // namespace

TEST(ProjectReport, SaysWhichTermsThereAre)
{
    const ProjectDocument all = documentWith(ResponseSurfaceOptions());
    const ProjectDocument selecting =
        documentWith({PolynomialTerms::Quadratic, ResponseSurfaceOptions::Selection::BackwardAicc});

    EXPECT_NE(ProjectReport::text(selecting).find("selected by AICc"), std::string::npos);
    EXPECT_EQ(ProjectReport::text(all).find("selected"), std::string::npos);
    EXPECT_EQ(ProjectReport::json(selecting)["selectsTerms"], true);
    EXPECT_EQ(ProjectReport::json(all)["selectsTerms"], false);

    const ProjectDocument linear =
        documentWith({PolynomialTerms::Linear, ResponseSurfaceOptions::Selection::All});

    EXPECT_EQ(ProjectReport::json(linear)["terms"], "linear");
    EXPECT_NE(ProjectReport::text(linear).find("linear, if it is a response surface\n"),
              std::string::npos);
}
