#pragma once

#include "CaseTables.h"

/**
 * A central composite design of 11 runs in a chemical vapour deposition process.
 * NIST/SEMATECH e-Handbook of Statistical Methods, 5.4.7.3; data of Czitrom and Spagon:
 * Statistical Case Studies for Industrial Process Improvement, SIAM 1997, experiment 2.
 */
inline CaseTable cvdCases()
{
    return tableOf({{"Pressure", {80, 42, 68.87, 15.13, 4, 42, 15.13, 42, 68.87, 42, 42}},
                    {"H2/WF6", {6, 6, 3.17, 8.83, 6, 6, 3.17, 2, 8.83, 10, 6}},
                    {"Uniformity", {4.6, 6.2, 3.4, 6.9, 7.3, 6.4, 8.6, 6.3, 5.1, 5.4, 5.0}},
                    {"Stress", {8.04, 7.78, 7.58, 7.27, 6.49, 7.69, 6.66, 7.16, 8.33, 8.19, 7.9}}});
}
