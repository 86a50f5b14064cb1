#pragma once

#include <mirel_datamanagement/Project.h>
#include <mirel_datapipeline/ProjectDataPipelineManager.h>

#include <boost/smart_ptr/make_shared.hpp>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>
#include <vtkVariant.h>

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

/** A number and a text variable over three records, and the pipeline over them. */
struct PipelineTest : testing::Test
{
    boost::shared_ptr<Project> project = boost::make_shared<Project>();
    VarPtr x = project->addNumericVariable("x", Variable::Independent,
                                           {1.0, std::numeric_limits<double>::quiet_NaN(), 3.0});
    VarPtr t = project->addTextVariable("t", Variable::Unassigned, {"a", "", "c"});
    std::unique_ptr<ProjectDataPipelineManager> pipeline =
        std::make_unique<ProjectDataPipelineManager>(project);

    int changes = 0;
    boost::signals2::scoped_connection counting =
        pipeline->connectSignalChanged([this] { ++changes; });

    vtkTable* table() const
    {
        pipeline->outputAlgorithm()->Update();
        return pipeline->outputAlgorithm()->GetOutput();
    }

    std::vector<std::string> columnNames() const
    {
        vtkTable* const cases = table();
        std::vector<std::string> names;
        names.reserve(static_cast<std::size_t>(cases->GetNumberOfColumns()));
        for (vtkIdType column = 0; column < cases->GetNumberOfColumns(); ++column) {
            names.emplace_back(cases->GetColumnName(column));
        }
        return names;
    }

    std::vector<unsigned long> ids() const
    {
        vtkTable* const cases = table();
        std::vector<unsigned long> found;
        found.reserve(static_cast<std::size_t>(cases->GetNumberOfRows()));
        for (vtkIdType row = 0; row < cases->GetNumberOfRows(); ++row) {
            found.push_back(cases->GetValue(row, 0).ToUnsignedLong());
        }
        return found;
    }

    double numberAt(vtkIdType row, const char* name) const
    {
        return table()->GetValueByName(row, name).ToDouble();
    }
};
