#pragma once

/// @file
/// Linear regressions with certified coefficients: the Statistical Reference Datasets of the National
/// Institute of Standards and Technology, in the public domain. Every set here was solved again in rational
/// arithmetic, and the exact coefficients have all the certified digits.

#include <cmath>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace Tervane::Math::LinearAlgebraTest {

/// A least-squares problem and what is known about its solution.
struct CertifiedProblem {
    std::string name;
    std::size_t rows;
    std::size_t columns;
    std::vector<double> model; ///< column after column
    std::vector<double> measurements;
    std::vector<double> coefficients;
    /// The condition number of the model in the 2-norm, and the same with its columns scaled to one length.
    double condition;
    double scaledCondition;
    /// The significant digits that each coefficient must have.
    int digitsByFactorisation;
    int digitsBySingularValues;
};

/// The columns x^first … x^last. Powers are rounded once: a product of doubles would add errors of its own.
inline std::vector<double> powers(std::vector<long double> const& x, int first, int last) {
    std::vector<double> model;
    for (int k = first; k <= last; ++k)
        for (long double const base : x)
            model.push_back(static_cast<double>(std::pow(base, static_cast<long double>(k))));
    return model;
}

/// The fit of a quintic through x = 0 … 20 for which every coefficient is 1, whatever the scale of the
/// disturbance: that one is orthogonal to every polynomial of the fifth degree.
inline CertifiedProblem wampler(std::string name, double disturbance, int digits) {
    constexpr double half[] = {759.0,  -2048.0, 2048.0, -2048.0, 2523.0, -2048.0,
                               2048.0, -2048.0, 1838.0, -2048.0, 2048.0};
    std::vector<long double> x;
    std::vector<double> y;
    for (int i = 0; i <= 20; ++i) {
        double const at = i;
        x.push_back(i);
        y.push_back(1.0 + at * (1.0 + at * (1.0 + at * (1.0 + at * (1.0 + at))))
                    + disturbance * half[i <= 10 ? i : 20 - i]);
    }
    return {std::move(name), 21,    6,      powers(x, 0, 5), y, std::vector<double>(6, 1.0),
            6.4e6,           2.3e3, digits, digits};
}

inline CertifiedProblem wampler2() {
    std::vector<long double> x;
    std::vector<double> y;
    for (int i = 0; i <= 20; ++i) {
        x.push_back(i);
        long double const tenth = static_cast<long double>(i) / 10.0L;
        y.push_back(static_cast<double>(
            1.0L + tenth * (1.0L + tenth * (1.0L + tenth * (1.0L + tenth * (1.0L + tenth))))));
    }
    return {"Wampler2", 21, 6, powers(x, 0, 5), y, {1.0, 0.1, 0.01, 0.001, 0.0001, 0.00001}, 6.4e6,
            2.3e3,      9,  8};
}

inline CertifiedProblem norris() {
    std::vector<long double> const x = {
        0.2L, 337.4L, 118.2L, 884.6L, 10.1L,  226.5L, 666.3L, 996.3L, 448.6L, 777.0L, 558.2L, 0.4L,
        0.6L, 775.5L, 666.9L, 338.0L, 447.5L, 11.6L,  556.0L, 228.1L, 995.8L, 887.6L, 120.2L, 0.3L,
        0.3L, 556.8L, 339.1L, 887.2L, 999.0L, 779.0L, 11.1L,  118.3L, 229.2L, 669.1L, 448.9L, 0.5L};
    std::vector<double> const y = {0.1,   338.8, 118.1, 888.0, 9.2,   228.1, 668.5, 998.5, 449.1,
                                   778.9, 559.2, 0.3,   0.1,   778.1, 668.8, 339.3, 448.9, 10.8,
                                   557.7, 228.3, 998.0, 888.8, 119.6, 0.3,   0.6,   557.6, 339.3,
                                   888.0, 998.5, 778.9, 10.2,  117.6, 228.9, 668.4, 449.2, 0.2};
    return {"Norris", 36, 2, powers(x, 0, 1), y, {-0.262323073774029, 1.00211681802045}, 8.6e2, 2.9, 11, 11};
}

inline CertifiedProblem noIntercept1() {
    std::vector<long double> const x = {60, 61, 62, 63, 64, 65, 66, 67, 68, 69, 70};
    std::vector<double> const y = {130, 131, 132, 133, 134, 135, 136, 137, 138, 139, 140};
    return {"NoInt1", 11, 1, powers(x, 1, 1), y, {2.07438016528926}, 1.0, 1.0, 14, 14};
}

inline CertifiedProblem noIntercept2() {
    return {"NoInt2", 3, 1, {4, 5, 6}, {3, 4, 4}, {0.727272727272727}, 1.0, 1.0, 14, 14};
}

inline CertifiedProblem pontius() {
    std::vector<long double> x;
    for (int i = 0; i < 40; ++i)
        x.push_back(150000.0L * static_cast<long double>(i % 20 + 1));
    std::vector<double> const y = {0.11019, 0.21956, 0.32949, 0.43899, 0.54803, 0.65694, 0.76562, 0.87487,
                                   0.98292, 1.09146, 1.20001, 1.30822, 1.41599, 1.52399, 1.63194, 1.73947,
                                   1.84646, 1.95392, 2.06128, 2.16844, 0.11052, 0.22018, 0.32939, 0.43886,
                                   0.54798, 0.65739, 0.76596, 0.87474, 0.98300, 1.09150, 1.20004, 1.30818,
                                   1.41613, 1.52408, 1.63159, 1.73965, 1.84696, 1.95445, 2.06177, 2.16829};
    return {"Pontius", 40,
            3,         powers(x, 0, 2),
            y,         {0.673565789473684E-03, 0.732059160401003E-06, -0.316081871345029E-14},
            1.5e13,    1.9e1,
            11,        5};
}

