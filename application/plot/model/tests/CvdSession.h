#pragma once

#include "../../../session/tests/CvdCases.h"

#include <session/model/CaseSession.h>

/** The example's cases: pressure and ratio to uniformity and stress. */
inline CaseSession cvdSession(CaseSession::ModelType model = CaseSession::ResponseSurface)
{
    return CaseSession(cvdCases(), {{0, 1}, {2, 3}}, {}, model);
}
