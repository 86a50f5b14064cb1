#pragma once

#include <mirel_datapipeline/DataPipelineManagerInterface.h>

#include <boost/smart_ptr/shared_ptr.hpp>

#include <memory>

class Project;

/**
 * The pipeline over the data of a project, one row per record, excluded ones too, and nothing in
 * between.
 *
 * Every change of the project, whatever it is (cells, records, their inclusion, names, natures,
 * ranges, order), marks the algorithm modified and is then announced once. The table is built when
 * the algorithm is next updated, which announces nothing. Missing cells are NaN in number columns
 * and "" in text columns.
 *
 * Number columns and record ids show the project's own memory; the project copies a column before
 * it changes it, so a table that was delivered keeps its values, as long as its arrays are kept.
 * Text columns are copied when they have changed.
 */
class MIREL_DATAPIPELINE_EXPORT ProjectDataPipelineManager : public DataPipelineManagerInterface
{
public:
    /**
     * Shares the project, with the algorithm too.
     * @throw ProjectError for a null project.
     */
    explicit ProjectDataPipelineManager(boost::shared_ptr<Project> project);
    ~ProjectDataPipelineManager() override;

    /** Always the same algorithm; after the manager it is no longer marked modified by changes. */
    vtkSmartPointer<vtkTableAlgorithm> outputAlgorithm() const override;

private:
    void onProjectChanged();

    class Impl;
    std::unique_ptr<Impl> impl;
};
