#include <plot/model/SessionPictures.h>

#include "../../../session/tests/CvdSession.h"
#include "../../../session/tests/MessageOf.h"

#include <session/text/SessionErrors.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace {
using SessionPictures::Kind;

std::string refusal(Kind kind, const CaseSession& session)
{
    return messageOf<UsageError>([&] { SessionPictures::check(kind, session); });
}
} // namespace

TEST(SessionPictures, HaveAPanelForEachOutput)
{
    for (const Kind kind :
         {Kind::Sweep, Kind::Contour, Kind::Actual, Kind::Residuals, Kind::Coefficients}) {
        CaseSession session = cvdSession();
        session.sweepEvenly(0, 5);
        if (kind == Kind::Contour) {
            session.sweepEvenly(1, 5);
        }

        const std::vector<PictureData> pictures = SessionPictures::make(kind, session);

        ASSERT_EQ(pictures.size(), 2u);
        const auto title = [](const auto& picture) { return picture.title; };
        EXPECT_EQ(std::visit(title, pictures[0]).rfind("Uniformity", 0), 0u);
        EXPECT_EQ(std::visit(title, pictures[1]).rfind("Stress", 0), 0u);
        EXPECT_EQ(pictures[0].index(), pictures[1].index());
    }
}

TEST(SessionPictures, SweepRemainingInputsIfThePictureNeedsThemAll)
{
    CaseSession both = cvdSession();
    SessionPictures::sweepRemaining(Kind::Contour, both, {});
    EXPECT_EQ(both.sweptInputs(), (std::vector<std::size_t>{0, 1}));
    EXPECT_EQ(std::get<ContourPicture>(SessionPictures::make(Kind::Contour, both)[0]).x.size(),
              SessionPictures::defaultValues(Kind::Contour));

    CaseSession held = cvdSession();
    SessionPictures::sweepRemaining(Kind::Sweep, held, {0});
    EXPECT_EQ(held.sweptInputs(), std::vector<std::size_t>{1});

    CaseSession second = cvdSession();
    second.sweepEvenly(1, 7);
    SessionPictures::sweepRemaining(Kind::Contour, second, {});
    // 16 between two each: lines are smooth whatever was asked for.
    EXPECT_EQ(std::get<ContourPicture>(SessionPictures::make(Kind::Contour, second)[0]).y.size(),
              6u * 17u + 1u);
}

TEST(SessionPictures, DoNotSweepAnInputThatDoesNotVary)
{
    CaseTable table = cvdCases();
    table.columns[1].numbers.assign(11, 6.0);
    CaseSession session(std::move(table), {{0, 1}, {2}}, {}, CaseSession::ResponseSurface);

    SessionPictures::sweepRemaining(Kind::Sweep, session, {});

    EXPECT_EQ(session.sweptInputs(), std::vector<std::size_t>{0});
}

TEST(SessionPictures, DoNotSweepWhereTheChoiceIsNotClear)
{
    CaseSession session = cvdSession();
    SessionPictures::sweepRemaining(Kind::Sweep, session, {});
    SessionPictures::sweepRemaining(Kind::Contour, session, {0});
    SessionPictures::sweepRemaining(Kind::Residuals, session, {});
    EXPECT_TRUE(session.sweptInputs().empty());

    session.sweepEvenly(0, 5);
    SessionPictures::sweepRemaining(Kind::Sweep, session, {});
    EXPECT_EQ(session.sweptInputs(), std::vector<std::size_t>{0});
}

TEST(SessionPictures, OfTheRidgeAreAscentAndDescentOfEachOutput)
{
    CaseSession session = cvdSession();

    const std::vector<PictureData> pictures = SessionPictures::make(Kind::Ridge, session, {});

    ASSERT_EQ(pictures.size(), 4u);
    EXPECT_EQ(std::get<SweepPicture>(pictures[0]).modelLabel, "largest value");
    EXPECT_EQ(std::get<SweepPicture>(pictures[1]).modelLabel, "smallest value");
    EXPECT_FALSE(std::get<SweepPicture>(pictures[1]).lower.empty());
    EXPECT_EQ(SessionPictures::make(Kind::Normal, session, {}).size(), 2u);
}

