#include <mirel_fitting/kriging/correlation/PowersOfTwo.h>

namespace {

// 2^(1/2), 2^(1/4), ...: products of ten of them in extended precision round to the right double.
constexpr long double roots[PowersOfTwo::bits] = {
    1.414213562373095048801688724209698079L, 1.189207115002721066717499970560475915L,
    1.090507732665257659207010655760707979L, 1.044273782427413840321966478739929009L,
    1.021897148654116678234480134783299440L, 1.010889286051700460020409790561860524L,
    1.005429901112802821351383955934799815L, 1.002711275050202485430745588450362040L,
    1.001354719892108205880881526784094947L, 1.000677130693066356678172784872647195L};

constexpr PowersOfTwo computed()
{
    PowersOfTwo powers{};
    for (std::size_t i = 0; i < PowersOfTwo::count; ++i) {
        long double product = 1.0L;
        for (std::size_t bit = 0; bit < PowersOfTwo::bits; ++bit) {
            const bool isSet = (i >> (PowersOfTwo::bits - 1 - bit) & 1) != 0;
            product *= isSet ? roots[bit] : 1.0L;
        }
        powers.values[i] = static_cast<double>(product);
    }
    return powers;
}

constexpr PowersOfTwo constant = computed();

} // namespace

// Initialised by the compiler: kernels may be called before any constructor of this library runs.
const PowersOfTwo PowersOfTwo::table = constant;
