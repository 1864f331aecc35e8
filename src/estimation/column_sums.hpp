// What the exported column statistics share: sums from zero, and sums by panels on the stack where no destination can
// hold them.
#pragma once

#include "estimation/column_sums_kernels.hpp"

namespace lyr {

// Sums of so many columns at a time have their place on the stack. The rows of one panel are long enough to be read at
// full speed.
inline constexpr Elem32s panelColumns = 256;

// Calls perPanel(first, count) for every panel of `width` columns.
template <class PerPanel>
void forEachPanel(Elem32s width, PerPanel perPanel)
{
    for (Elem32s first = 0; first < width;) {
        const Elem32s count = width - first < panelColumns ? width - first : panelColumns;
        perPanel(first, count);
        first += count;
    }
}

} // namespace lyr
