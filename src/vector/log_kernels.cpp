#include "vector/log_kernels.hpp"

#include "vector/log.hpp"
#include "vector/map.hpp"

namespace lyr::LYR_NS {
namespace {

// Remembers whether the first element without a logarithm was a zero or negative.
class FirstSpecial
{
public:
    LYR_INLINE void note(I32 zeros, I32 negatives)
    {
        const unsigned lanesOf = signBits(as<F32>(zeros | negatives));
        if (status == StsNoErr && lanesOf != 0) {
            const unsigned first = lanesOf & (0U - lanesOf);
            status = (signBits(as<F32>(zeros)) & first) != 0 ? StsWarnInf : StsWarnNan;
        }
    }
    LYR_INLINE Status result() const { return status; }

private:
    Status status = StsNoErr;
};

LYR_INLINE F32 lnNoting(F32 x, FirstSpecial& special)
{
    special.note(x == F32{}, x < F32{});
    return ln(x);
}

Status ln32f(Elem32f* p, Elem32s len)
{
    constexpr int L = lanes<F32>;
    FirstSpecial special;
    std::ptrdiff_t i = 0;
    for (; i + 4 * L <= len; i += 4 * L) {
        const F32 x0 = load<Unaligned>(p + i);
        const F32 x1 = load<Unaligned>(p + i + L);
        const F32 x2 = load<Unaligned>(p + i + 2 * L);
        const F32 x3 = load<Unaligned>(p + i + 3 * L);
        if (any((beyondNormal(x0) | beyondNormal(x1)) | (beyondNormal(x2) | beyondNormal(x3)))) [[unlikely]] {
            for (int j = 0; j < 4; ++j) {
                float* const q = p + i + j * L;
                store<Unaligned>(q, lnNoting(load<Unaligned>(q), special));
            }
            continue;
        }
        store<Unaligned>(p + i, lnNormal(x0));
        store<Unaligned>(p + i + L, lnNormal(x1));
        store<Unaligned>(p + i + 2 * L, lnNormal(x2));
        store<Unaligned>(p + i + 3 * L, lnNormal(x3));
    }
    mapFilled(p + i, p + i, static_cast<Elem32s>(len - i), 1.0F,
              [&special](F32 x) { return any(beyondNormal(x)) ? lnNoting(x, special) : lnNormal(x); });
    return special.result();
}

// dst[i] = op(src[i]) for positive elements; others give -2^31.
template <class Op>
LYR_INLINE Status mapPositive(const Elem32s* src, Elem32s* dst, Elem32s len, Op op)
{
    FirstSpecial special;
    mapFilled(src, dst, len, Elem32s{1}, [&special, op](I32 x) {
        special.note(x == I32{}, x < I32{});
        return x > I32{} ? op(x) : splat(std::int32_t{INT32_MIN});
    });
    return special.result();
}

// The least integers whose logarithm is nearest to 1, 2, ... 21: the result is how many of them are not above x. A
// search that halves the table would need a gather where comparing with every entry is a handful of cycles.
constexpr std::int32_t leastOf[21] = {2,       5,       13,       34,       91,        245,       666,
                                      1809,    4915,    13360,    36316,    98716,     268338,    729417,
                                      1982760, 5389699, 14650720, 39824785, 108254988, 294267567, 799902178};

Status nearest32s(const Elem32s* src, Elem32s* dst, Elem32s len, int shift)
{
    return mapPositive(src, dst, len, [shift](I32 x) {
        I32 count = I32{};
        for (const std::int32_t least : leastOf) {
            count -= x > splat(least - 1);
        }
        return count >> shift;
    });
}

Status scaled32s(const Elem32s* src, Elem32s* dst, Elem32s len, Elem32f factor)
{
    return mapPositive(src, dst, len, [f = splat(factor)](I32 x) {
        // The logarithm of 1 is zero, and stays so under the largest factor, which is finite.
        return toIntLimited(lnNormal(toFloat(x)) * f);
    });
}

} // namespace

const LogKernels logKernels{.ln32f = ln32f, .nearest32s = nearest32s, .scaled32s = scaled32s};

} // namespace lyr::LYR_NS
