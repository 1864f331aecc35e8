/* The substitute results of the library: quiet not-a-number and the infinities of IEEE 754, as data. */

#include <math.h>

extern const float lyrConstantOfNAN_32f;
extern const float lyrConstantOfINF_32f;
extern const float lyrConstantOfINF_NEG_32f;
extern const double lyrConstantOfNAN_64f;
extern const double lyrConstantOfINF_64f;
extern const double lyrConstantOfINF_NEG_64f;

const float lyrConstantOfNAN_32f = NAN;
const float lyrConstantOfINF_32f = INFINITY;
const float lyrConstantOfINF_NEG_32f = -INFINITY;
const double lyrConstantOfNAN_64f = NAN;
const double lyrConstantOfINF_64f = INFINITY;
const double lyrConstantOfINF_NEG_64f = -INFINITY;
