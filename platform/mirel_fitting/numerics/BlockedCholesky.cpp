#include <mirel_fitting/numerics/BlockedCholesky.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/machine/OrderedChunks.h>

#include <cblas.h>
#include <lapacke.h>

#include <algorithm>
#include <utility>

namespace {

// Columns. Wide enough for the matrix products to run at full speed; narrow enough for the diagonal
// blocks, which one thread factorises alone, to be a small part of the work.
constexpr std::size_t blockSize = 128;

// Columns of the inverse at a time: more would compute more elements above the diagonal, which are
// not used.
constexpr std::size_t inverseColumns = 64;

// Rows of the factor that a substitution solves for at a time, between two reports: the triangular
// solves of OpenBLAS are slower than its matrix products.
constexpr std::size_t solvedRows = 64;

// Columns of the factor's inverse at a time, where one thread computes all: LAPACK's inverse in
// place is slow in wider blocks.
constexpr std::size_t invertedColumns = 32;

// Columns that a thread takes at a time in forColumns(): enough ranges to balance the load.
constexpr std::size_t columnsPerRange = 32;

std::size_t blocksIn(std::size_t count, std::size_t size)
{
    return (count + size - 1) / size;
}

/** columns = the inverse of a lower triangle, or of its transpose, times them. */
void solveTriangle(CBLAS_TRANSPOSE side, const double* triangle, std::size_t order,
                   std::size_t stride, double* columns, std::size_t count, std::size_t columnStride)
{
    const int rows = static_cast<int>(order);
    if (count == 1) {
        cblas_dtrsv(CblasColMajor, CblasLower, side, CblasNonUnit, rows, triangle,
                    static_cast<int>(stride), columns, 1);
        return;
    }
    cblas_dtrsm(CblasColMajor, CblasLeft, CblasLower, side, CblasNonUnit, rows,
                static_cast<int>(count), 1.0, triangle, static_cast<int>(stride), columns,
                static_cast<int>(columnStride));
}

/** target -= panel, or its transpose, times source. */
void subtractProduct(CBLAS_TRANSPOSE side, const double* panel, std::size_t rows, std::size_t width,
                     std::size_t stride, const double* source, double* target, std::size_t count,
                     std::size_t columnStride)
{
    const int height = static_cast<int>(rows);
    const int breadth = static_cast<int>(width);
    const int lead = static_cast<int>(stride);
    if (count == 1) {
        cblas_dgemv(CblasColMajor, side, height, breadth, -1.0, panel, lead, source, 1, 1.0, target,
                    1);
        return;
    }
    const bool isTransposed = side == CblasTrans;
    cblas_dgemm(CblasColMajor, side, CblasNoTrans, isTransposed ? breadth : height,
                static_cast<int>(count), isTransposed ? height : breadth, -1.0, panel, lead, source,
                static_cast<int>(columnStride), 1.0, target, static_cast<int>(columnStride));
}

/** Forward substitution. */
void substitute(const double* factor, std::size_t order, std::size_t stride, double* columns,
                std::size_t count, std::size_t columnStride)
{
    for (std::size_t first = 0; first < order; first += solvedRows) {
        const std::size_t width = std::min(solvedRows, order - first);
        const double* corner = factor + first * stride + first;
        solveTriangle(CblasNoTrans, corner, width, stride, columns + first, count, columnStride);
        subtractProduct(CblasNoTrans, corner + width, order - first - width, width, stride,
                        columns + first, columns + first + width, count, columnStride);
        FitProgress::advance();
    }
}

/** Substitution with the transpose, from the last row. */
void substituteBack(const double* factor, std::size_t order, std::size_t stride, double* columns,
                    std::size_t count, std::size_t columnStride)
{
    for (std::size_t block = blocksIn(order, solvedRows); block-- > 0;) {
        const std::size_t first = block * solvedRows;
        const std::size_t width = std::min(solvedRows, order - first);
        const double* corner = factor + first * stride + first;
        subtractProduct(CblasTrans, corner + width, order - first - width, width, stride,
                        columns + first + width, columns + first, count, columnStride);
        solveTriangle(CblasTrans, corner, width, stride, columns + first, count, columnStride);
        FitProgress::advance();
    }
}

/** A lower triangle becomes its inverse, by blocks of columns from the last one. */
void invertTriangle(double* triangle, std::size_t order)
{
    const int stride = static_cast<int>(order);
    for (std::size_t block = blocksIn(order, invertedColumns); block-- > 0;) {
        const std::size_t first = block * invertedColumns;
        const std::size_t width = std::min(invertedColumns, order - first);
        const int columns = static_cast<int>(width);
        const int below = static_cast<int>(order - first - width);
        double* corner = triangle + first * order + first;
        double* panel = corner + width;
        cblas_dtrmm(CblasColMajor, CblasLeft, CblasLower, CblasNoTrans, CblasNonUnit, below,
                    columns, 1.0, panel + width * order, stride, panel, stride);
        cblas_dtrsm(CblasColMajor, CblasRight, CblasLower, CblasNoTrans, CblasNonUnit, below,
                    columns, -1.0, corner, stride, panel, stride);
        LAPACKE_dtrtri_work(LAPACK_COL_MAJOR, 'L', 'N', columns, corner, stride);
    }
}

/** Computes blocks of columns of the inverse and passes them to a visitor. */
class InverseWorker : public OrderedChunks::Worker
{
public:
    InverseWorker(const double* factor, std::size_t order,
                  std::unique_ptr<BlockedCholesky::Visitor> visitor)
        : factor(factor), order(order), visitor(std::move(visitor)), block(order * inverseColumns)
    {}

