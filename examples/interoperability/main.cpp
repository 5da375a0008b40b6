/// @file
/// The library's containers beside those of others: std::vector, std::span, range-for, the standard
/// algorithms, streams, and Eigen where it is installed.
///
/// A container is one block of doubles: data() and length(), for a matrix column after column. So others look
/// at it in place, and it is made from theirs by one copy. Every line below says which of the two it does.

#include <Math/Math.h>

#ifdef HAS_EIGEN
#    include <Eigen/Dense>
#endif

#include <algorithm>
#include <iostream>
#include <numeric>
#include <span>
#include <vector>

namespace {

using namespace Tervane::Math;

/// The elements in place, for whatever takes a range.
std::span<double const> elementsOf(Vector2 const& v) {
    return {v.data(), v.length()};
}
std::span<double> elementsOf(Vector2& v) {
    return {v.data(), v.length()};
}

void withStandardContainers() {
    std::vector<double> const samples{3.0, 1.0, 2.0};

    Vector2 const copied(samples.data(), samples.size());           // copies
    VectorView2 const seen(samples.data(), samples.size(), Column); // looks, as long as samples lives
    std::vector<double> const back(copied.data(), copied.data() + copied.length()); // copies
    Vector2 const sum = copied + seen;

    std::span<double const> const part = std::span(samples).subspan(1);
    Vector2 const fromSpan(part.data(), part.size()); // copies

    std::cout << sum[0] << ' ' << back.back() << ' ' << fromSpan.length() << '\n'; // 6 2 2
}

void withStandardAlgorithms() {
    Vector2 v = arange(1, 6);
    double product = 1.0;
    for (double const element : elementsOf(v)) { // looks
        product *= element;
    }
    std::ranges::reverse(elementsOf(v)); // writes in place
    Vector2 const fixed(v);
    auto const elements = elementsOf(fixed); // looks, and cannot write
    double const total = std::accumulate(elements.begin(), elements.end(), 0.0);
    std::cout << product << ' ' << v[0] << ' ' << total << '\n'; // 120 5 15
}

void withStreams() {
    Vector2 v = arange(3) / 3.0;
    if (auto const text = v.toString()) { // six digits, for people
        std::cout << *text << '\n';       // [ 0, 0.333333, 0.666667 ]
    }
    std::cout.precision(17); // for machines: every digit, in the caller's own form
    for (double const element : elementsOf(v)) {
        std::cout << element << '\n';
    }
    std::cout.precision(6);
}

#ifdef HAS_EIGEN
void withEigen() {
    Matrix2 a(2, 2, 0.0);
    a[Index(0, 0)] = 2.0, a[Index(0, 1)] = 1.0;
    a[Index(1, 0)] = 1.0, a[Index(1, 1)] = 3.0;

    // Both store column after column, so Eigen looks at the matrix in place.
    Eigen::Map<Eigen::MatrixXd const> const seen(a.data(), Eigen::Index(a.rows()), Eigen::Index(a.columns()));
    Eigen::MatrixXd const inverse = seen.inverse();

    Matrix2 result(2, 2, 0.0);
    Eigen::Map<Eigen::MatrixXd>(result.data(), 2, 2) = inverse; // copies
    std::cout << result[Index(0, 0)] << '\n';                   // 0.6
}
#endif

} // namespace

int main() {
    withStandardContainers();
    withStandardAlgorithms();
    withStreams();
#ifdef HAS_EIGEN
    withEigen();
#endif
}
