#include <mirel_fitting/polynomial/DesignPass.h>

#include <mirel_fitting/FitProgress.h>
#include <mirel_fitting/ThreadCount.h>

#include "FittingTestSupport.h"

#include <gtest/gtest.h>

#include <numeric>

using namespace fittingtest;

namespace {

/** Cases of two inputs, scaled as a fit scales them. */
struct Scaled
{
    explicit Scaled(std::size_t count) : cases(twoInputs(count, 1.0))
    {
        for (std::size_t input = 0; input < 2; ++input) {
            inputScales.emplace_back(cases.inputs[input].data(), count);
        }
        outputScales.emplace_back(cases.outputs[0].data(), count);
    }

    Cases cases;
    QuadraticBasis basis{2, 2};
    std::vector<double*> inputs = cases.inputPointers();
    std::vector<double*> outputs = cases.outputPointers();
    std::vector<ColumnScale> inputScales;
    std::vector<ColumnScale> outputScales;
    WeightedBlocks equal;
    FitColumns columns{basis, inputs, outputs, cases.count(), inputScales, outputScales, equal};
};

/** Lists the rows of its blocks, and checks the design of V1 V2 and the output in them. */
class Lister : public DesignPass
{
public:
    Lister(const Scaled& scaled, const std::vector<std::size_t>& terms,
           std::vector<std::size_t>& rows)
        : DesignPass(scaled.columns, terms), scaled(scaled), listed(rows)
    {}

    void handOver(std::size_t /*chunk*/) override
    {
        listed.insert(listed.end(), ofChunk.begin(), ofChunk.end());
    }

private:
    void begin() override { ofChunk.clear(); }

    void addBlock(std::size_t firstRow, std::size_t rows) override
    {
        for (std::size_t i = 0; i < rows; ++i) {
            double product = 1.0;
            for (std::size_t input = 0; input < 2; ++input) {
                double u = 0.0;
                scaled.inputScales[input].apply(&scaled.inputs[input][firstRow + i], 1, &u);
                product *= u;
            }
            double y = 0.0;
            scaled.outputScales[0].apply(&scaled.outputs[0][firstRow + i], 1, &y);
            EXPECT_EQ(design.data()[i], product);
            EXPECT_EQ(outputs.data()[i], y);
            ofChunk.push_back(firstRow + i);
        }
    }

    const Scaled& scaled;
    std::vector<std::size_t>& listed;
    std::vector<std::size_t> ofChunk;
};

const std::vector<std::size_t> product = {4}; // V1 V2 among 1, V1, V2, V1^2, V1 V2, V2^2

std::vector<std::size_t> listRows(const Scaled& scaled, double from = 0.0, double to = 1.0)
{
    std::vector<std::size_t> rows;
    DesignPass::run(
        scaled.columns, [&] { return std::make_unique<Lister>(scaled, product, rows); }, from, to);
    return rows;
}

} // namespace

TEST(DesignPass, ShowsAllCasesInTheirOrderForAnyNumberOfThreads)
{
    for (const std::size_t count : {1u, 512u, 40001u}) {
        const Scaled scaled(count);
        std::vector<std::size_t> expected(count);
        std::iota(expected.begin(), expected.end(), std::size_t{0});
        for (const int threads : {1, 3}) {
            setThreadCount(threads);
            EXPECT_EQ(listRows(scaled), expected) << count << ", " << threads;
        }
    }
    setThreadCount(0);
}

TEST(DesignPass, ReportsEachBlockWithinItsPartOfTheFit)
{
    const Scaled scaled(100000);
    std::vector<double> fractions;
    const FitProgress progress([&](double fraction, const std::string&) {
        fractions.push_back(fraction);
        return true;
    });
    setThreadCount(1);

    listRows(scaled, 0.5, 0.75);

    setThreadCount(0);
    EXPECT_GE(fractions.size(), 195u); // blocks of 512 cases
    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
    EXPECT_EQ(fractions.front(), 0.5);
    EXPECT_NEAR(fractions.back(), 0.75, 0.01);
    EXPECT_LT(fractions.back(), 0.75);
}