    void compute(std::size_t chunk) override
    {
        const std::size_t first = chunk * inverseColumns;
        const std::size_t columns = std::min(inverseColumns, order - first);
        const std::size_t rows = order - first;
        std::fill(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(rows * columns), 0.0);
        for (std::size_t j = 0; j < columns; ++j) {
            block[j * rows + j] = 1.0;
        }
        // The factor is lower triangular: rows above the first column stay 0.
        const double* corner = factor + first * order + first;
        substitute(corner, rows, order, block.data(), columns, rows);
        substituteBack(corner, rows, order, block.data(), columns, rows);
        visitor->visit(first, columns, block.data(), rows);
    }

    void handOver(std::size_t /*chunk*/) override { visitor->handOver(); }

private:
    const double* factor;
    std::size_t order;
    std::unique_ptr<BlockedCholesky::Visitor> visitor;
    std::vector<double> block;
};

} // namespace

BlockedCholesky::Visitor::~Visitor() = default;

BlockedCholesky::BlockedCholesky(std::size_t order, int threads)
    : size(order), threadCount(order >= smallestToSplit ? threads : 1),
      matrix(AlignedBuffer::uninitialised(order * order))
{
    if (order <= SmallCholesky::largestOrder) {
        small = std::make_unique<SmallCholesky>(order);
    }
}

bool BlockedCholesky::factorise()
{
    if (isSplit()) {
        return factoriseBlocks();
    }
    const auto n = static_cast<double>(size);
    FitProgress::advance(n * n * n / 6.0);
    if (small) {
        return small->factorise(matrix.data());
    }
    const auto order = static_cast<lapack_int>(size);
    return LAPACKE_dpotrf_work(LAPACK_COL_MAJOR, 'L', order, matrix.data(), order) == 0;
}

void BlockedCholesky::solveLower(double* columns, std::size_t count) const
{
    if (!isSplit()) {
        solveTriangle(CblasNoTrans, matrix.data(), size, size, columns, count, size);
        return;
    }
    substitute(matrix.data(), size, size, columns, count, size);
}

void BlockedCholesky::solveTransposed(double* columns, std::size_t count) const
{
    if (!isSplit()) {
        solveTriangle(CblasTrans, matrix.data(), size, size, columns, count, size);
        return;
    }
    substituteBack(matrix.data(), size, size, columns, count, size);
}

