// The tests of the vector layer are compiled for wide processors as a whole. On a narrower one they are skipped, before
// the first instruction of theirs: this runs ahead of all static initialisers.

#include "frame/select.hpp"

#include <unistd.h>

namespace {

constexpr int skipped = 77;

[[gnu::constructor(101)]] void leaveOnNarrowProcessors()
{
    constexpr lyr::Width needed =
        LYR_WIDTH == 512 ? lyr::Width::W512 : (LYR_WIDTH == 256 ? lyr::Width::W256 : lyr::Width::W128);
    if (lyr::selectedWidth() != needed) {
        _exit(skipped);
    }
}

} // namespace
