#include "ProgramFixture.h"

#include <gtest/gtest.h>

#include <string>

/** Below some 160 MB the system's loader ends the program before any of its code runs. */
TEST_F(Program, EndsWithASentenceOrItsResultHoweverLittleMemoryThereIs)
{
    const std::string refusal = "surrogate: There is not enough memory for this.\n";
    for (const std::string command :
         {"fit cvd.csv -q -y Stress",
          "evaluate cvd.csv -q -y Stress -m kriging --count Pressure=5"}) {
        for (int megabytes = 100; megabytes <= 1000; megabytes += megabytes < 320 ? 20 : 170) {
            SCOPED_TRACE(command + " with " + std::to_string(megabytes) + " MB");
            const Outcome outcome = runAs("ulimit -v " + std::to_string(megabytes * 1024) +
                                              "; timeout 60 '" + SURROGATE_PROGRAM + "'",
                                          command);
            if (outcome.exitCode == 127) {
                EXPECT_TRUE(contains(outcome.err, "error while loading shared libraries"));
                EXPECT_LT(megabytes, 240);
            } else if (outcome.exitCode == 1) {
                EXPECT_EQ(outcome.err, refusal);
                EXPECT_LT(megabytes, 300);
            } else {
                EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
            }
        }
    }
}
