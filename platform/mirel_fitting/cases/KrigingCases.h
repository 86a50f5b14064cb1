#pragma once

#include <cstddef>
#include <vector>

/**
 * The inputs of a Kriging model: which rows are the same point, and the distinct points scaled to
 * the ranges of the inputs. Inputs that are constant up to rounding are left out of the points. The
 * points are sorted, so that the order of the rows does not change a fit.
 */
class KrigingCases
{
public:
    /** @throw SurrogateModelInterface::Error if the range of an input is not finite. */
    static void requireRanges(const std::vector<double*>& columns, std::size_t rows);

    /**
     * O(rows log rows) time, with FitProgress::advance() between its steps.
     * @param columns one array of `rows` finite values per input, borrowed for the call.
     * @throw SurrogateModelInterface::Error as requireRanges().
     */
    KrigingCases(const std::vector<double*>& columns, std::size_t rows);

    std::size_t rowCount() const { return rows; }
    std::size_t inputCount() const { return inputs; }

    /** Distinct points, 1 if there is no input that varies. */
    std::size_t pointCount() const { return starts.size() - 1; }
    /** The rows at a point, ascending. */
    std::vector<std::size_t> rowsAt(std::size_t point) const;
    /** The inputs of these points, one column per input; 0 for an input that does not vary. */
    std::vector<std::vector<double>> inputsAt(const std::vector<std::size_t>& points) const;

    /** The inputs that vary, ascending. */
    const std::vector<std::size_t>& activeInputs() const { return active; }
    /** One per input that varies, as range(). */
    const std::vector<double>& minimum() const { return minima; }
    const std::vector<double>& range() const { return ranges; }
    /** By columns, points x inputs that vary: (x - minimum) / range. */
    const std::vector<double>& coordinates() const { return scaled; }

private:
    int compare(const std::vector<double*>& columns, std::size_t a, std::size_t b) const;
    void sortRows(const std::vector<double*>& columns);
    void findPoints(const std::vector<double*>& columns);
    void scaleInput(const double* values, double minimum, double range);

    std::size_t rows;
    std::size_t inputs;
    std::vector<std::size_t> active;
    std::vector<double> minima;
    std::vector<double> ranges;
    std::vector<double> scaled;
    std::vector<std::size_t> order;  // rows, sorted by their inputs
    std::vector<std::size_t> starts; // of each point in `order`, and the end of the last
};
