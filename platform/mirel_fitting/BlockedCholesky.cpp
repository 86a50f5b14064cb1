#include <mirel_fitting/BlockedCholesky.h>

#include <mirel_fitting/OrderedChunks.h>

#include <cblas.h>
#include <lapacke.h>

#include <algorithm>
#include <utility>

namespace {

// Wide enough for the matrix products to run at full speed, narrow enough for the diagonal blocks,
// which one thread works on alone, to be a small part of the whole.
constexpr std::size_t blockSize = 128;

// Columns of the inverse at a time: more would compute more of what lies above the diagonal.
constexpr std::size_t inverseColumns = 64;

constexpr std::size_t columnsPerRange = 32;

std::size_t blocksIn(std::size_t count, std::size_t size)
{
    return (count + size - 1) / size;
}

/** Chunks that hand nothing over. */
class Independent : public OrderedChunks::Worker
{
public:
    explicit Independent(const std::function<void(std::size_t)>& work) : work(work) {}

    void compute(std::size_t chunk) override { work(chunk); }
    void handOver(std::size_t /*chunk*/) override {}

private:
    const std::function<void(std::size_t)>& work;
};

void runChunks(std::size_t chunks, int threads, const std::function<void(std::size_t)>& work,
               const std::function<void(std::size_t)>& report)
{
    OrderedChunks::run(
        chunks, threads, [&] { return std::make_unique<Independent>(work); }, report);
}

/** Computes blocks of columns of the inverse and shows them to a visitor. */
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
        // Rows above the first column do not enter: the factor is lower triangular.
        const double* corner = factor + first * order + first;
        for (const CBLAS_TRANSPOSE side : {CblasNoTrans, CblasTrans}) {
            cblas_dtrsm(CblasColMajor, CblasLeft, CblasLower, side, CblasNonUnit,
                        static_cast<int>(rows), static_cast<int>(columns), 1.0, corner,
                        static_cast<int>(order), block.data(), static_cast<int>(rows));
        }
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

BlockedCholesky::BlockedCholesky(std::size_t order, int threads, Report report)
    : size(order), threadCount(order >= smallestToSplit ? threads : 1), report(std::move(report)),
      matrix(order * order)
{
    if (order <= SmallCholesky::largestOrder) {
        small = std::make_unique<SmallCholesky>(order);
    }
}

void BlockedCholesky::tell(double multiplications) const
{
    if (report) {
        report(multiplications);
    }
}

bool BlockedCholesky::factorise()
{
    if (isSplit()) {
        return factoriseBlocks();
    }
    const auto n = static_cast<double>(size);
    tell(n * n * n / 6.0);
    if (small) {
        return small->factorise(matrix.data());
    }
    const auto order = static_cast<lapack_int>(size);
    return LAPACKE_dpotrf_work(LAPACK_COL_MAJOR, 'L', order, matrix.data(), order) == 0;
}

void BlockedCholesky::solveLower(double* columns, std::size_t count) const
{
    if (small) {
        small->solveLower(columns, count);
        return;
    }
    const int rows = static_cast<int>(size);
    cblas_dtrsm(CblasColMajor, CblasLeft, CblasLower, CblasNoTrans, CblasNonUnit, rows,
                static_cast<int>(count), 1.0, matrix.data(), rows, columns, rows);
}

bool BlockedCholesky::factoriseBlocks()
{
    const int stride = static_cast<int>(size);
    for (std::size_t first = 0; first < size; first += blockSize) {
        const std::size_t width = std::min(blockSize, size - first);
        const int columns = static_cast<int>(width);
        tell(static_cast<double>(width * width) * static_cast<double>(size - first) / 2.0);
        double* corner = matrix.data() + first * size + first;
        if (LAPACKE_dpotrf_work(LAPACK_COL_MAJOR, 'L', columns, corner, stride) != 0) {
            return false;
        }

        // The rows below the block, and then what they take off the columns to their right.
        const std::size_t below = first + width;
        const std::size_t blocks = blocksIn(size - below, blockSize);
        const auto rowsOf = [&](std::size_t block) {
            return static_cast<int>(std::min(blockSize, size - below - block * blockSize));
        };
        double* panel = corner + width;
        const std::function<void(std::size_t)> solve = [&](std::size_t block) {
            cblas_dtrsm(CblasColMajor, CblasRight, CblasLower, CblasTrans, CblasNonUnit,
                        rowsOf(block), columns, 1.0, corner, stride, panel + block * blockSize,
                        stride);
        };
        runChunks(blocks, threadCount, solve, nullptr);

        const std::function<void(std::size_t)> subtract = [&](std::size_t block) {
            const std::size_t column = below + block * blockSize;
            const double* rows = panel + block * blockSize;
            // Whole blocks on the diagonal too: nobody reads what is above it.
            cblas_dgemm(CblasColMajor, CblasNoTrans, CblasTrans, static_cast<int>(size - column),
                        rowsOf(block), columns, -1.0, rows, stride, rows, stride, 1.0,
                        matrix.data() + column * size + column, stride);
        };
        runChunks(blocks, threadCount, subtract, [&](std::size_t block) {
            const auto rows = static_cast<double>(size - below - block * blockSize);
            tell(threadCount * rows * static_cast<double>(width * width));
        });
    }
    return true;
}

void BlockedCholesky::visitInverse(const std::function<std::unique_ptr<Visitor>()>& makeVisitor)
{
    const auto n = static_cast<double>(size);
    if (!isSplit()) {
        tell(n * n * n / 3.0);
        if (small) {
            const std::unique_ptr<Visitor> visitor = makeVisitor();
            visitor->visit(0, size, small->invert(), small->stride());
            visitor->handOver();
            return;
        }
        inverse.assign(matrix.data(), matrix.data() + size * size);
        const auto order = static_cast<lapack_int>(size);
        LAPACKE_dpotri_work(LAPACK_COL_MAJOR, 'L', order, inverse.data(), order);
        const std::unique_ptr<Visitor> visitor = makeVisitor();
        visitor->visit(0, size, inverse.data(), size);
        visitor->handOver();
        return;
    }
    OrderedChunks::run(
        blocksIn(size, inverseColumns), threadCount,
        [&] { return std::make_unique<InverseWorker>(matrix.data(), size, makeVisitor()); },
        [&](std::size_t chunk) {
            const auto rows = static_cast<double>(size - chunk * inverseColumns);
            tell(threadCount * rows * rows * static_cast<double>(inverseColumns));
        });
}

void BlockedCholesky::forColumns(double multiplications,
                                 const std::function<void(std::size_t, std::size_t)>& work)
{
    const std::size_t ranges = blocksIn(size, columnsPerRange);
    const double share = multiplications / static_cast<double>(ranges);
    const std::function<void(std::size_t)> range = [&](std::size_t chunk) {
        const std::size_t first = chunk * columnsPerRange;
        work(first, std::min(first + columnsPerRange, size));
    };
    if (!isSplit()) {
        for (std::size_t chunk = 0; chunk < ranges; ++chunk) {
            range(chunk);
        }
        return;
    }
    runChunks(ranges, threadCount, range, [&](std::size_t) { tell(threadCount * share); });
}
