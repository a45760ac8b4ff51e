// platform/everlasting.h: objects that no static destructor of a process finds gone.
#pragma once

#include <new>

namespace quillon_com::orb::platform {

// The one object of type `T` of this process, made by its default constructor at the first call and
// never destroyed: what a static object of the process calls from its destructor still finds it.
// Takes no memory of the allocator's but what T's constructor takes. Safe from any thread.
template <class T>
T& everlasting() {
  alignas(T) static unsigned char place[sizeof(T)];
  static T& object = *new (place) T;
  return object;
}

}  // namespace quillon_com::orb::platform
