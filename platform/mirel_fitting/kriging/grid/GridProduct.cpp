#include <mirel_fitting/kriging/grid/GridProduct.h>

#include <mirel_fitting/kriging/grid/AxisGroupRows.h>
#include <mirel_fitting/kriging/grid/GridMethod.h>
#include <mirel_fitting/machine/OrderedChunks.h>
#include <mirel_fitting/machine/SingleThreadedBlas.h>

#include <cblas.h>

#include <algorithm>
#include <limits>
#include <numeric>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

std::vector<std::size_t> firstAxes(std::size_t count)
{
    std::vector<std::size_t> axes(count);
    std::iota(axes.begin(), axes.end(), std::size_t{0});
    return axes;
}

std::size_t tilesOf(const AxisGroup& group, std::size_t tileSize)
{
    return (group.size + tileSize - 1) / tileSize;
}

} // namespace

/** Computes one tile of the result per chunk, in its place. */
class GridProduct::Worker
{
public:
    Worker(const GridProduct& product, double* result)
        : product(product), fast(product.separated.fast), slow(product.separated.slow),
          fastRows(fast, *product.model.correlation, product.tileSize),
          slowRows(slow, *product.model.correlation, product.tileSize), result(result)
    {}

    void compute(std::size_t chunk)
    {
        const std::size_t tileSize = product.tileSize;
        const std::size_t fastTiles = tilesOf(fast, tileSize);
        const std::size_t firstFast = chunk % fastTiles * tileSize;
        const std::size_t firstSlow = chunk / fastTiles * tileSize;
        const std::size_t fastCount = std::min(tileSize, fast.size - firstFast);
        const std::size_t slowCount = std::min(tileSize, slow.size - firstSlow);
        fastRows.fill(firstFast, fastCount);
        if (firstSlow != filledSlow) {
            slowRows.fill(firstSlow, slowCount);
            filledSlow = firstSlow;
        }

        double* corner = result + firstSlow * fast.size + firstFast;
        cblas_dgemm(CblasColMajor, CblasTrans, CblasNoTrans, static_cast<int>(fastCount),
                    static_cast<int>(slowCount), static_cast<int>(fastRows.columns()), 1.0,
                    fastRows.data(), static_cast<int>(fastRows.stride()), slowRows.data(),
                    static_cast<int>(slowRows.stride()), 0.0, corner, static_cast<int>(fast.size));
        for (std::size_t s = 0; s < slowCount; ++s) {
            double* column = corner + s * fast.size;
            for (std::size_t f = 0; f < fastCount; ++f) {
                column[f] = product.model.offset + product.model.scale * column[f];
            }
        }
    }

private:
    const GridProduct& product;
    const AxisGroup& fast;
    const AxisGroup& slow;
    AxisGroupRows fastRows;
    AxisGroupRows slowRows; // kept while the tiles of the fast group pass
    std::size_t filledSlow = std::numeric_limits<std::size_t>::max();
    double* result;
};

GridProduct::GridProduct(const FittedKriging& model, const std::vector<double*>& columns,
                         const ProductGrid& grid)
    : model(model), separated(model, columns, grid, firstAxes(GridMethod::fastAxes(grid)))
{
    // A tile of each group stays in the third-level cache of its core; between 64 and 512 rows BLAS
    // runs at full speed.
    constexpr std::size_t tileBytes = std::size_t{4} << 20;
    constexpr std::size_t minTile = 64;
    constexpr std::size_t maxTile = 512;

    tileSize = std::clamp(tileBytes / sizeof(double) / model.correlation->correlationStride(),
                          minTile, maxTile);
}

void GridProduct::predict(int threads, double* result) const
{
    if (separated.isNowhereFinite) {
        std::fill_n(result, separated.fast.size * separated.slow.size, notANumber);
        return;
    }
    const SingleThreadedBlas singleThreaded;
    OrderedChunks::runEach(tilesOf(separated.fast, tileSize) * tilesOf(separated.slow, tileSize),
                           threads, [&] {
                               const auto worker = std::make_shared<Worker>(*this, result);
                               return [worker](std::size_t chunk) { worker->compute(chunk); };
                           });
}
