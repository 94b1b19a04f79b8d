// SPDX-License-Identifier: Apache-2.0
#include "gps/dilution.h"

#include <algorithm>
#include <array>

namespace quarlin::sim {
namespace {

constexpr std::size_t kUnknowns = 4;  // east, north, up and the receiver's clock
using Row = std::array<double, kUnknowns>;
using Matrix = std::array<Row, kUnknowns>;

// Gauss-Jordan with the largest pivot; false when the geometry determines nothing.
bool Invert(Matrix& matrix) {
    Matrix inverse{};
    for (std::size_t i = 0; i < kUnknowns; ++i) {
        inverse[i][i] = 1;
    }
    for (std::size_t column = 0; column < kUnknowns; ++column) {
        std::size_t pivot = column;
        for (std::size_t row = column + 1; row < kUnknowns; ++row) {
            if (std::abs(matrix[row][column]) > std::abs(matrix[pivot][column])) {
                pivot = row;
            }
        }
        if (std::abs(matrix[pivot][column]) < 1e-9) {
            return false;
        }
        std::swap(matrix[pivot], matrix[column]);
        std::swap(inverse[pivot], inverse[column]);
        const double scale = 1 / matrix[column][column];
        for (std::size_t i = 0; i < kUnknowns; ++i) {
            matrix[column][i] *= scale;
            inverse[column][i] *= scale;
        }
        for (std::size_t row = 0; row < kUnknowns; ++row) {
            const double factor = row == column ? 0 : matrix[row][column];
            for (std::size_t i = 0; i < kUnknowns; ++i) {
                matrix[row][i] -= factor * matrix[column][i];
                inverse[row][i] -= factor * inverse[column][i];
            }
        }
    }
    matrix = inverse;
    return true;
}

void Accumulate(Matrix& normal, const Row& row) {
    for (std::size_t i = 0; i < kUnknowns; ++i) {
        for (std::size_t j = 0; j < kUnknowns; ++j) {
            normal[i][j] += row[i] * row[j];
        }
    }
}

double Spread(double variance) {
    return std::min(std::sqrt(std::max(variance, 0.0)), Dilution::kWorst);
}

}  // namespace

Dilution DilutionOf(const std::vector<SkyPosition>& satellites, bool heightKnown) {
    Matrix normal{};
    for (const SkyPosition& satellite : satellites) {
        const double elevation = satellite.elevation * kDegrees;
        const double azimuth = satellite.azimuth * kDegrees;
        Accumulate(normal, {std::cos(elevation) * std::sin(azimuth), std::cos(elevation) * std::cos(azimuth),
                            std::sin(elevation), 1});
    }
    if (heightKnown) {
        Accumulate(normal, {0, 0, 1, 0});
    }
    if (satellites.size() + (heightKnown ? 1 : 0) < kUnknowns || !Invert(normal)) {
        return {};
    }
    Dilution dilution;
    dilution.horizontal = Spread(normal[0][0] + normal[1][1]);
    dilution.vertical = Spread(normal[2][2]);
    dilution.position = Spread(normal[0][0] + normal[1][1] + normal[2][2]);
    return dilution;
}

}  // namespace quarlin::sim
