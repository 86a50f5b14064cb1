#include <mirel_datapipeline/ProjectDataPipelineManager.h>

#include "PipelineTest.h"

#include <cstdlib>
#include <new>

#include <mirel_datamanagement/ProjectError.h>

#include <boost/smart_ptr/weak_ptr.hpp>

/** Of the run time of the address sanitizer, whichever compiler it comes with. */
extern "C" void __asan_init() __attribute__((weak));

namespace {
bool isOutOfMemory = false;
} // namespace

/** Of this program and of the libraries in it. */
void* operator new(std::size_t size)
{
    void* const memory = isOutOfMemory ? nullptr : std::malloc(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace {

using Ids = std::vector<unsigned long>;
using ProjectDataPipelineManagerTest = PipelineTest;

} // namespace

TEST_F(ProjectDataPipelineManagerTest, AnnouncesEachChangeOrGroupOfChangesOnce)
{
    {
        Project::ChangeGroup group(*project);
        project->addRecord();
        project->setValue(project->record(1), x, 5.0);
    }
    EXPECT_EQ(changes, 1);
    project->setValue(project->record(1), x, 6.0);
    EXPECT_EQ(changes, 2);
    project->removeVariable(x);
    EXPECT_EQ(changes, 3);
}

TEST_F(ProjectDataPipelineManagerTest, AnnouncesNothingWhenNothingChanges)
{
    project->setNature(x, Variable::Independent);
    EXPECT_EQ(changes, 0);
}

TEST_F(ProjectDataPipelineManagerTest, AnnouncesNothingWhileItIsUpdated)
{
    table();
    project->addRecord();
    changes = 0;
    table();
    EXPECT_EQ(changes, 0);
}

TEST_F(ProjectDataPipelineManagerTest, IsModifiedBeforeItAnnounces)
{
    const vtkMTimeType before = pipeline->outputAlgorithm()->GetMTime();
    vtkMTimeType seen = 0;
    double value = 0.0;
    pipeline->connectSignalChanged([&] {
        seen = pipeline->outputAlgorithm()->GetMTime();
        value = numberAt(0, "x");
    });
    project->setValue(project->record(1), x, 5.0);
    EXPECT_GT(seen, before);
    EXPECT_EQ(value, 5.0);
}

TEST_F(ProjectDataPipelineManagerTest, ReturnsTheSameAlgorithmEveryTime)
{
    EXPECT_EQ(pipeline->outputAlgorithm(), pipeline->outputAlgorithm());
}

TEST_F(ProjectDataPipelineManagerTest, NeedsAProject)
{
    EXPECT_THROW(ProjectDataPipelineManager{nullptr}, ProjectError);
}

TEST_F(ProjectDataPipelineManagerTest, SharesTheProjectUntilItIsDestroyed)
{
    const boost::weak_ptr<Project> observed = project;
    project.reset();
    EXPECT_FALSE(observed.expired());
    EXPECT_EQ(ids(), (Ids{1, 2, 3}));
    pipeline.reset();
    EXPECT_TRUE(observed.expired());
}

TEST_F(ProjectDataPipelineManagerTest, IgnoresTheProjectOnceDestroyed)
{
    pipeline.reset();
    project->addRecord();
    EXPECT_EQ(changes, 0);
}

TEST_F(ProjectDataPipelineManagerTest, LeavesItsAlgorithmUsableWhenDestroyed)
{
    const vtkSmartPointer<vtkTableAlgorithm> algorithm = pipeline->outputAlgorithm();
    pipeline.reset();
    algorithm->Update();
    EXPECT_EQ(algorithm->GetOutput()->GetNumberOfRows(), 3);
}

TEST_F(ProjectDataPipelineManagerTest, MayBeDestroyedByItsListener)
{
    pipeline->connectSignalChanged([this] { pipeline.reset(); });
    project->addRecord();
    EXPECT_EQ(pipeline, nullptr);
    project->addRecord();
    EXPECT_EQ(changes, 1);
}

TEST_F(ProjectDataPipelineManagerTest, MayBeDestroyedByAListenerOfTheProject)
{
    const auto other = boost::make_shared<Project>();
    std::unique_ptr<ProjectDataPipelineManager> shortLived;
    int calls = 0;
    other->connectSignalChanged([&shortLived] { shortLived.reset(); });
    shortLived = std::make_unique<ProjectDataPipelineManager>(other);
    shortLived->connectSignalChanged([&calls] { ++calls; });
    other->addRecord();
    EXPECT_EQ(calls, 0) << "destroyed before its own turn";
}

TEST_F(ProjectDataPipelineManagerTest, ServesSeveralPipelinesOverOneProject)
{
    const ProjectDataPipelineManager second(project);
    int secondChanges = 0;
    second.connectSignalChanged([&secondChanges] { ++secondChanges; });
    project->addRecord();
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(secondChanges, 1);
}

TEST_F(ProjectDataPipelineManagerTest, IsDestroyedWhereVtkFindsNoMemory)
{
    if (&__asan_init != nullptr) {
        GTEST_SKIP() << "VTK leaks where it finds no memory, which the leak sanitizer reports.";
    }
    table();
    isOutOfMemory = true;
    pipeline.reset();
    isOutOfMemory = false;

    EXPECT_EQ(pipeline, nullptr);
}
