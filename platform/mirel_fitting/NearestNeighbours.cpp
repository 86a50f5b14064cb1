#include <mirel_fitting/NearestNeighbours.h>

#include <nanoflann.hpp>

namespace {

/** What the tree reads its points from, in the words that it asks by. */
struct PointCloud
{
    std::size_t kdtree_get_point_count() const { return count; }
    double kdtree_get_pt(std::size_t index, std::size_t input) const
    {
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
};

using Distance = nanoflann::L2_Simple_Adaptor<double, PointCloud>;
constexpr int anyDimension = -1;
using Tree = nanoflann::KDTreeSingleIndexAdaptor<Distance, PointCloud, anyDimension, std::uint32_t>;

// Among ten and forty the time of a search hardly changes.
constexpr std::size_t pointsPerLeaf = 20;

} // namespace

class NearestNeighbours::Impl
{
public:
    Impl(const double* coordinates, std::size_t count, std::size_t inputs)
        : cloud{coordinates, count, inputs},
          tree(static_cast<int>(inputs), cloud,
               nanoflann::KDTreeSingleIndexAdaptorParams(pointsPerLeaf))
    {}

    PointCloud cloud;
    Tree tree;
};

NearestNeighbours::NearestNeighbours(const double* coordinates, std::size_t count,
                                     std::size_t inputs)
    : impl(std::make_unique<Impl>(coordinates, count, inputs))
{}

NearestNeighbours::~NearestNeighbours() = default;

std::size_t NearestNeighbours::size() const
{
    return impl->cloud.count;
}

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
