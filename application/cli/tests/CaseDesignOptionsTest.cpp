// The options --weights and --block as users meet them.

#include "ProgramFixture.h"

#include <gtest/gtest.h>

#include <string>

namespace {
class CaseDesignOptions : public Program
{
protected:
    void SetUp() override
    {
        Program::SetUp();
        // y = 1 + 2 a + 3 b, 10 more on tue, with errors in the last digit.
        folder.write("days.csv", "a,b,w,day,y\n"
                                 "0,0,1,mon,1.1\n1,0,2,mon,2.9\n0,1,1,mon,4.1\n1,1,4,mon,6\n"
                                 "0,0,1,tue,11\n1,0,2,tue,13.1\n0,1,1,tue,13.9\n1,1,1,tue,16.1\n"
                                 "0.5,0.5,0,mon,99\n0.5,0.5,,mon,99\n0.5,0.5,1,,99\n");
    }

    Json fit(const std::string& options)
    {
        return jsonOf("fit days.csv -y y --terms linear " + options);
    }
};
} // namespace

TEST_F(CaseDesignOptions, TakeNoInputsAndLeaveOutCasesWithoutWeightOrBlock)
{
    const Json json = fit("--weights w --block day");

    EXPECT_EQ(json["inputs"], (Json{"a", "b"}));
    EXPECT_EQ(json["weights"], "w");
    EXPECT_EQ(json["blocks"], "day");
    EXPECT_EQ(json["cases"]["valid"], 8);
    EXPECT_EQ(json["cases"]["invalid"], 3);
    const Outcome text = run("fit days.csv -y y --terms linear --weights w --block day");
    EXPECT_TRUE(contains(text.out, "11 read, 8 valid, 0 excluded, 3 invalid (w 2, day 1)"));
    EXPECT_TRUE(contains(text.out, "response surface, linear, weights w, blocks day"));
}

TEST_F(CaseDesignOptions, PredictTheAverageBlockAndReportTheEffects)
{
    const std::string cases = "days.csv -y y --terms linear --block day -x a,b --exclude 9,10 ";
    const Json statistics = fit("-x a,b --exclude 9,10 --block day")["outputs"][0];

    EXPECT_EQ(statistics["blockEffects"][0]["block"], "mon");
    EXPECT_NEAR(statistics["blockEffects"][0]["effect"].get<double>(), -5.0, 1e-9);
    EXPECT_NEAR(statistics["blockEffects"][1]["effect"].get<double>(), 5.0, 1e-9);
    EXPECT_EQ(statistics["anova"][1]["source"], "Blocks");
    EXPECT_EQ(statistics["partialTests"][0]["name"], "Blocks");
    const Json table = jsonOf("evaluate " + cases + "--at a=0 --at b=0")["table"];
    EXPECT_NEAR(table["rows"][0][2].get<double>(), 6.0, 0.1) << table.dump();
}

TEST_F(CaseDesignOptions, AreKeptByProjectsUntilTheyAreTakenBack)
{
    const std::string project = "study.surrogate.xml";
    fit("--weights w --block day --save " + project);

    const Json kept = jsonOf("project " + project);
    EXPECT_EQ(kept["weights"], "w");
    EXPECT_EQ(kept["blocks"], "day");
    EXPECT_TRUE(kept["excluded"].empty());
    EXPECT_EQ(jsonOf("fit " + project)["outputs"], fit("--weights w --block day")["outputs"]);
    const Json without = jsonOf("fit " + project + " --weights none");
    EXPECT_EQ(without.count("weights"), 0u);
    EXPECT_EQ(without["cases"]["valid"], 10);
}

TEST_F(CaseDesignOptions, HoldForTheFoldsOfAComparison)
{
    const auto rmse = [&](const std::string& options) {
        const Json comparison = jsonOf("compare -y y --terms linear --folds 4 " + options);
        return comparison["outputs"][0]["models"][0]["rmse"].get<double>();
    };

    EXPECT_GT(rmse("days.csv -x a,b --exclude 9-11"), 3.0);
    EXPECT_LT(rmse("days.csv --weights w --block day"), 0.5);

    // y = exp(a + b), ten times as much on tue.
    folder.write("factors.csv", "a,b,day,y\n"
                                "0,0,mon,1.01\n1,0,mon,2.7\n0,1,mon,2.72\n1,1,mon,7.4\n"
                                "0,0,tue,10\n1,0,tue,27.3\n0,1,tue,27\n1,1,tue,74\n");
    EXPECT_LT(rmse("factors.csv --transform log --block day"), 0.5);
}

TEST_F(CaseDesignOptions, AreRefusedWithASentence)
{
    folder.write("negative.csv", "a,w,y\n1,1,1\n2,-1,2\n3,1,3\n4,1,5\n");
    expectFailure("fit negative.csv -y y --weights w", 2,
                  "The weights \"w\" must not be negative: that of case 2 is -1.");
    expectFailure("fit days.csv -y y -x a,w --weights w", 2,
                  "\"w\" cannot be both weights and input.");
    expectFailure("fit days.csv -y y --weights w -m kriging", 2,
                  "Weights and blocks are for response surfaces only: choose -m response-surface, "
                  "or --weights none and --block none.");
}
