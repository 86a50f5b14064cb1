#pragma once

#include <session/model/Evaluator.h>
#include <session/model/Workspace.h>

#include <utility>

/** A workspace and its model: what the reports, the pictures and the commands are about. */
class CaseSession : public Workspace, public Evaluator
{
public:
    explicit CaseSession(CaseTable table)
        : Workspace(std::move(table)), Evaluator(static_cast<const Workspace&>(*this))
    {}

    CaseSession(CaseTable table, const CaseRoles& roles, const std::vector<std::size_t>& excluded,
                ModelType type)
        : Workspace(std::move(table), roles, excluded, type),
          Evaluator(static_cast<const Workspace&>(*this))
    {}

    explicit CaseSession(const ExportedModel& model)
        : Workspace(model), Evaluator(static_cast<const Workspace&>(*this))
    {}
};
