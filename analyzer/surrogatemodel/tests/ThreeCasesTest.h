#pragma once

#include "CaseTable.h"
#include "ProjectTest.h"

/** The inputs x1 and x2 and the outputs y1 and y2 over three records, and their table. */
class ThreeCasesTest : public ProjectTest
{
protected:
    using Values = std::vector<double>;

    ThreeCasesTest()
    {
        for (const VarPtr& variable : project->variables()) {
            cases.addNumbers(variable.lock()->name(), project->numericValues(variable));
        }
    }

    VarPtr x1 = addInput("x1", {1, 2, 3});
    VarPtr x2 = addInput("x2", {4, 5, 6});
    VarPtr y1 = addOutput("y1", {10, 20, 30});
    VarPtr y2 = addOutput("y2", {40, 50, 60});
    CaseTable cases = CaseTable(3);
};
