#include <plot/PictureService.h>

#include "../../session/tests/CvdCases.h"
#include "../../session/tests/TemporaryFolder.h"
#include "SvgTexts.h"

#include <session/model/CaseSession.h>
#include <session/text/SessionErrors.h>

#include <gtest/gtest.h>

TEST(PictureService, DrawsAsManyPicturesAsWanted)
{
    CaseSession session(cvdCases(), {{0, 1}, {2, 3}}, {}, CaseSession::ResponseSurface);
    const PictureService& service = *surrogatePictureService();
    const std::vector<PictureData> pictures = service.make("actual", session);
    const TemporaryFolder folder;

    ASSERT_EQ(pictures.size(), 2u);
    EXPECT_TRUE(hasText(service.inlineSvg(pictures[0], {}), "Uniformity, actual"));
    EXPECT_TRUE(hasText(service.inlineSvg(pictures[1], {}), "Stress, actual"));
    service.write(pictures, "400x300", folder.path("picture.svg"));
    EXPECT_NE(folder.read("picture.svg").find("viewBox=\"0 0 800 300\""), std::string::npos);
}

TEST(PictureService, ChecksWhatAUserTyped)
{
    const PictureService& service = *surrogatePictureService();

    EXPECT_NO_THROW(service.check("sweep", std::nullopt, "picture.svg"));
    EXPECT_THROW(service.check("pie", std::nullopt, "picture.svg"), UsageError);
    EXPECT_THROW(service.check("sweep", "big", "picture.svg"), UsageError);
    EXPECT_THROW(service.check("sweep", std::nullopt, "picture.gif"), UsageError);
}
