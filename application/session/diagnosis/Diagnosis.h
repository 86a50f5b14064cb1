#pragma once

#include <session/diagnosis/DiagnosedCases.h>
#include <session/diagnosis/Finding.h>

#include <surrogate_session/Export.h>

#include <cstddef>
#include <vector>

/** All that may be wrong with cases. */
struct Diagnosis
{
    /** Worst first, those that are equally bad in the order of the checks. */
    std::vector<Finding> findings;
    /** Of all; of many a sample (DiagnosedCases::sample()). Columns are judged over all cases. */
    std::size_t comparedCases = 0;

    SURROGATE_SESSION_EXPORT static Diagnosis of(const DiagnosedCases& cases);
};

/** Sorts findings, worst first; equally bad ones keep their order. */
SURROGATE_SESSION_EXPORT void sortBySeverity(std::vector<Finding>& findings);