bool BlockedCholesky::factoriseBlocks()
{
    const int stride = static_cast<int>(size);
    for (std::size_t first = 0; first < size; first += blockSize) {
        const std::size_t width = std::min(blockSize, size - first);
        const int columns = static_cast<int>(width);
        FitProgress::advance(static_cast<double>(width * width) *
                             static_cast<double>(size - first) / 2.0);
        double* corner = matrix.data() + first * size + first;
        if (LAPACKE_dpotrf_work(LAPACK_COL_MAJOR, 'L', columns, corner, stride) != 0) {
            return false;
        }

        // Right-looking: solve for the panel below the block, then update the columns to its right.
        const std::size_t below = first + width;
        const std::size_t blocks = blocksIn(size - below, blockSize);
        const auto rowsOf = [&](std::size_t block) {
            return static_cast<int>(std::min(blockSize, size - below - block * blockSize));
        };
        double* panel = corner + width;
        const OrderedChunks::Work solve = [&](std::size_t block) {
            cblas_dtrsm(CblasColMajor, CblasRight, CblasLower, CblasTrans, CblasNonUnit,
                        rowsOf(block), columns, 1.0, corner, stride, panel + block * blockSize,
                        stride);
        };
        OrderedChunks::runEach(blocks, threadCount, [&] { return solve; });

        const OrderedChunks::Work subtract = [&](std::size_t block) {
            const std::size_t column = below + block * blockSize;
            const double* rows = panel + block * blockSize;
            // Diagonal blocks as a whole: what is above the diagonal is never used.
            cblas_dgemm(CblasColMajor, CblasNoTrans, CblasTrans, static_cast<int>(size - column),
                        rowsOf(block), columns, -1.0, rows, stride, rows, stride, 1.0,
                        matrix.data() + column * size + column, stride);
        };
        const auto rows = static_cast<double>(size - below);
        OrderedChunks::runEach(
            blocks, threadCount, [&] { return subtract; },
            rows * rows / 2.0 * static_cast<double>(width));
    }
    return true;
}

void BlockedCholesky::visitInverse(const std::function<std::unique_ptr<Visitor>()>& makeVisitor)
{
    const auto n = static_cast<double>(size);
    if (!isSplit()) {
        FitProgress::advance(n * n * n / 3.0);
        if (small) {
            const std::unique_ptr<Visitor> visitor = makeVisitor();
            visitor->visit(0, size, small->invert(), small->stride());
            visitor->handOver();
            return;
        }
        inverse.assign(matrix.data(), matrix.data() + size * size);
        const auto order = static_cast<lapack_int>(size);
        invertTriangle(inverse.data(), size);
        LAPACKE_dlauum_work(LAPACK_COL_MAJOR, 'L', order, inverse.data(), order);
        const std::unique_ptr<Visitor> visitor = makeVisitor();
        visitor->visit(0, size, inverse.data(), size);
        visitor->handOver();
        return;
    }
    const auto makeWorker = [&] {
        return std::make_unique<InverseWorker>(matrix.data(), size, makeVisitor());
    };
    OrderedChunks::run(blocksIn(size, inverseColumns), threadCount, makeWorker, n * n * n / 3.0);
}

void BlockedCholesky::forColumns(double multiplications,
                                 const std::function<void(std::size_t, std::size_t)>& work)
{
    const std::size_t ranges = blocksIn(size, columnsPerRange);
    const OrderedChunks::Work range = [&](std::size_t chunk) {
        const std::size_t first = chunk * columnsPerRange;
        work(first, std::min(first + columnsPerRange, size));
    };
    if (!isSplit()) {
        for (std::size_t chunk = 0; chunk < ranges; ++chunk) {
            range(chunk);
        }
        return;
    }
    OrderedChunks::runEach(
        ranges, threadCount, [&] { return range; }, multiplications);
}
