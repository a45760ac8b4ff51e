// tests/darwin/headers/CoreServices/CoreServices.h: the cross build's declarations.
#pragma once

#include "cmake/macos/frameworks/CoreServices.framework/Headers/CoreServices.h"
