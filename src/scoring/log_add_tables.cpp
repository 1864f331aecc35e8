#include "scoring/log_add_tables.hpp"

namespace lyr {

void GetLogAddConst(const Elem64f** first, const Elem64f** second, const Elem64f** third) noexcept
{
    *first = LogAddCoeff1;
    *second = LogAddCoeff2;
    *third = LogAddCoeff3;
}

void GetLogAddConst_F(const Elem64f** first, const Elem64f** second, const Elem64f** third) noexcept
{
    *first = LogAddCoeff1_F;
    *second = LogAddCoeff2_F;
    *third = LogAddCoeff3_F;
}

} // namespace lyr
