// portability/outofmemory.h: the answer of a function whose interface throws nothing.
#pragma once

#include <new>

namespace quillon_com::orb::portability {

// The result of `body`, or `failure` when memory ran out in it.
template <class T, class Body>
T unless_out_of_memory(T failure, Body body) {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return failure;
  }
}

}  // namespace quillon_com::orb::portability
