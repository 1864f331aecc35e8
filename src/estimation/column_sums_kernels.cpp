#include "estimation/column_sums_kernels.hpp"

#include "estimation/column_load.hpp"

namespace lyr::LYR_NS {
namespace {

// What a kernel sums.
template <bool withValues, bool withSquares, bool withWeights>
struct Moments
{
    static constexpr bool values = withValues;
    static constexpr bool squares = withSquares;
    static constexpr bool weighted = withWeights;
    static constexpr int count = (withValues ? 1 : 0) + (withSquares ? 1 : 0);
};

// So many vectors of a row are taken at once, with their sums in registers.
constexpr int mostVectors = 4;

// Rows are taken in tiles of about this many bytes, so that a wide row that takes several turns comes from the
// second-level cache in all but one.
constexpr std::ptrdiff_t tileBytes = 65536;
constexpr std::ptrdiff_t leastTile = 16;

// Additions in flight at once, at least: what their latency asks for.
constexpr int chains = 8;

// The columns of V vectors, the last with `last` lanes, over rows `begin` to `end`. Narrow ones sum several rows side
// by side.
template <class M, class T, int V, class Rows>
LYR_INLINE void addTile(Rows rows, std::ptrdiff_t begin, std::ptrdiff_t end, std::ptrdiff_t column, int last,
                        const T* weights, T* sums, T* squares)
{
    using Vec = VectorOf<T>;
    constexpr int L = lanes<Vec>;
    constexpr int R = V * M::count < chains ? chains / (V * M::count) : 1;
    Vec sum[R][V] = {};
    Vec square[R][V] = {};
    const auto addRow = [&](int k, std::ptrdiff_t r) __attribute__((always_inline))
    {
        const auto* const row = rows.row(r) + column;
        for (int v = 0; v < V; ++v) {
            const Vec x = v + 1 < V ? loadColumns<T>(row + v * L) : loadColumns<T>(row + v * L, last);
            if constexpr (M::weighted) {
                const Vec w = splat(weights[r]);
                if constexpr (M::values) {
                    sum[k][v] = mulAdd(w, x, sum[k][v]);
                }
                if constexpr (M::squares) {
                    square[k][v] = mulAdd(x * x, w, square[k][v]);
                }
            } else {
                if constexpr (M::values) {
                    sum[k][v] += x;
                }
                if constexpr (M::squares) {
                    square[k][v] = mulAdd(x, x, square[k][v]);
                }
            }
        }
    };
    std::ptrdiff_t r = begin;
    for (; r + R <= end; r += R) {
        for (int k = 0; k < R; ++k) {
            addRow(k, r + k);
        }
    }
    for (; r < end; ++r) {
        addRow(0, r);
    }
    const auto addTo = [&](T * total, const Vec(&part)[R][V]) __attribute__((always_inline))
    {
        for (int v = 0; v < V; ++v) {
            Vec all = part[0][v];
            for (int k = 1; k < R; ++k) {
                all += part[k][v];
            }
            const int n = v + 1 < V ? L : last;
            storeColumns(total + v * L, loadColumns<T>(total + v * L, n) + all, n);
        }
    };
    if constexpr (M::values) {
        addTo(sums, sum);
    }
    if constexpr (M::squares) {
        addTo(squares, square);
    }
}

template <class M, class T, class Rows>
void addColumns(Columns<Rows> columns, const T* weights, T* sums, T* squares)
{
    constexpr int L = lanes<VectorOf<T>>;
    constexpr std::ptrdiff_t atOnce = mostVectors * L;
    const std::ptrdiff_t width = columns.width;
    std::ptrdiff_t tile = columns.height;
    if (width > atOnce) {
        tile = tileBytes / (width * static_cast<std::ptrdiff_t>(sizeof(typename Rows::Element)));
        tile = tile < leastTile ? leastTile : tile;
    }
    for (std::ptrdiff_t r = 0; r < columns.height; r += tile) {
        const std::ptrdiff_t end = columns.height - r < tile ? columns.height : r + tile;
        for (std::ptrdiff_t c = 0; c < width; c += atOnce) {
            const std::ptrdiff_t n = width - c < atOnce ? width - c : atOnce;
            const int vectors = static_cast<int>((n + L - 1) / L);
            const int last = static_cast<int>(n) - (vectors - 1) * L;
            const auto add = [&]<int V>() __attribute__((always_inline))
            {
                addTile<M, T, V>(columns.rows, r, end, columns.first + c, last, weights, M::values ? sums + c : nullptr,
                                 M::squares ? squares + c : nullptr);
            };
            static_assert(mostVectors == 4);
            switch (vectors) {
            case 1:
                add.template operator()<1>();
                break;
            case 2:
                add.template operator()<2>();
                break;
            case 3:
                add.template operator()<3>();
                break;
            default:
                add.template operator()<4>();
                break;
            }
        }
    }
}

template <bool weighted, class T, class Rows>
constexpr ColumnSums<Rows, T> sumsOf{.values = addColumns<Moments<true, false, weighted>, T, Rows>,
                                     .squares = addColumns<Moments<false, true, weighted>, T, Rows>,
                                     .both = addColumns<Moments<true, true, weighted>, T, Rows>};

template <bool weighted, class S, class T>
constexpr LayoutColumnSums<S, T> layouts{.block = sumsOf<weighted, T, Block<const S>>,
                                         .table = sumsOf<weighted, T, Table<const S>>};

} // namespace

const ColumnSumsKernels columnSumsKernels{
    .singles = layouts<false, Elem32f, Elem32f>,
    .shorts = layouts<false, Elem16s, Elem32f>,
    .shortsInDouble = layouts<false, Elem16s, Elem64f>,
    .weightedSingles = layouts<true, Elem32f, Elem32f>,
    .weightedDoubles = layouts<true, Elem64f, Elem64f>,
};

} // namespace lyr::LYR_NS
