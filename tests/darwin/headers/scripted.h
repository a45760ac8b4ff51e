// tests/darwin/headers/scripted.h: gives a function of macOS a symbol of its own.
//
// The headers of this folder stand in for those of macOS: its names, shapes and numbers, as far as
// the library uses them. Their functions must not replace those of the machine that runs the test:
// each is linked as scripted_NAME, which tests/darwin/scripted_*.cpp define.
#pragma once

#define ORB_SCRIPTED(name) __asm__("scripted_" #name)
