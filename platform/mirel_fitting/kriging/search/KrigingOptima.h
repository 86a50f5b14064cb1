#pragma once

#include <mirel_fitting/kriging/search/KrigingSearchVariables.h>
#include <mirel_fitting/numerics/BoundedSearch.h>

#include <cstddef>
#include <memory>
#include <vector>

/** What the searches of a Kriging fit have found: optima that are different models. */
class KrigingOptima
{
public:
    /** A local maximum of the likelihood. */
    struct Optimum
    {
        std::vector<double> point;
        double value = 0.0;
        double noiseVariance = 0.0;
        int meetings = 1;       ///< searches that ended here
        bool isSearched = true; ///< with all cases
        bool isMaximum = true;  ///< not given up
        /** Of the cases taken, that ended here. */
        std::shared_ptr<BoundedSearch> search = nullptr;
    };

    /** @param variables are borrowed for life. */
    explicit KrigingOptima(const KrigingSearchVariables& variables) : variables(variables) {}

    /** Best first. */
    static void sort(std::vector<Optimum>& optima);
    void sort() { sort(optima); }

    /** Keeps what a search has reached, or counts it as a meeting. */
    void add(Optimum reached, BoundedObjective& likelihood);

    /**
     * Keeps those that may be the best with more cases, too: the two best ones, and the best one
     * that takes the scatter of the cases for noise if those do not, or the other way about.
     * @param cases that the values are the likelihood of.
     */
    void shortlist(std::size_t cases);

    /** Others that have come to where the best one is. */
    void dropCopiesOfTheBest();

    /** Others that are no optima of their own, of those nearly as likely as the best. */
    void dropEndsOfTheRidge(BoundedObjective& likelihood);

    /** Minus infinity if there are none. */
    double highestValue() const;

    bool isEmpty() const { return optima.empty(); }
    std::size_t size() const { return optima.size(); }
    Optimum& best() { return optima.front(); }
    Optimum& second() { return optima[1]; }
    std::vector<Optimum>::iterator begin() { return optima.begin(); }
    std::vector<Optimum>::iterator end() { return optima.end(); }

private:
    bool areOnOneRidge(const Optimum& a, const Optimum& b, BoundedObjective& likelihood) const;

    const KrigingSearchVariables& variables;
    std::vector<Optimum> optima;
};
