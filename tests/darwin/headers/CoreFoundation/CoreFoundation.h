// tests/darwin/headers/CoreFoundation/CoreFoundation.h: the cross build's declarations.
#pragma once

#include "cmake/macos/frameworks/CoreFoundation.framework/Headers/CoreFoundation.h"
