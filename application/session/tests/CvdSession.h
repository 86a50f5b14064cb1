#pragma once

#include "CvdCases.h"

#include <session/model/CaseSession.h>

#include <cstddef>
#include <vector>

/** Inputs Pressure and H2/WF6; outputs Stress and Uniformity, not in the order of the table. */
inline const CaseRoles cvdRoles = {{0, 1}, {3, 2}};

/** The example's cases: pressure and ratio to uniformity and stress. */
inline CaseSession cvdSession(CaseSession::ModelType model = CaseSession::ResponseSurface,
                              const CaseRoles& roles = {{0, 1}, {2, 3}},
                              const std::vector<std::size_t>& excluded = {})
{
    return CaseSession(cvdCases(), roles, excluded, model);
}
