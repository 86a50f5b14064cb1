#include <mirel_fitting/polynomial/QuadraticProducts.h>

#include <algorithm>

QuadraticProducts::QuadraticProducts(const QuadraticBasis& basis) : basis(basis)
{
    const std::size_t terms = basis.size();
    const std::size_t variables = basis.inputs() + 1;
    if (basis.order() == 2) {
        for (std::size_t b = 0; b < variables; ++b) {
            Group group{{}, termOf(b, b), count};
            for (std::size_t a = 0; a <= b; ++a) {
                group.rows.push_back(termOf(a, b));
            }
            count += group.rows.size() * (terms - group.firstColumn);
            groups.push_back(std::move(group));
        }
        return;
    }
    for (std::size_t row = 0; row < terms; ++row) {
        groups.push_back({{row}, row, count});
        count += terms - row;
    }
}

/** Of z_first z_second, first <= second. */
std::size_t QuadraticProducts::termOf(std::size_t first, std::size_t second) const
{
    const std::size_t variables = basis.inputs() + 1;
    return first * variables - first * (first + 1) / 2 + second;
}

std::size_t QuadraticProducts::index(std::size_t term, std::size_t other) const
{
    if (basis.order() < 2) {
        const Group& group = groups[std::min(term, other)];
        return group.firstProduct + std::max(term, other) - group.firstColumn;
    }
    std::size_t factors[4];
    std::size_t* next = factors;
    for (const std::size_t one : {term, other}) {
        const QuadraticBasis::Term& inputs = basis.terms()[one];
        for (const std::size_t input : {inputs.first, inputs.second}) {
            *next++ = input == QuadraticBasis::noInput ? 0 : input + 1;
        }
    }
    std::sort(factors, factors + 4);
    const Group& group = groups[factors[1]];
    const std::size_t columns = basis.size() - group.firstColumn;
    return group.firstProduct + factors[0] * columns + termOf(factors[2], factors[3]) -
           group.firstColumn;
}

template <typename Action>
void QuadraticProducts::forEachGroup(const ProductKernels::Columns& terms,
                                     const Action& action) const
{
    std::vector<const double*> rows;
    for (const Group& group : groups) {
        rows.clear();
        for (const std::size_t row : group.rows) {
            rows.push_back(terms.values + row * terms.stride);
        }
        action(rows,
               ProductKernels::Columns{terms.values + group.firstColumn * terms.stride,
                                       terms.stride, terms.count - group.firstColumn},
               group.firstProduct);
    }
}

void QuadraticProducts::addSums(const ProductKernels::Columns& terms, std::size_t cases,
                                double* sums) const
{
    const ProductKernels& kernels = ProductKernels::best();
    forEachGroup(terms, [&](const std::vector<const double*>& rows,
                            const ProductKernels::Columns& columns, std::size_t firstProduct) {
        kernels.addProducts(rows.data(), rows.size(), columns, cases,
                            sums + firstProduct * ProductKernels::lanes);
    });
}

std::vector<double> QuadraticProducts::weightsOf(const std::vector<double>& matrix) const
{
    std::vector<double> weights(count, 0.0);
    const std::size_t terms = basis.size();
    for (std::size_t column = 0; column < terms; ++column) {
        for (std::size_t row = 0; row <= column; ++row) {
            const double both = row == column ? 1.0 : 2.0;
            weights[index(row, column)] += both * matrix[column * terms + row];
        }
    }
    return weights;
}

void QuadraticProducts::addForm(const ProductKernels::Columns& terms,
                                const std::vector<double>& weights, std::size_t cases,
                                double* result) const
{
    const ProductKernels& kernels = ProductKernels::best();
    forEachGroup(terms, [&](const std::vector<const double*>& rows,
                            const ProductKernels::Columns& columns, std::size_t firstProduct) {
        kernels.addForm(rows.data(), rows.size(), columns, weights.data() + firstProduct, cases,
                        result);
    });
}
