// portability/dynlibparts.h: what the files of the dynamic libraries share.
#pragma once

#include <cstddef>

namespace quillon_com::orb::portability {

constexpr size_t kMessageSize = 512;        // of a function's message buffer
constexpr size_t kLongestLoaderText = 510;  // bytes of the loader's text that a message takes

// Copies a message buffer of voxLoadLibrary while no other thread writes it.
void copy_message(const char* message, char (&copy)[kMessageSize]);

// Forgets what the loader last said to this thread, so that its next text belongs to the next call.
void forget_loader_text();

// The loader's last text of this thread; "" when it said nothing.
const char* loader_text();

}  // namespace quillon_com::orb::portability
