#include <mirel_fitting/kriging/neighbours/NearestNeighbours.h>

#include <mirel_fitting/FitProgress.h>

#include <nanoflann.hpp>

namespace {

/** The interface by which nanoflann reads its points. */
struct PointCloud
{
    std::size_t kdtree_get_point_count() const { return count; }
    double kdtree_get_pt(std::size_t index, std::size_t input) const
    {
        // nanoflann does not report progress: while it builds the tree, its reads are counted.
        constexpr std::size_t readsPerReport = std::size_t{1} << 20; // some milliseconds
        if (isBuilding && ++reads % readsPerReport == 0) {
            FitProgress::advance();
        }
        return coordinates[index * inputs + input];
    }
    template <class Box>
    bool kdtree_get_bbox(Box&) const
    {
        return false; // the tree computes it
    }

    const double* coordinates;
    std::size_t count;
    std::size_t inputs;
    bool isBuilding; // on one thread; later several threads read
    mutable std::size_t reads = 0;
};

using Distance = nanoflann::L2_Simple_Adaptor<double, PointCloud>;
constexpr int anyDimension = -1;
using Tree = nanoflann::KDTreeSingleIndexAdaptor<Distance, PointCloud, anyDimension, std::uint32_t>;

// Between 10 and 40 the time of a search hardly changes.
constexpr std::size_t pointsPerLeaf = 20;

} // namespace

class NearestNeighbours::Impl
{
public:
    Impl(const double* coordinates, std::size_t count, std::size_t inputs)
        : cloud{coordinates, count, inputs, true},
          tree(static_cast<int>(inputs), cloud,
               nanoflann::KDTreeSingleIndexAdaptorParams(pointsPerLeaf))
    {
        cloud.isBuilding = false;
    }

    PointCloud cloud;
    Tree tree;
};

NearestNeighbours::NearestNeighbours(const double* coordinates, std::size_t count,
                                     std::size_t inputs)
    : impl(std::make_unique<Impl>(coordinates, count, inputs))
{}

NearestNeighbours::~NearestNeighbours() = default;

std::size_t NearestNeighbours::find(const double* point, std::size_t wanted, std::uint32_t* indices,
                                    double* squares) const
{
    if (wanted == 0) {
        return 0;
    }
    nanoflann::KNNResultSet<double, std::uint32_t> found(wanted);
    found.init(indices, squares);
    impl->tree.findNeighbors(found, point, nanoflann::SearchParams());
    return found.size();
}
