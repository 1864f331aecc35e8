#include "vector/arithmetic_kernels.hpp"

#include "vector/map.hpp"

namespace lyr::LYR_NS {
namespace {

void abs64f(const Elem64f* a, Elem64f* dst, Elem32s len)
{
    map(a, dst, len, [](F64 x) { return as<F64>(as<U64>(x) & ~as<U64>(splat(-0.0))); });
}

template <class T>
void add(const T* a, const T* b, T* dst, Elem32s len)
{
    map(a, b, dst, len, [](VectorOf<T> x, VectorOf<T> y) { return x + y; });
}

template <class T>
void sub(const T* a, const T* b, T* dst, Elem32s len)
{
    map(a, b, dst, len, [](VectorOf<T> x, VectorOf<T> y) { return x - y; });
}

template <class T>
void mul(const T* a, const T* b, T* dst, Elem32s len)
{
    map(a, b, dst, len, [](VectorOf<T> x, VectorOf<T> y) { return x * y; });
}

template <class T>
void addConstant(const T* a, T c, T* dst, Elem32s len)
{
    map(a, dst, len, [c = splat(c)](VectorOf<T> x) { return x + c; });
}

template <class T>
void mulConstant(const T* a, T c, T* dst, Elem32s len)
{
    map(a, dst, len, [c = splat(c)](VectorOf<T> x) { return x * c; });
}

} // namespace

const ArithmeticKernels arithmeticKernels{
    .abs64f = abs64f,
    .add32f = add<Elem32f>,
    .add64f = add<Elem64f>,
    .sub32f = sub<Elem32f>,
    .sub64f = sub<Elem64f>,
    .mul32f = mul<Elem32f>,
    .addConstant32f = addConstant<Elem32f>,
    .mulConstant32f = mulConstant<Elem32f>,
    .mulConstant64f = mulConstant<Elem64f>,
};

} // namespace lyr::LYR_NS
