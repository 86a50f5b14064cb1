#pragma once

#include <session/text/UnitText.h>

#include <mirel_fitting/Extrapolation.h>

#include <surrogate_plot/Export.h>

#include <cstddef>
#include <string>
#include <vector>

class CaseSession;
class Workspace;

/** Whether a logarithmic axis shows an output best: its logarithm is modelled, or its values are
 *  positive and span three decades. @throw SurrogateModelInterface::Error */
SURROGATE_PLOT_EXPORT bool hasLogarithmicAxis(CaseSession& session, std::size_t output);

/**
 * The predictions of a model where some inputs are swept and all others held, with the fitted cases
 * near these points: each held input within a tenth of its range of the held value, each swept one
 * within the swept values.
 */
struct SURROGATE_PLOT_EXPORT ModelSlice
{
    struct Column
    {
        std::string name;
        std::vector<double> values;     ///< one per point
        std::vector<double> caseValues; ///< one per case near the slice
        std::string unit = {};          ///< empty if the case file says none
        bool isLogarithmic = false;     ///< whether its axis should be (hasLogarithmicAxis())

        /** What an axis shows: "Pressure (MPa)". */
        std::string label() const { return nameWithUnit(name, unit); }
    };

    std::string modelName; ///< "Kriging" or "response surface"
    std::vector<Column> inputs;
    std::vector<Column> outputs;    ///< their values are predictions
    std::vector<std::size_t> swept; ///< positions of inputs, ascending
    std::size_t fittedCases = 0;
    Extrapolation extrapolation;
    std::vector<char> isOutside = {}; ///< one flag per point; after findOutside()

    /** What the cases of all slices of a session are chosen from. */
    struct FittedCases
    {
        explicit FittedCases(const Workspace& workspace);

        std::vector<std::size_t> rows;
        std::vector<std::pair<double, double>> ranges; ///< Workspace::sweepRanges()
        std::vector<double> widths;                    ///< of the inputs' ranges over these rows
    };

    /** Through the values that the session chooses. @throw SurrogateModelInterface::Error */
    static ModelSlice throughChosenValues(CaseSession& session);

    /**
     * Through the values at which the session holds its inputs, with some swept over their ranges,
     * whatever the session sweeps.
     * @param swept  positions of inputs, ascending; the first one varies slowest.
     * @param values of each of them, at least two.
     * @param cases  those of the session.
     * @throw SurrogateModelInterface::Error
     */
    static ModelSlice overRanges(CaseSession& session, const std::vector<std::size_t>& swept,
                                 std::size_t values, const FittedCases& cases);

    /** The same over two swept inputs with values between theirs, evenly, so that each has at least
     *  this many. @throw SurrogateModelInterface::Error */
    ModelSlice finer(CaseSession& session, std::size_t values) const;

    /** Finds out which points lie outside the cases. @throw SurrogateModelInterface::Error */
    void findOutside(CaseSession& session);

    /** Points of a sweep over a range: enough for a smooth line. */
    static constexpr std::size_t sweepValues = 101;

    std::size_t points() const { return inputs.front().values.size(); }

    /** The points, one column per input; valid until the slice changes. */
    std::vector<const double*> inputColumns() const;

    std::size_t nearCases() const { return inputs.front().caseValues.size(); }

    /** "cases near (4 of 11)", what the legend says. */
    std::string caseLabel() const;

    /** Where the session holds its inputs: "Flow = 3 l/s, Power = 10"; of many inputs the first
     * ones, and how many more there are. */
    static std::string heldText(const CaseSession& session);

    /** "At Flow = 3 l/s, Power = 10. ...", and which cases are near; empty if every input is swept.
     */
    std::string caption() const;
};
