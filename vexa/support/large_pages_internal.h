#pragma once

#include <cstddef>

namespace Norvel {

// Asks the system for large pages behind memory that is about to be filled as a whole: the first
// touch of a page costs about as much as filling it. Changes nothing where there are none, and for
// less than 4 MB.
void useLargePages(void* memory, std::size_t bytes);

}  // namespace Norvel
