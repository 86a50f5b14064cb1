#include <mirel_datapipeline/ProjectDataPipelineManager.h>

#include <mirel_datamanagement/Project.h>
#include <mirel_datamanagement/ProjectError.h>
#include <mirel_datapipeline/ProjectTableSource.h>
#include <mirel_signals/SignalConnectionCollection.h>

#include <new>

class ProjectDataPipelineManager::Impl
{
public:
    Impl() = default;
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    ~Impl()
    {
        // VTK looks for cycles of references, which needs memory and throws without; a smart
        // pointer would end the process then.
        try {
            source->Delete();
        } catch (const std::bad_alloc&) {
            // It stays, unused.
        }
    }

    ProjectTableSource* const source = ProjectTableSource::New();
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
    return impl->source;
}

void ProjectDataPipelineManager::onProjectChanged()
{
    impl->source->Modified();
    emitChanged();
}
