/* a_law.h - G.711 A-law as 16-bit samples. */
#ifndef VBOARD_A_LAW_H
#define VBOARD_A_LAW_H

#include <array>
#include <cstdint>

namespace vboard
{

using ALawTable = std::array<int16_t, 256>;

/* The sample that each A-law byte stands for; the largest are +-32256. Null: no decoder to be had. */
const ALawTable *a_law_table();

} // namespace vboard

#endif
