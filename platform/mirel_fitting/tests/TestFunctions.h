#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

// Functions that surrogate models are usually compared on, over the unit cube.

/** Over the unit square; Dixon and Szegoe: Towards global optimisation 2, North-Holland 1978. */
inline double branin(const std::vector<double>& u)
{
    const double pi = std::acos(-1.0);
    const double x = -5.0 + 15.0 * u[0];
    const double y = 15.0 * u[1];
    const double a = y - 5.1 / (4.0 * pi * pi) * x * x + 5.0 / pi * x - 6.0;
    return a * a + 10.0 * (1.0 - 1.0 / (8.0 * pi)) * std::cos(x) + 10.0;
}

/** Dixon and Szegoe, as above. */
inline double hartmann6(const std::vector<double>& x)
{
    const double a[4][6] = {{10, 3, 17, 3.5, 1.7, 8},
                            {0.05, 10, 17, 0.1, 8, 14},
                            {3, 3.5, 1.7, 10, 17, 8},
                            {17, 8, 0.05, 10, 0.1, 14}};
    const double p[4][6] = {{0.1312, 0.1696, 0.5569, 0.0124, 0.8283, 0.5886},
                            {0.2329, 0.4135, 0.8307, 0.3736, 0.1004, 0.9991},
                            {0.2348, 0.1451, 0.3522, 0.2883, 0.3047, 0.6650},
                            {0.4047, 0.8828, 0.8732, 0.5743, 0.1091, 0.0381}};
    const double c[4] = {1.0, 1.2, 3.0, 3.2};
    double sum = 0.0;
    for (int i = 0; i < 4; ++i) {
        double exponent = 0.0;
        for (int k = 0; k < 6; ++k) {
            exponent += a[i][k] * (x[k] - p[i][k]) * (x[k] - p[i][k]);
        }
        sum -= c[i] * std::exp(-exponent);
    }
    return sum;
}

/** Water flow, inputs scaled to [0, 1]; Harper, Gupta: BMI/ONWI-516, 1983. */
inline double borehole(const std::vector<double>& u)
{
    const double lower[] = {0.05, 100, 63070, 990, 63.1, 700, 1120, 9855};
    const double upper[] = {0.15, 50000, 115600, 1110, 116, 820, 1680, 12045};
    double x[8];
    for (int k = 0; k < 8; ++k) {
        x[k] = lower[k] + u[static_cast<std::size_t>(k)] * (upper[k] - lower[k]);
    }
    const double logarithm = std::log(x[1] / x[0]);
    const double flow = 2.0 * std::acos(-1.0) * x[2] * (x[3] - x[5]);
    return flow /
           (logarithm * (1.0 + 2.0 * x[6] * x[2] / (logarithm * x[0] * x[0] * x[7]) + x[2] / x[4]));
}

/** Voltage of a push-pull circuit without output transformer, inputs scaled to [0, 1]. Ben-Ari,
 *  Steinberg: Modeling data from computer experiments, Qual. Eng. 19 (2007). */
inline double circuit(const std::vector<double>& u)
{
    const double lower[] = {50, 25, 0.5, 1.2, 0.25, 50};
    const double upper[] = {150, 70, 3, 2.5, 1.2, 300};
    double x[6];
    for (int k = 0; k < 6; ++k) {
        x[k] = lower[k] + u[static_cast<std::size_t>(k)] * (upper[k] - lower[k]);
    }
    const double base = 12.0 * x[1] / (x[0] + x[1]);
    const double gain = x[5] * (x[4] + 9.0);
    const double sum = gain + x[2];
    return ((base + 0.74) * gain + 11.35 * x[2] + 0.74 * x[2] * gain / x[3]) / sum;
}
