// Keys of the office, as the forms know them.
#pragma once

#include <cstdint>
#include <vector>

namespace rowlark::calc {

// The virtual key code (controls/Keys.h, and those of winuser.h that are not named there) of a code of
// com::sun::star::awt::Key; 0 for what forms know nothing of. Modifiers have the same bits in both.
int32_t VirtualKey(int16_t key);

// The other way round; 0 for a key that the office does not know.
int16_t OfficeKey(int32_t virtual_key);

}  // namespace rowlark::calc
