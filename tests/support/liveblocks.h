// tests/support/liveblocks.h: what tests/support/calltrace.cpp tells about memory.
#pragma once

namespace orbtest {

void* note_block(void* block);   // got; returns it
void forget_block(void* block);  // about to be given back

}  // namespace orbtest
