// Substitute results: data of the constants library.
#pragma once

#include "lyrsr.h"

extern "C" {
extern const Elem32f lyrConstantOfNAN_32f;
extern const Elem32f lyrConstantOfINF_32f;
extern const Elem32f lyrConstantOfINF_NEG_32f;
extern const Elem64f lyrConstantOfNAN_64f;
extern const Elem64f lyrConstantOfINF_64f;
extern const Elem64f lyrConstantOfINF_NEG_64f;
}
