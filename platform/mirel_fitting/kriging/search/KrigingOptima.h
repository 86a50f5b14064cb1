#pragma once

#include <mirel_fitting/kriging/search/KrigingSearchVariables.h>
#include <mirel_fitting/numerics/BoundedSearch.h>

#include <cstddef>
#include <vector>

/** The distinct local maxima of the likelihood that searches have found, best first. */
class KrigingOptima
{
public:
    struct Optimum
    {
        std::vector<double> point;
        double value = 0.0;
    };

    /** @param variables are borrowed for life. */
    explicit KrigingOptima(const KrigingSearchVariables& variables) : variables(variables) {}

    /** Keeps what a search has reached, or the better of it and an optimum that is the same. */
    void add(Optimum reached, BoundedObjective& likelihood);

    /** Whether a better optimum is so near in every variable that a search from the point would
     *  end there. Stricter than KrigingSearchVariables::areClose(): long lengths have to agree,
     * too, since a search on its way may still make one short (one optimum of 423 tables would be
     * lower by 0.74). */
    bool isBetterNear(const std::vector<double>& point, double value) const;

    /** Replaces all, after searches with more cases from each of them. */
    void replace(const std::vector<Optimum>& reached, BoundedObjective& likelihood);

    /** Keeps the best ones. */
    void shorten(std::size_t count);

    bool isEmpty() const { return optima.empty(); }
    std::size_t size() const { return optima.size(); }
    Optimum& best() { return optima.front(); }
    const Optimum& second() const { return optima[1]; }
    const std::vector<Optimum>& all() const { return optima; }

private:
    bool areSame(const Optimum& a, const Optimum& b, BoundedObjective& likelihood) const;

    const KrigingSearchVariables& variables;
    std::vector<Optimum> optima;
};
