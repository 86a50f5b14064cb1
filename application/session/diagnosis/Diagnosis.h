#pragma once

#include <session/diagnosis/DiagnosedCases.h>
#include <session/diagnosis/Finding.h>

#include <surrogate_session/Export.h>

#include <cstddef>
#include <vector>

/** All that may be wrong with cases. */
struct Diagnosis
{
    /** Of more cases so many are considered (DiagnosedCases::sample()). */
    static constexpr std::size_t mostCases = 20000;

    /** Worst first, those that are equally bad in the order of the checks. */
    std::vector<Finding> findings;
    std::size_t consideredCases = 0;

    SURROGATE_SESSION_EXPORT static Diagnosis of(const DiagnosedCases& cases);
};

/** Sorts findings, worst first; equally bad ones keep their order. */
SURROGATE_SESSION_EXPORT void sortBySeverity(std::vector<Finding>& findings);
