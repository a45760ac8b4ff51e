// tests/torture/machine_calls.h: whether the stand-ins of machine_calls.cpp answer for the machine.
#pragma once

namespace orbtest {

inline bool machine_answers = false;     // else the system does
inline bool connections_linger = false;  // of whatever machine

}  // namespace orbtest
