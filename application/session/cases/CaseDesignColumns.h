#pragma once

#include <mirel_fitting/CaseDesign.h>

#include <surrogate_session/Export.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

class Project;

/** The columns of a case file that weigh the cases of a response surface and split them into
 * blocks, by name; empty where there is none. They are no inputs. */
struct SURROGATE_SESSION_EXPORT CaseDesignColumns
{
    std::string weights; ///< numbers: cases with 0 or without one are left out
    std::string blocks;  ///< numbers or texts: cases without one are left out

    bool isEmpty() const { return weights.empty() && blocks.empty(); }
    bool operator==(const CaseDesignColumns& other) const
    {
        return weights == other.weights && blocks == other.blocks;
    }

    /** What is wrong with the columns as a sentence: one that is not there, weights that are no
     *  numbers or negative. Empty if nothing is. */
    std::string fault(const Project& project) const;

    /** By column, the positions of the records that it leaves out, ascending; of columns that leave
     *  out any. */
    std::vector<std::pair<std::string, std::vector<std::size_t>>>
    leftOut(const Project& project) const;

    /** Of records that are not left out. Blocks are numbered in the order of blockNames(). */
    CaseDesign design(const Project& project, const std::vector<std::size_t>& records) const;

    /** The different blocks in the order of their first records. */
    std::vector<std::string> blockNames(const Project& project) const;
};
