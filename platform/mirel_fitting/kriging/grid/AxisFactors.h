#pragma once

#include <cstddef>
#include <vector>

/**
 * The Matern 5/2 correlations of the F values x of an axis with n cases z as a product of two
 * matrices, of which that of the cases has at most six numbers other than 0 per case:
 *
 *   c(x_v, z_j) = sum over k of valueFactor(v, k) caseFactor(k, j).
 *
 * Cases between the same two neighbouring values are a group. All values on one side of it are
 * reached through three moments, as in AxisSums,
 *
 *   c = exp(-u) [(1 + u + u^2 / 3) m_0 + (1 + 2 u / 3) m_1 + m_2 / 3],   m_q = t^q exp(-t),
 *
 * with t the distance of the case from the nearest of these values, and u that of the value from
 * there; up to three values through the correlations themselves. Nothing is negative, so that
 * nothing cancels that does not cancel in the sum itself.
 */
class AxisFactors
{
public:
    /**
     * @param values   in any order, in units of length / sqrt(5) like the cases.
     * @param isFinite one per value; what is not finite has no correlations: factors 0.
     * @param cases    ascending.
     */
    AxisFactors(const std::vector<double>& values, const std::vector<char>& isFinite,
                const std::vector<double>& cases);

    /** Mean number of factors of a case between the values, and the number of columns, of an axis
     *  with so many values. */
    static double factorsPerCase(std::size_t values);
    static double columnsFor(std::size_t values);

    /** The cases between two neighbouring values; there is at least one. */
    struct Group
    {
        std::size_t firstCase;
        std::size_t lastCase;    ///< behind the last one
        std::size_t firstColumn; ///< those that are not 0 for these cases
        std::size_t columns;
        std::vector<double> caseFactors; ///< column by column, one per case of the group
    };
    const std::vector<Group>& groups() const { return groupList; }

    /** How many k there are. */
    std::size_t columns() const { return columnCount; }

    /** Value by value, columns() numbers each. */
    const std::vector<double>& valueFactors() const { return ofValues; }

private:
    struct Value
    {
        double x;
        std::size_t position;
    };
    using Side = std::vector<Value>; // from the nearest to the farthest

    void addGroup(const std::vector<Value>& ascending, std::size_t below,
                  const std::vector<double>& cases, std::size_t firstCase, std::size_t lastCase);
    void addSide(const Side& side, const std::vector<double>& cases, Group& group);

    std::size_t columnCount = 0;
    std::vector<Group> groupList;
    struct ValueFactor
    {
        std::size_t position;
        std::size_t column;
        double factor;
    };
    std::vector<ValueFactor> collected;
    std::vector<double> ofValues;
};