TEST(SessionPictures, OfCoefficientsNeedAResponseSurface)
{
    const CaseSession session = cvdSession(CaseSession::Kriging);

    EXPECT_EQ(refusal(Kind::Coefficients, session),
              "Only response surfaces have coefficients to draw.");
    EXPECT_EQ(refusal(Kind::Actual, session), "accepted");
}

TEST(SessionPictures, ShowNoMoreSweptInputsThanTheirKindHas)
{
    CaseSession session = cvdSession();
    session.sweepEvenly(0, 5);
    EXPECT_EQ(refusal(Kind::Sweep, session), "accepted");

    session.sweepEvenly(1, 5);
    EXPECT_EQ(refusal(Kind::Contour, session), "accepted");
    EXPECT_EQ(refusal(Kind::Sweep, session),
              "A picture of kind sweep needs one swept input and 2 are.");
    EXPECT_THROW(SessionPictures::make(Kind::Sweep, session), UsageError);
}

TEST(SessionPictures, NeedInputsThatAreNotHeld)
{
    CaseSession session = cvdSession();
    const auto refusalHolding = [&](Kind kind, const std::vector<std::size_t>& held) {
        return messageOf<UsageError>([&] { SessionPictures::check(kind, session, held); });
    };

    EXPECT_EQ(refusalHolding(Kind::Sweep, {0}), "accepted");
    EXPECT_EQ(refusalHolding(Kind::Sweep, {0, 1}),
              "A picture of kind sweep needs one swept input and none is.");
    EXPECT_EQ(refusalHolding(Kind::Contour, {1}),
              "A picture of kind contour needs two swept inputs and none is.");
    session.sweepEvenly(0, 5);
    EXPECT_EQ(refusalHolding(Kind::Contour, {1}),
              "A picture of kind contour needs two swept inputs and one is.");
}

TEST(SessionPictures, OfSweepsShowAllInputsWhereNoneIsSwept)
{
    CaseSession session = cvdSession();

    const std::vector<PictureData> pictures = SessionPictures::make(Kind::Sweep, session);

    ASSERT_EQ(pictures.size(), 2u);
    EXPECT_EQ(std::get<EffectsPicture>(pictures[1]).title,
              "Stress, main effects, response surface");
    EXPECT_EQ(std::get<EffectsPicture>(pictures[1]).effects.size(), 2u);
    EXPECT_TRUE(session.sweptInputs().empty());
}

TEST(SessionPictures, OfContoursSweepTheInputsThatMatterMost)
{
    // Uniformity as a third input, which is closer to a plane of the other two than to the stress.
    const auto sessionOf = [] {
        CaseTable table = cvdCases();
        table.columns[1].numbers = {1, 1.1, 1, 1.1, 1, 1.1, 1, 1.1, 1, 1.1, 1};
        for (std::size_t i = 0; i < 11; ++i) {
            table.columns[3].numbers[i] =
                table.columns[0].numbers[i] + 10 * table.columns[2].numbers[i];
        }
        return std::make_unique<CaseSession>(std::move(table), CaseRoles{{0, 1, 2}, {3}},
                                             std::vector<std::size_t>{},
                                             CaseSession::ResponseSurface);
    };
    {
        const auto session = sessionOf();
        SessionPictures::make(Kind::Contour, *session);
        EXPECT_EQ(session->sweptInputs(), (std::vector<std::size_t>{0, 2}));
    }
    const auto session = sessionOf();
    session->sweepEvenly(1, 5);
    SessionPictures::make(Kind::Contour, *session, {0});
    EXPECT_EQ(session->sweptInputs(), (std::vector<std::size_t>{1, 2}));
}
