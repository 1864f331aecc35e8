#include "estimation/column_covariance_kernels.hpp"

#include "estimation/column_load.hpp"
#include "frame/elements.hpp"

namespace lyr::LYR_NS {
namespace {

constexpr int L = lanes<F64>;

// A step takes so many earlier columns i against so many vectors of later columns j: enough sums in registers to hide
// the latency of additions.
constexpr int earlierAtOnce = 4;
constexpr int vectorsAtOnce = 2;

// The sums of a piece of the matrix are on the stack while the rows pass by: a piece of up to this many, which for the
// usual feature vectors is the whole, so that the rows are read once.
constexpr std::ptrdiff_t pieceSums = 4096;
constexpr std::ptrdiff_t pieceWidth = 1024;
static_assert(pieceSums / pieceWidth >= earlierAtOnce);

// Rows are taken in tiles of about this many bytes, which stay in the first-level cache for all sums of a piece.
constexpr std::ptrdiff_t tileBytes = 16384;
constexpr std::ptrdiff_t leastTile = 16;

constexpr std::ptrdiff_t smaller(std::ptrdiff_t a, std::ptrdiff_t b)
{
    return a < b ? a : b;
}
constexpr std::ptrdiff_t larger(std::ptrdiff_t a, std::ptrdiff_t b)
{
    return a < b ? b : a;
}

// Rows `begin` to `end` of a matrix.
template <class Rows>
struct Tile
{
    Rows rows;
    std::ptrdiff_t begin;
    std::ptrdiff_t end;
};

// sums[k][j] += sum over the rows of (x[i + k] - m[j]) * (x[j] - m[j]) for I columns from i on and V vectors of columns
// from j on, the last with `last` lanes. Differences and sums are doubles.
template <int I, int V, class Rows, class S>
LYR_INLINE void addProducts(Tile<Rows> tile, const S* mean, std::ptrdiff_t i, std::ptrdiff_t j, int last, Elem64f* sums,
                            std::ptrdiff_t sumsStep)
{
    F64 sum[I][V];
    F64 m[V];
    const auto lanesOf = [last](int v) { return v + 1 < V ? L : last; };
    for (int v = 0; v < V; ++v) {
        m[v] = loadColumns<Elem64f>(mean + j + v * L, lanesOf(v));
        for (int k = 0; k < I; ++k) {
            sum[k][v] = loadColumns<Elem64f>(sums + k * sumsStep + v * L, lanesOf(v));
        }
    }
    for (std::ptrdiff_t r = tile.begin; r < tile.end; ++r) {
        const S* const row = tile.rows.row(r);
        F64 centred[V];
        for (int v = 0; v < V; ++v) {
            centred[v] =
                (v + 1 < V ? loadColumns<Elem64f>(row + j + v * L) : loadColumns<Elem64f>(row + j + v * L, last)) -
                m[v];
        }
        for (int k = 0; k < I; ++k) {
            const F64 x = splat(static_cast<Elem64f>(row[i + k]));
            for (int v = 0; v < V; ++v) {
                sum[k][v] = mulAdd(x - m[v], centred[v], sum[k][v]);
            }
        }
    }
    for (int v = 0; v < V; ++v) {
        for (int k = 0; k < I; ++k) {
            storeColumns(sums + k * sumsStep + v * L, sum[k][v], lanesOf(v));
        }
    }
}

// I columns from i on against all columns from j up to `end`.
template <int I, class Rows, class S>
LYR_INLINE void addProductRows(Tile<Rows> tile, const S* mean, std::ptrdiff_t i, std::ptrdiff_t j, std::ptrdiff_t end,
                               Elem64f* sums, std::ptrdiff_t sumsStep)
{
    for (; j < end; j += vectorsAtOnce * L, sums += vectorsAtOnce * L) {
        const int n = static_cast<int>(smaller(end - j, vectorsAtOnce * L));
        static_assert(vectorsAtOnce == 2);
        if (n > L) {
            addProducts<I, 2>(tile, mean, i, j, n - L, sums, sumsStep);
        } else {
            addProducts<I, 1>(tile, mean, i, j, n, sums, sumsStep);
        }
    }
}

// Columns [firstRow, endRow) against the columns of [firstColumn, endColumn) that are not earlier.
template <class S, class Rows, class Matrix>
void accumulatePiece(Rows rows, Elem32s height, const S* mean, Matrix dst, Elem64f val, std::ptrdiff_t firstRow,
                     std::ptrdiff_t endRow, std::ptrdiff_t firstColumn, std::ptrdiff_t endColumn,
                     std::ptrdiff_t tileRows)
{
    const std::ptrdiff_t step = endColumn - firstColumn;
    Elem64f sums[pieceSums];
    zeroElements(sums, (endRow - firstRow) * step);
    for (std::ptrdiff_t r = 0; r < height; r += tileRows) {
        const Tile<Rows> tile{rows, r, smaller(r + tileRows, height)};
        std::ptrdiff_t i = firstRow;
        const auto add = [&]<int I>() __attribute__((always_inline))
        {
            const std::ptrdiff_t j = larger(i, firstColumn);
            addProductRows<I>(tile, mean, i, j, endColumn, sums + (i - firstRow) * step + (j - firstColumn), step);
        };
        for (; i + earlierAtOnce <= endRow; i += earlierAtOnce) {
            add.template operator()<earlierAtOnce>();
        }
        for (; i < endRow; ++i) {
            add.template operator()<1>();
        }
    }
    for (std::ptrdiff_t i = firstRow; i < endRow; ++i) {
        for (std::ptrdiff_t j = larger(i, firstColumn); j < endColumn; ++j) {
            const Elem64f updated = dst.row(i)[j] + sums[(i - firstRow) * step + j - firstColumn] * val;
            dst.row(i)[j] = updated;
            dst.row(j)[i] = updated; // the lower triangle is overwritten, whatever it held
        }
    }
}

template <class S, class Rows, class Matrix>
void accumulate(Rows rows, Elem32s height, const S* mean, Matrix dst, Elem32s width, Elem64f val)
{
    const std::ptrdiff_t tileRows = larger(leastTile, tileBytes / (width * static_cast<std::ptrdiff_t>(sizeof(S))));
    for (std::ptrdiff_t j = 0; j < width; j += pieceWidth) {
        const std::ptrdiff_t endColumn = smaller(j + pieceWidth, width);
        for (std::ptrdiff_t i = 0; i < endColumn;) {
            const std::ptrdiff_t firstColumn = larger(i, j);
            const std::ptrdiff_t endRow = smaller(endColumn, i + pieceSums / (endColumn - firstColumn));
            accumulatePiece(rows, height, mean, dst, val, i, endRow, firstColumn, endColumn, tileRows);
            i = endRow;
        }
    }
}

} // namespace

const ColumnCovarianceKernels columnCovarianceKernels{
    .block32f = accumulate<Elem32f, Block<const Elem32f>, Block<Elem64f>>,
    .block16s = accumulate<Elem16s, Block<const Elem16s>, Block<Elem64f>>,
    .table32f = accumulate<Elem32f, Table<const Elem32f>, Table<Elem64f>>,
    .table16s = accumulate<Elem16s, Table<const Elem16s>, Table<Elem64f>>,
};

} // namespace lyr::LYR_NS
