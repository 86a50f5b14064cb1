#include <mirel_fitting/kriging/grid/KrigingGrid.h>

#include <mirel_fitting/ThreadCount.h>
#include <mirel_fitting/kriging/grid/GridProduct.h>
#include <mirel_fitting/kriging/grid/GridSums.h>

#include <cstddef>

void predictGrids(const KrigingPredictor& predictor, const std::vector<double*>& columns,
                  const std::vector<ProductGrid>& grids, double* result)
{
    // Bounds the memory of an axis, some 64 bytes a value.
    constexpr std::size_t maxValues = std::size_t{1} << 17;

    for (const ProductGrid& whole : grids) {
        const std::vector<ProductGrid> parts = whole.cut(maxValues);
        const GridMethod method = GridMethod::cheapest(predictor.model(), parts.front());
        for (const ProductGrid& part : parts) {
            predictGrid(predictor, columns, part, method, result);
        }
    }
}

void predictGrid(const KrigingPredictor& predictor, const std::vector<double*>& columns,
                 const ProductGrid& grid, const GridMethod& method, double* result)
{
    // Cheaper grids take less time than starting a thread, some 0.1 ms.
    constexpr double worthAThread = 1.5e6;

    double* target = result + grid.firstRow();
    const int threads = method.cost > worthAThread ? threadCount() : 1;
    switch (method.kind) {
    case GridMethod::Kind::Scattered:
        predictor.predict(columns, grid.firstRow(), grid.rowCount(), target);
        return;
    case GridMethod::Kind::MatrixProduct:
        GridProduct(predictor.model(), columns, grid).predict(threads, target);
        break;
    case GridMethod::Kind::AxisSums:
        GridSums(predictor.model(), columns, grid, method.axis).predict(threads, target);
        break;
    }
    predictor.addNeighbours(columns, grid.firstRow(), grid.rowCount(), target);
}
