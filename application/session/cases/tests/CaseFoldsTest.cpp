#include <session/cases/CaseFolds.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <vector>

namespace {
using Column = std::vector<double>;

CaseFolds foldsOf(const Column& column)
{
    return CaseFolds({column.data()}, column.size());
}

Column numbered(std::size_t cases)
{
    Column column(cases);
    for (std::size_t i = 0; i < cases; ++i) {
        column[i] = static_cast<double>(i);
    }
    return column;
}

std::vector<std::size_t> sizesOf(const std::vector<std::size_t>& folds, std::size_t count)
{
    std::vector<std::size_t> sizes(count);
    for (const std::size_t fold : folds) {
        ++sizes.at(fold);
    }
    return sizes;
}

/** Columns of few different values, so that there are copies. */
std::vector<Column> anyColumns()
{
    const std::size_t cases = *rc::gen::inRange<std::size_t>(1, 60);
    std::vector<Column> columns(2);
    for (Column& column : columns) {
        column = *rc::gen::container<Column>(
            cases, rc::gen::map(rc::gen::inRange(-3, 4), [](int value) { return value * 0.5; }));
    }
    return columns;
}
} // namespace

TEST(CaseFolds, SplitsTheSameCasesAlikeOnEveryMachine)
{
    // Worked out from the generator's published output: 64-bit Mersenne Twister of Nishimura and
    // Matsumoto. A change here changes the figures of every comparison.
    EXPECT_EQ(foldsOf(numbered(8)).split(3), (std::vector<std::size_t>{0, 0, 1, 1, 2, 2, 0, 1}));
}

TEST(CaseFolds, DoesNotLeaveNeighboursTogether)
{
    const std::vector<std::size_t> folds = foldsOf(numbered(100)).split(10);

    std::size_t changes = 0;
    for (std::size_t i = 1; i < folds.size(); ++i) {
        changes += folds[i] != folds[i - 1] ? 1 : 0;
    }
    EXPECT_GT(changes, 70u) << "in the order of the cases it would be 9";
}

TEST(CaseFolds, KeepsCopiesTogetherButNotRepeatedMeasurements)
{
    const Column input = {1, 2, 1, 2, 3};
    const Column output = {5, 6, 5, 7, 8};
    const CaseFolds cases({input.data(), output.data()}, 5);

    EXPECT_EQ(cases.max(), 4u);
    const std::vector<std::size_t> folds = cases.split(4);
    EXPECT_EQ(folds[0], folds[2]);
    EXPECT_NE(folds[1], folds[3]);
}

TEST(CaseFolds, OfNoCasesThereAreNone)
{
    EXPECT_EQ(CaseFolds({nullptr}, 0).max(), 0u);
}

RC_GTEST_PROP(CaseFolds, EveryFoldHasACaseAndTheirSizesAreAlike, ())
{
    const std::vector<Column> columns = anyColumns();
    const std::size_t cases = columns[0].size();
    const CaseFolds splitter({columns[0].data(), columns[1].data()}, cases);
    const std::size_t count = *rc::gen::inRange<std::size_t>(1, splitter.max() + 1);

    const std::vector<std::size_t> folds = splitter.split(count);

    std::map<std::pair<double, double>, std::size_t> copies;
    std::map<std::pair<double, double>, std::size_t> foldOf;
    for (std::size_t i = 0; i < cases; ++i) {
        const std::pair<double, double> key(columns[0][i], columns[1][i]);
        ++copies[key];
        RC_ASSERT(foldOf.emplace(key, folds[i]).first->second == folds[i]);
    }
    RC_ASSERT(splitter.max() == copies.size());
    std::size_t maxCopies = 0;
    for (const auto& [key, number] : copies) {
        maxCopies = std::max(maxCopies, number);
    }
    const std::vector<std::size_t> sizes = sizesOf(folds, count);
    const auto [least, greatest] = std::minmax_element(sizes.begin(), sizes.end());
    RC_ASSERT(*least >= 1u);
    RC_ASSERT(*greatest - *least <= maxCopies);
}
