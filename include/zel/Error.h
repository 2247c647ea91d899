// What the functions of the namespace zel throw.
#pragma once

#include <zel/platform/Error.h>
