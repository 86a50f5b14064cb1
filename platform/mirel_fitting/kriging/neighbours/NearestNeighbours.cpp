#include <mirel_fitting/kriging/neighbours/NearestNeighbours.h>

#include <nanoflann.hpp>

namespace {

/** Counts what is read while a tree is built: the tree itself tells nothing. */
class Readings
{
public:
    explicit Readings(const NearestNeighbours::Report& report) : report(report) {}

    void count()
    {
        constexpr std::size_t perReport = std::size_t{1} << 20; // some thousandths of a second
        if (++done % perReport == 0) {
            report();
        }
    }

private:
    const NearestNeighbours::Report& report;
    std::size_t done = 0;
};

/** What the tree reads its points from, in the words that it asks by. */
struct PointCloud
{
    std::size_t kdtree_get_point_count() const { return count; }
    double kdtree_get_pt(std::size_t index, std::size_t input) const
    {
        if (readings != nullptr) {
            readings->count();
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
    Readings* readings; // null once the tree is there, which several threads then read
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
    Impl(const double* coordinates, std::size_t count, std::size_t inputs, Readings* readings)
        : cloud{coordinates, count, inputs, readings},
          tree(static_cast<int>(inputs), cloud,
               nanoflann::KDTreeSingleIndexAdaptorParams(pointsPerLeaf))
    {
        cloud.readings = nullptr;
    }

    PointCloud cloud;
    Tree tree;
};

NearestNeighbours::NearestNeighbours(const double* coordinates, std::size_t count,
                                     std::size_t inputs, const Report& report)
{
    Readings readings(report);
    impl = std::make_unique<Impl>(coordinates, count, inputs, report ? &readings : nullptr);
}

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