inline CertifiedProblem longley() {
    std::vector<double> const model = {
        1,      1,      1,      1,      1,      1,      1,      1,      1,      1,      1,      1,
        1,      1,      1,      1,      83.0,   88.5,   88.2,   89.5,   96.2,   98.1,   99.0,   100.0,
        101.2,  104.6,  108.4,  110.8,  112.6,  114.2,  115.7,  116.9,  234289, 259426, 258054, 284599,
        328975, 346999, 365385, 363112, 397469, 419180, 442769, 444546, 482704, 502601, 518173, 554894,
        2356,   2325,   3682,   3351,   2099,   1932,   1870,   3578,   2904,   2822,   2936,   4681,
        3813,   3931,   4806,   4007,   1590,   1456,   1616,   1650,   3099,   3594,   3547,   3350,
        3048,   2857,   2798,   2637,   2552,   2514,   2572,   2827,   107608, 108632, 109773, 110929,
        112075, 113270, 115094, 116219, 117388, 118734, 120445, 121950, 123366, 125368, 127852, 130081,
        1947,   1948,   1949,   1950,   1951,   1952,   1953,   1954,   1955,   1956,   1957,   1958,
        1959,   1960,   1961,   1962};
    std::vector<double> const y = {60323, 61122, 60171, 61187, 63221, 63639, 64989, 63761,
                                   66019, 67857, 68169, 66513, 68655, 69564, 69331, 70551};
    return {"Longley",
            16,
            7,
            model,
            y,
            {-3482258.63459582, 15.0618722713733, -0.358191792925910E-01, -2.02022980381683,
             -1.03322686717359, -0.511041056535807E-01, 1829.15146461355},
            4.9e9,
            4.4e4,
            10,
            9};
}

inline CertifiedProblem filip() {
    std::vector<long double> const x = {
        -6.860120914L, -4.324130045L, -4.358625055L, -4.358426747L, -6.955852379L, -6.661145254L,
        -6.355462942L, -6.118102026L, -7.115148017L, -6.815308569L, -6.519993057L, -6.204119983L,
        -5.853871964L, -6.109523091L, -5.79832982L,  -5.482672118L, -5.171791386L, -4.851705903L,
        -4.517126416L, -4.143573228L, -3.709075441L, -3.499489089L, -6.300769497L, -5.953504836L,
        -5.642065153L, -5.031376979L, -4.680685696L, -4.329846955L, -3.928486195L, -8.56735134L,
        -8.363211311L, -8.107682739L, -7.823908741L, -7.522878745L, -7.218819279L, -6.920818754L,
        -6.628932138L, -6.323946875L, -5.991399828L, -8.781464495L, -8.663140179L, -8.473531488L,
        -8.247337057L, -7.971428747L, -7.676129393L, -7.352812702L, -7.072065318L, -6.774174009L,
        -6.478861916L, -6.159517513L, -6.835647144L, -6.53165267L,  -6.224098421L, -5.910094889L,
        -5.598599459L, -5.290645224L, -4.974284616L, -4.64454848L,  -4.290560426L, -3.885055584L,
        -3.408378962L, -3.13200249L,  -8.726767166L, -8.66695597L,  -8.511026475L, -8.165388579L,
        -7.886056648L, -7.588043762L, -7.283412422L, -6.995678626L, -6.691862621L, -6.392544977L,
        -6.067374056L, -6.684029655L, -6.378719832L, -6.065855188L, -5.752272167L, -5.132414673L,
        -4.811352704L, -4.098269308L, -3.66174277L,  -3.2644011L};
    std::vector<double> const y = {
        0.8116, 0.9072, 0.9052, 0.9039, 0.8053, 0.8377, 0.8667, 0.8809, 0.7975, 0.8162, 0.8515, 0.8766,
        0.8885, 0.8859, 0.8959, 0.8913, 0.8959, 0.8971, 0.9021, 0.909,  0.9139, 0.9199, 0.8692, 0.8872,
        0.89,   0.891,  0.8977, 0.9035, 0.9078, 0.7675, 0.7705, 0.7713, 0.7736, 0.7775, 0.7841, 0.7971,
        0.8329, 0.8641, 0.8804, 0.7668, 0.7633, 0.7678, 0.7697, 0.77,   0.7749, 0.7796, 0.7897, 0.8131,
        0.8498, 0.8741, 0.8061, 0.846,  0.8751, 0.8856, 0.8919, 0.8934, 0.894,  0.8957, 0.9047, 0.9129,
        0.9209, 0.9219, 0.7739, 0.7681, 0.7665, 0.7703, 0.7702, 0.7761, 0.7809, 0.7961, 0.8253, 0.8602,
        0.8809, 0.8301, 0.8664, 0.8834, 0.8898, 0.8964, 0.8963, 0.9074, 0.9119, 0.9228};
    return {"Filip",
            82,
            11,
            powers(x, 0, 10),
            y,
            {-1467.48961422980, -2772.17959193342, -2316.37108160893, -1127.97394098372, -354.478233703349,
             -75.1242017393757, -10.8753180355343, -1.06221498588947, -0.670191154593408E-01,
             -0.246781078275479E-02, -0.402962525080404E-04},
            1.8e15,
            5.3e9,
            6,
            4};
}

inline std::vector<CertifiedProblem> certifiedProblems() {
    return {norris(),
            noIntercept1(),
            noIntercept2(),
            pontius(),
            longley(),
            filip(),
            wampler("Wampler1", 0.0, 8),
            wampler2(),
            wampler("Wampler3", 1.0, 8),
            wampler("Wampler4", 100.0, 7),
            wampler("Wampler5", 10'000.0, 5)};
}

} // namespace Tervane::Math::LinearAlgebraTest
