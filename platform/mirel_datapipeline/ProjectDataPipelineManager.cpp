#include <mirel_datapipeline/ProjectDataPipelineManager.h>

#include <mirel_datamanagement/Project.h>
#include <mirel_datamanagement/ProjectError.h>
#include <mirel_datapipeline/ProjectTableSource.h>
#include <mirel_signals/SignalConnectionCollection.h>

#include <vtkNew.h>

class ProjectDataPipelineManager::Impl
{
public:
    vtkNew<ProjectTableSource> source;
    SignalConnectionCollection connections;
};

ProjectDataPipelineManager::ProjectDataPipelineManager(boost::shared_ptr<Project> project)
    : impl(std::make_unique<Impl>())
{
    if (!project) {
        throw ProjectError("The data pipeline needs a project, but none was given.");
    }
    impl->source->setProject(project);
    impl->connections.add(project->connectSignalChanged([this] { onProjectChanged(); }));
}

ProjectDataPipelineManager::~ProjectDataPipelineManager() = default;

vtkSmartPointer<vtkTableAlgorithm> ProjectDataPipelineManager::outputAlgorithm() const
{
    return impl->source.Get();
}

void ProjectDataPipelineManager::onProjectChanged()
{
    impl->source->Modified();
    emitChanged();
}
