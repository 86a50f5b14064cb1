#include <mirel_datapipeline/DataPipelineManagerInterface.h>

#include <vtkTableAlgorithm.h>

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

namespace {

/** A pipeline that announces changes on request. */
class AnnouncingPipeline : public DataPipelineManagerInterface
{
public:
    vtkSmartPointer<vtkTableAlgorithm> outputAlgorithm() const override { return nullptr; }
    void announce() const { emitChanged(); }
};

} // namespace

TEST(DataPipelineManagerInterface, CallsItsListenersOnEveryChangeUntilTheyAreDisconnected)
{
    const AnnouncingPipeline pipeline;
    int first = 0;
    int second = 0;
    pipeline.connectSignalChanged([&first] { ++first; });
    pipeline.connectSignalChanged([&second] { ++second; });
    pipeline.announce();
    pipeline.announce();
    EXPECT_EQ(first, 2);
    EXPECT_EQ(second, 2);

    AnnouncingPipeline other;
    int calls = 0;
    other.connectSignalChanged([&calls] { ++calls; }).disconnect();
    other.announce();
    EXPECT_EQ(calls, 0);
}

TEST(DataPipelineManagerInterface, EndsItsConnectionsWithItself)
{
    auto pipeline = std::make_unique<AnnouncingPipeline>();
    const boost::signals2::connection connection = pipeline->connectSignalChanged([] {});
    pipeline.reset();
    EXPECT_FALSE(connection.connected());
}

TEST(DataPipelineManagerInterface, MayBeDestroyedByAListener)
{
    auto pipeline = std::make_unique<AnnouncingPipeline>();
    int later = 0;
    for (int i = 0; i < 8; ++i) {
        // Ended connections are cleaned up by the emission, after the listener's call.
        pipeline->connectSignalChanged([] {}).disconnect();
    }
    pipeline->connectSignalChanged([&pipeline] { pipeline.reset(); });
    pipeline->connectSignalChanged([&later] { ++later; });
    pipeline->announce();
    EXPECT_EQ(pipeline, nullptr);
    EXPECT_EQ(later, 0) << "no listener is called for a destroyed pipeline";
}

TEST(DataPipelineManagerInterface, IsNotCopyable)
{
    EXPECT_FALSE(std::is_copy_constructible<AnnouncingPipeline>::value);
    EXPECT_FALSE(std::is_copy_assignable<AnnouncingPipeline>::value);
}
